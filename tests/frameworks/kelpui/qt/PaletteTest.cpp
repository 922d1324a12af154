// Light and dark: colours that follow the desktop and can be told apart.
#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include "DesktopPalette.h"

#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QProcess>

#include <cmath>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace
{

using namespace testing_support;
namespace fs = std::filesystem;

bool IsDark()
{
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

double Luminance(const QColor& inColor)
{
    const auto linear = [](double inPart)
    { return inPart <= 0.03928 ? inPart / 12.92 : std::pow((inPart + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(inColor.redF()) + 0.7152 * linear(inColor.greenF()) +
           0.0722 * linear(inColor.blueF());
}

// From 1 to 21; small text wants 4.5.
double Contrast(const QColor& inFirst, const QColor& inSecond)
{
    const double first = Luminance(inFirst);
    const double second = Luminance(inSecond);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QImage Picture(QWidget& inWidget)
{
    return inWidget.grab().toImage();
}

class Palettes : public testing::Test
{
protected:
    Palettes()
        : mFolder(fs::path(testing::TempDir()) / ("PaletteTest" + std::to_string(::getpid())))
    {
        fs::create_directories(mFolder);
        qputenv("XDG_CONFIG_HOME", mFolder.c_str());
        qputenv("XDG_CONFIG_DIRS", mFolder.c_str());
        qunsetenv("GTK_THEME");
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("XDG_RUNTIME_DIR", mFolder.c_str());
    }
    ~Palettes() override
    {
        fs::remove_all(mFolder);
        qunsetenv("XDG_CONFIG_HOME");
        qunsetenv("XDG_CONFIG_DIRS");
        qunsetenv("XDG_RUNTIME_DIR");
        qunsetenv("GTK_THEME");
        QApplication::setPalette(QPalette());
    }

    void Write(const char* inName, const char* inText) const
    {
        fs::create_directories((mFolder / inName).parent_path());
        std::ofstream(mFolder / inName) << inText;
    }
    bool TurnsDark() const
    {
        QApplication::setPalette(QPalette());
        EXPECT_FALSE(IsDark());
        kelpui::qt::FollowDesktopPalette();
        return IsDark();
    }

    const fs::path mFolder;
};

TEST_F(Palettes, StayLightOnALightDesktop)
{
    EXPECT_FALSE(TurnsDark());
    Write("gtk-3.0/settings.ini", "[Settings]\ngtk-theme-name=Adwaita\n");
    EXPECT_FALSE(TurnsDark());
    qputenv("GTK_THEME", "Adwaita");
    EXPECT_FALSE(TurnsDark());
}

TEST_F(Palettes, FollowTheVariable)
{
    qputenv("GTK_THEME", "Adwaita:dark");
    EXPECT_TRUE(TurnsDark());
    qputenv("GTK_THEME", "Yaru-dark");
    EXPECT_TRUE(TurnsDark());
}

TEST_F(Palettes, FollowTheSettingsOfGTK)
{
    Write("gtk-3.0/settings.ini", "[Settings]\ngtk-application-prefer-dark-theme=1\n");
    EXPECT_TRUE(TurnsDark());
    Write("gtk-4.0/settings.ini", "[Settings]\ngtk-application-prefer-dark-theme=0\n");
    EXPECT_FALSE(TurnsDark());  // the newer one decides
}

TEST_F(Palettes, FollowTheNameOfTheTheme)
{
    Write("gtk-4.0/settings.ini", "[Settings]\ngtk-theme-name=Adwaita-dark\n");
    EXPECT_TRUE(TurnsDark());
}

// A bus at the usual place of a session, with a portal on it.
class DesktopSession
{
public:
    DesktopSession(const fs::path& inFolder, const char* inScheme)
    {
        const QString address =
            QStringLiteral("unix:path=") + QString::fromStdString((inFolder / "bus").string());
        mBus.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--session"), QStringLiteral("--nofork"),
                    QStringLiteral("--print-address"), QStringLiteral("--address"), address});
        mHasBus = mBus.waitForStarted() && mBus.waitForReadyRead();
        if (!mHasBus)
            return;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
        mPortal.setProcessEnvironment(environment);
        mPortal.start(QStringLiteral(PORTAL), {QString::fromLatin1(inScheme)});
        EXPECT_TRUE(mPortal.waitForReadyRead());
    }
    ~DesktopSession()
    {
        for (QProcess* process : {&mPortal, &mBus})
        {
            process->terminate();
            process->waitForFinished();
        }
    }
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    bool HasBus() const { return mHasBus; }

private:
    QProcess mBus;
    QProcess mPortal;
    bool mHasBus = false;
};

TEST_F(Palettes, FollowThePortalOfTheDesktop)
{
    const DesktopSession session(mFolder, "1");
    if (!session.HasBus())
        GTEST_SKIP() << "no dbus-daemon is installed";
    EXPECT_TRUE(TurnsDark());
    qputenv("GTK_THEME", "Adwaita");
    EXPECT_FALSE(TurnsDark());  // what is set for one program goes before
}

TEST_F(Palettes, StayLightWhereThePortalSaysSo)
{
    Write("gtk-3.0/settings.ini", "[Settings]\ngtk-application-prefer-dark-theme=1\n");
    const DesktopSession session(mFolder, "2");
    if (!session.HasBus())
        GTEST_SKIP() << "no dbus-daemon is installed";
    EXPECT_FALSE(TurnsDark());
}

TEST_F(Palettes, FollowTheSettingsWhereThePortalHasNoWish)
{
    Write("gtk-3.0/settings.ini", "[Settings]\ngtk-application-prefer-dark-theme=1\n");
    const DesktopSession session(mFolder, "0");
    if (!session.HasBus())
        GTEST_SKIP() << "no dbus-daemon is installed";
    EXPECT_TRUE(TurnsDark());
}

TEST_F(Palettes, HaveReadableTextsWhenDark)
{
    qputenv("GTK_THEME", "Adwaita:dark");
    ASSERT_TRUE(TurnsDark());
    OpenDialog dialog;
    dialog.Run(
        [&]
        {
        const QPalette palette = dialog.Window().palette();
        const auto contrast = [&](QPalette::ColorRole inText, QPalette::ColorRole inGround)
        { return Contrast(palette.color(inText), palette.color(inGround)); };
        EXPECT_GE(contrast(QPalette::WindowText, QPalette::Window), 4.5);
        EXPECT_GE(contrast(QPalette::ButtonText, QPalette::Button), 4.5);
        EXPECT_GE(contrast(QPalette::Text, QPalette::Base), 4.5);
        EXPECT_GE(contrast(QPalette::HighlightedText, QPalette::Highlight), 4.5);
        EXPECT_GE(contrast(QPalette::ToolTipText, QPalette::ToolTipBase), 4.5);
        EXPECT_LT(Picture(dialog.Window()).pixelColor(2, 2).lightness(), 128);
    });
}

TEST_F(Palettes, TellADisabledOKButtonInLightAndDark)
{
    for (const char* theme : {"Adwaita", "Adwaita:dark"})
    {
        qputenv("GTK_THEME", theme);
        (void)TurnsDark();
        OpenDialog dialog;
        dialog.Fill("FileTypePopupID", {u"A", u"B"});
        dialog.WhenChanged("FileTypePopupID",
                           [&] { dialog.Button("OKButtonID").SetDisabled(true); });
        dialog.Run(
            [&]
            {
            QPushButton& ok = dialog.Push("OKButtonID");
            const QImage enabled = Picture(ok);
            dialog.Press(Qt::Key_Down);
            EXPECT_FALSE(ok.isEnabled());
            EXPECT_NE(Picture(ok), enabled) << theme;
            const QPalette palette = ok.palette();
            const QColor ground = palette.color(QPalette::Disabled, QPalette::Button);
            EXPECT_LT(Contrast(palette.color(QPalette::Disabled, QPalette::ButtonText), ground),
                      Contrast(palette.color(QPalette::Active, QPalette::ButtonText), ground) / 2)
                << theme;
        });
    }
}

}  // namespace
