// AMR: opening files of AMR speech, narrow band and wide band, one channel.
//
// Source: RFC 4867, section 5. A frame is one byte that tells its mode and the mode's bytes behind
// it. There is no sync word: after damage, a run of plausible frames is taken for the stream.
#include "file/ChannelLayouts.h"
#include "file/streams/StreamOpening.h"
#include "file/streams/Survey.h"

#include <cstring>

namespace audiotoolbox
{
namespace streams
{
namespace
{

struct Band
{
    const char* mMagic;
    AudioFormatID mFormat;
    UInt32 mSampleRate;
    UInt32 mFramesPerPacket;
    UInt32 mLargestPacket;
    UInt8 mSizes[16];  // bytes of a frame by its mode, the mode's byte included
};

// Modes without a size of their own are frames without data: one byte.
constexpr Band kBands[] = {
    {"#!AMR\n",
     kAudioFormatAMR,
     8000,
     160,
     32,
     {13, 14, 16, 18, 20, 21, 27, 32, 6, 1, 1, 1, 1, 1, 1, 1}},
    {"#!AMR-WB\n",
     kAudioFormatAMR_WB,
     16000,
     320,
     61,
     {18, 24, 33, 37, 41, 47, 51, 59, 61, 6, 1, 1, 1, 1, 1, 1}},
};
constexpr const char* kMultichannelMagics[] = {"#!AMR_MC1.0\n", "#!AMR-WB_MC1.0\n"};

constexpr std::size_t kLongestMagic = 16;
constexpr int kRunAfterLoss = 4;  // frames

class AMRFramer final : public Framer
{
public:
    explicit AMRFramer(const Band& inBand) : mBand(inBand) {}

    bool FindPacket(StreamWindow& ioWindow, SInt64 inPosition, UInt64,
                    StreamPacket& outPacket) override
    {
        SInt64 position = inPosition;
        UInt32 size = SizeAt(ioWindow, position, kMayNotBeSet);
        while (size == 0)
        {
            if (++position >= ioWindow.End() || ioWindow.Status() != noErr)
                return false;
            if (IsRun(ioWindow, position))
                size = SizeAt(ioWindow, position, kMayNotBeSet);
        }
        if (position + size > ioWindow.End())
            return false;
        outPacket = {position, size, mBand.mFramesPerPacket, 0};
        return true;
    }

private:
    static constexpr UInt8 kMayNotBeSet = 0x80;
    static constexpr UInt8 kPadding = 0x83;  // zero in every orderly frame

    // 0 at the end and where no frame begins.
    UInt32 SizeAt(StreamWindow& ioWindow, SInt64 inPosition, UInt8 inForbidden) const
    {
        const auto bytes = ioWindow.Look(inPosition, 1);
        if (bytes.empty() || (bytes[0] & inForbidden) != 0)
            return 0;
        return mBand.mSizes[(bytes[0] >> 3) & 0x0F];
    }

    bool IsRun(StreamWindow& ioWindow, SInt64 inPosition) const
    {
        const auto bytes = ioWindow.Look(inPosition, kRunAfterLoss * 64);
        std::size_t offset = 0;
        for (int i = 0; i < kRunAfterLoss && offset < bytes.size(); ++i)
        {
            if ((bytes[offset] & kPadding) != 0)
                return false;
            offset += mBand.mSizes[(bytes[offset] >> 3) & 0x0F];
        }
        return offset <= bytes.size();
    }

    const Band& mBand;
};

bool HasMagic(std::span<const UInt8> inBytes, const char* inMagic)
{
    const std::size_t size = std::strlen(inMagic);
    return inBytes.size() >= size && std::memcmp(inBytes.data(), inMagic, size) == 0;
}

OSStatus DescribeBand(Opening& ioOpening, const Band& inBand)
{
    FileFacts& facts = ioOpening.mFacts;
    const SInt64 first = ioOpening.mStart + static_cast<SInt64>(std::strlen(inBand.mMagic));
    facts.mFileType = kAudioFileAMRType;
    facts.mDataFormat =
        DescribeFormat(inBand.mFormat, inBand.mSampleRate, 1, inBand.mFramesPerPacket);
    facts.mChannelLayout = MonoOrStereo(1);
    facts.mPacketSizeUpperBound = inBand.mLargestPacket;
    SetDataRange(ioOpening, first);
    ioOpening.mFramer = std::make_unique<AMRFramer>(inBand);
    CompleteStreamFacts(SurveyPackets(*ioOpening.mFramer, *ioOpening.mWindow, first), facts);
    return noErr;
}

OSStatus DescribeAMR(Opening& ioOpening)
{
    const auto bytes = ioOpening.mWindow->Look(ioOpening.mStart, kLongestMagic);
    for (const Band& band : kBands)
        if (HasMagic(bytes, band.mMagic))
            return DescribeBand(ioOpening, band);
    for (const char* const magic : kMultichannelMagics)
        if (HasMagic(bytes, magic))
            return kAudioFileUnsupportedDataFormatError;
    return kAudioFileUnsupportedFileTypeError;
}

}  // namespace
}  // namespace streams

OSStatus OpenAMR(AudioFileTypeID inType, ByteSourcePtr& ioSource, PacketReaderPtr& outReader)
{
    return streams::OpenStream(inType, streams::DescribeAMR, ioSource, outReader);
}

}  // namespace audiotoolbox
