#include "kelpui/ui/UI_Dialog.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>

namespace kelpui::ui
{

UI_Dialog::UI_Dialog() : mSelf(boost::make_shared<UI_Dialog*>(this)) {}

UI_Dialog::~UI_Dialog() = default;

void UI_Dialog::SetOkButton(const ButtonRef& inButton)
{
    mOkButton = inButton;
    EndOn(inButton, mOkButton, kOK);
}

void UI_Dialog::SetCancelButton(const ButtonRef& inButton)
{
    mCancelButton = inButton;
    EndOn(inButton, mCancelButton, kCancelled);
}

void UI_Dialog::EndOn(const ButtonRef& inButton, const ButtonRef& inKept, long inResult)
{
    if (!inButton)
        return;
    const boost::weak_ptr<UI_Dialog*> self = mSelf;
    inButton->NotifyWhenChanged(
        [self, kept = &inKept, inResult](controls::UI_ControlChangedMessage* inMessage)
        {
        // A button that another one has replaced closes nothing any more.
        const boost::shared_ptr<UI_Dialog*> dialog = self.lock();
        if (dialog && kept->get() == &inMessage->GetControl())
            (*dialog)->EndDialog(inResult);
    });
}

void UI_Dialog::BeginRun()
{
    mIsRunning = true;
    mResult = kCancelled;
}

void UI_Dialog::EndDialog(long inResult)
{
    if (!mIsRunning)
        return;
    mIsRunning = false;
    mResult = inResult;
}

void FlipNodePositionsOnMac(const ButtonRef&, const ButtonRef&)
{
    // Presenters follow the order of the desktop.
}

}  // namespace kelpui::ui
