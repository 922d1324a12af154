// Selector 14: settings that cannot encode the host's audio, in each mode of repair.
#include "tests/Tarvo_PlugIns/TarvoAT/ExportSettingsFixture.h"

#include <algorithm>
#include <limits>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;

TEST_F(ExportSettingsInfo, ValidSettingsAskForNoRepair)
{
    EXPECT_EQ(GetInfo(1), 0);
    EXPECT_EQ(Told("GetRepairMode"), CallLog());
}

TEST_F(ExportSettingsInfo, ARepairIsReadAnewForEachComparison)
{
    mPlatform.FailConverters(-50);
    StoreAAC();
    const std::pair<std::int32_t, std::size_t> rows[] = {{0, 1}, {1, 2}, {2, 3}, {3, 3}, {-1, 3}};
    for (const auto& [mode, count] : rows)
    {
        EXPECT_EQ(GetInfo(mode), -8) << mode;
        EXPECT_EQ(Told("GetRepairMode").size(), count) << mode;
    }
}

TEST_F(ExportSettingsInfo, WithoutRepairTheRecordKeepsTheAudio)
{
    for (const std::int32_t mode : {0, 3, -1})
    {
        StoreAAC();
        mFormat.mChannelCount = 6;
        EXPECT_EQ(GetInfo(mode), -8);
        EXPECT_EQ(Told("SetSampleRate"), CallLog());
        EXPECT_EQ(Told("SetChannelCount"), CallLog());
        EXPECT_EQ(Settings().GetChannelsPerFrame(), 6u);
    }
}

TEST_F(ExportSettingsInfo, FittingStopsAtARateThatHelps)
{
    StoreAAC();
    mFormat.mSampleRate = 48000;
    mRefusals = 1;
    EXPECT_EQ(GetInfo(1), 0);
    EXPECT_EQ(Told("SetSampleRate"), CallLog{"SetSampleRate 48000"});
    EXPECT_EQ(Told("SetChannelCount"), CallLog());
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'avnc'"), CallLog());
}

TEST_F(ExportSettingsInfo, FittingAsksTheEncoderForRateThenChannels)
{
    StoreAAC();
    mFormat.mChannelCount = 6;
    EXPECT_EQ(GetInfo(1), 0);
    CallLog questions;
    for (const std::string& call : mPlatform.Calls())
        if (call.find("'aesr'") != std::string::npos || call.find("'avnc'") != std::string::npos ||
            call.rfind("AudioConverterNew", 0) == 0)
            questions.push_back(call.substr(0, call.find(' ', call.find(' ') + 1)));
    EXPECT_EQ(questions, (CallLog{"AudioConverterNew 44100", "AudioFormatGetPropertyInfo 'aesr'",
                                  "AudioFormatGetProperty 'aesr'", "AudioConverterNew 44100",
                                  "AudioFormatGetPropertyInfo 'avnc'",
                                  "AudioFormatGetProperty 'avnc'", "AudioConverterNew 44100"}));
}

TEST_F(ExportSettingsInfo, FittingGoesOnToTheChannels)
{
    StoreAAC();
    mFormat.mChannelCount = 6;
    mFormat.mSampleCount = 441000;
    EXPECT_EQ(GetInfo(1), 0);
    EXPECT_EQ(Told("SetSampleRate"), CallLog());
    EXPECT_EQ(Told("SetChannelCount"), CallLog{"SetChannelCount 2"});
    EXPECT_EQ(Settings().GetChannelsPerFrame(), 2u);
    EXPECT_EQ(mInfo.mEstimatedBits, 640000 + 2048);
}

TEST_F(ExportSettingsInfo, FittingCompressedSettingsEndsWithTheChannels)
{
    StoreAAC();
    mFormat.mSampleRate = 96000;
    mFormat.mChannelCount = 6;
    EXPECT_EQ(GetInfo(1), -8);
    EXPECT_EQ(Told("SetSampleRate"), CallLog());
    EXPECT_EQ(Told("SetChannelCount"), CallLog());
    EXPECT_EQ(Told("GetSampleType"), CallLog());
    EXPECT_EQ(Settings().GetChannelsPerFrame(), 2u);  // the repair as far as it got
}

TEST_F(ExportSettingsInfo, ADepthThatCanBeTriedIsBelieved)
{
    mPlatform.FailConverters(-50);
    EXPECT_EQ(GetInfo(1), 0);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterNew 44100 'lpcm' 14 4/1/4/2/16 to 44100").size(),
              3u);
}

