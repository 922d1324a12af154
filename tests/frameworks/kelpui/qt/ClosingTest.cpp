// How a dialog ends: by its buttons, their keys and the window's own means.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include <QApplication>
#include <QTimer>

namespace
{

using namespace testing_support;

constexpr long kOK = UI_ArchivedDialog::kOK;
constexpr long kCancelled = UI_ArchivedDialog::kCancelled;

TEST(Closing, OKButtonConfirms)
{
    OpenDialog dialog;
    EXPECT_EQ(dialog.Run([&] { dialog.Click(dialog.Push("OKButtonID")); }), kOK);
    EXPECT_FALSE(dialog.WasOpen());
}

TEST(Closing, CancelButtonCancels)
{
    OpenDialog dialog;
    EXPECT_EQ(dialog.Run([&] { dialog.Click(dialog.Push("CancelButtonID")); }), kCancelled);
    EXPECT_FALSE(dialog.WasOpen());
}

TEST(Closing, ReturnAndEnterConfirmFromAPopup)
{
    for (const int key : {Qt::Key_Return, Qt::Key_Enter})
    {
        OpenDialog dialog;
        dialog.Fill("FileTypePopupID", {u"AIFF", u"WAVE"});
        EXPECT_EQ(dialog.Run(
                      [&]
                      {
            EXPECT_EQ(dialog.Focus(), "FileTypePopupID");
            dialog.Press(key);
        }),
                  kOK);
        EXPECT_FALSE(dialog.WasOpen()) << "key " << key;
    }
}

TEST(Closing, ReturnOnTheFocusedCancelButtonCancels)
{
    OpenDialog dialog;
    EXPECT_EQ(dialog.Run(
                  [&]
                  {
        dialog.Push("CancelButtonID").setFocus();
        dialog.Press(Qt::Key_Return);
    }),
              kCancelled);
    EXPECT_FALSE(dialog.WasOpen());
}

TEST(Closing, EscapeCancels)
{
    OpenDialog dialog;
    EXPECT_EQ(dialog.Run([&] { dialog.Press(Qt::Key_Escape); }), kCancelled);
    EXPECT_FALSE(dialog.WasOpen());
}

TEST(Closing, ClosingTheWindowCancels)
{
    OpenDialog dialog;
    int presses = 0;
    dialog.WhenChanged("CancelButtonID", [&] { ++presses; });
    EXPECT_EQ(dialog.Run([&] { dialog.Window().close(); }), kCancelled);
    EXPECT_FALSE(dialog.WasOpen());
    EXPECT_EQ(presses, 1);
}

}  // namespace
