// PushConverter: a converter that is handed its input, in front of a packet writer.
//
// Converters pull. Here the input procedure gives what a push brought and then answers a status
// of its own, at which the converter keeps what it holds and returns; after the end it answers 0
// packets. Nothing is allocated per push.
#ifndef AUDIOTOOLBOX_EXTENDED_PUSHCONVERTER_H
#define AUDIOTOOLBOX_EXTENDED_PUSHCONVERTER_H

#include "convert/Converter.h"
#include "file/write/PacketWriter.h"

#include <vector>

namespace audiotoolbox
{

class PushConverter
{
public:
    explicit PushConverter(const ConversionPlan& inPlan);

    AudioConverterRef Ref() { return &mConverter; }
    const ConversionPlan& Plan() const { return mConverter.Plan(); }

    /// Opens the encoder, with the settings as they are; for linear PCM nothing happens.
    OSStatus Start();

    /// What the encoder tells; outStart is the default for linear PCM. Start comes before.
    OSStatus Describe(StreamStart& outStart);

    /// Converts the frames and writes what comes out. A status of the converter or the writer.
    OSStatus Push(const UInt8* inFrames, UInt32 inFrameCount, PacketWriter& ioWriter);

    /// Writes what the converter still holds. Nothing can be pushed any more.
    OSStatus Drain(PacketWriter& ioWriter);

    /// Cookie, priming and remainder as they are now, the valid frames aside.
    OSStatus DescribeEnd(StreamEnd& outEnd);

private:
    static OSStatus Supply(AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                           AudioStreamPacketDescription** outDescriptions, void* inSelf);
    OSStatus Pump(PacketWriter& ioWriter, UInt32& outPackets);

    OpaqueAudioConverter mConverter;
    UInt32 mPacketsAtOnce = 0;
    std::vector<UInt8> mBytes;
    std::vector<AudioStreamPacketDescription> mPackets;  // empty for packets of constant size

    const UInt8* mFrames = nullptr;  // of the push
    UInt32 mFramesLeft = 0;
    bool mHasEnded = false;
};

}  // namespace audiotoolbox

#endif
