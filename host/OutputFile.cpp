#include "host/OutputFile.h"

#include "host/Failure.h"
#include "host/Interrupt.h"

#include <cerrno>
#include <cstdint>
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

// Disks and file systems that cannot sync (pipes, devices) are in order.
bool Sync(int inDescriptor)
{
    return fsync(inDescriptor) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

// Waits for a reader where the target is a pipe, until a signal arrives.
int OpenForWriting(const char* inPath)
{
    for (;;)
    {
        CheckInterrupt();
        const int descriptor = open(inPath, O_WRONLY | O_CLOEXEC);
        if (descriptor >= 0 || errno != EINTR)
            return descriptor;
    }
}

}  // namespace

OutputFile::OutputFile(const std::string& inPath, bool inMayReplace, const std::string& inSource)
    : mPath(inPath)
{
    if (inPath == "-")
    {
        mDescriptor = dup(STDOUT_FILENO);
        if (mDescriptor < 0)
            Fail("cannot write", errno);
        return;
    }

    if (inPath.empty())
        Fail("cannot write", ENOENT);
    struct stat target = {};
    const bool exists = stat(inPath.c_str(), &target) == 0;
    if (exists && S_ISDIR(target.st_mode))
        Fail("cannot write", EISDIR);
    struct stat source = {};
    if (exists && !inSource.empty() && stat(inSource.c_str(), &source) == 0 &&
        source.st_dev == target.st_dev && source.st_ino == target.st_ino)
        throw Failure(kExitOutput, 0, inPath + ": is the file that is being read");

    if (exists && !S_ISREG(target.st_mode))
    {
        mDescriptor = OpenForWriting(inPath.c_str());
        if (mDescriptor < 0)
            Fail("cannot write", errno);
        return;
    }
    if (exists && !inMayReplace)
        throw Failure(kExitOutput, 0, inPath + ": is there already (--force replaces it)");
    OpenTemporary(exists ? target.st_mode & 07777 : DefaultMode());
}

OutputFile::~OutputFile()
{
    if (mDescriptor >= 0)
        (void)close(mDescriptor);
    if (mTemporary.empty())
        return;
    (void)unlink(mTemporary.c_str());
    RemoveWhenKilled(nullptr);
}

void OutputFile::OpenTemporary(unsigned int inMode)
{
    // A link is followed, so that it still is one afterwards and the file lies beside its target.
    if (char* resolved = realpath(mPath.c_str(), nullptr))
    {
        mPath = resolved;
        free(resolved);
    }
    const std::size_t slash = mPath.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : mPath.substr(0, slash + 1);
    std::string name = folder + ".tarvo-XXXXXX";
    mDescriptor = mkostemp(name.data(), O_CLOEXEC);
    if (mDescriptor < 0)
        Fail("cannot write", errno);
    mTemporary = name;
    RemoveWhenKilled(mTemporary.c_str());
    (void)fchmod(mDescriptor, inMode);  // at worst the file stays private
}

void OutputFile::Write(const void* inBytes, std::size_t inCount)
{
    const char* bytes = static_cast<const char*>(inBytes);
    while (inCount > 0)
    {
        CheckInterrupt();  // each time, since a signal may also cut a write short
        const ssize_t written = write(mDescriptor, bytes, inCount);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            Fail("cannot write", errno);
        bytes += written;
        inCount -= static_cast<std::size_t>(written);
    }
}

void OutputFile::Commit()
{
    if (!Sync(mDescriptor))
        Fail("cannot write", errno);
    const int descriptor = mDescriptor;
    mDescriptor = -1;
    if (close(descriptor) != 0)
        Fail("cannot write", errno);
    if (mTemporary.empty())
        return;
    if (rename(mTemporary.c_str(), mPath.c_str()) != 0)
        Fail("cannot write", errno);
    RemoveWhenKilled(nullptr);
    mTemporary.clear();
}

void OutputFile::Fail(const char* inWhat, int inError) const
{
    throw Failure(kExitOutput, 0, mPath + ": " + inWhat + ": " + std::strerror(inError));
}

}  // namespace host
