// BareStreamWriter: MPEG audio layer 2, AC-3 and E-AC-3: the packets are the file.
//
// Nothing stands in front and nothing is known better at the end, so audio without a single frame
// makes a file of no bytes, which no reader takes for one of these types.
#include "file/write/streams/FramedStreamWriter.h"

namespace audiotoolbox
{
namespace
{

struct BareType
{
    AudioFileTypeID mType;
    AudioFormatID mFormat;
};
constexpr BareType kBareTypes[] = {
    {kAudioFileMP2Type, kAudioFormatMPEGLayer2},
    {kAudioFileAC3Type, kAudioFormatAC3},
    {kAudioFileEAC3Type, kAudioFormatEnhancedAC3},
};

class BareStreamWriter final : public streams::FramedStreamWriter
{
public:
    using FramedStreamWriter::FramedStreamWriter;

private:
    OSStatus AppendPacket(std::span<const UInt8> inPacket) override
    {
        return Sink().Append(inPacket);
    }
};

bool CanHold(const WriteRequest& inRequest)
{
    for (const BareType& row : kBareTypes)
        if (row.mType == inRequest.mType && row.mFormat == inRequest.mFormat.mFormatID)
            return inRequest.mFormat.mSampleRate > 0 && inRequest.mFormat.mChannelsPerFrame > 0;
    return false;
}

}  // namespace

OSStatus MakeBareStreamWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    if (!CanHold(inRequest))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<BareStreamWriter>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
