// All calls that the settings dialog makes into its controls, in their order.
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/ControlCalls.h"
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/SettingsDialogFixture.h"

#include <algorithm>

namespace
{

using namespace testing_support;
using Lines = std::vector<std::string>;

class DialogCalls : public SettingsDialog
{
protected:
    // What the dialog calls from its first control to the modal run.
    Lines Opening()
    {
        ControlCalls calls;
        Lines lines;
        Run([&](const DialogWindow&) { lines = calls.Take(); });
        const auto first = std::find(lines.begin(), lines.end(), "FileTypePopup SetStyle 3");
        return Lines(first, lines.end());
    }
    // What a choice in an open dialog brings about, the choice itself included.
    Lines Choosing(const std::string& inPopup, long inItem)
    {
        ControlCalls calls;
        Lines lines;
        Run(
            [&](const DialogWindow& window)
            {
            (void)calls.Take();
            window.Choose(inPopup, inItem);
            lines = calls.Take();
        });
        return lines;
    }
};

void Append(Lines& ioLines, const std::string& inLine)
{
    ioLines.push_back(inLine);
}
void Append(Lines& ioLines, const Lines& inLines)
{
    ioLines.insert(ioLines.end(), inLines.begin(), inLines.end());
}

// Lines and groups of lines behind each other.
template <typename... Parts>
Lines All(const Parts&... inParts)
{
    Lines lines;
    (Append(lines, inParts), ...);
    return lines;
}

Lines Styled(const std::string& inPopup)
{
    return {inPopup + " SetStyle 3", inPopup + " SetItemCheckStyle 1",
            inPopup + " NotifyWhenChanged"};
}

Lines Emptied(const std::string& inPopup)
{
    return {inPopup + " DeleteAllItems", inPopup + " SetValue 0"};
}

Lines Disabled(bool inFormat, bool inVariant, bool inMode, bool inRate, bool inOK)
{
    const auto line = [](const std::string& inControl, bool inIsDisabled)
    { return inControl + " SetDisabled " + (inIsDisabled ? "1" : "0"); };
    return {line("FormatTypePopup", inFormat), line("VariantPopup", inVariant),
            line("BitrateModePopup", inMode), line("BitratePopup", inRate), line("OKButton", inOK)};
}

const Lines kAllModes =
    All(Emptied("BitrateModePopup"), "BitrateModePopup AddItem 'Constant Bitrate'",
        "BitrateModePopup SetValue 0", "BitrateModePopup AddItem 'Long-Term Average Bitrate'",
        "BitrateModePopup AddItem 'Variable Bitrate (Constrained)'",
        "BitrateModePopup AddItem 'Variable Bitrate'");
const Lines kFormatAAC =
    All(Emptied("FormatTypePopup"), "FormatTypePopup AddItem 'aac '", "FormatTypePopup SetValue 0");
const Lines kVariantAAC =
    All(Emptied("VariantPopup"), "VariantPopup AddItem 'aac '", "VariantPopup SetValue 0");
const Lines kFormatsOfCAF =
    All(Emptied("FormatTypePopup"), "FormatTypePopup AddItem 'lpcm'", "FormatTypePopup SetValue 0",
        "FormatTypePopup AddItem 'opus'", "FormatTypePopup AddItem 'ulaw'");
const Lines kVariantsOf16Bits = All(Emptied("VariantPopup"), "VariantPopup AddItem 'lpcm 14/16'",
                                    "VariantPopup SetValue 0", "VariantPopup AddItem 'lpcm 12/16'");
const Lines kRatesOf128 = All(Emptied("BitratePopup"), "BitratePopup AddItem '64 kbps'",
                              "BitratePopup AddItem '128 kbps'", "BitratePopup SetValue 1",
                              "BitratePopup AddItem '192 kbps'");
const Lines kUncompressedRate = All(Emptied("BitratePopup"), "BitratePopup AddItem '1.41 Mbps'");
const Lines kModesAndRatesShow = {"VariantPopup SetVisible 0", "BitrateModePopup SetVisible 1",
                                  "VBRQualityPopup SetVisible 0", "BitratePopup SetVisible 1",
                                  "BitrateStaticText SetValue 'Bitrate:'"};
const Lines kVariantsShow = {"VariantPopup SetVisible 1", "BitrateModePopup SetVisible 0",
                             "BitrateStaticText SetValue 'Bitrate:'"};
const Lines kQualityAndButtons =
    All(Styled("VBRQualityPopup"), "VBRQualityPopup SetValue 1", "Dialog SetOkButton OKButton",
        "Dialog SetCancelButton CancelButton", "FlipNodePositionsOnMac OKButton CancelButton");

TEST_F(DialogCalls, OpeningWithVariantsFillsEachPopupAndThenCascades)
{
    EXPECT_EQ(
        Opening(),
        All(Styled("FileTypePopup"), Emptied("FileTypePopup"), "FileTypePopup AddItem 'WAVE'",
            "FileTypePopup AddItem 'AAC'", "FileTypePopup AddItem 'CAF'",
            "FileTypePopup SetValue 2", "FileTypePopup AddItem 'MPEG-4'", Styled("FormatTypePopup"),
            kFormatsOfCAF, Styled("VariantPopup"), kVariantsOf16Bits, Styled("BitrateModePopup"),
            Emptied("BitrateModePopup"), Styled("BitratePopup"), kQualityAndButtons,
            // the cascade
            kFormatsOfCAF, kVariantsOf16Bits, Emptied("BitrateModePopup"), kVariantsShow,
            kUncompressedRate, Disabled(false, false, true, true, false)));
}

TEST_F(DialogCalls, OpeningWithModesOnAFixedFileTypeDisablesItLast)
{
    StoreAAC(0, 128000);
    mFixedFileType = kADTS;
    EXPECT_EQ(Opening(),
              All(Styled("FileTypePopup"), Emptied("FileTypePopup"), "FileTypePopup AddItem 'WAVE'",
                  "FileTypePopup AddItem 'AAC'", "FileTypePopup SetValue 1",
                  "FileTypePopup AddItem 'CAF'", "FileTypePopup AddItem 'MPEG-4'",
                  Styled("FormatTypePopup"), kFormatAAC, Styled("VariantPopup"), kVariantAAC,
                  Styled("BitrateModePopup"), kAllModes, Styled("BitratePopup"), kQualityAndButtons,
                  // the cascade
                  kFormatAAC, kVariantAAC, kAllModes, kModesAndRatesShow, kRatesOf128,
                  Disabled(true, true, false, false, false), "FileTypePopup SetDisabled 1"));
}

TEST_F(DialogCalls, AQualityThatNoItemMeansSelectsNone)
{
    mSettings.SetVBRQuality(100);
    const Lines lines = Opening();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "VBRQualityPopup NotifyWhenChanged"), 1);
    for (const std::string& line : lines)
        EXPECT_FALSE(line.starts_with("VBRQualityPopup SetValue")) << line;
}

