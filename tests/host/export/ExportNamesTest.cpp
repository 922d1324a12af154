#include "host/export/ExportNames.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

#include <functional>

namespace host
{

namespace
{

int ExitCodeOf(const std::function<std::uint32_t()>& inFind)
{
    try
    {
        (void)inFind();
        return kExitDone;
    }
    catch (const Failure& failure)
    {
        return failure.mExitCode;
    }
}

TEST(FileTypeNames, AnExtensionOfSeveralTypesMeansTheUsualOne)
{
    EXPECT_EQ(FileTypeOfPath("a.wav"), 0x57415645u);   // WAVE
    EXPECT_EQ(FileTypeOfPath("a.aiff"), 0x41494646u);  // AIFF
    EXPECT_EQ(FileTypeOfPath("a.aif"), 0x41494646u);
    EXPECT_EQ(FileTypeOfPath("a.m4a"), 0x6D346166u);  // m4af
    EXPECT_EQ(FileTypeOfPath("a.mp4"), 0x6D703466u);  // mp4f
    EXPECT_EQ(FileTypeOfPath("a.aac"), 0x61647473u);  // adts
}

TEST(FileTypeNames, TheLastExtensionCountsInAnyCase)
{
    EXPECT_EQ(FileTypeOfPath("a.mp3.WAV"), 0x57415645u);
    EXPECT_EQ(FileTypeOfPath("/some.mp3/b.FlAc"), 0x666C6163u);
    EXPECT_EQ(FileTypeOfPath("a.rf64"), 0x52463634u);
    EXPECT_EQ(FileTypeOfPath("a.w64"), 0x57363466u);
}

TEST(FileTypeNames, ATypeIsKnownByCodeExtensionAndName)
{
    for (const char* name :
         {"caff", "caf", ".caf", "CAF", "Core Audio Format", "core-audio-format"})
        EXPECT_EQ(FileTypeByName(name), 0x63616666u) << name;
    EXPECT_EQ(FileTypeByName("RF64"), 0x52463634u);
    EXPECT_EQ(FileTypeByName("Wave64"), 0x57363466u);
    EXPECT_EQ(FileTypeByName("W64f"), 0x57363466u);
}

TEST(FileTypeNames, WhatNobodyKnowsIsWrongUse)
{
    for (const char* path : {"a", "a.", "a.xyz", ".wav", "", "a.wav/", "a.w\xFFv"})
        EXPECT_EQ(ExitCodeOf([&] { return FileTypeOfPath(path); }), 2) << path;
    for (const char* name : {"", ".", "xyz", "--", "*", "\xFF"})
        EXPECT_EQ(ExitCodeOf([&] { return FileTypeByName(name); }), 2) << name;
}

TEST(FileTypeNames, ATypeThatIsOnlyReadIsImpossible)
{
    EXPECT_EQ(ExitCodeOf([] { return FileTypeOfPath("a.amr"); }), 5);
    EXPECT_EQ(ExitCodeOf([] { return FileTypeByName("MPG1"); }), 5);
}

TEST(FormatNamesTest, AFormatIsKnownByCodeNameAndCustom)
{
    constexpr std::uint32_t kWAVE = 0x57415645, kMP4 = 0x6D703466;
    for (const char* name : {"lpcm", "pcm", "PCM", "Linear PCM"})
        EXPECT_EQ(FormatByName(name, kWAVE), 0x6C70636Du) << name;
    for (const char* name : {"ulaw", "mulaw", "mu-law"})
        EXPECT_EQ(FormatByName(name, kWAVE), 0x756C6177u) << name;
    EXPECT_EQ(FormatByName("ms-adpcm", kWAVE), 0x6D730002u);
    EXPECT_EQ(FormatByName("gsm", kWAVE), 0x6D730031u);
    for (const char* name : {"aac", "aac ", "MPEG-4 AAC"})
        EXPECT_EQ(FormatByName(name, kMP4), 0x61616320u) << name;
    EXPECT_EQ(FormatByName("ac3", kMP4), 0x61632D33u);
    EXPECT_EQ(FormatByName("eac3", kMP4), 0x65632D33u);
    EXPECT_EQ(FormatByName("mp3", kMP4), 0x2E6D7033u);
}

TEST(FormatNamesTest, AFormatOfAnotherTypeIsImpossibleAndAnUnknownOneWrongUse)
{
    EXPECT_EQ(ExitCodeOf([] { return FormatByName("aac", 0x57415645); }), 5);
    EXPECT_EQ(ExitCodeOf([] { return FormatByName("quux", 0x57415645); }), 2);
    EXPECT_EQ(ExitCodeOf([] { return FormatByName("--", 0x57415645); }), 2);
}

TEST(FormatNamesTest, LinearPCMComesBeforeAACBeforeTheTypesOwn)
{
    EXPECT_EQ(DefaultFormat(0x57415645), 0x6C70636Du);  // WAVE: lpcm
    EXPECT_EQ(DefaultFormat(0x63616666), 0x6C70636Du);  // caff: lpcm
    EXPECT_EQ(DefaultFormat(0x6D346166), 0x61616320u);  // m4af: aac
    EXPECT_EQ(DefaultFormat(0x6D703466), 0x61616320u);  // mp4f: aac
    EXPECT_EQ(DefaultFormat(0x4D504733), 0x2E6D7033u);  // MPG3: .mp3
    EXPECT_EQ(DefaultFormat(0x666C6163), 0x666C6163u);  // flac
    EXPECT_EQ(DefaultFormat(0x12345678), 0u);
}

TEST(ExtensionNames, AreTheUsualOnesUnlessAnotherIsWritten)
{
    EXPECT_EQ(ExtensionFor(0x57415645, ""), "wav");
    EXPECT_EQ(ExtensionFor(0x57415645, "wave"), "wave");
    EXPECT_EQ(ExtensionFor(0x57415645, "WAVE"), "wave");
    EXPECT_EQ(ExtensionFor(0x41494646, "AIFF"), "aiff");
    EXPECT_EQ(ExtensionFor(0x41494646, ".aif"), "aif");
    EXPECT_EQ(ExtensionFor(0x6D346166, "m4af"), "m4a");
    EXPECT_EQ(ExtensionFor(0x61647473, ""), "aac");
    EXPECT_EQ(ExtensionFor(0x63616666, "flac"), "caf");
    EXPECT_EQ(ExtensionFor(0x12345678, ""), "");
    EXPECT_TRUE(HasExtensionOf("a.WAV", 0x52463634));
    EXPECT_FALSE(HasExtensionOf("a.wav", 0x63616666));
}

}  // namespace

}  // namespace host
