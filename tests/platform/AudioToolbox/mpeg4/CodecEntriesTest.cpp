// Sample descriptions that encoders at hand do not write: QuickTime's forms, PCM, rare codecs,
// layout records, tracks to choose from.
#include "platform/AudioToolbox/mpeg4/MovieMaker.h"
#include "platform/AudioToolbox/mpeg4/OpenedFile.h"

namespace audiotoolbox
{
namespace
{

using movie_maker::AudioEntry;
using movie_maker::Box;
using movie_maker::Bytes;
using movie_maker::Counting;
using movie_maker::FourPackets;
using movie_maker::FullBox;
using movie_maker::Join;
using movie_maker::kDataOffset;
using movie_maker::MakeFile;
using movie_maker::Text;
using movie_maker::TrackPlan;
using movie_maker::U16;
using movie_maker::U32;
using movie_maker::U64;
using movie_maker::Zeros;
using opened_file::LayoutLabels;
using opened_file::LayoutTag;
using opened_file::Opened;

Bytes FileWithEntry(const Bytes& inEntry, const Bytes& inData = Counting(100))
{
    TrackPlan plan = FourPackets();
    plan.mEntry = inEntry;
    return MakeFile({plan}, inData);
}

OSStatus StatusOf(const Bytes& inFile)
{
    PacketReaderPtr reader;
    return opened_file::Open(inFile, reader);
}

AudioStreamBasicDescription FormatOf(const Bytes& inFile)
{
    const PacketReaderPtr reader = Opened(inFile);
    return reader ? reader->Facts().mDataFormat : AudioStreamBasicDescription{};
}

// Frames of inFrameBytes in one chunk, sized in QuickTime's manner.
Bytes PCMFile(const Bytes& inEntry, UInt32 inFrameBytes)
{
    TrackPlan plan;
    plan.mEntry = inEntry;
    plan.mTimes = {{6, 1}};
    plan.mSizeBox = movie_maker::ConstantSizeBox(1, 6);
    plan.mChunks = {{kDataOffset, 6}};
    return MakeFile({plan}, Counting(inFrameBytes * 6));
}

struct PCMCase
{
    const char* mType;
    UInt32 mBits;      // in the entry
    Bytes mBoxes;      // behind its fields
    UInt32 mExpected;  // bits
    UInt32 mFlags;
};

TEST(PCMEntries, TellKindDepthAndByteOrder)
{
    const Bytes little = Box("wave", FullBox("enda", 0x00010000, {}));
    const auto isoBox = [](UInt8 inOrder, UInt8 inBits) {
        return FullBox("pcmC", 0, {inOrder, inBits});
    };
    const PCMCase cases[] = {
        {"sowt", 16, {}, 16, 0xC},
        {"sowt", 8, {}, 8, 0xC},
        {"twos", 16, {}, 16, 0xE},
        {"twos", 8, {}, 8, 0xC},
        {"in24", 16, {}, 24, 0xE},
        {"in24", 16, little, 24, 0xC},
        {"in32", 16, {}, 32, 0xE},
        {"fl32", 16, {}, 32, 0xB},
        {"fl32", 16, little, 32, 0x9},
        {"fl64", 16, {}, 64, 0xB},
        {"raw ", 8, {}, 8, 0x8},
        {"ipcm", 16, isoBox(1, 24), 24, 0xC},
        {"ipcm", 16, isoBox(0, 16), 16, 0xE},
        {"fpcm", 16, isoBox(1, 32), 32, 0x9},
    };
    for (const PCMCase& row : cases)
    {
        const Bytes entry = AudioEntry(row.mType, 2, row.mBits, 48000, row.mBoxes);
        const AudioStreamBasicDescription format = FormatOf(PCMFile(entry, row.mExpected / 8 * 2));
        EXPECT_EQ(format.mFormatID, kAudioFormatLinearPCM) << row.mType;
        EXPECT_EQ(format.mBitsPerChannel, row.mExpected) << row.mType;
        EXPECT_EQ(format.mFormatFlags, row.mFlags) << row.mType;
        EXPECT_EQ(format.mBytesPerPacket, row.mExpected / 8 * 2) << row.mType;
        EXPECT_EQ(format.mFramesPerPacket, 1u) << row.mType;
        EXPECT_EQ(format.mSampleRate, 48000.0) << row.mType;
    }
}

TEST(PCMEntries, CompandedFormatsAreOneByteASample)
{
    for (const char* type : {"ulaw", "alaw"})
    {
        const AudioStreamBasicDescription format =
            FormatOf(PCMFile(AudioEntry(type, 2, 16, 8000, {}), 2));
        EXPECT_EQ(format.mBytesPerPacket, 2u) << type;
        EXPECT_EQ(format.mBitsPerChannel, 0u) << type;
    }
}

// QuickTime's version 2 fields.
Bytes Version2Entry(UInt32 inChannels, UInt32 inBits, UInt32 inFlags, UInt32 inFrameBytes)
{
    const Bytes fields = Join({U32(72), U64(0x40F7700000000000), U32(inChannels), U32(0x7F000000),
                               U32(inBits), U32(inFlags), U32(inFrameBytes), U32(1)});
    return Box("lpcm", Join({Zeros(6), U16(1), U16(2), Zeros(6), U16(3), U16(16), Zeros(4),
                             U32(0x10000), fields}));
}

TEST(PCMEntries, Version2StatesRateAndFlagsItself)
{
    const AudioStreamBasicDescription format = FormatOf(PCMFile(Version2Entry(4, 32, 9, 16), 16));
    EXPECT_EQ(format.mSampleRate, 96000.0);
    EXPECT_EQ(format.mChannelsPerFrame, 4u);
    EXPECT_EQ(format.mBitsPerChannel, 32u);
    EXPECT_EQ(format.mFormatFlags, 0x9u);
    EXPECT_EQ(StatusOf(PCMFile(Version2Entry(4, 32, 9, 12), 16)),
              kAudioFileUnsupportedDataFormatError)
        << "frames that do not fit their samples";
}

TEST(QuickTimeEntries, KeepTheirRecordsInAWaveBox)
{
    const Bytes wave =
        Box("wave", Join({Box("frma", Text("mp4a")), Box("mp4a", U32(0)),
                          movie_maker::DescriptorBox(0x40, {0x11, 0x90}), Join({U32(8), U32(0)})}));
    const Bytes entry =
        Box("mp4a", Join({Zeros(6), U16(1), U16(1), Zeros(6), U16(2), U16(16), U16(0xFFFE), U16(0),
                          U32(48000u << 16), Zeros(16), wave}));
    const AudioStreamBasicDescription format = FormatOf(FileWithEntry(entry));
    EXPECT_EQ(format.mFormatID, kAudioFormatMPEG4AAC);
    EXPECT_EQ(format.mSampleRate, 48000.0);
}

TEST(CodecEntries, ConfigurationWinsOverTheEntrysFields)
{
    const Bytes entry =
        AudioEntry("mp4a", 2, 16, 8000, movie_maker::DescriptorBox(0x67, {0x13, 0x88}));
    const AudioStreamBasicDescription format = FormatOf(FileWithEntry(entry));
    EXPECT_EQ(format.mSampleRate, 22050.0);
    EXPECT_EQ(format.mChannelsPerFrame, 1u);
}

TEST(CodecEntries, MPEGLayersTakeEverythingFromTheirFirstPacket)
{
    Bytes data = Counting(100);
    const Bytes header = {0xFF, 0xFB, 0x94, 0xC0};
    std::copy(header.begin(), header.end(), data.begin());
    for (const UInt8 type : {0x69, 0x6B})
    {
        const Bytes entry = AudioEntry("mp4a", 2, 16, 44100, movie_maker::DescriptorBox(type, {}));
        const AudioStreamBasicDescription format = FormatOf(FileWithEntry(entry, data));
        EXPECT_EQ(format.mFormatID, kAudioFormatMPEGLayer3);
        EXPECT_EQ(format.mSampleRate, 48000.0);
        EXPECT_EQ(format.mChannelsPerFrame, 1u);
        EXPECT_EQ(format.mFramesPerPacket, 1152u);
    }
    const AudioStreamBasicDescription plain =
        FormatOf(FileWithEntry(AudioEntry(".mp3", 2, 16, 24000, {})));
    EXPECT_EQ(plain.mFormatID, kAudioFormatMPEGLayer3);
    EXPECT_EQ(plain.mFramesPerPacket, 576u) << "no header: the entry has to do";
}

TEST(CodecEntries, AMRIsMonoAtItsOwnRate)
{
    TrackPlan plan = FourPackets();
    plan.mEntry = AudioEntry("samr", 2, 16, 44100, FullBox("damr", 0, Zeros(5)));
    plan.mTimescale = 8000;
    plan.mTimes = {{4, 160}};
    AudioStreamBasicDescription format = FormatOf(MakeFile({plan}, Counting(100)));
    EXPECT_EQ(format.mFormatID, kAudioFormatAMR);
    EXPECT_EQ(format.mSampleRate, 8000.0);
    EXPECT_EQ(format.mChannelsPerFrame, 1u);
    EXPECT_EQ(format.mFramesPerPacket, 160u);
    plan.mTimes = {{4, 800}};
    EXPECT_EQ(FormatOf(MakeFile({plan}, Counting(100))).mFramesPerPacket, 800u);
    plan.mEntry = AudioEntry("sawb", 2, 16, 44100, {});
    plan.mTimescale = 16000;
    plan.mTimes = {{4, 320}};
    format = FormatOf(MakeFile({plan}, Counting(100)));
    EXPECT_EQ(format.mFormatID, kAudioFormatAMR_WB);
    EXPECT_EQ(format.mFramesPerPacket, 320u);
}

struct AC3Case
{
    UInt8 mMode;
    bool mHasLFE;
    UInt32 mChannels;
    std::vector<UInt32> mLabels;  // empty: told by tag
    UInt32 mTag;
};

TEST(CodecEntries, AC3LaysItsChannelsOutInAscendingOrder)
{
    const AC3Case cases[] = {
        {1, false, 1, {}, kAudioChannelLayoutTag_Mono},
        {2, false, 2, {}, kAudioChannelLayoutTag_Stereo},
        {2, true, 3, {}, kAudioChannelLayoutTag_DVD_4},
        {3, true, 4, {1, 2, 3, 4}, 0},
        {4, true, 4, {1, 2, 4, 9}, 0},
        {5, false, 4, {}, kAudioChannelLayoutTag_MPEG_4_0_A},
        {6, false, 4, {}, kAudioChannelLayoutTag_ITU_2_2},
        {7, false, 5, {}, kAudioChannelLayoutTag_MPEG_5_0_A},
        {7, true, 6, {}, kAudioChannelLayoutTag_MPEG_5_1_A},
    };
    for (const AC3Case& row : cases)
    {
        // fscod 1 (44100), bsid 8, bsmod 0, acmod, lfeon, bit rate code
        const UInt32 bits =
            (1u << 22) | (8u << 17) | (UInt32{row.mMode} << 11) | (row.mHasLFE ? 1u << 10 : 0u);
        const Bytes entry =
            AudioEntry("ac-3", 2, 16, 48000, Box("dac3", movie_maker::Number(bits, 3)));
        const PacketReaderPtr reader = Opened(FileWithEntry(entry));
        ASSERT_NE(reader, nullptr);
        const FileFacts& facts = reader->Facts();
        EXPECT_EQ(facts.mDataFormat.mSampleRate, 44100.0);
        EXPECT_EQ(facts.mDataFormat.mChannelsPerFrame, row.mChannels) << int{row.mMode};
        EXPECT_EQ(LayoutTag(facts), row.mTag) << int{row.mMode};
        EXPECT_EQ(LayoutLabels(facts), row.mLabels) << int{row.mMode};
    }
}

TEST(CodecEntries, EnhancedAC3AddsTheDependentStreamsChannels)
{
    // data rate, one program; fscod 0, bsid 16, acmod 7, LFE; one dependent stream: rear surrounds
    const Bytes box = {0x14, 0x00, 0x20, 0x0F, 0x02, 0x02};
    const PacketReaderPtr reader =
        Opened(FileWithEntry(AudioEntry("ec-3", 2, 16, 48000, Box("dec3", box))));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->Facts().mDataFormat.mChannelsPerFrame, 8u);
    EXPECT_EQ(reader->Facts().mDataFormat.mFramesPerPacket, 1536u);
    EXPECT_EQ(LayoutLabels(reader->Facts()), (std::vector<UInt32>{1, 2, 3, 4, 33, 34, 5, 6}));
}

TEST(CodecEntries, OpusPacketsOfDifferentLengthsTellTheirOwn)
{
    const Bytes box = Join({Bytes{0, 1}, U16(100), U32(48000), U16(0), Bytes{0}});
    TrackPlan plan = FourPackets();
    plan.mEntry = AudioEntry("Opus", 1, 16, 48000, Box("dOps", box));
    plan.mTimescale = 48000;
    plan.mTimes = {{1, 480}, {1, 960}, {2, 120}};
    Bytes data = Zeros(100);
    data[10] = 0x08;
    data[30] = data[60] = 0x80;
    const PacketReaderPtr reader = Opened(MakeFile({plan}, data));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->Facts().mDataFormat.mFramesPerPacket, 0u);
    ASSERT_TRUE(reader->Facts().mPacketTable.has_value());
    EXPECT_EQ(reader->Facts().mPacketTable->mPrimingFrames, 100);
    EXPECT_EQ(reader->Facts().mPacketTable->mNumberValidFrames, 1580);
    const opened_file::ReadResult result = opened_file::ReadAt(*reader, 0, 1000, 10);
    ASSERT_EQ(result.mPackets.size(), 4u);
    EXPECT_EQ(result.mPackets[0].mVariableFramesInPacket, 480u);
    EXPECT_EQ(result.mPackets[1].mVariableFramesInPacket, 960u);
    EXPECT_EQ(result.mPackets[3].mVariableFramesInPacket, 120u);
}

