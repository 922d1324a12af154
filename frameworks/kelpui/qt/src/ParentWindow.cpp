#include "ParentWindow.h"

#include <QApplication>
#include <QScreen>

#include <algorithm>
#include <cstdint>

namespace kelpui::qt
{
namespace
{

constexpr std::uintptr_t kLargestXID = 0x1FFFFFFF;

QWindow* FindOwnWindow(void* inParent)
{
    for (QWidget* widget : QApplication::allWidgets())
        if (static_cast<void*>(widget) == inParent)
        {
            (void)widget->window()->winId();  // makes the window where it was not shown yet
            return widget->window()->windowHandle();
        }
    for (QWindow* window : QGuiApplication::allWindows())
        if (static_cast<void*>(window) == inParent)
            return window;
    return nullptr;
}

bool IsX11Window(void* inParent)
{
    return QGuiApplication::platformName() == QLatin1String("xcb") &&
           reinterpret_cast<std::uintptr_t>(inParent) <= kLargestXID;
}

}  // namespace

ParentWindow::ParentWindow(void* inParent)
{
    if (!inParent)
        return;
    mWindow = FindOwnWindow(inParent);
    if (mWindow || !IsX11Window(inParent))
        return;
    mForeign.reset(
        QWindow::fromWinId(static_cast<WId>(reinterpret_cast<std::uintptr_t>(inParent))));
    mWindow = mForeign.get();
}

void ParentWindow::Adopt(QWidget& ioWindow) const
{
    if (!mWindow)
        return;
    (void)ioWindow.winId();
    ioWindow.windowHandle()->setTransientParent(mWindow);
}

void ParentWindow::Center(QWidget& ioWindow) const
{
    if (!mWindow || mWindow->size().isEmpty())
        return;
    // The way round by points serves windows of other programs too, whose frames Qt does not know.
    const QRect parent(mWindow->mapToGlobal(QPoint()), mWindow->size());
    const QRect screen = mWindow->screen()->availableGeometry();
    QRect place = ioWindow.frameGeometry();
    place.moveCenter(parent.center());
    place.moveRight(std::min(place.right(), screen.right()));
    place.moveBottom(std::min(place.bottom(), screen.bottom()));
    place.moveLeft(std::max(place.left(), screen.left()));
    place.moveTop(std::max(place.top(), screen.top()));
    ioWindow.move(place.topLeft());
}

}  // namespace kelpui::qt
