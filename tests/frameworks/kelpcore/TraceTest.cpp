// Tracing and thread numbers.
#include "kelpcore/debug/Trace.h"
#include "kelpcore/threads/Thread.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include <unistd.h>

namespace
{

namespace debug = kelpcore::debug;

void Collect(void* ioText, std::string_view inLine)
{
    static_cast<std::string*>(ioText)->append(inLine);
}

class Tracing : public ::testing::Test
{
protected:
    ~Tracing() override
    {
        debug::SetTraceLevel(0);
        debug::SetTraceSink(nullptr, nullptr);
    }
};

}  // namespace

TEST_F(Tracing, IsOffAtStart)
{
    for (const int level : {-1, 0, 1, 5, 7})
        EXPECT_FALSE(debug::TraceEnabled("area", level, true)) << level;
    EXPECT_GE(debug::TraceChangeCount(), 1u);
}

TEST_F(Tracing, LevelsUpToTheSetOneAreOn)
{
    debug::SetTraceLevel(6);
    EXPECT_TRUE(debug::TraceEnabled("area", 1, false));
    EXPECT_TRUE(debug::TraceEnabled("area", 6, false));
    EXPECT_FALSE(debug::TraceEnabled("area", 7, false));
    EXPECT_FALSE(debug::TraceEnabled("area", 0, false));
    debug::SetTraceLevel(0);
    EXPECT_FALSE(debug::TraceEnabled("area", 1, false));
}

TEST_F(Tracing, TheChangeCountGrowsWithEverySetting)
{
    const unsigned int before = debug::TraceChangeCount();
    debug::SetTraceLevel(5);
    EXPECT_EQ(debug::TraceChangeCount(), before + 1);
    debug::SetTraceLevel(5);
    EXPECT_EQ(debug::TraceChangeCount(), before + 2);
    EXPECT_TRUE(debug::TraceEnabled("area", 5, true));
    EXPECT_EQ(debug::TraceChangeCount(), before + 2);
}

TEST_F(Tracing, AnAreaExistsOnceAPlaceHasNotedIt)
{
    debug::TraceEnabled("tests.only asked", 5, false);
    EXPECT_FALSE(debug::TraceAreaExists("tests.only asked"));
    debug::TraceEnabled("tests.noted", 5, true);
    EXPECT_TRUE(debug::TraceAreaExists("tests.noted"));
}

TEST_F(Tracing, LinesGoToTheSink)
{
    std::string text;
    debug::SetTraceSink(&Collect, &text);
    debug::Trace("<1> <area> <5> one\n");
    debug::Trace("two\n");
    EXPECT_EQ(text, "<1> <area> <5> one\ntwo\n");
}

TEST_F(Tracing, WithoutASinkLinesGoToStandardError)
{
    ::testing::internal::CaptureStderr();
    debug::Trace("to the error stream\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "to the error stream\n");
}

TEST_F(Tracing, ASinkMayTraceItself)
{
    debug::SetTraceSink(
        [](void*, std::string_view)
        {
        debug::SetTraceSink(nullptr, nullptr);
        debug::Trace("inner\n");
        },
        nullptr);
    ::testing::internal::CaptureStderr();
    debug::Trace("outer\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "inner\n");
}

TEST(ThreadID, IsTheOneOfTheOperatingSystem)
{
    const std::uint64_t own = kelpcore::threads::GetCurrentThreadID();
    EXPECT_EQ(own, static_cast<std::uint64_t>(::gettid()));
    std::uint64_t other = 0;
    std::thread([&other] { other = kelpcore::threads::GetCurrentThreadID(); }).join();
    EXPECT_NE(other, own);
    EXPECT_NE(other, 0u);
}
