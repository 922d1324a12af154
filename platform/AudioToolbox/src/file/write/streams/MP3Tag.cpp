#include "file/write/streams/MP3Tag.h"

#include "file/streams/MPEGHeader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace audiotoolbox::streams
{
namespace
{

constexpr std::size_t kHeaderBytes = 4;
constexpr std::size_t kTableEntries = 100;
constexpr std::size_t kXingBytes = 4 + 4 + 4 + 4 + kTableEntries + 4;
constexpr std::size_t kExtensionBytes = 36;

constexpr UInt32 kHasPackets = 1;
constexpr UInt32 kHasBytes = 2;
constexpr UInt32 kHasTable = 4;
constexpr UInt32 kHasQuality = 8;

// Readers trust the delays of encoders that they know; this is the one of the packets.
constexpr char kEncoder[] = "LAME3.100";
constexpr std::size_t kEncoderBytes = 9;

// Methods of rate control.
constexpr UInt8 kConstantRate = 1;
constexpr UInt8 kAverageRate = 2;
constexpr UInt8 kVariableRate = 4;

constexpr UInt32 kSampleRates[] = {44100, 48000, 32000};
constexpr UInt32 kVersions[] = {3, 2, 0};  // by halvings of the rate
constexpr UInt32 kBitRates = 15;           // by index; the first is free format

// Stereo mode, mode extension, copyright, original, emphasis.
constexpr UInt32 kFourthByte = 0xFF;
constexpr UInt32 kModeExtension = 0x30;

constexpr std::array<UInt16, 256> MakeChecksumTable()
{
    std::array<UInt16, 256> table{};
    for (unsigned i = 0; i < 256; ++i)
    {
        unsigned value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = (value >> 1) ^ ((value & 1) != 0 ? 0xA001u : 0u);
        table[i] = static_cast<UInt16>(value);
    }
    return table;
}
constexpr auto kChecksums = MakeChecksumTable();

std::array<UInt8, 4> BytesOf(UInt32 inHeader)
{
    return {static_cast<UInt8>(inHeader >> 24), static_cast<UInt8>(inHeader >> 16),
            static_cast<UInt8>(inHeader >> 8), static_cast<UInt8>(inHeader)};
}

std::size_t TagOffset(const MPEGHeader& inHeader)
{
    const bool isMono = inHeader.mChannels == 1;
    const std::size_t sideInfo = inHeader.mHalvings == 0 ? (isMono ? 17 : 32) : (isMono ? 9 : 17);
    return kHeaderBytes + sideInfo;
}

// Fills the frame from the tag's place on.
class TagFields
{
public:
    TagFields(std::vector<UInt8>& ioFrame, std::size_t inPlace) : mFrame(ioFrame), mPlace(inPlace)
    {
    }

    void Put(UInt64 inValue, unsigned inBytes)
    {
        while (inBytes-- > 0)
            mFrame[mPlace++] = static_cast<UInt8>(inValue >> (8 * inBytes));
    }
    void PutText(const char* inText, std::size_t inBytes)
    {
        std::memcpy(mFrame.data() + mPlace, inText, inBytes);
        mPlace += inBytes;
    }
    std::size_t Place() const { return mPlace; }

private:
    std::vector<UInt8>& mFrame;
    std::size_t mPlace;
};

// For each hundredth of the length, where it lies, as 256ths of the bytes.
void PutTable(SInt64 inTagBytes, SInt64 inAllBytes, const PacketPlaces& inPlaces,
              TagFields& ioFields)
{
    for (std::size_t i = 0; i < kTableEntries; ++i)
    {
        const UInt64 packets = inPlaces.PacketCount();
        const UInt64 packet = packets / kTableEntries * i + packets % kTableEntries * i / 100;
        const SInt64 position = packets == 0 ? 0 : inTagBytes + inPlaces.Before(packet).mPosition;
        ioFields.Put(static_cast<UInt64>(std::min<SInt64>(255, position * 256 / inAllBytes)), 1);
    }
}

UInt8 MethodOf(const MP3TagFacts& inFacts)
{
    if (inFacts.mIsConstantRate)
        return kConstantRate;
    return inFacts.mBitRate > 0 ? kAverageRate : kVariableRate;
}

UInt8 MiscellanyOf(const MPEGHeader& inHeader, UInt32 inHeaderWord)
{
    const UInt32 rateClass = inHeader.mSampleRate <= 32000   ? 0
                             : inHeader.mSampleRate == 44100 ? 1
                                                             : 2;
    const UInt32 mode = inHeaderWord >> 6 & 3;
    constexpr UInt32 kStereoModes[] = {1, 3, 2, 0};  // stereo, joint, dual, mono
    return static_cast<UInt8>(rateClass << 6 | kStereoModes[mode] << 2);
}

void PutExtension(UInt32 inHeaderWord, const MPEGHeader& inHeader, const MP3TagFacts& inFacts,
                  UInt64 inAllBytes, TagFields& ioFields)
{
    ioFields.PutText(kEncoder, kEncoderBytes);
    ioFields.Put(MethodOf(inFacts), 1);
    ioFields.Put(0, 1);          // low pass: not known
    ioFields.Put(0, 4 + 2 + 2);  // peak, gains: not known
    ioFields.Put(0, 1);          // psychoacoustics: not known
    ioFields.Put(std::min(inFacts.mBitRate / 1000, 255u), 1);
    ioFields.Put(inFacts.mDelay << 12 | inFacts.mPadding, 3);
    ioFields.Put(MiscellanyOf(inHeader, inHeaderWord), 1);
    ioFields.Put(0, 1 + 2);  // gain, preset
    ioFields.Put(inAllBytes, 4);
    ioFields.Put(inFacts.mAudioChecksum, 2);
}

}  // namespace

UInt32 MP3TagHeader(UInt32 inRate, UInt32 inChannels, UInt32 inBitRate)
{
    if (inChannels < 1 || inChannels > 2)
        return 0;
    for (UInt32 halvings = 0; halvings < 3; ++halvings)
        for (UInt32 rateIndex = 0; rateIndex < 3; ++rateIndex)
            for (UInt32 bitRateIndex = 1; bitRateIndex < kBitRates; ++bitRateIndex)
            {
                // Sync, layer 3, no checksum.
                const UInt32 word = 0xFFE30000 | kVersions[halvings] << 19 | bitRateIndex << 12 |
                                    rateIndex << 10 | (inChannels == 1 ? 0xC0u : 0x40u);
                MPEGHeader header;
                if (kSampleRates[rateIndex] >> halvings == inRate &&
                    MPEGSyntax::Parse(BytesOf(word).data(), header) &&
                    header.mBitRate >= inBitRate &&
                    header.mByteCount >= TagOffset(header) + kXingBytes + kExtensionBytes)
                    return word;
            }
    return 0;
}

UInt32 LikeFirstHeader(UInt32 inTagHeader, std::span<const UInt8> inFirstPacket)
{
    return (inTagHeader & ~kFourthByte) | (inFirstPacket[3] & ~kModeExtension);
}

std::vector<UInt8> MakeMP3TagFrame(UInt32 inHeader, const MP3TagFacts& inFacts,
                                   const PacketPlaces& inPlaces)
{
    const auto headerBytes = BytesOf(inHeader);
    MPEGHeader header;
    if (!MPEGSyntax::Parse(headerBytes.data(), header))
        return {};
    std::vector<UInt8> frame(header.mByteCount);
    std::copy(headerBytes.begin(), headerBytes.end(), frame.begin());

    const SInt64 allBytes = inFacts.mByteCount + header.mByteCount;
    const UInt64 stated =
        std::min<UInt64>(static_cast<UInt64>(allBytes), std::numeric_limits<UInt32>::max());
    // A count that does not fit is left out.
    const bool hasBytes = stated == static_cast<UInt64>(allBytes);
    TagFields fields(frame, TagOffset(header));
    fields.PutText(inFacts.mIsConstantRate ? "Info" : "Xing", 4);
    fields.Put(kHasPackets | (hasBytes ? kHasBytes : 0) | kHasTable | kHasQuality, 4);
    fields.Put(inPlaces.PacketCount(), 4);
    if (hasBytes)
        fields.Put(stated, 4);
    PutTable(header.mByteCount, allBytes, inPlaces, fields);
    fields.Put(0, 4);  // quality: not known
    PutExtension(inHeader, header, inFacts, stated, fields);
    fields.Put(AddToMP3Checksum(0, std::span(frame).first(fields.Place())), 2);
    return frame;
}

UInt16 AddToMP3Checksum(UInt16 inChecksum, std::span<const UInt8> inBytes)
{
    unsigned checksum = inChecksum;
    for (const UInt8 byte : inBytes)
        checksum = (checksum >> 8) ^ kChecksums[(checksum ^ byte) & 0xFF];
    return static_cast<UInt16>(checksum);
}

}  // namespace audiotoolbox::streams
