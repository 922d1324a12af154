// The sink of bytes that is a file. Every append is written at once: what Size tells is in the
// file, so a writer knows at a failure exactly what is there, and its header can say so.

#include "file/write/ByteSink.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace audiotoolbox
{
namespace
{

bool HasSizeLimit()
{
    rlimit limit = {};
    return ::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
}

// Keeps the signal of the file size limit from this thread, since it would end a process that
// left it alone. The limit shows as EFBIG all the same. A signal that was waiting before stays.
class SizeLimitSignalHeld
{
public:
    SizeLimitSignalHeld()
    {
        if (!HasSizeLimit())
            return;
        sigemptyset(&mSignal);
        sigaddset(&mSignal, SIGXFSZ);
        sigset_t pending;
        sigemptyset(&pending);
        (void)::sigpending(&pending);
        mWasPending = sigismember(&pending, SIGXFSZ) == 1;
        mIsHeld = ::pthread_sigmask(SIG_BLOCK, &mSignal, &mBefore) == 0;
    }
    SizeLimitSignalHeld(const SizeLimitSignalHeld&) = delete;
    SizeLimitSignalHeld& operator=(const SizeLimitSignalHeld&) = delete;
    ~SizeLimitSignalHeld()
    {
        const int error = errno;
        if (mIsHeld)
        {
            if (mHasMetLimit && !mWasPending)
                TakeSignal();
            (void)::pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
        }
        errno = error;
    }

    void NoteLimit() { mHasMetLimit = true; }

private:
    void TakeSignal()
    {
        const timespec noTime = {};
        while (::sigtimedwait(&mSignal, nullptr, &noTime) < 0 && errno == EINTR)
        {
        }
    }

    sigset_t mSignal;
    sigset_t mBefore;
    bool mWasPending = false;
    bool mIsHeld = false;
    bool mHasMetLimit = false;
};

OSStatus StatusOfWriting(int inError)
{
    switch (inError)
    {
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return kAudio_DiskFullError;
        case ENOMEM:
            return kAudio_MemFullError;
        default:
            return kAudio_IOError;
    }
}

OSStatus StatusOfCreating(int inError)
{
    switch (inError)
    {
        case ENOENT:
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP:
            return kAudio_FileNotFoundError;
        case EACCES:
        case EPERM:
        case EROFS:
        case EEXIST:
        case EISDIR:
        case ENXIO:  // a socket, or a pipe without a reader
        case ENODEV:
        case ETXTBSY:
            return kAudioFilePermissionsError;
        default:
            return StatusOfWriting(inError);
    }
}

// Zero, or the error's number.
int SetFileSize(int inDescriptor, SInt64 inSize)
{
    while (::ftruncate(inDescriptor, inSize) != 0)
        if (errno != EINTR)
            return errno;
    return 0;
}

class FileSink : public ByteSink
{
public:
    FileSink(int inDescriptor, bool inIsRegular)
        : mDescriptor(inDescriptor), mIsRegular(inIsRegular)
    {
    }
    FileSink(const FileSink&) = delete;
    FileSink& operator=(const FileSink&) = delete;
    ~FileSink() override
    {
        if (mDescriptor >= 0)
            (void)Close();  // nobody is left to tell
    }

    OSStatus Append(std::span<const UInt8> inBytes) override
    {
        if (mDescriptor < 0)
            return kAudioFileNotOpenError;
        std::size_t done = 0;
        const OSStatus status = WriteAt(mSize, inBytes, done);
        mSize += static_cast<SInt64>(done);
        return status;
    }

    OSStatus Patch(SInt64 inPosition, std::span<const UInt8> inBytes) override
    {
        if (mDescriptor < 0)
            return kAudioFileNotOpenError;
        const auto count = static_cast<SInt64>(inBytes.size());
        if (inPosition < 0 || count > mSize || inPosition > mSize - count)
            return kAudioFilePositionError;
        std::size_t done = 0;
        return WriteAt(inPosition, inBytes, done);
    }

    SInt64 Size() const override { return mSize; }

    OSStatus Truncate(SInt64 inSize) override
    {
        if (mDescriptor < 0)
            return kAudioFileNotOpenError;
        if (inSize < 0 || inSize > mSize)
            return kAudioFilePositionError;
        mSize = inSize;
        if (!mIsRegular)
            return noErr;
        const int error = SetFileSize(mDescriptor, mSize);
        return error == 0 ? OSStatus{noErr} : StatusOfWriting(error);
    }

    OSStatus Close() override
    {
        if (mDescriptor < 0)
            return kAudioFileNotOpenError;
        // Of the descriptor nothing is left, whatever the answer.
        return ::close(std::exchange(mDescriptor, -1)) == 0 ? OSStatus{noErr}
                                                            : StatusOfWriting(errno);
    }

private:
    OSStatus WriteAt(SInt64 inPosition, std::span<const UInt8> inBytes, std::size_t& outDone) const
    {
        outDone = 0;
        if (inBytes.empty())
            return noErr;
        SizeLimitSignalHeld held;
        while (outDone < inBytes.size())
        {
            const ssize_t count =
                ::pwrite(mDescriptor, inBytes.data() + outDone, inBytes.size() - outDone,
                         inPosition + static_cast<SInt64>(outDone));
            if (count > 0)
                outDone += static_cast<std::size_t>(count);
            else if (count == 0)
                return kAudio_IOError;  // a device that takes nothing would be asked for ever
            else if (errno != EINTR)
            {
                if (errno == EFBIG)
                    held.NoteLimit();
                return StatusOfWriting(errno);
            }
        }
        return noErr;
    }

    int mDescriptor;
    const bool mIsRegular;
    SInt64 mSize = 0;
};

int OpenForWriting(const char* inPath, bool inReplaces)
{
    constexpr int kFlags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    int descriptor = -1;
    do
        descriptor = ::open(inPath, inReplaces ? kFlags : kFlags | O_EXCL, 0666);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

}  // namespace

OSStatus CreateFileSink(const char* inPath, bool inReplaces, ByteSinkPtr& outSink)
{
    const int descriptor = OpenForWriting(inPath, inReplaces);
    if (descriptor < 0)
        return StatusOfCreating(errno);

    struct stat state = {};
    const bool isKnown = ::fstat(descriptor, &state) == 0;
    const bool isRegular = isKnown && S_ISREG(state.st_mode);
    auto sink = std::make_unique<FileSink>(descriptor, isRegular);
    if (!isKnown)
        return kAudio_IOError;
    if (!isRegular && !S_ISCHR(state.st_mode))
        return kAudioFilePermissionsError;
    // Only now is it known to be a thing that may be emptied.
    if (const int error = isRegular ? SetFileSize(descriptor, 0) : 0; error != 0)
        return StatusOfCreating(error);
    outSink = std::move(sink);
    return noErr;
}

}  // namespace audiotoolbox
