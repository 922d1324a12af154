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

    bool HasRightChecksum(std::span<const UInt8> inFrame)
    {
        mChecksum = AddToFrameChecksum(mChecksum, inFrame.subspan(mChecked));
        mChecked = inFrame.size();
        return mChecksum == 0;
    }

private:
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

// 0 when the data ends within the frame.
UInt32 FLACFramer::FrameSize(StreamWindow& ioWindow, SInt64 inPosition,
                             const FLACHeader& inHeader) const
{
    EndJudge judge(inHeader);
    FLACHeader next;
    std::size_t scanned = inHeader.mHeaderBytes;
    while (scanned <= mLargestFrame)
    {
        const auto bytes = ioWindow.Look(inPosition, scanned + kLookAhead + 1);
        if (bytes.size() <= scanned && ioWindow.Status() != noErr)
            return 0;
        const bool isAll = inPosition + static_cast<SInt64>(bytes.size()) >= ioWindow.End();
        const std::size_t limit = isAll ? bytes.size() : bytes.size() - kLookAhead;
        for (std::size_t at = FindFLACSync(bytes, scanned); at < limit && at <= mLargestFrame;
             at = FindFLACSync(bytes, at + 1))
            if (ReadHeader(bytes.subspan(at), next) && judge.IsEnd(next, bytes.first(at)))
                return static_cast<UInt32>(at);
        if (isAll && bytes.size() <= mLargestFrame)
            return judge.HasRightChecksum(bytes) ? static_cast<UInt32>(bytes.size()) : 0;
        scanned = limit;
    }
    return mLargestFrame;  // whatever follows, the frame itself is within
}

// One pass over the headers, each judged together with the one behind it.
bool FLACFramer::FindAfterLoss(StreamWindow& ioWindow, SInt64 inPosition,
                               StreamPacket& outPacket) const
{
    FLACHeader candidate;
    bool hasCandidate = false;
    SInt64 base = inPosition;  // of the candidate once there is one
    std::size_t scanned = 0;
    for (;;)
    {
        if (scanned > mLargestFrame)
        {
            base += static_cast<SInt64>(scanned);
            scanned = 0;
            hasCandidate = false;
        }
        const auto bytes = ioWindow.Look(base, scanned + kLookAhead + 1);
        const bool isAll = base + static_cast<SInt64>(bytes.size()) >= ioWindow.End();
        const std::size_t at = FindFLACSync(bytes, scanned);
        if (isAll && at >= bytes.size())
        {
            if (!hasCandidate || bytes.size() > mLargestFrame || !IsChecksumRight(bytes))
                return false;
            outPacket = {base, static_cast<UInt32>(bytes.size()), candidate.mBlock, 0};
            return true;
        }
        if (bytes.size() <= scanned + kLookAhead && !isAll)
            return false;  // a read failed
        if (!isAll && at + kLookAhead > bytes.size())
        {
            scanned = std::min(at, bytes.size() - kLookAhead);
            continue;
        }
        FLACHeader header;
        scanned = at + 1;
        if (!ReadHeader(bytes.subspan(at), header))
            continue;
        const auto frame = bytes.first(at);
        if (hasCandidate && at <= mLargestFrame &&
            (header.mNumber == candidate.NextNumber() || IsChecksumRight(frame)))
        {
            outPacket = {base, static_cast<UInt32>(at), candidate.mBlock, 0};
            return true;
        }
        candidate = header;
        hasCandidate = true;
        base += static_cast<SInt64>(at);
        scanned = header.mHeaderBytes;
    }
}

bool FLACFramer::FindPacket(StreamWindow& ioWindow, SInt64 inPosition, StreamPacket& outPacket)
{
    FLACHeader header;
    if (ReadHeader(ioWindow.Look(inPosition, FLACHeader::kLongest), header))
    {
        if (const UInt32 size = FrameSize(ioWindow, inPosition, header); size > 0)
        {
            outPacket = {inPosition, size, header.mBlock, 0};
            return true;
        }
        if (ioWindow.Status() != noErr)
            return false;
        return FindAfterLoss(ioWindow, inPosition + header.mHeaderBytes, outPacket);
    }
    return FindAfterLoss(ioWindow, inPosition, outPacket);
}

}  // namespace audiotoolbox::streams
