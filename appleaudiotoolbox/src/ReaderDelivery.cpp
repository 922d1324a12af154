// The pull chain of a read: the caller's frames from the converter, the converter's packets from
// the file.
#include "appleaudiotoolbox/ATReader.h"
#include "appleaudiotoolbox/src/Deinterleave.h"
#include "appleaudiotoolbox/src/Scratch.h"
#include "appleaudiotoolbox/src/TracePlace.h"

#include <algorithm>
#include <cstdio>

namespace appleaudiotoolbox
{

namespace
{

// Bytes of a block of frames, 0 if there is no such block.
std::size_t BlockBytes(int inFrames, std::size_t inChannels, std::size_t inBytesPerSample)
{
    std::size_t bytes = 0;
    if (inFrames <= 0 ||
        __builtin_mul_overflow(static_cast<std::size_t>(inFrames), inChannels, &bytes) ||
        __builtin_mul_overflow(bytes, inBytesPerSample, &bytes))
        return 0;
    return bytes;
}

void TraceReadError(OSStatus inStatus)
{
    static constinit TracePlace sPlace(5);
    if (!sPlace.IsWanted())
        return;
    // The code stands there as it lies in memory, lowest byte first on this machine.
    const char* const code = reinterpret_cast<const char*>(&inStatus);
    char text[1024];
    std::snprintf(text, sizeof(text), "Decode Proc Read error: %d (%4.4s)\n", inStatus, code);
    sPlace.Write(text);
}

}  // namespace

bool ATReader::ReadSamples(long long inStartFrame, int* ioFrameCount, char** outChannels,
                           unsigned long inBytesPerSample, ExtendedErrorInfo& outInfo)
{
    const int wanted = *ioFrameCount;
    const UInt32 channels = mInputFormat.mChannelsPerFrame;
    const std::size_t callerBytes = BlockBytes(wanted, GetChannelsPerFrame(), inBytesPerSample);
    // A caller that reckons with smaller samples than the converter delivers must not be its end.
    const std::size_t clientBytes = BlockBytes(wanted, mClientFormat.mBytesPerFrame, 1);
    const Scratch block = MakeScratch(callerBytes == 0 ? 0 : std::max(callerBytes, clientBytes));
    if (!block->Get())
        return false;
    if (!ReadSamplesInterleaved(inStartFrame, ioFrameCount, block->Get(), inBytesPerSample,
                                outInfo))
        return false;

    const int frames = std::min(*ioFrameCount, wanted);
    const std::size_t sampleBytes = std::min<std::size_t>(inBytesPerSample, 4);
    if (frames > 0)
        Deinterleave(block->Get(), channels, sampleBytes, static_cast<std::size_t>(frames),
                     outChannels);
    return true;
}

bool ATReader::ReadSamplesInterleaved(long long inStartFrame, int* ioFrameCount, char* outFrames,
                                      unsigned long /*inBytesPerSample*/,
                                      ExtendedErrorInfo& outInfo)
{
    AudioBuffer& output = mOutputBufferList.mBuffers[0];
    const UInt32 totalBytes = mClientFormat.mBytesPerFrame * static_cast<UInt32>(*ioFrameCount);
    output.mDataByteSize = totalBytes;
    output.mData = outFrames;
    SInt64 framesDone = 0;
    const bool isFilled = FillFrames(*ioFrameCount, totalBytes, framesDone, outInfo);
    output.mDataByteSize = 0;
    output.mData = nullptr;
    if (!isFilled)
        return false;

    // Wraps where a caller's position is out of this world.
    const auto end =
        static_cast<SInt64>(static_cast<UInt64>(inStartFrame) + static_cast<UInt64>(framesDone));
    mHighestFrame = std::max(mHighestFrame, end);
    *ioFrameCount = static_cast<int>(framesDone);
    return true;
}

// Each pass asks for the whole count and leaves the buffer where it is: a fill is short only at the
// end of the audio, and what little a pass behind it could bring would go over the first frames.
bool ATReader::FillFrames(int inFrames, UInt32 inBytes, SInt64& outFramesDone,
                          ExtendedErrorInfo& outInfo)
{
    const UInt32 packetBytes = mClientFormat.mBytesPerPacket;
    const UInt32 packetsToAsk = packetBytes == 0 ? 0 : inBytes / packetBytes;
    outFramesDone = 0;
    while (outFramesDone < inFrames)
    {
        UInt32 frames = packetsToAsk;
        mPacketsThisFill = 0;
        const OSStatus status = AudioConverterFillComplexBuffer(
            mConverter, &DecoderDataProc, this, &frames, &mOutputBufferList, nullptr);
        if (status != noErr && status != kAudioCodecNotEnoughBufferSpaceError)
            return NoteFailure(outInfo, kATError_AudioConverterFillComplexBuffer, status);
        if (frames == 0)
        {
            mAtEndOfFile = true;
            break;
        }
        CutBehindTheEnd(outFramesDone, frames);
        outFramesDone += frames;
    }
    return true;
}

// The packet table tells where the padding at the end of a compressed file begins. It is held
// against the frames of one call, so only a call that spans the whole file is cut.
void ATReader::CutBehindTheEnd(SInt64 inFramesDone, UInt32& ioFrames)
{
    if (mTotalFrames == 0)
        return;
    // A file may claim fewer frames than none.
    const SInt64 excess = ioFrames + inFramesDone - std::max<SInt64>(mTotalFrames, 0);
    if (excess <= 0)
        return;
    const auto cut = static_cast<UInt32>(std::min<SInt64>(excess, ioFrames));
    ioFrames -= cut;
    mOutputBufferList.mBuffers[0].mDataByteSize -= cut * mClientFormat.mBytesPerFrame;
}

OSStatus ATReader::DecoderDataProc(AudioConverterRef /*inConverter*/, UInt32* ioPackets,
                                   AudioBufferList* ioData,
                                   AudioStreamPacketDescription** outDescriptions, void* inReader)
{
    ATReader& reader = *static_cast<ATReader*>(inReader);
    *ioPackets = std::min(*ioPackets, reader.mPacketsPerRead);
    UInt32 bytes = reader.mReadBufferSize;
    const OSStatus status =
        AudioFileReadPacketData(reader.mAudioFile, false, &bytes, reader.mPacketDescriptions,
                                reader.mNextPacket, ioPackets, reader.mReadBuffer);
    if (status != noErr)
    {
        TraceReadError(status);
        return status;
    }
    reader.mNextPacket += *ioPackets;
    reader.mPacketsThisFill += *ioPackets;

    AudioBuffer& input = ioData->mBuffers[0];
    input.mData = reader.mReadBuffer;
    input.mDataByteSize = bytes;
    input.mNumberChannels = reader.mInputFormat.mChannelsPerFrame;
    if (outDescriptions)
        *outDescriptions = reader.mPacketDescriptions;
    return noErr;
}

bool ATReader::IsAtEndOfFile() const
{
    return mAtEndOfFile;
}

long long ATReader::GetTotalSampleCount() const
{
    return mHighestFrame;
}

bool ATReader::SupportsSeek() const
{
    return false;
}

}  // namespace appleaudiotoolbox
