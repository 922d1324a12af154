// Controls on the screen: what they show, and what comes back from them.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include <QApplication>
#include <QTest>
#include <QTimer>

namespace
{

using namespace testing_support;

std::vector<std::string> Items(const QComboBox& inBox)
{
    std::vector<std::string> items;
    for (int i = 0; i < inBox.count(); ++i)
        items.push_back(inBox.itemText(i).toStdString());
    return items;
}

TEST(ShownPopups, ListTheirItemsAndTheChosenOne)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"AIFF", u"WAVE", u"録音"}, 2);
    dialog.Run(
        [&]
        {
        const QComboBox& box = dialog.Box("FileTypePopupID");
        EXPECT_EQ(Items(box), (std::vector<std::string>{"AIFF", "WAVE", "録音"}));
        EXPECT_EQ(box.currentText().toStdString(), "録音");
    });
}

TEST(ShownPopups, TakeTheItemsOfTheForm)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        EXPECT_EQ(Items(dialog.Box("VBRQualityPopupID")),
                  (std::vector<std::string>{"Maximum", "High", "Medium", "Low", "Minimum"}));
    });
}

TEST(ShownPopups, ShowNoItemForAValueThatIsNotThere)
{
    for (const long value : {2L, -1L, 1L << 40})
    {
        OpenDialog dialog;
        dialog.Fill("FileTypePopupID", {u"AIFF", u"WAVE"}, value);
        dialog.Run([&] { EXPECT_EQ(dialog.Box("FileTypePopupID").currentIndex(), -1) << value; });
    }
}

TEST(ShownPopups, ShowEqualTextsAsItemsOfTheirOwn)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"A", u"A", u"A"}, 1);
    dialog.Run([&] { EXPECT_EQ(dialog.Box("FileTypePopupID").currentIndex(), 1); });
}

TEST(ShownControls, ShowWhetherTheyAreVisibleAndTakeInput)
{
    OpenDialog dialog;
    dialog.Popup("FormatTypePopupID").SetDisabled(true);
    dialog.Popup("VariantPopupID").SetVisible(false);
    dialog.Popup("BitrateModePopupID").SetVisible(true);
    dialog.Run(
        [&]
        {
        EXPECT_TRUE(dialog.Box("FileTypePopupID").isEnabled());
        EXPECT_FALSE(dialog.Box("FormatTypePopupID").isEnabled());
        EXPECT_FALSE(dialog.Box("VariantPopupID").isVisible());
        EXPECT_TRUE(dialog.Box("BitrateModePopupID").isVisible());
        EXPECT_TRUE(dialog.Box("BitratePopupID").isVisible());
        EXPECT_FALSE(dialog.Box("VBRQualityPopupID").isVisible());
    });
}

TEST(ShownTexts, ShowAmpersandsAndTagsAsTheyAre)
{
    OpenDialog dialog;
    dialog.Text("BitrateStaticTextID").SetValue(u"<b>R&B</b>");
    dialog.Run(
        [&]
        {
        const QLabel& label = dialog.Label("BitrateStaticTextID");
        EXPECT_EQ(label.text().toStdString(), "<b>R&&B</b>");  // "&" alone marks a shortcut
        EXPECT_EQ(label.textFormat(), Qt::PlainText);
    });
}

TEST(ShownTexts, KeepSingleAmpersandsWithoutABuddy)
{
    DialogWishes wishes;
    const std::string buddy = "<cstring>BitratePopupID</cstring>";
    wishes.mForm.replace(wishes.mForm.find(buddy), buddy.size(), "<cstring/>");
    OpenDialog dialog(wishes);
    dialog.Text("BitrateStaticTextID").SetValue(u"R&B");
    dialog.Run([&] { EXPECT_EQ(dialog.Label("BitrateStaticTextID").text().toStdString(), "R&B"); });
}

TEST(ShownControls, FollowChangesThatNobodyAtTheScreenMade)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        dialog.Fill("FileTypePopupID", {u"CAF"});
        dialog.Popup("FileTypePopupID").SetDisabled(true);
        dialog.Text("BitrateStaticTextID").SetValue(u"Rate");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.Box("FileTypePopupID").isEnabled(); }));
        EXPECT_EQ(Items(dialog.Box("FileTypePopupID")), std::vector<std::string>{"CAF"});
        EXPECT_EQ(dialog.Label("BitrateStaticTextID").text().toStdString(), "Rate");
    });
}

TEST(ShownPopups, SendBackTheItemThatTheUserChooses)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"AIFF", u"WAVE"});
    std::vector<long> chosen;
    dialog.WhenChanged("FileTypePopupID",
                       [&] { chosen.push_back(dialog.Popup("FileTypePopupID").GetValue()); });
    dialog.Run(
        [&]
        {
        dialog.Press(Qt::Key_Down);
        dialog.Press(Qt::Key_Up);
    });
    EXPECT_EQ(chosen, (std::vector<long>{1, 0}));
}

