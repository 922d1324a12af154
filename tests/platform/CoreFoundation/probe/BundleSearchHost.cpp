// ForeignHost LIBRARY IDENTIFIER: a program that knows nothing of this system. Prints the path of
// the bundle that the library finds.
#include <cstdio>

#include <dlfcn.h>

int main(int inCount, char** inArguments)
{
    if (inCount != 3)
        return 2;
    void* library = ::dlopen(inArguments[1], RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        return 1;
    using FindBundle = void (*)(const char*, char*, long);
    const auto findBundle = reinterpret_cast<FindBundle>(::dlsym(library, "FindBundle"));
    if (!findBundle)
        return 1;
    char path[4096];
    findBundle(inArguments[2], path, sizeof path);
    std::fputs(path, stdout);
    return 0;
}
