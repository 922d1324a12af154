// Which way frames take to the container, and what becomes of them.

#include "ExtendedUse.h"

#include <limits>

namespace
{

using namespace audiotoolbox;
using namespace extended_test;

constexpr double kRate = 48000.0;
constexpr AudioFormatFlags kFloat = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked;
constexpr AudioFormatFlags kBig = kAudioFormatFlagIsBigEndian;

TEST(Frames, OfTheFilesFormatGoFromTheCallersBufferToTheContainer)
{
    RecordInUse record;
    const Description format = Linear(kRate, kSigned, 16, 2);
    const auto file = NewFile(kAudioFileWAVEType, format, {1, 2});
    ASSERT_EQ(file->SetClientFormat(format), noErr);
    const std::vector<SInt16> samples = Tone(100000, 2);
    ASSERT_EQ(Write(*file, samples, 2), noErr);
    ASSERT_EQ(record->mPlaces.size(), 1u);
    EXPECT_EQ(record->mPlaces[0], reinterpret_cast<const UInt8*>(samples.data()));
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(WordsOf<SInt16>(record->mBytes), samples);
    EXPECT_EQ(record->mCalls, "SWFC");
    EXPECT_EQ(record->mEnd.mValidFrames, 100000);
    EXPECT_EQ(record->mEnd.mPrimingFrames, 0u);
    EXPECT_EQ(record->mEnd.mRemainderFrames, 0u);
}

TEST(Frames, AreTheFilesOwnWhereNoClientFormatIsToldForLinearPCM)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileAIFFType, Linear(kRate, kSigned | kBig, 16, 1));
    ASSERT_EQ(Write(*file, std::vector<SInt16>{1, 2, 3}, 1), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(WordsOf<SInt16>(record->mBytes), (std::vector<SInt16>{1, 2, 3}));
}

TEST(Frames, AreConvertedInOnePass)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileAIFFType, Linear(kRate, kSigned | kBig, 24, 2));
    ASSERT_EQ(file->SetClientFormat(Linear(kRate, kSigned, 16, 2)), noErr);
    ASSERT_EQ(Write(*file, std::vector<SInt16>{0x0102, -2}, 2), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mBytes, (ByteVector{0x01, 0x02, 0x00, 0xFF, 0xFE, 0x00}));
    EXPECT_EQ(record->mEnd.mValidFrames, 1);
}

TEST(Frames, ArriveWholeHoweverTheyAreCutAndHoweverManyTheyAre)
{
    const std::vector<SInt16> samples = Tone(70000, 2);
    for (const std::size_t piece : {70000u, 16385u, 977u})
    {
        RecordInUse record;
        const auto file = NewFile(kAudioFileCAFType, Linear(kRate, kFloat, 32, 2));
        ASSERT_EQ(file->SetClientFormat(Linear(kRate, kSigned, 16, 2)), noErr);
        for (std::size_t at = 0; at < samples.size(); at += 2 * piece)
        {
            const std::size_t end = std::min(samples.size(), at + 2 * piece);
            ASSERT_EQ(Write(*file,
                            std::vector<SInt16>(samples.begin() + static_cast<SInt64>(at),
                                                samples.begin() + static_cast<SInt64>(end)),
                            2),
                      noErr);
        }
        EXPECT_EQ(file->Close(), noErr);
        const std::vector<Float32> written = WordsOf<Float32>(record->mBytes);
        ASSERT_EQ(written.size(), samples.size());
        for (std::size_t i = 0; i < samples.size(); ++i)
            ASSERT_EQ(written[i], static_cast<Float32>(samples[i]) / 32768.0f) << i;
    }
}

