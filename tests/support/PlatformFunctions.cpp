// The C functions of the platform, each a note of the call and a word to the script.
#include "tests/support/PlatformCalls.h"

#include <cstddef>
#include <iomanip>
#include <sstream>

using testing_support::Bytes;
using testing_support::Family;
using testing_support::PlatformCalls;
using testing_support::PropertyAnswer;
using testing_support::Question;

namespace
{

std::string Code(UInt32 inCode)
{
    std::string text = "'";
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(inCode >> shift & 0xFF);
    return text + "'";
}

std::string CodeOrZero(UInt32 inCode)
{
    return inCode == 0 ? "0" : Code(inCode);
}

template <typename Number>
std::string ValueOrNull(const Number* inPlace)
{
    return inPlace ? std::to_string(+*inPlace) : "null";
}

template <typename Pointer>
std::string Given(Pointer inPointer)
{
    return inPointer ? "given" : "null";
}

std::string Text(const AudioStreamBasicDescription& inFormat)
{
    std::ostringstream text;
    text << inFormat.mSampleRate << ' ' << CodeOrZero(inFormat.mFormatID) << ' '
         << inFormat.mFormatFlags << ' ' << inFormat.mBytesPerPacket << '/'
         << inFormat.mFramesPerPacket << '/' << inFormat.mBytesPerFrame << '/'
         << inFormat.mChannelsPerFrame << '/' << inFormat.mBitsPerChannel;
    return text.str();
}

std::string Hex(const Bytes& inBytes)
{
    constexpr std::size_t kMost = 64;
    std::ostringstream text;
    text << std::hex << std::setfill('0');
    for (std::size_t index = 0; index < inBytes.size() && index < kMost; ++index)
        text << ' ' << std::setw(2) << static_cast<unsigned int>(inBytes[index]);
    return text.str();
}

Bytes Copy(UInt32 inSize, const void* inData)
{
    const auto* data = static_cast<const UInt8*>(inData);
    return data ? Bytes(data, data + inSize) : Bytes();
}

// Every byte of a layout, as many as it has descriptions for.
std::string LayoutText(const AudioChannelLayout* inLayout)
{
    if (!inLayout)
        return "null";
    const std::size_t bytes =
        offsetof(AudioChannelLayout, mChannelDescriptions) +
        inLayout->mNumberChannelDescriptions * sizeof(AudioChannelDescription);
    return Hex(Copy(static_cast<UInt32>(bytes), inLayout)).substr(1);
}

// The name of a format has a specifier that its size query must not read, whatever its size says.
bool MayRead(UInt32 inProperty, bool inIsSizeQuery)
{
    return !(inIsSizeQuery && inProperty == kAudioFormatProperty_FormatName);
}

std::string SpecifierText(UInt32 inSize, const void* inSpecifier)
{
    if (inSize == 0 && !inSpecifier)
        return "specifier none";
    const std::string size = "specifier " + std::to_string(inSize);
    if (inSize != sizeof(UInt32) || !inSpecifier)
        return size + (inSpecifier ? "" : " null");
    UInt32 code = 0;
    std::memcpy(&code, inSpecifier, sizeof(code));
    return size + " " + CodeOrZero(code);
}

std::string Path(CFURLRef inURL)
{
    char path[4096] = "";
    if (inURL)
        CFURLGetFileSystemRepresentation(inURL, true, reinterpret_cast<UInt8*>(path), sizeof(path));
    return path;
}

std::string Called(const char* inFunction, UInt32 inProperty)
{
    return std::string(inFunction) + " " + Code(inProperty);
}

// Both families of questions without an object.
OSStatus TellGlobalSize(const char* inFunction, Family inFamily, UInt32 inProperty,
                        UInt32 inSpecifierSize, const void* inSpecifier, UInt32* outSize)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note(Called(inFunction, inProperty) + " " + SpecifierText(inSpecifierSize, inSpecifier) +
               " size " + ValueOrNull(outSize));
    const Bytes specifier =
        MayRead(inProperty, true) ? Copy(inSpecifierSize, inSpecifier) : Bytes();
    bool writable = false;
    return calls.TellInfo(calls.Ask(inFamily, inProperty, Question::Kind::Info, specifier), outSize,
                          writable);
}

OSStatus TellGlobalValue(const char* inFunction, Family inFamily, UInt32 inProperty,
                         UInt32 inSpecifierSize, const void* inSpecifier, UInt32* ioSize,
                         void* outData)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note(Called(inFunction, inProperty) + " " + SpecifierText(inSpecifierSize, inSpecifier) +
               " size " + ValueOrNull(ioSize));
    const Bytes specifier = Copy(inSpecifierSize, inSpecifier);
    return calls.TellValue(calls.Ask(inFamily, inProperty, Question::Kind::Get, specifier), ioSize,
                           outData);
}

}  // namespace

