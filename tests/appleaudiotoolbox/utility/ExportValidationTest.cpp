// The checks of export settings on a scripted platform.
#include "appleaudiotoolbox/utility/ExportValidation.h"

#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"
#include "tests/support/CatalogueScript.h"

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;

constexpr UInt32 kUnknown = 0x3F3F3F3F;
constexpr auto kSampleRates = kAudioFormatProperty_AvailableEncodeSampleRates;
constexpr auto kChannels = kAudioFormatProperty_AvailableEncodeNumberChannels;

PropertyAnswer Ranges(const std::vector<AudioValueRange>& inRanges)
{
    return PropertyAnswer::List(inRanges);
}

// A writable WAVE with PCM of 16 and 24 bits, and M4A with AAC in all modes.
class ExportValidation : public CatalogueTest
{
protected:
    ExportValidation()
    {
        mScript.mEncodable = {kPCM, kAAC, kALAC};
        mScript.AddFileType(kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.AddFileType(
            kWAVE, {"WAVE", {"wav"}, {{kPCM, {Variant(kPCM, 12, 16), Variant(kPCM, 13, 24)}}}});
        ScriptedEncoder& encoder = mScript.mEncoders[kAAC];
        encoder.mModes[0] = {{{64000.0, 64000.0}, {96000.0, 128000.0}}, 64000};
        encoder.mModes[1] = {{{32000.0, 32000.0}}, 32000};
        encoder.mModes[2] = {{{8000.0, 96000.0}}, 48000};
        encoder.mModes[3] = {{{1.0, 2.0}}, 7};
    }

    ATFormatTypeList& Variants(UInt32 inType, UInt32 inFormat)
    {
        GetExportableFileTypes();
        return sOutputFileTypes.at(inType).mFormatTypeMap.at(inFormat);
    }
    void AnswerChannels(const PropertyAnswer& inFirst, const PropertyAnswer& inSecond)
    {
        GetExportableFileTypes();
        mPlatform.AnswerInTurn(Family::Format, kChannels, {inFirst, inSecond});
    }

    const CAStreamBasicDescription mAAC{44100.0, kAAC, 0, 1024, 0, 2, 0, 0};
};

TEST_F(ExportValidation, AFileTypeIsValidIfTheCatalogueHasIt)
{
    mScript.AddFileType(kCAF, {"CAF", {"caf"}});  // into which nothing can be encoded
    EXPECT_TRUE(IsExportFileTypeValid(kWAVE));
    EXPECT_TRUE(IsExportFileTypeValid(kM4A));
    EXPECT_FALSE(IsExportFileTypeValid(kCAF));
    EXPECT_FALSE(IsExportFileTypeValid(0));
    EXPECT_EQ(GetExportableFileTypes().size(), 2u);
}

TEST_F(ExportValidation, AFormatIsValidIfItHasVariants)
{
    EXPECT_TRUE(IsExportFormatValid(kWAVE, kPCM));
    EXPECT_TRUE(IsExportFormatValid(kM4A, kAAC));
    EXPECT_FALSE(IsExportFormatValid(kM4A, kPCM));
}

TEST_F(ExportValidation, AnUnknownFileTypeChangesNothing)
{
    EXPECT_FALSE(IsExportFormatValid(kUnknown, kPCM));
    EXPECT_EQ(GetExportableFileTypes(), (Codes{kWAVE, kM4A}));
}

TEST_F(ExportValidation, AnUnknownFormatIsEnteredWithoutVariantsAndStaysInvalid)
{
    EXPECT_EQ(GetEncodableFormats(kM4A), (Codes{kAAC}));
    EXPECT_FALSE(IsExportFormatValid(kM4A, kUnknown));
    EXPECT_EQ(GetEncodableFormats(kM4A), (Codes{kUnknown, kAAC}));
    EXPECT_FALSE(IsExportFormatValid(kM4A, kUnknown));
    ATFileTypeMap types;
    QueryOutputFileTypes(types);
    ASSERT_EQ(types.at(kM4A).mFormatTypeMap.count(kUnknown), 1u);
    EXPECT_TRUE(types.at(kM4A).mFormatTypeMap.at(kUnknown).empty());
    EXPECT_EQ(GetEncodableVariants(kM4A, kUnknown).size(), 0u);
}

TEST_F(ExportValidation, EveryCheckRefusesWhatIsNotValidAndEntersIt)
{
    // One unknown format for each check, to see which entered itself.
    const CAStreamBasicDescription unknown{44100.0, 9, 0, 1, 0, 2, 0, 0};
    EXPECT_FALSE(IsExportSampleRateValid(kM4A, 1, 44100.0));
    EXPECT_FALSE(IsExportChannelNumberValid(kM4A, 2, 2));
    EXPECT_FALSE(IsExportBitDepthValid(kM4A, 3, 16));
    EXPECT_FALSE(AreExportFormatFlagsValid(kM4A, 4, 0));
    EXPECT_FALSE(IsExportBitrateModeValid(kM4A, 5, 0));
    EXPECT_FALSE(IsExportBitrateValid(kM4A, 6, 0, 64000));
    EXPECT_FALSE(AreExportSettingsValid(kM4A, unknown));
    EXPECT_EQ(GetEncodableFormats(kM4A), (Codes{1, 2, 3, 4, 5, 6, 9, kAAC}));
}

TEST_F(ExportValidation, EveryCheckRefusesAnUnknownFileType)
{
    EXPECT_FALSE(IsExportSampleRateValid(kUnknown, kPCM, 44100.0));
    EXPECT_FALSE(IsExportChannelNumberValid(kUnknown, kPCM, 2));
    EXPECT_FALSE(IsExportBitDepthValid(kUnknown, kPCM, 16));
    EXPECT_FALSE(AreExportFormatFlagsValid(kUnknown, kPCM, 12));
    EXPECT_FALSE(IsExportBitrateModeValid(kUnknown, kPCM, 0));
    EXPECT_FALSE(IsExportBitrateValid(kUnknown, kPCM, 3, 0));
    EXPECT_FALSE(AreExportSettingsValid(kUnknown, mAAC));
}

TEST_F(ExportValidation, ASampleRateIsValidWithinTheFirstRangeEndsIncluded)
{
    mPlatform.Answer(Family::Format, kSampleRates, Ranges({{8000.0, 48000.0}, {96000.0, 96000.0}}));
    for (const double rate : {8000.0, 22050.5, 48000.0})
        EXPECT_TRUE(IsExportSampleRateValid(kM4A, kAAC, rate)) << rate;
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'aesr'").size(), 3u);
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'aesr'")[0],
              "AudioFormatGetProperty 'aesr' specifier 40 size 16");
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetPropertyInfo 'aesr'"), Calls());
}

