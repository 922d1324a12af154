// tarvo convert, as a person or a program calls it.

#include "tests/roads/tarvo/ConvertFixture.h"

#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using nlohmann::json;
using testing_support::ProgramRun;
using testing_support::RunTarvo;

class ConvertTest : public testing_support::ConvertFixture
{
protected:
    json DryRun(std::vector<std::string> inArguments) const
    {
        inArguments.insert(inArguments.end(), {"--dry-run", "--json"});
        const ProgramRun run = Convert(inArguments);
        EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
        return json::parse(run.mOutput);
    }
};

TEST_F(ConvertTest, KeepsEverySampleBetweenLosslessTypes)
{
    const std::string source = Made("wav-s24.wav");
    const std::string samples = Samples(source);
    for (const char* name : {"a.wav", "a.aiff", "a.aifc", "a.caf", "a.au", "a.w64", "a.rf64"})
    {
        const ProgramRun run = Convert({source, Path(name), "--verify"});
        EXPECT_EQ(run.mExitCode, 0) << name << run.mErrors;
        EXPECT_EQ(run.mErrors, "") << name;
        EXPECT_TRUE(Samples(Path(name)) == samples) << name;
        EXPECT_NE(run.mOutput.find(": 50021 frames, "), std::string::npos) << run.mOutput;
        EXPECT_NE(run.mOutput.find(", verified"), std::string::npos) << run.mOutput;
    }
}

TEST_F(ConvertTest, WritesEveryTypeAndItsCopyBearsTheVerification)
{
    struct Row
    {
        const char* mName;
        const char* mFormat;  // "": the default
        const char* mTold;
        bool mIsExact;
    };
    for (const Row& row : {Row{"a.flac", "", "flac", true},   {"a.m4a", "alac", "alac", true},
                           {"a.caf", "alac", "alac", true},   {"a.mp4", "flac", "flac", true},
                           {"b.m4a", "", "aac ", false},      {"a.m4b", "", "aac ", false},
                           {"b.mp4", "", "aac ", false},      {"a.3gp", "", "aac ", false},
                           {"a.3g2", "", "aac ", false},      {"a.aac", "", "aac ", false},
                           {"a.loas", "", "aac ", false},     {"b.caf", "aac", "aac ", false},
                           {"a.mp3", "", ".mp3", false},      {"c.mp4", "mp3", ".mp3", false},
                           {"a.mp2", "", ".mp2", false},      {"a.ac3", "", "ac-3", false},
                           {"a.ec3", "", "ec-3", false},      {"a.wav", "alaw", "alaw", false},
                           {"b.wav", "mulaw", "ulaw", false}, {"c.caf", "ima4", "ima4", false}})
    {
        std::vector<std::string> arguments = {Made("wav-s16.wav"), Path(row.mName), "--verify",
                                              "--json"};
        if (*row.mFormat)
            arguments.insert(arguments.end(), {"--format", row.mFormat});
        const ProgramRun run = Convert(arguments);
        ASSERT_EQ(run.mExitCode, 0) << row.mName << run.mErrors;
        const json object = json::parse(run.mOutput);
        EXPECT_EQ(object["format"], row.mTold) << row.mName;
        EXPECT_EQ(object["frames"], 50021) << row.mName;
        EXPECT_EQ(object["verification"]["exact"], row.mIsExact) << row.mName;
        if (!row.mIsExact)
        {
            EXPECT_GT(object["verification"]["signalToNoise"].get<double>(), 15.0) << row.mName;
        }
        EXPECT_EQ(Info(Path(row.mName))["format"], row.mTold) << row.mName;
    }
}

TEST_F(ConvertTest, FloatsThatBecome32BitIntegersBearTheVerification)
{
    for (const char* name : {"a.aiff", "a.wav"})
    {
        const ProgramRun run =
            Convert({Made("wav-f32.wav"), Path(name), "--depth", "32i", "--verify", "--json"});
        ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
        EXPECT_EQ(json::parse(run.mOutput)["verification"]["exact"], true) << name;
    }
}

