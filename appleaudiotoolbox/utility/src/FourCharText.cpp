// FourCharText: four-character codes inside texts for the user.
#include "appleaudiotoolbox/utility/FourCharText.h"

#include "kelpcore/utility/StringConversion.h"

namespace appleaudiotoolbox
{

UTF16String FourCharText(std::uint32_t inCode)
{
    const char text[] = {static_cast<char>(inCode >> 24), static_cast<char>(inCode >> 16),
                         static_cast<char>(inCode >> 8), static_cast<char>(inCode), '\0'};
    return kelpcore::utility::AsciiToUTF16(text);
}

}  // namespace appleaudiotoolbox
