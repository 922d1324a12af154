// UI_Popup: a list of items of which one is chosen.
#ifndef KELPUI_CONTROLS_UI_POPUP_H
#define KELPUI_CONTROLS_UI_POPUP_H

#include "kelpui/controls/UI_ControlView.h"

namespace kelpui::controls
{

class KELPUI_EXPORT UI_Popup final : public UI_ControlView
{
public:
    using UI_ControlView::UI_ControlView;
    ~UI_Popup() override;

    /// The item's number, counted from 0.
    long AddItem(const UTF16String& inText);
    /// The value stays as it is.
    void DeleteAllItems();
    const std::vector<UTF16String>& GetItems() const { return mItems; }

    /// Chooses an item; one that is not there is kept as value and shows as none.
    void SetValue(long inItem);
    long GetValue() const { return mValue; }

    /// A check mark beside the chosen item of the open list.
    void SetItemCheckStyle(bool inHasChecks);
    bool HasItemCheckStyle() const { return mHasChecks; }

    /// What a presenter calls when the user chooses: sets the value and tells the bound functions.
    /// Nothing happens for an item that is not there, and in a disabled or hidden popup.
    void ChooseItem(long inItem);

private:
    std::vector<UTF16String> mItems;
    long mValue = 0;
    bool mHasChecks = false;
};

}  // namespace kelpui::controls

#endif
