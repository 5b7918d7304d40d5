// frmMain's list events: clicks, double-clicks, drops, the folder tree, and the
// windows the lists open.

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/Routine.h"
#include "drive/VolumeCommands.h"
#include "library/CategoryViews.h"
#include "library/CompareFiles.h"
#include "library/Selection.h"
#include "library/SortFiles.h"
#include "library/TransferCommands.h"
#include "organfiles/OrganFile.h"
#include "organfiles/OrganNames.h"
#include "ui/AboutDialog.h"
#include "ui/FileViewer.h"
#include "ui/FolderTree.h"
#include "ui/MainWindow.h"
#include "ui/MediaPlayer.h"
#include "ui/PreferencesDialog.h"
#include "ui/QtText.h"

namespace tvk::ui {

void MainWindow::connectSignals() {
    connectListSignals();
    connectButtonSignals();
}

// The two file lists, the folder tree and the drive box.
void MainWindow::connectListSignals() {
    for (auto* list : {flbDocs_, flbUSB_}) {
        connect(list, &QListWidget::itemSelectionChanged, this,
                [this, list] { listClicked(list); });
        connect(list, &QListWidget::itemDoubleClicked, this,
                [this, list](QListWidgetItem* item) { listDoubleClicked(list, item->text()); });
        connect(list, &FileListWidget::openRequested, this,
                [this, list](QListWidgetItem* item) { listDoubleClicked(list, item->text()); });
        connect(list, &FileListWidget::filesDropped, this,
                [this, list](const DraggedFiles& files, const QString& folder) {
                    filesDropped(list->objectName(), files, folder);
                });
    }
    connect(dirDocs_, &FolderTree::folderChosen, this,
            [this](const QString& f) { folderChosen(f); });
    connect(dirDocs_, &FolderTree::escapePressed, this, [this] {
        dirDocs_->setRoot(session_.paths.libraryRoot);
        folderChosen(qpath(session_.paths.libraryRoot));
    });
    connect(dirDocs_, &FolderTree::filesDropped, this,
            [this](const DraggedFiles& files, const QString& folder) {
                filesDropped("flbDocs", files, folder);
            });
    // The list the user last worked in is the one commands act on.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now == flbDocs_ || now == flbUSB_ || now == dirDocs_)
            session_.state.activeList = listControlFromName(us(now->objectName()));
    });
    connect(dlbDocs_, &QComboBox::activated, this, [this](int index) {
        const auto root = upath(dlbDocs_->itemText(index));
        dirDocs_->setRoot(root);
        folderChosen(qpath(root));
    });
}

// The category bar and the command column.
void MainWindow::connectButtonSignals() {
    for (int i = 0; i < kCategoryCount; ++i) {
        connect(btnButtonBar_[i], &QPushButton::clicked, this, [this, i] {
            command([&] {
                auto ctx = context();
                btnButtonBar_Click(ctx, i);
            });
        });
    }
    for (int i = 0; i < static_cast<int>(btnUSB_Docs_.size()); ++i) {
        connect(btnUSB_Docs_[i], &QPushButton::clicked, this, [this, i] {
            // Only the restore writes to the stick; the others copy from it.
            stickCommand(i == 1 ? StickUse::Write : StickUse::Read, [&] {
                auto ctx = context();
                btnUSB_Docs_Click(ctx, i);
                refreshAll();
            });
        });
    }
    connect(btnRenameVol_, &QPushButton::clicked, this, [this] {
        stickCommand(StickUse::Write, [&] {
            auto ctx = context();
            afterScan(ctx, btnRenameVol_Click(ctx));
            refreshAll();
        });
    });
    connect(btnSort_, &QPushButton::clicked, this, [this] {
        stickCommand(StickUse::Write, [&] {
            auto ctx = context();
            btnSort_Click(ctx);
            refreshAll();
        });
    });
    connect(btnCompare_, &QPushButton::clicked, this, [this] {
        command([&] {
            auto ctx = context();
            btnCompare_Click(ctx);
        });
    });
}

void MainWindow::listClicked(FileListWidget* list) {
    command([&] {
        ListClick click;
        click.list = listControlFromName(us(list->objectName()));
        click.folder = list->folder();
        if (auto* item = list->currentItem(); item && item->isSelected())
            click.clicked = us(item->text());
        click.selected = list->selectedNames();
        if (click.clicked.empty() && !click.selected.empty())
            click.clicked = click.selected.front();
        click.entryCount = static_cast<std::size_t>(list->count());
        auto ctx = context();
        fileListClick(ctx, click);
        infoFile_ = session_.state.fileInfoText.empty() || click.clicked.empty()
                        ? std::filesystem::path()
                        : click.folder / pathFromUtf8(click.clicked);
    });
}

