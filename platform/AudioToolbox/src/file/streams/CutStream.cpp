#include "file/streams/CutStream.h"

#include "file/streams/AC3Header.h"
#include "file/streams/ADTSHeader.h"
#include "file/streams/FrameSearch.h"
#include "file/streams/LOASHeader.h"
#include "file/streams/MPEGHeader.h"

namespace audiotoolbox
{
namespace streams
{
namespace
{

constexpr int kFramesInARow = 6;

// No other stream has frames as large.
constexpr SInt64 kLongestRest = LOASSyntax::kHeaderBytes + kLargestLOASElement;

template <typename Syntax>
bool IsRow(StreamWindow& ioWindow, SInt64 inPosition, typename Syntax::Header inFirst)
{
    typename Syntax::Header header = inFirst;
    for (int i = 1; i < kFramesInARow; ++i)
    {
        inPosition += header.mByteCount;
        if (!ReadFrame<Syntax>(ioWindow, inPosition, header) || !Syntax::AreAlike(inFirst, header))
            return false;
    }
    return true;
}

template <typename Syntax>
bool FindRow(StreamWindow& ioWindow, SInt64 inStart, typename Syntax::Header& outFirst)
{
    SInt64 position = inStart;
    const SInt64 limit = inStart + kLongestRest;
    for (; FindConfirmed<Syntax>(ioWindow, limit, nullptr, position, outFirst); ++position)
        if (IsRow<Syntax>(ioWindow, position, outFirst))
            return true;
    return false;
}

AudioFileTypeID TypeOfRow(StreamWindow& ioWindow, SInt64 inStart)
{
    constexpr AudioFileTypeID kLayers[] = {kAudioFileMP1Type, kAudioFileMP2Type, kAudioFileMP3Type};
    MPEGHeader mpeg;
    if (FindRow<MPEGSyntax>(ioWindow, inStart, mpeg))
        return kLayers[mpeg.mLayer - 1];
    ADTSHeader adts;
    if (FindRow<ADTSSyntax>(ioWindow, inStart, adts))
        return kAudioFileAAC_ADTSType;
    LOASHeader loas;
    if (FindRow<LOASSyntax>(ioWindow, inStart, loas))
        return kAudioFileLATMInLOASType;
    AC3Header ac3;
    if (FindRow<AC3Syntax>(ioWindow, inStart, ac3))
        return ac3.mIsEnhanced ? kAudioFileEAC3Type : kAudioFileAC3Type;
    return 0;
}

}  // namespace
}  // namespace streams

AudioFileTypeID TypeOfCutStream(ByteSource& inSource, SInt64 inStart)
{
    streams::StreamWindow window(inSource, inSource.Size());
    return streams::TypeOfRow(window, inStart);
}

}  // namespace audiotoolbox
