#include "DialogArchiveFile.h"

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace
{

std::string sPath;  // empty: bundles have no resource

}  // namespace

// In front of the platform's. The bundle is only ever handed to the function below.
CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef)
{
    static int sBundle = 0;
    return reinterpret_cast<CFBundleRef>(&sBundle);
}

CFURLRef CFBundleCopyResourceURL(CFBundleRef, CFStringRef, CFStringRef, CFStringRef)
{
    if (sPath.empty())
        return nullptr;
    return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                   reinterpret_cast<const UInt8*>(sPath.data()),
                                                   static_cast<CFIndex>(sPath.size()), false);
}

namespace testing_support
{

std::string FormText()
{
    std::ifstream file(FORM_OPTIONS, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), {});
}

DialogArchiveFile::DialogArchiveFile(const std::string& inText)
{
    mPath = testing::TempDir() + "dialog-XXXXXX";
    const int descriptor = mkstemp(mPath.data());
    EXPECT_GE(descriptor, 0);
    EXPECT_EQ(write(descriptor, inText.data(), inText.size()), static_cast<ssize_t>(inText.size()));
    close(descriptor);
    sPath = mPath;
}

DialogArchiveFile::~DialogArchiveFile()
{
    std::remove(mPath.c_str());
    sPath.clear();
}

}  // namespace testing_support
