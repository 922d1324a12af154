// The built bundle under a host that shares nothing with it but the binary interface: samples,
// labels, texts, results, and a quiet end of the process.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Lines = std::vector<std::string>;

struct Outcome
{
    Lines mLines;
    int mStatus = -1;  // what the process ended with, -1 if it did not exit
};

std::filesystem::path Programs()
{
    return std::filesystem::canonical("/proc/self/exe").parent_path();
}

Outcome RunHost(const std::string& inArguments, const std::string& inHost = "ForeignHost")
{
    const auto plugin = Programs().parent_path() / "lib/TarvoAT.bundle/Contents/Linux/TarvoAT.so";
    const std::string command = "cd / && timeout 60 '" + (Programs() / inHost).string() + "' '" +
                                plugin.string() + "' " + inArguments + " 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    std::array<char, 4096> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe))
        text.append(block.data(), count);
    const int status = pclose(pipe);

    Outcome run;
    run.mStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        run.mLines.push_back(line);
    return run;
}

// The lines that begin with a word or more.
Lines Of(const Outcome& inRun, const std::string& inStart)
{
    Lines found;
    for (const std::string& line : inRun.mLines)
        if (line.compare(0, inStart.size(), inStart) == 0)
            found.push_back(line);
    return found;
}

std::string LittleEndian(std::uint32_t inValue, int inBytes)
{
    std::string bytes;
    for (int index = 0; index < inBytes; ++index)
        bytes += static_cast<char>(inValue >> (8 * index));
    return bytes;
}

std::string Wave(int inChannels, int inRate, int inBits, const std::string& inData)
{
    const int frameBytes = inChannels * inBits / 8;
    return "RIFF" + LittleEndian(static_cast<std::uint32_t>(36 + inData.size()), 4) + "WAVEfmt " +
           LittleEndian(16, 4) + LittleEndian(1, 2) +
           LittleEndian(static_cast<std::uint32_t>(inChannels), 2) +
           LittleEndian(static_cast<std::uint32_t>(inRate), 4) +
           LittleEndian(static_cast<std::uint32_t>(inRate * frameBytes), 4) +
           LittleEndian(static_cast<std::uint32_t>(frameBytes), 2) +
           LittleEndian(static_cast<std::uint32_t>(inBits), 2) + "data" +
           LittleEndian(static_cast<std::uint32_t>(inData.size()), 4) + inData;
}

struct ForeignHost : testing::Test
{
    ForeignHost()
    {
        std::string folder = testing::TempDir() + "TarvoATForeignHost.XXXXXX";
        mFolder = mkdtemp(folder.data());
    }
    ~ForeignHost() override { std::filesystem::remove_all(mFolder); }

    std::string Write(const std::string& inName, const std::string& inBytes) const
    {
        std::ofstream(mFolder / inName, std::ios::binary) << inBytes;
        return "'" + (mFolder / inName).string() + "'";
    }

    // Ten frames of 16-bit stereo, left 0, 1000, ... 9000, right the same below zero.
    std::string TenFrames(const std::string& inName) const
    {
        std::string data;
        for (int frame = 0; frame < 10; ++frame)
            data += LittleEndian(static_cast<std::uint32_t>(1000 * frame), 2) +
                    LittleEndian(static_cast<std::uint32_t>(-1000 * frame), 2);
        return Write(inName, Wave(2, 8000, 16, data));
    }

    std::filesystem::path mFolder;
};

// Without the word in front.
Lines Words(const std::string& inLine)
{
    std::istringstream words(inLine);
    Lines found;
    for (std::string word; words >> word;)
        found.push_back(word);
    if (!found.empty())
        found.erase(found.begin());
    return found;
}

// By unsigned bytes, each once.
bool IsAscending(const Lines& inTexts)
{
    return std::adjacent_find(inTexts.begin(), inTexts.end(), std::greater_equal<>()) ==
           inTexts.end();
}

bool HasAll(const Lines& inTexts, const Lines& inWanted)
{
    return std::all_of(inWanted.begin(), inWanted.end(),
                       [&](const std::string& inText) {
        return std::find(inTexts.begin(), inTexts.end(), inText) != inTexts.end();
    });
}

Lines Reversed(Lines inTexts)
{
    std::reverse(inTexts.begin(), inTexts.end());
    return inTexts;
}

