#include "host/BlockReader.h"

#include "host/Failure.h"
#include "tests/host/FakePlugIn.h"

#include <gtest/gtest.h>

namespace
{

using host::BlockReader;
using host::ReadSession;
using testing_support::FakeEntry;
using testing_support::FakeFile;
using testing_support::sFakeFile;

class BlockReaderTest : public testing::Test
{
protected:
    BlockReaderTest() { sFakeFile = &mFile; }
    ~BlockReaderTest() override { sFakeFile = nullptr; }

    // Frames delivered in all, each sample checked against its place.
    std::int64_t ReadAll(bool inKeepAll)
    {
        ReadSession session(mPlugIn, "name");
        BlockReader reader(session, inKeepAll);
        std::int64_t frames = 0;
        std::int64_t wrong = 0;
        while (const std::int64_t count = reader.Next())
        {
            for (int channel = 0; channel < mFile.mChannels; ++channel)
            {
                for (std::int64_t frame = 0; frame < count; ++frame)
                {
                    std::int16_t sample = 0;
                    std::memcpy(&sample, reader.Channels()[channel] + frame * 2, 2);
                    wrong += sample != static_cast<std::int16_t>((frames + frame) * 2 + channel);
                }
            }
            frames += count;
        }
        EXPECT_EQ(wrong, 0);
        return frames;
    }

    FakeFile mFile;
    host::PlugIn mPlugIn{&FakeEntry};
};

TEST_F(BlockReaderTest, DropsASurplusBelowTwoCodecFrames)
{
    mFile.mToldFrames = 100000;
    for (const std::int64_t surplus : {1, 1023, 1024, 2047})
    {
        mFile.mPosition = 0;
        mFile.mTrueFrames = 100000 + surplus;
        EXPECT_EQ(ReadAll(false), 100000) << surplus;
    }
}

TEST_F(BlockReaderTest, KeepsALongerSurplusAsAudio)
{
    mFile.mToldFrames = 100000;
    for (const std::int64_t surplus : {2048, 2049, 40000, 200000})
    {
        mFile.mPosition = 0;
        mFile.mTrueFrames = 100000 + surplus;
        EXPECT_EQ(ReadAll(false), 100000 + surplus) << surplus;
    }
}

TEST_F(BlockReaderTest, HoldsASurplusThatReachesOverABlocksEnd)
{
    mFile.mToldFrames = BlockReader::kBlockFrames - 1500;
    for (const std::int64_t surplus : {1500, 1501, 1900, 2047})
    {
        mFile.mPosition = 0;
        mFile.mTrueFrames = mFile.mToldFrames + surplus;
        EXPECT_EQ(ReadAll(false), mFile.mToldFrames) << surplus;
    }
    for (const std::int64_t surplus : {2048, 70000})
    {
        mFile.mPosition = 0;
        mFile.mTrueFrames = mFile.mToldFrames + surplus;
        EXPECT_EQ(ReadAll(false), mFile.mTrueFrames) << surplus;
    }
}

TEST_F(BlockReaderTest, NeverReadsOverTheToldLength)
{
    mFile.mToldFrames = 70000;
    mFile.mTrueFrames = 70500;
    EXPECT_EQ(ReadAll(false), 70000);
    const std::vector<std::int64_t> asked = {65536, 4464, 65536};
    EXPECT_EQ(mFile.mAskedCounts, asked);
}

TEST_F(BlockReaderTest, KeepsEverythingWhenAsked)
{
    mFile.mToldFrames = 1000;
    mFile.mTrueFrames = 1500;
    EXPECT_EQ(ReadAll(true), 1500);
}

TEST_F(BlockReaderTest, KeepsEverythingWithoutAToldLengthOrACodecFrame)
{
    mFile.mTrueFrames = 1500;
    EXPECT_EQ(ReadAll(false), 1500);

    mFile.mPosition = 0;
    mFile.mToldFrames = 1000;
    mFile.mSettings = u"FramesPerPacket:0:0;";
    EXPECT_EQ(ReadAll(false), 1500);
}

TEST_F(BlockReaderTest, DeliversAShorterFileAsItIs)
{
    mFile.mToldFrames = 5000;
    mFile.mTrueFrames = 4000;
    EXPECT_EQ(ReadAll(false), 4000);
}

TEST(Interleaving, PutsTheSamplesOfAFrameSideBySide)
{
    char left[] = "abcdefghijkl";
    char right[] = "ABCDEFGHIJKL";
    char* planes[] = {left, right};
    const char* expected[] = {"aAbB", "abABcdCD", "abcABCdefDEF", "abcdABCDefghEFGH"};
    for (std::size_t bytes = 1; bytes <= 4; ++bytes)
    {
        std::string frames(2 * 2 * bytes, '?');
        host::Interleave(planes, 2, bytes, 2, frames.data());
        EXPECT_EQ(frames, expected[bytes - 1]) << bytes;
    }
}

}  // namespace
