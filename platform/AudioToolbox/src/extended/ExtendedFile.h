// ExtendedFile: a file that is written, with the converter in front of it.
//
// Frames take the shortest way: straight from the caller's buffer to the container where client
// and file agree, with one pass before where channels move, with one pass of the converter where
// samples change. The header is written with the first frames, or at the close.
#ifndef AUDIOTOOLBOX_EXTENDED_EXTENDEDFILE_H
#define AUDIOTOOLBOX_EXTENDED_EXTENDEDFILE_H

#include "extended/ChannelPermuter.h"
#include "extended/PushConverter.h"
#include "file/write/ChannelOrder.h"
#include "file/write/Writers.h"

#include <optional>

namespace audiotoolbox
{

struct ExtendedFileRequest
{
    AudioFileTypeID mType = 0;
    AudioStreamBasicDescription mFormat = {};  // of the file
    std::vector<AudioChannelLabel> mLabels;    // of the client's channels; empty: not known
    MakePacketWriter mMakeWriter = &MakeWriter;
};

class ExtendedFile
{
public:
    explicit ExtendedFile(ExtendedFileRequest inRequest);

    /// Whether the type can hold the format, and its encoder make it: noErr, 'typ?' or 'fmt?'.
    /// Touches no file; comes before everything else.
    OSStatus Check();

    /// Where the bytes go, after Check. The sink is empty.
    void Attach(ByteSinkPtr inSink) { mSink = std::move(inSink); }

    /// Makes a new converter. -66563 for anything but linear PCM, -66565 once frames were
    /// written, 'fmt?' for what cannot be converted.
    OSStatus SetClientFormat(const AudioStreamBasicDescription& inFormat);

    /// Opens the encoder; later changes of the converter's settings have no effect. The encoder's
    /// status when it refuses; -66565 before the client's format is known and after frames.
    OSStatus TakeSettings();

    /// Appends frames, inByteCount bytes of which are there: -50 when that is too few. After a
    /// failure of the converter or the file every later call answers the same status.
    OSStatus Write(const UInt8* inFrames, UInt32 inFrameCount, UInt32 inByteCount);

    /// Completes and closes the file; nothing may follow. The first status that went wrong in the
    /// life of the file.
    OSStatus Close();

    const AudioStreamBasicDescription& Format() const { return mStored.mFormat; }
    /// Null as long as the client's format is not known.
    const AudioStreamBasicDescription* ClientFormat() const;
    AudioConverterRef Converter() { return mConverter ? mConverter->Ref() : nullptr; }
    /// Frames taken in, at the file's rate.
    SInt64 FrameCount() const;

private:
    OSStatus MakeConverter(const AudioStreamBasicDescription& inClient);
    OSStatus Plan(const AudioStreamBasicDescription& inClient, ConversionPlan& outPlan,
                  WriteRequest& outStored, PacketWriterPtr& outWriter) const;
    ChannelOrder OrderFor(const AudioStreamBasicDescription& inClient) const;
    OSStatus Start();
    OSStatus WriteFrames(const UInt8* inFrames, UInt32 inFrameCount);
    OSStatus WriteBlock(const UInt8* inFrames, UInt32 inFrameCount);
    OSStatus Complete();
    void Note(OSStatus inStatus);

    const ExtendedFileRequest mRequest;
    WriteRequest mStored;  // as the container is told
    ByteSinkPtr mSink;
    PacketWriterPtr mWriter;
    std::optional<PushConverter> mConverter;  // empty until the client's format is known
    std::optional<ChannelPermuter> mPermuter;
    bool mIsDirect = false;  // frames are the file's packets already
    bool mIsStarted = false;
    bool mHasHeader = false;
    UInt64 mFramesTaken = 0;  // of the client
    OSStatus mFailure = noErr;
};

}  // namespace audiotoolbox

#endif
