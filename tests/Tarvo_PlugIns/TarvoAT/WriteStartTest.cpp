// Selector 17: what decides on the file, what the host is told, and the text of every failure.
#include "tests/Tarvo_PlugIns/TarvoAT/WriteSessionFixture.h"
#include "tests/support/DictionaryInUse.h"

#include <stdexcept>

namespace
{

using namespace testing_support;

using WriteStartTest = WriteSessionTest;

TEST_F(WriteStartTest, AsksAndTellsInOrder)
{
    StoreWave();
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFilePath", "GetFormatInterface",
                             "GetPrivateSettings", "GetSampleType", "GetChannelCount",
                             "GetChannelLabel 0", "GetChannelLabel 1", "GetSampleCount",
                             "SetFormatDescription \"WAVE\nLinear PCM\"", "SetWriterHandle"}));
    EXPECT_NE(mStart.mHandle, nullptr);
}

TEST_F(WriteStartTest, TakesFileTypeRateAndChannelsFromTheSettingsAndLabelsFromTheHost)
{
    StoreWave();
    mFormat.mSampleRate = 8000;
    mFormat.mChannelCount = 1;
    mFormat.mLabels = {102};
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mPlatform.CallsOf("ExtAudioFileCreate"),
              CallLog{"ExtAudioFileCreateWithURL \"/a/b.caf\" 'WAVE' format 48000 'lpcm' 12 "
                      "4/1/4/2/16 layout: 00 00 00 00 00 00 00 00 01 00 00 00"
                      " 03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 flags 3"});
}

TEST_F(WriteStartTest, MakesADefaultFileOfAnEmptyText)
{
    mFormat.mSampleRate = 96000;
    mFormat.mChannelCount = 0;
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mPlatform.CallsOf("ExtAudioFileCreate"),
              CallLog{"ExtAudioFileCreateWithURL \"/a/b.caf\" 'caff' format 44100 'lpcm' 14 "
                      "4/1/4/2/16 layout: 00 00 00 00 00 00 00 00 00 00 00 00 flags 1"});
    EXPECT_EQ(mLog[5], "GetChannelCount");
    EXPECT_EQ(mLog[6], "GetSampleCount");
}

TEST_F(WriteStartTest, GoesOnWithTextThatIsNotPlausible)
{
    Store({kWAVE, {48000, kPCM, 0, 1, 0, 0, 16, 12}});
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mPlatform.CallsOf("ExtAudioFileCreate")[0].substr(0, 83),
              "ExtAudioFileCreateWithURL \"/a/b.caf\" 'WAVE' format 48000 'lpcm' 12 0/1/0/0/16 "
              "layou");
}

TEST_F(WriteStartTest, TellsTheEncoderModeAndBitRateOfTheSettings)
{
    StoreAAC(0);
    (void)appleaudiotoolbox::GetEncodableBitrateModes(kM4A, kAAC);
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"),
              (CallLog{"AudioConverterSetProperty 'acbf' size 4: 00 00 00 00",
                       "AudioConverterSetProperty 'brat' size 4: 00 f4 01 00"}));
    EXPECT_EQ(mPlatform.CallsOf("ExtAudioFileSetProperty 'accf'").size(), 1u);
}

TEST_F(WriteStartTest, TellsTheEncoderTheQualityAsAFloatInMode3)
{
    StoreAAC(3, 100);
    (void)appleaudiotoolbox::GetEncodableBitrateModes(kM4A, kAAC);
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mPlatform.CallsOf("AudioConverterSetProperty"),
              (CallLog{"AudioConverterSetProperty 'acbf' size 4: 03 00 00 00",
                       "AudioConverterSetProperty 'vbrq' size 4: 00 00 c8 42"}));
}

TEST_F(WriteStartTest, BuildsTheCatalogueItNeeds)
{
    StoreAAC(0);
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mPlatform.CallsOf("ExtAudioFileGetProperty 'acnv'").size(), 1u);
    EXPECT_EQ(appleaudiotoolbox::sOutputFileTypes.count(kM4A), 1u);
}

TEST_F(WriteStartTest, TellsTheWriterTheWidthOfTheSampleType)
{
    struct Row
    {
        std::int32_t mType;
        const char* mFlagsToBits;
    };
    const Row rows[] = {
        {10, "08 00 00 00 02 00 00 00 01 00 00 00 02 00 00 00 02 00 00 00 08 00 00 00"},
        {20, "0c 00 00 00 04 00 00 00 01 00 00 00 04 00 00 00 02 00 00 00 10 00 00 00"},
        {30, "0c 00 00 00 06 00 00 00 01 00 00 00 06 00 00 00 02 00 00 00 18 00 00 00"},
        {40, "09 00 00 00 08 00 00 00 01 00 00 00 08 00 00 00 02 00 00 00 20 00 00 00"}};
    for (const Row& row : rows)
    {
        mFormat.mSampleType = row.mType;
        EXPECT_EQ(Start(), 0);
        EXPECT_EQ(mPlatform.CallsOf("ExtAudioFileSetProperty 'cfmt'"),
                  CallLog{"ExtAudioFileSetProperty 'cfmt' size 40: 00 00 00 00 80 88 e5 40 6d 63 "
                          "70 6c " +
                          std::string(row.mFlagsToBits) + " 00 00 00 00"});
        EXPECT_EQ(Finish(), 0);
    }
}