TEST_F(ExportSettingsInfo, ADepthThatIsRefusedIsTheEnd)
{
    mFormat.mChannelCount = 1;
    mScript.mEncoders[kPCM].mChannelCounts.clear();
    EXPECT_EQ(GetInfo(1), -8);
    EXPECT_EQ(Settings().GetBytesPerFrame(), 4u);
}

TEST_F(ExportSettingsInfo, MonoAndSurroundOfSixteenBitsNeedFitting)
{
    struct Row
    {
        std::int64_t mChannels;
        std::int32_t mRepairMode;
        std::int32_t mResult;
        UInt32 mFrameBytes;
        std::int64_t mEstimate;
    };
    const Row rows[] = {
        {1, 0, -8, 4, 3202048}, {1, 1, 0, 2, 1602048},  {1, 2, -8, 4, 3202048},
        {6, 0, -8, 4, 3202048}, {6, 1, 0, 12, 9602048}, {6, 2, -8, 4, 3202048},
    };
    for (const Row& row : rows)
    {
        mFormat.mSettings.clear();
        mFormat.mChannelCount = row.mChannels;
        mFormat.mSampleCount = 100000;
        EXPECT_EQ(GetInfo(row.mRepairMode), row.mResult);
        EXPECT_EQ(Settings().GetChannelsPerFrame(), static_cast<UInt32>(row.mChannels));
        EXPECT_EQ(Settings().GetBytesPerFrame(), row.mFrameBytes);
        EXPECT_EQ(Settings().GetBytesPerPacket(), row.mFrameBytes);
        EXPECT_EQ(mInfo.mEstimatedBits, row.mEstimate);
        EXPECT_EQ(mFormat.mChannelCount, row.mChannels);
        EXPECT_EQ(Told("SetSampleRate"), CallLog());
        EXPECT_EQ(Told("SetChannelCount"), CallLog());
    }
}

TEST_F(ExportSettingsInfo, GoingBackToTheStoredSettingsChangesTheAudio)
{
    StoreWave(22050.9);
    const std::u16string stored = mFormat.mSettings;
    mFormat.mSampleRate = 96000;
    mFormat.mChannelCount = 6;
    mFormat.mSampleType = 30;
    mFormat.mSampleCount = 1000;
    EXPECT_EQ(GetInfo(2), 0);
    EXPECT_EQ(Told("SetSampleRate"), CallLog{"SetSampleRate 22050"});
    EXPECT_EQ(Told("SetChannelCount"), CallLog{"SetChannelCount 2"});
    EXPECT_LT(std::find(mLog.begin(), mLog.end(), "SetSampleRate 22050"),
              std::find(mLog.begin(), mLog.end(), "SetChannelCount 2"));
    EXPECT_EQ(mFormat.mSettings, stored);
    EXPECT_EQ(mInfo.mEstimatedBits, 32000 + 2048);
}

TEST_F(ExportSettingsInfo, TheEstimateGoesByTheRepairedRate)
{
    StoreAAC(22050.9);  // the host gets the whole hertz
    mFormat.mSampleRate = 96000;
    mFormat.mSampleCount = 220500;
    EXPECT_EQ(GetInfo(2), 0);
    EXPECT_EQ(mFormat.mSampleRate, 22050);
    EXPECT_EQ(mInfo.mEstimatedBits, 640000 + 2048);
}

TEST_F(ExportSettingsInfo, StoredSettingsThatAreImpossibleThemselvesStayStored)
{
    StoreAAC(96000.0, 6);
    const std::u16string stored = mFormat.mSettings;
    mFormat.mSampleRate = 88200;
    EXPECT_EQ(GetInfo(2), -8);
    EXPECT_EQ(Told("SetSampleRate"), CallLog());
    EXPECT_EQ(Told("SetChannelCount"), CallLog());
    EXPECT_EQ(mFormat.mSettings, stored);
}

TEST_F(ExportSettingsInfo, AStoredRateThatIsNoneIsTheLowestNumber)
{
    StoreWave(std::numeric_limits<double>::quiet_NaN());
    mFormat.mChannelCount = 6;
    EXPECT_EQ(GetInfo(2), 0);
    EXPECT_EQ(Told("SetSampleRate"), CallLog{"SetSampleRate -2147483648"});
}

}  // namespace
