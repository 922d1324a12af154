// The form a window is built from: its texts, and forms that are of no use.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include "kelpcore/utility/StringConversion.h"
#include "tests/support/DictionaryInUse.h"

#include <QApplication>

namespace
{

using namespace testing_support;
using kelpui::ui::DialogArchiveError;

DialogWishes Form(const std::string& inForm)
{
    DialogWishes wishes;
    wishes.mForm = inForm;
    return wishes;
}

std::string Replaced(std::string inText, const std::string& inOld, const std::string& inNew)
{
    const std::size_t place = inText.find(inOld);
    EXPECT_NE(place, std::string::npos) << inOld;
    return inText.replace(place, inOld.size(), inNew);
}

// What the run of a dialog fails with; empty when it does not.
std::string RunError(const std::string& inForm)
{
    try
    {
        OpenDialog dialog(Form(inForm));
        dialog.Dialog().RunDialog();
        return "";
    }
    catch (const DialogArchiveError& error)
    {
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        return error.what();
    }
}

constexpr char kNoForm[] = "The dialog \"Settings\" is no form.";

TEST(FormTexts, AreInTheLanguageOfTheDictionary)
{
    const DictionaryInUse german(
        "$$$/tarvo/TarvoATSettingsDialog/OK=Gut\n"
        "$$$/tarvo/TarvoATSettingsDialog/FileType=Dateityp:\n"
        "$$$/tarvo/TarvoATSettingsDialog/FileTypeName=Art der Datei\n"
        "$$$/tarvo/TarvoATSettingsDialog/QualityMaximum=Höchste\n");
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        EXPECT_EQ(dialog.Push("OKButtonID").text().toStdString(), "Gut");
        EXPECT_EQ(dialog.Push("CancelButtonID").text().toStdString(), "Cancel");
        EXPECT_EQ(dialog.Label("FileTypeStaticTextID").text().toStdString(), "Dateityp:");
        EXPECT_EQ(dialog.Box("FileTypePopupID").accessibleName().toStdString(), "Art der Datei");
        EXPECT_EQ(dialog.Box("VBRQualityPopupID").itemText(0).toStdString(), "Höchste");
    });
}

TEST(FormTexts, GiveWayToTheTitleOfTheDialog)
{
    DialogWishes wishes;
    wishes.mTitle = u"設定";
    OpenDialog dialog(wishes);
    dialog.Run([&] { EXPECT_EQ(dialog.Window().windowTitle().toStdString(), "設定"); });
}

TEST(Forms, ThatAreNoDialogsAreRefused)
{
    EXPECT_EQ(RunError(Replaced(FormText(), "class=\"QDialog\"", "class=\"QWidget\"")), kNoForm);
    EXPECT_EQ(RunError(Replaced(FormText(), "class=\"QDialog\"", "class=\"Nonsense\"")), kNoForm);
}

TEST(Forms, ThatQtDoesNotReadAreRefused)
{
    EXPECT_EQ(RunError(Replaced(FormText(), "<ui version=\"4.0\">", "<ui version=\"3.0\">")),
              kNoForm);
}

TEST(Forms, WithoutALayoutAreRefused)
{
    EXPECT_EQ(RunError("<ui version=\"4.0\"><widget class=\"QDialog\" name=\"D\"/></ui>"), kNoForm);
}

// The archive's reader finds controls where Qt does not look for widgets.
TEST(Forms, WithoutAWidgetForAControlAreRefused)
{
    EXPECT_EQ(RunError(Replaced(FormText(), " <tabstops>",
                                "<customwidgets><widget class=\"QWidget\" name=\"A\"><widget "
                                "class=\"QComboBox\" name=\"B\"/></widget></customwidgets>"
                                " <tabstops>")),
              kNoForm);
}

TEST(Forms, ThatAreNoXMLAreErrorsOfTheDialog)
{
    EXPECT_THROW(OpenDialog(Form("<ui version=\"4.0\"><widget")), DialogArchiveError);
    EXPECT_THROW(OpenDialog(Form("")), DialogArchiveError);
}

TEST(Forms, CutAtAnyByteNeverOpenAWindow)
{
    const std::string form = FormText();
    const std::size_t whole = form.rfind("</ui>") + 5;
    for (std::size_t size = 0; size < whole; size += 97)
        EXPECT_THROW(OpenDialog(Form(form.substr(0, size))), DialogArchiveError)
            << size << " bytes";
}

}  // namespace
