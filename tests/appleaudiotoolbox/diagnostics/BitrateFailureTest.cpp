// Breaches of bit rates: each text in each mode, and where the report ends.
#include "tests/appleaudiotoolbox/diagnostics/DiagnosticsFixture.h"

using namespace testing_support;

namespace
{

struct Breach
{
    const char* mName;
    UInt32 mMode;
    ScriptedMode mOffer;
    const char* mFunction;
    const char* mText;
    const char* mReportEnd;
};

const ScriptedMode kNoDefault = {{{64.0, 64.0}}, 0};
const ScriptedMode kUnlistedDefault = {{{64.0, 64.0}, {96.0, 96.0}}, 80};
const ScriptedMode kOnlyDefault = {{}, 64};
const ScriptedMode kTwice = {{{64.0, 64.0}, {96.0, 96.0}, {64.0, 64.0}}, 64};

constexpr const char* kSingle = "iter->mMinimum == iter->mMaximum";
constexpr const char* kListed = "\t\t\t\t64\n\t\t\t\t96\n";
constexpr const char* kFoundTwice = "\t\t\t\t64 (Default)\n\t\t\t\t96\n\t\t\t\t64";

const Breach kBreaches[] = {
    {"CBR without default", 0, kNoDefault, "TestCBR", "inFormatType.mDefaultCBR != 0", " >\n"},
    {"CBR range", 0, {{{64.0, 65.0}}, 64}, "TestCBR", kSingle, "\t\t\tCBR:\n"},
    {"CBR twice", 0, kTwice, "TestCBR", "!foundDefault", kFoundTwice},
    {"CBR unlisted", 0, kUnlistedDefault, "TestCBR", "foundDefault", kListed},
    {"CBR no list", 0, kOnlyDefault, "TestCBR", "inFormatType.mDefaultCBR == 0", " >\n"},
    {"LTA without default", 1, kNoDefault, "TestLTA", "inFormatType.mDefaultLTA != 0",
     "128000 (Default)\n"},
    {"LTA range", 1, {{{65.0, 64.0}}, 64}, "TestLTA", kSingle, "\t\t\tLTA:\n"},
    {"LTA twice", 1, kTwice, "TestLTA", "!foundDefault", kFoundTwice},
    {"LTA unlisted", 1, kUnlistedDefault, "TestLTA", "foundDefault", kListed},
    {"LTA no list", 1, kOnlyDefault, "TestLTA", "inFormatType.mDefaultLTA == 0",
     "128000 (Default)\n"},
    {"VBR without default", 2, kNoDefault, "TestConstrainedVBR",
     "inFormatType.mDefaultVBRConstrained != 0", "96000 (Default)\n"},
    {"VBR upside down",
     2,
     {{{65.0, 64.0}}, 64},
     "TestConstrainedVBR",
     "iter->mMinimum <= iter->mMaximum",
     "\t\t\tVBR (Constrained):\n"},
    {"VBR in two ranges",
     2,
     {{{32.0, 64.0}, {64.0, 96.0}}, 64},
     "TestConstrainedVBR",
     "!foundDefault",
     "\t\t\t\t32 - 64 (Default = 64)\n\t\t\t\t64 - 96"},
    {"VBR between the ranges",
     2,
     {{{32.0, 63.0}, {65.0, 96.0}}, 64},
     "TestConstrainedVBR",
     "foundDefault",
     "\t\t\t\t32 - 63\n\t\t\t\t65 - 96\n"},
    {"VBR no list", 2, kOnlyDefault, "TestConstrainedVBR",
     "inFormatType.mDefaultVBRConstrained == 0", "96000 (Default)\n"},
};

using BitrateFailure = DiagnosticsTest;

TEST_F(BitrateFailure, EachBreachHasItsTextAndEndsTheReport)
{
    for (const Breach& breach : kBreaches)
    {
        SCOPED_TRACE(breach.mName);
        const ScriptedMode good = Mode(breach.mMode);
        Mode(breach.mMode) = breach.mOffer;
        EmptyCatalogues();
        const CaseOutcome outcome = RunOutput();
        ExpectFailure(outcome, breach.mFunction, breach.mText);
        ExpectReportEnd(outcome, breach.mReportEnd);
        Mode(breach.mMode) = good;
    }
    EmptyCatalogues();
    EXPECT_EQ(RunOutput().mText, "");
}

TEST_F(BitrateFailure, AnEncoderWithoutModesIsNone)
{
    mScript.mEncoders[kAAC].mModes.clear();
    const CaseOutcome outcome = RunOutput();
    EXPECT_EQ(outcome.mText, "");
    EXPECT_NE(outcome.mReport.find("0 bytes/frame >\n\t'alac'"), std::string::npos)
        << outcome.mReport;
}

}  // namespace
