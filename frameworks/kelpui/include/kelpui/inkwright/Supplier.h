// Supplier: what drawing takes from the desktop, so that texts look as the user set them.
#ifndef KELPUI_INKWRIGHT_SUPPLIER_H
#define KELPUI_INKWRIGHT_SUPPLIER_H

#include "kelpcore/Strings.h"
#include "kelpui/Export.h"

namespace kelpui::inkwright
{

/// The font of plain texts.
struct BaseFont
{
    UTF8String mFamily;
    double mPointSize;
};

/// One moment's settings of the desktop; they do not change while the object lives.
class KELPUI_EXPORT SupplierInterface
{
public:
    SupplierInterface() = default;
    virtual ~SupplierInterface();
    SupplierInterface(const SupplierInterface&) = delete;
    SupplierInterface& operator=(const SupplierInterface&) = delete;

    virtual BaseFont GetBaseFont() const = 0;
};

/// Reads the settings of the user's desktop: the font of GTK's settings.ini, else that of KDE's
/// kdeglobals, else "Sans" at 10 points. Never null; the caller owns the object.
KELPUI_EXPORT SupplierInterface* NewOSSupplier();

}  // namespace kelpui::inkwright

#endif
