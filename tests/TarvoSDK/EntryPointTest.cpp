// The table of selectors: which pointers a call needs, whether the error object is taken, and which
// operation is called.
#include "tests/TarvoSDK/RecordingInterface.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace testing_support;

// One of each, and a plug-in in front of them, with one list of calls.
struct EntryPointTest : testing::Test
{
    EntryPointTest()
    {
        mFormat.mErrors = mPreOpen.mErrors = mImportDialog.mErrors = mOpen.mErrors = &mErrors;
        mExportInfo.mErrors = mExportDialog.mErrors = mWriteStart.mErrors = &mErrors;
        mWriteSamples.mErrors = mFinishWrite.mErrors = &mErrors;
        mExportInfo.mFormat = mExportDialog.mFormat = mWriteStart.mFormat = &mInnerFormat;
        mFinishWrite.mFormat = &mInnerFormat;
    }

    CallLog mLog;
    RecordingErrors mErrors{mLog};
    RecordingFormat mInnerFormat{mLog};
    RecordingInfo mInfo{mLog};
    RecordingPreOpen mPreOpen{mLog};
    RecordingImportDialog mImportDialog{mLog};
    RecordingOpen mOpen{mLog};
    RecordingFormat mFormat{mLog};
    RecordingReadSamples mReadSamples{mLog};
    RecordingReadSamplesRaw mReadSamplesRaw{mLog};
    RecordingReadVideoFrame mReadVideoFrame;
    RecordingReadMetadata mReadMetadata{mLog};
    RecordingExportInfo mExportInfo{mLog};
    RecordingExportDialog mExportDialog{mLog};
    RecordingWriteStart mWriteStart{mLog};
    RecordingWriteSamples mWriteSamples{mLog};
    RecordingFinishWrite mFinishWrite{mLog};
    FakeReader mReader;
    FakeWriter mWriter;
    RecordingInterface mPlugin{mLog};
};

