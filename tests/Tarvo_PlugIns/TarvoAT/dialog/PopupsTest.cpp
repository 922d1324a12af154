// What the popups of the settings dialog list, and what their items mean.
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/SettingsDialogFixture.h"

#include "tests/support/DictionaryInUse.h"

#include <cmath>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;

using DialogPopups = SettingsDialog;

TEST_F(DialogPopups, ListTheCatalogueInItsOrderWithWhatIsStoredChosen)
{
    StoreAAC(1, 192000);
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(window.Line("FileType"), "FileType: WAVE | AAC | CAF | *MPEG-4");
        EXPECT_EQ(window.Line("FormatType"), "FormatType: *aac  | alac");
        EXPECT_EQ(window.Line("BitrateMode"),
                  "BitrateMode: Constant Bitrate | *Long-Term Average Bitrate | Variable Bitrate "
                  "(Constrained) | Variable Bitrate");
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: 96 kbps | *192 kbps | 1.5 Mbps");
    });
}

TEST_F(DialogPopups, AreOfTheSameStyleWithCheckMarks)
{
    Run(
        [](const DialogWindow& window)
        {
        for (const char* name :
             {"FileType", "FormatType", "Variant", "BitrateMode", "Bitrate", "VBRQuality"})
        {
            EXPECT_EQ(window.Popup(name).GetStyle(), 3) << name;
            EXPECT_TRUE(window.Popup(name).HasItemCheckStyle()) << name;
        }
    });
}

TEST_F(DialogPopups, AFileTypeThatIsNotListedGivesWayToTheFirst)
{
    mSettings.SetAudioFileTypeID(0x7A7A7A7A);
    const TarvoATPrivateSettings settings =
        After([](const DialogWindow& window)
              { EXPECT_EQ(window.Line("FileType"), "FileType: *WAVE | AAC | CAF | MPEG-4"); });
    EXPECT_EQ(settings.GetAudioFileTypeID(), kWAVE);
}

TEST_F(DialogPopups, TheRecordKeepsWhatNoItemMeansUntilTheItemIsRead)
{
    StoreAAC(0, 128001);
    const TarvoATPrivateSettings settings = After(
        [this](const DialogWindow& window)
        {
        // The first item, 64 kbps, was read at the start; now another number stands there.
        window.Choose("Bitrate", 2);
        EXPECT_EQ(window.Popup("Bitrate").GetValue(), 2);
        mScript.mEncoders[kAAC].mModes[0].mRates = {Rate(64000), Rate(128000)};
        mOpen->RePopulateBitratePopup();
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *64 kbps | 128 kbps");
    });
    EXPECT_EQ(settings.GetBitrate(), 192000u);
}

TEST_F(DialogPopups, AnExactBitrateIsChosenAndAnyOtherIsReplaced)
{
    StoreAAC(0, 128000);
    EXPECT_EQ(After(DoNothing).GetBitrate(), 128000u);
    StoreAAC(0, 128001);
    EXPECT_EQ(After(
                  [](const DialogWindow& window) {
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *64 kbps | 128 kbps | 192 kbps");
    }).GetBitrate(),
              64000u);
}

TEST_F(DialogPopups, ALaterItemOfTheSameMeaningIsTheChosenOne)
{
    mScript.mFileTypes[kCAF].mFormats[0].second = {Variant(kPCM, 14, 16), Variant(kPCM, 12, 16),
                                                   Variant(kPCM, 14, 16)};
    Run([](const DialogWindow& window)
        { EXPECT_EQ(window.Line("Variant"), "Variant: lpcm 14/16 | lpcm 12/16 | *lpcm 14/16"); });
}

TEST_F(DialogPopups, VariantsOfAnotherDepthThanTheAudiosAreLeftOut)
{
    struct Row
    {
        UInt32 mDepth;
        const char* mLine;
    };
    const Row rows[] = {
        {16, "Variant: *lpcm 14/16 | lpcm 12/16"},
        {24, "Variant: *lpcm 14/24 | lpcm 12/24"},
        {32, "Variant: *lpcm 11/32 | lpcm 9/32"},
        {20, "Variant: disabled"},
        {8, "Variant: disabled"},
        {0, "Variant: disabled"},
    };
    for (const Row& row : rows)
    {
        mBitDepth = row.mDepth;
        mSettings = TarvoATPrivateSettings();
        Run([&](const DialogWindow& window)
            { EXPECT_EQ(window.Line("Variant"), row.mLine) << row.mDepth; });
    }
}

TEST_F(DialogPopups, WithoutADepthVariantsWithoutOneAreStillListed)
{
    mBitDepth = 0;
    StoreAAC(0);
    Run(
        [](const DialogWindow& window)
        {
        window.Choose("FormatType", 1);
        EXPECT_EQ(window.Line("Variant"), "Variant: *alac disabled");
    });
}

TEST_F(DialogPopups, TheOnlyVariantGetsThePlatformsDetailsAndTheRecordsRateAndChannels)
{
    StoreAAC(0);
    Run(DoNothing);  // fills the catalogue, which asks for details of its own
    mPlatform.Answer(
        Family::Format, kAudioFormatProperty_FormatInfo,
        PropertyAnswer::Value(AudioStreamBasicDescription{8000, kALAC, 3, 0, 4096, 0, 9, 0, 0}));
    StoreAAC(0);
    mSettings.SetSampleRate(48000);
    mSettings.SetChannelsPerFrame(1);
    mRate = 48000;
    mChannels = 1;
    const TarvoATPrivateSettings settings =
        After([](const DialogWindow& window) { window.Choose("FormatType", 1); });
    EXPECT_EQ(settings.GetFormatID(), kALAC);
    EXPECT_EQ(settings.GetFormatFlags(), 3u);
    EXPECT_EQ(settings.GetFramesPerPacket(), 4096u);
    EXPECT_EQ(settings.GetSampleRate(), 48000.0);
    EXPECT_EQ(settings.GetChannelsPerFrame(), 1u);
}

