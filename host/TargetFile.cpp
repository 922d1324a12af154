#include "host/TargetFile.h"

#include "host/Failure.h"
#include "host/Interrupt.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host
{

namespace
{

// What a new file gets when nobody says otherwise.
mode_t DefaultMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Disks and file systems that cannot sync are in order.
bool Sync(int inDescriptor)
{
    while (fsync(inDescriptor) != 0)
        if (errno != EINTR)
            return errno == EINVAL || errno == ENOTSUP || errno == EROFS;
    return true;
}

// Sets the permissions before the sync, which takes them to disk too. At worst the file stays
// private. Returns an error number, 0 for none.
int SyncFile(const std::string& inPath, mode_t inMode)
{
    const int descriptor = open(inPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor < 0)
        return errno;
    (void)fchmod(descriptor, inMode);
    const int error = Sync(descriptor) ? 0 : errno;
    (void)close(descriptor);
    return error;
}

// Takes the new name to disk. The file is whole whether or not that succeeds.
void SyncFolder(const std::string& inFolder)
{
    const int descriptor =
        open(inFolder.empty() ? "." : inFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    (void)fsync(descriptor);
    (void)close(descriptor);
}

std::string FolderOf(const std::string& inPath)
{
    const std::size_t slash = inPath.rfind('/');
    return slash == std::string::npos ? "" : inPath.substr(0, slash + 1);
}

bool IsSameFile(const struct stat& inOne, const std::string& inOther)
{
    struct stat other = {};
    return !inOther.empty() && stat(inOther.c_str(), &other) == 0 && other.st_dev == inOne.st_dev &&
           other.st_ino == inOne.st_ino;
}

// A link that leads nowhere would be replaced itself, which nobody means.
bool IsLink(const std::string& inPath)
{
    struct stat link = {};
    return lstat(inPath.c_str(), &link) == 0 && S_ISLNK(link.st_mode);
}

}  // namespace

TargetFile::TargetFile(const std::string& inPath, bool inMayReplace, const std::string& inSource)
    : mName(inPath), mPath(inPath)
{
    if (inPath.empty())
        Fail(ENOENT);
    struct stat target = {};
    const bool exists = stat(inPath.c_str(), &target) == 0;
    if (!exists && (errno != ENOENT || IsLink(inPath)))
        Fail(errno);
    if (!exists)
    {
        MakeTemporary(DefaultMode());
        return;
    }
    if (S_ISDIR(target.st_mode))
        Fail(EISDIR);
    if (IsSameFile(target, inSource))
        throw Failure(kExitOutput, 0, inPath + ": is the file that is being read");
    if (!S_ISREG(target.st_mode))
        throw Failure(kExitOutput, 0, inPath + ": is no regular file");
    if (!inMayReplace)
        throw Failure(kExitOutput, 0, inPath + ": is there already (--force replaces it)");
    MakeTemporary(target.st_mode & 0777);
}

TargetFile::~TargetFile()
{
    if (mTemporary.empty())
        return;
    (void)unlink(mTemporary.c_str());
    RemoveWhenKilled(nullptr);
}

void TargetFile::MakeTemporary(unsigned int inMode)
{
    // A link is followed, so that it still is one afterwards and the file lies beside its target.
    if (char* resolved = realpath(mPath.c_str(), nullptr))
    {
        mPath = resolved;
        free(resolved);
    }
    mMode = inMode;
    std::string name = FolderOf(mPath) + ".tarvo-XXXXXX";
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        Fail(errno);
    mTemporary = name;
    RemoveWhenKilled(mTemporary.c_str());
    (void)close(descriptor);  // nothing was written to it
}

void TargetFile::Commit()
{
    if (const int error = SyncFile(mTemporary, mMode))
        Fail(error);
    if (rename(mTemporary.c_str(), mPath.c_str()) != 0)
        Fail(errno);
    RemoveWhenKilled(nullptr);
    mTemporary.clear();
    SyncFolder(FolderOf(mPath));
}

void TargetFile::Fail(int inError) const
{
    throw Failure(kExitOutput, 0, mName + ": cannot write: " + std::strerror(inError));
}

}  // namespace host
