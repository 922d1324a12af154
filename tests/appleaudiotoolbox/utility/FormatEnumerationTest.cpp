// Formats of a file type on a scripted platform.
#include "tests/appleaudiotoolbox/utility/FormatEnumerationFixture.h"
#include "tests/support/TraceLines.h"

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;

constexpr UInt32 kProtected = 0x64726D73;
constexpr auto kFormatsProperty = kAudioFileGlobalInfo_AvailableFormatIDs;
constexpr auto kVariantsProperty = kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat;

Codes Keys(const ATFormatTypeMap& inFormats)
{
    Codes keys;
    for (const auto& [format, variants] : inFormats)
        keys.push_back(format);
    return keys;
}

using ReadableFormats = FormatEnumeration;
using WritableFormats = FormatEnumeration;

TEST_F(ReadableFormats, AreAllFormatsOfTheTypeWithoutVariants)
{
    HoldFormats({kPCM, kAAC, kALAC});
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), (Codes{kAAC, kALAC, kPCM}));
    for (const auto& [format, variants] : mFormats)
        EXPECT_TRUE(variants.empty()) << format;
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{"AudioFileGetGlobalInfoSize 'fmid' specifier 4 'caff' size 0",
                     "AudioFileGetGlobalInfo 'fmid' specifier 4 'caff' size 12"}));
}

TEST_F(ReadableFormats, LeaveTheProtectedFormatOut)
{
    HoldFormats({kProtected, kAAC, kProtected});
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), Codes{kAAC});
}

TEST_F(ReadableFormats, ReplaceWhatTheMapHeld)
{
    HoldFormats({kAAC});
    mFormats[kAAC].resize(2);
    mFormats[kPCM];
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), Codes{kAAC});
    EXPECT_TRUE(mFormats[kAAC].empty());
}

TEST_F(ReadableFormats, AreNoneWhereTheSizeQueryFails)
{
    mPlatform.Answer(Family::Global, kFormatsProperty,
                     PropertyAnswer::List(Codes{kAAC}).InfoFails(-50));
    mFormats[kPCM];
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_TRUE(mFormats.empty());
    EXPECT_EQ(mPlatform.Calls().size(), 1u);
}

TEST_F(ReadableFormats, AreNoneWhereReadingFails)
{
    mPlatform.Answer(Family::Global, kFormatsProperty,
                     PropertyAnswer::List(Codes{kAAC}).GetFails(-50));
    mFormats[kPCM];
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_TRUE(mFormats.empty());
}

TEST_F(ReadableFormats, AreNoneInLessThanOneCode)
{
    for (const UInt32 size : {0u, 3u})
    {
        mPlatform.Answer(Family::Global, kFormatsProperty,
                         PropertyAnswer::List(Codes{kAAC}).Size(size));
        QueryReadableFormats(kCAF, mFormats);
        EXPECT_TRUE(mFormats.empty()) << size;
    }
}

TEST_F(ReadableFormats, EndWhereTheAnswerEnds)
{
    mPlatform.Answer(Family::Global, kFormatsProperty,
                     PropertyAnswer::List(Codes{kAAC, kPCM}).Size(16));
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), (Codes{kAAC, kPCM}));

    mPlatform.Answer(Family::Global, kFormatsProperty,
                     PropertyAnswer::List(Codes{kAAC, kPCM}).Size(7));
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), (Codes{kAAC}));
}

TEST_F(ReadableFormats, AreTracedWithTheirNamesInThePlatformsOrder)
{
    const TraceLines trace(6);
    HoldFormats({kPCM, kProtected, kAAC});
    mPlatform.AnswerWith(Family::Format, kAudioFormatProperty_FormatName,
                         [](const Question& question)
                         {
        return question.mTurn == 0 ? PropertyAnswer::Name("Linear \xC3\xA4")
                                   : PropertyAnswer::Name("");
    });
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_EQ(
        trace.Lines(),
        (Calls{TraceLines::Line("<6> \t   'lpcm' Linear \xC3\xA4\n\n"),
               TraceLines::Line("<6> \t   'aac ' (Unnamed Format: 'aac ', 0x61616320)\n\n")}));
}

TEST_F(ReadableFormats, AreNotTracedAtLevel5)
{
    const TraceLines trace(5);
    HoldFormats({kPCM});
    QueryReadableFormats(kCAF, mFormats);
    EXPECT_EQ(trace.Lines(), Calls());
    EXPECT_EQ(mPlatform.CallsOf("AudioFormat"), Calls());
}

