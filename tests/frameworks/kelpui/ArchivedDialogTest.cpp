// Dialogs from an archive: their controls, what is wrong with them, and their run.
#include "kelpui/ui/UI_ArchivedDialog.h"

#include "kelpcore/config/Localizer.h"
#include "kelpui/controls/UI_Popup.h"
#include "kelpui/controls/UI_StaticText.h"
#include "kelpui/ui/DialogPresenter.h"
#include "tests/support/DictionaryInUse.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace
{

using namespace kelpui::ui;
using boost::intrusive_ptr;
using kelpcore::utility::InvalidTypeConversion;
using kelpui::controls::UI_Button;
using kelpui::controls::UI_ControlView;
using kelpui::controls::UI_Popup;
using kelpui::controls::UI_StaticText;
using testing_support::DictionaryInUse;

constexpr char kForm[] = R"(<ui version="4.0">
 <widget class="QDialog" name="Form">
  <layout class="QVBoxLayout">
   <item><widget class="QLabel" name="Label">
    <property name="text"><string>$$$/test/Label=Label=1:</string></property>
   </widget></item>
   <item><widget class="QComboBox" name="Popup">
    <property name="currentIndex"><number>1</number></property>
    <item><property name="text"><string>$$$/test/High=High</string></property></item>
    <item><property name="text"><string>plain = text</string></property></item>
   </widget></item>
   <item><widget class="QFrame" name="Frame"/></item>
   <item><widget class="QPushButton" name="OK">
    <property name="enabled"><bool>false</bool></property>
   </widget></item>
   <item><widget class="QPushButton" name="Cancel">
    <property name="visible"><bool>false</bool></property>
   </widget></item>
  </layout>
 </widget>
</ui>
)";

class Supplier : public kelpui::inkwright::SupplierInterface
{
public:
    kelpui::inkwright::BaseFont GetBaseFont() const override { return {"Mine", 12.5}; }
};

// Resources in memory, by "name.type".
class Resources : public kelpui::utility::ResourceManager
{
public:
    bool HasResource(const UTF8String& inName, const UTF8String& inType) const override
    {
        return mTexts.count(std::string(inName + "." + inType)) > 0;
    }
    bool LoadResource(const UTF8String& inName, const UTF8String& inType,
                      kelpui::utility::ResourceBytes& outBytes) const override
    {
        outBytes.clear();
        const auto found = mTexts.find(std::string(inName + "." + inType));
        if (found != mTexts.end())
            outBytes.assign(found->second.begin(), found->second.end());
        return found != mTexts.end();
    }

    std::map<std::string, std::string> mTexts;
};

using DialogRef = intrusive_ptr<UI_ArchivedDialog>;

class ArchivedDialog : public testing::Test
{
protected:
    explicit ArchivedDialog(const std::string& inForm = kForm)
    {
        mResources.mTexts["Form.ui"] = inForm;
    }
    DialogRef Open(const NodeFactory& inNodeFactory = {}) const
    {
        return new UI_ArchivedDialog(Supplier(), &mResources, "Form", u"Title", nullptr, true,
                                     false, Point{}, inNodeFactory, false, 1);
    }
    // The text of the error that opening the form ends in.
    std::string OpeningError(const std::string& inForm)
    {
        mResources.mTexts["Form.ui"] = inForm;
        try
        {
            (void)Open();
        }
        catch (const DialogArchiveError& error)
        {
            return error.what();
        }
        return "none";
    }

    Resources mResources;
};

// The process's presenter for the length of the object.
class Presenter : public DialogPresenter
{
public:
    explicit Presenter(const std::function<void(UI_ArchivedDialog&)>& inShow) : mShow(inShow)
    {
        SetDialogPresenter(this);
    }
    ~Presenter() override { SetDialogPresenter(nullptr); }
    void Present(UI_ArchivedDialog& ioDialog) override { mShow(ioDialog); }

private:
    const std::function<void(UI_ArchivedDialog&)> mShow;
};

