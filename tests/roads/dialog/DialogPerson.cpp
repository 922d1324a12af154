#include "tests/roads/dialog/DialogPerson.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <stdexcept>

namespace testing_support
{

namespace
{

QDialog& OpenWindow()
{
    auto* const window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!window)
        throw std::runtime_error("no dialog is open");
    return *window;
}

// A list takes no click before it shows and the one that opened it is over.
void WaitForList(const QAbstractItemView& inList)
{
    EXPECT_TRUE(QTest::qWaitForWindowExposed(inList.window()));
    QTest::qWait(1);
}

PopupState LookAt(const QComboBox& inBox)
{
    PopupState popup;
    for (int item = 0; item < inBox.count(); ++item)
        popup.mItems.push_back(inBox.itemText(item).toStdString());
    popup.mValue = inBox.currentIndex();
    popup.mIsEnabled = inBox.isEnabled();
    popup.mIsVisible = inBox.isVisible();
    return popup;
}

}  // namespace

DialogPerson::DialogPerson() : mWindow(OpenWindow()) {}

DialogState DialogPerson::Look() const
{
    DialogState state;
    for (int popup = 0; popup < kPopupCount; ++popup)
        state.mPopups[popup] = LookAt(Box(static_cast<PopupID>(popup)));
    state.mLabel = Widget<QLabel>("BitrateStaticTextID").text().toStdString();
    state.mIsOKEnabled = Button("OKButtonID").isEnabled();
    return state;
}

void DialogPerson::ChooseByMouse(PopupID inPopup, int inItem) const
{
    QComboBox& box = Box(inPopup);
    QTest::mouseClick(&box, Qt::LeftButton);
    QAbstractItemView* const list = box.view();
    WaitForList(*list);
    const QModelIndex item = box.model()->index(inItem, box.modelColumn(), box.rootModelIndex());
    list->scrollTo(item);
    const QPoint place = list->visualRect(item).center();
    QTest::mouseMove(list->viewport(), place);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
}

void DialogPerson::ChooseByKeys(PopupID inPopup, int inItem) const
{
    QComboBox& box = Box(inPopup);
    box.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&box, Qt::Key_Space);
    WaitForList(*box.view());
    QTest::keyClick(box.view(), Qt::Key_Home);
    for (int item = 0; item < inItem; ++item)
        QTest::keyClick(box.view(), Qt::Key_Down);
    QTest::keyClick(box.view(), Qt::Key_Return);
}

void DialogPerson::Click(const char* inButton) const
{
    QTest::mouseClick(&Button(inButton), Qt::LeftButton);
}

void DialogPerson::Press(int inKey) const
{
    QWidget* const focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : &mWindow, static_cast<Qt::Key>(inKey));
}

void AtNextDialog(const std::function<void(const DialogPerson&)>& inAct)
{
    QTimer::singleShot(0,
                       [inAct]
                       {
        try
        {
            const DialogPerson person;
            EXPECT_TRUE(QTest::qWaitForWindowActive(&person.Window()));
            inAct(person);
        }
        catch (const std::exception& error)
        {
            ADD_FAILURE() << error.what();
        }
        if (auto* const left = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            left->reject();
    });
}

}  // namespace testing_support
