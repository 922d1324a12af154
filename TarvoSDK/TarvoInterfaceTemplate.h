// TarvoInterfaceTemplate: what every plug-in behind TarvoInterface has in common.
//
// EntryPoint checks the two pointers, unpacks the selector's host object and makes one virtual
// call. An instance lives for one entry call and keeps nothing beyond it but the host's version.
#ifndef TARVOSDK_TARVOINTERFACETEMPLATE_H
#define TARVOSDK_TARVOINTERFACETEMPLATE_H

#include "TarvoSDK/TarvoSDK.h"

#include <cstdint>

namespace tarvo
{

/// ATReader needs a virtual destructor and has to be complete; ATWriter may be incomplete.
///
/// All operations answer a TarvoResult. The order of the virtual operations is fixed.
template <typename ATReader, typename ATWriter>
class TarvoInterfaceTemplate
{
public:
    virtual ~TarvoInterfaceTemplate() = default;

    virtual std::int32_t GetTarvoInfo(TarvoGetTarvoInfoInterface& inInfo) = 0;
    virtual std::int32_t Initialize() = 0;
    virtual std::int32_t Terminate() { return kTarvoResultSuccess; }
    virtual std::int32_t PreOpenForRead(TarvoPreOpenInterface&) { return kTarvoResultSuccess; }
    virtual std::int32_t RunImportSettingsDialog(TarvoRunImportSettingsDialogInterface&)
    {
        return kTarvoResultNotImplemented;
    }
    virtual std::int32_t OpenForRead(TarvoOpenInterface& inOpen) = 0;
    virtual std::int32_t GetFormat(ATReader& inReader, TarvoFormatInterface& inFormat) = 0;
    virtual std::int32_t ReadSamples(ATReader& inReader, TarvoReadSamplesInterface& inRequest) = 0;
    virtual std::int32_t ReadSamplesRaw(ATReader&, long long, long long, void*)
    {
        return kTarvoResultNotImplemented;
    }
    virtual std::int32_t ReadVideoFrame(ATReader&, TarvoReadVideoFrameInterface&)
    {
        return kTarvoResultNotImplemented;
    }
    virtual std::int32_t ReadMetadata(ATReader&, long long, long long, long long, void*)
    {
        return kTarvoResultNotImplemented;
    }
    virtual std::int32_t DoneWithAudioRead(ATReader&) { return kTarvoResultNotImplemented; }
    /// Deletes the reader; null is fine.
    virtual std::int32_t CloseForRead(ATReader* inReader)
    {
        delete inReader;
        return kTarvoResultSuccess;
    }
    virtual std::int32_t GetDefaultExportSettings(TarvoFormatInterface& inFormat) = 0;
    virtual std::int32_t GetExportSettingsInfo(TarvoGetExportSettingsInfoInterface& inInfo) = 0;
    virtual std::int32_t RunExportSettingsDialog(TarvoFormatInterface& inFormat,
                                                 void* inParentWindow, long long inOption,
                                                 bool& outCancelled) = 0;
    virtual std::int32_t WriteStart(TarvoWriteStartInterface& inStart, ATWriter*& outWriter) = 0;
    virtual std::int32_t WriteSamples(ATWriter& inWriter, TarvoWriteSamplesInterface& inBlock) = 0;
    virtual std::int32_t FinishWrite(ATWriter& inWriter, bool inFlag,
                                     const TarvoFormatInterface& inFormat) = 0;

    /// The road of every entry call; arguments and answer are those of TarvoInterface.
    std::int32_t EntryPoint(int inSelector, void* inFileHandle, void* inHostObject);

    /// The host's interface version, 0.0 until selector 0 has run. Written without a guard.
    static inline std::int32_t mHostInterfaceVersionMajor = 0;
    static inline std::int32_t mHostInterfaceVersionMinor = 0;

protected:
    /// Where failure text of the current call goes; null when the selector supplies none.
    TarvoErrorInterface* mErrorInterface = nullptr;

private:
    using Enter = std::int32_t (TarvoInterfaceTemplate::*)(void* inFileHandle, void* inHostObject);

    struct SelectorRow
    {
        bool mNeedsHandle;
        bool mNeedsHostObject;
        std::int32_t mNullResult;  // for a needed pointer that is null
        Enter mEnter;
    };

    static constexpr int kSelectorCount = 20;
    static const SelectorRow& RowOf(unsigned int inSelector);

    // The host object behind the pointer, after its error object was taken.
    template <typename HostObject>
    HostObject& TakeHostObject(void* inHostObject)
    {
        HostObject& host = *static_cast<HostObject*>(inHostObject);
        mErrorInterface = host.GetErrorInterface();
        return host;
    }
    static ATReader& Reader(void* inFileHandle) { return *static_cast<ATReader*>(inFileHandle); }
    static ATWriter& Writer(void* inFileHandle) { return *static_cast<ATWriter*>(inFileHandle); }

    std::int32_t EnterGetTarvoInfo(void*, void* inHostObject);
    std::int32_t EnterInitialize(void*, void*) { return Initialize(); }
    std::int32_t EnterTerminate(void*, void*) { return Terminate(); }
    std::int32_t EnterPreOpenForRead(void*, void* inHostObject);
    std::int32_t EnterRunImportSettingsDialog(void*, void* inHostObject);
    std::int32_t EnterOpenForRead(void*, void* inHostObject);
    std::int32_t EnterGetFormat(void* inFileHandle, void* inHostObject);
    std::int32_t EnterReadSamples(void* inFileHandle, void* inHostObject);
    std::int32_t EnterReadSamplesRaw(void* inFileHandle, void* inHostObject);
    std::int32_t EnterReadVideoFrame(void* inFileHandle, void* inHostObject);
    std::int32_t EnterReadMetadata(void* inFileHandle, void* inHostObject);
    std::int32_t EnterDoneWithAudioRead(void* inFileHandle, void*);
    std::int32_t EnterCloseForRead(void* inFileHandle, void*);
    std::int32_t EnterGetDefaultExportSettings(void*, void* inHostObject);
    std::int32_t EnterGetExportSettingsInfo(void*, void* inHostObject);
    std::int32_t EnterRunExportSettingsDialog(void*, void* inHostObject);
    std::int32_t EnterUnknown(void*, void*) { return kTarvoResultUnknownSelector; }
    std::int32_t EnterWriteStart(void*, void* inHostObject);
    std::int32_t EnterWriteSamples(void* inFileHandle, void* inHostObject);
    std::int32_t EnterFinishWrite(void* inFileHandle, void* inHostObject);
};

}  // namespace tarvo

#include "TarvoSDK/TarvoInterfaceDispatch.h"

#endif
