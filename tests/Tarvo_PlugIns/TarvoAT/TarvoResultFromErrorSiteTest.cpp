#include "Tarvo_PlugIns/TarvoAT/private/TarvoResultFromErrorSite.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

TEST(ResultFromErrorSite, EverySiteWithAResultOfItsOwn)
{
    const std::int32_t results[] = {0, -1, -8, -1, -4, -4, -4, -4, -4, -4, -9, -10};
    for (int site = 0; site < 12; ++site)
        EXPECT_EQ(tarvo::TarvoResultFromErrorSite(site), results[site]) << "site " << site;
}

TEST(ResultFromErrorSite, AnyOtherNumberIsAGeneralFailure)
{
    for (const std::int64_t site :
         {std::int64_t{-1}, std::int64_t{12}, std::int64_t{13}, std::int64_t{24},
          std::int64_t{0x80000000}, std::int64_t{0x100000000},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()})
        EXPECT_EQ(tarvo::TarvoResultFromErrorSite(site), -1) << "site " << site;
}

}  // namespace
