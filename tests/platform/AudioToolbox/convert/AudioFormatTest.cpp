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

template <typename Element>
std::vector<Element> ListOf(AudioFormatPropertyID inProperty, UInt32 inSize, const void* inBytes,
                            OSStatus* outStatus = nullptr)
{
    UInt32 size = 0;
    const OSStatus status = AudioFormatGetPropertyInfo(inProperty, inSize, inBytes, &size);
    if (outStatus != nullptr)
        *outStatus = status;
    std::vector<Element> list(size / sizeof(Element) + 1);
    EXPECT_EQ(AudioFormatGetProperty(inProperty, inSize, inBytes, &size, list.data()), status);
    list.resize(size / sizeof(Element));
    return list;
}

TEST(AudioFormat, EncodeListHoldsEachEncoderOnceAndEachHasAName)
{
    const auto formats = ListOf<UInt32>(kAudioFormatProperty_EncodeFormatIDs, 0, nullptr);
    ASSERT_EQ(formats.size(), 15u);
    EXPECT_EQ(formats[0], kAudioFormatLinearPCM);
    for (const UInt32 format : formats)
    {
        EXPECT_EQ(std::count(formats.begin(), formats.end(), format), 1) << format;
        EXPECT_FALSE(NameOf({0, format, 0, 0, 0, 0, 0, 0, 0}).empty()) << format;
    }
    EXPECT_EQ(std::count(formats.begin(), formats.end(), kAudioFormatMPEG4AAC_HE), 0);
}

TEST(AudioFormat, EncodeRatesAreToldForACodeAndForADescription)
{
    constexpr AudioFormatPropertyID kRates = kAudioFormatProperty_AvailableEncodeSampleRates;
    const UInt32 code = kAudioFormatMPEG4AAC;
    const AudioStreamBasicDescription format = {1e30, code, 0, 0, 0, 0, 99, 0, 0};
    for (const auto& ranges :
         {ListOf<AudioValueRange>(kRates, 4, &code), ListOf<AudioValueRange>(kRates, 40, &format)})
    {
        ASSERT_EQ(ranges.size(), 13u);
        EXPECT_EQ(ranges[0].mMinimum, 7350.0);
        EXPECT_EQ(ranges[12].mMaximum, 96000.0);
    }
    const UInt32 linear = kAudioFormatLinearPCM;
    const auto any = ListOf<AudioValueRange>(kRates, 4, &linear);
    ASSERT_EQ(any.size(), 1u);
    EXPECT_EQ(any[0].mMinimum, 0.0);
    EXPECT_EQ(any[0].mMaximum, 0.0);
    OSStatus status = noErr;
    (void)ListOf<AudioValueRange>(kRates, 8, &format, &status);
    EXPECT_EQ(status, kAudioFormatBadSpecifierSizeError);
    const UInt32 unknown = kAudioFormatMACE3;
    (void)ListOf<AudioValueRange>(kRates, 4, &unknown, &status);
    EXPECT_EQ(status, kAudioFormatUnsupportedDataFormatError);
}

TEST(AudioFormat, EncodeChannelCountsFollowTheCodeAlone)
{
    const auto counts = [](AudioFormatID inFormat)
    {
        const AudioStreamBasicDescription format = {0, inFormat, 0, 0, 0, 0, 0, 0, 0};
        return ListOf<UInt32>(kAudioFormatProperty_AvailableEncodeNumberChannels, sizeof(format),
                              &format);
    };
    EXPECT_EQ(counts(kAudioFormatLinearPCM), std::vector<UInt32>{0xFFFFFFFF});
    EXPECT_EQ(counts(kAudioFormatMPEG4AAC), (std::vector<UInt32>{1, 2, 3, 4, 5, 6, 8}));
    EXPECT_EQ(counts(kAudioFormatMicrosoftGSM), std::vector<UInt32>{1});
}

TEST(AudioFormat, FormatInfoTellsPacketsOfEncodedFormats)
{
    const auto info = [](AudioFormatID inFormat, Float64 inRate, UInt32 inChannels)
    {
        AudioStreamBasicDescription format = {inRate, inFormat, 0, 0, 0, 0, inChannels, 0, 0};
        UInt32 size = sizeof(format);
        EXPECT_EQ(
            AudioFormatGetProperty(kAudioFormatProperty_FormatInfo, 0, nullptr, &size, &format),
            noErr);
        EXPECT_EQ(format.mFormatFlags, 0u);
        EXPECT_EQ(format.mChannelsPerFrame, inChannels);
        return std::vector<UInt32>{format.mFramesPerPacket, format.mBytesPerPacket};
    };
    EXPECT_EQ(info(kAudioFormatMPEGLayer3, 0, 0), (std::vector<UInt32>{1152, 0}));
    EXPECT_EQ(info(kAudioFormatMPEGLayer3, 24000, 1), (std::vector<UInt32>{576, 0}));
    EXPECT_EQ(info(kAudioFormatAppleIMA4, 44100, 2), (std::vector<UInt32>{64, 68}));
    EXPECT_EQ(info(kAudioFormatMicrosoftADPCM, 44100, 2), (std::vector<UInt32>{1012, 1024}));
    EXPECT_EQ(info(kAudioFormatMicrosoftGSM, 8000, 1), (std::vector<UInt32>{320, 65}));
    EXPECT_EQ(info(kAudioFormatFLAC, 0, 0), (std::vector<UInt32>{4608, 0}));
    EXPECT_EQ(info(kAudioFormatAppleLossless, 0, 0), (std::vector<UInt32>{4096, 0}));
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
