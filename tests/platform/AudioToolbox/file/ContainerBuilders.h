// ContainerBuilders: small files of each chunked container, in memory.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_FILE_CONTAINERBUILDERS_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_FILE_CONTAINERBUILDERS_H

#include "ByteBuilder.h"

#include <string>

namespace testing_support
{

/// The record of a `fmt ` chunk.
struct WaveRecord
{
    UInt32 mTag = 1;
    UInt32 mChannels = 2;
    UInt32 mRate = 44100;
    UInt32 mBlockBytes = 4;
    UInt32 mBits = 16;
    Bytes mExtra;  // with its count in front when not empty

    Bytes Get() const
    {
        ByteBuilder record;
        record.Little(mTag, 2).Little(mChannels, 2).Little(mRate, 4);
        record.Little(UInt64{mRate} * mBlockBytes, 4).Little(mBlockBytes, 2).Little(mBits, 2);
        if (!mExtra.empty())
            record.Little(mExtra.size(), 2).Raw(mExtra);
        return record.Get();
    }
};

inline WaveRecord ExtensibleRecord(UInt32 inTag, UInt32 inChannels, UInt32 inBits,
                                   UInt32 inValidBits, UInt32 inMask)
{
    WaveRecord record;
    record.mTag = 0xFFFE;
    record.mChannels = inChannels;
    record.mBits = inBits;
    record.mBlockBytes = inChannels * ((inBits + 7) / 8);
    ByteBuilder extra;
    extra.Little(inValidBits, 2).Little(inMask, 4).Little(inTag, 2);
    extra.Raw({0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71});
    record.mExtra = extra.Get();
    return record;
}

/// A chunk of the RIFF kind, padded to an even size.
inline Bytes RIFFChunk(std::string_view inID, const Bytes& inBody)
{
    ByteBuilder chunk;
    chunk.Text(inID).Little(inBody.size(), 4).Raw(inBody);
    if (inBody.size() % 2 != 0)
        chunk.Byte(0);
    return chunk.Get();
}

inline Bytes RIFFFile(std::string_view inMagic, const std::vector<Bytes>& inChunks)
{
    ByteBuilder body;
    for (const Bytes& chunk : inChunks)
        body.Raw(chunk);
    ByteBuilder file;
    file.Text(inMagic).Little(body.Get().size() + 4, 4).Text("WAVE").Raw(body.Get());
    return file.Get();
}

inline Bytes WaveFile(const WaveRecord& inRecord, const Bytes& inData)
{
    return RIFFFile("RIFF", {RIFFChunk("fmt ", inRecord.Get()), RIFFChunk("data", inData)});
}

inline Bytes FactChunk(UInt32 inFrames)
{
    return RIFFChunk("fact", ByteBuilder().Little(inFrames, 4).Get());
}

/// `ds64` with the given sizes and no further rows.
inline Bytes SizesChunk(UInt64 inDataBytes, UInt64 inFrames)
{
    ByteBuilder body;
    body.Little(0, 8).Little(inDataBytes, 8).Little(inFrames, 8).Little(0, 4);
    return RIFFChunk("ds64", body.Get());
}

inline Bytes Wave64Chunk(std::string_view inID, const Bytes& inBody)
{
    ByteBuilder chunk;
    chunk.Text(inID).Raw({0xF3, 0xAC, 0xD3, 0x11, 0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A});
    chunk.Little(inBody.size() + 24, 8).Raw(inBody);
    while (chunk.Get().size() % 8 != 0)
        chunk.Byte(0);
    return chunk.Get();
}

inline Bytes Wave64File(const std::vector<Bytes>& inChunks)
{
    ByteBuilder body;
    for (const Bytes& chunk : inChunks)
        body.Raw(chunk);
    ByteBuilder file;
    file.Text("riff").Raw({0x2E, 0x91, 0xCF, 0x11, 0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00});
    file.Little(body.Get().size() + 40, 8).Text("wave");
    file.Raw({0xF3, 0xAC, 0xD3, 0x11, 0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A});
    return file.Raw(body.Get()).Get();
}

inline Bytes AIFFChunk(std::string_view inID, const Bytes& inBody)
{
    ByteBuilder chunk;
    chunk.Text(inID).Big(inBody.size(), 4).Raw(inBody);
    if (inBody.size() % 2 != 0)
        chunk.Byte(0);
    return chunk.Get();
}

/// 44100 Hz as an 80-bit number.
inline Bytes Rate44100()
{
    return {0x40, 0x0E, 0xAC, 0x44, 0, 0, 0, 0, 0, 0};
}

/// The body of a `COMM` chunk; inCompression empty for plain AIFF.
inline Bytes CommonBody(UInt32 inChannels, UInt32 inFrames, UInt32 inBits,
                        std::string_view inCompression = {}, const Bytes& inRate = Rate44100())
{
    ByteBuilder body;
    body.Big(inChannels, 2).Big(inFrames, 4).Big(inBits, 2).Raw(inRate);
    if (!inCompression.empty())
        body.Text(inCompression).Byte(0).Byte(0);
    return body.Get();
}

/// The body of an `SSND` chunk.
inline Bytes SoundBody(const Bytes& inData, UInt32 inOffset = 0)
{
    return ByteBuilder().Big(inOffset, 4).Big(0, 4).Raw(Bytes(inOffset)).Raw(inData).Get();
}

inline Bytes FormFile(std::string_view inKind, const std::vector<Bytes>& inChunks)
{
    ByteBuilder body;
    for (const Bytes& chunk : inChunks)
        body.Raw(chunk);
    ByteBuilder file;
    file.Text("FORM").Big(body.Get().size() + 4, 4).Text(inKind).Raw(body.Get());
    return file.Get();
}

inline Bytes AIFFFile(UInt32 inChannels, UInt32 inFrames, UInt32 inBits, const Bytes& inData)
{
    return FormFile("AIFF", {AIFFChunk("COMM", CommonBody(inChannels, inFrames, inBits)),
                             AIFFChunk("SSND", SoundBody(inData))});
}

inline Bytes AIFCFile(std::string_view inCompression, UInt32 inChannels, UInt32 inFrames,
                      UInt32 inBits, const Bytes& inData)
{
    return FormFile("AIFC",
                    {AIFFChunk("COMM", CommonBody(inChannels, inFrames, inBits, inCompression)),
                     AIFFChunk("SSND", SoundBody(inData))});
}

struct CAFRecord
{
    double mRate = 44100.0;
    std::string mFormat = "lpcm";
    UInt32 mFlags = 0;
    UInt32 mBytesPerPacket = 4;
    UInt32 mFramesPerPacket = 1;
    UInt32 mChannels = 2;
    UInt32 mBits = 16;

