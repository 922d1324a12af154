#include "file/write/streams/AACStream.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

constexpr UInt32 kRates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                             22050, 16000, 12000, 11025, 8000,  7350};
constexpr UInt32 kLongestRate = 0xFFFFFF;  // 24 bits
constexpr UInt32 kFramesPerPacket = 1024;
constexpr UInt32 kLastPlainObjectType = 4;  // main, LC, SSR, LTP

constexpr UInt32 kChannels[] = {0, 1, 2, 3, 4, 5, 6, 8};  // by channel configuration
// The same without low frequency channels, which have no share of the reservoir.
constexpr UInt32 kWideChannels[] = {0, 1, 2, 3, 4, 5, 5, 7};
constexpr double kBitsPerChannel = 6144;  // of a decoder's input buffer

}  // namespace

UInt32 AACRateIndex(UInt32 inRate)
{
    const auto* found = std::find(std::begin(kRates), std::end(kRates), inRate);
    return found == std::end(kRates) ? kExplicitRateIndex : static_cast<UInt32>(found - kRates);
}

bool IsPlainAAC(const AudioStreamBasicDescription& inFormat)
{
    const double rate = inFormat.mSampleRate;
    const UInt32 channels = inFormat.mChannelsPerFrame;
    const bool isRate = rate >= 1 && rate <= kLongestRate && rate == std::floor(rate);
    const bool isCount =
        std::find(std::begin(kChannels) + 1, std::end(kChannels), channels) != std::end(kChannels);
    return inFormat.mFormatID == kAudioFormatMPEG4AAC && isRate && isCount &&
           inFormat.mFramesPerPacket == kFramesPerPacket;
}

OSStatus TakePlainConfig(const WriteRequest& inRequest, const StreamStart& inStart,
                         AACConfig& outConfig)
{
    const std::vector<UInt8> bytes = AudioSpecificConfigOfCookie(inStart.mCookie);
    if (!ParseAudioSpecificConfig(bytes, outConfig))
        return kAudioFileUnsupportedDataFormatError;
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    const bool isPlain = outConfig.mObjectType >= 1 &&
                         outConfig.mObjectType <= kLastPlainObjectType && !outConfig.mHasSBR &&
                         outConfig.mChannelConfig >= 1 &&
                         outConfig.mChannelConfig < std::size(kChannels) &&
                         outConfig.mFramesPerPacket == kFramesPerPacket;
    const bool isRequested = outConfig.mSampleRate == format.mSampleRate &&
                             outConfig.mChannelCount == format.mChannelsPerFrame;
    return isPlain && isRequested ? OSStatus{noErr} : kAudioFileUnsupportedDataFormatError;
}

BitReservoir::BitReservoir(const AACConfig& inConfig, const StreamStart& inStart)
{
    if (!inStart.mIsConstantBitRate || inStart.mBitRate == 0)
        return;
    mMeanBits = double{kFramesPerPacket} * inStart.mBitRate / inConfig.mSampleRate;
    mChannels = kWideChannels[inConfig.mChannelConfig];
    mCapacity = std::max(0.0, kBitsPerChannel * mChannels - mMeanBits);
    mLevel = mCapacity;
}

std::optional<UInt32> BitReservoir::After(std::size_t inPacketBytes)
{
    if (mMeanBits == 0)
        return std::nullopt;
    const double bits = static_cast<double>(inPacketBytes) * 8;
    mLevel = std::clamp(mLevel + mMeanBits - bits, 0.0, mCapacity);
    return static_cast<UInt32>(mLevel / (32 * mChannels));
}

}  // namespace audiotoolbox::streams
