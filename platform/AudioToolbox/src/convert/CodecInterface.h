// CodecInterface: the table of functions through which the codec module is used.
//
// The module is a library of its own beside this one and is loaded at the first packet of a
// compressed format. Nothing of the codecs' own types crosses.
#ifndef AUDIOTOOLBOX_CONVERT_CODECINTERFACE_H
#define AUDIOTOOLBOX_CONVERT_CODECINTERFACE_H

#include "convert/SampleLayout.h"

namespace audiotoolbox
{

constexpr UInt32 kCodecInterfaceVersion = 2;
constexpr const char* kCodecModuleName = "libAudioToolboxCodecs.so";
constexpr const char* kCodecModuleSymbol = "AudioToolboxCodecModule";

struct CodecSession;  // the module's

/// What a decoder is opened for. The cookie is as the decoder itself wants it.
struct CodecRequest
{
    AudioStreamBasicDescription mFormat;
    const UInt8* mCookie;
    UInt32 mCookieByteCount;
};

/// Decoded audio, the session's own memory, valid until its next call.
struct CodecFrame
{
    const UInt8* mPlanes[kMaxChannels];
    UInt32 mPlaneCount;  // 1: interleaved
    SampleLayout mLayout;
    UInt32 mChannelCount;
    UInt32 mSampleRate;
    UInt32 mFrameCount;  // above 0
};

enum class CodecAnswer : UInt32
{
    Frame,       // outFrame is filled
    WantsInput,  // send the next packet
    End,         // drained
    BadData,     // the packet is damaged; the session goes on
    Failed       // out of memory, or a fault of the codec
};

struct CodecInfo
{
    bool mHasSBR;
    bool mHasPS;
    bool mHoldsPacketsBack;  // frames may come packets later
};

struct EncoderSession;  // the module's

/// What an encoder is opened for.
struct EncoderRequest
{
    const char* mEncoder;
    AudioFormatID mFormatID;
    UInt32 mSampleRate;
    UInt32 mChannelCount;
    UInt32 mChannelMask;      // 0: any order
    SampleLayout mLayout;     // native 16-bit words, 24 bits at the upper end of 32, 32-bit floats
    UInt32 mFramesPerPacket;  // of every packet but the last
    UInt32 mMode;             // kAudioCodecBitRateControlMode_...
    UInt32 mBitRate;          // 0: the format has none
    Float32 mQuality;         // the encoder's own measure; in the variable mode only
};

/// The session's own memory, valid until its next call.
struct EncodedPacket
{
    const UInt8* mBytes;
    UInt32 mByteCount;   // above 0
    UInt32 mFrameCount;  // 0: not told
};

struct EncoderFacts
{
    UInt32 mFramesPerPacket;
    UInt32 mDelay;         // frames
    const UInt8* mCookie;  // the session's own, valid until its next call
    UInt32 mCookieByteCount;
};

struct CodecModule
{
    UInt32 mVersion;

    /// 'fmt?' no such decoder, or it refuses the format; 'bada' it refuses the cookie; -108.
    OSStatus (*mOpen)(const CodecRequest* inRequest, CodecSession** outSession);
    void (*mClose)(CodecSession* inSession);
    /// One whole packet, copied; null and 0 start the draining. WantsInput when taken.
    CodecAnswer (*mSend)(CodecSession* inSession, const UInt8* inPacket, UInt32 inByteCount);
    CodecAnswer (*mReceive)(CodecSession* inSession, CodecFrame* outFrame);
    /// Forgets everything but the format.
    void (*mFlush)(CodecSession* inSession);
    /// What the session has learned of its stream by now.
    void (*mTellInfo)(const CodecSession* inSession, CodecInfo* outInfo);

    /// 'fmt?' no such encoder, or it refuses the request; -108.
    OSStatus (*mOpenEncoder)(const EncoderRequest* inRequest, EncoderSession** outSession);
    void (*mCloseEncoder)(EncoderSession* inSession);
    /// Interleaved frames of the layout, copied: those of a packet, or fewer once, at the end.
    /// Null and 0 start the draining. WantsInput when taken.
    CodecAnswer (*mSendFrames)(EncoderSession* inSession, const UInt8* inFrames,
                               UInt32 inFrameCount);
    CodecAnswer (*mReceivePacket)(EncoderSession* inSession, EncodedPacket* outPacket);
    /// Where the encoder adjusts itself from packet to packet: what it aims at from now on.
    void (*mAimAt)(EncoderSession* inSession, UInt32 inBitRate);
    /// The cookie may become another one at the end of the stream.
    void (*mTellEncoder)(const EncoderSession* inSession, EncoderFacts* outFacts);
};

using GetCodecModule = const CodecModule* (*)();

/// Loads the module once; null where it is missing or of another version.
const CodecModule* LoadCodecModule();

}  // namespace audiotoolbox

#endif
