#include "kelpcore/threads/Thread.h"

#include <unistd.h>

namespace kelpcore::threads
{

// Asked anew each time: a number kept per thread would be wrong in a forked child.
std::uint64_t GetCurrentThreadID()
{
    return static_cast<std::uint64_t>(::gettid());
}

}  // namespace kelpcore::threads
