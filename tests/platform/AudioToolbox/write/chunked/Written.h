// Written: files of the chunked containers, written into memory and opened again.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_CHUNKED_WRITTEN_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_CHUNKED_WRITTEN_H

#include "../../convert/EncoderUse.h"
#include "../../convert/TestTones.h"
#include "../../file/Opened.h"
#include "platform/AudioToolbox/src/file/write/PacketWriter.h"
#include "platform/AudioToolbox/src/tables/WritableTypes.h"
#include "support/MemorySink.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace written
{

using audiotoolbox::ByteSink;
using audiotoolbox::PacketWriterPtr;
using audiotoolbox::StreamEnd;
using audiotoolbox::StreamStart;
using audiotoolbox::WriteRequest;
using testing_support::Bytes;
using testing_support::MemorySink;

using Labels = std::vector<AudioChannelLabel>;
using Packets = std::vector<AudioStreamPacketDescription>;

constexpr AudioFileTypeID kTypes[] = {
    kAudioFileWAVEType, kAudioFileRF64Type, kAudioFileBW64Type, kAudioFileWave64Type,
    kAudioFileAIFFType, kAudioFileAIFCType, kAudioFileCAFType,  kAudioFileNextType,
};

/// A code as people read it.
inline std::string Code(UInt32 inCode)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(inCode >> shift);
    return text;
}

inline OSStatus MakeWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    switch (inRequest.mType)
    {
        case kAudioFileWave64Type:
            return MakeWave64Writer(inRequest, outWriter);
        case kAudioFileAIFFType:
        case kAudioFileAIFCType:
            return MakeAIFFWriter(inRequest, outWriter);
        case kAudioFileCAFType:
            return MakeCAFWriter(inRequest, outWriter);
        case kAudioFileNextType:
            return MakeAUWriter(inRequest, outWriter);
        default:
            return MakeRIFFWriter(inRequest, outWriter);
    }
}

/// A variant of linear PCM with its rate, channels and byte counts.
inline AudioStreamBasicDescription Complete(AudioStreamBasicDescription inVariant, double inRate,
                                            UInt32 inChannels)
{
    inVariant.mSampleRate = inRate;
    inVariant.mChannelsPerFrame = inChannels;
    inVariant.mBytesPerFrame = inVariant.mBitsPerChannel / 8 * inChannels;
    inVariant.mBytesPerPacket = inVariant.mBytesPerFrame;
    inVariant.mFramesPerPacket = 1;
    return inVariant;
}

inline AudioStreamBasicDescription Integers(UInt32 inBits, UInt32 inChannels,
                                            UInt32 inMoreFlags = 0)
{
    return converter_use::Linear(44100, converter_use::kSigned | inMoreFlags, inBits, inChannels);
}

/// Any bytes for integers, numbers between -1 and 1 for floats.
inline Bytes SomeSamples(const AudioStreamBasicDescription& inFormat, std::size_t inFrames)
{
    std::mt19937 generator(5);
    Bytes bytes(inFrames * inFormat.mBytesPerFrame);
    for (UInt8& byte : bytes)
        byte = static_cast<UInt8>(generator());
    const std::size_t word = inFormat.mBitsPerChannel / 8;
    const bool isBig = (inFormat.mFormatFlags & kAudioFormatFlagIsBigEndian) != 0;
    if ((inFormat.mFormatFlags & kAudioFormatFlagIsFloat) != 0)
        for (std::size_t i = 0; i < bytes.size(); i += word)
            bytes[isBig ? i : i + word - 1] = 0x3E | (bytes[i] & 0x80);
    return bytes;
}

struct Outcome
{
    OSStatus mMade = noErr;
    OSStatus mStarted = noErr;
    OSStatus mWritten = noErr;  // the first failure
    OSStatus mFinished = noErr;

    bool IsGood() const { return mMade + mStarted + mWritten + mFinished == 0 && mWritten == 0; }
};

