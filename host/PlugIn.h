// PlugIn: the loaded bundle and its one entry function.
#ifndef HOST_PLUGIN_H
#define HOST_PLUGIN_H

#include <cstdint>
#include <string>

namespace host
{

class PlugIn
{
public:
    using Entry = std::int32_t (*)(int inSelector, void* inHandle, void* inHostObject);

    /// Loads the plug-in of a bundle folder; an empty path means the one that lies beside tarvo.
    /// Throws Failure (kExitFailed). It stays loaded to the end of the process.
    explicit PlugIn(const std::string& inBundlePath);

    /// A plug-in that is there already.
    explicit PlugIn(Entry inEntry) : mEntry(inEntry) {}

    /// The exported entry. The host object is only used during the call.
    std::int32_t Call(int inSelector, void* inHandle, void* inHostObject) const
    {
        return mEntry(inSelector, inHandle, inHostObject);
    }

    /// The bundle's folder; empty without one.
    const std::string& Bundle() const { return mBundle; }

private:
    std::string mBundle;
    Entry mEntry;
};

}  // namespace host

#endif
