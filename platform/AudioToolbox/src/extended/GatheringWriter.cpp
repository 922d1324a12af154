#include "extended/GatheringWriter.h"

#include <cstring>
#include <utility>

namespace audiotoolbox
{
namespace
{

constexpr std::size_t kMostBytes = 64 * 1024;
constexpr std::size_t kMostPackets = 1024;
constexpr std::size_t kLargeBytes = 32 * 1024;  // worth no copy

}  // namespace

OSStatus GatheringWriter::Start(ByteSink& inSink, const StreamStart& inStart)
{
    mBytes.resize(kMostBytes);
    mPackets.resize(kMostPackets);
    return mContainer->Start(inSink, inStart);
}

OSStatus GatheringWriter::Write(std::span<const UInt8> inBytes,
                                std::span<const AudioStreamPacketDescription> inPackets)
{
    const bool fits = inBytes.size() <= kMostBytes - mByteCount &&
                      inPackets.size() <= kMostPackets - mPacketCount;
    const bool isLarge = inBytes.size() >= kLargeBytes || inPackets.size() > kMostPackets;
    if (!fits || isLarge)
        if (const OSStatus status = HandOn(); status != noErr)
            return status;
    if (isLarge)
        return mContainer->Write(inBytes, inPackets);
    Hold(inBytes, inPackets);
    return noErr;
}

void GatheringWriter::Hold(std::span<const UInt8> inBytes,
                           std::span<const AudioStreamPacketDescription> inPackets)
{
    for (AudioStreamPacketDescription packet : inPackets)
    {
        packet.mStartOffset += static_cast<SInt64>(mByteCount);
        mPackets[mPacketCount++] = packet;
    }
    if (!inBytes.empty())
        std::memcpy(mBytes.data() + mByteCount, inBytes.data(), inBytes.size());
    mByteCount += inBytes.size();
}

OSStatus GatheringWriter::HandOn()
{
    const std::size_t bytes = std::exchange(mByteCount, 0);
    const std::size_t packets = std::exchange(mPacketCount, 0);
    if (bytes == 0 && packets == 0)
        return noErr;
    return mContainer->Write(
        std::span<const UInt8>(mBytes).first(bytes),
        std::span<const AudioStreamPacketDescription>(mPackets).first(packets));
}

OSStatus GatheringWriter::Finish(const StreamEnd& inEnd)
{
    const OSStatus written = HandOn();
    const OSStatus finished = mContainer->Finish(inEnd);
    return written != noErr ? written : finished;
}

}  // namespace audiotoolbox
