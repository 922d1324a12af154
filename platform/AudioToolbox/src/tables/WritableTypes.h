// WritableTypes: which formats, and which variants of them, each type of file is written with.
#ifndef AUDIOTOOLBOX_TABLES_WRITABLETYPES_H
#define AUDIOTOOLBOX_TABLES_WRITABLETYPES_H

#include "tables/FileTypes.h"

#include <vector>

namespace audiotoolbox
{

/// Ascending by code.
std::vector<AudioFileTypeID> WritableTypes();

bool CanWrite(AudioFileTypeID inType, AudioFormatID inFormat);

/// What a type's formats are called upon to tell: those that it is written with, and those that
/// we can only read. A format that has an encoder but no place in a file of a type that is
/// written would make believe that the two go together, so it is left out.
std::vector<AudioFormatID> FormatsOfType(const FileTypeRow& inType);

/// Linear PCM: flags, bits and 1 frame per packet. Depths come in the order 8, 16, 24, 32-bit
/// floats, 32, 64-bit floats; of two byte orders the type's own is first. Any other format has one
/// variant, of its code alone. Empty for what the type is not written with.
std::vector<AudioStreamBasicDescription> WritableVariants(AudioFileTypeID inType,
                                                          AudioFormatID inFormat);

}  // namespace audiotoolbox

#endif