TEST(CodecEntries, OpusKeepsItsChannelMapping)
{
    const Bytes box =
        Join({Bytes{0, 6}, U16(312), U32(44100), U16(0xFF00), Bytes{1, 4, 2, 0, 4, 1, 2, 3, 5}});
    const PacketReaderPtr reader =
        Opened(FileWithEntry(AudioEntry("Opus", 6, 16, 48000, Box("dOps", box))));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->Facts().mCookie,
              (Bytes{'O', 'p', 'u', 's',  'H', 'e', 'a', 'd', 1, 6, 0x38, 1, 0x44, 0xAC,
                     0,   0,   0,   0xFF, 1,   4,   2,   0,   4, 1, 2,    3, 5}));
    EXPECT_EQ(LayoutTag(reader->Facts()), kAudioChannelLayoutTag_MPEG_5_1_A);
}

Bytes ChannelBox(UInt32 inTag, UInt32 inBitmap, const std::vector<UInt32>& inLabels)
{
    Bytes body = Join({U32(inTag), U32(inBitmap), U32(inLabels.size())});
    for (const UInt32 label : inLabels)
        movie_maker::Append(body, Join({U32(label), Zeros(16)}));
    return FullBox("chan", 0, body);
}

TEST(ChannelBoxes, StandVerbatimForPCM)
{
    const Bytes chan = ChannelBox(0, 0, {3, 1, 2});
    const PacketReaderPtr reader = Opened(PCMFile(AudioEntry("sowt", 3, 16, 48000, chan), 6));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(LayoutLabels(reader->Facts()), (std::vector<UInt32>{3, 1, 2}));
}

