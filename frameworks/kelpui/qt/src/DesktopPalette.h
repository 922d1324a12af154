// DesktopPalette: dark windows on a dark desktop.
#ifndef KELPUIQT_DESKTOPPALETTE_H
#define KELPUIQT_DESKTOPPALETTE_H

namespace kelpui::qt
{

/// Gives the application a dark palette where the desktop asks for one (GTK_THEME, the
/// settings portal, GTK's settings.ini) and Qt has not seen to it itself.
void FollowDesktopPalette();

}  // namespace kelpui::qt

#endif
