// BindMessageFunction: a member of an object as the handler of a control's messages.
#ifndef KELPUI_UI_BINDMESSAGEFUNCTION_H
#define KELPUI_UI_BINDMESSAGEFUNCTION_H

#include "kelpui/controls/UI_ControlView.h"

#include <boost/bind/bind.hpp>

namespace kelpui::ui
{

/// The object outlives the control's last message.
template <typename Object>
controls::ControlChangedFunction BindMessageFunction(
    void (Object::*inHandler)(controls::UI_ControlChangedMessage*), Object* inObject)
{
    return boost::bind(inHandler, inObject, boost::placeholders::_1);
}

}  // namespace kelpui::ui

#endif
