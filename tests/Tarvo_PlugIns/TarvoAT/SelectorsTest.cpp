// The selectors of this plug-in that need no session.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/Tarvo_PlugIns/TarvoAT/FakeReader.h"

#include <gtest/gtest.h>

namespace
{

using namespace testing_support;
using tarvo::TarvoATInterface;

struct SelectorsTest : testing::Test
{
    CallLog mLog;
    TarvoATInterface mPlugin;
};

TEST_F(SelectorsTest, TerminateAndPreOpenSucceed)
{
    RecordingPreOpen preOpen(mLog);
    EXPECT_EQ(mPlugin.EntryPoint(2, nullptr, nullptr), 0);
    EXPECT_EQ(mPlugin.EntryPoint(3, nullptr, &preOpen), 0);
}

TEST_F(SelectorsTest, ImportDialogRawVideoMetadataAndDoneAreNotImplemented)
{
    RecordingImportDialog run(mLog);
    RecordingReadSamplesRaw raw(mLog);
    RecordingReadVideoFrame frame;
    RecordingReadMetadata metadata(mLog);
    FakeReader fake;
    appleaudiotoolbox::ATReader& reader = fake;
    EXPECT_EQ(mPlugin.EntryPoint(4, nullptr, &run), -3);
    EXPECT_EQ(mPlugin.EntryPoint(8, &reader, &raw), -3);
    EXPECT_EQ(mPlugin.EntryPoint(9, &reader, &frame), -3);
    EXPECT_EQ(mPlugin.EntryPoint(10, &reader, &metadata), -3);
    EXPECT_EQ(mPlugin.EntryPoint(11, &reader, nullptr), -3);
}

TEST_F(SelectorsTest, CloseFreesAReaderThatWasNeverOpened)
{
    appleaudiotoolbox::ATReader* const reader = new FakeReader;
    EXPECT_EQ(mPlugin.EntryPoint(12, reader, nullptr), 0);
}

}  // namespace
