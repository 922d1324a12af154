// What the entry reads from a host object, and tells it, beyond forwarding.
#include "tests/TarvoSDK/RecordingInterface.h"

#include <gtest/gtest.h>

namespace
{

using namespace testing_support;

struct EntryPointUnpackingTest : testing::Test
{
    ~EntryPointUnpackingTest() override { SetHostVersion(0, 0); }

    static void SetHostVersion(std::int32_t inMajor, std::int32_t inMinor)
    {
        FakeTemplate::mHostInterfaceVersionMajor = inMajor;
        FakeTemplate::mHostInterfaceVersionMinor = inMinor;
    }

    CallLog mLog;
    RecordingErrors mErrors{mLog};
    RecordingFormat mFormat{mLog};
    FakeReader mReader;
    FakeWriter mWriter;
    RecordingInterface mPlugin{mLog};
};

TEST_F(EntryPointUnpackingTest, VersionsAreExchangedBeforeTheInformation)
{
    RecordingInfo info(mLog);
    info.mMajor = 3;
    info.mMinor = 4;

    EXPECT_EQ(mPlugin.EntryPoint(0, nullptr, &info), -77);
    EXPECT_EQ(mLog, (CallLog{"SetPluginInterfaceVersion 1 2", "GetHostInterfaceVersion",
                             "GetTarvoInfo"}));
    EXPECT_EQ(FakeTemplate::mHostInterfaceVersionMajor, 3);
    EXPECT_EQ(FakeTemplate::mHostInterfaceVersionMinor, 4);
}

TEST_F(EntryPointUnpackingTest, RawReadsGetWhatTheHostObjectHolds)
{
    RecordingReadSamplesRaw raw(mLog);
    raw.mBuffer = &mWriter;

    (void)mPlugin.EntryPoint(8, &mReader, &raw);
    EXPECT_EQ(mPlugin.mNumbers, (std::vector<long long>{0x100000001, 0x200000002}));
    EXPECT_EQ(mPlugin.mPointer, &mWriter);
}

TEST_F(EntryPointUnpackingTest, MetadataReadsGetWhatTheHostObjectHolds)
{
    RecordingReadMetadata metadata(mLog);
    metadata.mBuffer = &mWriter;

    (void)mPlugin.EntryPoint(10, &mReader, &metadata);
    EXPECT_EQ(mPlugin.mNumbers, (std::vector<long long>{0x100000001, 0x200000002, 0x300000003}));
    EXPECT_EQ(mPlugin.mPointer, &mWriter);
}

TEST_F(EntryPointUnpackingTest, DialogOptionIsReadFromHostsAbove10Only)
{
    struct Row
    {
        std::int32_t mMajor;
        std::int32_t mMinor;
        bool mReads;
    };
    const Row rows[] = {{0, 0, false}, {1, 0, false},  {0, 1, true},   {1, 1, true},
                        {2, 0, true},  {1, -1, false}, {-1, 0, false}, {-1, 1, true}};
    for (const Row& row : rows)
    {
        SetHostVersion(row.mMajor, row.mMinor);
        mLog.clear();
        RecordingExportDialog run(mLog);
        run.mFormat = &mFormat;
        run.mWindow = &mWriter;

        EXPECT_EQ(mPlugin.EntryPoint(15, nullptr, &run), -77);
        const CallLog with = {"GetErrorInterface", "GetFormatInterface", "GetParentWindow",
                              "GetDialogOption", "RunExportSettingsDialog"};
        const CallLog without = {"GetErrorInterface", "GetFormatInterface", "GetParentWindow",
                                 "RunExportSettingsDialog"};
        EXPECT_EQ(mLog, row.mReads ? with : without) << row.mMajor << "." << row.mMinor;
        EXPECT_EQ(mPlugin.mNumbers, (std::vector<long long>{row.mReads ? 0x400000004 : 0}));
        EXPECT_EQ(mPlugin.mPointer, &mWriter);
        EXPECT_EQ(mPlugin.mHostObject, static_cast<TarvoFormatInterface*>(&mFormat));
    }
}

TEST_F(EntryPointUnpackingTest, CancelledIsToldAfterASuccessOnly)
{
    RecordingExportDialog run(mLog);
    run.mErrors = &mErrors;
    run.mFormat = &mFormat;
    for (const bool cancels : {false, true})
    {
        mLog.clear();
        mPlugin.mCancels = cancels;
        mPlugin.mResult = 0;
        EXPECT_EQ(mPlugin.EntryPoint(15, nullptr, &run), 0);
        EXPECT_FALSE(mPlugin.mFlag) << "the flag starts as false";
        EXPECT_EQ(mPlugin.mErrors, &mErrors);
        EXPECT_EQ(mLog.back(), cancels ? "SetCancelled 1" : "SetCancelled 0");

        mPlugin.mResult = -3;
        EXPECT_EQ(mPlugin.EntryPoint(15, nullptr, &run), -3);
        EXPECT_EQ(mLog.back(), "RunExportSettingsDialog");
    }
}

TEST_F(EntryPointUnpackingTest, WriterIsToldAfterASuccessOnly)
{
    RecordingWriteStart start(mLog);
    mPlugin.mWriter = &mWriter;

    mPlugin.mResult = -8;
    EXPECT_EQ(mPlugin.EntryPoint(17, nullptr, &start), -8);
    EXPECT_EQ(mLog.back(), "WriteStart");
    EXPECT_EQ(mPlugin.mPointer, nullptr) << "the writer starts as null";

    mPlugin.mResult = 0;
    EXPECT_EQ(mPlugin.EntryPoint(17, nullptr, &start), 0);
    EXPECT_EQ(mLog.back(), "SetWriterHandle");
    EXPECT_EQ(start.mHandle, &mWriter);
}

TEST_F(EntryPointUnpackingTest, FinishFlagIsItsLowByte)
{
    struct Row
    {
        std::int32_t mFlag;
        bool mSeen;
    };
    for (const Row& row : {Row{0, false}, Row{1, true}, Row{0x80, true}, Row{0x100, false},
                           Row{0x101, true}, Row{-256, false}, Row{-1, true}})
    {
        mLog.clear();
        RecordingFinishWrite finish(mLog);
        finish.mErrors = &mErrors;
        finish.mFormat = &mFormat;
        finish.mFlag = row.mFlag;

        EXPECT_EQ(mPlugin.EntryPoint(19, &mWriter, &finish), -77);
        EXPECT_EQ(mPlugin.mFlag, row.mSeen) << row.mFlag;
        EXPECT_EQ(mPlugin.mErrors, &mErrors);
        EXPECT_EQ(mPlugin.mHostObject, static_cast<const TarvoFormatInterface*>(&mFormat));
        EXPECT_EQ(mLog, (CallLog{"GetErrorInterface", "GetFinishFlag", "GetFormatInterface",
                                 "FinishWrite"}));
    }
}

}  // namespace
