// Audio that meets a host without stored settings: the default file, as far as it is repaired.
#include "Exported.h"
#include "Readers.h"

#include "host/StoredSettings.h"

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>

namespace export_matrix
{

namespace
{

constexpr std::int32_t kImpossible = -8;

struct RepairRow
{
    const char* mName;
    std::size_t mChannels;
    host::RepairMode mRepair;
    std::int32_t mResult;
};

void PrintTo(const RepairRow& inRow, std::ostream* outStream)
{
    *outStream << inRow.mName;
}

class WithoutSettings : public testing::TestWithParam<RepairRow>
{
protected:
    const Sound mSound = Noise(UsualLabels(GetParam().mChannels), 5001, 44100, 20);
    const host::ExportAnswer mAnswer = Ask(mSound, "", GetParam().mRepair);
    const Scratch mScratch;
    const std::string mPath = mScratch.File("file.caf");
};

TEST_P(WithoutSettings, TheDefaultFileIsJudged)
{
    EXPECT_EQ(mAnswer.mResult, GetParam().mResult);
    EXPECT_EQ(mAnswer.mAudio.mSampleRate, 44100);
    EXPECT_EQ(mAnswer.mAudio.ChannelCount(), GetParam().mChannels);
    EXPECT_EQ(mAnswer.mExtensions, std::vector<std::string>{"caf"});
    EXPECT_FALSE(mAnswer.mIsLossy);
    EXPECT_EQ(host::SettingsNumber(mAnswer.mSettings, "ChannelsPerFrame"),
              static_cast<int>(GetParam().mChannels));
}

TEST_P(WithoutSettings, WhatIsPossibleIsWritten)
{
    if (!mAnswer.IsPossible())
        GTEST_SKIP() << "refused, as the other test wants it";
    EXPECT_EQ(host::SettingsNumber(mAnswer.mSettings, "BytesPerFrame"),
              static_cast<int>(2 * GetParam().mChannels));
    Write(mPath, mSound, mAnswer.mSettings);
    const auto imported = testing_support::Import(mPath);
    EXPECT_EQ(imported.mInfo.mSampleType, 20);
    EXPECT_EQ(testing_support::Difference(mSound.mAudio, imported.mAudio), "");
    EXPECT_EQ(testing_support::Difference(mSound.mAudio, testing_support::ReadBySndfile(mPath)),
              "");
}

using Mode = host::RepairMode;

// The default settings are stereo, with the byte counts of stereo. Only fitting counts anew; there
// are no stored settings to go back to.
INSTANTIATE_TEST_SUITE_P(Shapes, WithoutSettings,
                         testing::Values(RepairRow{"MonoNone", 1, Mode::kNone, kImpossible},
                                         RepairRow{"MonoFit", 1, Mode::kFit, 0},
                                         RepairRow{"MonoStored", 1, Mode::kStored, kImpossible},
                                         RepairRow{"StereoNone", 2, Mode::kNone, 0},
                                         RepairRow{"StereoFit", 2, Mode::kFit, 0},
                                         RepairRow{"StereoStored", 2, Mode::kStored, 0},
                                         RepairRow{"SurroundNone", 6, Mode::kNone, kImpossible},
                                         RepairRow{"SurroundFit", 6, Mode::kFit, 0},
                                         RepairRow{"SurroundStored", 6, Mode::kStored,
                                                   kImpossible}),
                         [](const auto& inInfo) { return std::string(inInfo.param.mName); });

}  // namespace

}  // namespace export_matrix
