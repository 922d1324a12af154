// FileTypes: one row for each type of file, with everything that is known of it as a type.
#ifndef AUDIOTOOLBOX_TABLES_FILETYPES_H
#define AUDIOTOOLBOX_TABLES_FILETYPES_H

#include "file/PacketReader.h"

#include <span>

namespace audiotoolbox
{

/// What the sniffing functions get, fewer bytes only for a shorter file.
constexpr UInt32 kSniffBytes = 64;

struct FileTypeRow
{
    AudioFileTypeID mType;
    const char* mName;  // for people
    std::span<const char* const> mExtensions;
    std::span<const char* const> mMIMETypes;
    std::span<const AudioFormatID> mFormats;  // that the type holds
    bool mAllowsTag;                          // an ID3v2 tag may stand in front
    bool (*mSniff)(std::span<const UInt8> inHead);
    OpenContainer mOpen;  // null: a type that is not read
};

/// In the order in which types are tried.
std::span<const FileTypeRow> FileTypes();

/// Null for a type without a row.
const FileTypeRow* FindFileType(AudioFileTypeID inType);

}  // namespace audiotoolbox

#endif