// A raw stream of no packets is no file that can be opened again.
TEST_F(ConvertTest, ACopyThatCannotBeReadFailsTheVerificationAndNotTheSource)
{
    const std::string wave(
        "RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x44\xAC\0\0\x88\x58\1\0\2\0"
        "\x10\0data\0\0\0\0",
        44);
    std::ofstream(Path("none.wav"), std::ios::binary) << wave;
    EXPECT_EQ(Convert({Path("none.wav"), Path("b.aac")}).mExitCode, 0);
    const ProgramRun run = Convert({Path("none.wav"), Path("a.aac"), "--verify"});
    EXPECT_EQ(run.mExitCode, 1);
    EXPECT_EQ(run.mErrors.find("tarvo: " + Path("a.aac") + ": cannot be verified: "), 0u)
        << run.mErrors;
    EXPECT_FALSE(fs::exists(Path("a.aac")));
}

TEST_F(ConvertTest, TheStoredRateHoldsWhereTheAudiosIsImpossible)
{
    ASSERT_EQ(Convert({Made("wav-s16.wav"), Path("96.wav"), "--rate", "96k"}).mExitCode, 0);
    ASSERT_EQ(Settings({"--type", "mp3", "--rate", "32k", "--save", "low"}).mExitCode, 0);
    const json stored =
        DryRun({Path("96.wav"), Path("a.mp3"), "--settings", "low", "--repair", "stored"});
    EXPECT_EQ(stored["sampleRate"], 32000);
    const json fitted = DryRun({Path("96.wav"), Path("a.mp3"), "--settings", "low"});
    EXPECT_EQ(fitted["sampleRate"], 48000);
}

TEST_F(ConvertTest, ARateThatCannotBeIsResampledToTheNearest)
{
    ASSERT_EQ(Convert({Made("wav-s16.wav"), Path("96.wav"), "--rate", "96k"}).mExitCode, 0);
    ASSERT_EQ(Convert({Path("96.wav"), Path("a.mp3"), "--verify"}).mExitCode, 0);
    EXPECT_EQ(Info(Path("a.mp3"))["sampleRate"], 48000);
}

TEST_F(ConvertTest, BeyondFourGiBIsSettledBeforeTheFirstByte)
{
    // A sparse RF64 file of 5 GiB, made of our own head.
    ASSERT_EQ(Convert({Made("wav-s16.wav"), Path("big.wav"), "--type", "RF64"}).mExitCode, 0);
    std::string head = Bytes(Path("big.wav")).substr(0, 128);
    const std::size_t ds64 = head.find("ds64");
    const std::size_t data = head.find("data");
    ASSERT_NE(ds64, std::string::npos);
    ASSERT_NE(data, std::string::npos);
    const std::uint64_t bytes = 5ULL << 30;
    const std::uint64_t sizes[] = {bytes + data, bytes, bytes / 4};
    std::memcpy(head.data() + ds64 + 8, sizes, sizeof(sizes));
    std::memset(head.data() + data + 4, 0xFF, 4);
    std::memset(head.data() + 4, 0xFF, 4);
    std::memcpy(head.data(), "RF64", 4);
    std::ofstream(Path("big.wav"), std::ios::binary) << head;
    fs::resize_file(Path("big.wav"), bytes + data + 8);
    ASSERT_EQ(Info(Path("big.wav"))["frames"], bytes / 4);

    EXPECT_EQ(DryRun({Path("big.wav"), Path("a.wav")})["fileType"], "RF64");
    EXPECT_EQ(DryRun({Path("big.wav"), Path("a.caf")})["fileType"], "caff");
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{Path("a.wav"), "--type", "WAVE"},
          {Path("a.aiff")},
          {Path("a.au")}})
    {
        std::vector<std::string> arguments = {Path("big.wav")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramRun run = Convert(arguments);
        EXPECT_EQ(run.mExitCode, 5) << options.front();
        EXPECT_NE(run.mErrors.find("5.0 GiB"), std::string::npos) << run.mErrors;
    }
    EXPECT_EQ(FilesIn(), 1u);
}

