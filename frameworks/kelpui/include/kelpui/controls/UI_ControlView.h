// UI_ControlView: what all controls of a dialog have in common.
//
// A control is a plain object with state. It never draws: a presenter shows the state and sends
// back what the user does, so code runs the same under a person and under a test. All calls come
// from the thread that runs the dialog.
#ifndef KELPUI_CONTROLS_UI_CONTROLVIEW_H
#define KELPUI_CONTROLS_UI_CONTROLVIEW_H

#include "kelpcore/Strings.h"
#include "kelpui/Export.h"

#include <boost/function.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <vector>

namespace kelpui::controls
{

class UI_ControlView;

/// Tells of a change that the user made.
class UI_ControlChangedMessage
{
public:
    explicit UI_ControlChangedMessage(UI_ControlView& inControl) : mControl(inControl) {}
    UI_ControlView& GetControl() const { return mControl; }

private:
    UI_ControlView& mControl;
};

using ControlChangedFunction = boost::function<void(UI_ControlChangedMessage*)>;

/// Told after each change of a control's state, whoever made it. A presenter's.
using StateChangedFunction = boost::function<void(UI_ControlView&)>;

class KELPUI_EXPORT UI_ControlView : public boost::intrusive_ref_counter<UI_ControlView>
{
public:
    explicit UI_ControlView(const UTF8String& inID) : mID(inID) {}
    virtual ~UI_ControlView();
    UI_ControlView(const UI_ControlView&) = delete;
    UI_ControlView& operator=(const UI_ControlView&) = delete;

    const UTF8String& GetID() const { return mID; }

    bool IsDisabled() const { return mIsDisabled; }
    void SetDisabled(bool inIsDisabled);

    bool IsVisible() const { return mIsVisible; }
    virtual void SetVisible(bool inIsVisible);

    /// The look that the owner asks for; presenters may have one look only.
    long GetStyle() const { return mStyle; }
    virtual void SetStyle(long inStyle);

    /// Called for changes by the user only, in the order of binding.
    void NotifyWhenChanged(const ControlChangedFunction& inFunction);

    /// One observer at a time; an empty function takes it away.
    void SetObserver(const StateChangedFunction& inObserver) { mObserver = inObserver; }

protected:
    void StateChanged();
    /// By the presenter's calls, after the state has changed.
    void ChangedByUser();

private:
    const UTF8String mID;
    bool mIsDisabled = false;
    bool mIsVisible = true;
    long mStyle = 0;
    std::vector<ControlChangedFunction> mFunctions;
    StateChangedFunction mObserver;
};

}  // namespace kelpui::controls

#endif
