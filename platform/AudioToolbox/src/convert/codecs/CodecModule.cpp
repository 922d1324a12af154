// The codec module's one export: its table of functions.
#include "convert/codecs/Decoder.h"
#include "convert/codecs/Encoder.h"

#include <AudioToolbox/AudioFile.h>

#include <memory>
#include <mutex>
#include <new>

namespace audiotoolbox
{

struct CodecSession : codecs::Decoder
{
};

struct EncoderSession : codecs::Encoder
{
};

namespace
{

template <typename Session, typename Request>
OSStatus Open(const Request* inRequest, Session** outSession)
{
    auto session = std::unique_ptr<Session>(new (std::nothrow) Session);
    if (!session)
        return kAudio_MemFullError;
    const OSStatus status = session->Open(*inRequest);
    *outSession = status == noErr ? session.release() : nullptr;
    return status;
}

template <typename Session>
void Close(Session* inSession)
{
    delete inSession;
}

CodecAnswer Send(CodecSession* inSession, const UInt8* inPacket, UInt32 inByteCount)
{
    return inSession->Send(inPacket, inByteCount);
}

CodecAnswer Receive(CodecSession* inSession, CodecFrame* outFrame)
{
    return inSession->Receive(*outFrame);
}

void Flush(CodecSession* inSession)
{
    inSession->Flush();
}

void TellInfo(const CodecSession* inSession, CodecInfo* outInfo)
{
    *outInfo = inSession->Info();
}

CodecAnswer SendFrames(EncoderSession* inSession, const UInt8* inFrames, UInt32 inFrameCount)
{
    return inSession->Send(inFrames, inFrameCount);
}

CodecAnswer ReceivePacket(EncoderSession* inSession, EncodedPacket* outPacket)
{
    return inSession->Receive(*outPacket);
}

void AimAt(EncoderSession* inSession, UInt32 inBitRate)
{
    inSession->AimAt(inBitRate);
}

void TellEncoder(const EncoderSession* inSession, EncoderFacts* outFacts)
{
    *outFacts = inSession->Facts();
}

// Damaged packets are answered with statuses; nothing goes to standard error.
void KeepQuiet(void*, int, const char*, va_list) {}

constexpr CodecModule kModule = {kCodecInterfaceVersion,
                                 &Open<CodecSession, CodecRequest>,
                                 &Close<CodecSession>,
                                 &Send,
                                 &Receive,
                                 &Flush,
                                 &TellInfo,
                                 &Open<EncoderSession, EncoderRequest>,
                                 &Close<EncoderSession>,
                                 &SendFrames,
                                 &ReceivePacket,
                                 &AimAt,
                                 &TellEncoder};

}  // namespace

}  // namespace audiotoolbox

extern "C" __attribute__((visibility("default"))) const audiotoolbox::CodecModule*
AudioToolboxCodecModule()
{
    static std::once_flag sIsQuiet;
    std::call_once(sIsQuiet, [] { av_log_set_callback(&audiotoolbox::KeepQuiet); });
    return &audiotoolbox::kModule;
}
