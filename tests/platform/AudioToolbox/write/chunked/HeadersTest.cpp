// Numbers of the headers that no reader of ours depends on.
#include "Written.h"

#include "platform/AudioToolbox/src/file/Endian.h"

namespace
{

using namespace written;
using namespace audiotoolbox;

AudioStreamBasicDescription OddFrames(AudioFileTypeID inType)
{
    return Complete(WritableVariants(inType, kAudioFormatLinearPCM).at(2), 8000, 1);
}

TEST(WrittenHeaders, StateTheSizeOfTheWholeFileWithItsPadding)
{
    for (const SInt64 frames : {0, 1, 2, 7})
    {
        const auto size = [&](AudioFileTypeID inType)
        {
            const auto format = OddFrames(inType);
            return WriteSamples(inType, format,
                                SomeSamples(format, static_cast<std::size_t>(frames)));
        };
        const Bytes wave = size(kAudioFileWAVEType);
        EXPECT_EQ(wave.size() % 2, 0u);
        EXPECT_EQ(ReadLE32(&wave[4]) + 8, wave.size());
        const Bytes large = size(kAudioFileRF64Type);
        EXPECT_EQ(ReadLE64(&large[20]) + 8, large.size());
        const Bytes wave64 = size(kAudioFileWave64Type);
        EXPECT_EQ(ReadLE64(&wave64[16]), wave64.size());
        for (const AudioFileTypeID type : {kAudioFileAIFFType, kAudioFileAIFCType})
        {
            const Bytes aiff = size(type);
            EXPECT_EQ(aiff.size() % 2, 0u);
            EXPECT_EQ(ReadBE32(&aiff[4]) + 8, aiff.size());
        }
        const Bytes au = size(kAudioFileNextType);
        EXPECT_EQ(ReadBE32(&au[8]) + 24, au.size());
    }
}

// Where a chunk's body starts in a file of ours.
const UInt8* BodyOf(const Bytes& inFile, const char* inName, std::size_t inSizeBytes)
{
    const Bytes name = testing_support::ByteBuilder().Text(inName).Get();
    const auto at = std::search(inFile.begin(), inFile.end(), name.begin(), name.end());
    return &*at + 4 + inSizeBytes;
}

TEST(WrittenHeaders, OfAIFFCCountPacketsOfIMA4AndFramesOfAllElse)
{
    const Bytes ima = WriteEncoded(kAudioFileAIFCType, Encode(kAudioFormatAppleIMA4, 2, 129));
    EXPECT_EQ(ReadBE32(BodyOf(ima, "COMM", 4) + 2), 3u);
    const Bytes law = WriteEncoded(kAudioFileAIFCType, Encode(kAudioFormatULaw, 2, 129));
    EXPECT_EQ(ReadBE32(BodyOf(law, "COMM", 4) + 2), 129u);
    EXPECT_EQ(ReadBE32(BodyOf(law, "FVER", 4)), 0xA2805140u);
}

TEST(WrittenHeaders, OfCAFTellPacketsValidPrimingAndRemainder)
{
    const EncodedTones aac = Encode(kAudioFormatMPEG4AAC, 2, 5000);
    const Bytes file = WriteEncoded(kAudioFileCAFType, aac);
    const UInt8* table = BodyOf(file, "pakt", 8);
    EXPECT_EQ(ReadBE64(table), 6u);
    EXPECT_EQ(ReadBE64(table + 8), 5000u);
    EXPECT_EQ(ReadBE32(table + 16), 1024u);
    EXPECT_EQ(ReadBE32(table + 20), 6 * 1024u - 5000 - 1024);
    EXPECT_EQ(ReadBE64(BodyOf(file, "data", 8) - 8), Joined(aac.mStream.mPackets).size() + 4);
}

TEST(WrittenHeaders, OfWAVEStateTheRateOfBytes)
{
    const auto rate = [](AudioFormatID inFormat, UInt32 inChannels)
    {
        const Bytes file = WriteEncoded(kAudioFileWAVEType, Encode(inFormat, inChannels, 10));
        return ReadLE32(&file[28]);
    };
    EXPECT_EQ(rate(kAudioFormatMicrosoftGSM, 1), 1625u);
    EXPECT_EQ(rate(kAudioFormatULaw, 2), 88200u);
    EXPECT_EQ(rate(kAudioFormatDVIIntelIMA, 2), 44404u);
    const auto format = Integers(24, 2);
    EXPECT_EQ(ReadLE32(&WriteSamples(kAudioFileWAVEType, format, {})[28]), 264600u);
}

}  // namespace
