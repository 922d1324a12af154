// OK writes what the dialog shows: every type and format, for audio of several shapes.

#include "host/export/FileConverter.h"
#include "tests/roads/dialog/DialogPerson.h"
#include "tests/roads/dialog/DialogRoadFixture.h"
#include "tests/roads/tarvo/Program.h"

#include <nlohmann/json.hpp>

#include <sstream>

namespace
{

using namespace testing_support;
using nlohmann::json;

struct Written
{
    std::string mType;
    std::string mFormat;
    std::string mPath;
};

// What a reader that is not ours calls a format.
struct ForeignName
{
    const char* mType;
    const char* mFormat;
    const char* mName;
};

constexpr ForeignName kForeignNames[] = {
    {"m4af", "aac ", "aac"},          {"m4af", "alac", "alac"}, {"adts", "aac ", "aac"},
    {"MPG3", ".mp3", "mp3"},          {"MPG2", ".mp2", "mp2"},  {"ac-3", "ac-3", "ac3"},
    {"mp4f", "opus", "opus"},         {"flac", "flac", "flac"}, {"WAVE", "ulaw", "pcm_mulaw"},
    {"AIFC", "ima4", "adpcm_ima_qt"},
};

class ExportTest : public DialogRoadFixture, public testing::WithParamInterface<AudioCase>
{
protected:
    ExportTest()
    {
        mOptions.mWish.mType = "wav";
        mOptions.mProgress = host::ProgressForm::kNone;
        mOptions.mChooser = &mChooser;
    }

    // By keys and by mouse in turns; a popup with one item only is disabled.
    void Choose(const DialogPerson& inPerson, PopupID inPopup, std::size_t inItem)
    {
        if (!inPerson.Box(inPopup).isEnabled() || !inPerson.Box(inPopup).isVisible())
            return;
        const auto item = static_cast<int>(inItem);
        mUsesKeys = !mUsesKeys;
        mUsesKeys ? inPerson.ChooseByKeys(inPopup, item) : inPerson.ChooseByMouse(inPopup, item);
    }

    host::ConvertReport Export(const std::string& inSource, const std::string& inTarget,
                               std::size_t inType, std::size_t inFormat)
    {
        AtNextDialog(
            [&](const DialogPerson& inPerson)
            {
            Choose(inPerson, kTypePopup, inType);
            Choose(inPerson, kFormatPopup, inFormat);
            // The largest rate, which the encoder keeps whatever the audio is.
            const auto rates = static_cast<std::size_t>(inPerson.Box(kBitratePopup).count());
            Choose(inPerson, kBitratePopup, rates - 1);
            mCouldConfirm = inPerson.Button("OKButtonID").isEnabled();
            inPerson.Click("OKButtonID");
        });
        return host::FileConverter(ThePlugIn(), mOptions)
            .Convert(inSource, inTarget, [](const host::ExportPlan&) {});
    }

    static void ExpectForeignName(const Written& inWritten)
    {
        for (const ForeignName& row : kForeignNames)
            if (inWritten.mType == row.mType && inWritten.mFormat == row.mFormat)
            {
                const ProgramRun run = RunProgram(
                    {"/usr/bin/env", "ffprobe", "-v", "error", "-select_streams", "a:0",
                     "-show_entries", "stream=codec_name", "-of", "csv=p=0", inWritten.mPath});
                EXPECT_EQ(run.mOutput, row.mName + std::string("\n")) << run.mErrors;
            }
    }