TEST_F(ExportValidation, AnySampleRateIsValidInARangeFrom0To0)
{
    mPlatform.Answer(Family::Format, kSampleRates, Ranges({{0.0, 0.0}}));
    EXPECT_TRUE(IsExportSampleRateValid(kM4A, kAAC, 1.0));
    EXPECT_TRUE(IsExportSampleRateValid(kM4A, kAAC, 1e9));
}

TEST_F(ExportValidation, OnlyBothEndsAt0TakeAnySampleRate)
{
    mPlatform.AnswerInTurn(
        Family::Format, kSampleRates,
        {Ranges({{0.0, 48000.0}}), Ranges({{96000.0, 0.0}}), Ranges({{0.0, 0.0}})});
    EXPECT_TRUE(IsExportSampleRateValid(kM4A, kAAC, 96000.0));
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'aesr'").size(), 3u);
}

TEST_F(ExportValidation, ASampleRateIsAskedForUntilTheAnswerTakesIt)
{
    const PropertyAnswer range = Ranges({{8000.0, 48000.0}});
    mPlatform.AnswerInTurn(
        Family::Format, kSampleRates,
        {range, range.GetFails(-50), Ranges({{50000.0, 95999.0}}), Ranges({{96000.0, 96000.0}})});
    EXPECT_TRUE(IsExportSampleRateValid(kM4A, kAAC, 96000.0));
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'aesr'").size(), 4u);
}

