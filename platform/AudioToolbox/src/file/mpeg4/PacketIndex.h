// PacketIndex: where every packet of a track lies, in little memory.
//
// Memory: 2 bytes a packet (4 once a packet is larger than 65535 bytes, none for packets of
// constant size), and 16 bytes a run. A run is a stretch of neighbouring packets, however many
// chunks the file cuts it into, of at most 64 packets where sizes vary: so a file of audio alone
// costs 2.25 bytes a packet, and one whose every packet stands alone 18. An hour of AAC at 44.1 kHz
// (155000 packets) takes 0.35 to 2.8 MB.
#ifndef AUDIOTOOLBOX_FILE_MPEG4_PACKETINDEX_H
#define AUDIOTOOLBOX_FILE_MPEG4_PACKETINDEX_H

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <vector>

namespace audiotoolbox::mpeg4
{

class PacketIndex
{
public:
    /// inFileSize  bytes; a packet that does not end within ends the index
    explicit PacketIndex(SInt64 inFileSize) : mFileSize(inFileSize) {}

    /// All packets have this size, bytes, above 0. Before any packet is added.
    void SetConstantSize(UInt32 inBytes) { mConstantSize = inBytes; }

    /// Makes room ahead of time; the counts must be verified ones.
    void Reserve(std::size_t inPackets, std::size_t inRuns);

    /// Adds the size of the next packet, where sizes vary.
    void AppendSize(UInt32 inBytes);

    /// Places the next inPackets packets, whose sizes are known, one behind the other. False, with
    /// the whole ones placed, when one lies outside the file; the index is then complete.
    bool Place(SInt64 inOffset, UInt32 inPackets);

    /// Drops sizes of packets that have no place, and room that is not needed.
    void Finish();

    UInt32 ConstantSize() const { return mConstantSize; }
    UInt32 Count() const { return mPlaced; }
    UInt32 SizeOf(UInt32 inPacket) const;
    UInt32 LargestSize() const;
    SInt64 TotalBytes() const;

    /// A position in the index; moving to the next packet is cheap, seeking O(log runs).
    class Cursor
    {
    public:
        explicit Cursor(const PacketIndex& inIndex) : mIndex(inIndex) {}

        /// inPacket  at most the index's count
        void Seek(UInt32 inPacket);

        /// Moves over packets of the current stretch of neighbours.
        /// outOffset  where the stretch begins; for each packet inTake(size) answers whether it
        ///            still fits and is wanted.
        template <typename Take>
        void TakeStretch(SInt64& outOffset, Take inTake)
        {
            outOffset = mOffset;
            for (SInt64 end = mOffset; mPacket < mIndex.Count() && mOffset == end;)
            {
                const UInt32 size = mIndex.SizeOf(mPacket);
                if (!inTake(size))
                    return;
                end += size;
                Advance(size);
            }
        }

        UInt32 Packet() const { return mPacket; }
        SInt64 Offset() const { return mOffset; }

        /// Packets of constant size that stand here one behind the other.
        UInt32 PacketsInRun() const;
        /// Moves over packets of constant size, at most those in the run.
        void AdvanceConstant(UInt32 inPackets);

    private:
        void Advance(UInt32 inBytes);
        void EnterNextRun();

        const PacketIndex& mIndex;
        std::size_t mRun = 0;
        UInt32 mPacket = 0;
        SInt64 mOffset = 0;
    };

    /// Sizes and runs, bytes of memory held.
    std::size_t MemoryBytes() const;

private:
    struct Run
    {
        SInt64 mOffset;
        UInt32 mFirst;
    };

    bool AddPacketsToRuns(SInt64 inOffset, UInt32 inPackets);
    void AddRun(SInt64 inOffset);
    void WidenSizes();
    UInt32 RunEnd(std::size_t inRun) const;

    SInt64 mFileSize;
    UInt32 mConstantSize = 0;
    UInt32 mPlaced = 0;       // packets that have a place
    SInt64 mNextOffset = -1;  // behind the last one placed
    bool mIsWide = false;
    std::vector<UInt16> mSizes;
    std::vector<UInt32> mWideSizes;  // in place of mSizes
    std::vector<Run> mRuns;
};

}  // namespace audiotoolbox::mpeg4

#endif
