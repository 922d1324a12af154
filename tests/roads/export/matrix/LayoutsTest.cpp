// One sound for each channel: every order of channels comes back under its labels.
#include "Coding.h"
#include "Exported.h"
#include "Layouts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace export_matrix
{

namespace
{

using testing_support::SignalToDifference;

constexpr std::int32_t kSampleType = 20;
constexpr std::uint32_t kUnnamedTones = 120;
constexpr std::uint32_t kLFE = 103;

std::string TextOf(const Labels& inLabels)
{
    std::string text;
    for (const std::uint32_t label : inLabels)
        text += std::to_string(label) + " ";
    return text;
}

// A tone for each channel, also where two have the same label.
Sound OneToneAChannel(const Labels& inLabels, std::size_t inFrames, std::int32_t inRate)
{
    Labels tones = inLabels;
    for (std::size_t channel = 0; channel < tones.size(); ++channel)
        if (tones[channel] == 0)
            tones[channel] = kUnnamedTones + static_cast<std::uint32_t>(channel);
    Sound sound = Tones(tones, inFrames, inRate, kSampleType);
    sound.mLabels = inLabels;
    return sound;
}

Audio Alone(const Audio& inAudio, std::size_t inChannel)
{
    return {inAudio.mRate, {inAudio.mChannels[inChannel]}};
}

class LayoutsOf : public testing::TestWithParam<Pair>
{
protected:
    void ExpectSame(const Sound& inSound, std::size_t inChannel, const Audio& inRead,
                    std::size_t inPlace) const
    {
        const double decibels =
            SignalToDifference(Alone(inSound.mAudio, inChannel), Alone(inRead, inPlace),
                               static_cast<std::ptrdiff_t>(mCoding.mDelay));
        EXPECT_GE(decibels, mLeast) << "channel " << inChannel << " in place " << inPlace;
    }

    void ExpectNamed(const Sound& inSound, const Labels& inNames,
                     const testing_support::Imported& inRead) const
    {
        const Labels order = OrderInFile(GetParam(), inNames);
        ASSERT_EQ(inRead.mInfo.mLabels, order);
        for (std::size_t channel = 0; channel < inNames.size(); ++channel)
        {
            const auto place = std::find(order.begin(), order.end(), inNames[channel]);
            ExpectSame(inSound, channel, inRead.mAudio,
                       static_cast<std::size_t>(place - order.begin()));
        }
    }

    // A channel of low frequencies keeps nothing else.
    void ExpectInPlace(const Sound& inSound, const testing_support::Imported& inRead) const
    {
        for (std::size_t channel = 0; channel < inSound.mLabels.size(); ++channel)
            if (inRead.mInfo.mLabels[channel] != kLFE || !IsLossy(GetParam()))
                ExpectSame(inSound, channel, inRead.mAudio, channel);
    }

    const Scratch mScratch;
    const std::string mPath = mScratch.File(FileName(GetParam()));
    const Coding mCoding = IsLossy(GetParam()) ? CodingOf(GetParam()) : Coding{};
    const std::size_t mFrames = FramesPerPacket(GetParam(), 2) > 1 ? 6001 : 501;
    const double mLeast = IsLossy(GetParam()) ? 10.0 : 200.0;
};

std::vector<Pair> WithSeveralChannels()
{
    std::vector<Pair> pairs;
    for (const Pair& pair : EveryPair())
        if (ChannelCountsOf(pair).back() > 1)
            pairs.push_back(pair);
    return pairs;
}

TEST_P(LayoutsOf, KeepEachChannelUnderItsLabel)
{
    const auto counts = ChannelCountsOf(GetParam());
    const Variant variant = VariantsOf(GetParam()).back();
    for (const Labels& labels : EveryLayout())
    {
        if (std::find(counts.begin(), counts.end(), labels.size()) == counts.end())
            continue;
        SCOPED_TRACE(TextOf(labels));
        const Sound sound = OneToneAChannel(labels, mFrames, RateOf(GetParam()));
        Export(mPath, variant, sound);
        const auto read = testing_support::Import(mPath);
        ASSERT_EQ(read.mInfo.ChannelCount(), labels.size());
        if (const Labels names = LabelsInFile(GetParam(), labels); !names.empty())
            ExpectNamed(sound, names, read);
        else
            ExpectInPlace(sound, read);
    }
}

INSTANTIATE_TEST_SUITE_P(Pairs, LayoutsOf, testing::ValuesIn(WithSeveralChannels()),
                         TestName<testing::TestParamInfo<Pair>>);

}  // namespace

}  // namespace export_matrix
