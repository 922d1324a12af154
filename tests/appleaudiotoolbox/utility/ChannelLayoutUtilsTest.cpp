// Channel labels and layouts in the host's terms and in the platform's.
#include "appleaudiotoolbox/utility/ATUtils.h"

#include "CoreAudio/PublicUtility/CAAudioChannelLayout.h"

#include <cstring>
#include <memory>
#include <set>
#include <vector>

#include <gtest/gtest.h>

using namespace appleaudiotoolbox;

namespace
{

using HostLabel = kelpmediatypes::AudioChannelLabel;
using Labels = std::vector<UInt32>;

struct Destroyer
{
    void operator()(AudioChannelLayout* inLayout) const { CAAudioChannelLayout::Destroy(inLayout); }
};
using LayoutPtr = std::unique_ptr<AudioChannelLayout, Destroyer>;

UInt32 ToHost(UInt32 inPlatformLabel)
{
    return static_cast<UInt32>(TranslateChannelLabel(inPlatformLabel));
}

UInt32 ToPlatform(UInt32 inHostLabel)
{
    return TranslateChannelLabel(HostLabel{inHostLabel});
}

Labels Numbers(const kelpmediatypes::AudioChannelDescriptions& inLabels)
{
    Labels numbers;
    for (const kelpmediatypes::AudioChannelDescription& label : inLabels)
        numbers.push_back(static_cast<UInt32>(label.mLabel));
    return numbers;
}

Labels OfTag(UInt32 inTag)
{
    AudioChannelLayout layout = {};
    layout.mChannelLayoutTag = inTag;
    return Numbers(ConvertChannelLayout(&layout));
}

Labels OfBitmap(UInt32 inBitmap)
{
    AudioChannelLayout layout = {};
    layout.mChannelLayoutTag = 0x10000;
    layout.mChannelBitmap = inBitmap;
    return Numbers(ConvertChannelLayout(&layout));
}

LayoutPtr OfDescriptions(const Labels& inPlatformLabels)
{
    LayoutPtr layout(CAAudioChannelLayout::Create(static_cast<UInt32>(inPlatformLabels.size())));
    AudioChannelDescription* description = layout->mChannelDescriptions;
    for (const UInt32 label : inPlatformLabels)
    {
        description->mChannelLabel = label;
        description->mChannelFlags = 0xFFFFFFFF;
        description->mCoordinates[1] = 90.0F;
        ++description;
    }
    return layout;
}

LayoutPtr FromHost(const Labels& inHostLabels)
{
    kelpmediatypes::AudioChannelDescriptions labels;
    for (const UInt32 label : inHostLabels)
        labels.push_back({HostLabel{label}});
    return LayoutPtr(ConvertChannelLayout(labels));
}

struct LabelRow
{
    UInt32 mHost;
    UInt32 mPlatform;
};

constexpr LabelRow kLabels[] = {
    {100, 1},  {101, 2},   {102, 3},   {103, 4},   {104, 5},   {105, 6},  {106, 9},  {107, 7},
    {108, 8},  {109, 10},  {110, 11},  {111, 12},  {112, 13},  {113, 15}, {114, 14}, {115, 16},
    {116, 18}, {117, 17},  {118, 35},  {119, 36},  {129, 33},  {130, 34}, {131, 37}, {132, 38},
    {133, 39}, {134, 200}, {135, 201}, {136, 202}, {137, 203},
};

TEST(ChannelLabels, EveryPairTranslatesBothWays)
{
    EXPECT_EQ(std::size(kLabels), 29U);
    for (const LabelRow& row : kLabels)
    {
        EXPECT_EQ(ToPlatform(row.mHost), row.mPlatform) << "host label " << row.mHost;
        EXPECT_EQ(ToHost(row.mPlatform), row.mHost) << "platform label " << row.mPlatform;
    }
}

TEST(ChannelLabels, HeadphonesAreLeftAndRightOnTheWayIn)
{
    EXPECT_EQ(ToHost(301), 100U);
    EXPECT_EQ(ToHost(302), 101U);
    EXPECT_EQ(ToPlatform(ToHost(301)), 1U);
}

TEST(ChannelLabels, TheHostNamesNoOthers)
{
    std::set<UInt32> known = {301, 302};
    for (const LabelRow& row : kLabels)
        known.insert(row.mPlatform);
    for (UInt32 label = 0; label < 1000; ++label)
        if (known.count(label) == 0)
        {
            EXPECT_EQ(ToHost(label), 0U) << label;
        }
    for (const UInt32 label : {0xFFFFFFFFU, 0x10001U, 0x80000001U})
        EXPECT_EQ(ToHost(label), 0U) << label;
}

TEST(ChannelLabels, ThePlatformCallsAllOthersDiscrete)
{
    for (UInt32 label = 120; label <= 128; ++label)
        EXPECT_EQ(ToPlatform(label), 400U) << label;
    for (const UInt32 label : {0U, 1U, 99U, 138U, 400U, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_EQ(ToPlatform(label), 400U) << label;
}

TEST(LayoutFromDescriptions, TranslatesEachLabelInItsPlace)
{
    EXPECT_EQ(Numbers(ConvertChannelLayout(OfDescriptions({1, 2, 3, 999, 301, 302, 33}).get())),
              (Labels{100, 101, 102, 0, 100, 101, 129}));
    EXPECT_EQ(Numbers(ConvertChannelLayout(OfDescriptions({0xFFFFFFFF, 42}).get())),
              (Labels{0, 0}));
    EXPECT_EQ(Numbers(ConvertChannelLayout(OfDescriptions({}).get())), Labels{});
}

TEST(LayoutFromBitmap, AscendsByTheBit)
{
    EXPECT_EQ(OfBitmap(0x3F), (Labels{100, 101, 102, 103, 104, 105}));
    EXPECT_EQ(OfBitmap(0x1C0), (Labels{107, 108, 106}));
    EXPECT_EQ(OfBitmap(0xFFFFFFFF), (Labels{100, 101, 102, 103, 104, 105, 107, 108, 106, 109, 110,
                                            111, 112, 114, 113, 115, 117, 116}));
    EXPECT_EQ(OfBitmap(0x20000), (Labels{116}));
    EXPECT_EQ(OfBitmap(0xFFFC0000), Labels{});
    EXPECT_EQ(OfBitmap(0), Labels{});
}

TEST(LayoutFromBitmap, IgnoresDescriptions)
{
    const LayoutPtr layout = OfDescriptions({3, 4});
    layout->mChannelLayoutTag = 0x10000;
    layout->mChannelBitmap = 0x1;
    EXPECT_EQ(Numbers(ConvertChannelLayout(layout.get())), (Labels{100}));
}

struct TagRow
{
    UInt32 mTag;
    Labels mLabels;
};

TEST(LayoutFromTag, HasTheLabelsOfTheTable)
{
    // clang-format off
    const TagRow rows[] = {
        {0x640001, {0}},
        {0x650002, {100, 101}},
        {0x660002, {100, 101}},
        {0x670002, {132, 133}},
        {0x680002, {0, 0}},
        {0x690002, {0, 0}},
        {0x6A0002, {100, 101}},
        {0x6B0004, {134, 135, 136, 137}},
        {0x6C0004, {100, 101, 104, 105}},
        {0x6D0005, {100, 101, 104, 105, 102}},
        {0x6E0006, {100, 101, 104, 105, 102, 106}},
        {0x6F0008, {100, 101, 104, 105, 102, 106, 109, 110}},
        {0x700008, {100, 101, 104, 105, 112, 113, 115, 116}},
        {0x710003, {100, 101, 102}},
        {0x720003, {102, 100, 101}},
        {0x730004, {100, 101, 102, 106}},
        {0x740004, {102, 100, 101, 106}},
        {0x750005, {100, 101, 102, 104, 105}},
        {0x760005, {100, 101, 104, 105, 102}},
        {0x770005, {100, 102, 101, 104, 105}},
        {0x780005, {102, 100, 101, 104, 105}},
        {0x790006, {100, 101, 102, 103, 104, 105}},
        {0x7A0006, {100, 101, 104, 105, 102, 103}},
        {0x7B0006, {100, 102, 101, 104, 105, 103}},
        {0x7C0006, {102, 100, 101, 104, 105, 103}},
        {0x7D0007, {100, 101, 102, 103, 104, 105, 106}},
        {0x7E0008, {100, 101, 102, 103, 104, 105, 107, 108}},
        {0x7F0008, {102, 107, 108, 100, 101, 104, 105, 103}},
        {0x800008, {100, 101, 102, 103, 104, 105, 129, 130}},
        {0x810008, {100, 101, 104, 105, 102, 103, 107, 108}},
        {0x820008, {100, 101, 102, 103, 104, 105, 132, 133}},
        {0x830003, {100, 101, 106}},
        {0x840004, {100, 101, 104, 105}},
        {0x850003, {100, 101, 103}},
        {0x860004, {100, 101, 103, 106}},
        {0x870005, {100, 101, 103, 104, 105}},
        {0x880004, {100, 101, 102, 103}},
        {0x890005, {100, 101, 102, 103, 106}},
        {0x8A0005, {100, 101, 104, 105, 103}},
        {0x8B0006, {100, 101, 104, 105, 102, 106}},
        {0x8C0007, {100, 101, 104, 105, 102, 129, 130}},
        {0x8D0006, {102, 100, 101, 104, 105, 106}},
        {0x8E0007, {102, 100, 101, 104, 105, 106, 103}},
        {0x8F0007, {102, 100, 101, 104, 105, 129, 130}},
        {0x900008, {102, 100, 101, 104, 105, 129, 130, 106}},
        {0x910010, {100, 101, 102, 114, 109, 110, 104, 105, 112, 113, 118, 119, 0, 106, 103, 131}},
        {0x920015, {100, 101, 102, 114, 109, 110, 104, 105, 112, 113, 118, 119, 0, 106, 103, 131, 107, 108, 0, 0, 0}},
        {0x940007, {100, 101, 104, 105, 102, 107, 108}},
        {0x950002, {102, 103}},
        {0x960003, {100, 102, 101}},
        {0x970004, {100, 102, 101, 106}},
        {0x980004, {100, 102, 101, 103}},
        {0x990004, {100, 101, 106, 103}},
        {0x9A0005, {100, 102, 101, 106, 103}},
    };
    // clang-format on
    EXPECT_EQ(std::size(rows), 54U);
    for (const TagRow& row : rows)
    {
        EXPECT_EQ(row.mLabels.size(), row.mTag & 0xFFFF) << "tag " << row.mTag;
        EXPECT_EQ(OfTag(row.mTag), row.mLabels) << "tag " << row.mTag;
    }
}

TEST(LayoutFromTag, IsEmptyForAnyOtherTag)
{
    for (const UInt32 tag : {0x930002U, 0x930000U, 0xFFFF0002U, 0x9B0006U, 0x9C0007U, 0xAE0008U,
                             0x640002U, 0x10001U, 1U, 0xFFFFFFFFU})
        EXPECT_EQ(OfTag(tag), Labels{}) << "tag " << tag;
}

TEST(LayoutFromHost, HasADescriptionForEachChannelAndNoTag)
{
    const LayoutPtr layout = FromHost({100, 101});
    EXPECT_EQ(layout->mChannelLayoutTag, 0U);
    EXPECT_EQ(layout->mChannelBitmap, 0U);
    ASSERT_EQ(layout->mNumberChannelDescriptions, 2U);
    const AudioChannelDescription* const descriptions = layout->mChannelDescriptions;
    const AudioChannelDescription expected[] = {{1, 0, {0, 0, 0}}, {2, 0, {0, 0, 0}}};
    EXPECT_EQ(std::memcmp(descriptions, expected, sizeof(expected)), 0);
}

TEST(LayoutFromHost, KeepsOrderAndCountForAnyLabels)
{
    const LayoutPtr layout = FromHost({102, 0, 125, 103, 0xFFFFFFFF});
    ASSERT_EQ(layout->mNumberChannelDescriptions, 5U);
    const UInt32 expected[] = {3, 400, 400, 4, 400};
    const AudioChannelDescription* const descriptions = layout->mChannelDescriptions;
    for (int channel = 0; channel < 5; ++channel)
        EXPECT_EQ(descriptions[channel].mChannelLabel, expected[channel]) << channel;
}

TEST(LayoutFromHost, OfNoChannelsIsAnEmptyRecord)
{
    const LayoutPtr layout = FromHost({});
    const unsigned char zeros[12] = {};
    EXPECT_EQ(std::memcmp(layout.get(), zeros, sizeof(zeros)), 0);
}

}  // namespace
