// Every lossy pair keeps the audio in its place and near enough, for our import and other readers.
#include "Coding.h"
#include "Exported.h"
#include "Packets.h"
#include "Readers.h"

#include "host/StoredSettings.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace export_matrix
{

namespace
{

using testing_support::SignalToDifference;

constexpr std::size_t kFrames = 8001;
constexpr std::uint32_t kChannelCounts[] = {1, 2, 6};
constexpr std::int32_t kSampleTypes[] = {10, 20, 30, 40};

// Delays nearby are worse, so that this one is meant to the frame.
void ExpectAligned(const Audio& inSource, const Audio& inRead, std::size_t inDelay, double inLeast)
{
    ASSERT_EQ(inRead.mChannels.size(), inSource.mChannels.size());
    const auto delay = static_cast<std::ptrdiff_t>(inDelay);
    const double decibels = SignalToDifference(inSource, inRead, delay);
    EXPECT_GE(decibels, inLeast);
    for (const std::ptrdiff_t off : {-2, -1, 1, 2})
        EXPECT_GT(decibels, SignalToDifference(inSource, inRead, delay + off)) << off;
}

class LossyPairs : public testing::TestWithParam<Pair>
{
protected:
    void ExpectImported(const Sound& inSound)
    {
        const auto imported = testing_support::Import(mPath, mCoding.mRoundedTo > 1);
        EXPECT_EQ(
            static_cast<std::uint32_t>(host::SettingsNumber(imported.mInfo.mSettings, "FormatID")),
            GetParam().mFormat);
        EXPECT_EQ(imported.mAudio.FrameCount(), ImportedFrames(mCoding, kFrames));
        if (mCoding.mRoundedTo == 1)
        {
            EXPECT_EQ(imported.mInfo.mFrameCount, static_cast<std::int64_t>(kFrames));
        }
        ExpectAligned(inSound.mAudio, imported.mAudio, mCoding.mDelay, mCoding.mLeastDecibels);
    }

    void ExpectPacketTable() const
    {
        const auto table = PacketTableOf(mPath);
        if (mCoding.mHasPacketTable)
        {
            ASSERT_TRUE(table.has_value());
            EXPECT_EQ(table->mPrimingFrames, mCoding.mPriming);
            EXPECT_EQ(table->mNumberValidFrames, static_cast<SInt64>(kFrames));
        }
    }

    void ExpectOthersAgree(const Variant& inVariant, const Sound& inSound)
    {
        const auto channels = static_cast<std::uint32_t>(inSound.mLabels.size());
        const auto readings = ReadingsOf(inVariant, channels);
        EXPECT_FALSE(readings.empty()) << "nobody reads this pair";
        for (const Reading& reading : readings)
        {
            SCOPED_TRACE(reading.mReader);
            const Audio read = ReadBy(reading, mPath, mScratch.File("read.wav"), channels);
            const std::size_t most =
                reading.mLength == Length::kExact
                    ? kFrames
                    : kFrames + reading.mDelay + 2 * FramesPerPacket(GetParam(), channels);
            EXPECT_GE(read.FrameCount(), kFrames + reading.mDelay);
            EXPECT_LE(read.FrameCount(), most);
            ExpectAligned(inSound.mAudio, read, reading.mDelay, mCoding.mLeastDecibels);
        }
    }

    const Scratch mScratch;
    const std::string mPath = mScratch.File(FileName(GetParam()));
    const Coding mCoding = CodingOf(GetParam());
};

std::vector<Pair> Lossy()
{
    std::vector<Pair> pairs;
    for (const Pair& pair : EveryPair())
        if (IsLossy(pair))
            pairs.push_back(pair);
    return pairs;
}

bool Has(const std::vector<std::uint32_t>& inCounts, std::uint32_t inCount)
{
    return std::find(inCounts.begin(), inCounts.end(), inCount) != inCounts.end();
}

TEST_P(LossyPairs, KeepTheAudioInItsPlace)
{
    const Pair& pair = GetParam();
    const Variant variant = VariantsOf(pair).at(0);
    const auto counts = ChannelCountsOf(pair);
    for (const std::uint32_t channels : kChannelCounts)
        for (const std::int32_t type : kSampleTypes)
        {
            if (!Has(counts, channels))
                continue;
            SCOPED_TRACE("channels " + std::to_string(channels) + " type " + std::to_string(type));
            const Sound sound = Tones(UsualLabels(channels), kFrames, RateOf(pair), type);
            Export(mPath, variant, sound);
            ExpectImported(sound);
            ExpectPacketTable();
            if (type == 40)
                ExpectOthersAgree(variant, sound);
        }
}

INSTANTIATE_TEST_SUITE_P(Pairs, LossyPairs, testing::ValuesIn(Lossy()),
                         TestName<testing::TestParamInfo<Pair>>);

}  // namespace

}  // namespace export_matrix
