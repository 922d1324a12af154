// MediaFile: a file opened and decoded by the library's C functions, as a client calls them.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_MEDIA_MEDIAFILE_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_MEDIA_MEDIAFILE_H

#include <AudioToolbox/AudioToolbox.h>

#include <memory>
#include <string>
#include <vector>

namespace media_testing
{

struct CloseFile
{
    void operator()(OpaqueAudioFileID* inFile) const { (void)AudioFileClose(inFile); }
};
using FilePtr = std::unique_ptr<OpaqueAudioFileID, CloseFile>;

/// Null where opening fails.
FilePtr OpenMedia(const std::string& inPath);

/// Every way to read the file, best first.
std::vector<AudioFormatListItem> FormatsOf(AudioFileID inFile);

UInt64 PacketCountOf(AudioFileID inFile);

/// All frames of all packets, [frame][channel], without any priming. Empty after a failure.
std::vector<float> DecodeAll(AudioFileID inFile, const AudioStreamBasicDescription& inFormat);

}  // namespace media_testing

#endif
