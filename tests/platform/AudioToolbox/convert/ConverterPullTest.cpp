// The pull loop on linear and logarithmic PCM and scripted procedures. Nothing
// here links the codecs, so that it shows when they are loaded.
#include "AllocationCount.h"
#include "ConverterUse.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>

namespace
{

using namespace converter_use;

std::vector<SInt16> Ramp(std::size_t inCount)
{
    std::vector<SInt16> samples(inCount);
    for (std::size_t i = 0; i < inCount; ++i)
        samples[i] = static_cast<SInt16>(i * 37);
    return samples;
}

bool IsLoaded(const char* inLibrary)
{
    void* library = dlopen(inLibrary, RTLD_LAZY | RTLD_NOLOAD);
    if (library != nullptr)
        dlclose(library);
    return library != nullptr;
}

TEST(Pull, EqualFormatsCopyWhateverTheSizesOfFillAndBatch)
{
    const Bytes source = BytesOf(Ramp(20000));
    const auto format = Linear(44100, kSigned, 16, 2);
    for (const UInt32 fill : {1u, 7u, 1024u, 65536u, 500000u})
        for (const UInt32 batch : {1u, 333u, 100000u})
        {
            const ConverterPtr converter = New(format, format);
            Input input = Input::Constant(source, 4);
            input.mMostPerCall = batch;
            EXPECT_TRUE(FillAll(converter.get(), input, 4, fill) == source)
                << "fills of " << fill << ", batches of " << batch;
            EXPECT_EQ(input.mCallsAfterEnd, 1);
        }
}

TEST(Pull, AFillIsShortOnlyAtTheEndAndTheProcedureIsNotAskedAgain)
{
    const ConverterPtr converter = New(Linear(44100, kSigned, 16, 1), Floats(44100, 1));
    Input input = Input::Constant(BytesOf(Ramp(100)), 2);
    input.mMostPerCall = 3;
    Bytes bytes;
    UInt32 frames = 0;
    EXPECT_EQ(Fill(converter.get(), input, 4, 60, frames, bytes), noErr);
    EXPECT_EQ(frames, 60u);
    EXPECT_EQ(Fill(converter.get(), input, 4, 60, frames, bytes), noErr);
    EXPECT_EQ(frames, 40u);
    EXPECT_EQ(bytes.size(), 160u);
    const int calls = input.mCalls;
    EXPECT_EQ(Fill(converter.get(), input, 4, 60, frames, bytes), noErr);
    EXPECT_EQ(frames, 0u);
    EXPECT_EQ(input.mCalls, calls);
}

TEST(Pull, ResetAsksTheProcedureAgain)
{
    const ConverterPtr converter = New(Linear(44100, kSigned, 16, 1), Floats(44100, 1));
    Input input = Input::Constant(BytesOf(Ramp(10)), 2);
    EXPECT_EQ(FillAll(converter.get(), input, 4, 64).size(), 40u);
    ASSERT_EQ(AudioConverterReset(converter.get()), noErr);
    input.mNext = 0;
    EXPECT_EQ(FillAll(converter.get(), input, 4, 64).size(), 40u);
}

TEST(Pull, AStatusComesBackUnchangedWithTheFramesBeforeIt)
{
    const ConverterPtr converter = New(Linear(44100, kSigned, 16, 1), Floats(44100, 1));
    Input input = Input::Constant(BytesOf(Ramp(100)), 2);
    input.mFailBefore = 25;
    input.mFailure = -1234;
    Bytes bytes;
    UInt32 frames = 0;
    EXPECT_EQ(Fill(converter.get(), input, 4, 60, frames, bytes), -1234);
    EXPECT_EQ(frames, 25u);
    EXPECT_EQ(bytes.size(), 100u);
    EXPECT_EQ(Fill(converter.get(), input, 4, 60, frames, bytes), noErr);
    EXPECT_EQ(frames, 60u);
    EXPECT_EQ(As<float>(bytes)[0], 25 * 37 / 32768.0f);
}

TEST(Pull, NothingIsWrittenBeyondTheByteSizeOfTheList)
{
    const ConverterPtr converter = New(Linear(44100, kSigned, 16, 2), Floats(44100, 2));
    Input input = Input::Constant(BytesOf(Ramp(2000)), 4);
    Bytes room(200, 0xCC);
    AudioBufferList list = {1, {{2, 83, room.data()}}};
    UInt32 frames = 4000000000u;
    EXPECT_EQ(AudioConverterFillComplexBuffer(converter.get(), &Input::Proc, &input, &frames, &list,
                                              nullptr),
              noErr);
    EXPECT_EQ(frames, 10u);
    EXPECT_EQ(list.mBuffers[0].mDataByteSize, 80u);
    EXPECT_TRUE(std::all_of(room.begin() + 80, room.end(), [](UInt8 b) { return b == 0xCC; }));
}

TEST(Pull, AFrameThatIsCutOffAtTheEndIsDropped)
{
    const auto format = Linear(44100, kSigned, 16, 2);
    const ConverterPtr converter = New(format, format);
    const auto proc = [](AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                         AudioStreamPacketDescription**, void* inUser) -> OSStatus
    {
        static UInt8 sData[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
        int& calls = *static_cast<int*>(inUser);
        *ioPackets = calls++ == 0 ? 3 : 0;
        ioData->mBuffers[0].mData = sData;
        ioData->mBuffers[0].mDataByteSize = 10;
        return noErr;
    };
    int calls = 0;
    UInt8 room[64] = {};
    AudioBufferList list = {1, {{2, sizeof(room), room}}};
    UInt32 frames = 16;
    EXPECT_EQ(
        AudioConverterFillComplexBuffer(converter.get(), proc, &calls, &frames, &list, nullptr),
        noErr);
    EXPECT_EQ(frames, 2u);
    EXPECT_EQ(room[7], 8);
    EXPECT_EQ(room[8], 0);
}

struct Answer
{
    UInt32 mPackets;
    UInt32 mByteCount;
    bool mHasData;
    bool mHasDescriptions;
    AudioStreamPacketDescription mDescription;
    OSStatus mExpected;
};

OSStatus GiveAnswer(AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                    AudioStreamPacketDescription** outDescriptions, void* inUser)
{
    static UInt8 sData[100] = {};
    Answer& answer = *static_cast<Answer*>(inUser);
    *ioPackets = answer.mPackets;
    ioData->mBuffers[0].mData = answer.mHasData ? sData : nullptr;
    ioData->mBuffers[0].mDataByteSize = answer.mByteCount;
    if (outDescriptions != nullptr && answer.mHasDescriptions)
        *outDescriptions = &answer.mDescription;
    return noErr;
}

OSStatus FillWith(const AudioStreamBasicDescription& inSource, Answer inAnswer)
{
    const ConverterPtr converter = New(inSource, Floats(44100, 2));
    std::vector<UInt8> room(8 * 100);
    AudioBufferList list = {1, {{2, 800, room.data()}}};
    UInt32 frames = 100;
    const OSStatus status = AudioConverterFillComplexBuffer(converter.get(), &GiveAnswer, &inAnswer,
                                                            &frames, &list, nullptr);
    EXPECT_EQ(frames, 0u);
    return status;
}

TEST(Pull, HostileAnswersAreRefused)
{
    const OSStatus bad = kAudioConverterErr_InvalidInputSize;
    const auto linear = Linear(44100, kSigned, 16, 2);
    EXPECT_EQ(FillWith(linear, {5, 20, false, false, {}, 0}), bad) << "no data";
    EXPECT_EQ(FillWith(linear, {4000000000u, 100, true, false, {}, 0}), bad) << "absurd count";
    const auto described = Compressed(kAudioFormatFLAC, 44100, 2, 4608);
    const OSStatus missing = kAudioConverterErr_RequiresPacketDescriptionsError;
    EXPECT_EQ(FillWith(described, {1, 100, true, false, {}, 0}), missing);
    EXPECT_EQ(FillWith(described, {1, 100, true, true, {-1, 0, 10}, 0}), bad) << "before";
    EXPECT_EQ(FillWith(described, {1, 100, true, true, {90, 0, 11}, 0}), bad) << "behind";
    EXPECT_EQ(FillWith(described, {1, 100, true, true, {1, 0, 0xFFFFFFFF}, 0}), bad) << "size";
    EXPECT_EQ(FillWith(described, {70000, 100, true, true, {0, 0, 1}, 0}), bad) << "count";
}

TEST(Pull, AListOfTheWrongShapeIsRefused)
{
    const ConverterPtr converter = New(Linear(44100, kSigned, 16, 2), Floats(44100, 2));
    Input input = Input::Constant(BytesOf(Ramp(20)), 4);
    AudioBufferList list = {1, {{2, 80, nullptr}}};
    UInt32 frames = 10;
    EXPECT_EQ(AudioConverterFillComplexBuffer(converter.get(), &Input::Proc, &input, &frames, &list,
                                              nullptr),
              kAudioConverterErr_InvalidOutputSize);
    EXPECT_EQ(frames, 0u);
    EXPECT_EQ(input.mCalls, 0);
}

TEST(Pull, PlanesGetOneChannelEach)
{
    auto planar = Linear(44100, kSigned | kAudioFormatFlagIsNonInterleaved, 16, 2);
    planar.mBytesPerFrame = planar.mBytesPerPacket = 2;
    const ConverterPtr converter = New(Linear(44100, kSigned, 16, 2), planar);
    ASSERT_TRUE(converter);
    Input input = Input::Constant(BytesOf(std::vector<SInt16>{1, -1, 2, -2, 3, -3}), 4);
    SInt16 left[4] = {};
    SInt16 right[4] = {};
    struct
    {
        UInt32 mNumberBuffers;
        AudioBuffer mBuffers[2];
    } list = {2, {{1, 8, left}, {1, 8, right}}};
    UInt32 frames = 4;
    EXPECT_EQ(AudioConverterFillComplexBuffer(converter.get(), &Input::Proc, &input, &frames,
                                              reinterpret_cast<AudioBufferList*>(&list), nullptr),
              noErr);
    EXPECT_EQ(frames, 3u);
    EXPECT_EQ(list.mBuffers[1].mDataByteSize, 6u);
    EXPECT_EQ(left[2], 3);
    EXPECT_EQ(right[2], -3);
}

TEST(Pull, MonoIsDoubledAndStereoAveraged)
{
    const ConverterPtr doubled = New(Linear(44100, kSigned, 16, 1), Linear(44100, kSigned, 16, 2));
    Input mono = Input::Constant(BytesOf(std::vector<SInt16>{5, -7}), 2);
    EXPECT_EQ(As<SInt16>(FillAll(doubled.get(), mono, 4, 10)), (std::vector<SInt16>{5, 5, -7, -7}));
    const ConverterPtr mean = New(Linear(44100, kSigned, 16, 2), Linear(44100, kSigned, 16, 1));
    Input stereo = Input::Constant(BytesOf(std::vector<SInt16>{10, 20, -4, 4}), 4);
    EXPECT_EQ(As<SInt16>(FillAll(mean.get(), stereo, 2, 10)), (std::vector<SInt16>{15, 0}));
}

TEST(Pull, OtherCountsKeepTheFirstChannels)
{
    const ConverterPtr more = New(Linear(44100, kSigned, 16, 2), Linear(44100, kSigned, 16, 3));
    Input stereo = Input::Constant(BytesOf(std::vector<SInt16>{1, 2, 3, 4}), 4);
    EXPECT_EQ(As<SInt16>(FillAll(more.get(), stereo, 6, 10)),
              (std::vector<SInt16>{1, 2, 0, 3, 4, 0}));
    const ConverterPtr fewer = New(Linear(44100, kSigned, 16, 3), Linear(44100, kSigned, 16, 2));
    Input three = Input::Constant(BytesOf(std::vector<SInt16>{1, 2, 3, 4, 5, 6}), 6);
    EXPECT_EQ(As<SInt16>(FillAll(fewer.get(), three, 4, 10)), (std::vector<SInt16>{1, 2, 4, 5}));
}

TEST(Pull, AllocatesNothingOnceItRuns)
{
    for (const UInt32 flags : {kSigned, kSigned | kAudioFormatFlagIsBigEndian})
        for (const UInt32 bits : {16u, 24u, 32u})
        {
            const ConverterPtr converter = New(Linear(44100, flags, bits, 2), Floats(44100, 2));
            static UInt8 sData[8 * 4096] = {};
            const auto proc = [](AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                                 AudioStreamPacketDescription**, void*) -> OSStatus
            {
                *ioPackets = std::min(*ioPackets, 4096u);
                ioData->mBuffers[0].mData = sData;
                ioData->mBuffers[0].mDataByteSize = sizeof(sData);
                return noErr;
            };
            std::vector<float> room(2 * 65536);
            std::size_t before = 0;
            for (int i = 0; i < 20; ++i)
            {
                if (i == 2)
                    before = AllocationCount();
                AudioBufferList list = {1, {{2, 8 * 65536, room.data()}}};
                UInt32 frames = 65536;
                ASSERT_EQ(AudioConverterFillComplexBuffer(converter.get(), proc, nullptr, &frames,
                                                          &list, nullptr),
                          noErr);
                ASSERT_EQ(frames, 65536u);
            }
            EXPECT_EQ(AllocationCount(), before) << bits << " bits";
        }
}

TEST(LogLaw, CodesBecomeTheirFractions)
{
    const ConverterPtr mu = New(Compressed(kAudioFormatULaw, 8000, 1, 1, 1), Floats(8000, 1));
    ASSERT_TRUE(mu);
    Input muCodes = Input::Constant({0xFF, 0x7F, 0x80, 0x00, 0xFE}, 1);
    EXPECT_EQ(As<float>(FillAll(mu.get(), muCodes, 4, 100)),
              (std::vector<float>{0, 0, 32124 / 32768.0f, -32124 / 32768.0f, 8 / 32768.0f}));
    const ConverterPtr a =
        New(Compressed(kAudioFormatALaw, 8000, 1, 1, 1), Linear(8000, kSigned, 16, 1));
    Input aCodes = Input::Constant({0xD5, 0x55, 0xAA, 0x2A, 0xD4}, 1);
    EXPECT_EQ(As<SInt16>(FillAll(a.get(), aCodes, 2, 100)),
              (std::vector<SInt16>{8, -8, 32256, -32256, 24}));
}

TEST(LogLaw, PrimingDropsFramesAtBothEnds)
{
    const ConverterPtr converter =
        New(Compressed(kAudioFormatALaw, 8000, 1, 1, 1), Linear(8000, kSigned, 16, 1));
    const AudioConverterPrimeInfo prime = {1, 2};
    ASSERT_EQ(
        AudioConverterSetProperty(converter.get(), kAudioConverterPrimeInfo, sizeof(prime), &prime),
        noErr);
    Input codes = Input::Constant({0xD5, 0x55, 0xAA, 0x2A, 0xD4}, 1);
    EXPECT_EQ(As<SInt16>(FillAll(converter.get(), codes, 2, 1)), (std::vector<SInt16>{-8, 32256}));
}

TEST(Pull, ARateRoundedToWholeHertzIsNoChange)
{
    const ConverterPtr converter = New(Linear(44099.6, kSigned, 16, 1), Floats(44100, 1));
    ASSERT_TRUE(converter);
    Input input = Input::Constant(BytesOf(Ramp(1000)), 2);
    EXPECT_EQ(FillAll(converter.get(), input, 4, 64).size(), 4000u);
    EXPECT_FALSE(IsLoaded("libswresample.so.4"));
}

// Stands last: it loads the codecs.
TEST(ZLoading, TheCodecsComeWithTheFirstPacketAndNotBefore)
{
    const ConverterPtr converter =
        New(Compressed(kAudioFormatAppleLossless, 44100, 2, 4096), Floats(44100, 2));
    const UInt8 cookie[24] = {0, 0, 16, 0, 0, 16, 40, 10, 14, 2};
    ASSERT_EQ(AudioConverterSetProperty(converter.get(), kAudioConverterDecompressionMagicCookie,
                                        sizeof(cookie), cookie),
              noErr);
    EXPECT_FALSE(IsLoaded("libavcodec.so.59"));
    Input input({Bytes(10, 0)});
    Bytes bytes;
    UInt32 frames = 0;
    EXPECT_NE(Fill(converter.get(), input, 8, 100, frames, bytes), noErr);
    EXPECT_TRUE(IsLoaded("libavcodec.so.59"));
}

}  // namespace
