#include "kelpui/utility/ResourceManager.h"

namespace kelpui::utility
{

ResourceManager::~ResourceManager() = default;

}  // namespace kelpui::utility
