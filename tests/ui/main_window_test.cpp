// The main window on the offscreen platform: its controls, the category views, the
// selection, drops, the folder tree and the busy guard.

#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QTreeWidget>

#include <QDialog>
#include "library/Selection.h"

#include "ui/AboutDialog.h"
#include "ui/FolderTree.h"
#include "ui/QtText.h"
#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

using MainWindowTest = WindowFixture;

TEST_F(MainWindowTest, ControlsCarryTheirNamesAndCaptions) {
    // Menu items, buttons and labels by name, with their exact captions.
    const std::vector<std::pair<const char*, QString>> captions = {
        {"btnButtonBar_0", "A&ll Files"},
        {"btnButtonBar_1", "&Presets"},
        {"btnButtonBar_2", "&Music"},
        {"btnButtonBar_3", "MP&3"},
        {"btnButtonBar_4", "Mi&di"},
        {"btnUSB_Docs_0", "&Update FROM Thumbdrive"},
        {"btnUSB_Docs_1", "Restore TO &Thumbdrive"},
        {"btnUSB_Docs_2", "&Add ALL to Computer"},
        {"btnUSB_Docs_3", "Add &USB Presets to Pool"},
        {"btnUSB_Docs_4", "Add &USB Recordings"},
        {"btnSort", "&Sort"},
        {"btnCompare", "&Compare"},
        {"btnRenameVol", "&Rename USB\nDrive"},
        {"lblDriveInfo", "DRIVE INFO:"},
        {"lblDriveInfoDisplay", "DRIVE INFORMATION DISPLAY"},
        {"lblFileInfo", "FILE INFO:"},
        {"mnuOpen", "&Open"},
        {"mnuFileRename", "Re&name"},
        {"mnuFileConvert", "&Convert"},
        {"mnuEditDelete", "&Delete"},
        {"mnuEditNewFldr", "Ne&w Folder"},
        {"mnuFileEmpty", "Empty &Bin"},
        {"mnuFilePrint", "&Print Preset Pool"},
        {"mnuFileFormat", "For&mat"},
        {"mnuFileQuit", "&Quit"},
        {"mnuEditRefresh", "&Refresh"},
        {"mnuEditFind", "&Find"},
        {"mnuEditRename", "Re&name Presets"},
        {"mnuEditCopy", "&Copy"},
        {"mnuEditPaste", "&Paste"},
        {"mnuEditPrefs", "Preferences"},
        {"mnuHelpAbout", "&About"},
        {"mnuHelpManual", "User's Manual"},
        {"mnuMakeFiles", "Make Files"},
        {"mnuALL", "\"ALL\""},
        {"mnuSU", "\"SU\""},
        {"mnuA", "\"A\""},
        {"mnuE", "\"E\""}};
    for (const auto& [name, caption] : captions) {
        const auto* a = action(name);
        const auto* b = find<QPushButton>(name);
        const auto* l = find<QLabel>(name);
        ASSERT_TRUE(a || b || l) << name;
        EXPECT_EQ(a ? a->text() : b ? b->text() : l->text(), caption) << name;
    }
    EXPECT_TRUE(find<QLineEdit>("txtDocPath")->isReadOnly());
    for (const char* name : {"dlbDocs", "dirDocs", "flbDocs", "flbUSB", "picButtonBar", "sbarMain",
                             "sbarMain_1", "sbarMain_2", "sbarMain_3", "pbarMain"})
        EXPECT_NE(find(name), nullptr) << name;
    for (const char* name : {"mnuSU", "mnuA", "mnuE"}) EXPECT_FALSE(action(name)->isVisible());
    EXPECT_TRUE(action("mnuALL")->isVisible());
    // Nothing needs a stick or a selection before the scan and a click.
    for (const char* name : {"btnUSB_Docs_0", "btnSort", "btnRenameVol", "btnCompare"})
        EXPECT_FALSE(find(name)->isEnabled()) << name;
    EXPECT_FALSE(action("mnuOpen")->isEnabled());
}

