// Core Audio Format files as the parser sees them.

#include "ContainerBuilders.h"
#include "Opened.h"
#include "platform/AudioToolbox/src/file/caf/OpusPacket.h"

#include <gtest/gtest.h>
#include <limits>

using namespace testing_support;

namespace
{

constexpr UInt32 kSigned = kAudioFormatFlagIsSignedInteger;
constexpr UInt32 kPacked = kAudioFormatFlagIsPacked;
constexpr UInt32 kHigh = kAudioFormatFlagIsAlignedHigh;
constexpr UInt32 kFloat = kAudioFormatFlagIsFloat;
constexpr UInt32 kBig = kAudioFormatFlagIsBigEndian;

CAFRecord Samples(UInt32 inFlags, UInt32 inBytesPerFrame, UInt32 inBits)
{
    return {44100.0, "lpcm", inFlags, inBytesPerFrame, 1, 2, inBits};
}

CAFRecord Coded(const char* inFormat, UInt32 inBytes, UInt32 inFrames, UInt32 inChannels = 2)
{
    return {44100.0, inFormat, 0, inBytes, inFrames, inChannels, 0};
}

Bytes SampleFile(const CAFRecord& inRecord, const Bytes& inData)
{
    return CAFFile({CAFChunk("desc", inRecord.Get()), CAFData(inData)});
}

struct SampleRow
{
    const char* mWhat;
    CAFRecord mRecord;
    UInt32 mFlags;
};

TEST(CAF, DescribesEveryKindOfSample)
{
    const SampleRow rows[] = {
        {"8 bits", Samples(0, 2, 8), kSigned | kBig | kPacked},
        {"16 bits", Samples(0, 4, 16), kSigned | kBig | kPacked},
        {"16 bits, little", Samples(2, 4, 16), kSigned | kPacked},
        {"24 bits", Samples(0, 6, 24), kSigned | kBig | kPacked},
        {"24 bits, little", Samples(2, 6, 24), kSigned | kPacked},
        {"24 bits in 32", Samples(2, 8, 24), kSigned | kHigh},
        {"20 bits in 24", Samples(0, 6, 20), kSigned | kBig | kHigh},
        {"32 bits, little", Samples(2, 8, 32), kSigned | kPacked},
        {"float", Samples(1, 8, 32), kFloat | kBig | kPacked},
        {"float, little", Samples(3, 8, 32), kFloat | kPacked},
        {"double, little", Samples(3, 16, 64), kFloat | kPacked},
    };
    for (const SampleRow& row : rows)
    {
        const Opened file = Open(SampleFile(row.mRecord, CountingBytes(480)));
        ASSERT_EQ(file.mStatus, noErr) << row.mWhat;
        EXPECT_EQ(file.Facts().mFileType, kAudioFileCAFType) << row.mWhat;
        EXPECT_EQ(file.Format().mFormatFlags, row.mFlags) << row.mWhat;
        EXPECT_EQ(file.Format().mBitsPerChannel, row.mRecord.mBits) << row.mWhat;
        EXPECT_EQ(file.Format().mBytesPerFrame, row.mRecord.mBytesPerPacket) << row.mWhat;
        EXPECT_EQ(file.Facts().mDataOffset, 8 + 44 + 16) << row.mWhat;
        EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(480)) << row.mWhat;
    }
}

TEST(CAF, KeepsAFractionalRate)
{
    CAFRecord record;
    record.mRate = 44099.9912;
    EXPECT_EQ(Open(SampleFile(record, Bytes(40))).Format().mSampleRate, 44099.9912);
}

