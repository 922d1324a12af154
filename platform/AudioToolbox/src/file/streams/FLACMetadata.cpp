#include "file/streams/FLACMetadata.h"

#include "file/Endian.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>
#include <strings.h>

namespace audiotoolbox::streams
{
namespace
{

constexpr std::size_t kBlockHeaderBytes = 4;
constexpr int kMaxBlocks = 1024;                  // more are no accident
constexpr std::size_t kSearchedComments = 65536;  // bytes; pictures may come behind

constexpr UInt32 kStreamInfoBlock = 0;
constexpr UInt32 kCommentBlock = 4;

constexpr std::string_view kMaskKey = "WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x";

// Takes a text with its 32-bit length in front off the bytes. Empty, and nothing left, when it does
// not fit.
std::string_view TakeText(std::span<const UInt8>& ioBytes)
{
    const std::size_t length = ioBytes.size() >= 4 ? ReadLE32(ioBytes.data()) : 0;
    if (ioBytes.size() < 4 || length > ioBytes.size() - 4)
    {
        ioBytes = {};
        return {};
    }
    const std::string_view text(reinterpret_cast<const char*>(ioBytes.data()) + 4, length);
    ioBytes = ioBytes.subspan(4 + length);
    return text;
}

UInt32 MaskOfComment(std::string_view inComment)
{
    if (inComment.size() <= kMaskKey.size() ||
        strncasecmp(inComment.data(), kMaskKey.data(), kMaskKey.size()) != 0)
        return 0;
    UInt32 mask = 0;
    const char* const end = inComment.data() + inComment.size();
    const auto result = std::from_chars(inComment.data() + kMaskKey.size(), end, mask, 16);
    return result.ec == std::errc() && result.ptr == end ? mask : 0;
}

UInt32 MaskOfComments(std::span<const UInt8> inBlock)
{
    (void)TakeText(inBlock);  // the encoder's name
    if (inBlock.size() < 4)
        return 0;
    inBlock = inBlock.subspan(4);  // the count, which the texts' lengths make needless
    while (!inBlock.empty())
        if (const UInt32 mask = MaskOfComment(TakeText(inBlock)); mask != 0)
            return mask;
    return 0;
}

// False when the block is damaged.
bool ReadBlock(StreamWindow& ioWindow, UInt32 inKind, SInt64 inPosition, UInt32 inSize,
               FLACMetadata& ioMetadata)
{
    if (inKind == kCommentBlock)
    {
        const std::size_t searched = std::min<std::size_t>(inSize, kSearchedComments);
        const auto bytes = ioWindow.Look(inPosition, searched);
        ioMetadata.mChannelMask = MaskOfComments(bytes.first(std::min(bytes.size(), searched)));
        return true;
    }
    if (inKind != kStreamInfoBlock)
        return true;
    const auto bytes = ioWindow.Look(inPosition, FLACStreamInfo::kBytes);
    if (inSize != FLACStreamInfo::kBytes || bytes.size() < FLACStreamInfo::kBytes)
        return false;
    std::copy_n(bytes.begin(), FLACStreamInfo::kBytes, ioMetadata.mStreamInfoBytes.begin());
    return ParseStreamInfo(ioMetadata.mStreamInfoBytes, ioMetadata.mStreamInfo);
}

}  // namespace

OSStatus ReadFLACMetadata(StreamWindow& ioWindow, SInt64 inStart, FLACMetadata& outMetadata)
{
    const auto magic = ioWindow.Look(inStart, 4);
    if (magic.size() < 4 || std::memcmp(magic.data(), "fLaC", 4) != 0)
        return kAudioFileUnsupportedFileTypeError;
    SInt64 position = inStart + 4;
    for (int i = 0; i < kMaxBlocks; ++i)
    {
        const auto bytes = ioWindow.Look(position, kBlockHeaderBytes);
        if (bytes.size() < kBlockHeaderBytes)
            return kAudioFileInvalidFileError;
        const UInt32 header = ReadBE32(bytes.data());
        const bool isLast = (header >> 31) != 0;
        const UInt32 kind = header >> 24 & 0x7F;
        const UInt32 size = header & 0xFFFFFF;
        position += kBlockHeaderBytes;
        // The description of the stream comes first and only there.
        if ((kind == kStreamInfoBlock) != (i == 0) || position + size > ioWindow.End() ||
            !ReadBlock(ioWindow, kind, position, size, outMetadata))
            return kAudioFileInvalidFileError;
        position += size;
        outMetadata.mEnd = position;
        if (isLast)
            return noErr;
    }
    return kAudioFileInvalidFileError;
}

}  // namespace audiotoolbox::streams
