// Selectors 13 and 14: what an export starts from, and what stored settings come to.
#include "tests/Tarvo_PlugIns/TarvoAT/ExportSettingsFixture.h"

#include <kelpcore/utility/NumberText.h>

#include <limits>

namespace
{

using namespace testing_support;
using tarvo::TarvoATInterface;
using tarvo::TarvoATPrivateSettings;

constexpr std::int64_t kMostSamples = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeastSamples = std::numeric_limits<std::int64_t>::lowest();

constexpr char kDefaultText[] =
    "SetPrivateSettings \"AudioFileTypeID:0:1667327590;Bitrate:0:64000;BitrateMode:0:0;"
    "BitsPerChannel:0:16;BytesPerFrame:0:4;BytesPerPacket:0:4;ChannelsPerFrame:0:2;"
    "FormatFlags:0:14;FormatID:0:1819304813;FramesPerPacket:0:1;SampleRateHigh:0:1088784512;"
    "SampleRateLow:0:0;VBRQuality:0:96;\"";

TEST(DefaultExportSettings, AreChannelsRateAndSampleTypeAlone)
{
    CallLog log;
    RecordingFormat format(log);
    EXPECT_EQ(TarvoATInterface().EntryPoint(13, nullptr, &format), 0);
    EXPECT_EQ(log, (CallLog{"GetErrorInterface", "SetChannelCount 2", "SetSampleRate 44100",
                            "SetSampleType 20"}));
}

TEST_F(ExportSettingsInfo, TellsEverythingInItsOrder)
{
    mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_MIMETypesForType,
                     PropertyAnswer::Names({"audio/first", "audio/x-caf"}));
    mFormat.mSampleCount = 100000;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mLog,
              (CallLog{"GetErrorInterface", "SetHasSettings 1", "GetFormatInterface",
                       "GetPrivateSettings", "GetFilterId", "GetSampleRate", "GetChannelCount",
                       "GetSampleType", "SetLossy 0", "GetSampleCount", "SetEstimatedBits 3202048",
                       "SetMimeType audio/x-caf", "SetXmpType 538976288", "SetFormatFlags 0",
                       "SetFormatDescription " +
                           Quoted(TarvoATPrivateSettings().GetExtendedFormatDescription().c_str()),
                       kDefaultText, "SetFileExtensions caf"}));
}

TEST_F(ExportSettingsInfo, ShowsNoFailureText)
{
    RecordingErrors errors(mLog);
    mInfo.mErrors = &errors;
    mPlatform.FailConverters(-50);
    EXPECT_EQ(GetInfo(), -8);
    EXPECT_EQ(Told("SetErrorText"), CallLog());
}

TEST_F(ExportSettingsInfo, TellsEverythingForImpossibleSettingsToo)
{
    mPlatform.FailConverters(-50);
    EXPECT_EQ(GetInfo(), -8);
    EXPECT_EQ(mLog,
              (CallLog{"GetErrorInterface", "SetHasSettings 1", "GetFormatInterface",
                       "GetPrivateSettings", "GetFilterId", "GetSampleRate", "GetChannelCount",
                       "GetSampleType", "GetRepairMode", "SetLossy 0", "GetSampleCount",
                       "SetEstimatedBits 2048", "SetMimeType ", "SetXmpType 538976288",
                       "SetFormatFlags 0",
                       "SetFormatDescription " +
                           Quoted(TarvoATPrivateSettings().GetExtendedFormatDescription().c_str()),
                       kDefaultText, "SetFileExtensions caf"}));
}

