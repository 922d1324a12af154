// The read session of TarvoATInterface: from the reader's answers to the host's objects.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "Tarvo_PlugIns/Common/SDKGlue/TarvoSDKGlueUtilities.h"
#include "Tarvo_PlugIns/TarvoAT/private/HostFormatDescription.h"
#include "Tarvo_PlugIns/TarvoAT/private/RoundedNumbers.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include <kelpcore/utility/ReplaceInString.h>
#include <kelpcore/utility/SmallBlockAllocator.h>

#include <memory>
#include <vector>

namespace tarvo
{
namespace
{

using appleaudiotoolbox::ATReader;
using appleaudiotoolbox::ExtendedErrorInfo;

constexpr char kGeneralOpen[] =
    "$$$/TarvoPlugIns/TarvoAT/GeneralOpen="
    "General error attempting to open file using TarvoAT plug-in.";
constexpr char kGeneralRead[] =
    "$$$/TarvoPlugIns/TarvoAT/GeneralRead="
    "General error attempting to read file using TarvoAT plug-in.";

// Or-ed to the format's flags for a reader that delivers samples of no width.
constexpr std::int32_t kFormatFlagWithoutWidth = 4;

using ChannelBuffers = std::vector<char*, kelpcore::utility::SmallBlockAllocator<char*>>;

// The reader's lines as one line.
UTF16String DescriptionInOneLine(const ATReader& inReader)
{
    UTF16String text = inReader.GetFormatDescription();
    kelpcore::utility::ReplaceAllStringInString(text, u"\n", u", ");
    return GetFormatDescription(text);
}

// Bits per second; what uncompressed audio takes up where the file tells nothing.
std::uint32_t StoredBitrate(const ATReader& inReader)
{
    if (const unsigned int told = inReader.GetBitrate(); told != 0)
        return told;
    const double channels = inReader.GetChannelsPerFrame();
    const double bits = inReader.GetBitsPerChannel();
    const double figure = channels * (bits * inReader.GetSampleRate());
    return static_cast<std::uint32_t>(TruncatedTo<std::int64_t>(figure));
}

struct WidthRow
{
    unsigned int mBytes;  // of one delivered sample of one channel
    AudioSampleType mSampleType;
};

constexpr WidthRow kWidths[] = {
    {0, kTarvoSampleType32}, {1, kTarvoSampleType8},  {2, kTarvoSampleType16},
    {3, kTarvoSampleType24}, {4, kTarvoSampleType32},
};

// False, with nothing told, for a width that has no sample type.
bool TellSampleType(const ATReader& inReader, TarvoFormatInterface& inFormat)
{
    const unsigned int width = inReader.GetNumReadBytesPerFrame();
    for (const WidthRow& row : kWidths)
    {
        if (row.mBytes != width)
            continue;
        inFormat.SetSampleType(row.mSampleType);
        if (width == 0)
            inFormat.SetFormatFlags(inFormat.GetFormatFlags() | kFormatFlagWithoutWidth);
        return true;
    }
    return false;
}

// One label for each channel in order: the file's as far as it has some, left and right for a
// stereo file without any, and none for the rest.
void TellChannelLabels(const ATReader& inReader, TarvoFormatInterface& inFormat)
{
    const kelpmediatypes::AudioChannelDescriptions layout = inReader.GetChannelLayout();
    const unsigned int channels = inReader.GetChannelsPerFrame();
    unsigned int index = 0;
    for (; index < channels && index < layout.size(); ++index)
        inFormat.SetChannelLabel(index, ConvertAudioChannelLabel(layout[index].mLabel));
    if (channels == 2 && layout.empty())
    {
        inFormat.SetChannelLabel(index++, kTarvoChannelLabelLeft);
        inFormat.SetChannelLabel(index++, kTarvoChannelLabelRight);
    }
    for (; index < channels; ++index)
        inFormat.SetChannelLabel(index, kTarvoChannelLabelUnnamed);
}

// The file's own type and stream format travel with the audio as settings text.
void TellSettings(const ATReader& inReader, TarvoFormatInterface& inFormat)
{
    TarvoATPrivateSettings settings(inReader.GetFileTypeID(), inReader.GetStreamBasicDescription());
    settings.SetBitrate(inReader.GetBitrate());
    inFormat.SetPrivateSettings(settings.GetSerialized().c_str());
}

ChannelBuffers CollectChannelBuffers(const ATReader& inReader,
                                     const TarvoReadSamplesInterface& inRequest)
{
    ChannelBuffers buffers(inReader.GetChannelsPerFrame());
    std::int32_t channel = 0;
    for (char*& buffer : buffers)
        buffer = inRequest.GetChannelBuffer(channel++);
    return buffers;
}

// Buffer size and count together tell the width; hosts never ask for 0 frames.
std::int64_t BytesPerSample(const TarvoReadSamplesInterface& inRequest)
{
    const std::int64_t bufferBytes = inRequest.GetBufferSize();
    const std::int64_t frames = inRequest.GetSampleCount();
    return frames == 0 ? 0 : bufferBytes / frames;
}

}  // namespace

std::int32_t TarvoATInterface::OpenForRead(TarvoOpenInterface& inOpen)
{
    const UTF8String path = inOpen.GetFilePath();
    auto reader = std::make_unique<ATReader>();
    ExtendedErrorInfo info;
    if (!reader->Initialize(path, info, false))
        return ReportFailure(kGeneralOpen, info);

    inOpen.SetFormatDescription(DescriptionInOneLine(*reader).c_str());
    inOpen.SetBitrate(StoredBitrate(*reader));
    inOpen.SetFileHandle(reader.get());
    (void)reader.release();  // the handle owns it from here on
    inOpen.SetOpenStatus(0);
    return kTarvoResultSuccess;
}

std::int32_t TarvoATInterface::GetFormat(ATReader& inReader, TarvoFormatInterface& inFormat)
{
    inFormat.SetChannelCount(static_cast<std::int32_t>(inReader.GetChannelsPerFrame()));
    inFormat.SetSampleRate(TruncatedTo<std::int32_t>(inReader.GetSampleRate()));
    if (!TellSampleType(inReader, inFormat))
        return kTarvoResultFailed;

    inFormat.SetSampleCount(
        TruncatedTo<std::int64_t>(inReader.GetSampleRate() * inReader.GetEstimatedDuration()));
    TellChannelLabels(inReader, inFormat);
    TellSettings(inReader, inFormat);
    return kTarvoResultSuccess;
}

std::int32_t TarvoATInterface::ReadSamples(ATReader& inReader, TarvoReadSamplesInterface& inRequest)
{
    auto count = static_cast<std::int32_t>(inRequest.GetSampleCount());
    inRequest.SetSamplesRead(0);  // what the host is left with after a failure
    ChannelBuffers buffers = CollectChannelBuffers(inReader, inRequest);
    const std::int64_t start = inRequest.GetStartSample();
    const auto bytesPerSample = static_cast<unsigned long>(BytesPerSample(inRequest));

    ExtendedErrorInfo info;
    if (!inReader.ReadSamples(start, &count, buffers.data(), bytesPerSample, info))
        return ReportFailure(kGeneralRead, info);

    inRequest.SetSamplesRead(count);
    if (inReader.IsAtEndOfFile())
        inRequest.SetTotalSampleCount(inReader.GetTotalSampleCount());
    return kTarvoResultSuccess;
}

}  // namespace tarvo
