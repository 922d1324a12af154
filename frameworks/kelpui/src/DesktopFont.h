// DesktopFont: the base font as desktops keep it in their settings files.
#ifndef KELPUI_DESKTOPFONT_H
#define KELPUI_DESKTOPFONT_H

#include "kelpui/inkwright/Supplier.h"

#include <optional>
#include <string_view>

namespace kelpui::inkwright
{

/// The font of GTK's settings.ini, "gtk-font-name = Cantarell 11" in the group [Settings].
std::optional<BaseFont> ReadGTKFont(std::string_view inFile);

/// The font of KDE's kdeglobals, "font=Noto Sans,10,-1,..." in the group [General].
std::optional<BaseFont> ReadKDEFont(std::string_view inFile);

/// The font of the settings files in a configuration folder: gtk-4.0, gtk-3.0, then KDE's; "Sans"
/// at 10 points when none of them tells one. A size counts from 1 to 200 points.
BaseFont FindDesktopFont(const UTF8String& inConfigFolder);

/// $XDG_CONFIG_HOME, else $HOME/.config, else empty.
UTF8String ConfigFolder();

}  // namespace kelpui::inkwright

#endif
