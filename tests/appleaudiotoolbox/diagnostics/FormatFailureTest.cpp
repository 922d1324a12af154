// Breaches of file types, formats and variants: each text, and where the report ends.
#include "appleaudiotoolbox/utility/ExportValidation.h"
#include "tests/appleaudiotoolbox/diagnostics/DiagnosticsFixture.h"

using namespace testing_support;

namespace
{

using FormatFailure = DiagnosticsTest;

constexpr const char* kWaveLine = "'WAVE'  \t\"Wave file\"\t(*.wav, *.wave)\n";
constexpr const char* kListCheck =
    "inIsImport ? formatTypeIter->second.empty() : !formatTypeIter->second.empty()";

TEST_F(FormatFailure, AnEmptyCatalogue)
{
    mScript.mReadable.clear();
    mScript.mWritable.clear();
    for (const CaseOutcome& outcome : {RunInput(), RunOutput()})
    {
        ExpectFailure(outcome, "TestFileTypes", "!inFileTypeMap.empty()");
        EXPECT_EQ(outcome.mReport, "");
    }
}

TEST_F(FormatFailure, AFileTypeOf0)
{
    mScript.AddFileType(0, {"Nothing", {"nil"}, {{kPCM, {}}}});
    const CaseOutcome outcome = RunInput();
    ExpectFailure(outcome, "TestFileFormat", "inFileTypeID != 0");
    EXPECT_EQ(outcome.mReport, "");
}

TEST_F(FormatFailure, AFileTypeWithoutAName)
{
    Type(kM4A).mName.clear();
    const CaseOutcome outcome = RunInput();
    ExpectFailure(outcome, "TestFileFormat", "!inFileFormat.mName.empty()");
    EXPECT_EQ(outcome.mReport, std::string(kWaveLine) + "\t'lpcm'\n'm4af'");
}

TEST_F(FormatFailure, AFileTypeWithoutExtensions)
{
    Type(kWAVE).mExtensions.clear();
    const CaseOutcome outcome = RunInput();
    ExpectFailure(outcome, "TestFileFormat", "!inFileFormat.mExtensionSet.empty()");
    EXPECT_EQ(outcome.mReport, "'WAVE'  \t\"Wave file\"\t");
}

TEST_F(FormatFailure, AnEmptyExtension)
{
    Type(kWAVE).mExtensions = {"wav", ""};
    const CaseOutcome outcome = RunInput();
    ExpectFailure(outcome, "TestFileFormat", "!extIter->empty()");
    EXPECT_EQ(outcome.mReport, "'WAVE'  \t\"Wave file\"\t(*.");
}

TEST_F(FormatFailure, AFileTypeWithoutFormats)
{
    Type(kWAVE).mFormats.clear();
    const CaseOutcome outcome = RunInput();
    ExpectFailure(outcome, "TestFormatTypes", "!inFormatTypeMap.empty()");
    EXPECT_EQ(outcome.mReport, kWaveLine);
}

TEST_F(FormatFailure, AFormatOf0)
{
    Type(kWAVE).mFormats.push_back({0, {}});
    const CaseOutcome outcome = RunInput();
    ExpectFailure(outcome, "TestFormatTypes", "formatTypeIter->first != 0");
    EXPECT_EQ(outcome.mReport, kWaveLine);
}

TEST_F(FormatFailure, AnOutputFormatWithoutVariants)
{
    Type(kWAVE).mFormats[0].second.clear();
    const CaseOutcome outcome = RunOutput();
    ExpectFailure(outcome, "TestFormatTypes", kListCheck);
    EXPECT_EQ(outcome.mReport, std::string(kWaveLine) + "\t'lpcm'");
    EXPECT_EQ(RunInput().mText, "");
}

TEST_F(FormatFailure, AFormatThatAValidationEntered)
{
    ASSERT_EQ(RunOutput().mText, "");
    EXPECT_FALSE(appleaudiotoolbox::IsExportFormatValid(kWAVE, kALAC));
    const CaseOutcome outcome = RunOutput();
    ExpectFailure(outcome, "TestFormatTypes", kListCheck);
    EXPECT_EQ(outcome.mReport, std::string(kWaveLine) + "\t'alac'");
}

// No answer of the platform leads there.
TEST_F(FormatFailure, AnInputFormatWithVariants)
{
    ASSERT_EQ(RunInput().mText, "");
    appleaudiotoolbox::sInputFileTypes[kWAVE].mFormatTypeMap[kPCM].resize(2);
    const CaseOutcome outcome = RunInput();
    ExpectFailure(outcome, "TestFormatTypes", kListCheck);
    EXPECT_EQ(outcome.mReport, std::string(kWaveLine) + "\t'lpcm'");
}

TEST_F(FormatFailure, OneVariantOfPCM)
{
    Type(kWAVE).mFormats[0].second = {Variant(kPCM, 12, 16)};
    const CaseOutcome outcome = RunOutput();
    ExpectFailure(outcome, "TestFormatTypes",
                  "!formatTypeIter->second.at(0).mFormatDescription.IsPCM()");
    EXPECT_EQ(outcome.mReport, std::string(kWaveLine) + "\t'lpcm'  ");
}

TEST_F(FormatFailure, TwoVariantsOfAnotherFormat)
{
    Type(kM4A).mFormats[1].second = {Variant(kAAC), Variant(kAAC)};
    const CaseOutcome outcome = RunOutput();
    ExpectFailure(outcome, "TestFormatTypes", "formatIter->mFormatDescription.IsPCM()");
    ExpectReportEnd(outcome, "\"MPEG-4 file\"\t(*.m4a)\n\t'aac '\n");
}

TEST_F(FormatFailure, OneVariantAmongPCMThatIsNone)
{
    Type(kWAVE).mFormats[0].second = {Variant(kPCM, 12, 16), Variant(kALAC)};
    const CaseOutcome outcome = RunOutput();
    ExpectFailure(outcome, "TestFormatTypes", "formatIter->mFormatDescription.IsPCM()");
    ExpectReportEnd(outcome,
                    "\t'lpcm'\n\t\t\"A format\"\t\t< 0 ch,      0 Hz, 'lpcm' (0x0000000C) 16-bit "
                    "signed integer >\n");
}

// The number of variants is known, and what they are is not.
TEST_F(FormatFailure, AVariantWithoutAName)
{
    mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat,
                     PropertyAnswer().Size(40).GetFails(-50));
    const CaseOutcome outcome = RunOutput();
    ExpectFailure(outcome, "TestFormatType", "!inFormatType.mName.empty()");
    EXPECT_EQ(outcome.mReport, std::string(kWaveLine) + "\t'lpcm'  ");
}

TEST_F(FormatFailure, AnEmptyDescription)
{
    Type(kWAVE).mFormats[0].second = {Variant(0)};
    const CaseOutcome outcome = RunOutput();
    ExpectFailure(
        outcome, "TestFormatType",
        "!inFormatType.mFormatDescription.IsEqual(CAStreamBasicDescription::sEmpty, false)");
    EXPECT_EQ(outcome.mReport, std::string(kWaveLine) + "\t'lpcm'  \t\t\"A format\"\t\t");
}

}  // namespace
