// HeaderBytes: puts the bytes of a container's headers together, number by number.
#ifndef AUDIOTOOLBOX_FILE_WRITE_CHUNKED_HEADERBYTES_H
#define AUDIOTOOLBOX_FILE_WRITE_CHUNKED_HEADERBYTES_H

#include <CoreAudio/CoreAudioTypes.h>

#include <bit>
#include <span>
#include <string_view>
#include <vector>

namespace audiotoolbox
{

class HeaderBytes
{
public:
    HeaderBytes& Text(std::string_view inText)
    {
        mBytes.insert(mBytes.end(), inText.begin(), inText.end());
        return *this;
    }
    HeaderBytes& Raw(std::span<const UInt8> inBytes)
    {
        mBytes.insert(mBytes.end(), inBytes.begin(), inBytes.end());
        return *this;
    }
    HeaderBytes& Zeros(std::size_t inCount)
    {
        mBytes.insert(mBytes.end(), inCount, 0);
        return *this;
    }
    HeaderBytes& Big(UInt64 inNumber, int inByteCount)
    {
        for (int i = inByteCount - 1; i >= 0; --i)
            mBytes.push_back(static_cast<UInt8>(inNumber >> (8 * i)));
        return *this;
    }
    HeaderBytes& Little(UInt64 inNumber, int inByteCount)
    {
        for (int i = 0; i < inByteCount; ++i)
            mBytes.push_back(static_cast<UInt8>(inNumber >> (8 * i)));
        return *this;
    }
    HeaderBytes& BigDouble(double inNumber) { return Big(std::bit_cast<UInt64>(inNumber), 8); }

    std::size_t Size() const { return mBytes.size(); }
    const std::vector<UInt8>& Get() const { return mBytes; }

private:
    std::vector<UInt8> mBytes;
};

}  // namespace audiotoolbox

#endif
