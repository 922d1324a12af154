// Damaged frames of streams without a table of packets: what follows them stays where it is.
#include "Imported.h"

#include <AudioToolbox/AudioFile.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

using namespace testing_support;

namespace
{

struct Row
{
    const char* mFile;
    double mLeastQuality;  // decibels, of what follows the damage
};
// The decoders of AAC and AC-3 put in noise from a generator that goes on with each packet, so it
// differs behind a lost one. A shift by one packet would leave some 3 dB.
const Row kRows[] = {{"flac-16.flac", 200.0}, {"adts.aac", 30.0}, {"mp3-vbr.mp3", 60.0},
                     {"mp3-128.mp3", 60.0},   {"mp2.mp2", 60.0},  {"ac3.ac3", 30.0}};

std::string Content(const std::string& inPath)
{
    std::ifstream file(inPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Where each packet of a stream lies; the packets adjoin.
std::vector<std::size_t> PacketPlaces(const std::string& inPath)
{
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(inPath.data()), static_cast<CFIndex>(inPath.size()),
        false);
    AudioFileID file = nullptr;
    EXPECT_EQ(AudioFileOpenURL(url, kAudioFileReadPermission, 0, &file), noErr);
    SInt64 place = 0;
    UInt32 size = sizeof(place);
    EXPECT_EQ(AudioFileGetProperty(file, kAudioFilePropertyDataOffset, &size, &place), noErr);
    std::vector<std::size_t> places;
    std::array<UInt8, 65536> bytes;
    for (UInt32 count = 1; count > 0;)
    {
        UInt32 byteCount = bytes.size();
        AudioStreamPacketDescription description;
        const auto start = static_cast<SInt64>(places.size());
        EXPECT_EQ(
            AudioFileReadPacketData(file, 0, &byteCount, &description, start, &count, bytes.data()),
            noErr);
        if (count > 0)
            places.push_back(static_cast<std::size_t>(place));
        place += byteCount;
    }
    AudioFileClose(file);
    CFRelease(url);
    return places;
}

// The last quarter of the audio; the decoder has long forgotten the damage.
Audio Tail(const Audio& inAudio)
{
    Audio tail = {inAudio.mRate, {}};
    for (const std::vector<double>& channel : inAudio.mChannels)
        tail.mChannels.emplace_back(
            channel.begin() + static_cast<std::ptrdiff_t>(channel.size() * 3 / 4), channel.end());
    return tail;
}

class DamageTest : public testing::TestWithParam<Row>
{
};

TEST_P(DamageTest, DestroyedHeadersShiftNothingBehindThem)
{
    const std::string path = MadeFile(GetParam().mFile);
    const std::string content = Content(path);
    const Imported whole = Import(path);
    const std::vector<std::size_t> places = PacketPlaces(path);
    ASSERT_GE(places.size(), 10u);
    const std::string copy =
        testing::TempDir() + "/damaged-" + std::to_string(getpid()) + "-" + GetParam().mFile;
    for (const std::size_t packet : {places.size() / 4, places.size() / 3, places.size() / 2})
        for (std::size_t byte = 0; byte < 4; ++byte)
            for (const int flip : {0x08, 0x80, 0xFF})
            {
                std::string damaged = content;
                damaged[places[packet] + byte] ^= static_cast<char>(flip);
                std::ofstream(copy, std::ios::binary) << damaged;
                const Imported left = Import(copy);
                ASSERT_EQ(left.mAudio.FrameCount(), whole.mAudio.FrameCount())
                    << "packet " << packet << ", byte " << byte << ", " << flip;
                EXPECT_GE(SignalToDifference(Tail(whole.mAudio), Tail(left.mAudio)),
                          GetParam().mLeastQuality)
                    << "packet " << packet << ", byte " << byte << ", " << flip;
            }
    std::filesystem::remove(copy);
}

INSTANTIATE_TEST_SUITE_P(Streams, DamageTest, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& inInfo)
                         {
    std::string name = inInfo.param.mFile;
    for (char& c : name)
        c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
});

}  // namespace
