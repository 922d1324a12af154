// tarvo settings: texts, presets and their refusals.

#include "tests/roads/tarvo/ConvertFixture.h"

#include <set>

namespace
{

namespace fs = std::filesystem;
using nlohmann::json;
using testing_support::ProgramRun;

class SettingsTest : public testing_support::ConvertFixture
{
protected:
    static json Told(std::vector<std::string> inArguments)
    {
        inArguments.push_back("--json");
        const ProgramRun run = Settings(inArguments);
        EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
        return json::parse(run.mOutput);
    }
};

constexpr const char* kDefaults =
    "AudioFileTypeID:0:1667327590;Bitrate:0:1411200;BitrateMode:0:0;BitsPerChannel:0:16;"
    "BytesPerFrame:0:4;BytesPerPacket:0:4;ChannelsPerFrame:0:2;FormatFlags:0:14;"
    "FormatID:0:1819304813;FramesPerPacket:0:1;SampleRateHigh:0:1088784512;SampleRateLow:0:0;"
    "VBRQuality:0:96;";

TEST_F(SettingsTest, PrintsTheDefaultsAndASummary)
{
    const ProgramRun run = Settings({});
    EXPECT_EQ(run.mExitCode, 0);
    EXPECT_EQ(run.mErrors, "");
    EXPECT_EQ(run.mOutput, std::string(kDefaults) +
                               "\n\nCore Audio Format\n"
                               "Linear PCM, 16 bit big-endian signed integer\n"
                               "44100 Hz, 2 channels\n");
}

TEST_F(SettingsTest, TellsEveryKeyOfItsSchema)
{
    const json object = Told({Made("wav-s24.wav"), "--save", "mine"});
    std::set<std::string> keys;
    for (const auto& [key, value] : object.items())
        keys.insert(key);
    EXPECT_EQ(keys, (std::set<std::string>{"version", "path", "settings", "description", "fileType",
                                           "format", "sampleRate", "channels", "sampleType",
                                           "lossy", "estimatedBytes", "mimeType", "extensions",
                                           "changes", "preset"}));
    EXPECT_EQ(object["fileType"], "caff");
    EXPECT_EQ(object["sampleType"], 30);
    EXPECT_EQ(object["estimatedBytes"], 50021 * 6 + 256);
    EXPECT_EQ(object["preset"], "mine");
}

TEST_F(SettingsTest, FitAFile)
{
    const json object = Told({Made("wav-s24-5.1.wav"), "--type", "mp3"});
    EXPECT_EQ(object["channels"], 2);
    EXPECT_EQ(object["sampleRate"], 48000);
    EXPECT_EQ(object["changes"], json::parse(R"(["6 channels are not available: 2"])"));
}

TEST_F(SettingsTest, AreEditedByOptions)
{
    const json first = Told({"--type", "mp3", "--mode", "abr", "--bitrate", "192k"});
    EXPECT_EQ(first["description"], "MPEG Layer 3\nMPEG Layer 3\nCBR (LTA): 192 kbps");
    const json second = Told({"--settings", first["settings"], "--bitrate", "128k"});
    EXPECT_EQ(second["description"], "MPEG Layer 3\nMPEG Layer 3\nCBR (LTA): 128 kbps");
    const json third = Told({"--settings", first["settings"], "--quality", "max"});
    EXPECT_EQ(third["description"], "MPEG Layer 3\nMPEG Layer 3\nVBR Quality: Maximum");
}

TEST_F(SettingsTest, KeepRateAndChannelsOfATextWithoutAFile)
{
    const json first = Told({"--type", "flac", "--rate", "96k", "--channels", "6"});
    const json second = Told({"--settings", first["settings"]});
    EXPECT_EQ(second["settings"], first["settings"]);
    EXPECT_EQ(second["sampleRate"], 96000);
    EXPECT_EQ(second["channels"], 6);
}

TEST_F(SettingsTest, ArePresetsUnderTheirNames)
{
    const json saved = Told({"--type", "mp3", "--bitrate", "192k", "--save", "mp3 192"});
    const std::string path = Path("config/tarvo/presets/mp3 192");
    EXPECT_EQ(Bytes(path), saved["settings"].get<std::string>() + "\n");
    EXPECT_EQ(Told({"--settings", "mp3 192"})["settings"], saved["settings"]);

    EXPECT_EQ(Settings({"--type", "wav", "--save", "mp3 192"}).mExitCode, 4);
    EXPECT_EQ(Bytes(path), saved["settings"].get<std::string>() + "\n");
    EXPECT_EQ(Settings({"--type", "wav", "--save", "mp3 192", "--force"}).mExitCode, 0);
    EXPECT_NE(Bytes(path), saved["settings"].get<std::string>() + "\n");
    EXPECT_EQ(FilesIn("config/tarvo/presets"), 1u);
}

TEST_F(SettingsTest, ARefusalKeepsNoPreset)
{
    EXPECT_EQ(Settings({"--type", "mp3", "--rate", "96k", "--save", "bad"}).mExitCode, 5);
    EXPECT_FALSE(fs::exists(Path("config")));
}

TEST_F(SettingsTest, ExitCodesTellWhatWasWrong)
{
    EXPECT_EQ(Settings({"--save", "../evil"}).mExitCode, 2);
    EXPECT_EQ(Settings({"--save", ".."}).mExitCode, 2);
    EXPECT_EQ(Settings({"--settings", "unknown"}).mExitCode, 2);
    EXPECT_EQ(Settings({"--type", "xyz"}).mExitCode, 2);
    EXPECT_EQ(Settings({"one.wav", "two.wav"}).mExitCode, 2);
    EXPECT_EQ(Settings({Path("missing.wav")}).mExitCode, 3);
    EXPECT_EQ(Settings({"--type", "wav", "--depth", "20"}).mExitCode, 5);
    std::ofstream(Path("config")) << "in the way";
    EXPECT_EQ(Settings({"--save", "one"}).mExitCode, 4);
}

TEST_F(SettingsTest, SpeakTheLanguageThatIsNamedElseTheLocales)
{
    const auto description = [](const char* inLanguage)
    {
        std::vector<std::string> arguments = {"--type", "mp3", "--quality", "high"};
        if (inLanguage)
            arguments.insert(arguments.end(), {"--lang", inLanguage});
        return Told(arguments)["description"].get<std::string>();
    };
    const std::string german = "MPEG Layer 3\nMPEG Layer 3\nVBR-Qualität: Hoch";
    const std::string english = "MPEG Layer 3\nMPEG Layer 3\nVBR Quality: High";
    EXPECT_EQ(description("de"), german);
    const char* const before = std::getenv("LANGUAGE");
    const std::string kept = before ? before : "";
    setenv("LANGUAGE", "de_AT:en", 1);
    EXPECT_EQ(description(nullptr), german);
    EXPECT_EQ(description("en"), english);
    before ? setenv("LANGUAGE", kept.c_str(), 1) : unsetenv("LANGUAGE");

    const ProgramRun run = Settings({"--lang", "tlh"});
    EXPECT_EQ(run.mExitCode, 2);
    EXPECT_EQ(run.mErrors, "tarvo: --lang tlh: there are no texts; possible: de, en, ja\n");
}

TEST_F(SettingsTest, HostileTextsAreJudgedAndNothingElse)
{
    for (const char* text :
         {":", ":;;;", "FormatID:0:-1;", "AudioFileTypeID:0:-1;", "ChannelsPerFrame:0:-1;",
          "ChannelsPerFrame:0:0;", "BitsPerChannel:0:-1;", "BytesPerFrame:0:-1;",
          "SampleRateHigh:0:2146959360;SampleRateLow:0:0;",
          "SampleRateHigh:0:-1;SampleRateLow:0:-1;", "BitrateMode:0:99;",
          "AB:0:99999999999999999999;", "\xFF\xFE:0:1;"})
    {
        const ProgramRun run = Settings({"--json", "--settings", text});
        EXPECT_TRUE(run.mExitCode == 0 || run.mExitCode == 5) << text << run.mErrors;
        EXPECT_EQ(Lines(run.mOutput).size(), 1u) << text;
    }
}

}  // namespace
