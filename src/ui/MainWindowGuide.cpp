#include "ui/MainWindowGuide.h"

#include <QAbstractItemView>
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "ui/Colors.h"
#include "ui/ElidedText.h"

namespace tvk::ui {

const std::vector<ControlTip>& controlTips() {
    static const std::vector<ControlTip> tips = {
        {"btnUSB_Docs_0",
         "This will copy the THUMBDRIVE's contents to the COMPUTER's corresponding folder, "
         "removing any files not on the thumbdrive"},
        {"btnUSB_Docs_1",
         "This will Copy the COMPUTER's files on to the THUMBDRIVE from the corresponding "
         "folder, removing any files not on the computer"},
        {"btnUSB_Docs_2",
         "This will create a new folder in the TVK Documents and copy ALL of the thumbdrive's "
         "contents"},
        {"btnUSB_Docs_3", "This will copy all PRESET files to the Computer's Preset Pool"},
        {"btnUSB_Docs_4", "This will copy all RECORDING files to the Computer's MUSIC RECORDINGS"},
        {"btnSort", "This will SORT all Presets and Recordings in Alphabetical order"},
        {"btnButtonBar_0", "Shows every file in both lists"},
        {"btnButtonBar_1", "Shows only presets (SPG, APG, EPG, LPG) in both lists"},
        {"btnButtonBar_2", "Shows only music recordings (SMR, AMR, EMR, LMR) in both lists"},
        {"btnButtonBar_3", "Shows only MP3 files in both lists"},
        {"btnButtonBar_4", "Shows only MIDI files in both lists"},
        {"btnCompare",
         "Compares the two files selected in a list; greyed unless exactly two are selected"},
        {"btnRenameVol",
         "Gives the thumbdrive a new volume name (11 characters); greyed until a thumbdrive is "
         "accepted"},
        {"flbDocs",
         "The files of the library folder chosen above: click one for its information, "
         "double-click to open or play it, drag files onto the thumbdrive list to copy them"},
        {"flbUSB",
         "The files in the thumbdrive's TAVRIN folder: click one for its information, "
         "double-click to open or play it, drag files onto the library to copy them"},
        {"lblDriveInfoDisplay", "What the accepted thumbdrive holds"},
        {"lblFileInfoDisplay", "About the file clicked last"},
        {"pbarMain", "How far the running command has got"},
    };
    return tips;
}

const std::vector<ControlTip>& menuTips() {
    static const std::vector<ControlTip> tips = {
        {"mnuOpen", "Opens the selected file; greyed unless one file is selected"},
        {"mnuFileRename",
         "Renames or renumbers the selected file; greyed unless one file is selected"},
        {"mnuEditCopy", "Notes the selected files for Paste; greyed until files are selected"},
        {"mnuEditPaste",
         "Copies the noted files into the list clicked last; greyed until files are selected"},
        {"mnuEditRename",
         "Edits the names inside the selected preset; greyed unless a preset is selected"},
        {"mnuEditDelete", "Moves the selected files into the Recycle Bin"},
        {"mnuEditRefresh", "Reads both lists again"},
        {"mnuEditFind",
         "Looks for a text among the registration names inside presets and recordings"},
    };
    return tips;
}

const std::vector<MenuShortcut>& menuShortcuts() {
    static const std::vector<MenuShortcut> keys = {
        {"mnuEditDelete", QKeySequence(Qt::Key_Delete)},
        {"mnuFileRename", QKeySequence(Qt::Key_F2)},
        {"mnuEditRefresh", QKeySequence(Qt::Key_F5)},
        {"mnuEditCopy", QKeySequence(Qt::CTRL | Qt::Key_C)},
        {"mnuEditPaste", QKeySequence(Qt::CTRL | Qt::Key_V)},
        {"mnuEditFind", QKeySequence(Qt::CTRL | Qt::Key_F)},
        {"mnuFileQuit", QKeySequence(Qt::CTRL | Qt::Key_Q)},
    };
    return keys;
}

const std::vector<const char*>& tabOrder() {
    static const std::vector<const char*> order = {
        "btnButtonBar_0", "btnButtonBar_1", "btnButtonBar_2", "btnButtonBar_3", "btnButtonBar_4",
        "dlbDocs",        "txtDocPath",     "dirDocs",        "flbDocs",        "btnUSB_Docs_0",
        "btnUSB_Docs_1",  "btnUSB_Docs_2",  "btnUSB_Docs_3",  "btnUSB_Docs_4",  "btnSort",
        "btnCompare",     "btnRenameVol",   "txtUSBPath",     "flbUSB",
    };
    return order;
}

namespace {

// Enough rows that a list still lists something at the smallest window.
constexpr int kListRows = 5;

void markFocus(QAbstractItemView* view) {
    view->setStyleSheet(kListFocusRule);
    view->setMinimumHeight(view->fontMetrics().height() * kListRows + 8);
}

}  // namespace

void guideMainWindow(QMainWindow& window) {
    for (const auto& [control, tip] : controlTips())
        if (auto* w = window.findChild<QWidget*>(control)) w->setToolTip(tip);
    for (const auto& [action, tip] : menuTips())
        if (auto* a = window.findChild<QAction*>(action)) a->setToolTip(tip);
    for (auto* menu : window.menuBar()->findChildren<QMenu*>()) menu->setToolTipsVisible(true);
    for (const auto& [action, keys] : menuShortcuts())
        if (auto* a = window.findChild<QAction*>(action)) a->setShortcut(keys);

    QWidget* previous = nullptr;
    for (const char* name : tabOrder()) {
        auto* w = window.findChild<QWidget*>(name);
        if (!w) continue;
        if (previous) QWidget::setTabOrder(previous, w);
        previous = w;
    }
    for (const char* name : {"dirDocs", "flbDocs", "flbUSB"})
        if (auto* view = window.findChild<QAbstractItemView*>(name)) markFocus(view);
    // Status texts and paths that do not fit keep both ends and show the rest as a tooltip.
    for (const char* panel : {"sbarMain_1", "sbarMain_2", "sbarMain_3"})
        if (auto* label = window.findChild<QLabel*>(panel)) ElidedText::install(label);
    for (const char* path : {"txtDocPath", "txtUSBPath"})
        if (auto* box = window.findChild<QLineEdit*>(path)) ElidedText::install(box);

    // The smallest size at which every control keeps its own room.
    window.setMinimumSize(window.minimumSizeHint());
}

}  // namespace tvk::ui
