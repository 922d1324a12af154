// ScriptedPlatform: the platform's audio calls as a test wants them, in place of the real ones.
//
// It defines the C functions of AudioFile, AudioFormat, AudioConverter and ExtAudioFile. While an
// object of this class lives, they write down what they are called with and answer by its script.
// Where nothing is scripted, opening, creating and making converters succeeds, a property is
// unknown (kAudioFile... 'pty?' for a file and for global questions, 'prop' for formats and
// converters, -66561 for a file that is written), a file has no packets, a fill delivers no frames,
// and whatever is written is taken. A file that is written knows its client format, its
// configuration and its converter, which is one of those below from the creation on. One object at
// a time.
//
//     ScriptedPlatform platform;
//     platform.HoldFile(kAudioFileWAVEType, StereoFormat());
//     platform.Answer(Family::File, kAudioFilePropertyBitRate,
//     PropertyAnswer::Value<UInt32>(64000));
//     ...
//     EXPECT_EQ(platform.Calls(), (std::vector<std::string>{"AudioFileOpenURL ...", ...}));
#ifndef TESTS_SUPPORT_SCRIPTEDPLATFORM_H
#define TESTS_SUPPORT_SCRIPTEDPLATFORM_H

#include "tests/support/PropertyAnswer.h"

#include <deque>
#include <map>
#include <utility>

namespace testing_support
{

enum class Family
{
    File,       // AudioFileGetProperty...
    Global,     // AudioFileGetGlobalInfo...
    Format,     // AudioFormatGetProperty...
    Converter,  // AudioConverter...Property...
    ExtFile     // ExtAudioFile...Property
};

/// Who asks what, for answers that depend on it.
struct Question
{
    enum class Kind
    {
        Info,
        Get,
        Set
    };

    Family mFamily;
    UInt32 mProperty;
    Kind mKind;
    int mTurn;         // 0 for the first question of this kind about this property
    Bytes mSpecifier;  // Global, Format: the bytes of the specifier, empty where they are not to be
                       // read
    Bytes mData;       // Set: the value
    // Converter: what it was made for.
    AudioStreamBasicDescription mSource;
    AudioStreamBasicDescription mDestination;
};

/// What making a converter comes to. A failing call hands over a converter only if it leaves one.
struct NewConverterAnswer
{
    OSStatus mStatus = noErr;
    bool mLeavesConverter = false;
    bool mForgetsConverter = false;  // succeeds without handing one over
};

/// One AudioFileReadPacketData.
struct PacketRead
{
    Bytes mBytes;
    UInt32 mPackets = 0;
    std::vector<AudioStreamPacketDescription> mDescriptions = {};
    OSStatus mStatus = noErr;  // other than 0: nothing is delivered
};

/// One thing that happens inside a fill.
struct FillStep
{
    /// The input procedure is asked for packets. What it answers stands in ScriptedPlatform::Pulls;
    /// a status of it ends the fill and comes back from it.
    static FillStep Pull(UInt32 inPackets) { return {Kind::Pull, inPackets, {}, noErr}; }
    /// The same without a place for packet descriptions.
    static FillStep PullBare(UInt32 inPackets) { return {Kind::PullBare, inPackets, {}, noErr}; }
    /// Frames behind those delivered so far in this fill. inBytes has to fit the caller's buffer.
    static FillStep Deliver(UInt32 inFrames, const Bytes& inBytes)
    {
        return {Kind::Deliver, inFrames, inBytes, noErr};
    }
    /// Ends the fill with a status; without it a fill ends with 0 behind its last step.
    static FillStep Return(OSStatus inStatus) { return {Kind::Return, 0, {}, inStatus}; }

    enum class Kind
    {
        Pull,
        PullBare,
        Deliver,
        Return
    };
    Kind mKind;
    UInt32 mCount;
    Bytes mBytes;
    OSStatus mStatus;
};

/// What the input procedure answered to one FillStep::Pull.
struct PulledInput
{
    OSStatus mStatus;
    UInt32 mPackets;
    Bytes mBytes;  // a copy of the data that was handed over
    UInt32 mChannels;
    UInt32 mBuffers;
    const void* mData;
    bool mToldDescriptions;  // the place for descriptions was written to
    const AudioStreamPacketDescription* mDescriptions;
};

/// One ExtAudioFileWrite.
struct WrittenBlock
{
    UInt32 mFrames;
    UInt32 mBuffers;
    UInt32 mChannels;
    const void* mData;
    Bytes mBytes;  // a copy, up to ScriptedPlatform::kMostCopied bytes
};

class ScriptedPlatform
{
public:
    /// Larger blocks are only looked at from outside.
    static constexpr UInt32 kMostCopied = 0x1000000;

