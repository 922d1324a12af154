#include "convert/DecoderCookies.h"

#include "convert/AACDecoderConfig.h"

#include <AudioToolbox/AudioConverter.h>

#include <algorithm>
#include <cstring>

namespace audiotoolbox
{

namespace
{

using Bytes = std::span<const UInt8>;

constexpr std::size_t kMostCookieBytes = 1 << 20;

bool BeginsWith(Bytes inBytes, const char* inText)
{
    const std::size_t length = std::strlen(inText);
    return inBytes.size() >= length && std::memcmp(inBytes.data(), inText, length) == 0;
}

OSStatus MakeAAC(const DataFormat& inFormat, Bytes inCookie, std::vector<UInt8>& outCookie)
{
    AACConfig config;
    const std::vector<UInt8> bytes = AudioSpecificConfigOfCookie(inCookie);
    if (bytes.empty() || !ParseAudioSpecificConfig(bytes, config))
        return kAudioCodecBadDataError;
    outCookie = MakeAACDecoderConfig(config, bytes, inFormat.mFormatID);
    return noErr;
}

// The 24 bytes of the configuration stand bare, behind an 'alac' head of 12 bytes, or behind a
// 'frma' atom of 12 bytes and that head.
OSStatus MakeLossless(Bytes inCookie, std::vector<UInt8>& outCookie)
{
    constexpr std::size_t kConfigBytes = 24;
    constexpr UInt8 kHead[12] = {0, 0, 0, 36, 'a', 'l', 'a', 'c', 0, 0, 0, 0};
    Bytes rest = inCookie;
    if (rest.size() >= 12 && BeginsWith(rest.subspan(4), "frma"))
        rest = rest.subspan(12);
    if (rest.size() >= 12 && BeginsWith(rest.subspan(4), "alac"))
        rest = rest.subspan(12);
    if (rest.size() < kConfigBytes)
        return kAudioConverterErr_BadPropertySizeError;
    outCookie.assign(std::begin(kHead), std::end(kHead));
    outCookie.insert(outCookie.end(), rest.begin(), rest.begin() + kConfigBytes);
    return noErr;
}

// STREAMINFO stands bare, or behind its block head, which may follow 'fLaC' or the version and
// flags of a box.
OSStatus MakeFLAC(Bytes inCookie, std::vector<UInt8>& outCookie)
{
    constexpr std::size_t kInfoBytes = 34;
    Bytes rest = inCookie;
    if (BeginsWith(rest, "fLaC"))
        rest = rest.subspan(4);
    for (const std::size_t head : {std::size_t{0}, std::size_t{4}, std::size_t{8}})
    {
        const bool fits = rest.size() == head + kInfoBytes;
        const bool isLonger = rest.size() > head + kInfoBytes && head >= 4 &&
                              (rest[head - 4] & 0x7Fu) == 0 && rest[head - 1] == kInfoBytes;
        if (fits || isLonger)
        {
            outCookie.assign(rest.begin() + static_cast<std::ptrdiff_t>(head),
                             rest.begin() + static_cast<std::ptrdiff_t>(head + kInfoBytes));
            return noErr;
        }
    }
    return kAudioConverterErr_BadPropertySizeError;
}

OSStatus MakeOpus(Bytes inCookie, std::vector<UInt8>& outCookie)
{
    constexpr std::size_t kHeadBytes = 19;
    if (inCookie.size() < kHeadBytes)
        return kAudioConverterErr_BadPropertySizeError;
    if (!BeginsWith(inCookie, "OpusHead"))
        return kAudioCodecBadDataError;
    outCookie.assign(inCookie.begin(), inCookie.end());
    return noErr;
}

}  // namespace

OSStatus MakeDecoderCookie(const DataFormat& inFormat, std::span<const UInt8> inCookie,
                           std::vector<UInt8>& outCookie)
{
    outCookie.clear();
    if (inCookie.empty() || inCookie.size() > kMostCookieBytes)
        return kAudioConverterErr_BadPropertySizeError;
    switch (inFormat.mCookie)
    {
        case CookieForm::AAC:
            return MakeAAC(inFormat, inCookie, outCookie);
        case CookieForm::Lossless:
            return MakeLossless(inCookie, outCookie);
        case CookieForm::FLAC:
            return MakeFLAC(inCookie, outCookie);
        case CookieForm::Opus:
            return MakeOpus(inCookie, outCookie);
        case CookieForm::Wave:
            outCookie.assign(inCookie.begin(), inCookie.end());
            return noErr;
        case CookieForm::None:
            break;
    }
    return kAudioConverterErr_PropertyNotSupported;
}

}  // namespace audiotoolbox
