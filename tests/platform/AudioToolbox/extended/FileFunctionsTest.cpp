// The C functions on files: arguments, properties, what happens to the file that was there.

#include "FileUse.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{

using namespace file_use;

const Description kWords16 = Linear(44100, kSigned, 16, 2);
const Description kAAC = {44100, kAudioFormatMPEG4AAC, 0, 0, 0, 0, 2, 0, 0};

TEST(Creating, RefusesNullArguments)
{
    const ScratchFolder folder;
    const PathURL url(folder.File("out.wav"));
    ExtAudioFileRef file = nullptr;
    const auto create = [&](CFURLRef inURL, const Description* inFormat, ExtAudioFileRef* outFile)
    {
        return ExtAudioFileCreateWithURL(inURL, kAudioFileWAVEType, inFormat, nullptr, kErase,
                                         outFile);
    };
    EXPECT_EQ(create(nullptr, &kWords16, &file), kAudio_ParamError);
    EXPECT_EQ(create(url, nullptr, &file), kAudio_ParamError);
    EXPECT_EQ(create(url, &kWords16, nullptr), kAudio_ParamError);
    EXPECT_FALSE(std::filesystem::exists(folder.File("out.wav")));
}

TEST(Creating, RefusedFormatsLeaveTheFileThatIsThere)
{
    const ScratchFolder folder;
    const std::string there = folder.File("there");
    write_test::MakeFile(there, "old");
    Description mistaken = kWords16;
    mistaken.mBytesPerFrame = 3;
    Description manyChannels = kWords16;
    manyChannels.mChannelsPerFrame = 0xFFFFFFFF;
    OutFile file;
    EXPECT_EQ(file.Create(there, kAudioFileWAVEType, mistaken),
              kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(file.Create(there, kAudioFileWAVEType, manyChannels),
              kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(file.Create(there, kAudioFileAIFFType, Floats(44100, 2)),
              kAudioFileUnsupportedDataFormatError)
        << "AIFF has no floats";
    EXPECT_EQ(file.Create(there, kAudioFileWAVEType, kAAC), kAudioFileUnsupportedDataFormatError);
    EXPECT_EQ(file.Create(there, 0, kWords16), kAudioFileUnsupportedFileTypeError);
    EXPECT_EQ(file.Get(), nullptr);
    EXPECT_EQ(BytesOfFile(there), (ByteVector{'o', 'l', 'd'}));
    EXPECT_EQ(file.Create(folder.File("new"), kAudioFileWAVEType, mistaken),
              kAudioFileUnsupportedDataFormatError);
    EXPECT_FALSE(std::filesystem::exists(folder.File("new")));
}

TEST(Creating, ReplacesAFileOnlyWhenTheFlagsSaySo)
{
    const ScratchFolder folder;
    const std::string there = folder.File("there");
    write_test::MakeFile(there, std::string(100000, 'o'));
    OutFile file;
    EXPECT_EQ(file.Create(there, kAudioFileWAVEType, kWords16, 0), kAudioFilePermissionsError);
    EXPECT_EQ(BytesOfFile(there).size(), 100000u);
    EXPECT_EQ(file.Create(folder.File("new"), kAudioFileWAVEType, kWords16, 0), noErr);
    EXPECT_EQ(file.Dispose(), noErr);
    EXPECT_EQ(file.Create(there, kAudioFileWAVEType, kWords16,
                          kErase | kAudioFileFlags_DontPageAlignAudioData),
              noErr);
    EXPECT_EQ(file.Dispose(), noErr);
    EXPECT_LT(BytesOfFile(there).size(), 1000u);
}

TEST(Creating, TellsFoldersThatAreMissingAndThingsThatAreNoFiles)
{
    const ScratchFolder folder;
    OutFile file;
    EXPECT_EQ(file.Create(folder.File("none/out.wav"), kAudioFileWAVEType, kWords16),
              kAudio_FileNotFoundError);
    EXPECT_EQ(file.Create(folder.Path(), kAudioFileWAVEType, kWords16), kAudioFilePermissionsError);
    EXPECT_EQ(file.Create("/" + std::string(PATH_MAX, 'x'), kAudioFileWAVEType, kWords16),
              kAudio_FileNotFoundError);
    EXPECT_EQ(file.Create(folder.File("blanks % \xC3\xA9.wav"), kAudioFileWAVEType, kWords16),
              noErr);
    EXPECT_TRUE(std::filesystem::exists(folder.File("blanks % \xC3\xA9.wav")));
}

TEST(TheOtherFunctions, RefuseNullArguments)
{
    const ScratchFolder folder;
    OutFile file;
    ASSERT_EQ(file.Create(folder.File("out.wav"), kAudioFileWAVEType, kWords16), noErr);
    UInt32 size = sizeof(Description);
    Description format;
    const ExtAudioFilePropertyID client = kExtAudioFileProperty_ClientDataFormat;
    EXPECT_EQ(ExtAudioFileSetProperty(nullptr, client, 40, &kWords16), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileSetProperty(file.Get(), client, 40, nullptr), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileGetProperty(nullptr, client, &size, &format), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileGetProperty(file.Get(), client, nullptr, &format), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileGetProperty(file.Get(), client, &size, nullptr), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileDispose(nullptr), kAudio_ParamError);

    SInt16 frames[4] = {};
    const AudioBufferList good = {1, {{2, sizeof(frames), frames}}};
    const AudioBufferList two = {2, {{2, sizeof(frames), frames}}};
    const AudioBufferList none = {0, {{2, sizeof(frames), frames}}};
    const AudioBufferList noData = {1, {{2, sizeof(frames), nullptr}}};
    EXPECT_EQ(ExtAudioFileWrite(nullptr, 2, &good), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileWrite(file.Get(), 2, nullptr), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileWrite(file.Get(), 2, &two), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileWrite(file.Get(), 2, &none), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileWrite(file.Get(), 2, &noData), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileWrite(file.Get(), 0, &noData), noErr);
    EXPECT_EQ(ExtAudioFileWrite(file.Get(), 3, &good), kAudio_ParamError);
    EXPECT_EQ(ExtAudioFileWrite(file.Get(), 2, &good), noErr) << "no mistake harms the file";
    EXPECT_EQ(file.Dispose(), noErr);
}

OSStatus Get(const OutFile& inFile, ExtAudioFilePropertyID inProperty, UInt32 inRoom,
             ByteVector& outBytes)
{
    outBytes.assign(64, 0xEE);
    UInt32 size = inRoom;
    const OSStatus status =
        ExtAudioFileGetProperty(inFile.Get(), inProperty, &size, outBytes.data());
    EXPECT_TRUE(status == noErr || size == inRoom);
    outBytes.resize(status == noErr ? size : 0);
    return status;
}

OSStatus Set(const OutFile& inFile, ExtAudioFilePropertyID inProperty, UInt32 inSize)
{
    const ByteVector zeros(64);
    return ExtAudioFileSetProperty(inFile.Get(), inProperty, inSize, zeros.data());
}

TEST(Properties, AnswerTheirSizesAndRefuseLessRoom)
{
    const ScratchFolder folder;
    OutFile file;
    ASSERT_EQ(file.Create(folder.File("out.wav"), kAudioFileWAVEType, kWords16), noErr);
    ASSERT_EQ(file.SetClient(Floats(44100, 2)), noErr);
    ASSERT_EQ(file.Write(std::vector<Float32>(14), 2), noErr);
    const std::pair<ExtAudioFilePropertyID, UInt32> sizes[] = {
        {kExtAudioFileProperty_FileDataFormat, 40},
        {kExtAudioFileProperty_ClientDataFormat, 40},
        {kExtAudioFileProperty_AudioConverter, 8},
        {kExtAudioFileProperty_FileLengthFrames, 8}};
    ByteVector value;
    for (const auto& [property, size] : sizes)
    {
        EXPECT_EQ(Get(file, property, size - 1, value), kExtAudioFileError_InvalidPropertySize);
        EXPECT_EQ(Get(file, property, 64, value), noErr);
        EXPECT_EQ(value.size(), size);
    }
    EXPECT_EQ(value, (ByteVector{7, 0, 0, 0, 0, 0, 0, 0})) << "frames so far";
    EXPECT_EQ(file.Dispose(), noErr);
}

TEST(Properties, ThatThereAreNotOrThatAreReadOnly)
{
    const ScratchFolder folder;
    OutFile file;
    ASSERT_EQ(file.Create(folder.File("out.m4a"), kAudioFileM4AType, kAAC), noErr);
    ByteVector value;
    EXPECT_EQ(Get(file, 0x78787878, 64, value), kExtAudioFileError_InvalidProperty);
    EXPECT_EQ(Get(file, kExtAudioFileProperty_ConverterConfig, 64, value),
              kExtAudioFileError_InvalidProperty);
    EXPECT_EQ(Set(file, 0x78787878, 8), kExtAudioFileError_InvalidProperty);
    EXPECT_EQ(Set(file, kExtAudioFileProperty_FileDataFormat, 40),
              kExtAudioFileError_InvalidProperty);
    EXPECT_EQ(Set(file, kExtAudioFileProperty_AudioConverter, 8),
              kExtAudioFileError_InvalidProperty);
    EXPECT_EQ(Set(file, kExtAudioFileProperty_ClientDataFormat, 39),
              kExtAudioFileError_InvalidPropertySize);
    EXPECT_EQ(Set(file, kExtAudioFileProperty_ClientDataFormat, 40),
              kExtAudioFileError_NonPCMClientFormat);
    EXPECT_EQ(Set(file, kExtAudioFileProperty_ConverterConfig, 4),
              kExtAudioFileError_InvalidPropertySize);
}

TEST(Properties, ThatAreNotKnownYet)
{
    const ScratchFolder folder;
    OutFile file;
    ASSERT_EQ(file.Create(folder.File("out.m4a"), kAudioFileM4AType, kAAC), noErr);
    ByteVector value;
    EXPECT_EQ(Get(file, kExtAudioFileProperty_AudioConverter, 8, value),
              kExtAudioFileError_InvalidOperationOrder);
    EXPECT_EQ(Get(file, kExtAudioFileProperty_ClientDataFormat, 40, value),
              kExtAudioFileError_InvalidOperationOrder);
    EXPECT_EQ(Set(file, kExtAudioFileProperty_ConverterConfig, 8),
              kExtAudioFileError_InvalidOperationOrder);
    ASSERT_EQ(file.SetClient(kWords16), noErr);
    EXPECT_EQ(Get(file, kExtAudioFileProperty_AudioConverter, 8, value), noErr);
    EXPECT_NE(value, ByteVector(8));
    EXPECT_EQ(Set(file, kExtAudioFileProperty_ConverterConfig, 8), noErr);
    const ByteVector something(8, 1);
    EXPECT_EQ(ExtAudioFileSetProperty(file.Get(), kExtAudioFileProperty_ConverterConfig, 8,
                                      something.data()),
              kAudio_ParamError);
}

TEST(AFileOfLinearPCM, HasAConverterToo)
{
    const ScratchFolder folder;
    OutFile file;
    ASSERT_EQ(file.Create(folder.File("out.wav"), kAudioFileWAVEType, kWords16), noErr);
    ASSERT_EQ(file.SetClient(kWords16), noErr);
    AudioConverterRef converter = nullptr;
    UInt32 size = sizeof(converter);
    ASSERT_EQ(ExtAudioFileGetProperty(file.Get(), kExtAudioFileProperty_AudioConverter, &size,
                                      &converter),
              noErr);
    Description output = {};
    size = sizeof(output);
    EXPECT_EQ(AudioConverterGetProperty(converter, kAudioConverterCurrentOutputStreamDescription,
                                        &size, &output),
              noErr);
    EXPECT_EQ(output.mBitsPerChannel, 16u);
    const UInt32 bitRate = 128000;
    EXPECT_EQ(AudioConverterSetProperty(converter, kAudioConverterEncodeBitRate, 4, &bitRate),
              kAudioConverterErr_PropertyNotSupported);
}

}  // namespace
