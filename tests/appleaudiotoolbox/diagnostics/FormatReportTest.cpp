// The report of a good catalogue, letter for letter.
#include "tests/appleaudiotoolbox/diagnostics/DiagnosticsFixture.h"

using namespace testing_support;

namespace
{

using FormatReport = DiagnosticsTest;

TEST_F(FormatReport, OfTheInputCatalogueHasOneLineAFormat)
{
    const CaseOutcome outcome = RunInput();
    EXPECT_EQ(outcome.mText, "");
    EXPECT_EQ(outcome.mReport,
              "'WAVE'  \t\"Wave file\"\t(*.wav, *.wave)\n"
              "\t'lpcm'\n"
              "'m4af'  \t\"MPEG-4 file\"\t(*.m4a)\n"
              "\t'aac '\n"
              "\t'alac'\n");
}

TEST_F(FormatReport, OfTheOutputCatalogueShowsVariantsAndBitRates)
{
    const CaseOutcome outcome = RunOutput();
    EXPECT_EQ(outcome.mText, "") << outcome.mFunction;
    EXPECT_EQ(
        outcome.mReport,
        "'WAVE'  \t\"Wave file\"\t(*.wav, *.wave)\n"
        "\t'lpcm'\n"
        "\t\t\"A format\"\t\t< 0 ch,      0 Hz, 'lpcm' (0x0000000C) 16-bit signed integer >\n"
        "\t\t\"A format\"\t\t< 0 ch,      0 Hz, 'lpcm' (0x00000009) 32-bit float >\n"
        "'m4af'  \t\"MPEG-4 file\"\t(*.m4a)\n"
        "\t'aac '  \t\t\"A format\"\t\t< 0 ch,      0 Hz, 'aac ' (0x00000000) 0 bits/channel, 0 "
        "bytes/packet, 0 frames/packet, 0 bytes/frame >\n"
        "\t\t\tCBR:\n"
        "\t\t\t\t64000\n"
        "\t\t\t\t128000 (Default)\n"
        "\t\t\tLTA:\n"
        "\t\t\t\t96000 (Default)\n"
        "\t\t\tVBR (Constrained):\n"
        "\t\t\t\t32000 - 48000\n"
        "\t\t\t\t56000 - 80000 (Default = 64000)\n"
        "\t\t\tVBR\n"
        "\t'alac'  \t\t\"A format\"\t\t< 0 ch,      0 Hz, 'alac' (0x00000000) from UNKNOWN source "
        "bit depth, 0 frames/packet >\n");
}

TEST_F(FormatReport, WritesNamesInUTF8)
{
    Type(kWAVE).mName = "Fichier \xC3\xA9";
    EXPECT_EQ(RunInput().mReport.rfind("'WAVE'  \t\"Fichier \xC3\xA9\"\t(*.wav, *.wave)\n", 0), 0u);
}

TEST_F(FormatReport, AnEndOfARangeMayBeTheDefault)
{
    for (const UInt32 end : {56000u, 80000u})
    {
        EmptyCatalogues();
        Mode(2).mDefault = end;
        const CaseOutcome outcome = RunOutput();
        EXPECT_EQ(outcome.mText, "") << end;
        EXPECT_NE(
            outcome.mReport.find("\t\t\t\t56000 - 80000 (Default = " + std::to_string(end) + ")\n"),
            std::string::npos)
            << outcome.mReport;
    }
}

}  // namespace
