// Questions about file types, against a platform of four functions.
#include "appleaudiotoolbox/utility/ATUtils.h"

#include <cstring>
#include <string>
#include <vector>

#include <dlfcn.h>

#include <gtest/gtest.h>

using namespace appleaudiotoolbox;

namespace
{

struct Call
{
    std::string mName;
    UInt32 mProperty;
    UInt32 mSpecifier;  // its value, 0 without one
    UInt32 mSpecifierSize;
    UInt32 mSize;  // as handed over

    bool operator==(const Call&) const = default;
};

void PrintTo(const Call& inCall, std::ostream* outStream)
{
    *outStream << inCall.mName << " property " << inCall.mProperty << " specifier "
               << inCall.mSpecifier << " of " << inCall.mSpecifierSize << ", size " << inCall.mSize;
}

// What the platform answers in the running test.
struct Script
{
    OSStatus mSizeStatus = noErr;
    OSStatus mValueStatus = noErr;
    UInt32 mReportedSize = 0;
    UInt32 mFileType = 0;
    CFArrayRef mArray = nullptr;
    std::vector<Call> mCalls;
    AudioFileID mFile = nullptr;
    CFTypeRef mArrayOnEntry = nullptr;
    std::vector<CFMutableArrayRef> mMadeArrays;
};

Script* sScript = nullptr;

class FileTypes : public testing::Test
{
protected:
    FileTypes() { sScript = &mScript; }
    ~FileTypes() override { sScript = nullptr; }

    Script mScript;
};

const AudioFileID kFile = reinterpret_cast<AudioFileID>(0x1234);

}  // namespace

OSStatus AudioFileGetPropertyInfo(AudioFileID inFile, AudioFilePropertyID inProperty,
                                  UInt32* outSize, UInt32* outWritable)
{
    sScript->mFile = inFile;
    sScript->mCalls.push_back({"info", inProperty, 0, 0, *outSize});
    *outSize = sScript->mReportedSize;
    *outWritable = 1;
    return sScript->mSizeStatus;
}

OSStatus AudioFileGetProperty(AudioFileID inFile, AudioFilePropertyID inProperty, UInt32* ioSize,
                              void* outData)
{
    EXPECT_EQ(inFile, sScript->mFile);
    sScript->mCalls.push_back({"get", inProperty, 0, 0, *ioSize});
    // A failing call may write its value all the same.
    std::memcpy(outData, &sScript->mFileType, sizeof(sScript->mFileType));
    return sScript->mValueStatus;
}

OSStatus AudioFileGetGlobalInfoSize(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                                    void* inSpecifier, UInt32* outSize)
{
    EXPECT_EQ(inSpecifier, nullptr);
    sScript->mCalls.push_back({"size", inProperty, 0, inSpecifierSize, *outSize});
    *outSize = sScript->mReportedSize;
    return sScript->mSizeStatus;
}

OSStatus AudioFileGetGlobalInfo(AudioFilePropertyID inProperty, UInt32 inSpecifierSize,
                                void* inSpecifier, UInt32* ioSize, void* outData)
{
    sScript->mCalls.push_back(
        {"value", inProperty, *static_cast<UInt32*>(inSpecifier), inSpecifierSize, *ioSize});
    std::memcpy(&sScript->mArrayOnEntry, outData, sizeof(CFTypeRef));
    if (sScript->mValueStatus == noErr)
        std::memcpy(outData, &sScript->mArray, sizeof(sScript->mArray));
    return sScript->mValueStatus;
}

// The real one, with a note of what it made: the tests look at the counts of these arrays.
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef inAllocator, CFIndex inCapacity,
                                       const CFArrayCallBacks* inCallBacks)
{
    using Function = CFMutableArrayRef (*)(CFAllocatorRef, CFIndex, const CFArrayCallBacks*);
    static const auto sReal = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "CFArrayCreateMutable"));
    CFMutableArrayRef array = sReal(inAllocator, inCapacity, inCallBacks);
    sScript->mMadeArrays.push_back(array);
    return array;
}