TEST(ChannelBoxes, TellTheKindOfAPair)
{
    const Bytes boxes = Join({movie_maker::DescriptorBox(0x40, {0x12, 0x10}),
                              ChannelBox(kAudioChannelLayoutTag_MatrixStereo, 0, {})});
    const PacketReaderPtr reader = Opened(FileWithEntry(AudioEntry("mp4a", 2, 16, 44100, boxes)));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(LayoutTag(reader->Facts()), kAudioChannelLayoutTag_MatrixStereo);
}

TEST(ChannelBoxes, DoNotOverruleTheDecodersOrder)
{
    const Bytes boxes = Join({movie_maker::DescriptorBox(0x40, {0x12, 0x30}),
                              ChannelBox(kAudioChannelLayoutTag_MPEG_5_1_D, 0, {})});
    const PacketReaderPtr reader = Opened(FileWithEntry(AudioEntry("mp4a", 6, 16, 44100, boxes)));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(LayoutTag(reader->Facts()), kAudioChannelLayoutTag_MPEG_5_1_A);
}

TEST(ChannelBoxes, OfAnotherCountDoNotCount)
{
    const Bytes boxes = Join({movie_maker::DescriptorBox(0x40, {0x12, 0x10}),
                              ChannelBox(kAudioChannelLayoutTag_Mono, 0, {})});
    const PacketReaderPtr reader = Opened(FileWithEntry(AudioEntry("mp4a", 2, 16, 44100, boxes)));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(LayoutTag(reader->Facts()), kAudioChannelLayoutTag_Stereo);
}

