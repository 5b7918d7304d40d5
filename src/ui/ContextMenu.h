#pragma once
// frmContext: the context menu of the two file lists and the folder tree. Each item only
// notes which control was clicked and runs the main window's own menu command.

#include <QMenu>
#include <functional>
#include <map>

namespace tvk::ui {

class ContextMenu : public QMenu {
    Q_OBJECT
  public:
    // `mainActions` holds the main window's menu commands by control name; `noteList`
    // makes the clicked control ("flbDocs", "flbUSB", "dirDocs") the active list.
    ContextMenu(const std::map<QString, QAction*>& mainActions,
                std::function<void(const QString&)> noteList, QWidget* parent);

    // Opens the menu for `control` at a global position (the lists' right-click).
    void popupFor(QWidget* control, const QPoint& globalPos);
    // Notes `control` and runs one item, as choosing it in the open menu does.
    void choose(QWidget* control, const QString& item);

  private:
    void followEnabled();
    std::map<QString, QAction*> forwards_;  // context item -> the main window's command
    std::function<void(const QString&)> noteList_;
};

}  // namespace tvk::ui
