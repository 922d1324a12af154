// Opened: a file in memory, opened by its content as any file is.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_FILE_OPENED_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_FILE_OPENED_H

#include "ByteBuilder.h"
#include "platform/AudioToolbox/src/file/PacketReader.h"
#include "support/MemorySource.h"

namespace testing_support
{

struct Opened
{
    OSStatus mStatus = noErr;
    audiotoolbox::PacketReaderPtr mReader;

    const audiotoolbox::FileFacts& Facts() const { return mReader->Facts(); }
    const AudioStreamBasicDescription& Format() const { return Facts().mDataFormat; }
};

inline Opened OpenSource(audiotoolbox::ByteSourcePtr inSource)
{
    Opened opened;
    opened.mStatus = audiotoolbox::OpenAudio(0, inSource, opened.mReader);
    return opened;
}

inline Opened Open(const Bytes& inFile)
{
    return OpenSource(std::make_unique<MemorySource>(inFile));
}

/// Every packet from the first on, read inBatch packets at a time into inRoom bytes. Stops at the
/// end, at a failure, and beyond a million reads.
struct Drained
{
    OSStatus mStatus = noErr;
    Bytes mBytes;
    std::vector<AudioStreamPacketDescription> mPackets;
};

inline Drained Drain(audiotoolbox::PacketReader& inReader, UInt32 inBatch = 7,
                     UInt32 inRoom = 65536)
{
    Drained drained;
    Bytes buffer(inRoom);
    std::vector<AudioStreamPacketDescription> descriptions(inBatch);
    for (int i = 0; i < 1000000; ++i)
    {
        UInt32 bytes = inRoom;
        UInt32 packets = inBatch;
        drained.mStatus = inReader.ReadPackets(static_cast<SInt64>(drained.mPackets.size()), &bytes,
                                               &packets, descriptions.data(), buffer.data());
        if (drained.mStatus != noErr || packets == 0)
            break;
        drained.mPackets.insert(drained.mPackets.end(), descriptions.begin(),
                                descriptions.begin() + packets);
        drained.mBytes.insert(drained.mBytes.end(), buffer.begin(), buffer.begin() + bytes);
    }
    return drained;
}

/// The numbers of a layout record: tag, bitmap, count of descriptions, then each label.
inline std::vector<UInt32> LayoutWords(const Bytes& inLayout)
{
    std::vector<UInt32> words(inLayout.size() / 4);
    if (!words.empty())
        std::memcpy(words.data(), inLayout.data(), words.size() * 4);
    std::vector<UInt32> told(
        words.begin(),
        words.begin() + std::min<std::ptrdiff_t>(3, static_cast<std::ptrdiff_t>(words.size())));
    for (std::size_t i = 3; i < words.size(); i += 5)
        told.push_back(words[i]);
    return told;
}

}  // namespace testing_support

#endif
