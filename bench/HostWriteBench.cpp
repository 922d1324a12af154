// HostWriteBench: exports through the plug-in as the host does, from its write start to the close.
//
// hostwrite SOURCE CHANNELS RATE WIDTH FRAMES TARGET MODE FORMAT BITRATE: the target's extension
// tells the type; MODE is cbr, abr or - for none. Loading, the plug-in's start and the negotiation
// of the settings come before the clock, the encoder's own library is loaded on it.

#include "bench/BlockSource.h"
#include "host/ChannelMap.h"
#include "host/Failure.h"
#include "host/Registration.h"
#include "host/WriteSession.h"
#include "host/export/ExportOptions.h"
#include "host/export/ExportPlan.h"

#include <vector>

namespace
{

host::ExportWish Wish(const bench::WriteJob& inJob)
{
    host::ExportWish wish;
    wish.mFormat = inJob.mFormat;
    wish.mMode = host::ReadMode(inJob.mContainer);
    if (inJob.mBitRate > 0)
        wish.mBitrate = static_cast<std::uint32_t>(inJob.mBitRate);
    wish.mRepair = host::RepairMode::kNone;
    return wish;
}

host::ExportPlan Plan(const host::PlugIn& inPlugIn, const bench::WriteJob& inJob)
{
    host::AudioShape shape;
    shape.mSampleRate = inJob.mRate;
    shape.mSampleType = 10 * inJob.mWidth;
    shape.mFrameCount = inJob.mFrames;
    shape.mLabels = host::LabelsForCount({}, static_cast<std::size_t>(inJob.mChannels));
    const auto ask = [&](const host::ExportRequest& inRequest)
    { return host::AskExportSettings(inPlugIn, inRequest); };
    host::ExportPlan plan = host::PlanExport(ask, Wish(inJob), {shape, ""}, inJob.mTarget);
    if (plan.mAudio.mSampleType != shape.mSampleType)
        throw host::Failure(host::kExitSettings, 0, "The samples would be handed over otherwise.");
    return plan;
}

void Write(const bench::WriteJob& inJob)
{
    const host::PlugIn plugIn("");
    (void)host::Register(plugIn);
    bench::BlockSource source(inJob);
    if (!source.HasFrames())
        throw host::Failure(host::kExitInput, 0, inJob.mSource + ": has no frames");
    const host::ExportPlan plan = Plan(plugIn, inJob);

    const bench::Stopwatch watch;
    host::WriteSession session(plugIn, {inJob.mTarget, inJob.mTarget}, plan.mAudio, plan.mSettings);
    while (const int count = source.Next())
        session.Write(source.Planes(), count);
    session.Finish();
    watch.Print({inJob.mFrames, inJob.mChannels, inJob.mRate,
                 inJob.mFrames * inJob.mChannels * inJob.mWidth});
}

}  // namespace

int main(int argc, char** argv)
{
    bench::WriteJob job;
    if (!bench::ReadJob(argc, argv, job))
        return host::kExitUsage;
    try
    {
        Write(job);
        return host::kExitDone;
    }
    catch (const host::Failure& failure)
    {
        std::fprintf(stderr, "%s\n", failure.what());
        return failure.mExitCode;
    }
}
