// OpenedFile: opens bytes or a stored file with the parser, and reads packets for a test.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_MPEG4_OPENEDFILE_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_MPEG4_OPENEDFILE_H

#include "file/PacketReader.h"
#include "support/MemorySource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace opened_file
{

using Bytes = std::vector<UInt8>;

inline OSStatus Open(const Bytes& inBytes, audiotoolbox::PacketReaderPtr& outReader)
{
    audiotoolbox::ByteSourcePtr source = std::make_unique<testing_support::MemorySource>(inBytes);
    return audiotoolbox::OpenMPEG4(kAudioFileM4AType, source, outReader);
}

inline audiotoolbox::PacketReaderPtr Opened(const Bytes& inBytes)
{
    audiotoolbox::PacketReaderPtr reader;
    EXPECT_EQ(Open(inBytes, reader), noErr);
    return reader;
}

inline std::string StoredPath(const std::string& inName)
{
    return std::string(TARVO_TEST_DATA) + "/" + inName;
}

inline audiotoolbox::PacketReaderPtr OpenedStored(const std::string& inName)
{
    audiotoolbox::ByteSourcePtr source;
    audiotoolbox::PacketReaderPtr reader;
    EXPECT_EQ(audiotoolbox::OpenFileSource(StoredPath(inName).c_str(), source), noErr) << inName;
    if (source)
    {
        EXPECT_EQ(audiotoolbox::OpenMPEG4(kAudioFileM4AType, source, reader), noErr) << inName;
    }
    return reader;
}

inline Bytes StoredBytes(const std::string& inName)
{
    audiotoolbox::ByteSourcePtr source;
    EXPECT_EQ(audiotoolbox::OpenFileSource(StoredPath(inName).c_str(), source), noErr) << inName;
    Bytes bytes(source ? static_cast<std::size_t>(source->Size()) : 0);
    EXPECT_TRUE(source && source->ReadFully(0, bytes.data(), static_cast<UInt32>(bytes.size())));
    return bytes;
}

struct ReadResult
{
    OSStatus mStatus = noErr;
    Bytes mBytes;
    std::vector<AudioStreamPacketDescription> mPackets;
};

/// One call, with this much room.
inline ReadResult ReadAt(audiotoolbox::PacketReader& ioReader, SInt64 inStart, UInt32 inBytes,
                         UInt32 inPackets)
{
    ReadResult result;
    result.mBytes.resize(inBytes);
    result.mPackets.resize(inPackets);
    result.mStatus = ioReader.ReadPackets(inStart, &inBytes, &inPackets, result.mPackets.data(),
                                          result.mBytes.data());
    result.mBytes.resize(inBytes);
    result.mPackets.resize(inPackets);
    return result;
}

/// Every packet on its own, up to the end.
inline std::vector<Bytes> AllPackets(audiotoolbox::PacketReader& ioReader, UInt32 inRoom = 65536)
{
    std::vector<Bytes> packets;
    for (;;)
    {
        const ReadResult part = ReadAt(ioReader, static_cast<SInt64>(packets.size()), inRoom, 1000);
        EXPECT_EQ(part.mStatus, noErr);
        if (part.mStatus != noErr || part.mPackets.empty())
            return packets;
        for (const AudioStreamPacketDescription& place : part.mPackets)
        {
            const auto begin = part.mBytes.begin() + place.mStartOffset;
            packets.emplace_back(begin, begin + place.mDataByteSize);
        }
    }
}

inline UInt32 LayoutTag(const audiotoolbox::FileFacts& inFacts)
{
    UInt32 tag = 0xDEADBEEF;
    if (inFacts.mChannelLayout.size() >= sizeof(tag))
        std::memcpy(&tag, inFacts.mChannelLayout.data(), sizeof(tag));
    return tag;
}

inline std::vector<UInt32> LayoutLabels(const audiotoolbox::FileFacts& inFacts)
{
    std::vector<UInt32> labels;
    for (std::size_t place = 12; place + 20 <= inFacts.mChannelLayout.size(); place += 20)
    {
        labels.push_back(0);
        std::memcpy(&labels.back(), inFacts.mChannelLayout.data() + place, sizeof(UInt32));
    }
    return labels;
}

}  // namespace opened_file

#endif
