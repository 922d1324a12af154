// ProbeConverter: a converter that lives as long as a question about it.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_SRC_PROBECONVERTER_H
#define APPLEAUDIOTOOLBOX_UTILITY_SRC_PROBECONVERTER_H

#include <AudioToolbox/AudioToolbox.h>

namespace appleaudiotoolbox
{

class ProbeConverter
{
public:
    ProbeConverter(const AudioStreamBasicDescription& inSource,
                   const AudioStreamBasicDescription& inDestination)
        : mStatus(AudioConverterNew(&inSource, &inDestination, &mConverter))
    {
    }
    // A failing call may leave a converter, too.
    ~ProbeConverter()
    {
        if (mConverter)
            (void)AudioConverterDispose(mConverter);
    }
    ProbeConverter(const ProbeConverter&) = delete;
    ProbeConverter& operator=(const ProbeConverter&) = delete;

    /// Of making it.
    OSStatus Status() const { return mStatus; }
    /// Null if there is none.
    AudioConverterRef Get() const { return mConverter; }

private:
    AudioConverterRef mConverter = nullptr;  // before the status, which is made with it
    OSStatus mStatus;
};

}  // namespace appleaudiotoolbox

#endif