class RunningDialog : public ArchivedDialog
{
protected:
    RunningDialog()
    {
        mOK->SetDisabled(false);
        mCancel->SetVisible(true);
        mDialog->SetOkButton(mOK);
        mDialog->SetCancelButton(mCancel);
    }
    // The result of a run in which somebody does something.
    long Run(const std::function<void()>& inAct) const
    {
        const Presenter presenter([&](UI_ArchivedDialog&) { inAct(); });
        mDialog->RunDialog();
        EXPECT_FALSE(mDialog->IsRunning());
        return mDialog->GetResult();
    }

    const DialogRef mDialog = Open();
    const ButtonRef mOK = mDialog->GetTypedControlForID<UI_Button>("OK");
    const ButtonRef mCancel = mDialog->GetTypedControlForID<UI_Button>("Cancel");
};

template <typename Control>
std::string LookUpError(const UI_ArchivedDialog& inDialog, const char* inID)
{
    try
    {
        (void)inDialog.GetTypedControlForID<Control>(inID);
    }
    catch (const InvalidTypeConversion& error)
    {
        return error.what();
    }
    return "none";
}

}  // namespace

TEST_F(ArchivedDialog, HasTheArchivesControlsInItsOrder)
{
    const DialogRef dialog = Open();
    std::vector<UTF8String> ids;
    for (const ControlRef& control : dialog->GetControls())
        ids.push_back(control->GetID());
    EXPECT_EQ(ids, (std::vector<UTF8String>{"Label", "Popup", "OK", "Cancel"}));
}

TEST_F(ArchivedDialog, ControlsStartAsTheArchiveStates)
{
    const DialogRef dialog = Open();
    const auto popup = dialog->GetTypedControlForID<UI_Popup>("Popup");
    EXPECT_EQ(popup->GetItems(), (std::vector<UTF16String>{u"High", u"plain = text"}));
    EXPECT_EQ(popup->GetValue(), 1);
    EXPECT_FALSE(popup->IsDisabled());
    EXPECT_TRUE(popup->IsVisible());
    EXPECT_EQ(dialog->GetTypedControlForID<UI_StaticText>("Label")->GetValue(), u"Label=1:");
    EXPECT_TRUE(dialog->GetTypedControlForID<UI_Button>("OK")->IsDisabled());
    EXPECT_FALSE(dialog->GetTypedControlForID<UI_Button>("Cancel")->IsVisible());
}

TEST_F(ArchivedDialog, SpeaksTheUsersLanguage)
{
    const DictionaryInUse dictionary("$$$/test/Label=Marke:\n$$$/test/High=hoch\n");
    const DialogRef dialog = Open();
    EXPECT_EQ(dialog->GetTypedControlForID<UI_StaticText>("Label")->GetValue(), u"Marke:");
    EXPECT_EQ(dialog->GetTypedControlForID<UI_Popup>("Popup")->GetItems(),
              (std::vector<UTF16String>{u"hoch", u"plain = text"}));
}

TEST_F(ArchivedDialog, KeepsWhatAPresenterNeeds)
{
    int parent = 0;
    const DialogRef dialog(new UI_ArchivedDialog(Supplier(), &mResources, "Form", u"Title", &parent,
                                                 true, true, Point{3, 4}, {}, true, 5));
    EXPECT_EQ(dialog->GetTitle(), u"Title");
    EXPECT_EQ(dialog->GetParentWindow(), &parent);
    EXPECT_TRUE(dialog->IsResizable());
    EXPECT_FALSE(Open()->IsResizable());
    EXPECT_EQ(dialog->GetPosition().mX, 3.0);
    EXPECT_EQ(dialog->GetPosition().mY, 4.0);
    EXPECT_EQ(dialog->GetFlags(), 5u);
    EXPECT_EQ(dialog->GetBaseFont().mFamily, "Mine");
    EXPECT_EQ(dialog->GetBaseFont().mPointSize, 12.5);
    EXPECT_EQ(std::string(dialog->GetArchive().begin(), dialog->GetArchive().end()), kForm);
}

TEST_F(ArchivedDialog, AFactoryMakesControlsOfItsOwnAndLeavesTheRest)
{
    std::vector<std::string> asked;
    const ControlRef own(new UI_StaticText("Own"));
    const DialogRef dialog = Open(
        [&](const UTF8String& inClass, const UTF8String& inID)
        {
        asked.push_back(std::string(inClass + " " + inID));
        return inClass == "QFrame" ? own : ControlRef();
    });
    EXPECT_EQ(asked, (std::vector<std::string>{"QLabel Label", "QComboBox Popup", "QFrame Frame",
                                               "QPushButton OK", "QPushButton Cancel"}));
    EXPECT_EQ(dialog->GetControlForID("Own"), own);
    EXPECT_EQ(dialog->GetControls().size(), 5u);
}