TEST(Tracks, FirstEnabledReadableOneWins)
{
    TrackPlan video = FourPackets();
    video.mHandler = "vide";
    TrackPlan unknown = FourPackets();
    unknown.mEntry = AudioEntry("XyZw", 2, 16, 44100, {});
    TrackPlan disabled = FourPackets();
    disabled.mIsEnabled = false;
    disabled.mEntry = movie_maker::AACEntry({0x13, 0x10});
    TrackPlan wanted = FourPackets();
    wanted.mEntry = movie_maker::AACEntry({0x11, 0x90});
    TrackPlan later = FourPackets();
    const Bytes file = MakeFile({video, unknown, disabled, wanted, later}, Counting(100));
    EXPECT_EQ(FormatOf(file).mSampleRate, 48000.0);
    EXPECT_EQ(FormatOf(MakeFile({video, disabled}, Counting(100))).mSampleRate, 24000.0)
        << "a disabled track is better than none";
}

TEST(Tracks, ExternalDataIsRefused)
{
    TrackPlan outside = FourPackets();
    outside.mDataReference = FullBox("url ", 0, Text("file:///etc/passwd"));
    EXPECT_EQ(StatusOf(MakeFile({outside}, Counting(100))), kAudioFileInvalidFileError);
    outside.mDataReference = FullBox("alis", 0, Zeros(4));
    EXPECT_EQ(StatusOf(MakeFile({outside}, Counting(100))), kAudioFileInvalidFileError);
}

