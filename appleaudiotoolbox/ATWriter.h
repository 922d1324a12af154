// ATWriter: writes one audio file through the platform's extended file calls.
//
// Two formats meet here. The output format is what the file stores; the client format, linear PCM
// of the same rate and channels, is what the caller hands over. The platform converts between
// them. A writer is used by one thread at a time.
// Units: counts in bytes where they say so, rates in Hz, bit rates in bits per second.
#ifndef APPLEAUDIOTOOLBOX_ATWRITER_H
#define APPLEAUDIOTOOLBOX_ATWRITER_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"
#include "appleaudiotoolbox/ExtendedErrorInfo.h"

#include <AudioToolbox/AudioToolbox.h>
#include <AudioToolbox/ExtendedAudioFile.h>
#include <kelpcore/Strings.h>
#include <kelpcore/utility/AutoCFRef.h>
#include <kelpmediatypes/AudioTypes.h>

namespace appleaudiotoolbox
{

/// One Initialize, any number of writes, one FinishWrite. A writer that goes away without
/// FinishWrite closes the file all the same, and no failure removes a file that was created.
class ATWriter
{
public:
    ATWriter();
    ATWriter(const ATWriter&) = delete;
    ATWriter& operator=(const ATWriter&) = delete;
    ~ATWriter();

    /// Creates the file, in place of one that is there, and sets up its encoder.
    ///
    /// inChannels        the order in which the channels will come; may have another count than
    ///                   inOutputFormat
    /// inBytesPerSample  of one sample of one channel as it will come: 1 unsigned, 2 and 3 signed,
    ///                   4 float
    /// inSampleCount     not used
    /// inBitrateMode     the platform's control mode, 0 to 3; this and what follows counts only for
    ///                   formats that have modes
    /// inBitrate         for modes other than 3
    /// inVBRQuality      for mode 3, 0 to 127
    /// False: outInfo has the site and the status of the failing step, and the writer can only be
    /// destroyed.
    bool Initialize(const UTF8String& inPath, unsigned int inFileTypeID,
                    CAStreamBasicDescription inOutputFormat,
                    kelpmediatypes::AudioChannelDescriptions inChannels,
                    unsigned int inBytesPerSample, long long inSampleCount,
                    ExtendedErrorInfo& outInfo, unsigned int inBitrateMode, unsigned int inBitrate,
                    unsigned int inVBRQuality);

    int GetChannelsPerFrame() const;
    /// Bytes of one sample of one channel. Despite its name no size of a frame. 0 without channels.
    unsigned int GetNumWriteBytesPerFrame() const;

    /// Appends frames of the client format.
    ///
    /// inPosition   not used
    /// inByteCount  of inBytes; an unfinished frame at the end is not written
    /// False: outInfo has the site, and the status if the platform gave one. Later writes may
    /// succeed.
    bool WriteSampleBytes(long long inPosition, int inByteCount, char* inBytes,
                          ExtendedErrorInfo& outInfo);

    /// Completes and closes the file. The file is closed after false, too, and a second call has
    /// nothing left to do and succeeds. Only outInfo is used.
    bool FinishWrite(bool inOK, void* inData, int inSize, ExtendedErrorInfo& outInfo);

private:
    bool CreateFile(ExtendedErrorInfo& outInfo);
    bool SetUpEncoder(ExtendedErrorInfo& outInfo);
    bool SetBitrateOrQuality(AudioConverterRef inConverter, ExtendedErrorInfo& outInfo);

    kelpcore::utility::AutoCFRef<CFURLRef> mURL;
    ExtAudioFileRef mFile;        // owned; null before Initialize and once closed
    AudioBufferList mBufferList;  // the bytes of the write that is running
    UInt32 mFileTypeID;
    CAStreamBasicDescription mClientFormat;  // what the caller hands over
    CAStreamBasicDescription mOutputFormat;  // what the file stores
    AudioChannelLayout* mChannelLayout;      // owned
    UInt32 mBitrateMode;
    UInt32 mBitrate;
    Float32 mVBRQuality;
};

}  // namespace appleaudiotoolbox

#endif