TEST(CAF, ReadsAFileThatWasNeverFinished)
{
    ByteBuilder data;
    data.Text("data").Big(~UInt64{0}, 8).Big(0, 4).Raw(CountingBytes(402));
    const Opened file = Open(CAFFile({CAFChunk("desc", CAFRecord().Get()), data.Get()}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mDataByteCount, 402);
    EXPECT_EQ(Drain(*file.mReader).mBytes, CountingBytes(400));
}

TEST(CAF, FindsPacketsByTheirTable)
{
    const Opened file = Open(SmallALACFile());
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Format().mFormatID, kAudioFormatAppleLossless);
    EXPECT_EQ(file.Format().mFramesPerPacket, 4096u);
    EXPECT_EQ(file.Format().mBytesPerPacket, 0u);
    EXPECT_EQ(file.Facts().mPacketCount, 3u);
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 200u);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 10000);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 0);
    EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 2288);
    const Drained drained = Drain(*file.mReader, 2);
    ASSERT_EQ(drained.mPackets.size(), 3u);
    EXPECT_EQ(drained.mPackets[0].mDataByteSize, 5u);
    EXPECT_EQ(drained.mPackets[1].mStartOffset, 5);
    EXPECT_EQ(drained.mPackets[1].mDataByteSize, 200u);
    EXPECT_EQ(drained.mPackets[2].mStartOffset, 0);  // of the second read
    EXPECT_EQ(drained.mBytes, CountingBytes(208));
}

TEST(CAF, ReadsFromAnyPacketAndStopsAtTheRoom)
{
    const Opened file = Open(SmallALACFile());
    AudioStreamPacketDescription descriptions[3];
    UInt8 buffer[256];
    UInt32 bytes = 202;
    UInt32 packets = 3;
    ASSERT_EQ(file.mReader->ReadPackets(1, &bytes, &packets, descriptions, buffer), noErr);
    EXPECT_EQ(packets, 1u);
    EXPECT_EQ(bytes, 200u);
    EXPECT_EQ(buffer[0], 5);
    bytes = 199;
    packets = 3;
    EXPECT_EQ(file.mReader->ReadPackets(1, &bytes, &packets, descriptions, buffer),
              kAudioFileBadPropertySizeError);
    EXPECT_EQ(bytes, 0u);
    EXPECT_EQ(packets, 0u);
    bytes = 256;
    packets = 1;
    EXPECT_EQ(file.mReader->ReadPackets(0, &bytes, &packets, nullptr, buffer), kAudio_ParamError);
}

TEST(CAF, FindsPacketsFarBehindTheFirst)
{
    ByteBuilder entries;
    for (UInt32 i = 0; i < 1000; ++i)
        entries.Byte(1 + i % 100);
    CAFRecord record = Coded(".mp3", 0, 1152);
    const Opened file =
        Open(CAFFile({CAFChunk("desc", record.Get()), CAFTable(1000, 0, 0, 0, entries.Get()),
                      CAFData(CountingBytes(50500))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 1000u);
    AudioStreamPacketDescription description;
    UInt8 buffer[100];
    UInt32 bytes = 100;
    UInt32 packets = 1;
    ASSERT_EQ(file.mReader->ReadPackets(777, &bytes, &packets, &description, buffer), noErr);
    EXPECT_EQ(bytes, 78u);
    EXPECT_EQ(buffer[0], static_cast<UInt8>(7 * 5050 + 3003));
}

TEST(CAF, TellsTheLengthOfPacketsThatDiffer)
{
    const Opened file = Open(
        CAFFile({CAFChunk("desc", Coded("opus", 0, 0).Get()),
                 CAFTable(2, 0, 100, 20, {10, 120, 6, 0x83, 0x40}), CAFData(CountingBytes(16))}));
    ASSERT_EQ(file.mStatus, noErr);
    const Drained drained = Drain(*file.mReader);
    ASSERT_EQ(drained.mPackets.size(), 2u);
    EXPECT_EQ(drained.mPackets[0].mVariableFramesInPacket, 120u);
    EXPECT_EQ(drained.mPackets[1].mVariableFramesInPacket, 448u);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 448);
    EXPECT_EQ(static_cast<UInt64>(file.Facts().mEstimatedDuration * 44100.0), 448u);
}

TEST(CAF, HasOnlyThePacketsThatLieInTheFile)
{
    const Bytes entries = {5, 0x81, 0x48, 3};
    for (const auto& [told, bytes, packets] :
         {std::tuple{UInt64{3}, 207u, 2u}, std::tuple{UInt64{3}, 4u, 0u},
          std::tuple{UInt64{1} << 40, 208u, 3u}, std::tuple{UInt64{1}, 208u, 1u}})
    {
        const Opened file =
            Open(CAFFile({CAFChunk("desc", Coded(".mp3", 0, 1152).Get()),
                          CAFTable(told, 100000, 0, 0, entries), CAFData(Bytes(bytes))}));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mPacketCount, packets);
        EXPECT_LE(file.Facts().mPacketTable->mNumberValidFrames, packets * 1152);
        EXPECT_EQ(Drain(*file.mReader).mPackets.size(), packets);
    }
}

