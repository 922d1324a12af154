// Creating a file: every call in its order, and what each failure leaves.
#include "tests/appleaudiotoolbox/WriterFixture.h"
#include "tests/support/TraceLines.h"

#include <kelpcore/debug/Trace.h>

namespace
{

using namespace testing_support;

using WriterCreation = WriterTest;
using WriterTrace = WriterTest;

const std::string kCreateWave =
    "ExtAudioFileCreateWithURL \"/music/a.wav\" 'WAVE' format 44100 'lpcm' 12 4/1/4/2/16 "
    "layout: 00 00 00 00 00 00 00 00 02 00 00 00"
    " 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
    " 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 flags 3";
// 44100.0, 'lpcm', flags, packet bytes, 1, frame bytes, 2, bits, 0
const std::string kClient16 =
    "ExtAudioFileSetProperty 'cfmt' size 40: 00 00 00 00 80 88 e5 40 6d 63 70 6c 0c 00 00 00"
    " 04 00 00 00 01 00 00 00 04 00 00 00 02 00 00 00 10 00 00 00 00 00 00 00";
const std::string kGetConverter = "ExtAudioFileGetProperty 'acnv' size 8";
const std::string kTakeOver = "ExtAudioFileSetProperty 'accf' size 8: 00 00 00 00 00 00 00 00";

std::vector<std::string> Starts(const std::vector<std::string>& inLines)
{
    std::vector<std::string> starts;
    for (const std::string& line : inLines)
        starts.push_back(line.substr(0, line.find('\'', line.find('\'') + 1) + 1));
    return starts;
}

TEST_F(WriterCreation, OfAWaveFileErasesAndLeavesDataUnaligned)
{
    EXPECT_TRUE(Create(kWAVE, kStereo16));
    EXPECT_EQ(mPlatform.Calls(), (Lines{kCreateWave, kClient16}));
    EXPECT_EQ(mInfo.mSite, 0u);
}

TEST_F(WriterCreation, OfAnyOtherTypeOnlyErases)
{
    for (const UInt32 type : {kAIFF, kAIFC, kCAF, kM4A, UInt32(0)})
    {
        mWriter = std::make_unique<appleaudiotoolbox::ATWriter>();
        mPlatform.ForgetCalls();
        EXPECT_TRUE(Create(type, kStereo16));
        const std::string& call = mPlatform.Calls()[0];
        EXPECT_EQ(call.substr(call.size() - 7), "flags 1") << type;
    }
}

TEST_F(WriterCreation, ToldWithoutChannelsHandsOverAnEmptyLayout)
{
    EXPECT_TRUE(mWriter->Initialize("/a", kAIFF, kStereo16, {}, 2, 0, mInfo, 0, 0, 0));
    EXPECT_EQ(
        mPlatform.Calls()[0],
        "ExtAudioFileCreateWithURL \"/a\" 'AIFF' format 44100 'lpcm' 12 4/1/4/2/16 layout: 00 "
        "00 00 00 00 00 00 00 00 00 00 00 flags 1");
}

TEST_F(WriterCreation, TranslatesLabelsInTheOrderOfTheHost)
{
    EXPECT_TRUE(
        mWriter->Initialize("/a", kAIFF, kStereo16, Labels({103, 0}), 2, 0, mInfo, 0, 0, 0));
    EXPECT_EQ(
        mPlatform.Calls()[0],
        "ExtAudioFileCreateWithURL \"/a\" 'AIFF' format 44100 'lpcm' 12 4/1/4/2/16 layout: 00 "
        "00 00 00 00 00 00 00 02 00 00 00"
        " 04 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"
        " 90 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 flags 1");
}

TEST_F(WriterCreation, KeepsTheBytesOfThePath)
{
    const UTF8String path = "/a b/100%25/\xC3\xA4\xF0\x9F\x98\x80.wav";
    EXPECT_TRUE(mWriter->Initialize(path, kWAVE, kStereo16, {}, 2, 0, mInfo, 0, 0, 0));
    EXPECT_EQ(mPlatform.OpenedPath(), std::string(path));
}

TEST_F(WriterCreation, MakesTheClientFormatOfTheWidth)
{
    struct Row
    {
        unsigned int mWidth;
        const char* mFlagsToBits;  // flags, packet bytes, 1, frame bytes, 2, bits
    };
    const Row rows[] = {
        {1, "08 00 00 00 02 00 00 00 01 00 00 00 02 00 00 00 02 00 00 00 08 00 00 00"},
        {2, "0c 00 00 00 04 00 00 00 01 00 00 00 04 00 00 00 02 00 00 00 10 00 00 00"},
        {3, "0c 00 00 00 06 00 00 00 01 00 00 00 06 00 00 00 02 00 00 00 18 00 00 00"},
        {4, "09 00 00 00 08 00 00 00 01 00 00 00 08 00 00 00 02 00 00 00 20 00 00 00"}};
    for (const Row& row : rows)
    {
        mWriter = std::make_unique<appleaudiotoolbox::ATWriter>();
        mPlatform.ForgetCalls();
        EXPECT_TRUE(Create(kWAVE, kStereo16, row.mWidth));
        EXPECT_EQ(mPlatform.Calls()[1],
                  "ExtAudioFileSetProperty 'cfmt' size 40: 00 00 00 00 80 88 e5 40 6d 63 70 6c " +
                      std::string(row.mFlagsToBits) + " 00 00 00 00");
        EXPECT_EQ(mWriter->GetNumWriteBytesPerFrame(), row.mWidth);
        EXPECT_EQ(mWriter->GetChannelsPerFrame(), 2);
    }
}

TEST_F(WriterCreation, KeepsARateThatIsNotWhole)
{
    AudioStreamBasicDescription format = kStereo16;
    format.mSampleRate = 22254.5;
    EXPECT_TRUE(Create(kWAVE, format));
    EXPECT_EQ(mPlatform.Calls()[1].substr(0, 64),
              "ExtAudioFileSetProperty 'cfmt' size 40: 00 00 00 00 a0 bb d5 40 ");
}

TEST_F(WriterCreation, WithoutChannelsOnlyMakesAFormatWithoutFrames)
{
    AudioStreamBasicDescription format = kStereo16;
    format.mChannelsPerFrame = 0;
    EXPECT_TRUE(Create(kWAVE, format));
    EXPECT_EQ(mWriter->GetChannelsPerFrame(), 0);
    EXPECT_EQ(mWriter->GetNumWriteBytesPerFrame(), 0u);
    EXPECT_TRUE(Write({1, 2, 3, 4}));
    EXPECT_EQ(mPlatform.Calls().back(), "ExtAudioFileWrite frames 0 buffers 1 channels 0 bytes 4");
}

TEST_F(WriterCreation, SetsModeAndBitRateBelowMode3)
{
    for (const unsigned int mode : {0u, 1u, 2u})
    {
        mWriter = std::make_unique<appleaudiotoolbox::ATWriter>();
        mPlatform.ForgetCalls();
        mMode = mode;
        EXPECT_TRUE(Create(kM4A, kStereoAAC, 4));
        const Lines& calls = mPlatform.Calls();
        ASSERT_EQ(calls.size(), 6u);
        EXPECT_EQ(Starts({calls[0], calls[1]}),
                  (Lines{"ExtAudioFileCreateWithURL \"/music/a.wav\" 'm4af'",
                         "ExtAudioFileSetProperty 'cfmt'"}));
        EXPECT_EQ(calls[2], kGetConverter);
        EXPECT_EQ(calls[3], "AudioConverterSetProperty 'acbf' size 4: 0" + std::to_string(mode) +
                                " 00 00 00");
        EXPECT_EQ(calls[4], "AudioConverterSetProperty 'brat' size 4: 00 f4 01 00");
        EXPECT_EQ(calls[5], kTakeOver);
    }
}

// Settings may name any mode, and it is for the platform to refuse it.
TEST_F(WriterCreation, SetsABitRateInAModeThatIsNone)
{
    mMode = 4;
    mPlatform.Answer(Family::Converter, kAudioCodecPropertyBitRateControlMode, PropertyAnswer());
    mPlatform.Answer(Family::Converter, kAudioConverterEncodeBitRate, PropertyAnswer());
    EXPECT_TRUE(Create(kM4A, kStereoAAC, 4));
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"),
              (Lines{"AudioConverterSetProperty 'acbf' size 4: 04 00 00 00",
                     "AudioConverterSetProperty 'brat' size 4: 00 f4 01 00"}));
}

