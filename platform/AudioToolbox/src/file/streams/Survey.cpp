#include "file/streams/Survey.h"

#include "file/FactArithmetic.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace audiotoolbox::streams
{
namespace
{

// Far beyond any file; keeps a hostile size within the range of a count.
constexpr double kMostFrames = 1e15;

// Frames of the whole stream if the rest of its bytes is like the surveyed ones.
UInt64 EstimateFrames(const Survey& inSurvey, const FileFacts& inFacts)
{
    if (inSurvey.mIsWhole || inSurvey.mBytes <= 0)
        return inSurvey.mFrames;
    const double bytes = static_cast<double>(inFacts.mDataByteCount);
    const double rate = inFacts.mDataFormat.mSampleRate;
    const double perPacket = inFacts.mDataFormat.mFramesPerPacket;
    double frames =
        bytes * static_cast<double>(inSurvey.mFrames) / static_cast<double>(inSurvey.mBytes);
    if (inSurvey.mBitRate > 0)
        frames = bytes * 8.0 * rate / inSurvey.mBitRate;
    if (perPacket > 0)
        frames = std::round(frames / perPacket) * perPacket;
    return static_cast<UInt64>(std::min(frames, kMostFrames));
}

}  // namespace

Survey SurveyPackets(Framer& inFramer, StreamWindow& ioWindow, SInt64 inStart)
{
    Survey survey;
    StreamPacket packet;
    SInt64 position = inStart;
    while (inFramer.FindPacket(ioWindow, position, survey.mPackets, packet))
    {
        if (packet.End() > inStart + kSearchBytes)
            return survey;
        if (survey.mPackets == 0)
        {
            survey.mFramesPerPacket = packet.mFrameCount;
            survey.mBitRate = packet.mBitRate;
        }
        if (packet.mFrameCount != survey.mFramesPerPacket)
            survey.mFramesPerPacket = 0;
        if (packet.mBitRate != survey.mBitRate)
            survey.mBitRate = 0;
        ++survey.mPackets;
        survey.mFrames += packet.mFrameCount;
        position = packet.End();
        survey.mBytes = position - inStart;
    }
    survey.mIsWhole = ioWindow.Status() == noErr;
    return survey;
}

void EstimateLength(const Survey& inSurvey, FileFacts& ioFacts)
{
    const double rate = ioFacts.mDataFormat.mSampleRate;
    const UInt64 frames = EstimateFrames(inSurvey, ioFacts);
    ioFacts.mEstimatedDuration = DurationOfFrames(frames, rate);
    ioFacts.mBitRate = inSurvey.mBitRate > 0
                           ? inSurvey.mBitRate
                           : AverageBitRate(ioFacts.mDataByteCount, ioFacts.mEstimatedDuration);
}

UInt32 AverageBitRate(SInt64 inBytes, double inSeconds)
{
    if (!(inSeconds > 0.0))
        return 0;
    const double rate = std::round(static_cast<double>(inBytes) * 8.0 / inSeconds);
    return static_cast<UInt32>(std::min<double>(rate, std::numeric_limits<UInt32>::max()));
}

void CompleteStreamFacts(const Survey& inSurvey, FileFacts& ioFacts)
{
    const bool isStated = ioFacts.mPacketTable || ioFacts.mPacketCount;
    if (!ioFacts.mPacketCount && inSurvey.mIsWhole)
        ioFacts.mPacketCount = inSurvey.mPackets;
    CompleteFacts(ioFacts);
    if (!isStated)
        EstimateLength(inSurvey, ioFacts);
}

}  // namespace audiotoolbox::streams
