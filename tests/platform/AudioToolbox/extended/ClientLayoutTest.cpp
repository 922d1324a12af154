// Layout records of clients, well and badly formed.

#include "platform/AudioToolbox/src/extended/ClientLayout.h"

#include "platform/AudioToolbox/src/file/ChannelLayouts.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace
{

using namespace audiotoolbox;
using Labels = std::vector<AudioChannelLabel>;

// The record stands alone in memory, so that a sanitizer sees every byte read behind it.
Labels LabelsOf(const std::vector<UInt8>& inRecord, UInt32 inChannels)
{
    const std::unique_ptr<void, decltype(&std::free)> alone(std::malloc(inRecord.size()),
                                                            &std::free);
    std::memcpy(alone.get(), inRecord.data(), inRecord.size());
    return LabelsOfLayout(static_cast<const AudioChannelLayout*>(alone.get()), inChannels);
}

TEST(ClientLayouts, MayBeDescriptionsBitsOrATag)
{
    EXPECT_EQ(LabelsOf(LayoutOfLabels(Labels{3, 1, 2}), 3), (Labels{3, 1, 2}));
    EXPECT_EQ(LabelsOf(LayoutOfBitmap(0x60F), 6), (Labels{1, 2, 3, 4, 10, 11}));
    EXPECT_EQ(LabelsOf(LayoutOfTag(kAudioChannelLayoutTag_MPEG_5_1_C), 6),
              (Labels{1, 3, 2, 5, 6, 4}));
    EXPECT_EQ(LabelsOf(LayoutOfTag(kAudioChannelLayoutTag_Mono), 1), (Labels{3}));
    EXPECT_EQ(LabelsOf(LayoutOfTag(kAudioChannelLayoutTag_MPEG_7_1_C), 8),
              (Labels{1, 2, 3, 4, 5, 6, 33, 34}));
}

TEST(ClientLayouts, OfAnotherCountCountAsNone)
{
    EXPECT_TRUE(LabelsOf(LayoutOfLabels(Labels{3, 1, 2}), 2).empty());
    EXPECT_TRUE(LabelsOf(LayoutOfLabels(Labels{3, 1, 2}), 4).empty());
    EXPECT_TRUE(LabelsOf(LayoutOfBitmap(0x3F), 5).empty());
    EXPECT_TRUE(LabelsOf(LayoutOfTag(kAudioChannelLayoutTag_Stereo), 6).empty());
    EXPECT_TRUE(LabelsOf(LayoutOfLabels({}), 0).empty());
}

TEST(ClientLayouts, WithoutSpeakersCountAsNone)
{
    EXPECT_TRUE(LabelsOfLayout(nullptr, 2).empty());
    EXPECT_TRUE(LabelsOf(LayoutOfTag(kAudioChannelLayoutTag_DiscreteInOrder | 2), 2).empty());
    EXPECT_TRUE(LabelsOf(LayoutOfTag(kAudioChannelLayoutTag_Unknown | 2), 2).empty());
    EXPECT_TRUE(LabelsOf(LayoutOfTag(0x12340002), 2).empty());
}

TEST(ClientLayouts, ThatClaimTooMuchAreNotRead)
{
    std::vector<UInt8> record = LayoutHead(0, 0, 0);
    const UInt32 claimed = 0xFFFFFFFF;
    std::memcpy(record.data() + 8, &claimed, sizeof(claimed));
    EXPECT_TRUE(LabelsOf(record, 2).empty());
}

}  // namespace
