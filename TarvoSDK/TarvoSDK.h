// TarvoSDK: the whole contract between a host and a file-format plug-in.
//
// The host loads the plug-in and calls its one exported function, TarvoInterface, with a selector,
// a handle that a former call gave to it, and a host object that is valid for this one call.
//
// Host objects are made and owned by the host. The plug-in calls their operations by position in
// the table of virtual operations: the first two positions are the destructor's, which the plug-in
// never calls, and then the operations follow in the order of declaration. That order is binary
// contract. Operations named Reserved only keep a position and are never called. Operations with no
// stated result answer nothing, and constness does not show in the table.
//
// Texts that the plug-in passes are valid until the host operation returns.
#ifndef TARVOSDK_TARVOSDK_H
#define TARVOSDK_TARVOSDK_H

#include "TarvoSDK/TarvoErrorInterface.h"
#include "TarvoSDK/TarvoExtensionList.h"
#include "TarvoSDK/TarvoFinishWriteInterface.h"
#include "TarvoSDK/TarvoFormatInterface.h"
#include "TarvoSDK/TarvoGetExportSettingsInfoInterface.h"
#include "TarvoSDK/TarvoGetTarvoInfoInterface.h"
#include "TarvoSDK/TarvoOpenInterface.h"
#include "TarvoSDK/TarvoPreOpenInterface.h"
#include "TarvoSDK/TarvoReadMetadataInterface.h"
#include "TarvoSDK/TarvoReadSamplesInterface.h"
#include "TarvoSDK/TarvoReadSamplesRawInterface.h"
#include "TarvoSDK/TarvoReadVideoFrameInterface.h"
#include "TarvoSDK/TarvoRunExportSettingsDialogInterface.h"
#include "TarvoSDK/TarvoRunImportSettingsDialogInterface.h"
#include "TarvoSDK/TarvoSDKTypes.h"
#include "TarvoSDK/TarvoWriteSamplesInterface.h"
#include "TarvoSDK/TarvoWriteStartInterface.h"

#include <cstdint>

/// What the host wants. 16 is a number without a call.
enum TarvoSelector : int
{
    kTarvoSelectorGetTarvoInfo = 0,
    kTarvoSelectorInitialize = 1,
    kTarvoSelectorTerminate = 2,
    kTarvoSelectorPreOpenForRead = 3,
    kTarvoSelectorRunImportSettingsDialog = 4,
    kTarvoSelectorOpenForRead = 5,
    kTarvoSelectorGetFormat = 6,
    kTarvoSelectorReadSamples = 7,
    kTarvoSelectorReadSamplesRaw = 8,
    kTarvoSelectorReadVideoFrame = 9,
    kTarvoSelectorReadMetadata = 10,
    kTarvoSelectorDoneWithAudioRead = 11,
    kTarvoSelectorCloseForRead = 12,
    kTarvoSelectorGetDefaultExportSettings = 13,
    kTarvoSelectorGetExportSettingsInfo = 14,
    kTarvoSelectorRunExportSettingsDialog = 15,
    kTarvoSelectorWriteStart = 17,
    kTarvoSelectorWriteSamples = 18,
    kTarvoSelectorFinishWrite = 19
};

/// The shape of the entry function, for hosts that look it up in a loaded plug-in.
using TarvoInterfaceFunction = std::int32_t (*)(int inSelector, void* inFileHandle,
                                                void* inHostObject);

/// The plug-in's one entry.
///
/// inFileHandle  what SetFileHandle or SetWriterHandle told, for the calls of a session
/// inHostObject  the address of the selector's host object itself
/// Answers a TarvoResult. Exceptions pass through unchanged.
extern "C" __attribute__((visibility("default"))) std::int32_t TarvoInterface(int inSelector,
                                                                              void* inFileHandle,
                                                                              void* inHostObject);

#endif