TEST_F(WriterCreation, SetsModeAndQualityInMode3)
{
    mMode = 3;
    mQuality = 100;
    mPlatform.Answer(Family::Converter, kAudioCodecPropertySoundQualityForVBR, PropertyAnswer());
    EXPECT_TRUE(Create(kM4A, kStereoAAC, 4));
    const Lines& calls = mPlatform.Calls();
    ASSERT_EQ(calls.size(), 6u);
    EXPECT_EQ(calls[2], kGetConverter);
    EXPECT_EQ(calls[3], "AudioConverterSetProperty 'acbf' size 4: 03 00 00 00");
    EXPECT_EQ(calls[4], "AudioConverterSetProperty 'vbrq' size 4: 00 00 c8 42") << "100.0";
    EXPECT_EQ(calls[5], kTakeOver);
}

TEST_F(WriterCreation, OfAFormatThatTheTypeIsNotKnownToHoldFetchesNoConverter)
{
    EXPECT_TRUE(Create(kCAF, kStereoAAC, 4));
    EXPECT_EQ(mPlatform.Calls().size(), 2u);
}

struct FailureRow
{
    const char* mWhy;
    unsigned int mMode;
    int mFailingCall;
    unsigned int mSite;
    const char* mLastCall;
};

TEST_F(WriterCreation, EndsAtTheFirstCallThatFailsWithItsSite)
{
    const FailureRow rows[] = {
        {"creation", 0, 1, 18, "ExtAudioFileCreateWithURL \"/music/a.wav\" 'm4af'"},
        {"client format", 0, 2, 19, "ExtAudioFileSetProperty 'cfmt'"},
        {"converter", 0, 3, 20, "ExtAudioFileGetProperty 'acnv'"},
        {"mode", 0, 4, 15, "AudioConverterSetProperty 'acbf'"},
        {"bit rate", 0, 5, 14, "AudioConverterSetProperty 'brat'"},
        {"taking over", 0, 6, 21, "ExtAudioFileSetProperty 'accf'"},
        {"mode 3", 3, 4, 15, "AudioConverterSetProperty 'acbf'"},
        {"quality", 3, 5, 15, "AudioConverterSetProperty 'vbrq'"},
        {"taking over in mode 3", 3, 6, 21, "ExtAudioFileSetProperty 'accf'"},
    };
    mPlatform.Answer(Family::Converter, kAudioCodecPropertySoundQualityForVBR, PropertyAnswer());
    for (const FailureRow& row : rows)
    {
        mWriter = std::make_unique<appleaudiotoolbox::ATWriter>();
        mPlatform.ForgetCalls();
        mInfo = {};
        mMode = row.mMode;
        mPlatform.FailCall(row.mFailingCall, -1234);
        EXPECT_FALSE(Create(kM4A, kStereoAAC, 4)) << row.mWhy;
        EXPECT_EQ(mInfo.mSite, row.mSite) << row.mWhy;
        EXPECT_EQ(mInfo.mStatus, -1234) << row.mWhy;
        EXPECT_EQ(Starts({mPlatform.Calls().back()}), Lines{row.mLastCall}) << row.mWhy;
        EXPECT_EQ(mPlatform.Calls().size(), static_cast<std::size_t>(row.mFailingCall)) << row.mWhy;

        mWriter.reset();
        EXPECT_EQ(mPlatform.OpenHandles(), 0) << row.mWhy;
        EXPECT_EQ(mPlatform.CallsOf("ExtAudioFileDispose").size(), row.mFailingCall > 1 ? 1u : 0u)
            << row.mWhy;
    }
}