TEST_F(DialogCalls, AFileTypeOfBitratesCascadesToTheRates)
{
    StoreAAC(0, 128000, kADTS);
    EXPECT_EQ(Choosing("FileType", 3),
              All("FileTypePopup SetValue 3", kFormatAAC, "FormatTypePopup AddItem 'alac'",
                  kVariantAAC, kAllModes, kModesAndRatesShow, kRatesOf128,
                  Disabled(false, true, false, false, false)));
}

// Rate and quality popup are neither shown nor hidden, whichever of them is on show.
TEST_F(DialogCalls, AFileTypeOfVariantsCascadesToTheOneRate)
{
    StoreAAC(3);
    EXPECT_EQ(Choosing("FileType", 2),
              All("FileTypePopup SetValue 2", Emptied("FormatTypePopup"),
                  "FormatTypePopup AddItem 'lpcm'", "FormatTypePopup AddItem 'opus'",
                  "FormatTypePopup AddItem 'ulaw'", Emptied("VariantPopup"),
                  "VariantPopup AddItem 'lpcm 14/16'", "VariantPopup AddItem 'lpcm 12/16'",
                  // the format before was not big-endian
                  "VariantPopup SetValue 1", Emptied("BitrateModePopup"), kVariantsShow,
                  kUncompressedRate, Disabled(false, false, true, true, false)));
}

