#pragma once
// A main window started on a temporary library, with scripted message boxes.

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <functional>

#include "app/Paths.h"
#include "app/Version.h"
#include "support/FakeSystem.h"
#include "support/OrganBytes.h"
#include "support/ScriptedInteraction.h"
#include "support/TempTree.h"
#include "ui/MainWindow.h"

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE

namespace tvk::test {

// An unexpected error box would be answered Retry for ever; fail and go on instead.
class WindowBoxes : public ScriptedInteraction {
  public:
    Answer message(const Message& box) override {
        if (done() && box.buttons == Buttons::AbortRetryIgnore) {
            ADD_FAILURE() << "unexpected error box: " << toDisplayLines(box.text);
            shown.push_back(box);
            return Answer::Ignore;
        }
        return ScriptedInteraction::message(box);
    }
};

// A preset or song as the organ writes it.
inline std::string organFile(Series family, FileKind kind, const std::string& name) {
    return generatedOrganFile(family, kind, name);
}

struct WindowFixture : ::testing::Test {
    TempTree tree;
    WindowBoxes ui;
    FakeSystem* system = nullptr;
    std::unique_ptr<ui::MainWindow> window;

    // A window on this test's library, as a fresh start of the program would make it.
    std::unique_ptr<ui::MainWindow> makeWindow() {
        auto fake = std::make_unique<FakeSystem>();
        system = fake.get();
        fake->documents = tree.mkdir("Documents");
        fake->current = tree.mkdir("prog");
        fake->registry[{RegistryRoot::LocalMachine, kUninstallKey, "DisplayVersion"}] =
            programVersionText();
        fake->registry[{RegistryRoot::LocalMachine, kUninstallKey, "InstallLocation"}] =
            pathToUtf8(tree.path("prog"));
        ui::MainWindowOptions options;
        options.system = std::move(fake);
        options.updateUrl = QUrl("http://127.0.0.1:9/TVK/TVK.ver");
        auto w = std::make_unique<ui::MainWindow>(std::move(options));
        w->setBoxesTo(&ui);
        return w;
    }
    void SetUp() override {
        window = makeWindow();
        ASSERT_TRUE(window->load());
    }
    void TearDown() override {
        window->session().state.busy = false;
        window.reset();
    }

    std::filesystem::path library() const { return tree.path("Documents/Tavrin File Manager"); }
    void libraryFile(const std::string& name, std::string_view bytes = "x") {
        writeFile(library() / pathFromUtf8(name), bytes);
    }
    // Accepts a stick folder as the scan would.
    std::filesystem::path acceptStick() {
        auto& d = window->session().state.drive;
        d.present = true;
        d.root = tree.mkdir("stick");
        tree.mkdir("stick/TAVRIN");
        window->session().state.usbPattern = window->session().state.pattern;
        window->refreshAll();
        return d.tavrinFolder();
    }

    template <class T = QWidget>
    T* find(const char* name) const {
        return window->findChild<T*>(name);
    }
    QAction* action(const char* name) const { return window->findChild<QAction*>(name); }
    ui::FileListWidget* list(const char* name) const { return find<ui::FileListWidget>(name); }
    QString statusText(int panel) const {
        return find<QLabel>(("sbarMain_" + std::to_string(panel)).c_str())->text();
    }
    QStringList names(const char* listName) const {
        QStringList out;
        auto* l = list(listName);
        for (int i = 0; i < l->count(); ++i) out << l->item(i)->text();
        return out;
    }
    void clickButton(const char* name) { find<QPushButton>(name)->click(); }
    // Lets events run until `done` holds or eight seconds have passed; returns `done()`.
    static bool waitUntil(const std::function<bool()>& done) {
        QElapsedTimer t;
        t.start();
        while (!done() && t.elapsed() < 8000)
            QApplication::processEvents(QEventLoop::AllEvents, 50);
        return done();
    }
};

}  // namespace tvk::test
