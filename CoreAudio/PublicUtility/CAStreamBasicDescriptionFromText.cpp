// The compact notation of stream formats: "F32@44100,2", "BEI16,2D", "alac@48000,6".
//
// A head (linear PCM, or four characters of any other code) and optional parts in a fixed order.
// Every step writes what it has read at once, so that a failure leaves the parts before it.
#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <cstdio>

namespace
{

bool IsDigit(char inCharacter)
{
    return inCharacter >= '0' && inCharacter <= '9';
}

// The value of a hexadecimal digit, 16 for any other character.
UInt32 HexValue(char inCharacter)
{
    if (IsDigit(inCharacter))
        return static_cast<UInt32>(inCharacter - '0');
    if (inCharacter >= 'a' && inCharacter <= 'f')
        return static_cast<UInt32>(inCharacter - 'a' + 10);
    if (inCharacter >= 'A' && inCharacter <= 'F')
        return static_cast<UInt32>(inCharacter - 'A' + 10);
    return 16;
}

class FormatParser
{
public:
    FormatParser(const char* inText, AudioStreamBasicDescription& outFormat)
        : mText(inText), mAt(inText), mFormat(outFormat)
    {
    }

    bool Parse()
    {
        if (AtPCMHead())
        {
            if (!ReadPCMDepth())
                return false;
        }
        else if (!ReadCode())
        {
            return false;
        }
        ReadRate();
        ReadFlags();
        ReadFramesPerPacket();
        return ReadBytesPerFrame() && ReadChannels() && ReadEnd();
    }

private:
    static constexpr int kCodeLength = 4;

    bool IsPCM() const { return mFormat.mFormatID == kAudioFormatLinearPCM; }

    bool Skip(char inCharacter)
    {
        if (*mAt != inCharacter)
            return false;
        ++mAt;
        return true;
    }

    bool Skip(char inFirst, char inSecond)
    {
        if (mAt[0] != inFirst || mAt[1] != inSecond)
            return false;
        mAt += 2;
        return true;
    }

    // Digits behind those that gave inValue; an absurd number wraps around.
    UInt32 ReadDecimal(UInt32 inValue = 0)
    {
        while (IsDigit(*mAt))
            inValue = inValue * 10 + static_cast<UInt32>(*mAt++ - '0');
        return inValue;
    }

    // Goes back to the start of the text unless it begins a linear PCM format. The sign is of use
    // to nobody and skipped.
    bool AtPCMHead()
    {
        UInt32 flags = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked;
        Skip('-');
        if (!Skip('L', 'E') && Skip('B', 'E'))
            flags |= kAudioFormatFlagIsBigEndian;
        if (Skip('F'))
            flags ^= kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsFloat;
        else if (Skip('U', 'I'))
            flags &= ~kAudioFormatFlagIsSignedInteger;
        else if (!Skip('I'))
        {
            mAt = mText;
            return false;
        }
        mFormat.mFormatID = kAudioFormatLinearPCM;
        mFormat.mFormatFlags = flags;
        mFormat.mFramesPerPacket = 1;
        mFormat.mChannelsPerFrame = 1;
        return true;
    }

    bool ReadPCMDepth()
    {
        UInt32 bits = ReadDecimal();
        if (Skip('.'))
        {
            if (!IsDigit(*mAt))
                return Fail("Expected fractional bits following '.'\n");
            const UInt32 fractionBits = ReadDecimal();
            bits += fractionBits;
            mFormat.mFormatFlags |= fractionBits << kLinearPCMFormatFlagsSampleFractionShift;
        }
        mFormat.mBitsPerChannel = bits;
        SetBytes((bits + 7) / 8);
        if (bits % 8 != 0)
        {
            mFormat.mFormatFlags &= ~kAudioFormatFlagIsPacked;
            mFormat.mFormatFlags |= kAudioFormatFlagIsAlignedHigh;
        }
        return true;
    }

    bool ReadCode()
    {
        UInt32 code = 0;
        for (int index = 0; index < kCodeLength; ++index)
        {
            UInt32 character = ' ';
            if (!ReadCodeCharacter(index == kCodeLength - 1, &character))
                return false;
            code = code << 8 | character;
        }
        mFormat.mFormatID = code;
        return true;
    }

