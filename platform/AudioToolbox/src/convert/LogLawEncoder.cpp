#include "convert/LogLawEncoder.h"

#include <algorithm>

namespace audiotoolbox
{

OSStatus LogLawEncoder::Fill(const FrameSupply& inSupply, UInt32& ioPackets,
                             AudioBufferList& ioList, AudioStreamPacketDescription* outPackets)
{
    AudioBuffer& buffer = ioList.mBuffers[0];
    const UInt32 wanted = std::min(ioPackets, buffer.mDataByteSize / mChannelCount);
    ioPackets = 0;
    if (ioList.mNumberBuffers != 1 || (wanted > 0 && buffer.mData == nullptr))
        return kAudioConverterErr_InvalidOutputSize;

    UInt8* codes = static_cast<UInt8*>(buffer.mData);
    const UInt32 most = static_cast<UInt32>(mSamples.size()) / mChannelCount;
    OSStatus status = noErr;
    for (UInt32 came = 1; came > 0 && status == noErr && ioPackets < wanted; ioPackets += came)
    {
        came = std::min(most, wanted - ioPackets);
        status = inSupply(reinterpret_cast<UInt8*>(mSamples.data()), came);
        CompressLogLaw(mLaw, mSamples.data(), std::size_t{came} * mChannelCount,
                       codes + std::size_t{ioPackets} * mChannelCount);
    }
    buffer.mDataByteSize = ioPackets * mChannelCount;
    if (outPackets != nullptr)
        for (UInt32 i = 0; i < ioPackets; ++i)
            outPackets[i] = {SInt64{i} * mChannelCount, 0, mChannelCount};
    return status;
}

}  // namespace audiotoolbox
