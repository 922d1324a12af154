// TracePlace: one place in the code that writes trace lines.
//
//     static constinit TracePlace sPlace(6);
//     if (sPlace.IsWanted())
//         sPlace.Write("Client Format: ...");
//
// A place keeps the answer to whether it is wanted until the framework says that answers may have
// changed, so that a place that is off costs one comparison. Places are not guarded: a race costs
// at most a repeated question.
#ifndef APPLEAUDIOTOOLBOX_SRC_TRACEPLACE_H
#define APPLEAUDIOTOOLBOX_SRC_TRACEPLACE_H

#include <string_view>

namespace appleaudiotoolbox
{

class TracePlace
{
public:
    /// Levels: 5 read errors, 6 formats and lists, 7 detail of encoders.
    explicit constexpr TracePlace(int inLevel) : mLevel(inLevel) {}

    bool IsWanted();
    /// Writes one line with thread, area and level before the text, and a line break behind it.
    void Write(std::string_view inText) const;

private:
    int mLevel;
    unsigned int mSeenChangeCount = 0;
    bool mIsWanted = false;
};

}  // namespace appleaudiotoolbox

#endif