extern "C" {

OSStatus AudioFileOpenURL(CFURLRef url, SInt8 permissions, AudioFileTypeID hint,
                          AudioFileID* outFile)
{
    PlatformCalls calls = PlatformCalls::Current();
    const std::string path = Path(url);
    calls.Note("AudioFileOpenURL \"" + path + "\" permissions " + std::to_string(permissions) +
               " hint " + CodeOrZero(hint));
    calls.SetOpened(path, nullptr);
    return calls.OpenFile(outFile);
}

OSStatus AudioFileOpenWithCallbacks(void* clientData, AudioFile_ReadProc readProc,
                                    AudioFile_WriteProc writeProc,
                                    AudioFile_GetSizeProc getSizeProc,
                                    AudioFile_SetSizeProc setSizeProc, AudioFileTypeID hint,
                                    AudioFileID* outFile)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note("AudioFileOpenWithCallbacks read " + Given(readProc) + " write " + Given(writeProc) +
               " size " + Given(getSizeProc) + " setsize " + Given(setSizeProc) + " hint " +
               CodeOrZero(hint));
    calls.SetOpened("", clientData);
    return calls.OpenFile(outFile);
}

OSStatus AudioFileClose(AudioFileID file)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note("AudioFileClose");
    return calls.CloseFile(file);
}

OSStatus AudioFileGetPropertyInfo(AudioFileID file, AudioFilePropertyID property, UInt32* outSize,
                                  UInt32* outWritable)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note(Called("AudioFileGetPropertyInfo", property) + " size " + ValueOrNull(outSize) +
               " writable " + ValueOrNull(outWritable));
    calls.ExpectFile(file);
    bool writable = outWritable && *outWritable;
    const OSStatus status =
        calls.TellInfo(calls.Ask(Family::File, property, Question::Kind::Info), outSize, writable);
    if (outWritable)
        *outWritable = writable;
    return status;
}

OSStatus AudioFileGetProperty(AudioFileID file, AudioFilePropertyID property, UInt32* ioSize,
                              void* outData)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note(Called("AudioFileGetProperty", property) + " size " + ValueOrNull(ioSize));
    calls.ExpectFile(file);
    return calls.TellValue(calls.Ask(Family::File, property, Question::Kind::Get), ioSize, outData);
}

OSStatus AudioFileReadPacketData(AudioFileID file, Boolean useCache, UInt32* ioBytes,
                                 AudioStreamPacketDescription* outDescriptions, SInt64 start,
                                 UInt32* ioPackets, void* buffer)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note("AudioFileReadPacketData cache " + std::to_string(useCache) + " bytes " +
               ValueOrNull(ioBytes) + " descriptions " + Given(outDescriptions) + " start " +
               std::to_string(start) + " packets " + ValueOrNull(ioPackets));
    calls.ExpectFile(file);
    return calls.ReadPackets(ioBytes, outDescriptions, ioPackets, buffer);
}

OSStatus AudioFileGetGlobalInfoSize(AudioFilePropertyID property, UInt32 specifierSize,
                                    void* specifier, UInt32* outSize)
{
    return TellGlobalSize("AudioFileGetGlobalInfoSize", Family::Global, property, specifierSize,
                          specifier, outSize);
}

OSStatus AudioFileGetGlobalInfo(AudioFilePropertyID property, UInt32 specifierSize, void* specifier,
                                UInt32* ioSize, void* outData)
{
    return TellGlobalValue("AudioFileGetGlobalInfo", Family::Global, property, specifierSize,
                           specifier, ioSize, outData);
}

OSStatus AudioFormatGetPropertyInfo(AudioFormatPropertyID property, UInt32 specifierSize,
                                    const void* specifier, UInt32* outSize)
{
    return TellGlobalSize("AudioFormatGetPropertyInfo", Family::Format, property, specifierSize,
                          specifier, outSize);
}

OSStatus AudioFormatGetProperty(AudioFormatPropertyID property, UInt32 specifierSize,
                                const void* specifier, UInt32* ioSize, void* outData)
{
    return TellGlobalValue("AudioFormatGetProperty", Family::Format, property, specifierSize,
                           specifier, ioSize, outData);
}

OSStatus AudioConverterNew(const AudioStreamBasicDescription* source,
                           const AudioStreamBasicDescription* destination,
                           AudioConverterRef* outConverter)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note("AudioConverterNew " + Text(*source) + " to " + Text(*destination));
    return calls.MakeConverter(*source, *destination, outConverter);
}

OSStatus AudioConverterDispose(AudioConverterRef converter)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note("AudioConverterDispose");
    return calls.DisposeConverter(converter);
}

OSStatus AudioConverterReset(AudioConverterRef converter)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note("AudioConverterReset");
    calls.ExpectConverter(converter);
    return noErr;
}

