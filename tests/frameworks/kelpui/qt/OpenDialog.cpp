#include "tests/frameworks/kelpui/qt/OpenDialog.h"

#include "kelpuiqt/Register.h"

#include <QApplication>
#include <QTest>
#include <QTimer>

#include <fstream>
#include <iterator>

namespace testing_support
{
namespace
{

class Presenting : public testing::Environment
{
public:
    void SetUp() override
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        ASSERT_STREQ(KelpuiQtRegister(), nullptr);
    }
};

[[maybe_unused]] const testing::Environment* const sPresenting =
    testing::AddGlobalTestEnvironment(new Presenting);

class FormInMemory : public kelpui::utility::ResourceManager
{
public:
    explicit FormInMemory(const std::string& inForm) : mForm(inForm) {}
    bool HasResource(const UTF8String&, const UTF8String& inType) const override
    {
        return inType == "ui";
    }
    bool LoadResource(const UTF8String& inName, const UTF8String& inType,
                      kelpui::utility::ResourceBytes& outBytes) const override
    {
        outBytes.assign(mForm.begin(), mForm.end());
        return HasResource(inName, inType);
    }

private:
    const std::string mForm;
};

class GivenFont : public kelpui::inkwright::SupplierInterface
{
public:
    explicit GivenFont(const kelpui::inkwright::BaseFont& inFont) : mFont(inFont) {}
    kelpui::inkwright::BaseFont GetBaseFont() const override { return mFont; }

private:
    const kelpui::inkwright::BaseFont mFont;
};

kelpui::ui::ButtonRef FindButton(const UI_ArchivedDialog& inDialog, const char* inID)
{
    return dynamic_cast<UI_Button*>(inDialog.GetControlForID(inID).get());
}

}  // namespace

std::string FormText()
{
    std::ifstream file(RESOURCES "/FormatOptions.ui", std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), {});
}

OpenDialog::OpenDialog(const DialogWishes& inWishes)
{
    const FormInMemory form(inWishes.mForm);
    mDialog =
        new UI_ArchivedDialog(GivenFont(inWishes.mFont), &form, "FormatOptions", inWishes.mTitle,
                              inWishes.mParent, true, inWishes.mIsResizable, inWishes.mPosition,
                              kelpui::ui::NodeFactory(), false, inWishes.mFlags);
    mDialog->SetOkButton(FindButton(*mDialog, "OKButtonID"));
    mDialog->SetCancelButton(FindButton(*mDialog, "CancelButtonID"));
}

OpenDialog::~OpenDialog() = default;

UI_Popup& OpenDialog::Popup(const char* inID) const
{
    return *mDialog->GetTypedControlForID<UI_Popup>(inID);
}

UI_Button& OpenDialog::Button(const char* inID) const
{
    return *mDialog->GetTypedControlForID<UI_Button>(inID);
}

UI_StaticText& OpenDialog::Text(const char* inID) const
{
    return *mDialog->GetTypedControlForID<UI_StaticText>(inID);
}

void OpenDialog::Fill(const char* inID, const std::vector<UTF16String>& inItems, long inValue) const
{
    UI_Popup& popup = Popup(inID);
    popup.DeleteAllItems();
    for (const UTF16String& item : inItems)
        popup.AddItem(item);
    popup.SetValue(inValue);
}

void OpenDialog::WhenChanged(const char* inID, const std::function<void()>& inAct) const
{
    mDialog->GetControlForID(inID)->NotifyWhenChanged([inAct](UI_ControlChangedMessage*)
                                                      { inAct(); });
}

long OpenDialog::Run(const std::function<void()>& inAct)
{
    bool hasActed = false;
    QTimer::singleShot(0,
                       [&]
                       {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window()));
        hasActed = true;
        inAct();
        mWasOpen = mDialog->IsRunning();
        mDialog->EndDialog(UI_ArchivedDialog::kCancelled);
    });
    mDialog->RunDialog();
    EXPECT_TRUE(hasActed);
    return mDialog->GetResult();
}

QDialog& OpenDialog::Window() const
{
    auto* const window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!window)
        throw std::runtime_error("no window");
    return *window;
}

std::string OpenDialog::Focus() const
{
    const QWidget* const widget = QApplication::focusWidget();
    return widget ? widget->objectName().toStdString() : "none";
}

void OpenDialog::Press(int inKey) const
{
    QWidget* const focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : &Window(), static_cast<Qt::Key>(inKey));
}

void OpenDialog::Type(const char* inText) const
{
    QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(inText));
}

void OpenDialog::Click(QWidget& inWidget) const
{
    QTest::mouseClick(&inWidget, Qt::LeftButton);
}

}  // namespace testing_support
