// The two sources of bytes: a descriptor of a regular file, and a client's callbacks.

#include "file/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace audiotoolbox
{
namespace
{

class FileDescriptor
{
public:
    explicit FileDescriptor(int inDescriptor) : mDescriptor(inDescriptor) {}
    FileDescriptor(FileDescriptor&& inOther) noexcept : mDescriptor(inOther.mDescriptor)
    {
        inOther.mDescriptor = -1;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor()
    {
        if (mDescriptor >= 0)
            (void)::close(mDescriptor);  // nothing was written, so nothing can be lost
    }

    int Get() const { return mDescriptor; }

private:
    int mDescriptor;
};

// How much of a request lies within the data; 0 at and behind the end.
UInt32 CountWithin(SInt64 inPosition, UInt32 inCount, SInt64 inSize)
{
    if (inPosition >= inSize)
        return 0;
    return static_cast<UInt32>(std::min<SInt64>(inCount, inSize - inPosition));
}

class FileSource : public ByteSource
{
public:
    FileSource(FileDescriptor inFile, SInt64 inSize) : mFile(std::move(inFile)), mSize(inSize) {}

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        *outCount = 0;
        if (inPosition < 0)
            return kAudioFilePositionError;
        const UInt32 wanted = CountWithin(inPosition, inCount, mSize);
        UInt32 done = 0;
        while (done < wanted)
        {
            const ssize_t got = ::pread(mFile.Get(), static_cast<char*>(outBytes) + done,
                                        wanted - done, inPosition + done);
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                return kAudio_IOError;
            if (got == 0)
                break;  // somebody cut the file meanwhile
            done += static_cast<UInt32>(got);
        }
        *outCount = done;
        return noErr;
    }

    SInt64 Size() const override { return mSize; }

private:
    FileDescriptor mFile;
    SInt64 mSize;
};

class CallbackSource : public ByteSource
{
public:
    CallbackSource(void* inClientData, AudioFile_ReadProc inRead, SInt64 inSize)
        : mClientData(inClientData), mRead(inRead), mSize(inSize)
    {
    }

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        *outCount = 0;
        if (inPosition < 0)
            return kAudioFilePositionError;
        const UInt32 wanted = CountWithin(inPosition, inCount, mSize);
        if (wanted == 0)
            return noErr;
        UInt32 got = 0;
        const OSStatus status = mRead(mClientData, inPosition, wanted, outBytes, &got);
        // Clients may tell the end of their data by a status too.
        if (status != noErr && status != kAudioFileEndOfFileError)
            return status;
        *outCount = std::min(got, wanted);
        return noErr;
    }

    SInt64 Size() const override { return mSize; }

private:
    void* mClientData;
    AudioFile_ReadProc mRead;
    SInt64 mSize;
};

OSStatus StatusOfOpening(int inError)
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
        case ENXIO:  // a socket
        case EISDIR:
            return kAudioFilePermissionsError;
        case ENOMEM:
            return kAudio_MemFullError;
        default:
            return kAudio_IOError;
    }
}

}  // namespace

OSStatus OpenFileSource(const char* inPath, ByteSourcePtr& outSource)
{
    // Without O_NONBLOCK the opening of a pipe would wait for its writer.
    FileDescriptor file(::open(inPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (file.Get() < 0)
        return StatusOfOpening(errno);

    struct stat state = {};
    if (::fstat(file.Get(), &state) != 0)
        return kAudio_IOError;
    if (!S_ISREG(state.st_mode))
        return kAudioFilePermissionsError;

    outSource = std::make_unique<FileSource>(std::move(file), state.st_size);
    return noErr;
}

ByteSourcePtr MakeCallbackSource(void* inClientData, AudioFile_ReadProc inRead,
                                 AudioFile_GetSizeProc inGetSize)
{
    const SInt64 size = std::max<SInt64>(inGetSize(inClientData), 0);
    return std::make_unique<CallbackSource>(inClientData, inRead, size);
}

}  // namespace audiotoolbox
