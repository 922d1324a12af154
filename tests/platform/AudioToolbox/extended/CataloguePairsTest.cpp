// Every pair of file type and format that the catalogue offers is written and opens again.

#include "FileUse.h"

#include "../media/MediaFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using namespace file_use;

template <typename Value>
std::vector<Value> GlobalList(AudioFilePropertyID inProperty, UInt32 inSize, void* inSpecifier)
{
    UInt32 size = 0;
    EXPECT_EQ(AudioFileGetGlobalInfoSize(inProperty, inSize, inSpecifier, &size), noErr);
    std::vector<Value> values(size / sizeof(Value));
    if (values.empty())
        return values;  // of a format that is only read
    EXPECT_EQ(AudioFileGetGlobalInfo(inProperty, inSize, inSpecifier, &size, values.data()), noErr);
    return values;
}

struct Pair
{
    AudioFileTypeID mType;
    Description mFormat;
};

std::string Code(UInt32 inCode)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>((inCode >> shift) & 0xFF);
    return text;
}

std::string NameOf(const Pair& inPair, UInt32 inChannels)
{
    return Code(inPair.mType) + " " + Code(inPair.mFormat.mFormatID) + " flags " +
           std::to_string(inPair.mFormat.mFormatFlags) + " bits " +
           std::to_string(inPair.mFormat.mBitsPerChannel) + " channels " +
           std::to_string(inChannels);
}

std::vector<Pair> EveryPair()
{
    std::vector<Pair> pairs;
    for (AudioFileTypeID type :
         GlobalList<AudioFileTypeID>(kAudioFileGlobalInfo_WritableTypes, 0, nullptr))
        for (const AudioFormatID format : GlobalList<AudioFormatID>(
                 kAudioFileGlobalInfo_AvailableFormatIDs, sizeof(type), &type))
        {
            AudioFileTypeAndFormatID both = {type, format};
            for (const Description& variant :
                 GlobalList<Description>(kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat,
                                         sizeof(both), &both))
                pairs.push_back({type, variant});
        }
    return pairs;
}

Description Complete(Description inVariant, UInt32 inChannels)
{
    const AudioFormatID format = inVariant.mFormatID;
    inVariant.mSampleRate = format == kAudioFormatMicrosoftGSM ? 8000 : 48000;
    inVariant.mChannelsPerFrame = inChannels;
    if (format == kAudioFormatLinearPCM)
        inVariant.mBytesPerFrame = inVariant.mBytesPerPacket =
            inVariant.mBitsPerChannel / 8 * inChannels;
    return inVariant;
}

// A tone a channel; 8000 of full scale 32768, so that any format can hold it.
std::vector<Float32> Tone(UInt32 inFrames, UInt32 inChannels)
{
    std::vector<Float32> samples;
    for (UInt32 frame = 0; frame < inFrames; ++frame)
        for (UInt32 channel = 0; channel < inChannels; ++channel)
            samples.push_back(static_cast<Float32>(
                std::floor(8000 * std::sin(0.02 * (channel + 1) * frame)) / 32768));
    return samples;
}

// Of a tone, its height by the root of 2.
double Loudness(const std::vector<Float32>& inSamples)
{
    double sum = 0;
    for (const Float32 sample : inSamples)
        sum += double{sample} * double{sample};
    return std::sqrt(sum / static_cast<double>(inSamples.size()));
}

bool IsExact(const Description& inFormat)
{
    return inFormat.mFormatID == kAudioFormatAppleLossless ||
           inFormat.mFormatID == kAudioFormatFLAC ||
           (inFormat.mFormatID == kAudioFormatLinearPCM && inFormat.mBitsPerChannel > 8);
}

bool WritePair(const std::string& inPath, const Pair& inPair, UInt32 inChannels,
               const std::vector<Float32>& inSamples)
{
    const Description format = Complete(inPair.mFormat, inChannels);
    OutFile file;
    if (const OSStatus status = file.Create(inPath, inPair.mType, format); status != noErr)
    {
        ADD_FAILURE() << NameOf(inPair, inChannels) << ": " << status;
        return false;
    }
    const bool isWritten = file.SetClient(Floats(format.mSampleRate, inChannels)) == noErr &&
                           file.Write(inSamples, inChannels) == noErr && file.Dispose() == noErr;
    EXPECT_TRUE(isWritten) << NameOf(inPair, inChannels);
    return isWritten;
}

void CheckRead(const std::string& inPath, const Pair& inPair, UInt32 inChannels,
               const std::vector<Float32>& inSamples)
{
    const std::string name = NameOf(inPair, inChannels);
    const media_testing::FilePtr opened = media_testing::OpenMedia(inPath);
    ASSERT_NE(opened, nullptr) << name;
    Description read = {};
    UInt32 size = sizeof(read);
    ASSERT_EQ(AudioFileGetProperty(opened.get(), kAudioFilePropertyDataFormat, &size, &read),
              noErr);
    EXPECT_EQ(Code(read.mFormatID), Code(inPair.mFormat.mFormatID)) << name;
    EXPECT_EQ(read.mChannelsPerFrame, inChannels) << name;
    const std::vector<Float32> samples = media_testing::DecodeAll(opened.get(), read);
    ASSERT_GE(samples.size(), inSamples.size()) << name;
    if (IsExact(inPair.mFormat))
    {
        EXPECT_TRUE(samples == inSamples) << name;
        return;
    }
    EXPECT_NEAR(Loudness(samples), 0.1726, 0.03) << name;
}

TEST(EveryPairOfTheCatalogue, IsWrittenAndReadBack)
{
    const std::vector<Pair> pairs = EveryPair();
    EXPECT_GT(pairs.size(), 70u);
    for (const Pair& pair : pairs)
        for (const UInt32 channels : {1u, 2u})
        {
            if (pair.mFormat.mFormatID == kAudioFormatMicrosoftGSM && channels > 1)
                continue;  // speech, of one channel
            const ScratchFolder folder;
            const std::vector<Float32> samples = Tone(10007, channels);
            if (WritePair(folder.File("out"), pair, channels, samples))
                CheckRead(folder.File("out"), pair, channels, samples);
        }
}

TEST(EveryPairOfTheCatalogue, IsAValidFileWithoutAnyFrame)
{
    for (const Pair& pair : EveryPair())
    {
        const ScratchFolder folder;
        OutFile file;
        const std::string name = NameOf(pair, 1);
        ASSERT_EQ(file.Create(folder.File("out"), pair.mType, Complete(pair.mFormat, 1)), noErr)
            << name;
        EXPECT_EQ(file.Dispose(), noErr) << name;
        EXPECT_TRUE(std::filesystem::exists(folder.File("out"))) << name;
    }
}

}  // namespace
