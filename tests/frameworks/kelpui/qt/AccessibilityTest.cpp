// What a screen reader is told.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include <QAccessible>

namespace
{

using namespace testing_support;

std::string SpokenName(QWidget& inWidget)
{
    QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(&inWidget);
    return spoken ? spoken->text(QAccessible::Name).toStdString() : "nothing";
}

using Labels = std::vector<std::string>;

// The labels that screen readers tie to a widget.
Labels SpokenLabels(QWidget& inWidget)
{
    Labels labels;
    for (const auto& [other, relation] :
         QAccessible::queryAccessibleInterface(&inWidget)->relations(QAccessible::Label))
        labels.push_back(other->object()->objectName().toStdString());
    return labels;
}

// On X11 and Wayland Qt tells a popup's chosen item in place of its name, and its label beside it.
TEST(SpokenNames, OfFilledPopupsAreTheItemWithTheLabelBesideIt)
{
    OpenDialog dialog;
    dialog.Fill("FormatTypePopupID", {u"AAC", u"Linear PCM"}, 1);
    dialog.Run(
        [&]
        {
        EXPECT_EQ(SpokenName(dialog.Box("FormatTypePopupID")), "Linear PCM");
        EXPECT_EQ(SpokenLabels(dialog.Box("FormatTypePopupID")), Labels{"FormatTypeStaticTextID"});
    });
}

TEST(SpokenNames, OfEmptyPopupsAreThoseOfTheForm)
{
    struct Row
    {
        const char* mID;
        const char* mName;
    };
    OpenDialog dialog;
    dialog.Popup("VBRQualityPopupID").DeleteAllItems();
    dialog.Run(
        [&]
        {
        for (const Row& row :
             {Row{"FileTypePopupID", "File type"}, Row{"FormatTypePopupID", "Format"},
              Row{"VariantPopupID", "Format variant"}, Row{"BitrateModePopupID", "Bitrate mode"},
              Row{"BitratePopupID", "Bitrate"}, Row{"VBRQualityPopupID", "VBR quality"}})
            EXPECT_EQ(SpokenName(dialog.Box(row.mID)), row.mName) << row.mID;
    });
}

TEST(SpokenNames, OfButtonsAndTheWindowAreTheirTexts)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        EXPECT_EQ(SpokenName(dialog.Push("OKButtonID")), "OK");
        EXPECT_EQ(SpokenName(dialog.Push("CancelButtonID")), "Cancel");
        EXPECT_EQ(SpokenName(dialog.Window()), "Settings");
    });
}

TEST(SpokenNames, AreTheLabelsWhereTheFormHasNone)
{
    DialogWishes wishes;
    const std::string name = "$$$/tarvo/TarvoATSettingsDialog/FormatTypeName=Format";
    wishes.mForm.replace(wishes.mForm.find(name), name.size(), "");
    OpenDialog dialog(wishes);
    dialog.Run([&] { EXPECT_EQ(SpokenName(dialog.Box("FormatTypePopupID")), "Format:"); });
}

TEST(Buddies, AreThePopupsOfTheLabels)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        EXPECT_EQ(dialog.Label("FileTypeStaticTextID").buddy(), &dialog.Box("FileTypePopupID"));
        EXPECT_EQ(dialog.Label("FormatTypeStaticTextID").buddy(), &dialog.Box("FormatTypePopupID"));
        EXPECT_EQ(dialog.Label("EncodingStaticTextID").buddy(), &dialog.Box("VariantPopupID"));
        EXPECT_EQ(dialog.Label("BitrateStaticTextID").buddy(), &dialog.Box("BitratePopupID"));
        EXPECT_EQ(SpokenLabels(dialog.Box("BitratePopupID")), Labels{"BitrateStaticTextID"});
    });
}

TEST(Buddies, FollowWhichOfTwoPopupsInOnePlaceShows)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"WAVE", u"M4A"});
    dialog.WhenChanged("FileTypePopupID",
                       [&]
                       {
        const bool isVariable = dialog.Popup("FileTypePopupID").GetValue() == 1;
        dialog.Popup("BitratePopupID").SetVisible(!isVariable);
        dialog.Popup("VBRQualityPopupID").SetVisible(isVariable);
    });
    dialog.Run(
        [&]
        {
        const QLabel& label = dialog.Label("BitrateStaticTextID");
        dialog.Press(Qt::Key_Down);
        EXPECT_EQ(label.buddy(), &dialog.Box("VBRQualityPopupID"));
        EXPECT_EQ(SpokenLabels(dialog.Box("BitratePopupID")), Labels{});
        dialog.Press(Qt::Key_Up);
        EXPECT_EQ(label.buddy(), &dialog.Box("BitratePopupID"));
    });
}

}  // namespace
