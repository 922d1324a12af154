#include "extended/PushConverter.h"

#include <algorithm>

namespace audiotoolbox
{
namespace
{

constexpr OSStatus kNoMoreForNow = static_cast<OSStatus>(CA_FOUR_CHAR_CODE('m', 'o', 'r', '?'));
constexpr UInt32 kScratchBytes = 128 * 1024;
constexpr UInt32 kDescribedPackets = 64;

}  // namespace

PushConverter::PushConverter(const ConversionPlan& inPlan) : mConverter(inPlan)
{
    const ConversionPlan& plan = Plan();
    const UInt32 packetBytes = plan.mDestination.mBytesPerPacket;
    if (packetBytes == 0)
        mPackets.resize(kDescribedPackets);
    mPacketsAtOnce = packetBytes == 0 ? kDescribedPackets : kScratchBytes / packetBytes;
    mBytes.resize(packetBytes == 0 ? kScratchBytes : mPacketsAtOnce * packetBytes);
}

OSStatus PushConverter::Start()
{
    return mConverter.Encoder() != nullptr ? mConverter.Encoder()->Start() : OSStatus{noErr};
}

OSStatus PushConverter::Describe(StreamStart& outStart)
{
    outStart = StreamStart();
    PacketEncoder* encoder = mConverter.Encoder();
    if (encoder == nullptr)
        return noErr;
    outStart.mPrimingFrames = encoder->Prime().leadingFrames;
    outStart.mMaximumPacketBytes = MaximumPacketBytes(*Plan().mEncoder, Plan().mStream);
    if (const EncoderSettings* settings = mConverter.Settings())
    {
        if (settings->Mode() != kAudioCodecBitRateControlMode_Variable)
            outStart.mBitRate = settings->BitRate();
        outStart.mIsConstantBitRate = settings->Mode() == kAudioCodecBitRateControlMode_Constant;
    }
    return encoder->GetCookie(outStart.mCookie);
}

OSStatus PushConverter::DescribeEnd(StreamEnd& outEnd)
{
    PacketEncoder* encoder = mConverter.Encoder();
    if (encoder == nullptr)
        return noErr;
    const AudioConverterPrimeInfo prime = encoder->Prime();
    outEnd.mPrimingFrames = prime.leadingFrames;
    outEnd.mRemainderFrames = prime.trailingFrames;
    return encoder->GetCookie(outEnd.mCookie);
}

OSStatus PushConverter::Supply(AudioConverterRef, UInt32* ioPackets, AudioBufferList* ioData,
                               AudioStreamPacketDescription**, void* inSelf)
{
    PushConverter& self = *static_cast<PushConverter*>(inSelf);
    const UInt32 frames = std::min(*ioPackets, self.mFramesLeft);
    *ioPackets = frames;
    if (frames == 0)
        return self.mHasEnded ? OSStatus{noErr} : kNoMoreForNow;
    const AudioStreamBasicDescription& format = self.Plan().mSource;
    // The converter only reads; the record of the interface knows no constant data.
    ioData->mBuffers[0] = {format.mChannelsPerFrame, frames * format.mBytesPerFrame,
                           const_cast<UInt8*>(self.mFrames)};
    self.mFrames += std::size_t{frames} * format.mBytesPerFrame;
    self.mFramesLeft -= frames;
    return noErr;
}

OSStatus PushConverter::Push(const UInt8* inFrames, UInt32 inFrameCount, PacketWriter& ioWriter)
{
    mFrames = inFrames;
    mFramesLeft = inFrameCount;
    OSStatus status = noErr;
    UInt32 packets = 0;
    while (status == noErr && mFramesLeft > 0)
        status = Pump(ioWriter, packets);
    mFramesLeft = 0;  // they are the caller's
    return status;
}

OSStatus PushConverter::Drain(PacketWriter& ioWriter)
{
    mHasEnded = true;
    OSStatus status = noErr;
    for (UInt32 packets = 1; status == noErr && packets > 0;)
        status = Pump(ioWriter, packets);
    return status;
}

OSStatus PushConverter::Pump(PacketWriter& ioWriter, UInt32& outPackets)
{
    AudioBufferList list = {
        1, {{Plan().mLinear.mChannelsPerFrame, static_cast<UInt32>(mBytes.size()), mBytes.data()}}};
    outPackets = mPacketsAtOnce;
    const OSStatus status = mConverter.Fill(Ref(), &Supply, this, outPackets, list,
                                            mPackets.empty() ? nullptr : mPackets.data());
    if (outPackets > 0)
    {
        const std::size_t described = std::min<std::size_t>(outPackets, mPackets.size());
        const OSStatus written = ioWriter.Write(
            {mBytes.data(), list.mBuffers[0].mDataByteSize},
            std::span<const AudioStreamPacketDescription>(mPackets).first(described));
        if (written != noErr)
            return written;
    }
    return status == kNoMoreForNow ? OSStatus{noErr} : status;
}

}  // namespace audiotoolbox
