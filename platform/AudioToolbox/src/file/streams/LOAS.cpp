// LOAS: opening streams of AAC in AudioMuxElements.
//
// The stream begins at the first element with a configuration; what comes before could not be
// decoded. Packets come bare, shifted to whole bytes, with the configuration as cookie. An element
// that is damaged is delivered as it is, for the decoder to refuse, so that the packets behind it
// keep their places. Multiplexes of several programs, layers or packets an element are refused
// ('fmt?').
#include "file/streams/LOASHeader.h"
#include "file/streams/LOASReader.h"
#include "file/streams/StreamOpening.h"
#include "file/streams/Survey.h"
#include "file/streams/SyncFramer.h"

#include <algorithm>
#include <new>
#include <utility>

namespace audiotoolbox
{
namespace streams
{
namespace
{

// Bytes of the element's frame by the length that stands in front of its packet; 0 for none.
UInt32 SizeByPayload(StreamWindow& ioWindow, SInt64 inPosition)
{
    constexpr std::size_t kLargestFrame = LOASSyntax::kHeaderBytes + kLargestLOASElement;
    const auto bytes = ioWindow.Look(inPosition, kLargestFrame);
    LOASElement element;
    if (bytes.size() < LOASSyntax::kHeaderBytes ||
        !ParseLOASElement(
            bytes.first(std::min(bytes.size(), kLargestFrame)).subspan(LOASSyntax::kHeaderBytes),
            element, nullptr) ||
        !element.mIsUnderstood)
        return 0;
    const std::size_t size = (element.mPayloadPosition + 7) / 8 + element.mPayloadBytes;
    return static_cast<UInt32>(LOASSyntax::kHeaderBytes + size);
}

// Frames as SyncFramer finds them, but for their sizes, which may be the damage.
class LOASFramer final : public Framer
{
public:
    LOASFramer(const LOASHeader& inFirst, UInt32 inFramesPerPacket)
        : mSync(inFirst), mFramesPerPacket(inFramesPerPacket)
    {
    }

    bool FindPacket(StreamWindow& ioWindow, SInt64 inPosition, UInt64 inPacket,
                    StreamPacket& outPacket) override
    {
        if (!mSync.FindPacket(ioWindow, inPosition, inPacket, outPacket))
            return false;
        outPacket.mFrameCount = mFramesPerPacket;
        LOASHeader header;
        if (ReadFrame<LOASSyntax>(ioWindow, outPacket.mPosition, header))
            CorrectSize(ioWindow, header, outPacket);
        return true;
    }

private:
    // A frame begins where the packet's own length says, or before this one ends.
    static void CorrectSize(StreamWindow& ioWindow, const LOASHeader& inHeader,
                            StreamPacket& ioPacket)
    {
        LOASHeader next;
        const UInt32 size = SizeByPayload(ioWindow, ioPacket.mPosition);
        if (size == ioPacket.mByteCount)
            return;
        if (size > 0 && ReadFrame<LOASSyntax>(ioWindow, ioPacket.mPosition + size, next))
        {
            ioPacket.mByteCount = size;
            return;
        }
        if (IsConfirmed<LOASSyntax>(ioWindow, ioPacket.mPosition, inHeader))
            return;
        SInt64 position = ioPacket.mPosition + 1;
        if (FindConfirmed<LOASSyntax>(ioWindow, ioPacket.End(), nullptr, position, next))
            ioPacket.mByteCount = static_cast<UInt32>(position - ioPacket.mPosition);
    }

    SyncFramer<LOASSyntax> mSync;
    UInt32 mFramesPerPacket;
};

std::span<const UInt8> ElementAt(StreamWindow& ioWindow, SInt64 inPosition,
                                 const LOASHeader& inHeader)
{
    const auto bytes = ioWindow.Look(inPosition, inHeader.mByteCount);
    if (bytes.size() < inHeader.mByteCount)
        return {};
    return bytes.first(inHeader.mByteCount).subspan(LOASSyntax::kHeaderBytes);
}

// Moves ioPosition on to the first element with a configuration.
OSStatus FindConfig(StreamWindow& ioWindow, SInt64& ioPosition, LOASHeader& ioHeader,
                    LOASConfig& outConfig)
{
    const SInt64 limit = ioPosition + kSearchBytes;
    OSStatus status = kAudioFileInvalidFileError;
    do
    {
        LOASElement element;
        if (ParseLOASElement(ElementAt(ioWindow, ioPosition, ioHeader), element, &outConfig) &&
            element.mHasConfig)
        {
            if (element.mIsUnderstood)
                return noErr;
            status = kAudioFileUnsupportedDataFormatError;
        }
        ioPosition += ioHeader.mByteCount;
    } while (ioPosition < limit &&
             (ReadFrame<LOASSyntax>(ioWindow, ioPosition, ioHeader) ||
              FindConfirmed<LOASSyntax>(ioWindow, limit, nullptr, ioPosition, ioHeader)));
    return status;
}

OSStatus StatusWithoutFrames(Opening& ioOpening)
{
    const auto bytes = ioOpening.mWindow->Look(ioOpening.mStart, 2);
    const bool hasSync = bytes.size() >= 2 && bytes[0] == 0x56 && (bytes[1] & 0xE0) == 0xE0;
    return hasSync ? kAudioFileInvalidFileError : kAudioFileUnsupportedFileTypeError;
}

OSStatus DescribeLOAS(Opening& ioOpening)
{
    StreamWindow& window = *ioOpening.mWindow;
    FileFacts& facts = ioOpening.mFacts;
    LOASHeader first;
    LOASConfig config;
    SInt64 position = ioOpening.mStart;
    if (!FindFirst<LOASSyntax>(window, position, first))
        return StatusWithoutFrames(ioOpening);
    if (const OSStatus status = FindConfig(window, position, first, config); status != noErr)
        return status;
    if (config.mAAC.mChannelCount == 0 || config.mAAC.mFramesPerPacket == 0)
        return kAudioFileInvalidFileError;

    facts.mFileType = kAudioFileLATMInLOASType;
    facts.mCookie = config.mCookie;
    DescribeAAC(config.mAAC, facts);
    facts.mPacketSizeUpperBound = kLargestLOASElement;
    SetDataRange(ioOpening, position);
    ioOpening.mFramer = std::make_unique<LOASFramer>(first, config.mAAC.mFramesPerPacket);
    CompleteStreamFacts(SurveyPackets(*ioOpening.mFramer, window, position), facts);
    return noErr;
}

}  // namespace
}  // namespace streams

OSStatus OpenLOAS(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    PacketReaderPtr elements;
    if (const OSStatus status =
            streams::OpenStream(inType, streams::DescribeLOAS, ioSource, elements);
        status != noErr)
        return status;
    try
    {
        outReader = std::make_unique<streams::LOASReader>(std::move(elements));
        return noErr;
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}

}  // namespace audiotoolbox
