// Finding bundles of loaded libraries, and the files in them.
#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

const fs::path kProbeLibrary = PROBE_LIBRARY;
const fs::path kProbeBundle = kProbeLibrary.parent_path().parent_path().parent_path();

struct Release
{
    void operator()(CFTypeRef inObject) const { CFRelease(inObject); }
};
using StringPtr = std::unique_ptr<const __CFString, Release>;

StringPtr NewString(const std::string& inText)
{
    return StringPtr(
        CFStringCreateWithCString(kCFAllocatorDefault, inText.c_str(), kCFStringEncodingUTF8));
}

CFBundleRef Find(const std::string& inIdentifier)
{
    return CFBundleGetBundleWithIdentifier(NewString(inIdentifier).get());
}

// Releases the URL; "null" without one.
std::string PathOf(CFURLRef inURL)
{
    if (!inURL)
        return "null";
    UInt8 path[4096];
    const bool fits = CFURLGetFileSystemRepresentation(inURL, true, path, sizeof path);
    CFRelease(inURL);
    return fits ? reinterpret_cast<const char*>(path) : "too long";
}

void WriteFile(const fs::path& inPath, const std::string& inText)
{
    fs::create_directories(inPath.parent_path());
    std::ofstream(inPath, std::ios::binary) << inText;
}

void WriteInfo(const fs::path& inBundle, const std::string& inIdentifier)
{
    WriteFile(inBundle / "Contents/Info.plist",
              "<plist><dict><key>CFBundleIdentifier</key><string>" + inIdentifier +
                  "</string></dict></plist>");
}

// A folder for one test, gone with it.
class BundleFolder : public ::testing::Test
{
protected:
    BundleFolder()
    {
        const char* name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        mFolder = fs::canonical(::testing::TempDir()) / (name + std::to_string(::getpid()));
        fs::create_directories(mFolder);
    }
    ~BundleFolder() override { fs::remove_all(mFolder); }

    // Loads a copy of the probe, which stays loaded.
    void LoadAt(const fs::path& inPath)
    {
        fs::create_directories(inPath.parent_path());
        fs::copy_file(kProbeLibrary, inPath);
        ASSERT_NE(::dlopen(inPath.c_str(), RTLD_LAZY | RTLD_LOCAL), nullptr) << ::dlerror();
    }

    fs::path mFolder;
};

class Resources : public BundleFolder
{
protected:
    void SetUp() override
    {
        const std::string identifier = "test." + mFolder.filename().string();
        WriteInfo(mFolder / "R.bundle", identifier);
        LoadAt(mFolder / "R.bundle/Contents/Linux/R.so");
        mBundle = Find(identifier);
        ASSERT_NE(mBundle, nullptr);
        SetLanguages("", "C");
    }
    void TearDown() override { SetLanguages("", "C"); }

    static void SetLanguages(const char* inLanguages, const char* inLocale)
    {
        ::setenv("LANGUAGE", inLanguages, 1);
        ::setenv("LC_ALL", inLocale, 1);
    }

    std::string Resource(const char* inName, const char* inType, const char* inSubfolder = nullptr)
    {
        const StringPtr type = inType ? NewString(inType) : nullptr;
        const StringPtr subfolder = inSubfolder ? NewString(inSubfolder) : nullptr;
        const std::string path = PathOf(
            CFBundleCopyResourceURL(mBundle, NewString(inName).get(), type.get(), subfolder.get()));
        const std::string start = (mFolder / "R.bundle/Contents/Resources/").string();
        return path.starts_with(start) ? path.substr(start.size()) : path;
    }

    void AddResource(const char* inPath)
    {
        WriteFile(mFolder / "R.bundle/Contents/Resources" / inPath, "x");
    }

    CFBundleRef mBundle = nullptr;
};

}  // namespace

TEST(CFBundleSearch, AForeignProgramThatOnlyLoadsTheLibraryFindsItsBundle)
{
    const std::string command = FOREIGN_HOST " " + kProbeLibrary.string() + " test.probe";
    FILE* output = ::popen(command.c_str(), "r");
    ASSERT_NE(output, nullptr);
    char path[4096] = {};
    EXPECT_NE(std::fgets(path, sizeof path, output), nullptr);
    EXPECT_EQ(::pclose(output), 0);
    EXPECT_EQ(fs::path(path), fs::canonical(kProbeBundle));
}

TEST(CFBundleSearch, NobodysIdentifierGivesNull)
{
    EXPECT_EQ(Find("test.nobody"), nullptr);
    EXPECT_EQ(Find(""), nullptr);
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(nullptr), nullptr);
}

TEST_F(BundleFolder, AMissIsLookedUpAgainAfterTheLibraryIsLoaded)
{
    WriteInfo(mFolder / "Late.bundle", "test.late");
    EXPECT_EQ(Find("test.late"), nullptr);
    LoadAt(mFolder / "Late.bundle/Contents/Linux/Late.so");
    const CFBundleRef bundle = Find("test.late");
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(PathOf(CFBundleCopyBundleURL(bundle)), (mFolder / "Late.bundle").string());
    EXPECT_EQ(PathOf(CFBundleCopyResourcesDirectoryURL(bundle)),
              (mFolder / "Late.bundle/Contents/Resources").string());
}

