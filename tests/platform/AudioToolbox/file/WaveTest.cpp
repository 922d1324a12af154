// WAVE, RF64 and BW64 files as the parser sees them.

#include "ContainerBuilders.h"
#include "Opened.h"

#include <gtest/gtest.h>

using namespace testing_support;

namespace
{

constexpr UInt32 kSigned = kAudioFormatFlagIsSignedInteger;
constexpr UInt32 kPacked = kAudioFormatFlagIsPacked;
constexpr UInt32 kHigh = kAudioFormatFlagIsAlignedHigh;
constexpr UInt32 kFloat = kAudioFormatFlagIsFloat;

WaveRecord Record(UInt32 inTag, UInt32 inChannels, UInt32 inBlockBytes, UInt32 inBits,
                  const Bytes& inExtra = {})
{
    return {inTag, inChannels, 44100, inBlockBytes, inBits, inExtra};
}

struct SampleRow
{
    const char* mWhat;
    WaveRecord mRecord;
    UInt32 mFlags;
    UInt32 mBits;
    UInt32 mBytesPerFrame;
};

TEST(Wave, DescribesEveryKindOfSample)
{
    const SampleRow rows[] = {
        {"8 bits", Record(1, 2, 2, 8), kPacked, 8, 2},
        {"16 bits", Record(1, 2, 4, 16), kSigned | kPacked, 16, 4},
        {"24 bits", Record(1, 2, 6, 24), kSigned | kPacked, 24, 6},
        {"32 bits", Record(1, 2, 8, 32), kSigned | kPacked, 32, 8},
        {"24 bits in 32", Record(1, 2, 8, 24), kSigned | kHigh, 24, 8},
        {"12 bits", Record(1, 2, 4, 12), kSigned | kHigh, 12, 4},
        {"6 bits", Record(1, 2, 2, 6), kHigh, 6, 2},
        {"float 32", Record(3, 2, 8, 32), kFloat | kPacked, 32, 8},
        {"float 64", Record(3, 2, 16, 64), kFloat | kPacked, 64, 16},
        {"extensible 16", ExtensibleRecord(1, 2, 16, 16, 3), kSigned | kPacked, 16, 4},
        {"extensible 20 in 24", ExtensibleRecord(1, 2, 24, 20, 3), kSigned | kHigh, 20, 6},
        {"extensible 24 in 32", ExtensibleRecord(1, 2, 32, 24, 3), kSigned | kHigh, 24, 8},
        {"extensible, valid bits 0", ExtensibleRecord(1, 2, 24, 0, 3), kSigned | kPacked, 24, 6},
        {"extensible float", ExtensibleRecord(3, 2, 32, 32, 3), kFloat | kPacked, 32, 8},
        {"16 bits, block size 0", Record(1, 2, 0, 16), kSigned | kPacked, 16, 4},
        {"16 bits, block size of mono", Record(1, 2, 2, 16), kSigned | kPacked, 16, 4},
        {"24 bits, block size of 16", Record(1, 2, 4, 24), kSigned | kPacked, 24, 6},
    };
    for (const SampleRow& row : rows)
    {
        const Opened file = Open(WaveFile(row.mRecord, CountingBytes(480)));
        ASSERT_EQ(file.mStatus, noErr) << row.mWhat;
        const AudioStreamBasicDescription& format = file.Format();
        EXPECT_EQ(format.mSampleRate, 44100.0) << row.mWhat;
        EXPECT_EQ(format.mFormatID, kAudioFormatLinearPCM) << row.mWhat;
        EXPECT_EQ(format.mFormatFlags, row.mFlags) << row.mWhat;
        EXPECT_EQ(format.mBitsPerChannel, row.mBits) << row.mWhat;
        EXPECT_EQ(format.mBytesPerFrame, row.mBytesPerFrame) << row.mWhat;
        EXPECT_EQ(format.mBytesPerPacket, row.mBytesPerFrame) << row.mWhat;
        EXPECT_EQ(format.mFramesPerPacket, 1u) << row.mWhat;
        EXPECT_EQ(format.mChannelsPerFrame, 2u) << row.mWhat;
        EXPECT_EQ(file.Facts().mPacketCount, 480 / row.mBytesPerFrame) << row.mWhat;
    }
}

TEST(Wave, TellsTheFactsOfAPlainFile)
{
    const Opened file = Open(WaveFile(Record(1, 2, 4, 16), CountingBytes(400)));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mFileType, kAudioFileWAVEType);
    EXPECT_EQ(file.Facts().mDataOffset, 44);
    EXPECT_EQ(file.Facts().mDataByteCount, 400);
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 4u);
    EXPECT_EQ(file.Facts().mBitRate, 1411200u);
    EXPECT_EQ(file.Facts().mFormats.size(), 1u);
    EXPECT_EQ(static_cast<UInt64>(file.Facts().mEstimatedDuration * 44100.0), 100u);
    EXPECT_TRUE(file.Facts().mCookie.empty());
    EXPECT_TRUE(file.Facts().mChannelLayout.empty());
    EXPECT_FALSE(file.Facts().mPacketTable.has_value());
}

