// The built bundle from outside: its files, what it exports, what it leaves to be resolved, and
// what it lets through.
#include "TarvoSDK/TarvoSDK.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>

namespace
{

using Names = std::set<std::string>;

// bin/ and lib/ lie beside each other.
std::filesystem::path Contents()
{
    return std::filesystem::canonical("/proc/self/exe").parent_path().parent_path() /
           "lib/TarvoAT.bundle/Contents";
}

std::string Plugin()
{
    return (Contents() / "Linux/TarvoAT.so").string();
}

// What a command writes to its output; empty if it fails.
std::string Output(const std::string& inCommand)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(inCommand.c_str(), "r"), &pclose);
    std::string text;
    std::array<char, 4096> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe.get()))
        text.append(block.data(), count);
    return text;
}

// The last word of each line.
Names LastWords(const std::string& inText)
{
    Names names;
    std::istringstream lines(inText);
    for (std::string line; std::getline(lines, line);)
        names.insert(line.substr(line.find_last_of(' ') + 1));
    return names;
}

Names UndefinedSymbols()
{
    return LastWords(Output("nm -D --undefined-only '" + Plugin() + "'"));
}

std::string Dynamic()
{
    return Output("readelf -dW '" + Plugin() + "'");
}

TEST(Bundle, HasItsPropertyListAndAFolderOfResources)
{
    std::ifstream file(Contents() / "Info.plist");
    const std::string list((std::istreambuf_iterator<char>(file)), {});
    EXPECT_NE(list.find("<key>CFBundleIdentifier</key>\n"
                        "\t<string>com.verlo.TarvoAT.bundle</string>"),
              std::string::npos);
    EXPECT_TRUE(std::filesystem::is_directory(Contents() / "Resources"));
}

TEST(Bundle, ExportsItsEntryStartAndStopAndNothingElse)
{
    EXPECT_EQ(LastWords(Output("nm -D --defined-only '" + Plugin() + "'")),
              (Names{"TarvoInterface", "_ZN5tarvo6module10InitializeEv",
                     "_ZN5tarvo6module9TerminateEv"}));
}

TEST(Bundle, LeavesThePlatformsCallsToTheLoader)
{
    const Names symbols = UndefinedSymbols();
    for (const char* name :
         {"AudioFileOpenURL", "AudioFileOpenWithCallbacks", "AudioFileClose",
          "AudioFileGetPropertyInfo", "AudioFileGetProperty", "AudioFileReadPacketData",
          "AudioFileGetGlobalInfoSize", "AudioFileGetGlobalInfo", "AudioFormatGetPropertyInfo",
          "AudioFormatGetProperty", "AudioConverterNew", "AudioConverterDispose",
          "AudioConverterGetPropertyInfo", "AudioConverterGetProperty", "AudioConverterSetProperty",
          "AudioConverterFillComplexBuffer"})
        EXPECT_EQ(symbols.count(name), 1u) << name;
}

TEST(Bundle, CallsNoOtherPlatformFunctions)
{
    const Names known = {"AudioFileOpenURL",
                         "AudioFileOpenWithCallbacks",
                         "AudioFileClose",
                         "AudioFileGetPropertyInfo",
                         "AudioFileGetProperty",
                         "AudioFileReadPacketData",
                         "AudioFileGetGlobalInfoSize",
                         "AudioFileGetGlobalInfo",
                         "AudioFormatGetPropertyInfo",
                         "AudioFormatGetProperty",
                         "AudioConverterNew",
                         "AudioConverterDispose",
                         "AudioConverterGetPropertyInfo",
                         "AudioConverterGetProperty",
                         "AudioConverterSetProperty",
                         "AudioConverterFillComplexBuffer",
                         "ExtAudioFileCreateWithURL",
                         "ExtAudioFileSetProperty",
                         "ExtAudioFileGetProperty",
                         "ExtAudioFileWrite",
                         "ExtAudioFileDispose"};
    for (const std::string& name : UndefinedSymbols())
    {
        const bool isPlatform = name.starts_with("Audio") || name.starts_with("ExtAudio");
        EXPECT_TRUE(!isPlatform || known.count(name) == 1) << name;
    }
}

TEST(Bundle, LooksNothingUpByName)
{
    const Names symbols = UndefinedSymbols();
    ASSERT_FALSE(symbols.empty());
    for (const std::string& name : symbols)
        EXPECT_FALSE(name.starts_with("dlsym") || name.starts_with("dlvsym") ||
                     name.starts_with("dlopen"))
            << name;
}

TEST(Bundle, FindsItsLibrariesByItself)
{
    const std::string dynamic = Dynamic();
    EXPECT_NE(dynamic.find("(RUNPATH)            Library runpath: [$ORIGIN/../../..]"),
              std::string::npos)
        << dynamic;
    for (const char* library : {"libAudioToolbox.so", "libCoreFoundation.so", "libkelpcore.so",
                                "libkelpui.so", "libkelpunittesting.so"})
        EXPECT_NE(dynamic.find(std::string("Shared library: [") + library + "]"), std::string::npos)
            << library;
}

TEST(Bundle, BindsNothingToItself)
{
    const std::string dynamic = Dynamic();
    ASSERT_NE(dynamic.find("(NEEDED)"), std::string::npos);
    EXPECT_EQ(dynamic.find("SYMBOLIC"), std::string::npos);
}

// Throws at the operation of a number, in the order in which a failing open calls them.
class ThrowingHost : public TarvoOpenInterface, public TarvoErrorInterface
{
public:
    explicit ThrowingHost(int inOperation) : mOperation(inOperation) {}

    TarvoErrorInterface* GetErrorInterface() const override
    {
        Reach(1);
        return const_cast<ThrowingHost*>(this);
    }
    const char* GetFilePath() const override
    {
        Reach(2);
        return "/nowhere/missing.wav";
    }
    void SetErrorText(const uint16*) override { Reach(3); }
    void SetFileHandle(void*) override {}
    void SetOpenStatus(std::int32_t) override {}
    void SetFormatDescription(const uint16*) override {}
    void SetBitrate(std::uint32_t) override {}

private:
    void Reach(int inOperation) const
    {
        if (inOperation == mOperation)
            throw inOperation;
    }

    const int mOperation;
};

TEST(Bundle, LetsAHostsExceptionsThrough)
{
    void* const library = dlopen(Plugin().c_str(), RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto entry = reinterpret_cast<TarvoInterfaceFunction>(dlsym(library, "TarvoInterface"));
    ASSERT_NE(entry, nullptr);
    for (const int operation : {1, 2, 3})
    {
        ThrowingHost host(operation);
        TarvoOpenInterface* const open = &host;
        try
        {
            (void)entry(5, nullptr, open);
            ADD_FAILURE() << "nothing was thrown at operation " << operation;
        }
        catch (int thrown)
        {
            EXPECT_EQ(thrown, operation);
        }
    }
}

}  // namespace
