// The walk down the output catalogue on a scripted platform.
#include "appleaudiotoolbox/utility/EncodableQueries.h"

#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"
#include "tests/support/CatalogueScript.h"

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;
using Rates = std::vector<AudioValueRange>;

constexpr UInt32 kUnknown = 0x3F3F3F3F;

// A writable WAVE with two PCM variants, and M4A with AAC in all modes and ALAC in none.
class EncodableQueries : public CatalogueTest
{
protected:
    EncodableQueries()
    {
        mScript.mEncodable = {kPCM, kAAC, kALAC};
        mScript.AddFileType(
            kM4A, {"MPEG-4", {"m4a"}, {{kALAC, {Variant(kALAC)}}, {kAAC, {Variant(kAAC)}}}});
        mScript.AddFileType(
            kWAVE, {"WAVE", {"wav"}, {{kPCM, {Variant(kPCM, 12, 24), Variant(kPCM, 12, 16)}}}});
        ScriptedEncoder& encoder = mScript.mEncoders[kAAC];
        encoder.mChannelCounts = {1, 2};
        encoder.mModes[0] = {{{64000.0, 64000.0}, {128000.0, 128000.0}}, 128000};
        encoder.mModes[1] = {{{32000.0, 32000.0}}, 32000};
        encoder.mModes[2] = {{{8000.0, 96000.0}}, 48000};
        encoder.mModes[3] = {{{1.0, 2.0}}, 7};
    }

    const CAStreamBasicDescription mSource{96000.0, kPCM, 24, 1, 24, 6, 32, 9};
};

TEST_F(EncodableQueries, FileTypesAreThoseThatKeptAFormatInOrder)
{
    mScript.AddFileType(kCAF, {"CAF", {"caf"}});
    mScript.mReadable = {};
    EXPECT_EQ(GetExportableFileTypes(), (Codes{kWAVE, kM4A}));
}

TEST_F(EncodableQueries, FormatsOfATypeComeInOrder)
{
    EXPECT_EQ(GetEncodableFormats(kM4A), (Codes{kAAC, kALAC}));
    EXPECT_EQ(GetEncodableFormats(kWAVE), (Codes{kPCM}));
}

TEST_F(EncodableQueries, VariantsComeInThePlatformsOrderWithTheirChannelRule)
{
    const auto variants = GetEncodableVariants(kWAVE, kPCM);
    ASSERT_EQ(variants.size(), 2u);
    EXPECT_EQ(variants[0].mBitsPerChannel, 24u);
    EXPECT_EQ(variants[1].mBitsPerChannel, 16u);
    EXPECT_EQ(variants[0].mChannelsPerFrame, 0u);

    EmptyCatalogues();
    mScript.mEncoders[kPCM].mChannelCounts = {1};
    EXPECT_EQ(GetEncodableVariants(kWAVE, kPCM)[1].mChannelsPerFrame, 1u);
}

TEST_F(EncodableQueries, ModesComeInAscendingOrder)
{
    EXPECT_EQ(GetEncodableBitrateModes(kM4A, kAAC), (Codes{0, 1, 2, 3}));
    EXPECT_EQ(GetEncodableBitrateModes(kM4A, kALAC), Codes());
}

TEST_F(EncodableQueries, EachModeStandsForItself)
{
    const std::map<UInt32, ScriptedMode> all = mScript.mEncoders[kAAC].mModes;
    for (UInt32 mode = 0; mode < 4; ++mode)
    {
        EmptyCatalogues();
        mScript.mEncoders[kAAC].mModes = {{mode, all.at(mode)}};
        EXPECT_EQ(GetEncodableBitrateModes(kM4A, kAAC), Codes{mode});
    }
}

// Gives WAVE's second variant a mode that its first one lacks.
void AddModeToSecondVariant()
{
    std::vector<ATFormatType>& variants = sOutputFileTypes.at(kWAVE).mFormatTypeMap.at(kPCM);
    variants.at(1).mBitratesCBR = {{1000.0, 1000.0}};
    variants.at(1).mDefaultCBR = 1000;
}

TEST_F(EncodableQueries, ModesAndRatesOfLaterVariantsDoNotCount)
{
    GetExportableFileTypes();
    AddModeToSecondVariant();
    EXPECT_EQ(GetEncodableBitrateModes(kWAVE, kPCM), Codes());
    EXPECT_EQ(GetEncodableBitrates(kWAVE, kPCM, 0, nullptr), Rates());
    EXPECT_EQ(GetDefaultEncodableBitrate(kWAVE, kPCM, 0), 0u);
}

TEST_F(EncodableQueries, BitratesWithoutASourceAreThoseOfTheCatalogue)
{
    GetExportableFileTypes();
    mPlatform.ForgetCalls();
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 0, nullptr),
              (Rates{{64000.0, 64000.0}, {128000.0, 128000.0}}));
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 1, nullptr), (Rates{{32000.0, 32000.0}}));
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 2, nullptr), (Rates{{8000.0, 96000.0}}));
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(EncodableQueries, Mode3AndUnknownModesHaveNoBitrates)
{
    for (const UInt32 mode : {3u, 4u, 0xFFFFFFFFu})
    {
        EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, mode, nullptr), Rates()) << mode;
        EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, mode, &mSource), Rates()) << mode;
        EXPECT_EQ(GetDefaultEncodableBitrate(kM4A, kAAC, mode), 0u) << mode;
    }
}

TEST_F(EncodableQueries, BitratesForASourceAreAskedOfAConverterFromItAtItsRateAndChannels)
{
    GetExportableFileTypes();
    mPlatform.ForgetCalls();
    GetEncodableBitrates(kM4A, kAAC, 0, &mSource);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterNew"),
              (Calls{"AudioConverterNew 96000 'lpcm' 9 24/1/24/6/32 to 96000 'aac ' 0 0/0/0/6/0"}));
}

