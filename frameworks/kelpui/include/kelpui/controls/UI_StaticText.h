// UI_StaticText: a text that the user reads, such as the label of another control.
#ifndef KELPUI_CONTROLS_UI_STATICTEXT_H
#define KELPUI_CONTROLS_UI_STATICTEXT_H

#include "kelpui/controls/UI_ControlView.h"

namespace kelpui::controls
{

class KELPUI_EXPORT UI_StaticText final : public UI_ControlView
{
public:
    using UI_ControlView::UI_ControlView;
    ~UI_StaticText() override;

    void SetValue(const UTF16String& inText);
    const UTF16String& GetValue() const { return mText; }

private:
    UTF16String mText;
};

}  // namespace kelpui::controls

#endif
