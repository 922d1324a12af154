// StreamWriting: encodes audio, writes it as an elementary stream into memory and lets others read
// it, for tests of the writers.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_STREAMS_STREAMWRITING_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_WRITE_STREAMS_STREAMWRITING_H

#include "../../convert/EncoderUse.h"
#include "../../convert/TestTones.h"
#include "../../streams/StreamTesting.h"
#include "../ScratchFolder.h"
#include "file/write/PacketWriter.h"
#include "support/MemorySink.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace stream_writing
{

using encoder_use::Bytes;
using encoder_use::Stream;

/// A type with the format that it holds.
struct Kind
{
    const char* mName;
    AudioFileTypeID mType;
    AudioFormatID mFormat;
    audiotoolbox::MakePacketWriter mMake;
    double mRate;
    std::vector<UInt32> mChannels;
    UInt32 mFramesPerPacket;
    SInt64 mEmptyBytes;  // of a file without audio, where it says anything
};

inline const Kind kADTS = {"ADTS",
                           kAudioFileAAC_ADTSType,
                           kAudioFormatMPEG4AAC,
                           &audiotoolbox::MakeADTSWriter,
                           44100,
                           {1, 2, 6, 8},
                           1024,
                           0};
inline const Kind kLOAS = {"LOAS",
                           kAudioFileLATMInLOASType,
                           kAudioFormatMPEG4AAC,
                           &audiotoolbox::MakeLOASWriter,
                           44100,
                           {1, 2, 6, 8},
                           1024,
                           0};
inline const Kind kMP3 = {"MP3",
                          kAudioFileMP3Type,
                          kAudioFormatMPEGLayer3,
                          &audiotoolbox::MakeMP3Writer,
                          44100,
                          {1, 2},
                          1152,
                          208};
inline const Kind kMP3Low = {"MP3 at 22050 Hz",
                             kAudioFileMP3Type,
                             kAudioFormatMPEGLayer3,
                             &audiotoolbox::MakeMP3Writer,
                             22050,
                             {1, 2},
                             576,
                             182};
inline const Kind kMP2 = {"MP2",
                          kAudioFileMP2Type,
                          kAudioFormatMPEGLayer2,
                          &audiotoolbox::MakeBareStreamWriter,
                          48000,
                          {1, 2},
                          1152,
                          0};
inline const Kind kAC3 = {"AC-3",
                          kAudioFileAC3Type,
                          kAudioFormatAC3,
                          &audiotoolbox::MakeBareStreamWriter,
                          48000,
                          {1, 2, 6},
                          1536,
                          0};
inline const Kind kEAC3 = {"E-AC-3",
                           kAudioFileEAC3Type,
                           kAudioFormatEnhancedAC3,
                           &audiotoolbox::MakeBareStreamWriter,
                           48000,
                           {1, 2, 6},
                           1536,
                           0};
inline const Kind kFLAC = {"FLAC",
                           kAudioFileFLACType,
                           kAudioFormatFLAC,
                           &audiotoolbox::MakeFLACWriter,
                           44100,
                           {1, 2, 6, 8},
                           4608,
                           1865};

inline const Kind kKinds[] = {kADTS, kLOAS, kMP3, kMP3Low, kMP2, kAC3, kEAC3, kFLAC};

struct Settings
{
    UInt32 mFlags = 0;  // depth of a lossless format
    std::optional<UInt32> mMode;
    UInt32 mBitRate = 0;  // 0: the encoder's own
};

inline Stream Encode(const Kind& inKind, UInt32 inChannels, const std::vector<float>& inSamples,
                     const Settings& inSettings = {})
{
    const auto converter = converter_use::New(
        converter_use::Floats(inKind.mRate, inChannels),
        encoder_use::Destination(inKind.mFormat, inKind.mRate, inChannels, inSettings.mFlags));
    EXPECT_TRUE(converter);
    if (!converter)
        return {};
    if (inSettings.mMode)
    {
        EXPECT_EQ(encoder_use::Set(converter.get(), kAudioCodecPropertyBitRateControlMode,
                                   *inSettings.mMode),
                  noErr);
    }
    if (inSettings.mBitRate != 0)
    {
        EXPECT_EQ(
            encoder_use::Set(converter.get(), kAudioConverterEncodeBitRate, inSettings.mBitRate),
            noErr);
    }
    encoder_use::Memory input(inSamples, inChannels);
    Stream stream = encoder_use::EncodeAll(converter.get(), input);
    EXPECT_EQ(stream.mStatus, noErr);
    return stream;
}

inline Stream EncodeTones(const Kind& inKind, UInt32 inChannels, std::size_t inFrames,
                          const Settings& inSettings = {})
{
    return Encode(inKind, inChannels, encoder_use::Tones(inFrames, inChannels, inKind.mRate),
                  inSettings);
}

/// The life of one file; some steps may be changed before Run.
struct File
{
    File(const Kind& inKind, const Stream& inStream, SInt64 inValidFrames)
        : mStream(inStream), mMake(inKind.mMake)
    {
        mRequest = {inKind.mType, inStream.mFormat, {}};
        mStart.mCookie = inStream.mCookie;
        mStart.mPrimingFrames = inStream.mPrime.leadingFrames;
        mEnd = {inStream.mCookie, inValidFrames, inStream.mPrime.leadingFrames,
                inStream.mPrime.trailingFrames};
    }

    /// The first status that is not noErr; Finish is called after a failed write too.
    OSStatus Run(audiotoolbox::ByteSink& ioSink, std::size_t inAtOnce = 7)
    {
        audiotoolbox::PacketWriterPtr writer;
        if (const OSStatus status = mMake(mRequest, writer); status != noErr)
            return status;
        if (const OSStatus status = writer->Start(ioSink, mStart); status != noErr)
            return status;
        const OSStatus written = WritePackets(*writer, inAtOnce);
        mFinished = writer->Finish(mEnd);
        return written != noErr ? written : mFinished;
    }

    OSStatus WritePackets(audiotoolbox::PacketWriter& ioWriter, std::size_t inAtOnce) const
    {
        const std::size_t count = mStream.mPackets.size();
        for (std::size_t first = 0; first < count; first += inAtOnce)
        {
            Bytes bytes;
            std::vector<AudioStreamPacketDescription> packets;
            for (std::size_t i = first; i < std::min(first + inAtOnce, count); ++i)
            {
                const Bytes& packet = mStream.mPackets[i];
                packets.push_back({static_cast<SInt64>(bytes.size()), mStream.mFrames[i],
                                   static_cast<UInt32>(packet.size())});
                bytes.insert(bytes.end(), packet.begin(), packet.end());
            }
            if (const OSStatus status = ioWriter.Write(bytes, packets); status != noErr)
                return status;
        }
        return noErr;
    }

    const Stream& mStream;
    audiotoolbox::MakePacketWriter mMake;
    audiotoolbox::WriteRequest mRequest;
    audiotoolbox::StreamStart mStart;
    audiotoolbox::StreamEnd mEnd;
    OSStatus mFinished = noErr;
};

inline Bytes Written(const Kind& inKind, const Stream& inStream, SInt64 inValidFrames)
{
    testing_support::MemorySink sink;
    EXPECT_EQ(File(inKind, inStream, inValidFrames).Run(sink), noErr) << inKind.mName;
    return sink.Bytes();
}

/// Opened by its content alone.
inline stream_testing::Opened OpenByContent(const Bytes& inBytes)
{
    const auto open = [](AudioFileTypeID inType, audiotoolbox::ByteSourcePtr& ioSource,
                         audiotoolbox::PacketReaderPtr& outReader)
    { return audiotoolbox::OpenAudio(inType, ioSource, outReader); };
    return stream_testing::Open({open, 0}, inBytes);
}

inline std::vector<Bytes> PacketsOf(stream_testing::Opened& ioFile)
{
    std::vector<Bytes> packets;
    for (const stream_testing::Packet& packet : stream_testing::ReadAll(*ioFile.mReader))
        packets.push_back(packet.mBytes);
    return packets;
}

/// What a shell command prints, the file's path in place of each "%"; nullopt when it fails.
inline std::optional<Bytes> OutputOf(const Bytes& inFile, const std::string& inExtension,
                                     std::string inCommand)
{
    const write_test::ScratchFolder folder;
    const std::string path = folder.File("written." + inExtension);
    write_test::MakeFile(path, std::string(inFile.begin(), inFile.end()));
    for (std::size_t at = 0; (at = inCommand.find('%')) != std::string::npos;)
        inCommand.replace(at, 1, path);
    FILE* pipe = ::popen(inCommand.c_str(), "r");
    if (pipe == nullptr)
        return std::nullopt;
    Bytes output;
    UInt8 buffer[4096];
    for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;)
        output.insert(output.end(), buffer, buffer + got);
    return ::pclose(pipe) == 0 ? std::optional(output) : std::nullopt;
}

/// Interleaved samples that a command prints as floats; empty when it fails.
inline std::vector<float> FloatsOf(const Bytes& inFile, const std::string& inExtension,
                                   const std::string& inCommand)
{
    const auto output = OutputOf(inFile, inExtension, inCommand);
    return output ? converter_use::As<float>(*output) : std::vector<float>();
}

constexpr const char* kFFmpegFloats = "ffmpeg -v error -nostdin -i % -f f32le -";
constexpr const char* kMPG123Floats = "mpg123 -q -e f32 -s %";

}  // namespace stream_writing

#endif
