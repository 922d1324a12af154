// Every way in which opening fails: what is noted, and what the user reads.
#include "tests/appleaudiotoolbox/ReaderFixture.h"

#include <functional>

namespace
{

using namespace testing_support;
using appleaudiotoolbox::ATErrorSite;

struct FailureRow
{
    const char* mName;
    std::function<void(ScriptedPlatform&)> mScript;
    ATErrorSite mSite;
    OSStatus mStatus;
    const char16_t* mText;
};

class ReaderFailure : public ReaderTest
{
protected:
    // A file that opens, on which each row breaks one thing.
    void HoldGoodFile()
    {
        HoldLayeredFile();
        HoldPacketTable(1000, 1024);
        mPlatform.Answer(Family::File, kAudioFilePropertyMagicCookieData, PropertyAnswer::Raw({1}));
        mPlatform.Answer(Family::Converter, kAudioConverterDecompressionMagicCookie,
                         PropertyAnswer());
    }

    void ExpectRow(const FailureRow& inRow)
    {
        HoldGoodFile();
        mPlatform.FailOpening(noErr);
        mPlatform.FailConverters(noErr);
        mPlatform.Answer(Family::Converter, kAudioConverterCurrentInputStreamDescription,
                         PropertyAnswer::Value(kHighEfficiency));
        mPlatform.Answer(Family::Converter, kAudioConverterCurrentOutputStreamDescription,
                         PropertyAnswer::Value(kStereo16));
        inRow.mScript(mPlatform);
        mReader = std::make_unique<appleaudiotoolbox::ATReader>();
        mInfo = {};
        EXPECT_FALSE(Open()) << inRow.mName;
        EXPECT_EQ(mInfo.mSite, inRow.mSite) << inRow.mName;
        EXPECT_EQ(mInfo.mStatus, inRow.mStatus) << inRow.mName;
        EXPECT_EQ(mInfo.mMessage, UTF16String()) << inRow.mName;
        mInfo.mMessage = u"General.";
        SetExtendedErrorString(mInfo);
        EXPECT_EQ(mInfo.mMessage, inRow.mText) << inRow.mName;
    }
};

std::function<void(ScriptedPlatform&)> Says(Family inFamily, UInt32 inProperty,
                                            const PropertyAnswer& inAnswer)
{
    return [=](ScriptedPlatform& platform) { platform.Answer(inFamily, inProperty, inAnswer); };
}

constexpr OSStatus kStatus = CA_FOUR_CHAR_CODE('w', 'h', 't', '?');
constexpr char16_t kGeneral[] = u"General.\nError Code: 'wht?'";
constexpr char16_t kQuiet[] = u"General.\nError Code: 0";

TEST_F(ReaderFailure, OfOpeningOrOfTheFormatListNotesItsSite)
{
    using namespace appleaudiotoolbox;
    const PropertyAnswer twoItems =
        PropertyAnswer::List<AudioFormatListItem>({{kHighEfficiency, 0}, {kCore, 0}});
    const auto list = [](const PropertyAnswer& answer)
    { return Says(Family::File, kAudioFilePropertyFormatList, answer); };
    const auto decoders = [](const PropertyAnswer& answer)
    { return Says(Family::Format, kAudioFormatProperty_DecodeFormatIDs, answer); };
    const auto emptyListAnd = [=](const PropertyAnswer& answer)
    {
        return [=](ScriptedPlatform& platform)
        {
            list(twoItems.Delivers(0))(platform);
            platform.Answer(Family::File, kAudioFilePropertyDataFormat, answer);
            };
    };
    constexpr char16_t kListText[] =
        u"Apple AudioToolbox was unable to get the list of formats from the specified file."
        u"\nError Code: 'wht?'";
    constexpr char16_t kDecoderText[] =
        u"Apple AudioToolbox was unable to find a decoder for the specified file."
        u"\nError Code: 'wht?'";
    constexpr char16_t kUnsupportedText[] =
        u"Unsupported Data Format for Apple AudioToolbox.\nError Code: 0";
    const FailureRow rows[] = {
        {"opening", [](ScriptedPlatform& platform) { platform.FailOpening(kStatus); },
         kATError_AudioFileOpenURL, kStatus,
         u"Apple AudioToolbox cannot open the specified file.\nError Code: 'wht?'"},
        {"list, query", list(PropertyAnswer::Missing(kStatus)), kATError_AudioFileGetFormatList,
         kStatus, kListText},
        {"list of 47 bytes", list(PropertyAnswer().Size(47)), kATError_General, 0, kQuiet},
        {"list of 0 bytes", list(PropertyAnswer().Size(0)), kATError_General, 0, kQuiet},
        {"list, reading", list(twoItems.GetFails(kStatus)), kATError_AudioFileGetFormatList,
         kStatus, kListText},
        {"empty list, data format, query", emptyListAnd(PropertyAnswer::Missing(kStatus)),
         kATError_General, kStatus, kGeneral},
        {"empty list, data format too large", emptyListAnd(PropertyAnswer().Size(41)),
         kATError_None, 0, kQuiet},
        {"empty list, data format, reading",
         emptyListAnd(PropertyAnswer::Value(kCore).GetFails(kStatus)), kATError_General, kStatus,
         kGeneral},
        {"decoders, query", decoders(PropertyAnswer::Missing(kStatus)),
         kATError_AudioFormatGetDecodeFormatIDs, kStatus, kDecoderText},
        {"no decoders", decoders(PropertyAnswer().Size(3)), kATError_General, 0, kQuiet},
        {"decoders, reading", decoders(PropertyAnswer().Size(8).GetFails(kStatus)),
         kATError_AudioFormatGetDecodeFormatIDs, kStatus, kDecoderText},
        {"no decoder for any layer", decoders(PropertyAnswer::Value<UInt32>(kAudioFormatFLAC)),
         kATError_UnsupportedDataFormatError, 0, kUnsupportedText},
        {"list of less than an item", list(twoItems.Delivers(47)),
         kATError_UnsupportedDataFormatError, 0, kUnsupportedText},
    };
    for (const FailureRow& row : rows)
        ExpectRow(row);
}

TEST_F(ReaderFailure, OfTheConverterOrItsCookieNotesItsSite)
{
    using namespace appleaudiotoolbox;
    const FailureRow rows[] = {
        {"converter", [](ScriptedPlatform& platform) { platform.FailConverters(0x666D743F); },
         kATError_AudioConverterNew, 0x666D743F,
         u"Apple AudioToolbox was unable to create a converter between the input and output "
         u"formats for the specified file.\nError Code: 'fmt?'"},
        {"cookie, reading",
         Says(Family::File, kAudioFilePropertyMagicCookieData,
              PropertyAnswer().Size(4).GetFails(kStatus)),
         kATError_AudioFileGetMagicCookieData, kStatus,
         u"Apple AudioToolbox was unable to read the Magic Cookie (elementary stream descriptor) "
         u"from the specified file.\nError Code: 'wht?'"},
        {"cookie, setting",
         Says(Family::Converter, kAudioConverterDecompressionMagicCookie,
              PropertyAnswer().SetFails(-50)),
         kATError_AudioConverterSetDecompressionMagicCookie, -50,
         u"Apple AudioToolbox was unable to set the Decompression Magic Cookie (elementary stream "
         u"descriptor) to convert the file.\nError Code: -50"},
    };
    for (const FailureRow& row : rows)
        ExpectRow(row);
}

TEST_F(ReaderFailure, OfTheConvertersSetUpNotesTheGeneralSiteOrNothing)
{
    using namespace appleaudiotoolbox;
    const PropertyAnswer missing = PropertyAnswer::Missing(kStatus);
    const PropertyAnswer tooLarge = PropertyAnswer::Value(kStereo16).Size(41);
    const PropertyAnswer unreadable = PropertyAnswer::Value(kStereo16).GetFails(kStatus);
    const auto input = [](const PropertyAnswer& answer)
    { return Says(Family::Converter, kAudioConverterCurrentInputStreamDescription, answer); };
    const auto output = [](const PropertyAnswer& answer)
    { return Says(Family::Converter, kAudioConverterCurrentOutputStreamDescription, answer); };
    const auto data = [](const PropertyAnswer& answer)
    { return Says(Family::File, kAudioFilePropertyDataFormat, answer); };
    const auto prime = [](const PropertyAnswer& answer)
    { return Says(Family::Converter, kAudioConverterPrimeInfo, answer); };
    const PropertyAnswer primed = PropertyAnswer().Size(8).Writable();
    const FailureRow rows[] =
        {
            {"input, query", input(missing), kATError_General, kStatus, kGeneral},
            {"input too large", input(tooLarge), kATError_None, 0, kQuiet},
            {"input, reading", input(unreadable), kATError_General, kStatus, kGeneral},
            {"output, query", output(missing), kATError_General, kStatus, kGeneral},
            {"output too large", output(tooLarge), kATError_None, 0, kQuiet},
            {"output, reading", output(unreadable), kATError_General, kStatus, kGeneral},
            {"data format, query", data(missing), kATError_General, kStatus, kGeneral},
            {"data format too large", data(tooLarge), kATError_None, 0, kQuiet},
            {"data format, reading", data(unreadable), kATError_General, kStatus, kGeneral},
            {"prime info, query", prime(missing), kATError_General, kStatus, kGeneral},
            {"prime info not writable", prime(primed.Writable(false)), kATError_None, 0, kQuiet},
            {"prime info too large", prime(primed.Size(9)), kATError_None, 0, kQuiet},
            {"prime info, setting", prime(primed.SetFails(kStatus)), kATError_General, kStatus,
             kGeneral},
            {"no converter, no status",
             [](ScriptedPlatform& platform)
             {
        platform.MakeConvertersWith(
            [](const AudioStreamBasicDescription&, const AudioStreamBasicDescription&) {
            return NewConverterAnswer{noErr, false, true};
        });
        platform.Forget(Family::File, kAudioFilePropertyMagicCookieData);
             },
             kATError_General, 0, kQuiet},
    };
    for (const FailureRow& row : rows)
        ExpectRow(row);
}

TEST_F(ReaderFailure, OfTheUpperBoundHasStatus0WhateverThePlatformSaid)
{
    const auto bound = [](const PropertyAnswer& answer)
    { return Says(Family::File, kAudioFilePropertyPacketSizeUpperBound, answer); };
    constexpr char16_t kText[] =
        u"Apple AudioToolbox was unable to read the maximum packet size for this VBR file."
        u"\nError Code: 0";
    constexpr ATErrorSite kSite = appleaudiotoolbox::kATError_AudioFileGetPacketSizeUpperBound;
    const FailureRow rows[] = {
        {"query", bound(PropertyAnswer::Missing(kStatus)), kSite, 0, kText},
        {"too large", bound(PropertyAnswer().Size(5)), kSite, 0, kText},
        {"reading", bound(PropertyAnswer().Size(4).GetFails(kStatus)), kSite, 0, kText},
        {"a bound of 0", bound(PropertyAnswer::Value<UInt32>(0)), kSite, 0, kText},
    };
    for (const FailureRow& row : rows)
        ExpectRow(row);
}

TEST_F(ReaderFailure, OfTheUpperBoundWipesTheStatusOfAMissingPacketTable)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.Forget(Family::File, kAudioFilePropertyPacketSizeUpperBound);
    EXPECT_FALSE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_AudioFileGetPacketSizeUpperBound);
    EXPECT_EQ(mInfo.mStatus, 0);
}

