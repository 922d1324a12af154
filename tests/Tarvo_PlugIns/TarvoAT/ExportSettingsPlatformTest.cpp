// Selector 14 on the real platform: which settings its encoders take.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATPrivateSettings.h"

#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "tests/Tarvo_PlugIns/TarvoAT/ExportHost.h"

#include <gtest/gtest.h>

namespace
{

using namespace testing_support;
using tarvo::TarvoATPrivateSettings;

struct Candidate
{
    std::int32_t mRate;
    std::int64_t mChannels;
};

// Music, and speech for the codecs that take nothing else.
constexpr Candidate kCandidates[] = {{48000, 2}, {8000, 1}};

struct ExportSettingsPlatform : testing::Test
{
    std::int32_t GetInfo(std::int32_t inRepairMode)
    {
        mInfo.mRepairMode = inRepairMode;
        return tarvo::TarvoATInterface().EntryPoint(14, nullptr, &mInfo);
    }
    TarvoATPrivateSettings Settings() const
    {
        TarvoATPrivateSettings settings;
        (void)settings.InitializeFromSerialized(mFormat.mSettings.c_str());
        return settings;
    }
    bool CanBeSettled(UInt32 inFileType, const CAStreamBasicDescription& inVariant)
    {
        for (const Candidate& candidate : kCandidates)
        {
            mFormat.mSettings = TarvoATPrivateSettings(inFileType, inVariant).GetSerialized();
            mFormat.mSampleRate = candidate.mRate;
            mFormat.mChannelCount = candidate.mChannels;
            if (GetInfo(1) == 0 && Settings().GetFormatID() == inVariant.mFormatID)
                return true;
        }
        return false;
    }

    CallLog mLog;
    ExportFormat mFormat{mLog};
    ExportInfo mInfo{mLog, mFormat};
};

TEST_F(ExportSettingsPlatform, MonoAndSurroundOfSixteenBitsNeedFitting)
{
    struct Row
    {
        std::int64_t mChannels;
        std::int32_t mRepairMode;
        std::int32_t mResult;
        UInt32 mFrameBytes;
    };
    const Row rows[] = {{1, 0, -8, 4}, {1, 1, 0, 2},  {1, 2, -8, 4},
                        {6, 0, -8, 4}, {6, 1, 0, 12}, {6, 2, -8, 4}};
    for (const Row& row : rows)
    {
        mFormat.mSettings.clear();
        mFormat.mChannelCount = row.mChannels;
        EXPECT_EQ(GetInfo(row.mRepairMode), row.mResult)
            << row.mChannels << " channels, mode " << row.mRepairMode;
        EXPECT_EQ(Settings().GetBytesPerFrame(), row.mFrameBytes);
        EXPECT_EQ(mFormat.mChannelCount, row.mChannels);
    }
}

TEST_F(ExportSettingsPlatform, DepthsAndRatesNeedNoFitting)
{
    for (const std::int32_t type : {10, 20, 30, 40})
    {
        mFormat.mSettings.clear();
        mFormat.mSampleType = type;
        mFormat.mSampleRate = 96000;
        EXPECT_EQ(GetInfo(0), 0) << "sample type " << type;
        EXPECT_EQ(Settings().GetSampleRate(), 96000.0);
    }
}

TEST_F(ExportSettingsPlatform, TheAACFilterTakesStereo)
{
    mFormat.mFilterId = u"1633973363";
    EXPECT_EQ(GetInfo(0), 0);
    EXPECT_EQ(Settings().GetAudioFileTypeID(), 0x61647473u);
    EXPECT_EQ(Settings().GetFormatID(), 0x61616320u);
}

TEST_F(ExportSettingsPlatform, EveryVariantOfTheCatalogueCanBeSettled)
{
    using namespace appleaudiotoolbox;
    int variants = 0;
    for (const UInt32 type : GetExportableFileTypes())
        for (const UInt32 format : GetEncodableFormats(type))
            for (const CAStreamBasicDescription& variant : GetEncodableVariants(type, format))
            {
                EXPECT_TRUE(CanBeSettled(type, variant))
                    << type << ' ' << format << ' ' << variant.mFormatFlags;
                ++variants;
            }
    EXPECT_GT(variants, 50);
}

}  // namespace