    const host::SettingsChooser mChooser{ThePlugIn(), TheRegistration()};
    host::ConvertOptions mOptions;
    bool mUsesKeys = false;
    bool mCouldConfirm = false;
};

std::vector<json> InfoOf(const std::vector<Written>& inFiles)
{
    std::vector<std::string> arguments = {"info", "--json"};
    for (const Written& file : inFiles)
        arguments.push_back(file.mPath);
    const ProgramRun run = RunTarvo(arguments);
    EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
    std::vector<json> infos;
    std::istringstream lines(run.mOutput);
    for (std::string line; std::getline(lines, line);)
        infos.push_back(json::parse(line));
    return infos;
}

TEST_P(ExportTest, OKWritesTheFormatThatIsChosen)
{
    const DialogAudio& audio = GetParam().mAudio;
    const std::string source = MakeAudio(GetParam());
    std::vector<Written> written;
    const Catalogue& types = CatalogueFor(audio.mRate, audio.mChannels);
    for (std::size_t type = 0; type < types.size(); ++type)
        for (std::size_t format = 0; format < types[type].mFormats.size(); ++format)
        {
            Written file{types[type].mCode, types[type].mFormats[format].mCode,
                         Path(std::to_string(type) + "-" + std::to_string(format))};
            const host::ConvertReport report = Export(source, file.mPath, type, format);
            // What the encoder has no such rate for cannot be confirmed.
            EXPECT_EQ(report.mIsCancelled, !mCouldConfirm) << file.mFormat << " in " << file.mType;
            if (report.mIsCancelled)
                continue;
            EXPECT_EQ(StartOf(report.mPlan.mSettings).mFormat, file.mFormat);
            written.push_back(std::move(file));
        }

    EXPECT_GT(written.size(), 20u);
    const std::vector<json> infos = InfoOf(written);
    ASSERT_EQ(infos.size(), written.size());
    for (std::size_t i = 0; i < written.size(); ++i)
    {
        SCOPED_TRACE(written[i].mFormat + " in " + written[i].mType);
        EXPECT_EQ(infos[i]["fileType"], written[i].mType);
        EXPECT_EQ(infos[i]["format"], written[i].mFormat);
        if (written[i].mFormat == "lpcm")
        {
            EXPECT_EQ(infos[i]["bitsPerChannel"], audio.mDepth);
            EXPECT_EQ(infos[i]["sampleRate"], audio.mRate);
            EXPECT_EQ(infos[i]["channels"], audio.mChannels);
            EXPECT_EQ(infos[i]["frames"], audio.mRate / 5);
        }
        ExpectForeignName(written[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(, ExportTest, testing::ValuesIn(kAudioCases),
                         [](const auto& inInfo) { return NameOf(inInfo.param.mAudio); });

// Every control of a format counts, not its name alone.
TEST_F(ExportTest, OKWritesTheBitRateThatIsChosen)
{
    const std::string source = MakeAudio(kAudioCases[0]);
    mOptions.mWish.mType = "m4a";
    AtNextDialog(
        [&](const DialogPerson& inPerson)
        {
        inPerson.ChooseByMouse(kModePopup, 0);
        inPerson.ChooseByKeys(kBitratePopup, inPerson.Box(kBitratePopup).findText("256 kbps"));
        inPerson.Click("OKButtonID");
    });
    const host::ConvertReport report =
        host::FileConverter(ThePlugIn(), mOptions)
            .Convert(source, Path("a.m4a"), [](const host::ExportPlan&) {});
    EXPECT_EQ(report.mPlan.mDescription, "MPEG-4 Audio\nMPEG-4 AAC\nCBR: 256 kbps");
    const json info = InfoOf({{"m4af", "aac ", Path("a.m4a")}}).at(0);
    // Ten packets of 1024 frames carry these 8820.
    EXPECT_NEAR(info["bitrate"].get<double>(), 256e3 * 10240 / 8820, 256e3 * 0.04);
}

TEST_F(ExportTest, CancelWritesNothing)
{
    const std::string source = MakeAudio(kAudioCases[0]);
    AtNextDialog([](const DialogPerson& inPerson) { inPerson.Click("CancelButtonID"); });
    const host::ConvertReport report =
        host::FileConverter(ThePlugIn(), mOptions)
            .Convert(source, Path("a.wav"), [](const host::ExportPlan&) { ADD_FAILURE(); });
    EXPECT_TRUE(report.mIsCancelled);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(mFolder),
                            std::filesystem::directory_iterator()),
              1)
        << "the source alone";
}

}  // namespace
