#include "file/streams/FLACFramer.h"

#include <algorithm>
#include <cstring>

namespace audiotoolbox::streams
{
namespace
{

constexpr std::size_t kLookAhead = FLACHeader::kLongest;

// Packets that may be missing between two whose numbers still belong together.
constexpr UInt64 kLargestGap = 64;

// Bytes of a packet whose header is destroyed, at least: no frame is smaller, and a decoder is
// silent about anything less.
constexpr UInt32 kSmallestFrame = 10;

// Headers without any place in the numbering that one frame's data may hold by chance.
constexpr int kMaxStrayHeaders = 8;

// Decides whether a header that was met is the one behind a frame.
class EndJudge
{
public:
    explicit EndJudge(const FLACHeader& inFrame)
        : mNext(inFrame.NextNumber()), mStep(inFrame.Step())
    {
    }

    /// inFrame  the frame's bytes up to the header; grows from call to call
    bool IsEnd(const FLACHeader& inHeader, std::span<const UInt8> inFrame)
    {
        // A later number means that packets between are lost.
        if (inHeader.mNumber >= mNext && (inHeader.mNumber - mNext) / mStep <= kLargestGap)
            return true;
        return HasRightChecksum(inFrame) || ++mStrays >= kMaxStrayHeaders;
    }

private:
    bool HasRightChecksum(std::span<const UInt8> inFrame)
    {
        mChecksum = AddToFrameChecksum(mChecksum, inFrame.subspan(mChecked));
        mChecked = inFrame.size();
        return mChecksum == 0;
    }

