// How a dialog ends: by its buttons, their keys and the window's own means.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include <QApplication>
#include <QTimer>

#include <new>
#include <stdexcept>

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

TEST(Closing, WindowStaysWhileCancelIsDisabled)
{
    OpenDialog dialog;
    dialog.Button("CancelButtonID").SetDisabled(true);
    dialog.Run(
        [&]
        {
        dialog.Press(Qt::Key_Escape);
        dialog.Window().close();
        EXPECT_TRUE(dialog.Window().isVisible());
    });
    EXPECT_TRUE(dialog.WasOpen());
}

TEST(Closing, ADialogWithoutACancelButtonIsCancelledByEscape)
{
    OpenDialog dialog;
    dialog.Dialog().SetCancelButton({});
    EXPECT_EQ(dialog.Run([&] { dialog.Press(Qt::Key_Escape); }), kCancelled);
    EXPECT_FALSE(dialog.WasOpen());
}

TEST(Closing, TheOwnerMayEndTheDialog)
{
    OpenDialog dialog;
    QTimer::singleShot(50, [&] { dialog.Dialog().EndDialog(kOK); });
    dialog.Dialog().RunDialog();
    EXPECT_EQ(dialog.Dialog().GetResult(), kOK);
}

TEST(Closing, TheEndOfTheApplicationCancels)
{
    OpenDialog dialog;
    QTimer::singleShot(0, [&] { dialog.Dialog().RunDialog(); });
    QTimer::singleShot(50, [] { QApplication::exit(); });
    QApplication::exec();
    EXPECT_EQ(dialog.Dialog().GetResult(), kCancelled);
    EXPECT_FALSE(dialog.Dialog().IsRunning());
}

TEST(Closing, ADialogRunsAgain)
{
    OpenDialog dialog;
    EXPECT_EQ(dialog.Run([&] { dialog.Click(dialog.Push("OKButtonID")); }), kOK);
    EXPECT_EQ(dialog.Run([&] { dialog.Press(Qt::Key_Escape); }), kCancelled);
    EXPECT_EQ(dialog.Run([&] { dialog.Click(dialog.Push("OKButtonID")); }), kOK);
}

TEST(Closing, WhatABoundFunctionThrowsComesOutOfTheRun)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"AIFF", u"WAVE"});
    dialog.WhenChanged("FileTypePopupID", [] { throw std::out_of_range("no such type"); });
    EXPECT_THROW(dialog.Run([&] { dialog.Press(Qt::Key_Down); }), std::out_of_range);
    EXPECT_FALSE(dialog.Dialog().IsRunning());
    EXPECT_EQ(dialog.Dialog().GetResult(), kCancelled);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST(Closing, WhatIsThrownOnOKCancels)
{
    OpenDialog dialog;
    dialog.WhenChanged("OKButtonID", [] { throw std::bad_alloc(); });
    EXPECT_THROW(dialog.Run([&] { dialog.Press(Qt::Key_Return); }), std::bad_alloc);
}

}  // namespace
