// TarvoRunExportSettingsDialogInterface: a run of the settings dialog, selector 15.
#ifndef TARVOSDK_TARVORUNEXPORTSETTINGSDIALOGINTERFACE_H
#define TARVOSDK_TARVORUNEXPORTSETTINGSDIALOGINTERFACE_H

class TarvoErrorInterface;
class TarvoFormatInterface;

/// The host object of selector 15.
class TarvoRunExportSettingsDialogInterface
{
protected:
    virtual ~TarvoRunExportSettingsDialogInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    virtual TarvoFormatInterface* GetFormatInterface() const = 0;
    /// The window that the dialog belongs to.
    virtual void* GetParentWindow() const = 0;
    /// True if the user did not confirm. Not told after a failure.
    virtual void SetCancelled(bool inCancelled) = 0;
    virtual void Reserved5() {}
    /// Read only from hosts of a version above 1.0.
    virtual long long GetDialogOption() const = 0;
};

#endif