TEST_F(ExportSettingsInfo, TellsEverythingWhicheverPlatformCallFails)
{
    mFormat.mChannelCount = 6;
    mFormat.mSampleType = 30;
    for (int failing = 1; failing < 1000; ++failing)
    {
        EmptyCatalogues();
        mFormat.mSettings.clear();
        mPlatform.FailCall(failing, -50);
        const std::int32_t result = GetInfo(1);
        EXPECT_TRUE(result == 0 || result == -8) << "call " << failing;
        for (const char* const setter :
             {"SetHasSettings 1", "SetLossy 0", "SetEstimatedBits", "SetMimeType", "SetXmpType",
              "SetFormatFlags 0", "SetFormatDescription", "SetPrivateSettings",
              "SetFileExtensions"})
            EXPECT_EQ(Told(setter).size(), 1u) << setter << ", call " << failing;
        EXPECT_EQ(mPlatform.OpenHandles(), 0) << "call " << failing;
        if (!mPlatform.ReachedFailingCall())
            return;  // one run without a fault: every call has had its turn
    }
    FAIL() << "never ran through without a fault";
}

TEST_F(ExportSettingsInfo, TellsTypesAndExtensionsOfTheFileType)
{
    StoreWave(44100.0);
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(Told("SetXmpType"), CallLog{"SetXmpType 1463899680"});  // 'WAV '
    EXPECT_EQ(Told("SetMimeType"), CallLog{"SetMimeType "});
    EXPECT_EQ(Told("SetFileExtensions"), CallLog{"SetFileExtensions wav wave"});
}

TEST_F(ExportSettingsInfo, AFileTypeWithoutExtensionsHasAnEmptyList)
{
    mPlatform.Forget(Family::Global, kAudioFileGlobalInfo_ExtensionsForType);
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(Told("SetFileExtensions"), CallLog{"SetFileExtensions"});
}

TEST_F(ExportSettingsInfo, ADescriptionIsNeverEmpty)
{
    mFormat.mSettings = u"AudioFileTypeID:0:0;FormatID:0:0;BitsPerChannel:0:0;BitrateMode:0:-1;";
    mFormat.mSampleRate = 0;
    mFormat.mChannelCount = 0;
    EXPECT_EQ(GetInfo(), -8);
    const CallLog told = Told("SetFormatDescription");
    ASSERT_EQ(told.size(), 1u);
    EXPECT_NE(told[0], "SetFormatDescription \"\"");
}

TEST_F(ExportSettingsInfo, IsLossyForAllButPCMAndLossless)
{
    GetInfo();
    EXPECT_EQ(Told("SetLossy"), CallLog{"SetLossy 0"});
    StoreAAC();
    GetInfo();
    EXPECT_EQ(Told("SetLossy"), CallLog{"SetLossy 1"});
    mFormat.mSettings =
        TarvoATPrivateSettings(kM4A, CAStreamBasicDescription(44100.0, kALAC, 0, 4096, 0, 2, 0, 1))
            .GetSerialized();
    GetInfo();
    EXPECT_EQ(Told("SetLossy"), CallLog{"SetLossy 0"});
}

// What the record starts from.

TEST_F(ExportSettingsInfo, StoredSettingsAreNotFiltered)
{
    StoreAAC();
    mFormat.mFilterId = u"abc";
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(Told("GetFilterId"), CallLog());
    EXPECT_EQ(Settings().GetAudioFileTypeID(), kM4A);
}

TEST_F(ExportSettingsInfo, UnreadableSettingsLeaveTheDefaults)
{
    mFormat.mSettings = u"what is this";
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(Told("SetPrivateSettings"), CallLog{kDefaultText});
    EXPECT_EQ(Told("GetFilterId"), CallLog());
}

TEST_F(ExportSettingsInfo, TheAACFilterStartsFromItsFirstVariant)
{
    mFormat.mFilterId = u"1633973363";
    mFormat.mSampleRate = 32000;
    mFormat.mChannelCount = 1;
    EXPECT_EQ(GetInfo(), 0);
    const CAStreamBasicDescription format = Settings().GetStreamBasicDescription();
    EXPECT_EQ(Settings().GetAudioFileTypeID(), kADTS);
    EXPECT_EQ(format.mFormatID, kAAC);
    EXPECT_EQ(format.mFormatFlags, 2u);
    EXPECT_EQ(format.mSampleRate, 32000.0);
    EXPECT_EQ(format.mChannelsPerFrame, 1u);
    EXPECT_EQ(format.mBytesPerFrame, 0u);
    EXPECT_EQ(format.mBitsPerChannel, 0u);
    EXPECT_EQ(Settings().GetBitrate(), 64000u);
    EXPECT_EQ(Told("GetSampleType"), CallLog());  // no depth to bring along
}

