// A library as a plug-in is one: it lies in a bundle and asks for it.
#include <CoreFoundation/CoreFoundation.h>

/// Writes the path of the bundle of an identifier, empty when there is none.
extern "C" __attribute__((visibility("default"))) void FindBundle(const char* inIdentifier,
                                                                  char* outPath, long inSize)
{
    outPath[0] = '\0';
    const CFStringRef identifier =
        CFStringCreateWithCString(kCFAllocatorDefault, inIdentifier, kCFStringEncodingUTF8);
    if (const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(identifier))
    {
        const CFURLRef url = CFBundleCopyBundleURL(bundle);
        CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(outPath), inSize);
        CFRelease(url);
    }
    CFRelease(identifier);
}
