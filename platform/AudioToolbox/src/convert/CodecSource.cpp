#include "convert/CodecSource.h"

#include "convert/AACDecoderConfig.h"
#include "convert/DecoderCookies.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace audiotoolbox
{

namespace
{

constexpr UInt32 kMostFramesPerPacket = 1 << 20;
constexpr UInt32 kMostPacketsPerPull = 1 << 16;
constexpr UInt32 kBadPacketsUntilHopeless = 16;
constexpr UInt32 kBadAnswersUntilHopeless = 64;  // without a packet sent between them

alignas(8) constexpr UInt8 kSilence[16384] = {};

}  // namespace

OSStatus CodecSource::SetCookie(std::span<const UInt8> inCookie)
{
    std::vector<UInt8> decoderCookie;
    const DataFormat* format = FindDataFormat(mFormat.mFormatID);
    if (format == nullptr)
        return kAudioConverterErr_FormatNotSupported;
    if (const OSStatus status = MakeDecoderCookie(*format, inCookie, decoderCookie);
        status != noErr)
        return status;
    mCookie.assign(inCookie.begin(), inCookie.end());
    mDecoderCookie.swap(decoderCookie);
    mSession.reset();
    Reset();
    return noErr;
}

OSStatus CodecSource::Open()
{
    mModule = LoadCodecModule();
    if (mModule == nullptr)
        return kAudioConverterErr_FormatNotSupported;
    const CodecRequest request = {mFormat, mDecoderCookie.data(),
                                  static_cast<UInt32>(mDecoderCookie.size())};
    CodecSession* session = nullptr;
    if (const OSStatus status = mModule->mOpen(&request, &session); status != noErr)
        return status;
    mSession = {session, CloseSession{mModule}};
    CodecInfo info = {};
    mModule->mTellInfo(session, &info);
    mHoldsBack = info.mHoldsPacketsBack;
    return noErr;
}

OSStatus CodecSource::Peek(std::size_t inWanted, SampleBlock& outBlock)
{
    outBlock.mFrameCount = 0;
    for (;;)
    {
        if (mSilence > 0 && mHasGood)
        {
            ShowSilence(outBlock);
            return noErr;
        }
        if (mFrameLeft > 0)
        {
            ShowFrame(outBlock);
            return noErr;
        }
        if (mHasEnded)
            return noErr;
        if (const OSStatus status = Advance(inWanted); status != noErr)
            return status;
    }
}

void CodecSource::Consume(std::size_t inFrameCount)
{
    if (mSilence > 0 && mHasGood)
    {
        mSilence -= inFrameCount;
        return;
    }
    mFrameOffset += inFrameCount;
    mFrameLeft -= inFrameCount;
}

OSStatus CodecSource::Advance(std::size_t inWanted)
{
    if (!mSession)
        return SendNext(inWanted);
    switch (mModule->mReceive(mSession.get(), &mFrame))
    {
        case CodecAnswer::Frame:
            TakeFrame();
            return noErr;
        case CodecAnswer::WantsInput:
            if (const OSStatus status = SettlePacket(); status != noErr)
                return status;
            return mIsDraining ? End() : SendNext(inWanted);
        case CodecAnswer::BadData:
            mIsPacketBad = true;
            if (++mBadAnswers > kBadAnswersUntilHopeless)
                return kAudioCodecBadDataError;
            return SettlePacket();
        case CodecAnswer::End:
            if (const OSStatus status = SettlePacket(); status != noErr)
                return status;
            return End();
        case CodecAnswer::Failed:
            break;
    }
    return kAudioConverterErr_UnspecifiedError;
}

OSStatus CodecSource::SendNext(std::size_t inWanted)
{
    if (const OSStatus status = mInput.Pull(PacketsFor(inWanted)); status != noErr)
        return status;
    if (mInput.PacketsLeft() == 0)
    {
        mIsDraining = true;
        if (!mSession)
            return End();
        (void)mModule->mSend(mSession.get(), nullptr, 0);  // what it means shows at the receive
        return noErr;
    }
    const InputPacket packet = mInput.Front();
    mInput.Drop(1);
    return SendPacket(packet);
}

OSStatus CodecSource::SendPacket(const InputPacket& inPacket)
{
    mSilence += std::exchange(mMissing, 0);
    mIsPacketOpen = true;
    mPacketStated = StatedFrames(inPacket);
    mPacketFrames = 0;
    mIsPacketCut = false;
    mBadAnswers = 0;
    std::span<const UInt8> raw;
    mIsPacketBad = !FindRawPacket(inPacket, raw) || raw.empty();
    if (mIsPacketBad)
        return SettlePacket();
    if (!mSession)
        if (const OSStatus status = Open(); status != noErr)
            return status;
    const CodecAnswer answer =
        mModule->mSend(mSession.get(), raw.data(), static_cast<UInt32>(raw.size()));
    mIsPacketBad = answer == CodecAnswer::BadData;
    return answer == CodecAnswer::Failed ? kAudioConverterErr_UnspecifiedError : OSStatus{noErr};
}

// AAC without a cookie comes in ADTS frames, whose heads tell the configuration.
bool CodecSource::FindRawPacket(const InputPacket& inPacket, std::span<const UInt8>& outRaw)
{
    outRaw = {inPacket.mBytes, inPacket.mByteCount};
    const DataFormat* format = FindDataFormat(mFormat.mFormatID);
    if (format == nullptr || format->mCookie != CookieForm::AAC || !mCookie.empty())
        return true;
    AACConfig config;
    UInt32 headBytes = 0;
    if (!ReadADTSHead(outRaw, config, headBytes))
        return false;
    if (config.mChannelConfig == 0)
    {
        mDecoderCookie.clear();  // the packets themselves tell the channels, behind their heads
        return true;
    }
    if (!mSession)
        mDecoderCookie = MakeAACDecoderConfig(config, {}, mFormat.mFormatID);
    outRaw = outRaw.subspan(headBytes);
    return true;
}

void CodecSource::TakeFrame()
{
    const bool isMonoForStereo = mFrame.mChannelCount == 1 && mFormat.mChannelsPerFrame == 2 &&
                                 mFormat.mFormatID == kAudioFormatMPEG4AAC_HE_V2;
    if (isMonoForStereo && mFrame.mPlaneCount == 1)
    {
        mFrame.mPlanes[1] = mFrame.mPlanes[0];
        mFrame.mPlaneCount = mFrame.mChannelCount = 2;
    }
    if (mFrame.mChannelCount != mFormat.mChannelsPerFrame ||
        mFrame.mSampleRate != std::floor(mFormat.mSampleRate + 0.5))
    {
        mIsPacketBad = true;
        return;
    }
    mFrameOffset = 0;
    mFrameLeft = mFrame.mFrameCount;
    CutFrame();
    mPacketFrames += static_cast<UInt32>(mFrameLeft);
    mUsualFrames = mFrame.mFrameCount;
    mHasGood = true;
}

// A damaged packet may decode to more than it stands for.
void CodecSource::CutFrame()
{
    const UInt32 stated = mFormat.mFramesPerPacket;
    const UInt32 frames = mPacketFrames + mFrame.mFrameCount;
    mIsPacketCut = frames > stated && LengthIsWrong(frames);
    if (mIsPacketCut)
        mFrameLeft = stated - std::min(stated, mPacketFrames);
}

void CodecSource::SettleLength(UInt32 inMissing)
{
    const bool isShort = LengthIsWrong(mPacketFrames);
    if (isShort)
        mMissing = inMissing;  // only the last packet is short by right
    if (mHoldsBack && (isShort || mIsPacketCut))
        mModule->mFlush(mSession.get());  // what it holds back belongs to no frame any more
}

OSStatus CodecSource::SettlePacket()
{
    if (!mIsPacketOpen)
        return noErr;
    mIsPacketOpen = false;
    const UInt32 expected = mPacketStated != 0 ? mPacketStated : mUsualFrames;
    const UInt32 missing = expected - std::min(expected, mPacketFrames);
    const bool isBad = mIsPacketBad || (mPacketFrames == 0 && !mHoldsBack);
    if (!isBad)
    {
        SettleLength(missing);
        return noErr;
    }
    mSilence += missing;
    ++mBadPackets;
    return !mHasGood && mBadPackets >= kBadPacketsUntilHopeless ? kAudioCodecBadDataError
                                                                : OSStatus{noErr};
}

OSStatus CodecSource::End()
{
    mHasEnded = true;
    return !mHasGood && mBadPackets > 0 ? kAudioCodecBadDataError : OSStatus{noErr};
}

// Decoders that hold frames back give a few less at first, and more later.
bool CodecSource::LengthIsWrong(UInt32 inFrames) const
{
    const SInt64 stated = mFormat.mFramesPerPacket;
    const SInt64 tolerance = mHoldsBack ? stated / 4 : 0;
    return stated != 0 && std::abs(inFrames - stated) > tolerance;
}

UInt32 CodecSource::StatedFrames(const InputPacket& inPacket) const
{
    const UInt32 frames =
        inPacket.mFrameCount != 0 ? inPacket.mFrameCount : mFormat.mFramesPerPacket;
    return std::min(frames, kMostFramesPerPacket);
}

UInt32 CodecSource::PacketsFor(std::size_t inFrames) const
{
    constexpr UInt32 kLikelyFrames = 4096;
    UInt32 perPacket = mFormat.mFramesPerPacket;
    if (perPacket == 0)
        perPacket = mUsualFrames != 0 ? mUsualFrames : kLikelyFrames;
    const std::size_t packets = inFrames / perPacket + (inFrames % perPacket != 0 ? 1 : 0);
    return static_cast<UInt32>(std::clamp<std::size_t>(packets, 1, kMostPacketsPerPull));
}

void CodecSource::ShowFrame(SampleBlock& outBlock) const
{
    const std::size_t wordBytes = WordBytes(mFrame.mLayout.mWord);
    const std::size_t perFrame = mFrame.mPlaneCount == 1 ? mFrame.mChannelCount : 1;
    for (UInt32 plane = 0; plane < mFrame.mPlaneCount; ++plane)
        outBlock.mPlanes[plane] = mFrame.mPlanes[plane] + mFrameOffset * wordBytes * perFrame;
    outBlock.mPlaneCount = mFrame.mPlaneCount;
    outBlock.mLayout = mFrame.mLayout;
    outBlock.mFrameCount = mFrameLeft;
}

void CodecSource::ShowSilence(SampleBlock& outBlock) const
{
    const std::size_t most = sizeof(kSilence) / sizeof(Float32) / mFormat.mChannelsPerFrame;
    outBlock.mPlanes[0] = kSilence;
    outBlock.mPlaneCount = 1;
    outBlock.mLayout = SampleLayout();
    outBlock.mFrameCount = static_cast<std::size_t>(std::min<UInt64>(mSilence, most));
}

void CodecSource::Reset()
{
    if (mSession)
        mModule->mFlush(mSession.get());
    mFrameLeft = 0;
    mSilence = mMissing = 0;
    mIsPacketOpen = mIsPacketBad = false;
    mBadPackets = mBadAnswers = 0;
    mHasGood = mIsDraining = mHasEnded = false;
}

}  // namespace audiotoolbox
