// UI_ArchivedDialog: a dialog whose controls come from an archive among the resources.
//
// The archive of a dialog NAME is the resource NAME.ui, a form as Qt Designer keeps it. A control
// is a widget with an object name, which is its ID: QComboBox a popup, QPushButton a button, QLabel
// a static text. What the form states (items, chosen item, text, enabled, visible) is where they
// start. Controls in one cell of a layout take turns: the owner shows one of them at a time, and a
// label whose buddy is one of them belongs to the one that shows.
// Texts of the form that begin with "$$$/" are keys with their English text, for the localiser.
#ifndef KELPUI_UI_UI_ARCHIVEDDIALOG_H
#define KELPUI_UI_UI_ARCHIVEDDIALOG_H

#include "kelpcore/utility/NonOptionalDynamicCast.h"
#include "kelpui/inkwright/Supplier.h"
#include "kelpui/ui/UI_Dialog.h"
#include "kelpui/utility/ResourceManager.h"

#include <boost/function.hpp>

#include <stdexcept>

namespace kelpui::ui
{

/// what() is a localised text in UTF-8 that names the dialog and says what is wrong with it.
class KELPUI_EXPORT DialogArchiveError : public std::runtime_error
{
public:
    explicit DialogArchiveError(const UTF8String& inText);
    ~DialogArchiveError() override;
};

struct Point
{
    double mX = 0;
    double mY = 0;
};

/// Makes controls of an owner's own kind for a widget's class and ID; null for those that it leaves
/// to the archive. An empty factory leaves all.
using NodeFactory = boost::function<boost::intrusive_ptr<controls::UI_ControlView>(
    const UTF8String& inClass, const UTF8String& inID)>;

/// A text of an archive as the user reads it; other texts than keys stay as they are.
KELPUI_EXPORT UTF16String TranslateArchiveText(const UTF8String& inText);

using ControlRef = boost::intrusive_ptr<controls::UI_ControlView>;

class KELPUI_EXPORT UI_ArchivedDialog final : public UI_Dialog
{
public:
    /// inResources     null: there is no archive
    /// inParentWindow  the toolkit's window that the dialog belongs to; may be null
    /// inIsModal       dialogs are modal; false throws std::invalid_argument
    /// inIsResizable   whether the user may change the size
    /// inPosition      (0, 0): where the desktop puts it
    /// inRemembers     whether size and position are kept for the next run; ignored
    /// inFlags         1: has a title bar
    /// Throws DialogArchiveError for an archive that is missing or damaged.
    UI_ArchivedDialog(const inkwright::SupplierInterface& inSupplier,
                      const utility::ResourceManager* inResources, const UTF8String& inName,
                      const UTF16String& inTitle, void* inParentWindow, bool inIsModal,
                      bool inIsResizable, Point inPosition, const NodeFactory& inNodeFactory,
                      bool inRemembers, unsigned inFlags);
    ~UI_ArchivedDialog() override;

    /// Null without such a control.
    ControlRef GetControlForID(const UTF8String& inID) const;

    /// Throws kelpcore::utility::InvalidTypeConversion where there is no control of that ID and
    /// class.
    template <typename Control>
    boost::intrusive_ptr<Control> GetTypedControlForID(const UTF8String& inID) const
    {
        return boost::intrusive_ptr<Control>(
            &kelpcore::utility::NonOptionalDynamicCast<Control>(GetControlForID(inID).get()));
    }

    /// Through the process's presenter; throws std::runtime_error without one.
    void RunDialog() override;

    // For presenters.
    const std::vector<ControlRef>& GetControls() const { return mControls; }
    const utility::ResourceBytes& GetArchive() const { return mArchive; }
    const UTF16String& GetTitle() const { return mTitle; }
    void* GetParentWindow() const { return mParentWindow; }
    bool IsResizable() const { return mIsResizable; }
    Point GetPosition() const { return mPosition; }
    unsigned GetFlags() const { return mFlags; }
    const inkwright::BaseFont& GetBaseFont() const { return mBaseFont; }

private:
    std::vector<ControlRef> mControls;  // in the archive's order
    utility::ResourceBytes mArchive;
    UTF16String mTitle;
    void* mParentWindow;
    bool mIsResizable;
    Point mPosition;
    unsigned mFlags;
    inkwright::BaseFont mBaseFont;
};

}  // namespace kelpui::ui

#endif
