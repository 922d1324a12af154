#include "DesktopPalette.h"

#include "ColorScheme.h"

#include <QApplication>
#include <QPalette>
#include <QSettings>
#include <QStandardPaths>
#include <QStyleFactory>

namespace kelpui::qt
{
namespace
{

// Of a window's background, 0 to 255.
constexpr int kDarkBelow = 128;

struct DarkColor
{
    QPalette::ColorRole mRole;
    QRgb mColor;
    QRgb mDisabled;
};

constexpr DarkColor kDarkColors[] = {
    {QPalette::Window, 0xFF2D2D2D, 0xFF2D2D2D},
    {QPalette::WindowText, 0xFFF2F2F2, 0xFF8C8C8C},
    {QPalette::Base, 0xFF1E1E1E, 0xFF262626},
    {QPalette::AlternateBase, 0xFF262626, 0xFF262626},
    {QPalette::Text, 0xFFF2F2F2, 0xFF8C8C8C},
    {QPalette::PlaceholderText, 0xFF8C8C8C, 0xFF8C8C8C},
    {QPalette::Button, 0xFF3A3A3A, 0xFF303030},
    {QPalette::ButtonText, 0xFFF2F2F2, 0xFF8C8C8C},
    {QPalette::BrightText, 0xFFFF6666, 0xFF8C8C8C},
    {QPalette::ToolTipBase, 0xFF3A3A3A, 0xFF3A3A3A},
    {QPalette::ToolTipText, 0xFFF2F2F2, 0xFFF2F2F2},
    {QPalette::Highlight, 0xFF2F6FBF, 0xFF4A4A4A},
    {QPalette::HighlightedText, 0xFFFFFFFF, 0xFF8C8C8C},
    {QPalette::Link, 0xFF6FA8E8, 0xFF6FA8E8},
};

QPalette DarkPalette()
{
    // The shades of frames follow from the button's colour.
    QPalette palette(QColor(0xFF3A3A3A), QColor(0xFF2D2D2D));
    for (const DarkColor& row : kDarkColors)
    {
        palette.setColor(row.mRole, QColor::fromRgba(row.mColor));
        palette.setColor(QPalette::Disabled, row.mRole, QColor::fromRgba(row.mDisabled));
    }
    return palette;
}

bool IsDarkTheme(const QString& inName)
{
    return inName.endsWith(QLatin1String("-dark"), Qt::CaseInsensitive) ||
           inName.endsWith(QLatin1String(":dark"), Qt::CaseInsensitive);
}

// The newest of GTK's settings that exist decides.
bool AreSettingsDark()
{
    for (const char* name : {"gtk-4.0/settings.ini", "gtk-3.0/settings.ini"})
    {
        const QString path = QStandardPaths::locate(QStandardPaths::GenericConfigLocation,
                                                    QString::fromLatin1(name));
        if (path.isEmpty())
            continue;
        QSettings settings(path, QSettings::IniFormat);
        settings.beginGroup(QStringLiteral("Settings"));
        return settings.value(QStringLiteral("gtk-application-prefer-dark-theme")).toBool() ||
               IsDarkTheme(settings.value(QStringLiteral("gtk-theme-name")).toString());
    }
    return false;
}

// From the most particular wish to the most general.
bool IsDesktopDark()
{
    if (const QString theme = qEnvironmentVariable("GTK_THEME"); !theme.isEmpty())
        return IsDarkTheme(theme);
    const ColorScheme scheme = QueryColorScheme();
    return scheme == ColorScheme::Dark || (scheme == ColorScheme::NoWish && AreSettingsDark());
}

}  // namespace

void FollowDesktopPalette()
{
    const int lightness = QApplication::palette().color(QPalette::Window).lightness();
    if (lightness < kDarkBelow || !IsDesktopDark())
        return;
    // Other styles have colours of their own beside the palette.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(DarkPalette());
}

}  // namespace kelpui::qt