TEST_F(EntryPointTest, SelectorsOutsideTheTableAreUnknownAndTouchNothing)
{
    char nothing = 0;
    for (const int selector :
         {-1, 20, 21, 0x10000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
    {
        EXPECT_EQ(mPlugin.EntryPoint(selector, &nothing, &nothing), -2) << selector;
        EXPECT_EQ(mPlugin.EntryPoint(selector, nullptr, nullptr), -2) << selector;
    }
    EXPECT_TRUE(mLog.empty());
}

TEST_F(EntryPointTest, Selector16IsUnknownWithAnyPointers)
{
    EXPECT_EQ(mPlugin.EntryPoint(16, &mReader, &mFormat), -2);
    EXPECT_EQ(mPlugin.EntryPoint(16, nullptr, nullptr), -2);
    EXPECT_TRUE(mLog.empty());
}

TEST_F(EntryPointTest, ANeededPointerThatIsNullEndsTheCallWithoutAnyEffect)
{
    struct Row
    {
        int mSelector;
        void* mHandle;
        void* mHostObject;
        std::int32_t mResult;
    };
    const Row rows[] = {
        {0, &mReader, nullptr, -6},  {3, &mReader, nullptr, -6},
        {4, &mReader, nullptr, -6},  {5, &mReader, nullptr, -6},
        {6, nullptr, &mFormat, -6},  {6, &mReader, nullptr, -6},
        {6, nullptr, nullptr, -6},   {7, nullptr, &mReadSamples, -6},
        {7, &mReader, nullptr, -6},  {8, nullptr, &mReadSamplesRaw, -6},
        {8, &mReader, nullptr, -6},  {9, nullptr, &mReadVideoFrame, -6},
        {9, &mReader, nullptr, -6},  {10, nullptr, &mReadMetadata, -6},
        {10, &mReader, nullptr, -6}, {11, nullptr, &mFormat, -6},
        {12, nullptr, &mFormat, -6}, {13, &mReader, nullptr, -6},
        {14, &mReader, nullptr, -6}, {15, &mReader, nullptr, -6},
        {17, &mWriter, nullptr, -6}, {18, nullptr, &mWriteSamples, -6},
        {18, &mWriter, nullptr, -6}, {19, nullptr, &mFinishWrite, -1},
        {19, &mWriter, nullptr, -1}, {19, nullptr, nullptr, -1},
    };
    for (const Row& row : rows)
    {
        EXPECT_EQ(mPlugin.EntryPoint(row.mSelector, row.mHandle, row.mHostObject), row.mResult)
            << "selector " << row.mSelector;
        EXPECT_TRUE(mLog.empty()) << "selector " << row.mSelector;
    }
}

TEST_F(EntryPointTest, CallsWithoutPointersNeedNone)
{
    EXPECT_EQ(mPlugin.EntryPoint(1, nullptr, nullptr), -77);
    EXPECT_EQ(mPlugin.EntryPoint(2, nullptr, nullptr), -77);
    EXPECT_EQ(mLog, (CallLog{"Initialize", "Terminate"}));
}

TEST_F(EntryPointTest, EachSelectorCallsItsOperationAndPassesTheResultOn)
{
    FakeReader* const reader = &mReader;
    struct Row
    {
        int mSelector;
        void* mHandle;
        void* mHostObject;
        bool mTakesErrors;
        const void* mSeenHostObject;
        CallLog mCalls;
    };
    const CallLog rawCalls = {"GetRawFirst", "GetRawSecond", "GetRawBuffer", "ReadSamplesRaw"};
    const CallLog metadataCalls = {"GetRawFirst", "GetRawSecond", "GetRawThird", "GetRawBuffer",
                                   "ReadMetadata"};
    const Row rows[] = {
        {3, nullptr, &mPreOpen, true, &mPreOpen, {"GetErrorInterface", "PreOpenForRead"}},
        {4,
         nullptr,
         &mImportDialog,
         true,
         &mImportDialog,
         {"GetErrorInterface", "SetDialogResult 0", "RunImportSettingsDialog"}},
        {5, nullptr, &mOpen, true, &mOpen, {"GetErrorInterface", "OpenForRead"}},
        {6, reader, &mFormat, true, &mFormat, {"GetErrorInterface", "GetFormat"}},
        {7, reader, &mReadSamples, false, &mReadSamples, {"ReadSamples"}},
        {8, reader, &mReadSamplesRaw, false, nullptr, rawCalls},
        {9, reader, &mReadVideoFrame, false, &mReadVideoFrame, {"ReadVideoFrame"}},
        {10, reader, &mReadMetadata, false, nullptr, metadataCalls},
        {11, reader, nullptr, false, nullptr, {"DoneWithAudioRead"}},
        {12, reader, nullptr, false, nullptr, {"CloseForRead"}},
        {13, nullptr, &mFormat, true, &mFormat, {"GetErrorInterface", "GetDefaultExportSettings"}},
        {14,
         nullptr,
         &mExportInfo,
         true,
         &mExportInfo,
         {"GetErrorInterface", "GetExportSettingsInfo"}},
        {17, nullptr, &mWriteStart, true, &mWriteStart, {"GetErrorInterface", "WriteStart"}},
        {18, &mWriter, &mWriteSamples, true, &mWriteSamples, {"GetErrorInterface", "WriteSamples"}},
    };
    for (const Row& row : rows)
    {
        mLog.clear();
        EXPECT_EQ(mPlugin.EntryPoint(row.mSelector, row.mHandle, row.mHostObject), -77)
            << "selector " << row.mSelector;
        EXPECT_EQ(mLog, row.mCalls) << "selector " << row.mSelector;
        EXPECT_EQ(mPlugin.mHandle, row.mHandle) << "selector " << row.mSelector;
        EXPECT_EQ(mPlugin.mHostObject, row.mSeenHostObject) << "selector " << row.mSelector;
        EXPECT_EQ(mPlugin.mErrors, row.mTakesErrors ? &mErrors : nullptr)
            << "selector " << row.mSelector;
    }
}

TEST_F(EntryPointTest, ReadSamplesForgetsTheErrorObjectOfTheCallBefore)
{
    (void)mPlugin.EntryPoint(5, nullptr, &mOpen);
    ASSERT_EQ(mPlugin.mErrors, &mErrors);
    (void)mPlugin.EntryPoint(7, &mReader, &mReadSamples);
    EXPECT_EQ(mPlugin.mErrors, nullptr);
}

TEST_F(EntryPointTest, ANullErrorObjectIsFine)
{
    mOpen.mErrors = nullptr;
    EXPECT_EQ(mPlugin.EntryPoint(5, nullptr, &mOpen), -77);
    EXPECT_EQ(mPlugin.mErrors, nullptr);
}

TEST_F(EntryPointTest, ExceptionsPassThroughUnchanged)
{
    struct HostTrouble
    {
        int mNumber;
    };
    struct ThrowingOpen : RecordingOpen
    {
        using RecordingOpen::RecordingOpen;
        TarvoErrorInterface* GetErrorInterface() const override { throw HostTrouble{7}; }
    } open(mLog);
    try
    {
        (void)mPlugin.EntryPoint(5, nullptr, &open);
        FAIL() << "nothing was thrown";
    }
    catch (const HostTrouble& trouble)
    {
        EXPECT_EQ(trouble.mNumber, 7);
    }
}

}  // namespace
