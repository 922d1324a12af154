// LoadedLibraries: where the libraries of this process lie.
#ifndef COREFOUNDATION_LOADEDLIBRARIES_H
#define COREFOUNDATION_LOADEDLIBRARIES_H

#include <string>
#include <vector>

namespace cf
{

/// The folders of the libraries that are loaded now, the program's own among them; absolute,
/// without symbolic links, each once, in loading order. Libraries that lie nowhere are left out.
std::vector<std::string> FoldersOfLoadedLibraries();

}  // namespace cf

#endif
