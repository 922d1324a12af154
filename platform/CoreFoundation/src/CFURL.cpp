// CFURL: URLs of files.
#include "CFURLObject.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include <unistd.h>

namespace
{

struct FreeMemory
{
    void operator()(char* inText) const { std::free(inText); }
};

// The path from the root on; empty when there is no working folder to count from.
std::string AbsolutePath(std::string_view inPath)
{
    if (inPath.front() == '/')
        return std::string(inPath);
    const std::unique_ptr<char, FreeMemory> folder(::getcwd(nullptr, 0));
    if (!folder || folder.get()[0] != '/')
        return {};
    std::string path(folder.get());
    if (path.back() != '/')
        path += '/';
    return path.append(inPath);
}

}  // namespace

CFTypeID CFURLGetTypeID(void)
{
    return cf::kURLType;
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* path, CFIndex length,
                                                 Boolean)
try
{
    if (!path || length <= 0)
        return nullptr;
    const std::string_view view(reinterpret_cast<const char*>(path),
                                static_cast<std::size_t>(length));
    if (view.find('\0') != std::string_view::npos)
        return nullptr;  // no file can have such a name
    std::string absolute = AbsolutePath(view);
    return absolute.empty() ? nullptr : cf::Create<__CFURL>(std::move(absolute));
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, UInt8* outBuffer,
                                         CFIndex bufferSize)
{
    const std::string& path = url->mPath;
    if (!outBuffer || bufferSize <= 0 || path.size() >= static_cast<std::size_t>(bufferSize))
        return false;
    std::memcpy(outBuffer, path.c_str(), path.size() + 1);
    return true;
}
