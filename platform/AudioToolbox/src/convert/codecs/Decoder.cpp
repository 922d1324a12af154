#include "convert/codecs/Decoder.h"

#include <AudioToolbox/AudioConverter.h>
#include <AudioToolbox/AudioFile.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace audiotoolbox::codecs
{

namespace
{

struct SampleFormatRow
{
    AVSampleFormat mFormat;
    SampleLayout mLayout;
};

// Integers fill their words from above, whatever the depth of the source.
constexpr SampleFormatRow kSampleFormats[] = {
    {AV_SAMPLE_FMT_U8, {SampleWord::Int8, false, true, false, 8}},
    {AV_SAMPLE_FMT_S16, {SampleWord::Int16, false, false, false, 16}},
    {AV_SAMPLE_FMT_S32, {SampleWord::Int32, false, false, false, 32}},
    {AV_SAMPLE_FMT_FLT, {SampleWord::Float32, false, false, false, 32}},
    {AV_SAMPLE_FMT_DBL, {SampleWord::Float64, false, false, false, 64}},
};

const SampleFormatRow* FindSampleFormat(int inFormat)
{
    const AVSampleFormat packed = av_get_packed_sample_fmt(static_cast<AVSampleFormat>(inFormat));
    for (const SampleFormatRow& row : kSampleFormats)
        if (row.mFormat == packed)
            return &row;
    return nullptr;
}

CodecAnswer AnswerOf(int inResult)
{
    switch (inResult)
    {
        case AVERROR(EAGAIN):
            return CodecAnswer::WantsInput;
        case AVERROR_EOF:
            return CodecAnswer::End;
        case AVERROR(ENOMEM):
            return CodecAnswer::Failed;
        default:
            return CodecAnswer::BadData;
    }
}

}  // namespace

bool Decoder::Configure(const CodecRequest& inRequest, const DecoderRow& inRow)
{
    const AudioStreamBasicDescription& format = inRequest.mFormat;
    mContext->sample_rate = static_cast<int>(std::floor(format.mSampleRate + 0.5));
    av_channel_layout_default(&mContext->ch_layout, static_cast<int>(format.mChannelsPerFrame));
    mContext->block_align = static_cast<int>(format.mBytesPerPacket);
    mContext->bits_per_coded_sample = inRow.mCodedBits;
    mContext->thread_count = 1;  // frame threads would hold packets back
    // Only the converter drops frames, as its client primes it.
    mContext->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    if (inRequest.mCookieByteCount == 0)
        return true;
    const std::size_t padded =
        std::size_t{inRequest.mCookieByteCount} + AV_INPUT_BUFFER_PADDING_SIZE;
    mContext->extradata = static_cast<uint8_t*>(av_mallocz(padded));
    if (mContext->extradata == nullptr)
        return false;
    std::memcpy(mContext->extradata, inRequest.mCookie, inRequest.mCookieByteCount);
    mContext->extradata_size = static_cast<int>(inRequest.mCookieByteCount);
    return true;
}

OSStatus Decoder::Open(const CodecRequest& inRequest)
{
    const DecoderRow* row = FindDecoder(inRequest.mFormat.mFormatID);
    const AVCodec* codec = row != nullptr ? avcodec_find_decoder_by_name(row->mDecoder) : nullptr;
    if (codec == nullptr || inRequest.mFormat.mSampleRate > 2147483647.0)
        return kAudioConverterErr_FormatNotSupported;
    mContext.reset(avcodec_alloc_context3(codec));
    mPacket.reset(av_packet_alloc());
    mFrame.reset(av_frame_alloc());
    if (!mContext || !mPacket || !mFrame || !Configure(inRequest, *row))
        return kAudio_MemFullError;
    const int result = avcodec_open2(mContext.get(), codec, nullptr);
    if (result == AVERROR(ENOMEM))
        return kAudio_MemFullError;
    if (result < 0)
        return inRequest.mCookieByteCount > 0 ? kAudioCodecBadDataError
                                              : kAudioConverterErr_FormatNotSupported;
    return noErr;
}

bool Decoder::KeepPacket(const UInt8* inPacket, UInt32 inByteCount)
{
    const std::size_t padded = std::size_t{inByteCount} + AV_INPUT_BUFFER_PADDING_SIZE;
    if (!mBuffer || mBuffer->size < padded || av_buffer_is_writable(mBuffer.get()) == 0)
        mBuffer.reset(av_buffer_alloc(std::max<std::size_t>(padded + padded / 4, 4096)));
    if (!mBuffer)
        return false;
    std::memcpy(mBuffer->data, inPacket, inByteCount);
    std::memset(mBuffer->data + inByteCount, 0, AV_INPUT_BUFFER_PADDING_SIZE);
    mPacket->buf = av_buffer_ref(mBuffer.get());
    mPacket->data = mBuffer->data;
    mPacket->size = static_cast<int>(inByteCount);
    return mPacket->buf != nullptr;
}

CodecAnswer Decoder::Send(const UInt8* inPacket, UInt32 inByteCount)
{
    int result = 0;
    if (inPacket == nullptr)
        result = avcodec_send_packet(mContext.get(), nullptr);
    else
    {
        if (!KeepPacket(inPacket, inByteCount))
            return CodecAnswer::Failed;
        result = avcodec_send_packet(mContext.get(), mPacket.get());
        av_packet_unref(mPacket.get());
    }
    return result == 0 ? CodecAnswer::WantsInput : AnswerOf(result);
}

CodecAnswer Decoder::Receive(CodecFrame& outFrame)
{
    const int result = avcodec_receive_frame(mContext.get(), mFrame.get());
    if (result < 0)
        return AnswerOf(result);
    return ShowFrame(outFrame) ? CodecAnswer::Frame : CodecAnswer::BadData;
}

bool Decoder::ShowFrame(CodecFrame& outFrame) const
{
    const AVFrame& frame = *mFrame;
    const SampleFormatRow* row = FindSampleFormat(frame.format);
    const int channels = frame.ch_layout.nb_channels;
    if (row == nullptr || frame.nb_samples <= 0 || channels < 1 ||
        channels > static_cast<int>(kMaxChannels) || frame.sample_rate <= 0)
        return false;
    const bool isPlanar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame.format)) != 0;
    outFrame.mPlaneCount = isPlanar ? static_cast<UInt32>(channels) : 1;
    for (UInt32 plane = 0; plane < outFrame.mPlaneCount; ++plane)
        outFrame.mPlanes[plane] = frame.extended_data[plane];
    outFrame.mLayout = row->mLayout;
    outFrame.mChannelCount = static_cast<UInt32>(channels);
    outFrame.mSampleRate = static_cast<UInt32>(frame.sample_rate);
    outFrame.mFrameCount = static_cast<UInt32>(frame.nb_samples);
    return true;
}

void Decoder::Flush()
{
    avcodec_flush_buffers(mContext.get());
}

CodecInfo Decoder::Info() const
{
    const int profile = mContext->profile;
    const bool hasPS = profile == FF_PROFILE_AAC_HE_V2;
    return {hasPS || profile == FF_PROFILE_AAC_HE, hasPS,
            (mContext->codec->capabilities & AV_CODEC_CAP_DELAY) != 0};
}

}  // namespace audiotoolbox::codecs
