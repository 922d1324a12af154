// CAStreamBasicDescription: records, comparison, order. Its texts stand in files of their own.
#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"

#include <cstring>

namespace
{

using Field = UInt32 AudioStreamBasicDescription::*;

bool HasFlag(const AudioStreamBasicDescription& inFormat, UInt32 inFlag)
{
    return (inFormat.mFormatFlags & inFlag) != 0;
}

bool IsLinearPCM(const AudioStreamBasicDescription& inFormat)
{
    return inFormat.mFormatID == kAudioFormatLinearPCM;
}

// False for 0 and for NaN.
bool IsSpecified(double inRate)
{
    return inRate < 0.0 || inRate > 0.0;
}

// A NaN differs from nothing.
bool AreDifferent(double inX, double inY)
{
    return inX < inY || inX > inY;
}

bool AreBothSpecifiedAndDifferent(UInt32 inX, UInt32 inY)
{
    return inX != 0 && inY != 0 && inX != inY;
}

// All fields but the flags, 0 matching anything.
bool FieldsMatchWithWildcards(const AudioStreamBasicDescription& inX,
                              const AudioStreamBasicDescription& inY)
{
    constexpr Field kFields[] = {
        &AudioStreamBasicDescription::mFormatID,
        &AudioStreamBasicDescription::mBytesPerPacket,
        &AudioStreamBasicDescription::mFramesPerPacket,
        &AudioStreamBasicDescription::mBytesPerFrame,
        &AudioStreamBasicDescription::mChannelsPerFrame,
        &AudioStreamBasicDescription::mBitsPerChannel,
    };
    if (IsSpecified(inX.mSampleRate) && IsSpecified(inY.mSampleRate) &&
        AreDifferent(inX.mSampleRate, inY.mSampleRate))
        return false;
    for (const Field field : kFields)
        if (AreBothSpecifiedAndDifferent(inX.*field, inY.*field))
            return false;
    return true;
}

// The bytes of a frame are left out: packets, channels and depth tell the formats apart.
bool FieldsMatchOutright(const AudioStreamBasicDescription& inX,
                         const AudioStreamBasicDescription& inY)
{
    constexpr Field kFields[] = {
        &AudioStreamBasicDescription::mFormatID,
        &AudioStreamBasicDescription::mBytesPerPacket,
        &AudioStreamBasicDescription::mFramesPerPacket,
        &AudioStreamBasicDescription::mChannelsPerFrame,
        &AudioStreamBasicDescription::mBitsPerChannel,
    };
    if (AreDifferent(inX.mSampleRate, inY.mSampleRate))
        return false;
    for (const Field field : kFields)
        if (inX.*field != inY.*field)
            return false;
    return true;
}

}  // namespace

const AudioStreamBasicDescription CAStreamBasicDescription::sEmpty = {};

CAStreamBasicDescription::CAStreamBasicDescription(double inSampleRate, UInt32 inFormatID,
                                                   UInt32 inBytesPerPacket,
                                                   UInt32 inFramesPerPacket, UInt32 inBytesPerFrame,
                                                   UInt32 inChannelsPerFrame,
                                                   UInt32 inBitsPerChannel, UInt32 inFormatFlags)
    : AudioStreamBasicDescription{inSampleRate,       inFormatID,        inFormatFlags,
                                  inBytesPerPacket,   inFramesPerPacket, inBytesPerFrame,
                                  inChannelsPerFrame, inBitsPerChannel,  0}
{
}

void CAStreamBasicDescription::NormalizeLinearPCMFormat(AudioStreamBasicDescription& ioFormat)
{
    NormalizeLinearPCMFormat(true, ioFormat);
}

void CAStreamBasicDescription::NormalizeLinearPCMFormat(bool inNativeEndian,
                                                        AudioStreamBasicDescription& ioFormat)
{
    // What must not be mixed keeps its samples as they are.
    if (!IsLinearPCM(ioFormat) || HasFlag(ioFormat, kAudioFormatFlagIsNonMixable))
        return;

    ioFormat.mFormatFlags = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked;
    if (!inNativeEndian)
        ioFormat.mFormatFlags |= kAudioFormatFlagIsBigEndian;
    ioFormat.mBytesPerFrame = ioFormat.mChannelsPerFrame * static_cast<UInt32>(sizeof(Float32));
    ioFormat.mBytesPerPacket = ioFormat.mBytesPerFrame;
    ioFormat.mFramesPerPacket = 1;
    ioFormat.mBitsPerChannel = 32;
}

