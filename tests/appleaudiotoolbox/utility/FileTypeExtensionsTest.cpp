// The extensions of one file type on a scripted platform.
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include "tests/support/CatalogueScript.h"

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;
using Texts = std::vector<std::string>;

constexpr auto kExtensionsProperty = kAudioFileGlobalInfo_ExtensionsForType;

class FileTypeExtensions : public CatalogueTest
{
protected:
    Texts Extensions(UInt32 inFileType)
    {
        ATExtensionSet extensions = {"old"};
        QueryFileTypeExtensions(inFileType, extensions);
        return Texts(extensions.begin(), extensions.end());
    }
};

TEST_F(FileTypeExtensions, OfTheAIFFTypesAreTheirOwnAndNobodyIsAsked)
{
    mPlatform.AnswerWith(Family::Global, kExtensionsProperty,
                         [](const Question&) {
        return PropertyAnswer::Names({"aiff", "aifc", "aif"});
    });
    EXPECT_EQ(Extensions(kAIFF), (Texts{"aif", "aiff"}));
    EXPECT_EQ(Extensions(kAIFC), (Texts{"aifc"}));
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(FileTypeExtensions, AreAskedForWithoutASizeQueryEachTime)
{
    mScript.mFileTypes[kWAVE] = {"WAVE", {"wav", "bwf", "wav"}};
    EXPECT_EQ(Extensions(kWAVE), (Texts{"bwf", "wav"}));
    EXPECT_EQ(Extensions(kWAVE), (Texts{"bwf", "wav"}));
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{"AudioFileGetGlobalInfo 'fext' specifier 4 'WAVE' size 8",
                     "AudioFileGetGlobalInfo 'fext' specifier 4 'WAVE' size 8"}));
}

TEST_F(FileTypeExtensions, AreNoneAfterAFailure)
{
    EXPECT_EQ(Extensions(kWAVE), Texts());
}

TEST_F(FileTypeExtensions, AreUTF8)
{
    mScript.mFileTypes[kWAVE] = {"WAVE", {"w\xC3\xA4v"}};
    EXPECT_EQ(Extensions(kWAVE), (Texts{"w\xC3\xA4v"}));
}

TEST_F(FileTypeExtensions, SkipNullElementsAndReleaseArrayAndElementsOnce)
{
    const CFStringRef first =
        CFStringCreateWithCString(kCFAllocatorDefault, "one", kCFStringEncodingUTF8);
    const CFStringRef last =
        CFStringCreateWithCString(kCFAllocatorDefault, "two", kCFStringEncodingUTF8);
    const CFMutableArrayRef array = CFArrayCreateMutable(kCFAllocatorDefault, 0, nullptr);
    for (const CFStringRef element : {first, static_cast<CFStringRef>(nullptr), last})
        CFArrayAppendValue(array, element);
    PropertyAnswer answer;
    answer.mMake = [=]
    {
        for (const CFTypeRef object : {CFTypeRef(first), CFTypeRef(last), CFTypeRef(array)})
            CFRetain(object);
        return BytesOf<CFArrayRef>({array});
    };
    mPlatform.Answer(Family::Global, kExtensionsProperty, answer);

    EXPECT_EQ(Extensions(kWAVE), (Texts{"one", "two"}));
    for (const CFTypeRef object : {CFTypeRef(first), CFTypeRef(last), CFTypeRef(array)})
    {
        EXPECT_EQ(CFGetRetainCount(object), 1);
        CFRelease(object);
    }
}

}  // namespace
