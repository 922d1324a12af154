#include "kelpui/ui/UI_ArchivedDialog.h"

#include "DialogArchive.h"
#include "kelpcore/ZString.h"
#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/StringConversion.h"
#include "kelpui/controls/UI_Popup.h"
#include "kelpui/controls/UI_StaticText.h"
#include "kelpui/ui/DialogPresenter.h"

namespace kelpui::ui
{
namespace
{

constexpr char kMissing[] =
    "$$$/kelpui/ArchivedDialog/Missing=The dialog \"@0\" is not among the resources.";
constexpr char kNoPresenter[] =
    "$$$/kelpui/ArchivedDialog/NoPresenter=There is nothing to show a dialog with.";

struct FaultText
{
    ArchiveFault mFault;
    const char* mText;  // @0 the dialog, @1 the detail
};

constexpr FaultText kFaultTexts[] = {
    {ArchiveFault::NotXML,
     "$$$/kelpui/ArchivedDialog/NotXML=The dialog \"@0\" is damaged at line @1."},
    {ArchiveFault::NotAForm, "$$$/kelpui/ArchivedDialog/NotAForm=The dialog \"@0\" is no form."},
    {ArchiveFault::DuplicateID,
     "$$$/kelpui/ArchivedDialog/DuplicateID=The dialog \"@0\" has the control \"@1\" twice."},
    {ArchiveFault::BadValue,
     "$$$/kelpui/ArchivedDialog/BadValue=The dialog \"@0\" has an impossible value at line @1."},
    {ArchiveFault::TooLarge, "$$$/kelpui/ArchivedDialog/TooLarge=The dialog \"@0\" is too large."},
};

DialogArchiveError MakeError(const char* inText, const UTF8String& inName,
                             const UTF8String& inDetail = {})
{
    using kelpcore::utility::UTF8to16;
    return DialogArchiveError(kelpcore::utility::UTF16to8(
        kelpcore::ZString(inText, UTF8to16(inName), UTF8to16(inDetail))));
}

void LoadArchive(const utility::ResourceManager* inResources, const UTF8String& inName,
                 utility::ResourceBytes& outBytes, std::vector<ArchivedControl>& outControls)
{
    if (!inResources || !inResources->LoadResource(inName, "ui", outBytes))
        throw MakeError(kMissing, inName);
    const ArchiveResult result =
        ParseDialogArchive({outBytes.data(), outBytes.size()}, outControls);
    for (const FaultText& row : kFaultTexts)
        if (row.mFault == result.mFault)
            throw MakeError(row.mText, inName, result.mDetail);
}

ControlRef MakePopup(const ArchivedControl& inControl)
{
    const boost::intrusive_ptr<controls::UI_Popup> popup(new controls::UI_Popup(inControl.mID));
    for (const UTF8String& item : inControl.mItems)
        popup->AddItem(TranslateArchiveText(item));
    popup->SetValue(inControl.mCurrentItem);
    return popup;
}

ControlRef MakeButton(const ArchivedControl& inControl)
{
    return new controls::UI_Button(inControl.mID);
}

ControlRef MakeStaticText(const ArchivedControl& inControl)
{
    const boost::intrusive_ptr<controls::UI_StaticText> text(
        new controls::UI_StaticText(inControl.mID));
    text->SetValue(TranslateArchiveText(inControl.mText));
    return text;
}

struct ControlClass
{
    const char* mWidget;
    ControlRef (*mMake)(const ArchivedControl& inControl);
};

constexpr ControlClass kControlClasses[] = {
    {"QComboBox", &MakePopup},
    {"QPushButton", &MakeButton},
    {"QLabel", &MakeStaticText},
};

// Null for a widget that is no control, such as a frame around others.
ControlRef MakeControl(const ArchivedControl& inControl, const NodeFactory& inNodeFactory)
{
    if (inNodeFactory)
        if (const ControlRef own = inNodeFactory(inControl.mClass, inControl.mID))
            return own;
    for (const ControlClass& row : kControlClasses)
        if (inControl.mClass == row.mWidget)
            return row.mMake(inControl);
    return ControlRef();
}

// A run that nobody ended, be it for an exception, counts as cancelled.
class RunEnd
{
public:
    explicit RunEnd(UI_Dialog& inDialog) : mDialog(inDialog) {}
    ~RunEnd() { mDialog.EndDialog(UI_Dialog::kCancelled); }
    RunEnd(const RunEnd&) = delete;
    RunEnd& operator=(const RunEnd&) = delete;

private:
    UI_Dialog& mDialog;
};

}  // namespace

DialogArchiveError::DialogArchiveError(const UTF8String& inText)
    : std::runtime_error(inText.c_str())
{
}

DialogArchiveError::~DialogArchiveError() = default;

UTF16String TranslateArchiveText(const UTF8String& inText)
{
    return inText.starts_with("$$$/") ? kelpcore::config::Localizer::Get().Translate(inText.c_str())
                                      : kelpcore::utility::UTF8to16(inText);
}

UI_ArchivedDialog::UI_ArchivedDialog(const inkwright::SupplierInterface& inSupplier,
                                     const utility::ResourceManager* inResources,
                                     const UTF8String& inName, const UTF16String& inTitle,
                                     void* inParentWindow, bool inIsModal, bool inIsResizable,
                                     Point inPosition, const NodeFactory& inNodeFactory, bool,
                                     unsigned inFlags)
    : mTitle(inTitle),
      mParentWindow(inParentWindow),
      mIsResizable(inIsResizable),
      mPosition(inPosition),
      mFlags(inFlags),
      mBaseFont(inSupplier.GetBaseFont())
{
    if (!inIsModal)
        throw std::invalid_argument("UI_ArchivedDialog is modal");
    std::vector<ArchivedControl> archived;
    LoadArchive(inResources, inName, mArchive, archived);
    for (const ArchivedControl& widget : archived)
    {
        const ControlRef control = MakeControl(widget, inNodeFactory);
        if (!control)
            continue;
        control->SetDisabled(!widget.mIsEnabled);
        control->SetVisible(widget.mIsVisible);
        mControls.push_back(control);
    }
}

UI_ArchivedDialog::~UI_ArchivedDialog() = default;

ControlRef UI_ArchivedDialog::GetControlForID(const UTF8String& inID) const
{
    for (const ControlRef& control : mControls)
        if (control->GetID() == inID)
            return control;
    return ControlRef();
}

void UI_ArchivedDialog::RunDialog()
{
    DialogPresenter* const presenter = GetDialogPresenter();
    if (!presenter)
        throw std::runtime_error(
            kelpcore::utility::UTF16to8(kelpcore::ZString(kNoPresenter)).c_str());
    BeginRun();
    const RunEnd end(*this);
    presenter->Present(*this);
}

}  // namespace kelpui::ui
