#include "kelpunittesting/TestRegistry.h"

#include <algorithm>

namespace kelpunittesting
{

namespace
{

struct Entry
{
    std::string mName;
    TestRegistry::Factory mFactory;
};

using Entries = std::vector<Entry>;

// Made at the first use, since modules may register while they are loaded.
Entries& GetEntries()
{
    static Entries sEntries;
    return sEntries;
}

Entries::iterator Find(const std::string& inName)
{
    return std::find_if(GetEntries().begin(), GetEntries().end(),
                        [&](const Entry& entry) { return entry.mName == inName; });
}

}  // namespace

void TestRegistry::RegisterTest(const std::string& inName, Factory inFactory)
{
    if (const auto found = Find(inName); found != GetEntries().end())
        found->mFactory = inFactory;
    else
        GetEntries().push_back({inName, inFactory});
}

std::vector<std::string> TestRegistry::GetNames()
{
    std::vector<std::string> names;
    for (const Entry& entry : GetEntries())
        names.push_back(entry.mName);
    return names;
}

std::unique_ptr<Test> TestRegistry::CreateTest(const std::string& inName)
{
    const auto found = Find(inName);
    return std::unique_ptr<Test>(found == GetEntries().end() ? nullptr : found->mFactory());
}

}  // namespace kelpunittesting
