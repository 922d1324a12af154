// RecordingWriter: a container that keeps what it is told, and fails where a test wants it to.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_EXTENDED_RECORDINGWRITER_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_EXTENDED_RECORDINGWRITER_H

#include "platform/AudioToolbox/src/file/write/PacketWriter.h"

#include <string>

namespace extended_test
{

using ByteVector = std::vector<UInt8>;

/// What the writers of one test were told. Makers are plain functions, so there is one at a time.
struct Record
{
    std::string mCalls;  // a letter a call: m, S, W, F, and C of the sink
    audiotoolbox::WriteRequest mRequest;
    audiotoolbox::StreamStart mStart;
    audiotoolbox::StreamEnd mEnd;
    ByteVector mBytes;
    std::vector<SInt64> mPacketStarts;  // of described packets, within their write
    std::vector<UInt32> mPacketBytes;
    std::vector<UInt32> mPacketFrames;  // 0: the usual number
    std::vector<const UInt8*> mPlaces;  // where the bytes of each write lay

    OSStatus mMakeStatus = noErr;
    OSStatus mStartStatus = noErr;
    OSStatus mWriteStatus = noErr;
    int mFailingWrite = 0;  // counted from 1; 0: none
    OSStatus mFinishStatus = noErr;
    OSStatus mCloseStatus = noErr;

    int mWrites = 0;
};

inline Record* sRecord = nullptr;

class RecordInUse
{
public:
    RecordInUse() { sRecord = &mRecord; }
    RecordInUse(const RecordInUse&) = delete;
    RecordInUse& operator=(const RecordInUse&) = delete;
    ~RecordInUse() { sRecord = nullptr; }

    Record* operator->() { return &mRecord; }

private:
    Record mRecord;
};

class RecordingWriter : public audiotoolbox::PacketWriter
{
public:
    OSStatus Start(audiotoolbox::ByteSink&, const audiotoolbox::StreamStart& inStart) override
    {
        sRecord->mCalls += 'S';
        sRecord->mStart = inStart;
        return sRecord->mStartStatus;
    }

    OSStatus Write(std::span<const UInt8> inBytes,
                   std::span<const AudioStreamPacketDescription> inPackets) override
    {
        sRecord->mCalls += 'W';
        if (++sRecord->mWrites == sRecord->mFailingWrite)
            return sRecord->mWriteStatus;
        sRecord->mPlaces.push_back(inBytes.data());
        sRecord->mBytes.insert(sRecord->mBytes.end(), inBytes.begin(), inBytes.end());
        for (const AudioStreamPacketDescription& packet : inPackets)
        {
            sRecord->mPacketStarts.push_back(packet.mStartOffset);
            sRecord->mPacketBytes.push_back(packet.mDataByteSize);
            sRecord->mPacketFrames.push_back(packet.mVariableFramesInPacket);
        }
        return noErr;
    }

    OSStatus Finish(const audiotoolbox::StreamEnd& inEnd) override
    {
        sRecord->mCalls += 'F';
        sRecord->mEnd = inEnd;
        return sRecord->mFinishStatus;
    }
};

inline OSStatus MakeRecordingWriter(const audiotoolbox::WriteRequest& inRequest,
                                    audiotoolbox::PacketWriterPtr& outWriter)
{
    if (sRecord->mMakeStatus != noErr)
        return sRecord->mMakeStatus;
    sRecord->mRequest = inRequest;
    outWriter = std::make_unique<RecordingWriter>();
    return noErr;
}

/// Takes nothing but its close.
class RecordingSink : public audiotoolbox::ByteSink
{
public:
    OSStatus Append(std::span<const UInt8>) override { return noErr; }
    OSStatus Patch(SInt64, std::span<const UInt8>) override { return noErr; }
    SInt64 Size() const override { return 0; }
    OSStatus Truncate(SInt64) override { return noErr; }
    OSStatus Close() override
    {
        sRecord->mCalls += 'C';
        return sRecord->mCloseStatus;
    }
};

}  // namespace extended_test

#endif
