// EncoderBitRates: which bit rates an encoder keeps to, per mode, rate and channel count.
//
// All are bits per second. An encoder asked for a rate that is not listed would miss it, round it
// or fail at some later packet, so nobody else may be asked.
#ifndef AUDIOTOOLBOX_TABLES_ENCODERBITRATES_H
#define AUDIOTOOLBOX_TABLES_ENCODERBITRATES_H

#include "tables/Encoders.h"

#include <vector>

namespace audiotoolbox
{

bool HasBitRateMode(const EncoderRow& inRow, UInt32 inMode);

/// Ascending. For the variable mode, what an average could be; empty for a mode, rate or channel
/// count that the encoder has not.
std::vector<UInt32> EncoderBitRates(const EncoderRow& inRow, UInt32 inMode, UInt32 inRate,
                                    UInt32 inChannelCount);

/// One of the list; 0 where that is empty.
UInt32 DefaultBitRate(const EncoderRow& inRow, UInt32 inMode, UInt32 inRate, UInt32 inChannelCount);

/// Ascending: at any rate that the encoder takes.
std::vector<UInt32> AllBitRates(const EncoderRow& inRow, UInt32 inMode, UInt32 inChannelCount);

}  // namespace audiotoolbox

#endif
