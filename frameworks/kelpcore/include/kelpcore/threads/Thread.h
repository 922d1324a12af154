// Thread: who is running.
#ifndef KELPCORE_THREADS_THREAD_H
#define KELPCORE_THREADS_THREAD_H

#include "kelpcore/Export.h"

#include <cstdint>

namespace kelpcore::threads
{

/// The operating system's number of the calling thread.
KELPCORE_EXPORT std::uint64_t GetCurrentThreadID();

}  // namespace kelpcore::threads

#endif
