// Brands: which member of the MPEG-4 file family a file says it is.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_BRANDS_H
#define AUDIOTOOLBOX_FILE_MPEG4_BRANDS_H

#include <AudioToolbox/AudioFile.h>

#include <span>

namespace audiotoolbox
{

/// inFtypBody  the body of a file's first box: major brand, version, compatible brands; may be cut
/// The major brand decides; a general one (isom, mp42, ...) leaves it to the compatible brands.
/// mp4f for everything else, an empty body too.
AudioFileTypeID MPEG4TypeOfBrands(std::span<const UInt8> inFtypBody);

}  // namespace audiotoolbox

#endif
