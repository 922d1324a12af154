// How a choice in the settings dialog changes the popups that depend on it.
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/SettingsDialogFixture.h"

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;
using Lines = std::vector<std::string>;

using DialogCascade = SettingsDialog;

// The six popups and the label.
Lines Form(const DialogWindow& inWindow)
{
    Lines lines;
    for (const char* name :
         {"FileType", "FormatType", "Variant", "BitrateMode", "Bitrate", "VBRQuality"})
        lines.push_back(inWindow.Line(name));
    lines.push_back(inWindow.Label());
    return lines;
}

const std::string kModes =
    "Constant Bitrate | Long-Term Average Bitrate | Variable Bitrate "
    "(Constrained) | ";

TEST_F(DialogCascade, UncompressedAudioHasVariantsAndOneComputedBitrate)
{
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(Form(window),
                  (Lines{"FileType: WAVE | AAC | *CAF | MPEG-4", "FormatType: *lpcm | opus | ulaw",
                         "Variant: *lpcm 14/16 | lpcm 12/16", "BitrateMode: disabled hidden",
                         "Bitrate: *1.41 Mbps disabled",
                         "VBRQuality: Maximum | *High | Medium | Low | Minimum hidden",
                         "BitrateStaticText: 'Bitrate:'"}));
        EXPECT_TRUE(window.CanPressOK());
    });
}

TEST_F(DialogCascade, AFormatOfBitratesHasModesAndRates)
{
    StoreAAC(0, 128000);
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(
            Form(window),
            (Lines{"FileType: WAVE | AAC | CAF | *MPEG-4", "FormatType: *aac  | alac",
                   "Variant: *aac  disabled hidden", "BitrateMode: *" + kModes + "Variable Bitrate",
                   "Bitrate: 64 kbps | *128 kbps | 192 kbps",
                   "VBRQuality: Maximum | *High | Medium | Low | Minimum hidden",
                   "BitrateStaticText: 'Bitrate:'"}));
    });
}

TEST_F(DialogCascade, VariableModeShowsTheQualityInPlaceOfTheRate)
{
    StoreAAC(3);
    mSettings.SetVBRQuality(32);
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(window.Line("VBRQuality"),
                  "VBRQuality: Maximum | High | Medium | *Low | Minimum");
        EXPECT_FALSE(window.Popup("Bitrate").IsVisible());
        EXPECT_EQ(window.Label(), "BitrateStaticText: 'VBR Quality:'");
        EXPECT_FALSE(window.Popup("VBRQuality").IsDisabled());
    });
}

TEST_F(DialogCascade, EachQualityIsStored)
{
    const UInt32 qualities[] = {127, 96, 64, 32, 0};
    for (long item = 0; item < 5; ++item)
    {
        StoreAAC(3);
        EXPECT_EQ(After(
                      [&](const DialogWindow& window) {
            window.Choose("VBRQuality", item);
        }).GetVBRQuality(),
                  qualities[item]);
        EXPECT_EQ(After(
                      [&](const DialogWindow& window) {
            EXPECT_EQ(window.Popup("VBRQuality").GetValue(), item);
        }).GetVBRQuality(),
                  qualities[item]);
    }
}

TEST_F(DialogCascade, AQualityWithoutAnItemIsKeptUntilVariableModeIsReached)
{
    StoreAAC(0);
    mSettings.SetVBRQuality(100);
    const TarvoATPrivateSettings stored = mSettings;
    EXPECT_EQ(After(
                  [](const DialogWindow& window) {
        EXPECT_EQ(window.Popup("VBRQuality").GetValue(), 0);
    }).GetVBRQuality(),
              100u);
    mSettings = stored;
    EXPECT_EQ(
        After([](const DialogWindow& window) { window.Choose("BitrateMode", 3); }).GetVBRQuality(),
        127u);
}

TEST_F(DialogCascade, OneVariantWithoutModesTakesTheWayOfVariants)
{
    StoreAAC(0);
    EXPECT_EQ(After(
                  [](const DialogWindow& window)
                  {
        window.Choose("FormatType", 1);
        EXPECT_EQ(window.Line("Variant"), "Variant: *alac disabled");
        EXPECT_EQ(window.Line("BitrateMode"), "BitrateMode: disabled hidden");
        // 44100 Hz, 2 channels, 7.71 bits.
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *680.02 kbps disabled");
    }).GetBitrate(),
              680022u);
}

