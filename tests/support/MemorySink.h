// MemorySink: a file that is written, in memory, which may run out of room at any byte.
#ifndef TESTS_SUPPORT_MEMORYSINK_H
#define TESTS_SUPPORT_MEMORYSINK_H

#include "platform/AudioToolbox/src/file/write/ByteSink.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace testing_support
{

class MemorySink : public audiotoolbox::ByteSink
{
public:
    /// Answers -34 for every byte beyond inRoom.
    explicit MemorySink(SInt64 inRoom = std::numeric_limits<SInt64>::max()) : mRoom(inRoom) {}

    OSStatus Append(std::span<const UInt8> inBytes) override
    {
        const SInt64 room = std::max<SInt64>(0, mRoom - Size());
        const auto count = std::min<SInt64>(static_cast<SInt64>(inBytes.size()), room);
        mBytes.insert(mBytes.end(), inBytes.begin(), inBytes.begin() + count);
        return count == static_cast<SInt64>(inBytes.size()) ? OSStatus{noErr}
                                                            : kAudio_DiskFullError;
    }

    OSStatus Patch(SInt64 inPosition, std::span<const UInt8> inBytes) override
    {
        if (inPosition < 0 || inPosition + static_cast<SInt64>(inBytes.size()) > Size())
            return kAudioFilePositionError;
        std::copy(inBytes.begin(), inBytes.end(), mBytes.begin() + inPosition);
        return mPatchStatus;
    }

    SInt64 Size() const override { return static_cast<SInt64>(mBytes.size()); }

    OSStatus Truncate(SInt64 inSize) override
    {
        if (inSize < 0 || inSize > Size())
            return kAudioFilePositionError;
        mBytes.resize(static_cast<std::size_t>(inSize));
        return noErr;
    }

    OSStatus Close() override { return noErr; }

    const std::vector<UInt8>& Bytes() const { return mBytes; }

    OSStatus mPatchStatus = noErr;  // of every Patch

private:
    SInt64 mRoom;
    std::vector<UInt8> mBytes;
};

}  // namespace testing_support

#endif
