#include "file/write/chunked/CAFCookies.h"

#include "file/AACConfig.h"
#include "file/Endian.h"
#include "file/write/chunked/HeaderBytes.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

using Bytes = std::vector<UInt8>;

// A tag and a length in the four bytes that most software gives it.
void StartDescriptor(UInt8 inTag, std::size_t inBytes, HeaderBytes& ioBytes)
{
    constexpr UInt8 kMore = 0x80;
    ioBytes.Big(inTag, 1).Big(kMore, 1).Big(kMore, 1);
    ioBytes.Big(kMore | (inBytes >> 7), 1).Big(inBytes & 0x7F, 1);
}

// ISO/IEC 14496-1: an elementary stream, its decoder's configuration, the decoder's own
// information within, and the sync layer's configuration.
Bytes MakeESDescriptor(std::span<const UInt8> inCookie, const StreamStart& inStart)
{
    constexpr std::size_t kMostConfigBytes = 4096;
    const Bytes config = AudioSpecificConfigOfCookie(inCookie);
    if (config.empty() || config.size() > kMostConfigBytes)
        return {};
    constexpr std::size_t kHeadBytes = 5;
    constexpr std::size_t kStreamBytes = 3;
    constexpr std::size_t kDecoderBytes = 13;
    constexpr std::size_t kSyncBytes = 1;
    const std::size_t decoder = kDecoderBytes + kHeadBytes + config.size();
    HeaderBytes bytes;
    StartDescriptor(0x03, kStreamBytes + kHeadBytes + decoder + kHeadBytes + kSyncBytes, bytes);
    bytes.Zeros(kStreamBytes);
    StartDescriptor(0x04, decoder, bytes);
    bytes.Big(0x40, 1).Big(0x15, 1);  // MPEG-4 audio, an audio stream
    bytes.Big(std::min<UInt32>(inStart.mMaximumPacketBytes, 0xFFFFFF), 3);
    bytes.Big(inStart.mBitRate, 4).Big(inStart.mBitRate, 4);
    StartDescriptor(0x05, config.size(), bytes);
    bytes.Raw(config);
    StartDescriptor(0x06, kSyncBytes, bytes);
    return bytes.Big(0x02, 1).Get();
}

bool HasCodeAt(std::span<const UInt8> inBytes, std::size_t inPosition, FourCharCode inCode)
{
    return inBytes.size() >= inPosition + 4 && ReadBE32(inBytes.data() + inPosition) == inCode;
}

// The converter's cookie is the configuration in its box, maybe behind a `frma` box.
Bytes MakeLossless(std::span<const UInt8> inCookie, const StreamStart&)
{
    constexpr std::size_t kBoxHeadBytes = 12;
    constexpr std::size_t kConfigBytes = 24;
    for (const FourCharCode box :
         {FourCharCode{CA_FOUR_CHAR_CODE('f', 'r', 'm', 'a')}, kAudioFormatAppleLossless})
        if (HasCodeAt(inCookie, 4, box) && inCookie.size() >= kBoxHeadBytes)
            inCookie = inCookie.subspan(kBoxHeadBytes);
    if (inCookie.size() < kConfigBytes)
        return {};
    return Bytes(inCookie.begin(), inCookie.begin() + kConfigBytes);
}

struct CookieRow
{
    AudioFormatID mFormat;
    Bytes (*mMake)(std::span<const UInt8> inCookie, const StreamStart& inStart);
};

constexpr CookieRow kCookies[] = {
    {kAudioFormatMPEG4AAC, &MakeESDescriptor},
    {kAudioFormatAppleLossless, &MakeLossless},
};

const CookieRow* FindRow(AudioFormatID inFormat)
{
    for (const CookieRow& row : kCookies)
        if (row.mFormat == inFormat)
            return &row;
    return nullptr;
}

}  // namespace

Bytes MakeCAFCookie(AudioFormatID inFormat, std::span<const UInt8> inCookie,
                    const StreamStart& inStart)
{
    const CookieRow* row = FindRow(inFormat);
    return row == nullptr ? Bytes() : row->mMake(inCookie, inStart);
}

bool NeedsCAFCookie(AudioFormatID inFormat)
{
    return FindRow(inFormat) != nullptr;
}

}  // namespace audiotoolbox
