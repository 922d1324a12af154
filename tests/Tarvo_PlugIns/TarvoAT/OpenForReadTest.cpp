// Selector 5 on a scripted platform: what the host is told, and the text of every failure.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/support/ScriptedPlatform.h"

#include <kelpcore/config/Localizer.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>

namespace
{

using namespace testing_support;

constexpr AudioStreamBasicDescription kStereo = {44100, kAudioFormatLinearPCM, 12, 4, 1, 4, 2, 16,
                                                 0};
constexpr AudioStreamBasicDescription kAAC = {44100, 0x61616320, 0, 0, 1024, 0, 2, 0, 0};

struct OpenForReadTest : testing::Test
{
    OpenForReadTest()
    {
        mPlatform->HoldFile(kAudioFileWAVEType, kStereo);
        mPlatform->Answer(Family::Global, kAudioFileGlobalInfo_FileTypeName,
                          PropertyAnswer::Name("WAVE"));
        mPlatform->Answer(Family::Format, kAudioFormatProperty_FormatName,
                          PropertyAnswer::Name("Linear PCM"));
        mOpen.mErrors = &mErrors;
    }

    ~OpenForReadTest() override
    {
        if (mOpen.mHandle)
            (void)tarvo::TarvoATInterface().EntryPoint(12, mOpen.mHandle, nullptr);
        EXPECT_EQ(mPlatform->OpenHandles(), 0);
        EXPECT_TRUE(mPlatform->Breaches().empty());
    }

    std::int32_t Open() { return tarvo::TarvoATInterface().EntryPoint(5, nullptr, &mOpen); }

    // There is one at a time.
    ScriptedPlatform& FreshPlatform()
    {
        mPlatform.reset();
        return mPlatform.emplace();
    }

    CallLog mLog;
    RecordingErrors mErrors{mLog};
    RecordingOpen mOpen{mLog};
    std::optional<ScriptedPlatform> mPlatform{std::in_place};
};

TEST_F(OpenForReadTest, TellsDescriptionBitRateHandleAndStatusInOrder)
{
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFilePath",
                             "SetFormatDescription \"WAVE, Linear PCM\"", "SetBitrate 1411200",
                             "SetFileHandle", "SetOpenStatus 0"}));
    EXPECT_NE(mOpen.mHandle, nullptr);
    EXPECT_EQ(mPlatform->OpenedPath(), "/a/b.wav");
}

TEST_F(OpenForReadTest, TheTypeAndTheBitRateAreAskedOnceBehindTheConverter)
{
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(mPlatform->CallsOf("AudioFileGetProperty 'brat'").size(), 0u)
        << "its size query has failed";
    EXPECT_EQ(mPlatform->CallsOf("AudioFileGetPropertyInfo 'brat'").size(), 1u);
    EXPECT_EQ(mPlatform->CallsOf("AudioFileGetProperty 'ffmt'").size(), 1u);
    EXPECT_EQ(mPlatform->Calls().back(), mPlatform->CallsOf("AudioFileGetPropertyInfo 'brat'")[0]);
}

TEST_F(OpenForReadTest, PathsKeepTheirBytes)
{
    mOpen.mPath = "/a b/100%25/\xC3\xA4\xF0\x9F\x98\x80.wav";
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(mPlatform->OpenedPath(), mOpen.mPath);
}

TEST_F(OpenForReadTest, AReportedBitRateIsKept)
{
    mPlatform->Answer(Family::File, kAudioFilePropertyBitRate,
                      PropertyAnswer::Value<UInt32>(0xFFFFFFFF));
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(mLog[3], "SetBitrate 4294967295");
}

