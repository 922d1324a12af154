#include "host/PlugIn.h"

#include "host/Failure.h"

#include <dlfcn.h>
#include <filesystem>

namespace host
{

namespace
{

constexpr const char* kBundleBesideProgram = "../lib/TarvoAT.bundle";
constexpr const char* kLibraryInBundle = "Contents/Linux/TarvoAT.so";

std::filesystem::path DefaultBundle()
{
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        throw Failure(kExitFailed, 0, "tarvo cannot find its own folder: " + error.message());
    return program.parent_path() / kBundleBesideProgram;
}

}  // namespace

PlugIn::PlugIn(const std::string& inBundlePath)
{
    const std::filesystem::path bundle =
        inBundlePath.empty() ? DefaultBundle() : std::filesystem::absolute(inBundlePath);
    const std::string library = (bundle / kLibraryInBundle).lexically_normal().string();

    // Never closed: the libraries behind a plug-in are not made to be unloaded.
    void* handle = dlopen(library.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!handle)
        throw Failure(kExitFailed, 0, std::string("cannot load the plug-in: ") + dlerror());
    mEntry = reinterpret_cast<Entry>(dlsym(handle, "TarvoInterface"));
    if (!mEntry)
        throw Failure(kExitFailed, 0, library + ": has no TarvoInterface");
    mBundle = bundle.string();
}

}  // namespace host
