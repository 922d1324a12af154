// FakeReader: a reader whose answers a test sets, with no file behind it.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_FAKEREADER_H
#define TESTS_TARVO_PLUGINS_TARVOAT_FAKEREADER_H

#include "appleaudiotoolbox/ATReader.h"

#include <initializer_list>
#include <vector>

namespace testing_support
{

class FakeReader : public appleaudiotoolbox::ATReader
{
public:
    unsigned int GetFileTypeID() const override { return mFileType; }
    CAStreamBasicDescription GetStreamBasicDescription() const override { return mFormat; }
    double GetSampleRate() const override { return mFormat.mSampleRate; }
    unsigned int GetChannelsPerFrame() const override { return mFormat.mChannelsPerFrame; }
    unsigned int GetBitsPerChannel() const override { return mFormat.mBitsPerChannel; }
    unsigned int GetNumReadBytesPerFrame() const override { return mWidth; }
    double GetEstimatedDuration() const override { return mDuration; }
    kelpmediatypes::AudioChannelDescriptions GetChannelLayout() const override { return mLayout; }
    unsigned int GetBitrate() const override { return mBitrate; }

    bool ReadSamples(long long inStartFrame, int* ioFrameCount, char** outChannels,
                     unsigned long inBytesPerSample,
                     appleaudiotoolbox::ExtendedErrorInfo& outInfo) override
    {
        mAskedStart = inStartFrame;
        mAskedFrames = *ioFrameCount;
        mAskedWidth = inBytesPerSample;
        mAskedChannels.assign(outChannels, outChannels + mFormat.mChannelsPerFrame);
        if (mFails)
        {
            outInfo.mSite = mSite;
            return false;
        }
        *ioFrameCount = mDelivers;
        return true;
    }
    bool IsAtEndOfFile() const override { return mAtEnd; }
    long long GetTotalSampleCount() const override { return mTotal; }

    void SetLayout(std::initializer_list<std::uint32_t> inLabels)
    {
        mLayout.clear();
        for (const std::uint32_t label : inLabels)
            mLayout.push_back({static_cast<kelpmediatypes::AudioChannelLabel>(label)});
    }

    // 16-bit stereo of 44100 Hz in a WAVE file.
    unsigned int mFileType = 0x57415645;
    CAStreamBasicDescription mFormat{44100, kAudioFormatLinearPCM, 4, 1, 4, 2, 16, 12};
    unsigned int mWidth = 2;
    double mDuration = 0;
    kelpmediatypes::AudioChannelDescriptions mLayout;
    unsigned int mBitrate = 0;

    bool mFails = false;
    appleaudiotoolbox::ATErrorSite mSite = appleaudiotoolbox::kATError_None;
    int mDelivers = 0;
    bool mAtEnd = false;
    long long mTotal = 0;

    // What the last read asked for.
    long long mAskedStart = 0;
    int mAskedFrames = 0;
    unsigned long mAskedWidth = 0;
    std::vector<char*> mAskedChannels;
};

}  // namespace testing_support

#endif
