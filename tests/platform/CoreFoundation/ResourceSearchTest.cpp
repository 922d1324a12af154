// Which languages a resource is looked for in.
#include "platform/CoreFoundation/src/ResourceSearch.h"

#include <gtest/gtest.h>

using Names = std::vector<std::string>;

TEST(PreferredLanguages, ALocaleGivesItsRegionAndItsLanguage)
{
    EXPECT_EQ(cf::PreferredLanguages("", "de_AT.UTF-8"), (Names{"de_AT", "de-AT", "de"}));
    EXPECT_EQ(cf::PreferredLanguages("", "fr"), (Names{"fr"}));
    EXPECT_EQ(cf::PreferredLanguages("", "ca_ES@valencia"), (Names{"ca_ES", "ca-ES", "ca"}));
}

TEST(PreferredLanguages, TheListComesBeforeTheLocaleAndNoNameTwice)
{
    EXPECT_EQ(cf::PreferredLanguages("fr:de_AT::", "de_DE"),
              (Names{"fr", "de_AT", "de-AT", "de", "de_DE", "de-DE"}));
}

TEST(PreferredLanguages, ThePlainLocalesNameNone)
{
    EXPECT_EQ(cf::PreferredLanguages("C", "POSIX"), Names{});
    EXPECT_EQ(cf::PreferredLanguages("", "C.UTF-8"), Names{});
    EXPECT_EQ(cf::PreferredLanguages("", ""), Names{});
}

TEST(PreferredLanguages, TextThatCouldLeaveTheFolderIsNone)
{
    EXPECT_EQ(cf::PreferredLanguages("../../etc:..:de/AT:a b", "/"), Names{});
}
