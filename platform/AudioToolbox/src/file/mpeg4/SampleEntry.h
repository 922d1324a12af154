// SampleEntry: what a track's description says of its audio, before any codec's own record is
// understood.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_SAMPLEENTRY_H
#define AUDIOTOOLBOX_FILE_MPEG4_SAMPLEENTRY_H

#include "file/mpeg4/BoxCursor.h"

#include <vector>

namespace audiotoolbox::mpeg4
{

struct SampleEntry
{
    UInt32 mType = 0;
    UInt32 mDataReference = 0;  // counted from 1
    UInt32 mChannels = 0;
    UInt32 mBits = 0;        // of one sample of one channel
    double mRate = 0.0;      // Hz, 0 unknown
    UInt32 mPCMFlags = 0;    // of a QuickTime version 2 entry, as format flags
    UInt32 mFrameBytes = 0;  // of a QuickTime version 2 entry
    bool mIsLittleEndian = false;
    std::vector<Box> mBoxes;  // of the entry, and of a 'wave' box in it

    /// The bytes of the first box of this type, empty when there is none.
    std::vector<UInt8> BytesOf(ByteWindow& ioWindow, UInt32 inType) const;
};

/// Reads the first entry of the track's descriptions ('stsd'). False when it is damaged.
bool ReadSampleEntry(ByteWindow& ioWindow, ByteRange inDescriptions, SampleEntry& outEntry);

/// True when the data that a description refers to stands in this very file.
bool IsSelfContained(ByteWindow& ioWindow, ByteRange inDataReferences, UInt32 inReference);

}  // namespace audiotoolbox::mpeg4

#endif
