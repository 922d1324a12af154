// CFBase: counting references, for objects of any type.
#include "CFObject.h"

// Counts change in objects that are constant to everybody else.
static cf::Object* ObjectOf(CFTypeRef inObject)
{
    return static_cast<cf::Object*>(const_cast<void*>(inObject));
}

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object)
{
    ObjectOf(object)->Retain();
    return object;
}

void CFRelease(CFTypeRef object)
{
    ObjectOf(object)->Release();
}

CFIndex CFGetRetainCount(CFTypeRef object)
{
    return ObjectOf(object)->Count();
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return ObjectOf(object)->Type();
}
