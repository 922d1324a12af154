// Loading of the two modules. They lie in the folder of this library; a program that links its
// objects itself may lie in a folder beside it, as the programs of the build tree do.
#include "convert/CodecInterface.h"
#include "convert/ResamplerInterface.h"

#include <dlfcn.h>

#include <string>

namespace audiotoolbox
{

namespace
{

const char kInThisLibrary = 0;

std::string OwnFolder()
{
    Dl_info info = {};
    if (dladdr(&kInThisLibrary, &info) == 0 || info.dli_fname == nullptr)
        return {};
    const std::string path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

// The library stays loaded: its functions are used until the process ends.
void* FindModuleSymbol(const char* inName, const char* inSymbol)
{
    const std::string folder = OwnFolder();
    for (const char* way : {"", "../lib/"})
    {
        const std::string path = folder + way + inName;
        if (void* library = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL))
            return dlsym(library, inSymbol);
    }
    return nullptr;
}

template <typename Module>
const Module* LoadModule(const char* inName, const char* inSymbol, UInt32 inVersion)
{
    const auto get = reinterpret_cast<const Module* (*)()>(FindModuleSymbol(inName, inSymbol));
    const Module* module = get != nullptr ? get() : nullptr;
    return module != nullptr && module->mVersion == inVersion ? module : nullptr;
}

}  // namespace

const CodecModule* LoadCodecModule()
{
    static const CodecModule* sModule =
        LoadModule<CodecModule>(kCodecModuleName, kCodecModuleSymbol, kCodecInterfaceVersion);
    return sModule;
}

const ResamplerModule* LoadResamplerModule()
{
    static const ResamplerModule* sModule = LoadModule<ResamplerModule>(
        kResamplerModuleName, kResamplerModuleSymbol, kResamplerInterfaceVersion);
    return sModule;
}

}  // namespace audiotoolbox
