// FaultySystem: a system whose files fail when a test says so.
//
// The library defines the system's calls on files anew and comes before the C library: linked by a
// test program, or preloaded into a program whose environment holds a plan. Calls that change a
// regular file below one folder are counted: write, pwrite, ftruncate, fsync and rename, and the
// close of what has been written to. All other calls pass. One plan holds at a time, and it is not
// changed while other threads write.
#ifndef TESTS_ROADS_FAULTS_FAULTYSYSTEM_H
#define TESTS_ROADS_FAULTS_FAULTYSYSTEM_H

#include <cstddef>

namespace faulty_system
{

enum class Call
{
    kNone,
    kWrite,  // at a position or without one
    kTruncate,
    kSync,
    kRename,
    kClose
};

struct Plan
{
    const char* mFolder = "";  // without links, held by the caller
    int mAt = 0;               // the counted call that fails, from 1; 0: none
    int mError = 0;            // what it fails with; 0: mAction is all that happens
    bool mLasts = false;       // all later calls fail too
    Call mOnly = Call::kNone;  // counts these calls alone; kNone: all

    std::size_t mMostBytes = 0;  // a write takes no more at once; 0: all
    bool mInterrupts = false;    // calls that are done again then are interrupted once each
    std::size_t mHoleBytes = 0;  // larger writes leave a hole and no bytes; 0: none do
    bool mDamages = false;       // the write at mAt stores one wrong byte and tells nobody

    /// Called in front of the call at mAt, with its descriptor (-1 for a rename).
    void (*mAction)(int inDescriptor, void* inData) = nullptr;
    void* mData = nullptr;
};

struct Report
{
    int mCount = 0;           // calls so far
    Call mHit = Call::kNone;  // at mAt; none: it has not come
};

/// Counts from the start. A plan of no folder stops all of it.
void Follow(const Plan& inPlan);

Report Told();

/// The name of the variable with a plan: mAt, mError, mLasts, mOnly, mMostBytes, mInterrupts and
/// mDamages as decimal numbers, then mFolder, with a blank between each.
constexpr const char* kVariable = "TARVO_TEST_FAULTY_SYSTEM";

}  // namespace faulty_system

#endif
