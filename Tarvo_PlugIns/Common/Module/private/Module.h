// Module: the objects that live as long as the plug-in is loaded and started.
//
// Start and stop belong to the host's own start and stop: they replace the objects without a lock.
#ifndef TARVO_PLUGINS_COMMON_MODULE_PRIVATE_MODULE_H
#define TARVO_PLUGINS_COMMON_MODULE_PRIVATE_MODULE_H

namespace kelpui::inkwright
{
class SupplierInterface;
}
namespace kelpui::utility
{
class ResourceManager;
}

namespace tarvo::module
{

/// Starts the module, afresh if it runs: a new resource manager over the plug-in's own bundle takes
/// the place of an earlier one, which is deleted. Without the bundle it has no resources.
__attribute__((visibility("default"))) void Initialize();

/// Deletes the drawing supplier and the resource manager, in this order. The module may be started
/// again.
__attribute__((visibility("default"))) void Terminate();

/// Null unless the module runs. Valid until the next Initialize or Terminate.
kelpui::utility::ResourceManager* GetResourceManager();

/// Made at the first question, also before Initialize. Valid until Terminate.
const kelpui::inkwright::SupplierInterface* GetDrawSupplier();

}  // namespace tarvo::module

#endif
