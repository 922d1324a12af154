// Registration: what the plug-in says of itself at its start.
#ifndef HOST_REGISTRATION_H
#define HOST_REGISTRATION_H

#include "host/PlugIn.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host
{

/// One entry of the host's list of file kinds. Texts are UTF-8.
struct Filter
{
    std::string mName;
    std::string mId;  // empty: a general filter
    std::vector<std::string> mExtensions;
};

struct Registration
{
    std::string mGUID;
    std::string mName;
    std::int32_t mVersionMajor = 0;
    std::int32_t mVersionMinor = 0;
    std::vector<Filter> mImportFilters;
    std::vector<Filter> mExportFilters;
};

/// Starts the plug-in (selector 0), which builds its catalogue of formats. Throws Failure.
Registration Register(const PlugIn& inPlugIn);

}  // namespace host

#endif