TEST_F(DialogPopups, OneOfSeveralVariantsIsNotCompleted)
{
    Run(DoNothing);
    mPlatform.ForgetCalls();
    Run(DoNothing);
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'fmti'"), std::vector<std::string>());
    StoreAAC(0);
    Run(DoNothing);
    EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'fmti'"),
              std::vector<std::string>(2, "AudioFormatGetProperty 'fmti' specifier none size 40"));
}

TEST_F(DialogPopups, NameTheFourModesAndShowTheNumberOfAnyOther)
{
    StoreAAC(3);
    Run(
        [this](const DialogWindow& window)
        {
        mOpen->PopulateBitrateModePopup(7);
        mOpen->PopulateBitrateModePopup(4294967295u);
        EXPECT_EQ(window.Line("BitrateMode"),
                  "BitrateMode: Constant Bitrate | Long-Term Average Bitrate | Variable Bitrate "
                  "(Constrained) | *Variable Bitrate | (Unknown Bitrate Mode: 7) | (Unknown "
                  "Bitrate Mode: 4294967295)");
    });
}

TEST_F(DialogPopups, ShowBitratesInTheUnitOfTheLowEnd)
{
    struct Row
    {
        double mLow;
        double mHigh;
        const char* mText;
    };
    const Row rows[] = {
        {0.5, 0, "0.5 bps"},
        {999, 0, "999 bps"},
        {999.5, 0, "999.5 bps"},
        {1000, 0, "1 kbps"},
        {64000, 0, "64 kbps"},
        {1411200, 0, "1.41 Mbps"},
        {999999, 0, "1000 kbps"},
        {1000000, 0, "1 Mbps"},
        {999999999, 0, "1000 Mbps"},
        {1000000000, 0, "1000000000 bps"},
        {900, 2000, "900 - 2000 bps"},
        {32000, 64000, "32 - 64 kbps"},
        {800000, 1500000, "800 - 1500 kbps"},
        {32000, -1, "32 kbps"},
        {0, 0, "(Unable to Calculate Bitrate)"},
        {0, 2000, "(Unable to Calculate Bitrate)"},
        {-1, 0, "(Unable to Calculate Bitrate)"},
        {std::nan(""), 0, "(Unable to Calculate Bitrate)"},
    };
    Run(
        [&](const DialogWindow& window)
        {
        for (const Row& row : rows)
        {
            mOpen->PopulateBitratePopup(row.mLow, row.mHigh);
            const UTF16String& text = window.Popup("Bitrate").GetItems().back();
            EXPECT_EQ(kelpcore::utility::UTF16to8(text), row.mText);
        }
    });
}

TEST_F(DialogPopups, AnItemMeansTheWholeBitsOfItsLowEnd)
{
    mScript.mEncoders[kAAC].mModes[2].mRates = {{999.5, 999.5}, {32000, 64000}};
    StoreAAC(2, 32000);
    EXPECT_EQ(After(
                  [](const DialogWindow& window)
                  {
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: 999.5 bps | *32 - 64 kbps");
        window.Choose("Bitrate", 0);
    }).GetBitrate(),
              999u);
}

// Not for the audio's own rate and channels, where the encoder has others.
TEST_F(DialogPopups, RangesAreAskedForTheAudioAsTheSettingsHaveIt)
{
    mScript.mFileTypes[kM4A].mFormats[0].second[0].mSampleRate = 8000;
    mBitDepth = 24;
    mRate = 22050;
    mChannels = 6;
    StoreAAC(0, 128000);
    Run(DoNothing);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterNew 8000 'lpcm' 12 6/1/6/2/24 to ").size(), 1u);
}

TEST_F(DialogPopups, TheOnlyVariantKeepsTheRateAndChannelsThatTheEncoderHas)
{
    mScript.mFileTypes[kM4A].mFormats[1].second[0].mSampleRate = 8000;
    mScript.mEncoders[kALAC].mChannelCounts = {1, 2};
    mChannels = 6;
    StoreAAC(0);
    const TarvoATPrivateSettings settings = After(
        [](const DialogWindow& window)
        {
        window.Choose("FormatType", 1);
        EXPECT_EQ(window.Line("Variant"), "Variant: *alac disabled");
    });
    EXPECT_EQ(settings.GetSampleRate(), 8000.0);
    EXPECT_EQ(settings.GetChannelsPerFrame(), 2u);
}

TEST_F(DialogPopups, SpeakTheUsersLanguage)
{
    const DictionaryInUse dictionary(
        "$$$/tarvo/TarvoATSettingsDialog/UnknownBitrateMode=Modus @0?\n"
        "$$$/tarvo/TarvoATSettingsDialog/kilobitsPerSecond= kBit/s\n"
        "$$$/tarvo/TarvoATSettingsDialog/Bitrate=Datenrate:\n"
        "$$$/tarvo/TarvoATSettingsDialog/QualityLow=niedrig\n");
    StoreAAC(0, 64000);
    Run(
        [this](const DialogWindow& window)
        {
        mOpen->PopulateBitrateModePopup(9);
        EXPECT_EQ(window.Popup("BitrateMode").GetItems().back(), u"Modus 9?");
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *64 kBit/s | 128 kBit/s | 192 kBit/s");
        EXPECT_EQ(window.Label(), "BitrateStaticText: 'Datenrate:'");
        EXPECT_EQ(window.Line("VBRQuality"),
                  "VBRQuality: Maximum | *High | Medium | niedrig | Minimum hidden");
    });
}

}  // namespace
