// Selector 15: the settings dialog on the host's behalf.
#include "tests/Tarvo_PlugIns/TarvoAT/dialog/SettingsDialogFixture.h"

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"
#include "tests/Tarvo_PlugIns/TarvoAT/ExportHost.h"

#include <kelpcore/utility/NumberText.h>

#include <stdexcept>

namespace
{

using namespace testing_support;
using tarvo::TarvoATInterface;
using tarvo::TarvoATPrivateSettings;

constexpr char16_t kAACFilter[] = u"1633973363";

class ExportDialogSelector : public SettingsDialog
{
protected:
    ExportDialogSelector()
    {
        mHost.mFormat = &mFormat;
        TarvoATInterface::mHostInterfaceVersionMajor = 1;
        TarvoATInterface::mHostInterfaceVersionMinor = 2;
    }
    ~ExportDialogSelector() override
    {
        TarvoATInterface::mHostInterfaceVersionMajor = 0;
        TarvoATInterface::mHostInterfaceVersionMinor = 0;
    }

    std::int32_t Enter(const ScriptedPresenter::Act& inAct)
    {
        const ScriptedPresenter presenter(inAct);
        mLog.clear();
        return TarvoATInterface().EntryPoint(15, nullptr, &mHost);
    }
    TarvoATPrivateSettings Stored() const
    {
        TarvoATPrivateSettings settings;
        (void)settings.InitializeFromSerialized(mFormat.mSettings.c_str());
        return settings;
    }
    static void PressOK(const DialogWindow& inWindow) { inWindow.PressOK(); }

    CallLog mLog;
    ExportFormat mFormat{mLog};
    RecordingExportDialog mHost{mLog};
};

TEST_F(ExportDialogSelector, OKWritesTheSettingsAndTellsSo)
{
    EXPECT_EQ(Enter(
                  [this](const DialogWindow& window)
                  {
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFormatInterface", "GetParentWindow",
                                 "GetDialogOption", "GetPrivateSettings", "GetSampleRate",
                                 "GetChannelCount", "GetSampleType", "GetFilterId"}));
        mLog.clear();
        window.Choose("FileType", 3);
        window.PressOK();
    }),
              0);
    EXPECT_EQ(mLog, (CallLog{"SetPrivateSettings " + Quoted(mFormat.mSettings.c_str()),
                             "SetCancelled 0"}));
    EXPECT_EQ(Stored().GetAudioFileTypeID(), kM4A);
    EXPECT_EQ(Stored().GetFormatID(), kAAC);
}

TEST_F(ExportDialogSelector, CancelTellsSoAndLeavesTheSettings)
{
    mFormat.mSettings = u"anything";
    EXPECT_EQ(Enter(
                  [this](const DialogWindow& window)
                  {
        mLog.clear();
        window.Choose("FileType", 3);
        window.PressCancel();
    }),
              0);
    EXPECT_EQ(mLog, CallLog{"SetCancelled 1"});
    EXPECT_EQ(mFormat.mSettings, u"anything");
}

TEST_F(ExportDialogSelector, OnlyHostsAboveOnePointZeroAreAskedForTheOption)
{
    TarvoATInterface::mHostInterfaceVersionMinor = 0;
    Enter(
        [this](const DialogWindow&)
        {
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFormatInterface", "GetParentWindow",
                                 "GetPrivateSettings", "GetSampleRate", "GetChannelCount",
                                 "GetSampleType", "GetFilterId"}));
    });
    TarvoATInterface::mHostInterfaceVersionMajor = 2;
    Enter([this](const DialogWindow&) { EXPECT_EQ(mLog[3], "GetDialogOption"); });
}

TEST_F(ExportDialogSelector, TheDialogBelongsToTheHostsWindow)
{
    int window = 0;
    mHost.mWindow = &window;
    Enter([&](const DialogWindow& open) { EXPECT_EQ(open.Dialog().GetParentWindow(), &window); });
}

TEST_F(ExportDialogSelector, TheStoredSettingsAreWhereItStarts)
{
    StoreAAC(1, 192000);
    mFormat.mSettings = mSettings.GetSerialized();
    Enter(
        [](const DialogWindow& window)
        {
        EXPECT_EQ(window.Line("FileType"), "FileType: WAVE | AAC | CAF | *MPEG-4");
        EXPECT_EQ(window.Line("Bitrate"), "Bitrate: 96 kbps | *192 kbps | 1.5 Mbps");
    });
}