TEST(ShownPopups, SendBackAChoiceByMouse)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"AIFF", u"WAVE", u"CAF"});
    dialog.Run(
        [&]
        {
        QComboBox& box = dialog.Box("FileTypePopupID");
        dialog.Click(box);
        QAbstractItemView& list = *box.view();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(list.window()));
        // Releases count only some time after the list has opened under the pointer.
        QTest::qWait(QApplication::doubleClickInterval() + 50);
        const QRect item = list.visualRect(list.model()->index(2, 0));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, item.center());
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return dialog.Popup("FileTypePopupID").GetValue() == 2; }));
    });
}

// A cascade as the settings have it: the type refills the formats, which show or hide others.
TEST(Cascades, ShowAtOnceWhatAChoiceHasChanged)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"WAVE", u"M4A"});
    dialog.Fill("FormatTypePopupID", {u"Linear PCM"});
    dialog.Popup("FormatTypePopupID").SetDisabled(true);
    dialog.WhenChanged("FileTypePopupID",
                       [&]
                       {
        dialog.Fill("FormatTypePopupID", {u"AAC", u"Apple Lossless"}, 1);
        dialog.Popup("FormatTypePopupID").SetDisabled(false);
        dialog.Popup("VBRQualityPopupID").SetVisible(true);
        dialog.Popup("BitratePopupID").SetVisible(false);
        dialog.Text("BitrateStaticTextID").SetValue(u"Quality:");
        dialog.Button("OKButtonID").SetDisabled(true);
    });
    dialog.Run(
        [&]
        {
        dialog.Press(Qt::Key_Down);
        const QComboBox& formats = dialog.Box("FormatTypePopupID");
        EXPECT_EQ(Items(formats), (std::vector<std::string>{"AAC", "Apple Lossless"}));
        EXPECT_EQ(formats.currentIndex(), 1);
        EXPECT_TRUE(formats.isEnabled());
        EXPECT_TRUE(dialog.Box("VBRQualityPopupID").isVisible());
        EXPECT_FALSE(dialog.Box("BitratePopupID").isVisible());
        EXPECT_EQ(dialog.Label("BitrateStaticTextID").text().toStdString(), "Quality:");
        EXPECT_FALSE(dialog.Push("OKButtonID").isEnabled());
    });
}

TEST(Cascades, TellBoundFunctionsOncePerChoiceAndNotOfTheirOwnChanges)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"WAVE", u"M4A"});
    int types = 0;
    int formats = 0;
    dialog.WhenChanged("FormatTypePopupID", [&] { ++formats; });
    dialog.WhenChanged("FileTypePopupID",
                       [&]
                       {
        ++types;
        dialog.Fill("FormatTypePopupID", {u"AAC", u"Apple Lossless"}, 1);
        dialog.Popup("FileTypePopupID").SetValue(0);
    });
    dialog.Run(
        [&]
        {
        dialog.Press(Qt::Key_Down);
        QTest::qWait(20);
        EXPECT_EQ(dialog.Box("FileTypePopupID").currentIndex(), 0);
    });
    EXPECT_EQ(types, 1);
    EXPECT_EQ(formats, 0);
}

TEST(Cascades, MayRefillThePopupThatWasChosenFrom)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"WAVE", u"M4A"});
    dialog.WhenChanged("FileTypePopupID", [&] { dialog.Fill("FileTypePopupID", {u"CAF"}); });
    dialog.Run(
        [&]
        {
        dialog.Press(Qt::Key_Down);
        EXPECT_EQ(Items(dialog.Box("FileTypePopupID")), std::vector<std::string>{"CAF"});
        EXPECT_EQ(dialog.Box("FileTypePopupID").currentIndex(), 0);
    });
}

TEST(OpenLists, StayOpenWhenTheSameItemsAreFilledInAgain)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"WAVE", u"M4A"});
    dialog.Run(
        [&]
        {
        QComboBox& box = dialog.Box("FileTypePopupID");
        box.showPopup();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(box.view()->window()));
        dialog.Fill("FileTypePopupID", {u"WAVE", u"M4A"}, 1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return box.currentIndex() == 1; }));
        EXPECT_TRUE(box.view()->isVisible());
        box.hidePopup();
    });
}

TEST(AfterARun, ControlsAreObservedByNobody)
{
    OpenDialog dialog;
    dialog.Run([] {});
    dialog.Fill("FileTypePopupID",
                {u"WAVE"});  // a window that is gone must not be asked to show it
    dialog.Run([&] { EXPECT_EQ(dialog.Box("FileTypePopupID").count(), 1); });
}

}  // namespace
