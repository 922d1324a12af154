// EncodedAudio: packets made by the codec library's encoders, as files would hold them.
#ifndef TESTS_CONVERT_ENCODEDAUDIO_H
#define TESTS_CONVERT_ENCODEDAUDIO_H

#include "convert/codecs/FFmpeg.h"

#include "ConverterUse.h"

#include <cmath>
#include <random>
#include <stdexcept>

namespace encoded_audio
{

using audiotoolbox::codecs::ContextPtr;
using audiotoolbox::codecs::FramePtr;
using audiotoolbox::codecs::PacketPtr;
using converter_use::Bytes;

struct Encoded
{
    std::vector<Bytes> mPackets;
    Bytes mCookie;
    UInt32 mFramesPerPacket = 0;
};

struct Wish
{
    const char* mEncoder;
    int mRate = 44100;
    int mChannels = 2;
    AVSampleFormat mFormat = AV_SAMPLE_FMT_FLTP;
    int mFrameCount = 44100;
    int mBlockFrames = 0;  // for encoders that take any number at once
};

/// A tone per channel with a little noise, at half scale, of -1 to 1.
inline double SampleAt(int inFrame, int inChannel, int inRate)
{
    const double noise = std::sin(inFrame * 12.9898 + inChannel * 78.233) * 43758.5453;
    return 0.45 * std::sin(2 * M_PI * (440.0 + 110 * inChannel) * inFrame / inRate) +
           0.02 * (noise - std::floor(noise) - 0.5);
}

/// The integer that stands for SampleAt in a lossless stream of the depth.
inline SInt32 IntegerAt(int inFrame, int inChannel, int inRate, int inBits)
{
    return static_cast<SInt32>(
        std::lrint(SampleAt(inFrame, inChannel, inRate) * std::ldexp(1.0, inBits - 1)));
}

inline void WriteSample(AVFrame& ioFrame, int inIndex, int inChannel, int inAt, const Wish& inWish)
{
    const bool isPlanar = av_sample_fmt_is_planar(inWish.mFormat) != 0;
    const int index = isPlanar ? inIndex : inIndex * inWish.mChannels + inChannel;
    uint8_t* plane = ioFrame.extended_data[isPlanar ? inChannel : 0];
    switch (av_get_packed_sample_fmt(inWish.mFormat))
    {
        case AV_SAMPLE_FMT_S16:
            reinterpret_cast<int16_t*>(plane)[index] =
                static_cast<int16_t>(IntegerAt(inAt, inChannel, inWish.mRate, 16));
            break;
        case AV_SAMPLE_FMT_S32:
            reinterpret_cast<int32_t*>(plane)[index] =
                IntegerAt(inAt, inChannel, inWish.mRate, 24) * 256;
            break;
        default:
            reinterpret_cast<float*>(plane)[index] =
                static_cast<float>(SampleAt(inAt, inChannel, inWish.mRate));
    }
}

inline void Require(bool inCondition, const char* inWhat)
{
    if (!inCondition)
        throw std::runtime_error(inWhat);
}

inline void Collect(AVCodecContext& ioContext, Encoded& ioEncoded)
{
    const PacketPtr packet(av_packet_alloc());
    while (avcodec_receive_packet(&ioContext, packet.get()) == 0)
    {
        if (packet->size > 0)
            ioEncoded.mPackets.emplace_back(packet->data, packet->data + packet->size);
        av_packet_unref(packet.get());
    }
}

inline ContextPtr OpenEncoder(const Wish& inWish)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(inWish.mEncoder);
    Require(codec != nullptr, inWish.mEncoder);
    ContextPtr context(avcodec_alloc_context3(codec));
    context->sample_rate = inWish.mRate;
    context->sample_fmt = inWish.mFormat;
    context->time_base = {1, inWish.mRate};
    context->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    if (inWish.mFormat == AV_SAMPLE_FMT_S32 || inWish.mFormat == AV_SAMPLE_FMT_S32P)
        context->bits_per_raw_sample = 24;
    av_channel_layout_default(&context->ch_layout, inWish.mChannels);
    Require(avcodec_open2(context.get(), codec, nullptr) == 0, "open the encoder");
    return context;
}

inline void SendFrame(AVCodecContext& ioContext, const Wish& inWish, int inAt, int inCount)
{
    const FramePtr frame(av_frame_alloc());
    frame->format = inWish.mFormat;
    frame->nb_samples = inCount;
    frame->sample_rate = inWish.mRate;
    frame->pts = inAt;
    av_channel_layout_copy(&frame->ch_layout, &ioContext.ch_layout);
    Require(av_frame_get_buffer(frame.get(), 0) == 0, "make a frame");
    for (int i = 0; i < inCount; ++i)
        for (int channel = 0; channel < inWish.mChannels; ++channel)
            WriteSample(*frame, i, channel, inAt + i, inWish);
    Require(avcodec_send_frame(&ioContext, frame.get()) == 0, "send a frame");
}

inline Encoded Encode(const Wish& inWish)
{
    const ContextPtr context = OpenEncoder(inWish);
    Encoded encoded;
    const int block = context->frame_size > 0 ? context->frame_size : inWish.mBlockFrames;
    encoded.mFramesPerPacket = static_cast<UInt32>(block);
    for (int at = 0; at < inWish.mFrameCount; at += block)
    {
        SendFrame(*context, inWish, at, std::min(block, inWish.mFrameCount - at));
        Collect(*context, encoded);
    }
    Require(avcodec_send_frame(context.get(), nullptr) == 0, "end the stream");
    Collect(*context, encoded);
    if (context->extradata_size > 0)
        encoded.mCookie.assign(context->extradata, context->extradata + context->extradata_size);
    return encoded;
}

}  // namespace encoded_audio

#endif
