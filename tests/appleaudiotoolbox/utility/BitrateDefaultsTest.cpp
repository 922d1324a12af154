// Default bit rates, and rates that are tried for a source of the caller's.
#include "tests/appleaudiotoolbox/utility/BitrateProbeFixture.h"

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;

using BitrateDefaults = BitrateProbe;

struct NegativeDefault
{
    Rates mRates;
    UInt32 mEncoders;
    UInt32 mReplaced;
};

TEST_F(BitrateDefaults, TheMiddleOfTheListStandsInForANegativeDefault)
{
    const NegativeDefault rows[] = {
        {Single({64000.9}), 0xFFFFFFFF, 64000},
        {Single({10.0, 20.0}), 0x80000000, 20},
        {Single({10.0, 20.0, 30.0}), 0xFFFFFFFF, 20},
        {Single({10.0, 20.0, 30.0, 40.0}), 0xFFFFFFFF, 30},
        {{{0.0, 1.0}, {10.0, 10.0}, {30.0, 90.0}, {50.0, 50.0}}, 0xFFFFFFFF, 30},  // once pruned
        {{}, 0xFFFFFFFF, 0xFFFFFFFF},
        {Single({10.0}), 0x7FFFFFFF, 0x7FFFFFFF},
        {Single({10.0}), 0, 0},
    };
    for (const NegativeDefault& row : rows)
    {
        for (const UInt32 mode : {0u, 1u, 2u})
            Mode(mode) = {row.mRates, row.mEncoders};
        ProbePlainly();
        EXPECT_EQ(mType.mDefaultCBR, row.mReplaced) << row.mRates.size() << " ranges";
        EXPECT_EQ(mType.mDefaultVBRConstrained, row.mReplaced) << row.mRates.size() << " ranges";
        EXPECT_EQ(mType.mDefaultLTA, row.mEncoders) << row.mRates.size() << " ranges";
    }
}

TEST_F(BitrateDefaults, ARateBeyondAllIntegersStandsInAs0)
{
    Mode(0) = {Single({1e300}), 0xFFFFFFFF};
    ProbePlainly();
    EXPECT_EQ(mType.mDefaultCBR, 0u);
}

TEST_F(BitrateDefaults, ADefaultThatCannotBeReadStays0)
{
    for (const UInt32 mode : {0u, 1u, 2u})
        Mode(mode) = {Single({10.0}), 10};
    mPlatform.Answer(Family::Converter, kAudioConverterEncodeBitRate,
                     PropertyAnswer::Value<UInt32>(10).GetFails(-50));
    ProbePlainly();
    EXPECT_EQ(mType.mBitratesCBR, Single({10.0}));
    EXPECT_EQ(mType.mDefaultCBR, 0u);
    EXPECT_EQ(mType.mDefaultLTA, 0u);
    EXPECT_EQ(mType.mDefaultVBRConstrained, 0u);
}

TEST_F(BitrateDefaults, ASourceOfTheCallersIsTheConvertersInput)
{
    ProbeFor(mSource);
    ASSERT_FALSE(mPlatform.Calls().empty());
    EXPECT_EQ(mPlatform.Calls()[0],
              "AudioConverterNew 48000 'lpcm' 9 8/1/8/2/32 to 0 'aac ' 0 0/0/0/0/0");
}

TEST_F(BitrateDefaults, TryingGoesFromTheLastRateToTheFirstInWholeBits)
{
    Mode(0) = {{{16.9, 16.9}, {0.0, 99.0}, {32.0, 64.0}, {256.0, 256.0}}, 1};
    ProbeFor(mSource);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty 'brat'"),
              (Calls{"AudioConverterSetProperty 'brat' size 4: 00 01 00 00",
                     "AudioConverterSetProperty 'brat' size 4: 20 00 00 00",
                     "AudioConverterSetProperty 'brat' size 4: 10 00 00 00"}));
    EXPECT_EQ(mType.mBitratesCBR, (Rates{{16.9, 16.9}, {32.0, 64.0}, {256.0, 256.0}}));
}

TEST_F(BitrateDefaults, TryingDropsWhatTheEncoderRefusesInAllModesWithRates)
{
    for (const UInt32 mode : {0u, 1u, 2u})
        Mode(mode) = {Single({10.0, 20.0, 30.0, 40.0}), 40};
    mScript.mEncoders[kAAC].mRefusedRates = {10, 30};
    ProbeFor(mSource);
    EXPECT_EQ(mType.mBitratesCBR, Single({20.0, 40.0}));
    EXPECT_EQ(mType.mBitratesLTA, Single({20.0, 40.0}));
    EXPECT_EQ(mType.mBitratesVBRConstrained, Single({20.0, 40.0}));
}

TEST_F(BitrateDefaults, AfterTryingTheDefaultIsTheFirstRateThatIsLeft)
{
    for (const UInt32 mode : {0u, 1u, 2u})
        Mode(mode) = {Single({10.0, 20.0, 30.0}), 30};
    mScript.mEncoders[kAAC].mRefusedRates = {10};
    ProbeFor(mSource);
    EXPECT_EQ(mType.mDefaultCBR, 20u);
    EXPECT_EQ(mType.mDefaultLTA, 20u);
    EXPECT_EQ(mType.mDefaultVBRConstrained, 20u);
}

TEST_F(BitrateDefaults, VariableModeTriesNothing)
{
    Mode(3) = {Single({10.0, 20.0}), 10};
    mScript.mEncoders[kAAC].mRefusedRates = {10, 20};
    ProbeFor(mSource);
    EXPECT_TRUE(mType.mSupportsVBR);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty 'brat'"), Calls());
}

}  // namespace
