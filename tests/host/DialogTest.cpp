#include "host/Dialog.h"

#include "TarvoSDK/TarvoRunExportSettingsDialogInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/Failure.h"
#include "kelpcore/utility/NumberText.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace
{

using host::DialogRequest;
using host::RunExportDialog;
using DialogRun = TarvoRunExportSettingsDialogInterface;

// What the plug-in does with its host object.
std::function<std::int32_t(DialogRun&, TarvoFormatInterface&)> sBehaviour;

std::int32_t Entry(int inSelector, void* inHandle, void* inHostObject)
{
    EXPECT_EQ(inSelector, kTarvoSelectorRunExportSettingsDialog);
    EXPECT_EQ(inHandle, nullptr);
    auto& run = *static_cast<DialogRun*>(inHostObject);
    return sBehaviour(run, *run.GetFormatInterface());
}

class DialogTest : public testing::Test
{
protected:
    ~DialogTest() override { sBehaviour = nullptr; }

    template <typename Behaviour>
    auto Answer(Behaviour inBehaviour)
    {
        sBehaviour = inBehaviour;
        return RunExportDialog(mPlugIn, mRequest);
    }

    template <typename Behaviour>
    void ExpectFailure(Behaviour inBehaviour, host::ExitCode inCode, int inResult,
                       const char* inText)
    {
        try
        {
            (void)Answer(inBehaviour);
            FAIL() << inText;
        }
        catch (const host::Failure& failure)
        {
            EXPECT_EQ(failure.mExitCode, inCode);
            EXPECT_EQ(failure.mResult, inResult);
            EXPECT_STREQ(failure.what(), inText);
        }
    }

    int mWindow = 0;
    host::PlugIn mPlugIn{&Entry};
    DialogRequest mRequest{
        {96000, 30, 441000, {100, 101, 102}}, "Old:0:1;", "1633973363", &mWindow};
};

TEST_F(DialogTest, TellsTheAudioTheSettingsTheFilterAndTheWindow)
{
    (void)Answer(
        [&](DialogRun& inRun, TarvoFormatInterface& inFormat)
        {
        EXPECT_NE(inRun.GetErrorInterface(), nullptr);
        EXPECT_EQ(inRun.GetParentWindow(), &mWindow);
        EXPECT_EQ(inRun.GetDialogOption(), 0);
        EXPECT_EQ(std::u16string(inFormat.GetPrivateSettings()), u"Old:0:1;");
        EXPECT_EQ(std::u16string(inFormat.GetFilterId()), u"1633973363");
        EXPECT_EQ(inFormat.GetSampleRate(), 96000);
        EXPECT_EQ(inFormat.GetSampleType(), 30);
        EXPECT_EQ(inFormat.GetSampleCount(), 441000);
        EXPECT_EQ(inFormat.GetChannelCount(), 3);
        EXPECT_EQ(inFormat.GetChannelLabel(2), 102u);
        return kTarvoResultSuccess;
    });
}

TEST_F(DialogTest, AnswersTheChosenSettings)
{
    const auto chosen = Answer(
        [](DialogRun& inRun, TarvoFormatInterface& inFormat)
        {
        inFormat.SetPrivateSettings(u"New:0:2;");
        inRun.SetCancelled(false);
        return kTarvoResultSuccess;
    });
    EXPECT_EQ(chosen, "New:0:2;");
}

TEST_F(DialogTest, AnswersNothingWhenCancelled)
{
    EXPECT_EQ(Answer(
                  [](DialogRun& inRun, TarvoFormatInterface&)
                  {
        inRun.SetCancelled(true);
        return kTarvoResultSuccess;
    }),
              std::nullopt);
    EXPECT_EQ(Answer([](DialogRun&, TarvoFormatInterface&) { return kTarvoResultSuccess; }),
              std::nullopt)
        << "not told";
}

TEST_F(DialogTest, FailsWithTheTextOfWhatCouldNotShowIt)
{
    ExpectFailure([](DialogRun&, TarvoFormatInterface&) -> std::int32_t
                  { throw std::runtime_error("There is nothing to show a dialog with."); },
                  host::kExitFailed, 0,
                  "cannot show the dialog: There is nothing to show a dialog with.");
}

TEST_F(DialogTest, FailsWithThePlugInsTextOrItsResult)
{
    ExpectFailure(
        [](DialogRun& inRun, TarvoFormatInterface&)
        {
        inRun.GetErrorInterface()->SetErrorText(u"Something broke");
        return kTarvoResultFailed;
        },
        host::kExitFailed, -1, "cannot show the dialog: Something broke");
    ExpectFailure([](DialogRun&, TarvoFormatInterface&) { return kTarvoResultNotImplemented; },
                  host::kExitFailed, -3, "cannot show the dialog: result -3");
}

TEST_F(DialogTest, FailsForAFilterThatIsNoNumber)
{
    mRequest.mFilterId = "aac";
    ExpectFailure([](DialogRun&, TarvoFormatInterface&) -> std::int32_t
                  { throw kelpcore::utility::NumberFormatError("not wholly a number"); },
                  host::kExitSettings, 0, "The filter id is no number: aac");
}

TEST(ProvideDialogsTest, TellsThatQtIsNeededWhereTheLibraryIsMissing)
{
    try
    {
        host::ProvideDialogs("libnowhere.so");
        FAIL();
    }
    catch (const host::Failure& failure)
    {
        EXPECT_EQ(failure.mExitCode, host::kExitFailed);
        const std::string text = failure.what();
        EXPECT_EQ(text.find("the dialog needs Qt 6 Widgets: "), 0u) << text;
        EXPECT_NE(text.find("/lib/libnowhere.so: "), std::string::npos) << text;
    }
}

TEST(ProvideDialogsTest, RefusesALibraryThatShowsNoDialogs)
{
    try
    {
        host::ProvideDialogs("libkelpcore.so");
        FAIL();
    }
    catch (const host::Failure& failure)
    {
        EXPECT_STREQ(failure.what(),
                     "cannot show the dialog: libkelpcore.so has no KelpuiQtRegister");
    }
}

}  // namespace
