// OSAtomic: the two counters that the system asks for, for platforms without them.
#ifndef LIBKERN_OSATOMIC_H
#define LIBKERN_OSATOMIC_H

#include <stdint.h>

/// Adds 1 and returns the new value. No ordering beyond the counter itself.
static inline int32_t OSAtomicIncrement32(volatile int32_t* ioValue)
{
    return __atomic_add_fetch(ioValue, 1, __ATOMIC_RELAXED);
}

/// Subtracts 1 and returns the new value. Acquire and release, so that whoever reaches 0 sees what
/// the other holders wrote before they let go.
static inline int32_t OSAtomicDecrement32(volatile int32_t* ioValue)
{
    return __atomic_sub_fetch(ioValue, 1, __ATOMIC_ACQ_REL);
}

#endif
