// CAReferenceCounted: a base class for objects that several holders share.
#ifndef CAREFERENCECOUNTED_H
#define CAREFERENCECOUNTED_H

#include <CoreFoundation/CoreFoundation.h>
#include <libkern/OSAtomic.h>

/// Starts with one reference, which belongs to whoever made the object.
///
/// retain and release may be called on any thread. The count orders nothing beyond itself.
class CAReferenceCounted
{
public:
    CAReferenceCounted() = default;
    CAReferenceCounted(const CAReferenceCounted&) = delete;
    CAReferenceCounted& operator=(const CAReferenceCounted&) = delete;

    void retain() { OSAtomicIncrement32(&mRefCount); }

    /// The last release ends the object.
    void release()
    {
        if (OSAtomicDecrement32(&mRefCount) == 0)
            releaseObject();
    }

protected:
    virtual ~CAReferenceCounted() = default;

    /// What the last release does; destroys the object unless a subclass has another use for it.
    virtual void releaseObject() { delete this; }

private:
    SInt32 mRefCount = 1;
};

#endif
