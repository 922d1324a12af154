// CatalogueScript: a platform with file types, formats, variants and encoders, for the catalogue.
//
// Members may be changed at any time; the platform answers by what they hold when it is asked.
#ifndef TESTS_SUPPORT_CATALOGUESCRIPT_H
#define TESTS_SUPPORT_CATALOGUESCRIPT_H

#include "appleaudiotoolbox/utility/src/CatalogueState.h"
#include "tests/support/ScriptedPlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace testing_support
{

constexpr UInt32 kWAVE = 0x57415645;
constexpr UInt32 kAIFF = 0x41494646;
constexpr UInt32 kAIFC = 0x41494643;
constexpr UInt32 kCAF = 0x63616666;
constexpr UInt32 kM4A = 0x6D346166;
constexpr UInt32 kADTS = 0x61647473;
constexpr UInt32 kPCM = 0x6C70636D;
constexpr UInt32 kAAC = 0x61616320;
constexpr UInt32 kALAC = 0x616C6163;

using Codes = std::vector<UInt32>;

/// A variant as a file type lists it.
constexpr AudioStreamBasicDescription Variant(UInt32 inFormat, UInt32 inFlags = 0,
                                              UInt32 inBits = 0)
{
    return {0.0, inFormat, inFlags, 0, inFormat == kPCM ? 1u : 0u, 0, 0, inBits, 0};
}

/// What an encoder offers in one control mode.
struct ScriptedMode
{
    std::vector<AudioValueRange> mRates;
    UInt32 mDefault = 0;  // the rate that it is at when the mode is set
};

struct ScriptedEncoder
{
    std::map<UInt32, ScriptedMode> mModes;  // a mode that is not there is refused
    std::set<UInt32> mRefusedRates;         // when set, in bits per second
    Codes mChannelCounts;                   // empty: the question fails
};

struct ScriptedFileType
{
    std::string mName;
    std::vector<std::string> mExtensions;
    std::vector<std::pair<UInt32, std::vector<AudioStreamBasicDescription>>> mFormats = {};
};

class CatalogueScript
{
public:
    explicit CatalogueScript(ScriptedPlatform& inPlatform);

    /// A type that is readable and writable.
    void AddFileType(UInt32 inID, const ScriptedFileType& inType)
    {
        mReadable.push_back(inID);
        mWritable.push_back(inID);
        mFileTypes[inID] = inType;
    }

    Codes mReadable;
    Codes mWritable;
    std::map<UInt32, ScriptedFileType> mFileTypes;
    Codes mEncodable;
    std::map<UInt32, ScriptedEncoder> mEncoders;  // by format

private:
    static UInt32 CodeAt(const Bytes& inBytes, std::size_t inOffset)
    {
        UInt32 code = 0;
        if (inBytes.size() >= inOffset + sizeof(code))
            std::memcpy(&code, inBytes.data() + inOffset, sizeof(code));
        return code;
    }
    static PropertyAnswer Unknown() { return PropertyAnswer::Missing(-50); }

    PropertyAnswer OfFileType(const Question& inQuestion,
                              PropertyAnswer (*inAnswer)(const ScriptedFileType&)) const
    {
        const auto found = mFileTypes.find(CodeAt(inQuestion.mSpecifier, 0));
        return found == mFileTypes.end() ? Unknown() : inAnswer(found->second);
    }
    PropertyAnswer Variants(const Question& inQuestion) const;
    void ScriptConverters(ScriptedPlatform& inPlatform);

    UInt32 mMode = 0;
    UInt32 mRate = 0;
};

inline CatalogueScript::CatalogueScript(ScriptedPlatform& inPlatform)
{
    const auto lists = [&](Family inFamily, UInt32 inProperty, const Codes& inCodes)
    {
        inPlatform.AnswerWith(inFamily, inProperty,
                              [&inCodes](const Question&)
                              { return PropertyAnswer::List(inCodes); });
    };
    lists(Family::Global, kAudioFileGlobalInfo_ReadableTypes, mReadable);
    lists(Family::Global, kAudioFileGlobalInfo_WritableTypes, mWritable);
    lists(Family::Format, kAudioFormatProperty_EncodeFormatIDs, mEncodable);

    inPlatform.AnswerWith(Family::Global, kAudioFileGlobalInfo_FileTypeName,
                          [this](const Question& question)
                          {
        // The size is asked without a type.
        if (question.mKind == Question::Kind::Info)
            return PropertyAnswer().Size(8);
        return OfFileType(question, [](const ScriptedFileType& type)
                          { return PropertyAnswer::Name(type.mName); });
    });
    inPlatform.AnswerWith(Family::Global, kAudioFileGlobalInfo_ExtensionsForType,
                          [this](const Question& question)
                          {
        return OfFileType(question, [](const ScriptedFileType& type)
                          { return PropertyAnswer::Names(type.mExtensions); });
    });
    inPlatform.AnswerWith(Family::Global, kAudioFileGlobalInfo_AvailableFormatIDs,
                          [this](const Question& question)
                          {
        return OfFileType(question,
                          [](const ScriptedFileType& type)
                          {
            Codes codes;
            for (const auto& [format, variants] : type.mFormats)
                codes.push_back(format);
            return PropertyAnswer::List(codes);
        });
    });
    inPlatform.AnswerWith(Family::Global, kAudioFileGlobalInfo_AvailableStreamDescriptionsForFormat,
                          [this](const Question& question) { return Variants(question); });
    inPlatform.AnswerWith(Family::Format, kAudioFormatProperty_AvailableEncodeNumberChannels,
                          [this](const Question& question)
                          {
        const Codes& counts = mEncoders[CodeAt(question.mSpecifier, 8)].mChannelCounts;
        return counts.empty() ? Unknown() : PropertyAnswer::List(counts);
    });
    ScriptConverters(inPlatform);
}

inline PropertyAnswer CatalogueScript::Variants(const Question& inQuestion) const
{
    const auto type = mFileTypes.find(CodeAt(inQuestion.mSpecifier, 0));
    if (type != mFileTypes.end())
        for (const auto& [format, variants] : type->second.mFormats)
            if (format == CodeAt(inQuestion.mSpecifier, 4))
                return PropertyAnswer::List(variants);
    return Unknown();
}

// One converter at a time, as the probe uses them.
inline void CatalogueScript::ScriptConverters(ScriptedPlatform& inPlatform)
{
    inPlatform.AnswerWith(Family::Converter, kAudioCodecPropertyBitRateControlMode,
                          [this](const Question& question)
                          {
        const ScriptedEncoder& encoder = mEncoders[question.mDestination.mFormatID];
        const auto mode = encoder.mModes.find(CodeAt(question.mData, 0));
        if (mode == encoder.mModes.end())
            return Unknown();
        mMode = mode->first;
        mRate = mode->second.mDefault;
        return PropertyAnswer();
    });
    inPlatform.AnswerWith(Family::Converter, kAudioConverterApplicableEncodeBitRates,
                          [this](const Question& question) {
        return PropertyAnswer::List(
            mEncoders[question.mDestination.mFormatID].mModes[mMode].mRates);
    });
    inPlatform.AnswerWith(Family::Converter, kAudioConverterEncodeBitRate,
                          [this](const Question& question)
                          {
        if (question.mKind != Question::Kind::Set)
            return PropertyAnswer::Value(mRate);
        const UInt32 rate = CodeAt(question.mData, 0);
        if (mEncoders[question.mDestination.mFormatID].mRefusedRates.count(rate) > 0)
            return Unknown();
        mRate = rate;
        return PropertyAnswer();
    });
}

/// A catalogue that is empty before and after each test.
class CatalogueTest : public testing::Test
{
protected:
    CatalogueTest() { EmptyCatalogues(); }
    ~CatalogueTest() override
    {
        EmptyCatalogues();
        EXPECT_EQ(mPlatform.Breaches(), std::vector<std::string>());
        EXPECT_EQ(mPlatform.OpenConverters(), 0);
    }

    // As they are when the module is loaded.
    static void EmptyCatalogues()
    {
        appleaudiotoolbox::sInputFileTypes.clear();
        appleaudiotoolbox::sOutputFileTypes.clear();
    }

    ScriptedPlatform mPlatform;
    CatalogueScript mScript{mPlatform};
};

}  // namespace testing_support

/// So that failures show rates; the platform's record has no comparison of its own.
inline bool operator==(const AudioValueRange& inX, const AudioValueRange& inY)
{
    return inX.mMinimum == inY.mMinimum && inX.mMaximum == inY.mMaximum;
}

inline void PrintTo(const AudioValueRange& inRange, std::ostream* outStream)
{
    *outStream << inRange.mMinimum << ".." << inRange.mMaximum;
}

#endif
