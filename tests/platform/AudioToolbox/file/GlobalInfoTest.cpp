// The questions about file types that need no file.

#include <AudioToolbox/AudioFile.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace
{

std::vector<UInt32> ReadableTypes()
{
    UInt32 size = 0;
    EXPECT_EQ(AudioFileGetGlobalInfoSize(kAudioFileGlobalInfo_ReadableTypes, 0, nullptr, &size),
              noErr);
    std::vector<UInt32> types(size / 4);
    EXPECT_EQ(
        AudioFileGetGlobalInfo(kAudioFileGlobalInfo_ReadableTypes, 0, nullptr, &size, types.data()),
        noErr);
    return types;
}

std::string TextOf(CFStringRef inString)
{
    char text[128] = {};
    EXPECT_TRUE(CFStringGetCString(inString, text, sizeof(text), kCFStringEncodingUTF8));
    return text;
}

// Releases the elements and the array, as their users do.
std::vector<std::string> TakeTexts(AudioFilePropertyID inProperty, UInt32* inType)
{
    CFArrayRef array = nullptr;
    UInt32 size = sizeof(array);
    EXPECT_EQ(AudioFileGetGlobalInfo(inProperty, inType != nullptr ? 4 : 0, inType, &size, &array),
              noErr);
    EXPECT_EQ(CFGetRetainCount(array), 1);
    std::vector<std::string> texts;
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i)
    {
        const auto element = static_cast<CFStringRef>(CFArrayGetValueAtIndex(array, i));
        EXPECT_EQ(CFGetRetainCount(element), 1);
        texts.push_back(TextOf(element));
        CFRelease(element);
    }
    CFRelease(array);
    return texts;
}

TEST(AudioFileGlobals, ListTheTypesOnce)
{
    const std::vector<UInt32> types = ReadableTypes();
    const std::set<UInt32> unique(types.begin(), types.end());
    EXPECT_EQ(types.size(), 22u);
    EXPECT_EQ(unique.size(), types.size());
    EXPECT_EQ(unique.count(kAudioFileWAVEType), 1u);
    EXPECT_EQ(unique.count(kAudioFileSoundDesigner2Type), 0u);
    EXPECT_EQ(unique.count(kAudioFileLATMInLOASType), 1u);
}

TEST(AudioFileGlobals, CutTheListToWholeElements)
{
    UInt32 types[2] = {};
    UInt32 size = 7;
    ASSERT_EQ(AudioFileGetGlobalInfo(kAudioFileGlobalInfo_ReadableTypes, 0, nullptr, &size, types),
              noErr);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(types[0], ReadableTypes()[0]);
    EXPECT_EQ(types[1], 0u);
}

TEST(AudioFileGlobals, TellSizesOfObjectsWithoutLookingAtTheSpecifier)
{
    for (const AudioFilePropertyID property :
         {kAudioFileGlobalInfo_FileTypeName, kAudioFileGlobalInfo_ExtensionsForType,
          kAudioFileGlobalInfo_MIMETypesForType, kAudioFileGlobalInfo_AllExtensions,
          kAudioFileGlobalInfo_AllMIMETypes})
    {
        UInt32 size = 0;
        EXPECT_EQ(AudioFileGetGlobalInfoSize(property, 0, nullptr, &size), noErr);
        EXPECT_EQ(size, 8u);
    }
}

TEST(AudioFileGlobals, NameEveryType)
{
    std::set<std::string> names;
    for (UInt32 type : ReadableTypes())
    {
        CFStringRef name = nullptr;
        UInt32 size = sizeof(name);
        ASSERT_EQ(AudioFileGetGlobalInfo(kAudioFileGlobalInfo_FileTypeName, 4, &type, &size, &name),
                  noErr);
        EXPECT_EQ(CFGetRetainCount(name), 1);
        names.insert(TextOf(name));
        CFRelease(name);
    }
    EXPECT_EQ(names.size(), 22u);
    EXPECT_EQ(names.count("WAVE"), 1u);
    EXPECT_EQ(names.count("MPEG-4 Audio"), 1u);
}

