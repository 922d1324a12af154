// Files of layered AAC: every layer that the list offers decodes from the same packets, with the
// same material at the same time.
#include "MediaFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using namespace media_testing;

struct Layer
{
    AudioFormatID mFormat;
    double mRate;
    UInt32 mChannels;
    UInt32 mFramesPerPacket;
};

struct LayeredFile
{
    const char* mName;
    UInt64 mPackets;
    std::vector<Layer> mLayers;
};

const Layer kPlainMono = {kAudioFormatMPEG4AAC, 22050, 1, 1024};
const Layer kPlainStereo = {kAudioFormatMPEG4AAC, 22050, 2, 1024};
const Layer kExtendedMono = {kAudioFormatMPEG4AAC_HE, 44100, 1, 2048};
const Layer kExtendedStereo = {kAudioFormatMPEG4AAC_HE, 44100, 2, 2048};
const Layer kParametric = {kAudioFormatMPEG4AAC_HE_V2, 44100, 2, 2048};

const LayeredFile kFiles[] = {
    {"he5.aac", 46, {kExtendedStereo, kPlainStereo}},
    {"he5.m4a", 46, {kExtendedStereo, kPlainStereo}},
    {"he29.aac", 47, {kParametric, kExtendedMono, kPlainMono}},
    {"he29.m4a", 47, {kParametric, kExtendedMono, kPlainMono}},
    {"sbr_compat.m4a", 217, {kExtendedStereo, kPlainStereo}},
    {"sbr_explicit.m4a", 217, {kExtendedStereo, kPlainStereo}},
};

FilePtr OpenLayered(const char* inName)
{
    return OpenMedia(std::string(TEST_DATA "/he-aac/") + inName);
}

// One channel, smoothed over the frames of 6 ms: what all layers have in common.
std::vector<double> LoudnessOf(const std::vector<float>& inSamples, const Layer& inLayer)
{
    const auto window = static_cast<std::size_t>(inLayer.mRate * 0.006);
    const std::size_t frames = inSamples.size() / inLayer.mChannels;
    std::vector<double> loudness;
    for (std::size_t start = 0; start + window <= frames; start += window / 4)
    {
        double sum = 0;
        for (std::size_t i = 0; i < window; ++i)
            for (std::size_t channel = 0; channel < inLayer.mChannels; ++channel)
                sum += std::abs(inSamples[(start + i) * inLayer.mChannels + channel]);
        loudness.push_back(sum / static_cast<double>(window * inLayer.mChannels));
    }
    return loudness;
}

// The first moment with a tenth of the greatest loudness, in seconds.
double BeginOf(const std::vector<float>& inSamples, const Layer& inLayer)
{
    const std::vector<double> loudness = LoudnessOf(inSamples, inLayer);
    const double limit = *std::max_element(loudness.begin(), loudness.end()) / 10;
    const auto found = std::find_if(loudness.begin(), loudness.end(),
                                    [=](double inValue) { return inValue > limit; });
    return static_cast<double>(found - loudness.begin()) *
           std::floor(std::floor(inLayer.mRate * 0.006) / 4) / inLayer.mRate;
}

TEST(LayeredFiles, ListTheirLayersBestFirst)
{
    for (const LayeredFile& file : kFiles)
    {
        const FilePtr opened = OpenLayered(file.mName);
        ASSERT_TRUE(opened) << file.mName;
        EXPECT_EQ(PacketCountOf(opened.get()), file.mPackets) << file.mName;
        const std::vector<AudioFormatListItem> formats = FormatsOf(opened.get());
        ASSERT_EQ(formats.size(), file.mLayers.size()) << file.mName;
        for (std::size_t i = 0; i < formats.size(); ++i)
        {
            const AudioStreamBasicDescription& format = formats[i].mASBD;
            EXPECT_EQ(format.mFormatID, file.mLayers[i].mFormat) << file.mName << ' ' << i;
            EXPECT_EQ(format.mSampleRate, file.mLayers[i].mRate) << file.mName << ' ' << i;
            EXPECT_EQ(format.mChannelsPerFrame, file.mLayers[i].mChannels)
                << file.mName << ' ' << i;
            EXPECT_EQ(format.mFramesPerPacket, file.mLayers[i].mFramesPerPacket)
                << file.mName << ' ' << i;
        }
    }
}

TEST(LayeredFiles, DecodeEveryFrameOfEveryLayer)
{
    for (const LayeredFile& file : kFiles)
    {
        const FilePtr opened = OpenLayered(file.mName);
        ASSERT_TRUE(opened) << file.mName;
        for (const AudioFormatListItem& item : FormatsOf(opened.get()))
        {
            const AudioStreamBasicDescription& format = item.mASBD;
            EXPECT_EQ(DecodeAll(opened.get(), format).size(),
                      file.mPackets * format.mFramesPerPacket * format.mChannelsPerFrame)
                << file.mName << ' ' << format.mSampleRate << ' ' << format.mChannelsPerFrame;
        }
    }
}

// The extended layers are later by what reconstructing the upper band takes: 962 of their frames,
// 22 ms.
TEST(LayeredFiles, BeginTogetherInAllTheirLayers)
{
    for (const LayeredFile& file : kFiles)
    {
        const FilePtr opened = OpenLayered(file.mName);
        ASSERT_TRUE(opened) << file.mName;
        std::vector<double> begins;
        for (std::size_t i = 0; i < file.mLayers.size(); ++i)
        {
            const std::vector<float> samples =
                DecodeAll(opened.get(), FormatsOf(opened.get())[i].mASBD);
            ASSERT_FALSE(samples.empty()) << file.mName;
            begins.push_back(BeginOf(samples, file.mLayers[i]));
        }
        for (std::size_t i = 0; i + 1 < begins.size(); ++i)
            EXPECT_NEAR(begins[i] - begins.back(), 962.0 / 44100, 0.006) << file.mName << ' ' << i;
    }
}

}  // namespace
