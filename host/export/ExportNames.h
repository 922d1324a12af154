// ExportNames: file types and data formats as users write them.
//
// A type or a format is known by its code, its name or, a type, by an extension. Case and
// everything but letters and digits do not count in codes and names.
#ifndef HOST_EXPORT_EXPORTNAMES_H
#define HOST_EXPORT_EXPORTNAMES_H

#include <cstdint>
#include <string>
#include <string_view>

namespace host
{

/// The file type that --type means. Throws Failure: kExitUsage where there is none, kExitSettings
/// for one that can only be read.
std::uint32_t FileTypeByName(std::string_view inWritten);

/// The file type that a file's extension means. Throws as above.
std::uint32_t FileTypeOfPath(const std::string& inPath);

/// The format that --format means, in this file type where it holds one of that name. Throws
/// Failure: kExitUsage where there is none, kExitSettings where the file type does not hold it.
std::uint32_t FormatByName(std::string_view inWritten, std::uint32_t inFileType);

/// Linear PCM where the type holds it, else AAC, else the type's first; 0 for an unknown type.
std::uint32_t DefaultFormat(std::uint32_t inFileType);

/// What a new file of this type is called behind the dot; inWritten itself where it is one of the
/// type's extensions.
std::string ExtensionFor(std::uint32_t inFileType, std::string_view inWritten);

/// A path's extension in small letters, without the dot.
std::string ExtensionOf(const std::string& inPath);

/// The file has one of the type's extensions, or the type has none.
bool HasExtensionOf(const std::string& inPath, std::uint32_t inFileType);

/// For people: "MPEG Layer 3".
std::string FileTypeName(std::uint32_t inFileType);
std::string FormatName(std::uint32_t inFormat);

/// The formats that can be encoded into a type, for people.
std::string FormatNames(std::uint32_t inFileType);

}  // namespace host

#endif
