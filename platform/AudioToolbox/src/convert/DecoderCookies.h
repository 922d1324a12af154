// DecoderCookies: from the cookie that a file holds to the one that the decoder wants.
#ifndef AUDIOTOOLBOX_CONVERT_DECODERCOOKIES_H
#define AUDIOTOOLBOX_CONVERT_DECODERCOOKIES_H

#include "tables/DataFormats.h"

#include <vector>

namespace audiotoolbox
{

/// noErr, or '!siz' for a size that no cookie of the format has, or 'bada' for content that is
/// none; outCookie is then empty.
OSStatus MakeDecoderCookie(const DataFormat& inFormat, std::span<const UInt8> inCookie,
                           std::vector<UInt8>& outCookie);

}  // namespace audiotoolbox

#endif