TEST(CAF, ReadsBlocksOfConstantSize)
{
    const Opened file = Open(CAFFile({CAFChunk("desc", Coded("ima4", 68, 64).Get()),
                                      CAFTable(10, 600, 10, 30, {}), CAFData(Bytes(680))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 10u);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 10);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 600);
    EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 30);
    for (const char* law : {"alaw", "ulaw"})
    {
        const Opened coded = Open(SampleFile(Coded(law, 2, 1), Bytes(40)));
        ASSERT_EQ(coded.mStatus, noErr) << law;
        EXPECT_EQ(coded.Facts().mPacketCount, 20u) << law;
        EXPECT_EQ(coded.Format().mBitsPerChannel, 0u) << law;
    }
}

TEST(CAF, BringsEveryFormOfLosslessCookieIntoOne)
{
    ByteBuilder bare;
    bare.Big(4096, 4).Raw({0, 24, 40, 10, 14, 6, 0, 255}).Big(0, 4).Big(0, 4).Big(44100, 4);
    const Bytes boxed = ByteBuilder().Big(36, 4).Text("alac").Big(0, 4).Raw(bare.Get()).Get();
    const Bytes wrapped =
        ByteBuilder().Big(12, 4).Text("frmaalac").Raw(boxed).Big(8, 4).Big(0, 4).Get();
    for (const Bytes& cookie : {bare.Get(), boxed, wrapped})
    {
        const Opened file = Open(
            CAFFile({CAFChunk("desc", Coded("alac", 0, 4096, 6).Get()), CAFChunk("kuki", cookie),
                     CAFTable(1, 4096, 0, 0, {5}), CAFData(Bytes(5))}));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mCookie, boxed);
        EXPECT_EQ(file.Format().mFormatFlags, kAppleLosslessFormatFlag_24BitSourceData);
        EXPECT_EQ(LayoutWords(file.Facts().mChannelLayout),
                  (std::vector<UInt32>{0x10000, 0x3F, 0}));
    }
}

TEST(CAF, BringsEveryFormOfFLACCookieIntoOne)
{
    ByteBuilder info;  // 4096, 4096, frame sizes, 44100 Hz, stereo, 24 bits
    info.Raw({0x10, 0, 0x10, 0, 0, 0, 0, 0, 0, 0, 0x0A, 0xC4, 0x43, 0x70}).Raw(Bytes(20));
    const Bytes block = ByteBuilder().Big(0x80000022, 4).Raw(info.Get()).Get();
    const Bytes stream = ByteBuilder().Text("fLaC").Raw(block).Get();
    const Bytes boxed = ByteBuilder().Big(50, 4).Text("dfLa").Big(0, 4).Raw(block).Get();
    for (const Bytes& cookie : {info.Get(), block, stream, boxed})
    {
        const Opened file =
            Open(CAFFile({CAFChunk("desc", Coded("flac", 0, 4096).Get()), CAFChunk("kuki", cookie),
                          CAFTable(1, 4096, 0, 0, {5}), CAFData(Bytes(5))}));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mCookie, info.Get());
        EXPECT_EQ(file.Format().mFormatFlags, kAppleLosslessFormatFlag_24BitSourceData);
    }
}

TEST(CAF, KeepsOnlyACookieThatOpusDecodersKnow)
{
    const Bytes head = ByteBuilder().Text("OpusHead").Raw(CountingBytes(11)).Get();
    for (const auto& [cookie, kept] : {std::pair{head, head}, std::pair{Bytes(28), Bytes()}})
    {
        const Opened file =
            Open(CAFFile({CAFChunk("desc", Coded("opus", 0, 960).Get()), CAFChunk("kuki", cookie),
                          CAFTable(1, 960, 0, 0, {5}), CAFData(Bytes(5))}));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mCookie, kept);
    }
}

