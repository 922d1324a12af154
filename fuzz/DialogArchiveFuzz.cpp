// Forms are files that anybody may change. Whatever they hold, they open as a dialog whose controls
// are the form's, or end in an error with a text.

#include "frameworks/kelpui/src/DialogArchive.h"

#include <kelpui/controls/UI_Popup.h>
#include <kelpui/controls/UI_StaticText.h>
#include <kelpui/ui/UI_ArchivedDialog.h>

#include <cstdint>
#include <cstdlib>
#include <set>
#include <string_view>

namespace
{

using namespace kelpui::ui;

void Require(bool inHolds)
{
    if (!inHolds)
        std::abort();
}

class Supplier : public kelpui::inkwright::SupplierInterface
{
public:
    kelpui::inkwright::BaseFont GetBaseFont() const override { return {"Sans", 10}; }
};

// The one resource is the input.
class Resources : public kelpui::utility::ResourceManager
{
public:
    explicit Resources(std::string_view inBytes) : mBytes(inBytes) {}
    bool HasResource(const UTF8String&, const UTF8String&) const override { return true; }
    bool LoadResource(const UTF8String&, const UTF8String&,
                      kelpui::utility::ResourceBytes& outBytes) const override
    {
        outBytes.assign(mBytes.begin(), mBytes.end());
        return true;
    }

private:
    const std::string_view mBytes;
};

bool IsControl(const UTF8String& inClass)
{
    return inClass == "QComboBox" || inClass == "QPushButton" || inClass == "QLabel";
}

void CheckControl(const ArchivedControl& inArchived, const UI_ArchivedDialog& inDialog)
{
    const ControlRef control = inDialog.GetControlForID(inArchived.mID);
    Require(static_cast<bool>(control) == IsControl(inArchived.mClass));
    if (!control)
        return;
    Require(control->IsDisabled() == !inArchived.mIsEnabled);
    Require(control->IsVisible() == inArchived.mIsVisible);
    if (inArchived.mClass == "QComboBox")
    {
        const auto popup =
            inDialog.GetTypedControlForID<kelpui::controls::UI_Popup>(inArchived.mID);
        Require(popup->GetItems().size() == inArchived.mItems.size());
        Require(popup->GetValue() == inArchived.mCurrentItem);
    }
}

void CheckArchive(const std::vector<ArchivedControl>& inControls)
{
    std::set<UTF8String> ids;
    std::size_t items = 0;
    for (const ArchivedControl& control : inControls)
    {
        Require(!control.mID.empty() && ids.insert(control.mID).second);
        items += control.mItems.size();
    }
    Require(inControls.size() <= kMaxArchiveControls && items <= kMaxArchiveItems);
}

// Null after an error.
boost::intrusive_ptr<UI_ArchivedDialog> Open(std::string_view inBytes)
{
    const Resources resources(inBytes);
    try
    {
        return new UI_ArchivedDialog(Supplier(), &resources, "Form", u"", nullptr, true, false,
                                     Point{}, {}, false, 1);
    }
    catch (const DialogArchiveError& error)
    {
        Require(*error.what() != '\0');
        return {};
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    const std::string_view bytes(reinterpret_cast<const char*>(inData), inSize);
    std::vector<ArchivedControl> controls;
    const ArchiveResult result = ParseDialogArchive(bytes, controls);
    const boost::intrusive_ptr<UI_ArchivedDialog> dialog = Open(bytes);
    Require(static_cast<bool>(dialog) == (result.mFault == ArchiveFault::None));
    if (!dialog)
    {
        Require(controls.empty());
        return 0;
    }
    CheckArchive(controls);
    for (const ArchivedControl& control : controls)
        CheckControl(control, *dialog);
    return 0;
}
