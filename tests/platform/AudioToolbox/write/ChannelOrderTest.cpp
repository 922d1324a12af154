// In which order the channels of a file stand, and which label each of them has.

#include "platform/AudioToolbox/src/file/write/ChannelOrder.h"

#include <gtest/gtest.h>

namespace
{

using namespace audiotoolbox;
using Labels = std::vector<AudioChannelLabel>;
using Sources = std::vector<UInt32>;

ChannelOrder Order(AudioFileTypeID inType, AudioFormatID inFormat, const Labels& inLabels)
{
    return OrderChannels(inType, inFormat, static_cast<UInt32>(inLabels.size()), inLabels);
}

struct OrderRow
{
    const char* mName;
    AudioFileTypeID mType;
    AudioFormatID mFormat;
    Labels mClient;
    Sources mSources;
    Labels mLabels;
};

// clang-format off
const OrderRow kOrders[] = {
    {"WAVE in its order", kAudioFileWAVEType, kAudioFormatLinearPCM,
     {1, 2, 3, 4, 5, 6}, {}, {1, 2, 3, 4, 5, 6}},
    {"WAVE, centre first", kAudioFileWAVEType, kAudioFormatLinearPCM,
     {3, 1, 2, 5, 6, 4}, {1, 2, 0, 5, 3, 4}, {1, 2, 3, 4, 5, 6}},
    {"WAVE, right first", kAudioFileWAVEType, kAudioFormatLinearPCM, {2, 1}, {1, 0}, {1, 2}},
    {"RF64, back and side pairs", kAudioFileRF64Type, kAudioFormatLinearPCM,
     {1, 2, 3, 4, 5, 6, 33, 34}, {0, 1, 2, 3, 6, 7, 4, 5}, {1, 2, 3, 4, 5, 6, 10, 11}},
    {"BW64, direct surrounds stay at the side", kAudioFileBW64Type, kAudioFormatLinearPCM,
     {1, 2, 10, 11}, {}, {1, 2, 10, 11}},
    {"W64, rear surrounds alone are the back pair", kAudioFileWave64Type, kAudioFormatLinearPCM,
     {1, 2, 33, 34}, {}, {1, 2, 5, 6}},
    {"WAVE with a-law", kAudioFileWAVEType, kAudioFormatALaw, {3, 1, 2}, {1, 2, 0}, {1, 2, 3}},
    {"WAVE with ADPCM", kAudioFileWAVEType, kAudioFormatMicrosoftADPCM, {2, 1}, {1, 0}, {1, 2}},
    {"WAVE, a speaker without a bit", kAudioFileWAVEType, kAudioFormatLinearPCM, {2, 1, 35}, {}, {}},
    {"WAVE, two of a pair's names", kAudioFileWAVEType, kAudioFormatLinearPCM,
     {1, 2, 5, 6, 33, 34, 10, 11}, {}, {}},
    {"CAF keeps any order", kAudioFileCAFType, kAudioFormatLinearPCM, {3, 1, 2}, {}, {3, 1, 2}},
    {"AIFF keeps any label", kAudioFileAIFFType, kAudioFormatLinearPCM, {38, 39}, {}, {38, 39}},
    {"CAF with AAC has the encoder's", kAudioFileCAFType, kAudioFormatMPEG4AAC,
     {3, 1, 2, 5, 6, 4}, {1, 2, 0, 5, 3, 4}, {1, 2, 3, 4, 5, 6}},
    {"AAC, sides where the encoder has backs", kAudioFileM4AType, kAudioFormatMPEG4AAC,
     {1, 2, 3, 4, 10, 11}, {}, {1, 2, 3, 4, 10, 11}},
    {"AAC, rears where the encoder has backs", kAudioFileM4AType, kAudioFormatMPEG4AAC,
     {33, 34, 1, 2, 3}, {2, 3, 4, 0, 1}, {1, 2, 3, 33, 34}},
    {"AC-3, surrounds where the encoder has sides", kAudioFileAC3Type, kAudioFormatAC3,
     {1, 3, 2, 5, 6, 4}, {0, 2, 1, 5, 3, 4}, {1, 2, 3, 4, 5, 6}},
    {"AAC 7.1", kAudioFileM4AType, kAudioFormatMPEG4AAC,
     {3, 1, 2, 5, 6, 33, 34, 4}, {1, 2, 0, 7, 5, 6, 3, 4}, {1, 2, 3, 4, 33, 34, 5, 6}},
    {"ALAC 7.1 has no sides", kAudioFileM4AType, kAudioFormatAppleLossless,
     {1, 2, 3, 4, 33, 34, 5, 6}, {}, {}},
    {"ALAC 6.1", kAudioFileM4AType, kAudioFormatAppleLossless,
     {1, 2, 3, 5, 6, 9, 4}, {0, 1, 2, 6, 3, 4, 5}, {1, 2, 3, 4, 5, 6, 9}},
    {"FLAC 6.1", kAudioFileFLACType, kAudioFormatFLAC,
     {1, 2, 3, 4, 5, 6, 9}, {0, 1, 2, 3, 6, 4, 5}, {1, 2, 3, 4, 9, 5, 6}},
    {"AAC has no quadraphonic order", kAudioFileM4AType, kAudioFormatMPEG4AAC,
     {5, 6, 1, 2}, {}, {}},
    {"MP3 of a single side", kAudioFileMP3Type, kAudioFormatMPEGLayer3, {1}, {}, {}},
    {"MP3 stereo swapped", kAudioFileMP3Type, kAudioFormatMPEGLayer3, {2, 1}, {1, 0}, {1, 2}},
};
// clang-format on

TEST(ChannelOrder, FollowsTheTypeAndTheFormat)
{
    for (const OrderRow& row : kOrders)
    {
        const ChannelOrder order = Order(row.mType, row.mFormat, row.mClient);
        EXPECT_EQ(order.mSources, row.mSources) << row.mName;
        EXPECT_EQ(order.mLabels, row.mLabels) << row.mName;
    }
}

TEST(ChannelOrder, UnusableLabelsChangeNothing)
{
    const Labels unusable[] = {
        {2, 1, 400}, {2, 1, 0}, {2, 1, 0xFFFFFFFF}, {2, 2, 1}, {2, 1, 0x10003},
    };
    for (const Labels& labels : unusable)
        for (const AudioFileTypeID type : {kAudioFileWAVEType, kAudioFileCAFType})
        {
            const ChannelOrder order = Order(type, kAudioFormatLinearPCM, labels);
            EXPECT_TRUE(order.mSources.empty());
            EXPECT_TRUE(order.mLabels.empty());
        }
}

TEST(ChannelOrder, AnotherCountOfLabelsChangesNothing)
{
    const ChannelOrder fewer = OrderChannels(kAudioFileWAVEType, kAudioFormatLinearPCM, 3, {2, 1});
    EXPECT_TRUE(fewer.mSources.empty());
    EXPECT_TRUE(fewer.mLabels.empty());
    const ChannelOrder none = OrderChannels(kAudioFileWAVEType, kAudioFormatLinearPCM, 2, {});
    EXPECT_TRUE(none.mLabels.empty());
}

}  // namespace
