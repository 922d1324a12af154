#include "host/ChannelMap.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

namespace
{

using host::ChannelLabels;
using host::ChannelMap;
using host::ChannelPart;
using host::LabelsForCount;

const ChannelLabels kMono = {102};
const ChannelLabels kUnnamedMono = {0};
const ChannelLabels kStereo = {100, 101};
const ChannelLabels k51 = {100, 101, 102, 103, 104, 105};
const ChannelLabels k71 = {100, 101, 102, 103, 104, 105, 129, 130};

// [target][source]
std::vector<std::vector<float>> Gains(const ChannelMap& inMap)
{
    std::vector<std::vector<float>> gains(inMap.TargetCount(),
                                          std::vector<float>(inMap.SourceCount()));
    for (std::size_t target = 0; target < inMap.TargetCount(); ++target)
        for (const ChannelPart& part : inMap.Parts(target))
            gains[target][static_cast<std::size_t>(part.mSource)] += part.mGain;
    return gains;
}

void ExpectGains(const ChannelMap& inMap, const std::vector<std::vector<float>>& inExpected)
{
    const auto gains = Gains(inMap);
    ASSERT_EQ(gains.size(), inExpected.size());
    for (std::size_t target = 0; target < gains.size(); ++target)
        for (std::size_t source = 0; source < gains[target].size(); ++source)
            EXPECT_NEAR(gains[target][source], inExpected[target][source], 1e-4)
                << "from " << source << " to " << target;
}

std::vector<int> Sources(const ChannelMap& inMap)
{
    std::vector<int> sources;
    for (std::size_t target = 0; target < inMap.TargetCount(); ++target)
        sources.push_back(inMap.Source(target));
    return sources;
}

TEST(ChannelMap, LeavesEqualLayoutsAlone)
{
    for (const ChannelLabels& labels : {kMono, kStereo, k51, k71, ChannelLabels{0, 0, 0}})
        EXPECT_TRUE(ChannelMap(labels, labels).IsIdentity()) << labels.size();
}

TEST(ChannelMap, BringsNamesInAnotherOrder)
{
    const ChannelMap map(k51, {102, 100, 101, 104, 105, 103});
    EXPECT_TRUE(map.IsSelection());
    EXPECT_FALSE(map.IsIdentity());
    EXPECT_EQ(Sources(map), (std::vector<int>{2, 0, 1, 4, 5, 3}));
}

TEST(ChannelMap, KeepsTheOrderWhereOneSideHasNoNames)
{
    EXPECT_TRUE(ChannelMap({102, 100, 101}, {0, 0, 0}).IsIdentity());
    EXPECT_TRUE(ChannelMap({0, 0, 0}, {102, 100, 101}).IsIdentity());
    EXPECT_TRUE(ChannelMap({100, 100}, {101, 100}).IsIdentity());
}

TEST(ChannelMap, GivesMonoToBothOfStereoAtItsLevel)
{
    for (const ChannelLabels& mono : {kMono, kUnnamedMono})
    {
        const ChannelMap map(mono, kStereo);
        EXPECT_TRUE(map.IsSelection());
        EXPECT_EQ(Sources(map), (std::vector<int>{0, 0}));
    }
}

TEST(ChannelMap, HalvesStereoForMono)
{
    ExpectGains(ChannelMap(kStereo, kUnnamedMono), {{0.5F, 0.5F}});
    ExpectGains(ChannelMap({0, 0}, kMono), {{0.5F, 0.5F}});
}

TEST(ChannelMap, MixesSurroundToStereoWithoutClipping)
{
    ExpectGains(ChannelMap(k51, kStereo),
                {{0.4142F, 0, 0.2929F, 0, 0.2929F, 0}, {0, 0.4142F, 0.2929F, 0, 0, 0.2929F}});
    ExpectGains(ChannelMap(k71, kStereo), {{0.3204F, 0, 0.2265F, 0, 0.2265F, 0, 0.2265F, 0},
                                           {0, 0.3204F, 0.2265F, 0, 0, 0.2265F, 0, 0.2265F}});
}

TEST(ChannelMap, MixesSurroundToMono)
{
    ExpectGains(ChannelMap(k51, kMono), {{0.2071F, 0.2071F, 0.2929F, 0, 0.1464F, 0.1464F}});
}

TEST(ChannelMap, FoldsRearChannelsIntoSurrounds)
{
    ExpectGains(ChannelMap(k71, k51), {{0.5F, 0, 0, 0, 0, 0, 0, 0},
                                       {0, 0.5F, 0, 0, 0, 0, 0, 0},
                                       {0, 0, 0.5F, 0, 0, 0, 0, 0},
                                       {0, 0, 0, 0.5F, 0, 0, 0, 0},
                                       {0, 0, 0, 0, 0.5F, 0, 0.5F, 0},
                                       {0, 0, 0, 0, 0, 0.5F, 0, 0.5F}});
}

TEST(ChannelMap, TakesSurroundsOfAnotherNameAsTheyAre)
{
    const ChannelMap map(k51, {100, 101, 102, 103, 129, 130});
    EXPECT_TRUE(map.IsSelection());
    EXPECT_TRUE(map.IsIdentity());
}

TEST(ChannelMap, PlacesFewerChannelsAndLeavesTheOthersSilent)
{
    const ChannelMap stereo(kStereo, k51);
    EXPECT_TRUE(stereo.IsSelection());
    EXPECT_EQ(Sources(stereo), (std::vector<int>{0, 1, -1, -1, -1, -1}));
    EXPECT_EQ(Sources(ChannelMap(kUnnamedMono, k51)), (std::vector<int>{-1, -1, 0, -1, -1, -1}));
}

TEST(ChannelMap, GuessesTheNamesOfUsualCounts)
{
    ExpectGains(ChannelMap(ChannelLabels(6, 0), kStereo),
                {{0.4142F, 0, 0.2929F, 0, 0.2929F, 0}, {0, 0.4142F, 0.2929F, 0, 0, 0.2929F}});
}

TEST(ChannelMap, NeverReachesBeyondFullScale)
{
    for (const ChannelLabels& target : {kMono, kStereo, k51})
    {
        for (std::uint32_t label = 100; label <= 133; ++label)
        {
            if (label >= 120 && label <= 128)
                continue;
            ChannelLabels source = k51;
            if (std::find(source.begin(), source.end(), label) == source.end())
                source.push_back(label);
            for (const std::vector<float>& row : Gains(ChannelMap(source, target)))
            {
                float sum = 0.0F;
                for (const float gain : row)
                    sum += gain;
                EXPECT_LE(sum, 1.00001F) << label << " to " << target.size();
            }
        }
    }
}

TEST(ChannelMap, LosesNoNamedChannelButTheLowFrequencies)
{
    for (std::uint32_t label = 100; label <= 133; ++label)
    {
        if ((label >= 120 && label <= 128) || label == 103 || label == 131)
            continue;
        for (const ChannelLabels& target : {kMono, kStereo, ChannelLabels{100, 101, 102}, k51})
        {
            std::size_t parts = 0;
            const ChannelMap map({103, label}, target);
            for (const std::vector<float>& row : Gains(map))
                parts += row[1] > 0.0F;
            EXPECT_GE(parts, 1u) << label << " to " << target.size();
        }
    }
}

TEST(ChannelMap, AveragesUnnamedChannelsToMono)
{
    const auto gains = Gains(ChannelMap(ChannelLabels(10, 0), kUnnamedMono));
    EXPECT_EQ(gains[0], std::vector<float>(10, 0.1F));
}

TEST(ChannelMap, RefusesWhatItCannotName)
{
    EXPECT_THROW(ChannelMap(ChannelLabels(10, 0), kStereo), host::Failure);
    EXPECT_THROW(ChannelMap({134, 135, 136, 137}, kStereo), host::Failure);
    EXPECT_THROW(ChannelMap({5000, 100, 101}, kStereo), host::Failure);
}

TEST(ChannelMap, TakesVeryManyChannels)
{
    const ChannelLabels labels(65535, 0);
    EXPECT_TRUE(ChannelMap(labels, labels).IsIdentity());
    EXPECT_EQ(ChannelMap(kStereo, labels).Source(65534), -1);
}

TEST(ChannelMap, NamesTheChannelsOfANewCount)
{
    EXPECT_EQ(LabelsForCount({102, 100}, 2), (ChannelLabels{102, 100}));
    EXPECT_EQ(LabelsForCount(k51, 2), kStereo);
    EXPECT_EQ(LabelsForCount(kStereo, 1), kUnnamedMono);
    EXPECT_EQ(LabelsForCount(kStereo, 6), k51);
    EXPECT_EQ(LabelsForCount(kStereo, 8), k71);
    EXPECT_EQ(LabelsForCount(kStereo, 9), ChannelLabels(9, 0));
}

}  // namespace