TEST_F(MainWindowTest, CategoryButtonsFilterTheListsAndCount) {
    for (const char* f : {"Waltz.APG", "Song.AMR", "tune.mp3", "tune.mid", "APSET001.LPG"})
        libraryFile(f);
    const auto stick = acceptStick();
    for (const char* f : {"APSET001.LPG", "ASONG001.LMR", "x.mp3"}) writeFile(stick / f, "x");

    clickButton("btnButtonBar_1");
    EXPECT_EQ(names("flbDocs"), (QStringList{"APSET001.LPG", "Waltz.APG"}));
    EXPECT_EQ(names("flbUSB"), (QStringList{"APSET001.LPG"}));
    EXPECT_EQ(statusText(1), "2 items");
    EXPECT_TRUE(find<QPushButton>("btnButtonBar_1")->isChecked());
    EXPECT_FALSE(find<QPushButton>("btnButtonBar_0")->isChecked());

    action("mnuALL")->trigger();  // to SU: no SU presets here
    EXPECT_TRUE(names("flbDocs").isEmpty());
    EXPECT_TRUE(action("mnuSU")->isVisible());
    EXPECT_FALSE(action("mnuALL")->isVisible());
    for (const char* next : {"mnuSU", "mnuA", "mnuE"}) action(next)->trigger();
    EXPECT_TRUE(action("mnuALL")->isVisible());
    EXPECT_TRUE(find<QPushButton>("btnButtonBar_1")->isChecked());
    EXPECT_EQ(names("flbDocs").size(), 2);
}

TEST_F(MainWindowTest, SelectionEnablesCommandsAndShowsTheCount) {
    for (const char* f : {"a.SPG", "b.SPG", "c.SPG"})
        libraryFile(f, organFile(Series::SU, FileKind::Preset, "Bright Strings"));
    libraryFile("d.mid", std::string(1500, 'x'));
    window->refreshAll();
    auto* docs = list("flbDocs");
    struct Case {
        int selected;
        bool open, rename, copy, compare;
    };
    for (const Case c : {Case{1, true, true, true, false}, Case{2, false, false, true, true},
                         Case{3, false, false, true, false}, Case{0, false, false, false, false}}) {
        docs->clearSelection();
        for (int i = 0; i < c.selected; ++i) docs->item(i)->setSelected(true);
        if (c.selected == 0) window->listClicked(docs);
        EXPECT_EQ(action("mnuOpen")->isEnabled(), c.open) << c.selected;
        EXPECT_EQ(action("mnuFileRename")->isEnabled(), c.rename) << c.selected;
        EXPECT_EQ(action("mnuEditCopy")->isEnabled(), c.copy) << c.selected;
        EXPECT_EQ(action("mnuEditPaste")->isEnabled(), c.copy) << c.selected;
        EXPECT_EQ(find("btnCompare")->isEnabled(), c.compare) << c.selected;
        EXPECT_EQ(statusText(1), QString("%1 of %2 selected").arg(c.selected).arg(docs->count()));
    }
    docs->setCurrentRow(0);
    EXPECT_TRUE(action("mnuEditRename")->isEnabled());
    EXPECT_TRUE(find<QLabel>("lblFileInfoDisplay")->text().contains("Preset Name: Bright Strings"));
    docs->setCurrentRow(3);
    EXPECT_FALSE(action("mnuEditRename")->isEnabled());
}

