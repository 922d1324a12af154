// Streams that begin within a frame: opened by what follows it, and nothing else is taken for one.
#include "StreamMakers.h"

#include "support/MemorySource.h"

#include <gtest/gtest.h>

using namespace stream_testing;

namespace
{

// Opened by content alone, as a file is.
Opened OpenUnknown(const Bytes& inBytes)
{
    Opened opened;
    audiotoolbox::ByteSourcePtr source = std::make_unique<testing_support::MemorySource>(inBytes);
    opened.mStatus = audiotoolbox::OpenAudio(0, source, opened.mReader);
    return opened;
}

TEST(CutStream, OpensAtItsFirstWholeFrame)
{
    struct Row
    {
        const char* mName;
        AudioFileTypeID mType;
    };
    for (const Row& row : {Row{"streams/untagged-44100-stereo.mp3", kAudioFileMP3Type},
                           Row{"streams/48000-stereo.mp2", kAudioFileMP2Type},
                           Row{"streams/44100-stereo.aac", kAudioFileAAC_ADTSType},
                           Row{"streams/48000-51.ac3", kAudioFileAC3Type},
                           Row{"streams/48000-stereo.eac3", kAudioFileEAC3Type}})
    {
        const Bytes whole = LoadData(row.mName);
        Opened intact = OpenUnknown(whole);
        ASSERT_EQ(intact.mStatus, noErr) << row.mName;
        const std::vector<Packet> packets = ReadAll(*intact.mReader);
        for (const long cut : {1L, 50L, static_cast<long>(packets[0].mBytes.size()) - 1})
        {
            Opened opened = OpenUnknown(Bytes(whole.begin() + cut, whole.end()));
            ASSERT_EQ(opened.mStatus, noErr) << row.mName << " without " << cut;
            EXPECT_EQ(opened.Facts().mFileType, row.mType) << row.mName;
            const std::vector<Packet> left = ReadAll(*opened.mReader);
            ASSERT_EQ(left.size(), packets.size() - 1) << row.mName << " without " << cut;
            EXPECT_TRUE(std::equal(left.begin(), left.end(), packets.begin() + 1)) << row.mName;
        }
    }
}

TEST(CutStream, IsNotSeenInOtherData)
{
    Bytes fiveFrames = NoiseWithoutSync(100, 1);
    for (int i = 0; i < 5; ++i)
    {
        const Bytes frame = MP3Frame();
        fiveFrames.insert(fiveFrames.end(), frame.begin(), frame.end());
    }
    Bytes farAway = NoiseWithoutSync(9000, 2);
    const Bytes stream = LoadData("streams/untagged-44100-stereo.mp3");
    farAway.insert(farAway.end(), stream.begin(), stream.end());
    const Bytes text(70000, 'a');
    for (const Bytes& bytes : {fiveFrames, farAway, text, Noise(200000, 3), Bytes(100000, 0xFF)})
        EXPECT_EQ(OpenUnknown(bytes).mStatus, kAudioFileUnsupportedFileTypeError) << bytes.size();
}

}  // namespace
