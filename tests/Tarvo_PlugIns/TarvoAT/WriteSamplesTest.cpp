// Selectors 18 and 19: what reaches the file, the bounds of a block, and who owns the writer.
#include "tests/Tarvo_PlugIns/TarvoAT/WriteSessionFixture.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace
{

using namespace testing_support;

using WriteSamplesTest = WriteSessionTest;
using FinishWriteTest = WriteSessionTest;

// Fails when it is asked for one of its channels.
class ThrowingBlock : public RecordingWriteSamples
{
public:
    ThrowingBlock(CallLog& outLog, std::int64_t inChannel)
        : RecordingWriteSamples(outLog), mThrowing(inChannel)
    {
        mBuffers = {"ab", "cd"};
    }
    const char* GetChannelBuffer(std::int64_t inChannel) const override
    {
        const char* const buffer = RecordingWriteSamples::GetChannelBuffer(inChannel);
        if (inChannel == mThrowing)
            throw std::runtime_error("host");
        return buffer;
    }

private:
    std::int64_t mThrowing;
};

// Hands out one and the same memory for every channel, filled anew each time it is asked.
class SharedMemoryBlock : public RecordingWriteSamples
{
public:
    SharedMemoryBlock(CallLog& outLog, std::vector<Bytes> inChannels)
        : RecordingWriteSamples(outLog), mChannels(std::move(inChannels)), mMemory(mChannels[0])
    {
    }
    const char* GetChannelBuffer(std::int64_t inChannel) const override
    {
        const Bytes& channel = mChannels.at(static_cast<std::size_t>(inChannel));
        std::copy(channel.begin(), channel.end(), mMemory.begin());
        return reinterpret_cast<const char*>(mMemory.data());
    }

private:
    std::vector<Bytes> mChannels;
    mutable Bytes mMemory;
};

TEST_F(WriteSamplesTest, AsksForTheCountFirstAndForEachChannelOnce)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    mBlock.mStart = 1000;
    EXPECT_EQ(Write(2, {"\1\2\5\6", "\3\4\7\10"}), 0);
    EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetSampleCount", "GetChannelBuffer 0",
                             "GetChannelBuffer 1", "GetStartSample"}));
    EXPECT_EQ(mPlatform.Calls(),
              CallLog{"ExtAudioFileWrite frames 2 buffers 1 channels 2 bytes 8"});
    EXPECT_EQ(mPlatform.Written()[0].mBytes, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(WriteSamplesTest, PutsTheChannelsOfEachFrameSideBySideInEveryWidth)
{
    struct Row
    {
        std::int32_t mType;
        const char* mLeft;
        const char* mRight;
        Bytes mFrames;
    };
    const Row rows[] = {
        {10, "ab", "AB", {'a', 'A', 'b', 'B'}},
        {20, "abcd", "ABCD", {'a', 'b', 'A', 'B', 'c', 'd', 'C', 'D'}},
        {30, "abcdef", "ABCDEF", {'a', 'b', 'c', 'A', 'B', 'C', 'd', 'e', 'f', 'D', 'E', 'F'}},
        {40,
         "abcdefgh",
         "ABCDEFGH",
         {'a', 'b', 'c', 'd', 'A', 'B', 'C', 'D', 'e', 'f', 'g', 'h', 'E', 'F', 'G', 'H'}}};
    StoreWave();
    for (const Row& row : rows)
    {
        mFormat.mSampleType = row.mType;
        ASSERT_EQ(Start(), 0);
        EXPECT_EQ(Write(2, {row.mLeft, row.mRight}), 0);
        EXPECT_EQ(mPlatform.Written().back().mFrames, 2u);
        EXPECT_EQ(mPlatform.Written().back().mBytes, row.mFrames) << row.mType;
        EXPECT_EQ(Finish(), 0);
    }
}

// Sample bytes count up in the order in which they belong into the file.
TEST_F(WriteSamplesTest, TakesEachChannelBeforeItAsksForTheNextOne)
{
    constexpr UInt32 kFrames = 70;
    for (const UInt32 channels : {1u, 2u, 3u, 6u})
    {
        StoreWave(channels);
        for (const UInt32 width : {1u, 2u, 3u, 4u})
        {
            Bytes frames(kFrames * channels * width);
            std::vector<Bytes> planes(channels);
            for (std::size_t index = 0; index < frames.size(); ++index)
            {
                frames[index] = static_cast<std::uint8_t>(index);
                planes[index / width % channels].push_back(frames[index]);
            }
            mFormat.mSampleType = static_cast<std::int32_t>(10 * width);
            ASSERT_EQ(Start(), 0);
            SharedMemoryBlock block(mLog, planes);
            block.mCount = kFrames;
            EXPECT_EQ(Call(18, mStart.mHandle, &block), 0);
            EXPECT_EQ(mPlatform.Written().back().mBytes, frames)
                << channels << " channels of " << width << " bytes";
            EXPECT_EQ(Finish(), 0);
        }
    }
}

TEST_F(WriteSamplesTest, CopiesASingleChannelAsItIs)
{
    StoreWave(1);
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(Write(3, {"abcdef"}), 0);
    EXPECT_EQ(mPlatform.Written()[0].mChannels, 1u);
    EXPECT_EQ(mPlatform.Written()[0].mBytes, (Bytes{'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST_F(WriteSamplesTest, TakesItsChannelsFromTheSettings)
{
    StoreWave(3);
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(Write(1, {"ab", "cd", "ef"}), 0);
    EXPECT_EQ(mPlatform.Written()[0].mBytes, (Bytes{'a', 'b', 'c', 'd', 'e', 'f'}));
}

TEST_F(WriteSamplesTest, OfNoFramesAsksForTheBuffersAndWritesNothing)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(Write(0, {nullptr, nullptr}), 0);
    EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetSampleCount", "GetChannelBuffer 0",
                             "GetChannelBuffer 1", "GetStartSample"}));
    EXPECT_EQ(mPlatform.Calls(),
              CallLog{"ExtAudioFileWrite frames 0 buffers 1 channels 2 bytes 0"});
}

TEST_F(WriteSamplesTest, WithoutChannelsIsRefused)
{
    Store({kWAVE, {48000, kPCM, 0, 1, 0, 0, 16, 12}});
    ASSERT_EQ(Start(), 0);
    for (const std::int64_t frames : {0, 1, 1000})
    {
        EXPECT_EQ(Write(frames, {}), -6);
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetSampleCount"}));
        EXPECT_EQ(mPlatform.Calls(), CallLog());
    }
}

// The host gives up when it is asked for the samples, so that no memory is written to.
TEST_F(WriteSamplesTest, OfTheLargestBlockGoesOn)
{
    struct Row
    {
        std::int32_t mType;
        UInt32 mChannels;
        std::int64_t mFrames;
    };
    const Row rows[] = {{10, 1, 2147483647}, {20, 1, 1073741823}, {30, 2, 357913941}};
    for (const Row& row : rows)
    {
        StoreWave(row.mChannels);
        mFormat.mSampleType = row.mType;
        ASSERT_EQ(Start(), 0);
        ThrowingBlock block(mLog, 0);
        block.mCount = row.mFrames;
        mLog.clear();
        EXPECT_THROW(Call(18, mStart.mHandle, &block), std::runtime_error);
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetSampleCount", "GetChannelBuffer 0"}));
        EXPECT_EQ(Finish(), 0);
    }
}

TEST_F(WriteSamplesTest, OfOneByteMoreIsRefusedWithoutABuffer)
{
    struct Row
    {
        std::int32_t mType;
        UInt32 mChannels;
        std::int64_t mFrames;
    };
    const Row rows[] = {
        {10, 1, 0x80000000},         {20, 1, 0x40000000},         {20, 2, 0x20000000},
        {40, 2, 0x10000000},         {30, 1, 715827883},          {10, 2, 0x7FFFFFFFFFFFFFFF},
        {40, 8, 0x4000000000000000}, {20, 2, 0x2000000000000000}, {10, 1, 0x7FFFFFFFFFFFFFFF}};
    for (const Row& row : rows)
    {
        StoreWave(row.mChannels);
        mFormat.mSampleType = row.mType;
        ASSERT_EQ(Start(), 0);
        EXPECT_EQ(Write(row.mFrames, {}), -6) << row.mType << " " << row.mFrames;
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetSampleCount"}));
        EXPECT_EQ(mPlatform.Calls(), CallLog());
        EXPECT_EQ(Finish(), 0);
    }
}

TEST_F(WriteSamplesTest, GoesOnAfterARefusedBlock)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(Write(0x20000000, {}), -6);
    EXPECT_EQ(Write(1, {"ab", "cd"}), 0);
}

