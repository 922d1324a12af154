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

    bool FindPacket(StreamWindow& ioWindow, SInt64 inPosition, StreamPacket& outPacket) override
    {
        Header header;
        SInt64 position = inPosition;
        const bool follows =
            ReadFrame<Syntax>(ioWindow, position, header) && Syntax::Follows(mFirst, header);
        if (!follows && mLosses.FindDamaged(ioWindow, inPosition, outPacket))
            return true;
        if (!follows && !Resynchronise<Syntax>(ioWindow, mFirst, position, header))
            return false;
        outPacket = PacketOf(position, header);
        return true;
    }

private:
    Header mFirst;
    LossFinder<Syntax> mLosses;
};

}  // namespace audiotoolbox::streams

#endif
