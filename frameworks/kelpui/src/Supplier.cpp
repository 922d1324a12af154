#include "kelpui/inkwright/Supplier.h"

#include "DesktopFont.h"

namespace kelpui::inkwright
{
namespace
{

class DesktopSupplier : public SupplierInterface
{
public:
    DesktopSupplier() : mBaseFont(FindDesktopFont(ConfigFolder())) {}

    BaseFont GetBaseFont() const override { return mBaseFont; }

private:
    const BaseFont mBaseFont;
};

}  // namespace

SupplierInterface::~SupplierInterface() = default;

SupplierInterface* NewOSSupplier()
{
    return new DesktopSupplier;
}

}  // namespace kelpui::inkwright
