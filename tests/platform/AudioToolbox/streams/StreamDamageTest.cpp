// Damaged streams: cut at every byte, bytes changed, bytes put between.
#include "StreamMakers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

using namespace stream_testing;

namespace
{

struct Row
{
    const StreamKind& mKind;
    const char* mName;
};
const Row kRows[] = {
    {kMPEG, "streams/untagged-44100-stereo.mp3"},
    {kMPEG, "streams/info-44100-stereo.mp3"},
    {kMPEG, "streams/xing-44100-mono.mp3"},
    {kMPEG, "streams/48000-stereo.mp2"},
    {kADTS, "streams/44100-stereo.aac"},
    {kADTS, "streams/48000-program-config.aac"},
    {kAC3, "streams/48000-51.ac3"},
    {kEAC3, "streams/48000-stereo.eac3"},
};

// No frame's checksum ends in a zero byte: the frame without it would have a right checksum too.
Bytes SmallFLAC()
{
    FLACShape shape;
    shape.mAllFrames = 12 * 4096;
    Bytes file = FLACHead(shape);
    for (UInt32 i = 0; i < 12; ++i)
    {
        const Bytes frame = FLACFrame(shape, i, 4096, Noise(200 + 13 * i, i + 100));
        file.insert(file.end(), frame.begin(), frame.end());
    }
    return file;
}

Bytes SmallAMR()
{
    Bytes file = {'#', '!', 'A', 'M', 'R', '\n'};
    for (UInt32 i = 0; i < 60; ++i)
    {
        const Bytes frame = i % 7 == 0 ? AMRFrame(8, 6) : AMRFrame(7, 32);
        file.insert(file.end(), frame.begin(), frame.end());
    }
    return file;
}

struct Sample
{
    std::string mName;
    const StreamKind& mKind;
    Bytes mBytes;
};

std::vector<Sample> Samples()
{
    std::vector<Sample> samples;
    for (const Row& row : kRows)
        samples.push_back({row.mName, row.mKind, LoadData(row.mName)});
    samples.push_back({"made.flac", kFLAC, SmallFLAC()});
    samples.push_back({"made.amr", kAMR, SmallAMR()});
    return samples;
}

// What holds for any file that opens, and everything that reading it delivers.
void ExpectOrderly(Opened& inFile, std::size_t inFileBytes)
{
    const audiotoolbox::FileFacts& facts = inFile.Facts();
    EXPECT_GT(facts.mDataFormat.mSampleRate, 0.0);
    EXPECT_GT(facts.mDataFormat.mChannelsPerFrame, 0u);
    EXPECT_GE(facts.mFormats.size(), 1u);
    EXPECT_GE(facts.mEstimatedDuration, 0.0);
    EXPECT_LE(facts.mDataOffset + facts.mDataByteCount, static_cast<SInt64>(inFileBytes));
    std::size_t total = 0;
    for (const Packet& packet : ReadAll(*inFile.mReader))
    {
        EXPECT_GT(packet.mBytes.size(), 0u);
        EXPECT_LE(packet.mBytes.size(), facts.mPacketSizeUpperBound);
        total += packet.mBytes.size();
    }
    EXPECT_LE(total, inFileBytes);
}

bool IsPrefix(const std::vector<Packet>& inShort, const std::vector<Packet>& inLong)
{
    return inShort.size() <= inLong.size() &&
           std::equal(inShort.begin(), inShort.end(), inLong.begin());
}

TEST(StreamDamage, FileCutAnywhereDeliversItsWholePackets)
{
    for (const Sample& sample : Samples())
    {
        Opened whole = Open(sample.mKind, sample.mBytes);
        ASSERT_EQ(whole.mStatus, noErr) << sample.mName;
        const std::vector<Packet> packets = ReadAll(*whole.mReader);
        SInt64 end = whole.Facts().mDataOffset;
        std::size_t wholePackets = 0;
        for (std::size_t size = 0; size < sample.mBytes.size(); ++size)
        {
            while (wholePackets < packets.size() &&
                   end + static_cast<SInt64>(packets[wholePackets].mBytes.size()) <=
                       static_cast<SInt64>(size))
                end += static_cast<SInt64>(packets[wholePackets++].mBytes.size());
            Opened cut = Open(sample.mKind, Bytes(sample.mBytes.begin(),
                                                  sample.mBytes.begin() + static_cast<long>(size)));
            if (cut.mStatus != noErr)
            {
                // Only a file that is cut within its first packets may be refused.
                ASSERT_LE(wholePackets, 1u) << sample.mName << " cut to " << size;
                continue;
            }
            const std::vector<Packet> left = ReadAll(*cut.mReader);
            ASSERT_TRUE(IsPrefix(left, packets)) << sample.mName << " cut to " << size;
            ASSERT_EQ(left.size(), wholePackets) << sample.mName << " cut to " << size;
        }
    }
}

TEST(StreamDamage, ChangedBytesNeverBreakTheReader)
{
    UInt32 state = 12345;
    const auto next = [&state]
    {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    for (const Sample& sample : Samples())
        for (int round = 0; round < 800; ++round)
        {
            Bytes bytes = sample.mBytes;
            for (UInt32 changes = 1 + next() % 12; changes > 0; --changes)
            {
                // Half of the changes go where the headers are.
                const std::size_t reach = next() % 2 == 0 ? bytes.size() : 64;
                bytes[next() % std::min(reach, bytes.size())] = static_cast<UInt8>(next());
            }
            if (next() % 4 == 0)
                bytes.resize(next() % bytes.size());
            Opened file = Open(sample.mKind, bytes);
            if (file.mStatus == noErr)
                ExpectOrderly(file, bytes.size());
            ASSERT_FALSE(HasFailure()) << sample.mName << " round " << round;
        }
}

// Frames that are constant in size, so that noise between them is known for what it is.
bool HasOneSize(const std::vector<Packet>& inPackets)
{
    const std::size_t size = inPackets[0].mBytes.size();
    return std::all_of(inPackets.begin(), inPackets.end(),
                       [size](const Packet& inPacket)
                       { return inPacket.mBytes.size() - size + 1 <= 2; });
}

bool IsWithin(const std::vector<Packet>& inSome, const std::vector<Packet>& inAll)
{
    auto place = inAll.begin();
    for (const Packet& packet : inSome)
    {
        const auto begins = [&packet](const Packet& inOther)
        {
            return inOther.mBytes.size() >= packet.mBytes.size() &&
                   std::equal(packet.mBytes.begin(), packet.mBytes.end(), inOther.mBytes.begin());
        };
        place = std::find_if(place, inAll.end(), begins);
        if (place == inAll.end())
            return false;
        ++place;
    }
    return true;
}

// 37, 137, 237 ... bytes of noise behind every fifth frame.
TEST(StreamDamage, NoiseBetweenFramesCostsNoFrame)
{
    for (const Sample& sample : Samples())
    {
        if (&sample.mKind == &kAMR || &sample.mKind == &kFLAC)
            continue;  // AMR has no sync word, and FLAC's frames reach to the next header
        Opened whole = Open(sample.mKind, sample.mBytes);
        const std::vector<Packet> packets = ReadAll(*whole.mReader);
        Bytes bytes(sample.mBytes.begin(),
                    sample.mBytes.begin() + static_cast<long>(whole.Facts().mDataOffset));
        for (std::size_t i = 0; i < packets.size(); ++i)
        {
            bytes.insert(bytes.end(), packets[i].mBytes.begin(), packets[i].mBytes.end());
            if (i % 5 == 3)  // each run of frames behind it confirms the next
            {
                const Bytes noise = NoiseWithoutSync(17 + 40 * i, static_cast<UInt32>(i));
                bytes.insert(bytes.end(), noise.begin(), noise.end());
            }
        }
        Opened damaged = Open(sample.mKind, bytes);
        ASSERT_EQ(damaged.mStatus, noErr) << sample.mName;
        const std::vector<Packet> left = ReadAll(*damaged.mReader);
        // Among frames of varying size noise may as well be a frame.
        if (HasOneSize(packets))
            EXPECT_EQ(left, packets) << sample.mName;
        else
            EXPECT_TRUE(IsWithin(packets, left)) << sample.mName;
    }
}

// Whatever byte of a frame's header is destroyed: the frames behind it stay where they are.
TEST(StreamDamage, DestroyedHeaderCostsNoFrameItsPlace)
{
    for (const Sample& sample : Samples())
    {
        if (&sample.mKind == &kAMR)
            continue;
        Opened whole = Open(sample.mKind, sample.mBytes);
        const std::vector<Packet> packets = ReadAll(*whole.mReader);
        SInt64 place = whole.Facts().mDataOffset;
        for (std::size_t i = 0; i + 2 < packets.size(); ++i)
        {
            // What stands behind the sync word of E-AC-3 says whether a frame begins a packet at
            // all.
            const int bytesOfHeader = &sample.mKind == &kEAC3 ? 2 : 4;
            for (int byte = 0; i > 1 && byte < bytesOfHeader; ++byte)
                for (const int flip : {0x01, 0x10, 0x80, 0xFF})
                {
                    Bytes bytes = sample.mBytes;
                    bytes[static_cast<std::size_t>(place) + byte] ^= static_cast<UInt8>(flip);
                    Opened damaged = Open(sample.mKind, bytes);
                    ASSERT_EQ(damaged.mStatus, noErr) << sample.mName;
                    const std::vector<Packet> left = ReadAll(*damaged.mReader);
                    EXPECT_EQ(left.size(), packets.size())
                        << sample.mName << ", packet " << i << ", byte " << byte << ", " << flip;
                }
            place += static_cast<SInt64>(packets[i].mBytes.size());
        }
    }
}

TEST(StreamDamage, LostBytesCostTheFrameThatTheyTouchAlone)
{
    for (const Sample& sample : Samples())
    {
        if (&sample.mKind == &kAMR || &sample.mKind == &kFLAC)
            continue;
        Opened whole = Open(sample.mKind, sample.mBytes);
        const std::vector<Packet> packets = ReadAll(*whole.mReader);
        // Bytes are missing out of the middle of the fifth packet.
        SInt64 middle = whole.Facts().mDataOffset;
        for (std::size_t i = 0; i < 4; ++i)
            middle += static_cast<SInt64>(packets[i].mBytes.size());
        middle += static_cast<SInt64>(packets[4].mBytes.size() / 2);
        Bytes bytes = sample.mBytes;
        bytes.erase(bytes.begin() + static_cast<long>(middle),
                    bytes.begin() + static_cast<long>(middle) + 30);
        Opened damaged = Open(sample.mKind, bytes);
        ASSERT_EQ(damaged.mStatus, noErr) << sample.mName;
        const std::vector<Packet> left = ReadAll(*damaged.mReader);
        // The fifth states more bytes than it has, which costs the sixth nothing.
        ASSERT_EQ(left.size(), packets.size()) << sample.mName;
        EXPECT_EQ(left[4].mBytes.size(), packets[4].mBytes.size() - 30) << sample.mName;
        EXPECT_TRUE(std::equal(left.begin(), left.begin() + 4, packets.begin())) << sample.mName;
        EXPECT_TRUE(std::equal(left.begin() + 5, left.end(), packets.begin() + 5)) << sample.mName;
    }
}

TEST(StreamDamage, OverwrittenFramesOfAConstantRateKeepTheirPlaces)
{
    for (const Row& row :
         {Row{kMPEG, "streams/untagged-44100-stereo.mp3"}, Row{kMPEG, "streams/48000-stereo.mp2"},
          Row{kAC3, "streams/48000-51.ac3"}, Row{kEAC3, "streams/48000-stereo.eac3"}})
    {
        const Bytes whole = LoadData(row.mName);
        Opened intact = Open(row.mKind, whole);
        const std::vector<Packet> packets = ReadAll(*intact.mReader);
        SInt64 third = intact.Facts().mDataOffset;
        for (std::size_t i = 0; i < 3; ++i)
            third += static_cast<SInt64>(packets[i].mBytes.size());
        for (const std::size_t lost : {1u, 2u, 3u})
        {
            Bytes bytes = whole;
            auto place = bytes.begin() + static_cast<long>(third);
            for (std::size_t i = 3; i < 3 + lost; ++i)
                place = std::fill_n(place, packets[i].mBytes.size(), UInt8{0x55});
            Opened damaged = Open(row.mKind, bytes);
            ASSERT_EQ(damaged.mStatus, noErr) << row.mName;
            const std::vector<Packet> left = ReadAll(*damaged.mReader);
            ASSERT_EQ(left.size(), packets.size()) << row.mName << ", lost: " << lost;
            const auto behind = static_cast<std::ptrdiff_t>(3 + lost);
            EXPECT_TRUE(std::equal(left.begin() + behind, left.end(), packets.begin() + behind))
                << row.mName << ", lost: " << lost;
            ExpectOrderly(damaged, bytes.size());
        }
    }
}

TEST(StreamDamage, FilesOfOneByteValueAreRefusedQuickly)
{
    for (const StreamKind& kind : {kMPEG, kADTS, kAC3, kAMR, kFLAC})
        for (const int value : {0x00, 0x0B, 0x77, 0xFF})
            EXPECT_NE(Open(kind, Bytes(300000, static_cast<UInt8>(value))).mStatus, noErr);
}

TEST(StreamDamage, HeadersWithoutAnyOrderTakeTimeInProportion)
{
    // Valid FLAC headers, a few bytes apart, whose numbers and checksums never fit.
    FLACShape shape;
    shape.mLargestBlock = 65535;
    shape.mChannels = 8;
    shape.mBits = 32;
    shape.mSmallestBlock = 16;
    Bytes bytes = FLACHead(shape);
    for (UInt32 i = 0; bytes.size() < 1500000; ++i)
    {
        const Bytes frame = FLACFrame(shape, (i * 7919u) % 5000, 65535, {});
        bytes.insert(bytes.end(), frame.begin(), frame.end() - 2);
    }
    const auto start = std::chrono::steady_clock::now();
    Opened file = Open(kFLAC, bytes);
    ASSERT_EQ(file.mStatus, noErr);
    (void)ReadAll(*file.mReader);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
