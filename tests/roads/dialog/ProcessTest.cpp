// tarvo as people start it, with its dialog on a display and a person at the display's own mouse
// and keyboard; and what it says where no dialog can be shown.

#include "tests/roads/dialog/Catalogue.h"
#include "tests/roads/dialog/XServer.h"
#include "tests/roads/tarvo/ConvertFixture.h"

#include <csignal>
#include <future>
#include <memory>

namespace
{

namespace fs = std::filesystem;
using namespace testing_support;
using nlohmann::json;

constexpr const char* kTitle = "Apple Audio Toolbox Settings";

std::string Trimmed(std::string inText)
{
    inText.erase(inText.find_last_not_of(" \n") + 1);
    return inText;
}

// What moves the pointer and presses keys of a display.
std::string Tool(std::vector<std::string> inArguments)
{
    inArguments.insert(inArguments.begin(), {"/usr/bin/env", "timeout", "60", "xdotool"});
    const ProgramRun run = RunProgram(inArguments);
    EXPECT_EQ(run.mExitCode, 0) << "xdotool " << inArguments[4] << ": " << run.mErrors;
    return Trimmed(run.mOutput);
}

// The dialog of the process that runs, as far as the display knows it.
class ShownWindow
{
public:
    explicit ShownWindow(const char* inTitle = kTitle)
        : mID(Tool({"search", "--sync", "--onlyvisible", "--limit", "1", "--name", inTitle}))
    {
        // Nobody manages the windows, so that the focus is to be given.
        Tool({"windowfocus", "--sync", mID});
        std::istringstream lines(Tool({"getwindowgeometry", "--shell", mID}));
        for (std::string line; std::getline(lines, line);)
        {
            if (line.starts_with("WIDTH="))
                mWidth = std::stoi(line.substr(6));
            if (line.starts_with("HEIGHT="))
                mHeight = std::stoi(line.substr(7));
        }
    }

    pid_t Process() const { return std::stoi(Tool({"getwindowpid", mID})); }
    int Width() const { return mWidth; }
    int Height() const { return mHeight; }

    static void Type(const char* inText) { Tool({"type", "--delay", "5", inText}); }
    static void Press(const char* inKey) { Tool({"key", inKey}); }
    void Click(int inX, int inY) const
    {
        Tool({"mousemove", "--sync", "--window", mID, std::to_string(inX), std::to_string(inY)});
        Tool({"click", "1"});
    }

private:
    const std::string mID;
    int mWidth = 0;
    int mHeight = 0;
};

class DialogProcessTest : public ConvertFixture
{
protected:
    DialogProcessTest()
    {
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        // Nobody's desktop is asked: D-Bus's library keeps a buffer when it looks for one.
        setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "disabled:", 1);
        setenv("LSAN_OPTIONS", "print_suppressions=0:suppressions=" TEST_LEAKS, 1);
        for (const char* const variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
            unsetenv(variable);
    }

    // A display for the programs that are started from now on.
    void HaveDisplay()
    {
        mServer = std::make_unique<XServer>();
        setenv("DISPLAY", mServer->Display().c_str(), 1);
    }

    static std::future<ProgramRun> Start(const std::vector<std::string>& inArguments)
    {
        return std::async(std::launch::async, [inArguments] { return RunTarvo(inArguments); });
    }

