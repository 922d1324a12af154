// The passes of the bit rate probe: what is asked, what fails, what is traced.
#include "tests/appleaudiotoolbox/utility/BitrateProbeFixture.h"
#include "tests/support/TraceLines.h"

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;

constexpr UInt32 kRatesProperty = kAudioConverterApplicableEncodeBitRates;

TEST_F(BitrateProbe, MakesOneConverterAndAsksModes0And1And3And2)
{
    for (const UInt32 mode : {0u, 1u, 2u, 3u})
        Mode(mode) = {Single({64000.0}), 64000};
    ProbePlainly();
    const std::string ask = "AudioConverterGetPropertyInfo 'aebr' size ";
    EXPECT_EQ(
        mPlatform.Calls(),
        (Calls{
            "AudioConverterNew 44100 'lpcm' 14 4/1/4/2/16 to 0 'aac ' 0 0/0/0/0/0",
            "AudioConverterSetProperty 'acbf' size 4: 00 00 00 00", ask + "0 writable null",
            "AudioConverterGetProperty 'aebr' size 16", "AudioConverterGetProperty 'brat' size 4",
            "AudioConverterSetProperty 'acbf' size 4: 01 00 00 00", ask + "4 writable null",
            "AudioConverterGetProperty 'aebr' size 16", "AudioConverterGetProperty 'brat' size 4",
            "AudioConverterSetProperty 'acbf' size 4: 03 00 00 00", ask + "4 writable null",
            "AudioConverterGetProperty 'aebr' size 16",
            "AudioConverterSetProperty 'acbf' size 4: 02 00 00 00", ask + "16 writable null",
            "AudioConverterGetProperty 'aebr' size 16", "AudioConverterGetProperty 'brat' size 4",
            "AudioConverterDispose"}));
}

TEST_F(BitrateProbe, PutsEachModesRatesAndDefaultIntoTheirFields)
{
    Mode(0) = {Single({10.0, 20.0}), 20};
    Mode(1) = {Single({30.0}), 30};
    Mode(2) = {{{40.0, 50.0}}, 45};
    Mode(3) = {Single({60.0}), 60};
    ProbePlainly();
    EXPECT_EQ(mType.mBitratesCBR, Single({10.0, 20.0}));
    EXPECT_EQ(mType.mDefaultCBR, 20u);
    EXPECT_EQ(mType.mBitratesLTA, Single({30.0}));
    EXPECT_EQ(mType.mDefaultLTA, 30u);
    EXPECT_EQ(mType.mBitratesVBRConstrained, (Rates{{40.0, 50.0}}));
    EXPECT_EQ(mType.mDefaultVBRConstrained, 45u);
    EXPECT_TRUE(mType.mSupportsVBR);
}

TEST_F(BitrateProbe, OnlyReadsTheDescription)
{
    Mode(0) = {Single({10.0}), 10};
    ProbePlainly();
    EXPECT_TRUE(CAStreamBasicDescription::IsExactlyEqual(mType.mFormatDescription, Variant(kAAC)));
}

TEST_F(BitrateProbe, ARefusedConverterLeavesTheRecordAsItIs)
{
    Mode(0) = {Single({10.0}), 10};
    mPlatform.FailConverters(-50);
    ProbePlainly();
    ExpectNoRates();
    EXPECT_EQ(mPlatform.Calls().size(), 1u);
}

TEST_F(BitrateProbe, DisposesOfAConverterThatARefusalLeavesBehind)
{
    mPlatform.MakeConvertersWith(
        [](const AudioStreamBasicDescription&, const AudioStreamBasicDescription&) {
        return NewConverterAnswer{-50, true};
    });
    ProbePlainly();
    ExpectNoRates();
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterDispose").size(), 1u);
}

TEST_F(BitrateProbe, ASuccessWithoutAConverterOffersNothing)
{
    mPlatform.MakeConvertersWith(
        [](const AudioStreamBasicDescription&, const AudioStreamBasicDescription&) {
        return NewConverterAnswer{noErr, false, true};
    });
    ProbePlainly();
    ExpectNoRates();
    EXPECT_EQ(mPlatform.Calls().size(), 1u);
}

