// UI_Dialog: a modal dialog, its two closing buttons and its result.
#ifndef KELPUI_UI_UI_DIALOG_H
#define KELPUI_UI_UI_DIALOG_H

#include "kelpui/controls/UI_Button.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

namespace kelpui::ui
{

using ButtonRef = boost::intrusive_ptr<controls::UI_Button>;

class KELPUI_EXPORT UI_Dialog : public boost::intrusive_ref_counter<UI_Dialog>
{
public:
    /// Results of a run.
    static constexpr long kCancelled = 0;
    static constexpr long kOK = 1;

    UI_Dialog();
    virtual ~UI_Dialog();
    UI_Dialog(const UI_Dialog&) = delete;
    UI_Dialog& operator=(const UI_Dialog&) = delete;

    /// The button that ends the run with kOK, and Return's button.
    void SetOkButton(const ButtonRef& inButton);
    /// The button that ends the run with kCancelled, and Escape's button.
    void SetCancelButton(const ButtonRef& inButton);
    const ButtonRef& GetOkButton() const { return mOkButton; }
    const ButtonRef& GetCancelButton() const { return mCancelButton; }

    /// Runs the dialog modally; returns when it has ended. GetResult tells how.
    virtual void RunDialog() = 0;

    /// Ends the run; ignored when none is going on.
    void EndDialog(long inResult);
    bool IsRunning() const { return mIsRunning; }
    /// Of the last run; kCancelled before.
    long GetResult() const { return mResult; }

protected:
    /// The last result counts as cancelled from now on.
    void BeginRun();

private:
    void EndOn(const ButtonRef& inButton, const ButtonRef& inKept, long inResult);

    // Buttons may live longer than the dialog that they closed.
    const boost::shared_ptr<UI_Dialog*> mSelf;
    ButtonRef mOkButton;
    ButtonRef mCancelButton;
    bool mIsRunning = false;
    long mResult = kCancelled;
};

/// On the Mac the confirming button stands right of the other; elsewhere nothing happens: the
/// presenter follows the desktop's order.
KELPUI_EXPORT void FlipNodePositionsOnMac(const ButtonRef& inOK, const ButtonRef& inCancel);

}  // namespace kelpui::ui

#endif