TEST_F(DialogCascade, ModesAndTwoVariantsTakeTheWayOfVariantsToo)
{
    mScript.mFileTypes[kM4A].mFormats[0].second = {Variant(kAAC, 2), Variant(kAAC, 5)};
    StoreAAC(1, 192000);
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(window.Line("Variant"), "Variant: *aac  | aac ");
        EXPECT_EQ(window.Line("BitrateMode"),
                  "BitrateMode: Constant Bitrate | *Long-Term Average Bitrate | Variable Bitrate "
                  "(Constrained) | Variable Bitrate hidden");
        EXPECT_EQ(window.Popup("Bitrate").GetItems().size(), 1u);
        EXPECT_TRUE(window.Popup("Bitrate").IsDisabled());
        EXPECT_EQ(window.Label(), "BitrateStaticText: 'Bitrate:'");
    });
}

TEST_F(DialogCascade, TheQualityStaysOnShowWhenAFormatOfVariantsFollowsVariableMode)
{
    StoreAAC(3);
    Run(
        [](const DialogWindow& window)
        {
        window.Choose("FileType", 2);
        EXPECT_EQ(window.Line("FormatType"), "FormatType: *lpcm | opus | ulaw");
        EXPECT_TRUE(window.Popup("VBRQuality").IsVisible());
        EXPECT_FALSE(window.Popup("Bitrate").IsVisible());
        EXPECT_EQ(window.Label(), "BitrateStaticText: 'Bitrate:'");
    });
}

TEST_F(DialogCascade, AModeThatTheNewFormatLacksGivesWayToItsFirst)
{
    StoreAAC(2);
    EXPECT_EQ(After(
                  [](const DialogWindow& window)
                  {
        window.Choose("FileType", 2);
        window.Choose("FormatType", 1);
        EXPECT_EQ(window.Line("BitrateMode"), "BitrateMode: *Long-Term Average Bitrate disabled");
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *96 kbps | 510 kbps");
    }).GetBitrateMode(),
              1u);
}

// The items of the format before are read on the way, even where nothing reads the new ones.
TEST_F(DialogCascade, AModeThatIsNotListedGivesWayOnTheWayOfVariantsToo)
{
    mScript.mFileTypes[kCAF].mFormats[1].second = {Variant(kOpus, 2), Variant(kOpus, 5)};
    StoreAAC(2, 96000, kCAF);
    mSettings.SetFormatID(kOpus);
    const TarvoATPrivateSettings settings = After(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(window.Line("FormatType"), "FormatType: lpcm | *opus | ulaw");
        EXPECT_FALSE(window.Popup("BitrateMode").IsVisible());
    });
    EXPECT_EQ(settings.GetBitrateMode(), 1u);
}

TEST_F(DialogCascade, AModeThatBothFormatsHaveStays)
{
    StoreAAC(1, 192000);
    EXPECT_EQ(
        After([](const DialogWindow& window) { window.Choose("FileType", 1); }).GetBitrateMode(),
        1u);
    EXPECT_EQ(mSettings.GetAudioFileTypeID(), kADTS);
    EXPECT_EQ(mSettings.GetBitrate(), 192000u);
}

TEST_F(DialogCascade, ARateThatBothModesHaveStaysAndAnyOtherGivesWayToTheFirst)
{
    StoreAAC(0, 192000);
    EXPECT_EQ(
        After([](const DialogWindow& window) { window.Choose("BitrateMode", 1); }).GetBitrate(),
        192000u);
    StoreAAC(0, 128000);
    EXPECT_EQ(
        After([](const DialogWindow& window) { window.Choose("BitrateMode", 1); }).GetBitrate(),
        96000u);
}

