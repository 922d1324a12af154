#include "LoadedLibraries.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <memory>

#include <link.h>

namespace cf
{
namespace
{

struct FreeMemory
{
    void operator()(char* inText) const { std::free(inText); }
};

struct NameList
{
    std::vector<std::string> mNames;
    std::exception_ptr mFailure;
};

// Runs under the loader's lock, so it only notes names.
int NoteName(dl_phdr_info* inInfo, std::size_t, void* ioList)
{
    NameList& list = *static_cast<NameList*>(ioList);
    try
    {
        const bool isProgram = list.mNames.empty();  // it comes first, without a name
        list.mNames.emplace_back(isProgram ? "/proc/self/exe" : inInfo->dlpi_name);
        return 0;
    }
    catch (...)
    {
        list.mFailure = std::current_exception();  // the loader is C and cannot be unwound
        return 1;
    }
}

std::string FolderOf(const std::string& inName)
{
    if (inName.find('/') == std::string::npos)
        return {};  // the kernel's own library has a name and no file
    const std::unique_ptr<char, FreeMemory> path(::realpath(inName.c_str(), nullptr));
    if (!path)
        return {};
    const std::string file(path.get());
    return file.substr(0, file.rfind('/'));
}

}  // namespace

std::vector<std::string> FoldersOfLoadedLibraries()
{
    NameList list;
    ::dl_iterate_phdr(&NoteName, &list);
    if (list.mFailure)
        std::rethrow_exception(list.mFailure);

    std::vector<std::string> folders;
    for (const std::string& name : list.mNames)
    {
        std::string folder = FolderOf(name);
        if (!folder.empty() && std::find(folders.begin(), folders.end(), folder) == folders.end())
            folders.push_back(std::move(folder));
    }
    return folders;
}

}  // namespace cf
