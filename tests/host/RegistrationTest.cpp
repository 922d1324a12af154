#include "host/Registration.h"

#include "TarvoSDK/TarvoGetTarvoInfoInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/Failure.h"

#include <gtest/gtest.h>

namespace
{

std::int32_t sResult = kTarvoResultSuccess;
std::int32_t sHostMajor = 0;
std::int32_t sHostMinor = 0;

// Tells one filter of each kind, with a list of its own for each.
std::int32_t TellOfItself(int inSelector, void*, void* inHostObject)
{
    if (inSelector != kTarvoSelectorGetTarvoInfo)
        return kTarvoResultNotImplemented;
    auto& info = *static_cast<TarvoGetTarvoInfoInterface*>(inHostObject);
    info.SetPluginInterfaceVersion(1, 2);
    info.GetHostInterfaceVersion(&sHostMajor, &sHostMinor);
    info.SetPluginIdentity("GUID", u"N\u00E4me");

    TarvoExtensionList list;
    TarvoExtensionNode aac = {{nullptr, nullptr}, "aac"};
    TarvoExtensionNode adts = {{nullptr, nullptr}, "adts"};
    list.mNext = &aac;
    aac.mNext = &adts;
    adts.mNext = &list;
    list.mPrevious = &adts;
    adts.mPrevious = &aac;
    aac.mPrevious = &list;
    info.AddImportFilter(u"All", nullptr, &list, nullptr);
    info.AddExportFilter(u"AAC", u"1633973363", &list, nullptr);
    return sResult;
}

TEST(RegistrationTest, KeepsVersionIdentityAndFilters)
{
    sResult = kTarvoResultSuccess;
    const host::Registration registration = host::Register(host::PlugIn(&TellOfItself));
    EXPECT_EQ(registration.mVersionMajor, 1);
    EXPECT_EQ(registration.mVersionMinor, 2);
    EXPECT_EQ(registration.mGUID, "GUID");
    EXPECT_EQ(registration.mName, "N\xC3\xA4me");
    EXPECT_EQ(sHostMajor, 1);
    EXPECT_EQ(sHostMinor, 2);

    const std::vector<std::string> extensions = {"aac", "adts"};
    ASSERT_EQ(registration.mImportFilters.size(), 1u);
    EXPECT_EQ(registration.mImportFilters[0].mName, "All");
    EXPECT_EQ(registration.mImportFilters[0].mId, "");
    EXPECT_EQ(registration.mImportFilters[0].mExtensions, extensions);
    ASSERT_EQ(registration.mExportFilters.size(), 1u);
    EXPECT_EQ(registration.mExportFilters[0].mId, "1633973363");
    EXPECT_EQ(registration.mExportFilters[0].mExtensions, extensions);
}

TEST(RegistrationTest, AFailedStartThrowsWithTheResult)
{
    sResult = kTarvoResultFailed;
    try
    {
        host::Register(host::PlugIn(&TellOfItself));
        FAIL() << "the start succeeded";
    }
    catch (const host::Failure& failure)
    {
        EXPECT_EQ(failure.mResult, -1);
        EXPECT_EQ(failure.mExitCode, host::kExitFailed);
    }
}

}  // namespace
