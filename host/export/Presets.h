// Presets: settings texts that the user keeps under a name.
//
// One file each in $XDG_CONFIG_HOME/tarvo/presets, or ~/.config/tarvo/presets where the variable
// holds no absolute path. A name is one word or a few: letters, digits, ".", "_", "-", "+" and
// blanks inside, so that it can be no path.
#ifndef HOST_EXPORT_PRESETS_H
#define HOST_EXPORT_PRESETS_H

#include <string>
#include <string_view>
#include <vector>

namespace host
{

/// What the option --settings got is a text and no name; the empty text is one.
bool IsSettingsText(std::string_view inText);

bool IsPresetName(std::string_view inName);

/// The settings text, UTF-8. Throws Failure: kExitUsage for a name that is none or not known,
/// kExitInput for a file that cannot be read or is no settings text.
std::string LoadPreset(const std::string& inName);

/// Appears whole or not at all. Throws Failure: kExitUsage for a name that is none, kExitOutput for
/// a preset that is there already and may not be replaced, and where it cannot be written.
void SavePreset(const std::string& inName, const std::string& inSettings, bool inMayReplace);

/// Ascending.
std::vector<std::string> PresetNames();

}  // namespace host

#endif
