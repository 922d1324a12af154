// Disks that are full, limits, and descriptors that somebody else closed.

#include "FileUse.h"

#include "platform/AudioToolbox/src/file/Endian.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace file_use;

const Description kWords16 = Linear(44100, kSigned, 16, 2);

Description Encoded(AudioFormatID inFormat)
{
    return {44100, inFormat, 0, 0, 0, 0, 2, 0, 0};
}

struct FileRow
{
    const char* mName;
    AudioFileTypeID mType;
    Description mFormat;
};

// clang-format off
const FileRow kFiles[] = {
    {"WAVE", kAudioFileWAVEType, kWords16},
    {"AIFC", kAudioFileAIFCType, kWords16},
    {"W64", kAudioFileWave64Type, kWords16},
    {"CAF AAC", kAudioFileCAFType, Encoded(kAudioFormatMPEG4AAC)},
    {"M4A ALAC", kAudioFileM4AType, Encoded(kAudioFormatAppleLossless)},
    {"MP3", kAudioFileMP3Type, Encoded(kAudioFormatMPEGLayer3)},
    {"FLAC", kAudioFileFLACType, Encoded(kAudioFormatFLAC)},
    {"ADTS", kAudioFileAAC_ADTSType, Encoded(kAudioFormatMPEG4AAC)},
};
// clang-format on

std::vector<SInt16> Noise()
{
    std::vector<SInt16> samples(200000);
    UInt32 state = 1;
    for (SInt16& sample : samples)
        sample = static_cast<SInt16>((state = state * 1664525u + 1013904223u) >> 16);
    return samples;
}

TEST(AFullDisk, ShowsAtTheWriteOrTheCloseAndNeverBecomesASuccess)
{
    const std::vector<SInt16> noise = Noise();
    for (const FileRow& row : kFiles)
    {
        OutFile file;
        ASSERT_EQ(file.Create("/dev/full", row.mType, row.mFormat), noErr) << row.mName;
        ASSERT_EQ(file.SetClient(kWords16), noErr);
        OSStatus written = noErr;
        for (int i = 0; i < 3 && written == noErr; ++i)
            written = file.Write(noise, 2);
        EXPECT_EQ(written, kAudio_DiskFullError) << row.mName;
        EXPECT_EQ(file.Write(noise, 2), kAudio_DiskFullError) << row.mName;
        EXPECT_EQ(file.Dispose(), kAudio_DiskFullError) << row.mName;
    }
}

TEST(AFullDisk, ShowsForTheSmallestFilesToo)
{
    for (const FileRow& row : kFiles)
    {
        OutFile file;
        ASSERT_EQ(file.Create("/dev/full", row.mType, row.mFormat), noErr) << row.mName;
        ASSERT_EQ(file.SetClient(kWords16), noErr);
        const OSStatus written = file.Write(std::vector<SInt16>{1, 2}, 2);
        EXPECT_TRUE(written == noErr || written == kAudio_DiskFullError) << row.mName;
        EXPECT_EQ(file.Dispose(), kAudio_DiskFullError) << row.mName;
    }
    OutFile never;
    ASSERT_EQ(never.Create("/dev/full", kAudioFileWAVEType, kWords16), noErr);
    EXPECT_EQ(never.Dispose(), kAudio_DiskFullError);
}

TEST(ADescriptorThatSomebodyClosed, ShowsAtTheWriteOrTheClose)
{
    const std::vector<SInt16> noise = Noise();
    for (const FileRow& row : kFiles)
    {
        const ScratchFolder folder;
        OutFile file;
        ASSERT_EQ(file.Create(folder.File("out"), row.mType, row.mFormat), noErr) << row.mName;
        ASSERT_EQ(file.SetClient(kWords16), noErr);
        const int descriptor = write_test::DescriptorOf(folder.File("out"));
        ASSERT_GE(descriptor, 0);
        ::close(descriptor);
        const OSStatus written = file.Write(noise, 2);
        EXPECT_TRUE(written == noErr || written == kAudio_IOError) << row.mName;
        EXPECT_EQ(file.Dispose(), kAudio_IOError) << row.mName;
    }
}

// Runs in a process of its own with files limited to inLimit bytes.
bool HoldsUnderALimit(rlim_t inLimit, const std::function<bool()>& inWork)
{
    const pid_t child = ::fork();
    if (child == 0)
    {
        const rlimit limit = {inLimit, inLimit};
        const bool isLimited = ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
        (void)std::signal(SIGXFSZ, SIG_DFL);
        ::_exit(isLimited && inWork() ? 0 : 1);
    }
    int state = 0;
    ::waitpid(child, &state, 0);
    return WIFEXITED(state) && WEXITSTATUS(state) == 0;
}

UInt64 PacketCountOf(const std::string& inPath)
{
    AudioFileID opened = nullptr;
    if (AudioFileOpenURL(PathURL(inPath), kAudioFileReadPermission, 0, &opened) != noErr)
        return 0;
    UInt64 packets = 0;
    UInt32 size = sizeof(packets);
    (void)AudioFileGetProperty(opened, kAudioFilePropertyAudioDataPacketCount, &size, &packets);
    (void)AudioFileClose(opened);
    return packets;
}

TEST(TheSizeLimitOfAProcess, LeavesAValidFileOfWhatFits)
{
    constexpr rlim_t kLimit = 300001;
    for (const std::size_t frames : {50000u, 1000u, 7u})
    {
        const ScratchFolder folder;
        const std::string path = folder.File("out.wav");
        const auto work = [&]
        {
            OutFile file;
            if (file.Create(path, kAudioFileWAVEType, kWords16) != noErr ||
                file.SetClient(kWords16) != noErr)
                return false;
            const std::vector<SInt16> block(2 * frames);
            OSStatus written = noErr;
            for (std::size_t done = 0; written == noErr && done < 100000; done += frames)
                written = file.Write(block, 2);
            return written == kAudio_DiskFullError &&
                   file.Write(block, 2) == kAudio_DiskFullError &&
                   file.Dispose() == kAudio_DiskFullError;
        };
        ASSERT_TRUE(HoldsUnderALimit(kLimit, work)) << frames;
        const ByteVector bytes = BytesOfFile(path);
        ASSERT_GT(bytes.size(), kLimit - 8) << frames;
        EXPECT_EQ(audiotoolbox::ReadLE32(bytes.data() + 4), bytes.size() - 8) << frames;
        // The head takes 44 bytes or more, and 4 bytes are a frame.
        EXPECT_LE(PacketCountOf(path), 74989u);
        EXPECT_GT(PacketCountOf(path), 74900u);
    }
}

TEST(TheSizeLimitOfAProcess, IsAStatusForEveryContainer)
{
    const std::vector<SInt16> noise = Noise();
    for (const FileRow& row : kFiles)
    {
        const ScratchFolder folder;
        const auto work = [&]
        {
            OutFile file;
            if (file.Create(folder.File("out"), row.mType, row.mFormat) != noErr ||
                file.SetClient(kWords16) != noErr)
                return false;
            OSStatus written = noErr;
            for (int i = 0; i < 3 && written == noErr; ++i)
                written = file.Write(noise, 2);
            return file.Dispose() == kAudio_DiskFullError;
        };
        EXPECT_TRUE(HoldsUnderALimit(1000, work)) << row.mName;
    }
}

}  // namespace