TEST_F(WriterCreation, ThatFailsAndLeavesAFileHasItClosedAtTheEnd)
{
    mPlatform.FailCreation(-43, true);
    EXPECT_FALSE(Create(kWAVE, kStereo16));
    EXPECT_EQ(mInfo.mSite, 18u);
    EXPECT_EQ(mInfo.mStatus, -43);
    EXPECT_EQ(mPlatform.OpenFiles(), 1);
    mWriter.reset();
    EXPECT_EQ(mPlatform.Calls().back(), "ExtAudioFileDispose");
}

TEST_F(WriterTrace, NamesBothFormats)
{
    const TraceLines trace(6);
    EXPECT_TRUE(Create(kM4A, kStereoAAC, 2));
    EXPECT_EQ(trace.Lines(),
              (Lines{TraceLines::Line("<6> Client Format:  2 ch,  44100 Hz, 'lpcm' (0x0000000C) "
                                      "16-bit little-endian signed integer\n"),
                     TraceLines::Line("<6> Output Format:  2 ch,  44100 Hz, 'aac ' (0x00000000) 0 "
                                      "bits/channel, 0 bytes/packet, 1024 frames/packet, 0 "
                                      "bytes/frame\n")}));
}

TEST_F(WriterTrace, NamesTheOutputFormatAfterAFailedCreationToo)
{
    const TraceLines trace(6);
    mPlatform.FailCreation(-43);
    EXPECT_FALSE(Create(kWAVE, kStereo16, 4));
    EXPECT_EQ(trace.Lines(),
              (Lines{TraceLines::Line("<6> Client Format:  2 ch,  44100 Hz, 'lpcm' (0x00000009) "
                                      "32-bit little-endian float\n"),
                     TraceLines::Line("<6> Output Format:  2 ch,  44100 Hz, 'lpcm' (0x0000000C) "
                                      "16-bit little-endian signed integer\n")}));
}

TEST_F(WriterTrace, OfLevel5HasNothing)
{
    const TraceLines trace(5);
    EXPECT_TRUE(Create(kWAVE, kStereo16));
    EXPECT_EQ(trace.Lines(), Lines());
}

}  // namespace
