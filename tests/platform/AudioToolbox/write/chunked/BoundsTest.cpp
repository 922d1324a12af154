// Sizes: what 32-bit headers hold to the byte, and what goes beyond.
#include "Written.h"

#include "platform/AudioToolbox/src/file/Endian.h"

namespace
{

using namespace written;
using audiotoolbox::ReadBE32;
using audiotoolbox::ReadBE64;
using audiotoolbox::ReadLE32;
using audiotoolbox::ReadLE64;

// Keeps the first bytes, counts the rest and has them all as zeros.
class CountingSink : public ByteSink
{
public:
    OSStatus Append(std::span<const UInt8> inBytes) override
    {
        const std::size_t kept = std::min(inBytes.size(), kKept - std::min(kKept, mHead.size()));
        mHead.insert(mHead.end(), inBytes.begin(),
                     inBytes.begin() + static_cast<std::ptrdiff_t>(kept));
        mSize += static_cast<SInt64>(inBytes.size());
        mTail.assign(
            inBytes.end() - static_cast<std::ptrdiff_t>(std::min<std::size_t>(inBytes.size(), 24)),
            inBytes.end());
        return noErr;
    }
    OSStatus Patch(SInt64 inPosition, std::span<const UInt8> inBytes) override
    {
        std::copy(inBytes.begin(), inBytes.end(), mHead.begin() + inPosition);
        return noErr;
    }
    SInt64 Size() const override { return mSize; }
    OSStatus Truncate(SInt64 inSize) override
    {
        mSize = inSize;
        return noErr;
    }
    OSStatus Close() override { return noErr; }

    const UInt8* At(std::size_t inPosition) const { return mHead.data() + inPosition; }