TEST_F(BitrateProbe, ARefusedModeCostsThatModeAlone)
{
    for (UInt32 refused = 0; refused < 4; ++refused)
    {
        for (UInt32 mode = 0; mode < 4; ++mode)
            Mode(mode) = {Single({64000.0}), 64000};
        mScript.mEncoders[kAAC].mModes.erase(refused);
        mType = ATFormatType();
        mType.mFormatDescription = CAStreamBasicDescription(Variant(kAAC));
        ProbePlainly();
        EXPECT_EQ(mType.mBitratesCBR.size(), refused == 0 ? 0u : 1u) << refused;
        EXPECT_EQ(mType.mDefaultCBR, refused == 0 ? 0u : 64000u) << refused;
        EXPECT_EQ(mType.mBitratesLTA.size(), refused == 1 ? 0u : 1u) << refused;
        EXPECT_EQ(mType.mDefaultLTA, refused == 1 ? 0u : 64000u) << refused;
        EXPECT_EQ(mType.mBitratesVBRConstrained.size(), refused == 2 ? 0u : 1u) << refused;
        EXPECT_EQ(mType.mDefaultVBRConstrained, refused == 2 ? 0u : 64000u) << refused;
        EXPECT_EQ(mType.mSupportsVBR, refused != 3) << refused;
        EXPECT_EQ(mPlatform.OpenConverters(), 0) << refused;
    }
}

TEST_F(BitrateProbe, PlainPruningDropsEveryRangeThatBeginsAt0AndSetsNoRate)
{
    const Rates ranges = {{0.0, 0.0}, {8000.0, 8000.0}, {0.0, 320000.0}, {0.5, 1.0}, {0.0, 1.0}};
    for (UInt32 mode = 0; mode < 4; ++mode)
        Mode(mode) = {ranges, 8000};
    ProbePlainly();
    const Rates kept = {{8000.0, 8000.0}, {0.5, 1.0}};
    EXPECT_EQ(mType.mBitratesCBR, kept);
    EXPECT_EQ(mType.mBitratesLTA, kept);
    EXPECT_EQ(mType.mBitratesVBRConstrained, kept);
    EXPECT_TRUE(mType.mSupportsVBR);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty 'brat'"), Calls());
}

TEST_F(BitrateProbe, VariableModeWithNothingButRangesFrom0IsNotSupported)
{
    Mode(3) = {{{0.0, 320000.0}}, 0};
    ProbePlainly();
    EXPECT_FALSE(mType.mSupportsVBR);
}

TEST_F(BitrateProbe, VariableModeReadsNoDefault)
{
    Mode(3) = {Single({1.0}), 7};
    ProbePlainly();
    EXPECT_TRUE(mType.mSupportsVBR);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterGetProperty 'brat'"), Calls());
}

TEST_F(BitrateProbe, TheDefaultIsReadAlsoWhenPruningEmptiesTheList)
{
    for (const UInt32 mode : {0u, 1u, 2u})
        Mode(mode) = {{{0.0, 5.0}}, 128000};
    ProbePlainly();
    EXPECT_EQ(mType.mBitratesCBR, Rates());
    EXPECT_EQ(mType.mDefaultCBR, 128000u);
    EXPECT_EQ(mType.mDefaultLTA, 128000u);
    EXPECT_EQ(mType.mDefaultVBRConstrained, 128000u);
}

TEST_F(BitrateProbe, RatesThatCannotBeReadStayAsThatManyZeros)
{
    for (UInt32 mode = 0; mode < 4; ++mode)
        Mode(mode) = {Single({10.0, 20.0}), 20};
    mPlatform.Answer(Family::Converter, kRatesProperty,
                     PropertyAnswer::List(Single({10.0, 20.0, 30.0})).GetFails(-50));
    ProbePlainly();
    const Rates zeros(3, AudioValueRange{0.0, 0.0});
    EXPECT_EQ(mType.mBitratesCBR, zeros);
    EXPECT_EQ(mType.mBitratesLTA, zeros);
    EXPECT_EQ(mType.mBitratesVBRConstrained, zeros);
    EXPECT_FALSE(mType.mSupportsVBR);
    EXPECT_EQ(mType.mDefaultCBR, 0u);
    EXPECT_EQ(mType.mDefaultLTA, 0u);
    EXPECT_EQ(mType.mDefaultVBRConstrained, 0u);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterGetProperty 'brat'"), Calls());
}

TEST_F(BitrateProbe, ASizeThatIsNotToldIsThatOfTheStepBefore)
{
    for (UInt32 mode = 0; mode < 4; ++mode)
        Mode(mode) = {};
    const PropertyAnswer told = PropertyAnswer::List(Single({10.0, 20.0, 30.0}));
    const PropertyAnswer untold = told.InfoFails(-50);
    // Reading counts its turns on its own: modes 0, 1, 3, 2.
    mPlatform.AnswerInTurn(Family::Converter, kRatesProperty, {untold, untold, told, untold});
    ProbePlainly();
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterGetProperty 'aebr'"),
              (Calls{"AudioConverterGetProperty 'aebr' size 0",     // nothing before
                     "AudioConverterGetProperty 'aebr' size 4",     // the default's
                     "AudioConverterGetProperty 'aebr' size 48",    // its own
                     "AudioConverterGetProperty 'aebr' size 48"}))  // mode 3's
        << "sizes";
    EXPECT_EQ(mType.mBitratesCBR, Rates());
    EXPECT_EQ(mType.mBitratesLTA, Rates());
    EXPECT_TRUE(mType.mSupportsVBR);
    EXPECT_EQ(mType.mBitratesVBRConstrained, Single({10.0, 20.0, 30.0}));
}

