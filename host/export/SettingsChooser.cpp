#include "host/export/SettingsChooser.h"

#include "host/ChannelMap.h"

namespace host
{

namespace
{

// The id of a filter that stands for one file type is the type's number; empty without one.
std::string FilterOf(const Registration& inRegistration, std::uint32_t inFileType)
{
    const std::string id = std::to_string(inFileType);
    for (const Filter& filter : inRegistration.mExportFilters)
        if (filter.mId == id)
            return id;
    return "";
}

}  // namespace

DialogRequest RequestDialog(const Registration& inRegistration, const ExportWish& inWish,
                            const ExportSource& inSource, const ExportPlan& inPlan)
{
    DialogRequest request;
    request.mAudio = inSource.mShape;
    request.mAudio.mSampleRate = inWish.mRate.value_or(inSource.mShape.mSampleRate);
    request.mAudio.mSampleType =
        SampleTypeFor(inWish.mDepth.value_or(DepthOfSource(inSource)).mBits);
    if (inWish.mChannels)
        request.mAudio.mLabels = LabelsForCount(inSource.mShape.mLabels, *inWish.mChannels);
    request.mSettings = inPlan.mSettings;
    if (!inWish.mSettings || !inWish.mType.empty())
        request.mFilterId = FilterOf(inRegistration, inPlan.mFileType);
    return request;
}

ExportWish WishForChosen(const std::string& inSettings, const ExportWish& inWish)
{
    ExportWish wish;
    wish.mDepth = inWish.mDepth;
    wish.mRate = inWish.mRate;
    wish.mChannels = inWish.mChannels;
    wish.mSettings = inSettings;
    wish.mRepair = RepairMode::kNone;
    wish.mIsChosen = true;
    return wish;
}

std::optional<ExportPlan> SettingsChooser::Choose(const ExportWish& inWish,
                                                  const ExportSource& inSource,
                                                  const ExportPlan& inPlan,
                                                  const std::string& inPath) const
{
    const auto chosen =
        RunExportDialog(mPlugIn, RequestDialog(mRegistration, inWish, inSource, inPlan));
    if (!chosen)
        return std::nullopt;
    const auto ask = [this](const ExportRequest& inRequest)
    { return AskExportSettings(mPlugIn, inRequest); };
    return PlanExport(ask, WishForChosen(*chosen, inWish), inSource, inPath);
}

}  // namespace host
