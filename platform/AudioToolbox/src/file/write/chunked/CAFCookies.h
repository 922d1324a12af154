// CAFCookies: cookies in the forms that Core Audio Format files keep them in.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_CAFCOOKIES_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_CAFCOOKIES_H

#include "file/write/PacketWriter.h"

namespace audiotoolbox
{

/// The body of a `kuki` chunk: of AAC an ES descriptor, of a lossless stream its bare
/// configuration. Empty for formats without one, and where inCookie is no cookie of the format.
/// inStart  tells the descriptor's rates and buffer; its cookie is not looked at
std::vector<UInt8> MakeCAFCookie(AudioFormatID inFormat, std::span<const UInt8> inCookie,
                                 const StreamStart& inStart);

/// True for formats that no decoder can do without one.
bool NeedsCAFCookie(AudioFormatID inFormat);

}  // namespace audiotoolbox

#endif
