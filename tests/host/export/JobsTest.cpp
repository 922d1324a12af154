#include "host/export/Jobs.h"

#include "host/Failure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace host
{

namespace
{

std::string NameOf(std::size_t inIndex)
{
    return "piece " + std::to_string(inIndex);
}

std::vector<std::string> SortedLines(const std::string& inText)
{
    std::istringstream stream(inText);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

TEST(Jobs, AnswersTheLargestExitCode)
{
    const auto work = [](std::size_t inIndex) { return inIndex == 1 ? 5 : inIndex == 2 ? 3 : 0; };
    EXPECT_EQ(RunJobs(4, 2, work, NameOf), 5);
    EXPECT_EQ(RunJobs(0, 2, work, NameOf), 0);
    EXPECT_EQ(RunJobs(1, 8, work, NameOf), 0);
}

TEST(Jobs, EveryPieceHasAProcessOfItsOwn)
{
    int touched = 0;
    const auto work = [&](std::size_t)
    {
        std::printf("%d\n", static_cast<int>(getpid()));
        return ++touched;  // of the copy
    };
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunJobs(3, 3, work, NameOf), 1);
    const auto ids = SortedLines(testing::internal::GetCapturedStdout());
    EXPECT_EQ(touched, 0);
    ASSERT_EQ(ids.size(), 3u);
    EXPECT_NE(ids[0], ids[1]);
    EXPECT_NE(ids[1], ids[2]);
}

TEST(Jobs, LinesStayWhole)
{
    const auto work = [](std::size_t inIndex)
    {
        const std::string half(3000, static_cast<char>('a' + inIndex));
        for (int line = 0; line < 20; ++line)
        {
            std::printf("%s", half.c_str());
            std::fflush(stdout);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            std::printf("%s\n", half.c_str());
            std::fflush(stdout);
        }
        return 0;
    };
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunJobs(3, 3, work, NameOf), 0);
    const auto lines = SortedLines(testing::internal::GetCapturedStdout());
    ASSERT_EQ(lines.size(), 60u);
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i], std::string(6000, static_cast<char>('a' + i / 20))) << i;
}

TEST(Jobs, ALastLineWithoutAnEndGetsOne)
{
    const auto work = [](std::size_t)
    {
        std::printf("unfinished");
        return 0;
    };
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunJobs(2, 1, work, NameOf), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "unfinished\nunfinished\n");
}

TEST(Jobs, APieceThatDiesIsNamedAndTheOthersGoOn)
{
    const auto work = [](std::size_t inIndex)
    {
        if (inIndex == 0)
            (void)raise(SIGKILL);
        std::printf("done %zu\n", inIndex);
        return 0;
    };
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(RunJobs(3, 2, work, NameOf), 128 + SIGKILL);
    EXPECT_EQ(SortedLines(testing::internal::GetCapturedStdout()),
              (std::vector<std::string>{"done 1", "done 2"}));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tarvo: piece 0: the conversion was ended by signal 9\n");
}

TEST(Jobs, NoMoreThanAskedForRunAtOnce)
{
    // Each piece tells when it begins and ends, on a clock that all processes share.
    const auto work = [](std::size_t)
    {
        const auto now = [] { return std::chrono::steady_clock::now().time_since_epoch().count(); };
        const auto begin = now();
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        std::printf("%020lld b\n%020lld e\n", static_cast<long long>(begin),
                    static_cast<long long>(now()));
        return 0;
    };
    testing::internal::CaptureStdout();
    EXPECT_EQ(RunJobs(6, 2, work, NameOf), 0);
    int running = 0;
    int most = 0;
    for (const std::string& line : SortedLines(testing::internal::GetCapturedStdout()))
    {
        running += line.ends_with('b') ? 1 : -1;
        most = std::max(most, running);
    }
    EXPECT_EQ(most, 2);
}

TEST(Jobs, AFailureThatEscapesBecomesItsExitCode)
{
    const auto work = [](std::size_t) -> int { throw Failure(kExitOutput, 0, "full"); };
    testing::internal::CaptureStderr();
    EXPECT_EQ(RunJobs(1, 1, work, NameOf), 4);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarvo: full\n");
}

}  // namespace

}  // namespace host
