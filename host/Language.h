// Language: the plug-in's texts in the user's language, from the dictionaries of its bundle.
#ifndef HOST_LANGUAGE_H
#define HOST_LANGUAGE_H

#include <string>

namespace host
{

/// Loads the dictionary of a bundle. Once, before anything is asked for texts.
///
/// inBundle    its folder
/// inLanguage  "de", say; empty: the first of the user's languages that the bundle has a dictionary
///             for (LANGUAGE, then LC_ALL, LC_MESSAGES or LANG), English without one
/// Throws Failure: kExitUsage for a language that is named and has no dictionary, kExitFailed for a
/// dictionary that cannot be read.
void UseLanguage(const std::string& inBundle, const std::string& inLanguage);

}  // namespace host

#endif
