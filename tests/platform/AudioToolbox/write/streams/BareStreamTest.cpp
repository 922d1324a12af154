// MPEG audio layer 2, AC-3 and E-AC-3: files that are their packets alone.
#include "StreamWriting.h"

#include <numeric>

using namespace stream_writing;

namespace
{

TEST(BareStreams, AreTheirPackets)
{
    for (const Kind& kind : {kMP2, kAC3, kEAC3})
    {
        const Stream stream = EncodeTones(kind, 2, 20000);
        Bytes all;
        for (const Bytes& packet : stream.mPackets)
            all.insert(all.end(), packet.begin(), packet.end());
        EXPECT_EQ(Written(kind, stream, 20000), all) << kind.mName;
    }
}

void ExpectAudioBehind(std::size_t inDelay, const std::vector<float>& inAll,
                       const std::vector<float>& inWanted, UInt32 inChannels,
                       const std::string& inWhat)
{
    ASSERT_GE(inAll.size(), inDelay * inChannels + inWanted.size()) << inWhat;
    const std::vector<float> got(inAll.begin() + static_cast<std::ptrdiff_t>(inDelay * inChannels),
                                 inAll.end());
    EXPECT_GT(encoder_use::SignalToNoise(inWanted, got), 15.0) << inWhat;
}

TEST(BareStreams, OfLayer2AreDecodedByMPG123BehindTheirDelay)
{
    for (const UInt32 channels : {1u, 2u})
    {
        const auto audio = encoder_use::Tones(20000, channels, kMP2.mRate);
        const Stream stream = Encode(kMP2, channels, audio);
        const auto got = FloatsOf(Written(kMP2, stream, 20000), "mp2", kMPG123Floats);
        EXPECT_EQ(got.size(), stream.mPackets.size() * 1152 * channels);
        ExpectAudioBehind(481, got, audio, channels, std::to_string(channels) + " channels");
    }
}

TEST(BareStreams, OfAC3AreDecodedByOthersBehindTheirDelay)
{
    for (const Kind& kind : {kAC3, kEAC3})
        for (const UInt32 channels : kind.mChannels)
        {
            const std::string what = kind.mName + std::to_string(channels);
            const auto audio = encoder_use::Tones(20000, channels, kind.mRate);
            const Stream stream = Encode(kind, channels, audio);
            const auto got = FloatsOf(
                Written(kind, stream, 20000), kind.mFormat == kAudioFormatAC3 ? "ac3" : "eac3",
                std::string("ffmpeg -v error -nostdin -drc_scale 0 ") + "-i % -f f32le -");
            EXPECT_EQ(got.size(), stream.mPackets.size() * 1536 * channels) << what;
            ExpectAudioBehind(256, got, audio, channels, what);
        }
}

}  // namespace
