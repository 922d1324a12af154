#include "convert/AACDecoderConfig.h"

#include <algorithm>
#include <iterator>

namespace audiotoolbox
{

namespace
{

constexpr UInt32 kRates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                             22050, 16000, 12000, 11025, 8000,  7350};
constexpr UInt32 kExplicitRate = 15;
constexpr UInt32 kLastPlainObjectType = 4;  // main, LC, SSR, LTP: configured alike
constexpr UInt32 kObjectTypeSBR = 5;

class BitWriter
{
public:
    void Put(UInt32 inValue, UInt32 inBitCount)
    {
        for (UInt32 bit = inBitCount; bit-- > 0; ++mCount)
        {
            if (mCount % 8 == 0)
                mBytes.push_back(0);
            mBytes.back() |= static_cast<UInt8>(((inValue >> bit) & 1u) << (7 - mCount % 8));
        }
    }
    void PutRate(UInt32 inRate)
    {
        const auto* found = std::find(std::begin(kRates), std::end(kRates), inRate);
        if (found != std::end(kRates))
            return Put(static_cast<UInt32>(found - kRates), 4);
        Put(kExplicitRate, 4);
        Put(inRate, 24);
    }
    std::vector<UInt8> Take() { return std::move(mBytes); }

private:
    std::vector<UInt8> mBytes;
    UInt32 mCount = 0;
};

void PutCore(const AACConfig& inConfig, BitWriter& ioBits)
{
    ioBits.Put(inConfig.mObjectType, 5);
    ioBits.PutRate(inConfig.mSampleRate);
    ioBits.Put(inConfig.mChannelConfig, 4);
    ioBits.Put(inConfig.mFramesPerPacket == 960 ? 1 : 0, 1);
    ioBits.Put(0, 2);  // no core coder, no extension
}

void PutLayers(const AACConfig& inConfig, AudioFormatID inLayer, BitWriter& ioBits)
{
    const bool hasSBR = inLayer != kAudioFormatMPEG4AAC;
    ioBits.Put(0x2B7, 11);
    ioBits.Put(kObjectTypeSBR, 5);
    ioBits.Put(hasSBR ? 1 : 0, 1);
    if (!hasSBR)
        return;
    ioBits.PutRate(inConfig.mExtendedRate != 0 ? inConfig.mExtendedRate : 2 * inConfig.mSampleRate);
    ioBits.Put(0x548, 11);
    ioBits.Put(inLayer == kAudioFormatMPEG4AAC_HE_V2 ? 1 : 0, 1);
}

bool CanBeMade(const AACConfig& inConfig)
{
    return inConfig.mObjectType >= 1 && inConfig.mObjectType <= kLastPlainObjectType &&
           inConfig.mChannelConfig != 0 && inConfig.mExtendedRate != inConfig.mSampleRate;
}

}  // namespace

std::vector<UInt8> MakeAACDecoderConfig(const AACConfig& inConfig, std::span<const UInt8> inBytes,
                                        AudioFormatID inLayer)
{
    if (CanBeMade(inConfig))
    {
        BitWriter bits;
        PutCore(inConfig, bits);
        PutLayers(inConfig, inLayer, bits);
        return bits.Take();
    }
    std::vector<UInt8> bytes(inBytes.begin(), inBytes.end());
    if (inLayer == kAudioFormatMPEG4AAC && !inConfig.mHasSBR)
        bytes.insert(bytes.end(), {0x56, 0xE5, 0x00});
    return bytes;
}

bool ReadADTSHead(std::span<const UInt8> inFrame, AACConfig& outConfig, UInt32& outHeadBytes)
{
    // Source: ISO/IEC 13818-7, adts_fixed_header.
    if (inFrame.size() < 7 || inFrame[0] != 0xFF || (inFrame[1] & 0xF6) != 0xF0)
        return false;
    const UInt32 rateIndex = (inFrame[2] >> 2) & 0xFu;
    if (rateIndex >= std::size(kRates))
        return false;
    outHeadBytes = (inFrame[1] & 1u) != 0 ? 7 : 9;
    outConfig = AACConfig();
    outConfig.mObjectType = (inFrame[2] >> 6) + 1u;
    outConfig.mSampleRate = kRates[rateIndex];
    outConfig.mChannelConfig = ((inFrame[2] & 1u) << 2) | (inFrame[3] >> 6);
    outConfig.mChannelCount = outConfig.mChannelConfig == 7 ? 8 : outConfig.mChannelConfig;
    outConfig.mFramesPerPacket = 1024;
    return inFrame.size() > outHeadBytes;
}

}  // namespace audiotoolbox