TEST(Tracks, UnknownCodecsAreRefusedAsSuch)
{
    for (const char* type : {"XyZw", "enca", "drms", "Qclp"})
        EXPECT_EQ(StatusOf(FileWithEntry(AudioEntry(type, 2, 16, 44100, {}))),
                  kAudioFileUnsupportedDataFormatError)
            << type;
    TrackPlan video = FourPackets();
    video.mHandler = "vide";
    EXPECT_EQ(StatusOf(MakeFile({video}, Counting(100))), kAudioFileUnsupportedDataFormatError);
}

TEST(Tracks, DamagedCodecRecordsAreRefusedAsSuch)
{
    const Bytes entries[] = {
        AudioEntry("mp4a", 2, 16, 44100, {}),
        AudioEntry("mp4a", 2, 16, 44100, movie_maker::DescriptorBox(0x40, {})),
        AudioEntry("mp4a", 2, 16, 44100, movie_maker::DescriptorBox(0x40, {0x00, 0x00})),
        AudioEntry("alac", 2, 16, 44100, FullBox("alac", 0, Zeros(23))),
        AudioEntry("alac", 2, 16, 44100, FullBox("alac", 0, Zeros(24))),
        AudioEntry("fLaC", 2, 16, 44100, FullBox("dfLa", 0, Zeros(20))),
        AudioEntry("Opus", 2, 16, 48000, Box("dOps", Zeros(10))),
        AudioEntry("Opus", 2, 16, 48000, Box("dOps", Zeros(11))),
    };
    for (const Bytes& entry : entries)
        EXPECT_EQ(StatusOf(FileWithEntry(entry)), kAudioFileInvalidFileError);
}

}  // namespace
}  // namespace audiotoolbox
