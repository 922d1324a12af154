// ByteBuilder: puts the bytes of a file together, number by number.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_FILE_BYTEBUILDER_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_FILE_BYTEBUILDER_H

#include <CoreAudio/CoreAudioTypes.h>

#include <bit>
#include <string_view>
#include <vector>

namespace testing_support
{

using Bytes = std::vector<UInt8>;

class ByteBuilder
{
public:
    ByteBuilder& Text(std::string_view inText)
    {
        mBytes.insert(mBytes.end(), inText.begin(), inText.end());
        return *this;
    }
    ByteBuilder& Raw(const Bytes& inBytes)
    {
        mBytes.insert(mBytes.end(), inBytes.begin(), inBytes.end());
        return *this;
    }
    ByteBuilder& Byte(UInt32 inByte)
    {
        mBytes.push_back(static_cast<UInt8>(inByte));
        return *this;
    }
    ByteBuilder& Little(UInt64 inNumber, int inByteCount)
    {
        for (int i = 0; i < inByteCount; ++i)
            Byte(static_cast<UInt8>(inNumber >> (8 * i)));
        return *this;
    }
    ByteBuilder& Big(UInt64 inNumber, int inByteCount)
    {
        for (int i = inByteCount - 1; i >= 0; --i)
            Byte(static_cast<UInt8>(inNumber >> (8 * i)));
        return *this;
    }
    ByteBuilder& BigDouble(double inNumber) { return Big(std::bit_cast<UInt64>(inNumber), 8); }

    const Bytes& Get() const { return mBytes; }

private:
    Bytes mBytes;
};

/// 0, 1, 2, ... 255, 0, ...
inline Bytes CountingBytes(std::size_t inCount)
{
    Bytes bytes(inCount);
    for (std::size_t i = 0; i < inCount; ++i)
        bytes[i] = static_cast<UInt8>(i);
    return bytes;
}

}  // namespace testing_support

#endif