TEST_F(ArchivedDialog, IsModal)
{
    EXPECT_THROW(UI_ArchivedDialog(Supplier(), &mResources, "Form", u"Title", nullptr, false, false,
                                   Point{}, {}, false, 1),
                 std::invalid_argument);
}

TEST_F(ArchivedDialog, AControlIsFoundByItsIDAndClass)
{
    const DialogRef dialog = Open();
    EXPECT_EQ(dialog->GetTypedControlForID<UI_ControlView>("OK"), dialog->GetControlForID("OK"));
    EXPECT_EQ(dialog->GetTypedControlForID<UI_Button>("OK"), dialog->GetControlForID("OK"));
    EXPECT_FALSE(dialog->GetControlForID("ok"));
    EXPECT_FALSE(dialog->GetControlForID("Form"));
    EXPECT_FALSE(dialog->GetControlForID("Frame"));
    EXPECT_FALSE(dialog->GetControlForID(""));
}

TEST_F(ArchivedDialog, AControlOfAnotherClassOrNoneIsAnErrorWithAText)
{
    const DialogRef dialog = Open();
    EXPECT_EQ(LookUpError<UI_Button>(*dialog, "OK"), "none");
    EXPECT_EQ(LookUpError<UI_Popup>(*dialog, "OK"), "Invalid type conversion.");
    EXPECT_EQ(LookUpError<UI_Button>(*dialog, "Popup"), "Invalid type conversion.");
    EXPECT_EQ(LookUpError<UI_StaticText>(*dialog, "Missing"), "Invalid type conversion.");
    const DictionaryInUse dictionary(
        "$$$/kelpcore/utility/Error/InvalidTypeConversion=Ungültig.\n");
    EXPECT_EQ(LookUpError<UI_Popup>(*dialog, "Missing"), "Ungültig.");
}

TEST_F(ArchivedDialog, WhatIsWrongWithAnArchiveIsTold)
{
    const std::string form = kForm;
    EXPECT_EQ(OpeningError(form), "none");
    EXPECT_EQ(OpeningError(""), "The dialog \"Form\" is damaged at line 1.");
    EXPECT_EQ(OpeningError(form.substr(0, form.find("<item>"))),
              "The dialog \"Form\" is damaged at line 4.");
    EXPECT_EQ(OpeningError("<html/>"), "The dialog \"Form\" is no form.");
    EXPECT_EQ(OpeningError("<ui><widget><widget name=\"A\"/><widget name=\"A\"/></widget></ui>"),
              "The dialog \"Form\" has the control \"A\" twice.");
    EXPECT_EQ(OpeningError("<ui>\n<widget><widget name=\"A\"><property name=\"visible\">"
                           "<bool>x</bool></property></widget></widget></ui>"),
              "The dialog \"Form\" has an impossible value at line 2.");
    EXPECT_EQ(OpeningError("<!DOCTYPE ui>" + form), "The dialog \"Form\" is too large.");
}

TEST_F(ArchivedDialog, WithoutAnArchiveThereIsNoDialog)
{
    mResources.mTexts.clear();
    mResources.mTexts["Form.txt"] = kForm;  // of another type
    const DictionaryInUse dictionary("$$$/kelpui/ArchivedDialog/Missing=@0 fehlt.\n");
    try
    {
        (void)Open();
        FAIL();
    }
    catch (const DialogArchiveError& error)
    {
        EXPECT_STREQ(error.what(), "Form fehlt.");
    }
    EXPECT_THROW(UI_ArchivedDialog(Supplier(), nullptr, "Form", u"", nullptr, true, false, Point{},
                                   {}, false, 1),
                 DialogArchiveError);
}

TEST_F(RunningDialog, EndsWithTheButtonThatIsPressed)
{
    EXPECT_EQ(mDialog->GetResult(), UI_Dialog::kCancelled);
    EXPECT_EQ(Run([&] { mOK->Press(); }), 1);
    EXPECT_EQ(Run([&] { mCancel->Press(); }), 0);
}

