// frmMain's menus: File, Edit, Help, the one visible series item and Make Files.

#include <QMenuBar>

#include "drive/VolumeCommands.h"
#include "library/CategoryViews.h"
#include "library/CopyPaste.h"
#include "library/DeleteFiles.h"
#include "library/ListCommands.h"
#include "library/RenameFile.h"
#include "library/Selection.h"
#include "library/TransferCommands.h"
#include "ui/ContextMenu.h"
#include "ui/FolderTree.h"
#include "ui/MainWindow.h"
#include "ui/MakeFilesDialog.h"
#include "ui/PresetRenameDialog.h"
#include "ui/QtText.h"
#include "ui/SearchDialog.h"

namespace tvk::ui {

namespace {

struct Item {
    const char* name;
    const char* caption;  // nullptr: a separator
};

// File and Edit as the program has always grouped them.
const std::vector<Item> kFileMenu = {
    {"mnuOpen", "&Open"},
    {nullptr, nullptr},
    {"mnuFileRename", "Re&name"},
    {"mnuFileConvert", "&Convert"},
    {nullptr, nullptr},
    {"mnuEditDelete", "&Delete"},
    {"mnuEditNewFldr", "Ne&w Folder"},
    {"mnuFileEmpty", "Empty &Bin"},
    {nullptr, nullptr},
    {"mnuFilePrint", "&Print Preset Pool"},
    {nullptr, nullptr},
    {"mnuFileFormat", "For&mat"},
    {nullptr, nullptr},
    {"mnuFileQuit", "&Quit"},
};
const std::vector<Item> kEditMenu = {
    {"mnuEditRefresh", "&Refresh"},       {nullptr, nullptr}, {"mnuEditFind", "&Find"},
    {"mnuEditRename", "Re&name Presets"}, {nullptr, nullptr}, {"mnuEditCopy", "&Copy"},
    {"mnuEditPaste", "&Paste"},           {nullptr, nullptr}, {"mnuEditPrefs", "Preferences"},
};
const std::vector<Item> kHelpMenu = {{"mnuHelpAbout", "&About"},
                                     {"mnuHelpManual", "User's Manual"}};

}  // namespace

void MainWindow::buildMenus() {
    addMenuBarItems();
    onTriggered("mnuFileQuit", [this] { close(); });
    connectViewCommands();
    connectEditCommands();
    connectSeriesCommands();
    connectFileCommands();
}

// File, Edit and Help, the series item and Make Files, each action under its control name.
void MainWindow::addMenuBarItems() {
    menuBar()->setObjectName("mnuMain");
    auto addMenu = [this](const char* name, const char* caption, const std::vector<Item>& items) {
        QMenu* menu = menuBar()->addMenu(caption);
        menu->setObjectName(name);
        for (const auto& item : items) {
            if (!item.name) {
                menu->addSeparator();
                continue;
            }
            QAction* a = menu->addAction(item.caption);
            a->setObjectName(item.name);
            actions_[item.name] = a;
        }
    };
    addMenu("mnuFile", "&File", kFileMenu);
    addMenu("mnuEdit", "&Edit", kEditMenu);
    addMenu("mnuHelp", "&Help", kHelpMenu);
    for (int series = 0; series < 4; ++series) {
        const char* name = kSeriesMenuItems[series];
        QAction* a = menuBar()->addAction(qs(seriesMenuCaption(seriesFromNumber(series))));
        a->setObjectName(name);
        a->setToolTip("Organ series shown; click for the next series");
        actions_[name] = a;
    }
    QAction* make = menuBar()->addAction("Make Files");
    make->setObjectName("mnuMakeFiles");
    actions_["mnuMakeFiles"] = make;
}

void MainWindow::onTriggered(const char* action, std::function<void()> handler) {
    connect(actions_.at(action), &QAction::triggered, this, std::move(handler));
}

std::filesystem::path MainWindow::selectedFile() const {
    const ListControl active = session_.state.activeList;
    const auto* list = active == ListControl::flbUSB ? flbUSB_ : flbDocs_;
    const auto names = list->selectedNames();
    if (!isFileList(active) || names.size() != 1) return {};
    return list->folder() / pathFromUtf8(names.front());
}

// Open, Rename Presets, Find, Make Files and Refresh: the commands with a window of their own
// or that redraw the lists.
void MainWindow::connectViewCommands() {
    onTriggered("mnuOpen", [this] {
        command([&] {
            if (const auto file = selectedFile(); !file.empty()) openViewer(file);
        });
    });
    onTriggered("mnuEditRename", [this] {
        stickCommand(useOfActiveList(), [&] {
            const auto file = selectedFile();
            if (file.empty() || !isPresetName(fileNameUtf8(file))) return;
            PresetRenameDialog dialog(context(), file, this);
            if (dialog.loaded()) dialog.exec();
            refreshAll();
        });
    });
    onTriggered("mnuEditFind", [this] {
        command([&] {
            SearchDialog dialog(context(), this);
            dialog.exec();
        });
    });
    onTriggered("mnuMakeFiles", [this] {
        command([&] {
            MakeFilesDialog dialog(context(), this);
            if (dialog.exec() != QDialog::Accepted) return;
            dirDocs_->refresh();
            refreshAll();
        });
    });
    onTriggered("mnuEditRefresh", [this] {
        command([&] {
            session_.state.fileInfoText.clear();
            dirDocs_->refresh();
            refreshAll();
        });
    });
}

// Format, Copy and Paste, and the three commands that only open something.
void MainWindow::connectEditCommands() {
    onTriggered("mnuFileFormat", [this] {
        stickCommand(StickUse::Write, [&] {
            auto ctx = context();
            afterScan(ctx, mnuFileFormat_Click(ctx));
            refreshAll();
        });
    });
    onTriggered("mnuEditCopy", [this] {
        command([&] {
            auto ctx = context();
            mnuEditCopy_Click(ctx, session_.state.activeList);
        });
    });
    onTriggered("mnuEditPaste", [this] {
        stickCommand(useOfActiveList(), [&] {
            auto ctx = context();
            mnuEditPaste_Click(ctx, session_.state.activeList);
            refreshAll();
        });
    });
    onTriggered("mnuEditPrefs", [this] { showPreferences(); });
    onTriggered("mnuHelpAbout", [this] { showAbout(); });
    onTriggered("mnuHelpManual", [this] { openManual(); });
}

void MainWindow::connectSeriesCommands() {
    using SeriesCommand = void (*)(Context&);
    const std::pair<const char*, SeriesCommand> seriesCommands[] = {{"mnuALL", &mnuALL_Click},
                                                                    {"mnuSU", &mnuSU_Click},
                                                                    {"mnuA", &mnuA_Click},
                                                                    {"mnuE", &mnuE_Click}};
    for (const auto& [name, run] : seriesCommands) {
        onTriggered(name, [this, run = run] {
            command([&] {
                auto ctx = context();
                run(ctx);
            });
        });
    }
}

// File > Rename, Convert, Delete, New Folder, Empty Bin, Print Preset Pool, and the
// lists' context menu that forwards to them.
void MainWindow::connectFileCommands() {
    auto on = [this](const char* name, auto body) {
        onTriggered(name, [this, body] {
            stickCommand(useOfActiveList(), [&] {
                auto ctx = context();
                body(ctx);
            });
        });
    };
    // The list last worked in, with its folder and selected-file table.
    auto selection = [this] {
        ListSelection s = activeSelection(session_.state);
        if (isFileList(s.list)) {
            const auto* list = s.list == ListControl::flbUSB ? flbUSB_ : flbDocs_;
            s.folder = list->folder();
            // The table holds 1,500 names; beyond that the click already said so.
            if (auto names = list->selectedNames();
                names.size() <= static_cast<std::size_t>(kMaxSelected))
                s.names = std::move(names);
        } else if (s.list == ListControl::dirDocs) {
            s.folder = dirDocs_->currentFolder();
        }
        return s;
    };
    auto docsEntries = [this] {
        std::vector<std::string> names;
        for (int i = 0; i < flbDocs_->count(); ++i) names.push_back(us(flbDocs_->item(i)->text()));
        return names;
    };
    on("mnuFileRename", [selection](Context& ctx) {
        const ListSelection s = selection();
        if (s.names.size() == 1) mnuFileRename_Click(ctx, {s.list, s.folder, s.names.front()});
    });
    on("mnuEditDelete", [this, selection](Context& ctx) {
        mnuEditDelete_Click(ctx, selection());
        dirDocs_->refresh();
        refreshAll();
    });
    on("mnuFileEmpty", [](Context& ctx) { mnuFileEmpty_Click(ctx); });
    on("mnuEditNewFldr", [this](Context& ctx) {
        if (mnuEditNewFldr_Click(ctx, dirDocs_->currentFolder())) dirDocs_->refresh();
    });
    on("mnuFileConvert", [this, docsEntries](Context& ctx) {
        mnuFileConvert_Click(ctx, {ListControl::flbDocs, flbDocs_->folder(), docsEntries()});
    });
    on("mnuFilePrint", [docsEntries](Context& ctx) { mnuFilePrint_Click(ctx, docsEntries()); });

    auto* menu = new ContextMenu(
        actions_,
        [this](const QString& list) { session_.state.activeList = listControlFromName(us(list)); },
        this);
    for (QWidget* control : std::initializer_list<QWidget*>{flbDocs_, flbUSB_, dirDocs_}) {
        control->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(control, &QWidget::customContextMenuRequested, this,
                [menu, control](QPoint at) { menu->popupFor(control, control->mapToGlobal(at)); });
    }
}

}  // namespace tvk::ui
