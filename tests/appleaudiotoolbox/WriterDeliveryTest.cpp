// Writing into a created file and closing it.
#include "tests/appleaudiotoolbox/WriterFixture.h"

#include <type_traits>

namespace
{

using namespace testing_support;

using WriterDelivery = WriterTest;
using WriterClosing = WriterTest;

static_assert(!std::is_polymorphic_v<appleaudiotoolbox::ATWriter>);
static_assert(!std::is_copy_constructible_v<appleaudiotoolbox::ATWriter>);

TEST_F(WriterDelivery, HandsTheBytesOverAsTheyLie)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_TRUE(mWriter->WriteSampleBytes(99, 8, bytes, mInfo));
    EXPECT_EQ(mPlatform.Calls().back(), "ExtAudioFileWrite frames 2 buffers 1 channels 2 bytes 8");
    ASSERT_EQ(mPlatform.Written().size(), 1u);
    EXPECT_EQ(mPlatform.Written()[0].mData, bytes);
    EXPECT_EQ(mPlatform.Written()[0].mBytes, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(WriterDelivery, LeavesAnUnfinishedFrameOutOfTheCountAlone)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    EXPECT_TRUE(Write(Bytes(7)));
    EXPECT_EQ(mPlatform.Calls().back(), "ExtAudioFileWrite frames 1 buffers 1 channels 2 bytes 7");
    EXPECT_TRUE(Write(Bytes(3)));
    EXPECT_EQ(mPlatform.Calls().back(), "ExtAudioFileWrite frames 0 buffers 1 channels 2 bytes 3");
}

TEST_F(WriterDelivery, OfNoBytesStillWrites)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    EXPECT_TRUE(Write({}));
    EXPECT_EQ(mPlatform.Calls().back(), "ExtAudioFileWrite frames 0 buffers 1 channels 2 bytes 0");
}

TEST_F(WriterDelivery, TakesItsCountAsUnsigned)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    mPlatform.AnswerWrites({-50, -50});
    EXPECT_FALSE(mWriter->WriteSampleBytes(0, 0x7FFFFFFF, nullptr, mInfo));
    EXPECT_EQ(mPlatform.Calls().back(),
              "ExtAudioFileWrite frames 536870911 buffers 1 channels 2 bytes 2147483647");
    EXPECT_FALSE(mWriter->WriteSampleBytes(0, -1, nullptr, mInfo));
    EXPECT_EQ(mPlatform.Calls().back(),
              "ExtAudioFileWrite frames 1073741823 buffers 1 channels 2 bytes 4294967295");
}

TEST_F(WriterDelivery, ThatFailsNotesItAndCanGoOn)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    mPlatform.AnswerWrites({-61});
    EXPECT_FALSE(Write(Bytes(4)));
    EXPECT_EQ(mInfo.mSite, 23u);
    EXPECT_EQ(mInfo.mStatus, -61);
    mInfo = {};
    EXPECT_TRUE(Write(Bytes(4)));
    EXPECT_EQ(mInfo.mSite, 0u);
}

TEST_F(WriterDelivery, WithoutAFileNotesOnlyTheGeneralSite)
{
    mInfo.mStatus = 77;
    EXPECT_FALSE(Write(Bytes(4)));
    EXPECT_EQ(mInfo.mSite, 1u);
    EXPECT_EQ(mInfo.mStatus, 77);
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(WriterDelivery, AfterClosingNotesTheGeneralSite)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    ASSERT_TRUE(Finish());
    EXPECT_FALSE(Write(Bytes(4)));
    EXPECT_EQ(mInfo.mSite, 1u);
    EXPECT_EQ(mInfo.mStatus, 0);
    EXPECT_EQ(mPlatform.Written().size(), 0u);
}

TEST_F(WriterClosing, DisposesOnce)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    mPlatform.ForgetCalls();
    EXPECT_TRUE(mWriter->FinishWrite(false, nullptr, 0, mInfo));
    EXPECT_TRUE(Finish());
    mWriter.reset();
    EXPECT_EQ(mPlatform.Calls(), Lines{"ExtAudioFileDispose"});
}

TEST_F(WriterClosing, ThatFailsHasDroppedTheFile)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    mPlatform.ForgetCalls();
    mPlatform.AnswerDisposals({-34});
    EXPECT_FALSE(Finish());
    EXPECT_EQ(mInfo.mSite, 24u);
    EXPECT_EQ(mInfo.mStatus, -34);
    EXPECT_TRUE(Finish());
    mWriter.reset();
    EXPECT_EQ(mPlatform.Calls(), Lines{"ExtAudioFileDispose"});
}

TEST_F(WriterClosing, WithoutAFileSucceeds)
{
    EXPECT_TRUE(Finish());
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(WriterClosing, HappensWhenTheWriterGoesAway)
{
    ASSERT_TRUE(Create(kWAVE, kStereo16));
    mPlatform.ForgetCalls();
    mPlatform.AnswerDisposals({-34});
    mWriter.reset();
    EXPECT_EQ(mPlatform.Calls(), Lines{"ExtAudioFileDispose"});
    EXPECT_EQ(mPlatform.OpenHandles(), 0);
}

}  // namespace
