// Lossless sources arrive bit for bit, at the depth of the client format; libsndfile is the judge.

#include "tests/roads/import/Imported.h"

#include <gtest/gtest.h>

namespace
{

using testing_support::Audio;
using testing_support::Import;
using testing_support::MadeFile;
using testing_support::ReadBySndfile;

struct LosslessRow
{
    const char* mFile;
    const char* mSource;       // what it was made from
    std::int32_t mSampleType;  // as delivered
};

void PrintTo(const LosslessRow& inRow, std::ostream* outText)
{
    *outText << inRow.mFile;
}

class LosslessTest : public testing::TestWithParam<LosslessRow>
{
};

// What a 32-bit float can hold of a source.
void RoundToFloat(Audio& ioAudio)
{
    for (auto& channel : ioAudio.mChannels)
        for (double& sample : channel)
            sample = static_cast<float>(sample);
}

TEST_P(LosslessTest, ArrivesBitForBit)
{
    const LosslessRow& row = GetParam();
    const auto imported = Import(MadeFile(row.mFile));
    EXPECT_EQ(imported.mInfo.mSampleType, row.mSampleType);

    Audio source = ReadBySndfile(MadeFile(row.mSource));
    ASSERT_GT(source.FrameCount(), 0u);
    RoundToFloat(source);
    EXPECT_EQ(testing_support::Difference(imported.mAudio, source), "");
    EXPECT_EQ(imported.mAudio.mRate, source.mRate);
}

INSTANTIATE_TEST_SUITE_P(Files, LosslessTest,
                         testing::Values(LosslessRow{"wav-u8.wav", "source-u8.wav", 10},
                                         LosslessRow{"wav-s16.wav", "source-s16.wav", 20},
                                         LosslessRow{"wav-s24.wav", "source-s24.wav", 30},
                                         LosslessRow{"wav-s32.wav", "source-s32.wav", 40},
                                         LosslessRow{"wav-f32.wav", "source-f32.wav", 40},
                                         LosslessRow{"wav-f64.wav", "source-f64.wav", 40},
                                         LosslessRow{"rf64-u8.wav", "source-u8.wav", 10},
                                         LosslessRow{"rf64-s16.wav", "source-s16.wav", 20},
                                         LosslessRow{"rf64-s24.wav", "source-s24.wav", 30},
                                         LosslessRow{"rf64-s32.wav", "source-s32.wav", 40},
                                         LosslessRow{"rf64-f32.wav", "source-f32.wav", 40},
                                         LosslessRow{"rf64-f64.wav", "source-f64.wav", 40},
                                         LosslessRow{"bw64-s16.wav", "source-s16.wav", 20},
                                         LosslessRow{"bw64-s24.wav", "source-s24.wav", 30},
                                         LosslessRow{"bw64-f64.wav", "source-f64.wav", 40},
                                         LosslessRow{"w64-s24.w64", "source-s24.wav", 30},
                                         LosslessRow{"w64-s32.w64", "source-s32.wav", 40},
                                         LosslessRow{"w64-f32.w64", "source-f32.wav", 40},
                                         LosslessRow{"w64-f64.w64", "source-f64.wav", 40},
                                         LosslessRow{"aiff-s8.aiff", "source-u8.wav", 10},
                                         LosslessRow{"aiff-s16.aiff", "source-s16.wav", 20},
                                         LosslessRow{"aiff-s24.aiff", "source-s24.wav", 30},
                                         LosslessRow{"aiff-s32.aiff", "source-s32.wav", 40},
                                         LosslessRow{"aifc-sowt.aifc", "source-s16.wav", 20},
                                         LosslessRow{"aifc-f32.aifc", "source-f32.wav", 40},
                                         LosslessRow{"aifc-f64.aifc", "source-f64.wav", 40},
                                         LosslessRow{"caf-s8be.caf", "source-u8.wav", 10},
                                         LosslessRow{"caf-s16be.caf", "source-s16.wav", 20},
                                         LosslessRow{"caf-s24be.caf", "source-s24.wav", 30},
                                         LosslessRow{"caf-s32be.caf", "source-s32.wav", 40},
                                         LosslessRow{"caf-f32be.caf", "source-f32.wav", 40},
                                         LosslessRow{"caf-f64be.caf", "source-f64.wav", 40},
                                         LosslessRow{"caf-s16le.caf", "source-s16.wav", 20},
                                         LosslessRow{"caf-s24le.caf", "source-s24.wav", 30},
                                         LosslessRow{"caf-s32le.caf", "source-s32.wav", 40},
                                         LosslessRow{"caf-f32le.caf", "source-f32.wav", 40},
                                         LosslessRow{"caf-f64le.caf", "source-f64.wav", 40},
                                         LosslessRow{"au-s8.au", "source-u8.wav", 10},
                                         LosslessRow{"au-s16.au", "source-s16.wav", 20},
                                         LosslessRow{"au-s24.au", "source-s24.wav", 30},
                                         LosslessRow{"au-s32.au", "source-s32.wav", 40},
                                         LosslessRow{"au-f32.au", "source-f32.wav", 40},
                                         LosslessRow{"au-f64.au", "source-f64.wav", 40},
                                         LosslessRow{"wav-s24-5.1.wav", "source-s24-5.1.wav", 30},
                                         LosslessRow{"caf-s24-5.1.caf", "source-s24-5.1.wav", 30},
                                         LosslessRow{"flac-16.flac", "source-s16.wav", 40},
                                         LosslessRow{"flac-24.flac", "source-s24.wav", 40},
                                         LosslessRow{"flac-5.1.flac", "source-s24-5.1.wav", 40},
                                         LosslessRow{"flac.mp4", "source-s16.wav", 40},
                                         LosslessRow{"alac-16.m4a", "source-s16.wav", 40},
                                         LosslessRow{"alac-24.m4a", "source-s24.wav", 40},
                                         LosslessRow{"alac-5.1.m4a", "source-s24-5.1.wav", 40}));

// These decode to the same samples in any decoder; libsndfile reads the very same file.
class SameSamplesTest : public testing::TestWithParam<const char*>
{
};

TEST_P(SameSamplesTest, AsLibsndfileDecodesThem)
{
    const auto imported = Import(MadeFile(GetParam()));
    const Audio judged = ReadBySndfile(MadeFile(GetParam()));
    ASSERT_GT(judged.FrameCount(), 0u);
    EXPECT_EQ(testing_support::Difference(imported.mAudio, judged), "");
}

INSTANTIATE_TEST_SUITE_P(Files, SameSamplesTest,
                         testing::Values("wav-alaw.wav", "wav-mulaw.wav", "aifc-alaw.aifc",
                                         "aifc-mulaw.aifc", "caf-alaw.caf", "caf-mulaw.caf",
                                         "au-alaw.au", "au-mulaw.au", "wav-ms.wav",
                                         // Their maker counts the padding of the data as samples.
                                         "w64-u8.w64", "w64-s16.w64"));

}  // namespace
