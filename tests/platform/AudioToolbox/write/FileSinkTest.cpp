// The sink of bytes that is a file: what arrives on disk, and every way in which it cannot.

#include "ScratchFolder.h"

#include "platform/AudioToolbox/src/file/write/ByteSink.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <numeric>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace audiotoolbox;
using write_test::BytesOfFile;
using write_test::ByteVector;
using write_test::ScratchFolder;

ByteVector Ramp(std::size_t inCount, UInt8 inFirst = 0)
{
    ByteVector bytes(inCount);
    std::iota(bytes.begin(), bytes.end(), inFirst);
    return bytes;
}

ByteSinkPtr Create(const std::string& inPath, bool inReplaces = true)
{
    ByteSinkPtr sink;
    EXPECT_EQ(CreateFileSink(inPath.c_str(), inReplaces, sink), noErr) << inPath;
    return sink;
}

OSStatus StatusOfCreating(const std::string& inPath, bool inReplaces = true)
{
    ByteSinkPtr sink;
    const OSStatus status = CreateFileSink(inPath.c_str(), inReplaces, sink);
    EXPECT_EQ(sink == nullptr, status != noErr);
    return status;
}

TEST(FileSink, WritesSmallAndLargePiecesInTheirOrder)
{
    for (const std::size_t piece : {1u, 7u, 4096u, 65535u, 65536u, 65537u, 300000u})
    {
        const ScratchFolder folder;
        const std::string path = folder.File("out");
        const ByteSinkPtr sink = Create(path);
        ByteVector expected;
        for (UInt8 round = 0; round < 5; ++round)
        {
            const ByteVector bytes = Ramp(piece, round);
            ASSERT_EQ(sink->Append(bytes), noErr);
            ASSERT_EQ(sink->Append(ByteVector{1, 2, 3}), noErr);
            expected.insert(expected.end(), bytes.begin(), bytes.end());
            expected.insert(expected.end(), {1, 2, 3});
            EXPECT_EQ(sink->Size(), static_cast<SInt64>(expected.size()));
        }
        EXPECT_EQ(sink->Close(), noErr);
        EXPECT_EQ(BytesOfFile(path), expected) << "pieces of " << piece;
    }
}

TEST(FileSink, PatchesWhatWasAppended)
{
    const ScratchFolder folder;
    const ByteSinkPtr sink = Create(folder.File("out"));
    ByteVector expected = Ramp(100000);
    ASSERT_EQ(sink->Append(expected), noErr);
    ASSERT_EQ(sink->Append(Ramp(50)), noErr);
    const ByteVector last = Ramp(50);
    expected.insert(expected.end(), last.begin(), last.end());

    for (const SInt64 position : {SInt64{0}, SInt64{99998}, SInt64{100000}, SInt64{100046}})
    {
        ASSERT_EQ(sink->Patch(position, ByteVector{9, 8, 7, 6}), noErr) << position;
        const ByteVector patch = {9, 8, 7, 6};
        std::copy(patch.begin(), patch.end(), expected.begin() + position);
    }
    EXPECT_EQ(sink->Close(), noErr);
    EXPECT_EQ(BytesOfFile(folder.File("out")), expected);
}

TEST(FileSink, RefusesToPatchOutsideOfWhatWasAppended)
{
    const ScratchFolder folder;
    const ByteSinkPtr sink = Create(folder.File("out"));
    ASSERT_EQ(sink->Append(Ramp(10)), noErr);
    EXPECT_EQ(sink->Patch(-1, Ramp(1)), kAudioFilePositionError);
    EXPECT_EQ(sink->Patch(7, Ramp(4)), kAudioFilePositionError);
    EXPECT_EQ(sink->Patch(0x7FFFFFFFFFFFFFFF, Ramp(4)), kAudioFilePositionError);
    EXPECT_EQ(sink->Patch(0, Ramp(11)), kAudioFilePositionError);
    EXPECT_EQ(sink->Patch(10, {}), noErr);
}