TEST_F(DialogCascade, TheRateThatShowsIsReadBeforeTheRatesAreRefilled)
{
    StoreAAC(0, 128000);
    EXPECT_EQ(After(
                  [](const DialogWindow& window)
                  {
        window.Popup("Bitrate").SetValue(2);  // nobody is told
        window.Choose("BitrateMode", 1);
    }).GetBitrate(),
              192000u);
}

TEST_F(DialogCascade, TheRateStandsWhenVariableModeIsLeft)
{
    StoreAAC(0, 192000);
    EXPECT_EQ(After(
                  [](const DialogWindow& window)
                  {
        window.Choose("BitrateMode", 3);
        window.Choose("BitrateMode", 1);
        EXPECT_TRUE(window.Popup("Bitrate").IsVisible());
        EXPECT_FALSE(window.Popup("VBRQuality").IsVisible());
        EXPECT_EQ(window.Label(), "BitrateStaticText: 'Bitrate:'");
    }).GetBitrate(),
              192000u);
}

TEST_F(DialogCascade, AVariantIsStoredWholeWithTheAudiosRateAndChannels)
{
    mRate = 48000;
    mChannels = 1;
    const TarvoATPrivateSettings settings = After(
        [](const DialogWindow& window)
        {
        window.Choose("Variant", 1);
        EXPECT_EQ(window.Line("Variant"), "Variant: lpcm 14/16 | *lpcm 12/16");
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *768 kbps disabled");
    });
    EXPECT_EQ(settings.GetFormatFlags(), 12u);
    EXPECT_EQ(settings.GetSampleRate(), 48000.0);
    EXPECT_EQ(settings.GetChannelsPerFrame(), 1u);
    EXPECT_EQ(settings.GetBytesPerFrame(), 2u);
    EXPECT_EQ(settings.GetBytesPerPacket(), 2u);
    EXPECT_EQ(settings.GetBitrate(), 768000u);
}

TEST_F(DialogCascade, NoVariantOfTheDepthLeavesTheNearestFormatAndItsBitrate)
{
    mBitDepth = 20;
    const TarvoATPrivateSettings settings = After(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(window.Line("Variant"), "Variant: disabled");
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: *1.41 Mbps disabled");
    });
    EXPECT_EQ(settings.GetBitsPerChannel(), 16u);
    EXPECT_EQ(settings.GetFormatFlags(), 14u);
    EXPECT_EQ(settings.GetBitrate(), 1411200u);
}

TEST_F(DialogCascade, TheNearestVariantIsOfTheDepthThenTheKindThenTheByteOrder)
{
    struct Row
    {
        UInt32 mDepth;
        UInt32 mOldFlags;
        std::vector<AudioStreamBasicDescription> mVariants;
        UInt32 mFlags;
        UInt32 mBits;
    };
    const auto pcm = [](UInt32 inFlags, UInt32 inBits) { return Variant(kPCM, inFlags, inBits); };
    const Row rows[] = {
        // All wishes fulfilled.
        {16, 12, {pcm(14, 16), pcm(12, 16)}, 12, 16},
        {32, 9, {pcm(12, 32), pcm(11, 32), pcm(9, 32)}, 9, 32},
        // No byte order match: the first of depth and kind.
        {32, 14, {pcm(9, 32), pcm(12, 32)}, 12, 32},
        // No kind match: the first of the depth, whatever its byte order.
        {24, 9, {pcm(14, 16), pcm(14, 24), pcm(12, 24)}, 14, 24},
        // No depth match: the first of all.
        {20, 12, {pcm(14, 16), pcm(12, 16)}, 14, 16},
        // An unknown depth does not narrow.
        {0, 9, {pcm(14, 16), pcm(12, 24), pcm(9, 32)}, 9, 32},
    };
    for (const Row& row : rows)
    {
        EmptyCatalogues();
        mBitDepth = row.mDepth;
        mScript.mFileTypes[kWAVE].mFormats = {{kPCM, {pcm(row.mOldFlags, 16)}}};
        mScript.mFileTypes[kCAF].mFormats = {{kPCM, row.mVariants}};
        mSettings.SetAudioFileTypeID(kWAVE);
        const TarvoATPrivateSettings settings =
            After([](const DialogWindow& window) { window.Choose("FileType", 2); });
        EXPECT_EQ(settings.GetFormatFlags(), row.mFlags) << "row " << &row - rows;
        EXPECT_EQ(settings.GetBitsPerChannel(), row.mBits) << "row " << &row - rows;
    }
}

