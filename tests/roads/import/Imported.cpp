#include "tests/roads/import/Imported.h"

#include "host/BlockReader.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>

namespace testing_support
{

namespace
{

double SampleOf(const char* inBytes, std::size_t inBytesPerSample)
{
    switch (inBytesPerSample)
    {
        case 1:
            return (static_cast<unsigned char>(*inBytes) - 128) / 128.0;
        case 2:
        {
            std::int16_t sample = 0;
            std::memcpy(&sample, inBytes, 2);
            return sample / 32768.0;
        }
        case 3:
        {
            std::uint32_t bits = 0;
            std::memcpy(&bits, inBytes, 3);
            return static_cast<std::int32_t>(bits << 8) / 2147483648.0;
        }
        default:
        {
            float sample = 0.0f;
            std::memcpy(&sample, inBytes, 4);
            return sample;
        }
    }
}

void Append(const host::BlockReader& inReader, std::int64_t inCount, std::size_t inBytesPerSample,
            Audio& ioAudio)
{
    for (std::size_t channel = 0; channel < ioAudio.mChannels.size(); ++channel)
    {
        const char* source = inReader.Channels()[channel];
        for (std::int64_t frame = 0; frame < inCount; ++frame, source += inBytesPerSample)
            ioAudio.mChannels[channel].push_back(SampleOf(source, inBytesPerSample));
    }
}

double SignalToDifferenceWithin(const Audio& inLeft, const Audio& inRight, std::ptrdiff_t inDelay,
                                std::ptrdiff_t inFirst, std::ptrdiff_t inEnd)
{
    double signal = 0.0;
    double difference = 0.0;
    for (std::size_t channel = 0; channel < inLeft.mChannels.size(); ++channel)
    {
        for (std::ptrdiff_t frame = inFirst; frame < inEnd; ++frame)
        {
            const double left = inLeft.mChannels[channel][static_cast<std::size_t>(frame)];
            const double right =
                inRight.mChannels[channel][static_cast<std::size_t>(frame + inDelay)];
            signal += left * left;
            difference += (left - right) * (left - right);
        }
    }
    return 10.0 * std::log10(signal / std::max(difference, 1e-30));
}

}  // namespace

const host::PlugIn& BuiltPlugIn()
{
    static const host::PlugIn sPlugIn("");
    return sPlugIn;
}

std::string MadeFile(const std::string& inName)
{
    return std::string(TEST_AUDIO) + "/" + inName;
}

std::string StoredFile(const std::string& inName)
{
    return std::string(TEST_DATA) + "/" + inName;
}

Imported Import(const std::string& inPath, bool inKeepPadding)
{
    host::ReadSession session(BuiltPlugIn(), inPath);
    host::BlockReader reader(session, inKeepPadding);
    Imported imported;
    imported.mInfo = session.Info();
    imported.mAudio.mRate = imported.mInfo.mSampleRate;
    imported.mAudio.mChannels.resize(imported.mInfo.ChannelCount());
    while (const std::int64_t count = reader.Next())
        Append(reader, count, imported.mInfo.BytesPerSample(), imported.mAudio);
    return imported;
}

Audio ReadBySndfile(const std::string& inPath)
{
    SF_INFO info = {};
    const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(inPath.c_str(), SFM_READ, &info),
                                                           &sf_close);
    if (!file)
        return {};
    std::vector<double> frames(static_cast<std::size_t>(info.frames * info.channels));
    const sf_count_t count = sf_readf_double(file.get(), frames.data(), info.frames);

    Audio audio;
    audio.mRate = info.samplerate;
    const auto channels = static_cast<std::size_t>(info.channels);
    audio.mChannels.resize(channels);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count) * channels; ++i)
        audio.mChannels[i % channels].push_back(frames[i]);
    return audio;
}

std::string Difference(const Audio& inLeft, const Audio& inRight)
{
    std::ostringstream text;
    if (inLeft.mChannels.size() != inRight.mChannels.size())
        text << inLeft.mChannels.size() << " and " << inRight.mChannels.size() << " channels";
    else if (inLeft.FrameCount() != inRight.FrameCount())
        text << inLeft.FrameCount() << " and " << inRight.FrameCount() << " frames";
    else
    {
        for (std::size_t channel = 0; channel < inLeft.mChannels.size(); ++channel)
        {
            const auto& left = inLeft.mChannels[channel];
            const auto place =
                std::mismatch(left.begin(), left.end(), inRight.mChannels[channel].begin());
            if (place.first == left.end())
                continue;
            text << "channel " << channel << " frame " << place.first - left.begin() << ": "
                 << *place.first << " and " << *place.second;
            break;
        }
    }
    return text.str();
}

double SignalToDifference(const Audio& inLeft, const Audio& inRight, std::ptrdiff_t inDelay)
{
    const auto left = static_cast<std::ptrdiff_t>(inLeft.FrameCount());
    const auto right = static_cast<std::ptrdiff_t>(inRight.FrameCount());
    const std::ptrdiff_t first = std::max<std::ptrdiff_t>(0, -inDelay);
    return SignalToDifferenceWithin(inLeft, inRight, inDelay, first,
                                    std::min(left, right - inDelay));
}

std::ptrdiff_t BestDelay(const Audio& inLeft, const Audio& inRight, std::ptrdiff_t inMost)
{
    // A stretch of the middle tells, and is the same for every delay.
    const auto frames =
        static_cast<std::ptrdiff_t>(std::min(inLeft.FrameCount(), inRight.FrameCount()));
    const std::ptrdiff_t first = frames / 2;
    const std::ptrdiff_t end = std::min(first + 4000, frames - inMost);
    std::ptrdiff_t best = 0;
    double most = -1e9;
    for (std::ptrdiff_t delay = -inMost; delay <= inMost; ++delay)
    {
        const double ratio = SignalToDifferenceWithin(inLeft, inRight, delay, first, end);
        if (ratio > most)
        {
            most = ratio;
            best = delay;
        }
    }
    return best;
}

}  // namespace testing_support
