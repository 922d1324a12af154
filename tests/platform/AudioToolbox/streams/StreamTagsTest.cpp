// Tags of other software around every kind of stream.
#include "StreamMakers.h"

#include <gtest/gtest.h>

using namespace stream_testing;

namespace
{

struct Row
{
    const StreamKind& mKind;
    const char* mName;
};
const Row kRows[] = {
    {kMPEG, "streams/untagged-44100-stereo.mp3"},
    {kMPEG, "streams/info-44100-stereo.mp3"},
    {kMPEG, "streams/48000-stereo.mp2"},
    {kADTS, "streams/44100-stereo.aac"},
    {kAC3, "streams/48000-51.ac3"},
    {kEAC3, "streams/48000-stereo.eac3"},
    {kFLAC, "streams/44100-stereo-16.flac"},
};

// The audio is the same, with the tags or without.
void ExpectSamePackets(const Row& inRow, const Bytes& inFront, const Bytes& inBehind)
{
    const Bytes plain = LoadData(inRow.mName);
    Opened expected = Open(inRow.mKind, plain);
    ASSERT_EQ(expected.mStatus, noErr);
    Opened tagged = Open(inRow.mKind, Join({inFront, plain, inBehind}));
    ASSERT_EQ(tagged.mStatus, noErr) << inRow.mName;
    EXPECT_EQ(ReadAll(*tagged.mReader), ReadAll(*expected.mReader)) << inRow.mName;
    EXPECT_EQ(tagged.Facts().mDataByteCount, expected.Facts().mDataByteCount) << inRow.mName;
    EXPECT_EQ(tagged.Facts().mEstimatedDuration, expected.Facts().mEstimatedDuration)
        << inRow.mName;
    EXPECT_EQ(tagged.Facts().mDataOffset,
              expected.Facts().mDataOffset + static_cast<SInt64>(inFront.size()));
}

TEST(StreamTags, InFrontAreSkipped)
{
    for (const Row& row : kRows)
    {
        ExpectSamePackets(row, ID3v2Tag(0), {});
        ExpectSamePackets(row, ID3v2Tag(200000), {});
        ExpectSamePackets(row, Join({ID3v2Tag(50), ID3v2Tag(300), ID3v2Tag(7)}), {});
    }
}

TEST(StreamTags, BehindAreNoAudio)
{
    Bytes appended = ID3v2Tag(90);
    appended[5] = 0x10;
    Bytes footer(appended.begin(), appended.begin() + 10);
    std::copy_n("3DI", 3, footer.begin());
    for (const Row& row : kRows)
    {
        ExpectSamePackets(row, {}, ID3v1Tag());
        ExpectSamePackets(row, {}, APETag(500));
        ExpectSamePackets(row, {}, Join({APETag(500), ID3v1Tag()}));
        ExpectSamePackets(row, {}, Join({LyricsTag(), ID3v1Tag()}));
        ExpectSamePackets(row, {}, Join({appended, footer}));
        ExpectSamePackets(row, ID3v2Tag(100), Join({APETag(9), LyricsTag(), ID3v1Tag()}));
    }
}

TEST(StreamTags, SizesOfTagsThatReachBeyondTheStreamAreNotBelieved)
{
    Bytes tag = APETag(20);
    tag[tag.size() - 20] = 0x7F;  // a size of many megabytes
    tag[tag.size() - 18] = 0x7F;
    const Bytes plain = LoadData("streams/44100-stereo.aac");
    Opened expected = Open(kADTS, plain);
    Opened tagged = Open(kADTS, Join({plain, tag}));
    ASSERT_EQ(tagged.mStatus, noErr);
    EXPECT_EQ(ReadAll(*tagged.mReader), ReadAll(*expected.mReader));
}

TEST(StreamTags, FramesInThePicturesOfATagBetweenJoinedFilesAreNoAudio)
{
    const Bytes plain = LoadData("streams/untagged-44100-stereo.mp3");
    Bytes tag = ID3v2Tag(plain.size());
    std::copy(plain.begin(), plain.end(), tag.begin() + 10);
    Opened file = Open(kMPEG, Join({plain, ID3v1Tag(), plain}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(ReadAll(*file.mReader).size(), 34u);
    Opened joined = Open(kMPEG, Join({plain, tag, plain}));
    ASSERT_EQ(joined.mStatus, noErr);
    EXPECT_EQ(ReadAll(*joined.mReader).size(), 34u);
}

TEST(StreamTags, FileOfTagsAloneIsNoStream)
{
    for (const Row& row : kRows)
        EXPECT_EQ(Open(row.mKind, Join({ID3v2Tag(100), APETag(30), ID3v1Tag()})).mStatus,
                  kAudioFileUnsupportedFileTypeError)
            << row.mName;
}

}  // namespace