    ScriptedPlatform();
    ~ScriptedPlatform();
    ScriptedPlatform(const ScriptedPlatform&) = delete;
    ScriptedPlatform& operator=(const ScriptedPlatform&) = delete;

    // Properties --------------------------------------------------------------------------------

    /// The same answer each time.
    void Answer(Family inFamily, UInt32 inProperty, const PropertyAnswer& inAnswer);
    /// One answer after the other, the last one again and again. Queries, readings and settings
    /// count on their own.
    void AnswerInTurn(Family inFamily, UInt32 inProperty,
                      const std::vector<PropertyAnswer>& inAnswers);
    using Answerer = std::function<PropertyAnswer(const Question&)>;
    void AnswerWith(Family inFamily, UInt32 inProperty, Answerer inAnswerer);
    /// Back to an unknown property.
    void Forget(Family inFamily, UInt32 inProperty);

    /// Everything that an openable file of one format answers: its list of one format, its data
    /// format, its type, and for packets of varying size an upper bound of 4096 bytes. The
    /// converter takes the prime info.
    void HoldFile(AudioFileTypeID inType, const AudioStreamBasicDescription& inFormat);

    // Opening, converters ------------------------------------------------------------------------

    void FailOpening(OSStatus inStatus);
    using ConverterMaker =
        std::function<NewConverterAnswer(const AudioStreamBasicDescription& inSource,
                                         const AudioStreamBasicDescription& inDestination)>;
    /// A converter answers its current stream descriptions with those it was made for, unless they
    /// are scripted otherwise.
    void MakeConvertersWith(ConverterMaker inMaker);
    void FailConverters(OSStatus inStatus);

    /// The inCall-th call of all (from 1) that can fail does so, whatever is scripted. Calls are
    /// the opening ones, properties, making a converter, reading packets and fills.
    void FailCall(int inCall, OSStatus inStatus);
    /// Whether that call has come.
    bool ReachedFailingCall() const;

    // Files that are written ----------------------------------------------------------------------

    /// A failing creation hands over a file only if it leaves one.
    void FailCreation(OSStatus inStatus, bool inLeavesFile = false);
    /// The statuses of the next writes; those behind them succeed.
    void AnswerWrites(const std::vector<OSStatus>& inStatuses);
    /// The statuses of the next disposals, which close the file all the same.
    void AnswerDisposals(const std::vector<OSStatus>& inStatuses);

    // Audio --------------------------------------------------------------------------------------

    /// Reads of packets, one after the other; behind them the file is at its end.
    void ReadPackets(const std::vector<PacketRead>& inReads);
    /// The next fill runs these steps. Fills run their scripts in the order of these calls.
    void Fill(const std::vector<FillStep>& inSteps);
    /// Fills without a script deliver this audio (client frames) as far as it goes, without asking
    /// for input.
    void DeliverAudio(const Bytes& inFrames);

    /// Told true on the way into the platform and false on the way out, the input procedure's own
    /// calls being out. For tests that count what the code under test does.
    using CrossingHook = void (*)(bool inIsInside);
    void OnCrossing(CrossingHook inHook) { mCrossingHook = inHook; }

    // What happened ------------------------------------------------------------------------------

