#include "tests/roads/dialog/DialogRoadFixture.h"

#include "host/ReadSession.h"
#include "host/StoredSettings.h"
#include "tests/roads/dialog/XServer.h"
#include "tests/roads/tarvo/Program.h"

#include <QApplication>

#include <cstdlib>
#include <memory>

namespace testing_support
{

namespace
{

using host::SettingsNumber;

// What Qt shows windows on: no screen, or with TEST_SCREEN=xcb one of its own.
class Screen : public testing::Environment
{
public:
    void SetUp() override
    {
        const char* const screen = std::getenv("TEST_SCREEN");
        const std::string platform = screen ? screen : "offscreen";
        setenv("QT_QPA_PLATFORM", platform.c_str(), 1);
        // Nobody's desktop is asked: D-Bus's library keeps a buffer when it looks for one.
        setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "disabled:", 1);
        setenv("LSAN_OPTIONS", "print_suppressions=0:suppressions=" TEST_LEAKS, 1);
        for (const char* const variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
            unsetenv(variable);
        if (platform == "xcb")
        {
            mServer = std::make_unique<XServer>();
            setenv("DISPLAY", mServer->Display().c_str(), 1);
        }
        host::ProvideDialogs();
        // A list takes a click at once.
        QApplication::setDoubleClickInterval(0);
    }

private:
    std::unique_ptr<XServer> mServer;
};

[[maybe_unused]] const testing::Environment* const sScreen =
    testing::AddGlobalTestEnvironment(new Screen);

}  // namespace

std::string NameOf(const DialogAudio& inAudio)
{
    return std::to_string(inAudio.mRate) + "_" + std::to_string(inAudio.mChannels) + "_" +
           std::to_string(inAudio.mDepth);
}

DialogRoadFixture::DialogRoadFixture()
{
    std::string name = (std::filesystem::temp_directory_path() / "dialog-XXXXXX").string();
    mFolder = mkdtemp(name.data());
}

DialogRoadFixture::~DialogRoadFixture()
{
    std::filesystem::remove_all(mFolder);
}

std::string DialogRoadFixture::MakeAudio(const AudioCase& inCase) const
{
    const std::string path = Path(NameOf(inCase.mAudio) + ".wav");
    const std::string layout = inCase.mAudio.mChannels == 1   ? "mono"
                               : inCase.mAudio.mChannels == 2 ? "stereo"
                                                              : "5.1";
    std::string tones;
    for (int channel = 0; channel < inCase.mAudio.mChannels; ++channel)
        tones += (channel ? "|" : "") + std::string("0.4*sin(2*PI*t*") +
                 std::to_string(200 + 90 * channel) + ")";
    const ProgramRun run =
        RunProgram({"/usr/bin/env", "ffmpeg", "-v", "error", "-nostdin", "-f", "lavfi", "-i",
                    "aevalsrc=exprs='" + tones + "':c=" + layout +
                        ":s=" + std::to_string(inCase.mAudio.mRate) + ":d=0.2",
                    "-bitexact", "-c:a", inCase.mEncoder, path});
    EXPECT_EQ(run.mExitCode, 0) << run.mErrors;
    return path;
}

const host::PlugIn& DialogRoadFixture::ThePlugIn()
{
    static const host::PlugIn sPlugIn("");
    return sPlugIn;
}

const host::Registration& DialogRoadFixture::TheRegistration()
{
    static const host::Registration sRegistration = host::Register(ThePlugIn());
    return sRegistration;
}

host::DialogRequest DialogRoadFixture::RequestFor(const std::string& inFile,
                                                  const host::ExportWish& inWish)
{
    (void)TheRegistration();
    const host::ReadSession session(ThePlugIn(), inFile);
    const host::ExportSource source{host::ShapeOf(session.Info()), session.Info().mSettings};
    const auto ask = [](const host::ExportRequest& inRequest)
    { return host::AskExportSettings(ThePlugIn(), inRequest); };
    return host::RequestDialog(TheRegistration(), inWish, source,
                               host::PlanExport(ask, inWish, source, ""));
}

DialogModel::Start DialogRoadFixture::StartOf(const std::string& inSettings)
{
    const auto number = [&](const char* inKey)
    { return static_cast<std::uint32_t>(SettingsNumber(inSettings, inKey)); };
    return {host::CodeText(number("AudioFileTypeID")),
            host::CodeText(number("FormatID")),
            number("FormatFlags"),
            number("BitrateMode"),
            number("Bitrate"),
            number("VBRQuality")};
}

}  // namespace testing_support
