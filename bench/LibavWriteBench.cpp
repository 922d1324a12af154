// LibavWriteBench: the same work with libavcodec and libavformat alone, in one thread: planes are
// brought into the encoder's samples frame by frame, and its packets go to the muxer.
//
// libavwrite SOURCE CHANNELS RATE WIDTH FRAMES TARGET MUXER ENCODER BITRATE

#include "bench/BlockSource.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

#include <cstring>
#include <memory>

namespace
{

struct FreeCodec
{
    void operator()(AVCodecContext* inCodec) const { avcodec_free_context(&inCodec); }
};
struct FreeOutput
{
    void operator()(AVFormatContext* inOutput) const
    {
        if (inOutput->pb)
            avio_closep(&inOutput->pb);
        avformat_free_context(inOutput);
    }
};
struct FreePacket
{
    void operator()(AVPacket* inPacket) const { av_packet_free(&inPacket); }
};
struct FreeFrame
{
    void operator()(AVFrame* inFrame) const { av_frame_free(&inFrame); }
};

// Where a plane's samples go in the encoder's frame.
struct Place
{
    const char* const* mPlanes;
    int mChannels;
    int mFrameCount;
    AVFrame* mFrame;
    int mFirst;  // frame of it
    int mWidth;  // of the encoder's samples

    bool IsPlanar() const
    {
        return av_sample_fmt_is_planar(static_cast<AVSampleFormat>(mFrame->format)) != 0;
    }
    std::uint8_t* Plane(int inChannel) const
    {
        return mFrame->extended_data[inChannel] + mFirst * mWidth;
    }
    std::uint8_t* Frames() const { return mFrame->data[0] + mFirst * mWidth * mChannels; }
};

template <typename Reader, typename Sample>
void Put(const Place& inPlace)
{
    if (!inPlace.IsPlanar())
        return bench::JoinPlanes<Reader>(inPlace.mPlanes, inPlace.mChannels, inPlace.mFrameCount,
                                         reinterpret_cast<Sample*>(inPlace.Frames()));
    for (int channel = 0; channel < inPlace.mChannels; ++channel)
    {
        auto* plane = reinterpret_cast<Sample*>(inPlace.Plane(channel));
        for (int frame = 0; frame < inPlace.mFrameCount; ++frame)
            plane[frame] = Reader::Of(inPlace.mPlanes[channel], static_cast<std::size_t>(frame));
    }
}

using PutSamples = void (*)(const Place&);

// Null for a pair that no row measures.
PutSamples ChoosePut(int inWidth, AVSampleFormat inFormat)
{
    const AVSampleFormat packed = av_get_packed_sample_fmt(inFormat);
    if (inWidth == 2 && packed == AV_SAMPLE_FMT_S16)
        return &Put<bench::PlainSample<std::int16_t>, std::int16_t>;
    if (inWidth == 2 && packed == AV_SAMPLE_FMT_FLT)
        return &Put<bench::Scaled<std::int16_t>, float>;
    if (inWidth == 3 && packed == AV_SAMPLE_FMT_S32)
        return &Put<bench::Widened24, std::int32_t>;
    if (inWidth == 4 && packed == AV_SAMPLE_FMT_FLT)
        return &Put<bench::PlainSample<float>, float>;
    return nullptr;
}

class Export
{
public:
    /// False where the libraries refuse.
    bool Open(const bench::WriteJob& inJob)
    {
        mChannels = inJob.mChannels;
        mSourceWidth = inJob.mWidth;
        AVFormatContext* output = nullptr;
        const AVCodec* codec = avcodec_find_encoder_by_name(inJob.mFormat.c_str());
        if (!codec || avformat_alloc_output_context2(&output, nullptr, inJob.mContainer.c_str(),
                                                     inJob.mTarget.c_str()) < 0)
            return false;
        mOutput.reset(output);
        output->flags |= AVFMT_FLAG_BITEXACT;
        return OpenEncoder(*codec, inJob) && OpenFile(inJob) && MakeFrame();
    }

    bool Take(const char* const* inPlanes, int inFrameCount)
    {
        std::vector<const char*> planes(inPlanes, inPlanes + mChannels);
        while (inFrameCount > 0)
        {
            const int count = std::min(inFrameCount, mFrameLength - mHeld);
            if (mHeld == 0 && av_frame_make_writable(mFrame.get()) < 0)
                return false;
            mPut({planes.data(), mChannels, count, mFrame.get(), mHeld, mSampleBytes});
            for (const char*& plane : planes)
                plane += count * mSourceWidth;
            mHeld += count;
            inFrameCount -= count;
            if (mHeld == mFrameLength && !SendHeld())
                return false;
        }
        return true;
    }

