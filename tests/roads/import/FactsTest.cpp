// What the plug-in tells of each kind of file, before a sample is read.

#include "host/StoredSettings.h"
#include "tests/roads/import/Imported.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

using Labels = std::vector<std::uint32_t>;

const Labels kStereo = {100, 101};
const Labels kSurround = {100, 101, 102, 103, 104, 105};

struct FactsRow
{
    const char* mFile;
    const char* mType;
    const char* mFormat;
    int mRate;
    Labels mLabels;
    int mBits;             // of the stored samples, 0 compressed
    std::int64_t mFrames;  // exact; 0: the file does not tell, so an estimate is in order
    double mBitrate;       // bits per second, exact for PCM, else within 5 %; 0: as the file's size
                           // tells, which counts its headers too
};

void PrintTo(const FactsRow& inRow, std::ostream* outText)
{
    *outText << inRow.mFile;
}

class FactsTest : public testing::TestWithParam<FactsRow>
{
protected:
    std::string Code(const host::AudioInfo& inInfo, const char* inKey) const
    {
        return host::CodeText(
            static_cast<std::uint32_t>(host::SettingsNumber(inInfo.mSettings, inKey)));
    }
};

TEST_P(FactsTest, AreToldRight)
{
    const FactsRow& row = GetParam();
    const host::ReadSession session(testing_support::BuiltPlugIn(),
                                    testing_support::MadeFile(row.mFile));
    const host::AudioInfo& info = session.Info();
    EXPECT_EQ(Code(info, "AudioFileTypeID"), row.mType);
    EXPECT_EQ(Code(info, "FormatID"), row.mFormat);
    EXPECT_EQ(info.mSampleRate, row.mRate);
    EXPECT_EQ(info.mLabels, row.mLabels);
    EXPECT_EQ(host::SettingsNumber(info.mSettings, "BitsPerChannel"), row.mBits);
    EXPECT_EQ(host::SettingsNumber(info.mSettings, "ChannelsPerFrame"),
              static_cast<int>(row.mLabels.size()));
    EXPECT_FALSE(info.mDescription.empty());
    EXPECT_EQ(info.mDescription.find('\n'), std::string::npos);
    if (row.mFrames > 0)
        EXPECT_EQ(info.mFrameCount, row.mFrames);
    else
        EXPECT_NEAR(static_cast<double>(info.mFrameCount), 51000.0, 2500.0);
    if (row.mBits > 0)
        EXPECT_EQ(info.mBitrate, static_cast<std::uint32_t>(row.mBitrate));
    else
    {
        const double bits =
            8.0 *
            static_cast<double>(std::filesystem::file_size(testing_support::MadeFile(row.mFile)));
        const double expected = row.mBitrate > 0 ? row.mBitrate : bits / info.Seconds();
        EXPECT_NEAR(info.mBitrate, expected, expected * (row.mBitrate > 0 ? 0.05 : 0.12));
    }
}

constexpr double kPCM16 = 44100.0 * 2 * 16;

