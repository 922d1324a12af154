// FourCharText: four-character codes inside texts for the user.
#ifndef APPLEAUDIOTOOLBOX_UTILITY_FOURCHARTEXT_H
#define APPLEAUDIOTOOLBOX_UTILITY_FOURCHARTEXT_H

#include "kelpcore/Strings.h"

#include <cstdint>

namespace appleaudiotoolbox
{

/// The four bytes of a code, most significant first, cut at the first zero byte: 0x666D743F is
/// "fmt?", 5 is empty.
UTF16String FourCharText(std::uint32_t inCode);

}  // namespace appleaudiotoolbox

#endif
