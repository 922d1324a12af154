// SampleLayout: how one sample of linear PCM lies in memory.
//
// The one place that reads a PCM description. Bits above the depth are told as high or low
// alignment; a packed sample fills its word.
#ifndef AUDIOTOOLBOX_CONVERT_SAMPLELAYOUT_H
#define AUDIOTOOLBOX_CONVERT_SAMPLELAYOUT_H

#include <CoreAudio/CoreAudioTypes.h>

namespace audiotoolbox
{

enum class SampleWord : UInt8
{
    Int8,
    Int16,
    Int24,
    Int32,
    Float32,
    Float64
};

struct SampleLayout
{
    SampleWord mWord = SampleWord::Float32;
    bool mIsBigEndian = false;  // always false for words of one byte
    bool mIsUnsigned = false;   // words of one byte only
    bool mIsLow = false;        // fewer bits than the word, in its lower end
    UInt32 mBits = 32;          // significant bits

    friend bool operator==(const SampleLayout&, const SampleLayout&) = default;
};

constexpr UInt32 kMaxChannels = 64;

/// Bytes of one sample.
UInt32 WordBytes(SampleWord inWord);

inline bool IsFloat(SampleWord inWord)
{
    return inWord >= SampleWord::Float32;
}

/// False for a description that is not linear PCM of 1 to 64 channels, whose bytes per frame do
/// not fit its channels and word, that is packed with a word other than its bits, has sample
/// fractions, or is unsigned beyond 8 bits; outLayout is then unspecified.
bool ReadSampleLayout(const AudioStreamBasicDescription& inFormat, SampleLayout& outLayout);

inline bool IsNonInterleaved(const AudioStreamBasicDescription& inFormat)
{
    return (inFormat.mFormatFlags & kAudioFormatFlagIsNonInterleaved) != 0 &&
           inFormat.mChannelsPerFrame > 1;
}

}  // namespace audiotoolbox

#endif
