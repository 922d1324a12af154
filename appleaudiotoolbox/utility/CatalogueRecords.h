// CatalogueRecords: what the format catalogue is made of.
//
// Plain values. File type and format IDs are four-character codes, and maps are ordered by the
// number. Lists keep the platform's order. Bit rates are bits per second.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_CATALOGUERECORDS_H
#define APPLEAUDIOTOOLBOX_UTILITY_CATALOGUERECORDS_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"
#include "kelpcore/Strings.h"

#include <map>
#include <set>
#include <vector>

namespace appleaudiotoolbox
{

/// Bit rates on offer. Minimum and maximum are equal in a single rate.
using ATBitrateList = std::vector<AudioValueRange>;

/// One variant of a data format: a stream description that a file type can hold, and what the
/// encoder offers for it.
struct ATFormatType
{
    UTF16String mName;
    /// Its mChannelsPerFrame is the one channel count that the encoder accepts, or 0 where there is
    /// a choice.
    CAStreamBasicDescription mFormatDescription;
    ATBitrateList mBitratesCBR;
    ATBitrateList mBitratesLTA;
    ATBitrateList mBitratesVBRConstrained;
    /// The encoder offers unconstrained variable mode, which has no bit rates.
    bool mSupportsVBR = false;
    UInt32 mDefaultCBR = 0;
    UInt32 mDefaultLTA = 0;
    UInt32 mDefaultVBRConstrained = 0;
};

using ATFormatTypeList = std::vector<ATFormatType>;

/// Data formats by format ID, each with its variants.
using ATFormatTypeMap = std::map<UInt32, ATFormatTypeList>;

/// File name extensions in UTF-8, without the dot.
using ATExtensionSet = std::set<UTF8String>;

/// One file type.
struct ATFileFormat
{
    UTF16String mName;
    ATExtensionSet mExtensionSet;
    ATFormatTypeMap mFormatTypeMap;
};

/// File types by file type ID.
using ATFileTypeMap = std::map<UInt32, ATFileFormat>;

}  // namespace appleaudiotoolbox

#endif
