// Single boxes, byte by byte, where readers of other makers depend on them.
#include "WriterUse.h"
#include "file/Endian.h"

namespace
{

using namespace writer_use;
using audiotoolbox::ReadBE32;

Bytes WrittenAs(AudioFileTypeID inType, AudioFormatID inFormat, UInt32 inChannels = 2)
{
    const Audio audio = MakeAudio(inFormat, inChannels, 30011);
    return Written(inType, Encode(audio), audio.Frames());
}

TEST(MPEG4Boxes, BrandsTellTheTypesApart)
{
    struct
    {
        AudioFileTypeID mType;
        std::string mBrands;  // the major one, its version, the compatible ones
    } const rows[] = {
        {kAudioFileM4AType, std::string("M4A \0\0\0\0M4A mp42isomiso2", 24)},
        {kAudioFileM4BType, std::string("M4B \0\0\0\0M4B mp42isomiso2", 24)},
        {kAudioFileMPEG4Type, std::string("mp42\0\0\0\0mp42mp41isomiso2", 24)},
        {kAudioFile3GPType, std::string("3gp6\0\0\1\0"
                                        "3gp6mp42isomiso2",
                                        24)},
        {kAudioFile3GP2Type, std::string("3g2a\0\1\0\0"
                                         "3g2a3gp6isomiso2",
                                         24)},
    };
    for (const auto& row : rows)
    {
        const Bytes bytes = WrittenAs(row.mType, kAudioFormatMPEG4AAC);
        EXPECT_EQ(Find(bytes, "ftyp"), 4u);
        const Bytes body = BodyOf(bytes, "ftyp");
        EXPECT_EQ(std::string(body.begin(), body.end()), row.mBrands);
        EXPECT_EQ(Opened(bytes)->Facts().mFileType, row.mType);
    }
}

TEST(MPEG4Boxes, BoxesFollowEachOtherToTheEndOfTheFile)
{
    for (const Pair& pair : kPairs)
    {
        const Bytes bytes = WrittenAs(pair.mType, pair.mFormat);
        std::string types;
        std::size_t place = 0;
        while (place + 8 <= bytes.size())
        {
            types += CodeText(ReadBE32(bytes.data() + place + 4)) + " ";
            ASSERT_GE(ReadBE32(bytes.data() + place), 8u);
            place += ReadBE32(bytes.data() + place);
        }
        EXPECT_EQ(place, bytes.size()) << Name(pair);
        EXPECT_EQ(types, "ftyp free mdat moov ") << Name(pair);
    }
}

TEST(MPEG4Boxes, TheESDescriptorHasTheFinalBitRates)
{
    const Audio audio = MakeAudio(kAudioFormatMPEG4AAC, 2, 100000);
    const Stream stream = Encode(audio);
    const Bytes body = BodyOf(Written(kAudioFileM4AType, stream, audio.Frames()), "esds");
    std::size_t largest = 0;
    for (const Bytes& packet : stream.mPackets)
        largest = std::max(largest, packet.size());
    ASSERT_GE(body.size(), 4u + 5 + 3 + 5 + 13 + 5);
    EXPECT_EQ(Bytes(body.begin() + 4, body.begin() + 8), (Bytes{0x03, 0x80, 0x80, 0x80}));
    EXPECT_EQ(body[8], body.size() - 9);
    EXPECT_EQ(body[12], 0x04);
    EXPECT_EQ(body[17], 0x40);
    EXPECT_EQ(body[18], 0x15);
    EXPECT_EQ(ReadBE32(body.data() + 18) & 0xFFFFFFu, largest);
    const double average = static_cast<double>(stream.ByteCount()) * 8 * 44100 /
                           (1024.0 * static_cast<double>(stream.mPackets.size()));
    EXPECT_GE(ReadBE32(body.data() + 22), ReadBE32(body.data() + 26));
    EXPECT_NEAR(ReadBE32(body.data() + 26), average, 1.0);
    EXPECT_EQ(Bytes(body.end() - 6, body.end()), (Bytes{0x06, 0x80, 0x80, 0x80, 0x01, 0x02}));
}

TEST(MPEG4Boxes, MP3IsOfMPEG1OrMPEG2ByItsRate)
{
    for (const auto& [rate, objectType] : {std::pair{44100.0, 0x6B}, std::pair{32000.0, 0x6B},
                                           std::pair{24000.0, 0x69}, std::pair{8000.0, 0x69}})
    {
        Audio audio = MakeAudio(kAudioFormatMPEGLayer3, 2, 30011);
        audio.mRate = rate;
        const Bytes body =
            BodyOf(Written(kAudioFileMPEG4Type, Encode(audio), audio.Frames()), "esds");
        ASSERT_GE(body.size(), 36u);
        EXPECT_EQ(body[17], objectType) << rate;
        EXPECT_EQ(body[30], 0x06) << "no decoder information";
    }
}

TEST(MPEG4Boxes, AC3TellsItsFirstPacketsFields)
{
    // 44.1 kHz, stream 8, complete main, 2/0 and 3/2 with LFE, rows 10 and 15 of the bit rates.
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileM4AType, kAudioFormatAC3), "dac3"),
              (Bytes{0x50, 0x11, 0x40}));
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileM4AType, kAudioFormatAC3, 6), "dac3"),
              (Bytes{0x50, 0x3D, 0xE0}));
}