TEST_F(ReaderFailure, WithoutAStatusLeavesAnEarlierOneAlone)
{
    HoldGoodFile();
    mPlatform.Answer(Family::File, kAudioFilePropertyFormatList, PropertyAnswer().Size(47));
    mInfo.mStatus = 77;
    EXPECT_FALSE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_General);
    EXPECT_EQ(mInfo.mStatus, 77);
}

TEST_F(ReaderFailure, OfAnUndecodableSingleFormatIsThatOfTheConverter)
{
    mPlatform.HoldFile(kAudioFileM4AType, kAAC);
    mPlatform.FailConverters(kAudioConverterErr_FormatNotSupported);
    EXPECT_FALSE(Open());
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_AudioConverterNew);
}

TEST_F(ReaderFailure, OfOpeningByCallbacksNotesTheSameSite)
{
    mPlatform.FailOpening(kAudioFileUnsupportedFileTypeError);
    int data = 0;
    const appleaudiotoolbox::ReadCallbacks callbacks = {[](void*, SInt64, UInt32, void*, UInt32*)
                                                        { return OSStatus{noErr}; },
                                                        [](void*) { return SInt64{0}; }};
    EXPECT_FALSE(mReader->Initialize(&data, callbacks, 0, mInfo, false));
    EXPECT_EQ(mInfo.mSite, appleaudiotoolbox::kATError_AudioFileOpenURL);
    EXPECT_EQ(mInfo.mStatus, kAudioFileUnsupportedFileTypeError);
}

TEST_F(ReaderFailure, OfAnAccountableStepBehindTheConverterLeavesBothOpenUntilTheEnd)
{
    HoldGoodFile();
    mPlatform.Forget(Family::File, kAudioFilePropertyPacketSizeUpperBound);
    EXPECT_FALSE(Open());
    EXPECT_EQ(mPlatform.OpenFiles(), 1);
    EXPECT_EQ(mPlatform.OpenConverters(), 1);
}

}  // namespace
