// CAFWriter: Core Audio Format. The packet table stands behind the audio, where its size is known.

#include "file/write/chunked/CAFCookies.h"
#include "file/write/chunked/ChunkedWriter.h"
#include "file/write/chunked/CodedOrder.h"
#include "file/write/chunked/HeaderBytes.h"
#include "file/write/chunked/LayoutRecord.h"
#include "file/write/chunked/RequestChecks.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace audiotoolbox
{
namespace
{

// Flags of linear PCM in the file; they differ from those of a stream description.
constexpr UInt32 kStoredFloat = 1;
constexpr UInt32 kStoredLittleEndian = 2;

constexpr UInt32 kDescriptionBytes = 32;
constexpr UInt32 kEditCountBytes = 4;
constexpr UInt32 kTableHeadBytes = 24;
constexpr UInt32 kLawBits = 8;
constexpr UInt64 kMostRemainder = std::numeric_limits<SInt32>::max();

bool HasConstantPackets(AudioFormatID inFormat)
{
    return !NeedsCAFCookie(inFormat);
}

UInt32 StoredFlags(const AudioStreamBasicDescription& inFormat)
{
    if (inFormat.mFormatID != kAudioFormatLinearPCM)
        return inFormat.mFormatFlags;
    const bool isFloat = (inFormat.mFormatFlags & kAudioFormatFlagIsFloat) != 0;
    const bool isBig = (inFormat.mFormatFlags & kAudioFormatFlagIsBigEndian) != 0;
    return (isFloat ? kStoredFloat : 0) | (isBig ? 0 : kStoredLittleEndian);
}

class CAFWriter : public ChunkedWriter
{
public:
    explicit CAFWriter(const WriteRequest& inRequest)
        : ChunkedWriter(HasConstantPackets(inRequest.mFormat.mFormatID)
                            ? inRequest.mFormat.mBytesPerPacket
                            : 0,
                        inRequest.mFormat.mFramesPerPacket),
          mFormat(inRequest.mFormat),
          mLabels(CodedOrder(inRequest.mFormat.mFormatID, KnownLabels(inRequest)))
    {
        if (!HasConstantPackets(mFormat.mFormatID))
            mFormat.mBytesPerPacket = 0;
    }

private:
    OSStatus TakeStart(const StreamStart& inStart) override
    {
        mStart = inStart;
        mCookie = MakeCAFCookie(mFormat.mFormatID, inStart.mCookie, inStart);
        const bool isMissing = mCookie.empty() && NeedsCAFCookie(mFormat.mFormatID);
        return isMissing ? kAudioFileUnsupportedDataFormatError : OSStatus{noErr};
    }

    // A cookie of another size has no room any more; the first one can be read, too.
    void TakeEnd(const StreamEnd& inEnd) override
    {
        std::vector<UInt8> cookie = MakeCAFCookie(mFormat.mFormatID, inEnd.mCookie, mStart);
        if (cookie.size() == mCookie.size())
            mCookie = std::move(cookie);
    }

    static void StartChunk(const char* inID, UInt64 inBytes, HeaderBytes& ioBytes)
    {
        ioBytes.Text(inID).Big(inBytes, 8);
    }

    void AddDescription(HeaderBytes& ioBytes) const
    {
        const bool isLaw =
            mFormat.mFormatID == kAudioFormatALaw || mFormat.mFormatID == kAudioFormatULaw;
        StartChunk("desc", kDescriptionBytes, ioBytes);
        ioBytes.BigDouble(mFormat.mSampleRate).Big(mFormat.mFormatID, 4);
        ioBytes.Big(StoredFlags(mFormat), 4).Big(mFormat.mBytesPerPacket, 4);
        ioBytes.Big(mFormat.mFramesPerPacket, 4).Big(mFormat.mChannelsPerFrame, 4);
        ioBytes.Big(isLaw ? kLawBits : mFormat.mBitsPerChannel, 4);
    }

    static void AddChunk(const char* inID, std::span<const UInt8> inBody, HeaderBytes& ioBytes)
    {
        StartChunk(inID, inBody.size(), ioBytes);
        ioBytes.Raw(inBody);
    }

    std::vector<UInt8> MakeHeader(const AudioExtent& inAudio) const override
    {
        constexpr UInt16 kVersion = 1;
        HeaderBytes header;
        header.Text("caff").Big(kVersion, 2).Big(0, 2);
        AddDescription(header);
        if (!mLabels.empty())
            AddChunk("chan", MakeLayoutRecord(mLabels), header);
        if (!mCookie.empty())
            AddChunk("kuki", mCookie, header);
        StartChunk("data", kEditCountBytes + static_cast<UInt64>(inAudio.mBytes), header);
        return header.Zeros(kEditCountBytes).Get();
    }

    // As the table has it: seven bits a byte, the highest first, all but the last one marked.
    void KeepPacket(UInt32 inBytes) override
    {
        for (int shift = 28; shift > 0; shift -= 7)
            if (inBytes >> shift != 0)
                mSizes.push_back(static_cast<UInt8>(0x80 | (inBytes >> shift)));
        mSizes.push_back(static_cast<UInt8>(inBytes & 0x7F));
    }

    OSStatus AppendTail(ByteSink& ioSink, const AudioExtent& inAudio) override
    {
        if (mFormat.mFramesPerPacket == 1)
            return noErr;
        const UInt64 remainder = std::min<UInt64>(
            inAudio.mFrames - inAudio.mPrimingFrames - inAudio.mValidFrames, kMostRemainder);
        HeaderBytes head;
        StartChunk("pakt", kTableHeadBytes + mSizes.size(), head);
        head.Big(inAudio.mPackets, 8).Big(inAudio.mValidFrames, 8);
        head.Big(inAudio.mPrimingFrames, 4).Big(remainder, 4);
        if (const OSStatus status = ioSink.Append(head.Get()); status != noErr)
            return status;
        return mSizes.empty() ? OSStatus{noErr} : ioSink.Append(mSizes);
    }

    AudioStreamBasicDescription mFormat;
    std::vector<AudioChannelLabel> mLabels;  // in the packets
    StreamStart mStart;
    std::vector<UInt8> mCookie;
    std::vector<UInt8> mSizes;  // of the packets, as the table has them
};

}  // namespace

OSStatus MakeCAFWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    if (inRequest.mType != kAudioFileCAFType || !IsRequestInOrder(inRequest))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<CAFWriter>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