TEST_F(ConvertTest, TellsEveryKeyOfItsSchema)
{
    const std::string output = Path("a.wav");
    const ProgramRun run =
        Convert({Made("wav-s16.wav"), output, "--json", "--verify", "--type", "WAVE"});
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    const json object = json::parse(run.mOutput);
    std::set<std::string> keys;
    for (const auto& [key, value] : object.items())
        keys.insert(key);
    EXPECT_EQ(keys,
              (std::set<std::string>{"version",     "path",       "output",      "dryRun",
                                     "fileType",    "format",     "description", "sampleRate",
                                     "channels",    "sampleType", "lossy",       "estimatedBytes",
                                     "mimeType",    "extensions", "settings",    "changes",
                                     "frames",      "bytes",      "seconds",     "timesRealTime",
                                     "verification"}));
    EXPECT_EQ(object["version"], 1);
    EXPECT_EQ(object["path"], Made("wav-s16.wav"));
    EXPECT_EQ(object["output"], output);
    EXPECT_EQ(object["dryRun"], false);
    EXPECT_EQ(object["fileType"], "WAVE");
    EXPECT_EQ(object["format"], "lpcm");
    EXPECT_EQ(object["frames"], 50021);
    EXPECT_EQ(object["bytes"], fs::file_size(output));
    EXPECT_EQ(object["lossy"], false);
    EXPECT_EQ(object["changes"], json::array());
    EXPECT_EQ(object["verification"]["exact"], true);
    EXPECT_EQ(object["verification"]["frames"], 50021);
    EXPECT_EQ(object["verification"]["delay"], 0);
    EXPECT_TRUE(object["verification"]["signalToNoise"].is_null());
}

