// ConversionPlan: decides from the tables whether a pair of formats can be converted, and how.
#ifndef AUDIOTOOLBOX_CONVERT_CONVERSIONPLAN_H
#define AUDIOTOOLBOX_CONVERT_CONVERSIONPLAN_H

#include "convert/FrameMixer.h"
#include "tables/DataFormats.h"

namespace audiotoolbox
{

struct ConversionPlan
{
    AudioStreamBasicDescription mSource = {};
    AudioStreamBasicDescription mDestination = {};  // a rate of 0 is the source's by now
    const DataFormat* mFormat = nullptr;            // of the source
    SampleLayout mFrom;                             // linear PCM sources only
    SampleLayout mTo;
    MixShape mShape;
    bool mNeedsMixer = false;
};

/// noErr or 'fmt?'. Loads nothing.
OSStatus PlanConversion(const AudioStreamBasicDescription& inSource,
                        const AudioStreamBasicDescription& inDestination, ConversionPlan& outPlan);

}  // namespace audiotoolbox

#endif
