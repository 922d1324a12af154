#include "DialogRun.h"

#include "ButtonOrder.h"
#include "Form.h"
#include "ParentWindow.h"
#include "QtText.h"

#include <QAbstractEventDispatcher>
#include <QLayout>
#include <QPushButton>

#include <utility>

namespace kelpui::qt
{
namespace
{

constexpr unsigned kHasTitleBar = 1;

QFont FontOf(const inkwright::BaseFont& inFont)
{
    QFont font(ToQt(inFont.mFamily));
    font.setPointSizeF(inFont.mPointSize);
    return font;
}

}  // namespace

DialogRun::DialogRun(ui::UI_ArchivedDialog& ioDialog)
    : mDialog(ioDialog), mWindow(LoadForm(ioDialog)), mBuddies(*mWindow)
{
    ShowControls();
    SetUpWindow();
    SetUpButtons();
    Settle();
}

void DialogRun::ShowControls()
{
    const RunAction run = [this](const std::function<void()>& action) { Run(action); };
    const NoteChange note = [this] { SettleSoon(); };
    for (const ui::ControlRef& control : mDialog.GetControls())
    {
        auto* const widget = mWindow->findChild<QWidget*>(ToQt(control->GetID()));
        auto shown = widget ? MakeShownControl(control, *widget, run, note) : nullptr;
        if (!shown)
            ThrowNoForm(mDialog);
        mControls.push_back(std::move(shown));
    }
}

void DialogRun::SetUpWindow()
{
    mWindow->setWindowTitle(ToQt(mDialog.GetTitle()));
    const bool hasTitleBar = (mDialog.GetFlags() & kHasTitleBar) != 0;
    mWindow->setWindowFlags(
        Qt::Dialog |
        (hasTitleBar ? Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint
                     : Qt::FramelessWindowHint));
    mWindow->setFont(FontOf(mDialog.GetBaseFont()));
    mWindow->SetResizable(mDialog.IsResizable());
    mWindow->SetCancel([this] { Cancel(); });
}

void DialogRun::SetUpButtons()
{
    QPushButton* const ok = WidgetOf(mDialog.GetOkButton());
    QPushButton* const cancel = WidgetOf(mDialog.GetCancelButton());
    // Return is the OK button's, except on another button that has the focus.
    for (QPushButton* button : mWindow->findChildren<QPushButton*>())
    {
        button->setAutoDefault(true);
        button->setDefault(button == ok);
    }
    if (ok && cancel)
        FollowDesktopOrder(*ok, *cancel);
}

QPushButton* DialogRun::WidgetOf(const ui::ButtonRef& inButton) const
{
    return inButton ? mWindow->findChild<QPushButton*>(ToQt(inButton->GetID())) : nullptr;
}

void DialogRun::Show()
{
    if (!mDialog.IsRunning())
        return;
    const ParentWindow parent(mDialog.GetParentWindow());
    mWindow->FitContents();
    parent.Adopt(*mWindow);
    if (const ui::Point position = mDialog.GetPosition(); position.mX != 0 || position.mY != 0)
        mWindow->move(static_cast<int>(position.mX), static_cast<int>(position.mY));
    else
        parent.Center(*mWindow);
    mWindow->FocusFirstControl();
    // Nobody tells that the dialog has ended without the user.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     mWindow.get(), [this] { Run([] {}); });
    mWindow->exec();
    if (mThrown)
        std::rethrow_exception(mThrown);
    mDialog.EndDialog(ui::UI_Dialog::kCancelled);  // the application quits
}

void DialogRun::Cancel()
{
    if (const ui::ButtonRef button = mDialog.GetCancelButton())
        Run([&] { button->Press(); });
    else
        Run([this] { mDialog.EndDialog(ui::UI_Dialog::kCancelled); });
}

// Qt's loop lets no exception through, so that one waits until the loop has ended.
void DialogRun::Run(const std::function<void()>& inAction)
{
    try
    {
        inAction();
        Settle();
    }
    catch (...)
    {
        if (!mThrown)
            mThrown = std::current_exception();
        mWindow->done(QDialog::Rejected);
    }
}

void DialogRun::Settle()
{
    for (const std::unique_ptr<ShownControl>& control : mControls)
        control->ShowChanges();
    mBuddies.Update();
    if (!mDialog.IsRunning())
        mWindow->done(QDialog::Accepted);
}

// Not all changes are a user's doing.
void DialogRun::SettleSoon()
{
    if (std::exchange(mSettlesSoon, true))
        return;
    const auto settle = [this]
    {
        mSettlesSoon = false;
        Run([] {});
    };
    QMetaObject::invokeMethod(mWindow.get(), settle, Qt::QueuedConnection);
}

}  // namespace kelpui::qt
