// Controls: their state, who is told of its changes, and what the user can do to them.
#include "kelpui/controls/UI_Button.h"
#include "kelpui/controls/UI_Popup.h"
#include "kelpui/controls/UI_StaticText.h"
#include "kelpui/ui/BindMessageFunction.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

namespace
{

using namespace kelpui::controls;
using boost::intrusive_ptr;

using Items = std::vector<UTF16String>;

intrusive_ptr<UI_Popup> NewPopup(const Items& inItems = {u"one", u"two", u"three"})
{
    const intrusive_ptr<UI_Popup> popup(new UI_Popup("PopupID"));
    for (const UTF16String& item : inItems)
        popup->AddItem(item);
    return popup;
}

// Counts calls of itself.
struct Counter
{
    explicit Counter(UI_ControlView& ioControl)
    {
        ioControl.NotifyWhenChanged([this](UI_ControlChangedMessage*) { ++mCalls; });
    }
    int mCalls = 0;
};

// An object with a handler, as a dialog's owner is.
struct Owner
{
    void OnChanged(UI_ControlChangedMessage* inMessage) { mID = inMessage->GetControl().GetID(); }
    UTF8String mID;
};

}  // namespace

TEST(Popup, NumbersItsItemsFromZero)
{
    const intrusive_ptr<UI_Popup> popup(new UI_Popup("PopupID"));
    EXPECT_EQ(popup->AddItem(u"one"), 0);
    EXPECT_EQ(popup->AddItem(u"two"), 1);
    popup->DeleteAllItems();
    EXPECT_EQ(popup->AddItem(u"other"), 0);
    EXPECT_EQ(popup->GetItems(), Items{u"other"});
}

TEST(Popup, StandsAtItsFirstItemUntilItIsSet)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    EXPECT_EQ(popup->GetValue(), 0);
    popup->SetValue(2);
    EXPECT_EQ(popup->GetValue(), 2);
}

TEST(Popup, KeepsItsValueWithoutItems)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    popup->SetValue(2);
    popup->DeleteAllItems();
    EXPECT_EQ(popup->GetValue(), 2);
    popup->SetValue(-1);
    EXPECT_EQ(popup->GetValue(), -1);
    EXPECT_EQ(popup->GetItems(), Items());
}

TEST(Popup, HasAStyleAndCheckMarks)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    EXPECT_EQ(popup->GetStyle(), 0);
    EXPECT_FALSE(popup->HasItemCheckStyle());
    popup->SetStyle(3);
    popup->SetItemCheckStyle(true);
    EXPECT_EQ(popup->GetStyle(), 3);
    EXPECT_TRUE(popup->HasItemCheckStyle());
}

TEST(Popup, AChoiceSetsTheValueAndThenTellsTheBoundFunctions)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    long told = -1;
    popup->NotifyWhenChanged([&](UI_ControlChangedMessage* message)
                             { told = static_cast<UI_Popup&>(message->GetControl()).GetValue(); });
    popup->ChooseItem(1);
    EXPECT_EQ(told, 1);
}

TEST(Popup, ChoosingTheChosenItemCountsAsAChoice)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    const Counter counter(*popup);
    popup->ChooseItem(0);
    EXPECT_EQ(counter.mCalls, 1);
}

TEST(Popup, AnItemThatIsNotThereCannotBeChosen)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    popup->SetValue(1);
    const Counter counter(*popup);
    for (const long item : {-1L, 3L, 1000L})
        popup->ChooseItem(item);
    EXPECT_EQ(popup->GetValue(), 1);
    EXPECT_EQ(counter.mCalls, 0);
}

TEST(Popup, CannotBeUsedWhileItIsDisabledOrHidden)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    const Counter counter(*popup);
    popup->SetDisabled(true);
    popup->ChooseItem(1);
    popup->SetDisabled(false);
    popup->SetVisible(false);
    popup->ChooseItem(1);
    EXPECT_EQ(popup->GetValue(), 0);
    EXPECT_EQ(counter.mCalls, 0);
    popup->SetVisible(true);
    popup->ChooseItem(1);
    EXPECT_EQ(popup->GetValue(), 1);
    EXPECT_EQ(counter.mCalls, 1);
}

TEST(Button, TellsOfAPressUnlessItIsDisabledOrHidden)
{
    const intrusive_ptr<UI_Button> button(new UI_Button("OKButtonID"));
    const Counter counter(*button);
    button->Press();
    EXPECT_EQ(counter.mCalls, 1);
    button->SetDisabled(true);
    button->Press();
    button->SetDisabled(false);
    button->SetVisible(false);
    button->Press();
    EXPECT_EQ(counter.mCalls, 1);
}

