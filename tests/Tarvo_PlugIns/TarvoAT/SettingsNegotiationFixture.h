// SettingsNegotiationFixture: settings records on a scripted platform with encoders.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_SETTINGSNEGOTIATIONFIXTURE_H
#define TESTS_TARVO_PLUGINS_TARVOAT_SETTINGSNEGOTIATIONFIXTURE_H

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "tests/support/CatalogueScript.h"

namespace testing_support
{

constexpr UInt32 kUnknown = 0x3F3F3F3F;
constexpr UInt32 kAnyCount = 0xFFFFFFFF;

// A writable WAVE with PCM of several depths, and M4A with AAC; PCM takes any number of channels.
class SettingsNegotiation : public CatalogueTest
{
protected:
    SettingsNegotiation()
    {
        mScript.mEncodable = {kPCM, kAAC};
        mScript.AddFileType(kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.AddFileType(kWAVE,
                            {"WAVE",
                             {"wav"},
                             {{kPCM,
                               {Variant(kPCM, 8, 8), Variant(kPCM, 12, 16), Variant(kPCM, 12, 24),
                                Variant(kPCM, 12, 32), Variant(kPCM, 9, 32)}}}});
        mScript.mEncoders[kPCM].mChannelCounts = {kAnyCount};
    }

    void AnswerRates(const std::vector<AudioValueRange>& inRanges)
    {
        mPlatform.Answer(Family::Format, kAudioFormatProperty_AvailableEncodeSampleRates,
                         PropertyAnswer::List(inRanges));
    }
    void AnswerChannels(const PropertyAnswer& inAnswer)
    {
        mPlatform.Answer(Family::Format, kAudioFormatProperty_AvailableEncodeNumberChannels,
                         inAnswer);
    }
    // The calls of an operation, without those that build the catalogue.
    void BuildCatalogue()
    {
        (void)mWave.IsValidForEncode();
        mPlatform.ForgetCalls();
    }

    tarvo::TarvoATPrivateSettings mWave{
        kWAVE, CAStreamBasicDescription(44100.0, kPCM, 4, 1, 4, 2, 16, 12)};
    tarvo::TarvoATPrivateSettings mAAC{
        kM4A, CAStreamBasicDescription(44100.0, kAAC, 0, 1024, 0, 2, 0, 0)};
};

}  // namespace testing_support

#endif
