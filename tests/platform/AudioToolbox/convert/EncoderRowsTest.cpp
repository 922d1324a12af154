// What the tables say of encoders, held against the real ones.
#include "EncoderUse.h"
#include "tables/EncoderBitRates.h"
#include "tables/WritableTypes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace
{

using namespace encoder_use;
using audiotoolbox::AllEncoders;
using audiotoolbox::EncoderLayout;
using audiotoolbox::EncoderRoad;
using audiotoolbox::EncoderRow;
using audiotoolbox::RateRange;
using converter_use::Floats;
using converter_use::New;

std::string CodeOf(UInt32 inCode)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(inCode >> shift);
    return text;
}

AudioStreamBasicDescription Destination(AudioFormatID inFormat, double inRate, UInt32 inChannels)
{
    return {inRate, inFormat, 0, 0, 0, 0, inChannels, 0, 0};
}

std::vector<UInt32> RatesOf(const EncoderRow& inRow)
{
    if (inRow.mRates.empty())
        return {1000, 8000, 44100, 192000};
    std::set<UInt32> rates;
    for (const RateRange& range : inRow.mRates)
        rates.insert({range.mLowest, range.mHighest});
    return {rates.begin(), rates.end()};
}

std::vector<UInt32> ChannelsOf(const EncoderRow& inRow)
{
    std::vector<UInt32> counts;
    for (const EncoderLayout& layout : inRow.mLayouts)
        counts.push_back(layout.mChannelCount);
    return counts.empty() ? std::vector<UInt32>{1, 2, 6, 64} : counts;
}

Stream EncodeNoise(AudioConverterRef inConverter, std::size_t inFrames, UInt32 inChannels)
{
    static const std::vector<float> sNoise = Noise(96000, 8);
    Memory input(sNoise, inChannels);
    input.Shorten(inFrames);
    return EncodeAll(inConverter, input, 16);
}

TEST(EncoderRows, EveryRateAndChannelCountEncodes)
{
    for (const EncoderRow& row : AllEncoders())
        for (const UInt32 rate : RatesOf(row))
            for (const UInt32 channels : ChannelsOf(row))
            {
                if (row.mRoad == EncoderRoad::Linear)
                    continue;
                SCOPED_TRACE(CodeOf(row.mFormatID) + " " + std::to_string(rate) + " " +
                             std::to_string(channels));
                const ConverterPtr converter =
                    New(Floats(rate, channels), Destination(row.mFormatID, rate, channels));
                ASSERT_NE(converter, nullptr);
                const Stream stream = EncodeNoise(converter.get(), 5000, channels);
                EXPECT_EQ(stream.mStatus, noErr);
                EXPECT_EQ(stream.mCookie.empty(), !row.mHasCookie);
                const UInt32 frames = stream.mFormat.mFramesPerPacket;
                EXPECT_GE(stream.mPackets.size() * frames, 5000u + row.mDelay);
                const UInt32 bytes = stream.mFormat.mBytesPerPacket;
                for (const Bytes& packet : stream.mPackets)
                    ASSERT_EQ(packet.size(), bytes != 0 ? bytes : packet.size());
            }
}

// Interleaved sweeps that differ from channel to channel, which leave an encoder little to share.
std::vector<float> Sweeps(UInt32 inRate, std::size_t inFrames, UInt32 inChannels)
{
    std::vector<float> samples;
    for (std::size_t frame = 0; frame < inFrames; ++frame)
        for (UInt32 channel = 1; channel <= inChannels; ++channel)
        {
            const double seconds = static_cast<double>(frame) / inRate;
            const double turns = 301.4 * channel * seconds * (1 + 0.05 * seconds);
            samples.push_back(static_cast<float>(0.3 * std::sin(2 * 3.141592653589793 * turns)));
        }
    return samples;
}

