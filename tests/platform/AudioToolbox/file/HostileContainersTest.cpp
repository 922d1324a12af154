// Files that are cut, lie or were written to do harm: they open or fail, and nothing else happens.

#include "ContainerBuilders.h"
#include "Opened.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace testing_support;

namespace
{

struct Specimen
{
    const char* mName;
    Bytes mFile;
};

std::vector<Specimen> Specimens()
{
    const WaveRecord adpcm = {0x11, 1, 8000, 36, 4, {0x41, 0x00}};
    const Bytes data = CountingBytes(72);
    return {
        {"WAVE", WaveFile(ExtensibleRecord(1, 2, 24, 20, 3), data)},
        {"WAVE of blocks", RIFFFile("RIFF", {RIFFChunk("fmt ", adpcm.Get()), FactChunk(120),
                                             RIFFChunk("data", data)})},
        {"RF64", RIFFFile("RF64", {SizesChunk(72, 18), RIFFChunk("fmt ", WaveRecord().Get()),
                                   RIFFChunk("data", data)})},
        {"W64", Wave64File({Wave64Chunk("fmt ", WaveRecord().Get()), Wave64Chunk("data", data)})},
        {"AIFF", AIFFFile(2, 18, 16, data)},
        {"AIFF-C", AIFCFile("ima4", 1, 2, 16, data)},
        {"CAF", CAFFile({CAFChunk("desc", CAFRecord().Get()), CAFData(data)})},
        {"CAF of packets", SmallALACFile()},
        {"AU", AUFile(3, 72, 8000, 2, data)},
    };
}

// Whatever opened keeps the promises of its facts.
void ExpectSound(const Opened& inFile, SInt64 inFileBytes, const std::string& inWhat)
{
    if (inFile.mStatus != noErr)
    {
        EXPECT_EQ(inFile.mReader, nullptr) << inWhat;
        return;
    }
    const audiotoolbox::FileFacts& facts = inFile.Facts();
    ASSERT_GT(facts.mDataFormat.mChannelsPerFrame, 0u) << inWhat;
    ASSERT_GT(facts.mDataFormat.mSampleRate, 0.0) << inWhat;
    ASSERT_GE(facts.mDataByteCount, 0) << inWhat;
    ASSERT_LE(facts.mDataByteCount, inFileBytes) << inWhat;
    ASSERT_GE(facts.mEstimatedDuration, 0.0) << inWhat;
    ASSERT_FALSE(facts.mFormats.empty()) << inWhat;
    const Drained drained = Drain(*inFile.mReader, 5, 70000);
    if (drained.mStatus != noErr)
    {
        ASSERT_GT(facts.mPacketSizeUpperBound, 70000u) << inWhat;
    }
    ASSERT_LE(static_cast<SInt64>(drained.mBytes.size()), facts.mDataByteCount) << inWhat;
    for (const AudioStreamPacketDescription& packet : drained.mPackets)
        ASSERT_LE(packet.mDataByteSize, facts.mPacketSizeUpperBound) << inWhat;
}

TEST(HostileContainers, OpenOrFailAtEveryLength)
{
    for (const Specimen& specimen : Specimens())
    {
        ASSERT_EQ(Open(specimen.mFile).mStatus, noErr) << specimen.mName;
        for (std::size_t length = 0; length < specimen.mFile.size(); ++length)
        {
            const Bytes cut(specimen.mFile.begin(),
                            specimen.mFile.begin() + static_cast<std::ptrdiff_t>(length));
            const Opened file = Open(cut);
            const bool isExpected = file.mStatus == noErr ||
                                    file.mStatus == kAudioFileInvalidFileError ||
                                    file.mStatus == kAudioFileUnsupportedFileTypeError;
            EXPECT_TRUE(isExpected) << specimen.mName << " cut to " << length;
            ExpectSound(file, static_cast<SInt64>(length),
                        specimen.mName + (" cut to " + std::to_string(length)));
        }
    }
}

TEST(HostileContainers, KeepTheWholePacketsThatACutLeaves)
{
    Bytes file = WaveFile(WaveRecord(), CountingBytes(400));
    file.resize(file.size() - 202);
    const Opened opened = Open(file);
    ASSERT_EQ(opened.mStatus, noErr);
    EXPECT_EQ(Drain(*opened.mReader).mBytes, CountingBytes(196));
}

TEST(HostileContainers, SurviveWrongBytes)
{
    std::mt19937 random(2);
    const UInt8 extremes[] = {0x00, 0xFF, 0x7F, 0x80, 0x01, 0xFE};
    for (const Specimen& specimen : Specimens())
        for (int i = 0; i < 1500; ++i)
        {
            Bytes file = specimen.mFile;
            const int changes = 1 + static_cast<int>(random() % 6);
            for (int change = 0; change < changes; ++change)
            {
                const std::size_t at = random() % std::min<std::size_t>(file.size(), 200);
                file[at] =
                    random() % 2 == 0 ? extremes[random() % 6] : static_cast<UInt8>(random());
            }
            ExpectSound(Open(file), static_cast<SInt64>(file.size()),
                        specimen.mName + (" change " + std::to_string(i)));
            if (HasFatalFailure())
                return;
        }
}

TEST(HostileContainers, SurviveEverySizeThatLies)
{
    const UInt64 sizes[] = {0,
                            1,
                            0x7FFFFFFF,
                            0x80000000,
                            0xFFFFFFFF,
                            0xFFFFFFFFFFFFFFFF,
                            0x7FFFFFFFFFFFFFFF,
                            0x8000000000000000};
    for (const Specimen& specimen : Specimens())
        for (std::size_t at = 4; at + 8 <= specimen.mFile.size(); ++at)
            for (const UInt64 size : sizes)
                for (const int bytes : {4, 8})
                {
                    Bytes file = specimen.mFile;
                    const Bytes little = ByteBuilder().Little(size, bytes).Get();
                    const auto place = file.begin() + static_cast<std::ptrdiff_t>(at);
                    std::copy(little.begin(), little.end(), place);
                    ExpectSound(Open(file), static_cast<SInt64>(file.size()), specimen.mName);
                    std::copy(little.rbegin(), little.rend(), place);
                    ExpectSound(Open(file), static_cast<SInt64>(file.size()), specimen.mName);
                    if (HasFatalFailure())
                        return;
                }
}

// A source of any claimed size: a beginning, and zeros behind it. Counts its reads.
class EndlessSource : public audiotoolbox::ByteSource
{
public:
    EndlessSource(Bytes inBeginning, SInt64 inSize, int* outReads)
        : mBeginning(std::move(inBeginning)), mSize(inSize), mReads(outReads)
    {
    }

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        ++*mReads;
        *outCount = static_cast<UInt32>(
            std::clamp<SInt64>(mSize - inPosition, 0, static_cast<SInt64>(inCount)));
        for (UInt32 i = 0; i < *outCount; ++i)
        {
            const auto at = static_cast<std::size_t>(inPosition) + i;
            static_cast<UInt8*>(outBytes)[i] = at < mBeginning.size() ? mBeginning[at] : 0;
        }
        return noErr;
    }
    SInt64 Size() const override { return mSize; }

private:
    Bytes mBeginning;
    SInt64 mSize;
    int* mReads;
};