TEST_F(ExportValidation, ASampleRateIsAskedOfTheFirstVariantAlone)
{
    std::set<UInt32> depths;
    mPlatform.AnswerWith(Family::Format, kSampleRates,
                         [&](const Question& question)
                         {
        AudioStreamBasicDescription format = {};
        std::memcpy(&format, question.mSpecifier.data(), sizeof(format));
        depths.insert(format.mBitsPerChannel);
        return question.mTurn < 3 ? Ranges({{1.0, 2.0}}) : Ranges({{0.0, 0.0}});
    });
    EXPECT_TRUE(IsExportSampleRateValid(kWAVE, kPCM, 44100.0));
    EXPECT_EQ(depths, (std::set<UInt32>{16}));
}

TEST_F(ExportValidation, AChannelCountIsValidIfAnyVariantsEncoderListsIt)
{
    AnswerChannels(PropertyAnswer::List(Codes{1, 2}), PropertyAnswer::List(Codes{6}));
    EXPECT_TRUE(IsExportChannelNumberValid(kWAVE, kPCM, 2));
    AnswerChannels(PropertyAnswer::List(Codes{1, 2}), PropertyAnswer::List(Codes{6}));
    EXPECT_TRUE(IsExportChannelNumberValid(kWAVE, kPCM, 6));
    AnswerChannels(PropertyAnswer::List(Codes{1, 2}), PropertyAnswer::List(Codes{6}));
    EXPECT_FALSE(IsExportChannelNumberValid(kWAVE, kPCM, 3));
    AnswerChannels(PropertyAnswer::List(Codes{1, 2}), PropertyAnswer::List(Codes{6}));
    EXPECT_FALSE(IsExportChannelNumberValid(kWAVE, kPCM, 0));
}

TEST_F(ExportValidation, AChannelCountIsAskedWithSizeAndThenValues)
{
    AnswerChannels(PropertyAnswer::List(Codes{1, 2}), PropertyAnswer());
    mPlatform.ForgetCalls();
    EXPECT_TRUE(IsExportChannelNumberValid(kWAVE, kPCM, 1));
    EXPECT_EQ(mPlatform.Calls(), (Calls{"AudioFormatGetPropertyInfo 'avnc' specifier 40 size 0",
                                        "AudioFormatGetProperty 'avnc' specifier 40 size 8"}));
}

TEST_F(ExportValidation, AnyChannelCountIsValidWhereTheFirstValueSaysSo)
{
    AnswerChannels(PropertyAnswer::List(Codes{0xFFFFFFFF, 2}), PropertyAnswer());
    EXPECT_TRUE(IsExportChannelNumberValid(kWAVE, kPCM, 0));
    AnswerChannels(PropertyAnswer::List(Codes{0xFFFFFFFF}), PropertyAnswer());
    EXPECT_TRUE(IsExportChannelNumberValid(kWAVE, kPCM, 77));
}

TEST_F(ExportValidation, TheValueForAnyCountMeansItInFrontOnly)
{
    const PropertyAnswer list = PropertyAnswer::List(Codes{2, 0xFFFFFFFF});
    AnswerChannels(list, list);
    EXPECT_FALSE(IsExportChannelNumberValid(kM4A, kAAC, 3));
    EXPECT_TRUE(IsExportChannelNumberValid(kM4A, kAAC, 0xFFFFFFFF));
}

TEST_F(ExportValidation, AChannelCountOf0IsValidIfItIsListed)
{
    AnswerChannels(PropertyAnswer::List(Codes{1, 0}), PropertyAnswer());
    EXPECT_TRUE(IsExportChannelNumberValid(kM4A, kAAC, 0));
}

