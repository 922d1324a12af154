// The run of the settings dialog as a whole: opening, OK and Cancel, and what can go wrong.
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/SettingsDialogFixture.h"

#include <stdexcept>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;
using tarvo::TarvoATSettingsDialog;

class DialogRun : public SettingsDialog
{
protected:
    // The text of the error that a run ends in before anything opens.
    std::string ErrorOfRun()
    {
        try
        {
            Run([](const DialogWindow&) { ADD_FAILURE() << "a window opened"; });
        }
        catch (const kelpui::ui::DialogArchiveError& error)
        {
            return error.what();
        }
        return "none";
    }
};

std::string Without(std::string inText, const std::string& inPart, const std::string& inNew)
{
    const std::size_t at = inText.find(inPart);
    EXPECT_NE(at, std::string::npos) << inPart;
    return inText.replace(at, inPart.size(), inNew);
}

// The layout's place of a control of the form.
std::string CellOf(const std::string& inID)
{
    const std::string form = FormText();
    const std::size_t at = form.rfind("<item ", form.find(" name=\"" + inID + "\""));
    return form.substr(at, form.find('>', at) - at);
}

TEST_F(DialogRun, PopupsThatTakeTurnsStandInOnePlace)
{
    EXPECT_EQ(CellOf("FileTypePopupID"), "<item row=\"0\" column=\"1\"");
    EXPECT_EQ(CellOf("VariantPopupID"), "<item row=\"2\" column=\"1\"");
    EXPECT_EQ(CellOf("BitrateModePopupID"), CellOf("VariantPopupID"));
    EXPECT_EQ(CellOf("BitratePopupID"), "<item row=\"3\" column=\"1\"");
    EXPECT_EQ(CellOf("VBRQualityPopupID"), CellOf("BitratePopupID"));
}

// A format that has variants shows or hides neither, so that the form's word counts.
TEST_F(DialogRun, TheFormStartsWithTheBitrateOnShowAndTheQualityHidden)
{
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_TRUE(window.Popup("Bitrate").IsVisible());
        EXPECT_FALSE(window.Popup("VBRQuality").IsVisible());
        EXPECT_EQ(window.Popup("VBRQuality").GetItems().size(), 5u);
    });
}

TEST_F(DialogRun, OKReplacesTheCallersRecord)
{
    EXPECT_TRUE(Run(
        [](const DialogWindow& window)
        {
        window.Choose("FileType", 3);
        window.Choose("BitrateMode", 3);
        window.Choose("VBRQuality", 1);
        window.PressOK();
    }));
    EXPECT_EQ(mSettings.GetAudioFileTypeID(), kM4A);
    EXPECT_EQ(mSettings.GetFormatID(), kAAC);
    EXPECT_EQ(mSettings.GetSampleRate(), 44100.0);
    EXPECT_EQ(mSettings.GetChannelsPerFrame(), 2u);
    EXPECT_EQ(mSettings.GetBitrateMode(), 3u);
    EXPECT_EQ(mSettings.GetVBRQuality(), 96u);
}

TEST_F(DialogRun, CancelLeavesTheCallersRecordByteForByte)
{
    StoreAAC(0, 128001);
    mSettings.SetVBRQuality(100);
    TarvoATPrivateSettings before = mSettings;
    EXPECT_FALSE(Run(
        [](const DialogWindow& window)
        {
        window.Choose("FileType", 0);
        window.Choose("FileType", 3);
        window.Choose("BitrateMode", 3);
        window.PressCancel();
    }));
    EXPECT_EQ(std::memcmp(&mSettings, &before, sizeof before), 0);
}

TEST_F(DialogRun, AWindowThatIsClosedOtherwiseIsCancelled)
{
    EXPECT_FALSE(Run([](const DialogWindow& window) { window.Choose("FileType", 3); }));
    EXPECT_FALSE(Run([](const DialogWindow& window) { window.Dialog().EndDialog(2); }));
    EXPECT_EQ(mSettings.GetAudioFileTypeID(), kCAF);
}

TEST_F(DialogRun, TheRecordStaysTheCallersUntilOK)
{
    Run(
        [this](const DialogWindow& window)
        {
        window.Choose("FileType", 3);
        EXPECT_EQ(mSettings.GetAudioFileTypeID(), kCAF);
    });
}

TEST_F(DialogRun, TheWindowHasTitleParentAndButtons)
{
    int parent = 0;
    mParent = &parent;
    Run(
        [&](const DialogWindow& window)
        {
        EXPECT_EQ(window.Dialog().GetTitle(), u"Apple Audio Toolbox Settings");
        EXPECT_EQ(window.Dialog().GetParentWindow(), &parent);
        EXPECT_FALSE(window.Dialog().IsResizable());
        EXPECT_EQ(window.Dialog().GetFlags(), 1u);
        EXPECT_EQ(window.Dialog().GetPosition().mX, 0.0);
        EXPECT_EQ(window.Dialog().GetPosition().mY, 0.0);
        EXPECT_EQ(window.Dialog().GetOkButton()->GetID(), "OKButtonID");
        EXPECT_EQ(window.Dialog().GetCancelButton()->GetID(), "CancelButtonID");
    });
}

