// EncoderUse: a client that encodes: audio in, packets with their cookie and priming out.
#ifndef TESTS_CONVERT_ENCODERUSE_H
#define TESTS_CONVERT_ENCODERUSE_H

#include "ConverterUse.h"

#include <cmath>
#include <optional>
#include <random>

namespace encoder_use
{

using converter_use::Bytes;
using converter_use::ConverterPtr;
using converter_use::Input;

struct Stream
{
    AudioStreamBasicDescription mFormat = {};
    std::vector<Bytes> mPackets;
    std::vector<UInt32> mFrames;  // 0: as many as the format says
    Bytes mCookie;
    AudioConverterPrimeInfo mPrime = {};
    OSStatus mStatus = noErr;

    std::size_t ByteCount() const
    {
        std::size_t bytes = 0;
        for (const Bytes& packet : mPackets)
            bytes += packet.size();
        return bytes;
    }
};

template <typename Value>
std::optional<Value> Get(AudioConverterRef inConverter, AudioConverterPropertyID inProperty)
{
    Value value = {};
    UInt32 size = sizeof(value);
    if (AudioConverterGetProperty(inConverter, inProperty, &size, &value) != noErr ||
        size != sizeof(value))
        return std::nullopt;
    return value;
}

inline OSStatus Set(AudioConverterRef inConverter, AudioConverterPropertyID inProperty,
                    UInt32 inValue)
{
    return AudioConverterSetProperty(inConverter, inProperty, sizeof(inValue), &inValue);
}

inline std::vector<UInt32> BitRates(AudioConverterRef inConverter)
{
    UInt32 size = 0;
    if (AudioConverterGetPropertyInfo(inConverter, kAudioConverterApplicableEncodeBitRates, &size,
                                      nullptr) != noErr)
        return {};
    std::vector<AudioValueRange> ranges(size / sizeof(AudioValueRange));
    (void)AudioConverterGetProperty(inConverter, kAudioConverterApplicableEncodeBitRates, &size,
                                    ranges.data());
    std::vector<UInt32> rates;
    for (const AudioValueRange& range : ranges)
        if (range.mMinimum == range.mMaximum)
            rates.push_back(static_cast<UInt32>(range.mMinimum));
    return rates;
}

inline Bytes Cookie(AudioConverterRef inConverter)
{
    UInt32 size = 0;
    if (AudioConverterGetPropertyInfo(inConverter, kAudioConverterCompressionMagicCookie, &size,
                                      nullptr) != noErr)
        return {};
    Bytes cookie(size);
    (void)AudioConverterGetProperty(inConverter, kAudioConverterCompressionMagicCookie, &size,
                                    cookie.data());
    return cookie;
}

/// Hands over one stretch of memory, as many frames as are asked for.
class Memory
{
public:
    Memory(const std::vector<float>& inSamples, UInt32 inChannels)
        : mNext(inSamples.data()), mChannels(inChannels), mLeft(inSamples.size() / inChannels)
    {
    }

    static OSStatus Proc(AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                         AudioStreamPacketDescription**, void* inUserData)
    {
        return static_cast<Memory*>(inUserData)->Give(*ioPackets, ioData->mBuffers[0]);
    }

    void Shorten(std::size_t inFrames) { mLeft = std::min(mLeft, inFrames); }

private:
    OSStatus Give(UInt32& ioFrames, AudioBuffer& outBuffer)
    {
        ioFrames = static_cast<UInt32>(std::min<std::size_t>(ioFrames, mLeft));
        outBuffer.mData = const_cast<float*>(mNext);
        outBuffer.mDataByteSize = ioFrames * mChannels * 4;
        mNext += std::size_t{ioFrames} * mChannels;
        mLeft -= ioFrames;
        return noErr;
    }

    const float* mNext;
    UInt32 mChannels;
    std::size_t mLeft;
};

/// Fills until the end or a status. inPacketsPerFill packets at a time, with just their room.
/// Source is an input with a Proc of its own.
template <typename Source>
inline Stream EncodeAll(AudioConverterRef inConverter, Source& ioInput, UInt32 inPacketsPerFill = 3)
{
    Stream stream;
    stream.mFormat = *Get<AudioStreamBasicDescription>(
        inConverter, kAudioConverterCurrentOutputStreamDescription);
    const UInt32 most = *Get<UInt32>(inConverter, kAudioConverterPropertyMaximumOutputPacketSize);
    Bytes room(std::size_t{most} * inPacketsPerFill);
    std::vector<AudioStreamPacketDescription> descriptions(inPacketsPerFill);
    for (UInt32 packets = 1; packets > 0 && stream.mStatus == noErr;)
    {
        AudioBufferList list = {1, {{0, static_cast<UInt32>(room.size()), room.data()}}};
        packets = inPacketsPerFill;
        stream.mStatus = AudioConverterFillComplexBuffer(inConverter, &Source::Proc, &ioInput,
                                                         &packets, &list, descriptions.data());
        for (UInt32 i = 0; i < packets; ++i)
        {
            const AudioStreamPacketDescription& packet = descriptions[i];
            const auto first = room.begin() + static_cast<std::ptrdiff_t>(packet.mStartOffset);
            stream.mPackets.emplace_back(first, first + packet.mDataByteSize);
            stream.mFrames.push_back(packet.mVariableFramesInPacket);
        }
    }
    stream.mCookie = Cookie(inConverter);
    const auto prime = Get<AudioConverterPrimeInfo>(inConverter, kAudioConverterPrimeInfo);
    stream.mPrime = prime.value_or(AudioConverterPrimeInfo{});
    return stream;
}

/// All frames that the packets give, without what the priming says is none of the audio.
inline Bytes DecodeAll(const Stream& inStream, const AudioStreamBasicDescription& inClient)
{
    AudioStreamBasicDescription format = inStream.mFormat;
    const ConverterPtr converter = converter_use::New(format, inClient);
    if (!converter)
        return {};
    if (!inStream.mCookie.empty())
        (void)AudioConverterSetProperty(converter.get(), kAudioConverterDecompressionMagicCookie,
                                        static_cast<UInt32>(inStream.mCookie.size()),
                                        inStream.mCookie.data());
    (void)AudioConverterSetProperty(converter.get(), kAudioConverterPrimeInfo,
                                    sizeof(inStream.mPrime), &inStream.mPrime);
    Input input(inStream.mPackets, format.mBytesPerPacket == 0);
    input.mFrames = inStream.mFrames;
    return converter_use::FillAll(converter.get(), input, inClient.mBytesPerFrame, 4096);
}

/// Interleaved noise of full scale times inLevel.
inline std::vector<float> Noise(std::size_t inFrames, UInt32 inChannels, float inLevel = 0.9f)
{
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> distribution(-inLevel, inLevel);
    std::vector<float> samples(inFrames * inChannels);
    for (float& sample : samples)
        sample = distribution(generator);
    return samples;
}

}  // namespace encoder_use

#endif
