// DiagnosticsFixture: a platform whose catalogue passes, for tests that break one thing in it.
#ifndef TESTS_APPLEAUDIOTOOLBOX_DIAGNOSTICS_DIAGNOSTICSFIXTURE_H
#define TESTS_APPLEAUDIOTOOLBOX_DIAGNOSTICS_DIAGNOSTICSFIXTURE_H

#include "appleaudiotoolbox/diagnostics/FormatTests.h"
#include "kelpunittesting/TestFailure.h"
#include "tests/support/CatalogueScript.h"

#include <sstream>

namespace testing_support
{

/// What a case came to. Texts are empty if it passed.
struct CaseOutcome
{
    std::string mReport;
    std::string mText;
    std::string mFunction;
    std::string mSourcePath;
    int mLine = 0;
};

/// One file type of PCM and one of AAC and ALAC; the AAC encoder has all four modes.
class DiagnosticsTest : public CatalogueTest
{
protected:
    DiagnosticsTest()
    {
        mScript.AddFileType(kWAVE, {"Wave file",
                                    {"wave", "wav"},
                                    {{kPCM, {Variant(kPCM, 12, 16), Variant(kPCM, 9, 32)}}}});
        mScript.AddFileType(
            kM4A, {"MPEG-4 file", {"m4a"}, {{kALAC, {Variant(kALAC)}}, {kAAC, {Variant(kAAC)}}}});
        mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatName,
                         PropertyAnswer::Name("A format").Size(8));
        mScript.mEncodable = {kPCM, kAAC, kALAC};
        Mode(0) = {{{64000.0, 64000.0}, {128000.0, 128000.0}}, 128000};
        Mode(1) = {{{96000.0, 96000.0}}, 96000};
        Mode(2) = {{{32000.0, 48000.0}, {56000.0, 80000.0}}, 64000};
        Mode(3) = {{{1.0, 1.0}}, 1};
    }

    /// Of the AAC encoder.
    ScriptedMode& Mode(UInt32 inMode) { return mScript.mEncoders[kAAC].mModes[inMode]; }
    ScriptedFileType& Type(UInt32 inFileType) { return mScript.mFileTypes[inFileType]; }

    static CaseOutcome RunInput()
    {
        return Run(&appleaudiotoolbox::FormatTests::QueryInputFormats);
    }
    static CaseOutcome RunOutput()
    {
        return Run(&appleaudiotoolbox::FormatTests::QueryOuputFormats);
    }

    static void ExpectFailure(const CaseOutcome& inOutcome, const std::string& inFunction,
                              const std::string& inText)
    {
        EXPECT_EQ(inOutcome.mText, inText);
        EXPECT_EQ(inOutcome.mFunction, inFunction);
        EXPECT_NE(inOutcome.mSourcePath.find("appleaudiotoolbox/diagnostics/src/"),
                  std::string::npos)
            << inOutcome.mSourcePath;
        EXPECT_GT(inOutcome.mLine, 0);
    }
    /// What was printed before the breach stays, and nothing comes behind it.
    static void ExpectReportEnd(const CaseOutcome& inOutcome, const std::string& inEnd)
    {
        const std::string& report = inOutcome.mReport;
        EXPECT_EQ(report.substr(report.size() - std::min(report.size(), inEnd.size())), inEnd);
    }

private:
    static CaseOutcome Run(
        void (appleaudiotoolbox::FormatTests::*inCase)(const kelpunittesting::TestContext&))
    {
        std::ostringstream report;
        CaseOutcome outcome;
        try
        {
            appleaudiotoolbox::FormatTests tests;
            (tests.*inCase)(kelpunittesting::TestContext(report));
        }
        catch (const kelpunittesting::TestFailure& failure)
        {
            const kelpunittesting::LocationInfo& location = failure.GetLocation();
            outcome = {
                {}, failure.what(), location.mFunction, location.mSourcePath, location.mLine};
        }
        outcome.mReport = report.str();
        return outcome;
    }
};

}  // namespace testing_support

#endif
