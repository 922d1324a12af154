#include "StreamTesting.h"

#include "tests/support/MemorySource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace stream_testing
{

using audiotoolbox::FileFacts;

const StreamKind kMPEG = {audiotoolbox::OpenMPEGAudio, kAudioFileMP3Type};
const StreamKind kADTS = {audiotoolbox::OpenADTS, kAudioFileAAC_ADTSType};
const StreamKind kLOAS = {audiotoolbox::OpenLOAS, kAudioFileLATMInLOASType};
const StreamKind kAC3 = {audiotoolbox::OpenAC3, kAudioFileAC3Type};
const StreamKind kEAC3 = {audiotoolbox::OpenAC3, kAudioFileEAC3Type};
const StreamKind kAMR = {audiotoolbox::OpenAMR, kAudioFileAMRType};
const StreamKind kFLAC = {audiotoolbox::OpenFLAC, kAudioFileFLACType};

std::string DataPath(const std::string& inName)
{
    return std::string(TEST_DATA) + "/" + inName;
}

Bytes LoadData(const std::string& inName)
{
    std::ifstream file(DataPath(inName), std::ios::binary);
    Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_FALSE(bytes.empty()) << "no data in " << inName;
    return bytes;
}

Bytes Join(std::initializer_list<Bytes> inParts)
{
    Bytes whole;
    for (const Bytes& part : inParts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

Opened Open(const StreamKind& inKind, Bytes inBytes)
{
    Opened opened;
    audiotoolbox::ByteSourcePtr source =
        std::make_unique<testing_support::MemorySource>(std::move(inBytes));
    opened.mStatus = inKind.mOpen(inKind.mType, source, opened.mReader);
    EXPECT_EQ(opened.mStatus == noErr, opened.mReader != nullptr);
    EXPECT_EQ(opened.mStatus == noErr, source == nullptr) << "taken only on success";
    return opened;
}

std::vector<Packet> ReadAll(audiotoolbox::PacketReader& inReader, SInt64 inStart,
                            UInt32 inPacketsPerCall, OSStatus* outStatus)
{
    std::vector<Packet> packets;
    Bytes buffer(std::max<UInt32>(65536, inReader.Facts().mPacketSizeUpperBound));
    std::vector<AudioStreamPacketDescription> descriptions(inPacketsPerCall);
    for (SInt64 next = inStart;;)
    {
        UInt32 bytes = static_cast<UInt32>(buffer.size());
        UInt32 count = inPacketsPerCall;
        const OSStatus status =
            inReader.ReadPackets(next, &bytes, &count, descriptions.data(), buffer.data());
        if (outStatus != nullptr)
            *outStatus = status;
        if (status != noErr || count == 0)
        {
            EXPECT_EQ(bytes, 0u);
            EXPECT_EQ(count, 0u);
            return packets;
        }
        for (UInt32 i = 0; i < count; ++i)
        {
            const UInt8* const from = buffer.data() + descriptions[i].mStartOffset;
            packets.push_back({Bytes(from, from + descriptions[i].mDataByteSize),
                               descriptions[i].mVariableFramesInPacket});
        }
        next += count;
    }
}

std::vector<UInt32> SizesOf(const std::vector<Packet>& inPackets)
{
    std::vector<UInt32> sizes;
    for (const Packet& packet : inPackets)
        sizes.push_back(static_cast<UInt32>(packet.mBytes.size()));
    return sizes;
}

namespace
{

UInt32 WordAt(const FileFacts& inFacts, std::size_t inOffset)
{
    UInt32 word = 0;
    if (inFacts.mChannelLayout.size() >= inOffset + sizeof(word))
        std::memcpy(&word, inFacts.mChannelLayout.data() + inOffset, sizeof(word));
    return word;
}

}  // namespace

UInt32 TagOf(const FileFacts& inFacts)
{
    return WordAt(inFacts, 0);
}

UInt32 BitmapOf(const FileFacts& inFacts)
{
    return WordAt(inFacts, 4);
}

std::vector<UInt32> LabelsOf(const FileFacts& inFacts)
{
    std::vector<UInt32> labels;
    for (UInt32 i = 0; i < WordAt(inFacts, 8); ++i)
        labels.push_back(WordAt(inFacts, 12 + 20 * std::size_t{i}));
    return labels;
}

}  // namespace stream_testing
