// Variants of a format on a scripted platform.
#include "kelpcore/utility/StringConversion.h"
#include "tests/appleaudiotoolbox/utility/FormatEnumerationFixture.h"
#include "tests/support/TraceLines.h"

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;
using FormatVariants = FormatEnumeration;

constexpr auto kVariantsProperty = kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat;
constexpr auto kChannelsProperty = kAudioFormatProperty_AvailableEncodeNumberChannels;

std::string UTF8(const UTF16String& inText)
{
    return kelpcore::utility::UTF16to8(inText).c_str();
}

TEST_F(FormatVariants, AreLearnedInAFixedOrderOfQuestions)
{
    HoldVariants(kAAC, {Variant(kAAC)});
    mScript.mEncoders[kAAC].mChannelCounts = {1, 2};
    CompleteFormatsTo({0.0, kAAC, 0, 0, 1024, 0, 0, 0, 0});
    QueryFormatVariants(kCAF, kAAC, mVariants);
    EXPECT_EQ(
        mPlatform.Calls(),
        (Calls{"AudioFileGetGlobalInfoSize 'sdid' specifier 8 size 0",
               "AudioFileGetGlobalInfo 'sdid' specifier 8 size 40",
               "AudioFormatGetPropertyInfo 'fnam' specifier 40 size 0",
               "AudioFormatGetProperty 'fmti' specifier none size 40",
               "AudioConverterNew 44100 'lpcm' 14 4/1/4/2/16 to 0 'aac ' 0 0/1024/0/0/0",
               "AudioConverterSetProperty 'acbf' size 4: 00 00 00 00",
               "AudioConverterSetProperty 'acbf' size 4: 01 00 00 00",
               "AudioConverterSetProperty 'acbf' size 4: 03 00 00 00",
               "AudioConverterSetProperty 'acbf' size 4: 02 00 00 00", "AudioConverterDispose",
               "AudioFormatGetPropertyInfo 'avnc' specifier 40 size 0",
               "AudioFormatGetProperty 'avnc' specifier 40 size 8"}));
}

TEST_F(FormatVariants, KeepThePlatformsOrder)
{
    HoldVariants(kPCM, {Variant(kPCM, 12, 24), Variant(kPCM, 12, 16), Variant(kPCM, 9, 32)});
    mVariants.resize(7);
    QueryFormatVariants(kCAF, kPCM, mVariants);
    ASSERT_EQ(mVariants.size(), 3u);
    EXPECT_EQ(mVariants[0].mFormatDescription.mBitsPerChannel, 24u);
    EXPECT_EQ(mVariants[1].mFormatDescription.mBitsPerChannel, 16u);
    EXPECT_EQ(mVariants[2].mFormatDescription.mBitsPerChannel, 32u);
    EXPECT_EQ(mVariants[2].mFormatDescription.mFormatFlags, 9u);
    EXPECT_EQ(mVariants[2].mFormatDescription.mFramesPerPacket, 1u);
}

TEST_F(FormatVariants, HaveTheirBitRates)
{
    HoldVariants(kAAC, {Variant(kAAC)});
    mScript.mEncoders[kAAC].mModes[0] = {{{64000.0, 64000.0}, {96000.0, 96000.0}}, 96000};
    const ATFormatType variant = OnlyVariant(kAAC);
    EXPECT_EQ(variant.mBitratesCBR.size(), 2u);
    EXPECT_EQ(variant.mDefaultCBR, 96000u);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty 'brat'"), Calls());
}

TEST_F(FormatVariants, AreNamedForNoChannelsInParticularAndBeforeTheyAreCompleted)
{
    AudioStreamBasicDescription listed = Variant(kAAC);
    listed.mChannelsPerFrame = 6;
    HoldVariants(kAAC, {listed});
    CompleteFormatsTo({0.0, kAAC, 0, 0, 1024, 0, 2, 0, 0});
    std::vector<AudioStreamBasicDescription> named;
    mPlatform.AnswerWith(Family::Format, kAudioFormatProperty_FormatName,
                         [&](const Question& question)
                         {
        if (question.mKind == Question::Kind::Get)
        {
            named.emplace_back();
            std::memcpy(&named.back(), question.mSpecifier.data(), sizeof(named.back()));
        }
        return PropertyAnswer::Name("Advanced");
    });
    EXPECT_EQ(UTF8(OnlyVariant(kAAC).mName), "Advanced");
    ASSERT_EQ(named.size(), 1u);
    EXPECT_EQ(named[0].mFormatID, kAAC);
    EXPECT_EQ(named[0].mChannelsPerFrame, 0u);
    EXPECT_EQ(named[0].mFramesPerPacket, 0u);
}

