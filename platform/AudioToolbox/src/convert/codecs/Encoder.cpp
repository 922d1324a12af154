#include "convert/codecs/Encoder.h"

#include <AudioToolbox/AudioConverter.h>
#include <AudioToolbox/AudioFile.h>

extern "C" {
#include <libavutil/opt.h>
}

#include <cmath>
#include <cstring>
#include <new>

namespace audiotoolbox::codecs
{

namespace
{

constexpr std::size_t kALACFrameLengthAt = 12;  // in its cookie
constexpr UInt32 kShortFrames = 256;

// One plane a channel or interleaved, whichever the encoder takes.
AVSampleFormat FindSampleFormat(const AVCodec& inCodec, SampleWord inWord)
{
    const AVSampleFormat wanted = inWord == SampleWord::Int16   ? AV_SAMPLE_FMT_S16
                                  : inWord == SampleWord::Int32 ? AV_SAMPLE_FMT_S32
                                                                : AV_SAMPLE_FMT_FLT;
    for (const AVSampleFormat* format = inCodec.sample_fmts;
         format != nullptr && *format != AV_SAMPLE_FMT_NONE; ++format)
        if (av_get_packed_sample_fmt(*format) == wanted)
            return *format;
    return AV_SAMPLE_FMT_NONE;
}

const char* OpusRateControl(UInt32 inMode)
{
    switch (inMode)
    {
        case kAudioCodecBitRateControlMode_Constant:
            return "off";
        case kAudioCodecBitRateControlMode_VariableConstrained:
            return "constrained";
        default:
            return "on";
    }
}

// A stride that the compiler knows lets it split whole vectors.
template <typename Word, std::size_t kChannels>
void SplitChannels(const UInt8* inFrames, std::size_t inFrameCount, std::size_t inChannels,
                   AVFrame& outFrame)
{
    const std::size_t channels = kChannels > 0 ? kChannels : inChannels;
    for (std::size_t channel = 0; channel < channels; ++channel)
    {
        Word* plane = reinterpret_cast<Word*>(outFrame.extended_data[channel]);
        const UInt8* from = inFrames + channel * sizeof(Word);
        for (std::size_t frame = 0; frame < inFrameCount; ++frame)
            std::memcpy(plane + frame, from + frame * channels * sizeof(Word), sizeof(Word));
    }
}

template <typename Word>
void SplitWords(const UInt8* inFrames, std::size_t inFrameCount, std::size_t inChannels,
                AVFrame& outFrame)
{
    switch (inChannels)
    {
        case 1:
            return SplitChannels<Word, 1>(inFrames, inFrameCount, inChannels, outFrame);
        case 2:
            return SplitChannels<Word, 2>(inFrames, inFrameCount, inChannels, outFrame);
        default:
            return SplitChannels<Word, 0>(inFrames, inFrameCount, inChannels, outFrame);
    }
}

}  // namespace

void Encoder::SetBitRate()
{
    if (mRequest.mBitRate == 0)
        return;
    if (mRequest.mMode == kAudioCodecBitRateControlMode_Variable)
    {
        mContext->flags |= AV_CODEC_FLAG_QSCALE;
        mContext->global_quality =
            static_cast<int>(std::lrint(mRequest.mQuality * Float32{FF_QP2LAMBDA}));
        return;
    }
    mContext->bit_rate = mRequest.mBitRate;
    void* own = mContext->priv_data;
    // Neither option can fail: the encoder of the row has it and takes the value.
    if (mRequest.mFormatID == kAudioFormatMPEGLayer3)
        (void)av_opt_set_int(own, "abr",
                             mRequest.mMode == kAudioCodecBitRateControlMode_LongTermAverage, 0);
    if (mRequest.mFormatID == kAudioFormatOpus)
    {
        (void)av_opt_set(own, "vbr", OpusRateControl(mRequest.mMode), 0);
        // Left to itself, the encoder puts 5 and 7 channels into the wrong places.
        if (mRequest.mChannelCount > 2)
            (void)av_opt_set(own, "mapping_family", "1", 0);
    }
}

bool Encoder::Configure(const AVCodec& inCodec)
{
    const int rate = static_cast<int>(mRequest.mSampleRate);
    const int channels = static_cast<int>(mRequest.mChannelCount);
    mContext->sample_rate = rate;
    mContext->time_base = {1, rate};
    mContext->sample_fmt = FindSampleFormat(inCodec, mRequest.mLayout.mWord);
    mContext->flags |= AV_CODEC_FLAG_BITEXACT;  // no name of the encoder in the stream
    mContext->thread_count = 1;
    if (mRequest.mLayout.mWord == SampleWord::Int32)
        mContext->bits_per_raw_sample = 24;
    if (mIsPlain)
        mContext->compression_level = 0;
    if (mRequest.mFormatID == kAudioFormatFLAC)
        mContext->frame_size = static_cast<int>(mRequest.mFramesPerPacket);
    if (mRequest.mChannelMask == 0)
        av_channel_layout_default(&mContext->ch_layout, channels);
    else if (av_channel_layout_from_mask(&mContext->ch_layout, mRequest.mChannelMask) < 0)
        return false;
    SetBitRate();
    return mContext->sample_fmt != AV_SAMPLE_FMT_NONE;
}

OSStatus Encoder::Open(const EncoderRequest& inRequest)
{
    mRequest = inRequest;
    mPacket.reset(av_packet_alloc());
    mFrame.reset(av_frame_alloc());
    if (!mPacket || !mFrame)
        return kAudio_MemFullError;
    if (const OSStatus status = OpenContext(); status != noErr)
        return status;
    if (!MakeFrame() ||
        !KeepCookie(mContext->extradata, static_cast<std::size_t>(mContext->extradata_size)))
        return kAudio_MemFullError;
    return noErr;
}

OSStatus Encoder::OpenContext()
{
    const AVCodec* codec = avcodec_find_encoder_by_name(mRequest.mEncoder);
    if (codec == nullptr)
        return kAudioConverterErr_FormatNotSupported;
    mContext.reset(avcodec_alloc_context3(codec));
    if (!mContext)
        return kAudio_MemFullError;
    if (!Configure(*codec))
        return kAudioConverterErr_FormatNotSupported;
    const int result = avcodec_open2(mContext.get(), codec, nullptr);
    if (result < 0)
        return result == AVERROR(ENOMEM) ? kAudio_MemFullError
                                         : kAudioConverterErr_FormatNotSupported;
    // Shorter packets than usual keep lossless ones below 64 KiB.
    const int frames = static_cast<int>(mRequest.mFramesPerPacket);
    if (mRequest.mFormatID == kAudioFormatAppleLossless)
        mContext->frame_size = frames;
    return mContext->frame_size == frames ? OSStatus{noErr} : kAudioConverterErr_FormatNotSupported;
}

// This encoder's room for a packet of few frames is too small for the heads of its channels, and
// it aborts. Its packets do not depend on each other, so another one can write the samples plain.
bool Encoder::ReopenForShort(UInt32 inFrameCount)
{
    if (mRequest.mFormatID != kAudioFormatAppleLossless || inFrameCount >= kShortFrames)
        return true;
    mIsPlain = true;
    return OpenContext() == noErr;
}

bool Encoder::MakeFrame()
{
    mFrame->format = mContext->sample_fmt;
    mFrame->sample_rate = mContext->sample_rate;
    mFrame->nb_samples = static_cast<int>(mRequest.mFramesPerPacket);
    return av_channel_layout_copy(&mFrame->ch_layout, &mContext->ch_layout) == 0 &&
           av_frame_get_buffer(mFrame.get(), 0) == 0;
}

bool Encoder::KeepCookie(const UInt8* inBytes, std::size_t inByteCount)
{
    try
    {
        mCookie.assign(inBytes, inBytes + inByteCount);
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
    if (mContext->codec_id == AV_CODEC_ID_ALAC && inByteCount >= kALACFrameLengthAt + 4)
        for (std::size_t i = 0; i < 4; ++i)
            mCookie[kALACFrameLengthAt + i] =
                static_cast<UInt8>(mRequest.mFramesPerPacket >> (8 * (3 - i)));
    return true;
}

void Encoder::Fill(const UInt8* inFrames, UInt32 inFrameCount)
{
    const auto channels = static_cast<std::size_t>(mContext->ch_layout.nb_channels);
    const auto bytes = static_cast<std::size_t>(av_get_bytes_per_sample(mContext->sample_fmt));
    if (av_sample_fmt_is_planar(mContext->sample_fmt) == 0)
        std::memcpy(mFrame->extended_data[0], inFrames, inFrameCount * bytes * channels);
    else if (bytes == 2)
        SplitWords<UInt16>(inFrames, inFrameCount, channels, *mFrame);
    else
        SplitWords<UInt32>(inFrames, inFrameCount, channels, *mFrame);
}

CodecAnswer Encoder::Send(const UInt8* inFrames, UInt32 inFrameCount)
{
    int result = 0;
    if (inFrames == nullptr)
        result = avcodec_send_frame(mContext.get(), nullptr);
    else
    {
        // The encoder may still hold the last frame, which must then be left alone.
        mFrame->nb_samples = static_cast<int>(mRequest.mFramesPerPacket);
        if (inFrameCount > mRequest.mFramesPerPacket || !ReopenForShort(inFrameCount) ||
            av_frame_make_writable(mFrame.get()) < 0)
            return CodecAnswer::Failed;
        mFrame->nb_samples = static_cast<int>(inFrameCount);
        mFrame->pts = mPosition;
        mPosition += inFrameCount;
        Fill(inFrames, inFrameCount);
        result = avcodec_send_frame(mContext.get(), mFrame.get());
    }
    return result == 0 ? CodecAnswer::WantsInput : CodecAnswer::Failed;
}

CodecAnswer Encoder::Receive(EncodedPacket& outPacket)
{
    for (;;)
    {
        av_packet_unref(mPacket.get());
        const int result = avcodec_receive_packet(mContext.get(), mPacket.get());
        if (result == AVERROR(EAGAIN))
            return CodecAnswer::WantsInput;
        if (result < 0)
            return result == AVERROR_EOF ? CodecAnswer::End : CodecAnswer::Failed;
        std::size_t cookieBytes = 0;
        const uint8_t* cookie =
            av_packet_get_side_data(mPacket.get(), AV_PKT_DATA_NEW_EXTRADATA, &cookieBytes);
        if (cookie != nullptr && !KeepCookie(cookie, cookieBytes))
            return CodecAnswer::Failed;
        if (mPacket->size == 0)
            continue;
        outPacket = {mPacket->data, static_cast<UInt32>(mPacket->size),
                     mPacket->duration > 0 ? static_cast<UInt32>(mPacket->duration) : 0};
        return CodecAnswer::Frame;
    }
}

EncoderFacts Encoder::Facts() const
{
    return {mRequest.mFramesPerPacket, static_cast<UInt32>(mContext->initial_padding),
            mCookie.data(), static_cast<UInt32>(mCookie.size())};
}

}  // namespace audiotoolbox::codecs
