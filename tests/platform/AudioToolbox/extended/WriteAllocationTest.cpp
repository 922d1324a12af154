// Linear PCM is written without touching the heap once the file is under way. Replacing the
// allocator takes a program of its own.

#include "ExtendedUse.h"

#include "../convert/AllocationCount.h"

#include <sys/mman.h>

namespace
{

using namespace audiotoolbox;
using namespace extended_test;

class SilentWriter : public PacketWriter
{
public:
    OSStatus Start(ByteSink&, const StreamStart&) override { return noErr; }
    OSStatus Write(std::span<const UInt8> inBytes,
                   std::span<const AudioStreamPacketDescription>) override
    {
        sBytes += inBytes.size();
        return noErr;
    }
    OSStatus Finish(const StreamEnd&) override { return noErr; }

    static inline std::size_t sBytes = 0;
};

OSStatus MakeSilentWriter(const WriteRequest&, PacketWriterPtr& outWriter)
{
    outWriter = std::make_unique<SilentWriter>();
    return noErr;
}

struct RoadRow
{
    const char* mName;
    Description mClient;
    Description mFile;
    Labels mLabels;
};

TEST(AWrite, AllocatesNothingOnceTheFileIsUnderWay)
{
    const Description words16 = Linear(48000, kSigned, 16, 2);
    const Description words24 = Linear(48000, kSigned, 24, 2);
    const Description logs = {48000, kAudioFormatULaw, 0, 0, 0, 0, 2, 0, 0};
    const RoadRow rows[] = {
        {"straight", words16, words16, {1, 2}},
        {"channels move", words16, words16, {2, 1}},
        {"samples change", Floats(48000, 2), words24, {1, 2}},
        {"both", Floats(48000, 2), words24, {2, 1}},
        {"mu-law", words16, logs, {}},
    };
    RecordInUse record;
    for (const RoadRow& row : rows)
    {
        ExtendedFile file({kAudioFileWAVEType, row.mFile, row.mLabels, &MakeSilentWriter});
        ASSERT_EQ(file.Check(), noErr) << row.mName;
        file.Attach(std::make_unique<RecordingSink>());
        ASSERT_EQ(file.SetClientFormat(row.mClient), noErr) << row.mName;
        constexpr UInt32 kFrames = 50001;
        const ByteVector frames(kFrames * row.mClient.mBytesPerFrame);
        const auto size = static_cast<UInt32>(frames.size());
        ASSERT_EQ(file.Write(frames.data(), kFrames, size), noErr) << row.mName;
        SilentWriter::sBytes = 0;
        const std::size_t before = AllocationCount();
        for (int i = 0; i < 20; ++i)
            ASSERT_EQ(file.Write(frames.data(), kFrames, size), noErr) << row.mName;
        EXPECT_EQ(AllocationCount(), before) << row.mName;
        EXPECT_EQ(SilentWriter::sBytes, 20u * kFrames * file.Format().mBytesPerPacket);
        EXPECT_EQ(file.Close(), noErr);
    }
}

// Pages that nobody has written cost no memory.
class ManyZeros
{
public:
    explicit ManyZeros(std::size_t inBytes)
        : mByteCount(inBytes),
          mBytes(::mmap(nullptr, inBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE,
                        -1, 0))
    {
    }
    ManyZeros(const ManyZeros&) = delete;
    ManyZeros& operator=(const ManyZeros&) = delete;
    ~ManyZeros()
    {
        if (IsThere())
            (void)::munmap(mBytes, mByteCount);
    }
    bool IsThere() const { return mBytes != MAP_FAILED; }
    const UInt8* Bytes() const { return static_cast<const UInt8*>(mBytes); }

private:
    const std::size_t mByteCount;
    void* mBytes;
};

TEST(AWrite, MayHaveMoreBytesThan31BitsCount)
{
    constexpr UInt32 kFrames = (1u << 29) + 5;
    const ManyZeros zeros(std::size_t{kFrames} * 4);
    if (!zeros.IsThere())
        GTEST_SKIP() << "no address space";
    const Description words16 = Linear(48000, kSigned, 16, 2);
    const Description swapped = Linear(48000, kSigned | kAudioFormatFlagIsBigEndian, 16, 2);
    RecordInUse record;
    for (const auto& [name, format] :
         {std::pair{"straight", words16}, std::pair{"converted", swapped}})
    {
        ExtendedFile file({kAudioFileWAVEType, format, {}, &MakeSilentWriter});
        ASSERT_EQ(file.Check(), noErr);
        file.Attach(std::make_unique<RecordingSink>());
        ASSERT_EQ(file.SetClientFormat(words16), noErr);
        SilentWriter::sBytes = 0;
        EXPECT_EQ(file.Write(zeros.Bytes(), kFrames, kFrames * 4), noErr);
        EXPECT_EQ(file.FrameCount(), SInt64{kFrames});
        EXPECT_EQ(file.Close(), noErr);
        EXPECT_EQ(SilentWriter::sBytes, std::size_t{kFrames} * 4) << name;
    }
}

}  // namespace
