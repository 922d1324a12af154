#include "Tarvo_PlugIns/Common/Module/private/Module.h"

#include <CoreFoundation/CoreFoundation.h>
#include <kelpcore/utility/AutoCFRef.h>
#include <kelpui/inkwright/Supplier.h>
#include <kelpui/utility/OS_ResourceManager.h>

#include <memory>

namespace tarvo::module
{
namespace
{

constexpr char kBundleIdentifier[] = "com.verlo.TarvoAT.bundle";

// At process exit the resource manager goes first, being the later one.
std::unique_ptr<const kelpui::inkwright::SupplierInterface> sDrawSupplier;
std::unique_ptr<kelpui::utility::ResourceManager> sResourceManager;

}  // namespace

void Initialize()
{
    const kelpcore::utility::AutoCFRef<CFStringRef> identifier(
        CFStringCreateWithCString(nullptr, kBundleIdentifier, kCFStringEncodingUTF8));
    sResourceManager = std::make_unique<kelpui::utility::OS_ResourceManager>(
        CFBundleGetBundleWithIdentifier(identifier.Get()));
}

void Terminate()
{
    sDrawSupplier.reset();
    sResourceManager.reset();
}

kelpui::utility::ResourceManager* GetResourceManager()
{
    return sResourceManager.get();
}

const kelpui::inkwright::SupplierInterface* GetDrawSupplier()
{
    if (!sDrawSupplier)
        sDrawSupplier.reset(kelpui::inkwright::NewOSSupplier());
    return sDrawSupplier.get();
}

}  // namespace tarvo::module
