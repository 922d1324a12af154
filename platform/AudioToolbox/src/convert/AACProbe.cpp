#include "convert/AACProbe.h"

#include "convert/AACDecoderConfig.h"
#include "convert/CodecInterface.h"
#include "convert/CodecSource.h"

namespace audiotoolbox
{

namespace
{

UInt32 ADTSFrameBytes(std::span<const UInt8> inFrame)
{
    return (static_cast<UInt32>(inFrame[3] & 3u) << 11) | (static_cast<UInt32>(inFrame[4]) << 3) |
           (inFrame[5] >> 5);
}

// The heads stay on: without a configuration the decoder goes by what the packets hold.
std::unique_ptr<CodecSession, CloseSession> OpenBare(const AACConfig& inConfig)
{
    const CodecModule* module = LoadCodecModule();
    if (module == nullptr)
        return nullptr;
    CodecRequest request = {};
    request.mFormat.mFormatID = kAudioFormatMPEG4AAC;
    request.mFormat.mSampleRate = inConfig.mSampleRate;
    request.mFormat.mChannelsPerFrame = inConfig.mChannelCount;
    CodecSession* session = nullptr;
    if (module->mOpen(&request, &session) != noErr)
        return nullptr;
    return {session, CloseSession{module}};
}

void AddLayers(const CodecInfo& inInfo, const CodecFrame& inFrame, AACConfig& ioConfig)
{
    ioConfig.mHasSBR = inInfo.mHasSBR;
    ioConfig.mHasPS = inInfo.mHasPS;
    ioConfig.mExtendedRate = inInfo.mHasSBR ? inFrame.mSampleRate : 0;
    if (ioConfig.mChannelCount == 0)
        ioConfig.mChannelCount = inFrame.mChannelCount;
}

}  // namespace

bool ProbeAACLayers(std::span<const UInt8> inFrames, AACConfig& ioConfig)
{
    const auto session = OpenBare(ioConfig);
    if (!session)
        return false;
    const CodecModule& module = *session.get_deleter().mModule;
    bool hasDecoded = false;
    CodecFrame frame = {};
    AACConfig head;
    UInt32 headBytes = 0;
    while (ReadADTSHead(inFrames, head, headBytes))
    {
        const UInt32 size = ADTSFrameBytes(inFrames);
        if (size <= headBytes || size > inFrames.size())
            break;
        (void)module.mSend(session.get(), inFrames.data(), size);  // shows at the receive
        while (module.mReceive(session.get(), &frame) == CodecAnswer::Frame)
            hasDecoded = true;
        inFrames = inFrames.subspan(size);
    }
    if (!hasDecoded)
        return false;
    CodecInfo info = {};
    module.mTellInfo(session.get(), &info);
    AddLayers(info, frame, ioConfig);
    return true;
}

}  // namespace audiotoolbox
