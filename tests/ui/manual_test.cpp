// The user's manual keeps up with the window: it names every command, button and menu,
// every window a command opens, and the controls of each such window by their captions.

#include <QAbstractButton>
#include <QDialog>
#include <QFile>
#include <QGroupBox>
#include <QTabWidget>
#include <QTimer>

#include "ui/WindowFixture.h"

namespace tvk {
namespace {

// A caption as the manual writes it: no mnemonic marks, one line.
QString plain(QString text) {
    text.remove('&');
    text.replace('\n', ' ');
    return text.trimmed();
}

// The texts a user reads on `w`: its title (up to the file name some windows add), its
// buttons, its group boxes and its tabs.
QStringList captionsOf(QWidget* w) {
    QStringList texts{plain(w->windowTitle().section(" - ", 0, 0))};
    for (auto* b : w->findChildren<QAbstractButton*>()) texts << plain(b->text());
    for (auto* g : w->findChildren<QGroupBox*>()) texts << plain(g->title());
    for (auto* t : w->findChildren<QTabWidget*>())
        for (int i = 0; i < t->count(); ++i) texts << plain(t->tabText(i));
    texts.removeAll(QString());
    return texts;
}

struct Manual : test::WindowFixture {
    QString text() const {
        QFile file(QString(TVK_SOURCE_DIR) + "/docs/manual/UsersManual.md");
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        return QString::fromUtf8(file.readAll());
    }

    // Uses the menu item and returns the captions of the window it opened.
    QStringList windowOpenedBy(const char* item) {
        QStringList captions;
        QTimer::singleShot(0, [&] {
            if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                captions = captionsOf(modal);
                modal->reject();
            }
        });
        action(item)->trigger();
        for (auto* d : window->findChildren<QDialog*>()) {  // windows that do not wait
            if (!d->isVisible()) continue;
            captions = captionsOf(d);
            d->close();
        }
        return captions;
    }
};

TEST_F(Manual, NamesEveryCommandAndEveryWindowOfTheProgram) {
    const QString manual = text();
    ASSERT_FALSE(manual.isEmpty());
    QStringList missing;
    auto check = [&](const QString& where, const QStringList& captions) {
        for (const auto& c : captions)
            if (!manual.contains(c)) missing << where + ": " + c;
    };
    for (auto* a : window->findChildren<QAction*>())
        if (!plain(a->text()).isEmpty()) check(a->objectName(), {plain(a->text())});
    for (auto* b : window->findChildren<QAbstractButton*>())
        if (!plain(b->text()).isEmpty()) check(b->objectName(), {plain(b->text())});

    libraryFile("SUPSET01.LPG", test::organFile(Series::SU, FileKind::Preset, "Mine"));
    window->refreshAll();
    list("flbDocs")->item(0)->setSelected(true);
    for (const char* item : {"mnuOpen", "mnuEditRename", "mnuEditFind", "mnuMakeFiles",
                             "mnuEditPrefs", "mnuHelpAbout"}) {
        const QStringList captions = windowOpenedBy(item);
        EXPECT_FALSE(captions.isEmpty()) << item << " opened no window";
        check(item, captions);
    }
    EXPECT_TRUE(missing.isEmpty()) << "not in docs/manual/UsersManual.md:\n"
                                   << missing.join('\n').toStdString();
    EXPECT_TRUE(ui.shown.empty());
}

}  // namespace
}  // namespace tvk