TEST_F(ExportSettingsInfo, TheAACFilterWithoutVariantsChangesTypeAndFormatAlone)
{
    EmptyCatalogues();
    mScript.mWritable = {kCAF};
    mFormat.mFilterId = u"1633973363";
    EXPECT_EQ(GetInfo(), -8);
    EXPECT_EQ(Settings().GetAudioFileTypeID(), kADTS);
    EXPECT_EQ(Settings().GetFormatID(), kAAC);
    EXPECT_EQ(Settings().GetFormatFlags(), 14u);
    EXPECT_EQ(Settings().GetBitsPerChannel(), 16u);
}

TEST_F(ExportSettingsInfo, OtherFiltersLeaveTheDefaults)
{
    for (const char16_t* const filter : {u"0", u"1633973362", u"1463899717", u"4294967295"})
    {
        mFormat.mFilterId = filter;
        mFormat.mSettings.clear();
        EXPECT_EQ(GetInfo(), 0);
        EXPECT_EQ(Told("SetPrivateSettings"), CallLog{kDefaultText}) << Quoted(filter);
    }
}

TEST_F(ExportSettingsInfo, AFilterThatIsNoNumberThrowsThrough)
{
    for (const char16_t* const filter : {u"abc", u"4294967296", u"1633973363 "})
    {
        mFormat.mFilterId = filter;
        EXPECT_THROW(GetInfo(), kelpcore::utility::NumberFormatError) << Quoted(filter);
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "SetHasSettings 1", "GetFormatInterface",
                                 "GetPrivateSettings", "GetFilterId"}));
    }
}

// The host's audio.

TEST_F(ExportSettingsInfo, TheRecordTakesTheHostsRateAndChannels)
{
    StoreAAC();
    mFormat.mSampleRate = 22050;
    mFormat.mChannelCount = 0x100000001;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(Settings().GetSampleRate(), 22050.0);
    EXPECT_EQ(Settings().GetChannelsPerFrame(), 1u);
}

TEST_F(ExportSettingsInfo, NumbersOfHostileHostsAreTakenAsTheyAre)
{
    mFormat.mSampleRate = std::numeric_limits<std::int32_t>::lowest();
    mFormat.mChannelCount = -1;
    EXPECT_EQ(GetInfo(1), -8);
    EXPECT_EQ(Settings().GetSampleRate(), -2147483648.0);
    EXPECT_EQ(Settings().GetChannelsPerFrame(), 0xFFFFFFFFu);
}

TEST_F(ExportSettingsInfo, PCMTakesTheDepthOfTheSampleType)
{
    mFormat.mSampleType = 30;
    mFormat.mChannelCount = 6;
    mFormat.mSampleCount = 100000;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(Settings().GetBitsPerChannel(), 24u);
    EXPECT_EQ(Settings().GetBytesPerFrame(), 18u);
    EXPECT_EQ(Settings().GetChannelsPerFrame(), 6u);
    EXPECT_EQ(mInfo.mEstimatedBits, 14402048);
    EXPECT_EQ(Told("GetRepairMode"), CallLog());
}

TEST_F(ExportSettingsInfo, ADepthThatTheFileTypeLacksIsImpossible)
{
    mFormat.mSampleType = 10;
    EXPECT_EQ(GetInfo(), -8);
    EXPECT_EQ(Settings().GetBitsPerChannel(), 16u);
    EXPECT_EQ(Settings().GetBytesPerFrame(), 2u);  // of the depth that was asked for
}