TEST_F(FormatVariants, TakeWhatTheFormatInfoFillsIn)
{
    HoldVariants(kAAC, {Variant(kAAC)});
    CompleteFormatsTo({8000.0, kAAC, 3, 11, 1024, 12, 2, 13, 0});
    const CAStreamBasicDescription format = OnlyVariant(kAAC).mFormatDescription;
    EXPECT_EQ(format.mSampleRate, 8000.0);
    EXPECT_EQ(format.mFormatFlags, 3u);
    EXPECT_EQ(format.mBytesPerPacket, 11u);
    EXPECT_EQ(format.mFramesPerPacket, 1024u);
    EXPECT_EQ(format.mBytesPerFrame, 12u);
    EXPECT_EQ(format.mChannelsPerFrame, 2u);  // nobody was asked for channels successfully
    EXPECT_EQ(format.mBitsPerChannel, 13u);
}

TEST_F(FormatVariants, LoseTheListedChannelsWithoutFormatInfo)
{
    AudioStreamBasicDescription listed = Variant(kAAC);
    listed.mChannelsPerFrame = 6;
    HoldVariants(kAAC, {listed});
    EXPECT_EQ(OnlyVariant(kAAC).mFormatDescription.mChannelsPerFrame, 0u);
}

TEST_F(FormatVariants, AreAskedForChannelsAsTheFormatInfoLeftThem)
{
    HoldVariants(kAAC, {Variant(kAAC)});
    const AudioStreamBasicDescription completed = {8000.0, kAAC, 3, 11, 1024, 12, 9, 13, 0};
    CompleteFormatsTo(completed);
    std::vector<Bytes> specifiers;
    mPlatform.AnswerWith(Family::Format, kChannelsProperty,
                         [&](const Question& question)
                         {
        specifiers.push_back(question.mSpecifier);
        return PropertyAnswer::List(Codes{2});
    });
    QueryFormatVariants(kCAF, kAAC, mVariants);
    const Bytes asked = BytesOf<AudioStreamBasicDescription>({completed});
    EXPECT_EQ(specifiers, (std::vector<Bytes>{asked, asked}));
}

TEST_F(FormatVariants, EndWhereTheAnswerEnds)
{
    mPlatform.Answer(Family::Global, kVariantsProperty,
                     PropertyAnswer::List<AudioStreamBasicDescription>(
                         {Variant(kPCM, 12, 16), Variant(kPCM, 12, 24)})
                         .Size(130));
    QueryFormatVariants(kCAF, kPCM, mVariants);
    ASSERT_EQ(mVariants.size(), 2u);
    EXPECT_EQ(mVariants[1].mFormatDescription.mBitsPerChannel, 24u);
}

struct ChannelRow
{
    Codes mCounts;
    UInt32 mChannels;
};

TEST_F(FormatVariants, HaveTheOneChannelCountOfTheirEncoderOr0)
{
    const ChannelRow rows[] = {{{1}, 1},    {{6}, 6},    {{0xFFFFFFFF}, 0},
                               {{1, 2}, 0}, {{2, 2}, 0}, {{0xFFFFFFFF, 2}, 0},
                               {{0}, 0},    {{}, 0}};
    HoldVariants(kAAC, {Variant(kAAC)});
    CompleteFormatsTo({0.0, kAAC, 0, 0, 1024, 0, 9, 0, 0});
    for (const ChannelRow& row : rows)
    {
        mPlatform.Answer(Family::Format, kChannelsProperty, PropertyAnswer::List(row.mCounts));
        EXPECT_EQ(OnlyVariant(kAAC).mFormatDescription.mChannelsPerFrame, row.mChannels)
            << testing::PrintToString(row.mCounts);
    }
}

TEST_F(FormatVariants, KeepTheFormatInfosChannelsWhereTheChannelQuestionFails)
{
    HoldVariants(kAAC, {Variant(kAAC)});
    CompleteFormatsTo({0.0, kAAC, 0, 0, 1024, 0, 9, 0, 0});
    for (const PropertyAnswer& answer : {PropertyAnswer::List(Codes{2}).InfoFails(-50),
                                         PropertyAnswer::List(Codes{2}).GetFails(-50)})
    {
        mPlatform.Answer(Family::Format, kChannelsProperty, answer);
        EXPECT_EQ(OnlyVariant(kAAC).mFormatDescription.mChannelsPerFrame, 9u);
    }
}