TEST_F(DialogRun, AFixedFileTypeCannotBeLeftAndShowsTheCallersRecordAsItIsNow)
{
    StoreAAC(1, 96000);
    mFixedFileType = kADTS;  // told after the dialog was made
    const TarvoATPrivateSettings settings = After(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(window.Line("FileType"), "FileType: WAVE | *AAC | CAF | MPEG-4 disabled");
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *96 kbps | 192 kbps | 1.5 Mbps");
        window.Choose("FileType", 3);
        EXPECT_EQ(window.Popup("FileType").GetValue(), 1);
    });
    EXPECT_EQ(settings.GetAudioFileTypeID(), kADTS);
}

TEST_F(DialogRun, WithoutAFixedFileTypeTheCopyOfTheConstructorCounts)
{
    const ScriptedPresenter presenter(
        [](const DialogWindow& window)
        { EXPECT_EQ(window.Line("FileType"), "FileType: WAVE | AAC | *CAF | MPEG-4"); });
    TarvoATSettingsDialog dialog(mSettings, 44100, 2, 16);
    mSettings.SetAudioFileTypeID(kM4A);
    EXPECT_FALSE(dialog.RunModal(nullptr));
}

TEST_F(DialogRun, ARecordWithoutRateAndChannelsTakesTheAudios)
{
    mRate = 48000;
    mChannels = 1;
    mScript.mEncoders[kULaw].mChannelCounts = {1, 2};
    mScript.mEncoders[kAAC].mChannelCounts = {1, 2};
    StoreAAC(0, 128000);
    mSettings.SetSampleRate(0);
    mSettings.SetChannelsPerFrame(0);
    const TarvoATPrivateSettings settings = After(DoNothing);
    EXPECT_EQ(settings.GetSampleRate(), 48000.0);
    EXPECT_EQ(settings.GetChannelsPerFrame(), 1u);
}

TEST_F(DialogRun, ASecondRunOpensAWindowOfItsOwn)
{
    TarvoATSettingsDialog dialog(mSettings, 44100, 2, 16);
    boost::intrusive_ptr<UI_ArchivedDialog> first;
    {
        const ScriptedPresenter presenter([&](const DialogWindow& window)
                                          { first = &window.Dialog(); });
        EXPECT_FALSE(dialog.RunModal(nullptr));
    }
    const ScriptedPresenter presenter(
        [&](const DialogWindow& window)
        {
        EXPECT_NE(&window.Dialog(), first.get());
        EXPECT_EQ(window.Line("VBRQuality"),
                  "VBRQuality: Maximum | *High | Medium | Low | Minimum hidden");
        window.Choose("FileType", 0);
        window.PressOK();
    });
    EXPECT_TRUE(dialog.RunModal(nullptr));
    EXPECT_EQ(mSettings.GetAudioFileTypeID(), kWAVE);
}

TEST_F(DialogRun, MakingTheDialogAsksNobodyForAnything)
{
    tarvo::module::Terminate();
    mPlatform.ForgetCalls();
    const TarvoATSettingsDialog dialog(mSettings, 44100, 2, 16);
    EXPECT_EQ(mPlatform.Calls(), std::vector<std::string>());
}

TEST_F(DialogRun, EveryControlHasToBeThereInItsClass)
{
    for (const char* id : {"FileTypePopupID", "FormatTypePopupID", "VariantPopupID",
                           "BitrateModePopupID", "BitratePopupID", "VBRQualityPopupID",
                           "BitrateStaticTextID", "OKButtonID", "CancelButtonID"})
    {
        const std::string name = "name=\"" + std::string(id) + "\"";
        const DialogArchiveFile absent(Without(FormText(), name, "name=\"Other\""));
        EXPECT_THROW(Run(DoNothing), kelpcore::utility::InvalidTypeConversion) << id;
        std::string form = FormText();
        const std::size_t at = form.rfind("class=\"", form.find(name));
        form.replace(at, form.find(' ', at) - at,
                     id == std::string("OKButtonID") ? "class=\"QLabel\"" : "class=\"QCheckBox\"");
        const DialogArchiveFile changed(form);
        EXPECT_THROW(Run(DoNothing), kelpcore::utility::InvalidTypeConversion) << id;
    }
}

TEST_F(DialogRun, AnArchiveThatIsMissingOrDamagedIsAnErrorWithAText)
{
    {
        const DialogArchiveFile damaged(FormText().substr(0, 100));
        EXPECT_EQ(ErrorOfRun(), "The dialog \"FormatOptions\" is damaged at line 4.");
    }
    // Its file is gone now.
    EXPECT_EQ(ErrorOfRun(), "The dialog \"FormatOptions\" is not among the resources.");
    EXPECT_EQ(mSettings.GetAudioFileTypeID(), kCAF);
}

TEST_F(DialogRun, AModuleThatWasNotStartedHasNoArchive)
{
    tarvo::module::Terminate();
    EXPECT_THROW(Run(DoNothing), kelpui::ui::DialogArchiveError);
}

TEST_F(DialogRun, NobodyToShowItIsAnError)
{
    TarvoATSettingsDialog dialog(mSettings, 44100, 2, 16);
    EXPECT_THROW(dialog.RunModal(nullptr), std::runtime_error);
}

TEST_F(DialogRun, AnExceptionOutOfTheRunLeavesTheRecord)
{
    EXPECT_THROW(Run(
                     [](const DialogWindow& window)
                     {
        window.Choose("FileType", 3);
        throw std::logic_error("toolkit");
    }),
                 std::logic_error);
    EXPECT_EQ(mSettings.GetAudioFileTypeID(), kCAF);
}

}  // namespace
