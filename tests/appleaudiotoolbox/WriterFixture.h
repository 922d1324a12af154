// WriterFixture: a writer on a scripted platform with a catalogue, and the formats of its tests.
#ifndef TESTS_APPLEAUDIOTOOLBOX_WRITERFIXTURE_H
#define TESTS_APPLEAUDIOTOOLBOX_WRITERFIXTURE_H

#include "appleaudiotoolbox/ATWriter.h"
#include "appleaudiotoolbox/utility/EncodableQueries.h"
#include "tests/support/CatalogueScript.h"

#include <initializer_list>
#include <memory>

namespace testing_support
{

using Lines = std::vector<std::string>;

inline constexpr AudioStreamBasicDescription kStereo16 = {44100.0, kPCM, 12, 4, 1, 4, 2, 16, 0};
inline constexpr AudioStreamBasicDescription kStereoAAC = {44100.0, kAAC, 0, 0, 1024, 0, 2, 0, 0};

// The platform writes WAVE with PCM, which has no modes, and M4A with AAC, which has all four.
class WriterTest : public CatalogueTest
{
protected:
    WriterTest()
    {
        mScript.AddFileType(kWAVE, {"WAVE", {"wav"}, {{kPCM, {Variant(kPCM, 12, 16)}}}});
        mScript.AddFileType(kAIFF, {"AIFF", {"aiff"}, {{kPCM, {Variant(kPCM, 14, 16)}}}});
        mScript.AddFileType(kM4A, {"MPEG-4", {"m4a"}, {{kAAC, {Variant(kAAC)}}}});
        mScript.mEncodable = {kPCM, kAAC};
        ScriptedEncoder& encoder = mScript.mEncoders[kAAC];
        for (const UInt32 mode : {0u, 1u, 2u})
            encoder.mModes[mode] = {{{64000, 64000}, {128000, 128000}}, 128000};
        encoder.mModes[3] = {{{1, 1}}, 0};
        (void)appleaudiotoolbox::GetEncodableBitrateModes(kM4A, kAAC);  // builds the catalogue
        mPlatform.ForgetCalls();
    }
    ~WriterTest() override
    {
        mWriter.reset();
        EXPECT_EQ(mPlatform.OpenHandles(), 0);
    }

    static kelpmediatypes::AudioChannelDescriptions Labels(
        std::initializer_list<std::uint32_t> inLabels)
    {
        kelpmediatypes::AudioChannelDescriptions labels;
        for (const std::uint32_t label : inLabels)
            labels.push_back({static_cast<kelpmediatypes::AudioChannelLabel>(label)});
        return labels;
    }

    bool Create(UInt32 inType, const AudioStreamBasicDescription& inFormat,
                unsigned int inWidth = 2)
    {
        return mWriter->Initialize("/music/a.wav", inType, inFormat, Labels({100, 101}), inWidth, 0,
                                   mInfo, mMode, mBitrate, mQuality);
    }
    bool Write(const Bytes& inBytes)
    {
        Bytes bytes = inBytes;
        return mWriter->WriteSampleBytes(0, static_cast<int>(bytes.size()),
                                         reinterpret_cast<char*>(bytes.data()), mInfo);
    }
    bool Finish() { return mWriter->FinishWrite(true, nullptr, 0, mInfo); }

    unsigned int mMode = 0;
    unsigned int mBitrate = 128000;
    unsigned int mQuality = 96;
    appleaudiotoolbox::ExtendedErrorInfo mInfo;
    std::unique_ptr<appleaudiotoolbox::ATWriter> mWriter =
        std::make_unique<appleaudiotoolbox::ATWriter>();
};

}  // namespace testing_support

#endif