TEST(EncoderRows, TonesFitIntoTheLowestBitRate)
{
    for (const EncoderRow& row : AllEncoders())
        for (const UInt32 rate : RatesOf(row))
            for (const UInt32 channels : ChannelsOf(row))
            {
                if (row.mFormatID != kAudioFormatAC3 && row.mFormatID != kAudioFormatEnhancedAC3)
                    continue;
                const auto lowest = audiotoolbox::EncoderBitRates(
                    row, kAudioCodecBitRateControlMode_Constant, rate, channels);
                ASSERT_FALSE(lowest.empty());
                SCOPED_TRACE(CodeOf(row.mFormatID) + " " + std::to_string(rate) + " " +
                             std::to_string(channels) + " " + std::to_string(lowest.front()));
                const ConverterPtr converter =
                    New(Floats(rate, channels), Destination(row.mFormatID, rate, channels));
                ASSERT_EQ(Set(converter.get(), kAudioConverterEncodeBitRate, lowest.front()),
                          noErr);
                const std::vector<float> sweeps = Sweeps(rate, 2 * rate, channels);
                Memory input(sweeps, channels);
                EXPECT_EQ(EncodeAll(converter.get(), input, 16).mStatus, noErr);
            }
}

TEST(EncoderRows, WhatIsNotInARowIsRefused)
{
    for (const EncoderRow& row : AllEncoders())
    {
        SCOPED_TRACE(CodeOf(row.mFormatID));
        for (const UInt32 rate :
             {1u, 7349u, 7999u, 8001u, 22051u, 44099u, 44101u, 48001u, 65535u, 96001u, 384001u})
            EXPECT_EQ(New(Floats(44100, 1), Destination(row.mFormatID, rate, 1)) != nullptr,
                      row.mRoad != EncoderRoad::Linear && audiotoolbox::TakesRate(row, rate))
                << rate;
        const UInt32 rate = audiotoolbox::NearestRate(row, 44100);
        for (UInt32 channels = 1; channels < 66; ++channels)
            EXPECT_EQ(
                New(Floats(44100, 2), Destination(row.mFormatID, rate, channels)) != nullptr,
                row.mRoad != EncoderRoad::Linear && audiotoolbox::TakesChannels(row, channels))
                << channels;
    }
}

TEST(EncoderRows, AnOpenDestinationTakesTheNearest)
{
    for (const EncoderRow& row : AllEncoders())
    {
        if (row.mRoad == EncoderRoad::Linear)
            continue;
        SCOPED_TRACE(CodeOf(row.mFormatID));
        const ConverterPtr converter = New(Floats(44100, 2), Destination(row.mFormatID, 0, 0));
        ASSERT_NE(converter, nullptr);
        const auto format = Get<AudioStreamBasicDescription>(
            converter.get(), kAudioConverterCurrentOutputStreamDescription);
        const bool isOpus = row.mFormatID == kAudioFormatOpus;
        const bool isGSM = row.mFormatID == kAudioFormatMicrosoftGSM;
        EXPECT_EQ(format->mSampleRate, isOpus ? 48000.0 : isGSM ? 8000.0 : 44100.0);
        EXPECT_EQ(format->mChannelsPerFrame, isGSM ? 1u : 2u);
    }
}

TEST(EncoderRows, AnySourceGoesIntoAnyDestination)
{
    for (const EncoderRow& row : AllEncoders())
        for (const UInt32 from : {1u, 2u, 6u})
            for (const UInt32 to : ChannelsOf(row))
            {
                if (row.mRoad == EncoderRoad::Linear)
                    continue;
                SCOPED_TRACE(CodeOf(row.mFormatID) + " " + std::to_string(from) + " to " +
                             std::to_string(to));
                const UInt32 rate = audiotoolbox::NearestRate(row, 44100);
                const ConverterPtr converter =
                    New(Floats(96000, from), Destination(row.mFormatID, rate, to));
                ASSERT_NE(converter, nullptr);
                const Stream stream = EncodeNoise(converter.get(), 9600, from);
                EXPECT_EQ(stream.mStatus, noErr);
                EXPECT_FALSE(stream.mPackets.empty());
            }
}

TEST(EncoderRows, EveryPairOfTypeAndFormatOpensAsAConverter)
{
    const auto source = converter_use::Linear(44100, 14, 16, 2);
    std::size_t pairs = 0;
    for (const AudioFileTypeID type : audiotoolbox::WritableTypes())
        for (const EncoderRow& row : AllEncoders())
            for (AudioStreamBasicDescription variant :
                 audiotoolbox::WritableVariants(type, row.mFormatID))
            {
                ++pairs;
                if (row.mRoad == EncoderRoad::Linear)
                    variant = converter_use::Linear(44100, variant.mFormatFlags,
                                                    variant.mBitsPerChannel, 2);
                EXPECT_NE(New(source, variant), nullptr)
                    << CodeOf(type) << " " << CodeOf(row.mFormatID);
            }
    EXPECT_EQ(pairs, 106u);
}

