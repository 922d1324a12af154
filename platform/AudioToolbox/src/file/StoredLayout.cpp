#include "file/StoredLayout.h"

#include "file/Endian.h"

#include <cstring>

namespace audiotoolbox
{
namespace
{

constexpr std::size_t kHeadBytes = 12;  // tag, bitmap, count of descriptions

}  // namespace

std::vector<UInt8> LayoutOfChunk(std::span<const UInt8> inBody)
{
    if (inBody.size() < kHeadBytes)
        return {};
    const std::size_t descriptions = ReadBE32(inBody.data() + 8);
    const std::size_t bytes = kHeadBytes + descriptions * sizeof(AudioChannelDescription);
    if (bytes > inBody.size())
        return {};
    // The record is made of 32-bit words only, the coordinates too.
    std::vector<UInt8> layout(bytes);
    for (std::size_t at = 0; at < bytes; at += sizeof(UInt32))
    {
        const UInt32 word = ReadBE32(inBody.data() + at);
        std::memcpy(layout.data() + at, &word, sizeof(word));
    }
    return layout;
}

}  // namespace audiotoolbox
