#include "ButtonOrder.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QStyle>

namespace kelpui::qt
{
namespace
{

bool ConfirmsLast(const QWidget& inWidget)
{
    const int layout = inWidget.style()->styleHint(QStyle::SH_DialogButtonLayout);
    return layout == QDialogButtonBox::GnomeLayout || layout == QDialogButtonBox::MacLayout;
}

QBoxLayout* RowOf(QPushButton& inButton)
{
    for (QBoxLayout* row : inButton.window()->findChildren<QBoxLayout*>())
        if (row->indexOf(&inButton) >= 0)
            return row;
    return nullptr;
}

}  // namespace

void FollowDesktopOrder(QPushButton& ioOK, QPushButton& ioCancel)
{
    QBoxLayout* const row = RowOf(ioOK);
    if (!row || row->indexOf(&ioCancel) < 0)
        return;
    const bool isLast = row->indexOf(&ioOK) > row->indexOf(&ioCancel);
    if (isLast == ConfirmsLast(ioOK))
        return;
    QPushButton& first = isLast ? ioOK : ioCancel;
    QPushButton& second = isLast ? ioCancel : ioOK;
    row->removeWidget(&first);
    row->insertWidget(row->indexOf(&second), &first);
    QWidget::setTabOrder(&first, &second);
}

}  // namespace kelpui::qt
