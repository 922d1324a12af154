// The questions about file types that need no file.

#include <AudioToolbox/AudioFile.h>

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
