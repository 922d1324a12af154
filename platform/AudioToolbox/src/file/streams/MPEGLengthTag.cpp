#include "file/streams/MPEGLengthTag.h"

#include "file/Endian.h"

#include <cstring>
#include <iterator>

namespace audiotoolbox::streams
{
namespace
{

constexpr std::size_t kHeaderBytes = 4;
constexpr std::size_t kCRCBytes = 2;
constexpr std::size_t kTableBytes = 100;  // positions for seeking
constexpr std::size_t kVBRIOffset = kHeaderBytes + 32;
constexpr std::size_t kDelaysBehindEncoder = 21;

// Encoders whose text is followed by the extension with the delays.
constexpr const char* kEncoders[] = {"LAME", "Lavc", "Lavf"};

// Walks over the fields of a frame; what does not fit any more is not there.
class FieldReader
{
public:
    FieldReader(std::span<const UInt8> inBytes, std::size_t inPosition)
        : mBytes(inBytes), mPosition(inPosition)
    {
    }

    std::optional<UInt32> ReadNumber()
    {
        if (mPosition + 4 > mBytes.size())
            return std::nullopt;
        const UInt32 number = ReadBE32(mBytes.data() + mPosition);
        mPosition += 4;
        return number;
    }

    void Skip(std::size_t inBytes) { mPosition += inBytes; }

    std::span<const UInt8> Rest() const
    {
        return mPosition < mBytes.size() ? mBytes.subspan(mPosition) : std::span<const UInt8>{};
    }

private:
    std::span<const UInt8> mBytes;
    std::size_t mPosition;
};

bool HasText(std::span<const UInt8> inBytes, std::size_t inOffset, const char* inText)
{
    return inOffset + 4 <= inBytes.size() && std::memcmp(inBytes.data() + inOffset, inText, 4) == 0;
}

std::size_t SideInfoBytes(const MPEGHeader& inHeader)
{
    if (inHeader.mHalvings == 0)
        return inHeader.mChannels == 1 ? 17 : 32;
    return inHeader.mChannels == 1 ? 9 : 17;
}

void ReadDelays(std::span<const UInt8> inEncoder, MPEGLengthTag& ioTag)
{
    if (inEncoder.size() < kDelaysBehindEncoder + 3)
        return;
    for (const char* const encoder : kEncoders)
        ioTag.mHasDelays = ioTag.mHasDelays || HasText(inEncoder, 0, encoder);
    const UInt8* const delays = inEncoder.data() + kDelaysBehindEncoder;
    ioTag.mDelay = (UInt32{delays[0]} << 4) | (delays[1] >> 4);
    ioTag.mPadding = (UInt32{delays[1] & 0x0Fu} << 8) | delays[2];
}

MPEGLengthTag ReadXing(std::span<const UInt8> inFrame, std::size_t inOffset)
{
    MPEGLengthTag tag;
    tag.mIsConstantRate = HasText(inFrame, inOffset, "Info");
    FieldReader fields(inFrame, inOffset + 4);
    const UInt32 flags = fields.ReadNumber().value_or(0);
    if ((flags & 1) != 0)
        tag.mPackets = fields.ReadNumber();
    if ((flags & 2) != 0)
        tag.mBytes = fields.ReadNumber();
    if ((flags & 4) != 0)
        fields.Skip(kTableBytes);
    if ((flags & 8) != 0)
        fields.Skip(4);  // quality
    ReadDelays(fields.Rest(), tag);
    return tag;
}

MPEGLengthTag ReadVBRI(std::span<const UInt8> inFrame)
{
    MPEGLengthTag tag;
    FieldReader fields(inFrame, kVBRIOffset + 10);  // version, delay and quality
    tag.mBytes = fields.ReadNumber();
    tag.mPackets = fields.ReadNumber();
    return tag;
}

}  // namespace

std::optional<MPEGLengthTag> ReadLengthTag(const MPEGHeader& inHeader,
                                           std::span<const UInt8> inFrame)
{
    if (inHeader.mLayer != 3)
        return std::nullopt;
    // Encoders disagree on whether a checksum moves the tag.
    const std::size_t plain = kHeaderBytes + SideInfoBytes(inHeader);
    for (const std::size_t offset : {plain, plain + (inHeader.mHasCRC ? kCRCBytes : 0)})
        if (HasText(inFrame, offset, "Xing") || HasText(inFrame, offset, "Info"))
            return ReadXing(inFrame, offset);
    if (HasText(inFrame, kVBRIOffset, "VBRI"))
        return ReadVBRI(inFrame);
    return std::nullopt;
}

}  // namespace audiotoolbox::streams
