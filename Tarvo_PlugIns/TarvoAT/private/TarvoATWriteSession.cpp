// The write session of TarvoATInterface: from the host's planar blocks to the writer's frames.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "Tarvo_PlugIns/Common/SDKGlue/TarvoSDKGlueUtilities.h"
#include "Tarvo_PlugIns/TarvoAT/private/HostFormatDescription.h"
#include "Tarvo_PlugIns/TarvoAT/private/Interleave.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "appleaudiotoolbox/ATWriter.h"

#include <kelpcore/config/Localizer.h>
#include <kelpcore/utility/ReplaceInString.h>
#include <kelpcore/utility/StringConversion.h>

#include <limits>
#include <memory>

namespace tarvo
{
namespace
{

using appleaudiotoolbox::ATWriter;
using appleaudiotoolbox::ExtendedErrorInfo;

constexpr char kWriteStartGeneral[] =
    "$$$/TarvoPlugIns/TarvoAT/WriteStartGeneral="
    "Error creating file @0.  The destination may be full or no longer available.";
constexpr char kWriteSamplesEncoder[] =
    "$$$/TarvoPlugIns/TarvoAT/WriteSamplesEncoder=Error writing samples to the file";
constexpr char kFinishWriteGeneralError[] =
    "$$$/TarvoPlugIns/TarvoAT/FinishWriteGeneralError=Error closing the file.";

constexpr std::int64_t kLargestBlock = std::numeric_limits<std::int32_t>::max();  // bytes
constexpr unsigned int kWidestSample = 4;                                         // bytes

bool StartWriter(ATWriter& inWriter, const UTF16String& inPath,
                 const TarvoATPrivateSettings& inSettings, const TarvoFormatInterface& inFormat,
                 int inBytesPerSample, ExtendedErrorInfo& outInfo)
{
    const auto channels = GetAudioChannelLayout<kelpmediatypes::AudioChannelDescriptions>(inFormat);
    return inWriter.Initialize(kelpcore::utility::UTF16to8(inPath), inSettings.GetAudioFileTypeID(),
                               inSettings.GetStreamBasicDescription(), channels,
                               static_cast<unsigned int>(inBytesPerSample),
                               inFormat.GetSampleCount(), outInfo, inSettings.GetBitrateMode(),
                               inSettings.GetBitrate(), inSettings.GetVBRQuality());
}

// Bytes of a block; false for one that is too large for a single write.
bool MeasureBlock(std::int64_t inFrames, std::int64_t inFrameBytes, std::int64_t& outBytes)
{
    return inFrames >= 0 && !__builtin_mul_overflow(inFrames, inFrameBytes, &outBytes) &&
           outBytes <= kLargestBlock;
}

// Joins the channels one after the other, since a host may hand out the same memory for each of
// them. False as soon as the session turns out to have a width that no host delivers.
bool JoinChannels(const ATWriter& inWriter, const TarvoWriteSamplesInterface& inBlock,
                  std::size_t inFrames, char* outBytes)
{
    const auto channels = static_cast<std::size_t>(inWriter.GetChannelsPerFrame());
    for (std::size_t channel = 0; channel < channels; ++channel)
    {
        const char* const samples = inBlock.GetChannelBuffer(static_cast<std::int64_t>(channel));
        const unsigned int width = inWriter.GetNumWriteBytesPerFrame();
        if (width == 0 || width > kWidestSample)
            return false;
        InterleaveChannel(channel, samples, {channels, width, inFrames, outBytes});
    }
    return true;
}

}  // namespace

std::int32_t TarvoATInterface::WriteStart(TarvoWriteStartInterface& inStart, ATWriter*& outWriter)
{
    const UTF16String path = inStart.GetFilePath();
    const TarvoFormatInterface& format = *inStart.GetFormatInterface();
    outWriter = nullptr;
    TarvoATPrivateSettings settings;
    // Text that cannot be read leaves the defaults in place.
    (void)settings.InitializeFromSerialized(format.GetPrivateSettings());

    const int bytesPerSample =
        ConvertToDSPSampleType(static_cast<AudioSampleType>(format.GetSampleType()));
    if (bytesPerSample == 0)
        return kTarvoResultUnsupportedFormat;

    auto writer = std::make_unique<ATWriter>();
    ExtendedErrorInfo info;
    if (!StartWriter(*writer, path, settings, format, bytesPerSample, info))
    {
        const UTF16String text = kelpcore::config::Localizer::Get().Translate(kWriteStartGeneral);
        return ReportFailure(kelpcore::utility::ReplaceInString(text, path), info);
    }
    inStart.SetFormatDescription(
        GetFormatDescription(settings.GetExtendedFormatDescription()).c_str());
    outWriter = writer.release();  // the handle owns it from here on
    return kTarvoResultSuccess;
}

std::int32_t TarvoATInterface::WriteSamples(ATWriter& inWriter, TarvoWriteSamplesInterface& inBlock)
{
    const int channels = inWriter.GetChannelsPerFrame();
    const std::int64_t width = inWriter.GetNumWriteBytesPerFrame();
    const std::int64_t frames = inBlock.GetSampleCount();
    const std::int64_t frameBytes = width * channels;
    std::int64_t bytes = 0;
    if (channels < 1 || !MeasureBlock(frames, frameBytes, bytes))
        return kTarvoResultBadArgument;

    const auto block = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(bytes));
    if (!JoinChannels(inWriter, inBlock, static_cast<std::size_t>(frames), block.get()))
        return kTarvoResultUnsupportedFormat;

    ExtendedErrorInfo info;
    // The writer appends wherever the block says it belongs, so a position may wrap.
    const auto position =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(inBlock.GetStartSample()) *
                                  static_cast<std::uint64_t>(frameBytes));
    if (!inWriter.WriteSampleBytes(position, static_cast<int>(bytes), block.get(), info))
        return ReportFailure(kWriteSamplesEncoder, info);
    return kTarvoResultSuccess;
}

std::int32_t TarvoATInterface::FinishWrite(ATWriter& inWriter, bool inFlag,
                                           const TarvoFormatInterface& /*inFormat*/)
{
    ExtendedErrorInfo info;
    if (!inWriter.FinishWrite(inFlag, nullptr, 0, info))
        return ReportFailure(kFinishWriteGeneralError, info);
    delete &inWriter;
    return kTarvoResultSuccess;
}

}  // namespace tarvo
