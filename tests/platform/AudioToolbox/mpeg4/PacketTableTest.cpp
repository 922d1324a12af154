// Priming and length from edit lists, texts and tables.
#include "file/mpeg4/PacketTable.h"

#include "platform/AudioToolbox/mpeg4/MovieMaker.h"
#include "platform/AudioToolbox/mpeg4/OpenedFile.h"

#include <gtest/gtest.h>

namespace audiotoolbox::mpeg4
{
namespace
{

using movie_maker::Bytes;

AudioStreamBasicDescription Format(AudioFormatID inFormat, double inRate, UInt32 inFrames)
{
    AudioStreamBasicDescription format = {};
    format.mFormatID = inFormat;
    format.mSampleRate = inRate;
    format.mFramesPerPacket = inFrames;
    format.mChannelsPerFrame = 2;
    return format;
}

const AudioStreamBasicDescription kAAC = Format(kAudioFormatMPEG4AAC, 44100, 1024);

// Ten packets of 1024 frames; the last one as short as asked.
TimingSources Sources(UInt32 inLast = 1024)
{
    TimingSources sources;
    sources.mMovieTimescale = 1000;
    sources.mMediaTimescale = 44100;
    sources.mTimes.Add(9, 1024);
    sources.mTimes.Add(1, inLast);
    sources.mPacketCount = 10;
    return sources;
}

#define EXPECT_TABLE(table, priming, valid, remainder)   \
    do                                                   \
    {                                                    \
        ASSERT_TRUE((table).has_value());                \
        EXPECT_EQ((table)->mPrimingFrames, priming);     \
        EXPECT_EQ((table)->mNumberValidFrames, valid);   \
        EXPECT_EQ((table)->mRemainderFrames, remainder); \
    } while (false)

TEST(PacketTable, EditInTheMediasOwnScaleIsExact)
{
    TimingSources sources = Sources();
    sources.mMovieTimescale = 44100;
    sources.mEdits = {1, 2112, 8000};
    EXPECT_TABLE(MakeTable(kAAC, sources), 2112, 8000, 128);
}

TEST(PacketTable, CoarseEditGivesWayToTheTablesWithinOneTick)
{
    TimingSources sources = Sources(785);  // 10001 frames in all
    sources.mEdits = {1, 1024, 204};       // 8996.4 frames
    EXPECT_TABLE(MakeTable(kAAC, sources), 1024, 8977, 239);
}

TEST(PacketTable, CoarseEditFarFromTheTablesIsObeyed)
{
    TimingSources sources = Sources();
    sources.mEdits = {1, 1024, 100};
    EXPECT_TABLE(MakeTable(kAAC, sources), 1024, 4410, 4806);
}

TEST(PacketTable, EditWithoutDurationGoesToTheEnd)
{
    TimingSources sources = Sources(500);
    sources.mEdits = {1, 1024, 0};
    EXPECT_TABLE(MakeTable(kAAC, sources), 1024, 8692, 524);
}

TEST(PacketTable, EditBeyondTheMediaIsCutToIt)
{
    TimingSources sources = Sources();
    sources.mEdits = {1, 1024, 50000};
    EXPECT_TABLE(MakeTable(kAAC, sources), 1024, 9216, 0);
    sources.mEdits = {1, 99999999, 100};
    EXPECT_TABLE(MakeTable(kAAC, sources), 10240, 0, 0);
}

TEST(PacketTable, CoreFramesComeFromAnExtendedTimescale)
{
    const AudioStreamBasicDescription core = Format(kAudioFormatMPEG4AAC, 22050, 1024);
    TimingSources sources = Sources();
    sources.mTimes = PacketTimes();
    sources.mTimes.Add(9, 2048);
    sources.mTimes.Add(1, 1000);
    sources.mMovieTimescale = 44100;
    sources.mEdits = {1, 4096, 15000};
    EXPECT_TABLE(MakeTable(core, sources), 2048, 7500, 692);
    sources.mEdits = {};
    EXPECT_TABLE(MakeTable(core, sources), 0, 9716, 524);
}

TEST(PacketTable, TextCountsWithoutAnEditList)
{
    TimingSources sources = Sources();
    sources.mGapless = GaplessText{2112, 128, 8000};
    EXPECT_TABLE(MakeTable(kAAC, sources), 2112, 8000, 128);
}

TEST(PacketTable, EditListWinsOverTheText)
{
    TimingSources sources = Sources();
    sources.mGapless = GaplessText{2112, 128, 8000};
    sources.mEdits = {1, 1024, 0};
    EXPECT_TABLE(MakeTable(kAAC, sources), 1024, 9216, 0);
}

TEST(PacketTable, TextWinsOverAnEditThatTrimsNothing)
{
    TimingSources sources = Sources();
    sources.mGapless = GaplessText{2112, 128, 8000};
    sources.mEdits = {1, 0, 233};
    EXPECT_TABLE(MakeTable(kAAC, sources), 2112, 8000, 128);
}

TEST(PacketTable, TextAtTheExtendedRateIsHalved)
{
    TimingSources sources = Sources();
    sources.mGapless = GaplessText{4224, 256, 16000};
    EXPECT_TABLE(MakeTable(kAAC, sources), 2112, 8000, 128);
}

TEST(PacketTable, TextBeyondTheMediaIsCutToIt)
{
    TimingSources sources = Sources();
    sources.mGapless = GaplessText{2112, 0, 80000};
    EXPECT_TABLE(MakeTable(kAAC, sources), 2112, 8128, 0);
}

TEST(PacketTable, ShortenedLastPacketTellsTheLength)
{
    EXPECT_TABLE(MakeTable(kAAC, Sources(1)), 0, 9217, 1023);
    EXPECT_TABLE(MakeTable(kAAC, Sources(1023)), 0, 10239, 1);
}

TEST(PacketTable, IsMissingWhereNothingTells)
{
    EXPECT_FALSE(MakeTable(kAAC, Sources()).has_value());
}

TEST(PacketTable, LosslessFormatsHaveOneAlways)
{
    EXPECT_TABLE(MakeTable(Format(kAudioFormatAppleLossless, 44100, 1024), Sources()), 0, 10240, 0);
    EXPECT_TABLE(MakeTable(Format(kAudioFormatFLAC, 44100, 0), Sources(5)), 0, 9221, 0);
}

TEST(PacketTable, PreSkipIsThePrimingOfOpus)
{
    TimingSources sources = Sources(1000);
    sources.mPreSkip = 312;
    EXPECT_TABLE(MakeTable(kAAC, sources), 312, 9904, 24);
}

TEST(PacketTable, ConstantFramesOfPCMNeedNone)
{
    TimingSources sources = Sources();
    sources.mEdits = {1, 100, 0};
    EXPECT_FALSE(MakeTable(Format(kAudioFormatLinearPCM, 44100, 1), sources).has_value());
}

TEST(PacketTable, DurationsCoarserThanFramesDoNotTellFrames)
{
    TimingSources sources = Sources();
    sources.mMediaTimescale = 600;
    sources.mTimes = PacketTimes();
    sources.mTimes.Add(9, 14);
    sources.mTimes.Add(1, 13);  // 10216.5 frames for 10240
    EXPECT_EQ(TotalFrames(kAAC, sources), 10240);
}

TEST(PacketTable, DurationsOfOtherPacketsThanTheFileHasDoNotCount)
{
    TimingSources sources = Sources(1);
    sources.mPacketCount = 5;
    EXPECT_EQ(TotalFrames(kAAC, sources), 5120);
}

TEST(PacketTable, MissingTimescaleGivesWholePackets)
{
    TimingSources sources = Sources(1);
    sources.mMediaTimescale = 0;
    sources.mMovieTimescale = 0;
    sources.mEdits = {1, 1024, 5};
    EXPECT_TABLE(MakeTable(kAAC, sources), 0, 10240, 0);
}

TEST(PacketTimes, AreUniformWhenOnlyTheLastDiffers)
{
    PacketTimes times;
    times.Add(3, 10);
    EXPECT_TRUE(times.IsUniform());
    times.Add(1, 4);
    EXPECT_TRUE(times.HasShortLast());
    EXPECT_EQ(times.Total(), 34u);
    times.Add(1, 10);
    EXPECT_FALSE(times.IsUniform());
    PacketTimes two;
    two.Add(3, 10);
    two.Add(2, 4);
    EXPECT_FALSE(two.IsUniform());
}

TEST(GaplessText, ReadsTheWordsThatCount)
{
    const Bytes text = movie_maker::Text(" 00000000 00000840 000001CA 00000000003F31F6 00000000");
    const std::optional<GaplessText> parsed = ParseGaplessText(text);
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(parsed->mPriming, 0x840u);
    EXPECT_EQ(parsed->mRemainder, 0x1CAu);
    EXPECT_EQ(parsed->mValid, 0x3F31F6u);
}

TEST(GaplessText, RefusesWhatIsNoCount)
{
    for (const char* text :
         {"", "00000000 00000840 000001CA", "0 840 1CA 0", "0 840 1CA xyz", "0 80000000 0 100",
          "0 840 1CA 00000000000000003F31F6", "0 840 1CA FFFFFFFFFFFFFFFF"})
        EXPECT_FALSE(ParseGaplessText(movie_maker::Text(text)).has_value()) << text;
}

TEST(EditLists, PauseInFrontIsPassedOver)
{
    movie_maker::TrackPlan plan = movie_maker::FourPackets();
    plan.mEdits = movie_maker::EditBox({{500, -1}, {0, 1024}});
    const PacketReaderPtr reader =
        opened_file::Opened(movie_maker::MakeFile({plan}, movie_maker::Counting(100)));
    ASSERT_NE(reader, nullptr);
    EXPECT_TABLE(reader->Facts().mPacketTable, 1024, 3072, 0);
}

TEST(EditLists, WideFieldsAreRead)
{
    movie_maker::TrackPlan plan = movie_maker::FourPackets();
    plan.mEdits = movie_maker::FullBox(
        "elst", 0x01000000,
        movie_maker::Join({movie_maker::U32(1), movie_maker::U64(2000), movie_maker::U64(1000),
                           movie_maker::U32(0x10000)}));
    const PacketReaderPtr reader =
        opened_file::Opened(movie_maker::MakeFile({plan}, movie_maker::Counting(100), {}, 44100));
    ASSERT_NE(reader, nullptr);
    EXPECT_TABLE(reader->Facts().mPacketTable, 1000, 2000, 1096);
}

TEST(EditLists, TextOfTheHeadIsFoundBehindOtherItems)
{
    const Bytes file = movie_maker::MakeFile(
        {movie_maker::FourPackets()}, movie_maker::Counting(100),
        movie_maker::GaplessItem(" 00000000 00000400 00000200 0000000000000A00"));
    const PacketReaderPtr reader = opened_file::Opened(file);
    ASSERT_NE(reader, nullptr);
    EXPECT_TABLE(reader->Facts().mPacketTable, 1024, 2560, 512);
}

}  // namespace
}  // namespace audiotoolbox::mpeg4
