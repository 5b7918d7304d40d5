#include "ui/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QStorageInfo>
#include <QTimer>

#include "app/Routine.h"
#include "app/ShownPaths.h"
#include "app/Startup.h"
#include "app/Version.h"
#include "drive/ScanForUSBs.h"
#include "library/CategoryViews.h"
#include "library/Selection.h"
#include "library/TransferCommands.h"
#include "organfiles/AnalyzeContent.h"
#include "ui/Colors.h"
#include "ui/DeviceWatch.h"
#include "ui/FolderTree.h"
#include "ui/MainWindowGuide.h"
#include "ui/MediaPlayer.h"
#include "ui/QtText.h"
#include "ui/UpdateCheck.h"

namespace tvk::ui {

MainWindow::MainWindow(MainWindowOptions options, QWidget* parent)
    : QMainWindow(parent),
      session_(options.system ? std::move(options.system) : makePlatformSystem(), interaction_),
      volumes_(std::move(options.volumes)),
      updateUrl_(options.updateUrl.isEmpty() ? UpdateCheck::configuredUrl() : options.updateUrl) {
    setObjectName("frmMain");
    setWindowTitle(kProductName);
    quitProgram = [](int code) { QCoreApplication::exit(code); };
    runner_ = new CommandRunner(session_.state, interaction_,
                                {[this] { applyEnabled(); },
                                 [this] {
                                     showWhatIsOnDisk();
                                     refreshPanels();
                                     applyEnabled();
                                 },
                                 [this](int code) { endProgram(code); }, [this] { close(); }},
                                this);
    session_.volumes = volumes_;
    auto& state = session_.state;
    // Nothing is selected yet, so nothing that needs a selection may run.
    for (const auto* c :
         {kMnuOpen, kMnuFileRename, kMnuEditCopy, kMnuEditPaste, kMnuEditRename, kBtnCompare})
        state.enabled[c] = false;
    // Commands redraw through this; the series item and category highlight follow too.
    state.refreshLists = [this] {
        refreshDocs();
        refreshUsb();
        applyEnabled();
    };

    buildPanes();
    interaction_.attach(statusPanels_, pbarMain_, &session_.settings);
    buildMenus();
    player_ = new MediaPlayer(this);
    statusBar()->addPermanentWidget(player_);
    player_->status = [this](const QString& text) {
        ui().setStatus(StatusPanel::Progress, us(text));
    };
    player_->fallback = [this](const QString& file) {
        return session_.system->openWithDefault(upath(file));
    };
    update_ = new UpdateCheck(this);
    connect(update_, &UpdateCheck::pageLoaded, this,
            [this](const QString& location, const QString& title) {
                runner_->whenIdle([this, location, title] {
                    command([&] {
                        auto ctx = context();
                        bzrMainDownloadComplete(ctx, us(location), us(title));
                    });
                });
            });
    devices_ = new DeviceWatch(volumes_, this);
    connect(devices_, &DeviceWatch::notice, this,
            [this](const DeviceNotice& n) { runner_->whenIdle([this, n] { scanForDrives(n); }); });
    connectSignals();
    guideMainWindow(*this);
    resize(1180, 760);
    applyEnabled();
}

MainWindow::~MainWindow() {
    session_.state.refreshLists = nullptr;
}

bool MainWindow::load() {
    auto ctx = context();
    if (FormLoad(ctx) != StartupOutcome::Running) return false;
    loaded_ = true;
    const auto& s = session_.settings;
    if (s.remWinPosit && s.windows[0].width > 0 && s.windows[0].height > 0) {
        const auto& w = s.windows[0];
        const QRect saved(w.left, w.top, w.width, w.height);
        // A position on a screen that is no longer attached would hide the window.
        if (QGuiApplication::screenAt(saved.center())) setGeometry(saved);
    }
    applyListColors();
    dirDocs_->setRoot(session_.paths.libraryRoot);
    const int drive =
        dlbDocs_->findText(QStorageInfo(qpath(session_.paths.libraryRoot)).rootPath());
    if (drive >= 0) dlbDocs_->setCurrentIndex(drive);
    // Start on "All Files" of the user's series, so the view matches the organ.
    btnButtonBar_Click(ctx, 0);
    refreshAll();
    return true;
}

// --- Commands and enabling -----------------------------------------------------------

void MainWindow::endProgram(int exitCode) {
    unloaded_ = true;
    player_->stop();
    if (quitProgram) quitProgram(exitCode);
}

void MainWindow::applyEnabled() {
    const auto& state = session_.state;
    auto on = [&](const QString& name) {
        if (state.busy) return false;
        const auto it = state.enabled.find(us(name));
        return it == state.enabled.end() || it->second;
    };
    for (auto& [name, widget] : widgets_) widget->setEnabled(on(name));
    for (auto& [name, action] : actions_) action->setEnabled(on(name));
    for (int i = 0; i < 5; ++i) {
        QFont f = btnButtonBar_[i]->font();
        f.setBold(state.selectedCategory == i);
        btnButtonBar_[i]->setFont(f);
        btnButtonBar_[i]->setChecked(state.selectedCategory == i);
    }
    const std::string visible = visibleSeriesMenu(state.series);
    for (const char* item : kSeriesMenuItems) actions_.at(item)->setVisible(visible == item);
}

// --- Redrawing from MainState ---------------------------------------------------------

void MainWindow::refreshAll() {
    refreshDocs();
    refreshUsb();
    refreshPanels();
    applyEnabled();
}

void MainWindow::refreshDocs() {
    auto& state = session_.state;
    std::error_code ec;
    if (!state.docsFolder.empty() && !std::filesystem::is_directory(state.docsFolder, ec)) {
        // Deleted or renamed behind our back: fall back to the library folder.
        const auto gone = state.docsFolder;
        state.docsFolder = session_.paths.libraryRoot;
        dirDocs_->refresh();
        ui().setStatus(StatusPanel::Second,
                       "The folder \"" + fileNameUtf8(gone) +
                           "\" is no longer there; showing the library folder.");
    }
    if (state.activeList == ListControl::flbDocs) forgetSelection(state);
    if (state.docsFolder.empty()) {
        flbDocs_->clearFolder();
        txtDocPath_->clear();
        return;
    }
    if (!flbDocs_->showFolder(state.docsFolder, state.pattern))
        ui().setStatus(StatusPanel::Second, "Cannot read " + pathToUtf8(state.docsFolder) + ": " +
                                                us(flbDocs_->lastProblem()));
    txtDocPath_->setText(qpath(state.docsFolder));
    if (dirDocs_->currentFolder() != state.docsFolder) {
        const QSignalBlocker quiet(dirDocs_);
        dirDocs_->selectFolder(state.docsFolder);
    }
}

void MainWindow::refreshUsb() {
    auto& state = session_.state;
    if (state.activeList == ListControl::flbUSB) forgetSelection(state);
    if (!state.drive.present) {
        flbUSB_->clearFolder();
        txtUSBPath_->clear();
        return;
    }
    const auto folder = state.drive.tavrinFolder();
    txtUSBPath_->setText(qs(shownPath(state.drive, folder)));
    if (!flbUSB_->showFolder(folder, state.usbPattern))
        ui().setStatus(StatusPanel::Second, "The thumbdrive folder " +
                                                shownPath(state.drive, folder) +
                                                " cannot be read: " + us(flbUSB_->lastProblem()));
}

void MainWindow::refreshPanels() {
    const auto& state = session_.state;
    lblDriveInfoDisplay_->setText(state.driveInfoText.empty()
                                      ? "DRIVE INFORMATION DISPLAY"
                                      : qs(toDisplayLines(state.driveInfoText)));
    lblFileInfoDisplay_->setText(qs(toDisplayLines(state.fileInfoText)));
}

void MainWindow::showWhatIsOnDisk() {
    auto& state = session_.state;
    std::error_code ec;
    if (!infoFile_.empty() && !std::filesystem::exists(infoFile_, ec)) {
        infoFile_.clear();
        state.fileInfoText.clear();
    }
    if (!dirDocs_->showsFoldersAsTheyAre()) dirDocs_->refresh();
    if (!state.docsFolder.empty() && !flbDocs_->showsFolderAsItIs(state.pattern)) refreshDocs();
    if (!state.drive.present) return;
    if (flbUSB_->folder() != state.drive.tavrinFolder() ||
        !flbUSB_->showsFolderAsItIs(state.usbPattern))
        refreshUsb();
    try {
        const ContentCounts counts = countContent(state.drive.tavrinFolder());
        if (counts == state.counts) return;
        state.counts = counts;
        state.driveInfoText = driveSummary(state.drive.fileSystem, counts);
    } catch (const std::exception&) {
        // A stick that cannot be read now is the device notice's to report.
    }
}

void MainWindow::applyListColors() {
    const auto& s = session_.settings;
    paintList(dirDocs_, s.compFolderFC, s.compFolderBC);
    paintList(flbDocs_, s.compFilesFC, s.compFilesBC);
    paintList(flbUSB_, s.usbFilesFC, s.usbFilesBC);
}

// --- Window events -------------------------------------------------------------------

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    // Some platforms never report the first activation of an offscreen or unfocused
    // window; the first show stands in for it.
    if (!activatedOnce_) QTimer::singleShot(0, this, [this] { activate(); });
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) activate();
}

