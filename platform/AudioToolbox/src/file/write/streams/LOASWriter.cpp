// LOASWriter: AAC in AudioMuxElements, each behind a sync word and its length.
//
// Source: ISO/IEC 14496-3, AudioSyncStream, AudioMuxElement and StreamMuxConfig of version 0. One
// program, one layer, one packet an element. Every sixteenth element carries the configuration, so
// that a reader may begin within the stream; the others refer to it. Audio without a single frame
// makes a file of no bytes, which no reader takes for LOAS.
#include "file/streams/LOASHeader.h"
#include "file/write/streams/AACStream.h"
#include "file/write/streams/BitWriter.h"
#include "file/write/streams/FramedStreamWriter.h"

#include <array>

namespace audiotoolbox
{
namespace streams
{
namespace
{

constexpr UInt64 kPacketsPerConfig = 16;
constexpr UInt32 kVariableRate = 0xFF;

class LOASWriter final : public FramedStreamWriter
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

    // Without a sync extension: its end would not be known in this version.
    void PutDecoderConfig(BitWriter& ioBits) const
    {
        const UInt32 rateIndex = AACRateIndex(mConfig.mSampleRate);
        ioBits.Put(mConfig.mObjectType, 5);
        ioBits.Put(rateIndex, 4);
        if (rateIndex == kExplicitRateIndex)
            ioBits.Put(mConfig.mSampleRate, 24);
        ioBits.Put(mConfig.mChannelConfig, 4);
        ioBits.Put(0, 3);  // 1024 frames, no core coder, no extension
    }

    void PutMuxConfig(BitWriter& ioBits, UInt32 inFullness) const
    {
        ioBits.Put(0, 1);      // version
        ioBits.Put(1, 1);      // all streams have the same time framing
        ioBits.Put(0, 6 + 4);  // one packet, one program
        ioBits.Put(0, 3);      // one layer
        PutDecoderConfig(ioBits);
        ioBits.Put(0, 3);  // the length stands in front of each packet
        ioBits.Put(inFullness, 8);
        ioBits.Put(0, 1 + 1);  // no other data, no checksum
    }

    // Answers the size of the element in bytes.
    std::size_t PutElement(std::span<const UInt8> inPacket)
    {
        const UInt32 fullness = mReservoir.After(inPacket.size()).value_or(kVariableRate);
        BitWriter bits{std::span(mFrame).subspan(LOASSyntax::kHeaderBytes)};
        const bool hasConfig = mPackets % kPacketsPerConfig == 0;
        bits.Put(hasConfig ? 0 : 1, 1);
        if (hasConfig)
            PutMuxConfig(bits, fullness);
        std::size_t length = inPacket.size();
        for (; length >= 255; length -= 255)
            bits.Put(255, 8);
        bits.Put(static_cast<UInt32>(length), 8);
        bits.PutBytes(inPacket);
        return bits.ByteCount();
    }

    OSStatus AppendPacket(std::span<const UInt8> inPacket) override
    {
        if (inPacket.size() > kLargestLOASElement)
            return kAudioFileUnsupportedDataFormatError;
        const std::size_t size = PutElement(inPacket);
        if (size > kLargestLOASElement)
            return kAudioFileUnsupportedDataFormatError;
        BitWriter head(mFrame);
        head.Put(kLOASSync, 11);
        head.Put(static_cast<UInt32>(size), 13);
        const OSStatus status =
            Sink().Append(std::span(mFrame).first(LOASSyntax::kHeaderBytes + size));
        mPackets += status == noErr ? 1 : 0;
        return status;
    }

    AACConfig mConfig;
    BitReservoir mReservoir;
    UInt64 mPackets = 0;
    std::array<UInt8, LOASSyntax::kHeaderBytes + kLargestLOASElement> mFrame;
};

}  // namespace
}  // namespace streams

OSStatus MakeLOASWriter(const WriteRequest& inRequest, PacketWriterPtr& outWriter)
{
    if (!streams::IsPlainAAC(inRequest.mFormat))
        return kAudioFileUnsupportedDataFormatError;
    outWriter = std::make_unique<streams::LOASWriter>(inRequest);
    return noErr;
}

}  // namespace audiotoolbox
