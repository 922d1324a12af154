#include "host/export/SettingsComposer.h"

#include "host/Failure.h"
#include "host/HostText.h"
#include "host/SizeLimits.h"
#include "host/export/ExportNames.h"

#include "appleaudiotoolbox/utility/ATUtils.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"

#include <algorithm>
#include <limits>

namespace host
{

namespace
{

using tarvo::TarvoATPrivateSettings;

constexpr std::uint32_t kDefaultBitratePerChannel = 64000;
constexpr std::uint32_t kLossySourceBits = 24;

bool HasDepthInFlags(UInt32 inFormat)
{
    return inFormat == kAudioFormatFLAC || inFormat == kAudioFormatAppleLossless;
}

// Flags 0 say that the depth is the client's, which is 24 bits at the most.
std::uint32_t DepthOfFlags(UInt32 inFlags)
{
    constexpr std::uint32_t kDepths[] = {24, 16, 20, 24, 32};
    return inFlags < std::size(kDepths) ? kDepths[inFlags] : 24;
}

UInt32 FlagsOfDepth(std::uint32_t inBits)
{
    return inBits <= 16 ? 1 : inBits <= 20 ? 2 : inBits <= 24 ? 3 : 4;
}

TarvoATPrivateSettings ReadRecord(const std::string& inText)
{
    TarvoATPrivateSettings record;
    const std::u16string text = ToPlugIn(inText);
    // A record that is not plausible is the plug-in's to refuse.
    (void)record.InitializeFromSerialized(UTF16String(text.data(), text.size()));
    return record;
}

SampleDepth DepthOf(const CAStreamBasicDescription& inFormat)
{
    return {inFormat.mBitsPerChannel, (inFormat.mFormatFlags & kAudioFormatFlagIsFloat) != 0};
}

// 0: the very one. Less is better.
std::uint32_t Misfit(const SampleDepth& inHave, const SampleDepth& inWanted)
{
    const std::uint32_t kind = inWanted.mIsFloat && inHave.mIsFloat != inWanted.mIsFloat ? 1 : 0;
    if (inHave.mBits >= inWanted.mBits)
        return 2 * (inHave.mBits - inWanted.mBits) + kind;
    return 1000 + 2 * (inWanted.mBits - inHave.mBits) + kind;
}

Failure Impossible(const std::string& inText)
{
    return Failure(kExitSettings, 0, inText);
}

CAStreamBasicDescription AudioOf(const ExportTarget& inTarget)
{
    return appleaudiotoolbox::ConstructClientFormatFromArgs(inTarget.mRate, 16, inTarget.mChannels);
}

}  // namespace

std::string ComposedSettings::Text() const
{
    return FromPlugIn(mRecord.GetSerialized().c_str());
}

std::int32_t SampleTypeFor(std::uint32_t inBits)
{
    return inBits <= 8 ? 10 : inBits <= 16 ? 20 : inBits <= 24 ? 30 : 40;
}

SampleDepth DepthOfSource(const ExportSource& inSource)
{
    if (inSource.mSettings.empty())
    {
        const auto bits = static_cast<std::uint32_t>(inSource.mShape.BytesPerSample() * 8);
        return {bits, bits == 32};
    }
    const CAStreamBasicDescription format =
        ReadRecord(inSource.mSettings).GetStreamBasicDescription();
    if (format.mFormatID == kAudioFormatLinearPCM)
        return DepthOf(format);
    if (HasDepthInFlags(format.mFormatID))
        return {DepthOfFlags(format.mFormatFlags), false};
    return {kLossySourceBits, false};
}

SettingsComposer::SettingsComposer(const ExportWish& inWish, const ExportSource& inSource,
                                   std::uint32_t inFileType)
    : mWish(inWish), mSourceDepth(DepthOfSource(inSource)), mEncoder{inFileType, 0}
{
    if (mWish.mSettings)
        mStored = ReadRecord(*mWish.mSettings);
    StartFormat();
}

void SettingsComposer::StartFormat()
{
    if (!mWish.mFormat.empty())
        mEncoder.mFormat = FormatByName(mWish.mFormat, mEncoder.mFileType);
    else if (mStored && mStored->GetAudioFileTypeID() == mEncoder.mFileType)
        mEncoder.mFormat = mStored->GetFormatID();
    else if (mStored &&
             !appleaudiotoolbox::GetEncodableVariants(mEncoder.mFileType, mStored->GetFormatID())
                  .empty())
        mEncoder.mFormat = mStored->GetFormatID();
    else
        mEncoder.mFormat = DefaultFormat(mEncoder.mFileType);

    mKeepsStoredFormat = mStored && mStored->GetAudioFileTypeID() == mEncoder.mFileType &&
                         mStored->GetFormatID() == mEncoder.mFormat && !mWish.mDepth;
}

ComposedSettings SettingsComposer::Compose(const ExportTarget& inTarget) const
{
    ComposedSettings settings;
    if (mStored)
        settings.mRecord = *mStored;
    if (mWish.mIsChosen)
    {
        settings.mSampleType = SampleType(settings.mRecord);
        return settings;
    }
    settings.mRecord.SetAudioFileTypeID(mEncoder.mFileType);
    if (!mKeepsStoredFormat)
        SetVariant(inTarget, settings);
    // The repair mode "stored" goes back to the stored rate and channels, and "none" changes
    // nothing, so that these have to stay in the text.
    const bool isLeft = mKeepsStoredFormat && mWish.mRepair != RepairMode::kFit;
    if (!isLeft || mWish.mRate || mWish.mChannels)
        FitToAudio(inTarget, settings.mRecord);
    settings.mSampleType = SampleType(settings.mRecord);
    SetBitrate(inTarget, settings);
    return settings;
}

void SettingsComposer::SetVariant(const ExportTarget& inTarget, ComposedSettings& ioSettings) const
{
    const auto depths = EncodableDepths(mEncoder);
    if (mWish.mDepth && !IsDepthIn(depths, *mWish.mDepth))
        throw Impossible("depth " + DepthText(*mWish.mDepth) + " is not possible for " +
                         FormatName(mEncoder.mFormat) + " in " + FileTypeName(mEncoder.mFileType) +
                         " files; possible: " + DepthsText(depths));
    if (mEncoder.mFormat == kAudioFormatLinearPCM)
        SetPCM(ioSettings);
    else
        SetCompressed(ioSettings);
    FitToAudio(inTarget, ioSettings.mRecord);
}

void SettingsComposer::SetPCM(ComposedSettings& ioSettings) const
{
    SampleDepth wanted = mSourceDepth;
    if (mStored && mStored->GetFormatID() == kAudioFormatLinearPCM)
        wanted = DepthOf(mStored->GetStreamBasicDescription());
    if (mWish.mDepth)
    {
        // A width alone leaves the kind to the source, where that has the same width.
        const bool isSourceWidth = mWish.mDepth->mBits == mSourceDepth.mBits;
        wanted = mWish.mDepth->mIsFloat || !isSourceWidth ? *mWish.mDepth : mSourceDepth;
    }
    auto variants = appleaudiotoolbox::GetEncodableVariants(mEncoder.mFileType, mEncoder.mFormat);
    const auto depths = EncodableDepths(mEncoder);
    std::erase_if(variants,
                  [&](const auto& inVariant) { return !IsDepthIn(depths, DepthOf(inVariant)); });
    const auto best = std::min_element(variants.begin(), variants.end(),
                                       [&](const auto& inLeft, const auto& inRight) {
        return Misfit(DepthOf(inLeft), wanted) < Misfit(DepthOf(inRight), wanted);
    });
    if (best == variants.end())
        return;
    ioSettings.mRecord.SetStreamBasicDescription(*best);
    const SampleDepth found = DepthOf(*best);
    if (found.mBits < wanted.mBits)
        ioSettings.mChanges.push_back("depth " + DepthText(wanted) +
                                      " is not available: " + DepthText(found));
}

void SettingsComposer::SetCompressed(ComposedSettings& ioSettings) const
{
    const auto variants =
        appleaudiotoolbox::GetEncodableVariants(mEncoder.mFileType, mEncoder.mFormat);
    CAStreamBasicDescription format;
    format.mFormatID = mEncoder.mFormat;
    if (!variants.empty())
        format = variants.front();
    if (HasDepthInFlags(mEncoder.mFormat))
    {
        if (mWish.mDepth)
            format.mFormatFlags = FlagsOfDepth(mWish.mDepth->mBits);
        else if (mSourceDepth.mBits > 24)
            ioSettings.mChanges.push_back("depth " + DepthText(mSourceDepth) +
                                          " is not available: 24");
    }
    ioSettings.mRecord.SetStreamBasicDescription(format);
}

void SettingsComposer::FitToAudio(const ExportTarget& inTarget,
                                  TarvoATPrivateSettings& ioRecord) const
{
    ioRecord.SetSampleRate(inTarget.mRate);
    ioRecord.SetChannelsPerFrame(inTarget.mChannels);
    if (ioRecord.GetFormatID() != kAudioFormatLinearPCM)
        return;
    const UInt32 frameBytes = (ioRecord.GetBitsPerChannel() + 7) / 8 * inTarget.mChannels;
    ioRecord.SetFramesPerPacket(1);
    ioRecord.SetBytesPerFrame(frameBytes);
    ioRecord.SetBytesPerPacket(frameBytes);
}

std::int32_t SettingsComposer::SampleType(const TarvoATPrivateSettings& inRecord) const
{
    if (inRecord.GetFormatID() == kAudioFormatLinearPCM)
        return SampleTypeFor(inRecord.GetBitsPerChannel());
    const SampleDepth wanted = mWish.mDepth.value_or(mSourceDepth);
    if (HasDepthInFlags(inRecord.GetFormatID()))
    {
        const std::uint32_t most = DepthOfFlags(inRecord.GetFormatFlags());
        const bool isFixed = inRecord.GetFormatFlags() != 0;
        return SampleTypeFor(isFixed ? most : std::min(most, wanted.mBits));
    }
    return SampleTypeFor(wanted.mBits);
}

void SettingsComposer::SetBitrate(const ExportTarget& inTarget, ComposedSettings& ioSettings) const
{
    TarvoATPrivateSettings& record = ioSettings.mRecord;
    const auto modes =
        appleaudiotoolbox::GetEncodableBitrateModes(mEncoder.mFileType, mEncoder.mFormat);
    const std::uint32_t mode = ChooseMode(modes);
    record.SetBitrateMode(mode);
    record.SetVBRQuality(mWish.mQuality.value_or(record.GetVBRQuality()));
    if (modes.empty())
        return SetEstimatedBitrate(inTarget, ioSettings);

    const bool keepsStored = mKeepsStoredFormat && mStored->GetBitrateMode() == mode;
    const std::uint32_t wanted = mWish.mBitrate.value_or(
        keepsStored && mode != kModeVariable ? mStored->GetBitrate()
                                             : kDefaultBitratePerChannel * inTarget.mChannels);
    // A variable rate has no list. The estimate of the size goes by the rate all the same.
    const std::uint32_t listed = mode == kModeVariable ? modes.front() : mode;
    const CAStreamBasicDescription audio = AudioOf(inTarget);
    const auto nearest = NearestBitrate(mEncoder, listed, audio, wanted);
    record.SetBitrate(nearest.value_or(wanted));
    if (!nearest || *nearest == wanted || mode == kModeVariable)
        return;
    if (mWish.mBitrate)
        throw Impossible("bit rate " + BitrateForPeople(wanted) + " is not possible for " +
                         FormatName(mEncoder.mFormat) + " of " + std::to_string(inTarget.mRate) +
                         " Hz and " + std::to_string(inTarget.mChannels) +
                         " channels; possible: " + BitratesText(mEncoder, mode, audio));
    if (keepsStored)
        ioSettings.mChanges.push_back("bit rate " + BitrateForPeople(wanted) +
                                      " is not available: " + BitrateForPeople(*nearest));
}

void SettingsComposer::SetEstimatedBitrate(const ExportTarget& inTarget,
                                           ComposedSettings& ioSettings) const
{
    const UInt32 format = ioSettings.mRecord.GetFormatID();
    const double estimate = appleaudiotoolbox::GetEstimatedBitDepthFromCompressedFormat(format);
    const double cost = BitsOfSample(format);
    const double bits = estimate > 0.0                    ? estimate
                        : cost > 0.0                      ? cost
                        : format == kAudioFormatLinearPCM ? ioSettings.mRecord.GetBitsPerChannel()
                                                          : ioSettings.mSampleType / 10 * 8;
    const double rate = bits * inTarget.mRate * inTarget.mChannels;
    constexpr auto kMost = std::numeric_limits<UInt32>::max();
    ioSettings.mRecord.SetBitrate(rate < kMost ? static_cast<UInt32>(rate) : kMost);
}

std::uint32_t SettingsComposer::ChooseMode(const std::vector<std::uint32_t>& inModes) const
{
    const bool isSet = mWish.mMode || mWish.mBitrate || mWish.mQuality;
    if (inModes.empty())
    {
        if (isSet)
            throw Impossible(FormatName(mEncoder.mFormat) + " has no bit rate to choose");
        return kModeConstant;
    }
    const auto has = [&](std::uint32_t inMode)
    { return std::find(inModes.begin(), inModes.end(), inMode) != inModes.end(); };
    std::optional<std::uint32_t> wanted = mWish.mMode;
    if (mWish.mQuality)
        wanted = kModeVariable;
    if (wanted && !has(*wanted))
        throw Impossible("mode " + ModesText({*wanted}) + " is not possible for " +
                         FormatName(mEncoder.mFormat) + "; possible: " + ModesText(inModes));
    if (wanted)
        return *wanted;
    if (mKeepsStoredFormat && has(mStored->GetBitrateMode()) &&
        !(mWish.mBitrate && mStored->GetBitrateMode() == kModeVariable))
        return mStored->GetBitrateMode();
    return inModes.front();
}

}  // namespace host