TEST(AudioFileGlobals, HandTextsOverToTheCaller)
{
    UInt32 type = kAudioFileWAVEType;
    EXPECT_EQ(TakeTexts(kAudioFileGlobalInfo_ExtensionsForType, &type),
              (std::vector<std::string>{"wav", "wave"}));
    EXPECT_EQ(TakeTexts(kAudioFileGlobalInfo_MIMETypesForType, &type).front(), "audio/wav");
    for (const AudioFilePropertyID property :
         {kAudioFileGlobalInfo_AllExtensions, kAudioFileGlobalInfo_AllMIMETypes})
    {
        const std::vector<std::string> all = TakeTexts(property, nullptr);
        EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size());
        EXPECT_GT(all.size(), 22u);
    }
}

TEST(AudioFileGlobals, ListTheFormatsThatATypeHolds)
{
    UInt32 type = kAudioFileNextType;
    UInt32 size = 0;
    ASSERT_EQ(AudioFileGetGlobalInfoSize(kAudioFileGlobalInfo_AvailableFormatIDs, 4, &type, &size),
              noErr);
    ASSERT_EQ(size, 12u);
    UInt32 formats[3] = {};
    ASSERT_EQ(
        AudioFileGetGlobalInfo(kAudioFileGlobalInfo_AvailableFormatIDs, 4, &type, &size, formats),
        noErr);
    EXPECT_EQ(formats[0], kAudioFormatLinearPCM);
    EXPECT_EQ(formats[1], kAudioFormatALaw);
    EXPECT_EQ(formats[2], kAudioFormatULaw);
}

template <typename Element>
std::vector<Element> ListOf(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                            void* inSpecifier)
{
    UInt32 size = 0;
    EXPECT_EQ(AudioFileGetGlobalInfoSize(inProperty, inSpecifierSize, inSpecifier, &size), noErr);
    std::vector<Element> list(size / sizeof(Element) + 1);
    EXPECT_EQ(AudioFileGetGlobalInfo(inProperty, inSpecifierSize, inSpecifier, &size, list.data()),
              noErr);
    list.resize(size / sizeof(Element));
    return list;
}

std::vector<AudioStreamBasicDescription> VariantsOf(AudioFileTypeID inType, UInt32 inFormat)
{
    AudioFileTypeAndFormatID pair = {inType, inFormat};
    return ListOf<AudioStreamBasicDescription>(
        kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat, sizeof(pair), &pair);
}

TEST(AudioFileGlobals, ListWritableTypesInCodeOrder)
{
    const auto types = ListOf<UInt32>(kAudioFileGlobalInfo_WritableTypes, 0, nullptr);
    EXPECT_EQ(types.size(), 20u);
    EXPECT_TRUE(std::is_sorted(types.begin(), types.end()));
    const std::vector<UInt32> readable = ReadableTypes();
    for (const UInt32 type : types)
        EXPECT_EQ(std::count(readable.begin(), readable.end(), type), 1) << type;
    for (const UInt32 type : {kAudioFileAMRType, kAudioFileMP1Type})
        EXPECT_EQ(std::count(types.begin(), types.end(), type), 0) << type;
}

TEST(AudioFileGlobals, ListLinearVariantsInTheirOrder)
{
    const auto texts = [](AudioFileTypeID inType)
    {
        std::string text;
        for (const AudioStreamBasicDescription& variant : VariantsOf(inType, kAudioFormatLinearPCM))
        {
            EXPECT_EQ(variant.mFramesPerPacket, 1u);
            EXPECT_EQ(variant.mBytesPerPacket + variant.mBytesPerFrame + variant.mChannelsPerFrame,
                      0u);
            EXPECT_EQ(variant.mSampleRate, 0.0);
            text += std::to_string(variant.mFormatFlags) + "/" +
                    std::to_string(variant.mBitsPerChannel) + " ";
        }
        return text;
    };
    EXPECT_EQ(texts(kAudioFileWAVEType), "8/8 12/16 12/24 9/32 12/32 9/64 ");
    EXPECT_EQ(texts(kAudioFileAIFFType), "12/8 14/16 14/24 14/32 ");
    EXPECT_EQ(texts(kAudioFileAIFCType), "12/8 14/16 12/16 14/24 12/24 11/32 14/32 12/32 11/64 ");
    EXPECT_EQ(texts(kAudioFileNextType), "12/8 14/16 14/24 11/32 14/32 11/64 ");
    EXPECT_EQ(texts(kAudioFileCAFType),
              "12/8 14/16 12/16 14/24 12/24 11/32 9/32 14/32 12/32 11/64 9/64 ");
}

