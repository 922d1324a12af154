// FrameSearch: finding frames that begin with a sync word and state their own size.
//
// A syntax is a struct that tells one family of headers:
//   Header            with mByteCount, mFrameCount and mBitRate as in StreamPacket
//   kHeaderBytes      that Parse reads
//   kSyncByte         the first byte of every header
//   bool Parse(const UInt8*, Header&)             false for bytes that are no header
//   bool AreAlike(const Header&, const Header&)   both may belong to one stream
#ifndef AUDIOTOOLBOX_FILE_STREAMS_FRAMESEARCH_H
#define AUDIOTOOLBOX_FILE_STREAMS_FRAMESEARCH_H

#include "file/streams/Framer.h"
#include "file/streams/Survey.h"

#include <cstring>

namespace audiotoolbox::streams
{

/// True when a header lies at the position and its frame ends within the data.
template <typename Syntax>
bool ReadFrame(StreamWindow& ioWindow, SInt64 inPosition, typename Syntax::Header& outHeader)
{
    const auto bytes = ioWindow.Look(inPosition, Syntax::kHeaderBytes);
    return bytes.size() >= Syntax::kHeaderBytes && Syntax::Parse(bytes.data(), outHeader) &&
           inPosition + outHeader.mByteCount <= ioWindow.End();
}

/// True when the frame ends where a header like its own begins, or where the data ends: what looks
/// like one header may be chance, two at the right distance are none.
template <typename Syntax>
bool IsConfirmed(StreamWindow& ioWindow, SInt64 inPosition, const typename Syntax::Header& inHeader)
{
    // One look at the whole frame: a look behind it alone could move the window on past its start.
    const std::size_t size = inHeader.mByteCount;
    const auto bytes = ioWindow.Look(inPosition, size + Syntax::kHeaderBytes);
    if (bytes.size() == size)
        return true;
    typename Syntax::Header next;
    return bytes.size() >= size + Syntax::kHeaderBytes &&
           Syntax::Parse(bytes.data() + size, next) && Syntax::AreAlike(inHeader, next);
}

/// Bytes of an ID3v2 tag in the middle of a stream, as joined files have one; 0 for none. Its
/// pictures can look like frames.
inline SInt64 SizeOfTagWithin(StreamWindow& ioWindow, SInt64 inPosition)
{
    const auto bytes = ioWindow.Look(inPosition, 10);
    if (bytes.size() < 10 || std::memcmp(bytes.data(), "ID3", 3) != 0 || bytes[3] == 0xFF)
        return 0;
    if (((bytes[6] | bytes[7] | bytes[8] | bytes[9]) & 0x80) != 0)
        return 0;
    const SInt64 size = 10 + ((bytes[6] << 21) | (bytes[7] << 14) | (bytes[8] << 7) | bytes[9]);
    return inPosition + size <= ioWindow.End() ? size : 0;
}

/// Moves ioPosition on to the first confirmed frame that begins before inLimit.
/// inLike  null, or a header that it has to be like
template <typename Syntax>
bool FindConfirmed(StreamWindow& ioWindow, SInt64 inLimit, const typename Syntax::Header* inLike,
                   SInt64& ioPosition, typename Syntax::Header& outHeader)
{
    while (ioPosition < inLimit)
    {
        const auto bytes = ioWindow.Look(ioPosition, Syntax::kHeaderBytes);
        if (bytes.size() < Syntax::kHeaderBytes)
            return false;
        const std::size_t starts = bytes.size() - Syntax::kHeaderBytes + 1;
        const void* const sync = std::memchr(bytes.data(), Syntax::kSyncByte, starts);
        if (sync == nullptr)
        {
            ioPosition += static_cast<SInt64>(starts);
            continue;
        }
        ioPosition += static_cast<const UInt8*>(sync) - bytes.data();
        if (ioPosition < inLimit && ReadFrame<Syntax>(ioWindow, ioPosition, outHeader) &&
            (inLike == nullptr || Syntax::AreAlike(*inLike, outHeader)) &&
            IsConfirmed<Syntax>(ioWindow, ioPosition, outHeader))
            return true;
        ++ioPosition;
    }
    return false;
}

/// The next frame after a loss.
template <typename Syntax>
bool Resynchronise(StreamWindow& ioWindow, const typename Syntax::Header& inLike,
                   SInt64& ioPosition, typename Syntax::Header& outHeader)
{
    ioPosition += SizeOfTagWithin(ioWindow, ioPosition);
    return FindConfirmed<Syntax>(ioWindow, ioWindow.End(), &inLike, ioPosition, outHeader);
}

/// The first frame of a stream, which may begin in the middle of one: two frames behind one another
/// within kSearchBytes, or a single one with less than a header behind it.
template <typename Syntax>
bool FindFirst(StreamWindow& ioWindow, SInt64& ioPosition, typename Syntax::Header& outHeader)
{
    if (ReadFrame<Syntax>(ioWindow, ioPosition, outHeader) &&
        ioWindow.End() - ioPosition - outHeader.mByteCount <
            static_cast<SInt64>(Syntax::kHeaderBytes))
        return true;
    return FindConfirmed<Syntax>(ioWindow, ioPosition + kSearchBytes, nullptr, ioPosition,
                                 outHeader);
}

template <typename Header>
StreamPacket PacketOf(SInt64 inPosition, const Header& inHeader)
{
    return {inPosition, inHeader.mByteCount, inHeader.mFrameCount, inHeader.mBitRate};
}

}  // namespace audiotoolbox::streams

#endif