    /// All calls so far, one line each, numbers in decimal, codes as 'abcd', values that are set in
    /// hexadecimal bytes:
    ///   AudioFileOpenURL "/a/b.wav" permissions 1 hint 0
    ///   AudioFileOpenWithCallbacks read given write null size given setsize null hint 'WAVE'
    ///   AudioFileGetPropertyInfo 'flst' size 0 writable null     (the values on entry; null: no
    ///   place) AudioFileGetProperty 'flst' size 48 AudioFileGetGlobalInfoSize 'fmid' specifier 4
    ///   'WAVE' size 0   (specifier none; 4 and the
    ///                                                                  code; or its size alone)
    ///   AudioFileGetGlobalInfo 'fmid' specifier 4 'WAVE' size 8
    ///   AudioFormatGetPropertyInfo 'acif' specifier none size 0
    ///   AudioFormatGetProperty 'acif' specifier none size 8
    ///   AudioConverterNew 44100 'aac ' 0 0/1024/0/2/0 to 44100 'lpcm' 9 8/1/8/2/32
    ///                           (rate, code, flags, packet bytes/frames/frame bytes/channels/bits)
    ///   AudioConverterGetPropertyInfo 'prim' size 0 writable 0
    ///   AudioConverterGetProperty 'acid' size 40
    ///   AudioConverterSetProperty 'prim' size 8: 40 08 00 00 00 00 00 00   (64 bytes at the most)
    ///   AudioConverterFillComplexBuffer packets 100 channels 2 bytes 400 descriptions null
    ///   AudioFileReadPacketData cache 0 bytes 65536 descriptions given start 0 packets 64
    ///   AudioConverterReset, AudioConverterDispose, AudioFileClose
    ///   ExtAudioFileCreateWithURL "/a/b.wav" 'WAVE' format 44100 'lpcm' 12 4/1/4/2/16 layout: 00
    ///   ..
    ///                             flags 3                 (all bytes of the layout; null: none)
    ///   ExtAudioFileSetProperty 'accf' size 8: 00 00 00 00 00 00 00 00
    ///   ExtAudioFileGetProperty 'acnv' size 8
    ///   ExtAudioFileWrite frames 2 buffers 1 channels 2 bytes 8
    ///   ExtAudioFileDispose
    const std::vector<std::string>& Calls() const { return mCalls; }
    void ForgetCalls() { mCalls.clear(); }
    /// The lines that begin with inStart.
    std::vector<std::string> CallsOf(const std::string& inStart) const;

    const std::vector<PulledInput>& Pulls() const { return mPulls; }
    const std::vector<WrittenBlock>& Written() const { return mWritten; }
    /// The last path, opened or created, and the last callbacks' client data.
    const std::string& OpenedPath() const { return mOpenedPath; }
    void* OpenedClientData() const { return mOpenedClientData; }
    /// Where the last fill was to put its frames.
    const void* FillBuffer() const { return mFillBuffer; }

    int OpenFiles() const { return static_cast<int>(mFiles.size() + mExtFiles.size()); }
    int OpenConverters() const { return static_cast<int>(mConverters.size()); }
    int OpenHandles() const { return OpenFiles() + OpenConverters(); }
    /// What no caller may do: a handle that is not open, a missing out argument, a script that does
    /// not fit the caller's buffer. Empty after a good test.
    const std::vector<std::string>& Breaches() const { return mBreaches; }

private:
    friend class PlatformCalls;  // what the C functions do with the script

    struct Converter
    {
        AudioStreamBasicDescription mSource;
        AudioStreamBasicDescription mDestination;
    };
    using PropertyKey = std::pair<Family, UInt32>;

    std::map<PropertyKey, Answerer> mAnswerers;
    std::map<std::pair<PropertyKey, Question::Kind>, int> mTurns;
    OSStatus mOpenStatus = noErr;
    ConverterMaker mConverterMaker;
    int mFailingCall = 0;
    OSStatus mFailingStatus = noErr;
    int mFallibleCalls = 0;
    std::deque<PacketRead> mPacketReads;
    std::deque<std::vector<FillStep>> mFills;
    Bytes mAudio;
    std::size_t mAudioPosition = 0;
    OSStatus mCreationStatus = noErr;
    bool mFailedCreationLeavesFile = false;
    std::deque<OSStatus> mWriteStatuses;
    std::deque<OSStatus> mDisposalStatuses;
    CrossingHook mCrossingHook = nullptr;

    std::vector<std::string> mCalls;
    std::vector<std::string> mBreaches;
    std::vector<PulledInput> mPulls;
    std::vector<WrittenBlock> mWritten;
    std::string mOpenedPath;
    void* mOpenedClientData = nullptr;
    const void* mFillBuffer = nullptr;
    std::map<AudioFileID, int> mFiles;
    std::map<AudioConverterRef, Converter> mConverters;
    std::map<ExtAudioFileRef, AudioConverterRef> mExtFiles;
    std::uintptr_t mLastHandle = 0;
};

}  // namespace testing_support

#endif
