// The controls' state and who is told of its changes.
#include "kelpui/controls/UI_Button.h"
#include "kelpui/controls/UI_Popup.h"
#include "kelpui/controls/UI_StaticText.h"

namespace kelpui::controls
{

UI_ControlView::~UI_ControlView() = default;

void UI_ControlView::SetDisabled(bool inIsDisabled)
{
    mIsDisabled = inIsDisabled;
    StateChanged();
}

void UI_ControlView::SetVisible(bool inIsVisible)
{
    mIsVisible = inIsVisible;
    StateChanged();
}

void UI_ControlView::SetStyle(long inStyle)
{
    mStyle = inStyle;
    StateChanged();
}

void UI_ControlView::NotifyWhenChanged(const ControlChangedFunction& inFunction)
{
    mFunctions.push_back(inFunction);
}

void UI_ControlView::StateChanged()
{
    if (mObserver)
        mObserver(*this);
}

void UI_ControlView::ChangedByUser()
{
    UI_ControlChangedMessage message(*this);
    // A function may bind another, which the next change is the first for.
    const std::vector<ControlChangedFunction> functions = mFunctions;
    for (const ControlChangedFunction& function : functions)
        if (function)
            function(&message);
}

UI_Button::~UI_Button() = default;

void UI_Button::Press()
{
    if (!IsDisabled() && IsVisible())
        ChangedByUser();
}

UI_Popup::~UI_Popup() = default;

long UI_Popup::AddItem(const UTF16String& inText)
{
    mItems.push_back(inText);
    StateChanged();
    return static_cast<long>(mItems.size()) - 1;
}

void UI_Popup::DeleteAllItems()
{
    mItems.clear();
    StateChanged();
}

void UI_Popup::SetValue(long inItem)
{
    mValue = inItem;
    StateChanged();
}

void UI_Popup::SetItemCheckStyle(bool inHasChecks)
{
    mHasChecks = inHasChecks;
    StateChanged();
}

void UI_Popup::ChooseItem(long inItem)
{
    const bool isThere = inItem >= 0 && static_cast<std::size_t>(inItem) < mItems.size();
    if (!isThere || IsDisabled() || !IsVisible())
        return;
    SetValue(inItem);
    ChangedByUser();
}

UI_StaticText::~UI_StaticText() = default;

void UI_StaticText::SetValue(const UTF16String& inText)
{
    mText = inText;
    StateChanged();
}

}  // namespace kelpui::controls
