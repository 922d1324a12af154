// The compact notation of stream formats.
#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace
{

using Format = CAStreamBasicDescription;

constexpr UInt32 kPCM = 0x6C70636D;

struct Reading
{
    bool mIsWellFormed;
    AudioStreamBasicDescription mFormat;
    std::string mMessages;
};

Reading Read(const char* inText)
{
    Reading reading = {};
    std::memset(&reading.mFormat, 0xFF, sizeof(reading.mFormat));
    // A copy of just the text's size, so that the heap shows a look behind its end.
    const std::unique_ptr<char[]> text(new char[std::strlen(inText) + 1]);
    std::strcpy(text.get(), inText);
    testing::internal::CaptureStderr();
    reading.mIsWellFormed = Format::FromText(text.get(), reading.mFormat);
    reading.mMessages = testing::internal::GetCapturedStderr();
    return reading;
}

std::string Syntax(const std::string& inMessage, const std::string& inText)
{
    return inMessage + "Invalid format string: " + inText + "\nSyntax of format strings is: \n";
}

struct Row
{
    const char* mText;
    Format mFormat;  // rate, code, bytes per packet, frames, bytes per frame, channels, bits, flags
};

void ExpectAll(std::initializer_list<Row> inRows)
{
    for (const Row& row : inRows)
    {
        const Reading reading = Read(row.mText);
        EXPECT_TRUE(reading.mIsWellFormed) << row.mText;
        EXPECT_EQ(reading.mMessages, "") << row.mText;
        EXPECT_EQ(std::memcmp(&reading.mFormat, &row.mFormat, sizeof(row.mFormat)), 0)
            << row.mText << " gives " << std::hex << reading.mFormat.mFormatFlags;
    }
}

TEST(FormatNotation, ReadsLinearPCM)
{
    ExpectAll({{"F32@44100,2", {44100.0, kPCM, 8, 1, 8, 2, 32, 0x9}},
               {"BEI16,2D", {0.0, kPCM, 2, 1, 2, 2, 16, 0x2E}},
               {"LEI16,2I", {0.0, kPCM, 4, 1, 4, 2, 16, 0xC}},
               {"I8", {0.0, kPCM, 1, 1, 1, 1, 8, 0xC}},
               {"UI8", {0.0, kPCM, 1, 1, 1, 1, 8, 0x8}},
               {"BEUI16", {0.0, kPCM, 2, 1, 2, 1, 16, 0xA}},
               {"BEF64", {0.0, kPCM, 8, 1, 8, 1, 64, 0xB}},
               {"I8.24", {0.0, kPCM, 4, 1, 4, 1, 32, 0xC0C}},
               {"F8.24", {0.0, kPCM, 4, 1, 4, 1, 32, 0xC09}},
               {"I20", {0.0, kPCM, 3, 1, 3, 1, 20, 0x14}},
               {"I", {0.0, kPCM, 0, 1, 0, 1, 0, 0xC}},
               {"F@48000", {48000.0, kPCM, 0, 1, 0, 1, 0, 0x9}},
               {"I.4", {0.0, kPCM, 1, 1, 1, 1, 4, 0x214}}});
}

TEST(FormatNotation, SkipsTheSignOfLinearPCM)
{
    ExpectAll(
        {{"-I16", {0.0, kPCM, 2, 1, 2, 1, 16, 0xC}}, {"-BEF32", {0.0, kPCM, 4, 1, 4, 1, 32, 0xB}}});
}

TEST(FormatNotation, ReadsTheTailOfLinearPCM)
{
    ExpectAll({{"I16@8000/4c#4:H4,3", {8000.0, kPCM, 12, 14, 12, 3, 16, 0x54}},
               {"I16/fF", {0.0, kPCM, 2, 1, 2, 1, 16, 0xFF}},
               {"I16/", {0.0, kPCM, 2, 1, 2, 1, 16, 0}},
               {"I16@", {0.0, kPCM, 2, 1, 2, 1, 16, 0xC}},
               {"I16#", {0.0, kPCM, 2, 1, 2, 1, 16, 0xC}},
               {"I16#4", {0.0, kPCM, 2, 14, 2, 1, 16, 0xC}},
               {"I24:L4,2", {0.0, kPCM, 8, 1, 8, 2, 24, 0x4}},
               {"I24:H4,2D", {0.0, kPCM, 4, 1, 4, 2, 24, 0x34}},
               {"I20:L3", {0.0, kPCM, 3, 1, 3, 1, 20, 0x4}},
               {"I24:H", {0.0, kPCM, 0, 1, 0, 1, 24, 0x14}},
               {"I16,", {0.0, kPCM, 0, 1, 0, 0, 16, 0xC}},
               {"I16,D", {0.0, kPCM, 2, 1, 2, 0, 16, 0x2C}},
               {"I16@96000,8I", {96000.0, kPCM, 16, 1, 16, 8, 16, 0xC}}});
}

TEST(FormatNotation, ReadsOtherCodes)
{
    ExpectAll({{"aac", {0.0, 0x61616320, 0, 0, 0, 0, 0, 0}},
               {"aac@44100", {44100.0, 0x61616320, 0, 0, 0, 0, 0, 0}},
               {"aac/2", {0.0, 0x61616320, 0, 0, 0, 0, 0, 2}},
               {"aac#1024", {0.0, 0x61616320, 0, 1024, 0, 0, 0, 0}},
               {"alac@44100,2", {44100.0, 0x616C6163, 0, 0, 0, 2, 0, 0}},
               {"alac,2I", {0.0, 0x616C6163, 0, 0, 0, 2, 0, 0}},
               {"alac:L3", {0.0, 0x616C6163, 3, 0, 3, 0, 0, 0}},
               {"-aac", {0.0, 0x2D616163, 0, 0, 0, 0, 0, 0}},
               {"aac,", {0.0, 0x6161632C, 0, 0, 0, 0, 0, 0}},
               {"aac:", {0.0, 0x6161633A, 0, 0, 0, 0, 0, 0}},
               {"BEac", {0.0, 0x42456163, 0, 0, 0, 0, 0, 0}},
               {"Line", {0.0, 0x4C696E65, 0, 0, 0, 0, 0, 0}},
               {"Both", {0.0, 0x426F7468, 0, 0, 0, 0, 0, 0}},
               {"ulaw", {0.0, 0x756C6177, 0, 0, 0, 0, 0, 0}},
               {"Ulaw", {0.0, 0x556C6177, 0, 0, 0, 0, 0, 0}},
               {".mp3", {0.0, 0x2E6D7033, 0, 0, 0, 0, 0, 0}},
               {"a@/#", {0.0, 0x61402F20, 0, 0, 0, 0, 0, 0}}});
}

TEST(FormatNotation, ReadsEscapedCharacters)
{
    ExpectAll({{"\\x49MA4", {0.0, 0x494D4134, 0, 0, 0, 0, 0, 0}},
               {"ms\\x00\\x02,2", {0.0, 0x6D730002, 0, 0, 0, 2, 0, 0}},
               {"aac\\x40", {0.0, 0x61616340, 0, 0, 0, 0, 0, 0}},
               {"\\xfFabc@1", {1.0, 0xFF616263, 0, 0, 0, 0, 0, 0}},
               {"\\x4Gabc", {0.0, 0x04616263, 0, 0, 0, 0, 0, 0}},
               {"abc\\x4", {0.0, 0x61626304, 0, 0, 0, 0, 0, 0}}});
}

TEST(FormatNotation, TreatsLinearPCMByItsCodeAsLinearPCMToo)
{
    ExpectAll({{"lpcm/c:L2,2", {0.0, kPCM, 4, 0, 4, 2, 0, 0x4}},
               {"lpcm,2D", {0.0, kPCM, 0, 0, 0, 2, 0, 0x20}}});
}

TEST(FormatNotation, FailsQuietlyOnShortCodesAndBadEscapes)
{
    for (const char* const text : {"", "a", "ab", "-", "B", "U", "LE", "BE", "\\", "\\x", "\\xG000",
                                   "\\y41bcd", "\\x4", "a\\x41", "abc\\", "abc\\xZZ", "ab\\X41c"})
    {
        const Reading reading = Read(text);
        EXPECT_FALSE(reading.mIsWellFormed) << text;
        EXPECT_EQ(reading.mMessages, "") << text;
        EXPECT_TRUE(Format::IsExactlyEqual(reading.mFormat, Format::sEmpty)) << text;
        EXPECT_EQ(reading.mFormat.mReserved, 0U) << text;
    }
}

TEST(FormatNotation, WantsDigitsBehindThePoint)
{
    const Reading reading = Read("F32.");
    EXPECT_FALSE(reading.mIsWellFormed);
    EXPECT_EQ(reading.mMessages, Syntax("Expected fractional bits following '.'\n", "F32."));
    EXPECT_EQ(reading.mFormat.mFormatID, kPCM);
    EXPECT_EQ(reading.mFormat.mFormatFlags, 0x9U);
    EXPECT_EQ(reading.mFormat.mChannelsPerFrame, 1U);
    EXPECT_EQ(reading.mFormat.mBitsPerChannel, 0U);
}

TEST(FormatNotation, FailsOnExtraCharacters)
{
    struct ExtraRow
    {
        const char* mText;
        const char* mExtra;
    };
    for (const ExtraRow& row :
         {ExtraRow{"aac,2", "2"}, ExtraRow{"IMA4", "MA4"}, ExtraRow{"I16,2X", "X"},
          ExtraRow{"I16@44100.5", ".5"}, ExtraRow{"I16@1@2", "@2"},
          ExtraRow{"I16,2@44100", "@44100"}, ExtraRow{"I16/fg", "g"}, ExtraRow{"aac-", "-"},
          ExtraRow{"alacx", "x"}, ExtraRow{"I16,2II", "I"}, ExtraRow{"I16 ", " "},
          ExtraRow{"F32\n", "\n"}})
    {
        const Reading reading = Read(row.mText);
        EXPECT_FALSE(reading.mIsWellFormed) << row.mText;
        EXPECT_EQ(
            reading.mMessages,
            Syntax(std::string("extra characters at end of format string: ") + row.mExtra + "\n",
                   row.mText));
    }
}

TEST(FormatNotation, KeepsWhatItReadBeforeTheExtraCharacters)
{
    const Reading reading = Read("I16,2X");
    EXPECT_TRUE(Format::IsExactlyEqual(reading.mFormat, Format(0.0, kPCM, 4, 1, 4, 2, 16, 0xC)));
}

TEST(FormatNotation, KnowsTwoLettersBehindTheColon)
{
    const Reading reading = Read("I24:X4");
    EXPECT_FALSE(reading.mIsWellFormed);
    EXPECT_EQ(reading.mMessages, Syntax("", "I24:X4"));
    EXPECT_EQ(reading.mFormat.mBytesPerFrame, 3U);
    EXPECT_FALSE(Read("I24:").mIsWellFormed);
}

TEST(FormatNotation, RefusesPlanesOfOtherFormats)
{
    const Reading reading = Read("alac,2D");
    EXPECT_FALSE(reading.mIsWellFormed);
    EXPECT_EQ(reading.mMessages,
              Syntax("non-interleaved flag invalid for non-PCM formats\n", "alac,2D"));
    EXPECT_EQ(reading.mFormat.mChannelsPerFrame, 2U);
    EXPECT_EQ(reading.mFormat.mFormatFlags, 0U);
}

TEST(FormatNotation, SurvivesAbsurdNumbers)
{
    const std::string digits(400, '9');
    for (const char* const head : {"I", "I8.", "I16@", "I16/", "I16#", "I16:H", "I16,"})
        EXPECT_TRUE(Read((head + digits).c_str()).mIsWellFormed) << head;
}

TEST(FormatNotation, HasAUsageText)
{
    EXPECT_STREQ(Format::sTextParsingUsageString,
                 "format[@sample_rate_hz][/format_flags][#frames_per_packet][:LHbytesPerFrame]"
                 "[,channelsDI].\nFormat for PCM is [-][BE|LE]{F|I|UI}{bitdepth}; else a 4-char "
                 "format code (e.g. aac, alac).\n");
}

}  // namespace
