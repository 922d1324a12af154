// ExtendedUse: files of the core with a recording container behind them.
#ifndef TESTS_PLATFORM_AUDIOTOOLBOX_EXTENDED_EXTENDEDUSE_H
#define TESTS_PLATFORM_AUDIOTOOLBOX_EXTENDED_EXTENDEDUSE_H

#include "RecordingWriter.h"

#include "../convert/ConverterUse.h"

#include "platform/AudioToolbox/src/extended/ExtendedFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace extended_test
{

using converter_use::Compressed;
using converter_use::Floats;
using converter_use::kSigned;
using converter_use::Linear;
using Labels = std::vector<AudioChannelLabel>;
using Description = AudioStreamBasicDescription;

inline std::unique_ptr<audiotoolbox::ExtendedFile> NewFile(AudioFileTypeID inType,
                                                           const Description& inFormat,
                                                           Labels inLabels = {})
{
    auto file = std::make_unique<audiotoolbox::ExtendedFile>(audiotoolbox::ExtendedFileRequest{
        inType, inFormat, std::move(inLabels), &MakeRecordingWriter});
    EXPECT_EQ(file->Check(), noErr);
    file->Attach(std::make_unique<RecordingSink>());
    return file;
}

template <typename Word>
OSStatus Write(audiotoolbox::ExtendedFile& ioFile, const std::vector<Word>& inSamples,
               UInt32 inChannels)
{
    return ioFile.Write(reinterpret_cast<const UInt8*>(inSamples.data()),
                        static_cast<UInt32>(inSamples.size() / inChannels),
                        static_cast<UInt32>(inSamples.size() * sizeof(Word)));
}

template <typename Word>
std::vector<Word> WordsOf(const ByteVector& inBytes)
{
    std::vector<Word> words(inBytes.size() / sizeof(Word));
    std::memcpy(words.data(), inBytes.data(), words.size() * sizeof(Word));
    return words;
}

inline std::vector<SInt16> Tone(std::size_t inFrames, UInt32 inChannels)
{
    std::vector<SInt16> samples;
    for (std::size_t frame = 0; frame < inFrames; ++frame)
        for (UInt32 channel = 0; channel < inChannels; ++channel)
            samples.push_back(static_cast<SInt16>(
                8000.0 * std::sin(0.05 * (channel + 1) * static_cast<double>(frame))));
    return samples;
}

}  // namespace extended_test

#endif
