// ResourceSearch: files of a bundle's resources folder, the user's languages first.
#ifndef COREFOUNDATION_RESOURCESEARCH_H
#define COREFOUNDATION_RESOURCESEARCH_H

#include <string>
#include <string_view>
#include <vector>

namespace cf
{

/// Names of language folders in order of preference, from the settings that the C library's
/// messages go by: inLanguages as LANGUAGE holds it ("de_AT:fr"), inLocale as LANG does
/// ("de_AT.UTF-8"). "de_AT" gives de_AT, de-AT and de. "C" and "POSIX" name no language, and text
/// that could leave the folder is none either.
std::vector<std::string> PreferredLanguages(std::string_view inLanguages,
                                            std::string_view inLocale);

/// The same from this process's environment.
std::vector<std::string> PreferredLanguages();

/// The path of the regular file inFile (which may begin with subfolders) in the first language's
/// folder that has it, else in the folder itself; empty when there is none.
std::string FindResource(const std::string& inFolder, const std::string& inFile,
                         const std::vector<std::string>& inLanguages);

}  // namespace cf

#endif
