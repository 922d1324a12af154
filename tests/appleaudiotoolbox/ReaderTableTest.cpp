// The reader's table of virtual operations: code that was built apart finds them by position.
#include "appleaudiotoolbox/ATReader.h"

#include "tests/support/TableOffset.h"

namespace
{

using appleaudiotoolbox::ATReader;
using appleaudiotoolbox::ExtendedErrorInfo;
using appleaudiotoolbox::ReadCallbacks;
using testing_support::TableOffset;

TEST(ReaderTable, OpensByPathAndThenByCallbacks)
{
    bool (ATReader::*byPath)(const UTF8String&, ExtendedErrorInfo&, bool) = &ATReader::Initialize;
    bool (ATReader::*byCallbacks)(void*, const ReadCallbacks&, unsigned int, ExtendedErrorInfo&,
                                  bool) = &ATReader::Initialize;
    EXPECT_EQ(TableOffset(byPath), 16);
    EXPECT_EQ(TableOffset(byCallbacks), 24);
    EXPECT_EQ(TableOffset(&ATReader::InitializeImpl), 192);
}

TEST(ReaderTable, KeepsTheOrderOfItsQuestions)
{
    EXPECT_EQ(TableOffset(&ATReader::GetFileTypeID), 32);
    EXPECT_EQ(TableOffset(&ATReader::GetStreamBasicDescription), 40);
    EXPECT_EQ(TableOffset(&ATReader::GetSampleRate), 48);
    EXPECT_EQ(TableOffset(&ATReader::GetFormatID), 56);
    EXPECT_EQ(TableOffset(&ATReader::GetBytesPerPacket), 64);
    EXPECT_EQ(TableOffset(&ATReader::GetFramesPerPacket), 72);
    EXPECT_EQ(TableOffset(&ATReader::GetBytesPerFrame), 80);
    EXPECT_EQ(TableOffset(&ATReader::GetChannelsPerFrame), 88);
    EXPECT_EQ(TableOffset(&ATReader::GetBitsPerChannel), 96);
    EXPECT_EQ(TableOffset(&ATReader::GetNumReadBytesPerFrame), 104);
    EXPECT_EQ(TableOffset(&ATReader::GetFormatFlags), 112);
    EXPECT_EQ(TableOffset(&ATReader::GetEstimatedDuration), 120);
    EXPECT_EQ(TableOffset(&ATReader::GetFormatDescription), 128);
    EXPECT_EQ(TableOffset(&ATReader::GetChannelLayout), 136);
    EXPECT_EQ(TableOffset(&ATReader::GetBitrate), 144);
}

TEST(ReaderTable, KeepsTheOrderOfDelivery)
{
    EXPECT_EQ(TableOffset(&ATReader::ReadSamples), 152);
    EXPECT_EQ(TableOffset(&ATReader::ReadSamplesInterleaved), 160);
    EXPECT_EQ(TableOffset(&ATReader::IsAtEndOfFile), 168);
    EXPECT_EQ(TableOffset(&ATReader::GetTotalSampleCount), 176);
    EXPECT_EQ(TableOffset(&ATReader::SupportsSeek), 184);
}

}  // namespace
