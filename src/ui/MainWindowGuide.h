#pragma once
// What frmMain offers a user finding their way: a tooltip on every button and box, the
// menu shortcuts, Tab from left to right and top to bottom, a visible focus in the lists,
// a minimum size at which nothing overlaps, and a drive panel that shows its whole text.
// Controls are found by their control names, so the panes and menus need not know.

#include <QKeySequence>
#include <vector>

class QMainWindow;

namespace tvk::ui {

struct ControlTip {
    const char* control;
    const char* tip;
};
// The tooltips the panes do not set, by control name (the texts the transfer buttons and
// Sort have always had stand as they are).
const std::vector<ControlTip>& controlTips();
const std::vector<ControlTip>& menuTips();  // by action name, greyed ones saying why

struct MenuShortcut {
    const char* action;
    QKeySequence keys;
};
const std::vector<MenuShortcut>& menuShortcuts();

// The controls Tab visits, in order.
const std::vector<const char*>& tabOrder();

void guideMainWindow(QMainWindow& window);

}  // namespace tvk::ui
