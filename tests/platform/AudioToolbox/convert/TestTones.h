// TestTones: audio that shows where it comes back, and how much of it.
#ifndef TESTS_CONVERT_TESTTONES_H
#define TESTS_CONVERT_TESTTONES_H

#include <CoreAudio/CoreAudioTypes.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace encoder_use
{

inline AudioStreamBasicDescription Destination(AudioFormatID inFormat, double inRate,
                                               UInt32 inChannels, UInt32 inFlags = 0)
{
    return {inRate, inFormat, inFlags, 0, 0, 0, inChannels, 0, 0};
}

/// The fourth of six channels has room for low tones only.
inline double FrequencyOf(UInt32 inChannel, UInt32 inChannels)
{
    return inChannels == 6 && inChannel == 3 ? 50.0 : 440.0 + 130 * inChannel;
}

/// A tone that grows from nothing, another one in each channel.
inline std::vector<float> Tones(std::size_t inFrames, UInt32 inChannels, double inRate)
{
    std::vector<float> samples(inFrames * inChannels);
    for (std::size_t i = 0; i < inFrames; ++i)
        for (UInt32 channel = 0; channel < inChannels; ++channel)
            samples[i * inChannels + channel] =
                static_cast<float>(0.4 * std::min(1.0, static_cast<double>(i) / 2000) *
                                   std::sin(2 * M_PI * FrequencyOf(channel, inChannels) *
                                            static_cast<double>(i) / inRate));
    return samples;
}

inline double SignalToNoise(const std::vector<float>& inWanted, const std::vector<float>& inGot)
{
    double signal = 1e-12;
    double noise = 1e-12;
    for (std::size_t i = 0; i < std::min(inWanted.size(), inGot.size()); ++i)
    {
        signal += double{inWanted[i]} * inWanted[i];
        noise += (double{inGot[i]} - inWanted[i]) * (double{inGot[i]} - inWanted[i]);
    }
    return 10 * std::log10(signal / noise);
}

}  // namespace encoder_use

#endif
