// CAStreamBasicDescription as text: the line for diagnostics and the name for lists.
#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include "CoreAudio/PublicUtility/CADebugMacros.h"

#include <SystemStrings.h>

#include <cstdio>
#include <iterator>

namespace
{

constexpr UInt32 kBitsPerByte = 8;

// Counts print signed, as the platform's own tools do.
int Number(UInt32 inValue)
{
    return static_cast<int>(inValue);
}

UInt32 FractionBits(const AudioStreamBasicDescription& inFormat)
{
    return (inFormat.mFormatFlags & kLinearPCMFormatFlagsSampleFractionMask) >>
           kLinearPCMFormatFlagsSampleFractionShift;
}

bool HasFlag(const AudioStreamBasicDescription& inFormat, UInt32 inFlag)
{
    return (inFormat.mFormatFlags & inFlag) != 0;
}

// Linear PCM in which every sample has a whole word; *outWordBytes is the size of that word.
bool HasPlainWords(const CAStreamBasicDescription& inFormat, UInt32* outWordBytes)
{
    if (!inFormat.IsPCM() || inFormat.mFramesPerPacket != 1 ||
        inFormat.mBytesPerFrame != inFormat.mBytesPerPacket ||
        inFormat.mBitsPerChannel / kBitsPerByte > inFormat.mBytesPerFrame ||
        inFormat.mChannelsPerFrame == 0)
        return false;
    if (inFormat.IsInterleaved() && inFormat.mBytesPerFrame % inFormat.mChannelsPerFrame != 0)
        return false;
    *outWordBytes = inFormat.SampleWordSize();
    return true;
}

// The name of a common linear PCM format, null for all others.
const char* CommonPCMName(const CAStreamBasicDescription& inFormat)
{
    struct CommonFormat
    {
        const char* mName;
        UInt32 mKind;  // float and signed flags
        UInt32 mFractionBits;
        UInt32 mWordBytes;
    };
    constexpr CommonFormat kCommonFormats[] = {
        {"Float32", kAudioFormatFlagIsFloat, 0, 4},
        {"Int16", kAudioFormatFlagIsSignedInteger, 0, 2},
        {"Int8.24", kAudioFormatFlagIsSignedInteger, 24, 4},
        {"Float64", kAudioFormatFlagIsFloat, 0, 8},
        {"Int32", kAudioFormatFlagIsSignedInteger, 0, 4},
    };
    UInt32 wordBytes = 0;
    if (!HasPlainWords(inFormat, &wordBytes) || HasFlag(inFormat, kAudioFormatFlagIsBigEndian) ||
        wordBytes * kBitsPerByte != inFormat.mBitsPerChannel)
        return nullptr;

    const UInt32 kind =
        inFormat.mFormatFlags & (kAudioFormatFlagIsFloat | kAudioFormatFlagIsSignedInteger);
    for (const CommonFormat& format : kCommonFormats)
        if (format.mKind == kind && format.mFractionBits == FractionBits(inFormat) &&
            format.mWordBytes == wordBytes)
            return format.mName;
    return nullptr;
}

// Whether the short line said all there is to say.
bool PrintBrief(const CAStreamBasicDescription& inFormat, char* outText, std::size_t inSize)
{
    if (const char* const name = CommonPCMName(inFormat); name != nullptr)
    {
        const char* interleaving = "";
        if (inFormat.mChannelsPerFrame > 1)
            interleaving = inFormat.IsInterleaved() ? ", inter" : ", non-inter";
        std::snprintf(outText, inSize, "%2d ch, %6.0f Hz, %s%s", Number(inFormat.mChannelsPerFrame),
                      inFormat.mSampleRate, name, interleaving);
        return true;
    }
    if (inFormat.mChannelsPerFrame == 0 && inFormat.mSampleRate == 0.0 && inFormat.mFormatID == 0)
    {
        std::snprintf(outText, inSize, "%2d ch, %6.0f Hz", 0, inFormat.mSampleRate);
        return true;
    }
    return false;
}

void PrintLossless(const CAStreamBasicDescription& inFormat, char* outText, std::size_t inSize)
{
    constexpr int kSourceBits[] = {16, 20, 24, 32};  // by flags, from 1
    const UInt32 index = inFormat.mFormatFlags - 1;
    if (index < std::size(kSourceBits))
        std::snprintf(outText, inSize, "from %d-bit source, %d frames/packet", kSourceBits[index],
                      Number(inFormat.mFramesPerPacket));
    else
        std::snprintf(outText, inSize, "from UNKNOWN source bit depth, %d frames/packet",
                      Number(inFormat.mFramesPerPacket));
}

void PrintOther(const CAStreamBasicDescription& inFormat, char* outText, std::size_t inSize)
{
    std::snprintf(outText, inSize,
                  "%d bits/channel, %d bytes/packet, %d frames/packet, %d bytes/frame",
                  Number(inFormat.mBitsPerChannel), Number(inFormat.mBytesPerPacket),
                  Number(inFormat.mFramesPerPacket), Number(inFormat.mBytesPerFrame));
}

template <std::size_t kSize>
void PrintDepth(const CAStreamBasicDescription& inFormat, char (&outText)[kSize])
{
    const UInt32 fraction = FractionBits(inFormat);
    if (fraction > 0)
        std::snprintf(outText, kSize, "%d.%d", Number(inFormat.mBitsPerChannel - fraction),
                      Number(fraction));
    else
        std::snprintf(outText, kSize, "%d", Number(inFormat.mBitsPerChannel));
}

// Empty where the bits fill the word anyway.
template <std::size_t kSize>
void PrintPacking(const CAStreamBasicDescription& inFormat, char (&outText)[kSize])
{
    const UInt32 wordBytes = inFormat.SampleWordSize();
    outText[0] = '\0';
    if (wordBytes > 0 && inFormat.PackednessIsSignificant())
        std::snprintf(outText, kSize, "%spacked in %d bytes",
                      HasFlag(inFormat, kAudioFormatFlagIsPacked) ? "" : "un", Number(wordBytes));
}

const char* AlignmentText(const CAStreamBasicDescription& inFormat)
{
    if (inFormat.SampleWordSize() == 0 || !inFormat.AlignmentIsSignificant())
        return "";
    return HasFlag(inFormat, kAudioFormatFlagIsAlignedHigh) ? " high-aligned" : " low-aligned";
}

const char* ByteOrderText(const CAStreamBasicDescription& inFormat)
{
    if (inFormat.SampleWordSize() < 2)
        return "";
    return HasFlag(inFormat, kAudioFormatFlagIsBigEndian) ? " big-endian" : " little-endian";
}

const char* SignText(const CAStreamBasicDescription& inFormat)
{
    if (HasFlag(inFormat, kAudioFormatFlagIsFloat))
        return "";
    return HasFlag(inFormat, kAudioFormatFlagIsSignedInteger) ? " signed" : " unsigned";
}

void PrintPCM(const CAStreamBasicDescription& inFormat, char* outText, std::size_t inSize)
{
    char depth[32];
    char packing[48];
    PrintDepth(inFormat, depth);
    PrintPacking(inFormat, packing);
    const char* const alignment = AlignmentText(inFormat);
    const bool hasWordPart = packing[0] != '\0' || alignment[0] != '\0';
    std::snprintf(outText, inSize, "%s-bit%s%s %s%s%s%s%s", depth, ByteOrderText(inFormat),
                  SignText(inFormat),
                  HasFlag(inFormat, kAudioFormatFlagIsFloat) ? "float" : "integer",
                  hasWordPart ? ", " : "", packing, alignment,
                  inFormat.IsInterleaved() ? "" : ", deinterleaved");
}

const char* KindName(const AudioStreamBasicDescription& inFormat, bool inAbbreviate)
{
    if (HasFlag(inFormat, kAudioFormatFlagIsFloat))
        return inAbbreviate ? "Float" : "Floating Point";
    if (HasFlag(inFormat, kAudioFormatFlagIsSignedInteger))
        return inAbbreviate ? "SInt" : "Signed Integer";
    return inAbbreviate ? "UInt" : "Unsigned Integer";
}

// What the names of linear PCM formats are made of.
struct PCMWords
{
    const char* mMixable;
    const char* mByteOrder;  // with a blank behind it, or empty
    const char* mKind;
    const char* mAlignment;  // null for a packed format
    int mChannelCount;
    int mBits;
    int mWordBits;  // 0 for a packed format
};

PCMWords GetPCMWords(const AudioStreamBasicDescription& inFormat, bool inAbbreviate)
{
    PCMWords words = {};
    words.mMixable = HasFlag(inFormat, kAudioFormatFlagIsNonMixable) ? "Unmixable" : "Mixable";
    words.mByteOrder = HasFlag(inFormat, kAudioFormatFlagIsBigEndian) ? "Big Endian " : "";
    words.mKind = KindName(inFormat, inAbbreviate);
    words.mChannelCount = Number(inFormat.mChannelsPerFrame);
    words.mBits = Number(inFormat.mBitsPerChannel);
    if (!HasFlag(inFormat, kAudioFormatFlagIsPacked))
    {
        words.mAlignment = HasFlag(inFormat, kAudioFormatFlagIsAlignedHigh) ? "High" : "Low";
        words.mWordBits =
            Number(inFormat.mBytesPerFrame / inFormat.mChannelsPerFrame * kBitsPerByte);
    }
    return words;
}

void PrintShortName(const PCMWords& inWords, char* outText, std::size_t inSize)
{
    if (inWords.mAlignment != nullptr)
        std::snprintf(outText, inSize, "%s %d Ch %s%s %s%d/%s%d", inWords.mMixable,
                      inWords.mChannelCount, inWords.mByteOrder, inWords.mAlignment, inWords.mKind,
                      inWords.mBits, inWords.mKind, inWords.mWordBits);
    else
        std::snprintf(outText, inSize, "%s %d Ch %s%s%d", inWords.mMixable, inWords.mChannelCount,
                      inWords.mByteOrder, inWords.mKind, inWords.mBits);
}

void PrintFullName(const PCMWords& inWords, char* outText, std::size_t inSize)
{
    if (inWords.mAlignment != nullptr)
        std::snprintf(outText, inSize, "%s %d Channel %d Bit %s%s Aligned %s in %d Bits",
                      inWords.mMixable, inWords.mChannelCount, inWords.mBits, inWords.mByteOrder,
                      inWords.mKind, inWords.mAlignment, inWords.mWordBits);
    else
        std::snprintf(outText, inSize, "%s %d Channel %d Bit %s%s", inWords.mMixable,
                      inWords.mChannelCount, inWords.mBits, inWords.mByteOrder, inWords.mKind);
}

// Looks at no size: the caller has 8 bytes.
void PrintCodeName(UInt32 inFormatID, char* outText)
{
    constexpr std::size_t kNameSize = 8;  // cuts the longer of the two names
    if (inFormatID == kAudioFormatAC3)
        strlcpy(outText, "AC-3", kNameSize);
    else if (inFormatID == kAudioFormat60958AC3)
        strlcpy(outText, "AC-3 for SPDIF", kNameSize);
    else
    {
        for (int index = 0; index < 4; ++index)
            outText[index] = static_cast<char>(inFormatID >> (24 - 8 * index));
        outText[4] = '\0';
    }
}

}  // namespace

