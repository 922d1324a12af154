#include "Tarvo_PlugIns/TarvoAT/private/HostFormatDescription.h"

#include <kelpcore/config/Localizer.h>

namespace tarvo
{
namespace
{

constexpr char kFormatATEmpty[] = "$$$/TarvoPlugIns/TarvoAT/FormatATEmpty=Apple Audio Toolbox";

}  // namespace

UTF16String GetFormatDescription(const UTF16String& inText)
{
    return inText.empty() ? kelpcore::config::Localizer::Get().Translate(kFormatATEmpty) : inText;
}

}  // namespace tarvo
