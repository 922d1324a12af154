#include "host/export/ExportPlan.h"

#include "host/ChannelMap.h"
#include "host/Conversion.h"
#include "host/Failure.h"
#include "host/SizeLimits.h"
#include "host/StoredSettings.h"
#include "host/export/ExportNames.h"

#include "appleaudiotoolbox/utility/EncodableQueries.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace host
{

namespace
{

// What the plug-in's own repair does not look for: the rate is kept there by design.
constexpr std::int32_t kUsualRates[] = {48000, 44100, 32000, 24000, 22050,
                                        16000, 12000, 11025, 8000};

struct TypeChoice
{
    std::uint32_t mType = 0;
    bool mIsByExtension = false;
};

TypeChoice ChooseType(const ExportWish& inWish, const std::string& inPath)
{
    if (!inWish.mType.empty())
        return {FileTypeByName(inWish.mType), false};
    if (inWish.mSettings || inPath.empty())
    {
        const std::string text = inWish.mSettings.value_or("");
        const auto type = static_cast<std::uint32_t>(SettingsNumber(
            text, "AudioFileTypeID",
            static_cast<std::int32_t>(tarvo::TarvoATPrivateSettings().GetAudioFileTypeID())));
        return {type, false};
    }
    return {FileTypeOfPath(inPath), true};
}

// Nearest first, the larger of two.
template <typename Number>
std::vector<Number> ByDistance(std::vector<Number> inNumbers, Number inTo)
{
    const auto distance = [=](Number inNumber)
    { return std::llabs(static_cast<long long>(inNumber) - static_cast<long long>(inTo)); };
    std::stable_sort(inNumbers.begin(), inNumbers.end(),
                     [&](Number inLeft, Number inRight)
                     {
        const auto left = distance(inLeft), right = distance(inRight);
        return left != right ? left < right : inLeft > inRight;
    });
    return inNumbers;
}

bool IsInCatalogue(EncoderKey inEncoder)
{
    return !appleaudiotoolbox::GetEncodableVariants(inEncoder.mFileType, inEncoder.mFormat).empty();
}

struct Attempt
{
    ExportTarget mTarget;
    ComposedSettings mComposed;
    ExportAnswer mAnswer;
};

// One type, asked about until the plug-in agrees.
class Negotiation
{
public:
    Negotiation(const AskSettings& inAsk, const ExportWish& inWish, const ExportSource& inSource,
                std::uint32_t inFileType)
        : mAsk(inAsk),
          mWish(inWish),
          mSource(inSource),
          mComposer(inWish, inSource, inFileType),
          mWanted{
              inWish.mRate.value_or(inSource.mShape.mSampleRate),
              inWish.mChannels.value_or(static_cast<std::uint32_t>(inSource.mShape.ChannelCount()))}
    {
    }

    /// Throws Failure (kExitSettings) when nothing will do.
    ExportPlan Run()
    {
        std::optional<Attempt> attempt = Search();
        // The plug-in's repair of linear PCM lets a type pass that nobody knows.
        if (!attempt || !IsInCatalogue(mComposer.Encoder()))
            FailImpossible();
        SettleBitrate(*attempt);
        return MakePlan(*attempt);
    }

private:
    AudioShape ShapeFor(const ExportTarget& inTarget, std::int32_t inSampleType) const
    {
        AudioShape shape;
        shape.mSampleRate = inTarget.mRate;
        shape.mSampleType = inSampleType;
        shape.mFrameCount =
            ResampledLength(mSource.mShape.mFrameCount, mSource.mShape.mSampleRate, inTarget.mRate);
        shape.mLabels = LabelsForCount(mSource.mShape.mLabels, inTarget.mChannels);
        return shape;
    }

    Attempt Ask(const ExportTarget& inTarget, RepairMode inRepair) const
    {
        Attempt attempt;
        attempt.mTarget = inTarget;
        attempt.mComposed = mComposer.Compose(inTarget);
        ExportRequest request;
        request.mAudio = ShapeFor(inTarget, attempt.mComposed.mSampleType);
        request.mSettings = attempt.mComposed.Text();
        request.mRepair = inRepair;
        attempt.mAnswer = mAsk(request);
        return attempt;
    }

    ExportTarget FirstTarget() const
    {
        if (!mWish.mIsChosen)
            return mWanted;
        const tarvo::TarvoATPrivateSettings record = mComposer.Compose(mWanted).mRecord;
        return {static_cast<std::int32_t>(record.GetSampleRate()), record.GetChannelsPerFrame()};
    }

    std::vector<std::int32_t> RatesToTry() const
    {
        std::vector<std::int32_t> rates = {mWanted.mRate};
        if (mWish.mRepair != RepairMode::kFit || mWish.mRate)
            return rates;
        for (const std::int32_t rate : ByDistance<std::int32_t>(
                 {std::begin(kUsualRates), std::end(kUsualRates)}, mWanted.mRate))
            if (rate != mWanted.mRate)
                rates.push_back(rate);
        return rates;
    }

    std::vector<std::uint32_t> ChannelsToTry(const ComposedSettings& inComposed) const
    {
        std::vector<std::uint32_t> counts = {mWanted.mChannels};
        if (mWish.mRepair != RepairMode::kFit || mWish.mChannels)
            return counts;
        for (const std::uint32_t count :
             ByDistance(EncodableChannelCounts(inComposed.mRecord.GetStreamBasicDescription()),
                        mWanted.mChannels))
            if (count != mWanted.mChannels && count > 0)
                counts.push_back(count);
        return counts;
    }

    std::optional<Attempt> Search()
    {
        Attempt first = Ask(FirstTarget(), mWish.mRepair);
        mFirstResult = first.mAnswer.mResult;
        mFormat = first.mComposed.mRecord.GetStreamBasicDescription();
        if (first.mAnswer.IsPossible())
            return first;
        if (mWish.mIsChosen)
            return std::nullopt;
        const std::vector<std::int32_t> rates = RatesToTry();
        for (const std::uint32_t channels : ChannelsToTry(first.mComposed))
            for (const std::int32_t rate : rates)
            {
                const ExportTarget target{rate, channels};
                if (target == mWanted)
                    continue;
                Attempt attempt = Ask(target, mWish.mRepair);
                if (attempt.mAnswer.IsPossible())
                    return attempt;
            }
        return std::nullopt;
    }

    // The plug-in may have changed the rate or the channels, on which bit rates and channel labels
    // depend.
    void SettleBitrate(Attempt& ioAttempt) const
    {
        const AudioShape& audio = ioAttempt.mAnswer.mAudio;
        const ExportTarget target{audio.mSampleRate,
                                  static_cast<std::uint32_t>(audio.ChannelCount())};
        if (mWish.mRepair != RepairMode::kStored && target != ioAttempt.mTarget)
        {
            Attempt settled = Ask(target, RepairMode::kNone);
            if (settled.mAnswer.IsPossible())
                ioAttempt = std::move(settled);
        }
        ioAttempt.mAnswer.mAudio = ShapeFor(target, ioAttempt.mComposed.mSampleType);
    }

    ExportPlan MakePlan(const Attempt& inAttempt) const
    {
        const ExportAnswer& answer = inAttempt.mAnswer;
        ExportPlan plan;
        plan.mSettings = answer.mSettings;
        plan.mAudio = answer.mAudio;
        plan.mFileType = SettingsCode("AudioFileTypeID", answer);
        plan.mFormat = SettingsCode("FormatID", answer);
        plan.mDescription = answer.mDescription;
        plan.mMimeType = answer.mMimeType;
        plan.mExtensions = answer.mExtensions;
        plan.mEstimatedBytes =
            SizeOfSamples(plan.mFormat, plan.mAudio.mFrameCount, plan.mAudio.ChannelCount())
                .value_or(answer.EstimatedBytes());
        plan.mIsLossy = answer.mIsLossy;
        plan.mChanges = inAttempt.mComposed.mChanges;
        TellChanges(inAttempt, plan);
        return plan;
    }

    static std::uint32_t SettingsCode(const char* inKey, const ExportAnswer& inAnswer)
    {
        return static_cast<std::uint32_t>(SettingsNumber(inAnswer.mSettings, inKey));
    }

    void TellChanges(const Attempt& inAttempt, ExportPlan& ioPlan) const
    {
        const auto asked = inAttempt.mComposed.mRecord.GetBitsPerChannel();
        const auto got =
            static_cast<std::uint32_t>(SettingsNumber(ioPlan.mSettings, "BitsPerChannel"));
        const auto add = [&](const std::string& inText) { ioPlan.mChanges.push_back(inText); };
        if (asked != got)
            add("depth " + std::to_string(asked) + " is not available: " + std::to_string(got));
        const std::int32_t rate = ioPlan.mAudio.mSampleRate;
        if (rate != mWanted.mRate)
            add("sample rate " + std::to_string(mWanted.mRate) +
                " Hz is not available: " + std::to_string(rate) + " Hz");
        const std::size_t channels = ioPlan.mAudio.ChannelCount();
        if (channels != mWanted.mChannels)
            add(std::to_string(mWanted.mChannels) +
                (mWanted.mChannels == 1 ? " channel is" : " channels are") +
                " not available: " + std::to_string(channels));
    }

    [[noreturn]] void FailImpossible() const
    {
        const EncoderKey encoder = mComposer.Encoder();
        std::string text =
            std::to_string(mWanted.mRate) + " Hz and " + std::to_string(mWanted.mChannels) +
            (mWanted.mChannels == 1 ? " channel" : " channels") + " are not possible for " +
            FormatName(encoder.mFormat) + " in " + FileTypeName(encoder.mFileType) + " files";
        if (!IsInCatalogue(encoder))
        {
            const std::string formats = FormatNames(encoder.mFileType);
            throw Failure(kExitSettings, mFirstResult,
                          FormatName(encoder.mFormat) + " in " + FileTypeName(encoder.mFileType) +
                              " files cannot be written" +
                              (formats.empty() ? "" : "; possible: " + formats));
        }
        throw Failure(kExitSettings, mFirstResult,
                      text + "; possible rates: " + RatesText(encoder.mFormat) +
                          "; channels: " + ChannelsText(mFormat));
    }

    const AskSettings& mAsk;
    const ExportWish& mWish;
    const ExportSource& mSource;
    const SettingsComposer mComposer;
    const ExportTarget mWanted;
    std::int32_t mFirstResult = 0;
    CAStreamBasicDescription mFormat;  // as first asked
};

std::string Gibibytes(std::int64_t inBytes)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f GiB",
                  static_cast<double>(inBytes) / (1024.0 * 1024.0 * 1024.0));
    return text;
}