TEST(FileSink, CutsTheFileAndGoesOnThere)
{
    const ScratchFolder folder;
    const ByteSinkPtr sink = Create(folder.File("out"));
    ASSERT_EQ(sink->Append(Ramp(100000)), noErr);
    ASSERT_EQ(sink->Append(Ramp(50)), noErr);
    EXPECT_EQ(sink->Truncate(100051), kAudioFilePositionError);
    EXPECT_EQ(sink->Truncate(-1), kAudioFilePositionError);
    EXPECT_EQ(sink->Truncate(100020), noErr);
    EXPECT_EQ(sink->Size(), 100020);
    EXPECT_EQ(sink->Truncate(5), noErr);
    EXPECT_EQ(sink->Size(), 5);
    ASSERT_EQ(sink->Append(ByteVector{200}), noErr);
    EXPECT_EQ(sink->Close(), noErr);
    EXPECT_EQ(BytesOfFile(folder.File("out")), (ByteVector{0, 1, 2, 3, 4, 200}));
}

TEST(FileSink, NothingFollowsTheClose)
{
    const ScratchFolder folder;
    const ByteSinkPtr sink = Create(folder.File("out"));
    EXPECT_EQ(sink->Close(), noErr);
    EXPECT_EQ(sink->Append(Ramp(1)), kAudioFileNotOpenError);
    EXPECT_EQ(sink->Patch(0, {}), kAudioFileNotOpenError);
    EXPECT_EQ(sink->Truncate(0), kAudioFileNotOpenError);
    EXPECT_EQ(sink->Close(), kAudioFileNotOpenError);
}

TEST(FileSink, ADestroyedSinkHasClosedItsFile)
{
    const ScratchFolder folder;
    Create(folder.File("out"))->Append(Ramp(3));
    EXPECT_EQ(BytesOfFile(folder.File("out")), (ByteVector{0, 1, 2}));
    EXPECT_EQ(write_test::DescriptorOf(folder.File("out")), -1);
}

TEST(FileSink, TheDescriptorIsClosedInPrograms)
{
    const ScratchFolder folder;
    const ByteSinkPtr sink = Create(folder.File("out"));
    const int descriptor = write_test::DescriptorOf(folder.File("out"));
    ASSERT_GE(descriptor, 0);
    EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
}

TEST(CreatingAFile, EmptiesOneThatIsThereOnlyWhenToldTo)
{
    const ScratchFolder folder;
    const std::string path = folder.File("there");
    write_test::MakeFile(path, "old");
    EXPECT_EQ(StatusOfCreating(path, false), kAudioFilePermissionsError);
    EXPECT_EQ(BytesOfFile(path), (ByteVector{'o', 'l', 'd'}));
    EXPECT_EQ(StatusOfCreating(path, true), noErr);
    EXPECT_TRUE(BytesOfFile(path).empty());
    EXPECT_EQ(StatusOfCreating(folder.File("new"), false), noErr);
}