TEST(MPEG4Boxes, EnhancedAC3TellsItsRateAndOneProgramme)
{
    // 192 kbit/s and 448 kbit/s in 13 bits, then 44.1 kHz, stream 16, the modes as above.
    const Bytes stereo = BodyOf(WrittenAs(kAudioFileMPEG4Type, kAudioFormatEnhancedAC3), "dec3");
    EXPECT_EQ(stereo, (Bytes{0x06, 0x00, 0x60, 0x04, 0x00}));
    const Bytes surround =
        BodyOf(WrittenAs(kAudioFileMPEG4Type, kAudioFormatEnhancedAC3, 6), "dec3");
    EXPECT_EQ(surround, (Bytes{0x0E, 0x00, 0x60, 0x0F, 0x00}));
}

TEST(MPEG4Boxes, OpusHeadIsInTheOtherByteOrder)
{
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileMPEG4Type, kAudioFormatOpus), "dOps"),
              (Bytes{0, 2, 0x01, 0x38, 0, 0, 0xBB, 0x80, 0, 0, 0}));
    const Bytes surround = BodyOf(WrittenAs(kAudioFileMPEG4Type, kAudioFormatOpus, 6), "dOps");
    ASSERT_EQ(surround.size(), 11u + 2 + 6);
    EXPECT_EQ(Bytes(surround.begin() + 10, surround.begin() + 13), (Bytes{1, 4, 2}));
}

TEST(MPEG4Boxes, FLACHasOneLastBlock)
{
    const Bytes body = BodyOf(WrittenAs(kAudioFileMPEG4Type, kAudioFormatFLAC), "dfLa");
    ASSERT_EQ(body.size(), 8u + 34);
    EXPECT_EQ(Bytes(body.begin(), body.begin() + 8), (Bytes{0, 0, 0, 0, 0x80, 0, 0, 34}));
}

TEST(MPEG4Boxes, ALACNamesTheLayoutOfMoreThanTwoChannels)
{
    const std::pair<UInt32, UInt32> rows[] = {
        {3, 0x720003}, {4, 0x740004}, {5, 0x780005}, {6, 0x7C0006}, {7, 0x8E0007}, {8, 0x7F0008},
    };
    EXPECT_EQ(Find(WrittenAs(kAudioFileM4AType, kAudioFormatAppleLossless, 2), "chan"),
              std::string::npos);
    for (const auto& [channels, tag] : rows)
    {
        const Bytes bytes = WrittenAs(kAudioFileM4AType, kAudioFormatAppleLossless, channels);
        const Bytes body = BodyOf(bytes, "chan");
        ASSERT_EQ(body.size(), 16u) << channels;
        EXPECT_EQ(ReadBE32(body.data() + 4), tag) << channels;
    }
}

