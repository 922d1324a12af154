// Compressed formats: packets, lengths and cookies come back from every container that holds them.
#include "OtherReaders.h"
#include "Written.h"
#include "platform/AudioToolbox/src/file/AACConfig.h"
#include "platform/AudioToolbox/src/file/Endian.h"

#include <cmath>

namespace
{

using namespace written;
using namespace other_readers;
using testing_support::Drain;
using testing_support::Open;

struct FormatRow
{
    AudioFormatID mFormat;
    std::vector<UInt32> mChannels;
};

const std::vector<FormatRow>& Formats()
{
    static const std::vector<FormatRow> sFormats = {
        {kAudioFormatALaw, {1, 2, 6, 8}},     {kAudioFormatULaw, {1, 2, 6, 8}},
        {kAudioFormatMicrosoftADPCM, {1, 2}}, {kAudioFormatDVIIntelIMA, {1, 2}},
        {kAudioFormatMicrosoftGSM, {1}},      {kAudioFormatAppleIMA4, {1, 2}},
        {kAudioFormatMPEG4AAC, {1, 2, 6, 8}}, {kAudioFormatAppleLossless, {1, 2, 6, 8}},
    };
    return sFormats;
}

/// Calls inTry(type, tones, frames) for every pair that is written, around the length of a packet.
template <typename Try>
void ForEveryPair(Try inTry)
{
    for (const FormatRow& row : Formats())
        for (const UInt32 channels : row.mChannels)
        {
            const UInt32 packet = Encode(row.mFormat, channels, 0).mStream.mFormat.mFramesPerPacket;
            for (const UInt32 frames : {0u, 1u, packet - 1, packet, packet + 1, 3 * packet + 5})
            {
                const EncodedTones tones = Encode(row.mFormat, channels, frames);
                for (const AudioFileTypeID type : kTypes)
                {
                    if (!audiotoolbox::CanWrite(type, row.mFormat))
                        continue;
                    SCOPED_TRACE(Code(type) + " " + Code(row.mFormat) + " channels " +
                                 std::to_string(channels) + " frames " + std::to_string(frames));
                    inTry(type, tones, frames);
                }
            }
        }
}

// The header of AIFF-C counts packets there.
UInt64 LengthIn(AudioFileTypeID inType, const AudioStreamBasicDescription& inFormat,
                UInt32 inFrames)
{
    const bool isRounded =
        inType == kAudioFileAIFCType && inFormat.mFormatID == kAudioFormatAppleIMA4;
    return isRounded ? (inFrames + 63u) / 64 * 64 : inFrames;
}

TEST(WrittenPackets, ComeBackFromOurOwnReaderWithTheirLength)
{
    int pairs = 0;
    ForEveryPair(
        [&](AudioFileTypeID inType, const EncodedTones& inTones, UInt32 inFrames)
        {
        ++pairs;
        const auto file = Open(WriteEncoded(inType, inTones));
        ASSERT_EQ(file.mStatus, noErr);
        EXPECT_EQ(file.Facts().mFileType, inType);
        EXPECT_EQ(std::memcmp(&file.Format(), &inTones.mStream.mFormat, sizeof(file.Format())), 0);
        const auto drained = Drain(*file.mReader);
        EXPECT_EQ(drained.mPackets.size(), inTones.mStream.mPackets.size());
        EXPECT_TRUE(drained.mBytes == Joined(inTones.mStream.mPackets));
        EXPECT_EQ(FramesTold(file), LengthIn(inType, file.Format(), inFrames));
    });
    // Two laws in seven types, four channel counts; two ADPCMs in four types; and so on.
    EXPECT_EQ(pairs, 6 * (2 * 7 * 4 + 2 * 4 * 2 + 4 + 2 * 2 + 4 + 4));
}

TEST(WrittenPackets, HaveAPacketTableInCAFThatTellsPrimingAndRemainder)
{
    ForEveryPair(
        [](AudioFileTypeID inType, const EncodedTones& inTones, UInt32 inFrames)
        {
        const AudioStreamBasicDescription& format = inTones.mStream.mFormat;
        if (inType != kAudioFileCAFType || format.mFramesPerPacket == 1)
            return;
        const auto file = Open(WriteEncoded(inType, inTones));
        ASSERT_TRUE(file.Facts().mPacketTable.has_value());
        const AudioFilePacketTableInfo& table = *file.Facts().mPacketTable;
        EXPECT_EQ(table.mNumberValidFrames, inFrames);
        EXPECT_EQ(table.mPrimingFrames,
                  format.mFormatID == kAudioFormatMPEG4AAC && !inTones.mStream.mPackets.empty()
                      ? 1024
                      : 0);
        EXPECT_EQ(static_cast<SInt64>(inTones.mStream.mPackets.size() * format.mFramesPerPacket),
                  table.mPrimingFrames + table.mNumberValidFrames + table.mRemainderFrames);
    });
}

// The body of a chunk that is found by its name.
Bytes BodyIn(const Bytes& inFile, const char* inName)
{
    const Bytes name = testing_support::ByteBuilder().Text(inName).Get();
    const auto at = std::search(inFile.begin(), inFile.end(), name.begin(), name.end());
    if (inFile.end() - at < 12)
        return {};
    const auto size = static_cast<std::ptrdiff_t>(audiotoolbox::ReadBE64(&*at + 4));
    return Bytes(at + 12, at + 12 + size);
}

TEST(WrittenPackets, HaveTheirCookieInCAFInTheFormThatReadersExpect)
{
    EncodedTones aac = Encode(kAudioFormatMPEG4AAC, 2, 3000);
    aac.mStart.mBitRate = 128000;
    aac.mStart.mMaximumPacketBytes = 1536;
    const Bytes descriptor = BodyIn(WriteEncoded(kAudioFileCAFType, aac), "kuki");
    ASSERT_GE(descriptor.size(), 8u);
    EXPECT_EQ(descriptor[0], 0x03);
    EXPECT_EQ(descriptor[4] + 5u, descriptor.size()) << "the length of all";
    EXPECT_EQ(descriptor[13], 0x40) << "MPEG-4 audio";
    EXPECT_EQ(descriptor[14], 0x15) << "an audio stream";
    EXPECT_EQ(audiotoolbox::ReadBE32(&descriptor[14]), 0x15000600u) << "a buffer of 1536";
    EXPECT_EQ(audiotoolbox::ReadBE32(&descriptor[18]), 128000u) << "at most";
    EXPECT_EQ(audiotoolbox::ReadBE32(&descriptor[22]), 128000u) << "on average";
    const EncodedTones alac = Encode(kAudioFormatAppleLossless, 2, 3000);
    EXPECT_EQ(BodyIn(WriteEncoded(kAudioFileCAFType, alac), "kuki"),
              Bytes(alac.mStart.mCookie.begin() + 12, alac.mStart.mCookie.end()));
}

TEST(WrittenPackets, HaveTheCookieThatTheEncoderTellsAtTheEnd)
{
    EncodedTones alac = Encode(kAudioFormatAppleLossless, 2, 3000);
    alac.mEnd.mCookie.back() ^= 0x55;
    EXPECT_EQ(Open(WriteEncoded(kAudioFileCAFType, alac)).Facts().mCookie, alac.mEnd.mCookie);
    alac.mEnd.mCookie.clear();
    EXPECT_EQ(Open(WriteEncoded(kAudioFileCAFType, alac)).Facts().mCookie, alac.mStart.mCookie);
}

TEST(WrittenPackets, OfMSADPCMHaveTheUsualCoefficientsWithoutACookie)
{
    EncodedTones adpcm = Encode(kAudioFormatMicrosoftADPCM, 2, 3000);
    const Bytes told = WriteEncoded(kAudioFileWAVEType, adpcm);
    for (const Bytes& cookie : {Bytes{}, Bytes{1, 2, 3}, Bytes{1, 2, 7, 0, 5}})
    {
        adpcm.mStart.mCookie = cookie;
        EXPECT_TRUE(WriteEncoded(kAudioFileWAVEType, adpcm) == told) << cookie.size();
    }
}

TEST(WrittenPackets, BringTheirCookiesAlong)
{
    const auto cookieIn = [](AudioFileTypeID inType, const EncodedTones& inTones)
    { return Open(WriteEncoded(inType, inTones)).Facts().mCookie; };
    const EncodedTones aac = Encode(kAudioFormatMPEG4AAC, 2, 3000);
    EXPECT_EQ(cookieIn(kAudioFileCAFType, aac),
              audiotoolbox::AudioSpecificConfigOfCookie(aac.mStart.mCookie));
    const EncodedTones alac = Encode(kAudioFormatAppleLossless, 2, 3000);
    ASSERT_EQ(alac.mStart.mCookie.size(), 36u);
    EXPECT_EQ(cookieIn(kAudioFileCAFType, alac), alac.mStart.mCookie);
    const EncodedTones adpcm = Encode(kAudioFormatMicrosoftADPCM, 2, 3000);
    for (const AudioFileTypeID type : {kAudioFileWAVEType, kAudioFileWave64Type})
    {
        const Bytes cookie = cookieIn(type, adpcm);
        ASSERT_EQ(cookie.size(), 32u);
        EXPECT_EQ(cookie[0] + 256 * cookie[1], 1012);
        EXPECT_EQ(cookie[2], 7) << "pairs of coefficients";
        EXPECT_EQ(cookie[8] + 256 * cookie[9], 512);
        EXPECT_EQ(cookie[10] + 256 * cookie[11], 0x10000 - 256);
    }
    EXPECT_EQ(cookieIn(kAudioFileWAVEType, Encode(kAudioFormatDVIIntelIMA, 2, 9)),
              (Bytes{1017 & 0xFF, 1017 >> 8}));
    EXPECT_EQ(cookieIn(kAudioFileWAVEType, Encode(kAudioFormatMicrosoftGSM, 1, 9)),
              (Bytes{320 & 0xFF, 320 >> 8}));
}

// The place that a channel of ours has in a lossless packet, which that reader hands over as it is.
std::size_t PlaceIn(const AudioStreamBasicDescription& inFormat, std::size_t inChannel)
{
    constexpr std::size_t kSix[] = {1, 2, 0, 5, 3, 4};
    constexpr std::size_t kEight[] = {3, 4, 0, 7, 5, 6, 1, 2};
    if (inFormat.mFormatID != kAudioFormatAppleLossless || inFormat.mChannelsPerFrame <= 2)
        return inChannel;
    return inFormat.mChannelsPerFrame == 6 ? kSix[inChannel] : kEight[inChannel];
}

// The steps of IMA ADPCM are rounded in more than one way; the difference adds up in a block.
double ToleranceOf(AudioFormatID inFormat)
{
    const bool isIMA = inFormat == kAudioFormatDVIIntelIMA || inFormat == kAudioFormatAppleIMA4;
    return isIMA ? 160.0 / 32768 : 0.0;
}

// A last packet of a few frames is not compressed, and that reader gets the second channel of a
// pair wrong in such packets of 24 bits. They are left out.
std::size_t FramesToCompare(const AudioStreamBasicDescription& inFormat, std::size_t inFrames)
{
    const std::size_t last = inFrames % inFormat.mFramesPerPacket;
    const bool isLossless = inFormat.mFormatID == kAudioFormatAppleLossless;
    return isLossless && last < 6 ? inFrames - last : inFrames;
}

double LargestDifference(const EncodedTones& inTones, const SndFile& inFile)
{
    const AudioStreamBasicDescription& format = inTones.mStream.mFormat;
    const std::size_t channels = format.mChannelsPerFrame;
    const auto client = converter_use::Linear(format.mSampleRate, converter_use::kSigned, 32,
                                              format.mChannelsPerFrame);
    const auto ours = converter_use::As<SInt32>(encoder_use::DecodeAll(inTones.mStream, client));
    if (ours.size() > inFile.mSamples.size())
        return 2.0;
    double largest = 0.0;
    for (std::size_t i = 0; i < FramesToCompare(format, ours.size() / channels) * channels; ++i)
    {
        const std::size_t at = i - i % channels + PlaceIn(format, i % channels);
        largest = std::max(largest, std::abs(ours[i] - inFile.mSamples[at]));
    }
    return largest / 2147483648.0;
}

// A decoder that is not ours, where libsndfile has one.
bool IsForLibsndfile(AudioFileTypeID inType, AudioFormatID inFormat)
{
    const bool isLaw = inFormat == kAudioFormatALaw || inFormat == kAudioFormatULaw;
    if (inType == kAudioFileRF64Type)
        return isLaw;
    if (inType == kAudioFileCAFType)
        return isLaw || inFormat == kAudioFormatAppleLossless;
    return inType != kAudioFileBW64Type;
}

TEST(WrittenPackets, ComeBackFromLibsndfileAsOurOwnDecoderHasThem)
{
    int judged = 0;
    ForEveryPair(
        [&](AudioFileTypeID inType, const EncodedTones& inTones, UInt32 inFrames)
        {
        const AudioStreamBasicDescription& format = inTones.mStream.mFormat;
        if (!IsForLibsndfile(inType, format.mFormatID))
            return;
        const SndFile file = ReadWithSndFile(WriteEncoded(inType, inTones));
        ASSERT_TRUE(file.mIsOpen) << file.mError;
        EXPECT_EQ(file.mInfo.samplerate, static_cast<int>(format.mSampleRate));
        EXPECT_EQ(file.mInfo.channels, static_cast<int>(format.mChannelsPerFrame));
        EXPECT_GE(file.mInfo.frames, static_cast<sf_count_t>(inFrames));
        EXPECT_LE(LargestDifference(inTones, file), ToleranceOf(format.mFormatID));
        ++judged;
    });
    // Two laws in six types; ADPCM in two, GSM in two, IMA4 in one, lossless in one.
    EXPECT_EQ(judged, 6 * (2 * 6 * 4 + 2 * 2 * 2 + 2 + 2 + 4));
}

// Frames of so many interleaved 16-bit samples that ffmpeg decodes, and what it has to say.
std::size_t FramesOfFFmpeg(const Bytes& inFile, const char* inExtension, UInt32 inChannels,
                           std::string& outComplaint)
{
    const StoredFile file(inFile, inExtension);
    outComplaint = TextOf("ffmpeg -v error -i " + file.Path() + " -f null - 2>&1");
    const Bytes samples = OutputOf("ffmpeg -v quiet -i " + file.Path() + " -f s16le -");
    return samples.size() / 2 / inChannels;
}

struct LengthRow
{
    AudioFileTypeID mType;
    AudioFormatID mFormat;
    UInt32 mChannels;
    const char* mExtension;
    std::size_t mFrames;  // that ffmpeg gives of 5000: whole packets, priming included
};
constexpr LengthRow kLengths[] = {
    {kAudioFileCAFType, kAudioFormatMPEG4AAC, 2, "caf", 6144},
    {kAudioFileCAFType, kAudioFormatMPEG4AAC, 6, "caf", 6144},
    {kAudioFileCAFType, kAudioFormatAppleLossless, 2, "caf", 5000},
    {kAudioFileCAFType, kAudioFormatAppleLossless, 6, "caf", 5000},
    {kAudioFileCAFType, kAudioFormatAppleIMA4, 2, "caf", 5056},
    {kAudioFileAIFCType, kAudioFormatAppleIMA4, 1, "aifc", 5056},
    {kAudioFileWAVEType, kAudioFormatDVIIntelIMA, 2, "wav", 5085},
    {kAudioFileBW64Type, kAudioFormatMicrosoftADPCM, 2, "wav", 5060},
    {kAudioFileRF64Type, kAudioFormatULaw, 6, "wav", 5000},
    {kAudioFileWave64Type, kAudioFormatALaw, 1, "w64", 5000},
    {kAudioFileNextType, kAudioFormatULaw, 2, "au", 5000},
    {kAudioFileWAVEType, kAudioFormatMicrosoftGSM, 1, "wav", 5120},
};

TEST(WrittenPackets, DecodeWithFFmpegWithoutAComplaint)
{
    for (const LengthRow& row : kLengths)
    {
        SCOPED_TRACE(Code(row.mType) + " " + Code(row.mFormat));
        std::string complaint;
        const Bytes file = WriteEncoded(row.mType, Encode(row.mFormat, row.mChannels, 5000));
        EXPECT_EQ(FramesOfFFmpeg(file, row.mExtension, row.mChannels, complaint), row.mFrames);
        EXPECT_EQ(complaint, "");
    }
}

}  // namespace
