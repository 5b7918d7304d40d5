// tavrin-file-manager: the program's window.
//
//   tavrin-file-manager [+DEBUG|-DEBUG|+ERROR|-ERROR] [--drive-image FILE]...
//                       [--screenshot FILE [--screenshot-of CONTROL]]

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QListWidget>
#include <QMessageBox>
#include <QTimer>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "app/Routine.h"
#include "app/Version.h"
#include "ui/FileIcons.h"
#include "ui/MainWindow.h"
#include "ui/QtText.h"

namespace {

// With --screenshot nothing may wait for a click: boxes are printed and get their default.
class PrintedBoxes : public tvk::SilentInteraction {
  public:
    tvk::Answer message(const tvk::Message& box) override {
        std::cerr << "[" << box.title << "] " << tvk::toDisplayLines(box.text) << "\n";
        return box.defaultAnswer();
    }
};

struct Arguments {
    std::string switches;  // everything the start-up reads, as typed
    std::vector<std::filesystem::path> images;
    QString screenshot;
    QString screenshotOf;  // a menu item's or button's control name
};

Arguments readArguments(const QStringList& args) {
    Arguments a;
    for (int i = 1; i < args.size(); ++i) {
        if (args[i] == "--drive-image" && i + 1 < args.size()) {
            a.images.push_back(tvk::ui::upath(args[++i]));
        } else if (args[i] == "--screenshot" && i + 1 < args.size()) {
            a.screenshot = args[++i];
        } else if (args[i] == "--screenshot-of" && i + 1 < args.size()) {
            a.screenshotOf = args[++i];
        } else {
            a.switches += (a.switches.empty() ? "" : " ") + tvk::ui::us(args[i]);
        }
    }
    return a;
}

// Selects the first preset of the stick's list, or else of the library's, for the commands
// that work on one.
void selectPreset(tvk::ui::MainWindow& window) {
    for (const char* name : {"flbUSB", "flbDocs"}) {
        auto* list = window.findChild<QListWidget*>(name);
        for (int i = 0; list && i < list->count(); ++i) {
            if (!list->item(i)->text().endsWith("PG", Qt::CaseInsensitive)) continue;
            list->setFocus();
            list->setCurrentRow(i);
            return;
        }
    }
}

// Uses the menu item or button `control` and saves the window it opens (the main window
// when it opens none), then closes both.
void saveWindowOpenedBy(tvk::ui::MainWindow& window, const QString& control, const QString& file) {
    selectPreset(window);
    QTimer::singleShot(1000, &window, [&window, file] {
        QWidget* opened = QApplication::activeModalWidget();
        for (QWidget* w : QApplication::topLevelWidgets())
            if (!opened && w != &window && w->isVisible() &&
                (w->windowType() == Qt::Dialog || w->windowType() == Qt::Window))
                opened = w;
        (opened ? opened : &window)->grab().save(file);
        if (opened) opened->close();
        window.close();
    });
    if (auto* action = window.findChild<QAction*>(control))
        action->trigger();
    else if (auto* button = window.findChild<QAbstractButton*>(control))
        button->click();
    else
        std::cerr << "tavrin-file-manager: no control named " << tvk::ui::us(control) << "\n";
}

// On Linux, Qt ends in a core dump when no display can be found; say so and how to get one.
bool displayMissing(int argc, char** argv) {
#ifdef __linux__
    for (int i = 1; i < argc; ++i)
        if (std::string_view(argv[i]) == "-platform") return false;
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* v = std::getenv(name); v && *v) return false;
    std::cerr << "tavrin-file-manager: no display found (DISPLAY and WAYLAND_DISPLAY are not "
                 "set), so the window cannot open.\nStart it from a desktop session, or under "
                 "a virtual display:\n    xvfb-run -a tavrin-file-manager\n";
    return true;
#else
    (void)argc, (void)argv;
    return false;
#endif
}

}  // namespace

int main(int argc, char** argv) {
    if (displayMissing(argc, argv)) return 2;
    QApplication app(argc, argv);
    QApplication::setApplicationName("Tavrin File Manager");
    QApplication::setWindowIcon(tvk::ui::appIcon());
    const Arguments args = readArguments(QApplication::arguments());

    tvk::ui::MainWindowOptions options;
    options.system = tvk::makePlatformSystem(args.switches);
    tvk::VolumesOptions vo;
    vo.images = args.images;
    try {
        options.volumes = tvk::makePlatformVolumes(vo);
    } catch (const std::exception& e) {
        // Go on with the machine's own drives rather than not start at all.
        const QString why = QString::fromUtf8(e.what());
        std::cerr << "tavrin-file-manager: " << e.what() << "\n";
        if (args.screenshot.isEmpty())
            QMessageBox::warning(nullptr, "DRIVE IMAGE",
                                 "The drive image could not be attached:\n" + why +
                                     "\n\nThe program goes on with this computer's own drives.");
        vo.images.clear();
        options.volumes = tvk::makePlatformVolumes(vo);
    }

    try {
        tvk::ui::MainWindow window(std::move(options));
        PrintedBoxes printed;
        if (!args.screenshot.isEmpty()) window.setBoxesTo(&printed);
        if (!window.load()) return 1;
        window.show();
        if (!args.screenshot.isEmpty()) {
            // Let the first activation and the scan finish, then save the window.
            QTimer::singleShot(1500, &window, [&] {
                // One file selected, so the picture shows the information panel too.
                if (!args.screenshotOf.isEmpty()) {
                    saveWindowOpenedBy(window, args.screenshotOf, args.screenshot);
                    return;
                }
                if (auto* docs = window.findChild<QListWidget*>("flbDocs"); docs && docs->count())
                    docs->setCurrentRow(docs->count() - 1);
                window.grab().save(args.screenshot);
                window.close();
            });
        }
        return app.exec();
    } catch (const tvk::ProgramEnd& end) {
        return end.exitCode;
    } catch (const tvk::UntrappedError& e) {
        // The trap is off ("-ERROR"): the runtime's own message, then the end.
        QMessageBox::critical(nullptr, tvk::kProjectName,
                              QString("Run-time error '%1':\n\n%2")
                                  .arg(e.error.number())
                                  .arg(tvk::ui::qs(e.error.description())));
        return 1;
    }
}
