// Every property of an open file, with its size and its refusals.

#include "ContainerBuilders.h"
#include "Opened.h"
#include "platform/AudioToolbox/src/file/FileProperties.h"

#include <gtest/gtest.h>

using namespace testing_support;
using audiotoolbox::GetFileProperty;
using audiotoolbox::GetFilePropertySize;

namespace
{

struct SizeRow
{
    AudioFilePropertyID mProperty;
    UInt32 mSize;
};

TEST(FileProperties, HaveTheSizesOfTheirRecords)
{
    const Opened file = Open(SmallALACFile());
    const SizeRow rows[] = {
        {kAudioFilePropertyFileFormat, 4},
        {kAudioFilePropertyDataFormat, 40},
        {kAudioFilePropertyFormatList, 48},
        {kAudioFilePropertyMagicCookieData, 36},
        {kAudioFilePropertyPacketTableInfo, 16},
        {kAudioFilePropertyPacketSizeUpperBound, 4},
        {kAudioFilePropertyMaximumPacketSize, 4},
        {kAudioFilePropertyEstimatedDuration, 8},
        {kAudioFilePropertyBitRate, 4},
        {kAudioFilePropertyAudioDataByteCount, 8},
        {kAudioFilePropertyAudioDataPacketCount, 8},
        {kAudioFilePropertyDataOffset, 8},
        {kAudioFilePropertyIsOptimized, 4},
    };
    for (const SizeRow& row : rows)
    {
        UInt32 size = 0;
        EXPECT_EQ(GetFilePropertySize(*file.mReader, row.mProperty, &size), noErr);
        EXPECT_EQ(size, row.mSize) << std::hex << row.mProperty;
        UInt8 value[64];
        UInt32 room = sizeof(value);
        EXPECT_EQ(GetFileProperty(*file.mReader, row.mProperty, &room, value), noErr);
        EXPECT_EQ(room, row.mSize) << std::hex << row.mProperty;
        if (row.mProperty == kAudioFilePropertyFormatList)
            continue;  // a list may be cut
        room = row.mSize - 1;
        EXPECT_EQ(GetFileProperty(*file.mReader, row.mProperty, &room, value),
                  kAudioFileBadPropertySizeError)
            << std::hex << row.mProperty;
        EXPECT_EQ(room, row.mSize - 1);
    }
}

TEST(FileProperties, AreMissingWhereTheFileHasNone)
{
    const Opened file = Open(WaveFile(WaveRecord(), Bytes(40)));
    for (const AudioFilePropertyID property :
         {kAudioFilePropertyMagicCookieData, kAudioFilePropertyPacketTableInfo,
          kAudioFilePropertyChannelLayout, CA_FOUR_CHAR_CODE('n', 'o', 'n', 'e')})
    {
        UInt32 size = 77;
        UInt8 value[64];
        EXPECT_EQ(GetFilePropertySize(*file.mReader, property, &size),
                  kAudioFileUnsupportedPropertyError);
        EXPECT_EQ(GetFileProperty(*file.mReader, property, &size, value),
                  kAudioFileUnsupportedPropertyError);
        EXPECT_EQ(size, 77u);
    }
}

template <typename Number>
Number ValueOf(const Opened& inFile, AudioFilePropertyID inProperty)
{
    Number value = {};
    UInt32 size = sizeof(value);
    EXPECT_EQ(GetFileProperty(*inFile.mReader, inProperty, &size, &value), noErr);
    return value;
}

TEST(FileProperties, TellTheFactsOfTheFile)
{
    const Opened file = Open(WaveFile(ExtensibleRecord(1, 2, 16, 16, 3), Bytes(88200 * 2)));
    EXPECT_EQ(ValueOf<UInt32>(file, kAudioFilePropertyFileFormat), 0x57415645u);
    EXPECT_EQ(ValueOf<UInt32>(file, kAudioFilePropertyPacketSizeUpperBound), 4u);
    EXPECT_EQ(ValueOf<UInt32>(file, kAudioFilePropertyBitRate), 1411200u);
    EXPECT_EQ(ValueOf<UInt64>(file, kAudioFilePropertyAudioDataByteCount), 176400u);
    EXPECT_EQ(ValueOf<UInt64>(file, kAudioFilePropertyAudioDataPacketCount), 44100u);
    EXPECT_EQ(ValueOf<SInt64>(file, kAudioFilePropertyDataOffset), 68);
    EXPECT_EQ(ValueOf<double>(file, kAudioFilePropertyEstimatedDuration), 1.0);
    EXPECT_EQ(ValueOf<UInt32>(file, kAudioFilePropertyIsOptimized), 1u);
    const auto layout = ValueOf<AudioChannelLayout>(file, kAudioFilePropertyChannelLayout);
    EXPECT_EQ(layout.mChannelLayoutTag, 0x10000u);
    EXPECT_EQ(layout.mChannelBitmap, 3u);
    const auto item = ValueOf<AudioFormatListItem>(file, kAudioFilePropertyFormatList);
    EXPECT_EQ(item.mASBD.mBytesPerFrame, 4u);
    EXPECT_EQ(item.mChannelLayoutTag, kAudioChannelLayoutTag_Stereo);
}

// Packets of one byte whose number only reading tells, with a list of three formats.
class Uncounted : public audiotoolbox::PacketReader
{
public:
    Uncounted()
    {
        mFacts.mFormats.resize(3);
        mFacts.mFormats[1].mASBD.mSampleRate = 8000.0;
    }

    OSStatus ReadPackets(SInt64 inStart, UInt32* ioBytes, UInt32* ioPackets,
                         AudioStreamPacketDescription*, void*) override
    {
        const UInt32 left = inStart < 1000 ? static_cast<UInt32>(1000 - inStart) : 0;
        *ioPackets = std::min(*ioPackets, left);
        *ioBytes = *ioPackets;
        return noErr;
    }
};

TEST(FileProperties, CountPacketsByReadingWhereNothingElseTells)
{
    Uncounted reader;
    UInt32 size = 0;
    ASSERT_EQ(GetFilePropertySize(reader, kAudioFilePropertyAudioDataPacketCount, &size), noErr);
    EXPECT_EQ(size, 8u);
    UInt64 count = 0;
    ASSERT_EQ(GetFileProperty(reader, kAudioFilePropertyAudioDataPacketCount, &size, &count),
              noErr);
    EXPECT_EQ(count, 1000u);
    size = 7;
    EXPECT_EQ(GetFileProperty(reader, kAudioFilePropertyAudioDataPacketCount, &size, &count),
              kAudioFileBadPropertySizeError);
}

TEST(FileProperties, CutAListToWholeElements)
{
    Uncounted reader;
    AudioFormatListItem items[3] = {};
    for (const auto& [room, delivered] :
         {std::pair{0u, 0u}, std::pair{47u, 0u}, std::pair{48u, 48u}, std::pair{100u, 96u},
          std::pair{144u, 144u}, std::pair{1000u, 144u}})
    {
        UInt32 size = room;
        EXPECT_EQ(GetFileProperty(reader, kAudioFilePropertyFormatList, &size, items), noErr);
        EXPECT_EQ(size, delivered) << room;
    }
    EXPECT_EQ(items[1].mASBD.mSampleRate, 8000.0);
}

}  // namespace
