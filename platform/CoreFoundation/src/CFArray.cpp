// CFArray: lists of pointers that the callbacks may own.
#include "CFObject.h"

#include <vector>

namespace
{

const void* RetainObject(CFAllocatorRef, const void* inValue)
{
    return inValue ? CFRetain(inValue) : nullptr;
}

void ReleaseObject(CFAllocatorRef, const void* inValue)
{
    if (inValue)
        CFRelease(inValue);
}

Boolean IsSameObject(const void* inFirst, const void* inSecond)
{
    return inFirst == inSecond;
}

constexpr CFArrayCallBacks kNoCallBacks = {};

}  // namespace

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, RetainObject, ReleaseObject, nullptr,
                                                IsSameObject};

struct __CFArray : cf::Object
{
    explicit __CFArray(const CFArrayCallBacks& inCallBacks)
        : Object(cf::kArrayType), mCallBacks(inCallBacks)
    {
    }

    ~__CFArray() override
    {
        if (mCallBacks.release)
            for (const void* value : mValues)
                mCallBacks.release(kCFAllocatorDefault, value);
    }

    const CFArrayCallBacks mCallBacks;
    std::vector<const void*> mValues;
};

CFTypeID CFArrayGetTypeID(void)
{
    return cf::kArrayType;
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, const CFArrayCallBacks* callbacks)
{
    return cf::Create<__CFArray>(callbacks ? *callbacks : kNoCallBacks);
}

void CFArrayAppendValue(CFMutableArrayRef array, const void* value)
{
    array->mValues.push_back(value);
    if (array->mCallBacks.retain)
        array->mValues.back() = array->mCallBacks.retain(kCFAllocatorDefault, value);
}

CFIndex CFArrayGetCount(CFArrayRef array)
{
    return static_cast<CFIndex>(array->mValues.size());
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    if (index < 0 || index >= CFArrayGetCount(array))
        return nullptr;
    return array->mValues[static_cast<std::size_t>(index)];
}
