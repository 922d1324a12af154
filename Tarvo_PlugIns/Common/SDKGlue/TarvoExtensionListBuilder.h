// TarvoExtensionListBuilder: makes a list of extensions for the host.
#ifndef TARVO_PLUGINS_COMMON_SDKGLUE_TARVOEXTENSIONLISTBUILDER_H
#define TARVO_PLUGINS_COMMON_SDKGLUE_TARVOEXTENSIONLISTBUILDER_H

#include "TarvoSDK/TarvoExtensionList.h"

namespace tarvo
{

/// Owns the head and the nodes. The texts stay the caller's and have to outlive the list.
class TarvoExtensionListBuilder
{
public:
    TarvoExtensionListBuilder();
    ~TarvoExtensionListBuilder();
    // The nodes point at the head, so it stays where it is.
    TarvoExtensionListBuilder(const TarvoExtensionListBuilder&) = delete;
    TarvoExtensionListBuilder& operator=(const TarvoExtensionListBuilder&) = delete;

    /// Adds a node behind the last one. inText is not copied.
    void Append(const char* inText);

    /// Never null, also without nodes. Valid as long as the builder.
    TarvoExtensionList* List() { return &mList; }

private:
    TarvoExtensionList mList;
};

}  // namespace tarvo

#endif
