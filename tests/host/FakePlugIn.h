// FakePlugIn: an entry function that answers read sessions from a description.
#ifndef TESTS_HOST_FAKEPLUGIN_H
#define TESTS_HOST_FAKEPLUGIN_H

#include "TarvoSDK/TarvoErrorInterface.h"
#include "TarvoSDK/TarvoFormatInterface.h"
#include "TarvoSDK/TarvoOpenInterface.h"
#include "TarvoSDK/TarvoReadSamplesInterface.h"
#include "TarvoSDK/TarvoSDK.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace testing_support
{

/// 16-bit audio whose sample at frame f of channel c is f * 2 + c, cut to 16 bits.
struct FakeFile
{
    std::int64_t mToldFrames = 0;
    std::int64_t mTrueFrames = 0;
    int mChannels = 2;
    std::u16string mSettings = u"FramesPerPacket:0:1024;";
    std::u16string mErrorText;
    std::int32_t mOpenResult = kTarvoResultSuccess;
    std::int32_t mFormatResult = kTarvoResultSuccess;
    std::int64_t mFailingRead = -1;  // position from which reads fail
    bool mGivesHandle = true;

    std::int64_t mPosition = 0;
    std::vector<std::int64_t> mAskedCounts;  // of every read
    int mOpen = 0;
};

inline FakeFile* sFakeFile = nullptr;

inline std::int32_t AnswerOpen(TarvoOpenInterface& inOpen)
{
    if (!sFakeFile->mErrorText.empty())
        inOpen.GetErrorInterface()->SetErrorText(sFakeFile->mErrorText.c_str());
    if (sFakeFile->mOpenResult != kTarvoResultSuccess || !sFakeFile->mGivesHandle)
        return sFakeFile->mOpenResult;
    inOpen.SetFormatDescription(u"Description");
    inOpen.SetBitrate(1411200);
    inOpen.SetFileHandle(sFakeFile);
    inOpen.SetOpenStatus(0);
    ++sFakeFile->mOpen;
    return kTarvoResultSuccess;
}

inline std::int32_t AnswerFormat(TarvoFormatInterface& outFormat)
{
    if (sFakeFile->mFormatResult != kTarvoResultSuccess)
        return sFakeFile->mFormatResult;
    outFormat.SetChannelCount(sFakeFile->mChannels);
    outFormat.SetSampleRate(44100);
    outFormat.SetSampleType(tarvo::kTarvoSampleType16);
    outFormat.SetSampleCount(sFakeFile->mToldFrames);
    for (int channel = 0; channel < sFakeFile->mChannels; ++channel)
        outFormat.SetChannelLabel(channel, static_cast<tarvo::AudioChannelLabel>(100 + channel));
    outFormat.SetPrivateSettings(sFakeFile->mSettings.c_str());
    return kTarvoResultSuccess;
}

inline std::int32_t AnswerRead(TarvoReadSamplesInterface& outSamples)
{
    FakeFile& file = *sFakeFile;
    outSamples.SetSamplesRead(0);
    if (file.mFailingRead >= 0 && file.mPosition >= file.mFailingRead)
        return kTarvoResultFailed;
    const std::int64_t asked = outSamples.GetSampleCount();
    file.mAskedCounts.push_back(asked);
    const std::int64_t count = std::min(asked, file.mTrueFrames - file.mPosition);
    for (int channel = 0; channel < file.mChannels; ++channel)
    {
        char* plane = outSamples.GetChannelBuffer(channel);
        for (std::int64_t frame = 0; frame < count; ++frame)
        {
            const auto sample = static_cast<std::int16_t>((file.mPosition + frame) * 2 + channel);
            std::memcpy(plane + frame * 2, &sample, 2);
        }
    }
    file.mPosition += count;
    outSamples.SetSamplesRead(count);
    if (count < asked)
        outSamples.SetTotalSampleCount(file.mPosition);
    return kTarvoResultSuccess;
}

inline std::int32_t FakeEntry(int inSelector, void*, void* inHostObject)
{
    switch (inSelector)
    {
        case kTarvoSelectorOpenForRead:
            return AnswerOpen(*static_cast<TarvoOpenInterface*>(inHostObject));
        case kTarvoSelectorGetFormat:
            return AnswerFormat(*static_cast<TarvoFormatInterface*>(inHostObject));
        case kTarvoSelectorReadSamples:
            return AnswerRead(*static_cast<TarvoReadSamplesInterface*>(inHostObject));
        case kTarvoSelectorCloseForRead:
            --sFakeFile->mOpen;
            return kTarvoResultSuccess;
        default:
            return kTarvoResultNotImplemented;
    }
}

}  // namespace testing_support

#endif
