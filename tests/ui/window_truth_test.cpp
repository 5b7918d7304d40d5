// The window answers at once and shows what it was told to: a click right after a box
// closes, the lists' colours, Enter in a dialog.

#include <QAbstractItemView>
#include <QCheckBox>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

struct TruthTest : WindowFixture {
    void SetUp() override {
        WindowFixture::SetUp();
        window->session().settings.formatChange = true;
        window->show();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    // The colour the list's empty area is painted with.
    static QColor painted(QAbstractItemView* view) {
        const QImage shot = view->viewport()->grab().toImage();
        return shot.pixelColor(shot.width() - 3, shot.height() - 3);
    }
};

TEST_F(TruthTest, AClickRightAfterABoxClosesRunsItsCommandAgain) {
    acceptStick();
    window->session().state.enabled["btnUSB_Docs_3"] = true;
    window->refreshAll();
    window->setBoxesTo(nullptr);  // real boxes, closed with Escape as a user would
    auto* pool = find<QPushButton>("btnUSB_Docs_3");
    int boxes = 0;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || box->property("seen").toBool()) return;
        box->setProperty("seen", true);
        if (++boxes == 1) {
            // The user's next click arrives with the Escape that closes the box, before
            // the command has ended.
            QObject::connect(box, &QDialog::finished,
                             [pool] { QTest::mouseClick(pool, Qt::LeftButton); });
        }
        QTest::keyClick(box, Qt::Key_Escape);
    });
    closer.start(5);
    ASSERT_TRUE(pool->isEnabled());
    QTest::mouseClick(pool, Qt::LeftButton);
    EXPECT_TRUE(waitUntil([&] { return boxes == 2; })) << boxes << " boxes";
    EXPECT_TRUE(waitUntil([&] { return !window->session().state.busy; }));
}

TEST_F(TruthTest, AClickThatActivatesTheWindowIsNotLost) {
    acceptStick();
    window->session().state.enabled["btnUSB_Docs_3"] = true;
    window->refreshAll();
    ui.lenient = true;
    auto* pool = find<QPushButton>("btnUSB_Docs_3");
    // Without a window manager the window is activated by the click itself, between the
    // press and the release.
    QTest::mousePress(pool, Qt::LeftButton);
    QEvent activation(QEvent::ActivationChange);
    QApplication::sendEvent(window.get(), &activation);
    QTest::mouseRelease(pool, Qt::LeftButton);
    EXPECT_EQ(ui.shown.size(), 1u);
}

TEST_F(TruthTest, TheListsWearTheColoursOfTheSettings) {
    struct Row {
        const char* list;
        QColor byDefault;
    };
    const Row rows[] = {{"dirDocs", QColor(224, 255, 255)},
                        {"flbDocs", QColor(255, 255, 255)},
                        {"flbUSB", QColor(255, 255, 224)}};
    for (const auto& row : rows)
        EXPECT_EQ(painted(find<QAbstractItemView>(row.list)), row.byDefault) << row.list;

    // Preferences' OK paints them again from the settings.
    auto& s = window->session().settings;
    s.usbFilesBC = 0x0000FF;  // red, as the settings keep it (BGR)
    window->applyListColors();
    auto* usb = find<QAbstractItemView>("flbUSB");
    EXPECT_EQ(painted(usb), QColor(255, 0, 0));
    // Focus keeps its border and the list keeps its colour.
    usb->setFocus();
    EXPECT_EQ(painted(usb), QColor(255, 0, 0));
}

TEST_F(TruthTest, AfterAnyCommandTheWindowShowsWhatIsOnDisk) {
    const auto tavrin = acceptStick();
    window->session().state.drive.fileSystem = "FAT32";
    libraryFile("Gone.txt");
    writeFile(tavrin / "SUPSET01.LPG", organFile(Series::SU, FileKind::Preset, "One"));
    window->refreshAll();
    // The file information of a file that is then removed behind the program's back.
    auto* docs = list("flbDocs");
    docs->selectName("Gone.txt");
    window->listClicked(docs);
    ASSERT_FALSE(window->session().state.fileInfoText.empty());

    std::filesystem::remove(library() / "Gone.txt");
    std::filesystem::create_directory(library() / "New Folder");
    writeFile(tavrin / "SUPSET02.LPG", organFile(Series::SU, FileKind::Preset, "Two"));
    window->listClicked(list("flbUSB"));  // any command at all

    EXPECT_FALSE(names("flbDocs").contains("Gone.txt"));
    EXPECT_TRUE(find<QLabel>("lblFileInfoDisplay")->text().isEmpty());
    EXPECT_TRUE(names("flbUSB").contains("SUPSET02.LPG"));
    EXPECT_TRUE(find<QLabel>("lblDriveInfoDisplay")->text().contains("PRESET FILES: 2"))
        << find<QLabel>("lblDriveInfoDisplay")->text().toStdString();
    bool treeShowsIt = false;
    auto* tree = find<QTreeWidget>("dirDocs");
    for (auto* item : tree->findItems("New Folder", Qt::MatchExactly | Qt::MatchRecursive))
        treeShowsIt = treeShowsIt || item;
    EXPECT_TRUE(treeShowsIt);
}

}  // namespace
}  // namespace tvk::test
