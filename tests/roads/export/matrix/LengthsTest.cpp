// Any number of frames can be exported with every pair: none, one, and around a codec's packet.
#include "Coding.h"
#include "Exported.h"

#include "host/Failure.h"

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace export_matrix
{

namespace
{

constexpr std::int32_t kSampleType = 20;

class Lengths : public testing::TestWithParam<Pair>
{
protected:
    Sound SoundOf(std::size_t inFrames) const
    {
        const auto labels = UsualLabels(mChannels);
        const std::int32_t rate = RateOf(GetParam());
        return IsLossy(GetParam()) ? Tones(labels, inFrames, rate, kSampleType)
                                   : Noise(labels, inFrames, rate, kSampleType);
    }

    // Streams of bare packets have nothing in them without one, so that nobody can tell what they
    // would have been.
    void ExpectEmpty() const
    {
        if (mCoding.mRoundedTo > 1 && GetParam().mType != kAudioFileAIFCType)
        {
            EXPECT_EQ(std::filesystem::file_size(mPath), 0u);
            EXPECT_THROW(testing_support::Import(mPath), host::Failure);
            return;
        }
        const auto imported = testing_support::Import(mPath);
        EXPECT_EQ(imported.mInfo.ChannelCount(), mChannels);
        EXPECT_EQ(imported.mInfo.mSampleRate, RateOf(GetParam()));
        EXPECT_EQ(imported.mInfo.mFrameCount, 0);
        EXPECT_EQ(imported.mAudio.FrameCount(), 0u);
    }

    void ExpectImported(const Sound& inSound) const
    {
        const std::size_t frames = inSound.mAudio.FrameCount();
        const auto imported = testing_support::Import(mPath, mCoding.mRoundedTo > 1);
        EXPECT_EQ(imported.mAudio.FrameCount(), ImportedFrames(mCoding, frames));
        EXPECT_EQ(imported.mAudio.mChannels.size(), mChannels);
        if (!IsLossy(GetParam()))
        {
            EXPECT_EQ(testing_support::Difference(inSound.mAudio, imported.mAudio), "");
        }
    }

    const Scratch mScratch;
    const std::string mPath = mScratch.File(FileName(GetParam()));
    const Variant mVariant = VariantsOf(GetParam()).back();
    const std::uint32_t mChannels = std::min<std::uint32_t>(2, ChannelCountsOf(GetParam()).back());
    const Coding mCoding = IsLossy(GetParam()) ? CodingOf(GetParam()) : Coding{};
};

TEST_P(Lengths, AroundAPacketComeBack)
{
    const std::size_t packet = std::max<std::size_t>(2, FramesPerPacket(GetParam(), mChannels));
    for (const std::size_t frames : {std::size_t{1}, packet - 1, packet, packet + 1})
    {
        SCOPED_TRACE(std::to_string(frames) + " frames");
        const Sound sound = SoundOf(frames);
        Export(mPath, mVariant, sound);
        ExpectImported(sound);
    }
}

TEST_P(Lengths, OfNothingMakeAnEmptyFile)
{
    const Sound none = SoundOf(0);
    Export(mPath, mVariant, none);
    ExpectEmpty();
}

TEST_P(Lengths, OfASessionWithoutBlocksMakeAnEmptyFile)
{
    const Sound none = SoundOf(0);
    WriteNoBlock(mPath, none, FittingSettings(mVariant, none));
    ExpectEmpty();
}

INSTANTIATE_TEST_SUITE_P(Pairs, Lengths, testing::ValuesIn(EveryPair()),
                         TestName<testing::TestParamInfo<Pair>>);

}  // namespace

}  // namespace export_matrix
