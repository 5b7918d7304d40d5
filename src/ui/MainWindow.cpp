#include "ui/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStorageInfo>
#include <QTimer>

#include "app/Routine.h"
#include "app/Startup.h"
#include "app/Version.h"
#include "drive/ScanForUSBs.h"
#include "library/CategoryViews.h"
#include "library/Selection.h"
#include "ui/Colors.h"
#include "ui/DeviceWatch.h"
#include "ui/FolderTree.h"
#include "ui/MediaPlayer.h"
#include "ui/QtText.h"
#include "ui/UpdateCheck.h"

namespace tvk::ui {

MainWindow::MainWindow(MainWindowOptions options, QWidget* parent)
    : QMainWindow(parent),
      session_(options.system ? std::move(options.system) : makePlatformSystem(), *this),
      volumes_(std::move(options.volumes)),
      updateUrl_(options.updateUrl.isEmpty() ? UpdateCheck::configuredUrl() : options.updateUrl) {
    setObjectName("frmMain");
    setWindowTitle(kProductName);
    quitProgram = [](int code) { QCoreApplication::exit(code); };
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
    buildMenus();
    player_ = new MediaPlayer(this);
    player_->status = [this](const QString& text) { setStatus(StatusPanel::Progress, us(text)); };
    player_->fallback = [this](const QString& file) {
        return session_.system->openWithDefault(upath(file));
    };
    update_ = new UpdateCheck(this);
    connect(update_, &UpdateCheck::pageLoaded, this,
            [this](const QString& location, const QString& title) {
                whenIdle([this, location, title] {
                    command([&] {
                        auto ctx = context();
                        bzrMainDownloadComplete(ctx, us(location), us(title));
                    });
                });
            });
    devices_ = new DeviceWatch(volumes_, this);
    connect(devices_, &DeviceWatch::notice, this,
            [this](const DeviceNotice& n) { whenIdle([this, n] { scanForDrives(n); }); });
    connectSignals();
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

// --- Interaction -------------------------------------------------------------------

Answer MainWindow::message(const Message& box) {
    if (boxes_) return boxes_->message(box);
    QMessageBox mb(this);
    mb.setWindowTitle(qs(box.title));
    mb.setText(qs(toDisplayLines(box.text)));
    switch (box.icon) {
        case Icon::Critical:
            mb.setIcon(QMessageBox::Critical);
            break;
        case Icon::Question:
            mb.setIcon(QMessageBox::Question);
            break;
        case Icon::Exclamation:
            mb.setIcon(QMessageBox::Warning);
            break;
        case Icon::Information:
            mb.setIcon(QMessageBox::Information);
            break;
        case Icon::None:
            break;
    }
    std::vector<std::pair<QMessageBox::StandardButton, Answer>> order;
    using SB = QMessageBox;
    switch (box.buttons) {
        case Buttons::Ok:
            order = {{SB::Ok, Answer::Ok}};
            break;
        case Buttons::OkCancel:
            order = {{SB::Ok, Answer::Ok}, {SB::Cancel, Answer::Cancel}};
            break;
        case Buttons::AbortRetryIgnore:
            order = {{SB::Abort, Answer::Abort},
                     {SB::Retry, Answer::Retry},
                     {SB::Ignore, Answer::Ignore}};
            break;
        case Buttons::YesNoCancel:
            order = {{SB::Yes, Answer::Yes}, {SB::No, Answer::No}, {SB::Cancel, Answer::Cancel}};
            break;
        case Buttons::YesNo:
            order = {{SB::Yes, Answer::Yes}, {SB::No, Answer::No}};
            break;
        case Buttons::RetryCancel:
            order = {{SB::Retry, Answer::Retry}, {SB::Cancel, Answer::Cancel}};
            break;
    }
    for (const auto& [button, answer] : order) mb.addButton(button);
    const int def = box.defaultButton - 1;
    mb.setDefaultButton(order[def >= 0 && def < static_cast<int>(order.size()) ? def : 0].first);
    const auto clicked = static_cast<QMessageBox::StandardButton>(mb.exec());
    for (const auto& [button, answer] : order)
        if (button == clicked) return answer;
    // Closed with Escape or the title bar: the box's cautious answer.
    return order.size() == 1 ? order[0].second : order.back().second;
}

std::optional<std::string> MainWindow::prompt(const std::string& title, const std::string& text,
                                              const std::string& initial) {
    if (boxes_) return boxes_->prompt(title, text, initial);
    QInputDialog dialog(this);
    dialog.setWindowTitle(qs(title));
    dialog.setLabelText(qs(toDisplayLines(text)));
    dialog.setTextValue(qs(initial));
    // "All Text Select" off: the cursor goes to the end instead of selecting the text.
    if (!session_.settings.allTextSelect) {
        QTimer::singleShot(0, &dialog, [&dialog] {
            if (auto* edit = dialog.findChild<QLineEdit*>()) edit->end(false);
        });
    }
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return us(dialog.textValue());
}

void MainWindow::setStatus(StatusPanel panel, const std::string& text) {
    const int index = static_cast<int>(panel) - 1;
    if (index >= 0 && index < 3) statusPanels_[index]->setText(qs(text));
}

void MainWindow::showProgress(int maximum) {
    pbarMain_->setRange(0, std::max(1, maximum));
    pbarMain_->setValue(0);
    pbarMain_->show();
}

void MainWindow::setProgress(int value) {
    pbarMain_->setValue(std::min(value, pbarMain_->maximum()));
}

void MainWindow::hideProgress() {
    pbarMain_->reset();
    pbarMain_->hide();
}

void MainWindow::processEvents() {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
}

// --- Commands and enabling -----------------------------------------------------------

void MainWindow::beginCommand() {
    session_.state.busy = true;
    applyEnabled();
}

// Notices that arrive during a long command (a stick pulled mid-copy) wait for it to end
// instead of being lost.
void MainWindow::whenIdle(std::function<void()> work) {
    if (!session_.state.busy) return work();
    QTimer::singleShot(250, this,
                       [this, work = std::move(work)]() mutable { whenIdle(std::move(work)); });
}

void MainWindow::endProgram(int exitCode) {
    unloaded_ = true;
    player_->stop();
    if (quitProgram) quitProgram(exitCode);
}

void MainWindow::endCommand() {
    session_.state.busy = false;
    refreshPanels();
    applyEnabled();
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

void MainWindow::notAvailable(const QString& caption) {
    QString plain = caption;
    plain.remove('&');
    message(Message{"NOT AVAILABLE YET",
                    "\"" + us(plain) + "\" is not available in this version yet." +
                        std::string(kBlankLine) + "Nothing was changed.",
                    Buttons::Ok, Icon::Information, 1});
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
        setStatus(StatusPanel::Second, "The folder \"" + fileNameUtf8(gone) +
                                           "\" is no longer there; showing the library folder.");
    }
    if (state.activeList == ListControl::flbDocs) forgetSelection(state);
    if (state.docsFolder.empty()) {
        flbDocs_->clearFolder();
        txtDocPath_->clear();
        return;
    }
    if (!flbDocs_->showFolder(state.docsFolder, state.pattern))
        setStatus(StatusPanel::Second, "Cannot read " + pathToUtf8(state.docsFolder) + ": " +
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
    txtUSBPath_->setText(qpath(folder));
    if (!flbUSB_->showFolder(folder, state.usbPattern))
        setStatus(StatusPanel::Second, "The thumbdrive folder " + pathToUtf8(folder) +
                                           " cannot be read: " + us(flbUSB_->lastProblem()));
}

void MainWindow::refreshPanels() {
    const auto& state = session_.state;
    lblDriveInfoDisplay_->setText(state.driveInfoText.empty()
                                      ? "DRIVE INFORMATION DISPLAY"
                                      : qs(toDisplayLines(state.driveInfoText)));
    lblFileInfoDisplay_->setText(qs(toDisplayLines(state.fileInfoText)));
}

void MainWindow::applyListColors() {
    const auto& s = session_.settings;
    applyColors(dirDocs_, s.compFolderFC, s.compFolderBC);
    applyColors(flbDocs_, s.compFilesFC, s.compFilesBC);
    applyColors(flbUSB_, s.usbFilesFC, s.usbFilesBC);
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
    command([&] {
        auto ctx = context();
        FormActivate(ctx, activatedOnce_,
                     ActivateHooks{[this] {
                                       auto c = context();
                                       ScanForUSBs(c);
                                       refreshAll();
                                   },
                                   [this] { startUpdateCheck(); }});
    });
}

void MainWindow::scanForDrives(const std::optional<DeviceNotice>& notice) {
    command([&] {
        auto ctx = context();
        if (!notice) {
            ScanForUSBs(ctx);
        } else if (notice->kind == DeviceNotice::Kind::Arrival) {
            SysInfo1_DeviceArrival(ctx, *notice);
        } else {
            // A file playing from the pulled stick cannot go on.
            player_->stop();
            SysInfo1_DeviceRemoveComplete(ctx, *notice);
        }
        refreshAll();
    });
}

void MainWindow::startUpdateCheck() {
    update_->start(updateUrl_);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (session_.state.busy) {
        // Closing in the middle of a copy would leave half a batch; finish it first.
        setStatus(StatusPanel::Second, "Please wait until the current command has finished.");
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
