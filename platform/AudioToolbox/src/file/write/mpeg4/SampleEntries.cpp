#include "file/write/mpeg4/SampleEntries.h"

#include "file/write/mpeg4/DolbyBoxes.h"

#include <algorithm>
#include <cmath>

namespace audiotoolbox::mpeg4writer
{
namespace
{

using Bytes = std::span<const UInt8>;

constexpr UInt32 Code(char inA, char inB, char inC, char inD)
{
    return CA_FOUR_CHAR_CODE(inA, inB, inC, inD);
}

// One byte of length would do for descriptors as short as these; readers are used to four.
void PutDescriptorHead(UInt8 inTag, std::size_t inBytes, BoxBuilder& ioBoxes)
{
    ioBoxes.PutU8(inTag);
    for (int shift = 21; shift > 0; shift -= 7)
        ioBoxes.PutU8(static_cast<UInt8>(0x80u | (inBytes >> shift & 0x7Fu)));
    ioBoxes.PutU8(static_cast<UInt8>(inBytes & 0x7Fu));
}

void PutESDescriptor(UInt8 inObjectType, const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    constexpr std::size_t kHead = 5;
    constexpr std::size_t kConfigBytes = 13;
    constexpr UInt8 kAudioStream = 0x05 << 2 | 1;
    constexpr UInt8 kFilePreset = 2;
    const std::size_t info = inFacts.mCookie.empty() ? 0 : kHead + inFacts.mCookie.size();
    const std::size_t config = kHead + kConfigBytes + info;
    ioBoxes.BeginFull(Code('e', 's', 'd', 's'), 0);
    PutDescriptorHead(0x03, 3 + config + kHead + 1, ioBoxes);
    ioBoxes.PutU16(0);  // within a file the track's number stands for the stream's
    ioBoxes.PutU8(0);
    PutDescriptorHead(0x04, kConfigBytes + info, ioBoxes);
    ioBoxes.PutU8(inObjectType);
    ioBoxes.PutU8(kAudioStream);
    ioBoxes.PutU8(static_cast<UInt8>(inFacts.mLargestPacket >> 16));  // 24 bits of buffer size
    ioBoxes.PutU16(static_cast<UInt16>(inFacts.mLargestPacket));
    ioBoxes.PutU32(inFacts.mPeakBitRate);
    ioBoxes.PutU32(inFacts.mAverageBitRate);
    if (info > 0)
    {
        PutDescriptorHead(0x05, inFacts.mCookie.size(), ioBoxes);
        ioBoxes.PutBytes(inFacts.mCookie);
    }
    PutDescriptorHead(0x06, 1, ioBoxes);
    ioBoxes.PutU8(kFilePreset);
    ioBoxes.End();
}

void PutAAC(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    PutESDescriptor(0x40, inFacts, ioBoxes);
}

// Layers of MPEG-1, or of MPEG-2 at its lower rates.
void PutMP3(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    PutESDescriptor(inFacts.mFormat.mSampleRate < 32000.0 ? 0x69 : 0x6B, inFacts, ioBoxes);
}

// ALAC's own names for the orders in which it codes channels, by their count.
constexpr UInt32 kALACLayouts[] = {
    0,
    0,
    0,
    kAudioChannelLayoutTag_MPEG_3_0_B,
    kAudioChannelLayoutTag_MPEG_4_0_B,
    kAudioChannelLayoutTag_MPEG_5_0_D,
    kAudioChannelLayoutTag_MPEG_5_1_D,
    kAudioChannelLayoutTag_AAC_6_1,
    kAudioChannelLayoutTag_MPEG_7_1_B,
};

void PutALAC(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    const UInt32 channels = inFacts.mFormat.mChannelsPerFrame;
    ioBoxes.BeginFull(kAudioFormatAppleLossless, 0);
    ioBoxes.PutBytes(inFacts.mCookie);
    if (channels > 2 && channels < std::size(kALACLayouts))
    {
        ioBoxes.BeginFull(Code('c', 'h', 'a', 'n'), 0);
        ioBoxes.PutU32(kALACLayouts[channels]);
        ioBoxes.PutZeros(8);  // no bitmap, no descriptions
        ioBoxes.End();
    }
    ioBoxes.End();
}

void PutFLAC(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    constexpr UInt32 kLastBlock = 0x80000000;
    ioBoxes.BeginFull(Code('d', 'f', 'L', 'a'), 0);
    ioBoxes.PutU32(kLastBlock | static_cast<UInt32>(inFacts.mCookie.size()));
    ioBoxes.PutBytes(inFacts.mCookie);
    ioBoxes.End();
}

void PutSwapped(Bytes inBytes, BoxBuilder& ioBoxes)
{
    for (std::size_t i = inBytes.size(); i > 0; --i)
        ioBoxes.PutU8(inBytes[i - 1]);
}

// The box is the codec's own head (RFC 7845) in the other byte order, without its mark.
void PutOpus(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    const Bytes head(inFacts.mCookie);
    ioBoxes.Begin(Code('d', 'O', 'p', 's'));
    ioBoxes.PutU8(0);  // version
    ioBoxes.PutU8(head[9]);
    PutSwapped(head.subspan(10, 2), ioBoxes);  // pre-skip
    PutSwapped(head.subspan(12, 4), ioBoxes);  // rate of the source
    PutSwapped(head.subspan(16, 2), ioBoxes);  // gain
    ioBoxes.PutBytes(head.subspan(18));
    ioBoxes.End();
}

// Lossy formats have no depth; this is what the field holds then.
UInt32 UsualDepth(const EntryFacts&)
{
    return 16;
}

// The depth stands in ALAC's configuration, and across two bytes of FLAC's.
UInt32 DepthOfALAC(const EntryFacts& inFacts)
{
    return inFacts.mCookie[5];
}

UInt32 DepthOfFLAC(const EntryFacts& inFacts)
{
    return ((inFacts.mCookie[12] & 1u) << 4 | inFacts.mCookie[13] >> 4) + 1;
}

struct EntryRow
{
    AudioFormatID mFormat;
    UInt32 mEntryType;
    void (*mPutCodecBox)(const EntryFacts&, BoxBuilder&);
    UInt32 (*mDepth)(const EntryFacts&);
    bool mHalvesRate;    // a rate beyond the field stands there halved; else as 0, unknown
    UInt32 mRollFrames;  // before a decoder's output is right
};

// clang-format off
constexpr EntryRow kEntries[] = {
    {kAudioFormatMPEGLayer3,    Code('m', 'p', '4', 'a'), &PutMP3,  &UsualDepth, false, 0},
    {kAudioFormatMPEG4AAC,      Code('m', 'p', '4', 'a'), &PutAAC,  &UsualDepth, false, 1024},
    {kAudioFormatAC3,           Code('a', 'c', '-', '3'), &PutAC3,  &UsualDepth, false, 0},
    {kAudioFormatAppleLossless, Code('a', 'l', 'a', 'c'), &PutALAC, &DepthOfALAC,  false, 0},
    {kAudioFormatEnhancedAC3,   Code('e', 'c', '-', '3'), &PutEAC3, &UsualDepth, false, 0},
    {kAudioFormatFLAC,          Code('f', 'L', 'a', 'C'), &PutFLAC, &DepthOfFLAC,  true,  0},
    {kAudioFormatOpus,          Code('O', 'p', 'u', 's'), &PutOpus, &UsualDepth, false, 3840},
};
// clang-format on

const EntryRow* FindRow(AudioFormatID inFormat)
{
    for (const EntryRow& row : kEntries)
        if (row.mFormat == inFormat)
            return &row;
    return nullptr;
}

// The field has 16 bits of whole hertz. Beyond, the codec's own record and the track's timescale
// tell the rate.
UInt16 RateField(const EntryRow& inRow, double inRate)
{
    constexpr UInt32 kMost = 0xFFFF;
    UInt32 rate = static_cast<UInt32>(inRate);
    while (inRow.mHalvesRate && rate > kMost && rate % 2 == 0)
        rate /= 2;
    return static_cast<UInt16>(rate > kMost ? 0 : rate);
}

}  // namespace

void PutSampleEntry(const EntryFacts& inFacts, BoxBuilder& ioBoxes)
{
    const EntryRow* row = FindRow(inFacts.mFormat.mFormatID);
    if (row == nullptr)
        return;
    ioBoxes.Begin(row->mEntryType);
    ioBoxes.PutZeros(6);
    ioBoxes.PutU16(1);  // the data reference
    ioBoxes.PutZeros(8);
    ioBoxes.PutU16(static_cast<UInt16>(inFacts.mFormat.mChannelsPerFrame));
    ioBoxes.PutU16(static_cast<UInt16>(row->mDepth(inFacts)));
    ioBoxes.PutZeros(4);
    ioBoxes.PutU16(RateField(*row, inFacts.mFormat.mSampleRate));
    ioBoxes.PutU16(0);  // fraction of a hertz
    row->mPutCodecBox(inFacts, ioBoxes);
    ioBoxes.End();
}

UInt32 RollPackets(const AudioStreamBasicDescription& inFormat)
{
    const EntryRow* row = FindRow(inFormat.mFormatID);
    const UInt32 frames = row != nullptr ? row->mRollFrames : 0;
    return (frames + inFormat.mFramesPerPacket - 1) / inFormat.mFramesPerPacket;
}

}  // namespace audiotoolbox::mpeg4writer
