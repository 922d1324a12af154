#include "convert/CodecEncoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace audiotoolbox
{

namespace
{

// Louder floats than this are no audio; encoders calculate beyond their range with them.
constexpr Float32 kLoudest = 4.0f;

// True where any is louder or no number. By their bits, which is what compilers make vectors of:
// without the sign these order as the magnitudes do, with infinity and what is no number on top.
bool HasLouderThan(Float32 inMagnitude, const Float32* inSamples, std::size_t inCount)
{
    constexpr SInt32 kMagnitude = 0x7FFFFFFF;
    const SInt32 limit = std::bit_cast<SInt32>(inMagnitude);
    SInt32 isLouder = 0;
    for (std::size_t i = 0; i < inCount; ++i)
        isLouder |= (std::bit_cast<SInt32>(inSamples[i]) & kMagnitude) > limit ? 1 : 0;
    return isLouder != 0;
}

}  // namespace

CodecEncoder::CodecEncoder(const ConversionPlan& inPlan, const EncoderSettings& inSettings)
    : mRow(*inPlan.mEncoder),
      mShape(inPlan.mStream),
      mLayout(inPlan.mTo),
      mSettings(inSettings),
      mMayBeLoud(IsFloat(inPlan.mTo.mWord) && (IsFloat(inPlan.mFrom.mWord) || inPlan.mNeedsMixer)),
      mFramesPerPacket(FramesPerPacket(mRow, mShape)),
      mBytesPerFrame(std::size_t{WordBytes(mLayout.mWord)} * mShape.mChannelCount)
{
}

EncoderRequest CodecEncoder::Request() const
{
    EncoderRequest request = {};
    request.mEncoder = mRow.mCodec;
    request.mFormatID = mRow.mFormatID;
    request.mSampleRate = mShape.mRate;
    request.mChannelCount = mShape.mChannelCount;
    request.mChannelMask = EncoderMask(mRow, mShape.mChannelCount);
    request.mLayout = mLayout;
    request.mFramesPerPacket = mFramesPerPacket;
    request.mMode = mSettings.Mode();
    request.mBitRate = mSettings.BitRate();
    if (mSettings.HasQuality())
        request.mQuality = EncoderQuality(mRow, mSettings.Quality());
    if (mConstant)
        request.mBitRate = mConstant->Aim();
    return request;
}

OSStatus CodecEncoder::Open()
{
    mModule = LoadCodecModule();
    if (mModule == nullptr)
        return kAudioConverterErr_FormatNotSupported;
    if (mRow.mFormatID == kAudioFormatMPEG4AAC &&
        mSettings.Mode() == kAudioCodecBitRateControlMode_Constant)
        mConstant.emplace(mSettings.BitRate(), mShape.mRate, mShape.mChannelCount);
    const EncoderRequest request = Request();
    EncoderSession* session = nullptr;
    if (const OSStatus status = mModule->mOpenEncoder(&request, &session); status != noErr)
        return status;
    mSession = {session, CloseEncoderSession{mModule}};
    mFrames.resize(mFramesPerPacket * mBytesPerFrame);
    return noErr;
}

OSStatus CodecEncoder::Fill(const FrameSupply& inSupply, UInt32& ioPackets, AudioBufferList& ioList,
                            AudioStreamPacketDescription* outPackets)
{
    AudioBuffer& buffer = ioList.mBuffers[0];
    const UInt32 wanted = ioPackets;
    const UInt32 room = buffer.mDataByteSize;
    const bool isConstant = BytesPerPacket(mRow, mShape) != 0;
    ioPackets = 0;
    if (ioList.mNumberBuffers != 1 || (room > 0 && buffer.mData == nullptr))
        return kAudioConverterErr_InvalidOutputSize;
    if (outPackets == nullptr && !isConstant && wanted > 0)
        return kAudioConverterErr_RequiresPacketDescriptionsError;

    OSStatus status = noErr;
    UInt32 bytes = 0;
    while (status == noErr && ioPackets < wanted)
    {
        if (!mHasPacket)
            status = MakePacket(inSupply);
        if (status != noErr || !mHasPacket)
            break;
        const UInt32 packetBytes = static_cast<UInt32>(mPacket.size());
        if (packetBytes > room - bytes)
        {
            status = ioPackets == 0 ? OSStatus{kAudioConverterErr_InvalidOutputSize} : noErr;
            break;
        }
        std::memcpy(static_cast<UInt8*>(buffer.mData) + bytes, mPacket.data(), packetBytes);
        if (outPackets != nullptr)
            outPackets[ioPackets] = {SInt64{bytes}, mPacketFrames, packetBytes};
        bytes += packetBytes;
        ++ioPackets;
        mHasPacket = false;
    }
    buffer.mDataByteSize = bytes;
    return status;
}

OSStatus CodecEncoder::MakePacket(const FrameSupply& inSupply)
{
    if (!mSession && !mHasEnded)
        if (const OSStatus status = Open(); status != noErr)
            return status;
    while (!mHasPacket && !mHasEnded)
    {
        EncodedPacket packet = {};
        switch (mModule->mReceivePacket(mSession.get(), &packet))
        {
            case CodecAnswer::Frame:
                KeepPacket(packet);
                break;
            case CodecAnswer::WantsInput:
                if (const OSStatus status = SendNext(inSupply); status != noErr)
                    return status;
                break;
            case CodecAnswer::End:
                mHasEnded = true;
                break;
            default:
                return kAudioConverterErr_UnspecifiedError;
        }
    }
    return noErr;
}

void CodecEncoder::KeepPacket(const EncodedPacket& inPacket)
{
    mPacket.assign(inPacket.mBytes, inPacket.mBytes + inPacket.mByteCount);
    if (mConstant)
    {
        mConstant->Fill(mPacket);
        mModule->mAimAt(mSession.get(), mConstant->Aim());
    }
    // A shorter last packet comes from encoders without delay; the others' are whole for decoders.
    const bool isShort = mRow.mDelay == 0 && !mRow.mFillsPackets && inPacket.mFrameCount != 0 &&
                         inPacket.mFrameCount < mFramesPerPacket;
    mPacketFrames = isShort ? inPacket.mFrameCount : 0;
    mFramesCoded += isShort ? mPacketFrames : mFramesPerPacket;
    mHasPacket = true;
}

OSStatus CodecEncoder::SendNext(const FrameSupply& inSupply)
{
    if (mHasInputEnded)
        return SendEnd();
    UInt32 came = mFramesPerPacket - mHeldFrames;
    const UInt32 wanted = came;
    const OSStatus status = inSupply(mFrames.data() + mHeldFrames * mBytesPerFrame, came);
    TameSamples(mHeldFrames, came);
    mHeldFrames += came;
    mFramesIn += came;
    if (status != noErr)
        return status;
    if (came == wanted)
        return Send(mFramesPerPacket);
    mHasInputEnded = true;
    mSilenceLeft = mRow.mNeedsTail && mFramesIn > 0 ? SInt64{mRow.mDelay} : 0;
    return SendEnd();
}

// The rest of the audio, then silence as far as needed, then the end.
OSStatus CodecEncoder::SendEnd()
{
    if (mHeldFrames == 0 && mSilenceLeft <= 0)
    {
        if (mIsDraining || mFramesIn == 0)
        {
            mHasEnded = true;
            return noErr;
        }
        mIsDraining = true;
        return Send(0);
    }
    if (mHeldFrames == mFramesPerPacket)
        return Send(mFramesPerPacket);
    UInt32 frames = mHeldFrames;
    if (mRow.mFillsPackets || mSilenceLeft > 0)
    {
        std::memset(mFrames.data() + frames * mBytesPerFrame, 0,
                    (mFramesPerPacket - frames) * mBytesPerFrame);
        mSilenceLeft -= mFramesPerPacket - frames;
        frames = mFramesPerPacket;
    }
    return Send(frames);
}

OSStatus CodecEncoder::Send(UInt32 inFrames)
{
    const CodecAnswer answer =
        mModule->mSendFrames(mSession.get(), inFrames > 0 ? mFrames.data() : nullptr, inFrames);
    mHeldFrames = 0;
    return answer == CodecAnswer::WantsInput ? OSStatus{noErr}
                                             : kAudioConverterErr_UnspecifiedError;
}

void CodecEncoder::TameSamples(UInt32 inFirstFrame, UInt32 inFrames)
{
    if (!mMayBeLoud)
        return;
    Float32* samples = reinterpret_cast<Float32*>(mFrames.data() + inFirstFrame * mBytesPerFrame);
    const std::size_t count = std::size_t{inFrames} * mShape.mChannelCount;
    if (!HasLouderThan(kLoudest, samples, count))
        return;
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = std::isfinite(samples[i]) ? std::clamp(samples[i], -kLoudest, kLoudest) : 0.0f;
}

void CodecEncoder::Reset()
{
    mSession.reset();
    mConstant.reset();
    mHeldFrames = 0;
    mFramesIn = mFramesCoded = 0;
    mSilenceLeft = 0;
    mHasInputEnded = mIsDraining = mHasEnded = mHasPacket = false;
}

OSStatus CodecEncoder::GetCookie(std::vector<UInt8>& outCookie)
{
    outCookie.clear();
    if (!mRow.mHasCookie)
        return noErr;
    if (!mSession)
        if (const OSStatus status = Open(); status != noErr)
            return status;
    EncoderFacts facts = {};
    mModule->mTellEncoder(mSession.get(), &facts);
    outCookie.assign(facts.mCookie, facts.mCookie + facts.mCookieByteCount);
    return noErr;
}

AudioConverterPrimeInfo CodecEncoder::Prime() const
{
    const UInt64 valid = mRow.mDelay + mFramesIn;
    const bool isComplete = mHasEnded && mFramesCoded > valid;
    return {mRow.mDelay, isComplete ? static_cast<UInt32>(mFramesCoded - valid) : 0};
}

}  // namespace audiotoolbox
