// ResamplerInterface: the table of functions through which the resampler module is used.
#ifndef AUDIOTOOLBOX_CONVERT_RESAMPLERINTERFACE_H
#define AUDIOTOOLBOX_CONVERT_RESAMPLERINTERFACE_H

#include <CoreAudio/CoreAudioTypes.h>

namespace audiotoolbox
{

constexpr UInt32 kResamplerInterfaceVersion = 1;
constexpr const char* kResamplerModuleName = "libAudioToolboxResampler.so";
constexpr const char* kResamplerModuleSymbol = "AudioToolboxResamplerModule";

struct ResamplerSession;  // the module's

/// Samples are interleaved 64-bit floats in native byte order.
struct ResamplerModule
{
    UInt32 mVersion;

    /// Rates in whole Hz. 'fmt?' when the pair is refused; -108.
    OSStatus (*mOpen)(UInt32 inChannelCount, UInt32 inRate, UInt32 outRate,
                      ResamplerSession** outSession);
    void (*mClose)(ResamplerSession* inSession);
    /// Takes all frames and answers how many came out, or a negative number for a failure.
    /// Null and 0 flush; repeat until 0 comes.
    SInt32 (*mConvert)(ResamplerSession* inSession, const Float64* inFrames, UInt32 inFrameCount,
                       Float64* outFrames, UInt32 inRoom);
    /// Frames that a call with inFrameCount frames can bring at most.
    SInt32 (*mMostFrames)(ResamplerSession* inSession, UInt32 inFrameCount);
};

using GetResamplerModule = const ResamplerModule* (*)();

/// Loads the module once; null where it is missing or of another version.
const ResamplerModule* LoadResamplerModule();

}  // namespace audiotoolbox

#endif
