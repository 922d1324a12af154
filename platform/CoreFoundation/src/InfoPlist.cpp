#include "InfoPlist.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <type_traits>

#include <expat.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cf
{
namespace
{

constexpr std::size_t kMaxPlistBytes = 1u << 20;
constexpr int kEntryDepth = 3;  // plist, dict, and then its keys and values

// What the parser is in the middle of, and what it has found.
struct PlistSearch
{
    XML_Parser mParser;
    std::string_view mWanted;
    int mDepth = 0;
    bool mKeyMatches = false;  // the last key of the outermost dictionary is the wanted one
    bool mCollecting = false;  // inside a key or string of the outermost dictionary
    bool mFound = false;
    std::string mText;
    std::exception_ptr mFailure;
};

using ParserPtr = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

void OpenElement(void* ioSearch, const XML_Char* inName, const XML_Char**)
{
    PlistSearch& search = *static_cast<PlistSearch*>(ioSearch);
    if (++search.mDepth != kEntryDepth || search.mFound)
        return;
    const std::string_view name(inName);
    search.mCollecting = name == "key" || name == "string";
    search.mText.clear();
}

void CloseElement(void* ioSearch, const XML_Char* inName)
{
    PlistSearch& search = *static_cast<PlistSearch*>(ioSearch);
    if (search.mDepth-- != kEntryDepth || search.mFound)
        return;
    const std::string_view name(inName);
    search.mFound = name == "string" && search.mKeyMatches;
    search.mKeyMatches = name == "key" && search.mText == search.mWanted;
    search.mCollecting = false;
}

void AddText(void* ioSearch, const XML_Char* inText, int inLength)
{
    PlistSearch& search = *static_cast<PlistSearch*>(ioSearch);
    if (!search.mCollecting || search.mDepth != kEntryDepth || search.mFailure)
        return;
    try
    {
        search.mText.append(inText, static_cast<std::size_t>(inLength));
    }
    catch (...)
    {
        search.mFailure = std::current_exception();  // expat is C and cannot be unwound
        XML_StopParser(search.mParser, XML_FALSE);
    }
}

// No description needs entities of its own, and they could grow without limit.
void RefuseEntity(void* ioSearch, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                  const XML_Char*, const XML_Char*, const XML_Char*)
{
    XML_StopParser(static_cast<PlistSearch*>(ioSearch)->mParser, XML_FALSE);
}

std::string ReadRegularFile(int inFile)
{
    struct stat status;
    if (::fstat(inFile, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0 ||
        static_cast<std::size_t>(status.st_size) > kMaxPlistBytes)
        return {};
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size())
    {
        const ssize_t count = ::read(inFile, bytes.data() + filled, bytes.size() - filled);
        if (count <= 0)
            return {};
        filled += static_cast<std::size_t>(count);
    }
    return bytes;
}

// Owns a file descriptor.
class File
{
public:
    explicit File(const std::string& inPath)
        : mFile(::open(inPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
    }
    ~File()
    {
        if (mFile >= 0)
            ::close(mFile);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int Get() const { return mFile; }

private:
    int mFile;
};

}  // namespace

std::string FindPlistString(std::string_view inXML, std::string_view inKey)
{
    if (inXML.size() > kMaxPlistBytes)
        return {};
    const ParserPtr parser(XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();

    PlistSearch search{.mParser = parser.get(), .mWanted = inKey, .mText = {}, .mFailure = {}};
    XML_SetUserData(parser.get(), &search);
    XML_SetElementHandler(parser.get(), &OpenElement, &CloseElement);
    XML_SetCharacterDataHandler(parser.get(), &AddText);
    XML_SetEntityDeclHandler(parser.get(), &RefuseEntity);
    const XML_Status status =
        XML_Parse(parser.get(), inXML.data(), static_cast<int>(inXML.size()), XML_TRUE);
    if (search.mFailure)
        std::rethrow_exception(search.mFailure);
    return status == XML_STATUS_OK && search.mFound ? search.mText : std::string();
}

std::string ReadBundleIdentifier(const std::string& inPath)
{
    const File file(inPath);
    if (file.Get() < 0)
        return {};
    return FindPlistString(ReadRegularFile(file.Get()), "CFBundleIdentifier");
}

}  // namespace cf
