// Where things stand in the window, and whether they have room.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include "kelpcore/config/Localizer.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QProxyStyle>
#include <QStyleOption>
#include <QTest>

namespace
{

using namespace testing_support;

struct LayoutRow
{
    const char* mLanguage;
    double mPointSize;
};

void PrintTo(const LayoutRow& inRow, std::ostream* outStream)
{
    *outStream << inRow.mLanguage << " at " << inRow.mPointSize;
}

UTF16String Text(const char* inLiteral)
{
    return kelpcore::config::Localizer::Get().Translate(inLiteral);
}

int RoomForText(const QComboBox& inBox)
{
    QStyleOptionComboBox option;
    option.initFrom(&inBox);
    return inBox.style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &inBox)
        .width();
}

int RoomForText(const QPushButton& inButton)
{
    QStyleOptionButton option;
    option.initFrom(&inButton);
    return inButton.style()
        ->subElementRect(QStyle::SE_PushButtonContents, &option, &inButton)
        .width();
}

int RoomForText(const QLabel& inLabel)
{
    return inLabel.contentsRect().width();
}

int LengthOf(const QWidget& inWidget, QString inText)
{
    return inWidget.fontMetrics().horizontalAdvance(
        inText.replace(QLatin1String("&&"), QLatin1String("&")));
}

template <typename WidgetClass>
void ExpectRoomFor(const WidgetClass& inWidget, const QString& inText)
{
    EXPECT_GE(RoomForText(inWidget), LengthOf(inWidget, inText))
        << inWidget.objectName().toStdString() << ": " << inText.toStdString();
    EXPECT_GE(inWidget.height(), inWidget.fontMetrics().height())
        << inWidget.objectName().toStdString();
}

void ExpectRoomForAllTexts(QDialog& inWindow)
{
    for (const QComboBox* box : inWindow.findChildren<QComboBox*>())
        for (int i = 0; box->isVisible() && i < box->count(); ++i)
            ExpectRoomFor(*box, box->itemText(i));
    for (const QLabel* label : inWindow.findChildren<QLabel*>())
        ExpectRoomFor(*label, label->text());
    for (const QPushButton* button : inWindow.findChildren<QPushButton*>())
        ExpectRoomFor(*button, button->text());
}

