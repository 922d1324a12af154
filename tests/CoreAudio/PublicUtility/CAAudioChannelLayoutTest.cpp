// Channel layouts: the bare record, and the handle on a shared one.
#include "CoreAudio/PublicUtility/CAAudioChannelLayout.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include <gtest/gtest.h>

namespace
{

using Handle = CAAudioChannelLayout;

struct Destroyer
{
    void operator()(AudioChannelLayout* inLayout) const { Handle::Destroy(inLayout); }
};
using LayoutPtr = std::unique_ptr<AudioChannelLayout, Destroyer>;

AudioChannelDescription& Description(AudioChannelLayout& inLayout, UInt32 inIndex)
{
    AudioChannelDescription* const first = inLayout.mChannelDescriptions;
    return first[inIndex];
}

const AudioChannelDescription& Description(const AudioChannelLayout& inLayout, UInt32 inIndex)
{
    const AudioChannelDescription* const first = inLayout.mChannelDescriptions;
    return first[inIndex];
}

void ExpectUnknown(const AudioChannelLayout& inLayout, UInt32 inCount)
{
    EXPECT_EQ(inLayout.mChannelLayoutTag, 0U);
    EXPECT_EQ(inLayout.mChannelBitmap, 0U);
    ASSERT_EQ(inLayout.mNumberChannelDescriptions, inCount);
    for (UInt32 index = 0; index < inCount; ++index)
    {
        const AudioChannelDescription& description = Description(inLayout, index);
        EXPECT_EQ(description.mChannelLabel, 0xFFFFFFFFU) << index;
        EXPECT_EQ(description.mChannelFlags, 0U) << index;
        for (const float coordinate : description.mCoordinates)
            EXPECT_EQ(coordinate, 0.0F) << index;
    }
}

// Two channels, the second to the right.
LayoutPtr TwoChannels()
{
    LayoutPtr layout(Handle::Create(2));
    Description(*layout, 0).mChannelLabel = 1;
    Description(*layout, 1).mChannelLabel = 2;
    Description(*layout, 1).mChannelFlags = 0x10;
    Description(*layout, 1).mCoordinates[0] = 45.5F;
    return layout;
}

std::string Printed(const AudioChannelLayout* inLayout)
{
    char* text = nullptr;
    size_t size = 0;
    FILE* const stream = open_memstream(&text, &size);
    CAShowAudioChannelLayout(stream, inLayout);
    std::fclose(stream);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return std::string(text, size);
}

TEST(LayoutRecord, IsMadeOfUnknownChannels)
{
    for (const UInt32 count : {0U, 1U, 2U, 40U})
        ExpectUnknown(*LayoutPtr(Handle::Create(count)), count);
}

TEST(LayoutRecord, CannotBeLargerThanItsSizeCanTell)
{
    EXPECT_THROW(Handle::Create(0xFFFFFFFF), std::bad_alloc);
    EXPECT_THROW(Handle::Create(214748365), std::bad_alloc);
    EXPECT_THROW(Handle(0xFFFFFFFF, true), std::bad_alloc);
}

TEST(LayoutRecord, BecomesUnknownWhateverItWas)
{
    unsigned char block[12 + 3 * 20];
    std::memset(block, 0xAB, sizeof(block));
    alignas(4) unsigned char aligned[sizeof(block)];
    std::memcpy(aligned, block, sizeof(block));
    auto* const layout = reinterpret_cast<AudioChannelLayout*>(aligned);
    Handle::SetAllToUnknown(*layout, 2);
    ExpectUnknown(*layout, 2);
    // The third description is not its business.
    EXPECT_EQ(std::memcmp(aligned + 52, block + 52, 20), 0);
}

TEST(LayoutRecord, NothingIsDestroyedForNull)
{
    Handle::Destroy(nullptr);
}

TEST(LayoutChannels, AreCountedAsTheTagSays)
{
    AudioChannelLayout layout = {};
    layout.mChannelLayoutTag = 0x10000;
    layout.mChannelBitmap = 0b1011;
    layout.mNumberChannelDescriptions = 7;
    EXPECT_EQ(Handle::NumberChannels(layout), 3U);
    layout.mChannelBitmap = 0xFFFFFFFF;
    EXPECT_EQ(Handle::NumberChannels(layout), 32U);
    layout.mChannelLayoutTag = 0x640001;
    EXPECT_EQ(Handle::NumberChannels(layout), 1U);
    layout.mChannelLayoutTag = 0xFFFF0000;
    EXPECT_EQ(Handle::NumberChannels(layout), 0U);
    layout.mChannelLayoutTag = 0x93FFFF;
    EXPECT_EQ(Handle::NumberChannels(layout), 65535U);
    layout.mChannelLayoutTag = 0;
    layout.mNumberChannelDescriptions = 5;
    EXPECT_EQ(Handle::NumberChannels(layout), 5U);
}

TEST(LayoutEquality, CountsEveryByte)
{
    const LayoutPtr first = TwoChannels();
    const LayoutPtr second = TwoChannels();
    EXPECT_TRUE(*first == *second);
    EXPECT_FALSE(*first != *second);
    for (size_t offset = 0; offset < 52; ++offset)
    {
        if (offset >= 8 && offset < 12)
            continue;  // the count decides how far to look
        auto* const byte = reinterpret_cast<unsigned char*>(second.get()) + offset;
        *byte ^= 1;
        EXPECT_FALSE(*first == *second) << "byte " << offset;
        EXPECT_TRUE(*first != *second) << "byte " << offset;
        *byte ^= 1;
    }
}

TEST(LayoutEquality, LooksNoFurtherThanTheShorterOne)
{
    const LayoutPtr one(Handle::Create(1));
    const LayoutPtr two(Handle::Create(2));
    EXPECT_FALSE(*one == *two);
    EXPECT_FALSE(*two == *one);
    EXPECT_TRUE(*LayoutPtr(Handle::Create(0)) == *LayoutPtr(Handle::Create(0)));
}

TEST(LayoutHandle, StartsEmpty)
{
    const Handle handle;
    EXPECT_EQ(handle.Size(), 12U);
    ExpectUnknown(handle.Layout(), 0);
}

TEST(LayoutHandle, HoldsATagAlone)
{
    const Handle handle(AudioChannelLayoutTag{0x790006});
    EXPECT_EQ(handle.Size(), 12U);
    EXPECT_EQ(handle.Layout().mChannelLayoutTag, 0x790006U);
    EXPECT_EQ(handle.Layout().mChannelBitmap, 0U);
    EXPECT_EQ(handle.Layout().mNumberChannelDescriptions, 0U);
}

TEST(LayoutHandle, KnowsTheUsualLayoutOfACount)
{
    struct Row
    {
        UInt32 mCount;
        UInt32 mPlain;
        UInt32 mSurround;
    };
    for (const Row& row :
         {Row{1, 0x640001, 0x640001}, Row{2, 0x650002, 0x6A0002}, Row{4, 0x6C0004, 0x6B0004},
          Row{5, 0x6D0005, 0x760005}, Row{6, 0x6E0006, 0x8B0006}, Row{7, 0x8C0007, 0x8C0007},
          Row{8, 0x6F0008, 0x6F0008}})
    {
        const Handle plain(row.mCount, false);
        const Handle surround(row.mCount, true);
        EXPECT_EQ(plain.Layout().mChannelLayoutTag, row.mPlain) << row.mCount;
        EXPECT_EQ(surround.Layout().mChannelLayoutTag, row.mSurround) << row.mCount;
        EXPECT_EQ(plain.Size(), 12U) << row.mCount;
        EXPECT_EQ(plain.Layout().mNumberChannelDescriptions, 0U) << row.mCount;
    }
}

TEST(LayoutHandle, HasUnknownChannelsForAnyOtherCount)
{
    for (const UInt32 count : {0U, 3U, 9U, 64U})
        for (const bool surround : {false, true})
        {
            const Handle handle(count, surround);
            EXPECT_EQ(handle.Size(), 12U + 20U * count);
            ExpectUnknown(handle.Layout(), count);
        }
}

TEST(LayoutHandle, CopiesShareTheirBlock)
{
    const Handle first(3, false);
    const Handle second(first);
    Handle third;
    third = second;
    EXPECT_EQ(&second.Layout(), &first.Layout());
    EXPECT_EQ(&third.Layout(), &first.Layout());
    EXPECT_TRUE(third == first);
    EXPECT_FALSE(third != first);
}

TEST(LayoutHandle, KeepsItsBlockWhenGivenItself)
{
    Handle handle(3, false);
    const AudioChannelLayout* const block = &handle.Layout();
    const Handle& same = handle;
    handle = same;
    EXPECT_EQ(&handle.Layout(), block);
    ExpectUnknown(handle.Layout(), 3);
}

TEST(LayoutHandle, AnAssignmentLeavesOtherHandlesTheirBlock)
{
    Handle first(3, false);
    {
        Handle second(first);
        second = Handle(AudioChannelLayoutTag{0x650002});
        EXPECT_EQ(second.Layout().mChannelLayoutTag, 0x650002U);
        Handle third(first);
        first = third;
    }
    ExpectUnknown(first.Layout(), 3);
}

TEST(LayoutHandle, SettingATagLeavesOtherHandlesAsTheyWere)
{
    const Handle first(3, false);
    Handle second(first);
    second.SetWithTag(0x640001);
    EXPECT_EQ(second.Layout().mChannelLayoutTag, 0x640001U);
    EXPECT_EQ(second.Size(), 12U);
    ExpectUnknown(first.Layout(), 3);
}

TEST(LayoutHandle, TakesAPrivateCopyOfARecord)
{
    const LayoutPtr record = TwoChannels();
    const Handle made(record.get());
    Handle assigned;
    assigned = record.get();
    EXPECT_EQ(made.Size(), 52U);
    EXPECT_TRUE(made.Layout() == *record);
    EXPECT_NE(&made.Layout(), record.get());
    EXPECT_NE(&made.Layout(), &assigned.Layout());
    EXPECT_TRUE(made == assigned);
    Description(*record, 0).mChannelLabel = 3;
    EXPECT_EQ(Description(made.Layout(), 0).mChannelLabel, 1U);
}

TEST(LayoutHandle, CopiesDescriptionsWhateverTheTagSays)
{
    const LayoutPtr record = TwoChannels();
    record->mChannelLayoutTag = 0x640001;
    const Handle handle(record.get());
    EXPECT_EQ(handle.Size(), 52U);
    EXPECT_EQ(Description(handle.Layout(), 1).mChannelLabel, 2U);
}

TEST(LayoutHandle, IsEmptyForANullRecord)
{
    const Handle made(static_cast<const AudioChannelLayout*>(nullptr));
    ExpectUnknown(made.Layout(), 0);
    Handle assigned(3, false);
    assigned = static_cast<const AudioChannelLayout*>(nullptr);
    EXPECT_EQ(assigned.Size(), 12U);
    EXPECT_TRUE(assigned == made);
}

TEST(LayoutHandle, KeepsItsBlockWhenGivenItsOwnRecord)
{
    Handle first(9, false);
    const AudioChannelLayout* const block = &first.Layout();
    {
        Handle second(first);
        second = &second.Layout();
        EXPECT_EQ(&second.Layout(), block);
    }
    first = &first.Layout();
    EXPECT_EQ(&first.Layout(), block);
    ExpectUnknown(first.Layout(), 9);
}

TEST(LayoutHandle, EqualsAnotherBlockWithTheSameLayout)
{
    const LayoutPtr record = TwoChannels();
    const Handle first(record.get());
    Description(*record, 1).mCoordinates[2] = 1.0F;
    const Handle second(record.get());
    EXPECT_TRUE(first != second);
    EXPECT_FALSE(first == second);
    EXPECT_TRUE(Handle(5, true) == Handle(AudioChannelLayoutTag{0x760005}));
}

TEST(LayoutText, TellsTheDescriptions)
{
    EXPECT_EQ(Printed(TwoChannels().get()),
              "\tTag=0x0, Num Chan Descs=2\n"
              "\t\tLabel=1, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n"
              "\t\tLabel=2, Flags=0x10, [az=45.500000,el=0.000000,dist=0.000000]\n");
    EXPECT_EQ(Printed(LayoutPtr(Handle::Create(1)).get()),
              "\tTag=0x0, Num Chan Descs=1\n"
              "\t\tLabel=-1, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n");
}

TEST(LayoutText, TellsABitmapAndNothingElse)
{
    const LayoutPtr layout = TwoChannels();
    layout->mChannelLayoutTag = 0x10000;
    layout->mChannelBitmap = 0x3F;
    EXPECT_EQ(Printed(layout.get()), "\tTag=0x10000, Using Bitmap:0x3F\n");
}

TEST(LayoutText, TellsOfNoLayout)
{
    EXPECT_EQ(Printed(nullptr), "\tNULL layout\n");
}

TEST(LayoutText, IsPrintedByTheHandleToo)
{
    char* text = nullptr;
    size_t size = 0;
    FILE* const stream = open_memstream(&text, &size);
    Handle(AudioChannelLayoutTag{0x6F0008}).Print(stream);
    std::fclose(stream);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    EXPECT_STREQ(text, "\tTag=0x6F0008, Num Chan Descs=0\n");
}

}  // namespace