TEST(MPEG4Boxes, LosslessFormatsTellTheirDepth)
{
    for (const AudioFormatID format : {kAudioFormatAppleLossless, kAudioFormatFLAC})
    {
        const Bytes body = BodyOf(WrittenAs(kAudioFileMPEG4Type, format, 6), "stsd");
        ASSERT_GT(body.size(), 40u);
        EXPECT_EQ(ReadBE32(body.data() + 32), 6u << 16 | 24) << "channels and bits";
    }
}

TEST(MPEG4Boxes, EditsArePrimingAndLengthInFrames)
{
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileM4AType, kAudioFormatMPEG4AAC), "elst"),
              (Bytes{0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0x75, 0x3B, 0, 0, 4, 0, 0, 1, 0, 0}));
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileM4AType, kAudioFormatAppleLossless), "elst"),
              (Bytes{0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0x75, 0x3B, 0, 0, 0, 0, 0, 1, 0, 0}));
}

TEST(MPEG4Boxes, AShorterLastPacketHasItsOwnLength)
{
    // 7 packets of 4096 frames and one of 1339.
    EXPECT_EQ(
        BodyOf(WrittenAs(kAudioFileM4AType, kAudioFormatAppleLossless), "stts"),
        (Bytes{0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 7, 0, 0, 0x10, 0, 0, 0, 0, 1, 0, 0, 5, 0x3B}));
}

TEST(MPEG4Boxes, DecodersThatNeedItAreToldToStartEarlier)
{
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileM4AType, kAudioFormatMPEG4AAC), "sgpd"),
              (Bytes{1, 0, 0, 0, 'r', 'o', 'l', 'l', 0, 0, 0, 2, 0, 0, 0, 1, 0xFF, 0xFF}));
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileMPEG4Type, kAudioFormatOpus), "sgpd"),
              (Bytes{1, 0, 0, 0, 'r', 'o', 'l', 'l', 0, 0, 0, 2, 0, 0, 0, 1, 0xFF, 0xFC}));
    EXPECT_EQ(BodyOf(WrittenAs(kAudioFileM4AType, kAudioFormatMPEG4AAC), "sbgp"),
              (Bytes{0, 0, 0, 0, 'r', 'o', 'l', 'l', 0, 0, 0, 1, 0, 0, 0, 31, 0, 0, 0, 1}));
    EXPECT_EQ(Find(WrittenAs(kAudioFileM4AType, kAudioFormatAppleLossless), "sgpd"),
              std::string::npos);
}

TEST(MPEG4Boxes, PacketsOfConstantRateNeedNoTableOfSizes)
{
    Audio audio = MakeAudio(kAudioFormatAC3, 2, 30011);
    audio.mRate = 48000;
    const Bytes body = BodyOf(Written(kAudioFileM4AType, Encode(audio), 30011), "stsz");
    // 192 kbit/s are 768 bytes of 1536 frames.
    EXPECT_EQ(body, (Bytes{0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 20}));
}

TEST(MPEG4Boxes, TheTextOfLengthsIsForMusicFilesOfAAC)
{
    EXPECT_NE(Find(WrittenAs(kAudioFileM4AType, kAudioFormatMPEG4AAC), "iTunSMPB"),
              std::string::npos);
    EXPECT_NE(Find(WrittenAs(kAudioFileM4BType, kAudioFormatMPEG4AAC), "iTunSMPB"),
              std::string::npos);
    EXPECT_EQ(Find(WrittenAs(kAudioFileMPEG4Type, kAudioFormatMPEG4AAC), "iTunSMPB"),
              std::string::npos);
    EXPECT_EQ(Find(WrittenAs(kAudioFileM4AType, kAudioFormatAppleLossless), "iTunSMPB"),
              std::string::npos);
}

}  // namespace
