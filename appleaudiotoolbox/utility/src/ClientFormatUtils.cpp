// Facts about formats: the cost of a compressed sample, and the linear PCM formats on this side of
// a conversion.
#include "appleaudiotoolbox/utility/ATUtils.h"

namespace appleaudiotoolbox
{

namespace
{

// Flags and depth of samples in native byte order.
struct SampleKind
{
    UInt32 mFlags;
    UInt32 mBits;
};

constexpr SampleKind kUnsigned8 = {kAudioFormatFlagIsPacked, 8};
constexpr SampleKind kSigned16 = {kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked, 16};
constexpr SampleKind kSigned24 = {kAudioFormatFlagIsSignedInteger | kAudioFormatFlagIsPacked, 24};
constexpr SampleKind kFloat32 = {kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked, 32};

// The smallest kind that holds a depth without loss; float for a compressed file's 0.
SampleKind KindThatHolds(UInt32 inBits)
{
    if (inBits == 0 || inBits > 24)
        return kFloat32;
    if (inBits <= 8)
        return kUnsigned8;
    return inBits <= 16 ? kSigned16 : kSigned24;
}

// The kind of exactly this depth. Odd depths are float by their flags and keep their number.
SampleKind KindNamed(UInt32 inBits)
{
    switch (inBits)
    {
        case 8:
            return kUnsigned8;
        case 16:
            return kSigned16;
        case 24:
            return kSigned24;
        case 32:
        case 64:
            return kFloat32;
        default:
            return {kFloat32.mFlags, inBits};
    }
}

CAStreamBasicDescription MakeLinearPCM(double inSampleRate, SampleKind inKind,
                                       UInt32 inChannelCount)
{
    const UInt32 bytesPerFrame = inKind.mBits / 8 * inChannelCount;
    return CAStreamBasicDescription(inSampleRate, kAudioFormatLinearPCM, bytesPerFrame, 1,
                                    bytesPerFrame, inChannelCount, inKind.mBits, inKind.mFlags);
}

// 32 bits of the rate in whole Hz; 0 for a rate that no file can mean.
double RoundedRate(double inRate)
{
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    const double raised = inRate + 0.5;
    if (!(raised > -kLimit && raised < kLimit))
        return 0.0;
    return static_cast<UInt32>(static_cast<SInt64>(raised));
}

}  // namespace

double GetEstimatedBitDepthFromCompressedFormat(unsigned int inFormatID)
{
    struct SampleCost
    {
        unsigned int mFormatID;
        double mBits;
    };
    static constexpr SampleCost kSampleCosts[] = {
        {kAudioFormatAppleLossless, 7.71}, {kAudioFormatALaw, 4.0},
        {kAudioFormatULaw, 4.0},           {kAudioFormatiLBC, 1.78312},
        {kAudioFormatAppleIMA4, 2.0},      {kAudioFormatMACE3, 2.66667},
        {kAudioFormatMACE6, 1.33333},      {kAudioFormatQDesign2, 5.71428},
        {kAudioFormatQDesign, 2.90249},
    };
    for (const SampleCost& row : kSampleCosts)
        if (row.mFormatID == inFormatID)
            return row.mBits;
    return 0.0;
}

CAStreamBasicDescription GetClientFormatFromInputFormat(const CAStreamBasicDescription& inInput,
                                                        bool inForceFloat)
{
    const SampleKind kind = inForceFloat ? kFloat32 : KindThatHolds(inInput.mBitsPerChannel);
    return MakeLinearPCM(RoundedRate(inInput.mSampleRate), kind, inInput.mChannelsPerFrame);
}

CAStreamBasicDescription ConstructClientFormatFromArgs(double inSampleRate,
                                                       unsigned int inBitsPerSample,
                                                       unsigned int inChannelCount)
{
    return MakeLinearPCM(inSampleRate, KindNamed(inBitsPerSample), inChannelCount);
}

}  // namespace appleaudiotoolbox