TEST_F(ForeignHost, HearsWhatThePlugInIsAndHas)
{
    const Outcome run = RunHost("-i");
    EXPECT_EQ(run.mStatus, 0);
    ASSERT_EQ(run.mLines.size(), 13u);
    EXPECT_EQ(Lines(run.mLines.begin(), run.mLines.begin() + 4),
              (Lines{"SetPluginInterfaceVersion 1 2", "GetHostInterfaceVersion two places",
                     "SetPluginIdentity 345FFA79-2BDA-42DD-844B-CA7D18FF7A26 "
                     "Apple Audio Toolbox Tarvo plug-in",
                     "AddImportFilter Apple Audio Toolbox, -, null"}));
    EXPECT_EQ(run.mLines[6], "AddExportFilter Apple Audio Toolbox, -, null");
    EXPECT_EQ(run.mLines[9], "AddExportFilter AAC Audio, 1633973363, null");
    EXPECT_EQ(run.mLines[12], "= 0 0");
}

TEST_F(ForeignHost, WalksEveryListOfExtensionsBothWays)
{
    const Outcome run = RunHost("-i");
    const Lines forwards = Of(run, "forwards");
    const Lines backwards = Of(run, "backwards");
    ASSERT_EQ(forwards.size(), 3u);
    ASSERT_EQ(backwards.size(), 3u);
    for (std::size_t filter = 0; filter < 3; ++filter)
        EXPECT_EQ(Words(backwards[filter]), Reversed(Words(forwards[filter])));

    Lines imported = Words(forwards[0]);
    ASSERT_FALSE(imported.empty());
    EXPECT_EQ(imported.back(), "sdir") << "is no type's and stands behind the others";
    imported.pop_back();
    EXPECT_TRUE(IsAscending(imported)) << forwards[0];
    EXPECT_TRUE(HasAll(imported, {"wav", "aif", "m4a", "mp3", "flac", "caf"})) << forwards[0];

    const Lines exported = Words(forwards[1]);
    EXPECT_TRUE(IsAscending(exported)) << forwards[1];
    EXPECT_TRUE(HasAll(exported, {"wav", "aif", "m4a", "mp3", "flac", "caf"})) << forwards[1];
    EXPECT_FALSE(HasAll(exported, {"sdir"}));
    EXPECT_TRUE(HasAll(exported, Words(forwards[2]))) << "the AAC filter's are among them";
    EXPECT_EQ(Words(forwards[2]), (Lines{"aac", "adts"}));
}

TEST_F(ForeignHost, HearsTheSameAtEachIntroduction)
{
    const Outcome run = RunHost("-i " + TenFrames("between.wav") + " -i -k -i");
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(Of(run, "= 0"), (Lines{"= 0 0", "= 0 0", "= 0 0"}));
    ASSERT_GT(run.mLines.size(), 39u);
    const Lines first(run.mLines.begin(), run.mLines.begin() + 13);
    EXPECT_EQ(first.back(), "= 0 0");
    EXPECT_EQ(Lines(run.mLines.end() - 26, run.mLines.end() - 13), first);
    EXPECT_EQ(Lines(run.mLines.end() - 13, run.mLines.end()), first);
    EXPECT_EQ(Of(run, "SetTotalSampleCount"), (Lines{"SetTotalSampleCount 10"}));
}

TEST_F(ForeignHost, OpensAFileInTheOrderOfTheInterface)
{
    const Outcome run = RunHost(TenFrames("a b%20\xC3\xA4.wav"));
    ASSERT_EQ(run.mStatus, 0);
    ASSERT_GE(run.mLines.size(), 7u);
    EXPECT_EQ(run.mLines[0], "GetErrorInterface");
    EXPECT_EQ(run.mLines[1], "GetFilePath");
    EXPECT_EQ(run.mLines[2].compare(0, 21, "SetFormatDescription "), 0);
    EXPECT_GT(run.mLines[2].size(), 21u);
    EXPECT_EQ(run.mLines[2].find("\\u000A"), std::string::npos) << run.mLines[2];
    EXPECT_EQ(run.mLines[3], "SetBitrate 256000");
    EXPECT_EQ(run.mLines[4], "SetFileHandle");
    EXPECT_EQ(run.mLines[5], "SetOpenStatus 0");
    EXPECT_EQ(run.mLines[6], "= 5 0");
}