QDropEvent* dropOn(QWidget* target, QPoint at, QMimeData* data) {
    return new QDropEvent(QPointF(at), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
}

void sendDrop(QAbstractItemView* view, QMimeData* data, QPoint at = {5, 5}) {
    // As a real drag does: enter, then drop.
    QDragEnterEvent enter(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &enter);
    std::unique_ptr<QDropEvent> ev(dropOn(view->viewport(), at, data));
    QApplication::sendEvent(view->viewport(), ev.get());
    delete data;
}

TEST_F(MainWindowTest, DropsCopyWithTheirModeAndTheListsFollow) {
    libraryFile("Waltz.APG", organFile(Series::A, FileKind::Preset, "Waltz"));
    tree.mkdir("Documents/Tavrin File Manager/Other");
    const auto stick = acceptStick();
    writeFile(stick / "APSET001.LPG", organFile(Series::A, FileKind::Preset, "Bells"));
    window->refreshAll();
    auto* docs = list("flbDocs");
    auto* usb = list("flbUSB");
    auto* dirs = find<ui::FolderTree>("dirDocs");
    dirs->refresh();
    QTreeWidgetItem* other = nullptr;
    for (int i = 0; i < dirs->topLevelItem(0)->childCount(); ++i)
        if (dirs->topLevelItem(0)->child(i)->text(0) == "Other")
            other = dirs->topLevelItem(0)->child(i);
    ASSERT_NE(other, nullptr);
    const QPoint otherAt = dirs->visualItemRect(other).center();

    auto dragFrom = [](ui::FileListWidget* l) {
        l->clearSelection();
        l->item(0)->setSelected(true);
        return ui::makeDragData({l->objectName(), ui::qpath(l->folder()), {l->item(0)->text()}});
    };
    struct Case {
        ui::FileListWidget* from;
        QAbstractItemView* to;
        QPoint at;
        std::filesystem::path made;
    };
    // The stick's file reaches the library under the name inside it, and goes back under
    // the next free number.
    const Case cases[] = {
        {usb, docs, {5, 5}, library() / "Bells.APG"},
        {docs, usb, {5, 5}, stick / "APSET002.LPG"},
        {docs, dirs, otherAt, library() / "Other/Bells.APG"},
        {docs, docs, {5, 5}, library() / "Bells (0).APG"},
    };
    for (const auto& c : cases) {
        if (c.from == c.to) ui.expect("DUPLICATE FILE", Answer::Yes).expect("DUPLICATE FILES");
        sendDrop(c.to, dragFrom(c.from), c.at);
        EXPECT_TRUE(std::filesystem::exists(c.made)) << c.made;
    }
    EXPECT_TRUE(ui.done());
    EXPECT_EQ(names("flbDocs"),
              (QStringList{"Bells (0).APG", "Bells.APG", "TVK.ini", "Waltz.APG"}));
    EXPECT_EQ(names("flbUSB"), (QStringList{"APSET001.LPG", "APSET002.LPG"}));
    EXPECT_NE(find<QLabel>("lblDriveInfoDisplay")->text().indexOf("PRESET FILES: 2"), -1);
    EXPECT_FALSE(find("pbarMain")->isVisible());
}

TEST_F(MainWindowTest, EditCopyAndPasteCopyTheRecordedFiles) {
    const auto stick = acceptStick();
    writeFile(stick / "EPSET003.EPG", organFile(Series::E, FileKind::Preset, "Organ Pipes"));
    window->refreshAll();
    list("flbUSB")->item(0)->setSelected(true);
    action("mnuEditCopy")->trigger();
    window->session().state.activeList =
        ListControl::dirDocs;  // the folder tree pastes into flbDocs
    action("mnuEditPaste")->trigger();
    EXPECT_EQ(names("flbDocs"), (QStringList{"Organ Pipes.EPG", "TVK.ini"}));

    // Two selected files enable Compare, which is not there yet.
    writeFile(stick / "EPSET004.EPG", organFile(Series::E, FileKind::Preset, "Flute"));
    window->refreshAll();
    list("flbUSB")->selectAll();
    ui.expect(kProjectName);
    clickButton("btnCompare");
    EXPECT_EQ(ui.shown.back().text, "This feature has not been implemented yet.");
    EXPECT_TRUE(ui.done());
}

// Escape in the folder tree, or a chosen folder that vanished, bring back the library.
TEST_F(MainWindowTest, EscapeOrAVanishedFolderReturnsToTheLibrary) {
    tree.mkdir("Documents/Tavrin File Manager/Gone");
    auto* dirs = find<ui::FolderTree>("dirDocs");
    dirs->refresh();
    ASSERT_TRUE(dirs->selectFolder(library() / pathFromUtf8(kFolderPresetPool)));
    EXPECT_EQ(window->session().state.docsFolder, library() / pathFromUtf8(kFolderPresetPool));
    QKeyEvent esc(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(dirs, &esc);
    EXPECT_EQ(window->session().state.docsFolder, library());
    EXPECT_EQ(find<QLineEdit>("txtDocPath")->text(), ui::qpath(library()));

    ASSERT_TRUE(dirs->selectFolder(library() / "Gone"));
    std::filesystem::remove(library() / "Gone");
    clickButton("btnButtonBar_0");
    EXPECT_EQ(window->session().state.docsFolder, library());
    EXPECT_TRUE(statusText(2).contains("\"Gone\" is no longer there"));
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(MainWindowTest, NoSecondCommandWhileOneRuns) {
    libraryFile("a.mp3");
    window->session().state.busy = true;
    window->refreshAll();
    EXPECT_FALSE(find("btnButtonBar_3")->isEnabled());
    EXPECT_FALSE(action("mnuEditPrefs")->isEnabled());
    window->command([&] { FAIL() << "ran inside a running command"; });
    window->session().state.busy = false;
    window->refreshAll();
    EXPECT_TRUE(find("btnButtonBar_3")->isEnabled());
}

// The first showing brings the one-time notice. Closing in the middle of a command asks;
// Yes closes the window once the command ends.
TEST_F(MainWindowTest, ClosingDuringACommandAsksAndWaits) {
    ui.expect("FORMAT CHANGE");
    window->show();
    QApplication::processEvents();
    const std::string asked =
        "A command is still running.\r\rClose the program when it has finished?";
    for (const Answer answer : {Answer::No, Answer::Yes}) {
        ui.expect("TVK", answer);
        window->command([&] {
            EXPECT_FALSE(window->close());
            // After Yes a second close waits too, without asking again.
            if (answer == Answer::Yes) {
                EXPECT_FALSE(window->close());
            }
        });
        EXPECT_EQ(ui.shown.back().text, asked);
        QApplication::processEvents();
        EXPECT_EQ(window->isVisible(), answer == Answer::No);
    }
    EXPECT_EQ(statusText(2), "Please wait until the current command has finished.");
    EXPECT_EQ(ui.titles(), (std::vector<std::string>{"FORMAT CHANGE", "TVK", "TVK"}));
}

TEST_F(MainWindowTest, DoubleClickOpensTheViewerOrSaysWhatIsWrong) {
    libraryFile("Waltz.APG", std::string(610, 'A'));
    libraryFile("Manual.pdf", "%PDF");
    window->refreshAll();
    window->listDoubleClicked(list("flbDocs"), "Waltz.APG");
    auto* viewer = window->findChild<QDialog*>("frmFileViewer");
    ASSERT_NE(viewer, nullptr);
    EXPECT_EQ(viewer->windowTitle(), "FILE VIEWER - Waltz.APG - Record Length=610");
    viewer->close();

    window->listDoubleClicked(list("flbDocs"), "Manual.pdf");
    ASSERT_EQ(system->opened.size(), 1u);
    EXPECT_EQ(system->opened[0], library() / "Manual.pdf");

    std::filesystem::remove(library() / "Waltz.APG");
    window->listDoubleClicked(list("flbDocs"), "Waltz.APG");
    EXPECT_TRUE(statusText(1).contains("no longer there"));
    EXPECT_FALSE(names("flbDocs").contains("Waltz.APG"));
}

TEST_F(MainWindowTest, AbortWithoutTraceEndsWithoutWritingSettings) {
    libraryFile("Broken.SPG", "TAVRN mark but no version field");  // Err#13 on a click
    window->refreshAll();
    const auto before = readFile(library() / "TVK.ini");
    window->session().settings.autoBackup = true;  // would be written by a normal close
    int exitCode = -1;
    window->quitProgram = [&](int code) { exitCode = code; };
    ui.expect("TVK: RUNTIME ERROR", Answer::Abort);
    list("flbDocs")->setCurrentRow(0);
    EXPECT_TRUE(ui.done());
    EXPECT_FALSE(window->session().state.busy);
    EXPECT_EQ(exitCode, 1);
    window->close();
    EXPECT_EQ(readFile(library() / "TVK.ini"), before);
}

TEST_F(MainWindowTest, AboutShowsTheVersionAndHelpWhereTheManualShouldBe) {
    ui::AboutDialog about(window.get());
    EXPECT_EQ(about.objectName(), "frmAbout");
    EXPECT_EQ(about.findChild<QLabel*>("lblVersion")->text(), "Version: 2021.0922.1101");

    ui.expect("USER'S MANUAL");
    window->openManual();
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_NE(ui.shown[0].text.find("User's Manual.pdf"), std::string::npos);
    writeFile(tree.path("prog/User's Manual.pdf"), "%PDF");
    window->openManual();
    EXPECT_EQ(system->opened.back(), tree.path("prog/User's Manual.pdf"));
}

TEST_F(MainWindowTest, UnloadRemembersThePositionAndTheNextStartUsesIt) {
    struct Case {
        QRect saved;
        bool restored;
    };
    // The second one lies on no screen and must not hide the window.
    for (const Case c : {Case{{40, 50, 700, 500}, true}, Case{{20000, 20000, 700, 500}, false}}) {
        window->session().settings.remWinPosit = true;
        window->setGeometry(c.saved);
        const QRect before = window->geometry();
        window->close();
        const auto ini = readFile(library() / "TVK.ini");
        EXPECT_NE(ini.find("[WINDOW POSITIONS]"), std::string::npos);
        EXPECT_NE(ini.find("Win Width=" + std::to_string(before.width())), std::string::npos);

        window = makeWindow();
        ASSERT_TRUE(window->load());
        EXPECT_EQ(window->geometry() == before, c.restored);
    }
}

}  // namespace
}  // namespace tvk::test
