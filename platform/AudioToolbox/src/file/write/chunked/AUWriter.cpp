// AUWriter: AU, a header of six big-endian words and the samples behind it.

#include "file/write/chunked/ChunkedWriter.h"
#include "file/write/chunked/HeaderBytes.h"
#include "file/write/chunked/RequestChecks.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

constexpr UInt32 kHeaderBytes = 24;
constexpr SInt64 kMaxSize = 0xFFFFFFFE;  // one more would mean a size that nobody knew

struct EncodingRow
{
    AudioFormatID mFormat;
    bool mIsFloat;
    UInt32 mBits;
    UInt32 mEncoding;
};

constexpr EncodingRow kEncodings[] = {
    {kAudioFormatULaw, false, 0, 1},       {kAudioFormatLinearPCM, false, 8, 2},
    {kAudioFormatLinearPCM, false, 16, 3}, {kAudioFormatLinearPCM, false, 24, 4},
    {kAudioFormatLinearPCM, false, 32, 5}, {kAudioFormatLinearPCM, true, 32, 6},
    {kAudioFormatLinearPCM, true, 64, 7},  {kAudioFormatALaw, false, 0, 27},
};

const EncodingRow* FindEncoding(const AudioStreamBasicDescription& inFormat)
{
    const bool isLinear = inFormat.mFormatID == kAudioFormatLinearPCM;
    const bool isFloat = isLinear && (inFormat.mFormatFlags & kAudioFormatFlagIsFloat) != 0;
    const UInt32 bits = isLinear ? inFormat.mBitsPerChannel : 0;
    const auto* row = std::find_if(std::begin(kEncodings), std::end(kEncodings),
                                   [&](const EncodingRow& inRow)
                                   {
        return inRow.mFormat == inFormat.mFormatID && inRow.mIsFloat == isFloat &&
               inRow.mBits == bits;
    });
    return row == std::end(kEncodings) ? nullptr : row;
}

class AUWriter : public ChunkedWriter
{
public:
    AUWriter(const AudioStreamBasicDescription& inFormat, UInt32 inEncoding)
        : ChunkedWriter(inFormat.mBytesPerPacket, inFormat.mFramesPerPacket),
          mFormat(inFormat),
          mEncoding(inEncoding)
    {
    }

private:
    std::vector<UInt8> MakeHeader(const AudioExtent& inAudio) const override
    {
        HeaderBytes header;
        header.Text(".snd").Big(kHeaderBytes, 4).Big(static_cast<UInt64>(inAudio.mBytes), 4);
        header.Big(mEncoding, 4).Big(WholeRate(mFormat.mSampleRate), 4);
        return header.Big(mFormat.mChannelsPerFrame, 4).Get();
    }

    SInt64 MostAudioBytes(SInt64) const override { return kMaxSize; }

    AudioStreamBasicDescription mFormat;
    UInt32 mEncoding;
};

}  // namespace

OSStatus MakeAUWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    const EncodingRow* row = FindEncoding(inRequest.mFormat);
    if (inRequest.mType != kAudioFileNextType || row == nullptr || !IsRequestInOrder(inRequest))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<AUWriter>(inRequest.mFormat, row->mEncoding);
    return noErr;
}

}  // namespace audiotoolbox
