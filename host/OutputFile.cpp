#include "host/OutputFile.h"

#include "host/Failure.h"
#include "host/Interrupt.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host
{

namespace
{

// Disks and file systems that cannot sync (pipes, devices) are in order.
bool Sync(int inDescriptor)
{
    while (fsync(inDescriptor) != 0)
        if (errno != EINTR)
            return errno == EINVAL || errno == ENOTSUP || errno == EROFS;
    return true;
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

bool IsSpecialFile(const std::string& inPath)
{
    struct stat target = {};
    return stat(inPath.c_str(), &target) == 0 && !S_ISREG(target.st_mode) &&
           !S_ISDIR(target.st_mode);
}

}  // namespace

OutputFile::OutputFile(const std::string& inPath, bool inMayReplace, const std::string& inSource)
    : mPath(inPath)
{
    if (inPath == "-")
    {
        mDescriptor = dup(STDOUT_FILENO);
    }
    else if (IsSpecialFile(inPath))
    {
        mDescriptor = OpenForWriting(inPath.c_str());
    }
    else
    {
        mTarget.emplace(inPath, inMayReplace, inSource);
        mDescriptor = OpenForWriting(mTarget->TemporaryPath().c_str());
    }
    if (mDescriptor < 0)
        Fail("cannot write", errno);
}

OutputFile::~OutputFile()
{
    if (mDescriptor >= 0)
        (void)close(mDescriptor);
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
    if (mTarget)
        mTarget->Commit();
}

void OutputFile::Fail(const char* inWhat, int inError) const
{
    throw Failure(kExitOutput, 0, mPath + ": " + inWhat + ": " + std::strerror(inError));
}

}  // namespace host