void CAStreamBasicDescription::VirtualizeLinearPCMFormat(AudioStreamBasicDescription& ioFormat)
{
    NormalizeLinearPCMFormat(ioFormat);
}

void CAStreamBasicDescription::VirtualizeLinearPCMFormat(bool inNativeEndian,
                                                         AudioStreamBasicDescription& ioFormat)
{
    NormalizeLinearPCMFormat(inNativeEndian, ioFormat);
}

void CAStreamBasicDescription::ResetFormat(AudioStreamBasicDescription& outFormat)
{
    outFormat = sEmpty;
}

void CAStreamBasicDescription::FillOutFormat(AudioStreamBasicDescription& ioFormat,
                                             const AudioStreamBasicDescription& inSource)
{
    constexpr Field kFields[] = {
        &AudioStreamBasicDescription::mFormatID,
        &AudioStreamBasicDescription::mFormatFlags,
        &AudioStreamBasicDescription::mBytesPerPacket,
        &AudioStreamBasicDescription::mFramesPerPacket,
        &AudioStreamBasicDescription::mBytesPerFrame,
        &AudioStreamBasicDescription::mChannelsPerFrame,
        &AudioStreamBasicDescription::mBitsPerChannel,
    };
    if (!IsSpecified(ioFormat.mSampleRate))
        ioFormat.mSampleRate = inSource.mSampleRate;
    for (const Field field : kFields)
        if (ioFormat.*field == 0)
            ioFormat.*field = inSource.*field;
}

bool CAStreamBasicDescription::EquivalentFormatFlags(const AudioStreamBasicDescription& inX,
                                                     const AudioStreamBasicDescription& inY,
                                                     bool inKeepNonMixable,
                                                     bool inInterpretingWildcards)
{
    if (inInterpretingWildcards && (inX.mFormatID == 0 || inY.mFormatID == 0 ||
                                    inX.mFormatFlags == 0 || inY.mFormatFlags == 0))
        return true;
    if (!IsLinearPCM(inX))
        return inX.mFormatFlags == inY.mFormatFlags;
    return CAStreamBasicDescription(inX).GetRegularizedFormatFlags(inKeepNonMixable) ==
           CAStreamBasicDescription(inY).GetRegularizedFormatFlags(inKeepNonMixable);
}

bool CAStreamBasicDescription::IsExactlyEqual(const AudioStreamBasicDescription& inX,
                                              const AudioStreamBasicDescription& inY)
{
    return std::memcmp(&inX, &inY, offsetof(AudioStreamBasicDescription, mReserved)) == 0;
}

bool CAStreamBasicDescription::IsEquivalent(const AudioStreamBasicDescription& inX,
                                            const AudioStreamBasicDescription& inY,
                                            UInt32 inOptions)
{
    const bool wildcards = (inOptions & kCompareUsingWildcards) != 0;
    const bool keepNonMixable = (inOptions & kCompareKeepingNonMixable) != 0;
    const bool fieldsMatch =
        wildcards ? FieldsMatchWithWildcards(inX, inY) : FieldsMatchOutright(inX, inY);
    return fieldsMatch && EquivalentFormatFlags(inX, inY, keepNonMixable, wildcards);
}

bool CAStreamBasicDescription::IsEqual(const AudioStreamBasicDescription& inOther,
                                       bool inInterpretingWildcards) const
{
    return inInterpretingWildcards ? IsEqual(inOther) : IsExactlyEqual(*this, inOther);
}

bool CAStreamBasicDescription::IsEqual(const AudioStreamBasicDescription& inOther) const
{
    return IsEquivalent(*this, inOther, kCompareDefault);
}

