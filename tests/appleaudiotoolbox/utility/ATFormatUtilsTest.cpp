// What the user reads about file types and formats, against a platform of four functions.
#include "appleaudiotoolbox/utility/ATFormatUtils.h"

#include "kelpcore/utility/StringConversion.h"
#include "tests/support/DictionaryInUse.h"

#include <AudioToolbox/AudioToolbox.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace appleaudiotoolbox;

namespace
{

// One name of the platform: how its questions end and what it is.
struct NameScript
{
    OSStatus mSizeStatus = noErr;
    OSStatus mValueStatus = noErr;
    UInt32 mReportedSize = 8;
    const char* mName = "";  // null: no string at all
};

struct Script
{
    NameScript mFileType;
    NameScript mFormat;
    std::vector<std::string> mCalls;
    std::vector<CFStringRef> mStrings;  // one reference each for the test
};

Script* sScript = nullptr;

// What a successful question hands over, with one reference for the caller.
OSStatus HandOver(const NameScript& inScript, void* outData)
{
    if (inScript.mValueStatus != noErr)
        return inScript.mValueStatus;
    CFStringRef name = nullptr;
    if (inScript.mName != nullptr)
    {
        name =
            CFStringCreateWithCString(kCFAllocatorDefault, inScript.mName, kCFStringEncodingUTF8);
        sScript->mStrings.push_back(static_cast<CFStringRef>(CFRetain(name)));
    }
    std::memcpy(outData, &name, sizeof(name));
    return noErr;
}

std::string Note(const char* inName, UInt32 inProperty, UInt32 inSpecifierSize, UInt32 inSize)
{
    char text[96];
    std::snprintf(text, sizeof(text), "%s %08X %u %u", inName, inProperty, inSpecifierSize, inSize);
    return text;
}

class FormatTexts : public testing::Test
{
protected:
    FormatTexts() { sScript = &mScript; }
    ~FormatTexts() override
    {
        for (const CFStringRef string : mScript.mStrings)
        {
            EXPECT_EQ(CFGetRetainCount(string), 1);
            CFRelease(string);
        }
        sScript = nullptr;
    }

    Script mScript;
};

constexpr UInt32 kAAC = 0x61616320;
constexpr UInt32 kM4A = 0x6D346166;

CAStreamBasicDescription AAC(UInt32 inBytesPerPacket = 0)
{
    return {44100.0, kAAC, inBytesPerPacket, 1024, 0, 2, 0, 2};
}

std::string UTF8(const UTF16String& inText)
{
    return kelpcore::utility::UTF16to8(inText).c_str();
}

}  // namespace

OSStatus AudioFileGetGlobalInfoSize(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                                    void* inSpecifier, UInt32* outSize)
{
    EXPECT_EQ(inSpecifier, nullptr);
    sScript->mCalls.push_back(Note("file size", inProperty, inSpecifierSize, *outSize));
    *outSize = sScript->mFileType.mReportedSize;
    return sScript->mFileType.mSizeStatus;
}

OSStatus AudioFileGetGlobalInfo(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                                void* inSpecifier, UInt32* ioSize, void* outData)
{
    UInt32 fileType = 0;
    std::memcpy(&fileType, inSpecifier, sizeof(fileType));
    sScript->mCalls.push_back(Note("file name", inProperty, inSpecifierSize, *ioSize) + " of " +
                              std::to_string(fileType));
    return HandOver(sScript->mFileType, outData);
}

OSStatus AudioFormatGetPropertyInfo(AudioFormatPropertyID inProperty, UInt32 inSpecifierSize,
                                    const void* inSpecifier, UInt32* outSize)
{
    EXPECT_NE(inSpecifier, nullptr);  // not to be read
    sScript->mCalls.push_back(Note("format size", inProperty, inSpecifierSize, *outSize));
    *outSize = sScript->mFormat.mReportedSize;
    return sScript->mFormat.mSizeStatus;
}

OSStatus AudioFormatGetProperty(AudioFormatPropertyID inProperty, UInt32 inSpecifierSize,
                                const void* inSpecifier, UInt32* ioSize, void* outData)
{
    AudioStreamBasicDescription format = {};
    std::memcpy(&format, inSpecifier, sizeof(format));
    sScript->mCalls.push_back(Note("format name", inProperty, inSpecifierSize, *ioSize) + " of " +
                              std::to_string(format.mFormatID) + " at " +
                              std::to_string(static_cast<int>(format.mSampleRate)));
    return HandOver(sScript->mFormat, outData);
}

namespace
{

TEST_F(FormatTexts, AFileTypeHasThePlatformsName)
{
    mScript.mFileType.mName = "M\xC3\xB6glich \xF0\x9D\x84\x9E";
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(kM4A)), "M\xC3\xB6glich \xF0\x9D\x84\x9E");
    EXPECT_EQ(mScript.mCalls, (std::vector<std::string>{"file size 66746E6D 0 0",
                                                        "file name 66746E6D 4 8 of 1832149350"}));
}