// 1073741824 channels of 4 bytes make frames whose size wraps to 0.
TEST_F(WriteSamplesTest, OfAWidthThatNoHostDeliversIsRefusedAtTheFirstChannel)
{
    Store({kWAVE, {48000, kPCM, 0, 1, 0, 0x40000000, 16, 12}});
    mFormat.mSampleType = 40;
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(Write(1, {"abcd"}), -8);
    EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetSampleCount", "GetChannelBuffer 0"}));
    EXPECT_EQ(mPlatform.Calls(), CallLog());
}

TEST_F(WriteSamplesTest, TellsAFailureAndGoesOn)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    mPlatform.AnswerWrites({-61});
    EXPECT_EQ(Write(1, {"ab", "cd"}), -1);
    EXPECT_EQ(mErrors.mText, Wide("Error writing samples to the file\nError Code: -61"));
    EXPECT_EQ(mLog.back().substr(0, 12), "SetErrorText");

    mErrors.mText.clear();
    EXPECT_EQ(Write(1, {"ab", "cd"}), 0);
    EXPECT_EQ(mErrors.mText, u"");
}

TEST_F(WriteSamplesTest, FailsQuietlyWithoutAnErrorObject)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    mBlock.mErrors = nullptr;
    mPlatform.AnswerWrites({-61});
    EXPECT_EQ(Write(1, {"ab", "cd"}), -1);
    EXPECT_EQ(mLog.back(), "GetStartSample");
}

