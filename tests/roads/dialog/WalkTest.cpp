// A person's way through all that the dialog offers: at each step it shows what the model says.

#include "tests/roads/dialog/DialogPerson.h"
#include "tests/roads/dialog/DialogRoadFixture.h"

namespace
{

using namespace testing_support;

// Chooses in the dialog and in the model, by mouse and by keys in turns, and compares.
class Walk
{
public:
    Walk(const DialogPerson& inPerson, DialogModel& ioModel) : mPerson(inPerson), mModel(ioModel)
    {
        Compare("at the start");
    }

    void Choose(PopupID inPopup, int inItem)
    {
        if (testing::Test::HasFailure())
            return;  // one failure brings about the next ones
        ++mSteps % 2 ? mPerson.ChooseByMouse(inPopup, inItem)
                     : mPerson.ChooseByKeys(inPopup, inItem);
        mModel.Choose(inPopup, inItem);
        Compare(std::string("after item ") + std::to_string(inItem) + " of " +
                kPopupNames[inPopup] + " for " + mModel.FormatCode() + " in " + mModel.TypeCode());
    }

    // The last item of what has more than one, and back to the first.
    void Visit(PopupID inPopup)
    {
        if (const int count = mModel.Choices(inPopup); count > 1)
        {
            Choose(inPopup, count - 1);
            Choose(inPopup, 0);
        }
    }

    void VisitAll(PopupID inPopup, const std::function<void()>& inThen)
    {
        const int count = mModel.Choices(inPopup);
        for (int item = 0; item < count; ++item)
        {
            Choose(inPopup, item);
            inThen();
        }
        if (count == 0)
            inThen();
    }

    int Steps() const { return mSteps; }

private:
    void Compare(const std::string& inWhen) const
    {
        EXPECT_EQ(Differences(mModel.State(), mPerson.Look()), "") << inWhen;
    }

    const DialogPerson& mPerson;
    DialogModel& mModel;
    int mSteps = 0;
};

void WalkThrough(Walk& ioWalk)
{
    ioWalk.VisitAll(kTypePopup,
                    [&]
                    {
        ioWalk.VisitAll(kFormatPopup,
                        [&]
                        {
            ioWalk.Visit(kVariantPopup);
            ioWalk.VisitAll(kModePopup,
                            [&]
                            {
                ioWalk.Visit(kBitratePopup);
                ioWalk.Visit(kQualityPopup);
            });
        });
    });
}

class WalkTest : public DialogRoadFixture, public testing::WithParamInterface<AudioCase>
{
protected:
    static host::ExportWish Wish(const char* inType, const char* inFormat)
    {
        host::ExportWish wish;
        wish.mType = inType;
        wish.mFormat = inFormat;
        return wish;
    }
};

TEST_P(WalkTest, EveryTypeAndFormatShowsWhatTheCatalogueHas)
{
    const host::DialogRequest request = RequestFor(MakeAudio(GetParam()), Wish("wav", "pcm"));
    int steps = 0;
    AtNextDialog(
        [&](const DialogPerson& inPerson)
        {
        DialogModel model(GetParam().mAudio, StartOf(request.mSettings));
        Walk walk(inPerson, model);
        WalkThrough(walk);
        steps = walk.Steps();
        inPerson.Click("CancelButtonID");
    });
    EXPECT_EQ(host::RunExportDialog(ThePlugIn(), request), std::nullopt);
    EXPECT_GT(steps, 100);
    RecordProperty("steps", steps);
}

INSTANTIATE_TEST_SUITE_P(, WalkTest, testing::ValuesIn(kAudioCases),
                         [](const auto& inInfo) { return NameOf(inInfo.param.mAudio); });

using FixedTypeTest = WalkTest;

TEST_F(FixedTypeTest, StaysWhereItIs)
{
    const AudioCase& audio = kAudioCases[0];
    const host::DialogRequest request = RequestFor(MakeAudio(audio), Wish("aac", ""));
    EXPECT_EQ(request.mFilterId, "1633973363");
    AtNextDialog(
        [&](const DialogPerson& inPerson)
        {
        DialogModel model(audio.mAudio, StartOf(request.mSettings), true);
        Walk walk(inPerson, model);
        EXPECT_EQ(model.Choices(kTypePopup), 0);
        walk.VisitAll(kModePopup,
                      [&]
                      {
            walk.Visit(kBitratePopup);
            walk.Visit(kQualityPopup);
        });
        inPerson.Click("OKButtonID");
    });
    const auto chosen = host::RunExportDialog(ThePlugIn(), request);
    ASSERT_TRUE(chosen);
    EXPECT_EQ(StartOf(*chosen).mType, "adts");
    EXPECT_EQ(StartOf(*chosen).mMode, 3u);
    EXPECT_EQ(StartOf(*chosen).mQuality, 127u);
}

using ClosingTest = WalkTest;

TEST_F(ClosingTest, ReturnTakesTheSettingsAndEscapeDoesNot)
{
    const host::DialogRequest request = RequestFor(MakeAudio(kAudioCases[0]), Wish("mp3", ""));
    const auto closeWith = [&](int inKey)
    {
        AtNextDialog(
            [&](const DialogPerson& inPerson)
            {
            inPerson.ChooseByMouse(kBitratePopup, 0);
            inPerson.Press(inKey);
        });
        return host::RunExportDialog(ThePlugIn(), request);
    };
    const auto taken = closeWith(Qt::Key_Return);
    ASSERT_TRUE(taken);
    EXPECT_EQ(StartOf(*taken).mBitrate, 32000u);
    EXPECT_EQ(closeWith(Qt::Key_Escape), std::nullopt);
}

}  // namespace
