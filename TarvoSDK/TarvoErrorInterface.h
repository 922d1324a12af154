// TarvoErrorInterface: where the text of a failure goes.
#ifndef TARVOSDK_TARVOERRORINTERFACE_H
#define TARVOSDK_TARVOERRORINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

/// Reached through GetErrorInterface of the other host objects.
class TarvoErrorInterface
{
protected:
    virtual ~TarvoErrorInterface() = default;

public:
    /// The text of the current failure, to be shown to the user.
    virtual void SetErrorText(const uint16* inText) = 0;
};

#endif
