// ParentWindow: the window that a dialog belongs to.
#ifndef KELPUIQT_PARENTWINDOW_H
#define KELPUIQT_PARENTWINDOW_H

#include <QWidget>
#include <QWindow>

#include <memory>

namespace kelpui::qt
{

/// Keeps a window in front of its parent, as far as the desktop lets it.
class ParentWindow
{
public:
    /// inParent  a QWidget or QWindow of this process, or the number of an X11 window; anything
    ///           else is taken for no parent. Pointers are compared, never followed blindly.
    explicit ParentWindow(void* inParent);

    /// ioWindow  not shown yet. The parent may close before it.
    void Adopt(QWidget& ioWindow) const;

    /// Moves a window to the middle of its parent, and not beyond the screen. It stays where it is
    /// without a parent that has a place.
    void Center(QWidget& ioWindow) const;

private:
    std::unique_ptr<QWindow> mForeign;
    QWindow* mWindow = nullptr;
};

}  // namespace kelpui::qt

#endif
