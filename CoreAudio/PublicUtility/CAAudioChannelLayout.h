// CAAudioChannelLayout: the platform's variable-length record of a channel layout.
//
// The static helpers work on the bare record. The class itself is a handle on a shared block, which
// never changes once it is made, so that copies cost one atomic increment.
// Sizes are bytes: 12 and 20 for each description.
#ifndef CAAUDIOCHANNELLAYOUT_H
#define CAAUDIOCHANNELLAYOUT_H

#include "CoreAudio/PublicUtility/CAReferenceCounted.h"

#include <CoreAudio/CoreAudioTypes.h>

#include <cstddef>
#include <cstdio>

/// Byte by byte: labels, flags, coordinates, tag and bitmap all count, whatever the tag says.
bool operator==(const AudioChannelLayout& inX, const AudioChannelLayout& inY);
bool operator!=(const AudioChannelLayout& inX, const AudioChannelLayout& inY);

/// Prints a layout for people; inLayout may be null.
extern "C" void CAShowAudioChannelLayout(FILE* inStream, const AudioChannelLayout* inLayout);

class CAAudioChannelLayout
{
public:
    /// A layout of inDescriptionCount unknown channels, which the caller gives to Destroy. Raises
    /// std::bad_alloc when out of memory, and for a count whose size does not fit 32 bits.
    static AudioChannelLayout* Create(UInt32 inDescriptionCount);
    static void Destroy(AudioChannelLayout* inLayout);

    /// Makes a block that is large enough a layout of that many unknown channels.
    static void SetAllToUnknown(AudioChannelLayout& outLayout, UInt32 inDescriptionCount);

    /// Channels by the bitmap, by the low half of the tag or by the descriptions, as the tag says.
    static UInt32 NumberChannels(const AudioChannelLayout& inLayout);

    /// The empty layout: all fields 0.
    CAAudioChannelLayout();
    /// The usual layout of a bare channel count; unknown channels for 0, 3 and more than 8.
    /// inChooseSurround prefers the surround layouts where a count has two.
    CAAudioChannelLayout(UInt32 inChannelCount, bool inChooseSurround);
    /// The tag and nothing else.
    explicit CAAudioChannelLayout(AudioChannelLayoutTag inTag);
    /// Shares the block.
    CAAudioChannelLayout(const CAAudioChannelLayout& inOther);
    /// As the assignment.
    explicit CAAudioChannelLayout(const AudioChannelLayout* inLayout);
    ~CAAudioChannelLayout();

    CAAudioChannelLayout& operator=(const CAAudioChannelLayout& inOther);
    /// A private copy of a record whose count of descriptions is trusted; the empty layout for
    /// null.
    CAAudioChannelLayout& operator=(const AudioChannelLayout* inLayout);
    /// Replaces this handle's layout; other handles keep theirs.
    void SetWithTag(AudioChannelLayoutTag inTag);

    bool operator==(const CAAudioChannelLayout& inOther) const;
    bool operator!=(const CAAudioChannelLayout& inOther) const;

    /// Valid until this handle changes and no other shares its block.
    const AudioChannelLayout& Layout() const { return mLayout->mACL; }
    UInt32 Size() const { return mLayout->mByteSize; }

    void Print(FILE* inStream) const;

private:
    /// Header and layout in one allocation of the C heap.
    class RefCountedLayout : public CAReferenceCounted
    {
    public:
        /// A zeroed layout with room for that many descriptions, none of them counted in it yet.
        static RefCountedLayout* CreateWithRoomFor(UInt32 inDescriptionCount);
        static RefCountedLayout* CreateUnknown(UInt32 inDescriptionCount);
        static RefCountedLayout* CreateWithTag(AudioChannelLayoutTag inTag);

        static void* operator new(std::size_t inHeaderSize, UInt32 inLayoutSize);
        static void operator delete(void* inBlock);
        static void operator delete(void* inBlock, UInt32 inLayoutSize);

        UInt32 mByteSize;
        AudioChannelLayout mACL;  // its descriptions reach beyond this object

    private:
        explicit RefCountedLayout(UInt32 inLayoutSize);
        ~RefCountedLayout() override = default;
    };

    /// Null once it is gone, so that a failing allocation leaves no second release behind.
    void ReleaseBlock();

    RefCountedLayout* mLayout;
};

#endif