    bool Close()
    {
        if ((mHeld > 0 && !SendHeld()) || avcodec_send_frame(mEncoder.get(), nullptr) < 0 ||
            !WritePackets() || av_write_trailer(mOutput.get()) < 0)
            return false;
        return avio_closep(&mOutput->pb) >= 0;
    }

private:
    bool OpenEncoder(const AVCodec& inCodec, const bench::WriteJob& inJob)
    {
        mEncoder.reset(avcodec_alloc_context3(&inCodec));
        AVCodecContext& encoder = *mEncoder;
        encoder.sample_rate = inJob.mRate;
        encoder.time_base = {1, inJob.mRate};
        av_channel_layout_default(&encoder.ch_layout, inJob.mChannels);
        for (const AVSampleFormat* format = inCodec.sample_fmts;
             !mPut && *format != AV_SAMPLE_FMT_NONE; ++format)
        {
            encoder.sample_fmt = *format;
            mPut = ChoosePut(inJob.mWidth, *format);
        }
        if (inJob.mWidth == 3)
            encoder.bits_per_raw_sample = 24;
        encoder.bit_rate = inJob.mBitRate;
        encoder.thread_count = 1;
        encoder.flags |= AV_CODEC_FLAG_BITEXACT;
        if (mOutput->oformat->flags & AVFMT_GLOBALHEADER)
            encoder.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        mSampleBytes = av_get_bytes_per_sample(encoder.sample_fmt);
        return mPut && avcodec_open2(&encoder, &inCodec, nullptr) >= 0;
    }

    bool OpenFile(const bench::WriteJob& inJob)
    {
        mStream = avformat_new_stream(mOutput.get(), nullptr);
        mStream->time_base = mEncoder->time_base;
        return avcodec_parameters_from_context(mStream->codecpar, mEncoder.get()) >= 0 &&
               avio_open(&mOutput->pb, inJob.mTarget.c_str(), AVIO_FLAG_WRITE) >= 0 &&
               avformat_write_header(mOutput.get(), nullptr) >= 0;
    }

    bool MakeFrame()
    {
        mFrameLength = mEncoder->frame_size > 0 ? mEncoder->frame_size : bench::kBlockFrames;
        mFrame.reset(av_frame_alloc());
        mPacket.reset(av_packet_alloc());
        mFrame->format = mEncoder->sample_fmt;
        mFrame->sample_rate = mEncoder->sample_rate;
        mFrame->nb_samples = mFrameLength;
        return av_channel_layout_copy(&mFrame->ch_layout, &mEncoder->ch_layout) >= 0 &&
               av_frame_get_buffer(mFrame.get(), 0) >= 0;
    }

    bool SendHeld()
    {
        mFrame->nb_samples = mHeld;
        mFrame->pts = mPosition;
        mPosition += mHeld;
        mHeld = 0;
        const bool isSent = avcodec_send_frame(mEncoder.get(), mFrame.get()) >= 0;
        mFrame->nb_samples = mFrameLength;
        return isSent && WritePackets();
    }

    bool WritePackets()
    {
        while (avcodec_receive_packet(mEncoder.get(), mPacket.get()) >= 0)
        {
            av_packet_rescale_ts(mPacket.get(), mEncoder->time_base, mStream->time_base);
            mPacket->stream_index = mStream->index;
            const bool isWritten = av_write_frame(mOutput.get(), mPacket.get()) >= 0;
            av_packet_unref(mPacket.get());
            if (!isWritten)
                return false;
        }
        return true;
    }

    int mChannels = 0;
    int mSourceWidth = 0;
    int mSampleBytes = 0;
    int mFrameLength = 0;
    int mHeld = 0;  // frames in mFrame
    std::int64_t mPosition = 0;
    PutSamples mPut = nullptr;
    AVStream* mStream = nullptr;  // the output's
    std::unique_ptr<AVFormatContext, FreeOutput> mOutput;
    std::unique_ptr<AVCodecContext, FreeCodec> mEncoder;
    std::unique_ptr<AVPacket, FreePacket> mPacket;
    std::unique_ptr<AVFrame, FreeFrame> mFrame;
};

bool Write(const bench::WriteJob& inJob, bench::BlockSource& ioSource)
{
    Export target;
    if (!target.Open(inJob))
        return false;
    while (const int count = ioSource.Next())
        if (!target.Take(ioSource.Planes(), count))
            return false;
    return target.Close();
}

}  // namespace

int main(int argc, char** argv)
{
    av_log_set_level(AV_LOG_QUIET);
    bench::WriteJob job;
    if (!bench::ReadJob(argc, argv, job))
        return 2;
    bench::BlockSource source(job);
    if (!source.HasFrames())
        return 3;

    const bench::Stopwatch watch;
    if (!Write(job, source))
        return 4;
    watch.Print({job.mFrames, job.mChannels, job.mRate, job.mFrames * job.mChannels * job.mWidth});
    return 0;
}
