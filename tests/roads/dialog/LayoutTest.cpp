// The dialog's texts in all languages: none is cut, and no control lies over another one.
//
// With DIALOG_PICTURES=FOLDER each state is also kept there as a picture.

#include "host/Language.h"
#include "kelpcore/config/Localizer.h"
#include "tests/roads/dialog/DialogPerson.h"
#include "tests/roads/dialog/DialogRoadFixture.h"

#include <QStyleOptionComboBox>
#include <QTest>

#include <cstdlib>

namespace
{

using namespace testing_support;

struct DialogLook
{
    const char* mName;
    const char* mLanguage;
    const char* mType;
    const char* mFormat;
    int mMode;  // item of the mode popup; -1: left alone
};

constexpr DialogLook kLooks[] = {
    {"aac-constant", "en", "m4a", "aac", 0},
    {"aac-average", "en", "m4a", "aac", 1},
    {"aac-variable", "en", "m4a", "aac", 2},
    {"pcm", "en", "caf", "pcm", -1},
    {"alac", "en", "caf", "alac", -1},
    {"fixed-type", "en", "aac", "aac", -1},
    {"german", "de", "m4a", "aac", 1},
    {"german-quality", "de", "mp3", "mp3", 2},
    {"german-pcm", "de", "caf", "pcm", -1},
    {"german-unknown-bitrate", "de", "wav", "ms-adpcm", -1},
    {"japanese", "ja", "m4a", "aac", 1},
    {"japanese-quality", "ja", "mp3", "mp3", 2},
    {"japanese-pcm", "ja", "caf", "pcm", -1},
};

// The room that a control leaves to its text.
QSize RoomOf(const QWidget& inWidget)
{
    const auto* const box = qobject_cast<const QComboBox*>(&inWidget);
    if (!box)
        return inWidget.contentsRect().size();
    QStyleOptionComboBox option;
    option.initFrom(box);
    option.editable = false;
    return box->style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, box)
        .size();
}

QStringList TextsOf(const QWidget& inWidget)
{
    if (const auto* const label = qobject_cast<const QLabel*>(&inWidget))
        return {label->text()};
    if (const auto* const button = qobject_cast<const QPushButton*>(&inWidget))
        return {button->text()};
    QStringList texts;
    if (const auto* const box = qobject_cast<const QComboBox*>(&inWidget))
        for (int item = 0; item < box->count(); ++item)
            texts.push_back(box->itemText(item));
    return texts;
}

QWidgetList ShownControls(const QDialog& inWindow)
{
    QWidgetList shown;
    for (QWidget* const widget : inWindow.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (widget->isVisible())
            shown.push_back(widget);
    return shown;
}

void ExpectRoom(const QWidget& inWidget)
{
    const QSize room = RoomOf(inWidget);
    const QFontMetrics metrics(inWidget.font());
    for (const QString& text : TextsOf(inWidget))
    {
        // Full-width signs have blank at both ends, which needs no room.
        EXPECT_LE(metrics.boundingRect(text).width(), room.width()) << text.toStdString();
        EXPECT_LE(metrics.height(), room.height()) << text.toStdString();
        EXPECT_FALSE(text.contains(QLatin1String("$$$"))) << text.toStdString();
    }
}

void ExpectApart(const QDialog& inWindow)
{
    const QWidgetList shown = ShownControls(inWindow);
    EXPECT_GE(shown.size(), 10);
    for (qsizetype i = 0; i < shown.size(); ++i)
    {
        EXPECT_TRUE(inWindow.rect().contains(shown[i]->geometry()))
            << shown[i]->objectName().toStdString();
        for (qsizetype j = 0; j < i; ++j)
            EXPECT_FALSE(shown[i]->geometry().intersects(shown[j]->geometry()))
                << shown[i]->objectName().toStdString() << " and "
                << shown[j]->objectName().toStdString();
    }
}

// Windows follow their contents once events have been dealt with.
void Settle()
{
    QTest::qWait(20);
}

void KeepPicture(const DialogPerson& inPerson, const std::string& inName)
{
    const char* const folder = std::getenv("DIALOG_PICTURES");
    if (!folder)
        return;
    const QPixmap picture = inPerson.Window().grab();
    EXPECT_TRUE(picture.save(QString::fromLocal8Bit(folder) +
                             QString::fromStdString("/settings-" + inName + ".png")));
}

class LayoutTest : public DialogRoadFixture, public testing::WithParamInterface<DialogLook>
{
protected:
    ~LayoutTest() override { kelpcore::config::Localizer::Get().Clear(); }

    // The dialog in a state, as it is looked at.
    void Show(const std::function<void(const DialogPerson&)>& inLook) const
    {
        host::UseLanguage(ThePlugIn().Bundle(), GetParam().mLanguage);
        host::ExportWish wish;
        wish.mType = GetParam().mType;
        wish.mFormat = GetParam().mFormat;
        const host::DialogRequest request = RequestFor(MakeAudio(kAudioCases[0]), wish);
        AtNextDialog(
            [&](const DialogPerson& inPerson)
            {
            if (GetParam().mMode >= 0)
                inPerson.ChooseByMouse(kModePopup, GetParam().mMode);
            inPerson.Box(kTypePopup).setFocus();
            Settle();
            inLook(inPerson);
            inPerson.Press(Qt::Key_Escape);
        });
        (void)host::RunExportDialog(ThePlugIn(), request);
    }
};

TEST_P(LayoutTest, NoTextIsCutAndNothingOverlaps)
{
    Show(
        [](const DialogPerson& inPerson)
        {
        for (const QWidget* const control : ShownControls(inPerson.Window()))
            ExpectRoom(*control);
        ExpectApart(inPerson.Window());
        KeepPicture(inPerson, GetParam().mName);
    });
}

TEST_P(LayoutTest, ALargerFontHasItsRoomToo)
{
    Show(
        [](const DialogPerson& inPerson)
        {
        QFont font = inPerson.Window().font();
        font.setPointSizeF(2 * font.pointSizeF());
        inPerson.Window().setFont(font);
        Settle();
        for (const QWidget* const control : ShownControls(inPerson.Window()))
            ExpectRoom(*control);
        ExpectApart(inPerson.Window());
        KeepPicture(inPerson, GetParam().mName + std::string("-large"));
    });
}

INSTANTIATE_TEST_SUITE_P(, LayoutTest, testing::ValuesIn(kLooks),
                         [](const auto& inInfo)
                         {
    std::string name = inInfo.param.mName;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