void MainWindow::activate() {
    if (!loaded_ || session_.state.busy) return;
    // Once the scan has run and the notice has been read, an activation has nothing to do.
    // Running it as a command anyway would grey every control for a moment, and a click
    // that activated the window would lose its press to that.
    if (activatedOnce_ && session_.settings.formatChange) return;
    command([&] {
        auto ctx = context();
        FormActivate(ctx, activatedOnce_,
                     ActivateHooks{[this] {
                                       auto c = context();
                                       afterScan(c, ScanForUSBs(c));
                                       refreshAll();
                                   },
                                   [this] { startUpdateCheck(); }});
    });
}

void MainWindow::scanForDrives(const std::optional<DeviceNotice>& notice) {
    command([&] {
        auto ctx = context();
        if (!notice) {
            afterScan(ctx, ScanForUSBs(ctx));
        } else if (notice->kind == DeviceNotice::Kind::Arrival) {
            afterScan(ctx, SysInfo1_DeviceArrival(ctx, *notice));
        } else {
            // A file playing from the pulled stick cannot go on.
            player_->stop();
            afterScan(ctx, SysInfo1_DeviceRemoveComplete(ctx, *notice));
        }
        refreshAll();
    });
}

void MainWindow::startUpdateCheck() {
    update_->start(updateUrl_);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!runner_->mayClose()) {
        event->ignore();
        return;
    }
    if (!unloaded_ && loaded_) {
        unloaded_ = true;
        player_->stop();
        const QRect g = normalGeometry();
        auto ctx = context();
        FormUnload(ctx, WindowRect{g.x(), g.y(), g.width(), g.height()});
    }
    event->accept();
}

}  // namespace tvk::ui
