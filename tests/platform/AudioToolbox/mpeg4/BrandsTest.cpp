// The brands of the first box decide the file type.
#include "file/mpeg4/Brands.h"

#include "platform/AudioToolbox/mpeg4/MovieMaker.h"

#include <gtest/gtest.h>

namespace audiotoolbox
{
namespace
{

using movie_maker::Bytes;
using movie_maker::Join;
using movie_maker::Text;
using movie_maker::U32;

struct BrandCase
{
    const char* mMajor;
    const char* mCompatible;  // four characters each
    AudioFileTypeID mType;
};

constexpr BrandCase kCases[] = {
    {"M4A ", "", kAudioFileM4AType},         {"M4P ", "", kAudioFileM4AType},
    {"M4B ", "M4A mp42", kAudioFileM4BType}, {"3gp4", "isom", kAudioFile3GPType},
    {"3gp6", "", kAudioFile3GPType},         {"3gr6", "", kAudioFile3GPType},
    {"3gs7", "", kAudioFile3GPType},         {"3ge7", "", kAudioFile3GPType},
    {"3g2a", "3gp4", kAudioFile3GP2Type},    {"isom", "isomiso2mp41", kAudioFileMPEG4Type},
    {"mp42", "M4A isom", kAudioFileM4AType}, {"isom", "3gp4", kAudioFile3GPType},
    {"dash", "iso6M4B ", kAudioFileM4BType}, {"M4V ", "M4A mp42", kAudioFileMPEG4Type},
    {"qt  ", "", kAudioFileMPEG4Type},       {"m4a ", "", kAudioFileMPEG4Type},
};

TEST(Brands, MajorBrandDecidesAndAGeneralOneLeavesItToTheCompatibleOnes)
{
    for (const BrandCase& row : kCases)
    {
        const Bytes body = Join({Text(row.mMajor), U32(512), Text(row.mCompatible)});
        EXPECT_EQ(MPEG4TypeOfBrands(body), row.mType) << row.mMajor << " " << row.mCompatible;
    }
}

TEST(Brands, VersionIsNoBrand)
{
    EXPECT_EQ(MPEG4TypeOfBrands(Join({Text("isom"), Text("M4A ")})), kAudioFileMPEG4Type);
}

TEST(Brands, CutBodiesCountAsFarAsTheyGo)
{
    EXPECT_EQ(MPEG4TypeOfBrands({}), kAudioFileMPEG4Type);
    EXPECT_EQ(MPEG4TypeOfBrands(Text("M4A")), kAudioFileMPEG4Type);
    EXPECT_EQ(MPEG4TypeOfBrands(Text("M4A ")), kAudioFileM4AType);
    EXPECT_EQ(MPEG4TypeOfBrands(Join({Text("isom"), U32(0), Text("M4A")})), kAudioFileMPEG4Type);
}

}  // namespace
}  // namespace audiotoolbox