TEST_F(FormatTexts, NoFileTypeHasNoNameAndAsksNothing)
{
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(0)), "");
    EXPECT_TRUE(mScript.mCalls.empty());
}

TEST_F(FormatTexts, AFailingPlatformGivesAFileTypeNoName)
{
    mScript.mFileType.mName = "Never";
    mScript.mFileType.mSizeStatus = -50;
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(kM4A)), "");
    EXPECT_EQ(mScript.mCalls.size(), 1U);
    mScript.mFileType.mSizeStatus = noErr;
    mScript.mFileType.mReportedSize = 9;
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(kM4A)), "");
    EXPECT_EQ(mScript.mCalls.size(), 2U);
    mScript.mFileType.mReportedSize = 8;
    mScript.mFileType.mValueStatus = -50;
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(kM4A)), "");
    EXPECT_EQ(mScript.mCalls.size(), 4U);
}

TEST_F(FormatTexts, AnEmptyFileTypeNameIsReplacedByTheCode)
{
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(kM4A)), "(Unnamed File Type: 'm4af', 0x6D346166)");
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(0x41004243)),
              "(Unnamed File Type: 'A', 0x41004243)");
    mScript.mFileType.mName = nullptr;
    EXPECT_EQ(UTF8(GetFileTypeDescriptionString(0xAB)), "(Unnamed File Type: '', 0xAB)");
}

TEST_F(FormatTexts, AFormatHasThePlatformsName)
{
    mScript.mFormat.mName = "Advanced";
    EXPECT_EQ(UTF8(GetDescriptionString(kAAC)), "Advanced");
    EXPECT_EQ(mScript.mCalls,
              (std::vector<std::string>{"format size 666E616D 40 0",
                                        "format name 666E616D 40 8 of 1633772320 at 0"}));
}

TEST_F(FormatTexts, TheWholeDescriptionIsAskedForItsName)
{
    mScript.mFormat.mName = "Advanced";
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, -1, -1, -1)), "Advanced");
    EXPECT_EQ(mScript.mCalls.back(), "format name 666E616D 40 8 of 1633772320 at 44100");
}

TEST_F(FormatTexts, TheReportedSizeOfAFormatNameDoesNotMatter)
{
    mScript.mFormat.mName = "Advanced";
    mScript.mFormat.mReportedSize = 1000;
    EXPECT_EQ(UTF8(GetDescriptionString(kAAC)), "Advanced");
    EXPECT_EQ(mScript.mCalls.back(), "format name 666E616D 40 8 of 1633772320 at 0");
}

TEST_F(FormatTexts, AFormatWithoutANameIsToldByItsCode)
{
    EXPECT_EQ(UTF8(GetDescriptionString(kAAC)), "(Unnamed Format: 'aac ', 0x61616320)");
    mScript.mFormat.mName = nullptr;
    EXPECT_EQ(UTF8(GetDescriptionString(kAAC)), "(Unnamed Format: 'aac ', 0x61616320)");
    mScript.mFormat.mName = "Never";
    mScript.mFormat.mValueStatus = -50;
    EXPECT_EQ(UTF8(GetDescriptionString(kAAC)), "(Unnamed Format: 'aac ', 0x61616320)");
    EXPECT_EQ(mScript.mCalls.size(), 6U);
    mScript.mFormat.mSizeStatus = -50;
    EXPECT_EQ(UTF8(GetDescriptionString(kAAC)), "(Unnamed Format: 'aac ', 0x61616320)");
    EXPECT_EQ(mScript.mCalls.size(), 7U);
}

TEST_F(FormatTexts, FormatZeroWithoutANameIsToldToo)
{
    EXPECT_EQ(UTF8(GetDescriptionString(0U)), "(Unnamed Format: '', 0x0)");
}

TEST_F(FormatTexts, AFileTypeStandsInALineOfItsOwn)
{
    mScript.mFileType.mName = "File";
    mScript.mFormat.mName = "Format";
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), kM4A, -1, -1, -1)), "File\nFormat");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), kM4A, 0, 128000, -1)),
              "File\nFormat\nCBR: 128 kbps");
    mScript.mFileType.mSizeStatus = -50;
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), kM4A, -1, -1, -1)), "\nFormat");
}

TEST_F(FormatTexts, AnUncompressedFormatEndsWithItsName)
{
    mScript.mFormat.mName = "Linear PCM";
    const CAStreamBasicDescription format(44100.0, 0x6C70636D, 0, 1, 0, 2, 16, 0xC);
    for (const int mode : {-1, 0, 1, 2, 3})
        EXPECT_EQ(UTF8(GetDescriptionString(format, 0, mode, 128000, 96)), "Linear PCM") << mode;
}

TEST_F(FormatTexts, ANegativeModeEndsWithTheName)
{
    mScript.mFormat.mName = "Name @0";
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, -1, 128000, 96)), "Name @0");
    EXPECT_EQ(
        UTF8(GetDescriptionString(AAC(), 0, std::numeric_limits<std::int64_t>::min(), 128000, 96)),
        "Name @0");
}

