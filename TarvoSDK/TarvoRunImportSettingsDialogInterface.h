// TarvoRunImportSettingsDialogInterface: a run of an import dialog, selector 4.
#ifndef TARVOSDK_TARVORUNIMPORTSETTINGSDIALOGINTERFACE_H
#define TARVOSDK_TARVORUNIMPORTSETTINGSDIALOGINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

class TarvoErrorInterface;

/// The host object of selector 4.
class TarvoRunImportSettingsDialogInterface
{
protected:
    virtual ~TarvoRunImportSettingsDialogInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    virtual void Reserved2() {}
    virtual void Reserved3() {}
    virtual void Reserved4() {}
    virtual void Reserved5() {}
    /// Told 0 before the dialog would run.
    virtual void SetDialogResult(std::int32_t inResult) = 0;
};

#endif
