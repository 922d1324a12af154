// CoreFoundation: the few objects that cross the platform's C interface.
//
// Every object is made with a retain count of 1 and belongs to whoever made it ("Create" and "Copy"
// hand over a reference, "Get" does not). Counts are atomic; objects never change after they are
// made, apart from mutable arrays, which belong to one thread at a time.
// Names, values and meanings follow the platform's public documentation.
#ifndef COREFOUNDATION_COREFOUNDATION_H
#define COREFOUNDATION_COREFOUNDATION_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define CF_EXPORT extern __attribute__((visibility("default")))
#else
#define CF_EXPORT extern
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int8_t SInt8;
typedef uint16_t UInt16;
typedef int16_t SInt16;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef uint64_t UInt64;
typedef int64_t SInt64;
typedef float Float32;
typedef double Float64;
typedef SInt32 OSStatus;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef uint16_t UniChar;

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef UInt32 CFStringEncoding;

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;
typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;
typedef const struct __CFData* CFDataRef;
typedef struct __CFBundle* CFBundleRef;

typedef struct CFRange
{
    CFIndex location;
    CFIndex length;
} CFRange;

enum
{
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100
};
#define kCFStringEncodingInvalidId (0xffffffffU)

/// The only allocator; a null CFAllocatorRef means the same.
CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;

// Objects of any type
// -----------------------------------------------------------------------------

/// Adds a reference and returns its argument. The argument must not be null.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
/// Takes a reference away; the last one destroys the object. The argument must not be null.
CF_EXPORT void CFRelease(CFTypeRef object);
/// The exact number of references.
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

// Strings
// -----------------------------------------------------------------------------------------

CF_EXPORT CFTypeID CFStringGetTypeID(void);
/// text is NUL-terminated; null when it is not valid in the encoding or the encoding is
/// unknown.
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                CFStringEncoding encoding);
/// byteCount bytes in the encoding, no terminator; null as above.
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                              CFIndex byteCount, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);
CF_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator,
                                                   const UniChar* characters, CFIndex count);
/// UTF-16 code units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
/// Copies code units; the range must lie within the string.
CF_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* outCharacters);
/// NUL-terminated text into a buffer of bufferSize bytes; false when it does not fit or cannot
/// be expressed in the encoding.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* outBuffer, CFIndex bufferSize,
                                     CFStringEncoding encoding);
/// Bytes that length code units need at most in the encoding, without a terminator.
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/// Translates the other numbering of text encodings (4 is UTF-8, 1 ASCII, 5 Latin-1, 10 UTF-16,
/// 30 Mac Roman) into this one; kCFStringEncodingInvalidId for an unknown number.
CF_EXPORT CFStringEncoding CFStringConvertNSStringEncodingToEncoding(unsigned long encoding);

// Arrays
// ------------------------------------------------------------------------------------------

typedef const void* (*CFArrayRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFArrayReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFArrayCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFArrayEqualCallBack)(const void* value1, const void* value2);
typedef struct CFArrayCallBacks
{
    CFIndex version;
    CFArrayRetainCallBack retain;
    CFArrayReleaseCallBack release;
    CFArrayCopyDescriptionCallBack copyDescription;
    CFArrayEqualCallBack equal;
} CFArrayCallBacks;
/// Callbacks that retain and release the elements as objects.
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

CF_EXPORT CFTypeID CFArrayGetTypeID(void);
/// An empty array. capacity is a hint. Null callbacks: elements are neither retained nor
/// released, and may be null.
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFArrayCallBacks* callbacks);
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
/// index lies from 0 to the count less 1. The array keeps what it owns.
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

// Data
// --------------------------------------------------------------------------------------------

CF_EXPORT CFTypeID CFDataGetTypeID(void);
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);
/// Valid as long as the object.
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);

// URLs of files
// -----------------------------------------------------------------------------------

CF_EXPORT CFTypeID CFURLGetTypeID(void);
/// A file URL of a path; the file need not exist. A relative path counts from the working
/// folder at the time of this call. Null for an empty path.
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                           const UInt8* path, CFIndex length,
                                                           Boolean isDirectory);
/// The path, NUL-terminated, byte for byte as it was given when absolute. False when the buffer
/// is too small.
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                   UInt8* outBuffer, CFIndex bufferSize);

// Bundles
// -----------------------------------------------------------------------------------------

CF_EXPORT CFTypeID CFBundleGetTypeID(void);
/// The bundle of a loaded library whose Info.plist has this identifier; null when there is
/// none. Not owned by the caller; lives to the end of the process.
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);
CF_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
/// The bundle's folder; the caller releases it.
CF_EXPORT CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
/// The folder Contents/Resources; the caller releases it.
CF_EXPORT CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);
/// A file of the resources folder, tried in the folder of each preferred language first
/// (LANGUAGE.lproj), then in the folder itself; null when there is no such file. The caller
/// releases it. type may be null (no extension), subfolder may be null.
CF_EXPORT CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef name, CFStringRef type,
                                           CFStringRef subfolder);

#ifdef __cplusplus
}
#endif

#endif
