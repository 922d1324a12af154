// TarvoGetTarvoInfoInterface: what a plug-in tells about itself, selector 0.
#ifndef TARVOSDK_TARVOGETTARVOINFOINTERFACE_H
#define TARVOSDK_TARVOGETTARVOINFOINTERFACE_H

#include "TarvoSDK/TarvoExtensionList.h"
#include "TarvoSDK/TarvoSDKTypes.h"

/// The host object of selector 0.
class TarvoGetTarvoInfoInterface
{
protected:
    virtual ~TarvoGetTarvoInfoInterface() = default;

public:
    /// The interface version that the plug-in was built for.
    virtual void SetPluginInterfaceVersion(std::int32_t inMajor, std::int32_t inMinor) = 0;
    /// The host's version. Both pointers are given, and they differ.
    virtual void GetHostInterfaceVersion(std::int32_t* outMajor, std::int32_t* outMinor) const = 0;
    virtual void SetPluginIdentity(const char* inGUID, const uint16* inName) = 0;
    /// Registers a filter for reading. A null id marks a general filter; inReserved is null.
    /// Texts and list are valid until the call returns.
    virtual void AddImportFilter(const uint16* inName, const uint16* inFilterId,
                                 TarvoExtensionList* inExtensions, void* inReserved) = 0;
    /// The same for writing.
    virtual void AddExportFilter(const uint16* inName, const uint16* inFilterId,
                                 TarvoExtensionList* inExtensions, void* inReserved) = 0;
};

#endif