TEST_F(ExportValidation, AVariantWhoseChannelQuestionFailsIsPassedOver)
{
    const PropertyAnswer two = PropertyAnswer::List(Codes{2});
    for (const PropertyAnswer& broken : {two.InfoFails(-50), two.GetFails(-50), PropertyAnswer()})
    {
        GetExportableFileTypes();
        mPlatform.AnswerWith(Family::Format, kChannels,
                             [=](const Question& question)
                             {
            AudioStreamBasicDescription format = {};
            std::memcpy(&format, question.mSpecifier.data(), sizeof(format));
            return format.mBitsPerChannel == 16 ? broken : two;
        });
        EXPECT_TRUE(IsExportChannelNumberValid(kWAVE, kPCM, 2));
        EXPECT_FALSE(IsExportChannelNumberValid(kWAVE, kPCM, 1));
    }
}

TEST_F(ExportValidation, ABitDepthIsValidIfAPCMVariantHasIt)
{
    EXPECT_TRUE(IsExportBitDepthValid(kWAVE, kPCM, 16));
    EXPECT_TRUE(IsExportBitDepthValid(kWAVE, kPCM, 24));
    EXPECT_FALSE(IsExportBitDepthValid(kWAVE, kPCM, 32));
    EXPECT_FALSE(IsExportBitDepthValid(kWAVE, kPCM, 0));
}

TEST_F(ExportValidation, ACompressedFormatHasNoBitDepth)
{
    Variants(kM4A, kAAC)[0].mFormatDescription.mBitsPerChannel = 16;
    EXPECT_FALSE(IsExportBitDepthValid(kM4A, kAAC, 16));
    Variants(kM4A, kAAC)[0].mFormatDescription.mBitsPerChannel = 0;
    EXPECT_FALSE(IsExportBitDepthValid(kM4A, kAAC, 0));
}

TEST_F(ExportValidation, FlagsAreValidIfAVariantHasExactlyThem)
{
    EXPECT_TRUE(AreExportFormatFlagsValid(kWAVE, kPCM, 12));
    EXPECT_TRUE(AreExportFormatFlagsValid(kWAVE, kPCM, 13));
    EXPECT_FALSE(AreExportFormatFlagsValid(kWAVE, kPCM, 4));
    EXPECT_FALSE(AreExportFormatFlagsValid(kWAVE, kPCM, 0));
    EXPECT_TRUE(AreExportFormatFlagsValid(kM4A, kAAC, 0));
}

TEST_F(ExportValidation, AModeIsValidIfAnyVariantHasIt)
{
    for (const UInt32 mode : {0u, 1u, 2u, 3u})
    {
        EXPECT_TRUE(IsExportBitrateModeValid(kM4A, kAAC, mode)) << mode;
        EXPECT_FALSE(IsExportBitrateModeValid(kWAVE, kPCM, mode)) << mode;
    }
    EXPECT_FALSE(IsExportBitrateModeValid(kM4A, kAAC, 4));

    Variants(kWAVE, kPCM)[1].mBitratesLTA = {{1.0, 1.0}};
    EXPECT_TRUE(IsExportBitrateModeValid(kWAVE, kPCM, 1));
    EXPECT_EQ(GetEncodableBitrateModes(kWAVE, kPCM), Codes());
}

TEST_F(ExportValidation, EachModeStandsForItself)
{
    const std::map<UInt32, ScriptedMode> all = mScript.mEncoders[kAAC].mModes;
    for (UInt32 only = 0; only < 4; ++only)
    {
        EmptyCatalogues();
        mScript.mEncoders[kAAC].mModes = {{only, all.at(only)}};
        for (UInt32 mode = 0; mode < 4; ++mode)
            EXPECT_EQ(IsExportBitrateModeValid(kM4A, kAAC, mode), mode == only) << only << mode;
    }
}

TEST_F(ExportValidation, ABitrateIsValidWithinARangeOfItsModeEndsIncluded)
{
    for (const UInt32 rate : {64000u, 96000u, 100000u, 128000u})
        EXPECT_TRUE(IsExportBitrateValid(kM4A, kAAC, 0, rate)) << rate;
    for (const UInt32 rate : {0u, 63999u, 64001u, 95999u, 128001u})
        EXPECT_FALSE(IsExportBitrateValid(kM4A, kAAC, 0, rate)) << rate;
    EXPECT_TRUE(IsExportBitrateValid(kM4A, kAAC, 1, 32000));
    EXPECT_FALSE(IsExportBitrateValid(kM4A, kAAC, 1, 64000));
    EXPECT_TRUE(IsExportBitrateValid(kM4A, kAAC, 2, 8000));
    EXPECT_TRUE(IsExportBitrateValid(kM4A, kAAC, 2, 96000));
    EXPECT_FALSE(IsExportBitrateValid(kM4A, kAAC, 2, 7999));
}