TEST(Wave, ReadsItsSamplesInOrderAndThenTheEnd)
{
    const Opened file = Open(WaveFile(Record(1, 2, 4, 16), CountingBytes(403)));
    ASSERT_EQ(file.mStatus, noErr);
    const Drained drained = Drain(*file.mReader);
    EXPECT_EQ(drained.mStatus, noErr);
    EXPECT_EQ(drained.mBytes, CountingBytes(400));  // the last three bytes are no frame
    EXPECT_EQ(drained.mPackets[8].mStartOffset, 4);
    EXPECT_EQ(drained.mPackets[8].mDataByteSize, 4u);
}

TEST(Wave, PassesTheSpeakersOn)
{
    const Opened surround = Open(WaveFile(ExtensibleRecord(1, 6, 16, 16, 0x60F), Bytes(120)));
    EXPECT_EQ(LayoutWords(surround.Facts().mChannelLayout),
              (std::vector<UInt32>{0x10000, 0x60F, 0}));
    const Opened none = Open(WaveFile(ExtensibleRecord(1, 6, 16, 16, 0), Bytes(120)));
    EXPECT_TRUE(none.Facts().mChannelLayout.empty());
    const Opened more = Open(WaveFile(ExtensibleRecord(1, 2, 16, 16, 0x3F), Bytes(120)));
    EXPECT_EQ(LayoutWords(more.Facts().mChannelLayout), (std::vector<UInt32>{0x10000, 0x3, 0}));
}

struct BlockRow
{
    const char* mWhat;
    WaveRecord mRecord;
    AudioFormatID mFormat;
    UInt32 mFramesPerPacket;
};

TEST(Wave, DescribesBlocksAndKeepsTheirCookie)
{
    const Bytes standard = CountingBytes(32);
    const BlockRow rows[] = {
        {"IMA stereo", Record(0x11, 2, 2048, 4, {0xF9, 0x07}), kAudioFormatDVIIntelIMA, 2041},
        {"IMA mono, lying count", Record(0x11, 1, 1024, 4, {1, 0}), kAudioFormatDVIIntelIMA, 2041},
        {"MS ADPCM stereo", Record(2, 2, 1024, 4, standard), kAudioFormatMicrosoftADPCM, 1012},
        {"MS ADPCM mono", Record(2, 1, 256, 4, standard), kAudioFormatMicrosoftADPCM, 500},
        {"GSM", Record(0x31, 1, 65, 0, {0x40, 0x01}), kAudioFormatMicrosoftGSM, 320},
    };
    for (const BlockRow& row : rows)
    {
        const Opened file = Open(WaveFile(row.mRecord, Bytes(4096)));
        ASSERT_EQ(file.mStatus, noErr) << row.mWhat;
        EXPECT_EQ(file.Format().mFormatID, row.mFormat) << row.mWhat;
        EXPECT_EQ(file.Format().mBytesPerPacket, row.mRecord.mBlockBytes) << row.mWhat;
        EXPECT_EQ(file.Format().mFramesPerPacket, row.mFramesPerPacket) << row.mWhat;
        EXPECT_EQ(file.Format().mBytesPerFrame, 0u) << row.mWhat;
        EXPECT_EQ(file.Format().mBitsPerChannel, 0u) << row.mWhat;
        EXPECT_EQ(file.Facts().mCookie, row.mRecord.mExtra) << row.mWhat;
        EXPECT_FALSE(file.Facts().mPacketTable.has_value()) << row.mWhat;
    }
}

