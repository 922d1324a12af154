// CAAudioChannelLayout: helpers on the bare record, and the handle on a shared block.
#include "CoreAudio/PublicUtility/CAAudioChannelLayout.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>

namespace
{

constexpr std::size_t kHeaderSize = offsetof(AudioChannelLayout, mChannelDescriptions);

std::size_t LayoutSize(const AudioChannelLayout& inLayout)
{
    return kHeaderSize +
           std::size_t{inLayout.mNumberChannelDescriptions} * sizeof(AudioChannelDescription);
}

// The platform tells sizes in 32 bits, so a count beyond them has no layout.
UInt32 LayoutSize(UInt32 inDescriptionCount)
{
    const std::size_t size =
        kHeaderSize + std::size_t{inDescriptionCount} * sizeof(AudioChannelDescription);
    if (size > std::numeric_limits<UInt32>::max())
        throw std::bad_alloc();
    return static_cast<UInt32>(size);
}

void* Allocate(std::size_t inBytes)
{
    void* const block = std::malloc(inBytes);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

// 0, the tag of a layout by descriptions, for a count without a usual layout.
AudioChannelLayoutTag UsualTag(UInt32 inChannelCount, bool inChooseSurround)
{
    struct UsualLayout
    {
        AudioChannelLayoutTag mPlain;
        AudioChannelLayoutTag mSurround;
    };
    constexpr UsualLayout kUsualLayouts[] = {
        // by channel count; three channels have no usual layout
        {0, 0},
        {kAudioChannelLayoutTag_Mono, kAudioChannelLayoutTag_Mono},
        {kAudioChannelLayoutTag_Stereo, kAudioChannelLayoutTag_Binaural},
        {0, 0},
        {kAudioChannelLayoutTag_Quadraphonic, kAudioChannelLayoutTag_Ambisonic_B_Format},
        {kAudioChannelLayoutTag_Pentagonal, kAudioChannelLayoutTag_MPEG_5_0_B},
        {kAudioChannelLayoutTag_Hexagonal, kAudioChannelLayoutTag_AudioUnit_6_0},
        {kAudioChannelLayoutTag_AudioUnit_7_0, kAudioChannelLayoutTag_AudioUnit_7_0},
        {kAudioChannelLayoutTag_Octagonal, kAudioChannelLayoutTag_Octagonal},
    };
    if (inChannelCount >= std::size(kUsualLayouts))
        return 0;
    const UsualLayout& layout = kUsualLayouts[inChannelCount];
    return inChooseSurround ? layout.mSurround : layout.mPlain;
}

}  // namespace

bool operator==(const AudioChannelLayout& inX, const AudioChannelLayout& inY)
{
    return inX.mNumberChannelDescriptions == inY.mNumberChannelDescriptions &&
           std::memcmp(&inX, &inY, LayoutSize(inX)) == 0;
}

bool operator!=(const AudioChannelLayout& inX, const AudioChannelLayout& inY)
{
    return !(inX == inY);
}

void CAShowAudioChannelLayout(FILE* inStream, const AudioChannelLayout* inLayout)
{
    if (inLayout == nullptr)
    {
        std::fputs("\tNULL layout\n", inStream);
        return;
    }
    std::fprintf(inStream, "\tTag=0x%X, ", inLayout->mChannelLayoutTag);
    if (inLayout->mChannelLayoutTag == kAudioChannelLayoutTag_UseChannelBitmap)
    {
        std::fprintf(inStream, "Using Bitmap:0x%X\n", inLayout->mChannelBitmap);
        return;
    }
    std::fprintf(inStream, "Num Chan Descs=%d\n",
                 static_cast<int>(inLayout->mNumberChannelDescriptions));
    const AudioChannelDescription* description = inLayout->mChannelDescriptions;
    for (UInt32 index = 0; index < inLayout->mNumberChannelDescriptions; ++index, ++description)
    {
        std::fprintf(inStream, "\t\tLabel=%d, Flags=0x%X, ",
                     static_cast<int>(description->mChannelLabel), description->mChannelFlags);
        std::fprintf(inStream, "[az=%f,el=%f,dist=%f]\n",
                     static_cast<double>(description->mCoordinates[0]),
                     static_cast<double>(description->mCoordinates[1]),
                     static_cast<double>(description->mCoordinates[2]));
    }
}

AudioChannelLayout* CAAudioChannelLayout::Create(UInt32 inDescriptionCount)
{
    const UInt32 size = LayoutSize(inDescriptionCount);
    auto* const layout = static_cast<AudioChannelLayout*>(std::memset(Allocate(size), 0, size));
    SetAllToUnknown(*layout, inDescriptionCount);
    return layout;
}

void CAAudioChannelLayout::Destroy(AudioChannelLayout* inLayout)
{
    std::free(inLayout);
}

void CAAudioChannelLayout::SetAllToUnknown(AudioChannelLayout& outLayout, UInt32 inDescriptionCount)
{
    outLayout.mChannelLayoutTag = kAudioChannelLayoutTag_UseChannelDescriptions;
    outLayout.mChannelBitmap = 0;
    outLayout.mNumberChannelDescriptions = inDescriptionCount;
    std::fill_n(outLayout.mChannelDescriptions, inDescriptionCount,
                AudioChannelDescription{kAudioChannelLabel_Unknown, 0, {0.0F, 0.0F, 0.0F}});
}

UInt32 CAAudioChannelLayout::NumberChannels(const AudioChannelLayout& inLayout)
{
    constexpr UInt32 kTagChannelCountMask = 0xFFFF;
    if (inLayout.mChannelLayoutTag == kAudioChannelLayoutTag_UseChannelBitmap)
        return static_cast<UInt32>(std::popcount(inLayout.mChannelBitmap));
    if (inLayout.mChannelLayoutTag != kAudioChannelLayoutTag_UseChannelDescriptions)
        return inLayout.mChannelLayoutTag & kTagChannelCountMask;
    return inLayout.mNumberChannelDescriptions;
}

CAAudioChannelLayout::RefCountedLayout::RefCountedLayout(UInt32 inLayoutSize)
    : mByteSize(inLayoutSize)
{
    std::memset(static_cast<void*>(&mACL), 0, inLayoutSize);
}

void* CAAudioChannelLayout::RefCountedLayout::operator new(std::size_t inHeaderSize,
                                                           UInt32 inLayoutSize)
{
    // The header holds one description already, which a short layout does not fill.
    return Allocate(inHeaderSize + inLayoutSize);
}

void CAAudioChannelLayout::RefCountedLayout::operator delete(void* inBlock)
{
    std::free(inBlock);
}

void CAAudioChannelLayout::RefCountedLayout::operator delete(void* inBlock, UInt32)
{
    std::free(inBlock);
}

CAAudioChannelLayout::RefCountedLayout* CAAudioChannelLayout::RefCountedLayout::CreateWithRoomFor(
    UInt32 inDescriptionCount)
{
    const UInt32 size = LayoutSize(inDescriptionCount);
    return new (size) RefCountedLayout(size);
}

CAAudioChannelLayout::RefCountedLayout* CAAudioChannelLayout::RefCountedLayout::CreateUnknown(
    UInt32 inDescriptionCount)
{
    RefCountedLayout* const block = CreateWithRoomFor(inDescriptionCount);
    SetAllToUnknown(block->mACL, inDescriptionCount);
    return block;
}

CAAudioChannelLayout::RefCountedLayout* CAAudioChannelLayout::RefCountedLayout::CreateWithTag(
    AudioChannelLayoutTag inTag)
{
    RefCountedLayout* const block = CreateWithRoomFor(0);
    block->mACL.mChannelLayoutTag = inTag;
    return block;
}

CAAudioChannelLayout::CAAudioChannelLayout() : mLayout(RefCountedLayout::CreateWithRoomFor(0)) {}

CAAudioChannelLayout::CAAudioChannelLayout(UInt32 inChannelCount, bool inChooseSurround)
{
    const AudioChannelLayoutTag tag = UsualTag(inChannelCount, inChooseSurround);
    mLayout = tag != 0 ? RefCountedLayout::CreateWithTag(tag)
                       : RefCountedLayout::CreateUnknown(inChannelCount);
}

CAAudioChannelLayout::CAAudioChannelLayout(AudioChannelLayoutTag inTag)
    : mLayout(RefCountedLayout::CreateWithTag(inTag))
{
}

CAAudioChannelLayout::CAAudioChannelLayout(const CAAudioChannelLayout& inOther)
    : mLayout(inOther.mLayout)
{
    if (mLayout != nullptr)
        mLayout->retain();
}

CAAudioChannelLayout::CAAudioChannelLayout(const AudioChannelLayout* inLayout) : mLayout(nullptr)
{
    *this = inLayout;
}

CAAudioChannelLayout::~CAAudioChannelLayout()
{
    ReleaseBlock();
}

CAAudioChannelLayout& CAAudioChannelLayout::operator=(const CAAudioChannelLayout& inOther)
{
    if (mLayout == inOther.mLayout)
        return *this;
    ReleaseBlock();
    mLayout = inOther.mLayout;
    if (mLayout != nullptr)
        mLayout->retain();
    return *this;
}

CAAudioChannelLayout& CAAudioChannelLayout::operator=(const AudioChannelLayout* inLayout)
{
    if (mLayout != nullptr && inLayout == &mLayout->mACL)
        return *this;
    ReleaseBlock();
    if (inLayout == nullptr)
    {
        mLayout = RefCountedLayout::CreateWithRoomFor(0);
        return *this;
    }
    mLayout = RefCountedLayout::CreateWithRoomFor(inLayout->mNumberChannelDescriptions);
    std::memcpy(static_cast<void*>(&mLayout->mACL), inLayout, mLayout->mByteSize);
    return *this;
}

void CAAudioChannelLayout::SetWithTag(AudioChannelLayoutTag inTag)
{
    ReleaseBlock();
    mLayout = RefCountedLayout::CreateWithTag(inTag);
}

bool CAAudioChannelLayout::operator==(const CAAudioChannelLayout& inOther) const
{
    return mLayout == inOther.mLayout || (mLayout != nullptr && inOther.mLayout != nullptr &&
                                          mLayout->mACL == inOther.mLayout->mACL);
}

bool CAAudioChannelLayout::operator!=(const CAAudioChannelLayout& inOther) const
{
    return !(*this == inOther);
}

void CAAudioChannelLayout::Print(FILE* inStream) const
{
    CAShowAudioChannelLayout(inStream, mLayout != nullptr ? &mLayout->mACL : nullptr);
}

void CAAudioChannelLayout::ReleaseBlock()
{
    if (mLayout != nullptr)
        mLayout->release();
    mLayout = nullptr;
}