void MainWindow::listDoubleClicked(FileListWidget* list, const QString& name) {
    command([&] {
        const auto file = list->folder() / upath(name);
        session_.state.activeList = listControlFromName(us(list->objectName()));
        std::error_code ec;
        if (!std::filesystem::is_regular_file(file, ec)) {
            ui().setStatus(StatusPanel::Progress, "\"" + us(name) + "\" is no longer there.");
            refreshAll();
            return;
        }
        switch (doubleClickAction(session_.state.activeList, us(name))) {
            case DoubleClickAction::Play:
                playFile(file);
                break;
            case DoubleClickAction::View:
                openViewer(file);
                break;
            case DoubleClickAction::OpenWithDesktop:
                if (!session_.system->openWithDefault(file))
                    ui().message(Message{"OPEN FILE",
                                         "No program on this computer opens \"" + us(name) + "\".",
                                         Buttons::Ok, Icon::Exclamation, 1});
                break;
            case DoubleClickAction::None:
                break;
        }
    });
}

void MainWindow::playFile(const std::filesystem::path& file) {
    player_->play(qpath(file), qs(fileNameUtf8(file)));
}

void MainWindow::filesDropped(const QString& destinationList, const DraggedFiles& files,
                              const QString& destinationFolder) {
    const bool ontoStick = listControlFromName(us(destinationList)) == ListControl::flbUSB;
    stickCommand(ontoStick ? StickUse::Write : StickUse::Read, [&] {
        DropRequest drop;
        drop.sourceList = listControlFromName(us(files.sourceList));
        drop.destinationList = listControlFromName(us(destinationList));
        drop.sourceFolder = upath(files.sourceFolder);
        drop.destinationFolder = upath(destinationFolder);
        for (const auto& n : files.names) drop.files.push_back(us(n));
        auto ctx = context();
        listDragDrop(ctx, drop);
        refreshAll();
    });
}

void MainWindow::folderChosen(const QString& folder) {
    command([&] {
        auto ctx = context();
        routine(ctx, "frmMain.dirDocs_Change", [&](Routine&) {
            session_.state.activeList = ListControl::dirDocs;
            session_.state.docsFolder = upath(folder);
            refreshDocs();
            ui().setStatus(StatusPanel::Progress, std::to_string(flbDocs_->count()) + " items");
        });
    });
}

void MainWindow::openViewer(const std::filesystem::path& file) {
    const auto family = seriesOf(fileNameUtf8(file));
    auto* viewer = new FileViewer(file, family ? recordLength(*family) : 0, this);
    if (!viewer->loaded()) {
        const QString why = viewer->problem();
        delete viewer;
        ui().message(Message{"FILE VIEWER", us(why), Buttons::Ok, Icon::Exclamation, 1});
        return;
    }
    viewer->show();
}

void MainWindow::showPreferences() {
    command([&] {
        PreferencesDialog dialog(
            context(), [this] { applyListColors(); }, this);
        dialog.exec();
    });
}

void MainWindow::showAbout() {
    AboutDialog about(this);
    about.exec();
}

void MainWindow::openManual() {
    command([&] {
        auto ctx = context();
        routine(ctx, "frmMain.mnuHelpManual_Click", [&](Routine& r) {
            const auto manual = session_.paths.manual();
            std::error_code ec;
            if (!std::filesystem::exists(manual, ec)) {
                ui().message(
                    Message{"USER'S MANUAL",
                            "The User's Manual is not on this computer." + std::string(kBlankLine) +
                                "It should be here:" + std::string(kLineBreak) + pathToUtf8(manual),
                            Buttons::Ok, Icon::Exclamation, 1});
                return;
            }
            r.setTask("ShellExecute open " + pathToUtf8(manual));
            if (!session_.system->openWithDefault(manual))
                ui().message(Message{"USER'S MANUAL",
                                     "No program on this computer opens PDF files, so the manual " +
                                         std::string("cannot be shown.") + std::string(kBlankLine) +
                                         "It is here:" + std::string(kLineBreak) +
                                         pathToUtf8(manual),
                                     Buttons::Ok, Icon::Exclamation, 1});
        });
    });
}

}  // namespace tvk::ui
