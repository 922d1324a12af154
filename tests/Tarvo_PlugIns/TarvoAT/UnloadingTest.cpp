// The built bundle's end in a process that has none of its libraries otherwise.
#include "TarvoSDK/TarvoSDK.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <elf.h>
#include <filesystem>
#include <link.h>
#include <string>

namespace
{

// bin/ and lib/ lie beside each other.
std::string Library(const std::string& inPath)
{
    const auto root = std::filesystem::canonical("/proc/self/exe").parent_path().parent_path();
    return (root / "lib" / inPath).string();
}

bool IsLoaded(const std::string& inPath)
{
    void* const library = dlopen(Library(inPath).c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library != nullptr;
}

// What a library asks of the loader.
ElfW(Xword) LoaderFlags(void* inLibrary)
{
    link_map* map = nullptr;
    if (dlinfo(inLibrary, RTLD_DI_LINKMAP, &map) != 0)
        return 0;
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_FLAGS_1)
            return entry->d_un.d_val;
    return 0;
}

// The plug-in's strings go to the thread's free lists while it is unloaded, and the thread empties
// these when it ends.
TEST(Unloading, TakesThePlugInAwayAndLeavesTheCodeInWhichThreadsEnd)
{
    constexpr char kPlugIn[] = "TarvoAT.bundle/Contents/Linux/TarvoAT.so";
    constexpr char kFramework[] = "libkelpcore.so";
    ASSERT_FALSE(IsLoaded(kFramework));
    for (int round = 0; round < 2; ++round)
    {
        void* const plugIn = dlopen(Library(kPlugIn).c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(plugIn, nullptr) << dlerror();
        const auto entry =
            reinterpret_cast<TarvoInterfaceFunction>(dlsym(plugIn, "TarvoInterface"));
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry(1, nullptr, nullptr), 0);
        EXPECT_EQ(dlclose(plugIn), 0);
        EXPECT_FALSE(IsLoaded(kPlugIn));
        EXPECT_TRUE(IsLoaded(kFramework));
    }
}

// A build with other options may stay by chance, so the library has to ask for it.
TEST(Unloading, IsDeclinedByTheCodeInWhichThreadsEnd)
{
    void* const framework = dlopen(Library("libkelpcore.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(framework, nullptr) << dlerror();
    EXPECT_NE(LoaderFlags(framework) & DF_1_NODELETE, 0u);
    dlclose(framework);
}

}  // namespace