    std::unique_ptr<XServer> mServer;
};

TEST_F(DialogProcessTest, ConvertsWithWhatIsTypedAndConfirmed)
{
    HaveDisplay();
    const std::string target = Path("out.mp3");
    auto process = Start({"convert", "--dialog", "--json", "--quiet", Made("wav-s16.wav"), target});
    const ShownWindow window;
    // From file type to bit rate mode, and on to the quality.
    ShownWindow::Press("Tab");
    ShownWindow::Type("Var");
    ShownWindow::Press("Tab");
    ShownWindow::Type("Low");
    ShownWindow::Press("Return");
    const ProgramRun run = process.get();
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    const json told = json::parse(run.mOutput);
    EXPECT_EQ(told["description"], "MPEG Layer 3\nMPEG Layer 3\nVBR Quality: Low");
    EXPECT_EQ(told["frames"], 50021);
    EXPECT_EQ(Info(target)["fileType"], "MPG3");

    // The text alone leads to the same file.
    const std::string again = Path("again.mp3");
    ASSERT_EQ(Convert({"--settings", told["settings"], Made("wav-s16.wav"), again}).mExitCode, 0);
    EXPECT_EQ(Bytes(again), Bytes(target));
}

TEST_F(DialogProcessTest, ListsOpenAndItemsAreTakenWithThePointer)
{
    HaveDisplay();
    auto process = Start({"settings", "--dialog", "--json", "--type", "wav", Made("wav-s24.wav")});
    const ShownWindow window;
    // The open list has the current item under the pointer, the next one below it.
    const int row = window.Height() / 10;
    window.Click(window.Width() * 3 / 4, row);
    ShownWindow::Press("Down");
    ShownWindow::Press("Return");
    ShownWindow::Press("Return");
    const ProgramRun run = process.get();
    ASSERT_EQ(run.mExitCode, 0) << run.mErrors;
    const Catalogue& types = CatalogueFor(44100, 2);
    std::size_t type = 0;
    while (types.at(type).mCode != "WAVE")
        ++type;
    const json told = json::parse(run.mOutput);
    EXPECT_EQ(told["fileType"], types.at(type + 1).mCode);
    EXPECT_EQ(told["sampleType"], 30);
}

TEST_F(DialogProcessTest, CancelLeavesNoFile)
{
    HaveDisplay();
    auto process = Start({"convert", "--dialog", "--json", Made("wav-s16.wav"), Path("out.m4a")});
    const ShownWindow window;
    const int inset = window.Height() / 10;
    window.Click(window.Width() - 2 * inset, window.Height() - inset);
    const ProgramRun run = process.get();
    EXPECT_EQ(run.mExitCode, 1);
    EXPECT_EQ(run.mErrors, "tarvo: cancelled\n");
    EXPECT_EQ(json::parse(run.mOutput), (json{{"version", 1},
                                              {"path", Made("wav-s16.wav")},
                                              {"output", Path("out.m4a")},
                                              {"cancelled", true}}));
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(DialogProcessTest, ASignalEndsTheDialogAndLeavesNoFile)
{
    HaveDisplay();
    auto process = Start({"convert", "--dialog", Made("wav-s16.wav"), Path("out.m4a")});
    const ShownWindow window;
    kill(window.Process(), SIGINT);
    EXPECT_EQ(process.get().mExitCode, 130);
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(DialogProcessTest, SpeaksTheLanguageThatIsNamed)
{
    HaveDisplay();
    auto process = Start({"settings", "--dialog", "--lang", "de", "--type", "mp3"});
    const ShownWindow window("Einstellungen");
    ShownWindow::Press("Escape");
    EXPECT_EQ(process.get().mExitCode, 1);
}

TEST_F(DialogProcessTest, SaysThatThereIsNoDisplay)
{
    unsetenv("DISPLAY");
    const ProgramRun run = Convert({"--dialog", "--json", Made("wav-s16.wav"), Path("out.wav")});
    EXPECT_EQ(run.mExitCode, 1);
    EXPECT_EQ(run.mErrors,
              "tarvo: cannot show the dialog: There is no display to show a dialog on.\n");
    EXPECT_EQ(json::parse(run.mOutput)["error"]["text"],
              "cannot show the dialog: There is no display to show a dialog on.");
    EXPECT_EQ(FilesIn(), 0u);
}

TEST_F(DialogProcessTest, ChecksTheTargetBeforeAnythingIsChosen)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::ofstream(Path("out.wav")) << "old";
    EXPECT_EQ(Convert({"--dialog", Made("wav-s16.wav"), Path("out.wav")}).mExitCode, 4);
    EXPECT_EQ(Bytes(Path("out.wav")), "old");
}

TEST_F(DialogProcessTest, TakesNoFolder)
{
    EXPECT_EQ(Convert({"--dialog", "--type", "wav", "--out-dir", Path("."), Made("wav-s16.wav")})
                  .mExitCode,
              2);
}

// tarvo in a tree that has all its libraries but the toolkit's.
TEST_F(DialogProcessTest, WorksWithoutTheToolkitAsLongAsNoDialogIsWanted)
{
    const fs::path libraries = fs::path(TEST_TARVO).parent_path().parent_path() / "lib";
    fs::create_directories(Path("tree/bin"));
    fs::create_directories(Path("tree/lib"));
    fs::copy_file(TEST_TARVO, Path("tree/bin/tarvo"));
    for (const fs::directory_entry& entry : fs::directory_iterator(libraries))
        if (entry.path().filename() != "libkelpuiQt.so")
            fs::create_symlink(entry.path(), fs::path(Path("tree/lib")) / entry.path().filename());
    const auto run = [&](std::vector<std::string> inArguments)
    {
        inArguments.insert(inArguments.begin(), Path("tree/bin/tarvo"));
        return RunProgram(inArguments);
    };
    const ProgramRun dialog = run({"convert", "--dialog", Made("wav-s16.wav"), Path("out.wav")});
    EXPECT_EQ(dialog.mExitCode, 1);
    EXPECT_EQ(dialog.mErrors.find("tarvo: the dialog needs Qt 6 Widgets: "), 0u) << dialog.mErrors;
    EXPECT_NE(dialog.mErrors.find("tree/lib/libkelpuiQt.so: "), std::string::npos)
        << dialog.mErrors;
    EXPECT_EQ(run({"convert", "--quiet", Made("wav-s16.wav"), Path("out.wav")}).mExitCode, 0);
}

}  // namespace
