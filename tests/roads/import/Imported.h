// Imported: a whole file as the built plug-in delivers it, and as libsndfile reads it.
#ifndef TESTS_ROADS_IMPORT_IMPORTED_H
#define TESTS_ROADS_IMPORT_IMPORTED_H

#include "host/ReadSession.h"

#include <cstddef>
#include <string>
#include <vector>

namespace testing_support
{

/// The bundle of this build tree, loaded once.
const host::PlugIn& BuiltPlugIn();

/// A file of the made ones (tests/support/make-audio).
std::string MadeFile(const std::string& inName);

/// A file of tests/data.
std::string StoredFile(const std::string& inName);

/// Samples are doubles with full scale 1, [channel][frame]; exact for every sample type.
struct Audio
{
    int mRate = 0;
    std::vector<std::vector<double>> mChannels;

    std::size_t FrameCount() const { return mChannels.empty() ? 0 : mChannels[0].size(); }
};

struct Imported
{
    host::AudioInfo mInfo;
    Audio mAudio;
};

/// Through selectors 5, 6, 7 and 12; throws host::Failure. inKeepPadding as in tarvo decode --full.
Imported Import(const std::string& inPath, bool inKeepPadding = false);

/// By libsndfile. An empty Audio when it cannot.
Audio ReadBySndfile(const std::string& inPath);

/// Frames and channels of the same numbers and every sample equal; a message of the first
/// difference, empty when there is none.
std::string Difference(const Audio& inLeft, const Audio& inRight);

/// Signal to difference in decibels over the frames that both have, all channels together, with
/// inRight read inDelay frames later.
double SignalToDifference(const Audio& inLeft, const Audio& inRight, std::ptrdiff_t inDelay = 0);

/// The delay of inRight behind inLeft at which both agree best, within +-inMost frames.
std::ptrdiff_t BestDelay(const Audio& inLeft, const Audio& inRight, std::ptrdiff_t inMost);

}  // namespace testing_support

#endif
