// SettingsDialogFixture: the settings dialog over a scripted catalogue, with a scripted person.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_SETTINGSDIALOGFIXTURE_H
#define TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_SETTINGSDIALOGFIXTURE_H

#include "Tarvo_PlugIns/Common/Module/private/Module.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATSettingsDialog.h"
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/DialogArchiveFile.h"
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/DialogWindow.h"
#include "tests/support/CatalogueScript.h"

namespace testing_support
{

constexpr UInt32 kOpus = 0x6F707573;
constexpr UInt32 kULaw = 0x756C6177;

constexpr AudioValueRange Rate(double inRate)
{
    return {inRate, inRate};
}

/// File types, as they are listed: WAVE, adts, caff, m4af.
///
/// WAVE   lpcm of 16 bits in one variant
/// adts   aac
/// caff   lpcm of 16 and 24 bits and float of 32, each big- and little-endian; opus; ulaw
/// m4af   aac in four modes, alac in none
/// Formats have their code for a name, with flags and depth where they have any.
class SettingsDialog : public CatalogueTest
{
protected:
    SettingsDialog()
    {
        mScript.mEncodable = {kPCM, kAAC, kALAC, kOpus, kULaw};
        mScript.AddFileType(kWAVE, {"WAVE", {"wav"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
        mScript.AddFileType(kADTS, {"AAC", {"aac"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.AddFileType(
            kCAF, {"CAF",
                   {"caf"},
                   {{kPCM,
                     {Variant(kPCM, 14, 16), Variant(kPCM, 12, 16), Variant(kPCM, 14, 24),
                      Variant(kPCM, 12, 24), Variant(kPCM, 11, 32), Variant(kPCM, 9, 32)}},
                    {kOpus, {Variant(kOpus)}},
                    {kULaw, {Variant(kULaw)}}}});
        mScript.AddFileType(
            kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}, {kALAC, {Variant(kALAC)}}}});
        mScript.mEncoders[kPCM].mChannelCounts = {0xFFFFFFFF};
        mScript.mEncoders[kAAC] = {{{0, {{Rate(64000), Rate(128000), Rate(192000)}, 128000}},
                                    {1, {{Rate(96000), Rate(192000), Rate(1500000)}, 96000}},
                                    {2, {{{32000, 64000}, {900, 2000}}, 32000}},
                                    {3, {{Rate(1)}, 0}}},
                                   {},
                                   {1, 2}};
        mScript.mEncoders[kOpus] = {{{1, {{Rate(96000), Rate(510000)}, 96000}}}, {}, {1, 2}};
        NameFormats();
        mPlatform.MakeConvertersWith(
            [this](const AudioStreamBasicDescription&, const AudioStreamBasicDescription& format)
            { return NewConverterAnswer{mRefused.count(format.mFormatID) > 0 ? -50 : noErr}; });
        tarvo::module::Initialize();
    }
    ~SettingsDialog() override { tarvo::module::Terminate(); }

    /// Opens the dialog for the audio, lets the person act and answers whether it was OK.
    bool Run(const ScriptedPresenter::Act& inAct)
    {
        const ScriptedPresenter presenter(inAct);
        tarvo::TarvoATSettingsDialog dialog(mSettings, mRate, mChannels, mBitDepth);
        mOpen = &dialog;
        if (mFixedFileType != 0)
        {
            mSettings.SetAudioFileTypeID(mFixedFileType);
            dialog.mFixedFileType = mFixedFileType;
        }
        return dialog.RunModal(mParent);
    }
    /// The settings with which a person presses OK.
    tarvo::TarvoATPrivateSettings After(const ScriptedPresenter::Act& inAct)
    {
        EXPECT_TRUE(Run(
            [&](const DialogWindow& window)
            {
            inAct(window);
            EXPECT_TRUE(window.CanPressOK());
            window.PressOK();
        }));
        return mSettings;
    }
    static void DoNothing(const DialogWindow&) {}

    void StoreAAC(UInt32 inMode, UInt32 inBitrate = 64000, UInt32 inFileType = kM4A)
    {
        mSettings = tarvo::TarvoATPrivateSettings(
            inFileType, CAStreamBasicDescription(44100, kAAC, 0, 1024, 0, 2, 0, 0));
        mSettings.SetBitrateMode(inMode);
        mSettings.SetBitrate(inBitrate);
    }

    tarvo::TarvoATPrivateSettings mSettings;
    double mRate = 44100;
    UInt32 mChannels = 2;
    UInt32 mBitDepth = 16;
    UInt32 mFixedFileType = 0;
    void* mParent = nullptr;
    std::set<UInt32> mRefused;  // formats that no converter is made into
    tarvo::TarvoATSettingsDialog* mOpen = nullptr;
    const DialogArchiveFile mArchive{FormText()};

private:
    void NameFormats()
    {
        mPlatform.AnswerWith(Family::Format, kAudioFormatProperty_FormatName,
                             [](const Question& question)
                             {
            AudioStreamBasicDescription format = {};
            if (question.mKind == Question::Kind::Info ||
                question.mSpecifier.size() != sizeof(format))
                return PropertyAnswer().Size(8);
            std::memcpy(&format, question.mSpecifier.data(), sizeof(format));
            std::string name;
            for (int shift = 24; shift >= 0; shift -= 8)
                name += static_cast<char>(format.mFormatID >> shift);
            if (format.mBitsPerChannel != 0)
                name += ' ' + std::to_string(format.mFormatFlags) + '/' +
                        std::to_string(format.mBitsPerChannel);
            return PropertyAnswer::Name(name);
        });
    }
};

}  // namespace testing_support

#endif
