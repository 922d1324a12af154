// Selector 0 on a scripted platform: what the host is told, in which order.
#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

#include "Tarvo_PlugIns/Common/Module/private/Module.h"
#include "tests/TarvoSDK/RecordingHost.h"
#include "tests/support/CatalogueScript.h"
#include "tests/support/DictionaryInUse.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using namespace testing_support;
using tarvo::TarvoATInterface;

// WAVE and ADTS that can be read and written, and M4A that can only be read.
class Registration : public CatalogueTest
{
protected:
    Registration()
    {
        mScript.mEncodable = {kPCM, kAAC};
        mScript.AddFileType(kWAVE, {"WAVE", {"wav", "wave"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
        mScript.AddFileType(kADTS, {"AAC", {"aac", "adts"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.AddFileType(kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.mWritable = {kWAVE, kADTS};
    }
    ~Registration() override { tarvo::module::Terminate(); }

    // The host's calls behind the exchange of versions.
    CallLog Register()
    {
        mLog.clear();
        RecordingInfo info(mLog);
        EXPECT_EQ(TarvoATInterface().EntryPoint(0, nullptr, &info), 0);
        EXPECT_GE(mLog.size(), 2u);
        return mLog.size() < 2 ? CallLog() : CallLog(mLog.begin() + 2, mLog.end());
    }

    CallLog mLog;
};

constexpr char kIdentity[] =
    "SetPluginIdentity 345FFA79-2BDA-42DD-844B-CA7D18FF7A26 "
    "\"Apple Audio Toolbox Tarvo plug-in\"";
constexpr char kImport[] =
    "AddImportFilter \"Apple Audio Toolbox\" id null extensions aac adts m4a wav wave sdir "
    "reserved null";
constexpr char kExport[] =
    "AddExportFilter \"Apple Audio Toolbox\" id null extensions aac adts wav wave reserved null";
constexpr char kAACExport[] =
    "AddExportFilter \"AAC Audio\" id \"1633973363\" extensions aac adts reserved null";

TEST_F(Registration, ExchangesVersionsAndStartsTheModule)
{
    ASSERT_EQ(tarvo::module::GetResourceManager(), nullptr);
    Register();
    EXPECT_NE(tarvo::module::GetResourceManager(), nullptr);
    ASSERT_GE(mLog.size(), 2u);
    EXPECT_EQ(mLog[0], "SetPluginInterfaceVersion 1 2");
    EXPECT_EQ(mLog[1], "GetHostInterfaceVersion");
}

TEST_F(Registration, TellsIdentityTwoGeneralFiltersAndTheAACFilter)
{
    EXPECT_EQ(Register(), (CallLog{kIdentity, kImport, kExport, kAACExport}));
}

TEST_F(Registration, OfNoOutputTypesHasOneExportFilterWithAnEmptyList)
{
    mScript.mWritable = {};
    EXPECT_EQ(
        Register(),
        (CallLog{kIdentity, kImport,
                 "AddExportFilter \"Apple Audio Toolbox\" id null extensions reserved null"}));
}

TEST_F(Registration, OfNothingAtAllStillHasTheExtraImportExtension)
{
    mScript.mReadable = {};
    mScript.mWritable = {};
    EXPECT_EQ(
        Register(),
        (CallLog{kIdentity,
                 "AddImportFilter \"Apple Audio Toolbox\" id null extensions sdir reserved "
                 "null",
                 "AddExportFilter \"Apple Audio Toolbox\" id null extensions reserved null"}));
}

TEST_F(Registration, WithoutWritableADTSHasNoFilterWithAnId)
{
    mScript.mWritable = {kWAVE};
    EXPECT_EQ(Register(), (CallLog{kIdentity, kImport,
                                   "AddExportFilter \"Apple Audio Toolbox\" id null extensions "
                                   "wav wave reserved null"}));
}

TEST_F(Registration, WithoutAnAACEncoderHasNoFilterWithAnId)
{
    mScript.mEncodable = {kPCM};
    EXPECT_EQ(Register().size(), 3u);
}

TEST_F(Registration, PutsTheExtraExtensionLastWhateverTheOthersAre)
{
    mScript.mFileTypes[kWAVE].mExtensions = {"zzz", "sdir"};
    const CallLog calls = Register();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[1],
              "AddImportFilter \"Apple Audio Toolbox\" id null extensions aac adts m4a sdir zzz "
              "sdir reserved null");
}

TEST_F(Registration, AsksForTheExtensionsOfTheAACFilterAfresh)
{
    Register();
    mScript.mFileTypes[kADTS].mExtensions = {"new"};
    const CallLog calls = Register();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[2], kExport);
    EXPECT_EQ(calls[3],
              "AddExportFilter \"AAC Audio\" id \"1633973363\" extensions new reserved null");
}

TEST_F(Registration, TellsTheSameTheSecondTimeAndAsksThePlatformForTheAACExtensionsAlone)
{
    const CallLog first = Register();
    mPlatform.ForgetCalls();
    EXPECT_EQ(Register(), first);
    EXPECT_EQ(
        mPlatform.Calls(),
        (std::vector<std::string>{"AudioFileGetGlobalInfo 'fext' specifier 4 'adts' size 8"}));
}

TEST_F(Registration, BuildsAnOutputCatalogueThatStaysEmptyTwice)
{
    mScript.mWritable = {};
    Register();
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afrf'").size(), 1u);
    EXPECT_EQ(mPlatform.CallsOf("AudioFileGetGlobalInfoSize 'afwf'").size(), 2u);
}

TEST_F(Registration, TranslatesEachTimeButKeepsTheNameOfTheGeneralFilters)
{
    const CallLog first = Register();
    const DictionaryInUse dictionary(
        "$$$/TarvoPlugIns/TarvoAT/PlugInName=Einschub\n"
        "$$$/TarvoPlugIns/TarvoAT/FilterName=Filter\n"
        "$$$/TarvoPlugIns/TarvoAT/AACFilterName=AAC-Ton\n");
    EXPECT_EQ(Register(),
              (CallLog{"SetPluginIdentity 345FFA79-2BDA-42DD-844B-CA7D18FF7A26 \"Einschub\"",
                       kImport, kExport,
                       "AddExportFilter \"AAC-Ton\" id \"1633973363\" extensions aac adts reserved "
                       "null"}));
}

TEST_F(Registration, StartsTheModuleAfreshEachTime)
{
    Register();
    tarvo::module::Terminate();
    Register();
    EXPECT_NE(tarvo::module::GetResourceManager(), nullptr);
}

class ThrowingInfo : public RecordingInfo
{
public:
    using RecordingInfo::RecordingInfo;
    void AddExportFilter(const uint16*, const uint16*, TarvoExtensionList*, void*) override
    {
        throw std::runtime_error("host");
    }
};

TEST_F(Registration, LetsAHostsExceptionThrough)
{
    ThrowingInfo info(mLog);
    EXPECT_THROW((void)TarvoATInterface().EntryPoint(0, nullptr, &info), std::runtime_error);
    EXPECT_EQ(mLog.back(), kImport);
}

}  // namespace
