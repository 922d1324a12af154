// CFObject: what every object of this library starts with, and how one is made.
#ifndef COREFOUNDATION_CFOBJECT_H
#define COREFOUNDATION_CFOBJECT_H

#include <CoreFoundation/CoreFoundation.h>

#include <atomic>
#include <new>
#include <utility>

namespace cf
{

/// One number per type, as CFGetTypeID tells it.
enum TypeID : CFTypeID
{
    kStringType = 1,
    kArrayType,
    kDataType,
    kURLType,
    kBundleType
};

/// The first and only base of every object, so that a CFTypeRef is an Object*.
class Object
{
public:
    explicit Object(TypeID inType) : mType(inType) {}
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    void Retain() { mCount.fetch_add(1, std::memory_order_relaxed); }
    void Release()
    {
        if (mCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }
    CFIndex Count() const { return mCount.load(std::memory_order_relaxed); }
    TypeID Type() const { return mType; }

private:
    std::atomic<CFIndex> mCount{1};
    TypeID mType;
};

/// A new object, null when out of memory: callers in C cannot catch anything.
template <typename Derived, typename... Arguments>
Derived* Create(Arguments&&... inArguments)
{
    try
    {
        return new Derived(std::forward<Arguments>(inArguments)...);
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

}  // namespace cf

#endif