TEST(StaticText, KeepsItsText)
{
    const intrusive_ptr<UI_StaticText> text(new UI_StaticText("TextID"));
    EXPECT_EQ(text->GetValue(), u"");
    text->SetValue(u"ビットレート:");
    EXPECT_EQ(text->GetValue(), u"ビットレート:");
}

TEST(Control, IsVisibleAndEnabledAtFirst)
{
    const intrusive_ptr<UI_Button> button(new UI_Button("OKButtonID"));
    EXPECT_EQ(button->GetID(), "OKButtonID");
    EXPECT_TRUE(button->IsVisible());
    EXPECT_FALSE(button->IsDisabled());
}

TEST(Control, ItsOwnerIsNotToldOfItsOwnChanges)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    const Counter counter(*popup);
    popup->AddItem(u"four");
    popup->SetValue(1);
    popup->SetDisabled(true);
    popup->SetVisible(false);
    popup->DeleteAllItems();
    EXPECT_EQ(counter.mCalls, 0);
}

TEST(Control, ItsObserverIsToldAfterEachChange)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup({});
    std::vector<std::string> seen;
    popup->SetObserver(
        [&](UI_ControlView& control)
        {
        EXPECT_EQ(&control, popup.get());
        seen.push_back(std::to_string(popup->GetItems().size()) + " items, at " +
                       std::to_string(popup->GetValue()) +
                       (popup->IsDisabled() ? ", disabled" : "") +
                       (popup->IsVisible() ? "" : ", hidden") +
                       (popup->HasItemCheckStyle() ? ", checks" : "") + ", style " +
                       std::to_string(popup->GetStyle()));
    });
    popup->SetStyle(3);
    popup->SetItemCheckStyle(true);
    popup->AddItem(u"one");
    popup->AddItem(u"two");
    popup->ChooseItem(1);
    popup->SetDisabled(true);
    popup->SetVisible(false);
    popup->DeleteAllItems();
    popup->SetValue(1);  // the same again
    EXPECT_EQ(seen,
              (std::vector<std::string>{
                  "0 items, at 0, style 3", "0 items, at 0, checks, style 3",
                  "1 items, at 0, checks, style 3", "2 items, at 0, checks, style 3",
                  "2 items, at 1, checks, style 3", "2 items, at 1, disabled, checks, style 3",
                  "2 items, at 1, disabled, hidden, checks, style 3",
                  "0 items, at 1, disabled, hidden, checks, style 3",
                  "0 items, at 1, disabled, hidden, checks, style 3"}));
    popup->SetObserver({});
    popup->SetValue(0);
    EXPECT_EQ(seen.size(), 9u);
}

TEST(Control, TellsItsFunctionsInTheOrderOfBinding)
{
    const intrusive_ptr<UI_Button> button(new UI_Button("OKButtonID"));
    std::string order;
    button->NotifyWhenChanged([&](UI_ControlChangedMessage*) { order += 'a'; });
    button->NotifyWhenChanged({});  // tells nobody
    button->NotifyWhenChanged([&](UI_ControlChangedMessage*) { order += 'b'; });
    button->Press();
    button->Press();
    EXPECT_EQ(order, "abab");
}

TEST(Control, AFunctionBoundMeanwhileIsToldFromTheNextChangeOn)
{
    const intrusive_ptr<UI_Button> button(new UI_Button("OKButtonID"));
    int calls = 0;
    button->NotifyWhenChanged(
        [&](UI_ControlChangedMessage*)
        { button->NotifyWhenChanged([&](UI_ControlChangedMessage*) { ++calls; }); });
    button->Press();
    EXPECT_EQ(calls, 0);
    button->Press();
    EXPECT_EQ(calls, 1);
    button->SetVisible(false);
}

TEST(Control, AMemberOfAnObjectCanBeBound)
{
    Owner owner;
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    popup->NotifyWhenChanged(kelpui::ui::BindMessageFunction(&Owner::OnChanged, &owner));
    popup->ChooseItem(2);
    EXPECT_EQ(owner.mID, "PopupID");
}

TEST(Control, AnExceptionOfAFunctionReachesWhoeverActsForTheUser)
{
    const intrusive_ptr<UI_Popup> popup = NewPopup();
    popup->NotifyWhenChanged([](UI_ControlChangedMessage*) { throw std::bad_alloc(); });
    EXPECT_THROW(popup->ChooseItem(1), std::bad_alloc);
    EXPECT_EQ(popup->GetValue(), 1);
}
