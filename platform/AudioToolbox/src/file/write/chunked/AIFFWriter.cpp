// AIFFWriter: AIFF and AIFF-C.

#include "file/write/chunked/AIFFCommon.h"
#include "file/write/chunked/HeaderBytes.h"
#include "file/write/chunked/LayoutRecord.h"
#include "file/write/chunked/RequestChecks.h"

namespace audiotoolbox
{
namespace
{

constexpr SInt64 kMaxSize = 0xFFFFFFFE;  // of the form: an even number
constexpr UInt32 kChunkHeadBytes = 8;
constexpr UInt32 kFormBytes = 4;
constexpr UInt32 kSoundHeadBytes = 8;  // offset and block size
constexpr UInt32 kCompressedVersion = 0xA2805140;

class AIFFWriter : public ChunkedWriter
{
public:
    explicit AIFFWriter(const WriteRequest& inRequest)
        : ChunkedWriter(inRequest.mFormat.mBytesPerPacket, inRequest.mFormat.mFramesPerPacket),
          mRequest(inRequest)
    {
    }

private:
    static void AddChunk(const char* inID, std::span<const UInt8> inBody, HeaderBytes& ioBytes)
    {
        ioBytes.Text(inID).Big(inBody.size(), 4).Raw(inBody);
    }

    std::vector<UInt8> MakeChunks(const AudioExtent& inAudio) const
    {
        HeaderBytes chunks;
        if (mRequest.mType == kAudioFileAIFCType)
            AddChunk("FVER", HeaderBytes().Big(kCompressedVersion, 4).Get(), chunks);
        AddChunk("COMM", MakeAIFFCommon(mRequest, inAudio), chunks);
        const std::vector<AudioChannelLabel> labels = KnownLabels(mRequest);
        if (!labels.empty() && !IsPlainOrder(labels))
            AddChunk("CHAN", MakeLayoutRecord(labels), chunks);
        chunks.Text("SSND").Big(kSoundHeadBytes + static_cast<UInt64>(inAudio.mBytes), 4);
        return chunks.Zeros(kSoundHeadBytes).Get();
    }

    std::vector<UInt8> MakeHeader(const AudioExtent& inAudio) const override
    {
        const std::vector<UInt8> chunks = MakeChunks(inAudio);
        const auto padded = static_cast<UInt64>(inAudio.mBytes + inAudio.mBytes % 2);
        HeaderBytes header;
        header.Text("FORM").Big(kFormBytes + chunks.size() + padded, 4);
        return header.Big(mRequest.mType, 4).Raw(chunks).Get();
    }

    SInt64 MostAudioBytes(SInt64 inHeaderBytes) const override
    {
        return kMaxSize + kChunkHeadBytes - inHeaderBytes;
    }

    OSStatus AppendTail(ByteSink& ioSink, const AudioExtent& inAudio) override
    {
        return AppendPadding(ioSink, inAudio.mBytes, 2);
    }

    WriteRequest mRequest;
};

}  // namespace

OSStatus MakeAIFFWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    const bool isOurs =
        inRequest.mType == kAudioFileAIFFType || inRequest.mType == kAudioFileAIFCType;
    if (!isOurs || !IsRequestInOrder(inRequest))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<AIFFWriter>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
