// A dialog without a mouse.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include <QTest>

namespace
{

using namespace testing_support;

using Names = std::vector<std::string>;

// Where inKey leads to, until it comes round.
Names Walk(const OpenDialog& inDialog, Qt::Key inKey, Qt::KeyboardModifiers inModifiers = {})
{
    const std::string first = inDialog.Focus();
    Names names = {first};
    for (int i = 0; i < 20; ++i)
    {
        QTest::keyClick(&inDialog.Window(), inKey, inModifiers);
        if (inDialog.Focus() == first)
            break;
        names.push_back(inDialog.Focus());
    }
    return names;
}

TEST(Focus, StartsOnTheFirstControl)
{
    OpenDialog dialog;
    dialog.Run([&] { EXPECT_EQ(dialog.Focus(), "FileTypePopupID"); });
}

TEST(Focus, IsSeenFromTheStart)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        QComboBox& box = dialog.Box("FileTypePopupID");
        const QImage focused = box.grab().toImage();
        dialog.Box("FormatTypePopupID").setFocus();
        EXPECT_NE(box.grab().toImage(), focused);
    });
}

TEST(Focus, StartsOnTheFirstControlThatTakesInput)
{
    OpenDialog dialog;
    dialog.Popup("FileTypePopupID").SetDisabled(true);
    dialog.Popup("FormatTypePopupID").SetVisible(false);
    dialog.Run([&] { EXPECT_EQ(dialog.Focus(), "VariantPopupID"); });
}

TEST(Tab, GoesDownTheFormAndAround)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        EXPECT_EQ(Walk(dialog, Qt::Key_Tab),
                  (Names{"FileTypePopupID", "FormatTypePopupID", "VariantPopupID", "BitratePopupID",
                         "OKButtonID", "CancelButtonID"}));
    });
}

TEST(Tab, GoesUpWithShift)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        EXPECT_EQ(Walk(dialog, Qt::Key_Backtab, Qt::ShiftModifier),
                  (Names{"FileTypePopupID", "CancelButtonID", "OKButtonID", "BitratePopupID",
                         "VariantPopupID", "FormatTypePopupID"}));
    });
}

TEST(Tab, PassesWhatIsHiddenOrDisabledAndFindsWhatHasTakenItsPlace)
{
    OpenDialog dialog;
    dialog.Popup("VariantPopupID").SetVisible(false);
    dialog.Popup("BitrateModePopupID").SetVisible(true);
    dialog.Popup("BitratePopupID").SetVisible(false);
    dialog.Popup("VBRQualityPopupID").SetVisible(true);
    dialog.Popup("FormatTypePopupID").SetDisabled(true);
    dialog.Button("OKButtonID").SetDisabled(true);
    dialog.Run(
        [&]
        {
        EXPECT_EQ(Walk(dialog, Qt::Key_Tab), (Names{"FileTypePopupID", "BitrateModePopupID",
                                                    "VBRQualityPopupID", "CancelButtonID"}));
    });
}

TEST(Return, DoesNothingWhileOKIsDisabled)
{
    OpenDialog dialog;
    dialog.Button("OKButtonID").SetDisabled(true);
    dialog.Run([&] { dialog.Press(Qt::Key_Return); });
    EXPECT_TRUE(dialog.WasOpen());
}

TEST(Space, PressesTheButtonThatHasTheFocus)
{
    OpenDialog dialog;
    EXPECT_EQ(dialog.Run(
                  [&]
                  {
        dialog.Push("OKButtonID").setFocus();
        dialog.Press(Qt::Key_Space);
    }),
              UI_ArchivedDialog::kOK);
}

TEST(Typing, ChoosesTheItemThatBeginsSo)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"AIFF", u"MP3", u"MPEG-4", u"WAVE"});
    std::vector<long> chosen;
    dialog.WhenChanged("FileTypePopupID",
                       [&] { chosen.push_back(dialog.Popup("FileTypePopupID").GetValue()); });
    dialog.Run([&] { dialog.Type("mpe"); });
    EXPECT_EQ(chosen, (std::vector<long>{1, 2}));  // "m", then "mpe"; "mp" is still the first
}

TEST(Typing, ChoosesInAnOpenList)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"AIFF", u"MP3", u"WAVE"});
    dialog.Run(
        [&]
        {
        QComboBox& box = dialog.Box("FileTypePopupID");
        dialog.Press(Qt::Key_Space);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(box.view()->window()));
        QTest::keyClicks(box.view(), "w");
        EXPECT_EQ(dialog.Popup("FileTypePopupID").GetValue(), 0);  // not before it is confirmed
        QTest::keyClick(box.view(), Qt::Key_Return);
        EXPECT_EQ(dialog.Popup("FileTypePopupID").GetValue(), 2);
        EXPECT_TRUE(dialog.Dialog().IsRunning());
    });
}

TEST(Escape, ClosesAnOpenListFirst)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"AIFF", u"MP3"});
    dialog.Run(
        [&]
        {
        QComboBox& box = dialog.Box("FileTypePopupID");
        box.showPopup();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(box.view()->window()));
        QTest::keyClick(box.view(), Qt::Key_Escape);
        EXPECT_FALSE(box.view()->isVisible());
        EXPECT_EQ(dialog.Popup("FileTypePopupID").GetValue(), 0);
    });
    EXPECT_TRUE(dialog.WasOpen());
}

}  // namespace
