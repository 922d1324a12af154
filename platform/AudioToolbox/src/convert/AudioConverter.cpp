// The C functions of AudioConverter: they check arguments and dispatch.
#include "convert/ConverterProperties.h"

#include <AudioToolbox/AudioFile.h>

#include <memory>
#include <new>

namespace
{

constexpr OSStatus kParameterError = -50;

// No exception crosses the C interface.
template <typename Function>
OSStatus Guarded(Function inFunction)
{
    try
    {
        return inFunction();
    }
    catch (const std::bad_alloc&)
    {
        return kAudio_MemFullError;
    }
}

}  // namespace

OSStatus AudioConverterNew(const AudioStreamBasicDescription* source,
                           const AudioStreamBasicDescription* destination,
                           AudioConverterRef* outConverter)
{
    if (source == nullptr || destination == nullptr || outConverter == nullptr)
        return kParameterError;
    *outConverter = nullptr;
    return Guarded(
        [&]
        {
        audiotoolbox::ConversionPlan plan;
        const OSStatus status = audiotoolbox::PlanConversion(*source, *destination, plan);
        if (status == noErr)
            *outConverter = std::make_unique<OpaqueAudioConverter>(plan).release();
        return status;
    });
}

OSStatus AudioConverterDispose(AudioConverterRef converter)
{
    if (converter == nullptr)
        return kParameterError;
    delete converter;
    return noErr;
}

OSStatus AudioConverterReset(AudioConverterRef converter)
{
    if (converter == nullptr)
        return kParameterError;
    converter->Reset();
    return noErr;
}

OSStatus AudioConverterGetPropertyInfo(AudioConverterRef converter,
                                       AudioConverterPropertyID property, UInt32* outSize,
                                       Boolean* outWritable)
{
    if (converter == nullptr)
        return kParameterError;
    UInt32 size = 0;
    bool isWritable = false;
    const OSStatus status = Guarded(
        [&]
        { return audiotoolbox::GetConverterPropertyInfo(*converter, property, size, isWritable); });
    if (status == noErr && outSize != nullptr)
        *outSize = size;
    if (status == noErr && outWritable != nullptr)
        *outWritable = isWritable ? 1 : 0;
    return status;
}

OSStatus AudioConverterGetProperty(AudioConverterRef converter, AudioConverterPropertyID property,
                                   UInt32* ioSize, void* outData)
{
    if (converter == nullptr || ioSize == nullptr || outData == nullptr)
        return kParameterError;
    return Guarded(
        [&] { return audiotoolbox::GetConverterProperty(*converter, property, *ioSize, outData); });
}

OSStatus AudioConverterSetProperty(AudioConverterRef converter, AudioConverterPropertyID property,
                                   UInt32 size, const void* data)
{
    if (converter == nullptr || data == nullptr)
        return kParameterError;
    return Guarded(
        [&] { return audiotoolbox::SetConverterProperty(*converter, property, size, data); });
}

OSStatus AudioConverterFillComplexBuffer(AudioConverterRef converter,
                                         AudioConverterComplexInputDataProc inputProc,
                                         void* userData, UInt32* ioPackets,
                                         AudioBufferList* outData,
                                         AudioStreamPacketDescription* outDescriptions)
{
    if (converter == nullptr || inputProc == nullptr || ioPackets == nullptr || outData == nullptr)
        return kParameterError;
    return converter->Fill(converter, inputProc, userData, *ioPackets, *outData, outDescriptions);
}
