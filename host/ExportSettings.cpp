#include "host/ExportSettings.h"

#include "TarvoSDK/TarvoGetExportSettingsInfoInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/Failure.h"
#include "kelpcore/utility/NumberText.h"

#include <utility>

namespace host
{

namespace
{

class InfoObject : public TarvoGetExportSettingsInfoInterface
{
public:
    InfoObject(FormatObject& ioFormat, RepairMode inRepair, ExportAnswer& outAnswer)
        : mFormat(ioFormat), mRepair(inRepair), mAnswer(outAnswer)
    {
    }

    TarvoErrorInterface* GetErrorInterface() const override { return &mError; }
    TarvoFormatInterface* GetFormatInterface() const override { return &mFormat; }
    std::int32_t GetRepairMode() const override { return static_cast<std::int32_t>(mRepair); }
    void SetEstimatedBits(std::int64_t inBits) override { mAnswer.mEstimatedBits = inBits; }
    void SetHasSettings(bool inHasSettings) override { mAnswer.mHasSettings = inHasSettings; }
    void SetLossy(bool inLossy) override { mAnswer.mIsLossy = inLossy; }
    void SetFormatDescription(const uint16* inText) override
    {
        mAnswer.mDescription = FromPlugIn(inText);
    }

    mutable ErrorObject mError;

private:
    FormatObject& mFormat;
    const RepairMode mRepair;
    ExportAnswer& mAnswer;
};

Failure SettingsFailure(std::string inText, std::int32_t inResult)
{
    if (inText.empty())
        inText = "The plug-in cannot judge the settings. (result " + std::to_string(inResult) + ")";
    return Failure(kExitSettings, inResult, inText);
}

void TakeFormat(FormatObject&& inFormat, ExportAnswer& outAnswer)
{
    outAnswer.mAudio = ShapeOf(inFormat);
    outAnswer.mSettings = FromPlugIn(inFormat.GetPrivateSettings());
    outAnswer.mMimeType = std::move(inFormat.mMimeType);
    outAnswer.mXmpType = inFormat.mXmpType;
    outAnswer.mExtensions = std::move(inFormat.mExtensions);
}

}  // namespace

AudioShape AskDefaultExportFormat(const PlugIn& inPlugIn)
{
    ErrorObject error;
    FormatObject format(&error);
    const std::int32_t result =
        inPlugIn.Call(kTarvoSelectorGetDefaultExportSettings, nullptr, &format);
    if (result != kTarvoResultSuccess)
        throw Failure(kExitFailed, result,
                      "The plug-in has no default format (result " + std::to_string(result) + ")");
    return ShapeOf(format);
}

ExportAnswer AskExportSettings(const PlugIn& inPlugIn, const ExportRequest& inRequest)
{
    ExportAnswer answer;
    FormatObject format(nullptr);
    SetShape(format, inRequest.mAudio);
    format.mSettings = ToPlugIn(inRequest.mSettings);
    format.mFilterId = ToPlugIn(inRequest.mFilterId);
    InfoObject info(format, inRequest.mRepair, answer);
    try
    {
        answer.mResult = inPlugIn.Call(kTarvoSelectorGetExportSettingsInfo, nullptr, &info);
    }
    catch (const kelpcore::utility::NumberFormatError&)
    {
        throw SettingsFailure("The filter id is no number: " + inRequest.mFilterId, 0);
    }
    if (answer.mResult != kTarvoResultSuccess && answer.mResult != kTarvoResultUnsupportedFormat)
        throw SettingsFailure(std::move(info.mError.mText), answer.mResult);
    TakeFormat(std::move(format), answer);
    return answer;
}

}  // namespace host
