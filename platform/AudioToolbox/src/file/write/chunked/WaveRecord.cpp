#include "file/write/chunked/WaveRecord.h"

#include "file/Endian.h"
#include "file/wave/WaveFormat.h"
#include "file/write/chunked/HeaderBytes.h"
#include "file/write/chunked/RequestChecks.h"
#include "file/write/chunked/SpeakerMask.h"

#include <algorithm>
#include <limits>

namespace audiotoolbox
{
namespace
{

constexpr UInt16 kTagPCM = 0x0001;
constexpr UInt16 kTagFloat = 0x0003;
constexpr UInt16 kTagExtensible = 0xFFFE;

constexpr UInt8 kSubFormatTail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                      0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
constexpr UInt32 kExtensibleExtraBytes = 22;
constexpr UInt32 kMaxPlainBits = 16;
constexpr UInt32 kMaxPlainChannels = 2;
constexpr AudioChannelBitmap kMonoMask = 0x4;
constexpr AudioChannelBitmap kStereoMask = 0x3;

using Extra = std::vector<UInt8> (*)(const AudioStreamBasicDescription& inFormat,
                                     std::span<const UInt8> inCookie);

std::vector<UInt8> SamplesPerBlock(const AudioStreamBasicDescription& inFormat,
                                   std::span<const UInt8>)
{
    return HeaderBytes().Little(inFormat.mFramesPerPacket, 2).Get();
}

std::vector<UInt8> Coefficients(const AudioStreamBasicDescription& inFormat,
                                std::span<const UInt8> inCookie)
{
    constexpr int kPairs[7][2] = {{256, 0}, {512, -256}, {0, 0},     {192, 64},
                                  {240, 0}, {460, -208}, {392, -232}};
    // The samples per block, the number of pairs, and the pairs.
    if (inCookie.size() >= 4 && inCookie.size() >= 4u + 4u * ReadLE16(inCookie.data() + 2))
        return HeaderBytes().Raw(inCookie).Zeros(inCookie.size() % 2).Get();
    HeaderBytes extra;
    extra.Little(inFormat.mFramesPerPacket, 2).Little(std::size(kPairs), 2);
    for (const auto& pair : kPairs)
        extra.Little(static_cast<UInt64>(pair[0]), 2).Little(static_cast<UInt64>(pair[1]), 2);
    return extra.Get();
}

struct CodecRow
{
    AudioFormatID mFormat;
    UInt16 mTag;
    UInt16 mBits;
    Extra mExtra;  // null: none
};

constexpr CodecRow kCodecs[] = {
    {kAudioFormatALaw, 0x0006, 8, nullptr},
    {kAudioFormatULaw, 0x0007, 8, nullptr},
    {kAudioFormatMicrosoftADPCM, 0x0002, 4, &Coefficients},
    {kAudioFormatDVIIntelIMA, 0x0011, 4, &SamplesPerBlock},
    {kAudioFormatMicrosoftGSM, 0x0031, 0, &SamplesPerBlock},
};

CodecRow RowOf(const AudioStreamBasicDescription& inFormat)
{
    for (const CodecRow& row : kCodecs)
        if (row.mFormat == inFormat.mFormatID)
            return row;
    const bool isFloat = (inFormat.mFormatFlags & kAudioFormatFlagIsFloat) != 0;
    return {kAudioFormatLinearPCM, isFloat ? kTagFloat : kTagPCM,
            static_cast<UInt16>(inFormat.mBitsPerChannel), nullptr};
}

// A common reader of W64 takes every extensible record there for integers, so that anything else
// has one only where it tells the speakers.
bool NeedsExtensible(const WriteRequest& inRequest, const CodecRow& inRow,
                     AudioChannelBitmap inMask)
{
    if (inRow.mExtra != nullptr)
        return false;
    const UInt32 channels = inRequest.mFormat.mChannelsPerFrame;
    const AudioChannelBitmap plain = channels == 1 ? kMonoMask : kStereoMask;
    if (inMask != 0 && inMask != plain)
        return true;
    const bool isInteger = inRow.mTag == kTagPCM;
    if (!isInteger && inRequest.mType == kAudioFileWave64Type)
        return false;
    return channels > kMaxPlainChannels || (isInteger && inRow.mBits > kMaxPlainBits);
}

UInt32 BytesPerSecond(const AudioStreamBasicDescription& inFormat)
{
    const double bytes =
        inFormat.mSampleRate * inFormat.mBytesPerPacket / inFormat.mFramesPerPacket;
    return static_cast<UInt32>(std::min<double>(bytes + 0.5, std::numeric_limits<UInt32>::max()));
}

HeaderBytes StartRecord(const AudioStreamBasicDescription& inFormat, UInt16 inTag, UInt16 inBits)
{
    HeaderBytes record;
    record.Little(inTag, 2).Little(inFormat.mChannelsPerFrame, 2);
    record.Little(WholeRate(inFormat.mSampleRate), 4).Little(BytesPerSecond(inFormat), 4);
    return record.Little(inFormat.mBytesPerPacket, 2).Little(inBits, 2);
}

std::vector<UInt8> MakeExtensible(const AudioStreamBasicDescription& inFormat,
                                  const CodecRow& inRow, AudioChannelBitmap inMask)
{
    HeaderBytes record = StartRecord(inFormat, kTagExtensible, inRow.mBits);
    record.Little(kExtensibleExtraBytes, 2).Little(inRow.mBits, 2).Little(inMask, 4);
    return record.Little(inRow.mTag, 2).Raw(kSubFormatTail).Get();
}

}  // namespace

std::vector<UInt8> MakeWaveRecord(const WriteRequest& inRequest, std::span<const UInt8> inCookie)
{
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    const CodecRow row = RowOf(format);
    const AudioChannelBitmap mask = SpeakerMaskOf(KnownLabels(inRequest));
    if (NeedsExtensible(inRequest, row, mask))
        return MakeExtensible(format, row, mask);
    HeaderBytes record = StartRecord(format, row.mTag, row.mBits);
    if (row.mTag == kTagPCM)
        return record.Get();
    const std::vector<UInt8> extra =
        row.mExtra != nullptr ? row.mExtra(format, inCookie) : std::vector<UInt8>();
    return record.Little(extra.size(), 2).Raw(extra).Get();
}

bool IsWaveRequest(const WriteRequest& inRequest)
{
    constexpr UInt32 kMaxBlockBytes = std::numeric_limits<UInt16>::max();
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    if (!IsRequestInOrder(inRequest) || format.mBytesPerPacket > kMaxBlockBytes)
        return false;
    FileFacts facts;
    return DescribeWave(MakeWaveRecord(inRequest, {}), facts) == noErr &&
           facts.mDataFormat.mBytesPerPacket == format.mBytesPerPacket &&
           facts.mDataFormat.mFramesPerPacket == format.mFramesPerPacket;
}

bool HasFact(const AudioStreamBasicDescription& inFormat)
{
    return RowOf(inFormat).mTag != kTagPCM;
}

}  // namespace audiotoolbox
