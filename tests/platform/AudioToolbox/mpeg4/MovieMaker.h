// MovieMaker: small files of the MPEG-4 family in memory, box by box.
//
// A made file is: type box, media data, head. So the media data begins at kDataOffset whatever the
// head holds.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_MPEG4_MOVIEMAKER_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_MPEG4_MOVIEMAKER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

namespace movie_maker
{

using Bytes = std::vector<UInt8>;

inline constexpr UInt32 kDataOffset = 16 + 8;

/// Big-endian.
inline Bytes Number(UInt64 inValue, unsigned inBytes)
{
    Bytes bytes(inBytes);
    for (unsigned index = 0; index < inBytes; ++index)
        bytes[index] = static_cast<UInt8>(inValue >> (8 * (inBytes - 1 - index)));
    return bytes;
}

inline Bytes U16(UInt64 inValue)
{
    return Number(inValue, 2);
}
inline Bytes U32(UInt64 inValue)
{
    return Number(inValue, 4);
}
inline Bytes U64(UInt64 inValue)
{
    return Number(inValue, 8);
}
inline Bytes Zeros(std::size_t inCount)
{
    return Bytes(inCount);
}
inline Bytes Text(std::string_view inText)
{
    return Bytes(inText.begin(), inText.end());
}

inline void Append(Bytes& ioBytes, const Bytes& inMore)
{
    ioBytes.insert(ioBytes.end(), inMore.begin(), inMore.end());
}

inline Bytes Join(std::initializer_list<Bytes> inParts)
{
    Bytes all;
    for (const Bytes& part : inParts)
        Append(all, part);
    return all;
}

inline Bytes Box(std::string_view inType, const Bytes& inBody)
{
    return Join({U32(8 + inBody.size()), Text(inType), inBody});
}

inline Bytes LongBox(std::string_view inType, const Bytes& inBody)
{
    return Join({U32(1), Text(inType), U64(16 + inBody.size()), inBody});
}

inline Bytes FullBox(std::string_view inType, UInt32 inVersionAndFlags, const Bytes& inBody)
{
    return Box(inType, Join({U32(inVersionAndFlags), inBody}));
}

/// The entry of a description, version 0. inBoxes stands behind the fields.
inline Bytes AudioEntry(std::string_view inType, UInt32 inChannels, UInt32 inBits, UInt32 inRate,
                        const Bytes& inBoxes)
{
    return Box(inType, Join({Zeros(6), U16(1), Zeros(8), U16(inChannels), U16(inBits), Zeros(4),
                             U32(inRate << 16), inBoxes}));
}

/// A descriptor box around a configuration of at most 100 bytes.
inline Bytes DescriptorBox(UInt8 inObjectType, const Bytes& inConfig)
{
    const auto part = [](UInt8 inTag, const Bytes& inBody) {
        return Join({Bytes{inTag, static_cast<UInt8>(inBody.size())}, inBody});
    };
    const Bytes information = inConfig.empty() ? Bytes() : part(5, inConfig);
    const Bytes decoder = part(4, Join({Bytes{inObjectType, 0x15}, Zeros(11), information}));
    return FullBox("esds", 0, part(3, Join({Zeros(3), decoder, part(6, {2})})));
}

inline Bytes AACEntry(const Bytes& inConfig = {0x12, 0x10})
{
    return AudioEntry("mp4a", 2, 16, 44100, DescriptorBox(0x40, inConfig));
}

struct Chunk
{
    UInt64 mOffset;  // in the file
    UInt32 mPackets;
};

struct TrackPlan
{
    UInt32 mID = 1;
    bool mIsEnabled = true;
    std::string_view mHandler = "soun";
    Bytes mEntry = AACEntry();
    UInt32 mTimescale = 44100;
    std::vector<std::pair<UInt32, UInt32>> mTimes;  // packets, ticks
    std::vector<UInt32> mSizes;
    Bytes mSizeBox;  // in place of mSizes
    std::vector<Chunk> mChunks;
    bool mHasWideOffsets = false;
    Bytes mEdits;  // an 'elst' box
    Bytes mDataReference = FullBox("url ", 1, {});
};

inline Bytes SizeBox(const std::vector<UInt32>& inSizes)
{
    Bytes body = Join({U32(0), U32(inSizes.size())});
    for (const UInt32 size : inSizes)
        Append(body, U32(size));
    return FullBox("stsz", 0, body);
}

inline Bytes ConstantSizeBox(UInt32 inSize, UInt32 inCount)
{
    return FullBox("stsz", 0, Join({U32(inSize), U32(inCount)}));
}

inline Bytes TimeBox(const std::vector<std::pair<UInt32, UInt32>>& inTimes)
{
    Bytes body = U32(inTimes.size());
    for (const auto& [packets, ticks] : inTimes)
        Append(body, Join({U32(packets), U32(ticks)}));
    return FullBox("stts", 0, body);
}

inline Bytes ChunkBoxes(const std::vector<Chunk>& inChunks, bool inIsWide)
{
    Bytes runs = U32(inChunks.size());
    Bytes offsets = U32(inChunks.size());
    for (std::size_t index = 0; index < inChunks.size(); ++index)
    {
        Append(runs, Join({U32(index + 1), U32(inChunks[index].mPackets), U32(1)}));
        Append(offsets, Number(inChunks[index].mOffset, inIsWide ? 8 : 4));
    }
    return Join({FullBox("stsc", 0, runs), FullBox(inIsWide ? "co64" : "stco", 0, offsets)});
}

inline Bytes TrackBox(const TrackPlan& inPlan)
{
    const Bytes sizes = inPlan.mSizeBox.empty() ? SizeBox(inPlan.mSizes) : inPlan.mSizeBox;
    const Bytes table =
        Box("stbl", Join({FullBox("stsd", 0, Join({U32(1), inPlan.mEntry})), TimeBox(inPlan.mTimes),
                          sizes, ChunkBoxes(inPlan.mChunks, inPlan.mHasWideOffsets)}));
    const Bytes references = Box("dinf", FullBox("dref", 0, Join({U32(1), inPlan.mDataReference})));
    const Bytes media =
        Box("mdia", Join({FullBox("mdhd", 0, Join({Zeros(8), U32(inPlan.mTimescale), Zeros(8)})),
                          FullBox("hdlr", 0, Join({Zeros(4), Text(inPlan.mHandler), Zeros(13)})),
                          Box("minf", Join({references, table}))}));
    const Bytes head =
        FullBox("tkhd", inPlan.mIsEnabled ? 7 : 0, Join({Zeros(8), U32(inPlan.mID), Zeros(68)}));
    const Bytes edits = inPlan.mEdits.empty() ? Bytes() : Box("edts", inPlan.mEdits);
    return Box("trak", Join({head, edits, media}));
}

inline Bytes MovieHeader(UInt32 inTimescale)
{
    return FullBox("mvhd", 0, Join({Zeros(8), U32(inTimescale), Zeros(84)}));
}

inline Bytes TypeBox(std::string_view inBrand = "M4A ")
{
    return Box("ftyp", Join({Text(inBrand), U32(0)}));
}

/// inMore  boxes behind the tracks, within the head
inline Bytes MakeFile(const std::vector<TrackPlan>& inTracks, const Bytes& inData,
                      const Bytes& inMore = {}, UInt32 inMovieTimescale = 1000)
{
    Bytes head = MovieHeader(inMovieTimescale);
    for (const TrackPlan& track : inTracks)
        Append(head, TrackBox(track));
    Append(head, inMore);
    return Join({TypeBox(), Box("mdat", inData), Box("moov", head)});
}

/// Bytes that tell where they stand.
inline Bytes Counting(std::size_t inCount)
{
    Bytes bytes(inCount);
    for (std::size_t index = 0; index < inCount; ++index)
        bytes[index] = static_cast<UInt8>(index * 7 + index / 256);
    return bytes;
}

/// An edit list of version 0: duration, media time.
inline Bytes EditBox(const std::vector<std::pair<UInt32, SInt32>>& inEdits)
{
    Bytes body = U32(inEdits.size());
    for (const auto& [duration, time] : inEdits)
        Append(body, Join({U32(duration), U32(static_cast<UInt32>(time)), U32(0x10000)}));
    return FullBox("elst", 0, body);
}

/// Four packets of 10, 20, 30 and 40 bytes in one chunk.
inline TrackPlan FourPackets()
{
    TrackPlan plan;
    plan.mTimes = {{4, 1024}};
    plan.mSizes = {10, 20, 30, 40};
    plan.mChunks = {{kDataOffset, 4}};
    return plan;
}

/// The item in which encoders store priming and length as text.
inline Bytes GaplessItem(std::string_view inText)
{
    const Bytes item = Box("----", Join({FullBox("mean", 0, Text("com.apple.iTunes")),
                                         FullBox("name", 0, Text("iTunSMPB")),
                                         Box("data", Join({U32(1), U32(0), Text(inText)}))}));
    return Box("udta", FullBox("meta", 0, Box("ilst", item)));
}

}  // namespace movie_maker

#endif
