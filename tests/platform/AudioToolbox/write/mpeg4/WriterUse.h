// WriterUse: encodes audio, writes it into memory and opens the result, for tests of the writer.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_MPEG4_WRITERUSE_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_MPEG4_WRITERUSE_H

#include "../../convert/EncoderUse.h"
#include "../../convert/TestTones.h"
#include "file/PacketReader.h"
#include "file/write/PacketWriter.h"
#include "support/MemorySink.h"
#include "support/MemorySource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace writer_use
{

using encoder_use::Bytes;
using encoder_use::Stream;

struct Pair
{
    AudioFileTypeID mType;
    AudioFormatID mFormat;
};

/// All that the family is written with.
inline constexpr Pair kPairs[] = {
    {kAudioFileM4AType, kAudioFormatMPEG4AAC},
    {kAudioFileM4AType, kAudioFormatAC3},
    {kAudioFileM4AType, kAudioFormatAppleLossless},
    {kAudioFileM4BType, kAudioFormatMPEG4AAC},
    {kAudioFileM4BType, kAudioFormatAC3},
    {kAudioFileM4BType, kAudioFormatAppleLossless},
    {kAudioFileMPEG4Type, kAudioFormatMPEGLayer3},
    {kAudioFileMPEG4Type, kAudioFormatMPEG4AAC},
    {kAudioFileMPEG4Type, kAudioFormatAC3},
    {kAudioFileMPEG4Type, kAudioFormatAppleLossless},
    {kAudioFileMPEG4Type, kAudioFormatEnhancedAC3},
    {kAudioFileMPEG4Type, kAudioFormatFLAC},
    {kAudioFileMPEG4Type, kAudioFormatOpus},
    {kAudioFile3GPType, kAudioFormatMPEG4AAC},
    {kAudioFile3GP2Type, kAudioFormatMPEG4AAC},
};

inline std::string CodeText(UInt32 inCode)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(inCode >> shift);
    return text;
}

inline std::string Name(const Pair& inPair)
{
    return CodeText(inPair.mType) + " with " + CodeText(inPair.mFormat);
}

/// The depth that a lossless format is encoded with here; 0 for the others.
inline UInt32 DepthFlags(AudioFormatID inFormat)
{
    const bool isLossless = inFormat == kAudioFormatAppleLossless || inFormat == kAudioFormatFLAC;
    return isLossless ? kAppleLosslessFormatFlag_24BitSourceData : 0;
}

inline double UsualRate(AudioFormatID inFormat)
{
    return inFormat == kAudioFormatOpus ? 48000.0 : 44100.0;
}

struct Audio
{
    AudioFormatID mFormat;
    double mRate;
    UInt32 mChannels;
    std::vector<float> mSamples;

    SInt64 Frames() const { return static_cast<SInt64>(mSamples.size() / mChannels); }
};

/// Another tone in each channel.
inline Audio MakeAudio(AudioFormatID inFormat, UInt32 inChannels, std::size_t inFrames)
{
    constexpr UInt32 kLow = 3;  // has room for low tones only, where it is
    const double rate = UsualRate(inFormat);
    Audio audio = {inFormat, rate, inChannels, encoder_use::Tones(inFrames, inChannels, rate)};
    if (inChannels != 8)
        return audio;
    const std::vector<float> six = encoder_use::Tones(inFrames, 6, rate);
    for (std::size_t i = 0; i < inFrames; ++i)
        audio.mSamples[i * 8 + kLow] = six[i * 6 + kLow];
    return audio;
}

inline Stream Encode(const Audio& inAudio)
{
    const auto converter = converter_use::New(
        converter_use::Floats(inAudio.mRate, inAudio.mChannels),
        encoder_use::Destination(inAudio.mFormat, inAudio.mRate, inAudio.mChannels,
                                 DepthFlags(inAudio.mFormat)));
    EXPECT_TRUE(converter);
    if (!converter)
        return {};
    encoder_use::Memory input(inAudio.mSamples, inAudio.mChannels);
    Stream stream = encoder_use::EncodeAll(converter.get(), input);
    EXPECT_EQ(stream.mStatus, noErr);
    return stream;
}

inline audiotoolbox::WriteRequest RequestOf(AudioFileTypeID inType, const Stream& inStream)
{
    return {inType, inStream.mFormat, {}};
}

inline audiotoolbox::StreamStart StartOf(const Stream& inStream)
{
    audiotoolbox::StreamStart start;
    start.mCookie = inStream.mCookie;
    start.mPrimingFrames = inStream.mPrime.leadingFrames;
    return start;
}

