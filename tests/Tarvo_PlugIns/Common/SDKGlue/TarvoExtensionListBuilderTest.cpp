// The list as a host sees it: bare pointers, none of our types.
#include "Tarvo_PlugIns/Common/SDKGlue/TarvoExtensionListBuilder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace
{

using Address = std::uintptr_t;

Address WordAt(Address inAddress, int inIndex)
{
    Address word = 0;
    std::memcpy(&word, reinterpret_cast<const char*>(inAddress) + 8 * inIndex, 8);
    return word;
}

std::vector<std::string> Walk(Address inHead, int inLinkWord)
{
    std::vector<std::string> texts;
    for (Address node = WordAt(inHead, inLinkWord); node != inHead; node = WordAt(node, inLinkWord))
        texts.emplace_back(reinterpret_cast<const char*>(WordAt(node, 2)));
    return texts;
}

TEST(ExtensionListBuilder, AnEmptyHeadPointsAtItselfTwice)
{
    tarvo::TarvoExtensionListBuilder builder;
    const auto head = reinterpret_cast<Address>(builder.List());
    EXPECT_EQ(WordAt(head, 0), head);
    EXPECT_EQ(WordAt(head, 1), head);
}

TEST(ExtensionListBuilder, OneNodeIsFirstAndLast)
{
    const char text[] = "wav";
    tarvo::TarvoExtensionListBuilder builder;
    builder.Append(text);
    const auto head = reinterpret_cast<Address>(builder.List());
    const Address node = WordAt(head, 0);
    EXPECT_EQ(WordAt(head, 1), node);
    EXPECT_EQ(WordAt(node, 0), head);
    EXPECT_EQ(WordAt(node, 1), head);
    EXPECT_EQ(WordAt(node, 2), reinterpret_cast<Address>(text)) << "texts are not copied";
}

TEST(ExtensionListBuilder, NodesStandInTheOrderOfAppendingInBothDirections)
{
    tarvo::TarvoExtensionListBuilder builder;
    for (const char* text : {"aif", "wav", "sdir"})
        builder.Append(text);
    const auto head = reinterpret_cast<Address>(builder.List());
    EXPECT_EQ(Walk(head, 0), (std::vector<std::string>{"aif", "wav", "sdir"}));
    EXPECT_EQ(Walk(head, 1), (std::vector<std::string>{"sdir", "wav", "aif"}));
}

}  // namespace
