// RIFFWriter: WAVE, and RF64 and BW64, which keep their sizes in a `ds64` chunk.
//
// The 64-bit types have their own magic and `ds64` whatever their size, since that is what they
// were asked for.

#include "file/write/chunked/ChunkedWriter.h"
#include "file/write/chunked/HeaderBytes.h"
#include "file/write/chunked/RequestChecks.h"
#include "file/write/chunked/WaveRecord.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

constexpr UInt32 kElsewhere = 0xFFFFFFFF;
constexpr SInt64 kMaxSize = 0xFFFFFFFE;  // of a chunk, so that no reader takes it for kElsewhere
constexpr UInt32 kChunkHeadBytes = 8;
constexpr UInt32 kFormBytes = 4;
constexpr UInt32 kSizesBytes = 28;
constexpr UInt32 kFactBytes = 4;

struct MagicRow
{
    AudioFileTypeID mType;
    const char* mMagic;
};

constexpr MagicRow kMagics[] = {
    {kAudioFileWAVEType, "RIFF"},
    {kAudioFileRF64Type, "RF64"},
    {kAudioFileBW64Type, "BW64"},
};

class RIFFWriter : public ChunkedWriter
{
public:
    explicit RIFFWriter(const WriteRequest& inRequest)
        : ChunkedWriter(inRequest.mFormat.mBytesPerPacket, inRequest.mFormat.mFramesPerPacket),
          mRequest(inRequest)
    {
    }

private:
    bool IsLarge() const { return mRequest.mType != kAudioFileWAVEType; }

    OSStatus TakeStart(const StreamStart& inStart) override
    {
        mRecord = MakeWaveRecord(mRequest, inStart.mCookie);
        return noErr;
    }

    std::vector<UInt8> MakeHeader(const AudioExtent& inAudio) const override
    {
        HeaderBytes chunks;
        chunks.Text("fmt ").Little(mRecord.size(), 4).Raw(mRecord);
        if (HasFact(mRequest.mFormat))
            chunks.Text("fact")
                .Little(kFactBytes, 4)
                .Little(std::min<UInt64>(inAudio.mValidFrames, kElsewhere), 4);
        const SInt64 padded = inAudio.mBytes + inAudio.mBytes % 2;
        const UInt64 size = kFormBytes + (IsLarge() ? kChunkHeadBytes + kSizesBytes : 0) +
                            chunks.Size() + kChunkHeadBytes + static_cast<UInt64>(padded);
        HeaderBytes header;
        header.Text(Magic()).Little(IsLarge() ? kElsewhere : size, 4).Text("WAVE");
        if (IsLarge())
            AddSizes(size, inAudio, header);
        header.Raw(chunks.Get()).Text("data");
        return header.Little(IsLarge() ? kElsewhere : static_cast<UInt64>(inAudio.mBytes), 4).Get();
    }

    static void AddSizes(UInt64 inSize, const AudioExtent& inAudio, HeaderBytes& ioHeader)
    {
        constexpr UInt32 kTableRows = 0;
        ioHeader.Text("ds64").Little(kSizesBytes, 4).Little(inSize, 8);
        ioHeader.Little(static_cast<UInt64>(inAudio.mBytes), 8).Little(inAudio.mValidFrames, 8);
        ioHeader.Little(kTableRows, 4);
    }

    const char* Magic() const
    {
        const auto* row =
            std::find_if(std::begin(kMagics), std::end(kMagics),
                         [&](const MagicRow& inRow) { return inRow.mType == mRequest.mType; });
        return row->mMagic;
    }

    // The size of the form counts the padding, and `fact` the frames of blocks.
    SInt64 MostAudioBytes(SInt64 inHeaderBytes) const override
    {
        if (IsLarge())
            return ChunkedWriter::MostAudioBytes(inHeaderBytes);
        const SInt64 bytes = kMaxSize + kChunkHeadBytes - inHeaderBytes;
        const SInt64 packets = kMaxSize / mRequest.mFormat.mFramesPerPacket;
        return HasFact(mRequest.mFormat)
                   ? std::min(bytes, packets * mRequest.mFormat.mBytesPerPacket)
                   : bytes;
    }

    OSStatus AppendTail(ByteSink& ioSink, const AudioExtent& inAudio) override
    {
        return AppendPadding(ioSink, inAudio.mBytes, 2);
    }

    WriteRequest mRequest;
    std::vector<UInt8> mRecord;
};

}  // namespace

OSStatus MakeRIFFWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    const bool isOurs =
        std::any_of(std::begin(kMagics), std::end(kMagics),
                    [&](const MagicRow& inRow) { return inRow.mType == inRequest.mType; });
    if (!isOurs || !IsWaveRequest(inRequest))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<RIFFWriter>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