/// Everything from making to finishing, inBatch packets a write; goes on to finish after a failed
/// write.
inline Outcome Write(ByteSink& ioSink, const WriteRequest& inRequest, const StreamStart& inStart,
                     const std::vector<Bytes>& inPackets, const StreamEnd& inEnd,
                     std::size_t inBatch = 3)
{
    Outcome outcome;
    PacketWriterPtr writer;
    outcome.mMade = MakeWriter(inRequest, writer);
    if (outcome.mMade != noErr)
        return outcome;
    outcome.mStarted = writer->Start(ioSink, inStart);
    if (outcome.mStarted != noErr)
        return outcome;
    for (std::size_t at = 0; at < inPackets.size() && outcome.mWritten == noErr; at += inBatch)
    {
        Bytes bytes;
        Packets descriptions;
        for (std::size_t i = at; i < std::min(at + inBatch, inPackets.size()); ++i)
        {
            descriptions.push_back(
                {static_cast<SInt64>(bytes.size()), 0, static_cast<UInt32>(inPackets[i].size())});
            bytes.insert(bytes.end(), inPackets[i].begin(), inPackets[i].end());
        }
        outcome.mWritten = writer->Write(bytes, descriptions);
    }
    outcome.mFinished = writer->Finish(inEnd);
    return outcome;
}

/// Samples at one go. Fails the test unless all is well.
inline Bytes WriteSamples(AudioFileTypeID inType, const AudioStreamBasicDescription& inFormat,
                          const Bytes& inSamples, const Labels& inLabels = {})
{
    MemorySink sink;
    const auto frames = static_cast<SInt64>(inSamples.size() / inFormat.mBytesPerPacket);
    const std::vector<Bytes> packets(inSamples.empty() ? 0 : 1, inSamples);
    const Outcome outcome =
        Write(sink, {inType, inFormat, inLabels}, {}, packets, {{}, frames, 0, 0});
    EXPECT_TRUE(outcome.IsGood()) << Code(inType);
    return sink.Bytes();
}

/// What an encoder made of tones, and how a file is told of it.
struct EncodedTones
{
    encoder_use::Stream mStream;
    StreamStart mStart;
    StreamEnd mEnd;
};

inline EncodedTones Encode(AudioFormatID inFormat, UInt32 inChannels, std::size_t inFrames)
{
    using namespace encoder_use;
    const double rate = inFormat == kAudioFormatMicrosoftGSM ? 8000 : 44100;
    EncodedTones encoded;
    const ConverterPtr converter = converter_use::New(converter_use::Floats(rate, inChannels),
                                                      Destination(inFormat, rate, inChannels));
    if (!converter)
    {
        ADD_FAILURE() << "no encoder for " << Code(inFormat);
        return encoded;
    }
    encoded.mStart.mCookie = Cookie(converter.get());
    const auto audio = Tones(inFrames, inChannels, rate);
    Memory input(audio, inChannels);
    encoded.mStream = EncodeAll(converter.get(), input);
    EXPECT_EQ(encoded.mStream.mStatus, noErr);
    encoded.mStart.mPrimingFrames = encoded.mStream.mPrime.leadingFrames;
    encoded.mEnd = {encoded.mStream.mCookie, static_cast<SInt64>(inFrames),
                    encoded.mStream.mPrime.leadingFrames, encoded.mStream.mPrime.trailingFrames};
    return encoded;
}

inline Bytes Joined(const std::vector<Bytes>& inPackets)
{
    Bytes bytes;
    for (const Bytes& packet : inPackets)
        bytes.insert(bytes.end(), packet.begin(), packet.end());
    return bytes;
}

inline Bytes WriteEncoded(AudioFileTypeID inType, const EncodedTones& inTones,
                          const Labels& inLabels = {})
{
    MemorySink sink;
    const Outcome outcome = Write(sink, {inType, inTones.mStream.mFormat, inLabels}, inTones.mStart,
                                  inTones.mStream.mPackets, inTones.mEnd);
    EXPECT_TRUE(outcome.IsGood()) << Code(inType);
    return sink.Bytes();
}

inline UInt64 FramesTold(const testing_support::Opened& inFile)
{
    return static_cast<UInt64>(inFile.Facts().mEstimatedDuration * inFile.Format().mSampleRate);
}

}  // namespace written

#endif
