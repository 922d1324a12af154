// PlatformCalls: what the C functions of the scripted platform do with its script. For the
// platform's own sources; tests include ScriptedPlatform.h.
#ifndef TESTS_SUPPORT_PLATFORMCALLS_H
#define TESTS_SUPPORT_PLATFORMCALLS_H

#include "tests/support/ScriptedPlatform.h"

namespace testing_support
{

class PlatformCalls
{
public:
    /// The calls of the platform that lives; ends the test program if there is none.
    static PlatformCalls Current();
    static void SetCurrent(ScriptedPlatform* inPlatform);
    ~PlatformCalls() { Cross(false); }
    PlatformCalls(const PlatformCalls&) = delete;
    PlatformCalls& operator=(const PlatformCalls&) = delete;

    void Note(const std::string& inCall) { mPlatform.mCalls.push_back(inCall); }
    /// Notes a breach unless inKept.
    void Expect(bool inKept, const std::string& inBreach);
    /// The status of a call that can fail: the one of FailCall if its turn has come, else inStatus.
    OSStatus Outcome(OSStatus inStatus);

    OSStatus OpenFile(AudioFileID* outFile);
    void SetOpened(const std::string& inPath, void* inClientData);
    OSStatus CloseFile(AudioFileID inFile);
    void ExpectFile(AudioFileID inFile);

    OSStatus MakeConverter(const AudioStreamBasicDescription& inSource,
                           const AudioStreamBasicDescription& inDestination,
                           AudioConverterRef* outConverter);
    OSStatus DisposeConverter(AudioConverterRef inConverter);
    void ExpectConverter(AudioConverterRef inConverter);

    /// A question of a family; the answer to one about a converter can depend on inConverter.
    PropertyAnswer Ask(Family inFamily, UInt32 inProperty, Question::Kind inKind,
                       const Bytes& inSpecifier = {}, const Bytes& inData = {},
                       AudioConverterRef inConverter = nullptr);
    OSStatus TellInfo(const PropertyAnswer& inAnswer, UInt32* outSize, bool& outWritable);
    OSStatus TellValue(const PropertyAnswer& inAnswer, UInt32* ioSize, void* outData);

    OSStatus ReadPackets(UInt32* ioBytes, AudioStreamPacketDescription* outDescriptions,
                         UInt32* ioPackets, void* outBuffer);
    OSStatus Fill(AudioConverterRef inConverter, AudioConverterComplexInputDataProc inProc,
                  void* inUser, UInt32* ioPackets, AudioBufferList* ioData);

    OSStatus CreateExtFile(const AudioStreamBasicDescription& inFormat, ExtAudioFileRef* outFile);
    void ExpectExtFile(ExtAudioFileRef inFile);
    /// The answer to a question for a file that is written: its converter, unless it is scripted.
    PropertyAnswer AskExtFile(ExtAudioFileRef inFile, UInt32 inProperty, Question::Kind inKind,
                              const Bytes& inData = {});
    OSStatus WriteExtFile(UInt32 inFrames, const AudioBufferList& inData);
    OSStatus DisposeExtFile(ExtAudioFileRef inFile);

private:
    explicit PlatformCalls(ScriptedPlatform& inPlatform) : mPlatform(inPlatform) { Cross(true); }

    void Cross(bool inIsInside);

    OSStatus Pull(AudioConverterRef inConverter, AudioConverterComplexInputDataProc inProc,
                  void* inUser, const FillStep& inStep);
    void DeliverAudio(AudioConverterRef inConverter, UInt32* ioPackets, AudioBuffer& ioBuffer);

    ScriptedPlatform& mPlatform;
};

}  // namespace testing_support

#endif
