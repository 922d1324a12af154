#include "host/ChannelNames.h"

#include <gtest/gtest.h>

namespace
{

TEST(ChannelNamesTest, NamesLabelsUpToTheEndsOfTheTable)
{
    EXPECT_EQ(host::ChannelName(0), "-");
    EXPECT_EQ(host::ChannelName(99), "99");
    EXPECT_EQ(host::ChannelName(100), "L");
    EXPECT_EQ(host::ChannelName(103), "LFE");
    EXPECT_EQ(host::ChannelName(119), "Rw");
    EXPECT_EQ(host::ChannelName(120), "120");
    EXPECT_EQ(host::ChannelName(128), "128");
    EXPECT_EQ(host::ChannelName(129), "Rls");
    EXPECT_EQ(host::ChannelName(137), "Z");
    EXPECT_EQ(host::ChannelName(138), "138");
}

TEST(ChannelNamesTest, JoinsNamesWithBlanks)
{
    EXPECT_EQ(host::ChannelNames({100, 101, 0}), "L R -");
    EXPECT_EQ(host::ChannelNames({}), "");
}

}  // namespace