struct BitRateCase
{
    const EncoderRow* mRow;
    UInt32 mMode;
    UInt32 mRate;
};

std::string NameOf(const BitRateCase& inCase)
{
    return CodeOf(inCase.mRow->mFormatID) + " mode " + std::to_string(inCase.mMode) + " " +
           std::to_string(inCase.mRate);
}

void PrintTo(const BitRateCase& inCase, std::ostream* outText)
{
    *outText << NameOf(inCase);
}

std::vector<BitRateCase> BitRateCases()
{
    std::vector<BitRateCase> cases;
    for (const EncoderRow& row : AllEncoders())
        for (const UInt32 mode :
             {kAudioCodecBitRateControlMode_Constant, kAudioCodecBitRateControlMode_LongTermAverage,
              kAudioCodecBitRateControlMode_VariableConstrained})
            if (audiotoolbox::HasBitRateMode(row, mode))
                for (const UInt32 rate : RatesOf(row))
                    cases.push_back({&row, mode, rate});
    return cases;
}

class EncoderBitRatesTest : public testing::TestWithParam<BitRateCase>
{
protected:
    // One second of noise at a listed bit rate; its neighbours are not listed.
    static void ExpectKept(const BitRateCase& inCase, UInt32 inChannels, UInt32 inBitRate)
    {
        SCOPED_TRACE(NameOf(inCase) + " " + std::to_string(inChannels) + " channels " +
                     std::to_string(inBitRate));
        const ConverterPtr converter =
            New(Floats(inCase.mRate, inChannels),
                Destination(inCase.mRow->mFormatID, inCase.mRate, inChannels));
        ASSERT_NE(converter, nullptr);
        ASSERT_EQ(Set(converter.get(), kAudioCodecPropertyBitRateControlMode, inCase.mMode), noErr);
        ASSERT_EQ(Set(converter.get(), kAudioConverterEncodeBitRate, inBitRate), noErr);
        for (const UInt32 neighbour : {inBitRate - 1, inBitRate + 1})
            EXPECT_NE(Set(converter.get(), kAudioConverterEncodeBitRate, neighbour), noErr);

        const Stream stream = EncodeNoise(converter.get(), inCase.mRate, inChannels);
        EXPECT_EQ(stream.mStatus, noErr);
        const double seconds = static_cast<double>(stream.mPackets.size()) *
                               stream.mFormat.mFramesPerPacket / inCase.mRate;
        const double told = static_cast<double>(stream.ByteCount()) * 8 / seconds;
        // A second is too short for an average, and mono noise for the highest ones.
        const bool isConstant = inCase.mMode == kAudioCodecBitRateControlMode_Constant;
        EXPECT_GE(told / inBitRate, isConstant ? 0.96 : 0.6) << told;
        EXPECT_LE(told / inBitRate, isConstant ? 1.04 : 1.25) << told;
    }
};

// Every one of mono and stereo; the ends of the list beyond, where each takes its time.
std::vector<UInt32> RatesToTry(const std::vector<UInt32>& inListed, UInt32 inChannels)
{
    return inChannels <= 2 ? inListed : std::vector<UInt32>{inListed.front(), inListed.back()};
}

TEST_P(EncoderBitRatesTest, EncodesAtListedOnes)
{
    const BitRateCase& subject = GetParam();
    for (const UInt32 channels : ChannelsOf(*subject.mRow))
    {
        const auto rates =
            audiotoolbox::EncoderBitRates(*subject.mRow, subject.mMode, subject.mRate, channels);
        ASSERT_FALSE(rates.empty()) << channels << " channels";
        for (const UInt32 bitRate : RatesToTry(rates, channels))
            ExpectKept(subject, channels, bitRate);
    }
}

INSTANTIATE_TEST_SUITE_P(Encoders, EncoderBitRatesTest, testing::ValuesIn(BitRateCases()));

}  // namespace
