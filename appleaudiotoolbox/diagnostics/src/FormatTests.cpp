// FormatTests: the walk through a catalogue. Printing and checking alternate, so that the report
// ends where the breach is.
#include "appleaudiotoolbox/diagnostics/FormatTests.h"

#include "appleaudiotoolbox/diagnostics/src/BitrateTests.h"
#include "appleaudiotoolbox/diagnostics/src/DiagnosticScope.h"
#include "appleaudiotoolbox/utility/FileTypeCatalogue.h"
#include "appleaudiotoolbox/utility/FourCharText.h"
#include "kelpcore/utility/StringConversion.h"
#include "kelpunittesting/TestCase.h"
#include "kelpunittesting/TestSuite.h"

#include <memory>
#include <ostream>

namespace appleaudiotoolbox
{

namespace
{

using kelpcore::utility::UTF16to8;
using kelpunittesting::TestContext;

constexpr DiagnosticScope kTestFileTypes("TestFileTypes");
constexpr DiagnosticScope kTestFileFormat("TestFileFormat");
constexpr DiagnosticScope kTestFormatTypes("TestFormatTypes");
constexpr DiagnosticScope kTestFormatType("TestFormatType");

UTF8String CodeInQuotes(UInt32 inCode)
{
    return UTF16to8(u"'" + FourCharText(inCode) + u"'");
}

void TestFormatType(const ATFormatType& inFormatType, const TestContext& inContext)
{
    std::ostream& report = inContext.TraceOut();
    kTestFormatType.Check(!inFormatType.mName.empty(), "!inFormatType.mName.empty()");
    report << "\t\t\"" << UTF16to8(inFormatType.mName) << "\"\t\t";
    kTestFormatType.Check(
        !inFormatType.mFormatDescription.IsEqual(CAStreamBasicDescription::sEmpty, false),
        "!inFormatType.mFormatDescription.IsEqual(CAStreamBasicDescription::sEmpty, false)");
    char description[1024];
    report << "<" << inFormatType.mFormatDescription.AsString(description, 1024, false) << " >\n";
    TestBitrates(inFormatType, report);
    if (inFormatType.mSupportsVBR)
        report << "\t\t\tVBR\n";
}

// Linear PCM comes in several variants, and nothing else does.
void TestVariants(const ATFormatTypeList& inVariants, const TestContext& inContext)
{
    std::ostream& report = inContext.TraceOut();
    if (inVariants.size() == 1)
    {
        report << "  ";
        kTestFormatTypes.Check(!inVariants.at(0).mFormatDescription.IsPCM(),
                               "!formatTypeIter->second.at(0).mFormatDescription.IsPCM()");
        TestFormatType(inVariants.at(0), inContext);
        return;
    }
    report << "\n";
    for (const ATFormatType& variant : inVariants)
    {
        kTestFormatTypes.Check(variant.mFormatDescription.IsPCM(),
                               "formatIter->mFormatDescription.IsPCM()");
        TestFormatType(variant, inContext);
    }
}

void TestFormatTypes(const ATFormatTypeMap& inFormatTypeMap, bool inIsImport,
                     const TestContext& inContext)
{
    kTestFormatTypes.Check(!inFormatTypeMap.empty(), "!inFormatTypeMap.empty()");
    for (const auto& [formatID, variants] : inFormatTypeMap)
    {
        kTestFormatTypes.Check(formatID != 0, "formatTypeIter->first != 0");
        inContext.TraceOut() << "\t" << CodeInQuotes(formatID);
        kTestFormatTypes.Check(
            inIsImport ? variants.empty() : !variants.empty(),
            "inIsImport ? formatTypeIter->second.empty() : !formatTypeIter->second.empty()");
        TestVariants(variants, inContext);
    }
}

void TestExtensions(const ATExtensionSet& inExtensions, std::ostream& outReport)
{
    kTestFileFormat.Check(!inExtensions.empty(), "!inFileFormat.mExtensionSet.empty()");
    outReport << "(*.";
    for (auto extIter = inExtensions.begin(); extIter != inExtensions.end(); ++extIter)
    {
        kTestFileFormat.Check(!extIter->empty(), "!extIter->empty()");
        if (extIter != inExtensions.begin())
            outReport << ", *.";
        outReport << *extIter;
    }
    outReport << ")\n";
}

void TestFileFormat(UInt32 inFileTypeID, const ATFileFormat& inFileFormat,
                    const TestContext& inContext)
{
    std::ostream& report = inContext.TraceOut();
    kTestFileFormat.Check(inFileTypeID != 0, "inFileTypeID != 0");
    report << CodeInQuotes(inFileTypeID);
    kTestFileFormat.Check(!inFileFormat.mName.empty(), "!inFileFormat.mName.empty()");
    report << "  \t\"" << UTF16to8(inFileFormat.mName) << "\"\t";
    TestExtensions(inFileFormat.mExtensionSet, report);
}

void TestFileTypes(const ATFileTypeMap& inFileTypeMap, bool inIsImport,
                   const TestContext& inContext)
{
    kTestFileTypes.Check(!inFileTypeMap.empty(), "!inFileTypeMap.empty()");
    for (const auto& [fileTypeID, fileFormat] : inFileTypeMap)
    {
        TestFileFormat(fileTypeID, fileFormat, inContext);
        TestFormatTypes(fileFormat.mFormatTypeMap, inIsImport, inContext);
    }
}

}  // namespace

kelpunittesting::Test* FormatTests::CreateTest()
{
    using Case = kelpunittesting::TestCase<FormatTests>;
    auto suite = std::make_unique<kelpunittesting::TestSuite>(kSuiteName);
    suite->AddTest(new Case("QueryInputFormats", &FormatTests::QueryInputFormats));
    suite->AddTest(new Case("QueryOuputFormats", &FormatTests::QueryOuputFormats));
    return suite.release();
}

void FormatTests::QueryInputFormats(const TestContext& inContext)
{
    ATFileTypeMap fileTypes;
    QueryInputFileTypes(fileTypes);
    TestFileTypes(fileTypes, true, inContext);
}

void FormatTests::QueryOuputFormats(const TestContext& inContext)
{
    ATFileTypeMap fileTypes;
    QueryOutputFileTypes(fileTypes);
    TestFileTypes(fileTypes, false, inContext);
}

}  // namespace appleaudiotoolbox