TEST(Wave, TakesTheLengthOfBlocksFromTheFact)
{
    const WaveRecord record = Record(0x11, 1, 256, 4, {0xF9, 0x01});  // 505 frames a block
    const Bytes format = RIFFChunk("fmt ", record.Get());
    const Bytes data = RIFFChunk("data", Bytes(2560));
    for (const auto& chunks : {std::vector<Bytes>{format, FactChunk(5000), data},
                               std::vector<Bytes>{format, data, FactChunk(5000)}})
    {
        const Opened file = Open(RIFFFile("RIFF", chunks));
        ASSERT_EQ(file.mStatus, noErr);
        ASSERT_TRUE(file.Facts().mPacketTable.has_value());
        EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 5000);
        EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 0);
        EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 50);
        EXPECT_EQ(static_cast<UInt64>(file.Facts().mEstimatedDuration * 44100.0), 5000u);
    }
    const Opened lying = Open(RIFFFile("RIFF", {format, FactChunk(9999), data}));
    EXPECT_EQ(lying.Facts().mPacketTable->mNumberValidFrames, 5050);
    const Opened unfilled = Open(RIFFFile("RIFF", {format, FactChunk(0), data}));
    EXPECT_FALSE(unfilled.Facts().mPacketTable.has_value());
}

TEST(Wave, DescribesTheLaws)
{
    for (const auto& [tag, format] :
         {std::pair{6u, kAudioFormatALaw}, std::pair{7u, kAudioFormatULaw}})
    {
        const Opened file = Open(WaveFile(Record(tag, 2, 2, 8), CountingBytes(100)));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Format().mFormatID, format);
        EXPECT_EQ(file.Format().mBitsPerChannel, 0u);
        EXPECT_EQ(file.Format().mBytesPerPacket, 2u);
        EXPECT_EQ(file.Format().mFramesPerPacket, 1u);
        EXPECT_EQ(file.Facts().mPacketCount, 50u);
        EXPECT_EQ(file.Facts().mBitRate, 705600u);
    }
}

TEST(Wave, FindsItsPartsInAnyOrderAmongOtherChunks)
{
    const Bytes format = RIFFChunk("fmt ", Record(1, 2, 4, 16).Get());
    const Bytes data = RIFFChunk("data", CountingBytes(40));
    const Bytes odd = RIFFChunk("LIST", CountingBytes(7));
    const std::vector<Bytes> orders[] = {
        {RIFFChunk("JUNK", Bytes(28)), RIFFChunk("bext", Bytes(602)), format, odd, data},
        {data, format},
        {odd, odd, format, RIFFChunk("cue ", Bytes(4)), data, odd},
    };
    for (const auto& chunks : orders)
    {
        const Opened file = Open(RIFFFile("RIFF", chunks));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(40));
    }
}

TEST(Wave, FindsItsPartsBehindAnOddChunkWithoutPadding)
{
    ByteBuilder odd;
    odd.Text("LIST").Little(7, 4).Raw(CountingBytes(7));
    const Opened file = Open(RIFFFile("RIFF", {odd.Get(), RIFFChunk("fmt ", WaveRecord().Get()),
                                               RIFFChunk("data", CountingBytes(40))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(40));
}

TEST(Wave, IsFoundBehindATag)
{
    ByteBuilder file;
    file.Text("ID3").Raw({4, 0, 0, 0, 0, 0, 5}).Raw(Bytes(5));
    file.Raw(WaveFile(WaveRecord(), CountingBytes(40)));
    const Opened opened = Open(file.Get());
    ASSERT_EQ(opened.mStatus, noErr);
    EXPECT_EQ(opened.Facts().mFileType, kAudioFileWAVEType);
    EXPECT_EQ(Drain(*opened.mReader).mBytes, CountingBytes(40));
}

// A data chunk with the given size in its header, whatever follows.
Bytes FileWithDataSize(UInt32 inSize, const Bytes& inBehind)
{
    ByteBuilder data;
    data.Text("data").Little(inSize, 4).Raw(inBehind);
    return RIFFFile("RIFF", {RIFFChunk("fmt ", WaveRecord().Get()), data.Get()});
}

TEST(Wave, ReadsStreamsWhoseSizeWasNeverFilledIn)
{
    for (const UInt32 size : {0u, 0xFFFFFFFFu, 0x7FFFF000u, 100000u})
    {
        const Opened file = Open(FileWithDataSize(size, CountingBytes(400)));
        ASSERT_EQ(file.mStatus, noErr) << size;
        EXPECT_EQ(file.Facts().mDataByteCount, 400) << size;
        EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(400)) << size;
    }
}

TEST(Wave, TellsAnEmptyFileFromAStream)
{
    const Opened empty = Open(FileWithDataSize(0, {}));
    ASSERT_EQ(empty.mStatus, noErr);
    EXPECT_EQ(empty.Facts().mPacketCount, 0u);
    EXPECT_EQ(empty.Facts().mEstimatedDuration, 0.0);
    EXPECT_TRUE(Drain(*empty.mReader).mPackets.empty());
    const Opened followed = Open(FileWithDataSize(0, RIFFChunk("LIST", Bytes(20))));
    ASSERT_EQ(followed.mStatus, noErr);
    EXPECT_EQ(followed.Facts().mDataByteCount, 0);
}

TEST(Wave, TakesTheSizeOfLargeFilesFromTheirOwnChunk)
{
    ByteBuilder data;
    data.Text("data").Little(0xFFFFFFFF, 4).Raw(CountingBytes(40)).Raw(RIFFChunk("LIST", Bytes(8)));
    for (const auto& [magic, type] :
         {std::pair{"RF64", kAudioFileRF64Type}, std::pair{"BW64", kAudioFileBW64Type}})
    {
        const Opened file = Open(RIFFFile(
            magic, {SizesChunk(40, 10), RIFFChunk("fmt ", WaveRecord().Get()), data.Get()}));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mFileType, type);
        EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(40));
    }
    const Opened unknown = Open(
        RIFFFile("RF64", {SizesChunk(0, 0), RIFFChunk("fmt ", WaveRecord().Get()), data.Get()}));
    EXPECT_EQ(unknown.Facts().mDataByteCount, 56);  // to the end of the file
}

