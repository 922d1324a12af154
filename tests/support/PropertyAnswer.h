// PropertyAnswer: what a scripted platform says to the questions about one property.
#ifndef TESTS_SUPPORT_PROPERTYANSWER_H
#define TESTS_SUPPORT_PROPERTYANSWER_H

#include <AudioToolbox/AudioToolbox.h>

#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace testing_support
{

using Bytes = std::vector<UInt8>;

/// The bytes of a record, or of several records of one type behind one another.
template <typename Record>
Bytes BytesOf(const std::vector<Record>& inRecords)
{
    Bytes bytes(inRecords.size() * sizeof(Record));
    if (!bytes.empty())
        std::memcpy(bytes.data(), inRecords.data(), bytes.size());
    return bytes;
}

/// Answers to the query of the size, to reading and to setting. A default answer succeeds and has
/// no bytes.
struct PropertyAnswer
{
    Bytes mBytes;                  // the value; reading copies as much as there is room for
    std::function<Bytes()> mMake;  // makes the value for each reading, in place of mBytes

    OSStatus mInfoStatus = noErr;
    std::optional<UInt32> mSize;    // the size that the query tells; unset: that of mBytes
    std::optional<bool> mWritable;  // unset: not writable
    // A failing query writes to its out arguments only what is set here.

    OSStatus mGetStatus = noErr;
    std::optional<UInt32> mDelivered;  // the size that reading tells; unset: the bytes copied
    // A failing reading copies nothing, and tells a size only if one is set here.

    OSStatus mSetStatus = noErr;

    /// One fixed-size value.
    template <typename Record>
    static PropertyAnswer Value(const Record& inRecord)
    {
        return List<Record>({inRecord});
    }

    template <typename Record>
    static PropertyAnswer List(const std::vector<Record>& inRecords)
    {
        PropertyAnswer answer;
        answer.mBytes = BytesOf(inRecords);
        return answer;
    }

    static PropertyAnswer Raw(const Bytes& inBytes) { return List(inBytes); }

    /// A string object, a new one for each reading, which belongs to whoever read it.
    static PropertyAnswer Name(const std::string& inText);
    /// An array of string objects, new for each reading, which neither retains nor releases them.
    static PropertyAnswer Names(const std::vector<std::string>& inTexts);

    /// Query, reading and setting fail alike.
    static PropertyAnswer Missing(OSStatus inStatus)
    {
        return PropertyAnswer().InfoFails(inStatus).GetFails(inStatus).SetFails(inStatus);
    }

    // Changes that can be strung together, for an answer that is odd in one way.
    PropertyAnswer InfoFails(OSStatus inStatus) const
    {
        return With([=](PropertyAnswer& answer) { answer.mInfoStatus = inStatus; });
    }
    PropertyAnswer GetFails(OSStatus inStatus) const
    {
        return With([=](PropertyAnswer& answer) { answer.mGetStatus = inStatus; });
    }
    PropertyAnswer SetFails(OSStatus inStatus) const
    {
        return With([=](PropertyAnswer& answer) { answer.mSetStatus = inStatus; });
    }
    PropertyAnswer Size(UInt32 inBytes) const
    {
        return With([=](PropertyAnswer& answer) { answer.mSize = inBytes; });
    }
    PropertyAnswer Delivers(UInt32 inBytes) const
    {
        return With([=](PropertyAnswer& answer) { answer.mDelivered = inBytes; });
    }
    PropertyAnswer Writable(bool inWritable = true) const
    {
        return With([=](PropertyAnswer& answer) { answer.mWritable = inWritable; });
    }

private:
    template <typename Change>
    PropertyAnswer With(Change inChange) const
    {
        PropertyAnswer changed = *this;
        inChange(changed);
        return changed;
    }
};

}  // namespace testing_support

#endif