UInt32 CAStreamBasicDescription::GetRegularizedFormatFlags(bool inKeepNonMixable) const
{
    if (!IsPCM())
        return mFormatFlags;

    UInt32 flags = mFormatFlags;
    if ((flags & ~kAudioFormatFlagsAreAllClear) != 0)
        flags &= ~kAudioFormatFlagsAreAllClear;
    if (!inKeepNonMixable)
        flags &= ~kAudioFormatFlagIsNonMixable;
    if (!PackednessIsSignificant())
        flags |= kAudioFormatFlagIsPacked;
    // Alignment means nothing in a full word.
    if (!AlignmentIsSignificant())
        flags &= ~kAudioFormatFlagIsAlignedHigh;
    // A float is never a signed integer.
    if ((flags & kAudioFormatFlagIsFloat) != 0)
        flags &= ~kAudioFormatFlagIsSignedInteger;
    // Of a packed format of at most 8 bits only the byte order counts, so signed and unsigned
    // agree.
    if (mBitsPerChannel <= 8 && (flags & kAudioFormatFlagIsPacked) != 0)
        flags &= kAudioFormatFlagIsBigEndian;
    if (mChannelsPerFrame == 1)
        flags &= ~kAudioFormatFlagIsNonInterleaved;
    return flags == 0 ? kAudioFormatFlagsAreAllClear : flags;
}

bool operator==(const AudioStreamBasicDescription& inX, const AudioStreamBasicDescription& inY)
{
    return CAStreamBasicDescription::IsEquivalent(inX, inY,
                                                  CAStreamBasicDescription::kCompareDefault);
}

bool operator<(const AudioStreamBasicDescription& inX, const AudioStreamBasicDescription& inY)
{
    if (AreBothSpecifiedAndDifferent(inX.mFormatID, inY.mFormatID))
        return IsLinearPCM(inX) || (!IsLinearPCM(inY) && inX.mFormatID < inY.mFormatID);

    if (IsLinearPCM(inX) && IsLinearPCM(inY))
    {
        const bool xIsMixable = !HasFlag(inX, kAudioFormatFlagIsNonMixable);
        if (xIsMixable == HasFlag(inY, kAudioFormatFlagIsNonMixable))
            return xIsMixable;
        const bool yIsFloat = HasFlag(inY, kAudioFormatFlagIsFloat);
        if (HasFlag(inX, kAudioFormatFlagIsFloat) != yIsFloat)
            return yIsFloat;
    }
    if (AreBothSpecifiedAndDifferent(inX.mBitsPerChannel, inY.mBitsPerChannel))
        return inX.mBitsPerChannel < inY.mBitsPerChannel;
    if (inX.mSampleRate != 0.0 && inY.mSampleRate != 0.0 && inX.mSampleRate != inY.mSampleRate)
        return inX.mSampleRate < inY.mSampleRate;
    if (AreBothSpecifiedAndDifferent(inX.mChannelsPerFrame, inY.mChannelsPerFrame))
        return inX.mChannelsPerFrame < inY.mChannelsPerFrame;
    return false;
}

bool SanityCheck(const AudioStreamBasicDescription& inFormat)
{
    constexpr double kRateLimit = 3000000.0;
    constexpr UInt32 kMostBytesOrFrames = 999999;
    constexpr UInt32 kMostChannels = 1024;
    constexpr UInt32 kMostBits = 1024;

    // Written so that a rate that is not a number passes.
    if (inFormat.mSampleRate < 0.0 || inFormat.mSampleRate >= kRateLimit)
        return false;
    if (inFormat.mBytesPerPacket > kMostBytesOrFrames ||
        inFormat.mFramesPerPacket > kMostBytesOrFrames ||
        inFormat.mBytesPerFrame > kMostBytesOrFrames)
        return false;
    if (inFormat.mChannelsPerFrame == 0 || inFormat.mChannelsPerFrame > kMostChannels)
        return false;
    if (inFormat.mBitsPerChannel > kMostBits || inFormat.mFormatID == 0)
        return false;
    return !IsLinearPCM(inFormat) ||
           (inFormat.mFramesPerPacket == 1 && inFormat.mBytesPerPacket == inFormat.mBytesPerFrame);
}
