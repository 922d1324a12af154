#include "ShownControl.h"

#include "QtText.h"

#include <kelpui/controls/UI_Popup.h>
#include <kelpui/controls/UI_StaticText.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>

namespace kelpui::qt
{
namespace
{

using controls::UI_Button;
using controls::UI_ControlView;
using controls::UI_Popup;
using controls::UI_StaticText;

class ShownPopup final : public ShownControl
{
public:
    ShownPopup(UI_Popup& inPopup, QComboBox& inBox, const RunAction& inRun,
               const NoteChange& inNote)
        : ShownControl(&inPopup, inBox, inNote), mPopup(inPopup), mBox(inBox)
    {
        // Of choices by the user only; what ShowState does is none.
        QObject::connect(&inBox, &QComboBox::activated, &inBox,
                         [&inPopup, inRun](int inItem)
                         { inRun([&] { inPopup.ChooseItem(inItem); }); });
    }

private:
    void ShowState() override
    {
        QStringList items;
        for (const UTF16String& item : mPopup.GetItems())
            items.push_back(ToQt(item));
        if (!HasItems(items))
        {
            mBox.clear();
            mBox.addItems(items);
        }
        const long value = mPopup.GetValue();
        const bool isThere = value >= 0 && value < items.size();
        mBox.setCurrentIndex(isThere ? static_cast<int>(value) : -1);
    }
    bool HasItems(const QStringList& inItems) const
    {
        if (mBox.count() != inItems.size())
            return false;
        for (int i = 0; i < mBox.count(); ++i)
            if (mBox.itemText(i) != inItems[i])
                return false;
        return true;
    }

    UI_Popup& mPopup;
    QComboBox& mBox;
};

class ShownText final : public ShownControl
{
public:
    ShownText(UI_StaticText& inText, QLabel& inLabel, const NoteChange& inNote)
        : ShownControl(&inText, inLabel, inNote), mText(inText), mLabel(inLabel)
    {
        mLabel.setTextFormat(Qt::PlainText);
    }

private:
    void ShowState() override
    {
        QString text = ToQt(mText.GetValue());
        // A label of another widget would take it for the mark of a shortcut.
        if (mLabel.buddy())
            text.replace(QLatin1Char('&'), QLatin1String("&&"));
        mLabel.setText(text);
    }

    UI_StaticText& mText;
    QLabel& mLabel;
};

class ShownButton final : public ShownControl
{
public:
    ShownButton(UI_Button& inButton, QPushButton& inPushButton, const RunAction& inRun,
                const NoteChange& inNote)
        : ShownControl(&inButton, inPushButton, inNote)
    {
        QObject::connect(&inPushButton, &QPushButton::clicked, &inPushButton,
                         [&inButton, inRun] { inRun([&] { inButton.Press(); }); });
    }
};

}  // namespace

ShownControl::ShownControl(const ui::ControlRef& inControl, QWidget& inWidget,
                           const NoteChange& inNote)
    : mControl(inControl), mWidget(inWidget)
{
    mControl->SetObserver(
        [this, inNote](UI_ControlView&)
        {
        mHasChanged = true;
        inNote();
    });
}

ShownControl::~ShownControl()
{
    mControl->SetObserver({});
}

void ShownControl::ShowChanges()
{
    if (!mHasChanged)
        return;
    mHasChanged = false;
    ShowState();
    mWidget.setEnabled(!mControl->IsDisabled());
    mWidget.setVisible(mControl->IsVisible());
}

std::unique_ptr<ShownControl> MakeShownControl(const ui::ControlRef& inControl, QWidget& inWidget,
                                               const RunAction& inRun, const NoteChange& inNote)
{
    UI_ControlView* const control = inControl.get();
    if (auto* const popup = dynamic_cast<UI_Popup*>(control))
    {
        auto* const box = qobject_cast<QComboBox*>(&inWidget);
        return box ? std::make_unique<ShownPopup>(*popup, *box, inRun, inNote) : nullptr;
    }
    if (auto* const text = dynamic_cast<UI_StaticText*>(control))
    {
        auto* const label = qobject_cast<QLabel*>(&inWidget);
        return label ? std::make_unique<ShownText>(*text, *label, inNote) : nullptr;
    }
    if (auto* const button = dynamic_cast<UI_Button*>(control))
    {
        auto* const push = qobject_cast<QPushButton*>(&inWidget);
        return push ? std::make_unique<ShownButton>(*button, *push, inRun, inNote) : nullptr;
    }
    // Of an owner's own kind: whether it shows and takes input is all that is known of it.
    return std::make_unique<ShownControl>(inControl, inWidget, inNote);
}

}  // namespace kelpui::qt
