// OpenDialog: a dialog of the settings form on Qt's platform without a screen, and a person at it.
#ifndef TESTS_FRAMEWORKS_KELPUI_QT_OPENDIALOG_H
#define TESTS_FRAMEWORKS_KELPUI_QT_OPENDIALOG_H

#include <kelpui/controls/UI_Popup.h>
#include <kelpui/controls/UI_StaticText.h>
#include <kelpui/ui/UI_ArchivedDialog.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace testing_support
{

using kelpui::controls::UI_Button;
using kelpui::controls::UI_ControlChangedMessage;
using kelpui::controls::UI_ControlView;
using kelpui::controls::UI_Popup;
using kelpui::controls::UI_StaticText;
using kelpui::ui::UI_ArchivedDialog;

/// The settings form as it is among the sources.
std::string FormText();

struct DialogWishes
{
    std::string mForm = FormText();
    kelpui::inkwright::BaseFont mFont = {"DejaVu Sans", 10.0};
    UTF16String mTitle = u"Settings";
    void* mParent = nullptr;
    bool mIsResizable = false;
    kelpui::ui::Point mPosition = {};
    unsigned mFlags = 1;
};

/// The dialog is there from the start, with OK and Cancel in their roles where the form has them;
/// its window is there while Run runs.
class OpenDialog
{
public:
    explicit OpenDialog(const DialogWishes& inWishes = {});
    ~OpenDialog();
    OpenDialog(const OpenDialog&) = delete;
    OpenDialog& operator=(const OpenDialog&) = delete;

    UI_ArchivedDialog& Dialog() const { return *mDialog; }
    UI_Popup& Popup(const char* inID) const;
    UI_Button& Button(const char* inID) const;
    UI_StaticText& Text(const char* inID) const;
    /// Fills a popup and chooses an item.
    void Fill(const char* inID, const std::vector<UTF16String>& inItems, long inValue = 0) const;
    void WhenChanged(const char* inID, const std::function<void()>& inAct) const;

    /// Runs the dialog; inAct is called once its window is active. One that is still open then is
    /// cancelled. The dialog's result.
    long Run(const std::function<void()>& inAct);
    /// Whether inAct left the dialog open.
    bool WasOpen() const { return mWasOpen; }

    // While it runs.
    QDialog& Window() const;
    QComboBox& Box(const char* inID) const { return Widget<QComboBox>(inID); }
    QPushButton& Push(const char* inID) const { return Widget<QPushButton>(inID); }
    QLabel& Label(const char* inID) const { return Widget<QLabel>(inID); }
    /// The object name of the widget that has the focus.
    std::string Focus() const;
    void Press(int inKey) const;
    void Type(const char* inText) const;
    void Click(QWidget& inWidget) const;

private:
    template <typename WidgetClass>
    WidgetClass& Widget(const char* inID) const
    {
        auto* const widget = Window().findChild<WidgetClass*>(QString::fromLatin1(inID));
        if (!widget)
            throw std::runtime_error(std::string("no widget ") + inID);
        return *widget;
    }

    boost::intrusive_ptr<UI_ArchivedDialog> mDialog;
    bool mWasOpen = false;
};

}  // namespace testing_support

#endif
