// UI_Button: something to press.
#ifndef KELPUI_CONTROLS_UI_BUTTON_H
#define KELPUI_CONTROLS_UI_BUTTON_H

#include "kelpui/controls/UI_ControlView.h"

namespace kelpui::controls
{

class KELPUI_EXPORT UI_Button final : public UI_ControlView
{
public:
    using UI_ControlView::UI_ControlView;
    ~UI_Button() override;

    /// What a presenter calls when the user presses. Nothing happens in a disabled or hidden one.
    void Press();
};

}  // namespace kelpui::controls

#endif