    // False for an end that comes too early and for a bad escape. *ioCharacter stays a blank where
    // a code of three characters ends.
    bool ReadCodeCharacter(bool inIsLast, UInt32* ioCharacter)
    {
        if (*mAt == '\\')
            return ReadEscape(ioCharacter);
        if (*mAt == '\0')
            return inIsLast;
        const bool beginsTail = *mAt == '-' || *mAt == '@' || *mAt == '/' || *mAt == '#';
        if (!inIsLast || !beginsTail)
            *ioCharacter = static_cast<unsigned char>(*mAt++);
        return true;
    }

    // "\x" and one or two digits. The escape is four characters long whatever they are, unless the
    // text ends within it.
    bool ReadEscape(UInt32* outCharacter)
    {
        if (mAt[1] != 'x' || HexValue(mAt[2]) > 15)
            return false;
        UInt32 value = HexValue(mAt[2]);
        if (const UInt32 second = HexValue(mAt[3]); second <= 15)
            value = value * 16 + second;
        *outCharacter = value;
        mAt += mAt[3] == '\0' ? 3 : 4;
        return true;
    }

    void ReadRate()
    {
        if (!Skip('@'))
            return;
        double rate = 0.0;
        while (IsDigit(*mAt))
            rate = rate * 10.0 + (*mAt++ - '0');
        mFormat.mSampleRate = rate;
    }

    void ReadFlags()
    {
        if (!Skip('/'))
            return;
        mFormat.mFormatFlags = 0;
        for (; HexValue(*mAt) <= 15; ++mAt)
            mFormat.mFormatFlags = mFormat.mFormatFlags << 4 | HexValue(*mAt);
    }

    // The digits go on behind the 1 of linear PCM, so "#4" is 14 there.
    void ReadFramesPerPacket()
    {
        if (Skip('#'))
            mFormat.mFramesPerPacket = ReadDecimal(mFormat.mFramesPerPacket);
    }

    bool ReadBytesPerFrame()
    {
        if (!Skip(':'))
            return true;
        mFormat.mFormatFlags &= ~kAudioFormatFlagIsPacked;
        if (Skip('H'))
            mFormat.mFormatFlags |= kAudioFormatFlagIsAlignedHigh;
        else if (Skip('L'))
            mFormat.mFormatFlags &= ~kAudioFormatFlagIsAlignedHigh;
        else
            return FailWithSyntax();
        SetBytes(ReadDecimal());
        return true;
    }

    bool ReadChannels()
    {
        if (!Skip(','))
            return true;
        mFormat.mChannelsPerFrame = ReadDecimal();
        if (Skip('D'))
        {
            if (!IsPCM())
                return Fail("non-interleaved flag invalid for non-PCM formats\n");
            mFormat.mFormatFlags |= kAudioFormatFlagIsNonInterleaved;
            return true;
        }
        Skip('I');
        if (IsPCM())
            SetBytes(mFormat.mBytesPerFrame * mFormat.mChannelsPerFrame);
        return true;
    }

    bool ReadEnd()
    {
        if (*mAt == '\0')
            return true;
        std::fprintf(stderr, "extra characters at end of format string: %s\n", mAt);
        return FailWithSyntax();
    }

    // A packet of linear PCM is a frame.
    void SetBytes(UInt32 inBytes)
    {
        mFormat.mBytesPerFrame = inBytes;
        mFormat.mBytesPerPacket = inBytes;
    }

    bool Fail(const char* inMessage)
    {
        std::fputs(inMessage, stderr);
        return FailWithSyntax();
    }

    bool FailWithSyntax()
    {
        std::fprintf(stderr, "Invalid format string: %s\n", mText);
        std::fputs("Syntax of format strings is: \n", stderr);
        return false;
    }

    const char* mText;
    const char* mAt;
    AudioStreamBasicDescription& mFormat;
};

}  // namespace

const char* const CAStreamBasicDescription::sTextParsingUsageString =
    "format[@sample_rate_hz][/format_flags][#frames_per_packet][:LHbytesPerFrame][,channelsDI].\n"
    "Format for PCM is [-][BE|LE]{F|I|UI}{bitdepth}; else a 4-char format code (e.g. aac, alac).\n";

bool CAStreamBasicDescription::FromText(const char* inText, AudioStreamBasicDescription& outFormat)
{
    ResetFormat(outFormat);
    return FormatParser(inText, outFormat).Parse();
}
