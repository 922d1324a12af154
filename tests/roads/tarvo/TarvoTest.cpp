// tarvo as a person or a program calls it.

#include "tests/roads/tarvo/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using nlohmann::json;
using testing_support::ProgramRun;
using testing_support::RunProgram;
using testing_support::RunTarvo;

std::string Made(const char* inName)
{
    return std::string(TEST_AUDIO) + "/" + inName;
}

constexpr const char* kMissing =
    "Apple AudioToolbox cannot open the specified file.\nError Code: -43";

class TarvoTest : public testing::Test
{
protected:
    TarvoTest()
    {
        std::string name = (fs::temp_directory_path() / "tarvo-test-XXXXXX").string();
        mFolder = mkdtemp(name.data());
    }
    ~TarvoTest() override { fs::remove_all(mFolder); }

    std::string Path(const char* inName) const { return (mFolder / inName).string(); }
    static std::string Bytes(const std::string& inPath)
    {
        std::ifstream file(inPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    fs::path mFolder;
};

TEST_F(TarvoTest, EveryCommandHasHelp)
{
    for (const char* command : {"info", "decode", "bench-read"})
    {
        const ProgramRun run = RunTarvo({command, "--help"});
        EXPECT_EQ(run.mExitCode, 0) << command;
        EXPECT_NE(run.mOutput.find("Usage:"), std::string::npos) << command;
        EXPECT_NE(run.mOutput.find("--json"), std::string::npos) << command;
        EXPECT_NE(run.mOutput.find("--trace"), std::string::npos) << command;
    }
    EXPECT_EQ(RunTarvo({"--help"}).mExitCode, 0);
}

TEST_F(TarvoTest, WrongUseExitsWithTwo)
{
    EXPECT_EQ(RunTarvo({}).mExitCode, 2);
    EXPECT_EQ(RunTarvo({"info"}).mExitCode, 2);
    EXPECT_EQ(RunTarvo({"play", "file"}).mExitCode, 2);
    EXPECT_EQ(RunTarvo({"info", "--louder", "file"}).mExitCode, 2);
}

TEST_F(TarvoTest, InfoTellsEveryKeyOfItsSchema)
{
    const ProgramRun run = RunTarvo({"info", "--json", Made("wav-s16.wav")});
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    EXPECT_EQ(run.mErrors, "");
    const json object = json::parse(run.mOutput);
    EXPECT_EQ(object.at("version"), 1);
    EXPECT_EQ(object.at("path"), Made("wav-s16.wav"));
    EXPECT_EQ(object.at("fileType"), "WAVE");
    EXPECT_EQ(object.at("format"), "lpcm");
    EXPECT_FALSE(object.at("description").get<std::string>().empty());
    EXPECT_EQ(object.at("sampleRate"), 44100);
    EXPECT_EQ(object.at("channels"), 2);
    EXPECT_EQ(object.at("channelLabels"), json::parse("[100,101]"));
    EXPECT_EQ(object.at("bitsPerChannel"), 16);
    EXPECT_EQ(object.at("sampleType"), 20);
    EXPECT_EQ(object.at("frames"), 50021);
    EXPECT_NEAR(object.at("duration").get<double>(), 50021.0 / 44100.0, 1e-9);
    EXPECT_EQ(object.at("bitrate"), 1411200);
    EXPECT_EQ(object.at("settings"),
              "AudioFileTypeID:0:1463899717;Bitrate:0:1411200;BitrateMode:0:0;BitsPerChannel:0:16;"
              "BytesPerFrame:0:4;BytesPerPacket:0:4;ChannelsPerFrame:0:2;FormatFlags:0:12;"
              "FormatID:0:1819304813;FramesPerPacket:0:1;SampleRateHigh:0:1088784512;"
              "SampleRateLow:0:0;VBRQuality:0:96;");
}

TEST_F(TarvoTest, InfoGivesOneObjectALineAndGoesOnBehindAFailure)
{
    const ProgramRun run =
        RunTarvo({"info", "--json", Made("aac.m4a"), Path("missing.wav"), Made("flac-16.flac")});
    EXPECT_EQ(run.mExitCode, 3);
    std::istringstream lines(run.mOutput);
    std::vector<json> objects;
    for (std::string line; std::getline(lines, line);)
        objects.push_back(json::parse(line));
    ASSERT_EQ(objects.size(), 3u);
    EXPECT_EQ(objects[0].at("format"), "aac ");
    EXPECT_EQ(objects[1].at("path"), Path("missing.wav"));
    EXPECT_EQ(objects[1].at("error").at("result"), -1);
    EXPECT_EQ(objects[1].at("error").at("text"), kMissing);
    EXPECT_EQ(objects[2].at("format"), "flac");
    EXPECT_EQ(run.mErrors, "tarvo: " + Path("missing.wav") + ": " + kMissing + "\n");
}

TEST_F(TarvoTest, InfoNamesTheChannelsForPeople)
{
    const ProgramRun run = RunTarvo({"info", Made("wav-s24-5.1.wav")});
    EXPECT_EQ(run.mExitCode, 0);
    EXPECT_NE(run.mOutput.find("L R C LFE Ls Rs"), std::string::npos) << run.mOutput;
    EXPECT_NE(run.mOutput.find("24-bit integer"), std::string::npos) << run.mOutput;
    EXPECT_NE(run.mOutput.find("0:00:00.833 (40007 frames)"), std::string::npos) << run.mOutput;
}

TEST_F(TarvoTest, DecodeWritesInterleavedSamples)
{
    const ProgramRun run =
        RunTarvo({"decode", "--json", "--raw", Path("out.raw"), Made("wav-s16.wav")});
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    const std::string wave = Bytes(Made("wav-s16.wav"));
    EXPECT_EQ(Bytes(Path("out.raw")), wave.substr(wave.size() - 50021 * 4));
    const json object = json::parse(run.mOutput);
    EXPECT_EQ(object.at("frames"), 50021);
    EXPECT_EQ(object.at("bytes"), 50021 * 4);
    EXPECT_GT(object.at("seconds").get<double>(), 0.0);
    EXPECT_GT(object.at("timesRealTime").get<double>(), 0.0);
}

TEST_F(TarvoTest, DecodeWritesSamplesAloneToStandardOutput)
{
    const ProgramRun run = RunTarvo({"decode", "--raw", "-", Made("wav-s16.wav")}, Path("out.raw"));
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    EXPECT_EQ(fs::file_size(Path("out.raw")), 50021u * 4);
    EXPECT_NE(run.mErrors.find("50021 frames"), std::string::npos) << run.mErrors;
}

TEST_F(TarvoTest, DecodeKeepsPaddingOnlyWhenAsked)
{
    const json plain = json::parse(RunTarvo({"decode", "--json", Made("aac-long.m4a")}).mOutput);
    EXPECT_EQ(plain.at("frames"), 150063);
    const json full =
        json::parse(RunTarvo({"decode", "--json", "--full", Made("aac-long.m4a")}).mOutput);
    EXPECT_EQ(full.at("frames"), 147 * 1024);
}

TEST_F(TarvoTest, DecodeRefusesATargetThatIsThere)
{
    std::ofstream(Path("out.raw")) << "old";
    const ProgramRun refused = RunTarvo({"decode", "--raw", Path("out.raw"), Made("wav-s16.wav")});
    EXPECT_EQ(refused.mExitCode, 4);
    EXPECT_EQ(Bytes(Path("out.raw")), "old");

    const ProgramRun forced =
        RunTarvo({"decode", "--force", "--raw", Path("out.raw"), Made("wav-s16.wav")});
    EXPECT_EQ(forced.mExitCode, 0) << forced.mErrors;
    EXPECT_EQ(fs::file_size(Path("out.raw")), 50021u * 4);
}

TEST_F(TarvoTest, DecodeNeverWritesOntoItsInput)
{
    fs::copy_file(Made("wav-s16.wav"), Path("in.wav"));
    EXPECT_EQ(RunTarvo({"decode", "--force", "--raw", Path("in.wav"), Path("in.wav")}).mExitCode,
              4);
    EXPECT_EQ(Bytes(Path("in.wav")), Bytes(Made("wav-s16.wav")));
}

TEST_F(TarvoTest, DecodeTellsOfAFullDisk)
{
    const ProgramRun run = RunTarvo({"decode", "--raw", "/dev/full", Made("wav-s16.wav")});
    EXPECT_EQ(run.mExitCode, 4);
    EXPECT_NE(run.mErrors.find("No space left on device"), std::string::npos) << run.mErrors;
}

TEST_F(TarvoTest, AFailedDecodeLeavesNoFile)
{
    EXPECT_EQ(RunTarvo({"decode", "--raw", Path("out.raw"), Path("missing.wav")}).mExitCode, 3);
    EXPECT_TRUE(fs::is_empty(mFolder));
}

TEST_F(TarvoTest, DecodeRefusesAnEmptyTarget)
{
    const ProgramRun run = RunTarvo({"decode", "--raw", "", Made("wav-s16.wav")});
    EXPECT_EQ(run.mExitCode, 4) << run.mErrors;
    EXPECT_EQ(run.mOutput, "");
}

TEST_F(TarvoTest, AnInterruptEndsItWithTheSignalsNumber)
{
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    // Nobody reads, so that it waits for ever.
    const ProgramRun run =
        RunProgram({"/usr/bin/timeout", "--preserve-status", "-s", "INT", "-k", "20", "1",
                    TEST_TARVO, "decode", "--raw", Path("pipe"), Made("wav-s16.wav")});
    EXPECT_EQ(run.mExitCode, 130) << run.mErrors;
    EXPECT_EQ(run.mErrors, "");
}

TEST_F(TarvoTest, BenchReadPrintsItsLine)
{
    const ProgramRun run = RunTarvo({"bench-read", Made("flac-16.flac")});
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    const json object = json::parse(run.mOutput);
    EXPECT_EQ(object.size(), 7u);
    EXPECT_EQ(object.at("frames"), 50021);
    EXPECT_EQ(object.at("channels"), 2);
    EXPECT_EQ(object.at("rate"), 44100);
    EXPECT_EQ(object.at("bytes"), 50021 * 8);
    EXPECT_GT(object.at("seconds").get<double>(), 0.0);
    EXPECT_GT(object.at("cpu").get<double>(), 0.0);
    EXPECT_GT(object.at("rss_kb").get<int>(), 1000);
}

TEST_F(TarvoTest, TraceShowsTheReadersLines)
{
    const ProgramRun run = RunTarvo({"info", "--trace", "6", Made("wav-s16.wav")});
    EXPECT_EQ(run.mExitCode, 0);
    EXPECT_NE(run.mErrors.find("<appleaudiotoolbox> <6>  Input Format:  2 ch,  44100 Hz, 'lpcm'"),
              std::string::npos)
        << run.mErrors;
}

TEST_F(TarvoTest, AMissingPlugInIsTold)
{
    const ProgramRun run = RunTarvo({"info", "--plug-in", mFolder.string(), Made("wav-s16.wav")});
    EXPECT_EQ(run.mExitCode, 1);
    EXPECT_NE(run.mErrors.find("cannot load the plug-in"), std::string::npos) << run.mErrors;
}

}  // namespace