    UInt64 mNext;
    UInt64 mStep;
    UInt16 mChecksum = 0;
    std::size_t mChecked = 0;  // bytes
    int mStrays = 0;
};

bool IsChecksumRight(std::span<const UInt8> inFrame)
{
    return AddToFrameChecksum(0, inFrame) == 0;
}

// The size of a frame that ends at a header, if the two belong together; else 0.
std::size_t SizeBefore(const FLACHeader& inHeader, const FLACHeader& inNext,
                       std::span<const UInt8> inFrame)
{
    const bool continues = inNext.mNumber == inHeader.NextNumber();
    return continues || IsChecksumRight(inFrame) ? inFrame.size() : 0;
}

// True for nothing, and for bytes that a header may begin with.
bool IsBeginOfHeader(std::span<const UInt8> inBytes)
{
    return inBytes.empty() ||
           (inBytes[0] == 0xFF && (inBytes.size() < 2 || (inBytes[1] & 0xFE) == 0xF8));
}

// The size of a frame with nothing behind it but perhaps a header that the file's end cuts off.
// 0 when the frame itself is cut off or damaged.
std::size_t LastFrameSize(std::span<const UInt8> inBytes, std::size_t inLargest)
{
    std::size_t size =
        inBytes.size() > FLACHeader::kLongest ? inBytes.size() - FLACHeader::kLongest : 1;
    for (; size <= std::min(inBytes.size(), inLargest); ++size)
        if (IsBeginOfHeader(inBytes.subspan(size)) && IsChecksumRight(inBytes.first(size)))
            return size;
    return 0;
}

// The size of a frame behind which a header stands that is damaged in one of its bytes; else 0.
std::size_t SizeBeforeDamaged(std::span<const UInt8> inBytes, std::size_t inHeaderBytes)
{
    constexpr std::size_t kLikeness = 4;  // bytes, of which one may differ
    UInt16 checksum = AddToFrameChecksum(0, inBytes.first(std::min(inHeaderBytes, inBytes.size())));
    for (std::size_t size = inHeaderBytes; size + kLikeness <= inBytes.size(); ++size)
    {
        const auto differs = [&](std::size_t i) { return inBytes[size + i] != inBytes[i]; };
        if (checksum == 0 && differs(0) + differs(1) + differs(2) + differs(3) <= 1)
            return size;
        checksum = AddToFrameChecksum(checksum, inBytes.subspan(size, 1));
    }
    return 0;
}

}  // namespace

std::size_t FindFLACSync(std::span<const UInt8> inBytes, std::size_t inFrom)
{
    const UInt8* const end = inBytes.data() + inBytes.size();
    const UInt8* place = inBytes.data() + std::min(inFrom, inBytes.size());
    while (end - place >= 2)
    {
        const auto count = static_cast<std::size_t>(end - place - 1);
        place = static_cast<const UInt8*>(std::memchr(place, 0xFF, count));
        if (place == nullptr)
            break;
        if ((place[1] & 0xFE) == 0xF8)
            return static_cast<std::size_t>(place - inBytes.data());
        ++place;
    }
    return inBytes.size();
}

bool FLACFramer::ReadHeader(std::span<const UInt8> inBytes, FLACHeader& outHeader) const
{
    return ParseFLACHeader(inBytes, mInfo, outHeader) && AreAlike(mFirst, outHeader);
}

// Moves ioOffset, from inBase, on to the next header there or behind. inBase stays in the window.
// False with ioOffset at what was searched: up to the end of the data, or beyond the largest frame.
bool FLACFramer::NextHeader(StreamWindow& ioWindow, SInt64 inBase, std::size_t& ioOffset,
                            FLACHeader& outHeader) const
{
    while (ioOffset <= mLargestFrame)
    {
        const auto bytes = ioWindow.Look(inBase, ioOffset + kLookAhead + 1);
        if (ioWindow.Status() != noErr)
            return false;
        const bool isAll = inBase + static_cast<SInt64>(bytes.size()) >= ioWindow.End();
        const std::size_t limit = isAll ? bytes.size() : bytes.size() - kLookAhead;
        for (std::size_t at = FindFLACSync(bytes, ioOffset); at < limit && at <= mLargestFrame;
             at = FindFLACSync(bytes, at + 1))
            if (ReadHeader(bytes.subspan(at), outHeader))
            {
                ioOffset = at;
                return true;
            }
        ioOffset = limit;
        if (isAll)
            return false;
    }
    return false;
}

// Packets between the one of inNumber, exclusive, and a header; 0 where numbers do not tell.
UInt64 FLACFramer::MissingBefore(const FLACHeader& inHeader, UInt64 inNumber) const
{
    if (mFirst.mHasVariableBlocks || inHeader.mNumber <= inNumber)
        return 0;
    const UInt64 missing = inHeader.mNumber - inNumber - 1;
    return missing <= kLargestGap ? missing : 0;
}

// 0 when the data ends within the frame. The bytes of packets with destroyed headers stay with the
// frame before, but for what it takes to deliver those packets.
UInt32 FLACFramer::FrameSize(StreamWindow& ioWindow, SInt64 inPosition,
                             const FLACHeader& inHeader) const
{
    EndJudge judge(inHeader);
    FLACHeader next;
    for (std::size_t at = inHeader.mHeaderBytes; NextHeader(ioWindow, inPosition, at, next); ++at)
    {
        const auto frame = ioWindow.Look(inPosition, at).first(at);
        if (!judge.IsEnd(next, frame))
            continue;
        const std::size_t missing = MissingBefore(next, inHeader.mNumber) * kSmallestFrame;
        const bool isWithin = missing > 0 && missing + kSmallestFrame <= at;
        return static_cast<UInt32>(isWithin && !IsChecksumRight(frame) ? at - missing : at);
    }
    return ioWindow.Status() == noErr ? LastSize(ioWindow, inPosition, inHeader) : 0;
}

UInt32 FLACFramer::LastSize(StreamWindow& ioWindow, SInt64 inPosition,
                            const FLACHeader& inHeader) const
{
    const SInt64 left = ioWindow.End() - inPosition;
    if (left > static_cast<SInt64>(mLargestFrame + kLookAhead))
        return mLargestFrame;  // whatever follows, the frame itself is within
    const auto bytes = ioWindow.Look(inPosition, static_cast<std::size_t>(left));
    if (const std::size_t size = LastFrameSize(bytes, mLargestFrame); size > 0)
        return static_cast<UInt32>(size);
    return static_cast<UInt32>(SizeBeforeDamaged(bytes, inHeader.mHeaderBytes));
}

// One pass over the headers, each judged together with the one behind it.
bool FLACFramer::FindAfterLoss(StreamWindow& ioWindow, SInt64 inPosition, StreamPacket& outPacket,
                               FLACHeader& outHeader) const
{
    FLACHeader& candidate = outHeader;
    FLACHeader next;
    bool hasCandidate = false;
    SInt64 base = inPosition;  // of the candidate once there is one
    std::size_t at = 0;
    for (;;)
    {
        const bool hasNext = NextHeader(ioWindow, base, at, next);
        if (ioWindow.Status() != noErr)
            return false;
        const bool isAtEnd = !hasNext && base + static_cast<SInt64>(at) >= ioWindow.End();
        std::size_t size = 0;
        if (hasCandidate && (hasNext || isAtEnd))
            size = hasNext ? SizeBefore(candidate, next, ioWindow.Look(base, at).first(at))
                           : LastFrameSize(ioWindow.Look(base, at), mLargestFrame);
        outPacket = {base, static_cast<UInt32>(size), candidate.mBlock, 0};
        if (size > 0 || isAtEnd)
            return size > 0;
        base += static_cast<SInt64>(at);
        at = hasNext ? next.mHeaderBytes : 0;
        candidate = next;
        hasCandidate = hasNext;
    }
}

// In the place of packets that are missing before inNext, which ioPacket is: the first of them.
bool FLACFramer::FindDamaged(StreamWindow& ioWindow, SInt64 inPosition, UInt64 inPacket,
                             StreamPacket& ioPacket, const FLACHeader& inNext) const
{
    const UInt64 missing = MissingBefore(inNext, mFirst.mNumber + inPacket - 1);
    const UInt64 bytes = static_cast<UInt64>(ioPacket.mPosition - inPosition);
    if (missing == 0 || bytes / missing < kSmallestFrame || ioWindow.Status() != noErr)
        return false;
    const UInt32 size = static_cast<UInt32>(std::min<UInt64>(bytes / missing, mLargestFrame));
    ioPacket = {inPosition, size, mFirst.mBlock, 0};
    return true;
}

bool FLACFramer::FindPacket(StreamWindow& ioWindow, SInt64 inPosition, UInt64 inPacket,
                            StreamPacket& outPacket)
{
    FLACHeader header;
    SInt64 position = inPosition;
    if (ReadHeader(ioWindow.Look(inPosition, FLACHeader::kLongest), header))
    {
        if (const UInt32 size = FrameSize(ioWindow, inPosition, header); size > 0)
        {
            outPacket = {inPosition, size, header.mBlock, 0};
            return true;
        }
        if (ioWindow.Status() != noErr)
            return false;
        position += header.mHeaderBytes;
    }
    if (!FindAfterLoss(ioWindow, position, outPacket, header))
        return false;
    if (inPacket > 0)
        (void)FindDamaged(ioWindow, inPosition, inPacket, outPacket, header);
    return true;
}

}  // namespace audiotoolbox::streams