TEST_F(ForeignHost, HearsTheFormat)
{
    const Outcome run = RunHost(TenFrames("stereo.wav"));
    ASSERT_GE(run.mLines.size(), 16u);
    EXPECT_EQ(
        Lines(run.mLines.begin() + 7, run.mLines.begin() + 16),
        (Lines{"GetErrorInterface", "SetChannelCount 2", "SetSampleRate 8000", "SetSampleType 20",
               "SetSampleCount 10", "SetChannelLabel 0 100", "SetChannelLabel 1 101",
               "SetPrivateSettings AudioFileTypeID:0:1463899717;Bitrate:0:256000;"
               "BitrateMode:0:0;BitsPerChannel:0:16;BytesPerFrame:0:4;BytesPerPacket:0:4;"
               "ChannelsPerFrame:0:2;FormatFlags:0:12;FormatID:0:1819304813;"
               "FramesPerPacket:0:1;SampleRateHigh:0:1086275584;SampleRateLow:0:0;"
               "VBRQuality:0:96;",
               "= 6 0"}));
}

TEST_F(ForeignHost, GetsEverySampleAndTheTotal)
{
    const Outcome run = RunHost(TenFrames("stereo.wav"));
    for (int frame = 0; frame < 10; ++frame)
    {
        const std::string number = std::to_string(frame);
        EXPECT_EQ(Of(run, "0 " + number + " "),
                  (Lines{"0 " + number + " " + std::to_string(1000 * frame)}));
        EXPECT_EQ(Of(run, "1 " + number + " "),
                  (Lines{"1 " + number + " " + std::to_string(-1000 * frame)}));
    }
    EXPECT_EQ(Of(run, "SetSamplesRead "),
              (Lines{"SetSamplesRead 0", "SetSamplesRead 4", "SetSamplesRead 0", "SetSamplesRead 4",
                     "SetSamplesRead 0", "SetSamplesRead 2"}));
    EXPECT_EQ(Of(run, "SetTotalSampleCount"), (Lines{"SetTotalSampleCount 10"}));
    EXPECT_EQ(Of(run, "= "), (Lines{"= 5 0", "= 6 0", "= 7 0", "= 7 0", "= 7 0", "= 12 0"}));
}

TEST_F(ForeignHost, IsAskedInTheOrderOfTheInterfaceAtEachRead)
{
    const Outcome run = RunHost("-b 100 " + TenFrames("stereo.wav"));
    ASSERT_GE(run.mLines.size(), 26u);
    EXPECT_EQ(Lines(run.mLines.begin() + 16, run.mLines.begin() + 26),
              (Lines{"GetSampleCount", "SetSamplesRead 0", "GetChannelBuffer 0",
                     "GetChannelBuffer 1", "GetStartSample", "GetBufferSize", "GetSampleCount",
                     "SetSamplesRead 10", "SetTotalSampleCount 10", "= 7 0"}));
}

TEST_F(ForeignHost, AReadThatEndsAtTheLastFrameTellsTheTotalAtTheNext)
{
    const Outcome run = RunHost("-b 10 " + TenFrames("stereo.wav"));
    EXPECT_EQ(Of(run, "SetSamplesRead "), (Lines{"SetSamplesRead 0", "SetSamplesRead 10",
                                                 "SetSamplesRead 0", "SetSamplesRead 0"}));
    EXPECT_EQ(Of(run, "SetTotalSampleCount"), (Lines{"SetTotalSampleCount 10"}));
}

TEST_F(ForeignHost, GetsOtherWidthsInTheHostsSampleTypes)
{
    const Outcome bits8 = RunHost(Write("8.wav", Wave(1, 8000, 8, std::string("\x80\xFF\x00", 3))));
    EXPECT_EQ(Of(bits8, "SetSampleType"), (Lines{"SetSampleType 10"}));
    EXPECT_EQ(Of(bits8, "SetChannelLabel"), (Lines{"SetChannelLabel 0 0"}));
    EXPECT_EQ(Of(bits8, "0 "), (Lines{"0 0 128", "0 1 255", "0 2 0"}));

    const Outcome bits24 = RunHost(
        Write("24.wav", Wave(1, 8000, 24, std::string("\x01\x00\x00\xFF\xFF\x7F\x00\x00\x80", 9))));
    EXPECT_EQ(Of(bits24, "SetSampleType"), (Lines{"SetSampleType 30"}));
    EXPECT_EQ(Of(bits24, "0 "), (Lines{"0 0 1", "0 1 8388607", "0 2 -8388608"}));

    const Outcome bits32 =
        RunHost(Write("32.wav", Wave(1, 8000, 32, std::string("\0\0\0\x40\0\0\0\x80", 8))));
    EXPECT_EQ(Of(bits32, "SetSampleType"), (Lines{"SetSampleType 40"}));
    EXPECT_EQ(Of(bits32, "0 "), (Lines{"0 0 0.5", "0 1 -1"}));
}

