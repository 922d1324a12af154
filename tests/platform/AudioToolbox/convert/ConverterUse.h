// ConverterUse: a client of the converter for tests: descriptions, an input procedure that plays
// a script, and fills until the end.
#ifndef TESTS_CONVERT_CONVERTERUSE_H
#define TESTS_CONVERT_CONVERTERUSE_H

#include <AudioToolbox/AudioConverter.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace converter_use
{

using Bytes = std::vector<UInt8>;

inline AudioStreamBasicDescription Linear(double inRate, UInt32 inFlags, UInt32 inBits,
                                          UInt32 inChannels)
{
    const UInt32 frameBytes = inBits / 8 * inChannels;
    return {inRate, kAudioFormatLinearPCM, inFlags, frameBytes, 1, frameBytes, inChannels, inBits,
            0};
}

inline AudioStreamBasicDescription Floats(double inRate, UInt32 inChannels)
{
    return Linear(inRate, kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked, 32, inChannels);
}

constexpr UInt32 kSigned = kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked;

inline AudioStreamBasicDescription Compressed(AudioFormatID inFormat, double inRate,
                                              UInt32 inChannels, UInt32 inFrames,
                                              UInt32 inPacketBytes = 0)
{
    return {inRate, inFormat, 0, inPacketBytes, inFrames, 0, inChannels, 0, 0};
}

struct DisposeConverter
{
    void operator()(AudioConverterRef inConverter) const
    {
        (void)AudioConverterDispose(inConverter);
    }
};
using ConverterPtr = std::unique_ptr<OpaqueAudioConverter, DisposeConverter>;

/// Null where the pair is refused.
inline ConverterPtr New(const AudioStreamBasicDescription& inFrom,
                        const AudioStreamBasicDescription& inTo)
{
    AudioConverterRef converter = nullptr;
    (void)AudioConverterNew(&inFrom, &inTo, &converter);
    return ConverterPtr(converter);
}

/// Hands packets over in batches and may fail once. The batch lies in a buffer that is scribbled
/// over by the next call, as a file reader's does.
class Input
{
public:
    explicit Input(std::vector<Bytes> inPackets, bool inIsDescribed = true)
        : mPackets(std::move(inPackets)), mIsDescribed(inIsDescribed)
    {
    }
    /// Constant packets, one behind the other.
    static Input Constant(const Bytes& inBytes, std::size_t inPacketBytes)
    {
        std::vector<Bytes> packets;
        for (std::size_t i = 0; i + inPacketBytes <= inBytes.size(); i += inPacketBytes)
            packets.emplace_back(inBytes.begin() + static_cast<std::ptrdiff_t>(i),
                                 inBytes.begin() + static_cast<std::ptrdiff_t>(i + inPacketBytes));
        return Input(std::move(packets), false);
    }

    UInt32 mMostPerCall = 1000000;
    std::size_t mFailBefore = static_cast<std::size_t>(-1);  // the packet before which it fails
    OSStatus mFailure = noErr;
    std::vector<UInt32> mFrames;  // variable frames of each packet, or empty
    int mCalls = 0;
    int mCallsAfterEnd = 0;
    std::size_t mNext = 0;

    static OSStatus Proc(AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                         AudioStreamPacketDescription** outDescriptions, void* inUserData)
    {
        return static_cast<Input*>(inUserData)->Give(ioPackets, ioData, outDescriptions);
    }

private:
    OSStatus Give(UInt32* ioPackets, AudioBufferList* ioData,
                  AudioStreamPacketDescription** outDescriptions)
    {
        ++mCalls;
        if (mNext >= mPackets.size())
            ++mCallsAfterEnd;
        if (mNext >= mFailBefore)
        {
            mFailBefore = static_cast<std::size_t>(-1);
            return mFailure;
        }
        std::fill(mBatch.begin(), mBatch.end(), UInt8{0xEE});
        mBatch.clear();
        mDescriptions.clear();
        const std::size_t stop =
            std::min({mNext + std::min(*ioPackets, mMostPerCall), mPackets.size(), mFailBefore});
        for (; mNext < stop; ++mNext)
        {
            const Bytes& packet = mPackets[mNext];
            mDescriptions.push_back({static_cast<SInt64>(mBatch.size()),
                                     mFrames.empty() ? 0 : mFrames[mNext],
                                     static_cast<UInt32>(packet.size())});
            mBatch.insert(mBatch.end(), packet.begin(), packet.end());
        }
        *ioPackets = static_cast<UInt32>(mDescriptions.size());
        ioData->mBuffers[0].mData = mBatch.data();
        ioData->mBuffers[0].mDataByteSize = static_cast<UInt32>(mBatch.size());
        if (outDescriptions != nullptr && mIsDescribed)
            *outDescriptions = mDescriptions.data();
        return noErr;
    }

    std::vector<Bytes> mPackets;
    bool mIsDescribed;
    Bytes mBatch;
    std::vector<AudioStreamPacketDescription> mDescriptions;
};

/// One fill into an interleaved buffer; outBytes is what was delivered.
inline OSStatus Fill(AudioConverterRef inConverter, Input& ioInput, UInt32 inFrameBytes,
                     UInt32 inFrames, UInt32& outFrames, Bytes& outBytes)
{
    outBytes.assign(std::size_t{inFrameBytes} * inFrames, 0xCC);
    AudioBufferList list = {1, {{0, static_cast<UInt32>(outBytes.size()), outBytes.data()}}};
    outFrames = inFrames;
    const OSStatus status = AudioConverterFillComplexBuffer(inConverter, &Input::Proc, &ioInput,
                                                            &outFrames, &list, nullptr);
    outBytes.resize(list.mBuffers[0].mDataByteSize);
    return status;
}

/// Fills until a fill brings nothing or fails.
inline Bytes FillAll(AudioConverterRef inConverter, Input& ioInput, UInt32 inFrameBytes,
                     UInt32 inFramesPerFill, OSStatus* outStatus = nullptr)
{
    Bytes all;
    for (;;)
    {
        Bytes some;
        UInt32 frames = 0;
        const OSStatus status =
            Fill(inConverter, ioInput, inFrameBytes, inFramesPerFill, frames, some);
        all.insert(all.end(), some.begin(), some.end());
        if (outStatus != nullptr)
            *outStatus = status;
        if (status != noErr || frames == 0)
            return all;
    }
}

template <typename Sample>
std::vector<Sample> As(const Bytes& inBytes)
{
    std::vector<Sample> samples(inBytes.size() / sizeof(Sample));
    if (!samples.empty())
        std::memcpy(samples.data(), inBytes.data(), samples.size() * sizeof(Sample));
    return samples;
}

template <typename Sample>
Bytes BytesOf(const std::vector<Sample>& inSamples)
{
    Bytes bytes(inSamples.size() * sizeof(Sample));
    if (!bytes.empty())
        std::memcpy(bytes.data(), inSamples.data(), bytes.size());
    return bytes;
}

}  // namespace converter_use

#endif
