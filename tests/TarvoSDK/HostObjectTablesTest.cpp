// The binary form of the host objects: positions, widths, and the list of extensions.
#include "TarvoSDK/TarvoInterfaceTemplate.h"
#include "tests/TarvoSDK/RecordingInterface.h"
#include "tests/support/TableOffset.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace
{

using testing_support::TableOffset;

TEST(HostObjectTables, ErrorTextIsTheFirstOperation)
{
    EXPECT_EQ(TableOffset(&TarvoErrorInterface::SetErrorText), 16);
}

TEST(HostObjectTables, FormatKeepsItsOrder)
{
    using T = TarvoFormatInterface;
    EXPECT_EQ(TableOffset(&T::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&T::GetSampleRate), 24);
    EXPECT_EQ(TableOffset(&T::SetSampleRate), 32);
    EXPECT_EQ(TableOffset(&T::GetSampleType), 40);
    EXPECT_EQ(TableOffset(&T::SetSampleType), 48);
    EXPECT_EQ(TableOffset(&T::GetChannelCount), 56);
    EXPECT_EQ(TableOffset(&T::SetChannelCount), 64);
    EXPECT_EQ(TableOffset(&T::GetChannelLabel), 72);
    EXPECT_EQ(TableOffset(&T::SetChannelLabel), 80);
    EXPECT_EQ(TableOffset(&T::GetFilterId), 104);
    EXPECT_EQ(TableOffset(&T::GetPrivateSettings), 112);
    EXPECT_EQ(TableOffset(&T::SetPrivateSettings), 120);
    EXPECT_EQ(TableOffset(&T::SetMimeType), 128);
    EXPECT_EQ(TableOffset(&T::SetXmpType), 144);
    EXPECT_EQ(TableOffset(&T::SetFormatFlags), 160);
    EXPECT_EQ(TableOffset(&T::GetFormatFlags), 168);
    EXPECT_EQ(TableOffset(&T::SetSampleCount), 208);
    EXPECT_EQ(TableOffset(&T::GetSampleCount), 216);
    EXPECT_EQ(TableOffset(&T::SetFileExtensions), 224);
}

TEST(HostObjectTables, InfoKeepsItsOrder)
{
    using T = TarvoGetTarvoInfoInterface;
    EXPECT_EQ(TableOffset(&T::SetPluginInterfaceVersion), 16);
    EXPECT_EQ(TableOffset(&T::GetHostInterfaceVersion), 24);
    EXPECT_EQ(TableOffset(&T::SetPluginIdentity), 32);
    EXPECT_EQ(TableOffset(&T::AddImportFilter), 40);
    EXPECT_EQ(TableOffset(&T::AddExportFilter), 48);
}

TEST(HostObjectTables, ReadingObjectsKeepTheirOrder)
{
    EXPECT_EQ(TableOffset(&TarvoPreOpenInterface::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&TarvoRunImportSettingsDialogInterface::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&TarvoRunImportSettingsDialogInterface::SetDialogResult), 56);

    using Open = TarvoOpenInterface;
    EXPECT_EQ(TableOffset(&Open::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&Open::GetFilePath), 32);
    EXPECT_EQ(TableOffset(&Open::SetFileHandle), 48);
    EXPECT_EQ(TableOffset(&Open::SetOpenStatus), 64);
    EXPECT_EQ(TableOffset(&Open::SetFormatDescription), 80);
    EXPECT_EQ(TableOffset(&Open::SetBitrate), 96);

    using Read = TarvoReadSamplesInterface;
    EXPECT_EQ(TableOffset(&Read::GetStartSample), 16);
    EXPECT_EQ(TableOffset(&Read::GetSampleCount), 24);
    EXPECT_EQ(TableOffset(&Read::GetChannelBuffer), 32);
    EXPECT_EQ(TableOffset(&Read::GetBufferSize), 40);
    EXPECT_EQ(TableOffset(&Read::SetSamplesRead), 48);
    EXPECT_EQ(TableOffset(&Read::SetTotalSampleCount), 56);
}

TEST(HostObjectTables, RawAndMetadataObjectsKeepTheirOrder)
{
    using Raw = TarvoReadSamplesRawInterface;
    EXPECT_EQ(TableOffset(&Raw::GetRawFirst), 16);
    EXPECT_EQ(TableOffset(&Raw::GetRawSecond), 24);
    EXPECT_EQ(TableOffset(&Raw::GetRawBuffer), 32);

    using Metadata = TarvoReadMetadataInterface;
    EXPECT_EQ(TableOffset(&Metadata::GetRawFirst), 16);
    EXPECT_EQ(TableOffset(&Metadata::GetRawSecond), 24);
    EXPECT_EQ(TableOffset(&Metadata::GetRawThird), 32);
    EXPECT_EQ(TableOffset(&Metadata::GetRawBuffer), 40);
}

TEST(HostObjectTables, ExportObjectsKeepTheirOrder)
{
    using Info = TarvoGetExportSettingsInfoInterface;
    EXPECT_EQ(TableOffset(&Info::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&Info::GetFormatInterface), 24);
    EXPECT_EQ(TableOffset(&Info::GetRepairMode), 32);
    EXPECT_EQ(TableOffset(&Info::SetEstimatedBits), 40);
    EXPECT_EQ(TableOffset(&Info::SetHasSettings), 56);
    EXPECT_EQ(TableOffset(&Info::SetLossy), 72);
    EXPECT_EQ(TableOffset(&Info::SetFormatDescription), 88);

    using Dialog = TarvoRunExportSettingsDialogInterface;
    EXPECT_EQ(TableOffset(&Dialog::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&Dialog::GetFormatInterface), 24);
    EXPECT_EQ(TableOffset(&Dialog::GetParentWindow), 32);
    EXPECT_EQ(TableOffset(&Dialog::SetCancelled), 40);
    EXPECT_EQ(TableOffset(&Dialog::GetDialogOption), 56);
}

TEST(HostObjectTables, WritingObjectsKeepTheirOrder)
{
    using Start = TarvoWriteStartInterface;
    EXPECT_EQ(TableOffset(&Start::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&Start::GetFilePath), 24);
    EXPECT_EQ(TableOffset(&Start::GetFormatInterface), 40);
    EXPECT_EQ(TableOffset(&Start::SetFormatDescription), 64);
    EXPECT_EQ(TableOffset(&Start::SetWriterHandle), 80);

    using Write = TarvoWriteSamplesInterface;
    EXPECT_EQ(TableOffset(&Write::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&Write::GetStartSample), 24);
    EXPECT_EQ(TableOffset(&Write::GetSampleCount), 32);
    EXPECT_EQ(TableOffset(&Write::GetChannelBuffer), 40);

    using Finish = TarvoFinishWriteInterface;
    EXPECT_EQ(TableOffset(&Finish::GetErrorInterface), 16);
    EXPECT_EQ(TableOffset(&Finish::GetFinishFlag), 24);
    EXPECT_EQ(TableOffset(&Finish::GetFormatInterface), 32);
}

template <typename Operation>
struct Shape;
template <typename Class, typename Answer, typename... Arguments>
struct Shape<Answer (Class::*)(Arguments...)>
{
    using Plain = Answer(Arguments...);
};
template <typename Class, typename Answer, typename... Arguments>
struct Shape<Answer (Class::*)(Arguments...) const>
{
    using Plain = Answer(Arguments...);
};
template <auto kOperation, typename Expected>
constexpr bool kHasShape = std::is_same_v<typename Shape<decltype(kOperation)>::Plain, Expected>;

using Label = tarvo::AudioChannelLabel;
static_assert(sizeof(Label) == 4 && std::is_enum_v<Label>);
static_assert(kHasShape<&TarvoFormatInterface::GetSampleRate, std::int32_t()>);
static_assert(kHasShape<&TarvoFormatInterface::SetSampleRate, void(std::int32_t)>);
static_assert(kHasShape<&TarvoFormatInterface::GetSampleType, std::int32_t()>);
static_assert(kHasShape<&TarvoFormatInterface::SetSampleType, void(std::int32_t)>);
static_assert(kHasShape<&TarvoFormatInterface::GetChannelCount, std::int64_t()>);
static_assert(kHasShape<&TarvoFormatInterface::SetChannelCount, void(std::int32_t)>);
static_assert(kHasShape<&TarvoFormatInterface::GetChannelLabel, Label(std::int64_t)>);
static_assert(kHasShape<&TarvoFormatInterface::SetChannelLabel, void(std::int64_t, Label)>);
static_assert(kHasShape<&TarvoFormatInterface::SetXmpType, void(std::uint32_t)>);
static_assert(kHasShape<&TarvoFormatInterface::SetFormatFlags, void(std::int32_t)>);
static_assert(kHasShape<&TarvoFormatInterface::GetFormatFlags, std::int32_t()>);
static_assert(kHasShape<&TarvoFormatInterface::SetSampleCount, void(std::int64_t)>);
static_assert(kHasShape<&TarvoFormatInterface::GetSampleCount, std::int64_t()>);
static_assert(kHasShape<&TarvoOpenInterface::SetOpenStatus, void(std::int32_t)>);
static_assert(kHasShape<&TarvoOpenInterface::SetBitrate, void(std::uint32_t)>);
static_assert(kHasShape<&TarvoReadSamplesInterface::GetChannelBuffer, char*(std::int32_t)>);
static_assert(kHasShape<&TarvoReadSamplesInterface::GetBufferSize, std::int64_t()>);
static_assert(kHasShape<&TarvoReadSamplesInterface::SetSamplesRead, void(std::int64_t)>);
static_assert(kHasShape<&TarvoWriteSamplesInterface::GetChannelBuffer, const char*(std::int64_t)>);
static_assert(kHasShape<&TarvoGetExportSettingsInfoInterface::GetRepairMode, std::int32_t()>);
static_assert(
    kHasShape<&TarvoGetExportSettingsInfoInterface::SetEstimatedBits, void(std::int64_t)>);
static_assert(kHasShape<&TarvoFinishWriteInterface::GetFinishFlag, std::int32_t()>);
static_assert(
    kHasShape<&TarvoFinishWriteInterface::GetFormatInterface, const TarvoFormatInterface*()>);
static_assert(kHasShape<&TarvoWriteStartInterface::GetFilePath, const uint16*()>);
static_assert(kHasShape<&TarvoOpenInterface::GetFilePath, const char*()>);
static_assert(std::is_same_v<decltype(&TarvoInterface), TarvoInterfaceFunction>);

TEST(ExtensionList, NodesAreThreePointersAndTheHeadIsTwo)
{
    TarvoExtensionList list;
    TarvoExtensionNode node{{&list, &list}, "wav"};
    list.mNext = &node;
    list.mPrevious = &node;

    void* words[3];
    std::memcpy(words, &node, sizeof words);
    EXPECT_EQ(words[0], &list);
    EXPECT_EQ(words[1], &list);
    EXPECT_STREQ(static_cast<const char*>(words[2]), "wav");
    std::memcpy(words, &list, 16);
    EXPECT_EQ(words[0], &node);
    EXPECT_EQ(words[1], &node);
}

TEST(InterfaceTable, OperationsKeepTheirOrderBehindTheTwoDestructors)
{
    using T = testing_support::FakeTemplate;
    EXPECT_EQ(TableOffset(&T::GetTarvoInfo), 16);
    EXPECT_EQ(TableOffset(&T::Initialize), 24);
    EXPECT_EQ(TableOffset(&T::Terminate), 32);
    EXPECT_EQ(TableOffset(&T::PreOpenForRead), 40);
    EXPECT_EQ(TableOffset(&T::RunImportSettingsDialog), 48);
    EXPECT_EQ(TableOffset(&T::OpenForRead), 56);
    EXPECT_EQ(TableOffset(&T::GetFormat), 64);
    EXPECT_EQ(TableOffset(&T::ReadSamples), 72);
    EXPECT_EQ(TableOffset(&T::ReadSamplesRaw), 80);
    EXPECT_EQ(TableOffset(&T::ReadVideoFrame), 88);
    EXPECT_EQ(TableOffset(&T::ReadMetadata), 96);
    EXPECT_EQ(TableOffset(&T::DoneWithAudioRead), 104);
    EXPECT_EQ(TableOffset(&T::CloseForRead), 112);
    EXPECT_EQ(TableOffset(&T::GetDefaultExportSettings), 120);
    EXPECT_EQ(TableOffset(&T::GetExportSettingsInfo), 128);
    EXPECT_EQ(TableOffset(&T::RunExportSettingsDialog), 136);
    EXPECT_EQ(TableOffset(&T::WriteStart), 144);
    EXPECT_EQ(TableOffset(&T::WriteSamples), 152);
    EXPECT_EQ(TableOffset(&T::FinishWrite), 160);
}

TEST(InterfaceTable, AnInstanceIsItsTableAndTheErrorObject)
{
    EXPECT_EQ(sizeof(testing_support::FakeTemplate), 16u);
}

TEST(MetadataTypes, HaveTheirIdentifiers)
{
    EXPECT_STREQ(tarvo::kTarvoMetadataTypeID_XMP, "0D2AE778-D75A-41EA-8B43-55E42F73BA5B");
    EXPECT_STREQ(tarvo::kTarvoMetadataTypeID_GenericWaveMetadataChunk,
                 "D3F80001-8DFA-4E93-B85C-B94A96522E45");
    EXPECT_STREQ(tarvo::kTarvoMetadataTypeID_GenericAiffMetadataChunk,
                 "FBB4209D-D2CA-4EE9-A569-B9EB30D33B81");
}

}  // namespace