TEST_F(OpenForReadTest, TheUncompressedFigureIsTruncatedAndCutTo32Bits)
{
    struct Row
    {
        double mRate;
        UInt32 mChannels;
        UInt32 mBits;
        const char* mTold;
    };
    for (const Row& row :
         {Row{22050.9, 1, 8, "SetBitrate 176407"}, Row{48000, 6, 24, "SetBitrate 6912000"},
          Row{1e8, 2, 32, "SetBitrate 2105032704"}, Row{44100, 2, 0, "SetBitrate 0"}})
    {
        const UInt32 frameBytes = row.mChannels * row.mBits / 8;
        mPlatform->HoldFile(kAudioFileWAVEType, {row.mRate, kAudioFormatLinearPCM, 12, frameBytes,
                                                 1, frameBytes, row.mChannels, row.mBits, 0});
        mLog.clear();
        EXPECT_EQ(Open(), 0);
        EXPECT_EQ(mLog[3], row.mTold);
        (void)tarvo::TarvoATInterface().EntryPoint(12, mOpen.mHandle, nullptr);
        mOpen.mHandle = nullptr;
    }
}

TEST_F(OpenForReadTest, EveryLineFeedOfTheDescriptionBecomesAComma)
{
    mPlatform->Answer(Family::Format, kAudioFormatProperty_FormatName,
                      PropertyAnswer::Name("\nLinear\n\nPCM\n"));
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(mLog[2], "SetFormatDescription \"WAVE, , Linear, , PCM, \"");
}

TEST_F(OpenForReadTest, AnUnknownFileTypeHasNoPartInTheDescription)
{
    mPlatform->Forget(Family::File, kAudioFilePropertyFileFormat);
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(mLog[2], "SetFormatDescription \"Linear PCM\"");
}

TEST_F(OpenForReadTest, AnEmptyDescriptionArrivesAsTheDefault)
{
    const std::string dictionary = testing::TempDir() + "TarvoATOpenForReadTest.txt";
    std::ofstream(dictionary) << "$$$/appleaudiotoolbox/EmptyFormatDescription=\n";
    ASSERT_TRUE(kelpcore::config::Localizer::Get().LoadDictionary(dictionary.c_str()));
    mPlatform->Forget(Family::File, kAudioFilePropertyFileFormat);
    mPlatform->Forget(Family::Format, kAudioFormatProperty_FormatName);

    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(mLog[2], "SetFormatDescription \"Apple Audio Toolbox\"");
    kelpcore::config::Localizer::Get().Clear();
    std::remove(dictionary.c_str());
}

TEST_F(OpenForReadTest, ANullErrorObjectHearsNothing)
{
    mOpen.mErrors = nullptr;
    mPlatform->FailOpening(-43);
    EXPECT_EQ(Open(), -1);
    EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFilePath"}));
}

TEST_F(OpenForReadTest, WhateverCallFailsNothingStaysOpen)
{
    for (int failing = 1;; ++failing)
    {
        ASSERT_LT(failing, 100) << "opening never ran through without a fault";
        ScriptedPlatform& platform = FreshPlatform();
        platform.HoldFile(kAudioFileM4AType, kAAC);
        platform.FailCall(failing, -50);
        mOpen.mHandle = nullptr;
        (void)Open();
        if (mOpen.mHandle)
            (void)tarvo::TarvoATInterface().EntryPoint(12, mOpen.mHandle, nullptr);
        EXPECT_EQ(platform.OpenHandles(), 0) << "call " << failing << " failed";
        mOpen.mHandle = nullptr;
        if (!platform.ReachedFailingCall())
            return;
    }
}

struct FailureRow
{
    const char* mWhy;
    std::function<void(ScriptedPlatform&)> mScript;
    std::int32_t mResult;
    const char* mText;
};

