// TarvoResultFromErrorSite: what the host is told for a failure of the reader or the writer.
#ifndef TARVO_PLUGINS_TARVOAT_PRIVATE_TARVORESULTFROMERRORSITE_H
#define TARVO_PLUGINS_TARVOAT_PRIVATE_TARVORESULTFROMERRORSITE_H

#include <cstdint>

namespace tarvo
{

/// A TarvoResult; kTarvoResultFailed for a number that is no site with a result of its own. Site 0,
/// nothing noted, is a success also after a failure.
std::int32_t TarvoResultFromErrorSite(std::int64_t inSite);

}  // namespace tarvo

#endif