TEST_F(RunningDialog, RunsUntilItIsEnded)
{
    EXPECT_FALSE(mDialog->IsRunning());
    EXPECT_EQ(Run(
                  [&]
                  {
        EXPECT_TRUE(mDialog->IsRunning());
        mOK->Press();
        EXPECT_FALSE(mDialog->IsRunning());
        mCancel->Press();  // too late
    }),
              1);
}

TEST_F(RunningDialog, AnythingElseCanEndIt)
{
    EXPECT_EQ(Run([&] { mDialog->EndDialog(7); }), 7);
    EXPECT_EQ(Run([&] { mDialog->EndDialog(UI_Dialog::kOK); }), 1);
}

TEST_F(RunningDialog, EndingCountsDuringARunOnly)
{
    mOK->Press();
    mDialog->EndDialog(UI_Dialog::kOK);
    EXPECT_EQ(mDialog->GetResult(), UI_Dialog::kCancelled);
}

TEST_F(RunningDialog, ARunThatNobodyEndedIsCancelled)
{
    EXPECT_EQ(Run([&] { mOK->Press(); }), 1);
    EXPECT_EQ(Run([&] { EXPECT_EQ(mDialog->GetResult(), UI_Dialog::kCancelled); }), 0);
}

TEST_F(RunningDialog, ADisabledButtonEndsNothing)
{
    mOK->SetDisabled(true);
    EXPECT_EQ(Run(
                  [&]
                  {
        mOK->Press();
        EXPECT_TRUE(mDialog->IsRunning());
    }),
              0);
}

TEST_F(RunningDialog, AButtonThatAnotherReplacedEndsNothing)
{
    mDialog->SetOkButton(mCancel);
    EXPECT_EQ(mDialog->GetOkButton(), mCancel);
    EXPECT_EQ(Run(
                  [&]
                  {
        mOK->Press();
        EXPECT_TRUE(mDialog->IsRunning());
    }),
              0);
    mDialog->SetOkButton(ButtonRef());
    EXPECT_EQ(Run([&] { mCancel->Press(); }), 0);
}

TEST_F(RunningDialog, AButtonMayOutliveItsDialog)
{
    const ButtonRef button(new UI_Button("Own"));
    {
        const DialogRef dialog = Open();
        dialog->SetOkButton(button);
    }
    button->Press();
    EXPECT_EQ(button->use_count(), 1u);
}

TEST_F(RunningDialog, TheButtonsKeepTheirOrderOutsideTheMac)
{
    const std::vector<ControlRef> before = mDialog->GetControls();
    FlipNodePositionsOnMac(mOK, mCancel);
    EXPECT_EQ(mDialog->GetControls(), before);
    EXPECT_EQ(mDialog->GetOkButton(), mOK);
    EXPECT_EQ(mDialog->GetCancelButton(), mCancel);
}

TEST_F(RunningDialog, WithoutAPresenterARunIsAnErrorWithAText)
{
    try
    {
        mDialog->RunDialog();
        FAIL();
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "There is nothing to show a dialog with.");
    }
    EXPECT_FALSE(mDialog->IsRunning());
}

TEST_F(RunningDialog, AnExceptionEndsTheRunAsCancelled)
{
    EXPECT_EQ(Run([&] { mOK->Press(); }), 1);
    EXPECT_THROW(Run([] { throw std::logic_error("toolkit"); }), std::logic_error);
    EXPECT_FALSE(mDialog->IsRunning());
    EXPECT_EQ(mDialog->GetResult(), UI_Dialog::kCancelled);
}

TEST_F(RunningDialog, ThePresenterIsTheProcesssAndGetsTheDialog)
{
    EXPECT_EQ(GetDialogPresenter(), nullptr);
    {
        UI_ArchivedDialog* shown = nullptr;
        Presenter presenter([&](UI_ArchivedDialog& dialog) { shown = &dialog; });
        EXPECT_EQ(GetDialogPresenter(), &presenter);
        mDialog->RunDialog();
        EXPECT_EQ(shown, mDialog.get());
    }
    EXPECT_EQ(GetDialogPresenter(), nullptr);
}