namespace
{

// A list as the platform hands it over: one reference of the array and one of each element for the
// caller. The test keeps one more of each, to see what is left.
class MIMEList
{
public:
    explicit MIMEList(const std::vector<const char*>& inTypes)
    {
        mArray = CFArrayCreateMutable(kCFAllocatorDefault, 0, nullptr);
        sScript->mMadeArrays.clear();
        for (const char* const type : inTypes)
        {
            CFStringRef string =
                CFStringCreateWithCString(kCFAllocatorDefault, type, kCFStringEncodingUTF8);
            CFArrayAppendValue(mArray, string);
            mStrings.push_back(static_cast<CFStringRef>(CFRetain(string)));
        }
        CFRetain(mArray);
        sScript->mArray = mArray;
    }
    ~MIMEList()
    {
        for (const CFStringRef string : mStrings)
        {
            EXPECT_EQ(CFGetRetainCount(string), 1);
            CFRelease(string);
        }
        EXPECT_EQ(CFGetRetainCount(mArray), 1);
        CFRelease(mArray);
    }
    MIMEList(const MIMEList&) = delete;
    MIMEList& operator=(const MIMEList&) = delete;

private:
    CFMutableArrayRef mArray;
    std::vector<CFStringRef> mStrings;
};

TEST_F(FileTypes, TheTypeOfAFileIsAskedBySizeAndValue)
{
    mScript.mReportedSize = 4;
    mScript.mFileType = 0x57415645;
    unsigned int fileType = 7;
    EXPECT_TRUE(GetFileTypeIDFromFile(kFile, &fileType));
    EXPECT_EQ(fileType, 0x57415645U);
    EXPECT_EQ(mScript.mFile, kFile);
    EXPECT_EQ(mScript.mCalls,
              (std::vector<Call>{{"info", 0x66666D74, 0, 0, 0}, {"get", 0x66666D74, 0, 0, 4}}));
}

TEST_F(FileTypes, AFailingQuestionLeavesTheTypeAsItWas)
{
    unsigned int fileType = 7;
    mScript.mFileType = 9;
    mScript.mSizeStatus = -50;
    EXPECT_FALSE(GetFileTypeIDFromFile(kFile, &fileType));
    EXPECT_EQ(mScript.mCalls.size(), 1U);
    EXPECT_EQ(fileType, 7U);

    mScript.mSizeStatus = noErr;
    mScript.mValueStatus = 0x7074793F;
    EXPECT_FALSE(GetFileTypeIDFromFile(kFile, &fileType));
    EXPECT_EQ(fileType, 7U);
}

TEST_F(FileTypes, ATypeThatDoesNotFitIsAFailure)
{
    unsigned int fileType = 7;
    mScript.mReportedSize = 5;
    EXPECT_FALSE(GetFileTypeIDFromFile(kFile, &fileType));
    EXPECT_EQ(mScript.mCalls.size(), 1U);
    EXPECT_EQ(fileType, 7U);
}

TEST_F(FileTypes, NowhereToPutTheTypeIsAFailureWithoutAQuestion)
{
    EXPECT_FALSE(GetFileTypeIDFromFile(kFile, nullptr));
    EXPECT_TRUE(mScript.mCalls.empty());
}

TEST_F(FileTypes, TheLastMIMETypeIsTaken)
{
    const MIMEList list({"audio/first", "audio/l\xC3\xA4st"});
    mScript.mReportedSize = 8;
    EXPECT_EQ(GetMIMEType(0x6D346166), "audio/l\xC3\xA4st");
    EXPECT_EQ(mScript.mCalls, (std::vector<Call>{{"size", 0x666D696D, 0, 0, 0},
                                                 {"value", 0x666D696D, 0x6D346166, 4, 8}}));

    // The platform was handed an empty array, which its own took the place of.
    ASSERT_EQ(mScript.mMadeArrays.size(), 1U);
    EXPECT_EQ(mScript.mArrayOnEntry, mScript.mMadeArrays[0]);
    EXPECT_EQ(CFArrayGetCount(mScript.mMadeArrays[0]), 0);
    EXPECT_EQ(CFGetRetainCount(mScript.mMadeArrays[0]), 1);
    CFRelease(mScript.mMadeArrays[0]);
}

TEST_F(FileTypes, ATypeWithoutMIMETypesHasAnEmptyText)
{
    const MIMEList list({});
    EXPECT_EQ(GetMIMEType(0x63616666), "");
    CFRelease(mScript.mMadeArrays.at(0));
}

TEST_F(FileTypes, AnEmptyLastMIMETypeCountsToo)
{
    const MIMEList list({"audio/first", ""});
    EXPECT_EQ(GetMIMEType(0x63616666), "");
    CFRelease(mScript.mMadeArrays.at(0));
}

TEST_F(FileTypes, NoListAtAllIsAnEmptyTextToo)
{
    EXPECT_EQ(GetMIMEType(0x63616666), "");
    CFRelease(mScript.mMadeArrays.at(0));
}

TEST_F(FileTypes, AFailingMIMEQuestionLeavesNothingBehind)
{
    // The leak checker looks for the array.
    mScript.mSizeStatus = -50;
    EXPECT_EQ(GetMIMEType(0x63616666), "");
    EXPECT_EQ(mScript.mCalls.size(), 1U);
    mScript.mSizeStatus = noErr;
    mScript.mReportedSize = 9;
    EXPECT_EQ(GetMIMEType(0x63616666), "");
    EXPECT_EQ(mScript.mCalls.size(), 2U);
    mScript.mReportedSize = 8;
    mScript.mValueStatus = -50;
    EXPECT_EQ(GetMIMEType(0x63616666), "");
    EXPECT_EQ(mScript.mCalls.size(), 4U);
    EXPECT_EQ(mScript.mMadeArrays.size(), 3U);
    mScript.mMadeArrays.clear();
}

TEST(XMPTypes, GoWithTheFileTypesThatHaveOne)
{
    EXPECT_EQ(GetXMPType(0x41494643), 0x41494646U);
    EXPECT_EQ(GetXMPType(0x41494646), 0x41494646U);
    EXPECT_EQ(GetXMPType(0x4D504731), 0x4D504547U);
    EXPECT_EQ(GetXMPType(0x4D504732), 0x4D503220U);
    EXPECT_EQ(GetXMPType(0x4D504733), 0x4D503320U);
    EXPECT_EQ(GetXMPType(0x57415645), 0x57415620U);
    EXPECT_EQ(GetXMPType(0x6D346166), 0x4D503420U);
    EXPECT_EQ(GetXMPType(0x6D703466), 0x4D503420U);
}

TEST(XMPTypes, AreFourBlanksForAllOthers)
{
    for (const UInt32 fileType : {0x63616666U, 0U, 0x57415620U, 0xFFFFFFFFU})
        EXPECT_EQ(GetXMPType(fileType), 0x20202020U) << fileType;
}

}  // namespace
