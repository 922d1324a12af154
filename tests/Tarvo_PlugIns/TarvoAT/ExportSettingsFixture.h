// ExportSettingsFixture: a host that settles its settings, on a scripted platform with encoders.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_EXPORTSETTINGSFIXTURE_H
#define TESTS_TARVO_PLUGINS_TARVOAT_EXPORTSETTINGSFIXTURE_H

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "tests/Tarvo_PlugIns/TarvoAT/ExportHost.h"
#include "tests/support/CatalogueScript.h"

namespace testing_support
{

// PCM has to agree with itself, and AAC has two channels at the most and 48 kHz.
inline bool CanEncode(const AudioStreamBasicDescription& inFormat)
{
    if (inFormat.mFormatID == kPCM)
        return inFormat.mBytesPerFrame == inFormat.mBitsPerChannel / 8 * inFormat.mChannelsPerFrame;
    return inFormat.mChannelsPerFrame <= 2 && inFormat.mSampleRate <= 48000.0;
}

class ExportSettingsInfo : public CatalogueTest
{
protected:
    ExportSettingsInfo()
    {
        mScript.mEncodable = {kPCM, kAAC, kALAC};
        mScript.AddFileType(
            kCAF,
            {"CAF",
             {"caf"},
             {{kPCM, {Variant(kPCM, 14, 16), Variant(kPCM, 14, 24), Variant(kPCM, 15, 32)}}}});
        mScript.AddFileType(kWAVE, {"WAVE", {"wave", "wav"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
        mScript.AddFileType(
            kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}, {kALAC, {Variant(kALAC, 1)}}}});
        mScript.AddFileType(kADTS,
                            {"AAC", {"aac"}, {{kAAC, {Variant(kAAC, 2), Variant(kAAC, 5)}}}});
        mScript.mEncoders[kPCM].mChannelCounts = {0xFFFFFFFF};
        mScript.mEncoders[kAAC].mChannelCounts = {1, 2};
        mPlatform.MakeConvertersWith(
            [this](const AudioStreamBasicDescription&, const AudioStreamBasicDescription& format)
            {
            if (mRefusals == 0)
                return NewConverterAnswer{CanEncode(format) ? noErr : -50};
            --mRefusals;
            return NewConverterAnswer{-50};
        });
        (void)tarvo::TarvoATPrivateSettings().IsValidForEncode();  // builds the catalogue
        mPlatform.ForgetCalls();
    }

    std::int32_t GetInfo(std::int32_t inRepairMode = 0)
    {
        mLog.clear();
        mInfo.mRepairMode = inRepairMode;
        return tarvo::TarvoATInterface().EntryPoint(14, nullptr, &mInfo);
    }

    // What the host has got back.
    tarvo::TarvoATPrivateSettings Settings() const
    {
        tarvo::TarvoATPrivateSettings settings;
        (void)settings.InitializeFromSerialized(mFormat.mSettings.c_str());
        return settings;
    }

    CallLog Told(const std::string& inStart) const
    {
        CallLog found;
        for (const std::string& line : mLog)
            if (line.compare(0, inStart.size(), inStart) == 0)
                found.push_back(line);
        return found;
    }

    void StoreAAC(double inRate = 44100.0, UInt32 inChannels = 2)
    {
        mFormat.mSettings =
            tarvo::TarvoATPrivateSettings(
                kM4A, CAStreamBasicDescription(inRate, kAAC, 0, 1024, 0, inChannels, 0, 0))
                .GetSerialized();
    }
    void StoreWave(double inRate)
    {
        mFormat.mSettings = tarvo::TarvoATPrivateSettings(
                                kWAVE, CAStreamBasicDescription(inRate, kPCM, 4, 1, 4, 2, 16, 12))
                                .GetSerialized();
    }

    CallLog mLog;
    ExportFormat mFormat{mLog};
    ExportInfo mInfo{mLog, mFormat};
    int mRefusals = 0;  // converters that are refused whatever they are for
};

}  // namespace testing_support

#endif
