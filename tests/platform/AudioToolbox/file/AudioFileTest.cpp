// The C functions: opening by path and by callbacks, statuses, reading.

#include "ContainerBuilders.h"

#include <AudioToolbox/AudioFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>

using namespace testing_support;

namespace
{

struct Releaser
{
    void operator()(const void* inObject) const { CFRelease(inObject); }
};
using URLPtr = std::unique_ptr<const __CFURL, Releaser>;

struct Closer
{
    void operator()(OpaqueAudioFileID* inFile) const { (void)AudioFileClose(inFile); }
};
using FilePtr = std::unique_ptr<OpaqueAudioFileID, Closer>;

URLPtr MakeURL(const std::string& inPath)
{
    return URLPtr(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(inPath.data()),
        static_cast<CFIndex>(inPath.size()), false));
}

class AudioFileFunctions : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = std::filesystem::temp_directory_path() / "audiofile-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        mFolder = name;
    }
    void TearDown() override { std::filesystem::remove_all(mFolder); }

    std::string Path(const char* inName) const { return mFolder / inName; }

    std::string Store(const char* inName, const Bytes& inBytes) const
    {
        std::ofstream(Path(inName), std::ios::binary)
            .write(reinterpret_cast<const char*>(inBytes.data()),
                   static_cast<std::streamsize>(inBytes.size()));
        return Path(inName);
    }

    static OSStatus Open(const std::string& inPath, FilePtr& outFile, SInt8 inPermissions = 1)
    {
        AudioFileID file = nullptr;
        const OSStatus status = AudioFileOpenURL(MakeURL(inPath).get(), inPermissions, 0, &file);
        outFile.reset(file);
        return status;
    }

    std::filesystem::path mFolder;
};

TEST_F(AudioFileFunctions, OpenReadAndClose)
{
    FilePtr file;
    ASSERT_EQ(
        Open(Store("näme with 100% blanks.wav", WaveFile(WaveRecord(), CountingBytes(400))), file),
        noErr);
    UInt32 size = 0;
    UInt32 writable = 9;
    ASSERT_EQ(AudioFileGetPropertyInfo(file.get(), kAudioFilePropertyDataFormat, &size, &writable),
              noErr);
    EXPECT_EQ(size, 40u);
    EXPECT_EQ(writable, 0u);
    EXPECT_EQ(AudioFileGetPropertyInfo(file.get(), kAudioFilePropertyDataFormat, nullptr, nullptr),
              noErr);
    AudioStreamBasicDescription format = {};
    ASSERT_EQ(AudioFileGetProperty(file.get(), kAudioFilePropertyDataFormat, &size, &format),
              noErr);
    EXPECT_EQ(format.mSampleRate, 44100.0);

    Bytes buffer(400);
    UInt32 bytes = 400;
    UInt32 packets = 1000;
    ASSERT_EQ(
        AudioFileReadPacketData(file.get(), false, &bytes, nullptr, 0, &packets, buffer.data()),
        noErr);
    EXPECT_EQ(packets, 100u);
    EXPECT_EQ(bytes, 400u);
    EXPECT_EQ(buffer, CountingBytes(400));
    EXPECT_EQ(AudioFileClose(file.release()), noErr);
}

TEST_F(AudioFileFunctions, AnswerTheEndWithNothingAndNoError)
{
    FilePtr file;
    ASSERT_EQ(Open(Store("a.wav", WaveFile(WaveRecord(), Bytes(400))), file), noErr);
    UInt8 buffer[16];
    for (const SInt64 start : {SInt64{100}, SInt64{101}, SInt64{1} << 62})
    {
        UInt32 bytes = sizeof(buffer);
        UInt32 packets = 4;
        EXPECT_EQ(
            AudioFileReadPacketData(file.get(), false, &bytes, nullptr, start, &packets, buffer),
            noErr);
        EXPECT_EQ(bytes, 0u);
        EXPECT_EQ(packets, 0u);
    }
}

