#include "file/write/mpeg4/BoxBuilder.h"

namespace audiotoolbox::mpeg4writer
{

void BoxBuilder::Begin(UInt32 inType)
{
    mOpen.push_back(mBytes.size());
    PutU32(0);  // the size, once it is known
    PutU32(inType);
}

void BoxBuilder::BeginFull(UInt32 inType, UInt8 inVersion, UInt32 inFlags)
{
    Begin(inType);
    PutU32(UInt32{inVersion} << 24 | inFlags);
}

void BoxBuilder::End(std::size_t inBytesBehind)
{
    const std::size_t start = mOpen.back();
    mOpen.pop_back();
    const std::size_t size = mBytes.size() - start + inBytesBehind;
    for (std::size_t i = 0; i < 4; ++i)
        mBytes[start + i] = static_cast<UInt8>(size >> (8 * (3 - i)));
}

void BoxBuilder::PutBytes(std::span<const UInt8> inBytes)
{
    mBytes.insert(mBytes.end(), inBytes.begin(), inBytes.end());
}

void BoxBuilder::PutBig(UInt64 inValue, std::size_t inBytes)
{
    for (std::size_t i = inBytes; i > 0; --i)
        mBytes.push_back(static_cast<UInt8>(inValue >> (8 * (i - 1))));
}

}  // namespace audiotoolbox::mpeg4writer
