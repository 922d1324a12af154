// FakeAudioFiles: an entry function over files in memory that are read and written by name.
#ifndef TESTS_HOST_FAKEAUDIOFILES_H
#define TESTS_HOST_FAKEAUDIOFILES_H

#include "TarvoSDK/TarvoErrorInterface.h"
#include "TarvoSDK/TarvoFinishWriteInterface.h"
#include "TarvoSDK/TarvoFormatInterface.h"
#include "TarvoSDK/TarvoOpenInterface.h"
#include "TarvoSDK/TarvoReadSamplesInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "TarvoSDK/TarvoWriteSamplesInterface.h"
#include "TarvoSDK/TarvoWriteStartInterface.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace testing_support
{

struct FakeAudio
{
    std::int32_t mRate = 44100;
    std::int32_t mType = 20;
    std::vector<std::uint32_t> mLabels;
    std::vector<std::string> mPlanes;  // the samples of each channel
    std::u16string mSettings;

    std::size_t Bytes() const { return static_cast<std::size_t>(mType) / 10; }
    std::int64_t FrameCount() const
    {
        return mPlanes.empty() ? 0 : static_cast<std::int64_t>(mPlanes[0].size() / Bytes());
    }
};

struct FakeReader
{
    FakeAudio* mAudio;
    std::int64_t mPosition = 0;
};

/// Files by name, what goes wrong, and what was called.
struct FakeAudioFiles
{
    std::map<std::string, FakeAudio> mFiles;

    std::int32_t mStartResult = kTarvoResultSuccess;
    bool mGivesHandle = true;
    std::int64_t mFailingBlock = -1;  // counted from 0
    std::int32_t mFailingCloses = 0;  // closes that fail before one succeeds
    std::u16string mErrorText;        // of every failure

    std::string mWrittenName;
    std::u16string mWrittenSettings;
    std::int64_t mWrittenToldFrames = 0;
    std::vector<std::int64_t> mBlockStarts;
    std::vector<std::int64_t> mBlockCounts;
    std::vector<const char*> mLastBuffers;  // of the last block
    int mCloses = 0;
    int mOpenWriters = 0;
    int mOpenReaders = 0;
};

inline FakeAudioFiles* sFakeAudioFiles = nullptr;

template <typename HostObject>
std::int32_t TellFailure(HostObject& inObject, std::int32_t inResult)
{
    const std::u16string& text = sFakeAudioFiles->mErrorText;
    if (!text.empty())
        inObject.GetErrorInterface()->SetErrorText(text.c_str());
    return inResult;
}

inline std::int32_t StartReading(TarvoOpenInterface& inOpen)
{
    const auto found = sFakeAudioFiles->mFiles.find(inOpen.GetFilePath());
    if (found == sFakeAudioFiles->mFiles.end())
        return kTarvoResultFileFormatError;
    inOpen.SetFileHandle(new FakeReader{&found->second});
    ++sFakeAudioFiles->mOpenReaders;
    return kTarvoResultSuccess;
}

inline std::int32_t TellFormat(const FakeAudio& inAudio, TarvoFormatInterface& outFormat)
{
    outFormat.SetChannelCount(static_cast<std::int32_t>(inAudio.mLabels.size()));
    outFormat.SetSampleRate(inAudio.mRate);
    outFormat.SetSampleType(inAudio.mType);
    outFormat.SetSampleCount(inAudio.FrameCount());
    for (std::size_t channel = 0; channel < inAudio.mLabels.size(); ++channel)
        outFormat.SetChannelLabel(static_cast<std::int64_t>(channel),
                                  static_cast<tarvo::AudioChannelLabel>(inAudio.mLabels[channel]));
    outFormat.SetPrivateSettings(inAudio.mSettings.c_str());
    return kTarvoResultSuccess;
}

inline std::int32_t Deliver(FakeReader& ioReader, TarvoReadSamplesInterface& outSamples)
{
    const FakeAudio& audio = *ioReader.mAudio;
    const std::int64_t asked = outSamples.GetSampleCount();
    const std::int64_t count = std::min(asked, audio.FrameCount() - ioReader.mPosition);
    for (std::size_t channel = 0; channel < audio.mPlanes.size(); ++channel)
        std::memcpy(outSamples.GetChannelBuffer(static_cast<std::int32_t>(channel)),
                    audio.mPlanes[channel].data() +
                        static_cast<std::size_t>(ioReader.mPosition) * audio.Bytes(),
                    static_cast<std::size_t>(count) * audio.Bytes());
    ioReader.mPosition += count;
    outSamples.SetSamplesRead(count);
    if (count < asked)
        outSamples.SetTotalSampleCount(ioReader.mPosition);
    return kTarvoResultSuccess;
}

inline std::string Narrow(const uint16* inText)
{
    std::string text;
    for (; *inText; ++inText)
        text += static_cast<char>(*inText);
    return text;
}

inline std::int32_t StartWriting(TarvoWriteStartInterface& inStart)
{
    FakeAudioFiles& files = *sFakeAudioFiles;
    if (files.mStartResult != kTarvoResultSuccess || !files.mGivesHandle)
        return TellFailure(inStart, files.mStartResult);
    const TarvoFormatInterface& format = *inStart.GetFormatInterface();
    files.mWrittenName = Narrow(inStart.GetFilePath());
    files.mWrittenSettings = format.GetPrivateSettings();
    files.mWrittenToldFrames = format.GetSampleCount();
    FakeAudio audio;
    audio.mRate = format.GetSampleRate();
    audio.mType = format.GetSampleType();
    for (std::int64_t channel = 0; channel < format.GetChannelCount(); ++channel)
        audio.mLabels.push_back(format.GetChannelLabel(channel));
    audio.mPlanes.resize(audio.mLabels.size());
    inStart.SetFormatDescription(u"What was written");
    inStart.SetWriterHandle(&(files.mFiles[files.mWrittenName] = std::move(audio)));
    ++files.mOpenWriters;
    return kTarvoResultSuccess;
}

inline std::int32_t TakeBlock(FakeAudio& ioAudio, TarvoWriteSamplesInterface& inBlock)
{
    FakeAudioFiles& files = *sFakeAudioFiles;
    if (files.mFailingBlock == static_cast<std::int64_t>(files.mBlockCounts.size()))
        return TellFailure(inBlock, kTarvoResultFailed);
    files.mBlockStarts.push_back(inBlock.GetStartSample());
    files.mBlockCounts.push_back(inBlock.GetSampleCount());
    files.mLastBuffers.clear();
    for (std::size_t channel = 0; channel < ioAudio.mPlanes.size(); ++channel)
    {
        const char* samples = inBlock.GetChannelBuffer(static_cast<std::int64_t>(channel));
        files.mLastBuffers.push_back(samples);
        ioAudio.mPlanes[channel].append(
            samples, static_cast<std::size_t>(inBlock.GetSampleCount()) * ioAudio.Bytes());
    }
    return kTarvoResultSuccess;
}

inline std::int32_t CloseWriting(TarvoFinishWriteInterface& inFinish)
{
    if (sFakeAudioFiles->mCloses++ < sFakeAudioFiles->mFailingCloses)
        return TellFailure(inFinish, kTarvoResultFailed);
    --sFakeAudioFiles->mOpenWriters;
    return kTarvoResultSuccess;
}

inline std::int32_t FakeAudioEntry(int inSelector, void* inHandle, void* inHostObject)
{
    switch (inSelector)
    {
        case kTarvoSelectorOpenForRead:
            return StartReading(*static_cast<TarvoOpenInterface*>(inHostObject));
        case kTarvoSelectorGetFormat:
            return TellFormat(*static_cast<FakeReader*>(inHandle)->mAudio,
                              *static_cast<TarvoFormatInterface*>(inHostObject));
        case kTarvoSelectorReadSamples:
            return Deliver(*static_cast<FakeReader*>(inHandle),
                           *static_cast<TarvoReadSamplesInterface*>(inHostObject));
        case kTarvoSelectorCloseForRead:
            delete static_cast<FakeReader*>(inHandle);
            --sFakeAudioFiles->mOpenReaders;
            return kTarvoResultSuccess;
        case kTarvoSelectorWriteStart:
            return StartWriting(*static_cast<TarvoWriteStartInterface*>(inHostObject));
        case kTarvoSelectorWriteSamples:
            return TakeBlock(*static_cast<FakeAudio*>(inHandle),
                             *static_cast<TarvoWriteSamplesInterface*>(inHostObject));
        case kTarvoSelectorFinishWrite:
            return CloseWriting(*static_cast<TarvoFinishWriteInterface*>(inHostObject));
        default:
            return kTarvoResultNotImplemented;
    }
}

/// The bytes of samples, for planes.
template <typename Sample>
std::string Bytes(const std::vector<Sample>& inSamples)
{
    return {reinterpret_cast<const char*>(inSamples.data()), inSamples.size() * sizeof(Sample)};
}

/// The samples of a plane.
template <typename Sample>
std::vector<Sample> Samples(const std::string& inPlane)
{
    std::vector<Sample> samples(inPlane.size() / sizeof(Sample));
    std::memcpy(samples.data(), inPlane.data(), inPlane.size());
    return samples;
}

}  // namespace testing_support

#endif
