// Wave64Writer: W64, whose chunks are named by GUIDs and whose sizes count their own heads.
//
// Chunks start at multiples of 8 bytes. The audio is the last one and ends the file without
// padding, which common readers would take for audio.

#include "file/write/chunked/ChunkedWriter.h"
#include "file/write/chunked/HeaderBytes.h"
#include "file/write/chunked/WaveRecord.h"

namespace audiotoolbox
{
namespace
{

constexpr UInt8 kRiffTail[12] = {0x2E, 0x91, 0xCF, 0x11, 0xA5, 0xD6,
                                 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00};
constexpr UInt8 kChunkTail[12] = {0xF3, 0xAC, 0xD3, 0x11, 0x8C, 0xD1,
                                  0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A};
constexpr UInt32 kChunkHeadBytes = 24;
constexpr UInt32 kFileHeadBytes = 40;
constexpr UInt32 kFactBytes = 8;
constexpr UInt32 kAlignment = 8;

UInt64 Aligned(UInt64 inBytes)
{
    return (inBytes + kAlignment - 1) / kAlignment * kAlignment;
}

class Wave64Writer : public ChunkedWriter
{
public:
    explicit Wave64Writer(const WriteRequest& inRequest)
        : ChunkedWriter(inRequest.mFormat.mBytesPerPacket, inRequest.mFormat.mFramesPerPacket),
          mRequest(inRequest)
    {
    }

private:
    OSStatus TakeStart(const StreamStart& inStart) override
    {
        mRecord = MakeWaveRecord(mRequest, inStart.mCookie);
        return noErr;
    }

    static void StartChunk(const char* inID, UInt64 inBytes, HeaderBytes& ioBytes)
    {
        ioBytes.Text(inID).Raw(kChunkTail).Little(kChunkHeadBytes + inBytes, 8);
    }

    std::vector<UInt8> MakeHeader(const AudioExtent& inAudio) const override
    {
        HeaderBytes chunks;
        StartChunk("fmt ", mRecord.size(), chunks);
        chunks.Raw(mRecord).Zeros(Aligned(mRecord.size()) - mRecord.size());
        if (HasFact(mRequest.mFormat))
        {
            StartChunk("fact", kFactBytes, chunks);
            chunks.Little(inAudio.mValidFrames, kFactBytes);
        }
        const auto bytes = static_cast<UInt64>(inAudio.mBytes);
        StartChunk("data", bytes, chunks);
        HeaderBytes header;
        header.Text("riff").Raw(kRiffTail);
        header.Little(kFileHeadBytes + chunks.Size() + bytes, 8);
        return header.Text("wave").Raw(kChunkTail).Raw(chunks.Get()).Get();
    }

    WriteRequest mRequest;
    std::vector<UInt8> mRecord;
};

}  // namespace

OSStatus MakeWave64Writer(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    if (inRequest.mType != kAudioFileWave64Type || !IsWaveRequest(inRequest))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<Wave64Writer>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
