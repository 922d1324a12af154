#include "host/Registration.h"

#include "TarvoSDK/TarvoGetTarvoInfoInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/Extensions.h"
#include "host/Failure.h"
#include "host/HostText.h"

namespace host
{

namespace
{

// The interface that this host is built for.
constexpr std::int32_t kHostVersionMajor = 1;
constexpr std::int32_t kHostVersionMinor = 2;

class InfoObject : public TarvoGetTarvoInfoInterface
{
public:
    explicit InfoObject(Registration& outRegistration) : mRegistration(outRegistration) {}

    void SetPluginInterfaceVersion(std::int32_t inMajor, std::int32_t inMinor) override
    {
        mRegistration.mVersionMajor = inMajor;
        mRegistration.mVersionMinor = inMinor;
    }
    void GetHostInterfaceVersion(std::int32_t* outMajor, std::int32_t* outMinor) const override
    {
        *outMajor = kHostVersionMajor;
        *outMinor = kHostVersionMinor;
    }
    void SetPluginIdentity(const char* inGUID, const uint16* inName) override
    {
        mRegistration.mGUID = inGUID;
        mRegistration.mName = FromPlugIn(inName);
    }
    void AddImportFilter(const uint16* inName, const uint16* inFilterId,
                         TarvoExtensionList* inExtensions, void*) override
    {
        mRegistration.mImportFilters.push_back(MakeFilter(inName, inFilterId, *inExtensions));
    }
    void AddExportFilter(const uint16* inName, const uint16* inFilterId,
                         TarvoExtensionList* inExtensions, void*) override
    {
        mRegistration.mExportFilters.push_back(MakeFilter(inName, inFilterId, *inExtensions));
    }

private:
    static Filter MakeFilter(const uint16* inName, const uint16* inFilterId,
                             const TarvoExtensionList& inExtensions)
    {
        return {FromPlugIn(inName), inFilterId ? FromPlugIn(inFilterId) : "",
                CopyExtensions(inExtensions)};
    }

    Registration& mRegistration;
};

}  // namespace

Registration Register(const PlugIn& inPlugIn)
{
    Registration registration;
    InfoObject info(registration);
    const std::int32_t result = inPlugIn.Call(kTarvoSelectorGetTarvoInfo, nullptr, &info);
    if (result != kTarvoResultSuccess)
        throw Failure(kExitFailed, result,
                      "The plug-in does not start (result " + std::to_string(result) + ")");
    return registration;
}

}  // namespace host
