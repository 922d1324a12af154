#include "kelpui/ui/DialogPresenter.h"

namespace kelpui::ui
{
namespace
{

DialogPresenter* sPresenter = nullptr;

}  // namespace

DialogPresenter::~DialogPresenter() = default;

void SetDialogPresenter(DialogPresenter* inPresenter)
{
    sPresenter = inPresenter;
}

DialogPresenter* GetDialogPresenter()
{
    return sPresenter;
}

}  // namespace kelpui::ui
