// The records of the catalogue as values.
#include "appleaudiotoolbox/utility/CatalogueRecords.h"

#include <gtest/gtest.h>

using namespace appleaudiotoolbox;

namespace
{

TEST(CatalogueRecords, AVariantStartsWithNothing)
{
    const ATFormatType variant;
    EXPECT_TRUE(variant.mName.empty());
    EXPECT_TRUE(CAStreamBasicDescription::IsExactlyEqual(variant.mFormatDescription,
                                                         CAStreamBasicDescription::sEmpty));
    EXPECT_TRUE(variant.mBitratesCBR.empty());
    EXPECT_TRUE(variant.mBitratesLTA.empty());
    EXPECT_TRUE(variant.mBitratesVBRConstrained.empty());
    EXPECT_FALSE(variant.mSupportsVBR);
    EXPECT_EQ(variant.mDefaultCBR, 0u);
    EXPECT_EQ(variant.mDefaultLTA, 0u);
    EXPECT_EQ(variant.mDefaultVBRConstrained, 0u);
}

TEST(CatalogueRecords, FileTypesAreOrderedByTheNumberOfTheirCode)
{
    ATFileTypeMap types;
    types[0x63616666];  // caff
    types[0xFFFFFFFF];
    types[0x57415645];  // WAVE
    types[5];
    std::vector<UInt32> keys;
    for (const auto& [key, type] : types)
        keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<UInt32>{5, 0x57415645, 0x63616666, 0xFFFFFFFF}));
}

TEST(CatalogueRecords, FormatsAreOrderedByTheNumberOfTheirCode)
{
    ATFormatTypeMap formats;
    formats[0xFFFFFFFF];
    formats[0x61616320];  // aac
    formats[0x2E6D7033];  // .mp3
    EXPECT_EQ(formats.begin()->first, 0x2E6D7033u);
    EXPECT_EQ(formats.rbegin()->first, 0xFFFFFFFFu);
}

TEST(CatalogueRecords, ExtensionsAreOrderedByUnsignedBytesWithoutDuplicates)
{
    const ATExtensionSet extensions = {"wav", "\xC3\xA4", "WAV", "wav", "aif"};
    EXPECT_EQ(std::vector<UTF8String>(extensions.begin(), extensions.end()),
              (std::vector<UTF8String>{"WAV", "aif", "wav", "\xC3\xA4"}));
}

TEST(CatalogueRecords, ACopyOfAFileTypeSharesNothing)
{
    ATFileFormat first;
    first.mName = u"Name";
    first.mExtensionSet = {"wav"};
    first.mFormatTypeMap[1].resize(1);
    first.mFormatTypeMap[1][0].mBitratesCBR = {{1.0, 2.0}};

    ATFileFormat copy = first;
    copy.mName[0] = u'n';
    copy.mExtensionSet.insert("wave");
    copy.mFormatTypeMap[1][0].mBitratesCBR[0].mMinimum = 7.0;
    copy.mFormatTypeMap[1].resize(2);
    copy.mFormatTypeMap[2];

    EXPECT_EQ(first.mName, u"Name");
    EXPECT_EQ(first.mExtensionSet, ATExtensionSet{"wav"});
    ASSERT_EQ(first.mFormatTypeMap.size(), 1u);
    ASSERT_EQ(first.mFormatTypeMap[1].size(), 1u);
    EXPECT_EQ(first.mFormatTypeMap[1][0].mBitratesCBR[0].mMinimum, 1.0);
}

}  // namespace
