// ButtonOrder: which of the closing buttons comes first.
#ifndef KELPUIQT_BUTTONORDER_H
#define KELPUIQT_BUTTONORDER_H

#include <QPushButton>

namespace kelpui::qt
{

/// Brings two neighbours of one row into the desktop's order, Tab's order included: GNOME and the
/// Mac confirm at the end of the row, others before Cancel. Buttons that stand elsewhere stay.
void FollowDesktopOrder(QPushButton& ioOK, QPushButton& ioCancel);

}  // namespace kelpui::qt

#endif