TEST(HostileContainers, StopAtEmptyChunksWithoutEnd)
{
    const SInt64 most = std::numeric_limits<SInt64>::max();
    for (const Bytes& beginning : {RIFFFile("RIFF", {}), FormFile("AIFF", {}), CAFFile({})})
    {
        int reads = 0;
        const Opened file = OpenSource(std::make_unique<EndlessSource>(beginning, most, &reads));
        EXPECT_EQ(file.mStatus, kAudioFileInvalidFileError);
        EXPECT_LT(reads, 40000);
    }
}

TEST(HostileContainers, SurviveTheLargestSizesThatThereAre)
{
    const SInt64 most = std::numeric_limits<SInt64>::max();
    for (const Specimen& specimen : Specimens())
        for (const SInt64 size : {most, most - 1, most - 7})
        {
            int reads = 0;
            const Opened file =
                OpenSource(std::make_unique<EndlessSource>(specimen.mFile, size, &reads));
            EXPECT_EQ(file.mStatus, noErr) << specimen.mName;
        }
    Bytes au = AUFile(3, 0xFFFFFFFF, 8000, 2, {});
    int reads = 0;
    const Opened file = OpenSource(std::make_unique<EndlessSource>(au, most, &reads));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, static_cast<UInt64>(most - 28) / 4);
}

// A source that fails at the read with the given number, counted from 1.
class FailingSource : public MemorySource
{
public:
    FailingSource(const Bytes& inBytes, int inFailing, int* outReads)
        : MemorySource(inBytes), mFailing(inFailing), mReads(outReads)
    {
    }

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        *outCount = 0;
        if (++*mReads == mFailing)
            return kAudio_IOError;
        return MemorySource::ReadAt(inPosition, inCount, outBytes, outCount);
    }

private:
    int mFailing;
    int* mReads;
};

TEST(HostileContainers, TellTheStatusOfTheReadThatFails)
{
    for (const Specimen& specimen : Specimens())
        for (int failing = 1; failing < 100; ++failing)
        {
            int reads = 0;
            const Opened file =
                OpenSource(std::make_unique<FailingSource>(specimen.mFile, failing, &reads));
            if (reads < failing)
                break;
            EXPECT_EQ(file.mStatus, kAudio_IOError) << specimen.mName << ", read " << failing;
        }
}

}  // namespace
