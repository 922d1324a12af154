// Encoders: one row per encodable format, with what its encoder takes and what it makes.
//
// The catalogue's questions and the converter read the same rows, and no encoder is opened for
// them: tests hold every row against the real encoder. Rates are whole Hz.
#ifndef AUDIOTOOLBOX_TABLES_ENCODERS_H
#define AUDIOTOOLBOX_TABLES_ENCODERS_H

#include <CoreAudio/CoreAudioTypes.h>

#include <span>

namespace audiotoolbox
{

enum class EncoderRoad : UInt8
{
    Linear,  // by the sample kernels
    LogLaw,  // one byte a sample, by our own tables
    Codec    // through the codec module
};

/// What an encoder is fed with.
enum class EncoderSamples : UInt8
{
    Words16,
    Lossless,  // 16 or 24 bits, by the depth of the destination
    Floats
};

struct RateRange
{
    UInt32 mLowest;
    UInt32 mHighest;
};

/// The channels of an encoder's input, as bits of the WAVE channel mask in ascending order.
struct EncoderLayout
{
    UInt32 mChannelCount;
    UInt32 mMask;
};

/// One bit for each control mode, 1 << mode.
using BitRateModes = UInt8;

struct EncoderRow
{
    AudioFormatID mFormatID;
    const char* mCodec;  // as the codec module knows it
    EncoderRoad mRoad;
    EncoderSamples mSamples;
    std::span<const RateRange> mRates;        // ascending; empty: any
    std::span<const EncoderLayout> mLayouts;  // ascending; empty: any channel count
    UInt32 mDelay;                            // frames before the first valid one
    bool mNeedsTail;     // the encoder gives no frames for its delay of its own accord
    bool mFillsPackets;  // the last packet is filled up with silence
    bool mHasCookie;
    BitRateModes mModes;                  // 0: has no bit rate settings
    std::span<const Float32> mQualities;  // the encoder's own, for 0, 32, 64, 96 and 127
};

constexpr UInt32 kHighestEncodedRate = 2147483647;

/// Linear PCM first, then by code.
std::span<const EncoderRow> AllEncoders();

/// Null for a format that cannot be encoded.
const EncoderRow* FindEncoder(AudioFormatID inFormat);

bool TakesRate(const EncoderRow& inRow, UInt32 inRate);
bool TakesChannels(const EncoderRow& inRow, UInt32 inChannelCount);

/// Of two that are equally near, the higher rate and the lower count.
UInt32 NearestRate(const EncoderRow& inRow, double inRate);
UInt32 NearestChannels(const EncoderRow& inRow, UInt32 inChannelCount);

/// The mask of a count that the encoder takes; 0 where the row does not order its channels.
UInt32 EncoderMask(const EncoderRow& inRow, UInt32 inChannelCount);

/// What a stream looks like at one rate, channel count and depth. Depths are bits; 0 for those
/// that do not matter to the format.
struct StreamShape
{
    UInt32 mRate = 0;          // 0: not known
    UInt32 mChannelCount = 0;  // 0: not known
    UInt32 mDepth = 0;
};

/// 0 where the shape does not tell it.
UInt32 FramesPerPacket(const EncoderRow& inRow, const StreamShape& inShape);

/// 0 for packets of varying size, and where the shape does not tell it.
UInt32 BytesPerPacket(const EncoderRow& inRow, const StreamShape& inShape);

/// No packet is larger. The shape is wholly known.
UInt32 MaximumPacketBytes(const EncoderRow& inRow, const StreamShape& inShape);

/// The encoder's own quality for 0 to 127, by straight lines between those of the row.
Float32 EncoderQuality(const EncoderRow& inRow, Float32 inQuality);

}  // namespace audiotoolbox

#endif
