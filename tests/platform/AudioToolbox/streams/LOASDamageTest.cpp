// LOAS: what damage to frames, elements and their lengths does.
#include "LOASMaker.h"
#include "platform/AudioToolbox/src/file/streams/LOASHeader.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace stream_testing;

namespace
{

TEST(LOASDamage, DamagedElementKeepsItsPlace)
{
    const auto payloads = Payloads(12);
    Bytes stream = Stream(payloads, 20);
    std::size_t fifth = 0;
    for (int i = 0; i < 4; ++i)
        fifth += 3 + ((stream[fifth + 1] & 0x1Fu) << 8 | stream[fifth + 2]);
    for (const UInt8 value : {0x00, 0x7F, 0xFF})  // a configuration, or a length beyond the end
    {
        Bytes damaged = stream;
        std::fill_n(damaged.begin() + static_cast<long>(fifth) + 3, 60, value);
        Opened file = Open(kLOAS, damaged);
        ASSERT_EQ(file.mStatus, noErr);
        const auto packets = PacketsOf(file);
        ASSERT_EQ(packets.size(), 12u) << int{value};
        EXPECT_TRUE(std::equal(packets.begin() + 5, packets.end(), payloads.begin() + 5));
    }
}

TEST(LOASDamage, StatesOfElementsThatReachBeyondTheirEndAreDamage)
{
    const Bytes whole =
        Bits().Put(0, 1).Put(MuxConfig(PlainConfig())).Put(Length(300)).Put(Noise(300, 3)).Take();
    audiotoolbox::streams::LOASElement element;
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        // A copy of its own, so that reading behind it shows.
        const Bytes cut(whole.begin(), whole.begin() + static_cast<long>(size));
        EXPECT_FALSE(audiotoolbox::streams::ParseLOASElement(cut, element, nullptr)) << size;
    }
    EXPECT_TRUE(audiotoolbox::streams::ParseLOASElement(whole, element, nullptr));
    EXPECT_EQ(element.mPayloadBytes, 300u);
}

TEST(LOASDamage, GarbageOfSyncWordsIsRefusedInTime)
{
    for (const Bytes& unit : {Bytes{0x56, 0xE0, 0x02, 0, 0}, Bytes{0x56, 0xFF, 0xFF},
                              Bytes{0x56, 0xE0, 0x02, 0xFF, 0xFF}, Bytes{0x56, 0xE0}})
    {
        Bytes bytes;
        while (bytes.size() < 400000)
            bytes.insert(bytes.end(), unit.begin(), unit.end());
        EXPECT_NE(Open(kLOAS, bytes).mStatus, noErr);
    }
}

TEST(LOASDamage, CutAnywhereDeliversItsWholePackets)
{
    const Bytes whole = LoadData("streams/44100-stereo.loas");
    Opened intact = Open(kLOAS, whole);
    const auto packets = PacketsOf(intact);
    std::size_t end = 0;
    std::size_t complete = 0;
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        Opened cut =
            Open(kLOAS, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        for (std::size_t next = end; next + 3 <= size;)
        {
            next = end + 3 + ((whole[end + 1] & 0x1Fu) << 8 | whole[end + 2]);
            if (next > size)
                break;
            end = next;
            ++complete;
        }
        if (cut.mStatus != noErr)
        {
            ASSERT_LE(complete, 1u) << size;
            continue;
        }
        const auto left = PacketsOf(cut);
        ASSERT_EQ(left.size(), complete) << size;
        ASSERT_TRUE(std::equal(left.begin(), left.end(), packets.begin())) << size;
    }
    EXPECT_EQ(complete + 1, packets.size());
}

TEST(LOASDamage, ChangedBytesNeverBreakTheReader)
{
    UInt32 state = 4711;
    const auto next = [&state]
    {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    for (const Bytes& whole : {LoadData("streams/44100-stereo.loas"), Stream(Payloads(30), 2)})
        for (int round = 0; round < 3000; ++round)
        {
            Bytes bytes = whole;
            for (UInt32 changes = 1 + next() % 12; changes > 0; --changes)
            {
                const std::size_t reach = next() % 2 == 0 ? bytes.size() : 32;
                bytes[next() % reach] = static_cast<UInt8>(next());
            }
            if (next() % 4 == 0)
                bytes.resize(next() % bytes.size());
            Opened file = Open(kLOAS, bytes);
            if (file.mStatus != noErr)
                continue;
            EXPECT_GT(file.Facts().mDataFormat.mSampleRate, 0.0);
            EXPECT_GT(file.Facts().mDataFormat.mChannelsPerFrame, 0u);
            std::size_t total = 0;
            for (const Bytes& packet : PacketsOf(file))
            {
                EXPECT_GT(packet.size(), 0u);
                EXPECT_LE(packet.size(), file.Facts().mPacketSizeUpperBound);
                total += packet.size();
            }
            ASSERT_LE(total, bytes.size()) << round;
        }
}

TEST(LOASDamage, DestroyedHeadsCostNoPacket)
{
    const Bytes whole = LoadData("streams/44100-stereo.loas");
    Opened intact = Open(kLOAS, whole);
    const auto packets = PacketsOf(intact);
    std::size_t place = 0;
    for (std::size_t i = 0; i + 2 < packets.size(); ++i)
    {
        for (std::size_t byte = 0; i > 1 && byte < 3; ++byte)
            for (const int flip : {0x01, 0x10, 0x80, 0xFF})
            {
                Bytes bytes = whole;
                bytes[place + byte] ^= static_cast<UInt8>(flip);
                Opened damaged = Open(kLOAS, bytes);
                ASSERT_EQ(damaged.mStatus, noErr);
                const auto left = PacketsOf(damaged);
                EXPECT_EQ(left, packets) << "packet " << i << ", byte " << byte << ", " << flip;
            }
        place += 3 + ((whole[place + 1] & 0x1Fu) << 8 | whole[place + 2]);
    }
}

}  // namespace
