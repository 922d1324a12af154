// Movie: what the head of an MPEG-4 file ('moov') tells, before any table is read.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_MOVIE_H
#define AUDIOTOOLBOX_FILE_MPEG4_MOVIE_H

#include "file/mpeg4/BoxCursor.h"

#include <optional>
#include <span>
#include <vector>

namespace audiotoolbox::mpeg4
{

/// A track's edit list: the part of its media that is played.
struct Edits
{
    UInt32 mCount = 0;      // edits that show media; empty ones do not count
    SInt64 mMediaTime = 0;  // of the first, in the media's timescale
    UInt64 mDuration = 0;   // of all, in the movie's timescale; 0: up to the end
};

/// The bodies of a track's tables; empty where the box is missing.
struct SampleTables
{
    ByteRange mDescriptions;  // stsd
    ByteRange mTimes;         // stts
    ByteRange mSizes;         // stsz
    ByteRange mCompactSizes;  // stz2
    ByteRange mChunkRuns;     // stsc
    ByteRange mOffsets32;     // stco
    ByteRange mOffsets64;     // co64
};

struct Track
{
    UInt32 mID = 0;
    bool mIsEnabled = false;
    bool mIsAudio = false;
    UInt32 mTimescale = 0;  // ticks a second
    Edits mEdits;
    ByteRange mDataReferences;  // dref
    SampleTables mTables;
};

/// What holds for a track's packets in fragments that do not say (trex).
struct FragmentDefaults
{
    UInt32 mTrackID = 0;
    UInt32 mDescription = 1;
    UInt32 mDuration = 0;
    UInt32 mSize = 0;
};

/// The text in which some encoders tell priming and length (iTunSMPB), in frames.
struct GaplessText
{
    UInt32 mPriming = 0;
    UInt32 mRemainder = 0;
    UInt64 mValid = 0;
};

struct Movie
{
    UInt32 mTimescale = 0;  // ticks a second
    bool mHasFragments = false;
    std::vector<Track> mTracks;
    std::vector<FragmentDefaults> mFragmentDefaults;
    std::optional<GaplessText> mGapless;
    SInt64 mEnd = 0;  // where in the file the head ends
};

/// Finds and reads the head, wherever it stands. noErr, 'typ?' when the file does not begin as one
/// of this family, 'dta?' when the head is missing or unreadable, or a failing read's status.
OSStatus ReadMovie(ByteWindow& ioWindow, Movie& outMovie);

/// Reads words of hexadecimal digits: 0, priming, remainder, valid frames, ...
std::optional<GaplessText> ParseGaplessText(std::span<const UInt8> inText);

}  // namespace audiotoolbox::mpeg4

#endif
