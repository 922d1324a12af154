// AutoCFRef: owns one reference to a platform object.
#ifndef KELPCORE_UTILITY_AUTOCFREF_H
#define KELPCORE_UTILITY_AUTOCFREF_H

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace kelpcore::utility
{

/// Takes over the reference that it is given and releases it at destruction. Copies retain.
template <typename Ref>
class AutoCFRef
{
public:
    AutoCFRef() = default;
    explicit AutoCFRef(Ref inRef) : mRef(inRef) {}
    AutoCFRef(const AutoCFRef& inOther) : mRef(inOther.mRef)
    {
        if (mRef)
            CFRetain(mRef);
    }
    AutoCFRef(AutoCFRef&& inOther) noexcept : mRef(std::exchange(inOther.mRef, nullptr)) {}
    AutoCFRef& operator=(AutoCFRef inOther) noexcept
    {
        std::swap(mRef, inOther.mRef);
        return *this;
    }
    ~AutoCFRef()
    {
        if (mRef)
            CFRelease(mRef);
    }

    /// Releases what is held, unless it is inRef itself, and takes over inRef's reference.
    void Reset(Ref inRef = nullptr)
    {
        if (mRef != inRef)
            *this = AutoCFRef(inRef);
    }

    /// For a call that stores a new reference; whatever is held is released first.
    Ref* Receive()
    {
        Reset();
        return &mRef;
    }

    Ref Get() const { return mRef; }
    explicit operator bool() const { return mRef != nullptr; }

private:
    Ref mRef = nullptr;
};

}  // namespace kelpcore::utility

#endif