TEST_F(WritableFormats, AreThoseThatHaveAnEncoderEachWithItsVariants)
{
    HoldFormats({kPCM, kAAC, kALAC});
    mScript.mEncodable = {kALAC, 5, kPCM};
    QueryWritableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), (Codes{kALAC, kPCM}));
    ASSERT_EQ(mFormats[kALAC].size(), 1u);
    EXPECT_EQ(mFormats[kALAC][0].mFormatDescription.mFormatID, kALAC);
    ASSERT_EQ(mFormats[kPCM].size(), 1u);
    EXPECT_EQ(mFormats[kPCM][0].mFormatDescription.mFormatID, kPCM);
}

TEST_F(WritableFormats, AskForTheTypesFormatsThenForTheEncodersThenForVariants)
{
    HoldFormats({kAAC});
    mScript.mEncodable = {kAAC, kPCM};
    QueryWritableFormats(kCAF, mFormats);
    ASSERT_GE(mPlatform.Calls().size(), 5u);
    EXPECT_EQ(Calls(mPlatform.Calls().begin(), mPlatform.Calls().begin() + 5),
              (Calls{"AudioFileGetGlobalInfoSize 'fmid' specifier 4 'caff' size 0",
                     "AudioFileGetGlobalInfo 'fmid' specifier 4 'caff' size 4",
                     "AudioFormatGetPropertyInfo 'acof' specifier none size 0",
                     "AudioFormatGetProperty 'acof' specifier none size 8",
                     "AudioFileGetGlobalInfoSize 'sdid' specifier 8 size 0"}));
}

TEST_F(WritableFormats, KeepTheProtectedFormatIfItHasAnEncoder)
{
    HoldFormats({kProtected});
    mScript.mEncodable = {kProtected};
    QueryWritableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), Codes{kProtected});
}

TEST_F(WritableFormats, KeepAFormatWithoutVariants)
{
    HoldVariants(kAAC, {});
    mScript.mEncodable = {kAAC};
    QueryWritableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), Codes{kAAC});
    EXPECT_TRUE(mFormats[kAAC].empty());
}

TEST_F(WritableFormats, ReplaceWhatTheMapHeld)
{
    HoldFormats({kAAC});
    mFormats[kALAC].resize(3);
    QueryWritableFormats(kCAF, mFormats);
    EXPECT_TRUE(mFormats.empty());
}

TEST_F(WritableFormats, OfAnEncoderThatIsListedTwiceAreAskedTwiceAndTheLastAnswerStands)
{
    HoldFormats({kAAC});
    mScript.mEncodable = {kAAC, kPCM, kAAC};
    const auto one = PropertyAnswer::List<AudioStreamBasicDescription>({Variant(kAAC)});
    const auto two =
        PropertyAnswer::List<AudioStreamBasicDescription>({Variant(kAAC, 1), Variant(kAAC, 2)});
    mPlatform.AnswerInTurn(Family::Global, kVariantsProperty, {one, two});
    QueryWritableFormats(kCAF, mFormats);
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfo 'sdid'").size(), 2u);
    ASSERT_EQ(mFormats[kAAC].size(), 2u);
    EXPECT_EQ(mFormats[kAAC][1].mFormatDescription.mFormatFlags, 2u);
}

TEST_F(WritableFormats, AreNoneWhereTheTypesFormatsCannotBeLearned)
{
    mScript.mEncodable = {kAAC};
    mFormats[kPCM];
    for (const PropertyAnswer& answer : {PropertyAnswer::List(Codes{kAAC}).InfoFails(-50),
                                         PropertyAnswer::List(Codes{kAAC}).GetFails(-50)})
    {
        mPlatform.Answer(Family::Global, kFormatsProperty, answer);
        QueryWritableFormats(kCAF, mFormats);
        EXPECT_TRUE(mFormats.empty());
        EXPECT_EQ(mPlatform.CallsOf("AudioFormat"), Calls());
    }
}

TEST_F(WritableFormats, AreNoneWithoutEncoders)
{
    HoldFormats({kAAC});
    mPlatform.Forget(Family::Format, kAudioFormatProperty_EncodeFormatIDs);
    QueryWritableFormats(kCAF, mFormats);
    EXPECT_TRUE(mFormats.empty());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'sdid'"), Calls());
}

TEST_F(WritableFormats, TakeAnEncoderListWhoseSizeQueryFailsButTellsASize)
{
    HoldFormats({kAAC, kPCM});
    mPlatform.Answer(Family::Format, kAudioFormatProperty_EncodeFormatIDs,
                     PropertyAnswer::List(Codes{kPCM, kAAC}).InfoFails(-50).Size(4));
    QueryWritableFormats(kCAF, mFormats);
    EXPECT_EQ(Keys(mFormats), Codes{kPCM});
}

}  // namespace
