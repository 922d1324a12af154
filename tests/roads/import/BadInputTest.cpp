// Whatever is given, the host gets a result and a text, nothing else is opened and nothing stays
// open.

#include "host/Failure.h"
#include "tests/roads/import/Imported.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using testing_support::Import;
using testing_support::MadeFile;

constexpr const char* kCannotOpen =
    "Apple AudioToolbox cannot open the specified file.\nError Code: ";

std::ptrdiff_t OpenDescriptors()
{
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

class BadInputTest : public testing::Test
{
protected:
    BadInputTest()
    {
        std::string name = (fs::temp_directory_path() / "bad-input-XXXXXX").string();
        mFolder = mkdtemp(name.data());
        (void)testing_support::BuiltPlugIn();
        mDescriptors = OpenDescriptors();
    }
    ~BadInputTest() override
    {
        EXPECT_EQ(OpenDescriptors(), mDescriptors) << "something stayed open";
        fs::remove_all(mFolder);
    }

    std::string Path(const char* inName) const { return (mFolder / inName).string(); }
    std::string Put(const char* inName, const std::string& inBytes) const
    {
        std::ofstream(Path(inName), std::ios::binary) << inBytes;
        return Path(inName);
    }
    static std::string Bytes(const std::string& inPath)
    {
        std::ifstream file(inPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // The text and result of the failure, or the frames that came.
    static std::string Outcome(const std::string& inPath)
    {
        try
        {
            return std::to_string(Import(inPath).mAudio.FrameCount()) + " frames";
        }
        catch (const host::Failure& failure)
        {
            return std::to_string(failure.mResult) + " " + failure.what();
        }
    }
    static std::string Unopened(const char* inCode)
    {
        return std::string("-1 ") + kCannotOpen + inCode;
    }

    fs::path mFolder;
    std::ptrdiff_t mDescriptors = 0;
};

TEST_F(BadInputTest, WhatIsNoReadableFileIsRefusedWithItsReason)
{
    EXPECT_EQ(Outcome(Path("missing.wav")), Unopened("-43"));
    EXPECT_EQ(Outcome(Path("missing/file.wav")), Unopened("-43"));
    EXPECT_EQ(Outcome(mFolder.string()), Unopened("'prm?'"));
    ASSERT_EQ(mkfifo(Path("pipe.wav").c_str(), 0600), 0);
    EXPECT_EQ(Outcome(Path("pipe.wav")), Unopened("'prm?'"));
}

TEST_F(BadInputTest, AnUnreadableFileIsRefused)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser reads everything";
    const std::string path = Put("secret.wav", Bytes(MadeFile("wav-s16.wav")));
    fs::permissions(path, fs::perms::none);
    EXPECT_EQ(Outcome(path), Unopened("'prm?'"));
}

TEST_F(BadInputTest, WhatIsNoAudioIsAnUnknownType)
{
    EXPECT_EQ(Outcome(Put("empty.wav", "")), Unopened("'typ?'"));
    EXPECT_EQ(Outcome(Put("text.mp3", "This is not audio, whatever its name says.\n")),
              Unopened("'typ?'"));
    EXPECT_EQ(Outcome(Put("one.wav", "R")), Unopened("'typ?'"));
    EXPECT_EQ(Outcome(Put("zeros.aac", std::string(100000, '\0'))), Unopened("'typ?'"));
}

TEST_F(BadInputTest, AKnownMagicWithADamagedBodyIsDamagedData)
{
    EXPECT_EQ(Outcome(Put("head.wav", std::string("RIFF\xFF\xFF\xFF\xFFWAVE", 12))),
              Unopened("'dta?'"));
    EXPECT_EQ(Outcome(Put("no-moov.m4a", std::string("\0\0\0\x14"
                                                     "ftypM4A \0\0\0\0M4A ",
                                                     20))),
              Unopened("'dta?'"));
}

TEST_F(BadInputTest, AWrongExtensionDoesNotMatter)
{
    EXPECT_EQ(Outcome(Put("wave.mp3", Bytes(MadeFile("wav-s16.wav")))), "50021 frames");
    EXPECT_EQ(Outcome(Put("m4a.wav", Bytes(MadeFile("aac.m4a")))), "50021 frames");
    EXPECT_EQ(Outcome(Put("no-extension", Bytes(MadeFile("flac-16.flac")))), "50021 frames");
}

TEST_F(BadInputTest, PlaylistsAreNoAudioAndOpenNothing)
{
    const std::string song = Put("song.wav", Bytes(MadeFile("wav-s16.wav")));
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(watch, 0);
    ASSERT_GE(inotify_add_watch(watch, song.c_str(), IN_OPEN), 0);

    EXPECT_EQ(
        Outcome(Put("list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:1,\nsong.wav\n")),
        Unopened("'typ?'"));
    EXPECT_EQ(Outcome(Put("list.pls", "[playlist]\nFile1=song.wav\n")), Unopened("'typ?'"));
    EXPECT_EQ(Outcome(Put("list.txt", "ffconcat version 1.0\nfile song.wav\n")),
              Unopened("'typ?'"));

    char events[512];
    EXPECT_LT(read(watch, events, sizeof(events)), 0) << "the file in the list was opened";
    close(watch);
}

TEST_F(BadInputTest, APathOfAnyBytesOpens)
{
    const std::string bytes = Bytes(MadeFile("wav-s16.wav"));
    EXPECT_EQ(Outcome(Put("a b%20c#d?e.wav", bytes)), "50021 frames");
    EXPECT_EQ(Outcome(Put("\xC3\xA4\xE6\x97\xA5\xF0\x9F\x8E\xB5.wav", bytes)), "50021 frames");
    EXPECT_EQ(Outcome(Put("@0 @1.wav", bytes)), "50021 frames");
}

TEST_F(BadInputTest, ATruncatedFileDeliversWhatIsWhole)
{
    const std::string wave = Bytes(MadeFile("wav-s16.wav"));
    EXPECT_EQ(Outcome(Put("cut.wav", wave.substr(0, wave.size() - 4001))),
              std::to_string(50021 - 1001) + " frames");

    const std::string flac = Bytes(MadeFile("flac-16.flac"));
    const std::string flacOutcome = Outcome(Put("cut.flac", flac.substr(0, flac.size() / 2)));
    EXPECT_TRUE(flacOutcome.ends_with(" frames")) << flacOutcome;
    EXPECT_EQ(std::stol(flacOutcome) % 4608, 0) << flacOutcome;

    const std::string mp3 = Bytes(MadeFile("mp3-128.mp3"));
    const std::string mp3Outcome = Outcome(Put("cut.mp3", mp3.substr(0, mp3.size() / 2)));
    EXPECT_TRUE(mp3Outcome.ends_with(" frames")) << mp3Outcome;
    EXPECT_NEAR(std::stol(mp3Outcome), 24000, 2000);
}

// Every kind of file, cut at many places: an outcome each time, and nothing left open.
TEST_F(BadInputTest, FilesCutAnywhereEndCleanly)
{
    for (const char* name :
         {"wav-s16.wav", "aiff-s24.aiff", "caf-alac.caf", "au-s16.au", "w64-s16.w64", "aac.m4a",
          "alac-16.m4a", "aac-fragmented.mp4", "opus.mp4", "mp3-vbr.mp3", "adts.aac", "ac3.ac3",
          "eac3.eac3", "flac-16.flac", "wav-ms.wav", "wav-gsm.wav"})
    {
        const std::string whole = Bytes(MadeFile(name));
        for (const std::size_t cut :
             {1, 7, 11, 12, 20, 37, 43, 44, 45, 60, 100, 333, 1000, 4000, 9000, 17001})
        {
            if (cut >= whole.size())
                break;
            const std::string outcome = Outcome(Put("cut", whole.substr(0, cut)));
            EXPECT_TRUE(outcome.ends_with(" frames") ||
                        outcome.find("Error Code: ") != outcome.npos ||
                        outcome.find("cannot read on") != outcome.npos)
                << name << " cut to " << cut << ": " << outcome;
        }
    }
}

}  // namespace
