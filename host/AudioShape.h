// AudioShape: the outer form of a piece of audio: rate, channels, width of a sample, length.
#ifndef HOST_AUDIOSHAPE_H
#define HOST_AUDIOSHAPE_H

#include "host/FormatObject.h"
#include "host/ReadSession.h"

#include <cstdint>
#include <vector>

namespace host
{

struct AudioShape
{
    std::int32_t mSampleRate = 0;        // Hz
    std::int32_t mSampleType = 0;        // 10 unsigned, 20 and 30 signed integers, 40 float
    std::int64_t mFrameCount = 0;        // frames; an estimate where the source has no better
    std::vector<std::uint32_t> mLabels;  // one a channel, the host's numbers

    std::size_t ChannelCount() const { return mLabels.size(); }
    std::size_t BytesPerSample() const { return static_cast<std::size_t>(mSampleType) / 10; }

    bool operator==(const AudioShape&) const = default;
};

/// The form in which the plug-in delivers a file that was opened.
inline AudioShape ShapeOf(const AudioInfo& inInfo)
{
    return {inInfo.mSampleRate, inInfo.mSampleType, inInfo.mFrameCount, inInfo.mLabels};
}

inline AudioShape ShapeOf(const FormatObject& inFormat)
{
    return {inFormat.mSampleRate, inFormat.mSampleType, inFormat.mSampleCount, inFormat.mLabels};
}

/// Fills a format object that is handed to the plug-in.
inline void SetShape(FormatObject& outFormat, const AudioShape& inShape)
{
    outFormat.mSampleRate = inShape.mSampleRate;
    outFormat.mSampleType = inShape.mSampleType;
    outFormat.mSampleCount = inShape.mFrameCount;
    outFormat.mLabels = inShape.mLabels;
}

}  // namespace host

#endif