void ExpectNothingOverlaps(QDialog& inWindow)
{
    QList<QWidget*> widgets;
    for (QWidget* widget : inWindow.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        if (widget->isVisible() && !widget->isWindow())
            widgets.push_back(widget);
    EXPECT_GE(widgets.size(), 10);
    for (qsizetype i = 0; i < widgets.size(); ++i)
    {
        EXPECT_TRUE(inWindow.rect().contains(widgets[i]->geometry()))
            << widgets[i]->objectName().toStdString();
        for (qsizetype j = 0; j < i; ++j)
            EXPECT_FALSE(widgets[i]->geometry().intersects(widgets[j]->geometry()))
                << widgets[i]->objectName().toStdString() << " and "
                << widgets[j]->objectName().toStdString();
    }
}

// The longest texts of the settings: in the variant state, and in that of bit rate modes.
void FillVariants(const OpenDialog& inDialog)
{
    inDialog.Fill("FileTypePopupID", {u"Wave64 (Sony) / Sound Forge Wave64", u"MPEG-4 Audio"});
    inDialog.Fill("FormatTypePopupID", {u"Linear PCM", u"Apple Lossless"});
    inDialog.Fill("VariantPopupID", {u"24-bit big-endian signed integer, 192000 Hz, 8 channels"});
    inDialog.Fill("BitratePopupID",
                  {Text("$$$/tarvo/TarvoATSettingsDialog/UnableToCalculateBitrate=(Unable to "
                        "Calculate Bitrate)")});
}

void FillModes(const OpenDialog& inDialog)
{
    FillVariants(inDialog);
    inDialog.Popup("VariantPopupID").SetVisible(false);
    inDialog.Popup("BitrateModePopupID").SetVisible(true);
    inDialog.Popup("BitratePopupID").SetVisible(false);
    inDialog.Popup("VBRQualityPopupID").SetVisible(true);
    inDialog.Fill(
        "BitrateModePopupID",
        {Text("$$$/tarvo/TarvoATSettingsDialog/LongTermAverageBitrate=Long-Term Average Bitrate"),
         Text("$$$/tarvo/TarvoATSettingsDialog/VariableBitrateContrainted=Variable Bitrate "
              "(Constrained)")});
    inDialog.Text("BitrateStaticTextID")
        .SetValue(Text("$$$/tarvo/TarvoATSettingsDialog/VBRQuality=VBR Quality:"));
}

class Languages : public testing::TestWithParam<LayoutRow>
{
protected:
    void SetUp() override
    {
        const std::string path =
            std::string(RESOURCES) + "/" + GetParam().mLanguage + ".lproj/Localizable.dictionary";
        ASSERT_TRUE(kelpcore::config::Localizer::Get().LoadDictionary(path.c_str()));
        mWishes.mFont.mPointSize = GetParam().mPointSize;
        mWishes.mTitle = Text("$$$/tarvo/TarvoATSettingsDialog/ATSettings=Settings");
    }
    void TearDown() override { kelpcore::config::Localizer::Get().Clear(); }

    DialogWishes mWishes;
};

INSTANTIATE_TEST_SUITE_P(Sizes, Languages,
                         testing::Values(LayoutRow{"en", 10}, LayoutRow{"en", 20},
                                         LayoutRow{"de", 10}, LayoutRow{"de", 20},
                                         LayoutRow{"ja", 10}, LayoutRow{"ja", 20}));

TEST_P(Languages, HaveRoomWithVariants)
{
    OpenDialog dialog(mWishes);
    FillVariants(dialog);
    dialog.Run(
        [&]
        {
        ExpectRoomForAllTexts(dialog.Window());
        ExpectNothingOverlaps(dialog.Window());
    });
}

TEST_P(Languages, HaveRoomWithBitrateModes)
{
    OpenDialog dialog(mWishes);
    FillModes(dialog);
    dialog.Run(
        [&]
        {
        ExpectRoomForAllTexts(dialog.Window());
        ExpectNothingOverlaps(dialog.Window());
    });
}

// The state that is reached by a choice has been laid out for another one.
TEST_P(Languages, HaveRoomAfterAChoice)
{
    OpenDialog dialog(mWishes);
    dialog.Fill("FileTypePopupID", {u"A", u"B"});
    dialog.WhenChanged("FileTypePopupID", [&] { FillModes(dialog); });
    dialog.Run(
        [&]
        {
        dialog.Press(Qt::Key_Down);
        QTest::qWait(20);
        ExpectRoomForAllTexts(dialog.Window());
        ExpectNothingOverlaps(dialog.Window());
    });
}

TEST(Sizes, FollowTheFont)
{
    const auto size = [](double inPoints)
    {
        DialogWishes wishes;
        wishes.mFont.mPointSize = inPoints;
        OpenDialog dialog(wishes);
        QSize window;
        dialog.Run(
            [&]
            {
            EXPECT_EQ(dialog.Box("FileTypePopupID").font().pointSizeF(), inPoints);
            EXPECT_EQ(dialog.Box("FileTypePopupID").font().family().toStdString(), "DejaVu Sans");
            window = dialog.Window().size();
        });
        return window;
    };
    const QSize small = size(8);
    const QSize large = size(24);
    EXPECT_GT(large.width(), small.width() * 3 / 2);
    EXPECT_GT(large.height(), small.height() * 3 / 2);
}

TEST(Sizes, FollowAFontThatChangesWhileTheDialogIsOpen)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        const QSize before = dialog.Window().size();
        QFont font = dialog.Window().font();
        font.setPointSizeF(24);
        dialog.Window().setFont(font);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return dialog.Window().height() > before.height() * 3 / 2; }));
        ExpectRoomForAllTexts(dialog.Window());
        font.setPointSizeF(10);
        dialog.Window().setFont(font);
        EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.Window().size() == before; }));
    });
}

TEST(Sizes, NeverShrinkUnderThePointer)
{
    OpenDialog dialog;
    dialog.Fill("FileTypePopupID", {u"A", u"B"});
    FillVariants(dialog);
    dialog.WhenChanged("FileTypePopupID", [&] { dialog.Fill("VariantPopupID", {u"none"}); });
    dialog.Run(
        [&]
        {
        const QSize before = dialog.Window().size();
        dialog.Press(Qt::Key_Down);
        QTest::qWait(20);
        EXPECT_EQ(dialog.Window().size(), before);
    });
}