    Bytes Get() const
    {
        ByteBuilder record;
        record.BigDouble(mRate).Text(mFormat).Big(mFlags, 4).Big(mBytesPerPacket, 4);
        return record.Big(mFramesPerPacket, 4).Big(mChannels, 4).Big(mBits, 4).Get();
    }
};

inline Bytes CAFChunk(std::string_view inID, const Bytes& inBody)
{
    return ByteBuilder().Text(inID).Big(inBody.size(), 8).Raw(inBody).Get();
}

inline Bytes CAFData(const Bytes& inData)
{
    return CAFChunk("data", ByteBuilder().Big(0, 4).Raw(inData).Get());
}

inline Bytes CAFTable(UInt64 inPackets, UInt64 inValid, UInt32 inPriming, UInt32 inRemainder,
                      const Bytes& inEntries)
{
    ByteBuilder body;
    body.Big(inPackets, 8).Big(inValid, 8).Big(inPriming, 4).Big(inRemainder, 4).Raw(inEntries);
    return CAFChunk("pakt", body.Get());
}

inline Bytes CAFFile(const std::vector<Bytes>& inChunks)
{
    ByteBuilder file;
    file.Text("caff").Big(1, 2).Big(0, 2);
    for (const Bytes& chunk : inChunks)
        file.Raw(chunk);
    return file.Get();
}

/// ALAC, stereo at 44100 Hz, 4096 frames a packet, of packets of 5, 200 and 3 bytes.
inline Bytes SmallALACFile()
{
    ByteBuilder cookie;
    cookie.Big(4096, 4).Raw({0, 16, 40, 10, 14, 2, 0, 255}).Big(0, 4).Big(0, 4).Big(44100, 4);
    CAFRecord record;
    record.mFormat = "alac";
    record.mBytesPerPacket = 0;
    record.mFramesPerPacket = 4096;
    record.mBits = 0;
    return CAFFile({CAFChunk("desc", record.Get()), CAFChunk("kuki", cookie.Get()),
                    CAFTable(3, 10000, 0, 2288, {5, 0x81, 0x48, 3}), CAFData(CountingBytes(208))});
}

inline Bytes AUFile(UInt32 inEncoding, UInt32 inSize, UInt32 inRate, UInt32 inChannels,
                    const Bytes& inData)
{
    ByteBuilder file;
    file.Text(".snd").Big(28, 4).Big(inSize, 4).Big(inEncoding, 4).Big(inRate, 4);
    return file.Big(inChannels, 4).Big(0, 4).Raw(inData).Get();
}

}  // namespace testing_support

#endif
