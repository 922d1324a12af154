// Counting references, arrays and data.
#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace
{

CFStringRef NewString(const char* inText)
{
    return CFStringCreateWithCString(kCFAllocatorDefault, inText, kCFStringEncodingUTF8);
}

// Counts what an array does with its elements.
int sRetained = 0;
int sReleased = 0;

const void* CountRetain(CFAllocatorRef, const void* inValue)
{
    ++sRetained;
    return inValue;
}

void CountRelease(CFAllocatorRef, const void*)
{
    ++sReleased;
}

}  // namespace

TEST(CFReferences, ANewObjectHasACountOfOne)
{
    const CFStringRef string = NewString("a");
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST(CFReferences, TheCountIsExact)
{
    const CFStringRef string = NewString("a");
    EXPECT_EQ(CFRetain(string), string);
    CFRetain(string);
    EXPECT_EQ(CFGetRetainCount(string), 3);
    CFRelease(string);
    EXPECT_EQ(CFGetRetainCount(string), 2);
    CFRelease(string);
    CFRelease(string);
}

TEST(CFReferences, TheCountIsExactWhenThreadsShareTheObject)
{
    const CFStringRef string = NewString("shared");
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [string]
            {
            for (int round = 0; round < 10000; ++round)
                CFRetain(string);
            for (int round = 0; round < 9999; ++round)
                CFRelease(string);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(CFGetRetainCount(string), 5);
    for (int reference = 0; reference < 5; ++reference)
        CFRelease(string);
}

TEST(CFReferences, EveryTypeHasItsOwnNumber)
{
    const CFStringRef string = NewString("a");
    const CFArrayRef array = CFArrayCreateMutable(nullptr, 0, nullptr);
    const UInt8 byte = 1;
    const CFDataRef data = CFDataCreate(nullptr, &byte, 1);
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>("/a"), 2, false);
    EXPECT_EQ(CFGetTypeID(string), CFStringGetTypeID());
    EXPECT_EQ(CFGetTypeID(array), CFArrayGetTypeID());
    EXPECT_EQ(CFGetTypeID(data), CFDataGetTypeID());
    EXPECT_EQ(CFGetTypeID(url), CFURLGetTypeID());
    EXPECT_NE(CFStringGetTypeID(), CFArrayGetTypeID());
    EXPECT_NE(CFDataGetTypeID(), CFURLGetTypeID());
    EXPECT_NE(CFStringGetTypeID(), CFDataGetTypeID());
    EXPECT_NE(CFBundleGetTypeID(), CFURLGetTypeID());
    for (const CFTypeRef object : std::vector<CFTypeRef>{string, array, data, url})
        CFRelease(object);
}

TEST(CFArray, AnEmptyArrayHasNoElements)
{
    const CFMutableArrayRef array = CFArrayCreateMutable(nullptr, 5, nullptr);
    EXPECT_EQ(CFArrayGetCount(array), 0);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, -1), nullptr);
    CFRelease(array);
}

TEST(CFArray, WithTypeCallBacksItOwnsItsElements)
{
    const CFMutableArrayRef array = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    const CFStringRef string = NewString("wav");
    CFArrayAppendValue(array, string);
    EXPECT_EQ(CFGetRetainCount(string), 2);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), string);
    EXPECT_EQ(CFGetRetainCount(string), 2);
    CFRelease(array);
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST(CFArray, WithNullCallBacksItNeitherRetainsNorReleases)
{
    const CFMutableArrayRef array = CFArrayCreateMutable(nullptr, 0, nullptr);
    const CFStringRef string = NewString("wav");
    CFArrayAppendValue(array, string);
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(array);
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}

TEST(CFArray, HoldsNullElementsInTheirPlaces)
{
    for (const CFArrayCallBacks* callBacks :
         {static_cast<const CFArrayCallBacks*>(nullptr), &kCFTypeArrayCallBacks})
    {
        const CFMutableArrayRef array = CFArrayCreateMutable(nullptr, 0, callBacks);
        const CFStringRef string = NewString("wav");
        CFArrayAppendValue(array, nullptr);
        CFArrayAppendValue(array, string);
        EXPECT_EQ(CFArrayGetCount(array), 2);
        EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), nullptr);
        EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), string);
        EXPECT_EQ(CFArrayGetValueAtIndex(array, 2), nullptr);
        CFRelease(array);
        CFRelease(string);
    }
}

TEST(CFArray, CallsTheCallBacksOnceForEachElement)
{
    sRetained = sReleased = 0;
    const CFArrayCallBacks callBacks = {0, &CountRetain, &CountRelease, nullptr, nullptr};
    const CFMutableArrayRef array = CFArrayCreateMutable(nullptr, 0, &callBacks);
    CFArrayAppendValue(array, "a");
    CFArrayAppendValue(array, "b");
    EXPECT_EQ(sRetained, 2);
    EXPECT_EQ(sReleased, 0);
    CFRelease(array);
    EXPECT_EQ(sRetained, 2);
    EXPECT_EQ(sReleased, 2);
}

TEST(CFData, KeepsACopyOfItsBytes)
{
    UInt8 bytes[] = {1, 0, 255};
    const CFDataRef data = CFDataCreate(nullptr, bytes, 3);
    bytes[0] = 9;
    ASSERT_EQ(CFDataGetLength(data), 3);
    EXPECT_EQ(CFDataGetBytePtr(data)[0], 1);
    EXPECT_EQ(CFDataGetBytePtr(data)[1], 0);
    EXPECT_EQ(CFDataGetBytePtr(data)[2], 255);
    CFRelease(data);
}

TEST(CFData, MayBeEmpty)
{
    const CFDataRef data = CFDataCreate(nullptr, nullptr, 0);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(CFDataGetLength(data), 0);
    CFRelease(data);
}

TEST(CFData, RefusesImpossibleArguments)
{
    const UInt8 byte = 1;
    EXPECT_EQ(CFDataCreate(nullptr, &byte, -1), nullptr);
    EXPECT_EQ(CFDataCreate(nullptr, nullptr, 1), nullptr);
}