TEST_F(AudioFileFunctions, NeverAnswerNothingForAPacketThatDoesNotFit)
{
    FilePtr file;
    ASSERT_EQ(Open(Store("a.wav", WaveFile(WaveRecord(), Bytes(400))), file), noErr);
    UInt8 buffer[16];
    UInt32 bytes = 3;
    UInt32 packets = 4;
    EXPECT_EQ(AudioFileReadPacketData(file.get(), false, &bytes, nullptr, 0, &packets, buffer),
              kAudioFileBadPropertySizeError);
    bytes = 7;
    packets = 4;
    EXPECT_EQ(AudioFileReadPacketData(file.get(), false, &bytes, nullptr, 0, &packets, buffer),
              noErr);
    EXPECT_EQ(packets, 1u);
    EXPECT_EQ(bytes, 4u);
}

TEST_F(AudioFileFunctions, TellWhyAFileDoesNotOpen)
{
    const std::string good = Store("good.wav", WaveFile(WaveRecord(), Bytes(40)));
    Bytes damaged = WaveFile(WaveRecord(), Bytes(40));
    damaged.resize(20);
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    FilePtr file;
    EXPECT_EQ(Open(Path("missing.wav"), file), kAudio_FileNotFoundError);
    EXPECT_EQ(Open(good + "/below.wav", file), kAudio_FileNotFoundError);
    EXPECT_EQ(Open(mFolder, file), kAudioFilePermissionsError);
    EXPECT_EQ(Open(Path("pipe"), file), kAudioFilePermissionsError);
    EXPECT_EQ(Open(Store("text.wav", ByteBuilder().Text("no audio at all").Get()), file),
              kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(Open(Store("empty.wav", {}), file), kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(Open(Store("damaged.wav", damaged), file), kAudioFileInvalidFileError);
    EXPECT_EQ(Open(good, file, 2), kAudioFilePermissionsError);
    EXPECT_EQ(Open(good, file, 3), kAudioFilePermissionsError);
    EXPECT_EQ(file.get(), nullptr);
    EXPECT_EQ(Open(good, file), noErr);
}

TEST_F(AudioFileFunctions, TellWhenAFileMayNotBeRead)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may read every file";
    const std::string path = Store("locked.wav", WaveFile(WaveRecord(), Bytes(40)));
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    FilePtr file;
    EXPECT_EQ(Open(path, file), kAudioFilePermissionsError);
}

std::size_t CountOpenDescriptors()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

TEST_F(AudioFileFunctions, LeaveNothingOpenAndPassNothingOn)
{
    const std::string good = Store("good.wav", WaveFile(WaveRecord(), Bytes(40)));
    const std::string bad = Store("bad.wav", ByteBuilder().Text("no audio").Get());
    const std::size_t before = CountOpenDescriptors();
    FilePtr file;
    EXPECT_NE(Open(bad, file), noErr);
    EXPECT_NE(Open(mFolder, file), noErr);
    EXPECT_EQ(CountOpenDescriptors(), before);
    ASSERT_EQ(Open(good, file), noErr);
    for (int descriptor = 3; descriptor < 1024; ++descriptor)
    {
        char target[4096] = {};
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        if (readlink(link.c_str(), target, sizeof(target) - 1) > 0 && target == good)
        {
            EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
        }
    }
    file.reset();
    EXPECT_EQ(CountOpenDescriptors(), before);
}

TEST_F(AudioFileFunctions, ReadLargeFilesWhereTheyAreSparse)
{
    // 5 GiB of silence with a frame of other samples at its very end.
    constexpr SInt64 kFrames = (SInt64{5} << 30) / 4;
    ByteBuilder wave;
    wave.Text("RF64").Little(0xFFFFFFFF, 4).Text("WAVE").Raw(SizesChunk(kFrames * 4, kFrames));
    wave.Raw(RIFFChunk("fmt ", WaveRecord().Get())).Text("data").Little(0xFFFFFFFF, 4);
    ByteBuilder caf;
    caf.Text("caff").Big(1, 2).Big(0, 2).Raw(CAFChunk("desc", CAFRecord().Get()));
    caf.Text("data").Big(kFrames * 4 + 4, 8).Big(0, 4);
    ByteBuilder w64;
    w64.Raw(Wave64File({Wave64Chunk("fmt ", WaveRecord().Get())}));
    const Bytes dataHead = Wave64Chunk("data", {});
    w64.Raw(Bytes(dataHead.begin(), dataHead.begin() + 16)).Little(kFrames * 4 + 24, 8);
    for (const auto& [name, header] :
         {std::pair{"a.wav", wave.Get()}, std::pair{"a.caf", caf.Get()},
          std::pair{"a.w64", w64.Get()}})
    {
        const std::string path = Store(name, header);
        const SInt64 end = static_cast<SInt64>(header.size()) + kFrames * 4;
        ASSERT_EQ(truncate(path.c_str(), end), 0);
        std::fstream(path, std::ios::binary | std::ios::in | std::ios::out)
            .seekp(end - 4)
            .write("\1\2\3\4", 4);
        FilePtr file;
        ASSERT_EQ(Open(path, file), noErr) << name;
        UInt8 buffer[64] = {};
        UInt32 bytes = sizeof(buffer);
        UInt32 packets = 16;
        ASSERT_EQ(AudioFileReadPacketData(file.get(), false, &bytes, nullptr, kFrames - 3, &packets,
                                          buffer),
                  noErr);
        EXPECT_EQ(packets, 3u) << name;
        EXPECT_EQ(std::memcmp(buffer + 8, "\1\2\3\4", 4), 0) << name;
        UInt64 count = 0;
        UInt32 size = sizeof(count);
        ASSERT_EQ(
            AudioFileGetProperty(file.get(), kAudioFilePropertyAudioDataPacketCount, &size, &count),
            noErr);
        EXPECT_EQ(count, static_cast<UInt64>(kFrames)) << name;
    }
}

TEST_F(AudioFileFunctions, RefuseNullArguments)
{
    FilePtr file;
    ASSERT_EQ(Open(Store("a.wav", WaveFile(WaveRecord(), Bytes(40))), file), noErr);
    UInt32 size = 0;
    UInt32 packets = 1;
    UInt8 buffer[64];
    const URLPtr url = MakeURL(Path("a.wav"));
    AudioFileID other = nullptr;
    EXPECT_EQ(AudioFileOpenURL(nullptr, 1, 0, &other), -50);
    EXPECT_EQ(AudioFileOpenURL(url.get(), 1, 0, nullptr), -50);
    EXPECT_EQ(AudioFileClose(nullptr), -50);
    EXPECT_EQ(AudioFileGetPropertyInfo(nullptr, kAudioFilePropertyDataFormat, &size, nullptr), -50);
    EXPECT_EQ(AudioFileGetProperty(nullptr, kAudioFilePropertyDataFormat, &size, buffer), -50);
    EXPECT_EQ(AudioFileGetProperty(file.get(), kAudioFilePropertyDataFormat, nullptr, buffer), -50);
    EXPECT_EQ(AudioFileGetProperty(file.get(), kAudioFilePropertyDataFormat, &size, nullptr), -50);
    EXPECT_EQ(AudioFileReadPacketData(nullptr, 0, &size, nullptr, 0, &packets, buffer), -50);
    EXPECT_EQ(AudioFileReadPacketData(file.get(), 0, nullptr, nullptr, 0, &packets, buffer), -50);
    EXPECT_EQ(AudioFileReadPacketData(file.get(), 0, &size, nullptr, 0, nullptr, buffer), -50);
    EXPECT_EQ(AudioFileReadPacketData(file.get(), 0, &size, nullptr, 0, &packets, nullptr), -50);
    EXPECT_EQ(AudioFileReadPacketData(file.get(), 0, &size, nullptr, -1, &packets, buffer),
              kAudioFilePositionError);
    EXPECT_EQ(AudioFileGetGlobalInfoSize(kAudioFileGlobalInfo_ReadableTypes, 0, nullptr, nullptr),
              -50);
    EXPECT_EQ(
        AudioFileGetGlobalInfo(kAudioFileGlobalInfo_ReadableTypes, 0, nullptr, nullptr, buffer),
        -50);
}

// A client with bytes in memory. mStatus answers a read when it is not noErr; mExcess is claimed
// beyond what was asked.
struct Client
{
    Bytes mBytes;
    OSStatus mStatus = noErr;
    UInt32 mExcess = 0;

    static OSStatus Read(void* inClient, SInt64 inPosition, UInt32 inCount, void* outBytes,
                         UInt32* outCount)
    {
        const auto& client = *static_cast<Client*>(inClient);
        const auto size = static_cast<SInt64>(client.mBytes.size());
        EXPECT_LE(inPosition + inCount, size);
        std::memcpy(outBytes, client.mBytes.data() + inPosition, inCount);
        *outCount = inCount + client.mExcess;
        return client.mStatus;
    }
    static SInt64 Size(void* inClient)
    {
        return static_cast<SInt64>(static_cast<Client*>(inClient)->mBytes.size());
    }
    static SInt64 NegativeSize(void*) { return -5; }
};

OSStatus OpenClient(Client& inClient, FilePtr& outFile,
                    AudioFile_GetSizeProc inSize = &Client::Size)
{
    AudioFileID file = nullptr;
    const OSStatus status =
        AudioFileOpenWithCallbacks(&inClient, &Client::Read, nullptr, inSize, nullptr, 0, &file);
    outFile.reset(file);
    return status;
}

TEST(AudioFileCallbacks, ReadWhatTheClientHas)
{
    Client client = {AIFFFile(2, 10, 16, CountingBytes(40))};
    client.mExcess = 100;
    FilePtr file;
    ASSERT_EQ(OpenClient(client, file), noErr);
    Bytes buffer(64);
    UInt32 bytes = 64;
    UInt32 packets = 16;
    ASSERT_EQ(AudioFileReadPacketData(file.get(), 0, &bytes, nullptr, 0, &packets, buffer.data()),
              noErr);
    EXPECT_EQ(packets, 10u);
    EXPECT_EQ(bytes, 40u);
    buffer.resize(40);
    EXPECT_EQ(buffer, CountingBytes(40));
}

TEST(AudioFileCallbacks, PassTheClientsStatusOn)
{
    Client client = {AIFFFile(2, 10, 16, CountingBytes(40))};
    FilePtr file;
    client.mStatus = -1234;
    EXPECT_EQ(OpenClient(client, file), -1234);
    client.mStatus = noErr;
    ASSERT_EQ(OpenClient(client, file), noErr);
    client.mStatus = -1234;
    UInt8 buffer[64];
    UInt32 bytes = sizeof(buffer);
    UInt32 packets = 16;
    EXPECT_EQ(AudioFileReadPacketData(file.get(), 0, &bytes, nullptr, 0, &packets, buffer), -1234);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(packets, 0u);
}

TEST(AudioFileCallbacks, CountANegativeSizeAsNothing)
{
    Client client = {AIFFFile(2, 10, 16, CountingBytes(40))};
    FilePtr file;
    EXPECT_EQ(OpenClient(client, file, &Client::NegativeSize), kAudioFileUnsupportedFileTypeError);
}

TEST(AudioFileCallbacks, MustBothBeThere)
{
    Client client;
    AudioFileID file = nullptr;
    EXPECT_EQ(
        AudioFileOpenWithCallbacks(&client, nullptr, nullptr, &Client::Size, nullptr, 0, &file),
        -50);
    EXPECT_EQ(
        AudioFileOpenWithCallbacks(&client, &Client::Read, nullptr, nullptr, nullptr, 0, &file),
        -50);
}

}  // namespace
