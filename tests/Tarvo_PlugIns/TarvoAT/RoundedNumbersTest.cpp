#include "Tarvo_PlugIns/TarvoAT/private/RoundedNumbers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

TEST(Truncation, CutsTowardZero)
{
    EXPECT_EQ(tarvo::TruncatedTo<std::int32_t>(44100.0), 44100);
    EXPECT_EQ(tarvo::TruncatedTo<std::int32_t>(44099.99), 44099);
    EXPECT_EQ(tarvo::TruncatedTo<std::int32_t>(-1.99), -1);
    EXPECT_EQ(tarvo::TruncatedTo<std::int64_t>(4294967296.5), 4294967296);
}

TEST(Truncation, ReachesBothEndsOfTheRange)
{
    EXPECT_EQ(tarvo::TruncatedTo<std::int32_t>(2147483647.9), 2147483647);
    EXPECT_EQ(tarvo::TruncatedTo<std::int32_t>(-2147483648.9), -2147483647 - 1);
    EXPECT_EQ(tarvo::TruncatedTo<std::int64_t>(9223372036854774784.0), 9223372036854774784);
}

TEST(Truncation, GivesTheLowestNumberForWhatDoesNotFit)
{
    const double endless = std::numeric_limits<double>::infinity();
    for (const double number : {2147483648.0, -2147483649.0, 1e300, endless, -endless,
                                std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(tarvo::TruncatedTo<std::int32_t>(number), -2147483647 - 1) << number;
    for (const double number : {9223372036854775808.0, 1e300, endless, -endless,
                                std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(tarvo::TruncatedTo<std::int64_t>(number), -9223372036854775807 - 1) << number;
}

}  // namespace
