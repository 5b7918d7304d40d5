// frmMain's menus: File, Edit, Help, the one visible series item and Make Files.

#include <QMenuBar>

#include "drive/VolumeCommands.h"
#include "library/CategoryViews.h"
#include "library/CopyPaste.h"
#include "library/Selection.h"
#include "library/TransferCommands.h"
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

    auto on = [this](const char* name, auto handler) {
        connect(actions_.at(name), &QAction::triggered, this, handler);
    };
    on("mnuFileQuit", [this] { close(); });
    // The one file selected in the file list last worked in; empty otherwise.
    auto selectedFile = [this]() -> std::filesystem::path {
        const ListControl active = session_.state.activeList;
        auto* list = active == ListControl::flbUSB ? flbUSB_ : flbDocs_;
        const auto names = list->selectedNames();
        if (!isFileList(active) || names.size() != 1) return {};
        return list->folder() / pathFromUtf8(names.front());
    };
    on("mnuOpen", [this, selectedFile] {
        command([&] {
            if (const auto file = selectedFile(); !file.empty()) openViewer(file);
        });
    });
    on("mnuEditRename", [this, selectedFile] {
        command([&] {
            const auto file = selectedFile();
            if (file.empty() || !isPresetName(fileNameUtf8(file))) return;
            PresetRenameDialog dialog(context(), file, this);
            if (dialog.loaded()) dialog.exec();
            refreshAll();
        });
    });
    on("mnuEditFind", [this] {
        command([&] {
            SearchDialog dialog(context(), this);
            dialog.exec();
        });
    });
    on("mnuMakeFiles", [this] {
        command([&] {
            MakeFilesDialog dialog(context(), this);
            if (dialog.exec() != QDialog::Accepted) return;
            dirDocs_->refresh();
            refreshAll();
        });
    });
    on("mnuEditRefresh", [this] {
        command([&] {
            session_.state.fileInfoText.clear();
            dirDocs_->refresh();
            refreshAll();
        });
    });
    on("mnuFileFormat", [this] {
        command([&] {
            auto ctx = context();
            afterScan(ctx, mnuFileFormat_Click(ctx));
            refreshAll();
        });
    });
    on("mnuEditCopy", [this] {
        command([&] {
            auto ctx = context();
            mnuEditCopy_Click(ctx, session_.state.activeList);
        });
    });
    on("mnuEditPaste", [this] {
        command([&] {
            auto ctx = context();
            mnuEditPaste_Click(ctx, session_.state.activeList);
            refreshAll();
        });
    });
    on("mnuEditPrefs", [this] { showPreferences(); });
    on("mnuHelpAbout", [this] { showAbout(); });
    on("mnuHelpManual", [this] { openManual(); });
    using SeriesCommand = void (*)(Context&);
    const std::pair<const char*, SeriesCommand> seriesCommands[] = {{"mnuALL", &mnuALL_Click},
                                                                    {"mnuSU", &mnuSU_Click},
                                                                    {"mnuA", &mnuA_Click},
                                                                    {"mnuE", &mnuE_Click}};
    for (const auto& [name, run] : seriesCommands) {
        on(name, [this, run = run] {
            command([&] {
                auto ctx = context();
                run(ctx);
            });
        });
    }
    // Commands still being added to the program say so rather than doing nothing.
    for (const char* name : {"mnuFileRename", "mnuFileConvert", "mnuEditDelete", "mnuEditNewFldr",
                             "mnuFileEmpty", "mnuFilePrint"}) {
        QAction* a = actions_.at(name);
        on(name, [this, a] { command([&] { notAvailable(a->text()); }); });
    }
}

}  // namespace tvk::ui
