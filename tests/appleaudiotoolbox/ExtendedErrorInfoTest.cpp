// The text that a user reads after a failure.
#include "appleaudiotoolbox/ExtendedErrorInfo.h"

#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/StringConversion.h"
#include "tests/support/DictionaryInUse.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

using namespace appleaudiotoolbox;

namespace
{

std::string Complete(UInt32 inSite, OSStatus inStatus, const char* inGeneralMessage = "")
{
    ExtendedErrorInfo info;
    info.mMessage = kelpcore::utility::UTF8to16(inGeneralMessage);
    NoteFailure(info, static_cast<ATErrorSite>(inSite), inStatus);
    SetExtendedErrorString(info);
    return kelpcore::utility::UTF16to8(info.mMessage).c_str();
}

struct SiteRow
{
    UInt32 mSite;
    const char* mKey;
    const char* mText;
};

constexpr SiteRow kSites[] = {
    {2, "kATError_UnsupportedDataFormatError", "Unsupported Data Format for Apple AudioToolbox."},
    {3, "kATError_AudioFileOpenURL", "Apple AudioToolbox cannot open the specified file."},
    {4, "kATError_AudioFileGetDataFormat",
     "Unable to get audio data format via Apple AudioToolbox."},
    {5, "kATError_AudioFileGetFormatList",
     "Apple AudioToolbox was unable to get the list of formats from the specified file."},
    {6, "kATError_AudioFileGetMagicCookieData",
     "Apple AudioToolbox was unable to read the Magic Cookie (elementary stream descriptor) from "
     "the specified file."},
    {7, "kATError_AudioFileGetPacketSizeUpperBound",
     "Apple AudioToolbox was unable to read the maximum packet size for this VBR file."},
    {8, "kATError_AudioFormatGetDecodeFormatIDs",
     "Apple AudioToolbox was unable to find a decoder for the specified file."},
    {9, "kATError_AudioConverterNew",
     "Apple AudioToolbox was unable to create a converter between the input and output formats "
     "for the specified file."},
    {10, "kATError_AudioConverterGetCurrentInputStreamDescription",
     "Apple AudioToolbox was unable to get the input format to convert the file."},
    {11, "kATError_AudioConverterGetCurrentOutputStreamDescription",
     "Apple AudioToolbox was unable to get the output format to convert the file."},
    {12, "kATError_AudioConverterFillComplexBuffer",
     "Apple AudioToolbox reported an error while processing this file."},
    {13, "kATError_AudioConverterSetDecompressionMagicCookie",
     "Apple AudioToolbox was unable to set the Decompression Magic Cookie (elementary stream "
     "descriptor) to convert the file."},
    {14, "kATError_AudioConverterSetEncodeBitRate",
     "Apple AudioToolbox was unable to set the encode bitrate to convert the file."},
    {16, "kATError_AudioConverterSetPrimeInfo",
     "Apple AudioToolbox was unable to set the priming info to convert the compressed file."},
    {17, "kATError_ExtAudioFileCreateWithURL",
     "Apple AudioToolbox cannot create the specified file."},
    {18, "kATError_ExtAudioFileCreateWithURL",
     "Apple AudioToolbox cannot create the specified file."},
    {22, "kATError_AudioConverterFillComplexBuffer",
     "Apple AudioToolbox reported an error while processing this file."},
};

TEST(FailureRecord, StartsWithNothingNoted)
{
    const ExtendedErrorInfo info;
    EXPECT_EQ(info.mSite, 0U);
    EXPECT_EQ(info.mStatus, 0);
    EXPECT_TRUE(info.mMessage.empty());
}

TEST(FailureRecord, NotesSiteAndStatusAndLeavesTheMessage)
{
    ExtendedErrorInfo info;
    info.mMessage = u"General.";
    EXPECT_FALSE(NoteFailure(info, kATError_AudioConverterNew, -50));
    EXPECT_EQ(info.mSite, 9U);
    EXPECT_EQ(info.mStatus, -50);
    EXPECT_EQ(info.mMessage, u"General.");
}

TEST(FailureSites, HaveFixedNumbers)
{
    EXPECT_EQ(kATError_None, 0U);
    EXPECT_EQ(kATError_General, 1U);
    EXPECT_EQ(kATError_UnsupportedDataFormatError, 2U);
    EXPECT_EQ(kATError_AudioFileGetPacketSizeUpperBound, 7U);
    EXPECT_EQ(kATError_AudioConverterFillComplexBuffer, 12U);
    EXPECT_EQ(kATError_AudioConverterSetBitRateControl, 15U);
    EXPECT_EQ(kATError_ExtAudioFileCreateWithURL, 18U);
    EXPECT_EQ(kATError_ExtAudioFileDispose, 24U);
    EXPECT_EQ(sizeof(ATErrorSite), 4U);
}

TEST(FailureText, TakesTheSitesTextInPlaceOfTheGeneralOne)
{
    for (const SiteRow& row : kSites)
        EXPECT_EQ(Complete(row.mSite, 0, "General."), std::string(row.mText) + "\nError Code: 0")
            << "site " << row.mSite;
}

TEST(FailureText, KeepsTheGeneralTextForSitesWithoutOne)
{
    for (const UInt32 site : {0U, 1U, 15U, 19U, 20U, 21U, 23U, 24U, 25U, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_EQ(Complete(site, -50, "General."), "General.\nError Code: -50") << "site " << site;
}

TEST(FailureText, IsTheCodeLineAloneWithoutAnyText)
{
    EXPECT_EQ(Complete(1, -50), "\nError Code: -50");
}

TEST(FailureText, ShowsAPositiveStatusAsACode)
{
    EXPECT_EQ(Complete(3, 0x666D743F, "General."),
              "Apple AudioToolbox cannot open the specified file.\nError Code: 'fmt?'");
    EXPECT_EQ(Complete(1, 0x70747900), "\nError Code: 'pty'");
    EXPECT_EQ(Complete(1, 0x70007900), "\nError Code: 'p'");
    EXPECT_EQ(Complete(1, 5), "\nError Code: ''");
    EXPECT_EQ(Complete(1, 1), "\nError Code: ''");
}

TEST(FailureText, ShowsAnyOtherStatusAsANumber)
{
    EXPECT_EQ(Complete(1, 0), "\nError Code: 0");
    EXPECT_EQ(Complete(1, -1), "\nError Code: -1");
    EXPECT_EQ(Complete(1, std::numeric_limits<OSStatus>::min()), "\nError Code: -2147483648");
}

TEST(FailureText, GetsASecondCodeLineWhenCompletedTwice)
{
    ExtendedErrorInfo info;
    info.mMessage = u"General.";
    NoteFailure(info, kATError_General, -1);
    SetExtendedErrorString(info);
    SetExtendedErrorString(info);
    EXPECT_EQ(info.mMessage, u"General.\nError Code: -1\nError Code: -1");
}

TEST(FailureText, ComesInTheUsersLanguage)
{
    for (const SiteRow& row : kSites)
    {
        const std::string key = std::string("$$$/appleaudiotoolbox/") + row.mKey;
        const testing_support::DictionaryInUse dictionary(
            key +
            "=Ort\n$$$/appleaudiotoolbox/Error4CC=#{endl}Kennung <@0>\n"
            "$$$/appleaudiotoolbox/ErrorNumber=#{endl}Nummer <@0>\n");
        EXPECT_EQ(Complete(row.mSite, -3), "Ort\nNummer <-3>") << "site " << row.mSite;
        EXPECT_EQ(Complete(row.mSite, 0x666D743F), "Ort\nKennung <fmt?>") << "site " << row.mSite;
    }
}

}  // namespace
