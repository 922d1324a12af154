// DialogWindow: a dialog that is open, and what a person could do in it.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_DIALOGWINDOW_H
#define TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_DIALOGWINDOW_H

#include <kelpcore/utility/StringConversion.h>
#include <kelpui/controls/UI_Popup.h>
#include <kelpui/controls/UI_StaticText.h>
#include <kelpui/ui/DialogPresenter.h>
#include <kelpui/ui/UI_ArchivedDialog.h>

#include <functional>
#include <string>
#include <vector>

namespace testing_support
{

using kelpui::controls::UI_Button;
using kelpui::controls::UI_ControlView;
using kelpui::controls::UI_Popup;
using kelpui::controls::UI_StaticText;
using kelpui::ui::UI_ArchivedDialog;

/// A control in a line: "Format: aac | *lpcm disabled" with a star at the chosen item,
/// "Variant: hidden" without items, "BitrateStaticText: 'Bitrate:'", "OKButton:".
inline std::string Describe(const UI_ControlView& inControl)
{
    const std::string id(inControl.GetID());
    std::string line;
    if (const auto* popup = dynamic_cast<const UI_Popup*>(&inControl))
    {
        line = id.substr(0, id.size() - std::string("PopupID").size()) + ":";
        for (std::size_t i = 0; i < popup->GetItems().size(); ++i)
            line += std::string(i == 0 ? " " : " | ") +
                    (popup->GetValue() == static_cast<long>(i) ? "*" : "") +
                    std::string(kelpcore::utility::UTF16to8(popup->GetItems()[i]));
    }
    else
        line = id.substr(0, id.size() - 2) + ":";
    if (const auto* text = dynamic_cast<const UI_StaticText*>(&inControl))
        line += " '" + std::string(kelpcore::utility::UTF16to8(text->GetValue())) + "'";
    return line + (inControl.IsDisabled() ? " disabled" : "") +
           (inControl.IsVisible() ? "" : " hidden");
}

class DialogWindow
{
public:
    explicit DialogWindow(UI_ArchivedDialog& ioDialog) : mDialog(ioDialog) {}

    UI_ArchivedDialog& Dialog() const { return mDialog; }
    /// inName is the ID without "PopupID".
    UI_Popup& Popup(const std::string& inName) const
    {
        return *mDialog.GetTypedControlForID<UI_Popup>((inName + "PopupID").c_str());
    }
    std::string Line(const std::string& inName) const { return Describe(Popup(inName)); }
    std::string Label() const { return Describe(*mDialog.GetControlForID("BitrateStaticTextID")); }
    bool CanPressOK() const { return !mDialog.GetOkButton()->IsDisabled(); }

    void Choose(const std::string& inName, long inItem) const { Popup(inName).ChooseItem(inItem); }
    void PressOK() const { mDialog.GetOkButton()->Press(); }
    void PressCancel() const { mDialog.GetCancelButton()->Press(); }

private:
    UI_ArchivedDialog& mDialog;
};

/// The process's presenter for the length of the object. Whatever it leaves open is cancelled.
class ScriptedPresenter : public kelpui::ui::DialogPresenter
{
public:
    using Act = std::function<void(const DialogWindow&)>;

    explicit ScriptedPresenter(const Act& inAct) : mAct(inAct)
    {
        kelpui::ui::SetDialogPresenter(this);
    }
    ~ScriptedPresenter() override { kelpui::ui::SetDialogPresenter(nullptr); }

    void Present(UI_ArchivedDialog& ioDialog) override { mAct(DialogWindow(ioDialog)); }

private:
    const Act mAct;
};

}  // namespace testing_support

#endif
