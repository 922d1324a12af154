// CFData: a block of bytes.
#include "CFObject.h"

#include <vector>

struct __CFData : cf::Object
{
    __CFData(const UInt8* inBytes, CFIndex inLength)
        : Object(cf::kDataType), mBytes(inBytes, inBytes + inLength)
    {
    }

    const std::vector<UInt8> mBytes;
};

CFTypeID CFDataGetTypeID(void)
{
    return cf::kDataType;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length)
{
    if (length < 0 || (!bytes && length > 0))
        return nullptr;
    return cf::Create<__CFData>(bytes, length);
}

CFIndex CFDataGetLength(CFDataRef data)
{
    return static_cast<CFIndex>(data->mBytes.size());
}

const UInt8* CFDataGetBytePtr(CFDataRef data)
{
    return data->mBytes.data();
}
