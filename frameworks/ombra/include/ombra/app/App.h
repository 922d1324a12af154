// App: the application around the modules, as far as they ask for it.
#ifndef OMBRA_APP_APP_H
#define OMBRA_APP_APP_H

#include <kelpui/inkwright/Supplier.h>

#include <memory>

#define OMBRA_EXPORT __attribute__((visibility("default")))

namespace ombra::app
{

/// Where the application's windows live.
class OMBRA_EXPORT Workspace
{
public:
    Workspace();
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /// Made at the first question; lives as long as the workspace.
    const kelpui::inkwright::SupplierInterface& GetSupplier();

private:
    std::unique_ptr<kelpui::inkwright::SupplierInterface> mSupplier;
};

class OMBRA_EXPORT AppBase
{
public:
    AppBase();
    virtual ~AppBase();
    AppBase(const AppBase&) = delete;
    AppBase& operator=(const AppBase&) = delete;

    Workspace& GetWorkspace() { return mWorkspace; }

private:
    Workspace mWorkspace;
};

/// The one application of the process.
class OMBRA_EXPORT App final : public AppBase
{
public:
    ~App() override;
    /// Made at the first question; lives to the end of the process.
    static App& GetApp();

private:
    App();
};

}  // namespace ombra::app

#endif
