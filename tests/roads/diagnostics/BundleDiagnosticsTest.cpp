// The built bundle's diagnostics, found in the process's registry by whoever has loaded the bundle.
#include "kelpunittesting/TestRegistry.h"
#include "kelpunittesting/TestRunner.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <sstream>

namespace
{

using kelpunittesting::TestRegistry;
using kelpunittesting::TestResult;
using kelpunittesting::TestRunner;
using Names = std::vector<std::string>;

// Stays loaded, since the registry refers to it.
std::int32_t Call(int inSelector)
{
    using Entry = std::int32_t (*)(int inSelector, void* inHandle, void* inHostObject);
    void* const library = dlopen(TEST_PLUG_IN, RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        throw std::runtime_error(dlerror());
    return reinterpret_cast<Entry>(dlsym(library, "TarvoInterface"))(inSelector, nullptr, nullptr);
}

class BundleDiagnostics : public testing::Test
{
protected:
    BundleDiagnostics()
    {
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
    }
};

TEST_F(BundleDiagnostics, AreRegisteredOnceWithoutADisplayOrSelector0)
{
    for (int call = 0; call < 3; ++call)
        EXPECT_EQ(Call(1), 0);
    EXPECT_EQ(TestRegistry::GetNames(), (Names{"AudioToolbox"}));
}

TEST_F(BundleDiagnostics, PassInAnyProcessAndAnyNumberOfTimes)
{
    ASSERT_EQ(Call(1), 0);
    const auto suite = TestRegistry::CreateTest("AudioToolbox");
    ASSERT_TRUE(suite);
    std::string reports[2];
    for (std::string& report : reports)
    {
        std::ostringstream stream;
        Names paths;
        TestRunner runner(stream,
                          [&](const TestResult& result)
                          {
            paths.push_back(result.mPath);
            EXPECT_TRUE(result.mPassed) << result;
        });
        runner.Run(*suite);
        EXPECT_EQ(paths, (Names{"AudioToolbox/FormatTests/QueryInputFormats",
                                "AudioToolbox/FormatTests/QueryOuputFormats"}));
        report = stream.str();
    }
    EXPECT_NE(reports[0], "");
    EXPECT_EQ(reports[0], reports[1]);
}

}  // namespace
