// StreamTesting: opening streams from bytes in memory and reading all that they hold.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_STREAMTESTING_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_STREAMS_STREAMTESTING_H

#include "platform/AudioToolbox/src/file/PacketReader.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace stream_testing
{

using Bytes = std::vector<UInt8>;

/// A file of tests/data, by its path there.
std::string DataPath(const std::string& inName);
Bytes LoadData(const std::string& inName);

Bytes Join(std::initializer_list<Bytes> inParts);

/// A kind of stream: its opening function and its file type.
struct StreamKind
{
    audiotoolbox::OpenContainer mOpen;
    AudioFileTypeID mType;
};
extern const StreamKind kMPEG;
extern const StreamKind kADTS;
extern const StreamKind kLOAS;
extern const StreamKind kAC3;
extern const StreamKind kEAC3;
extern const StreamKind kAMR;
extern const StreamKind kFLAC;

struct Opened
{
    OSStatus mStatus = noErr;
    audiotoolbox::PacketReaderPtr mReader;  // null after a failure

    const audiotoolbox::FileFacts& Facts() const { return mReader->Facts(); }
};
Opened Open(const StreamKind& inKind, Bytes inBytes);

struct Packet
{
    Bytes mBytes;
    UInt32 mFrames = 0;  // mVariableFramesInPacket

    bool operator==(const Packet&) const = default;
};

/// Everything from packet inStart on, inPacketsPerCall at a time. Stops at the first failure, which
/// it puts into *outStatus.
std::vector<Packet> ReadAll(audiotoolbox::PacketReader& inReader, SInt64 inStart = 0,
                            UInt32 inPacketsPerCall = 16, OSStatus* outStatus = nullptr);

/// The packets' sizes alone.
std::vector<UInt32> SizesOf(const std::vector<Packet>& inPackets);

/// The layout's tag and bitmap; 0 where there is no layout.
UInt32 TagOf(const audiotoolbox::FileFacts& inFacts);
UInt32 BitmapOf(const audiotoolbox::FileFacts& inFacts);
std::vector<UInt32> LabelsOf(const audiotoolbox::FileFacts& inFacts);

}  // namespace stream_testing

#endif
