// InfoPlist: reads a bundle's description file.
#ifndef COREFOUNDATION_INFOPLIST_H
#define COREFOUNDATION_INFOPLIST_H

#include <string>
#include <string_view>

namespace cf
{

/// The text of the string behind the key in the outermost dictionary of a property list in XML;
/// empty when there is none. Lists that are not well-formed or declare entities have no keys.
std::string FindPlistString(std::string_view inXML, std::string_view inKey);

/// CFBundleIdentifier of a file; empty when the file cannot be read, is no regular file, or is
/// larger than 1 MiB.
std::string ReadBundleIdentifier(const std::string& inPath);

}  // namespace cf

#endif