TEST(Wave, TakesTheLengthOfLargeFilesOfBlocksFromTheirOwnChunk)
{
    const WaveRecord record = Record(0x11, 1, 256, 4, {0xF9, 0x01});
    const Opened file =
        Open(RIFFFile("RF64", {SizesChunk(2560, 5001), RIFFChunk("fmt ", record.Get()),
                               FactChunk(0xFFFFFFFF), RIFFChunk("data", Bytes(2560))}));
    ASSERT_TRUE(file.Facts().mPacketTable.has_value());
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 5001);
}

struct RefusedRow
{
    const char* mWhat;
    Bytes mFile;
    OSStatus mStatus;
};

TEST(Wave, RefusesWhatCannotBeTrueOrRead)
{
    WaveRecord still = WaveRecord();
    still.mRate = 0;
    WaveRecord fast = WaveRecord();
    fast.mRate = 0xFFFFFFFF;
    const Bytes format = RIFFChunk("fmt ", WaveRecord().Get());
    WaveRecord foreign = ExtensibleRecord(1, 2, 16, 16, 3);
    foreign.mExtra[12] = 0x55;
    const OSStatus damaged = kAudioFileInvalidFileError;
    const OSStatus unknown = kAudioFileUnsupportedDataFormatError;
    const RefusedRow rows[] = {
        {"no format", RIFFFile("RIFF", {RIFFChunk("data", Bytes(40))}), damaged},
        {"no data", RIFFFile("RIFF", {format}), damaged},
        {"short format", RIFFFile("RIFF", {RIFFChunk("fmt ", Bytes(13))}), damaged},
        {"no channels", WaveFile(Record(1, 0, 4, 16), Bytes(40)), damaged},
        {"too many channels", WaveFile(Record(1, 1025, 2050, 16), Bytes(40)), damaged},
        {"no rate", WaveFile(still, Bytes(40)), damaged},
        {"absurd rate", WaveFile(fast, Bytes(40)), damaged},
        {"no bits", WaveFile(Record(1, 2, 4, 0), Bytes(40)), damaged},
        {"64-bit integers", WaveFile(Record(1, 2, 16, 64), Bytes(40)), unknown},
        {"16-bit float", WaveFile(Record(3, 2, 4, 16), Bytes(40)), unknown},
        {"MP3 inside", WaveFile(Record(0x55, 2, 1, 0), Bytes(40)), unknown},
        {"unknown subformat", WaveFile(foreign, Bytes(40)), unknown},
        {"extensible without its extra", WaveFile(Record(0xFFFE, 2, 4, 16), Bytes(40)), damaged},
        {"IMA block below its header", WaveFile(Record(0x11, 2, 8, 4), Bytes(40)), damaged},
        {"IMA of 3 bits", WaveFile(Record(0x11, 2, 512, 3), Bytes(40)), unknown},
        {"stereo GSM", WaveFile(Record(0x31, 2, 65, 0), Bytes(40)), unknown},
        {"another form", ByteBuilder().Text("RIFF").Little(4, 4).Text("AVI ").Get(),
         kAudioFileUnsupportedFileTypeError},
    };
    for (const RefusedRow& row : rows)
        EXPECT_EQ(Open(row.mFile).mStatus, row.mStatus) << row.mWhat;
}

}  // namespace
