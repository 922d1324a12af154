// BitrateProbeFixture: an AAC encoder whose modes and rates a test sets, and a record to fill.
#ifndef TESTS_APPLEAUDIOTOOLBOX_UTILITY_BITRATEPROBEFIXTURE_H
#define TESTS_APPLEAUDIOTOOLBOX_UTILITY_BITRATEPROBEFIXTURE_H

#include "appleaudiotoolbox/utility/BitrateProbe.h"

#include "tests/support/CatalogueScript.h"

#include <initializer_list>

namespace testing_support
{

using Rates = std::vector<AudioValueRange>;

inline Rates Single(std::initializer_list<double> inRates)
{
    Rates rates;
    for (const double rate : inRates)
        rates.push_back({rate, rate});
    return rates;
}

class BitrateProbe : public CatalogueTest
{
protected:
    BitrateProbe() { mType.mFormatDescription = CAStreamBasicDescription(Variant(kAAC)); }

    ScriptedMode& Mode(UInt32 inMode) { return mScript.mEncoders[kAAC].mModes[inMode]; }
    void ProbePlainly() { appleaudiotoolbox::QueryFormatBitrateInformation(mType, nullptr); }
    void ProbeFor(const CAStreamBasicDescription& inSource)
    {
        appleaudiotoolbox::QueryFormatBitrateInformation(mType, &inSource);
    }
    void ExpectNoRates() const
    {
        EXPECT_EQ(mType.mBitratesCBR, Rates());
        EXPECT_EQ(mType.mBitratesLTA, Rates());
        EXPECT_EQ(mType.mBitratesVBRConstrained, Rates());
        EXPECT_FALSE(mType.mSupportsVBR);
        EXPECT_EQ(mType.mDefaultCBR, 0u);
        EXPECT_EQ(mType.mDefaultLTA, 0u);
        EXPECT_EQ(mType.mDefaultVBRConstrained, 0u);
    }

    const CAStreamBasicDescription mSource{48000.0, kPCM, 8, 1, 8, 2, 32, 9};
    appleaudiotoolbox::ATFormatType mType;
};

}  // namespace testing_support

#endif
