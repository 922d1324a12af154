// The host's format in the terms of settings.
#include "Tarvo_PlugIns/TarvoAT/private/ExportAudio.h"

#include "tests/Tarvo_PlugIns/TarvoAT/ExportHost.h"

#include <gtest/gtest.h>
#include <kelpcore/utility/NumberText.h>

namespace
{

using namespace testing_support;
using namespace tarvo;

TEST(ExportAudio, FourSampleTypesHaveBitsAndAllOthersNone)
{
    EXPECT_EQ(BitsPerChannelOfSampleType(10), 8u);
    EXPECT_EQ(BitsPerChannelOfSampleType(20), 16u);
    EXPECT_EQ(BitsPerChannelOfSampleType(30), 24u);
    EXPECT_EQ(BitsPerChannelOfSampleType(40), 32u);
    for (const std::int32_t type : {0, 8, 11, 16, 32, 50, -10, 0x7FFFFFFF})
        EXPECT_EQ(BitsPerChannelOfSampleType(type), 0u) << type;
}

struct ExportAudioTest : testing::Test
{
    CallLog mLog;
    ExportFormat mFormat{mLog};
};

TEST_F(ExportAudioTest, ChannelsAreTheLowBitsOfTheCount)
{
    mFormat.mChannelCount = 6;
    EXPECT_EQ(ChannelCountOf(mFormat), 6u);
    mFormat.mChannelCount = 0x100000002;
    EXPECT_EQ(ChannelCountOf(mFormat), 2u);
    mFormat.mChannelCount = -1;
    EXPECT_EQ(ChannelCountOf(mFormat), 0xFFFFFFFFu);
}

TEST_F(ExportAudioTest, TheFilterIsADecimalNumber)
{
    EXPECT_EQ(QueryFilterFileType(mFormat), 0u);
    EXPECT_EQ(mLog, CallLog{"GetFilterId"});
    mFormat.mFilterId = u"1633973363";
    EXPECT_EQ(QueryFilterFileType(mFormat), 0x61647473u);
    mFormat.mFilterId = u"4294967295";
    EXPECT_EQ(QueryFilterFileType(mFormat), 0xFFFFFFFFu);
}

TEST_F(ExportAudioTest, AFilterThatIsNoNumberThrows)
{
    for (const char16_t* const id : {u"abc", u"1633973363x", u"-1", u"4294967296", u"0x61647473"})
    {
        mFormat.mFilterId = id;
        EXPECT_THROW((void)QueryFilterFileType(mFormat), kelpcore::utility::NumberFormatError)
            << Quoted(id);
    }
}

}  // namespace
