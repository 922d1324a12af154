#include "host/ChannelNames.h"

#include <iterator>

namespace host
{

namespace
{

constexpr std::uint32_t kFirstLabel = 100;

constexpr const char* kNames[] = {
    "L",     "R",     "C",     "LFE",                                                 // 100
    "Ls",    "Rs",    "Cs",                                                           // 104
    "Lc",    "Rc",                                                                    // 107
    "Lsd",   "Rsd",                                                                   // 109
    "Ts",                                                                             // 111
    "Vhl",   "Vhr",   "Vhc",                                                          // 112
    "Tbl",   "Tbr",   "Tbc",                                                          // 115
    "Lw",    "Rw",                                                                    // 118
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,  // 120
    "Rls",   "Rrs",                                                                   // 129
    "LFE2",                                                                           // 131
    "Lt",    "Rt",                                                                    // 132
    "W",     "X",     "Y",     "Z",                                                   // 134
};

}  // namespace

std::string ChannelName(std::uint32_t inLabel)
{
    if (inLabel == 0)
        return "-";
    const std::uint32_t index = inLabel - kFirstLabel;
    if (inLabel >= kFirstLabel && index < std::size(kNames) && kNames[index])
        return kNames[index];
    return std::to_string(inLabel);
}

std::string ChannelNames(const std::vector<std::uint32_t>& inLabels)
{
    std::string names;
    for (const std::uint32_t label : inLabels)
    {
        if (!names.empty())
            names += ' ';
        names += ChannelName(label);
    }
    return names;
}

}  // namespace host
