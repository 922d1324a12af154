// What operations answer that a plug-in does not override.
#include "tests/TarvoSDK/RecordingInterface.h"

#include <gtest/gtest.h>

namespace
{

using namespace testing_support;

TEST(InterfaceDefaults, TerminateAndPreOpenSucceed)
{
    CallLog log;
    RecordingPreOpen preOpen(log);
    MinimalInterface plugin;

    EXPECT_EQ(plugin.EntryPoint(2, nullptr, nullptr), 0);
    EXPECT_EQ(plugin.EntryPoint(3, nullptr, &preOpen), 0);
    EXPECT_EQ(log, (CallLog{"GetErrorInterface"}));
}

TEST(InterfaceDefaults, ImportDialogIsNotImplementedThoughItsResultIsTold)
{
    CallLog log;
    RecordingImportDialog run(log);
    MinimalInterface plugin;

    EXPECT_EQ(plugin.EntryPoint(4, nullptr, &run), -3);
    EXPECT_EQ(log, (CallLog{"GetErrorInterface", "SetDialogResult 0"}));
}

TEST(InterfaceDefaults, RawVideoMetadataAndDoneAreNotImplemented)
{
    CallLog log;
    RecordingReadSamplesRaw raw(log);
    RecordingReadVideoFrame frame;
    RecordingReadMetadata metadata(log);
    bool deleted = false;
    FakeReader reader;
    reader.mDeleted = &deleted;
    MinimalInterface plugin;

    EXPECT_EQ(plugin.EntryPoint(8, &reader, &raw), -3);
    EXPECT_EQ(plugin.EntryPoint(9, &reader, &frame), -3);
    EXPECT_EQ(plugin.EntryPoint(10, &reader, &metadata), -3);
    EXPECT_EQ(plugin.EntryPoint(11, &reader, nullptr), -3);
    EXPECT_FALSE(deleted);
}

TEST(InterfaceDefaults, CloseDeletesTheReaderThroughItsVirtualDestructor)
{
    struct DerivedReader : FakeReader
    {
    };
    bool deleted = false;
    auto* const reader = new DerivedReader;
    reader->mDeleted = &deleted;
    MinimalInterface plugin;

    EXPECT_EQ(plugin.EntryPoint(12, static_cast<FakeReader*>(reader), nullptr), 0);
    EXPECT_TRUE(deleted);
}

TEST(InterfaceDefaults, CloseOfNoReaderSucceeds)
{
    MinimalInterface plugin;
    EXPECT_EQ(plugin.CloseForRead(nullptr), 0);
}

}  // namespace
