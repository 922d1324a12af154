// Four-character codes as text, and what reaches the system's log.
#include "CoreAudio/PublicUtility/CADebugMacros.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace
{

int sLastPriority = -1;
std::string sLastMessage;

}  // namespace

// In place of the system's, so that nothing reaches the log and the test sees what would.
extern "C" void vsyslog(int inPriority, const char* inFormat, va_list inArguments)
{
    char text[256];
    std::vsnprintf(text, sizeof(text), inFormat, inArguments);
    sLastPriority = inPriority;
    sLastMessage = text;
}

namespace
{

std::string CodeText(UInt32 inCode)
{
    char text[24];
    EXPECT_EQ(CAStringForOSType(inCode, text, sizeof(text)), text);
    return text;
}

TEST(CodeAsText, StandsInQuotesWhenPrintable)
{
    EXPECT_EQ(CodeText(0x6C70636D), "'lpcm'");
    EXPECT_EQ(CodeText(0x61616320), "'aac '");
    EXPECT_EQ(CodeText(0x207E2727), "' ~'''");
}

TEST(CodeAsText, IsHexadecimalOtherwise)
{
    EXPECT_EQ(CodeText(0), "0x00000000");
    EXPECT_EQ(CodeText(0x6D730002), "0x6D730002");
    EXPECT_EQ(CodeText(0x6161631F), "0x6161631F");
    EXPECT_EQ(CodeText(0x7F616161), "0x7F616161");
    EXPECT_EQ(CodeText(0x61E46161), "0x61E46161");
    EXPECT_EQ(CodeText(0x615C6161), "0x615C6161");
    EXPECT_EQ(CodeText(0xFFFFFFFF), "0xFFFFFFFF");
}

TEST(CodeAsText, IsCutAtEverySize)
{
    const std::string whole = "'lpcm'";
    for (size_t size = 1; size <= 7; ++size)
    {
        const std::unique_ptr<char[]> text(new char[size]);
        CAStringForOSType(0x6C70636D, text.get(), size);
        EXPECT_EQ(text.get(), whole.substr(0, size - 1)) << size << " bytes";
    }
    char hexadecimal[5];
    CAStringForOSType(0x12345678, hexadecimal, sizeof(hexadecimal));
    EXPECT_STREQ(hexadecimal, "0x12");
    char untouched = 'x';
    EXPECT_EQ(CAStringForOSType(0x6C70636D, &untouched, 0), &untouched);
    EXPECT_EQ(untouched, 'x');
}

TEST(Log, CarriesErrorsAndWarningsWithTheirPriority)
{
    LogError("cannot read %s: %d", "a file", -36);
    EXPECT_EQ(sLastPriority, 3);
    EXPECT_EQ(sLastMessage, "cannot read a file: -36");
    LogWarning("%u left", 7U);
    EXPECT_EQ(sLastPriority, 4);
    EXPECT_EQ(sLastMessage, "7 left");
}

}  // namespace
