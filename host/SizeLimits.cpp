#include "host/SizeLimits.h"

#include <limits>

namespace host
{

namespace
{

constexpr std::int64_t kLargest32BitSize = 0xFFFFFFFF;

// Types whose headers have sizes of 32 bits.
struct LimitedType
{
    std::uint32_t mType;
    std::uint32_t mLargeType;
};

constexpr LimitedType kLimitedTypes[] = {
    {0x41494643, 0x63616666},  // AIFC, caff
    {0x41494646, 0x63616666},  // AIFF, caff
    {0x4E655854, 0x63616666},  // NeXT, caff
    {0x57415645, 0x52463634},  // WAVE, RF64
};

const LimitedType* FindLimit(std::uint32_t inFileType)
{
    for (const LimitedType& limited : kLimitedTypes)
        if (limited.mType == inFileType)
            return &limited;
    return nullptr;
}

}  // namespace

std::int64_t SizeLimit(std::uint32_t inFileType)
{
    return FindLimit(inFileType) ? kLargest32BitSize : std::numeric_limits<std::int64_t>::max();
}

std::uint32_t TypeForLargeFiles(std::uint32_t inFileType)
{
    const LimitedType* limited = FindLimit(inFileType);
    return limited ? limited->mLargeType : 0;
}

}  // namespace host
