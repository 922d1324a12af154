// DictionaryInUse: a dictionary for the length of a test.
#ifndef TESTS_SUPPORT_DICTIONARYINUSE_H
#define TESTS_SUPPORT_DICTIONARYINUSE_H

#include "kelpcore/config/Localizer.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

namespace testing_support
{

/// Loads the lines as a dictionary; the English defaults hold again once the object is gone.
class DictionaryInUse
{
public:
    explicit DictionaryInUse(const std::string& inLines)
    {
        std::string path = testing::TempDir() + "dictionary-XXXXXX";
        const int descriptor = mkstemp(path.data());
        EXPECT_GE(descriptor, 0);
        EXPECT_EQ(write(descriptor, inLines.data(), inLines.size()),
                  static_cast<ssize_t>(inLines.size()));
        close(descriptor);
        EXPECT_TRUE(kelpcore::config::Localizer::Get().LoadDictionary(path.c_str()));
        std::remove(path.c_str());
    }
    ~DictionaryInUse() { kelpcore::config::Localizer::Get().Clear(); }
    DictionaryInUse(const DictionaryInUse&) = delete;
    DictionaryInUse& operator=(const DictionaryInUse&) = delete;
};

}  // namespace testing_support

#endif
