// ShownControl: a control of a dialog and the widget that shows it.
#ifndef KELPUIQT_SHOWNCONTROL_H
#define KELPUIQT_SHOWNCONTROL_H

#include <kelpui/ui/UI_ArchivedDialog.h>

#include <QWidget>

#include <functional>
#include <memory>

namespace kelpui::qt
{

/// Runs something that the user did; bound functions run in it. It lets no exception out.
using RunAction = std::function<void(const std::function<void()>& inAction)>;

/// Told after each change of a control, whoever made it.
using NoteChange = std::function<void()>;

class ShownControl
{
public:
    /// Observes the control until the object dies. The widget may die before.
    ShownControl(const ui::ControlRef& inControl, QWidget& inWidget, const NoteChange& inNote);
    virtual ~ShownControl();
    ShownControl(const ShownControl&) = delete;
    ShownControl& operator=(const ShownControl&) = delete;

    /// Brings the widget up to date when the control has changed since the last time.
    void ShowChanges();

protected:
    /// Widgets are compared before they are touched: an open list stays open when nothing in it
    /// changes.
    virtual void ShowState() {}

private:
    const ui::ControlRef mControl;
    QWidget& mWidget;
    bool mHasChanged = true;
};

/// Null when the widget cannot show a control of that class.
std::unique_ptr<ShownControl> MakeShownControl(const ui::ControlRef& inControl, QWidget& inWidget,
                                               const RunAction& inRun, const NoteChange& inNote);

}  // namespace kelpui::qt

#endif
