// FFmpeg: the one place of the codec module that includes the codec library's headers, with owners
// for its objects.
#ifndef AUDIOTOOLBOX_CONVERT_CODECS_FFMPEG_H
#define AUDIOTOOLBOX_CONVERT_CODECS_FFMPEG_H

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
#include <libavutil/log.h>
}

#include <memory>

namespace audiotoolbox::codecs
{

struct FreeContext
{
    void operator()(AVCodecContext* inContext) const { avcodec_free_context(&inContext); }
};
struct FreePacket
{
    void operator()(AVPacket* inPacket) const { av_packet_free(&inPacket); }
};
struct FreeFrame
{
    void operator()(AVFrame* inFrame) const { av_frame_free(&inFrame); }
};
struct FreeBuffer
{
    void operator()(AVBufferRef* inBuffer) const { av_buffer_unref(&inBuffer); }
};

using ContextPtr = std::unique_ptr<AVCodecContext, FreeContext>;
using PacketPtr = std::unique_ptr<AVPacket, FreePacket>;
using FramePtr = std::unique_ptr<AVFrame, FreeFrame>;
using BufferPtr = std::unique_ptr<AVBufferRef, FreeBuffer>;

}  // namespace audiotoolbox::codecs

#endif
