#include "tests/support/ScriptedPlatform.h"

#include "tests/support/PlatformCalls.h"

#include <CoreFoundation/CoreFoundation.h>

namespace testing_support
{

namespace
{

CFStringRef MakeString(const std::string& inText)
{
    return CFStringCreateWithCString(kCFAllocatorDefault, inText.c_str(), kCFStringEncodingUTF8);
}

}  // namespace

PropertyAnswer PropertyAnswer::Name(const std::string& inText)
{
    PropertyAnswer answer;
    answer.mSize = static_cast<UInt32>(sizeof(CFStringRef));
    answer.mMake = [=] { return BytesOf<CFStringRef>({MakeString(inText)}); };
    return answer;
}

PropertyAnswer PropertyAnswer::Names(const std::vector<std::string>& inTexts)
{
    PropertyAnswer answer;
    answer.mSize = static_cast<UInt32>(sizeof(CFArrayRef));
    answer.mMake = [=]
    {
        const CFMutableArrayRef array = CFArrayCreateMutable(kCFAllocatorDefault, 0, nullptr);
        for (const std::string& text : inTexts)
            CFArrayAppendValue(array, MakeString(text));
        return BytesOf<CFArrayRef>({array});
    };
    return answer;
}

ScriptedPlatform::ScriptedPlatform()
{
    PlatformCalls::SetCurrent(this);
    AnswerWith(Family::Converter, kAudioConverterCurrentInputStreamDescription,
               [](const Question& question) { return PropertyAnswer::Value(question.mSource); });
    AnswerWith(Family::Converter, kAudioConverterCurrentOutputStreamDescription,
               [](const Question& question)
               { return PropertyAnswer::Value(question.mDestination); });
    Answer(Family::ExtFile, kExtAudioFileProperty_ClientDataFormat, PropertyAnswer());
    Answer(Family::ExtFile, kExtAudioFileProperty_ConverterConfig, PropertyAnswer());
}

ScriptedPlatform::~ScriptedPlatform()
{
    PlatformCalls::SetCurrent(nullptr);
}

void ScriptedPlatform::Answer(Family inFamily, UInt32 inProperty, const PropertyAnswer& inAnswer)
{
    AnswerWith(inFamily, inProperty, [=](const Question&) { return inAnswer; });
}

void ScriptedPlatform::AnswerInTurn(Family inFamily, UInt32 inProperty,
                                    const std::vector<PropertyAnswer>& inAnswers)
{
    AnswerWith(inFamily, inProperty,
               [=](const Question& question)
               {
        const auto turn = static_cast<std::size_t>(question.mTurn);
        return turn < inAnswers.size() ? inAnswers[turn] : inAnswers.back();
    });
}

void ScriptedPlatform::AnswerWith(Family inFamily, UInt32 inProperty, Answerer inAnswerer)
{
    const PropertyKey key(inFamily, inProperty);
    mAnswerers[key] = std::move(inAnswerer);
    for (const auto kind : {Question::Kind::Info, Question::Kind::Get, Question::Kind::Set})
        mTurns[{key, kind}] = 0;
}

void ScriptedPlatform::Forget(Family inFamily, UInt32 inProperty)
{
    mAnswerers.erase({inFamily, inProperty});
}

void ScriptedPlatform::HoldFile(AudioFileTypeID inType, const AudioStreamBasicDescription& inFormat)
{
    Answer(Family::File, kAudioFilePropertyFormatList,
           PropertyAnswer::Value(AudioFormatListItem{inFormat, kAudioChannelLayoutTag_Unknown}));
    Answer(Family::File, kAudioFilePropertyDataFormat, PropertyAnswer::Value(inFormat));
    Answer(Family::File, kAudioFilePropertyFileFormat, PropertyAnswer::Value<UInt32>(inType));
    Answer(Family::File, kAudioFilePropertyPacketSizeUpperBound,
           PropertyAnswer::Value<UInt32>(4096));
    Answer(Family::Converter, kAudioConverterPrimeInfo,
           PropertyAnswer::Value(AudioConverterPrimeInfo{0, 0}).Writable());
}

void ScriptedPlatform::FailOpening(OSStatus inStatus)
{
    mOpenStatus = inStatus;
}

void ScriptedPlatform::MakeConvertersWith(ConverterMaker inMaker)
{
    mConverterMaker = std::move(inMaker);
}

void ScriptedPlatform::FailConverters(OSStatus inStatus)
{
    MakeConvertersWith([=](const AudioStreamBasicDescription&, const AudioStreamBasicDescription&)
                       { return NewConverterAnswer{inStatus}; });
}

void ScriptedPlatform::FailCall(int inCall, OSStatus inStatus)
{
    mFailingCall = inCall;
    mFailingStatus = inStatus;
    mFallibleCalls = 0;
}

bool ScriptedPlatform::ReachedFailingCall() const
{
    return mFailingCall > 0 && mFallibleCalls >= mFailingCall;
}

void ScriptedPlatform::FailCreation(OSStatus inStatus, bool inLeavesFile)
{
    mCreationStatus = inStatus;
    mFailedCreationLeavesFile = inLeavesFile;
}

void ScriptedPlatform::AnswerWrites(const std::vector<OSStatus>& inStatuses)
{
    mWriteStatuses.assign(inStatuses.begin(), inStatuses.end());
}

void ScriptedPlatform::AnswerDisposals(const std::vector<OSStatus>& inStatuses)
{
    mDisposalStatuses.assign(inStatuses.begin(), inStatuses.end());
}

void ScriptedPlatform::ReadPackets(const std::vector<PacketRead>& inReads)
{
    mPacketReads.insert(mPacketReads.end(), inReads.begin(), inReads.end());
}

void ScriptedPlatform::Fill(const std::vector<FillStep>& inSteps)
{
    mFills.push_back(inSteps);
}

void ScriptedPlatform::DeliverAudio(const Bytes& inFrames)
{
    mAudio = inFrames;
    mAudioPosition = 0;
}

std::vector<std::string> ScriptedPlatform::CallsOf(const std::string& inStart) const
{
    std::vector<std::string> found;
    for (const std::string& call : mCalls)
        if (call.compare(0, inStart.size(), inStart) == 0)
            found.push_back(call);
    return found;
}

}  // namespace testing_support
