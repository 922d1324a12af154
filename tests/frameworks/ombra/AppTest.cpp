// The application and what its workspace yields.
#include "ombra/app/App.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

TEST(App, IsOneForTheProcess)
{
    EXPECT_EQ(&ombra::app::App::GetApp(), &ombra::app::App::GetApp());
    ombra::app::AppBase& base = ombra::app::App::GetApp();
    EXPECT_EQ(&base.GetWorkspace(), &ombra::app::App::GetApp().GetWorkspace());
}

TEST(Workspace, YieldsOneSupplierThatKnowsTheDesktop)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(testing::TempDir()) / ("AppTest" + std::to_string(getpid()));
    fs::create_directories(folder / "gtk-4.0");
    std::ofstream(folder / "gtk-4.0/settings.ini") << "[Settings]\ngtk-font-name=Mine 12\n";
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    ombra::app::Workspace workspace;
    const kelpui::inkwright::SupplierInterface& supplier = workspace.GetSupplier();
    fs::remove_all(folder);
    EXPECT_EQ(supplier.GetBaseFont().mFamily, "Mine");
    EXPECT_EQ(supplier.GetBaseFont().mPointSize, 12.0);
    EXPECT_EQ(&workspace.GetSupplier(), &supplier);

    ombra::app::Workspace other;
    EXPECT_NE(&other.GetSupplier(), &supplier);
}
