#include "Tarvo_PlugIns/Common/SDKGlue/TarvoSDKGlueUtilities.h"

#include "tests/TarvoSDK/RecordingHost.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>

namespace
{

using namespace testing_support;
using HouseLayout = kelpmediatypes::AudioChannelDescriptions;
using HostLayout = std::vector<tarvo::AudioChannelDescription>;

TEST(Glue, LabelsKeepTheirNumberBothWays)
{
    for (const std::uint32_t number : {0u, 1u, 100u, 101u, 106u, 0x7FFFFFFFu, 0xFFFFFFFFu})
    {
        const auto host = static_cast<tarvo::AudioChannelLabel>(number);
        const auto house = static_cast<kelpmediatypes::AudioChannelLabel>(number);
        EXPECT_EQ(ConvertAudioChannelLabel(house), host) << number;
        EXPECT_EQ(ConvertAudioChannelLabel(host), house) << number;
    }
}

TEST(Glue, SampleTypesKeepTheirNumberBothWays)
{
    for (const std::int32_t number : {0, 10, 15, 20, 30, 40, -1})
    {
        const auto host = static_cast<tarvo::AudioSampleType>(number);
        const auto house = static_cast<kelpmediatypes::AudioSampleType>(number);
        EXPECT_EQ(ConvertSampleType(house), host) << number;
        EXPECT_EQ(ConvertSampleType(host), house) << number;
    }
}

TEST(Glue, ProcessingSampleTypes)
{
    struct Row
    {
        int mType;
        int mProcessing;
    };
    for (const Row& row : {Row{10, 1}, Row{20, 2}, Row{30, 3}, Row{40, 4}, Row{0, 0}, Row{15, 0},
                           Row{50, 0}, Row{-10, 0}})
        EXPECT_EQ(ConvertToDSPSampleType(static_cast<tarvo::AudioSampleType>(row.mType)),
                  row.mProcessing)
            << row.mType;
}

TEST(GlueLayout, OfAFormatIsItsLabelsInOrder)
{
    CallLog log;
    RecordingFormat format(log);
    format.mChannelCount = 2;
    format.mLabels = {101, 7};

    const auto house = GetAudioChannelLayout<HouseLayout>(format);
    ASSERT_EQ(house.size(), 2u);
    EXPECT_EQ(house[0].mLabel, kelpmediatypes::AudioChannelLabel::Right);
    EXPECT_EQ(static_cast<std::uint32_t>(house[1].mLabel), 7u);
    EXPECT_EQ(log, (CallLog{"GetChannelCount", "GetChannelLabel 0", "GetChannelLabel 1"}));

    const auto host = GetAudioChannelLayout<HostLayout>(format);
    ASSERT_EQ(host.size(), 2u);
    EXPECT_EQ(host[0].mLabel, tarvo::kTarvoChannelLabelRight);
    EXPECT_EQ(static_cast<std::uint32_t>(host[1].mLabel), 7u);
}

TEST(GlueLayout, OfAFormatWithoutChannelsIsEmpty)
{
    CallLog log;
    RecordingFormat format(log);
    EXPECT_TRUE(GetAudioChannelLayout<HouseLayout>(format).empty());
    EXPECT_EQ(log, (CallLog{"GetChannelCount"}));
}

TEST(GlueLayout, OfAnAbsurdChannelCountRaisesBeforeAnyLabelIsRead)
{
    CallLog log;
    RecordingFormat format(log);
    format.mChannelCount = -1;
    EXPECT_THROW((void)GetAudioChannelLayout<HouseLayout>(format), std::length_error);
    EXPECT_EQ(log, (CallLog{"GetChannelCount"}));
}

TEST(GlueLayout, AnEmptyOneCallsNothing)
{
    CallLog log;
    RecordingFormat format(log);
    format.mChannelCount = 2;
    SetAudioChannelLayout({}, format);
    EXPECT_TRUE(log.empty());
}

HouseLayout Labels(std::initializer_list<std::uint32_t> inLabels)
{
    HouseLayout layout;
    for (const std::uint32_t label : inLabels)
        layout.push_back({static_cast<kelpmediatypes::AudioChannelLabel>(label)});
    return layout;
}

TEST(GlueLayout, ALongerOneIsCutAtTheChannelCount)
{
    CallLog log;
    RecordingFormat format(log);
    format.mChannelCount = 2;
    SetAudioChannelLayout(Labels({100, 101, 102}), format);
    EXPECT_EQ(log, (CallLog{"GetChannelCount", "SetChannelLabel 0 100", "SetChannelLabel 1 101"}));
}

TEST(GlueLayout, AShorterOneLeavesTheOtherChannels)
{
    CallLog log;
    RecordingFormat format(log);
    format.mChannelCount = 3;
    SetAudioChannelLayout(Labels({0xFFFFFFFF}), format);
    EXPECT_EQ(log, (CallLog{"GetChannelCount", "SetChannelLabel 0 4294967295"}));
}

TEST(GlueLayout, NothingIsSetOnAFormatOfANegativeChannelCount)
{
    CallLog log;
    RecordingFormat format(log);
    format.mChannelCount = std::numeric_limits<std::int64_t>::min();
    SetAudioChannelLayout(Labels({100}), format);
    EXPECT_EQ(log, (CallLog{"GetChannelCount"}));
}

}  // namespace
