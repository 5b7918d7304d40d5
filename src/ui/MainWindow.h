#pragma once
// frmMain: the program's one main window. It owns the run's Session, draws the lists
// and panels from MainState and turns widget events into the core's commands, which it
// runs through its CommandRunner and which talk to its WidgetInteraction.

#include <QMainWindow>
#include <QUrl>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "app/Interaction.h"
#include "app/Routine.h"
#include "app/Session.h"
#include "app/System.h"
#include "drive/StickLock.h"
#include "drive/Volumes.h"
#include "ui/CommandRunner.h"
#include "ui/FileListWidget.h"
#include "ui/WidgetInteraction.h"

class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QAction;
class QMenu;

namespace tvk::ui {

class FolderTree;
class MediaPlayer;
class UpdateCheck;
class DeviceWatch;

struct MainWindowOptions {
    std::unique_ptr<System> system;    // the platform's when empty
    std::shared_ptr<Volumes> volumes;  // the drive services; none in some tests
    QUrl updateUrl;                    // the version page; UpdateCheck::configuredUrl() when empty
};

class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit MainWindow(MainWindowOptions options, QWidget* parent = nullptr);
    ~MainWindow() override;

    // The load event: start-up in the core. False when start-up refused to run (its box
    // was shown); the program then ends.
    bool load();

    Session& session() { return session_; }
    Context context() { return session_.context(); }
    // How the program ends when a command ends it; leaves the event loop by default.
    std::function<void(int exitCode)> quitProgram;
    // Boxes and prompts go here instead of on screen (tests).
    void setBoxesTo(Interaction* boxes) { interaction_.setBoxesTo(boxes); }

    // Redraws everything from MainState.
    void refreshAll();
    void applyListColors();
    // The drive scan, as a device notice or the first activation starts it.
    void scanForDrives(const std::optional<DeviceNotice>& notice = std::nullopt);
    void startUpdateCheck();
    UpdateCheck* updateCheck() const { return update_; }

    // Runs one command with every other command disabled until it ends.
    template <class F>
    void command(F&& body) {
        runner_->run(std::forward<F>(body));
    }

    // As command, holding the stick's lock for `use` while it runs: another command of
    // the program on the same stick (tvk, or a second window) makes it say "THUMBDRIVE
    // BUSY" and do nothing.
    template <class F>
    void stickCommand(StickUse use, F&& body) {
        command([&] {
            auto ctx = context();
            if (const auto lock = lockStick(ctx, use)) body();
        });
    }
    // Write while the thumbdrive list is the one worked in, else Read.
    StickUse useOfActiveList() const {
        return session_.state.activeList == ListControl::flbUSB ? StickUse::Write : StickUse::Read;
    }

    // Handlers the widgets call; public so tests can drive them as a user would.
    void listClicked(FileListWidget* list);
    void listDoubleClicked(FileListWidget* list, const QString& name);
    void filesDropped(const QString& destinationList, const DraggedFiles& files,
                      const QString& destinationFolder);
    void folderChosen(const QString& folder);
    void openViewer(const std::filesystem::path& file);
    void showPreferences();
    void showAbout();
    void openManual();

  protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    friend struct MainWindowBuilder;
    void buildPanes();
    void buildMenus();
    void connectFileCommands();
    void connectSignals();
    void connectListSignals();
    void connectButtonSignals();
    // The steps of buildPanes and buildMenus, in the window's order.
    QWidget* buildCategoryBar(QWidget* parent);
    QWidget* buildDocsPane(QWidget* parent);
    QWidget* buildCommandColumn(QWidget* parent);
    QWidget* buildUsbPane(QWidget* parent);
    QLayout* buildInfoPanels(QWidget* parent);
    void buildStatusBar();
    void addMenuBarItems();
    void onTriggered(const char* action, std::function<void()> handler);
    void connectViewCommands();
    void connectEditCommands();
    void connectSeriesCommands();
    // The one file selected in the file list last worked in; empty otherwise.
    std::filesystem::path selectedFile() const;
    void activate();
    // Abort with the trace off, or an error with the trap off: the program ends at once,
    // without writing the settings.
    void endProgram(int exitCode);
    Interaction& ui() { return interaction_; }
    void applyEnabled();
    void refreshDocs();
    void refreshUsb();
    void refreshPanels();
    // Brings every list, the folder tree, the drive counts and the file information back
    // to what is on disk, where a command or something outside the program changed it.
    void showWhatIsOnDisk();
    void playFile(const std::filesystem::path& file);

    WidgetInteraction interaction_{this};
    Session session_;
    CommandRunner* runner_ = nullptr;
    std::shared_ptr<Volumes> volumes_;
    QUrl updateUrl_;
    bool activatedOnce_ = false;
    bool loaded_ = false;
    bool unloaded_ = false;
    std::filesystem::path infoFile_;  // the file the file information describes

    // Controls by their program name; command widgets are enabled from MainState.
    std::map<QString, QWidget*> widgets_;
    std::map<QString, QAction*> actions_;

    QComboBox* dlbDocs_ = nullptr;
    FolderTree* dirDocs_ = nullptr;
    FileListWidget* flbDocs_ = nullptr;
    FileListWidget* flbUSB_ = nullptr;
    QLineEdit* txtDocPath_ = nullptr;
    QLineEdit* txtUSBPath_ = nullptr;
    std::array<QPushButton*, 5> btnButtonBar_{};
    std::array<QPushButton*, 5> btnUSB_Docs_{};
    QPushButton* btnSort_ = nullptr;
    QPushButton* btnCompare_ = nullptr;
    QPushButton* btnRenameVol_ = nullptr;
    QLabel* lblDriveInfoDisplay_ = nullptr;
    QLabel* lblFileInfoDisplay_ = nullptr;
    std::array<QLabel*, 3> statusPanels_{};
    QProgressBar* pbarMain_ = nullptr;
    MediaPlayer* player_ = nullptr;
    UpdateCheck* update_ = nullptr;
    DeviceWatch* devices_ = nullptr;
};

}  // namespace tvk::ui