inline audiotoolbox::StreamEnd EndOf(const Stream& inStream, SInt64 inValidFrames)
{
    return {inStream.mCookie, inValidFrames, inStream.mPrime.leadingFrames,
            inStream.mPrime.trailingFrames};
}

/// Hands the packets over, so many at a time, up to the first status.
inline OSStatus WritePackets(const Stream& inStream, audiotoolbox::PacketWriter& ioWriter,
                             std::size_t inAtOnce = 7)
{
    for (std::size_t first = 0; first < inStream.mPackets.size(); first += inAtOnce)
    {
        Bytes bytes;
        std::vector<AudioStreamPacketDescription> packets;
        const std::size_t end = std::min(first + inAtOnce, inStream.mPackets.size());
        for (std::size_t i = first; i < end; ++i)
        {
            const Bytes& packet = inStream.mPackets[i];
            packets.push_back({static_cast<SInt64>(bytes.size()), inStream.mFrames[i],
                               static_cast<UInt32>(packet.size())});
            bytes.insert(bytes.end(), packet.begin(), packet.end());
        }
        if (const OSStatus status = ioWriter.Write(bytes, packets); status != noErr)
            return status;
    }
    return noErr;
}

/// The first status of the whole life of a file.
inline OSStatus WriteFile(AudioFileTypeID inType, const Stream& inStream, SInt64 inValidFrames,
                          audiotoolbox::ByteSink& ioSink)
{
    audiotoolbox::PacketWriterPtr writer;
    OSStatus status = audiotoolbox::MakeMPEG4Writer(RequestOf(inType, inStream), writer);
    if (status == noErr)
        status = writer->Start(ioSink, StartOf(inStream));
    if (status == noErr)
        status = WritePackets(inStream, *writer);
    return status == noErr ? writer->Finish(EndOf(inStream, inValidFrames)) : status;
}

inline Bytes Written(AudioFileTypeID inType, const Stream& inStream, SInt64 inValidFrames)
{
    testing_support::MemorySink sink;
    EXPECT_EQ(WriteFile(inType, inStream, inValidFrames, sink), noErr);
    return sink.Bytes();
}

/// Opened by its content alone; null, with a failed expectation, where it cannot be.
inline audiotoolbox::PacketReaderPtr Opened(const Bytes& inBytes)
{
    audiotoolbox::ByteSourcePtr source = std::make_unique<testing_support::MemorySource>(inBytes);
    audiotoolbox::PacketReaderPtr reader;
    EXPECT_EQ(audiotoolbox::OpenAudio(0, source, reader), noErr);
    return reader;
}

inline std::vector<Bytes> AllPackets(audiotoolbox::PacketReader& ioReader)
{
    std::vector<Bytes> all;
    Bytes room(1 << 18);
    std::vector<AudioStreamPacketDescription> packets(64);
    for (;;)
    {
        UInt32 bytes = static_cast<UInt32>(room.size());
        UInt32 count = static_cast<UInt32>(packets.size());
        const OSStatus status = ioReader.ReadPackets(static_cast<SInt64>(all.size()), &bytes,
                                                     &count, packets.data(), room.data());
        EXPECT_EQ(status, noErr);
        if (status != noErr || count == 0)
            return all;
        for (UInt32 i = 0; i < count; ++i)
        {
            const auto begin = room.begin() + packets[i].mStartOffset;
            all.emplace_back(begin, begin + packets[i].mDataByteSize);
        }
    }
}

/// The place of a four-character code in the file, from inFrom on; npos where it is not.
inline std::size_t Find(const Bytes& inBytes, const char* inCode, std::size_t inFrom = 0)
{
    const auto found = std::search(inBytes.begin() + static_cast<std::ptrdiff_t>(inFrom),
                                   inBytes.end(), inCode, inCode + std::strlen(inCode));
    return found == inBytes.end() ? std::string::npos
                                  : static_cast<std::size_t>(found - inBytes.begin());
}

/// The body of the first box of this type.
inline Bytes BodyOf(const Bytes& inBytes, const char* inCode)
{
    const std::size_t place = Find(inBytes, inCode);
    if (place == std::string::npos || place < 4)
        return {};
    std::size_t size = 0;
    for (std::size_t i = place - 4; i < place; ++i)
        size = size << 8 | inBytes[i];
    const auto begin = inBytes.begin() + static_cast<std::ptrdiff_t>(place + 4);
    return size < 8 || place - 4 + size > inBytes.size()
               ? Bytes()
               : Bytes(begin, begin + static_cast<std::ptrdiff_t>(size - 8));
}

}  // namespace writer_use

#endif
