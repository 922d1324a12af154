#include "Tarvo_PlugIns/TarvoAT/private/HostFormatDescription.h"

#include <gtest/gtest.h>

namespace
{

TEST(HostFormatDescription, IsTheTextOrTheNameForAnEmptyOne)
{
    EXPECT_EQ(tarvo::GetFormatDescription(u"WAVE\nLinear PCM"), u"WAVE\nLinear PCM");
    EXPECT_EQ(tarvo::GetFormatDescription(u" "), u" ");
    EXPECT_EQ(tarvo::GetFormatDescription(u""), u"Apple Audio Toolbox");
}

}  // namespace
