// Selectors 13 and 14: what an export starts from, and what stored settings come to.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include "tests/Tarvo_PlugIns/TarvoAT/ExportHost.h"
#include "tests/support/CatalogueScript.h"

#include <kelpcore/utility/NumberText.h>

#include <limits>

namespace
{

using namespace testing_support;
using tarvo::TarvoATInterface;
using tarvo::TarvoATPrivateSettings;

constexpr std::int64_t kMostSamples = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeastSamples = std::numeric_limits<std::int64_t>::lowest();
constexpr UInt32 kAnyCount = 0xFFFFFFFF;

// PCM has to agree with itself, and AAC has two channels at the most and 48 kHz.
bool CanEncode(const AudioStreamBasicDescription& inFormat)
{
    if (inFormat.mFormatID == kPCM)
        return inFormat.mBytesPerFrame == inFormat.mBitsPerChannel / 8 * inFormat.mChannelsPerFrame;
    return inFormat.mChannelsPerFrame <= 2 && inFormat.mSampleRate <= 48000.0;
}

class ExportSettingsInfo : public CatalogueTest
{
protected:
    ExportSettingsInfo()
    {
        mScript.mEncodable = {kPCM, kAAC, kALAC};
        mScript.AddFileType(
            kCAF,
            {"CAF",
             {"caf"},
             {{kPCM, {Variant(kPCM, 14, 16), Variant(kPCM, 14, 24), Variant(kPCM, 15, 32)}}}});
        mScript.AddFileType(kWAVE, {"WAVE", {"wave", "wav"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
        mScript.AddFileType(
            kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}, {kALAC, {Variant(kALAC, 1)}}}});
        mScript.AddFileType(kADTS,
                            {"AAC", {"aac"}, {{kAAC, {Variant(kAAC, 2), Variant(kAAC, 5)}}}});
        mScript.mEncoders[kPCM].mChannelCounts = {kAnyCount};
        mScript.mEncoders[kAAC].mChannelCounts = {1, 2};
        mPlatform.MakeConvertersWith(
            [this](const AudioStreamBasicDescription&, const AudioStreamBasicDescription& format)
            {
            if (mRefusals == 0)
                return NewConverterAnswer{CanEncode(format) ? noErr : -50};
            --mRefusals;
            return NewConverterAnswer{-50};
        });
        (void)TarvoATPrivateSettings().IsValidForEncode();  // builds the catalogue
        mPlatform.ForgetCalls();
    }

    std::int32_t GetInfo(std::int32_t inRepairMode = 0)
    {
        mLog.clear();
        mInfo.mRepairMode = inRepairMode;
        return TarvoATInterface().EntryPoint(14, nullptr, &mInfo);
    }

    // What the host has got back.
    TarvoATPrivateSettings Settings() const
    {
        TarvoATPrivateSettings settings;
        (void)settings.InitializeFromSerialized(mFormat.mSettings.c_str());
        return settings;
    }

    CallLog Told(const std::string& inStart) const
    {
        CallLog found;
        for (const std::string& line : mLog)
            if (line.compare(0, inStart.size(), inStart) == 0)
                found.push_back(line);
        return found;
    }

    void StoreAAC(double inRate = 44100.0, UInt32 inChannels = 2)
    {
        mFormat.mSettings =
            TarvoATPrivateSettings(
                kM4A, CAStreamBasicDescription(inRate, kAAC, 0, 1024, 0, inChannels, 0, 0))
                .GetSerialized();
    }
    void StoreWave(double inRate)
    {
        mFormat.mSettings = TarvoATPrivateSettings(
                                kWAVE, CAStreamBasicDescription(inRate, kPCM, 4, 1, 4, 2, 16, 12))
                                .GetSerialized();
    }

    CallLog mLog;
    ExportFormat mFormat{mLog};
    ExportInfo mInfo{mLog, mFormat};
    int mRefusals = 0;  // converters that are refused whatever they are for
};

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

// Repairs.

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
    EXPECT_EQ(mFormat.mSettings, stored);
    EXPECT_EQ(mInfo.mEstimatedBits, 32000 + 2048);
}

TEST_F(ExportSettingsInfo, TheEstimateGoesByTheRepairedRate)
{
    StoreAAC(22050.0);
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
