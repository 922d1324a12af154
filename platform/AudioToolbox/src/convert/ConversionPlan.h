// ConversionPlan: decides from the tables whether a pair of formats can be converted, and how.
#ifndef AUDIOTOOLBOX_CONVERT_CONVERSIONPLAN_H
#define AUDIOTOOLBOX_CONVERT_CONVERSIONPLAN_H

#include "convert/FrameMixer.h"
#include "tables/DataFormats.h"
#include "tables/Encoders.h"

namespace audiotoolbox
{

struct ConversionPlan
{
    AudioStreamBasicDescription mSource = {};
    AudioStreamBasicDescription mDestination = {};  // with what was left open filled in
    const DataFormat* mFormat = nullptr;            // of the source
    SampleLayout mFrom;                             // linear PCM sources only
    SampleLayout mTo;
    MixShape mShape;
    bool mNeedsMixer = false;

    const EncoderRow* mEncoder = nullptr;      // null: to linear PCM
    StreamShape mStream;                       // what the encoder makes
    AudioStreamBasicDescription mLinear = {};  // the frames of mTo: the destination, or the
                                               // encoder's input
};

/// noErr or 'fmt?'. Loads nothing.
OSStatus PlanConversion(const AudioStreamBasicDescription& inSource,
                        const AudioStreamBasicDescription& inDestination, ConversionPlan& outPlan);

}  // namespace audiotoolbox

#endif
