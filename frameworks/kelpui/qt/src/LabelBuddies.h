// LabelBuddies: labels of widgets that take turns in one place.
#ifndef KELPUIQT_LABELBUDDIES_H
#define KELPUIQT_LABELBUDDIES_H

#include <QLabel>
#include <QList>

namespace kelpui::qt
{

/// The labels of a window whose buddy shares its cell of a grid with other widgets.
class LabelBuddies
{
public:
    /// Widgets of one cell keep their room while they are hidden, so that nothing moves when they
    /// take turns.
    explicit LabelBuddies(QWidget& ioWindow);

    /// Each label belongs to the widget of its buddy's cell that shows.
    void Update() const;

private:
    struct Group
    {
        QLabel* mLabel;
        QList<QWidget*> mWidgets;
    };

    QList<Group> mGroups;
};

}  // namespace kelpui::qt

#endif
