// Stream formats as text: the line for diagnostics and the name for lists.
#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace
{

using Format = CAStreamBasicDescription;

constexpr UInt32 kPCM = 0x6C70636D;
constexpr UInt32 kAAC = 0x61616320;
constexpr UInt32 kALAC = 0x616C6163;

Format Stereo16()
{
    return {44100.0, kPCM, 4, 1, 4, 2, 16, 0xC};
}

std::string Line(const Format& inFormat, bool inBrief = false)
{
    char text[256];
    EXPECT_EQ(inFormat.AsString(text, sizeof(text), inBrief), text);
    return text;
}

std::string Name(const Format& inFormat, bool inAbbreviate, bool inRate = false)
{
    char text[256];
    Format::GetSimpleName(inFormat, text, sizeof(text), inAbbreviate, inRate);
    return text;
}

TEST(BriefFormatLine, NamesTheCommonFormats)
{
    EXPECT_EQ(Line(Stereo16(), true), " 2 ch,  44100 Hz, Int16, inter");
    EXPECT_EQ(Line(Format(48000.0, kPCM, 4, 1, 4, 1, 32, 0x9), true), " 1 ch,  48000 Hz, Float32");
    EXPECT_EQ(Line(Format(96000.0, kPCM, 4, 1, 4, 12, 32, 0x29), true),
              "12 ch,  96000 Hz, Float32, non-inter");
    EXPECT_EQ(Line(Format(192000.4, kPCM, 16, 1, 16, 2, 64, 0x9), true),
              " 2 ch, 192000 Hz, Float64, inter");
    EXPECT_EQ(Line(Format(8000.0, kPCM, 4, 1, 4, 1, 32, 0xC0C), true), " 1 ch,   8000 Hz, Int8.24");
    EXPECT_EQ(Line(Format(8000.0, kPCM, 4, 1, 4, 1, 32, 0xC), true), " 1 ch,   8000 Hz, Int32");
}

TEST(BriefFormatLine, SaysLittleOfAnEmptyRecord)
{
    EXPECT_EQ(Line(Format(), true), " 0 ch,      0 Hz");
    EXPECT_EQ(Line(Format(0.0, 0, 1, 2, 3, 0, 4, 5), true), " 0 ch,      0 Hz");
}

TEST(BriefFormatLine, IsTheLongOneForEverythingElse)
{
    const Format rows[] = {
        {44100.0, kPCM, 4, 1, 4, 2, 16, 0xE},    // big-endian
        {44100.0, kPCM, 4, 2, 4, 2, 16, 0xC},    // two frames a packet
        {44100.0, kPCM, 8, 1, 4, 2, 16, 0xC},    // packets are no frames
        {44100.0, kPCM, 1, 1, 1, 1, 16, 0xC},    // bits beyond the frame
        {44100.0, kPCM, 4, 1, 4, 0, 16, 0xC},    // no channels
        {44100.0, kPCM, 5, 1, 5, 2, 16, 0xC},    // frames that do not divide
        {44100.0, kPCM, 8, 1, 8, 2, 24, 0x4},    // bits that do not fill the word
        {44100.0, kPCM, 4, 1, 4, 1, 32, 0xD},    // signed float
        {44100.0, kPCM, 4, 1, 4, 1, 32, 0x409},  // float with a fraction
        {44100.0, kPCM, 2, 1, 2, 1, 16, 0x9},    // float of 16 bits
        {44100.0, kPCM, 2, 1, 2, 1, 16, 0x8},    // unsigned
        {44100.0, kPCM, 2, 1, 2, 1, 16, 0xC0C},  // 24 fraction bits in 2 bytes
        {44100.0, kPCM, 4, 1, 4, 1, 32, 0x80C},  // 16 fraction bits
        {44100.0, kPCM, 2, 1, 2, 1, 16, 0x40C},  // fraction in 2 bytes
        {44100.0, kPCM, 3, 1, 3, 1, 24, 0xC},    // 24 bits
        {44100.0, kPCM, 1, 1, 1, 1, 8, 0xC},     // 8 bits
        {44100.0, kAAC, 0, 1024, 0, 2, 0, 0},    // compressed
        {44100.0, 0, 0, 0, 0, 0, 0, 0},          // a rate alone
        {0.0, 0, 0, 0, 0, 2, 0, 0},              // channels alone
        {0.0, kAAC, 0, 0, 0, 0, 0, 0},           // a code alone
    };
    for (const Format& format : rows)
    {
        EXPECT_EQ(Line(format, true), Line(format, false));
        EXPECT_NE(Line(format, true).find(" (0x"), std::string::npos) << Line(format, true);
    }
}

TEST(FormatLine, TellsLinearPCMInFull)
{
    EXPECT_EQ(Line(Stereo16()),
              " 2 ch,  44100 Hz, 'lpcm' (0x0000000C) 16-bit little-endian signed integer");
    EXPECT_EQ(Line(Format(44100.0, kPCM, 4, 1, 4, 2, 16, 0xE)),
              " 2 ch,  44100 Hz, 'lpcm' (0x0000000E) 16-bit big-endian signed integer");
    EXPECT_EQ(Line(Format(44100.0, kPCM, 1, 1, 1, 1, 8, 0x8)),
              " 1 ch,  44100 Hz, 'lpcm' (0x00000008) 8-bit unsigned integer");
    EXPECT_EQ(Line(Format(48000.0, kPCM, 4, 1, 4, 2, 32, 0x29)),
              " 2 ch,  48000 Hz, 'lpcm' (0x00000029) 32-bit little-endian float, deinterleaved");
    EXPECT_EQ(Line(Format(48000.0, kPCM, 4, 1, 4, 1, 32, 0xC0C)),
              " 1 ch,  48000 Hz, 'lpcm' (0x00000C0C) 8.24-bit little-endian signed integer");
}

TEST(FormatLine, TellsPackingAndAlignmentWhereTheyMatter)
{
    EXPECT_EQ(Line(Format(44100.0, kPCM, 8, 1, 8, 2, 24, 0x14)),
              " 2 ch,  44100 Hz, 'lpcm' (0x00000014) 24-bit little-endian signed integer, unpacked "
              "in 4 bytes high-aligned");
    EXPECT_EQ(Line(Format(44100.0, kPCM, 3, 1, 3, 1, 20, 0xE)),
              " 1 ch,  44100 Hz, 'lpcm' (0x0000000E) 20-bit big-endian signed integer, packed in 3 "
              "bytes low-aligned");
    EXPECT_EQ(Line(Format(44100.0, kPCM, 4, 1, 4, 2, 24, 0x24)),
              " 2 ch,  44100 Hz, 'lpcm' (0x00000024) 24-bit little-endian signed integer, unpacked "
              "in 4 bytes low-aligned, deinterleaved");
    // Nothing is known of the word.
    EXPECT_EQ(Line(Format(44100.0, kPCM, 0, 1, 0, 2, 24, 0x14)),
              " 2 ch,  44100 Hz, 'lpcm' (0x00000014) 24-bit signed integer");
}

TEST(FormatLine, TellsTheSourceDepthOfALosslessFormat)
{
    const char* const kDepths[] = {"from UNKNOWN source bit depth, ",
                                   "from 16-bit source, ",
                                   "from 20-bit source, ",
                                   "from 24-bit source, ",
                                   "from 32-bit source, ",
                                   "from UNKNOWN source bit depth, "};
    for (UInt32 flags = 0; flags < 6; ++flags)
    {
        const std::string expected = " 2 ch,  44100 Hz, 'alac' (0x0000000" + std::to_string(flags) +
                                     ") " + kDepths[flags] + "4096 frames/packet";
        EXPECT_EQ(Line(Format(44100.0, kALAC, 0, 4096, 0, 2, 0, flags)), expected);
    }
    EXPECT_EQ(Line(Format(44100.0, kALAC, 0, 4096, 0, 2, 0, 0xFFFFFFFF)),
              " 2 ch,  44100 Hz, 'alac' (0xFFFFFFFF) from UNKNOWN source bit depth, 4096 "
              "frames/packet");
}

TEST(FormatLine, TellsTheNumbersOfEveryOtherFormat)
{
    EXPECT_EQ(Line(Format(44100.0, kAAC, 1, 1024, 3, 2, 4, 0)),
              " 2 ch,  44100 Hz, 'aac ' (0x00000000) 4 bits/channel, 1 bytes/packet, 1024 "
              "frames/packet, 3 bytes/frame");
    EXPECT_EQ(Line(Format(8000.0, 0x6D730002, 0, 0, 0, 1, 0, 0)),
              " 1 ch,   8000 Hz, 0x6D730002 (0x00000000) 0 bits/channel, 0 bytes/packet, 0 "
              "frames/packet, 0 bytes/frame");
    EXPECT_EQ(Line(Format(44100.0, kAAC, 0xFFFFFFFF, 0, 0, 2, 0, 0)),
              " 2 ch,  44100 Hz, 'aac ' (0x00000000) 0 bits/channel, -1 bytes/packet, 0 "
              "frames/packet, 0 bytes/frame");
}

TEST(FormatLine, IsLongForAnEmptyRecordTooUnlessBrief)
{
    EXPECT_EQ(Line(Format()),
              " 0 ch,      0 Hz, 0x00000000 (0x00000000) 0 bits/channel, 0 bytes/packet, 0 "
              "frames/packet, 0 bytes/frame");
}

TEST(FormatLine, IsCutAtEverySizeWithinItsBuffer)
{
    const std::string whole = Line(Stereo16());
    for (size_t size = 1; size <= whole.size() + 1; ++size)
    {
        // The heap shows a write beyond it.
        const std::unique_ptr<char[]> text(new char[size]);
        Stereo16().AsString(text.get(), size, false);
        EXPECT_EQ(text.get(), whole.substr(0, size - 1)) << size << " bytes";
    }
    char untouched = 'x';
    EXPECT_EQ(Stereo16().AsString(&untouched, 0, false), &untouched);
    EXPECT_EQ(Stereo16().AsString(&untouched, 0, true), &untouched);
    EXPECT_EQ(untouched, 'x');
}

TEST(FormatName, SpeaksOfLinearPCMInFull)
{
    EXPECT_EQ(Name(Format(44100.0, kPCM, 4, 1, 4, 2, 16, 0xE), false),
              "Mixable 2 Channel 16 Bit Big Endian Signed Integer");
    EXPECT_EQ(Name(Format(44100.0, kPCM, 8, 1, 8, 2, 24, 0x16), false),
              "Mixable 2 Channel 24 Bit Big Endian Signed Integer Aligned High in 32 Bits");
    EXPECT_EQ(Name(Format(44100.0, kPCM, 4, 1, 4, 1, 32, 0x49), false),
              "Unmixable 1 Channel 32 Bit Floating Point");
    EXPECT_EQ(Name(Format(44100.0, kPCM, 6, 1, 6, 2, 20, 0x0), false),
              "Mixable 2 Channel 20 Bit Unsigned Integer Aligned Low in 24 Bits");
}

TEST(FormatName, AbbreviatesLinearPCM)
{
    EXPECT_EQ(Name(Stereo16(), true), "Mixable 2 Ch SInt16");
    EXPECT_EQ(Name(Format(44100.0, kPCM, 4, 1, 4, 2, 16, 0xE), true),
              "Mixable 2 Ch Big Endian SInt16");
    EXPECT_EQ(Name(Format(44100.0, kPCM, 8, 1, 8, 2, 24, 0x16), true),
              "Mixable 2 Ch Big Endian High SInt24/SInt32");
    EXPECT_EQ(Name(Format(44100.0, kPCM, 8, 1, 8, 2, 24, 0x40), true),
              "Unmixable 2 Ch Low UInt24/UInt32");
    EXPECT_EQ(Name(Format(44100.0, kPCM, 4, 1, 4, 1, 32, 0x9), true), "Mixable 1 Ch Float32");
}

TEST(FormatName, TakesTheCodeOfOtherFormats)
{
    EXPECT_EQ(Name(Format(44100.0, kAAC, 0, 0, 0, 2, 0, 0), true), "aac ");
    EXPECT_EQ(Name(Format(44100.0, kALAC, 0, 0, 0, 2, 0, 0), false), "alac");
    EXPECT_EQ(Name(Format(44100.0, 0x61632D33, 0, 0, 0, 2, 0, 0), false), "AC-3");
    EXPECT_EQ(Name(Format(44100.0, 0x63616333, 0, 0, 0, 2, 0, 0), false), "AC-3 fo");
}

TEST(FormatName, BeginsWithTheRateIfAsked)
{
    EXPECT_EQ(Name(Stereo16(), true, true), "44100 Mixable 2 Ch SInt16");
    EXPECT_EQ(Name(Format(44099.6, kAAC, 0, 0, 0, 2, 0, 0), true, true), "44100 aac ");
    EXPECT_EQ(Name(Format(48000.0, 0x63616333, 0, 0, 0, 2, 0, 0), true, true), "48000 AC-3 fo");
}

TEST(FormatName, LooksAtNoSizeForTheNamesOfOtherFormats)
{
    char text[8] = {};
    Format::GetSimpleName(Format(44100.0, 0x63616333, 0, 0, 0, 2, 0, 0), text, 2, false, false);
    EXPECT_STREQ(text, "AC-3 fo");
    Format::GetSimpleName(Format(44100.0, kAAC, 0, 0, 0, 2, 0, 0), text, 0, false, false);
    EXPECT_STREQ(text, "aac ");
}

TEST(FormatName, IsCutToItsBufferForLinearPCM)
{
    char text[12];
    Format::GetSimpleName(Stereo16(), text, sizeof(text), true, true);
    EXPECT_STREQ(text, "44100 Mixab");
    Format::GetSimpleName(Stereo16(), text, 4, true, true);
    EXPECT_STREQ(text, "441");
}

}  // namespace
