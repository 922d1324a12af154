// Both catalogues on a scripted platform: their build and their life.
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"

#include "tests/support/CatalogueScript.h"
#include "tests/support/TraceLines.h"

#include <new>

using namespace appleaudiotoolbox;
using namespace testing_support;

namespace
{

using Calls = std::vector<std::string>;
using Texts = std::vector<std::string>;

constexpr auto kExtensionsProperty = kAudioFileGlobalInfo_ExtensionsForType;

Codes Keys(const ATFileTypeMap& inTypes)
{
    Codes keys;
    for (const auto& [id, type] : inTypes)
        keys.push_back(id);
    return keys;
}

Texts Plain(const ATExtensionSet& inExtensions)
{
    Texts texts;
    for (const UTF8String& extension : inExtensions)
        texts.emplace_back(extension.c_str());
    return texts;
}

class Catalogue : public CatalogueTest
{
protected:
    ATFileTypeMap Input()
    {
        ATFileTypeMap types;
        QueryInputFileTypes(types);
        return types;
    }
    ATFileTypeMap Output()
    {
        ATFileTypeMap types;
        QueryOutputFileTypes(types);
        return types;
    }
    Texts ImportExtensions()
    {
        ATExtensionSet extensions = {"old"};
        QueryAllImportExtensions(extensions);
        return Plain(extensions);
    }
    Texts ExportExtensions()
    {
        ATExtensionSet extensions = {"old"};
        QueryAllExportExtensions(extensions);
        return Plain(extensions);
    }
    // Two types, of which the second has no encoder.
    void HoldTwoTypes()
    {
        mScript.mEncodable = {kPCM};
        mScript.AddFileType(kWAVE, {"WAVE", {"wav", "wave"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
        mScript.AddFileType(kM4A, {"Apple MPEG-4", {"m4a", "wave"}, {{kAAC, {Variant(kAAC)}}}});
    }
};

using InputCatalogue = Catalogue;
using OutputCatalogue = Catalogue;

TEST_F(InputCatalogue, HasNameExtensionsAndFormatsOfEveryReadableType)
{
    HoldTwoTypes();
    mScript.mWritable = {};
    const ATFileTypeMap types = Input();
    ASSERT_EQ(Keys(types), (Codes{kWAVE, kM4A}));
    EXPECT_EQ(types.at(kM4A).mName, u"Apple MPEG-4");
    EXPECT_EQ(Plain(types.at(kM4A).mExtensionSet), (Texts{"m4a", "wave"}));
    ASSERT_EQ(types.at(kM4A).mFormatTypeMap.size(), 1u);
    EXPECT_TRUE(types.at(kM4A).mFormatTypeMap.at(kAAC).empty());
}

TEST_F(InputCatalogue, AsksItsQuestionsInOrder)
{
    mScript.AddFileType(kWAVE, {"WAVE", {"wav"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
    Input();
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{"AudioFileGetGlobalInfoSize 'afrf' specifier none size 0",
                     "AudioFileGetGlobalInfo 'afrf' specifier none size 4",
                     "AudioFileGetGlobalInfoSize 'ftnm' specifier none size 0",
                     "AudioFileGetGlobalInfo 'ftnm' specifier 4 'WAVE' size 8",
                     "AudioFileGetGlobalInfo 'fext' specifier 4 'WAVE' size 8",
                     "AudioFileGetGlobalInfoSize 'fmid' specifier 4 'WAVE' size 0",
                     "AudioFileGetGlobalInfo 'fmid' specifier 4 'WAVE' size 4"}));
}

TEST_F(InputCatalogue, IsBuiltOnce)
{
    HoldTwoTypes();
    Input();
    mPlatform.ForgetCalls();
    mScript.mReadable = {};
    EXPECT_EQ(Keys(Input()), (Codes{kWAVE, kM4A}));
    EXPECT_EQ(ImportExtensions(), (Texts{"m4a", "wav", "wave"}));
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(InputCatalogue, IsHandedOutAsACopyInPlaceOfWhatWasThere)
{
    HoldTwoTypes();
    ATFileTypeMap types;
    types[7];
    QueryInputFileTypes(types);
    types[kWAVE].mExtensionSet.clear();
    types[kWAVE].mFormatTypeMap.clear();
    EXPECT_EQ(types.count(7), 0u);
    EXPECT_EQ(Input().at(kWAVE).mExtensionSet.size(), 2u);
    EXPECT_EQ(Input().at(kWAVE).mFormatTypeMap.size(), 1u);
}

TEST_F(InputCatalogue, ThatStaysEmptyIsAskedForAgain)
{
    EXPECT_TRUE(Input().empty());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afrf'").size(), 1u);
    EXPECT_TRUE(Input().empty());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afrf'").size(), 2u);
    HoldTwoTypes();
    EXPECT_EQ(Input().size(), 2u);
}

TEST_F(InputCatalogue, IsEmptyAndAskedForAgainAfterAFailure)
{
    HoldTwoTypes();
    const PropertyAnswer list = PropertyAnswer::List(Codes{kWAVE});
    mPlatform.AnswerInTurn(Family::Global, kAudioFileGlobalInfo_ReadableTypes,
                           {list.InfoFails(-50), list, list});
    EXPECT_TRUE(Input().empty());
    EXPECT_EQ(mPlatform.Calls().size(), 1u);
    mPlatform.AnswerInTurn(Family::Global, kAudioFileGlobalInfo_ReadableTypes,
                           {list.GetFails(-50), list});
    EXPECT_TRUE(Input().empty());
    EXPECT_EQ(Keys(Input()), Codes{kWAVE});
}

TEST_F(InputCatalogue, KeepsATypeWithoutANameQuestionAsAnEmptyRecord)
{
    HoldTwoTypes();
    mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_FileTypeName,
                     PropertyAnswer::Name("WAVE").InfoFails(-50));
    const ATFileTypeMap types = Input();
    ASSERT_EQ(Keys(types), (Codes{kWAVE, kM4A}));
    EXPECT_TRUE(types.at(kWAVE).mName.empty());
    EXPECT_TRUE(types.at(kWAVE).mExtensionSet.empty());
    EXPECT_TRUE(types.at(kWAVE).mFormatTypeMap.empty());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfo 'fext'"), Calls());
    EXPECT_EQ(ImportExtensions(), Texts());
}

TEST_F(InputCatalogue, AsksTheNameQuestionForEachTypeAnew)
{
    HoldTwoTypes();
    const PropertyAnswer name = PropertyAnswer::Name("Named").Size(8);
    mPlatform.AnswerInTurn(Family::Global, kAudioFileGlobalInfo_FileTypeName,
                           {name.InfoFails(-50), name});
    const ATFileTypeMap types = Input();
    EXPECT_TRUE(types.at(kWAVE).mName.empty());
    EXPECT_TRUE(types.at(kWAVE).mFormatTypeMap.empty());
    EXPECT_EQ(types.at(kM4A).mName, u"Named");
    EXPECT_EQ(types.at(kM4A).mFormatTypeMap.size(), 1u);
}

TEST_F(InputCatalogue, KeepsATypeWhoseNameIsLargerThanAReferenceAsAnEmptyRecord)
{
    HoldTwoTypes();
    mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_FileTypeName, PropertyAnswer().Size(9));
    EXPECT_TRUE(Input().at(kWAVE).mExtensionSet.empty());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfo 'ftnm'"), Calls());
}

TEST_F(InputCatalogue, KeepsATypeWithoutExtensions)
{
    HoldTwoTypes();
    mPlatform.Forget(Family::Global, kExtensionsProperty);
    EXPECT_EQ(Input().at(kWAVE).mName, u"WAVE");
    EXPECT_TRUE(Input().at(kWAVE).mExtensionSet.empty());
    EXPECT_EQ(Input().at(kWAVE).mFormatTypeMap.size(), 1u);
    EXPECT_EQ(ImportExtensions(), Texts());
}

TEST_F(InputCatalogue, KeepsATypeWithoutFormats)
{
    mScript.AddFileType(kWAVE, {"WAVE", {"wav"}});
    EXPECT_EQ(Keys(Input()), Codes{kWAVE});
}

TEST_F(InputCatalogue, ListsTypesByTheirNumber)
{
    mScript.AddFileType(kCAF, {"A", {"a"}});
    mScript.AddFileType(kADTS, {"B", {"b"}});
    mScript.AddFileType(kWAVE, {"C", {"c"}});
    EXPECT_EQ(Keys(Input()), (Codes{kWAVE, kADTS, kCAF}));
}

TEST_F(InputCatalogue, KeepsTheLastOfTwoEqualTypes)
{
    mScript.AddFileType(kWAVE, {"WAVE", {"wav"}});
    mScript.mReadable = {kWAVE, kWAVE};
    mPlatform.AnswerInTurn(Family::Global, kExtensionsProperty,
                           {PropertyAnswer::Names({"first"}), PropertyAnswer::Names({"last"})});
    EXPECT_EQ(Plain(Input().at(kWAVE).mExtensionSet), Texts{"last"});
}

TEST_F(InputCatalogue, ListsASharedExtensionOnceAndKeepsItInBothTypes)
{
    HoldTwoTypes();
    EXPECT_EQ(ImportExtensions(), (Texts{"m4a", "wav", "wave"}));
    EXPECT_EQ(Input().at(kWAVE).mExtensionSet.count("wave"), 1u);
    EXPECT_EQ(Input().at(kM4A).mExtensionSet.count("wave"), 1u);
}

TEST_F(InputCatalogue, ReleasesEachNameOnce)
{
    mScript.AddFileType(kWAVE, {"WAVE", {"wav"}});
    const CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, "Kept", kCFStringEncodingUTF8);
    PropertyAnswer answer;
    answer.mSize = 8;
    answer.mMake = [=] { return BytesOf<CFStringRef>({(CFRetain(name), name)}); };
    mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_FileTypeName, answer);
    EXPECT_EQ(Input().at(kWAVE).mName, u"Kept");
    EXPECT_EQ(CFGetRetainCount(name), 1);
    CFRelease(name);
}

TEST_F(InputCatalogue, ThatAnExceptionCutShortCountsAsComplete)
{
    HoldTwoTypes();
    mPlatform.AnswerWith(Family::Global, kExtensionsProperty,
                         [](const Question& question)
                         {
        if (question.mTurn == 1)
            throw std::bad_alloc();
        return PropertyAnswer::Names({"wav"});
    });
    EXPECT_THROW(Input(), std::bad_alloc);
    mPlatform.ForgetCalls();
    EXPECT_EQ(Keys(Input()), Codes{kWAVE});
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(InputCatalogue, IsTracedTypeByTypeWithFormats)
{
    const TraceLines trace(6);
    mScript.AddFileType(kWAVE, {"W\xC3\xA4ve", {"wav"}, {{kPCM, {}}}});
    mScript.AddFileType(kM4A, {"", {"m4a"}, {{kAAC, {}}}});
    Input();
    EXPECT_EQ(
        trace.Lines(),
        (Texts{TraceLines::Line("<6> Input:\tW\xC3\xA4ve\n\n"),
               TraceLines::Line("<6> \t   'lpcm' (Unnamed Format: 'lpcm', 0x6C70636D)\n\n"),
               TraceLines::Line("<6> Input:\t\n\n"),
               TraceLines::Line("<6> \t   'aac ' (Unnamed Format: 'aac ', 0x61616320)\n\n")}));
}

TEST_F(InputCatalogue, IsNotTracedAtLevel5)
{
    const TraceLines trace(5);
    HoldTwoTypes();
    Input();
    Output();
    EXPECT_EQ(trace.Lines(), Texts());
}

TEST_F(OutputCatalogue, HasTheVariantsOfEveryFormat)
{
    HoldTwoTypes();
    mScript.mEncodable = {kPCM, kAAC};
    mScript.mReadable = {};
    const ATFileTypeMap types = Output();
    ASSERT_EQ(Keys(types), (Codes{kWAVE, kM4A}));
    EXPECT_EQ(types.at(kWAVE).mName, u"WAVE");
    ASSERT_EQ(types.at(kWAVE).mFormatTypeMap.at(kPCM).size(), 1u);
    EXPECT_EQ(types.at(kWAVE).mFormatTypeMap.at(kPCM)[0].mFormatDescription.mBitsPerChannel, 16u);
}

TEST_F(OutputCatalogue, AsksForWritableTypesAndThenAsTheInputDoes)
{
    mScript.AddFileType(kWAVE, {"WAVE", {"wav"}, {{kPCM, {}}}});
    mScript.mEncodable = {kPCM};
    Output();
    EXPECT_EQ(mPlatform.Calls(),
              (Calls{"AudioFileGetGlobalInfoSize 'afwf' specifier none size 0",
                     "AudioFileGetGlobalInfo 'afwf' specifier none size 4",
                     "AudioFileGetGlobalInfoSize 'ftnm' specifier none size 0",
                     "AudioFileGetGlobalInfo 'ftnm' specifier 4 'WAVE' size 8",
                     "AudioFileGetGlobalInfo 'fext' specifier 4 'WAVE' size 8",
                     "AudioFileGetGlobalInfoSize 'fmid' specifier 4 'WAVE' size 0",
                     "AudioFileGetGlobalInfo 'fmid' specifier 4 'WAVE' size 4",
                     "AudioFormatGetPropertyInfo 'acof' specifier none size 0",
                     "AudioFormatGetProperty 'acof' specifier none size 4",
                     "AudioFileGetGlobalInfoSize 'sdid' specifier 8 size 0",
                     "AudioFileGetGlobalInfo 'sdid' specifier 8 size 0"}));
}

TEST_F(OutputCatalogue, DropsATypeIntoWhichNothingCanBeEncoded)
{
    HoldTwoTypes();
    EXPECT_EQ(Keys(Output()), Codes{kWAVE});
    EXPECT_EQ(ExportExtensions(), (Texts{"wav", "wave"}));
    EXPECT_EQ(Keys(Input()), (Codes{kWAVE, kM4A}));
}

TEST_F(OutputCatalogue, KeepsATypeWhoseOnlyFormatHasNoVariants)
{
    mScript.AddFileType(kWAVE, {"WAVE", {"wav"}, {{kPCM, {}}}});
    mScript.mEncodable = {kPCM};
    EXPECT_EQ(Keys(Output()), Codes{kWAVE});
}

TEST_F(OutputCatalogue, DropsATypeWithoutANameQuestion)
{
    HoldTwoTypes();
    mPlatform.Answer(Family::Global, kAudioFileGlobalInfo_FileTypeName,
                     PropertyAnswer().InfoFails(-50));
    EXPECT_TRUE(Output().empty());
}

TEST_F(OutputCatalogue, IsBuiltOnce)
{
    HoldTwoTypes();
    Output();
    mPlatform.ForgetCalls();
    mScript.mWritable = {};
    EXPECT_EQ(Keys(Output()), Codes{kWAVE});
    EXPECT_EQ(ExportExtensions(), (Texts{"wav", "wave"}));
    EXPECT_EQ(mPlatform.Calls(), Calls());
}

TEST_F(OutputCatalogue, OfWhichEveryTypeIsDroppedIsBuiltAgain)
{
    HoldTwoTypes();
    mScript.mEncodable = {};
    EXPECT_TRUE(Output().empty());
    EXPECT_EQ(ExportExtensions(), Texts());
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afwf'").size(), 2u);
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfo 'ftnm'").size(), 4u);
    mScript.mEncodable = {kPCM};
    EXPECT_EQ(Keys(Output()), Codes{kWAVE});
}

TEST_F(OutputCatalogue, AndInputAreBuiltEachForItself)
{
    HoldTwoTypes();
    Input();
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afwf'"), Calls());
    Output();
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afrf'").size(), 1u);
}

TEST_F(OutputCatalogue, IsTracedWithCodesAlsoForDroppedTypes)
{
    const TraceLines trace(6);
    HoldTwoTypes();
    mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatName,
                     PropertyAnswer::Name("Linear PCM"));
    Output();
    EXPECT_EQ(trace.Lines(), (Texts{TraceLines::Line("<6> Output:\t'WAVE' WAVE\n\n"),
                                    TraceLines::Line("<6> \t   'lpcm' Linear PCM\n\n"),
                                    TraceLines::Line("<6> Output:\t'm4af' Apple MPEG-4\n\n")}));
}

}  // namespace