TEST_F(ExportValidation, AnyBitrateIsValidInMode3IfThereIsSuchAMode)
{
    EXPECT_TRUE(IsExportBitrateValid(kM4A, kAAC, 3, 0));
    EXPECT_TRUE(IsExportBitrateValid(kM4A, kAAC, 3, 0xFFFFFFFF));
    EXPECT_FALSE(IsExportBitrateValid(kWAVE, kPCM, 3, 0));
    EXPECT_FALSE(IsExportBitrateValid(kM4A, kAAC, 4, 64000));
}

TEST_F(ExportValidation, ABitrateOfALaterVariantIsValid)
{
    Variants(kWAVE, kPCM)[1].mBitratesCBR = {{5.0, 5.0}};
    EXPECT_TRUE(IsExportBitrateValid(kWAVE, kPCM, 0, 5));
}

TEST_F(ExportValidation, SettingsAreValidIfThePlatformMakesAConverterFromTheReference)
{
    GetExportableFileTypes();
    mPlatform.ForgetCalls();
    EXPECT_TRUE(AreExportSettingsValid(kM4A, mAAC));
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{"AudioConverterNew 44100 'lpcm' 14 4/1/4/2/16 to 44100 'aac ' 0 0/1024/0/2/0",
                     "AudioConverterDispose"}));
}

TEST_F(ExportValidation, SettingsThatNoConverterDoesAreNotValid)
{
    GetExportableFileTypes();
    mPlatform.FailConverters(-50);
    EXPECT_FALSE(AreExportSettingsValid(kM4A, mAAC));
}

TEST_F(ExportValidation, AConverterThatARefusalLeavesBehindIsDisposedOf)
{
    GetExportableFileTypes();
    mPlatform.ForgetCalls();
    mPlatform.MakeConvertersWith(
        [](const AudioStreamBasicDescription&, const AudioStreamBasicDescription&) {
        return NewConverterAnswer{-50, true};
    });
    EXPECT_FALSE(AreExportSettingsValid(kM4A, mAAC));
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterDispose").size(), 1u);
}

TEST_F(ExportValidation, ImplausibleSettingsMakeNoConverterAndAskNothing)
{
    CAStreamBasicDescription format = mAAC;
    format.mChannelsPerFrame = 0;
    EXPECT_FALSE(AreExportSettingsValid(kM4A, format));
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(ExportValidation, SettingsOfAFormatThatTheTypeLacksMakeNoConverter)
{
    GetExportableFileTypes();
    mPlatform.ForgetCalls();
    EXPECT_FALSE(AreExportSettingsValid(kWAVE, mAAC));
    EXPECT_EQ(mPlatform.Calls(), Calls());
    EXPECT_EQ(GetEncodableFormats(kWAVE), (Codes{kAAC, kPCM}));
}

TEST_F(ExportValidation, SettingsAreNotHeldAgainstTheCataloguesLists)
{
    mScript.mEncoders[kAAC].mChannelCounts = {1};
    GetExportableFileTypes();
    EXPECT_TRUE(AreExportSettingsValid(kM4A, mAAC));
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'aesr'"), Calls());
}

TEST_F(ExportValidation, DefaultRecordsOfAnUnreadableListAreAValidFormatWithoutModes)
{
    mPlatform.Answer(
        Family::Global, kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat,
        PropertyAnswer::List<AudioStreamBasicDescription>({Variant(kAAC)}).GetFails(-50));
    EXPECT_TRUE(IsExportFormatValid(kM4A, kAAC));
    for (const UInt32 mode : {0u, 1u, 2u, 3u})
        EXPECT_FALSE(IsExportBitrateModeValid(kM4A, kAAC, mode)) << mode;
}

}  // namespace