TEST(Frames, BeyondFullScaleSaturateAndWhatIsNoNumberIsSilent)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileWAVEType, Linear(kRate, kSigned, 16, 1));
    ASSERT_EQ(file->SetClientFormat(Floats(kRate, 1)), noErr);
    constexpr Float32 kInfinity = std::numeric_limits<Float32>::infinity();
    const std::vector<Float32> samples = {
        2.0f, -2.0f, kInfinity, -kInfinity, std::numeric_limits<Float32>::quiet_NaN(), 0.5f};
    ASSERT_EQ(Write(*file, samples, 1), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(WordsOf<SInt16>(record->mBytes),
              (std::vector<SInt16>{32767, -32768, 32767, -32768, 0, 16384}));
}

struct WordRow
{
    AudioFormatFlags mFlags;
    UInt32 mBits;
};

TEST(Channels, MoveAsWholeWordsOfEveryWidth)
{
    for (const auto& [flags, bits] :
         {WordRow{kSigned, 8}, WordRow{kSigned, 16}, WordRow{kSigned, 24}, WordRow{kSigned, 32},
          WordRow{kFloat, 64}})
    {
        RecordInUse record;
        const UInt32 wordBytes = bits / 8;
        const Description format = Linear(kRate, flags, bits, 3);
        // W64 orders its channels by the mask; the format is between recorders only.
        const auto file = NewFile(kAudioFileWave64Type, format, {3, 1, 2});
        ASSERT_EQ(file->SetClientFormat(format), noErr);
        ByteVector client;
        ByteVector expected;
        constexpr std::size_t kFrames = 50000;  // more than one block of every width
        for (std::size_t frame = 0; frame < kFrames; ++frame)
        {
            for (const UInt32 channel : {0u, 1u, 2u})
                for (UInt32 byte = 0; byte < wordBytes; ++byte)
                    client.push_back(static_cast<UInt8>(frame * 31 + channel * 8 + byte));
            for (const UInt32 channel : {1u, 2u, 0u})
                for (UInt32 byte = 0; byte < wordBytes; ++byte)
                    expected.push_back(static_cast<UInt8>(frame * 31 + channel * 8 + byte));
        }
        ASSERT_EQ(file->Write(client.data(), kFrames, static_cast<UInt32>(client.size())), noErr);
        EXPECT_EQ(file->Close(), noErr);
        EXPECT_TRUE(record->mBytes == expected) << bits << " bits";
        EXPECT_EQ(record->mRequest.mLabels, (Labels{1, 2, 3}));
    }
}

TEST(Channels, MoveBeforeTheyAreConverted)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileWAVEType, Linear(kRate, kFloat, 32, 2), {2, 1});
    ASSERT_EQ(file->SetClientFormat(Linear(kRate, kSigned, 16, 2)), noErr);
    ASSERT_EQ(Write(*file, std::vector<SInt16>{16384, -16384}, 2), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(WordsOf<Float32>(record->mBytes), (std::vector<Float32>{-0.5f, 0.5f}));
}

TEST(Channels, ThatAreMixedHaveNoNames)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileWAVEType, Linear(kRate, kSigned, 16, 2), {2, 1});
    ASSERT_EQ(file->SetClientFormat(Linear(kRate, kSigned, 16, 1)), noErr);
    ASSERT_EQ(Write(*file, std::vector<SInt16>{1000, 2000}, 1), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_TRUE(record->mRequest.mLabels.empty());
    EXPECT_EQ(WordsOf<SInt16>(record->mBytes), (std::vector<SInt16>{1000, 1000, 2000, 2000}));
}

TEST(Rates, AreChangedAndTheLengthIsTheFiles)
{
    RecordInUse record;
    const auto file = NewFile(kAudioFileWAVEType, Linear(48000, kSigned, 16, 1));
    ASSERT_EQ(file->SetClientFormat(Linear(44100, kSigned, 16, 1)), noErr);
    for (int block = 0; block < 10; ++block)
        ASSERT_EQ(Write(*file, Tone(4410, 1), 1), noErr);
    EXPECT_EQ(file->Close(), noErr);
    EXPECT_EQ(record->mBytes.size(), 2u * 48000u);
    EXPECT_EQ(record->mEnd.mValidFrames, 48000);
}

}  // namespace
