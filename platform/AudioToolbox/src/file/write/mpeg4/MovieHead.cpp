#include "file/write/mpeg4/MovieHead.h"

#include "file/write/mpeg4/GaplessItem.h"
#include "file/write/mpeg4/SampleTables.h"

#include <limits>

namespace audiotoolbox::mpeg4writer
{
namespace
{

constexpr UInt32 Code(char inA, char inB, char inC, char inD)
{
    return CA_FOUR_CHAR_CODE(inA, inB, inC, inD);
}

struct Head
{
    const MovieFacts& mFacts;
    const SampleIndex& mIndex;
    SampleTables mTables;
    UInt32 mTimescale;  // of the movie and of its media: ticks are frames
};

constexpr UInt32 kTrack = 1;

bool IsWide(UInt64 inTicks)
{
    return inTicks > std::numeric_limits<UInt32>::max();
}

void PutMatrix(BoxBuilder& ioBoxes)
{
    for (const UInt32 field : {0x10000u, 0u, 0u, 0u, 0x10000u, 0u, 0u, 0u, 0x40000000u})
        ioBoxes.PutU32(field);
}

void PutMovieHeader(const Head& inHead, BoxBuilder& ioBoxes)
{
    const UInt64 duration = inHead.mFacts.mValid;
    const bool isWide = IsWide(duration);
    ioBoxes.BeginFull(Code('m', 'v', 'h', 'd'), isWide ? 1 : 0);
    ioBoxes.PutWide(isWide, 0);  // creation: the same audio makes the same file
    ioBoxes.PutWide(isWide, 0);
    ioBoxes.PutU32(inHead.mTimescale);
    ioBoxes.PutWide(isWide, duration);
    ioBoxes.PutU32(0x10000);  // speed
    ioBoxes.PutU16(0x100);    // volume
    ioBoxes.PutZeros(10);
    PutMatrix(ioBoxes);
    ioBoxes.PutZeros(24);
    ioBoxes.PutU32(kTrack + 1);  // for a track that may come
    ioBoxes.End();
}

void PutTrackHeader(const Head& inHead, BoxBuilder& ioBoxes)
{
    constexpr UInt32 kEnabledInMovieAndPreview = 7;
    const UInt64 duration = inHead.mFacts.mValid;
    const bool isWide = IsWide(duration);
    ioBoxes.BeginFull(Code('t', 'k', 'h', 'd'), isWide ? 1 : 0, kEnabledInMovieAndPreview);
    ioBoxes.PutWide(isWide, 0);
    ioBoxes.PutWide(isWide, 0);
    ioBoxes.PutU32(kTrack);
    ioBoxes.PutU32(0);
    ioBoxes.PutWide(isWide, duration);
    ioBoxes.PutZeros(8 + 2 + 2);
    ioBoxes.PutU16(0x100);
    ioBoxes.PutU16(0);
    PutMatrix(ioBoxes);
    ioBoxes.PutZeros(4 + 4);  // width and height
    ioBoxes.End();
}

// Which part of the media is the audio. A duration of 0 means up to the end, so an edit that shows
// nothing begins there.
void PutEdits(const Head& inHead, BoxBuilder& ioBoxes)
{
    if (inHead.mIndex.Count() == 0)
        return;
    const UInt64 valid = inHead.mFacts.mValid;
    const UInt64 start = valid > 0 ? inHead.mFacts.mPriming : inHead.mIndex.TotalFrames();
    const bool isWide = IsWide(valid) || start > std::numeric_limits<SInt32>::max();
    ioBoxes.Begin(Code('e', 'd', 't', 's'));
    ioBoxes.BeginFull(Code('e', 'l', 's', 't'), isWide ? 1 : 0);
    ioBoxes.PutU32(1);
    ioBoxes.PutWide(isWide, valid);
    ioBoxes.PutWide(isWide, start);
    ioBoxes.PutU32(0x10000);
    ioBoxes.End();
    ioBoxes.End();
}

void PutMediaHeader(const Head& inHead, BoxBuilder& ioBoxes)
{
    constexpr UInt16 kUndetermined = 0x55C4;
    const UInt64 duration = inHead.mIndex.TotalFrames();
    const bool isWide = IsWide(duration);
    ioBoxes.BeginFull(Code('m', 'd', 'h', 'd'), isWide ? 1 : 0);
    ioBoxes.PutWide(isWide, 0);
    ioBoxes.PutWide(isWide, 0);
    ioBoxes.PutU32(inHead.mTimescale);
    ioBoxes.PutWide(isWide, duration);
    ioBoxes.PutU16(kUndetermined);  // language
    ioBoxes.PutU16(0);
    ioBoxes.End();
}

void PutHandler(BoxBuilder& ioBoxes)
{
    ioBoxes.BeginFull(Code('h', 'd', 'l', 'r'), 0);
    ioBoxes.PutU32(0);
    ioBoxes.PutU32(Code('s', 'o', 'u', 'n'));
    ioBoxes.PutZeros(12);
    ioBoxes.PutU8(0);  // an empty name
    ioBoxes.End();
}

void PutDataInformation(BoxBuilder& ioBoxes)
{
    constexpr UInt32 kInThisFile = 1;
    ioBoxes.BeginFull(Code('s', 'm', 'h', 'd'), 0);
    ioBoxes.PutU32(0);
    ioBoxes.End();
    ioBoxes.Begin(Code('d', 'i', 'n', 'f'));
    ioBoxes.BeginFull(Code('d', 'r', 'e', 'f'), 0);
    ioBoxes.PutU32(1);
    ioBoxes.BeginFull(Code('u', 'r', 'l', ' '), 0, kInThisFile);
    ioBoxes.End();
    ioBoxes.End();
    ioBoxes.End();
}

void PutDescriptions(const Head& inHead, BoxBuilder& ioBoxes)
{
    ioBoxes.BeginFull(Code('s', 't', 's', 'd'), 0);
    ioBoxes.PutU32(1);
    PutSampleEntry(inHead.mFacts.mEntry, ioBoxes);
    ioBoxes.End();
}

void PutTimes(const Head& inHead, BoxBuilder& ioBoxes)
{
    const std::vector<DurationRun>& runs = inHead.mIndex.Durations();
    ioBoxes.BeginFull(Code('s', 't', 't', 's'), 0);
    ioBoxes.PutU32(static_cast<UInt32>(runs.size()));
    for (const DurationRun& run : runs)
    {
        ioBoxes.PutU32(run.mPackets);
        ioBoxes.PutU32(run.mFrames);
    }
    ioBoxes.End();
}

void PutChunkRun(UInt32 inFirstChunk, UInt32 inPackets, BoxBuilder& ioBoxes)
{
    ioBoxes.PutU32(inFirstChunk);
    ioBoxes.PutU32(inPackets);
    ioBoxes.PutU32(1);  // the description
}

void PutChunkRuns(const Head& inHead, BoxBuilder& ioBoxes)
{
    const UInt32 usual = inHead.mTables.mPacketsPerChunk;
    const UInt32 wholeChunks = inHead.mIndex.Count() / usual;
    const UInt32 rest = inHead.mIndex.Count() % usual;
    ioBoxes.BeginFull(Code('s', 't', 's', 'c'), 0);
    ioBoxes.PutU32((wholeChunks > 0 ? 1 : 0) + (rest > 0 ? 1 : 0));
    if (wholeChunks > 0)
        PutChunkRun(1, usual, ioBoxes);
    if (rest > 0)
        PutChunkRun(wholeChunks + 1, rest, ioBoxes);
    ioBoxes.End();
}

// Every packet's output is right only behind as many others: whoever seeks starts so much earlier.
void PutRollGroup(const Head& inHead, BoxBuilder& ioBoxes)
{
    constexpr UInt32 kRoll = Code('r', 'o', 'l', 'l');
    const UInt32 packets = RollPackets(inHead.mFacts.mEntry.mFormat);
    if (packets == 0 || inHead.mIndex.Count() == 0)
        return;
    ioBoxes.BeginFull(Code('s', 'g', 'p', 'd'), 1);
    ioBoxes.PutU32(kRoll);
    ioBoxes.PutU32(2);  // bytes of an entry
    ioBoxes.PutU32(1);
    ioBoxes.PutU16(static_cast<UInt16>(-static_cast<SInt32>(packets)));
    ioBoxes.End();
    ioBoxes.BeginFull(Code('s', 'b', 'g', 'p'), 0);
    ioBoxes.PutU32(kRoll);
    ioBoxes.PutU32(1);
    ioBoxes.PutU32(inHead.mIndex.Count());
    ioBoxes.PutU32(1);
    ioBoxes.End();
}

// From 'mdia' down to 'stbl', whose last tables stand behind these bytes.
void PutMedia(const Head& inHead, BoxBuilder& ioBoxes)
{
    const std::size_t behind = inHead.mTables.ByteCount();
    ioBoxes.Begin(Code('m', 'd', 'i', 'a'));
    PutMediaHeader(inHead, ioBoxes);
    PutHandler(ioBoxes);
    ioBoxes.Begin(Code('m', 'i', 'n', 'f'));
    PutDataInformation(ioBoxes);
    ioBoxes.Begin(Code('s', 't', 'b', 'l'));
    PutDescriptions(inHead, ioBoxes);
    PutTimes(inHead, ioBoxes);
    PutChunkRuns(inHead, ioBoxes);
    PutRollGroup(inHead, ioBoxes);
    for (int box = 0; box < 3; ++box)
        ioBoxes.End(behind);
}

BoxBuilder MakeHead(const Head& inHead, std::size_t inBytesBehind)
{
    BoxBuilder boxes;
    boxes.Begin(Code('m', 'o', 'o', 'v'));
    PutMovieHeader(inHead, boxes);
    boxes.Begin(Code('t', 'r', 'a', 'k'));
    PutTrackHeader(inHead, boxes);
    PutEdits(inHead, boxes);
    PutMedia(inHead, boxes);
    boxes.End(inHead.mTables.ByteCount());
    boxes.End(inHead.mTables.ByteCount() + inBytesBehind);
    return boxes;
}

bool HasGaplessItem(const MovieFacts& inFacts)
{
    const bool isAudioType =
        inFacts.mType == kAudioFileM4AType || inFacts.mType == kAudioFileM4BType;
    return isAudioType && inFacts.mEntry.mFormat.mFormatID == kAudioFormatMPEG4AAC &&
           inFacts.mValid > 0;
}

}  // namespace

OSStatus AppendMovie(const MovieFacts& inFacts, const SampleIndex& inIndex, ByteSink& ioSink)
{
    const AudioStreamBasicDescription& format = inFacts.mEntry.mFormat;
    const UInt32 rate = static_cast<UInt32>(format.mSampleRate);
    const SampleTables tables = {inIndex, inFacts.mDataStart,
                                 PacketsPerChunk(rate, format.mFramesPerPacket)};
    BoxBuilder tail;
    if (HasGaplessItem(inFacts))
        PutGaplessItem({inFacts.mPriming, inIndex.TotalFrames(), inFacts.mValid}, tail);

    const Head head = {inFacts, inIndex, tables, rate};
    OSStatus status = ioSink.Append(MakeHead(head, tail.Bytes().size()).Bytes());
    if (status == noErr)
        status = tables.Append(ioSink);
    if (status == noErr && !tail.Bytes().empty())
        status = ioSink.Append(tail.Bytes());
    return status;
}

}  // namespace audiotoolbox::mpeg4writer
