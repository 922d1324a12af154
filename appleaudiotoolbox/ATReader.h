// ATReader: reads one audio file through the platform's audio calls.
//
// The file layer delivers packets, one converter turns them into frames of a linear PCM format (the
// client format), and the reader splits those into one buffer per channel. A file is read once,
// from its beginning to its end; there is no seeking. A reader is used by one thread at a time.
// Units: counts and positions in frames of the client format, sizes in bytes, rates in Hz.
#ifndef APPLEAUDIOTOOLBOX_ATREADER_H
#define APPLEAUDIOTOOLBOX_ATREADER_H

#include "CoreAudio/PublicUtility/CAStreamBasicDescription.h"
#include "appleaudiotoolbox/ExtendedErrorInfo.h"

#include <AudioToolbox/AudioToolbox.h>
#include <kelpcore/Strings.h>
#include <kelpcore/utility/AutoCFRef.h>
#include <kelpmediatypes/AudioTypes.h>

namespace appleaudiotoolbox
{

/// How a reader gets at data that is not a file. Both functions have to be there.
struct ReadCallbacks
{
    AudioFile_ReadProc mRead;
    AudioFile_GetSizeProc mGetSize;
};

/// Lives on the heap: the read buffer of 64 KiB is part of it. Opened once by one Initialize; after
/// a failed one it can only be destroyed. The order of the virtual operations is part of its binary
/// form.
class ATReader
{
public:
    ATReader();
    ATReader(const ATReader&) = delete;
    ATReader& operator=(const ATReader&) = delete;
    virtual ~ATReader();

    // Opening. False: outInfo has the site and the status of the failing step, or is untouched
    // where no step is to blame (a null callback, an answer of the platform that does not fit).
    // inForceFloat asks for 32-bit float frames whatever the file holds.
    virtual bool Initialize(const UTF8String& inPath, ExtendedErrorInfo& outInfo,
                            bool inForceFloat);
    /// inClientData must not be null; it goes to the callbacks and must outlive the reader.
    virtual bool Initialize(void* inClientData, const ReadCallbacks& inCallbacks,
                            unsigned int inFileTypeHint, ExtendedErrorInfo& outInfo,
                            bool inForceFloat);

    // What the file holds. All but the file type answer from what opening has found out.
    /// The platform's file type code, 0 if it cannot be told.
    virtual unsigned int GetFileTypeID() const;
    virtual CAStreamBasicDescription GetStreamBasicDescription() const;
    virtual double GetSampleRate() const;
    virtual unsigned int GetFormatID() const;
    virtual unsigned int GetBytesPerPacket() const;
    virtual unsigned int GetFramesPerPacket() const;
    virtual unsigned int GetBytesPerFrame() const;
    virtual unsigned int GetChannelsPerFrame() const;
    virtual unsigned int GetBitsPerChannel() const;
    /// Bytes of one delivered sample of one channel, 1 to 4. Despite its name no size of a frame.
    virtual unsigned int GetNumReadBytesPerFrame() const;
    virtual unsigned int GetFormatFlags() const;

    // Questions to the platform. Failures are quiet: 0.0, 0.
    /// Seconds.
    virtual double GetEstimatedDuration() const;
    /// Localised, for the user; may have several lines or be empty.
    virtual UTF16String GetFormatDescription() const;
    /// One host label per channel at the least; unnamed where the file does not tell.
    virtual kelpmediatypes::AudioChannelDescriptions GetChannelLayout() const;
    /// Bits per second of the stored audio.
    virtual unsigned int GetBitrate() const;

    // Delivery. Each read goes on where the last one stopped; inStartFrame positions nothing and
    // counts only for GetTotalSampleCount.
    /// Delivers the next frames, one buffer per channel.
    ///
    /// ioFrameCount      in: frames wanted; out: frames delivered, fewer at the end of the audio.
    ///                   Untouched after false
    /// outChannels       [channel][frame], one pointer for each channel of the file; owned by the
    ///                   caller, any alignment
    /// inBytesPerSample  1 to 4; has to equal GetNumReadBytesPerFrame, and is not checked
    /// False without a noted site: no frames were wanted, or there was no memory for them.
    virtual bool ReadSamples(long long inStartFrame, int* ioFrameCount, char** outChannels,
                             unsigned long inBytesPerSample, ExtendedErrorInfo& outInfo);
    /// The same into one buffer [frame][channel] of *ioFrameCount client frames. 0 frames or fewer
    /// wanted: true, nothing delivered. inBytesPerSample is not used.
    virtual bool ReadSamplesInterleaved(long long inStartFrame, int* ioFrameCount, char* outFrames,
                                        unsigned long inBytesPerSample, ExtendedErrorInfo& outInfo);
    /// True once a read has found nothing left. Reading the last frame is not enough.
    virtual bool IsAtEndOfFile() const;
    /// The highest frame delivered so far: the length of the audio once IsAtEndOfFile is true.
    virtual long long GetTotalSampleCount() const;
    /// Always false.
    virtual bool SupportsSeek() const;

    /// Everything of opening that comes behind the open file.
    virtual bool InitializeImpl(bool inForceFloat, ExtendedErrorInfo& outInfo);

private:
    static constexpr UInt32 kReadBufferSize = 0x10000;

    static OSStatus DecoderDataProc(AudioConverterRef inConverter, UInt32* ioPackets,
                                    AudioBufferList* ioData,
                                    AudioStreamPacketDescription** outDescriptions, void* inReader);

    bool ReadCookie(ExtendedErrorInfo& outInfo);
    bool SetCookie(UInt32 inBytes, const void* inCookie, ExtendedErrorInfo& outInfo);
    bool SetUpTheConverter(ExtendedErrorInfo& outInfo);
    bool SetUpPriming(const AudioStreamBasicDescription& inFileFormat, ExtendedErrorInfo& outInfo);
    bool SetUpPackets(ExtendedErrorInfo& outInfo);
    bool ReadPacketSizeUpperBound();
    bool FillFrames(int inFrames, UInt32 inBytes, SInt64& outFramesDone,
                    ExtendedErrorInfo& outInfo);
    void CutBehindTheEnd(SInt64 inFramesDone, UInt32& ioFrames);

    kelpcore::utility::AutoCFRef<CFURLRef> mURL;
    AudioFileID mAudioFile;
    CAStreamBasicDescription mInputFormat;   // what the converter takes
    CAStreamBasicDescription mClientFormat;  // what the caller gets
    bool mAtEndOfFile;
    bool mOpenedByPath;
    SInt64 mHighestFrame;
    AudioBufferList mOutputBufferList;  // the destination of the fill that is running
    SInt64 mNextPacket;                 // the file's packets before it have been read
    UInt32 mMaxPacketSize;
    UInt32 mPacketsPerRead;  // as many as are sure to fit the read buffer
    AudioStreamPacketDescription* mPacketDescriptions;  // owned; null for packets of one size
    UInt32 mPacketsThisFill;
    UInt32 mReadBufferSize;
    char mReadBuffer[kReadBufferSize];  // the packets that the converter is consuming
    AudioConverterRef mConverter;
    SInt64 mTotalFrames;  // valid frames by the file's packet table, 0 if it has none
};

}  // namespace appleaudiotoolbox

#endif
