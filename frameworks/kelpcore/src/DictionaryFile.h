// DictionaryFile: the text form of a language's dictionary.
#ifndef KELPCORE_DICTIONARYFILE_H
#define KELPCORE_DICTIONARYFILE_H

#include "kelpcore/Strings.h"

#include <map>
#include <string_view>

namespace kelpcore::config
{

/// From "$$$/key" to the text.
using Dictionary = std::map<UTF8String, UTF16String, std::less<>>;

/// Reads a whole file's bytes. Lines end with LF or CR LF; empty lines say nothing; a byte order
/// mark may stand first. False, with outDictionary undefined, for bytes that are no UTF-8 and for a
/// line of another form: no "$$$/" and a key, no "=", or a backslash before anything but "n" and a
/// backslash.
bool ParseDictionary(std::string_view inBytes, Dictionary& outDictionary);

}  // namespace kelpcore::config

#endif
