// Lossy files arrive aligned and with their true length; decoders that are not FFmpeg agree.

#include "tests/roads/import/Imported.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace
{

using testing_support::Audio;
using testing_support::Import;
using testing_support::MadeFile;
using testing_support::ReadBySndfile;

struct LossyRow
{
    const char* mFile;
    const char* mSource;
    std::ptrdiff_t mDelay;    // of the delivered audio behind the source
    std::size_t mFrameCount;  // delivered
    double mLeastDecibels;    // signal to coding noise
};

void PrintTo(const LossyRow& inRow, std::ostream* outText)
{
    *outText << inRow.mFile;
}

constexpr std::ptrdiff_t kMostDelay = 1190;  // the surround tones repeat after 2400 frames

class LossyTest : public testing::TestWithParam<LossyRow>
{
};

TEST_P(LossyTest, IsAlignedAndOfTheRightLength)
{
    const LossyRow& row = GetParam();
    const auto imported = Import(MadeFile(row.mFile));
    const Audio source = ReadBySndfile(MadeFile(row.mSource));
    EXPECT_EQ(imported.mAudio.FrameCount(), row.mFrameCount);
    ASSERT_EQ(imported.mAudio.mChannels.size(), source.mChannels.size());
    EXPECT_EQ(testing_support::BestDelay(source, imported.mAudio, kMostDelay), row.mDelay);
    EXPECT_GT(testing_support::SignalToDifference(source, imported.mAudio, row.mDelay),
              row.mLeastDecibels);
}

// With a packet table the first delivered frame is the first one of the source. Raw streams have
// none, so that the encoder's delay stays in front and its padding at the end. The maker of the
// AC-3 and ADPCM files records lengths of whole packets.
INSTANTIATE_TEST_SUITE_P(
    Files, LossyTest,
    testing::Values(LossyRow{"mp3-128.mp3", "source-s16.wav", 0, 50021, 20.0},
                    LossyRow{"mp3-vbr.mp3", "source-s16.wav", 0, 50021, 20.0},
                    LossyRow{"mp3-untagged.mp3", "source-s16.wav", 1105, 51840, 20.0},
                    LossyRow{"mp2.mp2", "source-s16.wav", 481, 50688, 20.0},
                    LossyRow{"adts.aac", "source-s16.wav", 1024, 51200, 20.0},
                    LossyRow{"loas.loas", "source-s16.wav", 1024, 51200, 20.0},
                    LossyRow{"ac3.ac3", "source-s16.wav", 256, 50688, 20.0},
                    LossyRow{"eac3.eac3", "source-s16.wav", 256, 50688, 20.0},
                    LossyRow{"ac3-5.1.ac3", "source-s16-5.1.wav", 256, 41472, 20.0},
                    LossyRow{"aac.m4a", "source-s16.wav", 0, 50021, 20.0},
                    LossyRow{"aac-coarse.m4a", "source-s16.wav", 0, 50021, 20.0},
                    LossyRow{"aac.m4b", "source-s16.wav", 0, 50021, 20.0},
                    LossyRow{"aac.3gp", "source-s16.wav", 0, 50021, 20.0},
                    LossyRow{"aac-5.1.m4a", "source-s16-5.1.wav", 0, 40007, 20.0},
                    LossyRow{"ac3.m4a", "source-s16.wav", 0, 50432, 20.0},
                    LossyRow{"eac3.mp4", "source-s16.wav", 0, 50432, 20.0},
                    LossyRow{"mp3.mp4", "source-s16.wav", 0, 50021, 20.0},
                    LossyRow{"opus.mp4", "source-s16-48k.wav", 0, 54445, 15.0},
                    LossyRow{"wav-ima.wav", "source-s16.wav", 0, 50850, 20.0},
                    LossyRow{"wav-ms.wav", "source-s16.wav", 0, 50600, 20.0},
                    LossyRow{"video.mp4", "source-s16.wav", 0, 50021, 20.0}));

struct JudgeRow
{
    const char* mFile;
    const char* mCommand;   // %1 the file, %2 a WAVE file to write
    std::ptrdiff_t mDelay;  // of ours behind the judge's
    double mLeastDecibels;
};

void PrintTo(const JudgeRow& inRow, std::ostream* outText)
{
    *outText << inRow.mFile;
}

class JudgeTest : public testing::TestWithParam<JudgeRow>
{
protected:
    static std::string Filled(std::string inCommand, const std::string& inFile,
                              const std::string& inWave)
    {
        inCommand.replace(inCommand.find("%1"), 2, "'" + inFile + "'");
        inCommand.replace(inCommand.find("%2"), 2, "'" + inWave + "'");
        return inCommand;
    }
};

TEST_P(JudgeTest, DecodesToTheSameAudio)
{
    const JudgeRow& row = GetParam();
    const std::string wave =
        (std::filesystem::temp_directory_path() /
         (std::string("judged-") + std::filesystem::path(row.mFile).filename().string() + ".wav"))
            .string();
    ASSERT_EQ(std::system(Filled(row.mCommand, MadeFile(row.mFile), wave).c_str()), 0);
    const Audio judged = ReadBySndfile(wave);
    std::filesystem::remove(wave);

    const auto imported = Import(MadeFile(row.mFile), true);
    ASSERT_EQ(imported.mAudio.mChannels.size(), judged.mChannels.size());
    EXPECT_EQ(testing_support::BestDelay(judged, imported.mAudio, 1200), row.mDelay);
    EXPECT_GT(testing_support::SignalToDifference(judged, imported.mAudio, row.mDelay),
              row.mLeastDecibels);
}

INSTANTIATE_TEST_SUITE_P(
    Files, JudgeTest,
    testing::Values(JudgeRow{"mp3-128.mp3", "mpg123 -q -e f32 -w %2 %1 2>&1", 0, 90.0},
                    JudgeRow{"mp3-vbr.mp3", "mpg123 -q -e f32 -w %2 %1 2>&1", 0, 90.0},
                    JudgeRow{"mp2.mp2", "mpg123 -q -e f32 -w %2 %1 2>&1", 0, 60.0},
                    // This judge drops the first packet, and noise substitution differs.
                    JudgeRow{"adts.aac", "faad -q -b 4 -o %2 %1 2>/dev/null", 1024, 25.0},
                    JudgeRow{"flac-24.flac", "flac -s -d -f -o %2 %1", 0, 250.0},
                    JudgeRow{"flac-5.1.flac", "flac -s -d -f -o %2 %1", 0, 250.0},
                    JudgeRow{"wav-ima.wav", "sox %1 -b 24 %2", 0, 50.0},
                    JudgeRow{"wav-gsm.wav", "sox %1 -b 24 %2", 0, 60.0},
                    // This judge rounds the predictor at every packet.
                    JudgeRow{"aifc-ima4.aifc", "sndfile-convert -pcm24 %1 %2", 0, 40.0}));

}  // namespace
