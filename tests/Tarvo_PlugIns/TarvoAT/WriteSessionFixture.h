// WriteSessionFixture: selectors 17 to 19 on a scripted platform, with host objects that record.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_WRITESESSIONFIXTURE_H
#define TESTS_TARVO_PLUGINS_TARVOAT_WRITESESSIONFIXTURE_H

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/support/CatalogueScript.h"

#include <string>
#include <vector>

namespace testing_support
{

// The platform writes WAVE with PCM, which has no modes, and M4A with AAC, which has constant and
// variable bit rate. The host's audio is 16-bit stereo.
class WriteSessionTest : public CatalogueTest
{
protected:
    WriteSessionTest()
    {
        mScript.AddFileType(kWAVE, {"WAVE", {"wav"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
        mScript.AddFileType(kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.mEncodable = {kPCM, kAAC};
        mScript.mEncoders[kAAC].mModes[0] = {{{64000, 64000}, {128000, 128000}}, 128000};
        mScript.mEncoders[kAAC].mModes[3] = {{{1, 1}}, 0};
        mPlatform.Answer(Family::Converter, kAudioCodecPropertySoundQualityForVBR,
                         PropertyAnswer());
        mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatName,
                         PropertyAnswer::Name("Linear PCM"));
        mFormat.mSampleType = 20;
        mFormat.mChannelCount = 2;
        mFormat.mLabels = {100, 101};
        mStart.mErrors = mBlock.mErrors = mFinish.mErrors = &mErrors;
        mStart.mFormat = mFinish.mFormat = &mFormat;
    }
    ~WriteSessionTest() override
    {
        if (mStart.mHandle)
        {
            EXPECT_EQ(Finish(), 0);
        }
        EXPECT_EQ(mPlatform.OpenHandles(), 0);
    }

    static std::int32_t Call(int inSelector, void* inHandle, void* inHostObject)
    {
        return tarvo::TarvoATInterface().EntryPoint(inSelector, inHandle, inHostObject);
    }

    // Each begins with an empty log.
    std::int32_t Start()
    {
        mLog.clear();
        mPlatform.ForgetCalls();
        return Call(17, nullptr, &mStart);
    }
    std::int32_t Write(std::int64_t inFrames, const std::vector<const char*>& inBuffers)
    {
        mLog.clear();
        mPlatform.ForgetCalls();
        mBlock.mCount = inFrames;
        mBlock.mBuffers = inBuffers;
        return Call(18, mStart.mHandle, &mBlock);
    }
    // Forgets a handle that was freed.
    std::int32_t Finish()
    {
        mLog.clear();
        mPlatform.ForgetCalls();
        const std::int32_t result = Call(19, mStart.mHandle, &mFinish);
        if (result == 0)
            mStart.mHandle = nullptr;
        return result;
    }

    void Store(const tarvo::TarvoATPrivateSettings& inSettings)
    {
        const UTF16String text = inSettings.GetSerialized();
        mFormat.mPrivateSettings.assign(text.begin(), text.end());
    }
    // Settings for a WAVE file of 16-bit PCM with this many channels.
    void StoreWave(UInt32 inChannels = 2)
    {
        Store({kWAVE, {48000, kPCM, 2 * inChannels, 1, 2 * inChannels, inChannels, 16, 12}});
    }
    void StoreAAC(UInt32 inMode, UInt32 inQuality = 96)
    {
        tarvo::TarvoATPrivateSettings settings(kM4A, {44100, kAAC, 0, 1024, 0, 2, 0, 0});
        settings.SetBitrateMode(inMode);
        settings.SetBitrate(128000);
        settings.SetVBRQuality(inQuality);
        Store(settings);
    }

    static std::u16string Wide(const std::string& inText) { return {inText.begin(), inText.end()}; }

    CallLog mLog;
    RecordingErrors mErrors{mLog};
    RecordingFormat mFormat{mLog};
    RecordingWriteStart mStart{mLog};
    RecordingWriteSamples mBlock{mLog};
    RecordingFinishWrite mFinish{mLog};
};

}  // namespace testing_support

#endif
