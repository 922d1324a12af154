// The cookies of Core Audio Format files, brought into the forms of decoders.

#include "file/AACConfig.h"
#include "file/ChannelLayouts.h"
#include "file/Endian.h"
#include "file/caf/CAFFormat.h"

#include <algorithm>
#include <cstring>

namespace audiotoolbox
{
namespace
{

constexpr std::size_t kLosslessConfigBytes = 24;
constexpr UInt8 kLosslessBoxHead[12] = {0, 0, 0, 36, 'a', 'l', 'a', 'c', 0, 0, 0, 0};
constexpr std::size_t kStreamInfoBytes = 34;

bool HasCodeAt(std::span<const UInt8> inBytes, std::size_t inPosition, FourCharCode inCode)
{
    return inBytes.size() >= inPosition + 4 && ReadBE32(inBytes.data() + inPosition) == inCode;
}

// The part of inBytes that starts there; empty when it is not all there.
std::span<const UInt8> Part(std::span<const UInt8> inBytes, std::size_t inPosition,
                            std::size_t inCount)
{
    if (inBytes.size() < inPosition + inCount)
        return {};
    return inBytes.subspan(inPosition, inCount);
}

// The configuration may stand alone, in its box, or in its box behind a `frma` box.
std::span<const UInt8> LosslessConfig(std::span<const UInt8> inCookie)
{
    constexpr FourCharCode kOriginal = CA_FOUR_CHAR_CODE('f', 'r', 'm', 'a');
    const std::size_t box = HasCodeAt(inCookie, 4, kOriginal) ? 12 : 0;
    const bool isBoxed = HasCodeAt(inCookie, box + 4, kAudioFormatAppleLossless);
    return Part(inCookie, isBoxed ? box + sizeof(kLosslessBoxHead) : 0, kLosslessConfigBytes);
}

// Stream info may stand alone, behind its block header, behind the stream's magic, or in a box.
std::span<const UInt8> StreamInfo(std::span<const UInt8> inCookie)
{
    std::size_t position = 0;
    if (HasCodeAt(inCookie, 0, CA_FOUR_CHAR_CODE('f', 'L', 'a', 'C')))
        position = 8;
    else if (HasCodeAt(inCookie, 4, CA_FOUR_CHAR_CODE('d', 'f', 'L', 'a')))
        position = 16;
    else if (inCookie.size() >= 4 + kStreamInfoBytes && (inCookie[0] & 0x7F) == 0 &&
             ReadBE32(inCookie.data()) << 8 == kStreamInfoBytes << 8)
        position = 4;
    return Part(inCookie, position, kStreamInfoBytes);
}

void SetDepth(UInt32 inBits, FileFacts& ioFacts)
{
    struct DepthRow
    {
        UInt32 mBits;
        AudioFormatFlags mFlags;
    };
    constexpr DepthRow kDepths[] = {
        {16, kAppleLosslessFormatFlag_16BitSourceData},
        {20, kAppleLosslessFormatFlag_20BitSourceData},
        {24, kAppleLosslessFormatFlag_24BitSourceData},
        {32, kAppleLosslessFormatFlag_32BitSourceData},
    };
    for (const DepthRow& row : kDepths)
        if (row.mBits == inBits)
            ioFacts.mDataFormat.mFormatFlags = row.mFlags;
}

// The decoder puts more than two channels into an order of its own, whatever the file says.
void SetDecodedOrder(std::span<const AudioChannelBitmap, 8> inBitmaps, FileFacts& ioFacts)
{
    const UInt32 channels = ioFacts.mDataFormat.mChannelsPerFrame;
    if (channels > 2 && channels <= inBitmaps.size())
        ioFacts.mChannelLayout = LayoutOfBitmap(inBitmaps[channels - 1]);
}

OSStatus ApplyLossless(std::span<const UInt8> inCookie, FileFacts& ioFacts)
{
    constexpr AudioChannelBitmap kOrders[8] = {0x4, 0x3, 0x7, 0x107, 0x37, 0x3F, 0x13F, 0xFF};
    const std::span<const UInt8> config = LosslessConfig(inCookie);
    if (config.empty())
        return kAudioFileInvalidFileError;
    ioFacts.mCookie.assign(std::begin(kLosslessBoxHead), std::end(kLosslessBoxHead));
    ioFacts.mCookie.insert(ioFacts.mCookie.end(), config.begin(), config.end());
    if (ioFacts.mDataFormat.mFormatFlags == 0)
        SetDepth(config[5], ioFacts);
    SetDecodedOrder(kOrders, ioFacts);
    return noErr;
}

OSStatus ApplyFLAC(std::span<const UInt8> inCookie, FileFacts& ioFacts)
{
    constexpr AudioChannelBitmap kOrders[8] = {0x4, 0x3, 0x7, 0x33, 0x37, 0x3F, 0x70F, 0x63F};
    const std::span<const UInt8> info = StreamInfo(inCookie);
    ioFacts.mCookie.assign(info.begin(), info.end());
    if (ioFacts.mDataFormat.mFormatFlags == 0 && !info.empty())
        SetDepth((((info[12] & 1u) << 4) | (info[13] >> 4)) + 1, ioFacts);
    SetDecodedOrder(kOrders, ioFacts);
    return noErr;
}

OSStatus ApplyAAC(std::span<const UInt8> inCookie, FileFacts& ioFacts)
{
    std::vector<UInt8> bytes = AudioSpecificConfigOfCookie(inCookie);
    AACConfig config;
    if (bytes.empty() || !ParseAudioSpecificConfig(bytes, config))
        return kAudioFileInvalidFileError;
    // A program config element tells its channels to the decoder only.
    if (config.mChannelCount == 0)
        config.mChannelCount = ioFacts.mDataFormat.mChannelsPerFrame;
    DescribeAAC(config, ioFacts);
    ioFacts.mCookie = std::move(bytes);
    return noErr;
}

// Without its own header the decoder does better on its own.
OSStatus ApplyOpus(std::span<const UInt8> inCookie, FileFacts& ioFacts)
{
    constexpr char kMagic[] = "OpusHead";
    const std::size_t length = sizeof(kMagic) - 1;
    if (inCookie.size() > length && std::memcmp(inCookie.data(), kMagic, length) == 0)
        ioFacts.mCookie.assign(inCookie.begin(), inCookie.end());
    return noErr;
}

OSStatus KeepCookie(std::span<const UInt8> inCookie, FileFacts& ioFacts)
{
    ioFacts.mCookie.assign(inCookie.begin(), inCookie.end());
    return noErr;
}

struct CookieRow
{
    AudioFormatID mFormat;
    OSStatus (*mApply)(std::span<const UInt8> inCookie, FileFacts& ioFacts);
};

constexpr CookieRow kCookies[] = {
    {kAudioFormatMPEG4AAC, &ApplyAAC},       {kAudioFormatMPEG4AAC_HE, &ApplyAAC},
    {kAudioFormatMPEG4AAC_HE_V2, &ApplyAAC}, {kAudioFormatAppleLossless, &ApplyLossless},
    {kAudioFormatFLAC, &ApplyFLAC},          {kAudioFormatOpus, &ApplyOpus},
};

}  // namespace

OSStatus ApplyCAFCookie(std::span<const UInt8> inCookie, FileFacts& ioFacts)
{
    const auto* row = std::find_if(std::begin(kCookies), std::end(kCookies),
                                   [&](const CookieRow& inRow)
                                   { return inRow.mFormat == ioFacts.mDataFormat.mFormatID; });
    return row == std::end(kCookies) ? KeepCookie(inCookie, ioFacts)
                                     : row->mApply(inCookie, ioFacts);
}

}  // namespace audiotoolbox