TEST(AudioFileGlobals, ListOneVariantOfEveryOtherWritableFormatAndNoneOfOthers)
{
    const auto flac = VariantsOf(kAudioFileFLACType, kAudioFormatFLAC);
    ASSERT_EQ(flac.size(), 1u);
    EXPECT_EQ(flac[0].mFormatID, kAudioFormatFLAC);
    EXPECT_EQ(flac[0].mFormatFlags, 0u);
    EXPECT_EQ(VariantsOf(kAudioFileMPEG4Type, kAudioFormatOpus).size(), 1u);
    EXPECT_TRUE(VariantsOf(kAudioFileM4AType, kAudioFormatOpus).empty());
    EXPECT_TRUE(VariantsOf(kAudioFileM4AType, kAudioFormatLinearPCM).empty());
    EXPECT_TRUE(VariantsOf(kAudioFileAMRType, kAudioFormatAMR).empty());
}

TEST(AudioFileGlobals, CutVariantsToWholeOnesAndRefuseOtherSpecifiers)
{
    AudioFileTypeAndFormatID pair = {kAudioFileWAVEType, kAudioFormatLinearPCM};
    AudioStreamBasicDescription variants[2] = {};
    UInt32 size = 79;
    constexpr AudioFilePropertyID kVariants =
        kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat;
    EXPECT_EQ(AudioFileGetGlobalInfo(kVariants, 8, &pair, &size, variants), noErr);
    EXPECT_EQ(size, 40u);
    EXPECT_EQ(variants[1].mFormatID, 0u);
    EXPECT_EQ(AudioFileGetGlobalInfoSize(kVariants, 4, &pair, &size),
              kAudioFileBadPropertySizeError);
    pair.mFileType = 0;
    EXPECT_EQ(AudioFileGetGlobalInfoSize(kVariants, 8, &pair, &size),
              kAudioFileUnsupportedFileTypeError);
}

TEST(AudioFileGlobals, NoTypeThatIsWrittenListsAnEncodableFormatThatItCannotHold)
{
    UInt32 type = kAudioFileCAFType;
    const auto formats = ListOf<UInt32>(kAudioFileGlobalInfo_AvailableFormatIDs, 4, &type);
    EXPECT_EQ(std::count(formats.begin(), formats.end(), kAudioFormatAppleLossless), 1);
    EXPECT_EQ(std::count(formats.begin(), formats.end(), kAudioFormatMPEG4AAC_HE), 1);
    EXPECT_EQ(std::count(formats.begin(), formats.end(), kAudioFormatFLAC), 0);
}

TEST(AudioFileGlobals, RefuseWhatTheyDoNotKnow)
{
    CFTypeRef object = nullptr;
    UInt32 size = sizeof(object);
    UInt32 type = CA_FOUR_CHAR_CODE('n', 'o', 'n', 'e');
    EXPECT_EQ(AudioFileGetGlobalInfo(kAudioFileGlobalInfo_FileTypeName, 4, &type, &size, &object),
              kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(AudioFileGetGlobalInfo(kAudioFileGlobalInfo_FileTypeName, 3, &type, &size, &object),
              kAudioFileBadPropertySizeError);
    EXPECT_EQ(AudioFileGetGlobalInfo(kAudioFileGlobalInfo_FileTypeName, 0, nullptr, &size, &object),
              kAudioFileBadPropertySizeError);
    EXPECT_EQ(AudioFileGetGlobalInfo(type, 0, nullptr, &size, &object),
              kAudioFileUnsupportedPropertyError);
    EXPECT_EQ(AudioFileGetGlobalInfoSize(type, 0, nullptr, &size),
              kAudioFileUnsupportedPropertyError);
    type = kAudioFileWAVEType;
    size = 7;
    EXPECT_EQ(AudioFileGetGlobalInfo(kAudioFileGlobalInfo_FileTypeName, 4, &type, &size, &object),
              kAudioFileBadPropertySizeError);
    EXPECT_EQ(object, nullptr);
}

}  // namespace
