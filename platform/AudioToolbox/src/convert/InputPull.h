// InputPull: asks the client's procedure for packets and checks what it hands over.
//
// Data belongs to the client and is good until the fill returns; KeepRest copies what is left by
// then. A procedure that once answered 0 packets is not asked again before Reset.
#ifndef AUDIOTOOLBOX_CONVERT_INPUTPULL_H
#define AUDIOTOOLBOX_CONVERT_INPUTPULL_H

#include <AudioToolbox/AudioConverter.h>

#include <vector>

namespace audiotoolbox
{

struct InputPacket
{
    const UInt8* mBytes = nullptr;
    UInt32 mByteCount = 0;
    UInt32 mFrameCount = 0;  // 0: the format's constant
};

class InputPull
{
public:
    /// inPacketBytes: of constant packets; 0: the procedure describes them.
    explicit InputPull(UInt32 inPacketBytes) : mPacketBytes(inPacketBytes) {}

    /// For the time of one fill.
    void Bind(AudioConverterRef inConverter, AudioConverterComplexInputDataProc inProc,
              void* inUserData);

    /// Asks once, and only when no packet is left. noErr with none left means the end. The
    /// procedure's own status, or 'insz' for data that is null, too short for its packets or not
    /// where its descriptions say, or '!pkd' for missing descriptions.
    OSStatus Pull(UInt32 inWantedPackets);

    UInt32 PacketsLeft() const { return mCount - mIndex; }

    /// The next packet; those of constant size lie one behind the other.
    InputPacket Front() const;
    void Drop(UInt32 inPackets) { mIndex += inPackets; }

    void KeepRest();
    void Reset();

private:
    OSStatus Accept(UInt32 inAsked, UInt32 inPackets, const AudioBuffer& inBuffer,
                    const AudioStreamPacketDescription* inDescriptions);
    OSStatus AcceptConstant(UInt32 inPackets, UInt32 inByteCount);
    OSStatus AcceptDescribed(UInt32 inAsked, UInt32 inPackets, UInt32 inByteCount,
                             const AudioStreamPacketDescription* inDescriptions);
    void KeepDescribed();

    AudioConverterRef mConverter = nullptr;
    AudioConverterComplexInputDataProc mProc = nullptr;
    void* mUserData = nullptr;

    const UInt32 mPacketBytes;
    const UInt8* mBytes = nullptr;
    const AudioStreamPacketDescription* mDescriptions = nullptr;
    UInt32 mIndex = 0;
    UInt32 mCount = 0;
    bool mHasEnded = false;
    bool mIsKept = false;  // the rest lies in the two vectors below

    std::vector<UInt8> mKeptBytes;
    std::vector<AudioStreamPacketDescription> mKeptDescriptions;
};

}  // namespace audiotoolbox

#endif
