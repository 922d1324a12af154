// How many frames a packet holds, from its first bytes.
#include "file/mpeg4/FrameHeaders.h"

#include <gtest/gtest.h>

#include <vector>

namespace audiotoolbox::mpeg4
{
namespace
{

using Bytes = std::vector<UInt8>;

TEST(FrameHeaders, OpusTellsFramesByItsFirstBytes)
{
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0x00}), 480u);         // 10 ms, one frame
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0x18}), 2880u);        // 60 ms
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0x68}), 960u);         // hybrid 20 ms
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0x80}), 120u);         // 2.5 ms
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0xFC}), 960u);         // 20 ms
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0xFD}), 1920u);        // two equal frames
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0xFE}), 1920u);        // two frames
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0xFF, 0x86}), 5760u);  // six frames
}

TEST(FrameHeaders, OpusBeyond120MillisecondsIsNone)
{
    EXPECT_EQ(FramesOfOpusPacket({}), 0u);
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0xFF}), 0u);
    EXPECT_EQ(FramesOfOpusPacket(Bytes{0xFF, 0x07}), 0u);
}

TEST(FrameHeaders, FLACTellsItsBlockByCodeOrBehindTheFrameNumber)
{
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF8, 0x19, 0x18, 0x00}), 192u);
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF8, 0x59, 0x18, 0x00}), 4608u);
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF8, 0xC9, 0x18, 0x00}), 4096u);
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF8, 0x69, 0x18, 0x03, 0x1F}), 32u);
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF9, 0x79, 0x18, 0xC4, 0x80, 0x08, 0x99}), 2202u);
}

TEST(FrameHeaders, FLACRefusesOtherBytes)
{
    EXPECT_EQ(FramesOfFLACPacket({}), 0u);
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF0, 0x19, 0x18, 0x00}), 0u);
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF8, 0x09, 0x18, 0x00}), 0u) << "reserved";
    EXPECT_EQ(FramesOfFLACPacket(Bytes{0xFF, 0xF8, 0x79, 0x18, 0xC4, 0x80, 0x08}), 0u) << "cut";
}

struct MPEGCase
{
    Bytes mBytes;
    UInt32 mLayer;
    UInt32 mRate;
    UInt32 mChannels;
    UInt32 mFrames;
};

TEST(FrameHeaders, MPEGAudioOfEveryVersionAndLayer)
{
    const MPEGCase cases[] = {
        {{0xFF, 0xFB, 0x90, 0x00}, 3, 44100, 2, 1152},
        {{0xFF, 0xFB, 0x94, 0xC0}, 3, 48000, 1, 1152},
        {{0xFF, 0xF3, 0x90, 0x00}, 3, 22050, 2, 576},
        {{0xFF, 0xE3, 0x98, 0xC0}, 3, 8000, 1, 576},
        {{0xFF, 0xFD, 0x98, 0x40}, 2, 32000, 2, 1152},
        {{0xFF, 0xF5, 0x90, 0x00}, 2, 22050, 2, 1152},
        {{0xFF, 0xFF, 0x90, 0x00}, 1, 44100, 2, 384},
    };
    for (const MPEGCase& row : cases)
    {
        MPEGAudioHeader header;
        ASSERT_TRUE(ParseMPEGAudioHeader(row.mBytes, header)) << row.mRate;
        EXPECT_EQ(header.mLayer, row.mLayer);
        EXPECT_EQ(header.mRate, row.mRate);
        EXPECT_EQ(header.mChannels, row.mChannels);
        EXPECT_EQ(header.mFrames, row.mFrames);
    }
}

TEST(FrameHeaders, MPEGAudioRefusesReservedFields)
{
    MPEGAudioHeader header;
    EXPECT_FALSE(ParseMPEGAudioHeader(Bytes{0xFF, 0xFB, 0x90}, header)) << "cut";
    EXPECT_FALSE(ParseMPEGAudioHeader(Bytes{0xFF, 0xEB, 0x90, 0}, header)) << "version";
    EXPECT_FALSE(ParseMPEGAudioHeader(Bytes{0xFF, 0xF9, 0x90, 0}, header)) << "layer";
    EXPECT_FALSE(ParseMPEGAudioHeader(Bytes{0xFF, 0xFB, 0x9C, 0}, header)) << "rate";
    EXPECT_FALSE(ParseMPEGAudioHeader(Bytes{0x7F, 0xFB, 0x90, 0}, header)) << "sync";
}

}  // namespace
}  // namespace audiotoolbox::mpeg4
