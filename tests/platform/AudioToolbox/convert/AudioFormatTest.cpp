#include <AudioToolbox/AudioFormat.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

std::string NameOf(const AudioStreamBasicDescription& inFormat, OSStatus* outStatus = nullptr)
{
    CFStringRef name = nullptr;
    UInt32 size = sizeof(name);
    const OSStatus status = AudioFormatGetProperty(kAudioFormatProperty_FormatName,
                                                   sizeof(inFormat), &inFormat, &size, &name);
    if (outStatus != nullptr)
        *outStatus = status;
    if (status != noErr)
        return {};
    char text[200] = {};
    EXPECT_TRUE(CFStringGetCString(name, text, sizeof(text), kCFStringEncodingUTF8));
    EXPECT_EQ(CFGetRetainCount(name), 1);
    CFRelease(name);
    return text;
}

TEST(AudioFormat, DecodeListBeginsWithLinearPCMAndHoldsWhatDecodes)
{
    UInt32 size = 0;
    ASSERT_EQ(AudioFormatGetPropertyInfo(kAudioFormatProperty_DecodeFormatIDs, 0, nullptr, &size),
              noErr);
    ASSERT_EQ(size, 80u);
    std::vector<UInt32> formats(size / 4);
    ASSERT_EQ(AudioFormatGetProperty(kAudioFormatProperty_DecodeFormatIDs, 0, nullptr, &size,
                                     formats.data()),
              noErr);
    EXPECT_EQ(formats[0], kAudioFormatLinearPCM);
    for (const UInt32 format :
         {kAudioFormatMPEG4AAC_HE_V2, kAudioFormatFLAC, kAudioFormatALaw, kAudioFormatMicrosoftGSM})
        EXPECT_EQ(std::count(formats.begin(), formats.end(), format), 1) << format;
    for (const UInt32 format : {kAudioFormatMACE3, kAudioFormatiLBC, kAudioFormatQDesign2})
        EXPECT_EQ(std::count(formats.begin(), formats.end(), format), 0) << format;
}

TEST(AudioFormat, AListIsCutToTheWholeElementsThatFit)
{
    UInt32 formats[3] = {7, 7, 7};
    UInt32 size = 11;
    EXPECT_EQ(
        AudioFormatGetProperty(kAudioFormatProperty_DecodeFormatIDs, 0, nullptr, &size, formats),
        noErr);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(formats[2], 7u);
}

TEST(AudioFormat, TheSizeOfANameIsToldWithoutLookingAtTheSpecifier)
{
    UInt32 size = 0;
    EXPECT_EQ(AudioFormatGetPropertyInfo(kAudioFormatProperty_FormatName, 40,
                                         reinterpret_cast<const void*>(1), &size),
              noErr);
    EXPECT_EQ(size, 8u);
}

TEST(AudioFormat, NamesTellLinearFormatsApart)
{
    const auto name = [](UInt32 inFlags, UInt32 inBits) {
        return NameOf({44100, kAudioFormatLinearPCM, inFlags, 0, 1, 0, 0, inBits, 0});
    };
    EXPECT_EQ(name(12, 16), "Linear PCM, 16 bit little-endian signed integer");
    EXPECT_EQ(name(14, 24), "Linear PCM, 24 bit big-endian signed integer");
    EXPECT_EQ(name(8, 8), "Linear PCM, 8 bit unsigned integer");
    EXPECT_EQ(name(12, 8), "Linear PCM, 8 bit signed integer");
    EXPECT_EQ(name(11, 64), "Linear PCM, 64 bit big-endian floating point");
    EXPECT_EQ(name(0, 0), "Linear PCM");
}

TEST(AudioFormat, AnUnknownFormatHasNoName)
{
    OSStatus status = noErr;
    EXPECT_EQ(NameOf({0, 0x3F3F3F3F, 0, 0, 0, 0, 0, 0, 0}, &status), "");
    EXPECT_EQ(status, kAudioFormatUnknownFormatError);
}

TEST(AudioFormat, FormatInfoFillsInWhatTheFormatFixes)
{
    AudioStreamBasicDescription format = {0, kAudioFormatMPEG4AAC, 0, 0, 0, 0, 0, 0, 0};
    UInt32 size = sizeof(format);
    EXPECT_EQ(AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &size, &format),
              noErr);
    EXPECT_EQ(format.mFramesPerPacket, 1024u);
    EXPECT_EQ(format.mFormatFlags, 0u);
    format = {0, kAudioFormatLinearPCM, 12, 0, 1, 0, 0, 16, 0};
    EXPECT_EQ(AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &size, &format),
              noErr);
    EXPECT_EQ(format.mBytesPerFrame, 0u);
    EXPECT_EQ(format.mSampleRate, 0.0);
    size = 39;
    EXPECT_EQ(AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &size, &format),
              kAudioFormatBadPropertySizeError);
}

TEST(AudioFormat, RefusesUnknownPropertiesAndNullArguments)
{
    UInt32 size = 8;
    EXPECT_EQ(AudioFormatGetPropertyInfo(0x3F3F3F3F, 0, nullptr, &size),
              kAudioFormatUnsupportedPropertyError);
    EXPECT_EQ(AudioFormatGetPropertyInfo(kAudioFormatProperty_FormatName, 0, nullptr, nullptr),
              -50);
    EXPECT_EQ(AudioFormatGetProperty(kAudioFormatProperty_FormatName, 0, nullptr, nullptr, &size),
              -50);
}

}  // namespace