TEST_F(BitrateProbe, ASizeThatReadingDeliveredStandsForTheNextStep)
{
    for (const UInt32 mode : {2u, 3u})
        Mode(mode) = {};
    const PropertyAnswer rates = PropertyAnswer::List(Single({10.0, 20.0, 30.0}));
    mPlatform.AnswerInTurn(Family::Converter, kRatesProperty,
                           {rates.Delivers(32), rates.InfoFails(-50)});
    ProbePlainly();
    EXPECT_EQ(mType.mBitratesVBRConstrained, Single({10.0, 20.0}));
}

TEST_F(BitrateProbe, ASizeThatAFailingQueryWritesCounts)
{
    Mode(0) = {};
    mPlatform.Answer(Family::Converter, kRatesProperty,
                     PropertyAnswer::List(Single({10.0, 20.0, 30.0})).InfoFails(-50).Size(32));
    ProbePlainly();
    EXPECT_EQ(mType.mBitratesCBR, Single({10.0, 20.0}));
}

TEST_F(BitrateProbe, ASizeWithACutOffRangeIsHandedBackAndTheRangeDropped)
{
    Mode(0) = {};
    mPlatform.Answer(Family::Converter, kRatesProperty,
                     PropertyAnswer::List(Single({10.0, 20.0, 30.0})).Size(40));
    ProbePlainly();
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterGetProperty 'aebr'"),
              (Calls{"AudioConverterGetProperty 'aebr' size 40"}));
    EXPECT_EQ(mType.mBitratesCBR, Single({10.0, 20.0}));
}

TEST_F(BitrateProbe, AnAnswerShorterThanToldIsShorter)
{
    Mode(0) = {};
    mPlatform.Answer(Family::Converter, kRatesProperty,
                     PropertyAnswer::List(Single({10.0, 20.0})).Size(64));
    ProbePlainly();
    EXPECT_EQ(mType.mBitratesCBR, Single({10.0, 20.0}));
}

TEST_F(BitrateProbe, TracesTheModesThatAnsweredBeforeTheyArePruned)
{
    const TraceLines trace(7);
    for (UInt32 mode = 0; mode < 4; ++mode)
        Mode(mode) = {{{0.0, 1.0}}, 0};
    ProbePlainly();
    EXPECT_EQ(trace.Lines(),
              (Calls{TraceLines::Line("<7> \t      Supports CBR\n\n"),
                     TraceLines::Line("<7> \t      Supports Long-Term Average\n\n"),
                     TraceLines::Line("<7> \t      Supports VBR\n\n"),
                     TraceLines::Line("<7> \t      Supports VBR (Constrained)\n\n")}));
}

TEST_F(BitrateProbe, TracesNeitherARefusedModeNorRatesThatCannotBeRead)
{
    const TraceLines trace(7);
    Mode(0) = {Single({10.0}), 10};
    Mode(3) = {Single({10.0}), 10};
    const PropertyAnswer rates = PropertyAnswer::List(Single({10.0}));
    mPlatform.AnswerInTurn(Family::Converter, kRatesProperty, {rates.GetFails(-50), rates});
    ProbePlainly();
    EXPECT_EQ(trace.Lines(), (Calls{TraceLines::Line("<7> \t      Supports VBR\n\n")}));
}

TEST_F(BitrateProbe, TracesNothingAtLevel6)
{
    const TraceLines trace(6);
    Mode(0) = {Single({10.0}), 10};
    ProbePlainly();
    EXPECT_EQ(trace.Lines(), Calls());
}

TEST_F(BitrateProbe, LeavesNoConverterOpenWhicheverCallFails)
{
    for (UInt32 mode = 0; mode < 4; ++mode)
        Mode(mode) = {Single({10.0, 20.0}), 20};
    for (int failing = 1; failing < 100; ++failing)
    {
        mPlatform.FailCall(failing, -50);
        ProbeFor(mSource);
        EXPECT_EQ(mPlatform.OpenConverters(), 0) << "call " << failing;
        if (!mPlatform.ReachedFailingCall())
            return;
    }
    FAIL() << "the probe never ran through without a fault";
}

}  // namespace
