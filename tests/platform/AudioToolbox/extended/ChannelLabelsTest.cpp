// Each channel comes back under its label, whatever the order in which the client has them.

#include "FileUse.h"

#include "../media/MediaFile.h"

#include "platform/AudioToolbox/src/extended/ClientLayout.h"
#include "platform/AudioToolbox/src/file/ChannelLayouts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using namespace file_use;
using Labels = std::vector<AudioChannelLabel>;

struct LabelRow
{
    const char* mName;
    AudioFileTypeID mType;
    AudioFormatID mFormat;
    AudioFormatFlags mFlags;
    UInt32 mBits;
    Labels mClient;
    Labels mRead;  // of the same channels, in the client's order, as the reader tells them
};

constexpr AudioFormatFlags kBig = kAudioFormatFlagIsBigEndian;
constexpr AudioFormatID kLinear = kAudioFormatLinearPCM;

// clang-format off
const LabelRow kRows[] = {
    {"WAVE 5.1", kAudioFileWAVEType, kLinear, kSigned, 16, {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"WAVE 24 bits", kAudioFileWAVEType, kLinear, kSigned, 24, {2, 1}, {2, 1}},
    {"WAVE with sides", kAudioFileWAVEType, kLinear, kSigned, 16, {10, 1, 2, 11}, {10, 1, 2, 11}},
    {"RF64 7.1", kAudioFileRF64Type, kLinear, kSigned, 16,
     {3, 1, 2, 5, 6, 33, 34, 4}, {3, 1, 2, 10, 11, 5, 6, 4}},
    {"W64 3.0", kAudioFileWave64Type, kLinear, kSigned, 16, {3, 1, 2}, {3, 1, 2}},
    {"AIFF 5.1", kAudioFileAIFFType, kLinear, kSigned | kBig, 16,
     {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"CAF with names that no mask has", kAudioFileCAFType, kLinear, kSigned, 16,
     {35, 2, 1}, {35, 2, 1}},
    {"CAF ALAC 5.1", kAudioFileCAFType, kAudioFormatAppleLossless, 1, 0,
     {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"CAF AAC 5.1", kAudioFileCAFType, kAudioFormatMPEG4AAC, 0, 0,
     {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"M4A AAC 5.1", kAudioFileM4AType, kAudioFormatMPEG4AAC, 0, 0,
     {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"M4A AAC 7.1", kAudioFileM4AType, kAudioFormatMPEG4AAC, 0, 0,
     {3, 1, 2, 5, 6, 33, 34, 4}, {3, 1, 2, 5, 6, 33, 34, 4}},
    {"M4A ALAC 3.0", kAudioFileM4AType, kAudioFormatAppleLossless, 1, 0, {3, 1, 2}, {3, 1, 2}},
    {"M4A ALAC 6.1", kAudioFileM4AType, kAudioFormatAppleLossless, 1, 0,
     {9, 3, 1, 2, 5, 6, 4}, {9, 3, 1, 2, 5, 6, 4}},
    {"M4A AC-3 5.1", kAudioFileM4AType, kAudioFormatAC3, 0, 0,
     {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"AC-3 5.1", kAudioFileAC3Type, kAudioFormatAC3, 0, 0, {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"FLAC 5.1", kAudioFileFLACType, kAudioFormatFLAC, 1, 0,
     {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
    {"ADTS 5.1", kAudioFileAAC_ADTSType, kAudioFormatMPEG4AAC, 0, 0,
     {3, 1, 2, 5, 6, 4}, {3, 1, 2, 5, 6, 4}},
};
// clang-format on

Description FormatOf(const LabelRow& inRow)
{
    const auto channels = static_cast<UInt32>(inRow.mClient.size());
    if (inRow.mFormat == kLinear)
        return Linear(48000, inRow.mFlags, inRow.mBits, channels);
    return {48000, inRow.mFormat, inRow.mFlags, 0, 0, 0, channels, 0, 0};
}

// Channel k sounds in the k-th stretch of time alone; low enough for a channel of effects.
constexpr std::size_t kStretch = 9600;

std::vector<Float32> OneAfterTheOther(std::size_t inChannels)
{
    std::vector<Float32> samples(kStretch * inChannels * inChannels);
    for (std::size_t frame = 0; frame < kStretch * inChannels; ++frame)
        samples[frame * inChannels + frame / kStretch] =
            static_cast<Float32>(0.3 * std::sin(0.008 * static_cast<double>(frame)));
    return samples;
}

// Which channel is the loudest in the middle of a stretch.
std::size_t SoundingIn(const std::vector<Float32>& inSamples, std::size_t inChannels,
                       std::size_t inStretch)
{
    std::vector<double> sums(inChannels);
    const std::size_t first = inStretch * kStretch + kStretch / 3;
    for (std::size_t frame = first; frame < first + kStretch / 3; ++frame)
        for (std::size_t channel = 0; channel < inChannels; ++channel)
            sums[channel] += std::abs(double{inSamples.at(frame * inChannels + channel)});
    return static_cast<std::size_t>(std::max_element(sums.begin(), sums.end()) - sums.begin());
}

Labels ReadLabels(AudioFileID inFile, UInt32 inChannels)
{
    UInt32 size = 0;
    if (AudioFileGetPropertyInfo(inFile, kAudioFilePropertyChannelLayout, &size, nullptr) != noErr)
        return {};
    std::vector<UInt32> words(size / 4 + 16);
    if (AudioFileGetProperty(inFile, kAudioFilePropertyChannelLayout, &size, words.data()) != noErr)
        return {};
    return audiotoolbox::LabelsOfLayout(reinterpret_cast<const AudioChannelLayout*>(words.data()),
                                        inChannels);
}

TEST(Channels, ComeBackUnderTheirLabels)
{
    for (const LabelRow& row : kRows)
    {
        const ScratchFolder folder;
        const auto channels = static_cast<UInt32>(row.mClient.size());
        const std::vector<UInt8> bytes = audiotoolbox::LayoutOfLabels(row.mClient);
        std::vector<UInt32> layout(bytes.size() / 4);
        std::memcpy(layout.data(), bytes.data(), bytes.size());
        OutFile out;
        ASSERT_EQ(out.Create(folder.File("out"), row.mType, FormatOf(row), kErase,
                             reinterpret_cast<const AudioChannelLayout*>(layout.data())),
                  noErr)
            << row.mName;
        ASSERT_EQ(out.SetClient(Floats(48000, channels)), noErr) << row.mName;
        ASSERT_EQ(out.Write(OneAfterTheOther(channels), channels), noErr) << row.mName;
        ASSERT_EQ(out.Dispose(), noErr) << row.mName;

        const media_testing::FilePtr file = media_testing::OpenMedia(folder.File("out"));
        ASSERT_NE(file, nullptr) << row.mName;
        const Labels labels = ReadLabels(file.get(), channels);
        ASSERT_EQ(labels.size(), channels) << row.mName;
        Description read = {};
        UInt32 size = sizeof(read);
        ASSERT_EQ(AudioFileGetProperty(file.get(), kAudioFilePropertyDataFormat, &size, &read),
                  noErr);
        const std::vector<Float32> samples = media_testing::DecodeAll(file.get(), read);
        ASSERT_GE(samples.size(), kStretch * channels * channels) << row.mName;
        for (std::size_t channel = 0; channel < channels; ++channel)
            EXPECT_EQ(labels[SoundingIn(samples, channels, channel)], row.mRead[channel])
                << row.mName << ", the client's label " << row.mClient[channel];
    }
}

}  // namespace
