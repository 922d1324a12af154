// TarvoGetExportSettingsInfoInterface: what stored settings come to, selector 14.
#ifndef TARVOSDK_TARVOGETEXPORTSETTINGSINFOINTERFACE_H
#define TARVOSDK_TARVOGETEXPORTSETTINGSINFOINTERFACE_H

#include "TarvoSDK/TarvoSDKTypes.h"

class TarvoErrorInterface;
class TarvoFormatInterface;

/// The host object of selector 14.
class TarvoGetExportSettingsInfoInterface
{
protected:
    virtual ~TarvoGetExportSettingsInfoInterface() = default;

public:
    /// Where failure text of this call goes; may be null.
    virtual TarvoErrorInterface* GetErrorInterface() const = 0;
    /// The audio that the host means to save.
    virtual TarvoFormatInterface* GetFormatInterface() const = 0;
    /// What to do with settings that cannot encode this audio: 0 nothing, 1 fit them, 2 go back
    /// to the stored ones. The same at every call.
    virtual std::int32_t GetRepairMode() const = 0;
    /// Expected size of the file in bits.
    virtual void SetEstimatedBits(std::int64_t inBits) = 0;
    virtual void Reserved5() {}
    /// Told true before anything else.
    virtual void SetHasSettings(bool inHasSettings) = 0;
    virtual void Reserved7() {}
    virtual void SetLossy(bool inLossy) = 0;
    virtual void Reserved9() {}
    /// The text that the host shows for the settings; never empty.
    virtual void SetFormatDescription(const uint16* inText) = 0;
};

#endif