// The type to go to when the file would grow too large; 0: the plan stands.
std::uint32_t TypeForSize(const ExportPlan& inPlan, const TypeChoice& inChoice,
                          const std::string& inPath)
{
    const std::int64_t bytes = inPlan.mEstimatedBytes;
    if (CanHold(inPlan.mFileType, bytes))
        return 0;
    const std::uint32_t large = TypeForLargeFiles(inPlan.mFileType);
    if (inChoice.mIsByExtension && large != 0 && HasExtensionOf(inPath, large))
        return large;
    throw Failure(kExitSettings, 0,
                  "the file would have " + Gibibytes(bytes) + ", and " +
                      FileTypeName(inPlan.mFileType) + " files end at 4 GiB; possible: " +
                      (large == kAudioFileRF64Type ? "--type RF64, " : "") +
                      "--type caff (.caf), --type W64f (.w64)");
}

}  // namespace

ExportPlan PlanExport(const AskSettings& inAsk, const ExportWish& inWish,
                      const ExportSource& inSource, const std::string& inPath)
{
    const TypeChoice choice = ChooseType(inWish, inPath);
    ExportPlan plan = Negotiation(inAsk, inWish, inSource, choice.mType).Run();
    if (const std::uint32_t large = TypeForSize(plan, choice, inPath))
    {
        const std::string small = FileTypeName(plan.mFileType);
        plan = Negotiation(inAsk, inWish, inSource, large).Run();
        plan.mChanges.push_back(small + " files end at 4 GiB: " + FileTypeName(large));
    }
    if (!inPath.empty() && !HasExtensionOf(inPath, plan.mFileType))
        plan.mChanges.push_back(inPath + ": is a " + FileTypeName(plan.mFileType) +
                                " file, whose extension is ." + ExtensionFor(plan.mFileType, ""));
    return plan;
}

}  // namespace host