TEST_F(WriteSamplesTest, AcceptsAnyPosition)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    for (const std::int64_t start :
         {std::int64_t{-1}, std::int64_t{0x7FFFFFFFFFFFFFFF}, -std::int64_t{0x7FFFFFFFFFFFFFFF}})
    {
        mBlock.mStart = start;
        EXPECT_EQ(Write(1, {"ab", "cd"}), 0);
    }
}

TEST_F(WriteSamplesTest, LetsAnExceptionOfTheHostThroughAndGoesOn)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    ThrowingBlock block(mLog, 1);
    block.mCount = 1;
    EXPECT_THROW(Call(18, mStart.mHandle, &block), std::runtime_error);
    EXPECT_EQ(Write(1, {"ab", "cd"}), 0);
}

TEST_F(FinishWriteTest, ClosesTheFileAndAsksNothingOfTheFormat)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(Finish(), 0);
    EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFinishFlag", "GetFormatInterface"}));
    EXPECT_EQ(mPlatform.Calls(), CallLog{"ExtAudioFileDispose"});
    EXPECT_EQ(mPlatform.OpenHandles(), 0);
}

TEST_F(FinishWriteTest, DoesTheSameWhateverTheFlag)
{
    for (const std::int32_t flag : {0, 1, 256, -1})
    {
        StoreWave();
        ASSERT_EQ(Start(), 0);
        mFinish.mFlag = flag;
        EXPECT_EQ(Finish(), 0);
        EXPECT_EQ(mPlatform.Calls(), CallLog{"ExtAudioFileDispose"});
    }
}

TEST_F(FinishWriteTest, ThatFailsIsToldAndASecondOneFreesTheWriter)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    mPlatform.AnswerDisposals({-34});
    EXPECT_EQ(Finish(), -1);
    EXPECT_EQ(mErrors.mText, Wide("Error closing the file.\nError Code: -34"));
    EXPECT_EQ(mLog.back().substr(0, 12), "SetErrorText");

    EXPECT_EQ(Finish(), 0);
    EXPECT_EQ(mPlatform.Calls(), CallLog());
}

TEST_F(FinishWriteTest, ThatFailsEndsTheWriting)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    mPlatform.AnswerDisposals({-34});
    EXPECT_EQ(Finish(), -1);
    EXPECT_EQ(Write(1, {"ab", "cd"}), -1);
    EXPECT_EQ(mErrors.mText, Wide("Error writing samples to the file\nError Code: 0"));
}

TEST_F(FinishWriteTest, FailsQuietlyWithoutAnErrorObject)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    mFinish.mErrors = nullptr;
    mPlatform.AnswerDisposals({-34});
    EXPECT_EQ(Finish(), -1);
    EXPECT_EQ(mLog.back(), "GetFormatInterface");
}

TEST_F(FinishWriteTest, TwoSessionsDoNotMeet)
{
    StoreWave();
    ASSERT_EQ(Start(), 0);
    RecordingWriteStart other(mLog);
    other.mFormat = &mFormat;
    ASSERT_EQ(Call(17, nullptr, &other), 0);
    EXPECT_NE(other.mHandle, mStart.mHandle);
    EXPECT_EQ(Finish(), 0);
    EXPECT_EQ(mPlatform.OpenFiles(), 1);
    EXPECT_EQ(Call(19, other.mHandle, &mFinish), 0);
}

}  // namespace
