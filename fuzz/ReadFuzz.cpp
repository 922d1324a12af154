// Any bytes at all may be given as an audio file: opening and reading them through callbacks ends,
// stays within its buffers and asks for nothing outside the data.

#include "appleaudiotoolbox/ATReader.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace
{

constexpr int kBlockFrames = 4096;
constexpr int kMostBlocks = 64;

struct Bytes
{
    const std::uint8_t* mData;
    std::size_t mSize;
};

OSStatus ReadBytes(void* inClient, SInt64 inPosition, UInt32 inCount, void* outBytes,
                   UInt32* outCount)
{
    const Bytes& bytes = *static_cast<const Bytes*>(inClient);
    *outCount = 0;
    if (inPosition < 0)
        std::abort();  // no parser may compute such a position
    if (static_cast<std::size_t>(inPosition) >= bytes.mSize)
        return noErr;
    *outCount = static_cast<UInt32>(
        std::min<std::size_t>(inCount, bytes.mSize - static_cast<std::size_t>(inPosition)));
    std::memcpy(outBytes, bytes.mData + inPosition, *outCount);
    return noErr;
}

SInt64 SizeOfBytes(void* inClient)
{
    return static_cast<SInt64>(static_cast<const Bytes*>(inClient)->mSize);
}

void ReadAll(appleaudiotoolbox::ATReader& ioReader)
{
    appleaudiotoolbox::ExtendedErrorInfo info;
    const std::size_t channels = ioReader.GetChannelsPerFrame();
    const std::size_t sampleBytes = ioReader.GetNumReadBytesPerFrame();
    std::vector<char> block(kBlockFrames * channels * sampleBytes);
    for (int i = 0; i < kMostBlocks && !ioReader.IsAtEndOfFile(); ++i)
    {
        int count = kBlockFrames;
        if (!ioReader.ReadSamplesInterleaved(0, &count, block.data(), sampleBytes, info))
            return;
        if (count < 0 || count > kBlockFrames)
            std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    Bytes bytes = {inData, inSize};
    const auto reader = std::make_unique<appleaudiotoolbox::ATReader>();
    appleaudiotoolbox::ExtendedErrorInfo info;
    const appleaudiotoolbox::ReadCallbacks callbacks = {&ReadBytes, &SizeOfBytes};
    if (!reader->Initialize(&bytes, callbacks, 0, info, false))
        return 0;
    (void)reader->GetFormatDescription();
    (void)reader->GetBitrate();
    if (reader->GetChannelLayout().size() < reader->GetChannelsPerFrame())
        std::abort();
    if (!(reader->GetEstimatedDuration() >= 0.0))
        std::abort();
    ReadAll(*reader);
    return 0;
}
