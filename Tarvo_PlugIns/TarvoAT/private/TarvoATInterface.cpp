#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "Tarvo_PlugIns/TarvoAT/private/TarvoResultFromErrorSite.h"
#include "appleaudiotoolbox/diagnostics/AudioToolboxTests.h"

#include <kelpcore/config/Localizer.h>

namespace tarvo
{

std::int32_t TarvoATInterface::Initialize()
{
    appleaudiotoolbox::AudioToolboxTests::Initialize();
    return kTarvoResultSuccess;
}

std::int32_t TarvoATInterface::ReportFailure(const char* inGeneralText,
                                             appleaudiotoolbox::ExtendedErrorInfo& ioInfo)
{
    return ReportFailure(kelpcore::config::Localizer::Get().Translate(inGeneralText), ioInfo);
}

std::int32_t TarvoATInterface::ReportFailure(const UTF16String& inGeneralText,
                                             appleaudiotoolbox::ExtendedErrorInfo& ioInfo)
{
    const std::int32_t result = TarvoResultFromErrorSite(ioInfo.mSite);
    ioInfo.mMessage = inGeneralText;
    appleaudiotoolbox::SetExtendedErrorString(ioInfo);
    if (mErrorInterface)
        mErrorInterface->SetErrorText(ioInfo.mMessage.c_str());
    return result;
}

}  // namespace tarvo
