#include "kelpcore/utility/FileBytes.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelpcore::utility
{
namespace
{

// Owns a file descriptor.
class File
{
public:
    explicit File(const char* inPath) : mFile(::open(inPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
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

bool ReadAll(int inFile, std::vector<char>& outBytes)
{
    std::size_t filled = 0;
    while (filled < outBytes.size())
    {
        const ssize_t count = ::read(inFile, outBytes.data() + filled, outBytes.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;  // a file that shrinks while it is read counts as unreadable
        filled += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

bool ReadFileBytes(const char* inPath, std::size_t inMaxBytes, std::vector<char>& outBytes)
{
    outBytes.clear();
    const File file(inPath);
    struct stat status;
    if (file.Get() < 0 || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        static_cast<std::size_t>(status.st_size) > inMaxBytes)
        return false;
    outBytes.resize(static_cast<std::size_t>(status.st_size));
    if (ReadAll(file.Get(), outBytes))
        return true;
    outBytes.clear();
    return false;
}

}  // namespace kelpcore::utility