OSStatus AudioConverterGetPropertyInfo(AudioConverterRef converter,
                                       AudioConverterPropertyID property, UInt32* outSize,
                                       Boolean* outWritable)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note(Called("AudioConverterGetPropertyInfo", property) + " size " + ValueOrNull(outSize) +
               " writable " + ValueOrNull(outWritable));
    calls.ExpectConverter(converter);
    bool writable = outWritable && *outWritable;
    const OSStatus status = calls.TellInfo(
        calls.Ask(Family::Converter, property, Question::Kind::Info, {}, {}, converter), outSize,
        writable);
    if (outWritable)
        *outWritable = writable;
    return status;
}

OSStatus AudioConverterGetProperty(AudioConverterRef converter, AudioConverterPropertyID property,
                                   UInt32* ioSize, void* outData)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note(Called("AudioConverterGetProperty", property) + " size " + ValueOrNull(ioSize));
    calls.ExpectConverter(converter);
    return calls.TellValue(
        calls.Ask(Family::Converter, property, Question::Kind::Get, {}, {}, converter), ioSize,
        outData);
}

OSStatus AudioConverterSetProperty(AudioConverterRef converter, AudioConverterPropertyID property,
                                   UInt32 size, const void* data)
{
    PlatformCalls calls = PlatformCalls::Current();
    const Bytes value = Copy(size, data);
    calls.Note(Called("AudioConverterSetProperty", property) + " size " + std::to_string(size) +
               ":" + Hex(value));
    calls.ExpectConverter(converter);
    return calls.Outcome(
        calls.Ask(Family::Converter, property, Question::Kind::Set, {}, value, converter)
            .mSetStatus);
}

OSStatus AudioConverterFillComplexBuffer(AudioConverterRef converter,
                                         AudioConverterComplexInputDataProc inputProc,
                                         void* userData, UInt32* ioPackets,
                                         AudioBufferList* outData,
                                         AudioStreamPacketDescription* outDescriptions)
{
    PlatformCalls calls = PlatformCalls::Current();
    const AudioBuffer& buffer = outData->mBuffers[0];
    calls.Note("AudioConverterFillComplexBuffer packets " + ValueOrNull(ioPackets) + " channels " +
               std::to_string(buffer.mNumberChannels) + " bytes " +
               std::to_string(buffer.mDataByteSize) + " descriptions " + Given(outDescriptions));
    calls.ExpectConverter(converter);
    calls.Expect(outData->mNumberBuffers == 1, "a fill of more buffers than one");
    return calls.Fill(converter, inputProc, userData, ioPackets, outData);
}

OSStatus ExtAudioFileCreateWithURL(CFURLRef url, AudioFileTypeID type,
                                   const AudioStreamBasicDescription* format,
                                   const AudioChannelLayout* layout, UInt32 flags,
                                   ExtAudioFileRef* outFile)
{
    PlatformCalls calls = PlatformCalls::Current();
    const std::string path = Path(url);
    calls.Note("ExtAudioFileCreateWithURL \"" + path + "\" " + CodeOrZero(type) + " format " +
               Text(*format) + " layout: " + LayoutText(layout) + " flags " +
               std::to_string(flags));
    calls.SetOpened(path, nullptr);
    return calls.CreateExtFile(*format, outFile);
}

OSStatus ExtAudioFileSetProperty(ExtAudioFileRef file, ExtAudioFilePropertyID property, UInt32 size,
                                 const void* data)
{
    PlatformCalls calls = PlatformCalls::Current();
    const Bytes value = Copy(size, data);
    calls.Note(Called("ExtAudioFileSetProperty", property) + " size " + std::to_string(size) + ":" +
               Hex(value));
    return calls.Outcome(calls.AskExtFile(file, property, Question::Kind::Set, value).mSetStatus);
}

OSStatus ExtAudioFileGetProperty(ExtAudioFileRef file, ExtAudioFilePropertyID property,
                                 UInt32* ioSize, void* outData)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note(Called("ExtAudioFileGetProperty", property) + " size " + ValueOrNull(ioSize));
    return calls.TellValue(calls.AskExtFile(file, property, Question::Kind::Get), ioSize, outData);
}

OSStatus ExtAudioFileWrite(ExtAudioFileRef file, UInt32 frames, const AudioBufferList* data)
{
    PlatformCalls calls = PlatformCalls::Current();
    const AudioBuffer& buffer = data->mBuffers[0];
    calls.Note("ExtAudioFileWrite frames " + std::to_string(frames) + " buffers " +
               std::to_string(data->mNumberBuffers) + " channels " +
               std::to_string(buffer.mNumberChannels) + " bytes " +
               std::to_string(buffer.mDataByteSize));
    calls.ExpectExtFile(file);
    return calls.WriteExtFile(frames, *data);
}

OSStatus ExtAudioFileDispose(ExtAudioFileRef file)
{
    PlatformCalls calls = PlatformCalls::Current();
    calls.Note("ExtAudioFileDispose");
    return calls.DisposeExtFile(file);
}

}  // extern "C"