TEST_F(OpenForReadTest, EachFailureHasItsResultAndItsText)
{
    const OSStatus fmt = 0x666D743F;  // 'fmt?'
    const auto missing = PropertyAnswer::Missing(fmt);
    const std::string general = "General error attempting to open file using TarvoAT plug-in.";
    const std::vector<AudioFormatListItem> layers = {{kAAC, 0}, {kStereo, 0}};
    const FailureRow rows[] =
        {
            {"the file does not open", [](auto& platform) { platform.FailOpening(-43); }, -1,
             "Apple AudioToolbox cannot open the specified file.\nError Code: -43"},
            {"a list of formats shorter than one format",
             [](auto& platform) {
        platform.Answer(Family::File, kAudioFilePropertyFormatList, PropertyAnswer::Raw(Bytes(47)));
             },
             -1, "General error attempting to open file using TarvoAT plug-in.\nError Code: 0"},
            {"no decoder for any layer",
             [=](auto& platform)
             {
        platform.Answer(Family::File, kAudioFilePropertyFormatList, PropertyAnswer::List(layers));
        platform.Answer(Family::Format, kAudioFormatProperty_DecodeFormatIDs,
                        PropertyAnswer::Value<UInt32>(1));
             },
             -8, "Unsupported Data Format for Apple AudioToolbox.\nError Code: 0"},
                     {"no list of formats",
                      [=](auto& platform)
                      { platform.Answer(Family::File, kAudioFilePropertyFormatList, missing); },
                      -4,
                      "Apple AudioToolbox was unable to get the list of formats from the specified "
                      "file.\nError Code: 'fmt?'"},
                     {"a cookie that cannot be read",
                      [=](auto& platform)
                      {
        platform.Answer(Family::File, kAudioFilePropertyMagicCookieData,
                        PropertyAnswer::Raw(Bytes(4)).GetFails(fmt));
                      },
                      -4,
                      "Apple AudioToolbox was unable to read the Magic Cookie (elementary stream "
                      "descriptor) from the specified file.\nError Code: 'fmt?'"},
        {"no bound of the packet size",
         [=](auto& platform)
         {
        platform.HoldFile(kAudioFileM4AType, kAAC);
        platform.Answer(Family::File, kAudioFilePropertyPacketSizeUpperBound, missing);
         },
         -4,
         "Apple AudioToolbox was unable to read the maximum packet size for this VBR "
         "file.\nError Code: 0"},
        {"no list of decoders",
         [=](auto& platform)
         {
        platform.Answer(Family::File, kAudioFilePropertyFormatList, PropertyAnswer::List(layers));
        platform.Answer(Family::Format, kAudioFormatProperty_DecodeFormatIDs, missing);
         },
         -4,
         "Apple AudioToolbox was unable to find a decoder for the specified file.\n"
         "Error Code: 'fmt?'"},
        {"no converter", [=](auto& platform) { platform.FailConverters(fmt); }, -4,
         "Apple AudioToolbox was unable to create a converter between the input and output "
         "formats for the specified file.\nError Code: 'fmt?'"},
        {"a cookie that the converter refuses",
         [=](auto& platform)
         {
        platform.HoldFile(kAudioFileM4AType, kAAC);
        platform.Answer(Family::File, kAudioFilePropertyMagicCookieData,
                        PropertyAnswer::Raw(Bytes(4)));
        platform.Answer(Family::Converter, kAudioConverterDecompressionMagicCookie, missing);
         },
         -1,
         "Apple AudioToolbox was unable to set the Decompression Magic Cookie (elementary "
         "stream descriptor) to convert the file.\nError Code: 'fmt?'"},
        {"a step without a site of its own",
         [=](auto& platform) {
        platform.Answer(Family::Converter, kAudioConverterCurrentInputStreamDescription, missing);
         },
         -1, "General error attempting to open file using TarvoAT plug-in.\nError Code: 'fmt?'"},
        {"a step that notes nothing, which is a success to the host",
         [=](auto& platform)
         {
        platform.Answer(Family::Converter, kAudioConverterCurrentInputStreamDescription,
                        PropertyAnswer::Raw(Bytes(41)));
         },
         0, "General error attempting to open file using TarvoAT plug-in.\nError Code: 0"},
        };
    for (const FailureRow& row : rows)
    {
        ScriptedPlatform& platform = FreshPlatform();
        platform.HoldFile(kAudioFileWAVEType, kStereo);
        row.mScript(platform);
        mLog.clear();
        EXPECT_EQ(Open(), row.mResult) << row.mWhy;
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFilePath",
                                 "SetErrorText " + Quoted(mErrors.mText.c_str())}))
            << row.mWhy;
        const std::string text = row.mText;
        EXPECT_EQ(mErrors.mText, std::u16string(text.begin(), text.end())) << row.mWhy;
        EXPECT_EQ(mOpen.mHandle, nullptr) << row.mWhy;
        EXPECT_EQ(platform.OpenHandles(), 0) << row.mWhy;
    }
}

}  // namespace
