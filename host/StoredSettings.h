// StoredSettings: the numbers in a settings text, as far as a host looks at them.
//
// A host stores the text as it is; it reads only what describes a file that was opened: the file
// type, the format and the packets' length.
#ifndef HOST_STOREDSETTINGS_H
#define HOST_STOREDSETTINGS_H

#include <cstdint>
#include <string>
#include <string_view>

namespace host
{

/// The integer attribute of that name in a settings text ("Key:0:number;..."), or inDefault.
std::int32_t SettingsNumber(std::string_view inSettings, std::string_view inKey,
                            std::int32_t inDefault = 0);

/// The four characters of a code, most significant byte first, each byte as the character of that
/// number; UTF-8. Empty for 0.
std::string CodeText(std::uint32_t inCode);

/// The same for people: the number in hexadecimal where a character could not be shown.
std::string CodeForPeople(std::uint32_t inCode);

}  // namespace host

#endif