TEST_F(EncodableQueries, BitratesForASourceKeepTheRestOfTheFirstVariant)
{
    GetExportableFileTypes();
    mPlatform.ForgetCalls();
    GetEncodableBitrates(kWAVE, kPCM, 0, &mSource);
    EXPECT_EQ(
        mPlatform.CallsOf("AudioConverterNew"),
        (Calls{"AudioConverterNew 96000 'lpcm' 9 24/1/24/6/32 to 96000 'lpcm' 12 0/1/0/6/24"}));
}

TEST_F(EncodableQueries, ARateThatTheEncoderRefusesForASourceStaysInTheCatalogue)
{
    GetExportableFileTypes();
    mScript.mEncoders[kAAC].mRefusedRates = {64000};
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 0, &mSource), (Rates{{128000.0, 128000.0}}));
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 0, nullptr),
              (Rates{{64000.0, 64000.0}, {128000.0, 128000.0}}));
}

TEST_F(EncodableQueries, ASourceCanBringRatesThatTheCatalogueLacks)
{
    GetExportableFileTypes();
    mScript.mEncoders[kAAC].mModes[1].mRates = {{320000.0, 320000.0}};
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 1, &mSource), (Rates{{320000.0, 320000.0}}));
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 1, nullptr), (Rates{{32000.0, 32000.0}}));
    EXPECT_EQ(GetDefaultEncodableBitrate(kM4A, kAAC, 1), 32000u);
}

TEST_F(EncodableQueries, BitratesForASourceThatNoConverterTakesAreNone)
{
    GetExportableFileTypes();
    mPlatform.FailConverters(-50);
    EXPECT_EQ(GetEncodableBitrates(kM4A, kAAC, 0, &mSource), Rates());
}

TEST_F(EncodableQueries, DefaultsAreThoseOfTheCatalogue)
{
    EXPECT_EQ(GetDefaultEncodableBitrate(kM4A, kAAC, 0), 128000u);
    EXPECT_EQ(GetDefaultEncodableBitrate(kM4A, kAAC, 1), 32000u);
    EXPECT_EQ(GetDefaultEncodableBitrate(kM4A, kAAC, 2), 48000u);
    EXPECT_EQ(GetDefaultEncodableBitrate(kM4A, kALAC, 0), 0u);
}

TEST_F(EncodableQueries, WhatIsNotInTheCatalogueHasNothingAndAddsNothing)
{
    const std::pair<UInt32, UInt32> unknown[] = {{kUnknown, kAAC}, {kM4A, kUnknown}};
    for (const auto& [type, format] : unknown)
    {
        EXPECT_EQ(GetEncodableVariants(type, format).size(), 0u);
        EXPECT_EQ(GetEncodableBitrateModes(type, format), Codes());
        EXPECT_EQ(GetEncodableBitrates(type, format, 0, nullptr), Rates());
        EXPECT_EQ(GetEncodableBitrates(type, format, 0, &mSource), Rates());
        EXPECT_EQ(GetDefaultEncodableBitrate(type, format, 0), 0u);
    }
    EXPECT_EQ(GetEncodableFormats(kUnknown), Codes());
    EXPECT_EQ(GetExportableFileTypes(), (Codes{kWAVE, kM4A}));
    EXPECT_EQ(GetEncodableFormats(kM4A), (Codes{kAAC, kALAC}));
}

TEST_F(EncodableQueries, AFormatWithoutVariantsIsListedAndHasNothing)
{
    mScript.mFileTypes[kWAVE].mFormats[0].second = {};
    EXPECT_EQ(GetEncodableFormats(kWAVE), Codes{kPCM});
    EXPECT_EQ(GetEncodableVariants(kWAVE, kPCM).size(), 0u);
    EXPECT_EQ(GetEncodableBitrateModes(kWAVE, kPCM), Codes());
    EXPECT_EQ(GetEncodableBitrates(kWAVE, kPCM, 0, nullptr), Rates());
    EXPECT_EQ(GetEncodableBitrates(kWAVE, kPCM, 0, &mSource), Rates());
    EXPECT_EQ(GetDefaultEncodableBitrate(kWAVE, kPCM, 0), 0u);
}

TEST_F(EncodableQueries, DefaultRecordsOfAnUnreadableListCountAsVariantsWithoutModes)
{
    mPlatform.Answer(
        Family::Global, kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat,
        PropertyAnswer::List<AudioStreamBasicDescription>({Variant(kPCM)}).GetFails(-50));
    EXPECT_EQ(GetEncodableVariants(kWAVE, kPCM).size(), 1u);
    EXPECT_EQ(GetEncodableBitrateModes(kWAVE, kPCM), Codes());
}

TEST_F(EncodableQueries, EachBuildsTheCatalogueIfNeeded)
{
    const auto builds = [this](auto inQuery)
    {
        EmptyCatalogues();
        mPlatform.ForgetCalls();
        inQuery();
        return mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afwf'").size() == 1;
    };
    EXPECT_TRUE(builds([] { GetExportableFileTypes(); }));
    EXPECT_TRUE(builds([] { GetEncodableFormats(kM4A); }));
    EXPECT_TRUE(builds([] { GetEncodableVariants(kM4A, kAAC); }));
    EXPECT_TRUE(builds([] { GetEncodableBitrateModes(kM4A, kAAC); }));
    EXPECT_TRUE(builds([] { GetEncodableBitrates(kM4A, kAAC, 0, nullptr); }));
    EXPECT_TRUE(builds([] { GetDefaultEncodableBitrate(kM4A, kAAC, 0); }));
}

}  // namespace