TEST_F(ExportDialogSelector, TheSampleTypeDecidesWhichVariantsAreOffered)
{
    struct Row
    {
        std::int32_t mSampleType;
        const char* mLine;
    };
    const Row rows[] = {
        {10, "Variant: disabled"},
        {20, "Variant: *lpcm 14/16 | lpcm 12/16"},
        {30, "Variant: *lpcm 14/24 | lpcm 12/24"},
        {40, "Variant: *lpcm 11/32 | lpcm 9/32"},
        {50, "Variant: disabled"},
    };
    for (const Row& row : rows)
    {
        mFormat.mSampleType = row.mSampleType;
        Enter([&](const DialogWindow& window)
              { EXPECT_EQ(window.Line("Variant"), row.mLine) << row.mSampleType; });
    }
}

TEST_F(ExportDialogSelector, RateAndChannelsOfTheAudioStandInTheSettings)
{
    mFormat.mSampleRate = 96000;
    mFormat.mChannelCount = 0x100000006;  // the low 32 bits count
    EXPECT_EQ(Enter(PressOK), 0);
    EXPECT_EQ(Stored().GetSampleRate(), 96000.0);
    EXPECT_EQ(Stored().GetChannelsPerFrame(), 6u);
    EXPECT_EQ(Stored().GetBytesPerFrame(), 12u);
}

TEST_F(ExportDialogSelector, TheAACFilterFixesTheFileTypeWhateverIsStored)
{
    StoreAAC(1, 192000);
    for (const std::u16string& stored : {std::u16string(), std::u16string(u"nonsense"),
                                         std::u16string(mSettings.GetSerialized().c_str())})
    {
        mFormat.mSettings = stored;
        mFormat.mFilterId = kAACFilter;
        EXPECT_EQ(Enter(
                      [](const DialogWindow& window)
                      {
            EXPECT_EQ(window.Line("FileType"), "FileType: WAVE | *AAC | CAF | MPEG-4 disabled");
            EXPECT_EQ(window.Line("FormatType"), "FormatType: *aac  disabled");
            window.PressOK();
        }),
                  0);
        EXPECT_EQ(Stored().GetAudioFileTypeID(), kADTS);
        EXPECT_EQ(Stored().GetFormatID(), kAAC);
    }
}

TEST_F(ExportDialogSelector, TheAACFilterStartsFromAACWhereTheFileTypeHasMore)
{
    constexpr UInt32 kMP3 = 0x2E6D7033;
    mScript.mEncodable.push_back(kMP3);
    mScript.mFileTypes[kADTS].mFormats = {{kMP3, {Variant(kMP3)}}, {kAAC, {Variant(kAAC)}}};
    mFormat.mFilterId = kAACFilter;
    EXPECT_EQ(Enter(
                  [](const DialogWindow& window)
                  {
        EXPECT_EQ(window.Line("FormatType"), "FormatType: .mp3 | *aac ");
        window.PressOK();
    }),
              0);
    EXPECT_EQ(Stored().GetFormatID(), kAAC);
}

TEST_F(ExportDialogSelector, AnyOtherFilterChangesNothing)
{
    mFormat.mFilterId = u"1667327590";  // caff
    Enter([](const DialogWindow& window)
          { EXPECT_EQ(window.Line("FileType"), "FileType: WAVE | AAC | *CAF | MPEG-4"); });
}

TEST_F(ExportDialogSelector, AFilterThatIsNoNumberThrowsBeforeAnythingOpens)
{
    for (const char16_t* filter : {u"AAC", u"1633973363x", u"-1", u"4294967296"})
    {
        mFormat.mFilterId = filter;
        EXPECT_THROW(Enter([](const DialogWindow&) { ADD_FAILURE() << "a window opened"; }),
                     kelpcore::utility::NumberFormatError)
            << Quoted(filter);
        EXPECT_EQ(mLog.back(), "GetFilterId");
    }
}

TEST_F(ExportDialogSelector, ADialogThatCannotBeOpenedThrowsAndNothingIsTold)
{
    const DialogArchiveFile damaged("<ui");
    EXPECT_THROW(Enter(PressOK), kelpui::ui::DialogArchiveError);
    EXPECT_EQ(mLog.back(), "GetFilterId");
}

TEST_F(ExportDialogSelector, AnExceptionPassesToTheHostAndNothingIsTold)
{
    mFormat.mSettings = u"anything";
    EXPECT_THROW(Enter([](const DialogWindow&) { throw std::logic_error("toolkit"); }),
                 std::logic_error);
    EXPECT_EQ(mLog.back(), "GetFilterId");
    EXPECT_EQ(mFormat.mSettings, u"anything");
}

TEST_F(ExportDialogSelector, WithoutAPresenterTheHostGetsAnError)
{
    EXPECT_THROW(TarvoATInterface().EntryPoint(15, nullptr, &mHost), std::runtime_error);
    EXPECT_EQ(mLog.back(), "GetFilterId");
}

}  // namespace
