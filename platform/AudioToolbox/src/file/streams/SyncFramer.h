// SyncFramer: packets that are single frames with a sync word.
#ifndef AUDIOTOOLBOX_FILE_STREAMS_SYNCFRAMER_H
#define AUDIOTOOLBOX_FILE_STREAMS_SYNCFRAMER_H

#include "file/streams/LossFinder.h"

namespace audiotoolbox::streams
{

/// Beside what FrameSearch asks, the syntax tells by Follows(first, header) whether a frame that
/// lies right behind another is taken without a second one to confirm it.
template <typename Syntax>
class SyncFramer final : public Framer
{
public:
    using Header = typename Syntax::Header;

    explicit SyncFramer(const Header& inFirst) : mFirst(inFirst), mLosses(inFirst) {}

    bool FindPacket(StreamWindow& ioWindow, SInt64 inPosition, UInt64,
                    StreamPacket& outPacket) override
    {
        Header header;
        SInt64 position = inPosition;
        const bool follows =
            ReadFrame<Syntax>(ioWindow, position, header) && Syntax::Follows(mFirst, header);
        if (!follows && mLosses.FindDamaged(ioWindow, inPosition, outPacket))
            return true;
        if (!follows && !Resynchronise<Syntax>(ioWindow, mFirst, position, header))
            return false;
        if (!IsFollowed(ioWindow, position, header) ||
            mLosses.IsOddOneOut(ioWindow, position, header))
            header.mByteCount = mLosses.TrueSize(ioWindow, position, header);
        outPacket = PacketOf(position, header);
        return true;
    }

private:
    bool IsFollowed(StreamWindow& ioWindow, SInt64 inPosition, const Header& inHeader) const
    {
        const std::size_t size = inHeader.mByteCount;
        const auto bytes = ioWindow.Look(inPosition, size + Syntax::kHeaderBytes);
        Header next;
        return bytes.size() < size + Syntax::kHeaderBytes ||
               (Syntax::Parse(bytes.data() + size, next) && Syntax::Follows(mFirst, next));
    }

    Header mFirst;
    LossFinder<Syntax> mLosses;
};

}  // namespace audiotoolbox::streams

#endif
