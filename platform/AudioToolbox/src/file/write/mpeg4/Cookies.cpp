// What encoders tell of their streams, checked against the format and stripped of its wrapping.
#include "file/write/mpeg4/SampleEntries.h"

#include "file/AACConfig.h"
#include "file/Endian.h"

#include <algorithm>
#include <cstring>

namespace audiotoolbox::mpeg4writer
{
namespace
{

using Bytes = std::span<const UInt8>;
using Format = AudioStreamBasicDescription;

bool IsAtom(Bytes inBytes, const char* inType)
{
    return inBytes.size() >= 12 && std::memcmp(inBytes.data() + 4, inType, 4) == 0;
}

bool IsRate(const Format& inFormat, UInt32 inRate)
{
    return inFormat.mSampleRate == inRate;
}

bool TakeAAC(const Format& inFormat, Bytes inCookie, std::vector<UInt8>& outCookie)
{
    AACConfig config;
    outCookie = AudioSpecificConfigOfCookie(inCookie);
    // A configuration that leaves the channels to the stream has a count of 0.
    return !outCookie.empty() && ParseAudioSpecificConfig(outCookie, config) &&
           IsRate(inFormat, config.mSampleRate) &&
           (config.mChannelCount == 0 || config.mChannelCount == inFormat.mChannelsPerFrame);
}

// The configuration stands bare, behind an 'alac' head, or behind a 'frma' atom and that head.
bool TakeALAC(const Format& inFormat, Bytes inCookie, std::vector<UInt8>& outCookie)
{
    constexpr std::size_t kConfigBytes = 24;
    for (const char* atom : {"frma", "alac"})
        if (IsAtom(inCookie, atom))
            inCookie = inCookie.subspan(12);
    if (inCookie.size() < kConfigBytes)
        return false;
    outCookie.assign(inCookie.begin(), inCookie.begin() + kConfigBytes);
    return ReadBE32(outCookie.data()) == inFormat.mFramesPerPacket &&
           outCookie[9] == inFormat.mChannelsPerFrame &&
           IsRate(inFormat, ReadBE32(outCookie.data() + 20));
}

// STREAMINFO stands bare or behind its block's head, which may follow the mark of a file.
bool TakeFLAC(const Format& inFormat, Bytes inCookie, std::vector<UInt8>& outCookie)
{
    constexpr std::size_t kInfoBytes = 34;
    if (inCookie.size() >= 8 && std::memcmp(inCookie.data(), "fLaC", 4) == 0)
        inCookie = inCookie.subspan(4);
    if (inCookie.size() >= 4 + kInfoBytes)
        inCookie = inCookie.subspan(4);
    if (inCookie.size() < kInfoBytes)
        return false;
    outCookie.assign(inCookie.begin(), inCookie.begin() + kInfoBytes);
    const UInt32 rate = ReadBE32(outCookie.data() + 10) >> 12;
    return IsRate(inFormat, rate) && (outCookie[12] >> 1 & 7u) + 1 == inFormat.mChannelsPerFrame;
}

bool TakeOpus(const Format& inFormat, Bytes inCookie, std::vector<UInt8>& outCookie)
{
    constexpr std::size_t kHeadBytes = 19;
    if (inCookie.size() < kHeadBytes || std::memcmp(inCookie.data(), "OpusHead", 8) != 0)
        return false;
    const UInt32 channels = inCookie[9];
    const std::size_t needed = kHeadBytes + (inCookie[18] != 0 ? 2 + channels : 0);
    if (inCookie.size() < needed || channels != inFormat.mChannelsPerFrame)
        return false;
    outCookie.assign(inCookie.begin(), inCookie.begin() + static_cast<std::ptrdiff_t>(needed));
    return true;
}

struct CookieRow
{
    AudioFormatID mFormat;
    bool (*mTake)(const Format&, Bytes, std::vector<UInt8>&);
};

constexpr CookieRow kCookies[] = {
    {kAudioFormatMPEG4AAC, &TakeAAC},
    {kAudioFormatAppleLossless, &TakeALAC},
    {kAudioFormatFLAC, &TakeFLAC},
    {kAudioFormatOpus, &TakeOpus},
};

}  // namespace

OSStatus TakeCookie(const Format& inFormat, Bytes inCookie, std::vector<UInt8>& outCookie)
{
    outCookie.clear();
    for (const CookieRow& row : kCookies)
        if (row.mFormat == inFormat.mFormatID && !row.mTake(inFormat, inCookie, outCookie))
        {
            outCookie.clear();
            return kAudioFileUnsupportedDataFormatError;
        }
    return noErr;
}

}  // namespace audiotoolbox::mpeg4writer
