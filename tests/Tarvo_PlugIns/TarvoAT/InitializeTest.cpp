// Selector 1: the diagnostics get known to the host's test framework.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "kelpunittesting/TestRegistry.h"
#include "tests/support/ScriptedPlatform.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

using kelpunittesting::TestRegistry;
using Names = std::vector<std::string>;

TEST(InitializeTest, RegistersTheDiagnosticsOnceWithoutADisplayOrSelector0)
{
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    const testing_support::ScriptedPlatform platform;
    for (int call = 0; call < 3; ++call)
    {
        tarvo::TarvoATInterface plugIn;
        EXPECT_EQ(plugIn.EntryPoint(1, nullptr, nullptr), 0);
    }
    EXPECT_EQ(TestRegistry::GetNames(), (Names{"AudioToolbox"}));
    EXPECT_EQ(TestRegistry::CreateTest("AudioToolbox")->GetName(), "AudioToolbox");
    EXPECT_EQ(platform.Calls(), Names());
}

}  // namespace
