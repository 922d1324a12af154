// Progress: one line on a terminal that tells how far a file has come.
#ifndef HOST_PROGRESS_H
#define HOST_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace host
{

/// Silent unless standard error is a terminal. Draws a few times a second, and wipes its line when
/// it goes.
class Progress
{
public:
    /// inTotal  frames expected, 0 unknown
    Progress(std::string inWhat, std::int64_t inTotal);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(std::int64_t inDone);

private:
    const std::string mWhat;
    const std::int64_t mTotal;
    const bool mOnTerminal;
    bool mDrawn = false;
    std::chrono::steady_clock::time_point mNext;
};

}  // namespace host

#endif
