// Every lossless pair keeps each sample, as our import and other readers find it.
#include "Exported.h"
#include "Readers.h"

#include "host/StoredSettings.h"

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace export_matrix
{

namespace
{

constexpr std::size_t kFrames = 9001;
constexpr std::uint32_t kChannelCounts[] = {1, 2, 6};
constexpr std::int32_t kSampleTypes[] = {10, 20, 30, 40};

// Bits that the file keeps of a sample; whole numbers of 32 bits and floats keep all 32-bit floats
// of Noise.
int KeptBits(const Variant& inVariant, std::int32_t inSampleType)
{
    if (inVariant.IsPCM())
        return static_cast<int>(inVariant.mBits);
    const int byFlags[] = {inSampleType <= 20 ? 16 : 24, 16, 20, 24, 32};
    return byFlags[inVariant.mFlags];
}

int BitsOf(std::int32_t inSampleType)
{
    return inSampleType / 10 * 8;
}

// Half a step where the file keeps fewer bits, and nothing else.
double MostDifference(const Variant& inVariant, std::int32_t inSampleType)
{
    const int kept = KeptBits(inVariant, inSampleType);
    return kept >= BitsOf(inSampleType) ? 0.0 : std::ldexp(1.0, -kept);
}

// A sample that rounds to full scale and has no number there is a step lower.
bool IsNear(double inSource, double inRead, double inMost)
{
    return std::abs(inSource - inRead) <= inMost ||
           (inMost > 0 && inSource >= 1 - inMost && inRead == 1 - 2 * inMost);
}

std::string FirstDifference(const Audio& inSource, const Audio& inRead, double inMost)
{
    if (inMost == 0.0 || inSource.mChannels.size() != inRead.mChannels.size() ||
        inSource.FrameCount() != inRead.FrameCount())
        return testing_support::Difference(inSource, inRead);
    std::ostringstream text;
    for (std::size_t channel = 0; channel < inSource.mChannels.size(); ++channel)
        for (std::size_t frame = 0; frame < inSource.FrameCount(); ++frame)
        {
            const double source = inSource.mChannels[channel][frame];
            const double read = inRead.mChannels[channel][frame];
            if (IsNear(source, read, inMost))
                continue;
            text << "channel " << channel << " frame " << frame << ": " << source << " and "
                 << read;
            return text.str();
        }
    return {};
}

std::uint32_t Told(const host::AudioInfo& inInfo, const char* inKey)
{
    return static_cast<std::uint32_t>(host::SettingsNumber(inInfo.mSettings, inKey));
}

void ExpectStoredAs(const Variant& inVariant, const host::AudioInfo& inInfo)
{
    EXPECT_EQ(Told(inInfo, "AudioFileTypeID"), inVariant.mPair.mType);
    EXPECT_EQ(Told(inInfo, "FormatID"), inVariant.mPair.mFormat);
    EXPECT_EQ(inInfo.mFrameCount, static_cast<std::int64_t>(kFrames));
    if (!inVariant.IsPCM())
        return;
    EXPECT_EQ(Told(inInfo, "BitsPerChannel"), inVariant.mBits);
    const std::uint32_t order = inVariant.mBits == 8 ? kAudioFormatFlagIsBigEndian : 0;
    EXPECT_EQ(Told(inInfo, "FormatFlags") | order, inVariant.mFlags | order);
}

class LosslessPairs : public testing::TestWithParam<Pair>
{
protected:
    void ExportAndImport(const Variant& inVariant, const Sound& inSound)
    {
        const double most = MostDifference(inVariant, inSound.mSampleType);
        Export(mPath, inVariant, inSound);
        const auto imported = testing_support::Import(mPath);
        ExpectStoredAs(inVariant, imported.mInfo);
        EXPECT_EQ(FirstDifference(inSound.mAudio, imported.mAudio, most), "");
    }

    void ExpectOthersAgree(const Variant& inVariant, const Sound& inSound)
    {
        const double most = MostDifference(inVariant, inSound.mSampleType);
        const auto channels = static_cast<std::uint32_t>(inSound.mLabels.size());
        const auto readings = ReadingsOf(inVariant, channels);
        EXPECT_FALSE(readings.empty()) << "nobody reads this pair";
        for (const Reading& reading : readings)
        {
            const Audio read = ReadBy(reading, mPath, mScratch.File("read.wav"), channels);
            EXPECT_EQ(FirstDifference(inSound.mAudio, read, most), "") << reading.mReader;
        }
    }

    const Scratch mScratch;
    const std::string mPath = mScratch.File(FileName(GetParam()));
};

std::vector<Pair> Lossless()
{
    std::vector<Pair> pairs;
    for (const Pair& pair : EveryPair())
        if (!IsLossy(pair))
            pairs.push_back(pair);
    return pairs;
}

bool Has(const std::vector<std::uint32_t>& inCounts, std::uint32_t inCount)
{
    return std::find(inCounts.begin(), inCounts.end(), inCount) != inCounts.end();
}

TEST_P(LosslessPairs, KeepEverySampleOfEveryWidth)
{
    const Pair& pair = GetParam();
    const auto counts = ChannelCountsOf(pair);
    for (const Variant& variant : VariantsOf(pair))
        for (const std::uint32_t channels : kChannelCounts)
        {
            if (!Has(counts, channels))
                continue;
            for (const std::int32_t type : kSampleTypes)
            {
                SCOPED_TRACE(NameOf(variant) + " channels " + std::to_string(channels) + " type " +
                             std::to_string(type));
                const Sound sound = Noise(UsualLabels(channels), kFrames, RateOf(pair), type);
                ExportAndImport(variant, sound);
                if (type == 40)
                    ExpectOthersAgree(variant, sound);
            }
        }
}

INSTANTIATE_TEST_SUITE_P(Pairs, LosslessPairs, testing::ValuesIn(Lossless()),
                         TestName<testing::TestParamInfo<Pair>>);

}  // namespace

}  // namespace export_matrix
