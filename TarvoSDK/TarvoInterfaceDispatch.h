// TarvoInterfaceDispatch: the bodies of TarvoInterfaceTemplate, one step for each selector.
//
// Included by TarvoInterfaceTemplate.h alone.
#ifndef TARVOSDK_TARVOINTERFACEDISPATCH_H
#define TARVOSDK_TARVOINTERFACEDISPATCH_H

#include "TarvoSDK/TarvoInterfaceTemplate.h"

namespace tarvo
{

template <typename ATReader, typename ATWriter>
auto TarvoInterfaceTemplate<ATReader, ATWriter>::RowOf(unsigned int inSelector)
    -> const SelectorRow&
{
    using Self = TarvoInterfaceTemplate;
    constexpr std::int32_t bad = kTarvoResultBadArgument;
    static constexpr SelectorRow kRows[kSelectorCount] = {
        // handle, host object, result for null
        {false, true, bad, &Self::EnterGetTarvoInfo},
        {false, false, bad, &Self::EnterInitialize},
        {false, false, bad, &Self::EnterTerminate},
        {false, true, bad, &Self::EnterPreOpenForRead},
        {false, true, bad, &Self::EnterRunImportSettingsDialog},
        {false, true, bad, &Self::EnterOpenForRead},
        {true, true, bad, &Self::EnterGetFormat},
        {true, true, bad, &Self::EnterReadSamples},
        {true, true, bad, &Self::EnterReadSamplesRaw},
        {true, true, bad, &Self::EnterReadVideoFrame},
        {true, true, bad, &Self::EnterReadMetadata},
        {true, false, bad, &Self::EnterDoneWithAudioRead},
        {true, false, bad, &Self::EnterCloseForRead},
        {false, true, bad, &Self::EnterGetDefaultExportSettings},
        {false, true, bad, &Self::EnterGetExportSettingsInfo},
        {false, true, bad, &Self::EnterRunExportSettingsDialog},
        {false, false, bad, &Self::EnterUnknown},
        {false, true, bad, &Self::EnterWriteStart},
        {true, true, bad, &Self::EnterWriteSamples},
        // Hosts know this one as a general failure.
        {true, true, kTarvoResultFailed, &Self::EnterFinishWrite},
    };
    return kRows[inSelector];
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EntryPoint(int inSelector,
                                                                    void* inFileHandle,
                                                                    void* inHostObject)
{
    mErrorInterface = nullptr;
    const auto selector = static_cast<unsigned int>(inSelector);
    if (selector >= kSelectorCount)
        return kTarvoResultUnknownSelector;

    const SelectorRow& row = RowOf(selector);
    if ((row.mNeedsHandle && !inFileHandle) || (row.mNeedsHostObject && !inHostObject))
        return row.mNullResult;
    return (this->*row.mEnter)(inFileHandle, inHostObject);
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterGetTarvoInfo(void*,
                                                                           void* inHostObject)
{
    auto& info = *static_cast<TarvoGetTarvoInfoInterface*>(inHostObject);
    info.SetPluginInterfaceVersion(1, 2);
    info.GetHostInterfaceVersion(&mHostInterfaceVersionMajor, &mHostInterfaceVersionMinor);
    return GetTarvoInfo(info);
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterPreOpenForRead(void*,
                                                                             void* inHostObject)
{
    return PreOpenForRead(TakeHostObject<TarvoPreOpenInterface>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterRunImportSettingsDialog(
    void*, void* inHostObject)
{
    auto& run = TakeHostObject<TarvoRunImportSettingsDialogInterface>(inHostObject);
    run.SetDialogResult(0);
    return RunImportSettingsDialog(run);
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterOpenForRead(void*, void* inHostObject)
{
    return OpenForRead(TakeHostObject<TarvoOpenInterface>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterGetFormat(void* inFileHandle,
                                                                        void* inHostObject)
{
    return GetFormat(Reader(inFileHandle), TakeHostObject<TarvoFormatInterface>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterReadSamples(void* inFileHandle,
                                                                          void* inHostObject)
{
    return ReadSamples(Reader(inFileHandle),
                       *static_cast<TarvoReadSamplesInterface*>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterReadSamplesRaw(void* inFileHandle,
                                                                             void* inHostObject)
{
    // The host's operations are read one by one, since arguments have no order of their own.
    auto& request = *static_cast<TarvoReadSamplesRawInterface*>(inHostObject);
    const long long first = request.GetRawFirst();
    const long long second = request.GetRawSecond();
    void* const buffer = request.GetRawBuffer();
    return ReadSamplesRaw(Reader(inFileHandle), first, second, buffer);
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterReadVideoFrame(void* inFileHandle,
                                                                             void* inHostObject)
{
    return ReadVideoFrame(Reader(inFileHandle),
                          *static_cast<TarvoReadVideoFrameInterface*>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterReadMetadata(void* inFileHandle,
                                                                           void* inHostObject)
{
    auto& request = *static_cast<TarvoReadMetadataInterface*>(inHostObject);
    const long long first = request.GetRawFirst();
    const long long second = request.GetRawSecond();
    const long long third = request.GetRawThird();
    void* const buffer = request.GetRawBuffer();
    return ReadMetadata(Reader(inFileHandle), first, second, third, buffer);
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterDoneWithAudioRead(void* inFileHandle,
                                                                                void*)
{
    return DoneWithAudioRead(Reader(inFileHandle));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterCloseForRead(void* inFileHandle,
                                                                           void*)
{
    return CloseForRead(static_cast<ATReader*>(inFileHandle));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterGetDefaultExportSettings(
    void*, void* inHostObject)
{
    return GetDefaultExportSettings(TakeHostObject<TarvoFormatInterface>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterGetExportSettingsInfo(
    void*, void* inHostObject)
{
    return GetExportSettingsInfo(TakeHostObject<TarvoGetExportSettingsInfoInterface>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterRunExportSettingsDialog(
    void*, void* inHostObject)
{
    auto& run = TakeHostObject<TarvoRunExportSettingsDialogInterface>(inHostObject);
    bool cancelled = false;
    TarvoFormatInterface& format = *run.GetFormatInterface();
    void* const window = run.GetParentWindow();
    // Hosts of version 1.0 and before have no such operation. Each number is judged by itself.
    const bool hasOption = mHostInterfaceVersionMajor > 1 || mHostInterfaceVersionMinor > 0;
    const long long option = hasOption ? run.GetDialogOption() : 0;

    const std::int32_t result = RunExportSettingsDialog(format, window, option, cancelled);
    if (result == kTarvoResultSuccess)
        run.SetCancelled(cancelled);
    return result;
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterWriteStart(void*, void* inHostObject)
{
    auto& start = TakeHostObject<TarvoWriteStartInterface>(inHostObject);
    ATWriter* writer = nullptr;
    const std::int32_t result = WriteStart(start, writer);
    if (result == kTarvoResultSuccess)
        start.SetWriterHandle(writer);
    return result;
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterWriteSamples(void* inFileHandle,
                                                                           void* inHostObject)
{
    return WriteSamples(Writer(inFileHandle),
                        TakeHostObject<TarvoWriteSamplesInterface>(inHostObject));
}

template <typename ATReader, typename ATWriter>
std::int32_t TarvoInterfaceTemplate<ATReader, ATWriter>::EnterFinishWrite(void* inFileHandle,
                                                                          void* inHostObject)
{
    auto& finish = TakeHostObject<TarvoFinishWriteInterface>(inHostObject);
    const bool flag = static_cast<std::uint8_t>(finish.GetFinishFlag()) != 0;
    return FinishWrite(Writer(inFileHandle), flag, *finish.GetFormatInterface());
}

}  // namespace tarvo

#endif
