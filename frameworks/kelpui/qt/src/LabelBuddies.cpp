#include "LabelBuddies.h"

#include <QGridLayout>

#include <array>

namespace kelpui::qt
{
namespace
{

using Cell = std::array<int, 4>;  // row, column and how far it spans

Cell CellOf(const QGridLayout& inGrid, int inItem)
{
    Cell cell = {};
    inGrid.getItemPosition(inItem, &cell[0], &cell[1], &cell[2], &cell[3]);
    return cell;
}

// All widgets in the cell of one, itself too; none for a widget that stands in no grid.
QList<QWidget*> WidgetsInCellOf(QWidget& inWindow, QWidget& inWidget)
{
    QList<QWidget*> widgets;
    for (const QGridLayout* grid : inWindow.findChildren<QGridLayout*>())
    {
        const int place = grid->indexOf(&inWidget);
        for (int i = 0; place >= 0 && i < grid->count(); ++i)
            if (QWidget* const widget = grid->itemAt(i)->widget();
                widget && CellOf(*grid, i) == CellOf(*grid, place))
                widgets.push_back(widget);
    }
    return widgets;
}

void KeepRoom(QWidget& ioWidget)
{
    QSizePolicy policy = ioWidget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    ioWidget.setSizePolicy(policy);
}

}  // namespace

LabelBuddies::LabelBuddies(QWidget& ioWindow)
{
    for (QLabel* label : ioWindow.findChildren<QLabel*>())
    {
        if (!label->buddy())
            continue;
        const QList<QWidget*> widgets = WidgetsInCellOf(ioWindow, *label->buddy());
        if (widgets.size() < 2)
            continue;
        mGroups.push_back({label, widgets});
        for (QWidget* widget : widgets)
            KeepRoom(*widget);
    }
}

void LabelBuddies::Update() const
{
    for (const Group& group : mGroups)
        for (QWidget* widget : group.mWidgets)
            if (!widget->isHidden() && group.mLabel->buddy() != widget)
            {
                group.mLabel->setBuddy(widget);
                break;
            }
}

}  // namespace kelpui::qt
