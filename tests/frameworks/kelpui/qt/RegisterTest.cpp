// Registering the presenter, by hosts with and without a display and an application of their own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

// What the host prints, standard error included, and how it ends when that is not with 0.
std::string RunHost(const std::string& inEnvironment, const std::string& inApplication)
{
    const std::string command = "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM LC_ALL=C " +
                                inEnvironment + " '" HOST "' '" LIBRARY "' " + inApplication +
                                " 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    char buffer[512];
    while (pipe && std::fgets(buffer, sizeof buffer, pipe))
        text += buffer;
    const int status = pipe ? pclose(pipe) : -1;
    // Leak checkers tell at the end what they pass over.
    text = text.substr(0, text.find("-----"));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0
               ? text
               : text + "ended with " + std::to_string(status);
}

constexpr char kNoDisplay[] =
    "There is no display to show a dialog on.\n"
    "There is no display to show a dialog on.\n"
    "presenter missing\n"
    "application missing\n"
    "number 0.5\n";

TEST(Registering, SaysThatThereIsNoDisplay)
{
    EXPECT_EQ(RunHost("", "none"), kNoDisplay);
}

TEST(Registering, SaysThatThereIsNoDisplayWhereOneIsNotReached)
{
    EXPECT_EQ(RunHost("DISPLAY=:4711", "none"), kNoDisplay);
    EXPECT_EQ(RunHost("DISPLAY=nonsense WAYLAND_DISPLAY=wayland-4711", "none"), kNoDisplay);
}

TEST(Registering, SaysThatThereIsNoDisplayForAPlatformThatQtDoesNotHave)
{
    EXPECT_EQ(RunHost("QT_QPA_PLATFORM=nonsense", "none"), kNoDisplay);
}

TEST(Registering, MakesAnApplicationOnPlatformsWithoutAScreen)
{
    for (const char* platform : {"offscreen", "minimal"})
        EXPECT_EQ(RunHost(std::string("QT_QPA_PLATFORM=") + platform, "none"),
                  "registered\nregistered\npresenter there\napplication made\nnumber 0.5\n")
            << platform;
}

TEST(Registering, KeepsTheApplicationOfTheHost)
{
    // What Qt says to such a host is the host's business.
    EXPECT_EQ(RunHost("QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 "
                      "QT_LOGGING_RULES=default.warning=false",
                      "widgets"),
              "registered\nregistered\npresenter there\napplication kept\nnumber 0.5\n");
}

TEST(Registering, RefusesAnApplicationWithoutWidgets)
{
    EXPECT_EQ(RunHost("LC_ALL=C.UTF-8", "core"),
              "The program's Qt application has no widgets.\n"
              "The program's Qt application has no widgets.\n"
              "presenter missing\napplication kept\nnumber 0.5\n");
}

// Qt itself takes the user's locale over when it starts.
TEST(Registering, LeavesTheLocaleForNumbersAlone)
{
    const std::string folder = testing::TempDir() + "RegisterTest" + std::to_string(getpid());
    std::filesystem::create_directories(folder);
    const std::string make = "localedef -i de_DE -f UTF-8 " + folder + "/de_DE.UTF-8 2>&1";
    if (std::system(make.c_str()) != 0)
        GTEST_SKIP() << "no locale with a decimal comma can be made";
    EXPECT_EQ(RunHost("QT_QPA_PLATFORM=offscreen LC_ALL=de_DE.UTF-8 LOCPATH=" + folder, "none"),
              "registered\nregistered\npresenter there\napplication made\nnumber 0.5\n");
    std::filesystem::remove_all(folder);
}

}  // namespace