TEST_F(FormatTexts, EveryModeHasItsLine)
{
    mScript.mFormat.mName = "Name";
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 0, 64000, -1)), "Name\nCBR: 64 kbps");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 1, 64000, -1)), "Name\nCBR (LTA): 64 kbps");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 2, 64000, -1)), "Name\nVBR: 64 kbps");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 0, 64000, 96)), "Name\nCBR: 64 kbps");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 3, 64000, -1)), "Name");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 4, 64000, 96)), "Name");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 0x100000000, 64000, 96)), "Name");
}

TEST_F(FormatTexts, VariableModeTellsTheQuality)
{
    mScript.mFormat.mName = "Name";
    struct Row
    {
        std::int64_t mQuality;
        const char* mText;
    };
    for (const Row& row : {Row{0, "Minimum"}, Row{32, "Low"}, Row{64, "Medium"}, Row{96, "High"},
                           Row{127, "Maximum"}, Row{50, "Minimum"}, Row{128, "Minimum"},
                           Row{0x100000020, "Minimum"}})
        EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 3, 128000, row.mQuality)),
                  std::string("Name\nVBR Quality: ") + row.mText)
            << row.mQuality;
}

TEST_F(FormatTexts, PacketsOfOneSizeHaveNoQuality)
{
    mScript.mFormat.mName = "Name";
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(34), 0, 3, 128000, 96)), "Name");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(34), 0, 1, 128000, 96)), "Name\nCBR (LTA): 128 kbps");
}

TEST_F(FormatTexts, TheUnitGoesWithTheBitRate)
{
    mScript.mFormat.mName = "Name";
    struct Row
    {
        std::int64_t mBitrate;
        const char* mText;
    };
    for (const Row& row :
         {Row{0, "0 bps"}, Row{999, "999 bps"}, Row{1000, "1 kbps"}, Row{1411200, "1.41 Mbps"},
          Row{44099, "44.1 kbps"}, Row{999999, "1000 kbps"}, Row{1000000, "1 Mbps"},
          Row{999999999, "1000 Mbps"}, Row{1000000000, "1000000000 bps"}, Row{-1, "-1 bps"},
          Row{-64000, "-64000 bps"}})
        EXPECT_EQ(UTF8(GetDescriptionString(AAC(), 0, 0, row.mBitrate, -1)),
                  std::string("Name\nCBR: ") + row.mText)
            << row.mBitrate;
}

TEST_F(FormatTexts, TheBitRateIsFilledIntoTheWholeText)
{
    mScript.mFileType.mName = "Type @0";
    mScript.mFormat.mName = "Name @0";
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), kM4A, 0, 64000, -1)),
              "Type 64 kbps\nName 64 kbps\nCBR: 64 kbps");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), kM4A, 3, 64000, -1)), "Type 64 kbps\nName 64 kbps");
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), kM4A, 3, 64000, 32)),
              "Type @0\nName @0\nVBR Quality: Low");
}

TEST_F(FormatTexts, EveryTextComesInTheUsersLanguage)
{
    const testing_support::DictionaryInUse dictionary(
        "$$$/appleaudiotoolbox/UnnamedFileType=Typ @0 @1\n"
        "$$$/appleaudiotoolbox/EmptyFormatDescription=Format @0 @1\n"
        "$$$/appleaudiotoolbox/CBRPrefix=fest @0\n"
        "$$$/appleaudiotoolbox/LTAPrefix=mittel @0\n"
        "$$$/appleaudiotoolbox/ConstrPrefix=begrenzt @0\n"
        "$$$/appleaudiotoolbox/QualMin=kleinste\n"
        "$$$/appleaudiotoolbox/QualLow=kleine\n"
        "$$$/appleaudiotoolbox/QualMed=mittlere\n"
        "$$$/appleaudiotoolbox/QualHigh=hohe\n"
        "$$$/appleaudiotoolbox/QualMax=beste\n"
        "$$$/appleaudiotoolbox/kilobitsPerSecond= kBit\n"
        "$$$/appleaudiotoolbox/MegabitsPerSecond= MBit\n"
        "$$$/appleaudiotoolbox/bitsPerSecond= Bit\n");
    const auto text = [](std::int64_t inMode, std::int64_t inBitrate, std::int64_t inQuality)
    { return UTF8(GetDescriptionString(AAC(), 0, inMode, inBitrate, inQuality)).substr(21); };
    EXPECT_EQ(UTF8(GetDescriptionString(AAC(), kM4A, -1, -1, -1)),
              "Typ m4af 6D346166\nFormat aac  61616320");
    EXPECT_EQ(text(0, 64000, -1), "fest 64 kBit");
    EXPECT_EQ(text(1, 64000000, -1), "mittel 64 MBit");
    EXPECT_EQ(text(2, 64, -1), "begrenzt 64 Bit");
    EXPECT_EQ(text(3, 0, 0), "kleinste");
    EXPECT_EQ(text(3, 0, 32), "kleine");
    EXPECT_EQ(text(3, 0, 64), "mittlere");
    EXPECT_EQ(text(3, 0, 96), "hohe");
    EXPECT_EQ(text(3, 0, 127), "beste");
}

}  // namespace
