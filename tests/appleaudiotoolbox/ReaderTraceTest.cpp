// The trace lines of the reader, letter for letter.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <kelpcore/debug/Trace.h>
#include <kelpcore/threads/Thread.h>

namespace
{

using namespace testing_support;

class ReaderTrace : public ReaderTest
{
protected:
    ReaderTrace()
    {
        kelpcore::debug::SetTraceSink([](void* context, std::string_view line)
                                      { static_cast<Lines*>(context)->emplace_back(line); },
                                      &mLines);
    }
    ~ReaderTrace() override
    {
        kelpcore::debug::SetTraceLevel(0);
        kelpcore::debug::SetTraceSink(nullptr, nullptr);
    }

    static std::string Line(const std::string& inRest)
    {
        return "<" + std::to_string(kelpcore::threads::GetCurrentThreadID()) +
               "> <appleaudiotoolbox> " + inRest;
    }

    void FailARead(OSStatus inStatus)
    {
        mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
        ASSERT_TRUE(Open());
        mPlatform.ReadPackets({{{}, 0, {}, inStatus}});
        mPlatform.Fill({FillStep::Pull(1)});
        char frames[4];
        int count = 1;
        EXPECT_FALSE(mReader->ReadSamplesInterleaved(0, &count, frames, 2, mInfo));
    }

    Lines mLines;
};

TEST_F(ReaderTrace, OfOpeningNamesBothFormats)
{
    kelpcore::debug::SetTraceLevel(6);
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mLines,
              (Lines{
                  Line("<6>  Input Format:  2 ch,  44100 Hz, 'aac ' (0x00000000) 0 bits/channel, 0 "
                       "bytes/packet, 1024 frames/packet, 0 bytes/frame\n"),
                  Line("<6> Client Format:  2 ch,  44100 Hz, 'lpcm' (0x00000009) 32-bit "
                       "little-endian float\n"),
              }));
}

TEST_F(ReaderTrace, OfALayeredFileNamesAllLayersFirst)
{
    kelpcore::debug::SetTraceLevel(6);
    HoldLayeredFile();
    ASSERT_TRUE(Open());
    ASSERT_EQ(mLines.size(), 3u);
    EXPECT_EQ(mLines[0],
              Line("<6> File has a 2 layered data format:\n"
                   " 2 ch,  44100 Hz, 'aach' (0x00000000) 0 bits/channel, 0 bytes/packet, 2048 "
                   "frames/packet, 0 bytes/frame\n"
                   " 2 ch,  22050 Hz, 'aac ' (0x00000000) 0 bits/channel, 0 bytes/packet, 1024 "
                   "frames/packet, 0 bytes/frame\n"));
}

TEST_F(ReaderTrace, OfAListOfLessThanAnItemNamesNone)
{
    kelpcore::debug::SetTraceLevel(6);
    HoldLayeredFile();
    mPlatform.Answer(Family::File, kAudioFilePropertyFormatList,
                     PropertyAnswer::Value(AudioFormatListItem{kCore, 0}).Delivers(47));
    EXPECT_FALSE(Open());
    EXPECT_EQ(mLines, (Lines{Line("<6> File has a 0 layered data format:\n")}));
}

TEST_F(ReaderTrace, OfAConverterThatIsRefusedEndsWithTheInputFormat)
{
    kelpcore::debug::SetTraceLevel(6);
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.FailConverters(-50);
    EXPECT_FALSE(Open());
    EXPECT_EQ(mLines.size(), 1u);
}

TEST_F(ReaderTrace, OfAFailedReadShowsTheCodeAsItLiesInMemory)
{
    kelpcore::debug::SetTraceLevel(5);
    FailARead(CA_FOUR_CHAR_CODE('d', 't', 'a', '?'));
    EXPECT_EQ(mLines, (Lines{Line("<5> Decode Proc Read error: 1685348671 (?atd)\n\n")}));
}

TEST_F(ReaderTrace, OfAFailedReadPadsACodeThatAZeroByteCuts)
{
    kelpcore::debug::SetTraceLevel(5);
    FailARead(65);
    EXPECT_EQ(mLines, (Lines{Line("<5> Decode Proc Read error: 65 (   A)\n\n")}));
}

TEST_F(ReaderTrace, OfLevel5LeavesFormatsOut)
{
    kelpcore::debug::SetTraceLevel(5);
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mLines, Lines());
}

TEST_F(ReaderTrace, FollowsTheSwitchBetweenTwoFiles)
{
    mPlatform.HoldFile(kAudioFileWAVEType, kStereo16);
    ASSERT_TRUE(Open());
    EXPECT_EQ(mLines.size(), 0u);
    kelpcore::debug::SetTraceLevel(7);
    mReader = std::make_unique<appleaudiotoolbox::ATReader>();
    ASSERT_TRUE(Open());
    EXPECT_EQ(mLines.size(), 2u);
    kelpcore::debug::SetTraceLevel(0);
    mReader = std::make_unique<appleaudiotoolbox::ATReader>();
    ASSERT_TRUE(Open());
    EXPECT_EQ(mLines.size(), 2u);
}

}  // namespace