TEST_F(ForeignHost, HearsWhyAFileCannotBeOpenedAndGoesOn)
{
    const Outcome run = RunHost("'" + (mFolder / "missing.wav").string() + "' " +
                                Write("text.wav", "no audio at all") + " " + TenFrames("good.wav"));
    EXPECT_EQ(run.mStatus, 0);
    ASSERT_GE(run.mLines.size(), 8u);
    const std::string text =
        "SetErrorText Apple AudioToolbox cannot open the specified file.\\u000AError Code: ";
    EXPECT_EQ(run.mLines[0], "GetErrorInterface");
    EXPECT_EQ(run.mLines[1], "GetFilePath");
    EXPECT_EQ(run.mLines[2], text + "-43");
    EXPECT_EQ(run.mLines[3], "= 5 -1");
    EXPECT_EQ(run.mLines[6], text + "'typ?'");
    EXPECT_EQ(run.mLines[7], "= 5 -1");
    EXPECT_EQ(Of(run, "SetTotalSampleCount"), (Lines{"SetTotalSampleCount 10"}));
}

TEST_F(ForeignHost, EndsQuietlyWithASessionOpenAndTheModuleRunning)
{
    const Outcome run = RunHost("-k " + TenFrames("stereo.wav"));
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_TRUE(Of(run, "= 12").empty());
    EXPECT_EQ(run.mLines.back(), "1 9 -9000") << "nothing is said behind the last sample";
}

TEST_F(ForeignHost, CanPutItsOwnPlatformInFront)
{
    const Outcome run = RunHost(TenFrames("stereo.wav"), "ForeignHostWithPlatform");
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mLines.back(), "= 5 -1");
    EXPECT_EQ(Of(run, "SetErrorText"),
              (Lines{"SetErrorText Apple AudioToolbox cannot open the specified "
                     "file.\\u000AError Code: 'nope'"}));
}

TEST_F(ForeignHost, CanRefuseToCreateInFrontOfThePlatform)
{
    const Outcome run = RunHost("-w /a/b.wav", "ForeignHostWithPlatform");
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(run.mLines, (Lines{"GetErrorInterface", "GetFilePath", "GetFormatInterface",
                                 "GetPrivateSettings", "GetSampleType", "GetChannelCount",
                                 "GetChannelLabel 0", "GetChannelLabel 1", "GetSampleCount",
                                 "SetErrorText Apple AudioToolbox cannot create the specified "
                                 "file.\\u000AError Code: 'nop!'",
                                 "= 17 -1"}));
}

TEST_F(ForeignHost, WritesAFileAndReadsItBack)
{
    const std::string path = "'" + (mFolder / "written.wav").string() + "'";
    const Outcome run = RunHost("-w " + path + " -b 100 " + path);
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_EQ(Of(run, "= "), (Lines{"= 17 0", "= 18 0", "= 18 0", "= 18 0", "= 19 0", "= 5 0",
                                    "= 6 0", "= 7 0", "= 12 0"}));
    ASSERT_GT(run.mLines.size(), 30u);
    EXPECT_EQ(Lines(run.mLines.begin() + 9, run.mLines.begin() + 18),
              (Lines{"SetFormatDescription WAVE\\u000ALinear PCM, 16 bit little-endian signed "
                     "integer",
                     "SetWriterHandle", "= 17 0", "GetErrorInterface", "GetSampleCount",
                     "GetChannelBuffer 0", "GetChannelBuffer 1", "GetStartSample", "= 18 0"}));
    for (int frame = 0; frame < 10; ++frame)
    {
        const std::string number = std::to_string(frame);
        EXPECT_EQ(Of(run, "0 " + number + " "),
                  (Lines{"0 " + number + " " + std::to_string(1000 * frame)}));
        EXPECT_EQ(Of(run, "1 " + number + " "),
                  (Lines{"1 " + number + " " + std::to_string(-1000 * frame)}));
    }
}

}  // namespace
