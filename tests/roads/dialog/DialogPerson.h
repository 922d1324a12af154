// DialogPerson: somebody at the open settings dialog, with a mouse and a keyboard.
#ifndef TESTS_ROADS_DIALOG_DIALOGPERSON_H
#define TESTS_ROADS_DIALOG_DIALOGPERSON_H

#include "host/Dialog.h"
#include "tests/roads/dialog/DialogModel.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include <functional>

namespace testing_support
{

class DialogPerson
{
public:
    /// At the dialog that is open now. Throws std::runtime_error without one.
    DialogPerson();

    QDialog& Window() const { return mWindow; }
    QComboBox& Box(PopupID inPopup) const { return Widget<QComboBox>(kPopupNames[inPopup]); }
    QPushButton& Button(const char* inName) const { return Widget<QPushButton>(inName); }

    /// What shows.
    DialogState Look() const;

    /// Opens the list of a popup and clicks an item.
    void ChooseByMouse(PopupID inPopup, int inItem) const;
    /// Goes to a popup, opens its list with the blank, and goes to an item with Home and Down.
    void ChooseByKeys(PopupID inPopup, int inItem) const;
    void Click(const char* inButton) const;
    /// To whatever has the focus.
    void Press(int inKey) const;

private:
    template <typename WidgetClass>
    WidgetClass& Widget(const char* inName) const
    {
        return *Found(mWindow.findChild<WidgetClass*>(QString::fromLatin1(inName)), inName);
    }
    template <typename WidgetClass>
    static WidgetClass* Found(WidgetClass* inWidget, const char* inName)
    {
        if (!inWidget)
            throw std::runtime_error(std::string("no widget ") + inName);
        return inWidget;
    }

    QDialog& mWindow;
};

/// Has inAct done at the dialog that opens next, once it is active. A dialog that is still open
/// then is cancelled; what inAct throws is a failure of the test.
void AtNextDialog(const std::function<void(const DialogPerson&)>& inAct);

}  // namespace testing_support

#endif
