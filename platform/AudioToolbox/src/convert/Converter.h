// Converter: one source, one destination, and the loop that pulls the one into the other.
//
// Frames go straight from the source's block into the client's buffer in one pass. Only another
// rate or channel count, or frames that are to be dropped at the end, take the way through a
// queue. An encoder stands behind all this and pulls its frames from it.
#ifndef AUDIOTOOLBOX_CONVERT_CONVERTER_H
#define AUDIOTOOLBOX_CONVERT_CONVERTER_H

#include "convert/CodecSource.h"
#include "convert/ConversionPlan.h"
#include "convert/InputPull.h"
#include "convert/OutputFrames.h"
#include "convert/PacketEncoder.h"

#include <memory>
#include <optional>

namespace audiotoolbox
{

class Converter
{
public:
    explicit Converter(const ConversionPlan& inPlan);

    /// As AudioConverterFillComplexBuffer. inSelf is what the procedure is told.
    OSStatus Fill(AudioConverterRef inSelf, AudioConverterComplexInputDataProc inProc,
                  void* inUserData, UInt32& ioPackets, AudioBufferList& ioList,
                  AudioStreamPacketDescription* outPackets);
    void Reset();

    const ConversionPlan& Plan() const { return mPlan; }
    bool IsCompressed() const { return mPlan.mSource.mFormatID != kAudioFormatLinearPCM; }
    /// Null where the source takes no cookie.
    CodecSource* CookieTaker() const;
    /// Null where the destination is linear PCM.
    PacketEncoder* Encoder() const { return mEncoder.get(); }
    /// Null where the destination has no bit rates.
    EncoderSettings* Settings() { return HasSettings() ? &*mSettings : nullptr; }
    const EncoderSettings* Settings() const { return HasSettings() ? &*mSettings : nullptr; }

    AudioConverterPrimeInfo Prime() const { return mEncoder ? mEncoder->Prime() : mPrime; }
    /// Takes effect at the start of the audio.
    void SetPrime(const AudioConverterPrimeInfo& inPrime);

private:
    bool HasSettings() const { return mSettings && mSettings->HasBitRates(); }
    OSStatus FillLinear(UInt32& ioFrames, AudioBufferList& ioList);
    OSStatus FillStep(OutputFrames& ioOutput, std::size_t& outFrames);
    OSStatus FillDirect(OutputFrames& ioOutput, std::size_t& outFrames);
    OSStatus FillFromQueue(OutputFrames& ioOutput, std::size_t& outFrames);
    OSStatus PeekValid(std::size_t inWanted, SampleBlock& outBlock);
    OSStatus FeedQueue(std::size_t inWanted);
    void WriteToOutput(const SampleBlock& inBlock, std::size_t inFrames, OutputFrames& ioOutput);
    std::size_t HeldFrames() const;

    const ConversionPlan mPlan;
    InputPull mInput;
    std::unique_ptr<SampleSource> mSource;
    FrameWriter mWriter;
    std::optional<FrameMixer> mMixer;
    FrameQueue mQueue;  // frames of the destination
    AudioConverterPrimeInfo mPrime = {};
    UInt64 mLeadingLeft = 0;  // frames of the input that are still to be dropped
    bool mHasEnded = false;   // nothing more comes into the queue

    std::optional<EncoderSettings> mSettings;  // of the encoder, which refers to them
    std::unique_ptr<PacketEncoder> mEncoder;
};

}  // namespace audiotoolbox

struct OpaqueAudioConverter : audiotoolbox::Converter
{
    using Converter::Converter;
};

#endif