TEST(CreatingAFile, RefusesFoldersPipesAndSocketsWithoutWaiting)
{
    const ScratchFolder folder;
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(StatusOfCreating(pipe), kAudioFilePermissionsError);
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(StatusOfCreating(pipe), kAudioFilePermissionsError) << "with a reader";
    ::close(reader);

    EXPECT_EQ(StatusOfCreating(folder.Path()), kAudioFilePermissionsError);

    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    folder.File("socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(server, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_EQ(StatusOfCreating(folder.File("socket")), kAudioFilePermissionsError);
    ::close(server);
}

TEST(CreatingAFile, TellsAMissingFolder)
{
    const ScratchFolder folder;
    write_test::MakeFile(folder.File("file"), "x");
    EXPECT_EQ(StatusOfCreating(folder.File("none/out")), kAudio_FileNotFoundError);
    EXPECT_EQ(StatusOfCreating(folder.File("file/out")), kAudio_FileNotFoundError);
    EXPECT_EQ(StatusOfCreating(""), kAudio_FileNotFoundError);
    EXPECT_EQ(StatusOfCreating(folder.File(std::string(300, 'n'))), kAudio_FileNotFoundError);
}

// Root may do everything, so the work is done as somebody else, in a process of its own.
bool HoldsForNobody(const std::function<bool()>& inWork)
{
    constexpr uid_t kNobody = 65534;
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit((::geteuid() != 0 || ::seteuid(kNobody) == 0) && inWork() ? 0 : 1);
    int state = 0;
    ::waitpid(child, &state, 0);
    return WIFEXITED(state) && WEXITSTATUS(state) == 0;
}

TEST(CreatingAFile, TellsMissingPermission)
{
    const ScratchFolder folder;
    write_test::MakeFile(folder.File("there"), "old");
    ASSERT_EQ(::chmod(folder.File("there").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder.Path().c_str(), 0555), 0);
    const auto isRefused = [&](const char* inName)
    { return StatusOfCreating(folder.File(inName)) == kAudioFilePermissionsError; };
    EXPECT_TRUE(HoldsForNobody([&] { return isRefused("new"); })) << "a folder";
    EXPECT_TRUE(HoldsForNobody([&] { return isRefused("there"); })) << "a file";
    ASSERT_EQ(::chmod(folder.Path().c_str(), 0755), 0);
    EXPECT_EQ(BytesOfFile(folder.File("there")), (ByteVector{'o', 'l', 'd'}));
}

TEST(FullDisk, ShowsAtTheAppendAndNothingOfItIsCounted)
{
    for (const std::size_t count : {1u, 10u, 100000u})
    {
        const ByteSinkPtr sink = Create("/dev/full");
        EXPECT_EQ(sink->Append(Ramp(count)), kAudio_DiskFullError) << count;
        EXPECT_EQ(sink->Size(), 0);
        EXPECT_EQ(sink->Truncate(0), noErr);
        EXPECT_EQ(sink->Close(), noErr) << "nothing is left to be written";
    }
}

TEST(ADescriptorThatSomebodyClosed, IsAFailureOfEveryCall)
{
    const ScratchFolder folder;
    const ByteSinkPtr sink = Create(folder.File("out"));
    ASSERT_EQ(sink->Append(Ramp(100000)), noErr);
    const int descriptor = write_test::DescriptorOf(folder.File("out"));
    ASSERT_GE(descriptor, 0);
    ::close(descriptor);
    EXPECT_EQ(sink->Append(Ramp(100000)), kAudio_IOError);
    EXPECT_EQ(sink->Patch(0, Ramp(4)), kAudio_IOError);
    EXPECT_EQ(sink->Truncate(1), kAudio_IOError);
    EXPECT_EQ(sink->Close(), kAudio_IOError);
}

// Runs in a process of its own with files limited to inLimit bytes; true when it ended by itself
// with what inWork answered being true.
bool HoldsUnderALimit(rlim_t inLimit, const std::function<bool()>& inWork)
{
    const pid_t child = ::fork();
    if (child == 0)
    {
        const rlimit limit = {inLimit, inLimit};
        const bool isLimited = ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
        (void)std::signal(SIGXFSZ, SIG_DFL);
        ::_exit(isLimited && inWork() ? 0 : 1);
    }
    int state = 0;
    ::waitpid(child, &state, 0);
    return WIFEXITED(state) && WEXITSTATUS(state) == 0;
}

bool IsPending(int inSignal)
{
    sigset_t pending;
    return ::sigpending(&pending) == 0 && sigismember(&pending, inSignal) == 1;
}

TEST(TheSizeLimitOfAProcess, IsAFullDiskAndDoesNotEndTheHost)
{
    const ScratchFolder folder;
    const std::string path = folder.File("out");
    const auto work = [&]
    {
        ByteSinkPtr sink;
        return CreateFileSink(path.c_str(), true, sink) == noErr &&
               sink->Append(Ramp(90000)) == noErr &&
               sink->Append(Ramp(90000)) == kAudio_DiskFullError && sink->Size() == 100000 &&
               sink->Append(Ramp(1)) == kAudio_DiskFullError && sink->Truncate(50) == noErr &&
               sink->Append(Ramp(99950)) == noErr && sink->Close() == noErr && !IsPending(SIGXFSZ);
    };
    EXPECT_TRUE(HoldsUnderALimit(100000, work));
    EXPECT_EQ(BytesOfFile(path).size(), 100000u) << "what fits is there";
}

TEST(TheSizeLimitOfAProcess, LeavesASignalAloneThatWasWaitingBefore)
{
    const ScratchFolder folder;
    const std::string path = folder.File("out");
    const auto work = [&]
    {
        sigset_t signal;
        sigemptyset(&signal);
        sigaddset(&signal, SIGXFSZ);
        ::sigprocmask(SIG_BLOCK, &signal, nullptr);
        ::raise(SIGXFSZ);
        ByteSinkPtr sink;
        const bool isRefused = CreateFileSink(path.c_str(), true, sink) == noErr &&
                               sink->Append(Ramp(90000)) == kAudio_DiskFullError;
        return isRefused && IsPending(SIGXFSZ);
    };
    EXPECT_TRUE(HoldsUnderALimit(1000, work));
}

}  // namespace