TEST_F(ConvertTest, ADryRunTellsAndWritesNothing)
{
    const ProgramRun run = Convert({Made("wav-s16.wav"), Path("a.mp3"), "--dry-run", "--json"});
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    const json object = json::parse(run.mOutput);
    EXPECT_EQ(object["dryRun"], true);
    EXPECT_EQ(object["description"], "MPEG Layer 3\nMPEG Layer 3\nCBR: 128 kbps");
    // 128000 bits for 50021 / 44100 s, and 2048 bits.
    EXPECT_EQ(object["estimatedBytes"], 18404);
    EXPECT_EQ(object["extensions"], json::parse(R"(["mp3","mpga"])"));
    EXPECT_FALSE(object["mimeType"].get<std::string>().empty());
    EXPECT_FALSE(object.contains("frames"));
    EXPECT_EQ(FilesIn(), 0u);

    const ProgramRun text = Convert({Made("wav-s16.wav"), Path("a.mp3"), "--dry-run"});
    EXPECT_NE(text.mOutput.find("CBR: 128 kbps"), std::string::npos);
    EXPECT_NE(text.mOutput.find("about 18404 bytes"), std::string::npos);
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(ConvertTest, TheSizeIsToldAheadWhereEverySampleCostsTheSame)
{
    // Long enough that headers and the last block count little.
    ASSERT_EQ(Convert({Made("wav-s16.wav"), Path("long.wav"), "--rate", "192k"}).mExitCode, 0);
    for (const char* format : {"pcm", "alaw", "mulaw", "msadpcm", "imaadpcm", "gsm"})
    {
        const std::string copy = Path(std::string(format) + ".wav");
        const ProgramRun run = Convert({Path("long.wav"), copy, "--format", format, "--json"});
        ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
        const json object = json::parse(run.mOutput);
        EXPECT_NEAR(object["estimatedBytes"].get<double>() / object["bytes"].get<double>(), 1.0,
                    0.1)
            << format;
        const auto planned = DryRun({Path("long.wav"), copy, "--format", format});
        EXPECT_EQ(planned["estimatedBytes"], object["estimatedBytes"]) << format;
    }
}

TEST_F(ConvertTest, ResamplesAndMixesWhenAsked)
{
    const std::string output = Path("a.wav");
    const ProgramRun run =
        Convert({Made("wav-s16.wav"), output, "--rate", "22.05k", "--channels", "1"});
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    const json info = Info(output);
    EXPECT_EQ(info["sampleRate"], 22050);
    EXPECT_EQ(info["channels"], 1);
    EXPECT_NEAR(info["frames"].get<double>(), 25010.5, 1.0);
}

TEST_F(ConvertTest, NarrowsWithAndWithoutDither)
{
    const std::string source = Made("wav-s24.wav");
    for (const char* dither : {"tpdf", "none"})
        ASSERT_EQ(Convert({source, Path(std::string(dither) + ".wav"), "--depth", "16", "--dither",
                           dither})
                      .mExitCode,
                  0);
    EXPECT_EQ(Info(Path("none.wav"))["bitsPerChannel"], 16);
    EXPECT_FALSE(Samples(Path("none.wav")) == Samples(Path("tpdf.wav")));
}

TEST_F(ConvertTest, DecidesDepthBySource)
{
    EXPECT_EQ(DryRun({Made("flac-16.flac"), Path("a.wav")})["sampleType"], 20);
    EXPECT_EQ(DryRun({Made("aac.m4a"), Path("a.wav")})["sampleType"], 30);
    EXPECT_EQ(DryRun({Made("wav-f32.wav"), Path("a.wav")})["sampleType"], 40);
    EXPECT_EQ(DryRun({Made("wav-u8.wav"), Path("a.aiff")})["sampleType"], 10);
}

TEST_F(ConvertTest, TellsWhatWasChangedToFit)
{
    ASSERT_EQ(Convert({Made("wav-s16.wav"), Path("96.wav"), "--rate", "96k"}).mExitCode, 0);
    const ProgramRun run = Convert({Path("96.wav"), Path("a.mp3"), "--dry-run"});
    EXPECT_EQ(run.mExitCode, 0);
    EXPECT_EQ(run.mErrors,
              "tarvo: " + Path("96.wav") + ": sample rate 96000 Hz is not available: 48000 Hz\n");
    const ProgramRun quiet = Convert({Path("96.wav"), Path("a.mp3"), "--dry-run", "--quiet"});
    EXPECT_EQ(quiet.mErrors, "");
}

TEST_F(ConvertTest, SixChannelsBecomeTwoWhereNoMoreFit)
{
    const json object = DryRun({Made("wav-s24-5.1.wav"), Path("a.mp3")});
    EXPECT_EQ(object["channels"], 2);
    EXPECT_EQ(object["changes"], json::parse(R"(["6 channels are not available: 2"])"));
    EXPECT_NE(object["settings"].get<std::string>().find("Bitrate:0:128000;"), std::string::npos);
}

TEST_F(ConvertTest, ImpossibleSettingsExitWithFive)
{
    const std::string source = Made("wav-s16.wav");
    const std::vector<std::vector<std::string>> cases = {
        {Path("a.mp3"), "--rate", "96000"},
        {Path("a.mp3"), "--bitrate", "191k"},
        {Path("a.ac3"), "--mode", "vbr"},
        {Path("a.ac3"), "--quality", "high"},
        {Path("a.wav"), "--depth", "20"},
        {Path("a.wav"), "--format", "aac"},
        {Path("a.wav"), "--bitrate", "128k"},
        {Path("a.amr")},
        {Path("a.mp3"), "--repair", "none", "--rate", "5000"},
        {Path("a.wav"), "--settings", "AudioFileTypeID:0:305419896;"},
        {Path("a.wav"), "--settings", "FormatID:0:305419896;"},
    };
    for (const auto& options : cases)
    {
        std::vector<std::string> arguments = {source, "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramRun run = Convert(arguments);
        EXPECT_EQ(run.mExitCode, 5) << options.back() << run.mErrors;
        const json object = json::parse(run.mOutput);
        EXPECT_FALSE(object["error"]["text"].get<std::string>().empty()) << options.back();
        EXPECT_NE(run.mErrors.find(object["error"]["text"].get<std::string>()), std::string::npos);
    }
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(ConvertTest, WrongUseExitsWithTwoAndTellsProgramsToo)
{
    const std::string source = Made("wav-s16.wav");
    const std::vector<std::vector<std::string>> cases = {
        {},
        {source},
        {source, Path("a.wav"), Path("b.wav")},
        {source, "-"},
        {source, Path("a.xyz")},
        {source, Path("noextension")},
        {source, Path("a.wav"), "--type", "xyz"},
        {source, Path("a.wav"), "--format", "quux"},
        {source, Path("a.wav"), "--depth", "7"},
        {source, Path("a.wav"), "--rate", "0"},
        {source, Path("a.wav"), "--channels", "65"},
        {source, Path("a.wav"), "--repair", "all"},
        {source, Path("a.wav"), "--dither", "loud"},
        {source, Path("a.wav"), "--progress", "bar"},
        {source, Path("a.wav"), "--louder"},
        {source, Path("a.wav"), "--settings", "no-such-preset"},
        {source, Path("a.wav"), "--settings", "../../etc/passwd"},
        {source, Path("a.wav"), "--jobs", "2"},
        {source, "--out-dir", Path("")},
        {source, "--out-dir", Path("missing"), "--type", "wav"},
        {source, source, "--out-dir", Path(""), "--type", "wav"},
        {source, "--out-dir", Path(""), "--type", "wav", "--jobs", "0"},
    };
    for (std::size_t i = 0; i < cases.size(); ++i)
    {
        std::vector<std::string> arguments = cases[i];
        arguments.push_back("--json");
        const ProgramRun run = Convert(arguments);
        EXPECT_EQ(run.mExitCode, 2) << "case " << i << run.mErrors;
        const json object = json::parse(run.mOutput);
        EXPECT_EQ(object["version"], 1) << i;
        EXPECT_FALSE(object["error"]["text"].get<std::string>().empty()) << i;
    }
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(ConvertTest, ChannelsThatCannotBeMixedAreNotSaidToBecomeFewer)
{
    const std::string tenChannels(
        "RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\1\0\x0A\0\x44\xAC\0\0\xD0\x75\x0D\0\x14\0\x10\0"
        "data\0\0\0\0",
        44);
    std::ofstream(Path("ten.wav"), std::ios::binary) << tenChannels;
    for (const char* option : {"--force", "--dry-run"})
    {
        const ProgramRun run = Convert({Path("ten.wav"), Path("a.mp3"), option});
        EXPECT_EQ(run.mExitCode, 5);
        EXPECT_EQ(run.mErrors, "tarvo: " + Path("ten.wav") +
                                   ": 10 channels without names cannot be mixed to 2.\n");
    }
}

TEST_F(ConvertTest, AnEmptyValueIsWrongUse)
{
    const std::string source = Made("wav-s16.wav");
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{source, Path("a.wav"), "--type", ""},
                                               {source, Path("a.mp3"), "--bitrate", ""},
                                               {source, Path("a.wav"), "--rate", ""},
                                               {source, ""},
                                               {"", Path("a.wav")}})
    {
        const ProgramRun run = Convert(arguments);
        EXPECT_EQ(run.mExitCode, 2) << run.mErrors;
        EXPECT_NE(run.mErrors.find("is empty"), std::string::npos) << run.mErrors;
    }
    EXPECT_EQ(Settings({"--type", "wav", "--save", ""}).mExitCode, 2);
    EXPECT_EQ(Settings({""}).mExitCode, 2);
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(ConvertTest, AnUnreadableInputExitsWithThreeAndThePlugInsText)
{
    const ProgramRun run = Convert({Path("missing.wav"), Path("a.wav"), "--json"});
    EXPECT_EQ(run.mExitCode, 3);
    const json object = json::parse(run.mOutput);
    EXPECT_EQ(object["path"], Path("missing.wav"));
    EXPECT_EQ(object["error"]["text"],
              "Apple AudioToolbox cannot open the specified file.\nError Code: -43");
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(ConvertTest, AnExistingTargetNeedsForce)
{
    std::ofstream(Path("a.wav")) << "old";
    const ProgramRun run = Convert({Made("wav-s16.wav"), Path("a.wav")});
    EXPECT_EQ(run.mExitCode, 4);
    EXPECT_EQ(Bytes(Path("a.wav")), "old");
    EXPECT_EQ(Convert({Made("wav-s16.wav"), Path("a.wav"), "--force"}).mExitCode, 0);
    EXPECT_EQ(Info(Path("a.wav"))["frames"], 50021);
    EXPECT_EQ(FilesIn(), 1u);
}

TEST_F(ConvertTest, TheFileThatIsReadIsNeverReplaced)
{
    fs::copy_file(Made("wav-s16.wav"), Path("a.wav"));
    fs::create_symlink(Path("a.wav"), Path("link.wav"));
    fs::create_hard_link(Path("a.wav"), Path("hard.wav"));
    for (const char* target : {"a.wav", "link.wav", "hard.wav"})
        EXPECT_EQ(Convert({Path("a.wav"), Path(target), "--force"}).mExitCode, 4) << target;
    EXPECT_TRUE(Bytes(Path("a.wav")) == Bytes(Made("wav-s16.wav")));
    EXPECT_EQ(FilesIn(), 3u);
}

TEST_F(ConvertTest, ATargetThatCannotBeExitsWithFour)
{
    fs::create_directory(Path("folder.wav"));
    for (const char* target : {"missing/a.wav", "folder.wav"})
        EXPECT_EQ(Convert({Made("wav-s16.wav"), Path(target), "--force"}).mExitCode, 4) << target;
    EXPECT_EQ(FilesIn(), 1u);
    EXPECT_EQ(FilesIn("folder.wav"), 0u);
}

TEST_F(ConvertTest, HostileNamesAreOnlyNames)
{
    for (const char* name : {"--force.wav", "-rf.wav", "a b\tc.wav", "new\nline.wav", "$HOME.wav",
                             "%s%n.wav", "\xFF\xFE.wav", "@0@1.wav", "caf\xC3\xA9.wav"})
    {
        const std::string target = Path(name);
        const ProgramRun run = Convert({"--json", Made("wav-s16.wav"), target});
        EXPECT_EQ(run.mExitCode, 0) << name << run.mErrors;
        EXPECT_TRUE(fs::exists(target)) << name;
        EXPECT_EQ(Lines(run.mOutput).size(), 1u) << name;
        fs::remove(target);
    }
}

TEST_F(ConvertTest, QuietTellsNothing)
{
    const ProgramRun run = Convert({Made("wav-s16.wav"), Path("a.wav"), "--quiet"});
    EXPECT_EQ(run.mExitCode, 0);
    EXPECT_EQ(run.mOutput + run.mErrors, "");
    EXPECT_TRUE(fs::exists(Path("a.wav")));
}

TEST_F(ConvertTest, ProgressForProgramsEndsWithTheWholeLength)
{
    const ProgramRun run = Convert({Made("wav-s16.wav"), Path("a.wav"), "--progress=json"});
    ASSERT_EQ(run.mExitCode, 0);
    const std::vector<json> lines = Lines(run.mErrors);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back()["version"], 1);
    EXPECT_EQ(lines.back()["path"], Path("a.wav"));
    EXPECT_EQ(lines.back()["progress"]["frames"], 50021);
    EXPECT_EQ(lines.back()["progress"]["totalFrames"], 50021);
    EXPECT_EQ(lines.back()["progress"]["secondsLeft"], 0.0);
    EXPECT_TRUE(lines.back()["progress"].contains("seconds"));
    EXPECT_TRUE(lines.back()["progress"].contains("timesRealTime"));
}

TEST_F(ConvertTest, APresetIsUsedByItsName)
{
    ASSERT_EQ(Settings({"--type", "aiff", "--depth", "24", "--save", "deep"}).mExitCode, 0);
    ASSERT_EQ(Convert({Made("wav-s16.wav"), Path("a.aiff"), "--settings", "deep"}).mExitCode, 0);
    EXPECT_EQ(Info(Path("a.aiff"))["bitsPerChannel"], 24);
}

TEST_F(ConvertTest, SeveralFilesGoIntoAFolder)
{
    fs::create_directory(Path("out"));
    for (const char* jobs : {"1", "3"})
    {
        const ProgramRun run =
            Convert({Made("wav-s16.wav"), Made("wav-s24.wav"), Made("aiff-s16.aiff"), "--type",
                     "caf", "--out-dir", Path("out"), "--jobs", jobs, "--json", "--force"});
        EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
        EXPECT_EQ(Lines(run.mOutput).size(), 3u);
        EXPECT_EQ(FilesIn("out"), 3u);
        EXPECT_EQ(Info(Path("out/wav-s24.caf"))["bitsPerChannel"], 24);
        EXPECT_EQ(Info(Path("out/aiff-s16.caf"))["frames"], 50021);
    }
}

TEST_F(ConvertTest, AFailingFileDoesNotStopTheOthersAndTheWorstCodeCounts)
{
    fs::create_directory(Path("out"));
    std::ofstream(Path("out/wav-s16.wav")) << "old";
    for (const char* jobs : {"1", "2"})
    {
        const ProgramRun run =
            Convert({Path("missing.wav"), Made("wav-s16.wav"), Made("aiff-s16.aiff"), "--type",
                     "wav", "--out-dir", Path("out"), "--jobs", jobs, "--json"});
        EXPECT_EQ(run.mExitCode, 4) << jobs;
        int failures = 0;
        for (const json& object : Lines(run.mOutput))
            failures += object.contains("error") ? 1 : 0;
        EXPECT_EQ(failures, 2) << jobs;
        EXPECT_EQ(Bytes(Path("out/wav-s16.wav")), "old");
        EXPECT_TRUE(fs::exists(Path("out/aiff-s16.wav"))) << jobs;
        fs::remove(Path("out/aiff-s16.wav"));
        EXPECT_EQ(FilesIn("out"), 1u) << jobs;
    }
}

// A conversion that takes long: ten minutes of silence that were never written, resampled.
class InterruptTest : public ConvertTest
{
protected:
    InterruptTest()
    {
        const std::string source = Bytes(Made("wav-s16.wav"));
        std::ofstream file(Path("long.wav"), std::ios::binary);
        std::string head = source.substr(0, 44);
        const std::uint32_t bytes = 44100u * 4 * 600;
        for (int i = 0; i < 4; ++i)
        {
            head[static_cast<std::size_t>(4 + i)] = static_cast<char>((bytes + 36) >> (8 * i));
            head[static_cast<std::size_t>(40 + i)] = static_cast<char>(bytes >> (8 * i));
        }
        file << head;
        file.close();
        fs::resize_file(Path("long.wav"), bytes + 44);
        fs::create_directory(Path("out"));
    }

    // The exit code of a conversion that gets the signal once it has begun to write.
    int ExitCodeAfter(int inSignal, std::vector<std::string> inOptions)
    {
        inOptions.insert(inOptions.begin(), {TEST_TARVO, "convert", Path("long.wav")});
        inOptions.insert(inOptions.end(),
                         {"--rate", "48000", "--type", "wav", "--out-dir", Path("out")});
        const pid_t child = fork();
        if (child == 0)
        {
            std::vector<char*> arguments;
            for (std::string& option : inOptions)
                arguments.push_back(option.data());
            arguments.push_back(nullptr);
            dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
            dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
            execv(TEST_TARVO, arguments.data());
            _exit(127);
        }
        for (int wait = 0; wait < 2000 && FilesIn("out") == 0; ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_GT(FilesIn("out"), 0u);
        kill(child, inSignal);
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
};

TEST_F(InterruptTest, ASignalLeavesNothingAndTellsItself)
{
    EXPECT_EQ(ExitCodeAfter(SIGTERM, {}), 128 + SIGTERM);
    EXPECT_EQ(FilesIn("out"), 0u);
    EXPECT_EQ(ExitCodeAfter(SIGINT, {}), 128 + SIGINT);
    EXPECT_EQ(FilesIn("out"), 0u);
}

TEST_F(InterruptTest, ASignalEndsAllJobs)
{
    fs::copy_file(Path("long.wav"), Path("other.wav"));
    EXPECT_EQ(ExitCodeAfter(SIGTERM, {Path("other.wav"), "--jobs", "2"}), 128 + SIGTERM);
    EXPECT_EQ(FilesIn("out"), 0u);
}

TEST_F(ConvertTest, AFullDiskLeavesNothing)
{
    // Files may not grow beyond 64 KiB here.
    const pid_t child = fork();
    if (child == 0)
    {
        const rlimit limit = {65536, 65536};
        setrlimit(RLIMIT_FSIZE, &limit);
        const std::string target = Path("a.wav");
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        execl(TEST_TARVO, TEST_TARVO, "convert", Made("wav-s16.wav").c_str(), target.c_str(),
              static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 4);
    EXPECT_EQ(FilesIn(), 0u);
}

}  // namespace
