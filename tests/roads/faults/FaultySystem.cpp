// The calls reach the system by their numbers, so whatever else stands in front of the C library
// does not matter.
#include "tests/roads/faults/FaultySystem.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace faulty_system
{

namespace
{

Plan sPlan;
Report sReport;
bool sIsInterrupted = false;
char sFolder[PATH_MAX];  // of a plan that the environment holds

constexpr std::size_t kMostAtOnce = 0x7FFFF000;  // the system's own bound

bool IsBelowFolder(const char* inPath)
{
    const std::size_t length = std::strlen(sPlan.mFolder);
    return length > 0 && std::strncmp(inPath, sPlan.mFolder, length) == 0 && inPath[length] == '/';
}

// A regular file of the folder; also one that has lost its name.
bool IsMeant(int inDescriptor)
{
    struct stat state = {};
    if (sPlan.mFolder[0] == 0 || fstat(inDescriptor, &state) != 0 || !S_ISREG(state.st_mode))
        return false;
    char link[64];
    char path[PATH_MAX] = {};
    std::snprintf(link, sizeof(link), "/proc/self/fd/%d", inDescriptor);
    return readlink(link, path, sizeof(path) - 1) > 0 && IsBelowFolder(path);
}

bool HasBeenWrittenTo(int inDescriptor)
{
    struct stat state = {};
    return fstat(inDescriptor, &state) == 0 && state.st_size > 0 &&
           (fcntl(inDescriptor, F_GETFL) & O_ACCMODE) != O_RDONLY;
}

bool IsAt()
{
    return sPlan.mAt > 0 && sReport.mCount == sPlan.mAt;
}

// A name is given at once, and a descriptor is gone even when closing it was interrupted.
bool CanBeDoneAgain(Call inCall)
{
    return inCall != Call::kRename && inCall != Call::kClose;
}

// Whether this call fails, with errno set then.
bool Fails(Call inCall, int inDescriptor)
{
    if (sPlan.mOnly != Call::kNone && sPlan.mOnly != inCall)
        return false;
    sIsInterrupted = sPlan.mInterrupts && CanBeDoneAgain(inCall) && !sIsInterrupted;
    if (sIsInterrupted)
    {
        errno = EINTR;
        return true;
    }
    ++sReport.mCount;
    if (IsAt())
    {
        sReport.mHit = inCall;
        if (sPlan.mAction)
            sPlan.mAction(inDescriptor, sPlan.mData);
    }
    const bool isPast = sPlan.mLasts && sPlan.mAt > 0 && sReport.mCount > sPlan.mAt;
    if (sPlan.mDamages || sPlan.mError == 0 || !(IsAt() || isPast))
        return false;
    errno = sPlan.mError;
    return true;
}

ssize_t WriteAt(int inDescriptor, const void* inBytes, std::size_t inCount, off_t inPosition)
{
    return syscall(SYS_pwrite64, inDescriptor, inBytes, inCount, inPosition);
}

// Longer by inCount bytes, which are zeros that take no room.
ssize_t LeaveHole(int inDescriptor, std::size_t inCount, off_t inPosition)
{
    const std::size_t count = std::min(inCount, kMostAtOnce);
    const off_t end = inPosition + static_cast<off_t>(count);
    return syscall(SYS_ftruncate, inDescriptor, end) == 0 ? static_cast<ssize_t>(count) : -1;
}

ssize_t WriteDamaged(int inDescriptor, const void* inBytes, std::size_t inCount, off_t inPosition)
{
    const ssize_t count = WriteAt(inDescriptor, inBytes, inCount, inPosition);
    const auto middle = static_cast<std::size_t>(std::max<ssize_t>(count, 0)) / 2;
    const char wrong = static_cast<char>(~static_cast<const char*>(inBytes)[middle]);
    (void)WriteAt(inDescriptor, &wrong, 1, inPosition + static_cast<off_t>(middle));
    return count;
}

// The plan of the environment, for a program that this library was preloaded into.
__attribute__((constructor)) void ReadEnvironment()
{
    const char* text = std::getenv(kVariable);
    int lasts = 0, only = 0, interrupts = 0, damages = 0, folder = 0;
    Plan plan;
    if (!text || std::sscanf(text, "%d %d %d %d %zu %d %d %n", &plan.mAt, &plan.mError, &lasts,
                             &only, &plan.mMostBytes, &interrupts, &damages, &folder) < 7)
        return;
    plan.mLasts = lasts != 0;
    plan.mOnly = static_cast<Call>(only);
    plan.mInterrupts = interrupts != 0;
    plan.mDamages = damages != 0;
    std::snprintf(sFolder, sizeof(sFolder), "%s", text + folder);
    plan.mFolder = sFolder;
    Follow(plan);
}

}  // namespace

__attribute__((visibility("default"))) void Follow(const Plan& inPlan)
{
    sPlan = inPlan;
    sReport = {};
    sIsInterrupted = false;
}

__attribute__((visibility("default"))) Report Told()
{
    return sReport;
}

}  // namespace faulty_system

using namespace faulty_system;

#define SYSTEM_CALL extern "C" __attribute__((visibility("default")))

SYSTEM_CALL ssize_t pwrite(int inDescriptor, const void* inBytes, size_t inCount, off_t inPosition)
{
    if (!IsMeant(inDescriptor))
        return WriteAt(inDescriptor, inBytes, inCount, inPosition);
    if (Fails(Call::kWrite, inDescriptor))
        return -1;
    if (sPlan.mHoleBytes > 0 && inCount >= sPlan.mHoleBytes)
        return LeaveHole(inDescriptor, inCount, inPosition);
    if (sPlan.mDamages && IsAt())
        return WriteDamaged(inDescriptor, inBytes, inCount, inPosition);
    const std::size_t count = sPlan.mMostBytes > 0 ? std::min(inCount, sPlan.mMostBytes) : inCount;
    return WriteAt(inDescriptor, inBytes, count, inPosition);
}

SYSTEM_CALL ssize_t write(int inDescriptor, const void* inBytes, size_t inCount)
{
    const bool isMeant = IsMeant(inDescriptor);
    if (isMeant && Fails(Call::kWrite, inDescriptor))
        return -1;
    const bool isShort = isMeant && sPlan.mMostBytes > 0;
    return syscall(SYS_write, inDescriptor, inBytes,
                   isShort ? std::min(inCount, sPlan.mMostBytes) : inCount);
}

SYSTEM_CALL int ftruncate(int inDescriptor, off_t inSize) noexcept
{
    if (IsMeant(inDescriptor) && Fails(Call::kTruncate, inDescriptor))
        return -1;
    return static_cast<int>(syscall(SYS_ftruncate, inDescriptor, inSize));
}

SYSTEM_CALL int fsync(int inDescriptor)
{
    if (IsMeant(inDescriptor) && Fails(Call::kSync, inDescriptor))
        return -1;
    return static_cast<int>(syscall(SYS_fsync, inDescriptor));
}

SYSTEM_CALL int rename(const char* inOld, const char* inNew) noexcept
{
    if (IsBelowFolder(inNew) && Fails(Call::kRename, -1))
        return -1;
    return static_cast<int>(syscall(SYS_rename, inOld, inNew));
}

// Whatever it tells, the descriptor is gone.
SYSTEM_CALL int close(int inDescriptor)
{
    const bool fails = IsMeant(inDescriptor) && HasBeenWrittenTo(inDescriptor) &&
                       Fails(Call::kClose, inDescriptor);
    const int error = errno;
    const auto closed = static_cast<int>(syscall(SYS_close, inDescriptor));
    if (!fails)
        return closed;
    errno = error;
    return -1;
}
