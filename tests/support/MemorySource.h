// MemorySource: bytes in memory as a source for parsers, and as client data for the callback form.
#ifndef TESTS_SUPPORT_MEMORYSOURCE_H
#define TESTS_SUPPORT_MEMORYSOURCE_H

#include "platform/AudioToolbox/src/file/ByteSource.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace testing_support
{

class MemorySource : public audiotoolbox::ByteSource
{
public:
    explicit MemorySource(std::vector<UInt8> inBytes) : mBytes(std::move(inBytes)) {}

    OSStatus ReadAt(SInt64 inPosition, UInt32 inCount, void* outBytes, UInt32* outCount) override
    {
        *outCount = 0;
        if (inPosition < 0)
            return kAudioFilePositionError;
        if (inPosition >= Size())
            return noErr;
        *outCount = static_cast<UInt32>(std::min<SInt64>(inCount, Size() - inPosition));
        if (*outCount > 0)
            std::memcpy(outBytes, mBytes.data() + inPosition, *outCount);
        return noErr;
    }

    SInt64 Size() const override { return static_cast<SInt64>(mBytes.size()); }

private:
    std::vector<UInt8> mBytes;
};

}  // namespace testing_support

#endif
