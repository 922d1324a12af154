#include "appleaudiotoolbox/diagnostics/src/BitrateTests.h"

#include "appleaudiotoolbox/diagnostics/src/DiagnosticScope.h"

#include <ostream>

namespace appleaudiotoolbox
{

namespace
{

// A mode's fields in the record, and its texts.
struct ModeUnderTest
{
    DiagnosticScope mScope;
    const char* mHeading;
    ATBitrateList ATFormatType::*mBitrates;
    UInt32 ATFormatType::*mDefault;
    const char* mDefaultIsThere;
    const char* mDefaultIsMissing;
};

constexpr ModeUnderTest kCBR = {DiagnosticScope("TestCBR"),      "CBR",
                                &ATFormatType::mBitratesCBR,     &ATFormatType::mDefaultCBR,
                                "inFormatType.mDefaultCBR != 0", "inFormatType.mDefaultCBR == 0"};
constexpr ModeUnderTest kLTA = {DiagnosticScope("TestLTA"),      "LTA",
                                &ATFormatType::mBitratesLTA,     &ATFormatType::mDefaultLTA,
                                "inFormatType.mDefaultLTA != 0", "inFormatType.mDefaultLTA == 0"};
constexpr ModeUnderTest kConstrainedVBR = {
    DiagnosticScope("TestConstrainedVBR"),      "VBR (Constrained)",
    &ATFormatType::mBitratesVBRConstrained,     &ATFormatType::mDefaultVBRConstrained,
    "inFormatType.mDefaultVBRConstrained != 0", "inFormatType.mDefaultVBRConstrained == 0"};

// Lists of rates that the encoder holds exactly.
struct SingleRates
{
    static constexpr const char* kIsSound = "iter->mMinimum == iter->mMaximum";
    static bool IsSound(const AudioValueRange& inRange)
    {
        return inRange.mMinimum == inRange.mMaximum;
    }
    static bool IsDefault(const AudioValueRange& inRange, UInt32 inDefault)
    {
        return inRange.mMinimum == inDefault;
    }
    static void Print(const AudioValueRange& inRange, std::ostream& outReport)
    {
        outReport << inRange.mMinimum;
    }
    static void PrintDefault(UInt32, std::ostream& outReport) { outReport << " (Default)"; }
};

// Lists of bounds between which the encoder moves.
struct RateRanges
{
    static constexpr const char* kIsSound = "iter->mMinimum <= iter->mMaximum";
    static bool IsSound(const AudioValueRange& inRange)
    {
        return inRange.mMinimum <= inRange.mMaximum;
    }
    static bool IsDefault(const AudioValueRange& inRange, UInt32 inDefault)
    {
        return inRange.mMinimum <= inDefault && inDefault <= inRange.mMaximum;
    }
    static void Print(const AudioValueRange& inRange, std::ostream& outReport)
    {
        outReport << inRange.mMinimum << " - " << inRange.mMaximum;
    }
    static void PrintDefault(UInt32 inDefault, std::ostream& outReport)
    {
        outReport << " (Default = " << inDefault << ")";
    }
};

// Exactly one range holds the default.
template <typename Kind>
void TestList(const ModeUnderTest& inMode, const ATBitrateList& inBitrates, UInt32 inDefault,
              std::ostream& outReport)
{
    bool foundDefault = false;
    for (const AudioValueRange& range : inBitrates)
    {
        inMode.mScope.Check(Kind::IsSound(range), Kind::kIsSound);
        outReport << "\t\t\t\t";
        Kind::Print(range, outReport);
        if (Kind::IsDefault(range, inDefault))
        {
            inMode.mScope.Check(!foundDefault, "!foundDefault");
            Kind::PrintDefault(inDefault, outReport);
            foundDefault = true;
        }
        outReport << "\n";
    }
    inMode.mScope.Check(foundDefault, "foundDefault");
}

template <typename Kind>
void TestMode(const ModeUnderTest& inMode, const ATFormatType& inFormatType,
              std::ostream& outReport)
{
    const ATBitrateList& bitrates = inFormatType.*inMode.mBitrates;
    const UInt32 defaultBitrate = inFormatType.*inMode.mDefault;
    if (bitrates.empty())
    {
        inMode.mScope.Check(defaultBitrate == 0, inMode.mDefaultIsMissing);
        return;
    }
    inMode.mScope.Check(defaultBitrate != 0, inMode.mDefaultIsThere);
    outReport << "\t\t\t" << inMode.mHeading << ":\n";
    TestList<Kind>(inMode, bitrates, defaultBitrate, outReport);
}

}  // namespace

void TestBitrates(const ATFormatType& inFormatType, std::ostream& outReport)
{
    TestMode<SingleRates>(kCBR, inFormatType, outReport);
    TestMode<SingleRates>(kLTA, inFormatType, outReport);
    TestMode<RateRanges>(kConstrainedVBR, inFormatType, outReport);
}

}  // namespace appleaudiotoolbox