struct OpusRow
{
    Bytes mPacket;
    UInt32 mFrames;
};

TEST(CAF, ReadsTheLengthOfAnOpusPacket)
{
    const OpusRow rows[] = {
        {{0x00}, 480},        {{0x18}, 2880}, {{0x60}, 480},  {{0x78}, 960},
        {{0x80}, 120},        {{0xFC}, 960},  {{0xFD}, 1920}, {{0xFE}, 1920},
        {{0xFF, 0x83}, 2880}, {{0xFF}, 0},    {{}, 0},
    };
    for (const OpusRow& row : rows)
        EXPECT_EQ(audiotoolbox::FramesOfOpusPacket(row.mPacket), row.mFrames);
}

TEST(CAF, BelievesAnOpusPacketMoreThanItsDescription)
{
    for (const UInt32 told : {120u, 960u})
    {
        CAFRecord record = Coded("opus", 0, told);
        record.mRate = 48000.0;
        const Opened file =
            Open(CAFFile({CAFChunk("desc", record.Get()), CAFTable(2, 2 * told, 0, 0, {2, 2}),
                          CAFData({0xFC, 0, 0xFC, 0})}));
        ASSERT_EQ(file.mStatus, noErr) << told;
        EXPECT_EQ(file.Format().mFramesPerPacket, 960u) << told;
        EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 1920) << told;
        EXPECT_EQ(static_cast<UInt64>(file.Facts().mEstimatedDuration * 48000.0), 1920u) << told;
    }
}

// AudioSpecificConfig of low complexity, 44100 Hz, stereo, within an ES descriptor.
Bytes ESDescriptor(const Bytes& inConfig)
{
    ByteBuilder specific;
    specific.Byte(5).Byte(static_cast<UInt32>(inConfig.size())).Raw(inConfig);
    ByteBuilder decoder;
    decoder.Byte(4).Byte(static_cast<UInt32>(13 + specific.Get().size()));
    decoder.Raw({0x40, 0x14, 0, 0x18, 0}).Big(0, 4).Big(0, 4).Raw(specific.Get());
    ByteBuilder descriptor;
    descriptor.Byte(3).Byte(static_cast<UInt32>(3 + decoder.Get().size())).Big(0, 2).Byte(0);
    return descriptor.Raw(decoder.Get()).Get();
}

Bytes AACFile(const CAFRecord& inRecord, const Bytes& inCookie, const Bytes& inTable)
{
    return CAFFile({CAFChunk("desc", inRecord.Get()), CAFChunk("kuki", inCookie), inTable,
                    CAFData(CountingBytes(20))});
}

TEST(CAF, TakesTheConfigurationOfAACOutOfItsCookie)
{
    const Bytes config = {0x12, 0x10};
    for (const Bytes& cookie : {config, ESDescriptor(config)})
    {
        const Opened file =
            Open(AACFile(Coded("aac ", 0, 1024), cookie, CAFTable(2, 1000, 1024, 24, {10, 10})));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mCookie, config);
        EXPECT_EQ(file.Format().mFormatID, kAudioFormatMPEG4AAC);
        EXPECT_EQ(file.Format().mSampleRate, 44100.0);
        EXPECT_EQ(file.Format().mFramesPerPacket, 1024u);
        EXPECT_EQ(file.Facts().mFormats.size(), 1u);
        EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 1024);
        EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 1000);
    }
}

TEST(CAF, CountsLayeredAACInFramesOfItsCore)
{
    // Object type 5: core at 22050 Hz, extended to 44100 Hz.
    const Bytes config = {0x2B, 0x92, 0x08, 0x00};
    const Opened file =
        Open(AACFile(Coded("aach", 0, 2048), config, CAFTable(2, 2000, 2048, 48, {10, 10})));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Format().mFormatID, kAudioFormatMPEG4AAC);
    EXPECT_EQ(file.Format().mSampleRate, 22050.0);
    ASSERT_GE(file.Facts().mFormats.size(), 2u);
    EXPECT_EQ(file.Facts().mFormats.front().mASBD.mFormatID, kAudioFormatMPEG4AAC_HE);
    EXPECT_EQ(file.Facts().mPacketTable->mPrimingFrames, 1024);
    EXPECT_EQ(file.Facts().mPacketTable->mNumberValidFrames, 1000);
    EXPECT_EQ(file.Facts().mPacketTable->mRemainderFrames, 24);
}

