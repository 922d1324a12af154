// FormatEnumerationFixture: one file type whose formats and variants a test sets.
#ifndef TESTS_APPLEAUDIOTOOLBOX_UTILITY_FORMATENUMERATIONFIXTURE_H
#define TESTS_APPLEAUDIOTOOLBOX_UTILITY_FORMATENUMERATIONFIXTURE_H

#include "appleaudiotoolbox/utility/FormatEnumeration.h"

#include "tests/support/CatalogueScript.h"

namespace testing_support
{

using appleaudiotoolbox::ATFormatType;
using appleaudiotoolbox::ATFormatTypeList;
using appleaudiotoolbox::ATFormatTypeMap;
using appleaudiotoolbox::QueryFormatVariants;

class FormatEnumeration : public CatalogueTest
{
protected:
    void HoldFormats(const Codes& inFormats)
    {
        mScript.mFileTypes[kCAF] = {};
        for (const UInt32 format : inFormats)
            mScript.mFileTypes[kCAF].mFormats.push_back({format, {Variant(format)}});
    }
    void HoldVariants(UInt32 inFormat, const std::vector<AudioStreamBasicDescription>& inVariants)
    {
        mScript.mFileTypes[kCAF].mFormats = {{inFormat, inVariants}};
    }
    ATFormatType OnlyVariant(UInt32 inFormat)
    {
        QueryFormatVariants(kCAF, inFormat, mVariants);
        EXPECT_EQ(mVariants.size(), 1u);
        return mVariants.empty() ? ATFormatType() : mVariants[0];
    }
    // What the format info question makes of a description.
    void CompleteFormatsTo(const AudioStreamBasicDescription& inFormat)
    {
        mPlatform.Answer(Family::Format, kAudioFormatProperty_FormatInfo,
                         PropertyAnswer::Value(inFormat));
    }

    ATFormatTypeMap mFormats;
    ATFormatTypeList mVariants;
};

}  // namespace testing_support

#endif