TEST_F(ExportSettingsInfo, AnUnknownSampleTypeHasNoDepth)
{
    mFormat.mSampleType = 77;
    mFormat.mSampleCount = 100000;
    EXPECT_EQ(GetInfo(), -8);
    EXPECT_EQ(Settings().GetBytesPerFrame(), 0u);
    EXPECT_EQ(mInfo.mEstimatedBits, 2048);
}

TEST_F(ExportSettingsInfo, ARefusedDepthLeavesTheRecordAsFarAsItGot)
{
    mFormat.mSampleType = 30;
    mFormat.mSampleRate = 0;
    mFormat.mSampleCount = 1000;
    EXPECT_EQ(GetInfo(), -8);
    EXPECT_EQ(Settings().GetBitsPerChannel(), 24u);
    EXPECT_EQ(Settings().GetBytesPerFrame(), 0u);
    EXPECT_EQ(mInfo.mEstimatedBits, 2048);
}

// The estimate.

TEST_F(ExportSettingsInfo, EstimatesPCMFromItsFrames)
{
    mFormat.mSampleCount = 100000;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, 3200000 + 2048);
}

TEST_F(ExportSettingsInfo, EstimatesCompressedAudioFromItsBitRate)
{
    StoreAAC();
    mFormat.mSampleCount = 441000;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, 640000 + 2048);

    mFormat.mSampleCount = 1;  // 1.45 bits
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, 1 + 2048);
}

TEST_F(ExportSettingsInfo, EstimatesLosslessPacketsFromTheirBitRate)
{
    TarvoATPrivateSettings settings(kM4A,
                                    CAStreamBasicDescription(44100.0, kALAC, 0, 4096, 0, 2, 0, 1));
    settings.SetBitrate(700000);
    mFormat.mSettings = settings.GetSerialized();
    mFormat.mSampleCount = 441000;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, 7000000 + 2048);
}

TEST_F(ExportSettingsInfo, ANegativeFigureIsCutOffTowardsZero)
{
    StoreAAC();
    mFormat.mSampleCount = -1;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, -1 + 2048);
}

TEST_F(ExportSettingsInfo, AFormatOfZeroIsEstimatedAsCompressed)
{
    mFormat.mSettings = u"FormatID:0:0;";
    mFormat.mSampleCount = 441000;
    EXPECT_EQ(GetInfo(), -8);
    EXPECT_EQ(mInfo.mEstimatedBits, 640000 + 2048);
    EXPECT_EQ(Told("SetLossy"), CallLog{"SetLossy 1"});
}

TEST_F(ExportSettingsInfo, AnEstimateThatDoesNotFitIsSomeNumber)
{
    mFormat.mSampleCount = kMostSamples;  // times 32: -32
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, -32 + 2048);
    mFormat.mSampleCount = kLeastSamples;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, 2048);
}

TEST_F(ExportSettingsInfo, ACompressedEstimateThatDoesNotFitIsTheLowestNumber)
{
    StoreAAC();
    mFormat.mSampleCount = kMostSamples;
    EXPECT_EQ(GetInfo(), 0);
    EXPECT_EQ(mInfo.mEstimatedBits, kLeastSamples + 2048);
    for (const std::int64_t samples : {std::int64_t{0}, std::int64_t{1}, kLeastSamples})
    {
        mFormat.mSampleRate = 0;
        mFormat.mSampleCount = samples;
        GetInfo();
        EXPECT_EQ(mInfo.mEstimatedBits, kLeastSamples + 2048) << samples;
    }
}

TEST_F(ExportSettingsInfo, TheLargestFigureAndTheAllowanceWrapAround)
{
    mFormat.mSettings = u"FormatID:0:0;Bitrate:0:1024;";
    mFormat.mSampleRate = 1;
    mFormat.mSampleCount =
        0x1FFFFFFFFFFFFF;  // times 1024 is the largest double below 2 to the 63rd
    GetInfo();
    EXPECT_EQ(mInfo.mEstimatedBits, kLeastSamples + 1024);
}

}  // namespace