TEST(CAF, PassesItsLayoutOn)
{
    const Bytes layout = ByteBuilder().Big(0x790006, 4).Big(0, 4).Big(0, 4).Get();
    const Opened file = Open(CAFFile(
        {CAFChunk("desc", CAFRecord().Get()), CAFChunk("chan", layout), CAFData(Bytes(40))}));
    EXPECT_EQ(LayoutWords(file.Facts().mChannelLayout), (std::vector<UInt32>{0x790006, 0, 0}));
}

struct RefusedRow
{
    const char* mWhat;
    Bytes mFile;
    OSStatus mStatus;
};

TEST(CAF, RefusesWhatCannotBeTrueOrRead)
{
    const OSStatus damaged = kAudioFileInvalidFileError;
    const OSStatus unknown = kAudioFileUnsupportedDataFormatError;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto withRate = [](double inRate) {
        return SampleFile({inRate, "lpcm", 0, 4, 1, 2, 16}, Bytes(40));
    };
    const RefusedRow rows[] = {
        {"no description", CAFFile({CAFData(Bytes(40))}), damaged},
        {"no data", CAFFile({CAFChunk("desc", CAFRecord().Get())}), damaged},
        {"version 2", ByteBuilder().Text("caff").Big(2, 2).Big(0, 2).Get(), damaged},
        {"rate NaN", withRate(nan), damaged},
        {"rate 0", withRate(0.0), damaged},
        {"rate below 0", withRate(-44100.0), damaged},
        {"rate infinite", withRate(std::numeric_limits<double>::infinity()), damaged},
        {"rate absurd", withRate(1e300), damaged},
        {"no channels", SampleFile({44100.0, "lpcm", 0, 4, 1, 0, 16}, Bytes(40)), damaged},
        {"frame of 3 for 2 channels", SampleFile(Samples(0, 3, 8), Bytes(40)), damaged},
        {"more bits than the word", SampleFile(Samples(0, 4, 24), Bytes(40)), damaged},
        {"several frames of samples", SampleFile({44100.0, "lpcm", 0, 4, 2, 2, 16}, Bytes(40)),
         damaged},
        {"64-bit integers", SampleFile(Samples(0, 16, 64), Bytes(40)), unknown},
        {"float of 16 bits", SampleFile(Samples(1, 4, 16), Bytes(40)), unknown},
        {"unknown codec", SampleFile(Coded("zzzz", 10, 10), Bytes(40)), unknown},
        {"packets without a table", SampleFile(Coded(".mp3", 0, 1152), Bytes(40)), damaged},
        {"AAC without a cookie", SampleFile(Coded("aac ", 0, 1024), Bytes(40)), damaged},
        {"ALAC without a cookie", SampleFile(Coded("alac", 0, 4096), Bytes(40)), damaged},
        {"table counting below 0",
         CAFFile({CAFChunk("desc", Coded(".mp3", 0, 1152).Get()),
                  CAFTable(~UInt64{0}, 0, 0, 0, {5}), CAFData(Bytes(5))}),
         damaged},
    };
    for (const RefusedRow& row : rows)
        EXPECT_EQ(Open(row.mFile).mStatus, row.mStatus) << row.mWhat;
}

TEST(CAF, StopsAtATableThatNeedsMorePacketsThanAnyFileHas)
{
    // Empty packets take no place, so nothing but a limit bounds them.
    const Opened file =
        Open(CAFFile({CAFChunk("desc", Coded(".mp3", 0, 1152).Get()),
                      CAFTable(UInt64{1} << 62, 0, 0, 0, Bytes(1000)), CAFData(Bytes(5))}));
    ASSERT_EQ(file.mStatus, noErr);
    EXPECT_EQ(file.Facts().mPacketCount, 1000u);
    EXPECT_EQ(file.Facts().mPacketSizeUpperBound, 1u);
}

}  // namespace
