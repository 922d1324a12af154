// LibavBench: the same work with libavformat, libavcodec and libswresample, in one thread: decode
// into planes of 65536 frames, in the samples that the plug-in delivers for such a file.
//
// libavbench read FILE | libavbench open ROUNDS FILE...

#include "bench/Measure.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{

struct CloseInput
{
    void operator()(AVFormatContext* inInput) const { avformat_close_input(&inInput); }
};
struct FreeCodec
{
    void operator()(AVCodecContext* inCodec) const { avcodec_free_context(&inCodec); }
};
struct FreePacket
{
    void operator()(AVPacket* inPacket) const { av_packet_free(&inPacket); }
};
struct FreeFrame
{
    void operator()(AVFrame* inFrame) const { av_frame_free(&inFrame); }
};
struct FreeResampler
{
    void operator()(SwrContext* inResampler) const { swr_free(&inResampler); }
};

struct Input
{
    std::unique_ptr<AVFormatContext, CloseInput> mFile;
    std::unique_ptr<AVCodecContext, FreeCodec> mDecoder;
    int mStream = -1;
};

Input Open(const char* inPath)
{
    Input input;
    AVFormatContext* file = nullptr;
    if (avformat_open_input(&file, inPath, nullptr, nullptr) < 0)
        return {};
    input.mFile.reset(file);
    const AVCodec* codec = nullptr;
    if (avformat_find_stream_info(file, nullptr) < 0)
        return {};
    input.mStream = av_find_best_stream(file, AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    if (input.mStream < 0)
        return {};
    input.mDecoder.reset(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(input.mDecoder.get(), file->streams[input.mStream]->codecpar);
    input.mDecoder->thread_count = 1;
    if (avcodec_open2(input.mDecoder.get(), codec, nullptr) < 0)
        return {};
    return input;
}

// Planes of one block; a full block starts over, as a caller would take it.
class Planes
{
public:
    Planes(const Input& inInput)
        : mChannels(inInput.mDecoder->ch_layout.nb_channels),
          mPacks24(inInput.mDecoder->codec_id == AV_CODEC_ID_PCM_S24LE ||
                   inInput.mDecoder->codec_id == AV_CODEC_ID_PCM_S24BE),
          mFormat(ClientFormat(inInput)),
          mSampleBytes(mPacks24 ? 3 : av_get_bytes_per_sample(mFormat)),
          mMemory(mChannels, std::vector<std::uint8_t>(bench::kBlockFrames * 4))
    {
        AVCodecContext& decoder = *inInput.mDecoder;
        SwrContext* resampler = nullptr;
        swr_alloc_set_opts2(&resampler, &decoder.ch_layout, mFormat, decoder.sample_rate,
                            &decoder.ch_layout, decoder.sample_fmt, decoder.sample_rate, 0,
                            nullptr);
        mResampler.reset(resampler);
        swr_init(resampler);
    }

    void Add(const AVFrame& inFrame)
    {
        int done = 0;
        mScratch.resize(mChannels);
        std::vector<std::uint8_t*>& places = mPlaces;
        places.resize(mChannels);
        for (std::size_t channel = 0; channel < mMemory.size(); ++channel)
        {
            mScratch[channel].resize(static_cast<std::size_t>(inFrame.nb_samples) * 4);
            places[channel] = mScratch[channel].data();
        }
        swr_convert(mResampler.get(), places.data(), inFrame.nb_samples,
                    const_cast<const std::uint8_t**>(inFrame.extended_data), inFrame.nb_samples);
        while (done < inFrame.nb_samples)
        {
            const int count = std::min(inFrame.nb_samples - done, bench::kBlockFrames - mFilled);
            for (std::size_t channel = 0; channel < mMemory.size(); ++channel)
                Store(channel, done, count);
            done += count;
            mFilled = (mFilled + count) % bench::kBlockFrames;
        }
        mTotal += inFrame.nb_samples;
    }

    bench::Run Result(int inRate) const
    {
        return {mTotal, mChannels, inRate, mTotal * mChannels * mSampleBytes};
    }

private:
    static AVSampleFormat ClientFormat(const Input& inInput)
    {
        switch (inInput.mDecoder->codec_id)
        {
            case AV_CODEC_ID_PCM_U8:
                return AV_SAMPLE_FMT_U8P;
            case AV_CODEC_ID_PCM_S16LE:
            case AV_CODEC_ID_PCM_S16BE:
                return AV_SAMPLE_FMT_S16P;
            case AV_CODEC_ID_PCM_S24LE:
            case AV_CODEC_ID_PCM_S24BE:
                return AV_SAMPLE_FMT_S32P;
            default:
                return AV_SAMPLE_FMT_FLTP;
        }
    }

    void Store(std::size_t inChannel, int inFirst, int inCount)
    {
        std::uint8_t* plane = mMemory[inChannel].data();
        const std::uint8_t* source = mScratch[inChannel].data();
        if (!mPacks24)
        {
            std::memcpy(plane + mFilled * mSampleBytes, source + inFirst * mSampleBytes,
                        static_cast<std::size_t>(inCount * mSampleBytes));
            return;
        }
        plane += mFilled * 3;
        source += inFirst * 4;
        for (int i = 0; i < inCount; ++i)
            std::memcpy(plane + i * 3, source + i * 4 + 1, 3);
    }

    int mChannels;
    bool mPacks24;
    AVSampleFormat mFormat;
    int mSampleBytes;
    int mFilled = 0;
    std::int64_t mTotal = 0;
    std::unique_ptr<SwrContext, FreeResampler> mResampler;
    std::vector<std::vector<std::uint8_t>> mMemory;
    std::vector<std::vector<std::uint8_t>> mScratch;
    std::vector<std::uint8_t*> mPlaces;
};

void Drain(AVCodecContext* inDecoder, AVFrame* inFrame, Planes& ioPlanes)
{
    while (avcodec_receive_frame(inDecoder, inFrame) >= 0)
        ioPlanes.Add(*inFrame);
}

bench::Run Read(Input& ioInput)
{
    Planes planes(ioInput);
    const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
    const std::unique_ptr<AVFrame, FreeFrame> frame(av_frame_alloc());
    while (av_read_frame(ioInput.mFile.get(), packet.get()) >= 0)
    {
        if (packet->stream_index == ioInput.mStream &&
            avcodec_send_packet(ioInput.mDecoder.get(), packet.get()) >= 0)
            Drain(ioInput.mDecoder.get(), frame.get(), planes);
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(ioInput.mDecoder.get(), nullptr);
    Drain(ioInput.mDecoder.get(), frame.get(), planes);
    return planes.Result(ioInput.mDecoder->sample_rate);
}

bench::Run OpenAll(int inRounds, int inCount, char** inFiles)
{
    bench::Run run;
    for (int round = 0; round < inRounds; ++round)
    {
        for (int i = 0; i < inCount; ++i)
        {
            const Input input = Open(inFiles[i]);
            if (input.mDecoder)
                run.mRate = input.mDecoder->sample_rate;
            ++run.mFrames;
        }
    }
    return run;
}

}  // namespace

int main(int argc, char** argv)
{
    av_log_set_level(AV_LOG_QUIET);
    if (argc >= 4 && std::string(argv[1]) == "open")
    {
        (void)OpenAll(1, 1, argv + 3);
        const bench::Stopwatch watch;
        watch.Print(OpenAll(std::atoi(argv[2]), argc - 3, argv + 3));
        return 0;
    }
    if (argc != 3 || std::string(argv[1]) != "read")
        return 2;

    const bench::Stopwatch watch;
    Input input = Open(argv[2]);
    if (!input.mDecoder)
        return 3;
    const bench::Run run = Read(input);
    input = {};
    watch.Print(run);
    return 0;
}
