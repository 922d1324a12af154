// The resampler module's one export: its table of functions.
#include "convert/ResamplerInterface.h"

#include <AudioToolbox/AudioConverter.h>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

#include <memory>

namespace audiotoolbox
{

struct ResamplerSession
{
    SwrContext* mContext = nullptr;
    ~ResamplerSession() { swr_free(&mContext); }
};

namespace
{

OSStatus Open(UInt32 inChannelCount, UInt32 inRate, UInt32 outRate, ResamplerSession** outSession)
{
    *outSession = nullptr;
    auto session = std::make_unique<ResamplerSession>();
    // Only the number of channels matters; unnamed ones are never mixed.
    AVChannelLayout layout = {};
    layout.order = AV_CHANNEL_ORDER_UNSPEC;
    layout.nb_channels = static_cast<int>(inChannelCount);
    const int result = swr_alloc_set_opts2(&session->mContext, &layout, AV_SAMPLE_FMT_DBL,
                                           static_cast<int>(outRate), &layout, AV_SAMPLE_FMT_DBL,
                                           static_cast<int>(inRate), 0, nullptr);
    if (result < 0 || swr_init(session->mContext) < 0)
        return kAudioConverterErr_FormatNotSupported;
    *outSession = session.release();
    return noErr;
}

void Close(ResamplerSession* inSession)
{
    delete inSession;
}

SInt32 Convert(ResamplerSession* inSession, const Float64* inFrames, UInt32 inFrameCount,
               Float64* outFrames, UInt32 inRoom)
{
    const uint8_t* from[] = {reinterpret_cast<const uint8_t*>(inFrames)};
    uint8_t* to[] = {reinterpret_cast<uint8_t*>(outFrames)};
    return swr_convert(inSession->mContext, to, static_cast<int>(inRoom),
                       inFrames != nullptr ? from : nullptr, static_cast<int>(inFrameCount));
}

SInt32 MostFrames(ResamplerSession* inSession, UInt32 inFrameCount)
{
    return swr_get_out_samples(inSession->mContext, static_cast<int>(inFrameCount));
}

constexpr ResamplerModule kModule = {kResamplerInterfaceVersion, &Open, &Close, &Convert,
                                     &MostFrames};

}  // namespace

}  // namespace audiotoolbox

extern "C" __attribute__((visibility("default"))) const audiotoolbox::ResamplerModule*
AudioToolboxResamplerModule()
{
    return &audiotoolbox::kModule;
}
