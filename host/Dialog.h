// Dialog: the plug-in's settings dialog, run for an export.
//
// The dialog's toolkit lies in a library of its own, which is loaded for the first dialog, so that
// everything else works without it.
#ifndef HOST_DIALOG_H
#define HOST_DIALOG_H

#include "host/AudioShape.h"
#include "host/PlugIn.h"

#include <optional>
#include <string>

namespace host
{

/// Loads what shows dialogs. To be called before the process has another thread, for the one on
/// which dialogs run.
///
/// inLibrary  its name beside the program's other libraries, or a whole path
/// Throws Failure (kExitFailed) when it is missing, when what it needs is missing, and without a
/// display.
void ProvideDialogs(const std::string& inLibrary = "libkelpuiQt.so");

struct DialogRequest
{
    AudioShape mAudio{};            // as it is meant to be saved
    std::string mSettings{};        // where the dialog starts, UTF-8; empty: the plug-in's defaults
    std::string mFilterId{};        // as told at registration; that of a file type fixes the type
    void* mParentWindow = nullptr;  // the toolkit's, whose dialog it is; may be null
};

/// Runs the dialog (selector 15) until the user has closed it. A signal ends the process meanwhile.
/// The chosen settings text, or nothing if the user cancelled. Throws Failure (kExitFailed) for a
/// dialog that cannot be shown, and (kExitSettings) for a filter id that is no number.
std::optional<std::string> RunExportDialog(const PlugIn& inPlugIn, const DialogRequest& inRequest);

}  // namespace host

#endif