TEST(Sizes, AreTheUsersOnlyInAResizableDialog)
{
    for (const bool isResizable : {false, true})
    {
        DialogWishes wishes;
        wishes.mIsResizable = isResizable;
        OpenDialog dialog(wishes);
        dialog.Run(
            [&]
            {
            const QDialog& window = dialog.Window();
            EXPECT_EQ(window.minimumSize() == window.maximumSize(), !isResizable);
            EXPECT_GE(window.maximumWidth(), window.width() + (isResizable ? 100 : 0));
        });
    }
}

TEST(Places, OfBitrateAndQualityAreTheSame)
{
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        // Popups take the size of their items after 20 ms, before the layout has its way again.
        QTest::qWait(100);
        const QRect bitrate = dialog.Box("BitratePopupID").geometry();
        dialog.Popup("BitratePopupID").SetVisible(false);
        dialog.Popup("VBRQualityPopupID").SetVisible(true);
        EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.Box("VBRQualityPopupID").isVisible(); }));
        QTest::qWait(100);
        EXPECT_EQ(dialog.Box("VBRQualityPopupID").geometry(), bitrate);
    });
}

TEST(Places, OfTheWindowAreTheOwnersWish)
{
    DialogWishes wishes;
    wishes.mPosition = {120, 80};
    OpenDialog dialog(wishes);
    dialog.Run([&] { EXPECT_EQ(dialog.Window().pos(), QPoint(120, 80)); });
}

TEST(WindowFrames, HaveATitleBarWithTheFlag)
{
    for (const bool hasTitleBar : {false, true})
    {
        DialogWishes wishes;
        wishes.mFlags = hasTitleBar ? 1 : 0;
        OpenDialog dialog(wishes);
        dialog.Run(
            [&]
            {
            const Qt::WindowFlags flags = dialog.Window().windowFlags();
            EXPECT_EQ(flags.testFlag(Qt::WindowCloseButtonHint), hasTitleBar);
            EXPECT_EQ(flags.testFlag(Qt::FramelessWindowHint), !hasTitleBar);
        });
    }
}

class ButtonLayout : public QProxyStyle
{
public:
    explicit ButtonLayout(int inLayout) : QProxyStyle(QStringLiteral("Fusion")), mLayout(inLayout)
    {
    }
    int styleHint(StyleHint inHint, const QStyleOption* inOption, const QWidget* inWidget,
                  QStyleHintReturn* outData) const override
    {
        return inHint == SH_DialogButtonLayout
                   ? mLayout
                   : QProxyStyle::styleHint(inHint, inOption, inWidget, outData);
    }

private:
    const int mLayout;
};

TEST(ClosingButtons, StandInTheOrderOfTheDesktopToTheEyeAndToTab)
{
    struct Row
    {
        int mLayout;
        bool mIsOKLast;
    };
    for (const Row& row :
         {Row{QDialogButtonBox::WinLayout, false}, Row{QDialogButtonBox::KdeLayout, false},
          Row{QDialogButtonBox::GnomeLayout, true}, Row{QDialogButtonBox::MacLayout, true}})
    {
        QApplication::setStyle(new ButtonLayout(row.mLayout));
        OpenDialog dialog;
        dialog.Run(
            [&]
            {
            const QPushButton& ok = dialog.Push("OKButtonID");
            EXPECT_EQ(ok.x() > dialog.Push("CancelButtonID").x(), row.mIsOKLast) << row.mLayout;
            dialog.Box("BitratePopupID").setFocus();
            dialog.Press(Qt::Key_Tab);
            EXPECT_EQ(dialog.Focus(), row.mIsOKLast ? "CancelButtonID" : "OKButtonID");
            dialog.Press(Qt::Key_Tab);
            EXPECT_EQ(dialog.Focus(), row.mIsOKLast ? "OKButtonID" : "CancelButtonID");
            dialog.Press(Qt::Key_Tab);
            EXPECT_EQ(dialog.Focus(), "FileTypePopupID");
        });
    }
    QApplication::setStyle(QStringLiteral("Fusion"));
}

}  // namespace
