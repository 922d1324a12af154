#include "host/Dialog.h"

#include "TarvoSDK/TarvoRunExportSettingsDialogInterface.h"
#include "TarvoSDK/TarvoSDK.h"
#include "host/Failure.h"
#include "host/Interrupt.h"
#include "kelpcore/config/Localizer.h"
#include "kelpcore/utility/NumberText.h"

#include <kelpuiqt/Register.h>

#include <dlfcn.h>
#include <exception>
#include <filesystem>

namespace host
{

namespace
{

class RunObject : public TarvoRunExportSettingsDialogInterface
{
public:
    RunObject(FormatObject& ioFormat, void* inParentWindow)
        : mFormat(ioFormat), mParentWindow(inParentWindow)
    {
    }

    TarvoErrorInterface* GetErrorInterface() const override { return &mError; }
    TarvoFormatInterface* GetFormatInterface() const override { return &mFormat; }
    void* GetParentWindow() const override { return mParentWindow; }
    void SetCancelled(bool inCancelled) override { mIsCancelled = inCancelled; }
    long long GetDialogOption() const override { return 0; }

    mutable ErrorObject mError;
    bool mIsCancelled = true;

private:
    FormatObject& mFormat;
    void* const mParentWindow;
};

Failure DialogFailure(const std::string& inReason, std::int32_t inResult = 0)
{
    return Failure(kExitFailed, inResult, "cannot show the dialog: " + inReason);
}

// The plug-in answers with a result; what goes wrong in showing comes as an exception.
std::int32_t Run(const PlugIn& inPlugIn, RunObject& ioRun, const std::string& inFilterId)
{
    const InterruptsEndProcess guard;
    CheckInterrupt();
    try
    {
        return inPlugIn.Call(kTarvoSelectorRunExportSettingsDialog, nullptr, &ioRun);
    }
    catch (const kelpcore::utility::NumberFormatError&)
    {
        throw Failure(kExitSettings, 0, "The filter id is no number: " + inFilterId);
    }
    catch (const std::exception& error)
    {
        throw DialogFailure(error.what());
    }
}

// The folder of the program's own libraries. A bare name would do where the loader's search is left
// to the program, but the address sanitizer's own library stands between the two.
std::filesystem::path LibraryFolder()
{
    Dl_info info = {};
    const auto own = reinterpret_cast<const void*>(&kelpcore::config::Localizer::Get);
    if (dladdr(own, &info) == 0 || !info.dli_fname)
        return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}

}  // namespace

void ProvideDialogs(const std::string& inLibrary)
{
    const std::string path = (LibraryFolder() / inLibrary).lexically_normal().string();
    // Never closed: toolkits are not made to be unloaded.
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw Failure(kExitFailed, 0, std::string("the dialog needs Qt 6 Widgets: ") + dlerror());
    const auto provide =
        reinterpret_cast<KelpuiQtRegisterFunction>(dlsym(library, "KelpuiQtRegister"));
    if (!provide)
        throw DialogFailure(inLibrary + " has no KelpuiQtRegister");
    if (const char* const reason = provide())
        throw DialogFailure(reason);
}

std::optional<std::string> RunExportDialog(const PlugIn& inPlugIn, const DialogRequest& inRequest)
{
    FormatObject format(nullptr);
    SetShape(format, inRequest.mAudio);
    format.mSettings = ToPlugIn(inRequest.mSettings);
    format.mFilterId = ToPlugIn(inRequest.mFilterId);
    RunObject run(format, inRequest.mParentWindow);
    const std::int32_t result = Run(inPlugIn, run, inRequest.mFilterId);
    if (result != kTarvoResultSuccess)
        throw DialogFailure(
            run.mError.mText.empty() ? "result " + std::to_string(result) : run.mError.mText,
            result);
    if (run.mIsCancelled)
        return std::nullopt;
    return FromPlugIn(format.GetPrivateSettings());
}

}  // namespace host
