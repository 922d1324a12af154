// The codec module's one export: its table of functions.
#include "convert/codecs/Decoder.h"

#include <AudioToolbox/AudioFile.h>

#include <memory>
#include <mutex>
#include <new>

namespace audiotoolbox
{

struct CodecSession : codecs::Decoder
{
};

namespace
{

OSStatus Open(const CodecRequest* inRequest, CodecSession** outSession)
{
    auto session = std::unique_ptr<CodecSession>(new (std::nothrow) CodecSession);
    if (!session)
        return kAudio_MemFullError;
    const OSStatus status = session->Open(*inRequest);
    *outSession = status == noErr ? session.release() : nullptr;
    return status;
}

void Close(CodecSession* inSession)
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

// Damaged packets are answered with statuses; nothing goes to standard error.
void KeepQuiet(void*, int, const char*, va_list) {}

constexpr CodecModule kModule = {
    kCodecInterfaceVersion, &Open, &Close, &Send, &Receive, &Flush, &TellInfo};

}  // namespace

}  // namespace audiotoolbox

extern "C" __attribute__((visibility("default"))) const audiotoolbox::CodecModule*
AudioToolboxCodecModule()
{
    static std::once_flag sIsQuiet;
    std::call_once(sIsQuiet, [] { av_log_set_callback(&audiotoolbox::KeepQuiet); });
    return &audiotoolbox::kModule;
}
