// CodecSource: packets through the decoder of the codec module.
//
// Every packet accounts for its frames: where a damaged one brings none, silence of its length
// stands in, so that nothing behind it shifts. A stream of which no packet decodes ends with
// 'bada'.
#ifndef AUDIOTOOLBOX_CONVERT_CODECSOURCE_H
#define AUDIOTOOLBOX_CONVERT_CODECSOURCE_H

#include "convert/CodecInterface.h"
#include "convert/InputPull.h"
#include "convert/SampleSource.h"

#include <memory>
#include <span>
#include <vector>

namespace audiotoolbox
{

struct CloseSession
{
    const CodecModule* mModule = nullptr;
    void operator()(CodecSession* inSession) const { mModule->mClose(inSession); }
};

class CodecSource : public SampleSource
{
public:
    CodecSource(InputPull& inInput, const AudioStreamBasicDescription& inFormat)
        : mInput(inInput), mFormat(inFormat)
    {
    }

    /// The client's form. Statuses as MakeDecoderCookie. A session that is open begins anew.
    OSStatus SetCookie(std::span<const UInt8> inCookie);
    const std::vector<UInt8>& Cookie() const { return mCookie; }

    OSStatus Peek(std::size_t inWanted, SampleBlock& outBlock) override;
    void Consume(std::size_t inFrameCount) override;
    void Reset() override;

private:
    OSStatus Open();
    OSStatus Advance(std::size_t inWanted);
    OSStatus SendNext(std::size_t inWanted);
    OSStatus SendPacket(const InputPacket& inPacket);
    bool FindRawPacket(const InputPacket& inPacket, std::span<const UInt8>& outRaw);
    void TakeFrame();
    void CutFrame();
    void SettleLength(UInt32 inMissing);
    OSStatus SettlePacket();
    OSStatus End();
    bool LengthIsWrong(UInt32 inFrames) const;
    UInt32 StatedFrames(const InputPacket& inPacket) const;
    UInt32 PacketsFor(std::size_t inFrames) const;
    void ShowFrame(SampleBlock& outBlock) const;
    void ShowSilence(SampleBlock& outBlock) const;

    InputPull& mInput;
    const AudioStreamBasicDescription mFormat;
    std::vector<UInt8> mCookie;         // as the client gave it
    std::vector<UInt8> mDecoderCookie;  // as the decoder gets it

    const CodecModule* mModule = nullptr;
    std::unique_ptr<CodecSession, CloseSession> mSession;
    bool mHoldsBack = false;

    CodecFrame mFrame = {};
    std::size_t mFrameOffset = 0;  // frames of mFrame that are taken
    std::size_t mFrameLeft = 0;
    UInt64 mSilence = 0;  // frames that stand before the next decoded one
    UInt64 mMissing = 0;  // frames that become silence if another packet follows

    bool mIsPacketOpen = false;  // sent, and not all of its frames received
    bool mIsPacketBad = false;
    bool mIsPacketCut = false;
    UInt32 mPacketStated = 0;  // frames, by the packet's description or the format; 0: unknown
    UInt32 mPacketFrames = 0;
    UInt32 mUsualFrames = 0;  // of the last good packet
    UInt32 mBadPackets = 0;
    UInt32 mBadAnswers = 0;  // in a row
    bool mHasGood = false;
    bool mIsDraining = false;
    bool mHasEnded = false;
};

}  // namespace audiotoolbox

#endif