TEST_F(WriteStartTest, RefusesAnySampleTypeWithoutAWidthBeforeItMakesAFile)
{
    for (const std::int32_t type : {25, 0, -1, 9, 11, 19, 21, 41, 50, 20 + 65536, 0x40000014})
    {
        mFormat.mSampleType = type;
        EXPECT_EQ(Start(), -8) << type;
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFilePath", "GetFormatInterface",
                                 "GetPrivateSettings", "GetSampleType"}))
            << type;
        EXPECT_EQ(mPlatform.Calls(), CallLog()) << type;
        EXPECT_EQ(mStart.mHandle, nullptr) << type;
    }
}

TEST_F(WriteStartTest, LeavesNoWriterInTheCallersPlaceAfterARefusal)
{
    mFormat.mSampleType = 25;
    auto* writer = reinterpret_cast<appleaudiotoolbox::ATWriter*>(&mFormat);
    EXPECT_EQ(tarvo::TarvoATInterface().WriteStart(mStart, writer), -8);
    EXPECT_EQ(writer, nullptr);
}

TEST_F(WriteStartTest, CarriesPathsBeyondTheBasicPlaneToThePlatform)
{
    mStart.mPath = u"/a b/100%25/\u00E4\U0001F600.wav";
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mPlatform.OpenedPath(), "/a b/100%25/\xC3\xA4\xF0\x9F\x98\x80.wav");
}

TEST_F(WriteStartTest, DescribesTheEncodersSettingsToo)
{
    StoreAAC(0);
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mLog[mLog.size() - 2], "SetFormatDescription \"MPEG-4\nLinear PCM\nCBR: 128 kbps\"");
}

TEST_F(WriteStartTest, ToldAnEmptyDescriptionTellsTheDefault)
{
    const DictionaryInUse dictionary("$$$/appleaudiotoolbox/EmptyFormatDescription=\n");
    mPlatform.Forget(Family::Format, kAudioFormatProperty_FormatName);
    Store({0, {48000, kPCM, 4, 1, 4, 2, 16, 12}});
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(mLog[mLog.size() - 2], "SetFormatDescription \"Apple Audio Toolbox\"");
}

struct FailureRow
{
    const char* mFailing;  // the call, as it begins
    const char* mText;     // up to the line with the code
};

// In the order of the calls.
TEST_F(WriteStartTest, TellsEachFailureAndKeepsNothing)
{
    const char* const general =
        "Error creating file /a/b.caf.  The destination may be full or no longer available.";
    const FailureRow rows[] = {
        {"ExtAudioFileCreateWithURL", "Apple AudioToolbox cannot create the specified file."},
        {"ExtAudioFileSetProperty 'cfmt'", general},
        {"ExtAudioFileGetProperty 'acnv'", general},
        {"AudioConverterSetProperty 'acbf'", general},
        {"AudioConverterSetProperty 'brat'",
         "Apple AudioToolbox was unable to set the encode bitrate to convert the file."},
        {"ExtAudioFileSetProperty 'accf'", general},
    };
    StoreAAC(0);
    (void)appleaudiotoolbox::GetEncodableBitrateModes(kM4A, kAAC);
    int failing = 0;
    for (const FailureRow& row : rows)
    {
        mPlatform.FailCall(++failing, -1234);
        EXPECT_EQ(Start(), -1) << row.mFailing;
        mPlatform.FailCall(0, 0);
        EXPECT_EQ(mErrors.mText, Wide(std::string(row.mText) + "\nError Code: -1234"))
            << row.mFailing;
        EXPECT_EQ(mLog.back(), "SetErrorText " + Quoted(mErrors.mText.c_str())) << row.mFailing;
        EXPECT_EQ(mLog[mLog.size() - 2], "GetSampleCount") << row.mFailing;
        EXPECT_EQ(mStart.mHandle, nullptr) << row.mFailing;

        // Nothing comes behind the failing call but the closing of a file that was made.
        CallLog calls = mPlatform.Calls();
        const bool isMade = failing > 1;
        EXPECT_EQ(calls.back() == "ExtAudioFileDispose", isMade) << row.mFailing;
        if (isMade)
            calls.pop_back();
        EXPECT_EQ(calls.back().rfind(row.mFailing, 0), 0u) << calls.back();
        EXPECT_EQ(calls.size(), static_cast<std::size_t>(failing)) << row.mFailing;
        EXPECT_EQ(mPlatform.OpenHandles(), 0) << row.mFailing;
    }
}

TEST_F(WriteStartTest, ShowsAStatusAboveZeroAsItsCode)
{
    mPlatform.Answer(Family::ExtFile, kExtAudioFileProperty_ClientDataFormat,
                     PropertyAnswer::Missing(0x666D743F));
    EXPECT_EQ(Start(), -1);
    EXPECT_EQ(mErrors.mText, Wide("Error creating file /a/b.caf.  The destination may be full or "
                                  "no longer available.\nError Code: 'fmt?'"));
}

TEST_F(WriteStartTest, FailsQuietlyWithoutAnErrorObject)
{
    mStart.mErrors = nullptr;
    mPlatform.FailCreation(-43);
    EXPECT_EQ(Start(), -1);
    EXPECT_EQ(mLog.back(), "GetSampleCount");
}

class ThrowingStart : public RecordingWriteStart
{
public:
    using RecordingWriteStart::RecordingWriteStart;
    void SetFormatDescription(const uint16*) override { throw std::runtime_error("host"); }
};

TEST_F(WriteStartTest, LetsAnExceptionOfTheHostThroughAndFreesTheWriter)
{
    ThrowingStart start(mLog);
    start.mFormat = &mFormat;
    EXPECT_THROW(Call(17, nullptr, &start), std::runtime_error);
    EXPECT_EQ(mPlatform.OpenHandles(), 0);
}

}  // namespace
