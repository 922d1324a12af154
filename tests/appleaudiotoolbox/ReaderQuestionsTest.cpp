// What an open reader tells of its file: duration, bit rate, channel labels, type, description.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

namespace
{

using namespace testing_support;

class ReaderQuestions : public ReaderTest
{
protected:
    void OpenWithChannels(UInt32 inChannels)
    {
        AudioStreamBasicDescription format = kStereo16;
        format.mChannelsPerFrame = inChannels;
        format.mBytesPerFrame = format.mBytesPerPacket = 2 * inChannels;
        mPlatform.HoldFile(kAudioFileWAVEType, format);
        ASSERT_TRUE(Open());
        mPlatform.ForgetCalls();
    }

    void HoldLayout(const std::vector<UInt32>& inWords)
    {
        mPlatform.Answer(Family::File, kAudioFilePropertyChannelLayout,
                         PropertyAnswer::List(inWords));
    }

    std::vector<UInt32> Labels() const
    {
        std::vector<UInt32> labels;
        for (const auto& description : mReader->GetChannelLayout())
            labels.push_back(static_cast<UInt32>(description.mLabel));
        return labels;
    }
};

using Numbers = std::vector<UInt32>;

TEST_F(ReaderQuestions, DurationAndBitRateComeFromTheFile)
{
    OpenWithChannels(2);
    mPlatform.Answer(Family::File, kAudioFilePropertyEstimatedDuration,
                     PropertyAnswer::Value(12.5));
    mPlatform.Answer(Family::File, kAudioFilePropertyBitRate,
                     PropertyAnswer::Value<UInt32>(128000));
    EXPECT_EQ(mReader->GetEstimatedDuration(), 12.5);
    EXPECT_EQ(mReader->GetBitrate(), 128000u);
    EXPECT_EQ(mPlatform.Calls(), (Lines{
                                     "AudioFileGetPropertyInfo 'edur' size 0 writable null",
                                     "AudioFileGetProperty 'edur' size 8",
                                     "AudioFileGetPropertyInfo 'brat' size 0 writable null",
                                     "AudioFileGetProperty 'brat' size 4",
                                 }));
}

TEST_F(ReaderQuestions, DurationAndBitRateAre0OnEveryFailure)
{
    OpenWithChannels(2);
    const PropertyAnswer answers[] = {
        PropertyAnswer::Missing(-36),
        PropertyAnswer::Value(3.0).Size(9),
        PropertyAnswer::Value(3.0).Size(4).GetFails(-36),
    };
    for (const PropertyAnswer& answer : answers)
    {
        mPlatform.Answer(Family::File, kAudioFilePropertyEstimatedDuration, answer);
        mPlatform.Answer(Family::File, kAudioFilePropertyBitRate, answer);
        EXPECT_EQ(mReader->GetEstimatedDuration(), 0.0);
        EXPECT_EQ(mReader->GetBitrate(), 0u);
    }
}

TEST_F(ReaderQuestions, BitRateRefusesMoreThan4Bytes)
{
    OpenWithChannels(2);
    mPlatform.Answer(Family::File, kAudioFilePropertyBitRate,
                     PropertyAnswer::Value<UInt32>(5).Size(5));
    EXPECT_EQ(mReader->GetBitrate(), 0u);
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetProperty 'brat'"), Lines());
}

TEST_F(ReaderQuestions, OfAReaderWithoutAFileHaveNoAnswer)
{
    EXPECT_EQ(mReader->GetEstimatedDuration(), 0.0);
    EXPECT_EQ(mReader->GetBitrate(), 0u);
    EXPECT_EQ(Labels(), Numbers());
    EXPECT_EQ(mReader->GetNumReadBytesPerFrame(), 0u);
    EXPECT_EQ(mPlatform.Calls(), Lines());
}

TEST_F(ReaderQuestions, FileTypeIs0IfThePlatformDoesNotTell)
{
    OpenWithChannels(2);
    mPlatform.Forget(Family::File, kAudioFilePropertyFileFormat);
    EXPECT_EQ(mReader->GetFileTypeID(), 0u);
}

TEST_F(ReaderQuestions, StereoWithoutALayoutIsLeftAndRight)
{
    OpenWithChannels(2);
    EXPECT_EQ(Labels(), (Numbers{100, 101}));
    EXPECT_EQ(mPlatform.Calls(), (Lines{"AudioFileGetPropertyInfo 'cmap' size 0 writable null"}));
}

TEST_F(ReaderQuestions, MonoWithoutALayoutHasNoName)
{
    OpenWithChannels(1);
    EXPECT_EQ(Labels(), (Numbers{0}));
}

TEST_F(ReaderQuestions, SixChannelsWithoutALayoutHaveNoNames)
{
    OpenWithChannels(6);
    EXPECT_EQ(Labels(), (Numbers{0, 0, 0, 0, 0, 0}));
}

TEST_F(ReaderQuestions, LayoutByDescriptionsKeepsItsOrder)
{
    OpenWithChannels(2);
    HoldLayout({0, 0, 2, 2, 0, 0, 0, 0, 1, 0, 0, 0, 0});
    EXPECT_EQ(Labels(), (Numbers{101, 100}));
    EXPECT_EQ(mPlatform.Calls(), (Lines{"AudioFileGetPropertyInfo 'cmap' size 0 writable null",
                                        "AudioFileGetProperty 'cmap' size 52"}));
}

TEST_F(ReaderQuestions, LayoutWithFewerLabelsThanChannelsIsFilledUpWithUnnamedOnes)
{
    OpenWithChannels(2);
    HoldLayout({0x10000, 4, 0});
    EXPECT_EQ(Labels(), (Numbers{102, 0}));
}

TEST_F(ReaderQuestions, LayoutWithMoreLabelsThanChannelsIsLeftAsItIs)
{
    OpenWithChannels(2);
    HoldLayout({0x10000, 7, 0});
    EXPECT_EQ(Labels(), (Numbers{100, 101, 102}));
}

TEST_F(ReaderQuestions, UnknownTagOfStereoIsLeftAndRight)
{
    OpenWithChannels(2);
    HoldLayout({0xFFFF0002, 0, 0});
    EXPECT_EQ(Labels(), (Numbers{100, 101}));
}

TEST_F(ReaderQuestions, LayoutThatCannotBeReadIsNone)
{
    OpenWithChannels(2);
    mPlatform.Answer(Family::File, kAudioFilePropertyChannelLayout,
                     PropertyAnswer().Size(32).GetFails(-36));
    EXPECT_EQ(Labels(), (Numbers{100, 101}));
}

TEST_F(ReaderQuestions, LayoutThatCannotBeReadIsNotTheOneBeforeIt)
{
    OpenWithChannels(2);
    HoldLayout({0, 0, 2, 2, 0, 0, 0, 0, 1, 0, 0, 0, 0});
    EXPECT_EQ(Labels(), (Numbers{101, 100}));
    // The scratch block of the first question comes again.
    mPlatform.Answer(Family::File, kAudioFilePropertyChannelLayout,
                     PropertyAnswer().Size(52).GetFails(-36));
    EXPECT_EQ(Labels(), (Numbers{100, 101}));
}

TEST_F(ReaderQuestions, LayoutThatClaimsMoreDescriptionsThanItHasIsCut)
{
    OpenWithChannels(3);
    HoldLayout({0, 0, 0xFFFFFFFF, 3, 0, 0, 0, 0});
    EXPECT_EQ(Labels(), (Numbers{102, 0, 0}));
}

TEST_F(ReaderQuestions, LayoutSmallerThanItsHeadIsNone)
{
    OpenWithChannels(2);
    for (const UInt32 bytes : {0u, 1u, 11u})
    {
        mPlatform.Answer(Family::File, kAudioFilePropertyChannelLayout,
                         PropertyAnswer::Raw(Bytes(bytes, 0)));
        EXPECT_EQ(Labels(), (Numbers{100, 101})) << bytes << " bytes";
    }
}

TEST_F(ReaderQuestions, DescriptionNamesTypeAndFormat)
{
    OpenWithChannels(2);
    mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_FileTypeName,
                     PropertyAnswer::Name("Waves"));
    mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatName,
                     PropertyAnswer::Name("Linear"));
    EXPECT_EQ(mReader->GetFormatDescription(), u"Waves\nLinear");
}

}  // namespace
