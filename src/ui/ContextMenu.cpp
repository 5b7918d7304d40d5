#include "ui/ContextMenu.h"

namespace tvk::ui {

namespace {

struct Item {
    const char* name;
    const char* caption;
    const char* calls;  // the main window's command
};
const Item kItems[] = {
    {"mnuFLBCopy", "&Copy", "mnuEditCopy"},
    {"mnuFLBPaste", "&Paste", "mnuEditPaste"},
    {nullptr, nullptr, nullptr},
    {"mnuFLBRename", "Re&name", "mnuFileRename"},
    {"mnuFLBDelete", "&Delete", "mnuEditDelete"},
    {nullptr, nullptr, nullptr},
    {"mnuFLBNewFolder", "Ne&w Folder", "mnuEditNewFldr"},
    {"mnuFLBEmpty", "Empty &Bin", "mnuFileEmpty"},
};

}  // namespace

ContextMenu::ContextMenu(const std::map<QString, QAction*>& mainActions,
                         std::function<void(const QString&)> noteList, QWidget* parent)
    : QMenu(parent), noteList_(std::move(noteList)) {
    setObjectName("frmContext");
    for (const Item& item : kItems) {
        if (!item.name) {
            addSeparator();
            continue;
        }
        QAction* own = addAction(item.caption);
        own->setObjectName(item.name);
        QAction* target = mainActions.at(item.calls);
        forwards_[item.name] = target;
        connect(own, &QAction::triggered, target, &QAction::trigger);
    }
    connect(this, &QMenu::aboutToShow, this, [this] { followEnabled(); });
}

void ContextMenu::followEnabled() {
    for (const auto& [name, target] : forwards_)
        findChild<QAction*>(name)->setEnabled(target->isEnabled());
}

void ContextMenu::popupFor(QWidget* control, const QPoint& globalPos) {
    noteList_(control->objectName());
    popup(globalPos);
}

void ContextMenu::choose(QWidget* control, const QString& item) {
    noteList_(control->objectName());
    followEnabled();
    if (QAction* own = findChild<QAction*>(item); own && own->isEnabled()) own->trigger();
}

}  // namespace tvk::ui
