// Files beyond 4 GiB on disk, where large writes leave holes: what the header says once the file
// is closed, and what is left of a file that may not grow so far.
#include "tests/roads/faults/FaultsFixture.h"

#include "host/ReadSession.h"

#include <AudioToolbox/AudioToolbox.h>
#include <AudioToolbox/ExtendedAudioFile.h>

#include <sndfile.h>

#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>

namespace
{

using namespace faults;
using faulty_system::Plan;

constexpr std::size_t kHoleBytes = 1 << 16;

// Zeros that take no memory as long as nobody looks.
class ManyZeros
{
public:
    explicit ManyZeros(std::size_t inBytes)
        : mBytes(inBytes),
          mStart(
              mmap(nullptr, inBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))
    {
    }
    ManyZeros(const ManyZeros&) = delete;
    ManyZeros& operator=(const ManyZeros&) = delete;
    ~ManyZeros()
    {
        if (IsThere())
            (void)munmap(mStart, mBytes);
    }
    bool IsThere() const { return mStart != MAP_FAILED; }
    void* Start() const { return mStart; }

private:
    const std::size_t mBytes;
    void* const mStart;
};

struct SizeRow
{
    const char* mName;
    AudioFileTypeID mType;
    UInt32 mOrder;          // flag of the samples' byte order
    SInt64 mMostBytes;      // of audio; 0: as many as come
    bool mIsReadElsewhere;  // libsndfile knows no BW64, and no AU beyond 2 GiB
};

// clang-format off
constexpr SizeRow kLargeTypes[] = {
    {"RF64", kAudioFileRF64Type,   0, 0, true},
    {"BW64", kAudioFileBW64Type,   0, 0, false},
    {"W64",  kAudioFileWave64Type, 0, 0, true},
    {"CAF",  kAudioFileCAFType,    0, 0, true},
};
constexpr SizeRow kSmallTypes[] = {
    {"WAVE", kAudioFileWAVEType, 0,                           0xFFFFFFD8, true},
    {"AIFF", kAudioFileAIFFType, kAudioFormatFlagIsBigEndian, 0xFFFFFFD0, true},
    {"AIFC", kAudioFileAIFCType, kAudioFormatFlagIsBigEndian, 0xFFFFFFB0, true},
    {"AU",   kAudioFileNextType, kAudioFormatFlagIsBigEndian, 0xFFFFFFFC, false},
};
// clang-format on

class LargeFiles : public FaultsFixture
{
protected:
    static constexpr UInt32 kBlockFrames = 1u << 29;  // of 4 bytes
    static constexpr int kBlocks = 3;

    void LeaveHoles() const
    {
        Plan plan;
        plan.mFolder = mOut.c_str();
        plan.mHoleBytes = kHoleBytes;
        faulty_system::Follow(plan);
    }

    ExtAudioFileRef Create(const SizeRow& inRow) const
    {
        const AudioStreamBasicDescription format = {
            48000,
            kAudioFormatLinearPCM,
            kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked | inRow.mOrder,
            4,
            1,
            4,
            2,
            16,
            0};
        const std::string path = Out(inRow.mName);
        const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
            kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.data()),
            static_cast<CFIndex>(path.size()), false);
        ExtAudioFileRef file = nullptr;
        EXPECT_EQ(ExtAudioFileCreateWithURL(url, inRow.mType, &format, nullptr,
                                            kAudioFileFlags_EraseFile, &file),
                  noErr);
        CFRelease(url);
        EXPECT_EQ(ExtAudioFileSetProperty(file, kExtAudioFileProperty_ClientDataFormat,
                                          sizeof(format), &format),
                  noErr);
        return file;
    }

    OSStatus WriteBlock(ExtAudioFileRef inFile) const
    {
        const AudioBufferList list = {1, {{2, kBlockFrames * 4, mZeros.Start()}}};
        return ExtAudioFileWrite(inFile, kBlockFrames, &list);
    }

    void ExpectFrames(const SizeRow& inRow, std::int64_t inFrames) const
    {
        const std::string path = Out(inRow.mName);
        const host::ReadSession session(Bundle(), path);
        EXPECT_EQ(session.Info().mFrameCount, inFrames) << inRow.mName;

        struct stat state = {};
        ASSERT_EQ(stat(path.c_str(), &state), 0);
        EXPECT_LT(state.st_blocks * 512, 1 << 20) << "bytes on disk";
        EXPECT_GE(state.st_size, inFrames * 4);
        EXPECT_LT(state.st_size, inFrames * 4 + 200);
        if (!inRow.mIsReadElsewhere)
            return;
        SF_INFO info = {};
        const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(
            sf_open(path.c_str(), SFM_READ, &info), &sf_close);
        ASSERT_TRUE(file) << inRow.mName << sf_strerror(nullptr);
        EXPECT_EQ(info.frames, inFrames) << inRow.mName;
        std::int16_t last[4] = {1, 1, 1, 1};
        EXPECT_EQ(sf_seek(file.get(), inFrames - 1, SEEK_SET), inFrames - 1);
        EXPECT_EQ(sf_readf_short(file.get(), last, 2), 1) << inRow.mName;
        EXPECT_EQ(last[1], 0);
    }

    const ManyZeros mZeros{std::size_t{kBlockFrames} * 4};
};

TEST_F(LargeFiles, OfLargeContainersSayHowLongTheyAre)
{
    ASSERT_TRUE(mZeros.IsThere());
    for (const SizeRow& row : kLargeTypes)
    {
        LeaveHoles();
        const ExtAudioFileRef file = Create(row);
        for (int block = 0; block < kBlocks; ++block)
            EXPECT_EQ(WriteBlock(file), noErr) << row.mName << block;
        EXPECT_EQ(ExtAudioFileDispose(file), noErr) << row.mName;
        faulty_system::Follow({});
        ExpectFrames(row, std::int64_t{kBlocks} * kBlockFrames);
        fs::remove(Out(row.mName));
    }
}

TEST_F(LargeFiles, OfContainersWith32BitsAreRefusedAndHoldWhatFits)
{
    ASSERT_TRUE(mZeros.IsThere());
    for (const SizeRow& row : kSmallTypes)
    {
        LeaveHoles();
        const ExtAudioFileRef file = Create(row);
        EXPECT_EQ(WriteBlock(file), noErr) << row.mName;
        for (int block = 1; block < kBlocks; ++block)
            EXPECT_EQ(WriteBlock(file), kAudioFileDoesNotAllow64BitDataSizeError) << row.mName;
        EXPECT_EQ(ExtAudioFileDispose(file), kAudioFileDoesNotAllow64BitDataSizeError) << row.mName;
        faulty_system::Follow({});
        ExpectFrames(row, row.mMostBytes / 4);
        fs::remove(Out(row.mName));
    }
}

}  // namespace