char* CAStreamBasicDescription::AsString(char* outText, std::size_t inSize, bool inBrief) const
{
    if (inBrief && PrintBrief(*this, outText, inSize))
        return outText;

    char code[24];
    const int written =
        std::snprintf(outText, inSize, "%2d ch, %6.0f Hz, %s (0x%08X) ", Number(mChannelsPerFrame),
                      mSampleRate, CAStringForOSType(mFormatID, code, sizeof(code)), mFormatFlags);
    if (written < 0 || static_cast<std::size_t>(written) >= inSize)
        return outText;

    char* const rest = outText + written;
    const std::size_t room = inSize - static_cast<std::size_t>(written);
    if (IsPCM())
        PrintPCM(*this, rest, room);
    else if (mFormatID == kAudioFormatAppleLossless)
        PrintLossless(*this, rest, room);
    else
        PrintOther(*this, rest, room);
    return outText;
}

void CAStreamBasicDescription::GetSimpleName(const AudioStreamBasicDescription& inFormat,
                                             char* outText, UInt32 inSize, bool inAbbreviate,
                                             bool inIncludeSampleRate)
{
    std::size_t room = inSize;
    if (inIncludeSampleRate)
    {
        const int written = std::snprintf(outText, room, "%.0f ", inFormat.mSampleRate);
        if (written < 0 || static_cast<std::size_t>(written) >= room)
            return;
        outText += written;
        room -= static_cast<std::size_t>(written);
    }
    if (inFormat.mFormatID != kAudioFormatLinearPCM)
        return PrintCodeName(inFormat.mFormatID, outText);

    const PCMWords words = GetPCMWords(inFormat, inAbbreviate);
    if (inAbbreviate)
        PrintShortName(words, outText, room);
    else
        PrintFullName(words, outText, room);
}
