// ADTSWriter: raw AAC with a head of 7 bytes in front of every packet.
//
// Source: ISO/IEC 14496-3, adts_frame. Heads have no checksum and one block each. Audio without a
// single frame makes a file of no bytes, which no reader takes for ADTS.
#include "file/streams/ADTSHeader.h"
#include "file/write/streams/AACStream.h"
#include "file/write/streams/BitWriter.h"
#include "file/write/streams/FramedStreamWriter.h"

#include <algorithm>
#include <array>

namespace audiotoolbox
{
namespace streams
{
namespace
{

constexpr std::size_t kHeadBytes = ADTSSyntax::kHeaderBytes;
constexpr UInt32 kVariableRate = 0x7FF;

class ADTSWriter final : public FramedStreamWriter
{
public:
    using FramedStreamWriter::FramedStreamWriter;

private:
    OSStatus Begin(const StreamStart& inStart) override
    {
        const OSStatus status = TakePlainConfig(Request(), inStart, mConfig);
        mReservoir = BitReservoir(mConfig, inStart);
        return status;
    }

    void PutHead(std::size_t inPacketBytes)
    {
        BitWriter bits(mFrame);
        bits.Put(0xFFF, 12);
        bits.Put(0, 1 + 2);  // MPEG-4, layer
        bits.Put(1, 1);      // no checksum
        bits.Put(mConfig.mObjectType - 1, 2);
        bits.Put(AACRateIndex(mConfig.mSampleRate), 4);
        bits.Put(0, 1);
        bits.Put(mConfig.mChannelConfig, 3);
        bits.Put(0, 4);  // original, home, copyright
        bits.Put(static_cast<UInt32>(kHeadBytes + inPacketBytes), 13);
        bits.Put(mReservoir.After(inPacketBytes).value_or(kVariableRate), 11);
        bits.Put(0, 2);  // one block
    }

    OSStatus AppendPacket(std::span<const UInt8> inPacket) override
    {
        if (inPacket.size() > kLargestADTSFrame - kHeadBytes)
            return kAudioFileUnsupportedDataFormatError;
        PutHead(inPacket.size());
        std::copy(inPacket.begin(), inPacket.end(), mFrame.begin() + kHeadBytes);
        return Sink().Append(std::span(mFrame).first(kHeadBytes + inPacket.size()));
    }

    AACConfig mConfig;
    BitReservoir mReservoir;
    std::array<UInt8, kLargestADTSFrame> mFrame;
};

}  // namespace
}  // namespace streams

OSStatus MakeADTSWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    if (!streams::IsPlainAAC(inRequest.mFormat) ||
        streams::AACRateIndex(static_cast<UInt32>(inRequest.mFormat.mSampleRate)) ==
            streams::kExplicitRateIndex)
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<streams::ADTSWriter>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
