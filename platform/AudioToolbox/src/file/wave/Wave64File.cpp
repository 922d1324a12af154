// Wave64File: W64, a relative of WAVE whose chunks are named by GUIDs and have 64-bit sizes.

#include "file/ChunkWalker.h"
#include "file/ConstantPackets.h"
#include "file/Endian.h"
#include "file/FactArithmetic.h"
#include "file/wave/WaveFormat.h"

#include <cstring>
#include <utility>

namespace audiotoolbox
{
namespace
{

constexpr FourCharCode kFormatID = CA_FOUR_CHAR_CODE('f', 'm', 't', ' ');
constexpr FourCharCode kDataID = CA_FOUR_CHAR_CODE('d', 'a', 't', 'a');
constexpr FourCharCode kFactID = CA_FOUR_CHAR_CODE('f', 'a', 'c', 't');
constexpr FourCharCode kKnownIDs[] = {
    kFormatID,
    kDataID,
    kFactID,
    CA_FOUR_CHAR_CODE('l', 'e', 'v', 'l'),
    CA_FOUR_CHAR_CODE('b', 'e', 'x', 't'),
    CA_FOUR_CHAR_CODE('j', 'u', 'n', 'k'),
};

constexpr ChunkForm kForm = {16, 8, false, true, 8, kKnownIDs};

// GUID `riff`, size of the file, GUID `wave`.
constexpr UInt32 kFileHeaderBytes = 40;
constexpr UInt8 kRiffGUID[16] = {'r',  'i',  'f',  'f',  0x2E, 0x91, 0xCF, 0x11,
                                 0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00};
constexpr UInt8 kWaveGUID[16] = {'w',  'a',  'v',  'e',  0xF3, 0xAC, 0xD3, 0x11,
                                 0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A};

struct Parts
{
    bool mHasFormat = false;
    bool mHasData = false;
    std::optional<UInt64> mFrames;
};

OSStatus TakeChunk(ChunkWalker& ioWalker, const ByteSource& inSource, Parts& ioParts,
                   FileFacts& ioFacts)
{
    const Chunk& chunk = ioWalker.Current();
    if (chunk.mID == kFactID)
    {
        const std::vector<UInt8> body = ioWalker.ReadBody(8);
        if (body.size() == 8)
            ioParts.mFrames = ReadLE64(body.data());
    }
    else if (chunk.mID == kFormatID && !ioParts.mHasFormat)
    {
        ioParts.mHasFormat = true;
        if (chunk.mSize > chunk.mRoom)
            return kAudioFileInvalidFileError;
        return DescribeWave(ioWalker.ReadBody(kMaxWaveFormatBytes), ioFacts);
    }
    else if (chunk.mID == kDataID && !ioParts.mHasData)
    {
        ioParts.mHasData = true;
        ioWalker.SetSize(ioWalker.SizeOfStreamedBody());
        SetDataRange(inSource, chunk.mBody, chunk.mSize, ioFacts);
    }
    return noErr;
}

OSStatus ReadParts(ByteSource& inSource, FileFacts& ioFacts)
{
    ChunkWalker walker(inSource, kForm, kFileHeaderBytes);
    Parts parts;
    const auto isEnough = [&]
    {
        return parts.mHasFormat && parts.mHasData &&
               (parts.mFrames || !HasBlocks(ioFacts.mDataFormat));
    };
    while (!isEnough() && walker.Next())
        if (const OSStatus status = TakeChunk(walker, inSource, parts, ioFacts); status != noErr)
            return walker.Status() != noErr ? walker.Status() : status;
    if (walker.Status() != noErr)
        return walker.Status();
    if (!parts.mHasFormat || !parts.mHasData)
        return kAudioFileInvalidFileError;
    FinishWave(parts.mFrames, ioFacts);
    return noErr;
}

}  // namespace

OSStatus OpenWave64(AudioFileTypeID, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    UInt8 header[kFileHeaderBytes] = {};
    UInt32 got = 0;
    if (const OSStatus status = ioSource->ReadAt(0, sizeof(header), header, &got); status != noErr)
        return status;
    if (std::memcmp(header, kRiffGUID, sizeof(kRiffGUID)) != 0)
        return kAudioFileUnsupportedFileTypeError;
    if (std::memcmp(header + 24, kWaveGUID, sizeof(kWaveGUID)) != 0)
        return kAudioFileInvalidFileError;
    FileFacts facts;
    facts.mFileType = kAudioFileWave64Type;
    if (const OSStatus status = ReadParts(*ioSource, facts); status != noErr)
        return status;
    outReader = std::make_unique<ConstantPackets>(std::move(ioSource), std::move(facts));
    return noErr;
}

}  // namespace audiotoolbox