TEST_F(DialogCalls, AFormatRefillsWhatStandsBelowIt)
{
    StoreAAC(0, 128000);
    EXPECT_EQ(Choosing("FormatType", 1),
              All("FormatTypePopup SetValue 1", Emptied("VariantPopup"),
                  "VariantPopup AddItem 'alac'", "VariantPopup SetValue 0",
                  Emptied("BitrateModePopup"), kVariantsShow, Emptied("BitratePopup"),
                  "BitratePopup AddItem '680.02 kbps'", Disabled(false, true, true, true, false)));
}

TEST_F(DialogCalls, AVariantRefillsTheOneRate)
{
    EXPECT_EQ(
        Choosing("Variant", 1),
        All("VariantPopup SetValue 1", Emptied("BitratePopup"), "BitratePopup AddItem '1.41 Mbps'",
            // the record has this rate since the opening
            "BitratePopup SetValue 0", Disabled(false, false, true, true, false)));
}

TEST_F(DialogCalls, AModeRefillsTheRates)
{
    StoreAAC(1, 192000);
    EXPECT_EQ(Choosing("BitrateMode", 0),
              All("BitrateModePopup SetValue 0", "VBRQualityPopup SetVisible 0",
                  "BitratePopup SetVisible 1", "BitrateStaticText SetValue 'Bitrate:'",
                  Emptied("BitratePopup"), "BitratePopup AddItem '64 kbps'",
                  "BitratePopup AddItem '128 kbps'", "BitratePopup AddItem '192 kbps'",
                  "BitratePopup SetValue 2", Disabled(false, true, false, false, false)));
}

TEST_F(DialogCalls, VariableModeShowsTheQualityAndLeavesTheRates)
{
    StoreAAC(0, 128000);
    EXPECT_EQ(Choosing("BitrateMode", 3),
              All("BitrateModePopup SetValue 3", "VBRQualityPopup SetVisible 1",
                  "BitratePopup SetVisible 0", "BitrateStaticText SetValue 'VBR Quality:'",
                  Disabled(false, true, false, false, false)));
}

TEST_F(DialogCalls, ARateAndAQualityOnlyValidate)
{
    StoreAAC(0, 128000);
    EXPECT_EQ(Choosing("Bitrate", 2),
              All("BitratePopup SetValue 2", Disabled(false, true, false, false, false)));
    StoreAAC(3);
    EXPECT_EQ(Choosing("VBRQuality", 4),
              All("VBRQualityPopup SetValue 4", Disabled(false, true, false, true, false)));
}

// All variants are of other depths than the audio.
TEST_F(DialogCalls, WithoutAVariantOfTheDepthNoItemIsAdded)
{
    mBitDepth = 20;
    EXPECT_EQ(Choosing("FormatType", 0),
              All("FormatTypePopup SetValue 0", Emptied("VariantPopup"),
                  Emptied("BitrateModePopup"), kVariantsShow, kUncompressedRate,
                  "BitratePopup SetValue 0", Disabled(false, true, true, true, false)));
}

TEST_F(DialogCalls, ImpossibleSettingsDisableOKAsWell)
{
    mRefused = {kULaw};
    const Lines lines = Choosing("FormatType", 2);
    ASSERT_GE(lines.size(), 5u);
    EXPECT_EQ(Lines(lines.end() - 5, lines.end()), Disabled(false, true, true, true, true));
}

}  // namespace
