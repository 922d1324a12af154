#include "host/SizeLimits.h"

#include <gtest/gtest.h>

namespace
{

constexpr std::uint32_t kWAVE = 0x57415645;
constexpr std::uint32_t kRF64 = 0x52463634;
constexpr std::uint32_t kAIFF = 0x41494646;
constexpr std::uint32_t kAIFC = 0x41494643;
constexpr std::uint32_t kAU = 0x4E655854;
constexpr std::uint32_t kCAF = 0x63616666;
constexpr std::uint32_t kW64 = 0x57363466;

TEST(SizeLimits, EndClassicTypesAt4GiB)
{
    for (const std::uint32_t type : {kWAVE, kAIFF, kAIFC, kAU})
    {
        EXPECT_TRUE(host::CanHold(type, 4294967295)) << type;
        EXPECT_FALSE(host::CanHold(type, 4294967296)) << type;
    }
}

TEST(SizeLimits, DoNotEndTheOthers)
{
    for (const std::uint32_t type : {kRF64, kCAF, kW64, 0u})
    {
        EXPECT_TRUE(host::CanHold(type, 1LL << 60)) << type;
        EXPECT_EQ(host::TypeForLargeFiles(type), 0u) << type;
    }
}

TEST(SizeLimits, CountSamplesOfOneSize)
{
    constexpr std::uint32_t kMuLaw = 0x756C6177;
    constexpr std::uint32_t kMicrosoftADPCM = 0x6D730002;
    constexpr std::uint32_t kGSM = 0x6D730031;
    constexpr std::uint32_t kAAC = 0x61616320;
    EXPECT_EQ(host::SizeOfSamples(kMuLaw, 1000, 6), 6000 + 256);
    EXPECT_EQ(host::SizeOfSamples(kMicrosoftADPCM, 16000, 2), 17000 + 256);
    EXPECT_EQ(host::SizeOfSamples(kGSM, 8000, 1), 1625 + 256);
    EXPECT_EQ(host::SizeOfSamples(kAAC, 8000, 1), std::nullopt);
}

TEST(SizeLimits, ProposeATypeWithoutOne)
{
    EXPECT_EQ(host::TypeForLargeFiles(kWAVE), kRF64);
    EXPECT_EQ(host::TypeForLargeFiles(kAIFF), kCAF);
    EXPECT_EQ(host::TypeForLargeFiles(kAIFC), kCAF);
    EXPECT_EQ(host::TypeForLargeFiles(kAU), kCAF);
}

}  // namespace
