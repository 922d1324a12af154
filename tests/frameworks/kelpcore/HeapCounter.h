// HeapCounter: how often the general heap was asked, by anybody in the process.
#ifndef TESTS_FRAMEWORKS_KELPCORE_HEAPCOUNTER_H
#define TESTS_FRAMEWORKS_KELPCORE_HEAPCOUNTER_H

/// Calls of operator new so far, of every form that the framework uses.
long HeapAllocations();
/// Calls of operator delete on a block so far.
long HeapReleases();

#endif