    Bytes mTail;  // of the last bytes that came

private:
    static constexpr std::size_t kKept = 256;
    Bytes mHead;
    SInt64 mSize = 0;
};

constexpr std::size_t kBlockBytes = std::size_t{1} << 26;

// The first failing write ends it; then the file is finished.
OSStatus WriteZeros(ByteSink& ioSink, const WriteRequest& inRequest, SInt64 inBytes)
{
    static const Bytes sZeros(kBlockBytes);
    PacketWriterPtr writer;
    EXPECT_EQ(MakeWriter(inRequest, writer), noErr);
    EXPECT_EQ(writer->Start(ioSink, {}), noErr);
    const auto packet = static_cast<SInt64>(inRequest.mFormat.mBytesPerPacket);
    OSStatus status = noErr;
    while (inBytes > 0 && status == noErr)
    {
        const SInt64 count =
            std::min<SInt64>(inBytes, static_cast<SInt64>(kBlockBytes) / packet * packet);
        status = writer->Write(std::span(sZeros).first(static_cast<std::size_t>(count)), {});
        inBytes -= count;
    }
    EXPECT_EQ(writer->Finish({{}, SInt64{1} << 50, 0, 0}), noErr);
    return status;
}

struct BoundRow
{
    AudioFileTypeID mType;
    AudioStreamBasicDescription mFormat;
    SInt64 mMost;      // bytes of audio
    SInt64 mFileSize;  // with them
};

std::vector<BoundRow> Bounds()
{
    const auto bytes = Complete({0, kAudioFormatLinearPCM, 8, 0, 1, 0, 0, 8, 0}, 48000, 1);
    const auto signedBytes = Complete({0, kAudioFormatLinearPCM, 12, 0, 1, 0, 0, 8, 0}, 48000, 1);
    const auto stereo = Integers(16, 2);
    const auto bigStereo = Integers(16, 2, kAudioFormatFlagIsBigEndian);
    const auto bigSix = Integers(24, 6, kAudioFormatFlagIsBigEndian);
    const auto gsm = converter_use::Compressed(kAudioFormatMicrosoftGSM, 8000, 1, 320, 65);
    // In front of the audio: WAVE 44 bytes, AIFF 54, AU 24.
    return {
        {kAudioFileWAVEType, bytes, 0xFFFFFFDA, 0x100000006},
        {kAudioFileWAVEType, stereo, 0xFFFFFFD8, 0x100000004},
        {kAudioFileWAVEType, gsm, SInt64{13421772} * 65, SInt64{13421772} * 65 + 60},
        {kAudioFileAIFFType, signedBytes, 0xFFFFFFD0, 0x100000006},
        {kAudioFileAIFFType, bigStereo, 0xFFFFFFD0, 0x100000006},
        {kAudioFileAIFFType, bigSix, 0xFFFFFFD0 - 0xFFFFFFD0 % 18, 0x100000006 - 0xFFFFFFD0 % 18},
        {kAudioFileNextType, signedBytes, 0xFFFFFFFE, 0x100000016},
        {kAudioFileNextType, bigStereo, 0xFFFFFFFC, 0x100000014},
    };
}

// The numbers of a header, with the audio at its most.
void ExpectSizes(const BoundRow& inRow, const CountingSink& inSink)
{
    const auto size = static_cast<UInt32>(inRow.mFileSize - 8);
    const auto audio = static_cast<UInt32>(inRow.mMost);
    switch (inRow.mType)
    {
        case kAudioFileNextType:
            EXPECT_EQ(ReadBE32(inSink.At(8)), audio);
            break;
        case kAudioFileWAVEType:
            EXPECT_EQ(ReadLE32(inSink.At(4)), size);
            EXPECT_EQ(
                ReadLE32(inSink.At(static_cast<std::size_t>(inRow.mFileSize - inRow.mMost) - 4)),
                audio);
            break;
        default:
            EXPECT_EQ(ReadBE32(inSink.At(4)), size);
            EXPECT_EQ(ReadBE32(inSink.At(22)), audio / inRow.mFormat.mBytesPerPacket);
            EXPECT_EQ(ReadBE32(inSink.At(42)), audio + 8);
    }
}

TEST(FileBounds, AreFilledToTheLastWholePacket)
{
    for (const BoundRow& row : Bounds())
    {
        SCOPED_TRACE(Code(row.mType) + " " + std::to_string(row.mFormat.mBytesPerPacket));
        CountingSink sink;
        EXPECT_EQ(WriteZeros(sink, {row.mType, row.mFormat, {}}, row.mMost), noErr);
        EXPECT_EQ(sink.Size(), row.mFileSize);
    }
}

TEST(FileBounds, RefuseOnePacketMoreAndLeaveWhatFits)
{
    for (const BoundRow& row : Bounds())
    {
        SCOPED_TRACE(Code(row.mType) + " " + std::to_string(row.mFormat.mBytesPerPacket));
        CountingSink sink;
        EXPECT_EQ(
            WriteZeros(sink, {row.mType, row.mFormat, {}}, row.mMost + row.mFormat.mBytesPerPacket),
            kAudioFileDoesNotAllow64BitDataSizeError);
        EXPECT_EQ(sink.Size(), row.mFileSize);
        ExpectSizes(row, sink);
    }
}

TEST(FileBounds, OfFramesHoldInTheFactChunkOfWAVE)
{
    const auto gsm = converter_use::Compressed(kAudioFormatMicrosoftGSM, 8000, 1, 320, 65);
    CountingSink sink;
    EXPECT_EQ(WriteZeros(sink, {kAudioFileWAVEType, gsm, {}}, SInt64{65} * 13421773),
              kAudioFileDoesNotAllow64BitDataSizeError);
    EXPECT_EQ(ReadLE32(sink.At(48)), 320u * 13421772);
}

constexpr SInt64 kBeyond = SInt64{5} << 30;

TEST(FileBounds, AreNoneForRF64AndBW64)
{
    for (const AudioFileTypeID type : {kAudioFileRF64Type, kAudioFileBW64Type})
    {
        CountingSink sink;
        EXPECT_EQ(WriteZeros(sink, {type, Integers(16, 2), {}}, kBeyond), noErr);
        EXPECT_EQ(sink.Size(), kBeyond + 80);
        EXPECT_EQ(ReadLE32(sink.At(4)), 0xFFFFFFFF);
        EXPECT_EQ(ReadBE32(sink.At(12)), UInt32{CA_FOUR_CHAR_CODE('d', 's', '6', '4')});
        EXPECT_EQ(ReadLE64(sink.At(20)), 5368709120u + 72) << "the form";
        EXPECT_EQ(ReadLE64(sink.At(28)), 5368709120u) << "the audio";
        EXPECT_EQ(ReadLE64(sink.At(36)), 1342177280u) << "frames";
        EXPECT_EQ(ReadLE32(sink.At(76)), 0xFFFFFFFF) << "the chunk";
    }
}

TEST(FileBounds, OfShortRF64AndBW64StandInTheSameForm)
{
    for (const AudioFileTypeID type : {kAudioFileRF64Type, kAudioFileBW64Type})
    {
        CountingSink sink;
        EXPECT_EQ(WriteZeros(sink, {type, Integers(16, 2), {}}, 12), noErr);
        EXPECT_EQ(ReadBE32(sink.At(0)), type);
        EXPECT_EQ(ReadBE32(sink.At(12)), UInt32{CA_FOUR_CHAR_CODE('d', 's', '6', '4')});
        EXPECT_EQ(ReadLE64(sink.At(20)), 84u);
        EXPECT_EQ(ReadLE64(sink.At(28)), 12u);
        EXPECT_EQ(ReadLE64(sink.At(36)), 3u);
    }
}

TEST(FileBounds, OfFactGoIntoTheSizesOfRF64)
{
    const auto gsm = converter_use::Compressed(kAudioFormatMicrosoftGSM, 8000, 1, 320, 65);
    CountingSink sink;
    EXPECT_EQ(WriteZeros(sink, {kAudioFileRF64Type, gsm, {}}, SInt64{65} * 20000000), noErr);
    EXPECT_EQ(ReadLE64(sink.At(36)), 6400000000u);
    EXPECT_EQ(ReadLE32(sink.At(84)), 0xFFFFFFFF) << "fact";
}

TEST(FileBounds, AreNoneForW64)
{
    CountingSink sink;
    EXPECT_EQ(WriteZeros(sink, {kAudioFileWave64Type, Integers(16, 2), {}}, kBeyond), noErr);
    EXPECT_EQ(sink.Size(), kBeyond + 104);
    EXPECT_EQ(ReadLE64(sink.At(16)), 5368709120u + 104);
    EXPECT_EQ(ReadLE64(sink.At(96)), 5368709120u + 24);
}

TEST(FileBounds, AreNoneForCAF)
{
    CountingSink sink;
    EXPECT_EQ(WriteZeros(sink, {kAudioFileCAFType, Integers(16, 2), {}}, kBeyond), noErr);
    EXPECT_EQ(sink.Size(), kBeyond + 68);
    EXPECT_EQ(ReadBE64(sink.At(56)), 5368709120u + 4);
    const auto ima = converter_use::Compressed(kAudioFormatAppleIMA4, 44100, 2, 64, 68);
    CountingSink blocks;
    EXPECT_EQ(WriteZeros(blocks, {kAudioFileCAFType, ima, {}}, SInt64{68} * 100000000), noErr);
    EXPECT_EQ(ReadBE64(blocks.mTail.data()), 100000000u) << "packets";
    EXPECT_EQ(ReadBE64(blocks.mTail.data() + 8), 6400000000u) << "valid frames";
}

}  // namespace