TEST_F(FormatVariants, AreNoneWhereTheSizeQueryFails)
{
    mVariants.resize(3);
    mPlatform.Answer(
        Family::Global, kVariantsProperty,
        PropertyAnswer::List<AudioStreamBasicDescription>({Variant(kAAC)}).InfoFails(-50));
    QueryFormatVariants(kCAF, kAAC, mVariants);
    EXPECT_TRUE(mVariants.empty());
    EXPECT_EQ(mPlatform.Calls().size(), 1u);
}

TEST_F(FormatVariants, AreDefaultRecordsWhereReadingFails)
{
    HoldVariants(kPCM, {Variant(kPCM, 12, 16)});
    QueryFormatVariants(kCAF, kPCM, mVariants);
    ASSERT_EQ(mVariants.size(), 1u);
    mPlatform.ForgetCalls();
    mPlatform.Answer(Family::Global, kVariantsProperty,
                     PropertyAnswer::List<AudioStreamBasicDescription>(
                         {Variant(kPCM, 12, 16), Variant(kPCM, 12, 24)})
                         .GetFails(-50));
    QueryFormatVariants(kCAF, kPCM, mVariants);
    ASSERT_EQ(mVariants.size(), 2u);
    for (const ATFormatType& variant : mVariants)
    {
        EXPECT_TRUE(variant.mName.empty());
        EXPECT_TRUE(CAStreamBasicDescription::IsExactlyEqual(variant.mFormatDescription,
                                                             CAStreamBasicDescription::sEmpty));
        EXPECT_TRUE(variant.mBitratesCBR.empty());
    }
    EXPECT_EQ(mPlatform.Calls().size(), 2u);
}

TEST_F(FormatVariants, AreNoneInLessThanOneDescription)
{
    for (const UInt32 size : {0u, 39u})
    {
        mPlatform.Answer(
            Family::Global, kVariantsProperty,
            PropertyAnswer::List<AudioStreamBasicDescription>({Variant(kAAC)}).Size(size));
        mVariants.resize(1);
        QueryFormatVariants(kCAF, kAAC, mVariants);
        EXPECT_TRUE(mVariants.empty()) << size;
        EXPECT_EQ(mPlatform.CallsOf("AudioConverterNew"), Calls()) << size;
    }
}

TEST_F(FormatVariants, AskForTheirTypeAndFormat)
{
    Bytes specifier;
    mPlatform.AnswerWith(Family::Global, kVariantsProperty,
                         [&](const Question& question)
                         {
        specifier = question.mSpecifier;
        return PropertyAnswer::Missing(-50);
    });
    QueryFormatVariants(kCAF, kAAC, mVariants);
    EXPECT_EQ(specifier, (Bytes{'f', 'f', 'a', 'c', ' ', 'c', 'a', 'a'}));
}

TEST_F(FormatVariants, AreTracedWithTheCodeThatTheFormatInfoLeft)
{
    const TraceLines trace(6);
    HoldVariants(kAAC, {Variant(kAAC)});
    CompleteFormatsTo({0.0, kALAC, 0, 0, 4096, 0, 0, 0, 0});
    mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatName,
                     PropertyAnswer::Name("Advanced"));
    QueryFormatVariants(kCAF, kAAC, mVariants);
    EXPECT_EQ(trace.Lines(), (Calls{TraceLines::Line("<6> \t   'alac' Advanced\n\n")}));
}

TEST_F(FormatVariants, AreTracedBeforeTheirBitRates)
{
    const TraceLines trace(7);
    HoldVariants(kAAC, {Variant(kAAC)});
    mScript.mEncoders[kAAC].mModes[0] = {{{64000.0, 64000.0}}, 64000};
    mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatName,
                     PropertyAnswer::Name("Advanced"));
    QueryFormatVariants(kCAF, kAAC, mVariants);
    EXPECT_EQ(trace.Lines(), (Calls{TraceLines::Line("<6> \t   'aac ' Advanced\n\n"),
                                    TraceLines::Line("<7> \t      Supports CBR\n\n")}));
}

TEST_F(FormatVariants, OfOneVariantThatNoConverterReachesAreKept)
{
    HoldVariants(kAAC, {Variant(kAAC)});
    mPlatform.FailConverters(-50);
    EXPECT_EQ(OnlyVariant(kAAC).mFormatDescription.mFormatID, kAAC);
}

}  // namespace
