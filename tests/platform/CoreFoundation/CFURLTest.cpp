// URLs of files.
#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace
{

CFURLRef NewURL(const std::string& inPath)
{
    return CFURLCreateFromFileSystemRepresentation(nullptr,
                                                   reinterpret_cast<const UInt8*>(inPath.data()),
                                                   static_cast<CFIndex>(inPath.size()), false);
}

// "null" without a URL.
std::string ThereAndBack(const std::string& inPath)
{
    const CFURLRef url = NewURL(inPath);
    if (!url)
        return "null";
    UInt8 path[4096];
    const bool fits = CFURLGetFileSystemRepresentation(url, true, path, sizeof path);
    CFRelease(url);
    return fits ? reinterpret_cast<const char*>(path) : "too long";
}

}  // namespace

TEST(CFURL, AnAbsolutePathComesBackByteForByte)
{
    for (const char* path : {"/", "/a", "/with blanks/ and ends ", "/50%25/%", "/\xC3\xA9.wav",
                             "/not\xFFutf8", "//double//slashes/", "/a/../b/./c", "/#?;:&"})
        EXPECT_EQ(ThereAndBack(path), path);
}

TEST(CFURL, ARelativePathCountsFromTheWorkingFolderOfItsMaking)
{
    const std::filesystem::path before = std::filesystem::current_path();
    const CFURLRef url = NewURL("music/a.wav");
    std::filesystem::current_path("/");
    const std::string atRoot = ThereAndBack("a.wav");
    std::filesystem::current_path(before);

    UInt8 path[4096];
    ASSERT_TRUE(CFURLGetFileSystemRepresentation(url, true, path, sizeof path));
    CFRelease(url);
    EXPECT_EQ(reinterpret_cast<const char*>(path), before.string() + "/music/a.wav");
    EXPECT_EQ(atRoot, "/a.wav");
}

TEST(CFURL, NoPathGivesNull)
{
    EXPECT_EQ(ThereAndBack(""), "null");
    EXPECT_EQ(ThereAndBack(std::string("/a\0b", 4)), "null");
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, nullptr, 1, false), nullptr);
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>("/a"),
                                                      -1, false),
              nullptr);
}

TEST(CFURL, OnlyTheGivenLengthOfThePathCounts)
{
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>("/abc"), 2, false);
    UInt8 path[3] = {};
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, true, path, sizeof path));
    EXPECT_STREQ(reinterpret_cast<const char*>(path), "/a");
    CFRelease(url);
}

TEST(CFURL, ABufferNeedsRoomForTheTerminator)
{
    const CFURLRef url = NewURL("/abc");
    UInt8 path[5] = {'z', 0};
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, path, 4));
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, path, 0));
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, path, -1));
    EXPECT_EQ(path[0], 'z');
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, true, path, 5));
    EXPECT_STREQ(reinterpret_cast<const char*>(path), "/abc");
    CFRelease(url);
}
