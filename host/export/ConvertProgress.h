// ConvertProgress: tells how far a conversion has come, how fast it is and how long it will take.
#ifndef HOST_EXPORT_CONVERTPROGRESS_H
#define HOST_EXPORT_CONVERTPROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace host
{

enum class ProgressForm
{
    kNone,
    kTerminal,  // one line that is drawn again, where standard error is a terminal
    kJSON       // one object a line on standard error
};

class ConvertProgress
{
public:
    /// inTotal  frames expected, 0 unknown
    /// inRate   frames a second of audio
    ConvertProgress(ProgressForm inForm, std::string inWhat, std::int64_t inTotal,
                    std::int32_t inRate);
    /// Wipes what was drawn.
    ~ConvertProgress();
    ConvertProgress(const ConvertProgress&) = delete;
    ConvertProgress& operator=(const ConvertProgress&) = delete;

    /// A few times a second at the most.
    void Show(std::int64_t inFrames);
    /// The last word, where programs listen.
    void Finish(std::int64_t inFrames);

private:
    using Clock = std::chrono::steady_clock;

    void Draw(std::int64_t inFrames);
    void Print(std::int64_t inFrames) const;
    double Speed(std::int64_t inFrames) const;
    double SecondsLeft(std::int64_t inFrames) const;
    double SecondsTaken() const;

    const ProgressForm mForm;
    const std::string mWhat;
    const std::int64_t mTotal;
    const std::int32_t mRate;
    const Clock::time_point mStart = Clock::now();
    Clock::time_point mNext;
    bool mDrawn = false;
};

}  // namespace host

#endif
