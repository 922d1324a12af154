#include "ombra/app/App.h"

namespace ombra::app
{

Workspace::Workspace() = default;

Workspace::~Workspace() = default;

const kelpui::inkwright::SupplierInterface& Workspace::GetSupplier()
{
    if (!mSupplier)
        mSupplier.reset(kelpui::inkwright::NewOSSupplier());
    return *mSupplier;
}

AppBase::AppBase() = default;

AppBase::~AppBase() = default;

App::App() = default;

App::~App() = default;

App& App::GetApp()
{
    static App sApp;
    return sApp;
}

}  // namespace ombra::app
