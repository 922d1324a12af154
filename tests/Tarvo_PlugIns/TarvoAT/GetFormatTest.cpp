// Selector 6: what the host is told about a file that is open.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/Tarvo_PlugIns/TarvoAT/FakeReader.h"

#include <gtest/gtest.h>

namespace
{

using namespace testing_support;

struct GetFormatTest : testing::Test
{
    std::int32_t GetFormat()
    {
        mLog.clear();
        appleaudiotoolbox::ATReader& reader = mReader;
        return tarvo::TarvoATInterface().EntryPoint(6, &reader, &mFormat);
    }

    // The lines of one operation.
    CallLog Told(const std::string& inName) const
    {
        CallLog found;
        for (const std::string& line : mLog)
            if (line == inName || line.compare(0, inName.size() + 1, inName + " ") == 0)
                found.push_back(line);
        return found;
    }

    CallLog mLog;
    RecordingErrors mErrors{mLog};
    RecordingFormat mFormat{mLog};
    FakeReader mReader;
};

TEST_F(GetFormatTest, TellsEverythingInItsOrder)
{
    mReader.mDuration = 2.0;
    mReader.mBitrate = 1411200;

    EXPECT_EQ(GetFormat(), 0);
    EXPECT_EQ(mLog,
              (CallLog{"GetErrorInterface", "SetChannelCount 2", "SetSampleRate 44100",
                       "SetSampleType 20", "SetSampleCount 88200", "SetChannelLabel 0 100",
                       "SetChannelLabel 1 101",
                       "SetPrivateSettings \"AudioFileTypeID:0:1463899717;Bitrate:0:1411200;"
                       "BitrateMode:0:0;BitsPerChannel:0:16;BytesPerFrame:0:4;BytesPerPacket:0:4;"
                       "ChannelsPerFrame:0:2;FormatFlags:0:12;FormatID:0:1819304813;"
                       "FramesPerPacket:0:1;SampleRateHigh:0:1088784512;SampleRateLow:0:0;"
                       "VBRQuality:0:96;\""}));
}

TEST_F(GetFormatTest, SampleTypeFollowsTheWidth)
{
    struct Row
    {
        unsigned int mWidth;
        const char* mTold;
    };
    for (const Row& row : {Row{1, "SetSampleType 10"}, Row{2, "SetSampleType 20"},
                           Row{3, "SetSampleType 30"}, Row{4, "SetSampleType 40"}})
    {
        mReader.mWidth = row.mWidth;
        EXPECT_EQ(GetFormat(), 0) << row.mWidth;
        EXPECT_EQ(Told("SetSampleType"), (CallLog{row.mTold})) << row.mWidth;
        EXPECT_TRUE(Told("SetFormatFlags").empty()) << row.mWidth;
        EXPECT_TRUE(Told("GetFormatFlags").empty()) << row.mWidth;
    }
}

TEST_F(GetFormatTest, AWidthOf0AddsItsFlagToTheFormats)
{
    mReader.mWidth = 0;
    mFormat.mFormatFlags = 0x11;
    EXPECT_EQ(GetFormat(), 0);
    EXPECT_EQ(CallLog(mLog.begin() + 3, mLog.begin() + 6),
              (CallLog{"SetSampleType 40", "GetFormatFlags", "SetFormatFlags 21"}));
}

TEST_F(GetFormatTest, AWidthAbove4FailsBehindCountAndRateWithoutAText)
{
    mFormat.mErrors = &mErrors;
    for (const unsigned int width : {5u, 8u, 0xFFFFFFFFu})
    {
        mReader.mWidth = width;
        EXPECT_EQ(GetFormat(), -1) << width;
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "SetChannelCount 2", "SetSampleRate 44100"}))
            << width;
    }
}

TEST_F(GetFormatTest, RateAndLengthAreTruncated)
{
    mReader.mFormat.mSampleRate = 22050.9;
    mReader.mDuration = 1.5;
    EXPECT_EQ(GetFormat(), 0);
    EXPECT_EQ(Told("SetSampleRate"), (CallLog{"SetSampleRate 22050"}));
    EXPECT_EQ(Told("SetSampleCount"), (CallLog{"SetSampleCount 33076"}));
}

TEST_F(GetFormatTest, LengthGoesBeyond32Bits)
{
    mReader.mDuration = 200000.0;
    EXPECT_EQ(GetFormat(), 0);
    EXPECT_EQ(Told("SetSampleCount"), (CallLog{"SetSampleCount 8820000000"}));
}

struct LabelRow
{
    unsigned int mChannels;
    std::initializer_list<std::uint32_t> mLayout;
    CallLog mTold;
    const char* mWhy;
};

TEST_F(GetFormatTest, LabelsOfEveryChannelInOrderOnce)
{
    const LabelRow rows[] = {
        {1, {}, {"SetChannelLabel 0 0"}, "mono without a layout"},
        {2, {}, {"SetChannelLabel 0 100", "SetChannelLabel 1 101"}, "stereo without a layout"},
        {3,
         {},
         {"SetChannelLabel 0 0", "SetChannelLabel 1 0", "SetChannelLabel 2 0"},
         "three channels without a layout"},
        {2, {107}, {"SetChannelLabel 0 107", "SetChannelLabel 1 0"}, "stereo with one label"},
        {2, {0, 0}, {"SetChannelLabel 0 0", "SetChannelLabel 1 0"}, "stereo without names"},
        {2,
         {101, 100, 102},
         {"SetChannelLabel 0 101", "SetChannelLabel 1 100"},
         "more labels than channels"},
        {1, {0xFFFFFFFF}, {"SetChannelLabel 0 4294967295"}, "a label beyond 31 bits"},
        {0, {100}, {}, "no channels"},
    };
    for (const LabelRow& row : rows)
    {
        mReader.mFormat.mChannelsPerFrame = row.mChannels;
        mReader.SetLayout(row.mLayout);
        EXPECT_EQ(GetFormat(), 0) << row.mWhy;
        EXPECT_EQ(Told("SetChannelLabel"), row.mTold) << row.mWhy;
    }
}

TEST_F(GetFormatTest, AnUnknownFileTypeStandsInTheSettingsAs0)
{
    mReader.mFileType = 0;
    EXPECT_EQ(GetFormat(), 0);
    ASSERT_EQ(Told("SetPrivateSettings").size(), 1u);
    EXPECT_EQ(Told("SetPrivateSettings")[0].find("\"AudioFileTypeID:0:0;Bitrate:0:0;"), 19u);
}

}  // namespace