// Each time the format is applied, and for the variant that follows, linear PCM asks for its
// channel counts: for the audio's in place of none, and for those of the depth.
TEST_F(DialogCascade, AFileTypeAppliesItsFormatTwiceAndAFormatOnce)
{
    Run(
        [this](const DialogWindow& window)
        {
        mPlatform.ForgetCalls();
        window.Choose("FileType", 0);
        EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'avnc'").size(), 5u);
        window.Choose("FileType", 2);
        mPlatform.ForgetCalls();
        window.Choose("FormatType", 0);
        EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'avnc'").size(), 3u);
        mPlatform.ForgetCalls();
        window.Choose("Variant", 1);
        EXPECT_EQ(mPlatform.CallsOf("AudioFormatGetProperty 'avnc'").size(), 1u);
    });
}

TEST_F(DialogCascade, AFormatWithoutVariantsKeepsTheStreamFormat)
{
    mScript.mFileTypes[kWAVE].mFormats.insert(mScript.mFileTypes[kWAVE].mFormats.begin(),
                                              {kULaw, {}});
    mSettings.SetAudioFileTypeID(kWAVE);
    mSettings.SetFormatFlags(12);
    const TarvoATPrivateSettings settings =
        After([](const DialogWindow& window) { window.Choose("FormatType", 1); });
    EXPECT_EQ(settings.GetFormatID(), kPCM);
    EXPECT_EQ(settings.GetBitsPerChannel(), 16u);
}

TEST_F(DialogCascade, AFormatWithoutVariantsLeavesTheVerdictToTheStreamFormat)
{
    mScript.mFileTypes[kADTS].mFormats = {{kAAC, {}}};
    Run(
        [](const DialogWindow& window)
        {
        window.Choose("FileType", 1);  // linear PCM is nothing for it
        EXPECT_FALSE(window.CanPressOK());
        window.Choose("FileType", 0);
        EXPECT_TRUE(window.CanPressOK());
    });
}

TEST_F(DialogCascade, OKIsOffUntilAChoiceMakesTheSettingsPossible)
{
    mRefused = {kULaw};
    EXPECT_EQ(After(
                  [](const DialogWindow& window)
                  {
        window.Choose("FormatType", 2);
        EXPECT_FALSE(window.CanPressOK());
        window.PressOK();
        EXPECT_TRUE(window.Dialog().IsRunning());
        window.Choose("FormatType", 0);
        EXPECT_TRUE(window.CanPressOK());
    }).GetFormatID(),
              kPCM);
}

TEST_F(DialogCascade, APopupWithoutAChoiceIsOffAllButFileTypeAndQuality)
{
    mSettings.SetAudioFileTypeID(kADTS);
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_TRUE(window.Popup("FormatType").IsDisabled());
        EXPECT_TRUE(window.Popup("Variant").IsDisabled());
        EXPECT_FALSE(window.Popup("BitrateMode").IsDisabled());
        EXPECT_FALSE(window.Popup("Bitrate").IsDisabled());
        EXPECT_FALSE(window.Popup("VBRQuality").IsDisabled());
        EXPECT_FALSE(window.Popup("FileType").IsDisabled());
        window.Choose("FileType", 2);
        EXPECT_FALSE(window.Popup("FormatType").IsDisabled());
        EXPECT_FALSE(window.Popup("Variant").IsDisabled());
    });
}

TEST_F(DialogCascade, AnEmptyCatalogueHasEmptyPopupsAndNoOK)
{
    mScript.mWritable.clear();
    Run(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(Form(window),
                  (Lines{"FileType:", "FormatType: disabled", "Variant: disabled",
                         "BitrateMode: disabled hidden", "Bitrate: *1.41 Mbps disabled",
                         "VBRQuality: Maximum | *High | Medium | Low | Minimum hidden",
                         "BitrateStaticText: 'Bitrate:'"}));
        EXPECT_FALSE(window.CanPressOK());
    });
}

}  // namespace
