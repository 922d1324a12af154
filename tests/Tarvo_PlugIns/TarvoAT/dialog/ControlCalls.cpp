#include "ControlCalls.h"

#include <kelpcore/utility/StringConversion.h>
#include <kelpui/controls/UI_Popup.h>
#include <kelpui/controls/UI_StaticText.h>
#include <kelpui/ui/UI_ArchivedDialog.h>

#include <dlfcn.h>
#include <utility>

#include <gtest/gtest.h>

namespace
{

std::vector<std::string>* sLines = nullptr;  // null: nobody wants to know
int sDepth = 0;

using kelpui::ui::ButtonRef;

std::string Text(long inNumber)
{
    return std::to_string(inNumber);
}
std::string Text(const UTF8String& inID)
{
    return std::string(inID.ends_with("ID") ? inID.substr(0, inID.size() - 2) : inID);
}
std::string Text(const UTF16String& inText)
{
    return "'" + std::string(kelpcore::utility::UTF16to8(inText)) + "'";
}
std::string Text(const ButtonRef& inButton)
{
    return Text(inButton->GetID());
}

// The framework's own operation, behind the one of this program. The name is the linker's.
template <typename Result, typename... Args>
Result CallNext(const char* inName, Args... inArgs)
{
    void* const next = dlsym(RTLD_NEXT, inName);
    if (!next)
        throw std::runtime_error(inName);
    return reinterpret_cast<Result (*)(Args...)>(next)(inArgs...);
}

// A call of the program's, noted unless it lies within another.
class Call
{
public:
    template <typename... Parts>
    explicit Call(const Parts&... inParts)
    {
        if (sDepth++ > 0 || !sLines)
            return;
        std::string line;
        ((line += (line.empty() ? "" : " ") + std::string(inParts)), ...);
        sLines->push_back(line);
    }
    ~Call() { --sDepth; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
};

}  // namespace

// In front of the framework's.
namespace kelpui::controls
{

void UI_ControlView::SetDisabled(bool inIsDisabled)
{
    const Call call(Text(GetID()), "SetDisabled", Text(inIsDisabled));
    CallNext<void>("_ZN6kelpui8controls14UI_ControlView11SetDisabledEb", this, inIsDisabled);
}

void UI_ControlView::SetVisible(bool inIsVisible)
{
    const Call call(Text(GetID()), "SetVisible", Text(inIsVisible));
    CallNext<void>("_ZN6kelpui8controls14UI_ControlView10SetVisibleEb", this, inIsVisible);
}

void UI_ControlView::SetStyle(long inStyle)
{
    const Call call(Text(GetID()), "SetStyle", Text(inStyle));
    CallNext<void>("_ZN6kelpui8controls14UI_ControlView8SetStyleEl", this, inStyle);
}

void UI_ControlView::NotifyWhenChanged(const ControlChangedFunction& inFunction)
{
    const Call call(Text(GetID()), "NotifyWhenChanged");
    CallNext<void>(
        "_ZN6kelpui8controls14UI_ControlView17NotifyWhenChangedERKN5boost8function"
        "IFvPNS0_24UI_ControlChangedMessageEEEE",
        this, &inFunction);
}

long UI_Popup::AddItem(const UTF16String& inText)
{
    const Call call(Text(GetID()), "AddItem", Text(inText));
    return CallNext<long>(
        "_ZN6kelpui8controls8UI_Popup7AddItemERKNSt7__cxx1112basic_string"
        "IDsSt11char_traitsIDsEN8kelpcore7utility19SmallBlockAllocatorIDsEEEE",
        this, &inText);
}

void UI_Popup::DeleteAllItems()
{
    const Call call(Text(GetID()), "DeleteAllItems");
    CallNext<void>("_ZN6kelpui8controls8UI_Popup14DeleteAllItemsEv", this);
}

void UI_Popup::SetValue(long inItem)
{
    const Call call(Text(GetID()), "SetValue", Text(inItem));
    CallNext<void>("_ZN6kelpui8controls8UI_Popup8SetValueEl", this, inItem);
}

void UI_Popup::SetItemCheckStyle(bool inHasChecks)
{
    const Call call(Text(GetID()), "SetItemCheckStyle", Text(inHasChecks));
    CallNext<void>("_ZN6kelpui8controls8UI_Popup17SetItemCheckStyleEb", this, inHasChecks);
}

void UI_StaticText::SetValue(const UTF16String& inText)
{
    const Call call(Text(GetID()), "SetValue", Text(inText));
    CallNext<void>(
        "_ZN6kelpui8controls13UI_StaticText8SetValueERKNSt7__cxx1112basic_string"
        "IDsSt11char_traitsIDsEN8kelpcore7utility19SmallBlockAllocatorIDsEEEE",
        this, &inText);
}

}  // namespace kelpui::controls

namespace kelpui::ui
{

void UI_Dialog::SetOkButton(const ButtonRef& inButton)
{
    const Call call("Dialog", "SetOkButton", Text(inButton));
    CallNext<void>(
        "_ZN6kelpui2ui9UI_Dialog11SetOkButtonERKN5boost13intrusive_ptr"
        "INS_8controls9UI_ButtonEEE",
        this, &inButton);
}

void UI_Dialog::SetCancelButton(const ButtonRef& inButton)
{
    const Call call("Dialog", "SetCancelButton", Text(inButton));
    CallNext<void>(
        "_ZN6kelpui2ui9UI_Dialog15SetCancelButtonERKN5boost13intrusive_ptr"
        "INS_8controls9UI_ButtonEEE",
        this, &inButton);
}

void FlipNodePositionsOnMac(const ButtonRef& inOK, const ButtonRef& inCancel)
{
    const Call call("FlipNodePositionsOnMac", Text(inOK), Text(inCancel));
    CallNext<void>(
        "_ZN6kelpui2ui22FlipNodePositionsOnMacERKN5boost13intrusive_ptr"
        "INS_8controls9UI_ButtonEEES7_",
        &inOK, &inCancel);
}

}  // namespace kelpui::ui

namespace testing_support
{

ControlCalls::ControlCalls()
{
    EXPECT_EQ(sLines, nullptr);
    sLines = &mLines;
}

ControlCalls::~ControlCalls()
{
    sLines = nullptr;
}

std::vector<std::string> ControlCalls::Take()
{
    return std::exchange(mLines, {});
}

}  // namespace testing_support
