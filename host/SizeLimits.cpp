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

constexpr std::int64_t kHeaderBytes = 256;

struct SampleCost
{
    std::uint32_t mFormat;
    double mBits;  // at the most
};

constexpr SampleCost kSampleCosts[] = {
    {0x616C6177, 8.0},    // alaw
    {0x756C6177, 8.0},    // ulaw
    {0x696D6134, 4.25},   // ima4
    {0x6D730002, 4.25},   // Microsoft ADPCM
    {0x6D730011, 4.25},   // DVI ADPCM
    {0x6D730031, 1.625},  // GSM 6.10
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

double BitsOfSample(std::uint32_t inFormat)
{
    for (const SampleCost& cost : kSampleCosts)
        if (cost.mFormat == inFormat)
            return cost.mBits;
    return 0.0;
}

std::optional<std::int64_t> SizeOfSamples(std::uint32_t inFormat, std::int64_t inFrameCount,
                                          std::size_t inChannelCount)
{
    const double bits = BitsOfSample(inFormat);
    if (bits == 0.0)
        return std::nullopt;
    return kHeaderBytes +
           static_cast<std::int64_t>(static_cast<double>(inFrameCount) *
                                     static_cast<double>(inChannelCount) * bits / 8.0);
}

}  // namespace host
