// Opening a file of the MPEG-4 family on its audio: the first enabled track that can be read.
#include "file/FactArithmetic.h"
#include "file/mpeg4/Codecs.h"
#include "file/mpeg4/Fragments.h"
#include "file/mpeg4/FrameHeaders.h"
#include "file/mpeg4/PacketTable.h"
#include "file/mpeg4/SampleTableReader.h"
#include "file/mpeg4/TrackReader.h"

#include <algorithm>
#include <new>
#include <utility>

namespace audiotoolbox::mpeg4
{
namespace
{
constexpr OSStatus kDamaged = kAudioFileInvalidFileError;

// One track on its way to becoming a reader.
struct TrackOpening
{
    ByteWindow& mWindow;
    const Movie& mMovie;
    const Track& mTrack;
    SampleEntry mEntry;
    CodecNotes mNotes;
    FileFacts mFacts;
    PacketIndex mIndex;
    PacketTimes mTimes;

    AudioStreamBasicDescription& Format() { return mFacts.mDataFormat; }
};

OSStatus Describe(TrackOpening& ioOpening)
{
    const SampleTables& tables = ioOpening.mTrack.mTables;
    SampleEntry& entry = ioOpening.mEntry;
    if (!ReadSampleEntry(ioOpening.mWindow, tables.mDescriptions, entry))
        return kDamaged;
    if (!IsSelfContained(ioOpening.mWindow, ioOpening.mTrack.mDataReferences, entry.mDataReference))
        return kDamaged;
    if (!IsSaneRate(entry.mRate))
        entry.mRate = ioOpening.mTrack.mTimescale;  // rates above 65535 Hz do not fit the entry
    return DescribeCodec(ioOpening.mWindow, entry, ioOpening.mFacts, ioOpening.mNotes);
}

OSStatus ReadTables(TrackOpening& ioOpening)
{
    const AudioStreamBasicDescription& format = ioOpening.Format();
    const SampleTables& tables = ioOpening.mTrack.mTables;
    const UInt32 frameBytes = format.mFramesPerPacket == 1 ? format.mBytesPerPacket : 0;
    if (!ReadSampleSizesAndPlaces(ioOpening.mWindow, tables, frameBytes, ioOpening.mIndex) ||
        !ReadPacketTimes(ioOpening.mWindow, tables.mTimes, ioOpening.mTimes))
        return kDamaged;
    if (ioOpening.mMovie.mHasFragments)
        ReadFragments(ioOpening.mWindow, ioOpening.mMovie, ioOpening.mTrack.mID, ioOpening.mIndex,
                      ioOpening.mTimes);
    ioOpening.mIndex.Finish();
    return noErr;
}

std::vector<UInt8> FirstPacketBytes(TrackOpening& ioOpening)
{
    if (ioOpening.mIndex.Count() == 0)
        return {};
    PacketIndex::Cursor cursor(ioOpening.mIndex);
    cursor.Seek(0);
    const SInt64 begin = cursor.Offset();
    return ReadBody(ioOpening.mWindow, {begin, begin + SInt64{ioOpening.mIndex.SizeOf(0)}},
                    kFrameHeaderBytes);
}

// The frames of a packet as the durations tell, 0 where they differ.
UInt32 UniformFrames(TrackOpening& ioOpening)
{
    if (!ioOpening.mTimes.IsUniform())
        return 0;
    return static_cast<UInt32>(FramesOfTicks(ioOpening.mTimes.First(), ioOpening.mTrack.mTimescale,
                                             ioOpening.Format().mSampleRate));
}

void SettleMPEGAudio(TrackOpening& ioOpening)
{
    constexpr AudioFormatID kLayers[] = {kAudioFormatMPEGLayer1, kAudioFormatMPEGLayer2,
                                         kAudioFormatMPEGLayer3};
    AudioStreamBasicDescription& format = ioOpening.Format();
    MPEGAudioHeader header;
    if (!ParseMPEGAudioHeader(FirstPacketBytes(ioOpening), header))
    {
        format.mFramesPerPacket = format.mSampleRate < 32000.0 ? 576 : 1152;
        return;
    }
    format = DescribeBlocks(kLayers[header.mLayer - 1], header.mRate, header.mChannels, 0,
                            header.mFrames);
}

// Packets of one length throughout have it in their durations as well as in their first byte.
void SettleOpus(TrackOpening& ioOpening)
{
    constexpr UInt32 kUsual = 960;
    AudioStreamBasicDescription& format = ioOpening.Format();
    const UInt32 frames = FramesOfOpusPacket(FirstPacketBytes(ioOpening));
    if (ioOpening.mIndex.Count() == 0)
        format.mFramesPerPacket = kUsual;
    else if (ioOpening.mIndex.Count() == 1 || UniformFrames(ioOpening) == frames)
        format.mFramesPerPacket = frames;
}

void SettleEnhancedAC3(TrackOpening& ioOpening)
{
    const UInt32 frames = UniformFrames(ioOpening);
    if (frames == 256 || frames == 512 || frames == 768)
        ioOpening.Format().mFramesPerPacket = frames;
}

// A packet may hold several of the codec's frames.
void SettleAMR(TrackOpening& ioOpening)
{
    constexpr UInt32 kMostFrames = 15;
    const UInt32 one = ioOpening.Format().mFramesPerPacket;
    const UInt32 frames = UniformFrames(ioOpening);
    if (frames > 0 && frames % one == 0 && frames / one <= kMostFrames)
        ioOpening.Format().mFramesPerPacket = frames;
}

// What the description left to the packets.
void SettleByPackets(TrackOpening& ioOpening)
{
    switch (ioOpening.Format().mFormatID)
    {
        case kAudioFormatMPEGLayer3:
            return SettleMPEGAudio(ioOpening);
        case kAudioFormatOpus:
            return SettleOpus(ioOpening);
        case kAudioFormatEnhancedAC3:
            return SettleEnhancedAC3(ioOpening);
        case kAudioFormatAMR:
        case kAudioFormatAMR_WB:
            return SettleAMR(ioOpening);
        default:
            return;
    }
}

void FillTiming(TrackOpening& ioOpening)
{
    TimingSources sources;
    sources.mMovieTimescale = ioOpening.mMovie.mTimescale;
    sources.mMediaTimescale = ioOpening.mTrack.mTimescale;
    sources.mEdits = ioOpening.mTrack.mEdits;
    sources.mTimes = ioOpening.mTimes;
    sources.mGapless = ioOpening.mMovie.mGapless;
    sources.mPreSkip = ioOpening.mNotes.mPreSkip;
    sources.mPacketCount = ioOpening.mIndex.Count();
    ioOpening.mFacts.mPacketTable = MakeTable(ioOpening.Format(), sources);
}

void FillSizes(TrackOpening& ioOpening)
{
    FileFacts& facts = ioOpening.mFacts;
    const PacketIndex& index = ioOpening.mIndex;
    PacketIndex::Cursor cursor(index);
    cursor.Seek(0);
    facts.mDataOffset = cursor.Offset();
    facts.mDataByteCount = index.TotalBytes();
    facts.mPacketCount = index.Count();
    // Without a packet any bound is right, but 0 would say that it is unknown.
    facts.mPacketSizeUpperBound = std::max(index.LargestSize(), 1u);
}

OSStatus Open(TrackOpening& ioOpening)
{
    OSStatus status = Describe(ioOpening);
    if (status == noErr)
        status = ReadTables(ioOpening);
    if (status != noErr)
        return status;
    SettleByPackets(ioOpening);
    ApplyChannelBox(ioOpening.mWindow, ioOpening.mEntry, ioOpening.mFacts);
    const AudioStreamBasicDescription& format = ioOpening.Format();
    if (!IsSaneRate(format.mSampleRate) || !IsSaneChannelCount(format.mChannelsPerFrame))
        return kDamaged;
    FillSizes(ioOpening);
    FillTiming(ioOpening);
    CompleteFacts(ioOpening.mFacts);
    return noErr;
}

// The tracks that hold audio, those that are meant to be played first.
std::vector<const Track*> AudioTracks(const Movie& inMovie)
{
    std::vector<const Track*> tracks;
    for (const bool isEnabled : {true, false})
        for (const Track& track : inMovie.mTracks)
            if (track.mIsAudio && track.mIsEnabled == isEnabled)
                tracks.push_back(&track);
    return tracks;
}

OSStatus OpenFirstTrack(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    ByteWindow window(*ioSource);
    Movie movie;
    if (const OSStatus status = ReadMovie(window, movie); status != noErr)
        return status;
    OSStatus first = movie.mTracks.empty() ? kDamaged : kAudioFileUnsupportedDataFormatError;
    bool isFirst = true;
    for (const Track* track : AudioTracks(movie))
    {
        TrackOpening opening = {window, movie, *track, {}, {}, {}, PacketIndex(window.FileSize()),
                                {}};
        const OSStatus status = Open(opening);
        if (window.Status() != noErr)
            return window.Status();
        if (status == noErr)
        {
            opening.mFacts.mFileType = inType;
            outReader = std::make_unique<TrackReader>(
                std::move(ioSource), std::move(opening.mFacts), std::move(opening.mIndex));
            return noErr;
        }
        if (std::exchange(isFirst, false))
            first = status;
    }
    return first;
}

}  // namespace
}  // namespace audiotoolbox::mpeg4

namespace audiotoolbox
{

OSStatus OpenMPEG4(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    try
    {
        return mpeg4::OpenFirstTrack(inType, ioSource, outReader);
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}

}  // namespace audiotoolbox
