// The stretch of a file in memory.
#include "StreamMakers.h"
#include "platform/AudioToolbox/src/file/streams/StreamWindow.h"
#include "tests/support/MemorySource.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace stream_testing;
using audiotoolbox::streams::StreamWindow;

namespace
{

TEST(StreamWindow, ShowsTheFileAtEveryPosition)
{
    const Bytes bytes = Noise(300000, 1);
    testing_support::MemorySource source(bytes);
    StreamWindow window(source, source.Size());
    UInt32 state = 7;
    for (int i = 0; i < 3000; ++i)
    {
        state = state * 1664525u + 1013904223u;
        const std::size_t position = (state >> 3) % 300001;
        const std::size_t wanted = i % 50 == 0 ? 100000 : (state >> 8) % 5000;
        const auto shown = window.Look(static_cast<SInt64>(position), wanted);
        ASSERT_GE(shown.size(), std::min(wanted, bytes.size() - position));
        ASSERT_LE(shown.size(), bytes.size() - position);
        ASSERT_TRUE(std::equal(shown.begin(), shown.end(),
                               bytes.begin() + static_cast<std::ptrdiff_t>(position)));
    }
}

TEST(StreamWindow, ShowsNothingBehindItsEnd)
{
    testing_support::MemorySource source(Noise(1000, 1));
    StreamWindow window(source, 600);
    EXPECT_EQ(window.Look(590, 100).size(), 10u);
    EXPECT_TRUE(window.Look(600, 1).empty());
    EXPECT_TRUE(window.Look(100000, 1).empty());
    EXPECT_EQ(window.Status(), noErr);
    EXPECT_EQ(window.End(), 600);
}

TEST(StreamWindow, LearnsThatASourceIsShorterThanTold)
{
    testing_support::MemorySource source(Noise(1000, 1));
    StreamWindow window(source, 5000);
    EXPECT_EQ(window.Look(0, 2000).size(), 1000u);
    EXPECT_EQ(window.End(), 1000);
    EXPECT_EQ(window.Status(), noErr);
}

}  // namespace