TEST_F(BundleFolder, AHitIsKeptThoughItsFilesGo)
{
    WriteInfo(mFolder / "Kept.bundle", "test.kept");
    LoadAt(mFolder / "Kept.bundle/Contents/Linux/Kept.so");
    const CFBundleRef bundle = Find("test.kept");
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(CFGetRetainCount(bundle), 1);
    EXPECT_EQ(CFGetTypeID(bundle), CFBundleGetTypeID());
    fs::remove_all(mFolder / "Kept.bundle");
    EXPECT_EQ(Find("test.kept"), bundle);
    EXPECT_EQ(CFStringGetLength(CFBundleGetIdentifier(bundle)), 9);
}

TEST_F(BundleFolder, ABundleBesideALoadedLibraryIsFound)
{
    WriteInfo(mFolder / "Beside.bundle", "test.beside");
    WriteInfo(mFolder / "Other.folder", "test.no.bundle");
    LoadAt(mFolder / "Beside.so");
    const CFBundleRef bundle = Find("test.beside");
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(PathOf(CFBundleCopyBundleURL(bundle)), (mFolder / "Beside.bundle").string());
    EXPECT_EQ(Find("test.no.bundle"), nullptr);
}

TEST_F(BundleFolder, TheBundleAroundALibraryComesBeforeOneBesideIt)
{
    WriteInfo(mFolder / "A.bundle", "test.twice");
    LoadAt(mFolder / "First.so");
    WriteInfo(mFolder / "Z/Z.bundle", "test.twice");
    LoadAt(mFolder / "Z/Z.bundle/Contents/Linux/Z.so");
    EXPECT_EQ(PathOf(CFBundleCopyBundleURL(Find("test.twice"))), (mFolder / "Z/Z.bundle").string());
}

TEST_F(BundleFolder, ADamagedDescriptionIsPassedOver)
{
    WriteFile(mFolder / "Bad.bundle/Contents/Info.plist", "<plist><dict><key>CFBundleIdentifier");
    fs::create_directories(mFolder / "Empty.bundle");
    WriteInfo(mFolder / "Good.bundle", "test.good");
    LoadAt(mFolder / "Bad.bundle/Contents/Linux/Bad.so");
    LoadAt(mFolder / "Beside.so");
    EXPECT_NE(Find("test.good"), nullptr);
}

TEST_F(BundleFolder, ThreadsThatAskAtOnceGetTheSameBundle)
{
    WriteInfo(mFolder / "Shared.bundle", "test.shared");
    LoadAt(mFolder / "Shared.bundle/Contents/Linux/Shared.so");
    std::vector<CFBundleRef> found(8, nullptr);
    std::vector<std::thread> threads;
    for (CFBundleRef& bundle : found)
        threads.emplace_back([&bundle] { bundle = Find("test.shared"); });
    for (std::thread& thread : threads)
        thread.join();
    ASSERT_NE(found[0], nullptr);
    for (const CFBundleRef bundle : found)
        EXPECT_EQ(bundle, found[0]);
}

TEST_F(Resources, AFileIsFoundByNameTypeAndSubfolder)
{
    AddResource("Options.ui");
    AddResource("plain");
    AddResource("sub/Deep.txt");
    EXPECT_EQ(Resource("Options", "ui"), "Options.ui");
    EXPECT_EQ(Resource("plain", nullptr), "plain");
    EXPECT_EQ(Resource("plain", ""), "plain");
    EXPECT_EQ(Resource("Deep", "txt", "sub"), "sub/Deep.txt");
}

TEST_F(Resources, WhatIsNoFileOfTheFolderGivesNull)
{
    AddResource("sub/Deep.txt");
    EXPECT_EQ(Resource("Options", "ui"), "null");
    EXPECT_EQ(Resource("Deep", "txt"), "null");
    EXPECT_EQ(Resource("sub", nullptr), "null");
    EXPECT_EQ(Resource("", "txt"), "null");
    EXPECT_EQ(CFBundleCopyResourceURL(mBundle, nullptr, nullptr, nullptr), nullptr);
}

TEST_F(Resources, AUserLanguageComesBeforeTheCommonFile)
{
    AddResource("Text.txt");
    AddResource("de.lproj/Text.txt");
    AddResource("fr.lproj/Text.txt");
    EXPECT_EQ(Resource("Text", "txt"), "Text.txt");
    SetLanguages("", "de_AT.UTF-8");
    EXPECT_EQ(Resource("Text", "txt"), "de.lproj/Text.txt");
    SetLanguages("fr:de", "de_AT.UTF-8");
    EXPECT_EQ(Resource("Text", "txt"), "fr.lproj/Text.txt");
    SetLanguages("", "it_IT.UTF-8");
    EXPECT_EQ(Resource("Text", "txt"), "Text.txt");
}