INSTANTIATE_TEST_SUITE_P(
    Files, FactsTest,
    testing::Values(
        FactsRow{"wav-u8.wav", "WAVE", "lpcm", 44100, kStereo, 8, 50021, kPCM16 / 2},
        FactsRow{"wav-s16.wav", "WAVE", "lpcm", 44100, kStereo, 16, 50021, kPCM16},
        FactsRow{"wav-s24.wav", "WAVE", "lpcm", 44100, kStereo, 24, 50021, kPCM16 * 1.5},
        FactsRow{"wav-s32.wav", "WAVE", "lpcm", 44100, kStereo, 32, 50021, kPCM16 * 2},
        FactsRow{"wav-f64.wav", "WAVE", "lpcm", 44100, kStereo, 64, 50021, kPCM16 * 4},
        FactsRow{"wav-s24-5.1.wav", "WAVE", "lpcm", 48000, kSurround, 24, 40007, 48000.0 * 6 * 24},
        FactsRow{"wav-alaw.wav", "WAVE", "alaw", 44100, kStereo, 0, 50021, kPCM16 / 2},
        FactsRow{"wav-mulaw.wav", "WAVE", "ulaw", 44100, kStereo, 0, 50021, kPCM16 / 2},
        FactsRow{"rf64-s16.wav", "RF64", "lpcm", 44100, kStereo, 16, 50021, kPCM16},
        FactsRow{"bw64-s16.wav", "BW64", "lpcm", 44100, kStereo, 16, 50021, kPCM16},
        FactsRow{"w64-s24.w64", "W64f", "lpcm", 44100, kStereo, 24, 50021, kPCM16 * 1.5},
        FactsRow{"aiff-s16.aiff", "AIFF", "lpcm", 44100, kStereo, 16, 50021, kPCM16},
        FactsRow{"aifc-sowt.aifc", "AIFC", "lpcm", 44100, kStereo, 16, 50021, kPCM16},
        FactsRow{"aifc-f64.aifc", "AIFC", "lpcm", 44100, kStereo, 64, 50021, kPCM16 * 4},
        FactsRow{"aifc-alaw.aifc", "AIFC", "alaw", 44100, kStereo, 0, 50021, kPCM16 / 2},
        FactsRow{"caf-s24be.caf", "caff", "lpcm", 44100, kStereo, 24, 50021, kPCM16 * 1.5},
        FactsRow{"caf-f32le.caf", "caff", "lpcm", 44100, kStereo, 32, 50021, kPCM16 * 2},
        FactsRow{"caf-mulaw.caf", "caff", "ulaw", 44100, kStereo, 0, 50021, kPCM16 / 2},
        FactsRow{"au-s16.au", "NeXT", "lpcm", 44100, kStereo, 16, 50021, kPCM16},
        FactsRow{"au-alaw.au", "NeXT", "alaw", 44100, kStereo, 0, 50021, kPCM16 / 2},
        FactsRow{"mp3-128.mp3", "MPG3", ".mp3", 44100, kStereo, 0, 50021, 128000},
        FactsRow{"mp3-untagged.mp3", "MPG3", ".mp3", 44100, kStereo, 0, 0, 128000},
        FactsRow{"mp3-22k.mp3", "MPG3", ".mp3", 22050, kStereo, 0, 25011, 64000},
        FactsRow{"mp2.mp2", "MPG2", ".mp2", 44100, kStereo, 0, 0, 192000},
        FactsRow{"adts.aac", "adts", "aac ", 44100, kStereo, 0, 0, 128000},
        FactsRow{"loas.loas", "loas", "aac ", 44100, kStereo, 0, 0, 128000},
        FactsRow{"ac3.ac3", "ac-3", "ac-3", 44100, kStereo, 0, 0, 192000},
        FactsRow{"ac3-5.1.ac3", "ac-3", "ac-3", 48000, kSurround, 0, 41472, 448000},
        FactsRow{"eac3.eac3", "ec-3", "ec-3", 44100, kStereo, 0, 0, 192000},
        FactsRow{"flac-16.flac", "flac", "flac", 44100, kStereo, 0, 50021, 0},
        FactsRow{"flac-5.1.flac", "flac", "flac", 48000, kSurround, 0, 40007, 0},
        FactsRow{"aac.m4a", "m4af", "aac ", 44100, kStereo, 0, 50021, 128000},
        FactsRow{"aac-coarse.m4a", "m4af", "aac ", 44100, kStereo, 0, 50021, 128000},
        FactsRow{"aac.m4b", "m4bf", "aac ", 44100, kStereo, 0, 50021, 128000},
        FactsRow{"aac.3gp", "3gpp", "aac ", 44100, kStereo, 0, 50021, 128000},
        FactsRow{"aac.3g2", "3gp2", "aac ", 44100, kStereo, 0, 50021, 128000},
        FactsRow{"aac-5.1.m4a", "m4af", "aac ", 48000, kSurround, 0, 40007, 320000},
        FactsRow{"alac-16.m4a", "m4af", "alac", 44100, kStereo, 0, 50021, 0},
        FactsRow{"alac-5.1.m4a", "m4af", "alac", 48000, kSurround, 0, 40007, 0},
        FactsRow{"ac3.m4a", "m4af", "ac-3", 44100, kStereo, 0, 50432, 192000},
        FactsRow{"eac3.mp4", "mp4f", "ec-3", 44100, kStereo, 0, 50432, 192000},
        FactsRow{"mp3.mp4", "mp4f", ".mp3", 44100, kStereo, 0, 50021, 128000},
        FactsRow{"opus.mp4", "mp4f", "opus", 48000, kStereo, 0, 54445, 128000},
        FactsRow{"flac.mp4", "mp4f", "flac", 44100, kStereo, 0, 50021, 0},
        FactsRow{"video.mp4", "mp4f", "aac ", 44100, kStereo, 0, 50021, 128000}));

}  // namespace
