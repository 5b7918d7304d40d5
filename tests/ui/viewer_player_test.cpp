// The file viewer (organ tab, byte views, closing), the player strip with a real MP3 and
// the desktop for what the media framework cannot play.

#include <QAbstractItemModel>
#include <QAudioDevice>
#include <QKeyEvent>
#include <QMediaDevices>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QToolButton>

#include "organfiles/OrganFile.h"
#include "ui/FileViewer.h"
#include "ui/MediaPlayer.h"
#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

using ViewerTest = WindowFixture;

// A file as the organ writes it, holding one registration name at a byte position
// worked out by hand from the family's record layout.
std::string organBytes(Series family, const std::string& name, std::int32_t position,
                       const std::string& registration) {
    std::string bytes = organHeader(family) + name + std::string(16 - name.size(), ' ') + "\r\n";
    bytes.resize(position - 1 + 2000, '\0');
    bytes.replace(position - 1, registration.size(), registration);
    return bytes;
}

ui::FileViewer* openedViewer(ui::MainWindow& window) {
    return window.findChild<ui::FileViewer*>("frmFileViewer");
}

TEST_F(ViewerTest, OrganTabShowsHeaderNameAndRegistrationsOfEachFamily) {
    const struct {
        const char* file;
        Series family;
        const char* version;
        std::int32_t position;  // where the registration lies
        int bank, column, buttons;
        const char* firstButton;  // caption of the first column
    } cases[] = {
        {"SUPSET01.LPG", Series::SU, "2", 1027 + 10 * 596, 1, 0, 10, "1"},  // B1
        {"Waltz.APG", Series::A, "3", 1027 + 610, 0, 1, 11, "0"},           // A1
        {"ESONG002.EMR", Series::E, "4", 2275 + 13 * 624, 1, 2, 11, "0"},   // B2
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        libraryFile(c.file, organBytes(c.family, "Anna's Jazz", c.position, "Bright Strings  "));
        window->openViewer(library() / c.file);
        auto* viewer = openedViewer(*window);
        ASSERT_NE(viewer, nullptr);
        auto* tabs = viewer->findChild<QTabWidget*>();
        EXPECT_EQ(tabs->tabText(tabs->currentIndex()), "Organ file");
        EXPECT_EQ(viewer->findChild<QLabel*>("lblBrandMark")->text(), "TAVRN");
        EXPECT_EQ(viewer->findChild<QLabel*>("lblVersion")->text(), c.version);
        EXPECT_EQ(viewer->findChild<QLabel*>("lblOrganName")->text(), "Anna's Jazz");
        auto* grid = viewer->findChild<QTableWidget*>("tblRegistrations");
        ASSERT_NE(grid, nullptr);
        EXPECT_EQ(grid->rowCount(), 5);
        EXPECT_EQ(grid->columnCount(), c.buttons);
        EXPECT_EQ(grid->horizontalHeaderItem(0)->text(), c.firstButton);
        int named = 0;
        for (int r = 0; r < 5; ++r)
            for (int col = 0; col < c.buttons; ++col)
                if (!grid->item(r, col)->text().isEmpty()) ++named;
        EXPECT_EQ(named, 1);
        EXPECT_EQ(grid->item(c.bank, c.column)->text(), "Bright Strings");
        viewer->close();
        QApplication::processEvents();
    }
}

TEST_F(ViewerTest, CloseButtonAndEscapeCloseTheViewer) {
    libraryFile("Notes.txt", "first line\r\nsecond line\r\n");
    for (bool escape : {false, true}) {
        window->openViewer(library() / "Notes.txt");
        QPointer<ui::FileViewer> viewer = openedViewer(*window);
        ASSERT_FALSE(viewer.isNull());
        viewer->show();
        // Not an organ file: no organ tab, and a text file reads as text.
        auto* tabs = viewer->findChild<QTabWidget*>();
        EXPECT_EQ(tabs->tabText(0), "Text");
        EXPECT_EQ(viewer->findChild<QPlainTextEdit*>("txtText")->toPlainText(),
                  "first line\nsecond line\n");
        if (escape) {
            QKeyEvent key(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QApplication::sendEvent(viewer->focusWidget() ? viewer->focusWidget() : viewer.data(),
                                    &key);
        } else {
            viewer->findChild<QPushButton*>("btnClose")->click();
        }
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(viewer.isNull()) << (escape ? "Escape" : "Close");
    }
}

TEST_F(ViewerTest, TextAndByteViewsOfAnOrganFileAndAMegabyte) {
    const std::string preset = organBytes(Series::SU, "Anna's Jazz", 1027, "Bright Strings");
    // Runs of text with their byte positions, not a page of dots.
    const QString text = ui::FileViewer::textView(QByteArray::fromStdString(preset));
    EXPECT_TRUE(text.contains("TAVRN SEQ Ver2.0Anna's Jazz\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("    1027  Bright Strings\n")) << text.toStdString();
    EXPECT_FALSE(text.contains("...."));

    std::string big(1024 * 1024, '\0');
    for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>(i * 7);
    libraryFile("Big.bin", big);
    QElapsedTimer t;
    t.start();
    window->openViewer(library() / "Big.bin");
    auto* viewer = openedViewer(*window);
    ASSERT_NE(viewer, nullptr);
    auto* tabs = viewer->findChild<QTabWidget*>();
    for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        QApplication::processEvents();
    }
    EXPECT_LT(t.elapsed(), 5000);  // a widget per byte takes far longer
    auto* hex = viewer->findChild<QTableView*>("tblHex")->model();
    auto* bytes = viewer->findChild<QTableView*>("tblBytePositions")->model();
    EXPECT_EQ(hex->rowCount(), 65536);
    EXPECT_EQ(bytes->rowCount(), 1024 * 1024);
    EXPECT_EQ(hex->index(1, 0).data().toString(), "17");
    EXPECT_EQ(hex->index(0, 1).data().toString().left(11), "00 07 0E 15");
    const int last = bytes->rowCount() - 1;
    EXPECT_EQ(bytes->index(last, 0).data().toString(), "1048576");
    EXPECT_EQ(bytes->index(last, 1).data().toString(), "F9");  // 1048575 * 7 mod 256
    EXPECT_EQ(bytes->index(last, 2).data().toString(), "249");
    EXPECT_EQ(bytes->index(0, 3).data().toString(), ".");
    EXPECT_EQ(bytes->index(119, 3).data().toString(), "A");  // 119 * 7 mod 256 = 65
    viewer->close();
}

struct PlayerTest : WindowFixture {
    // Lets the player start: waits for panel 1 to leave "Just a moment..." and begin with
    // `start`, and returns what it says then.
    QString waitForStatus(const QString& start) {
        waitUntil([&] {
            const QString s = statusText(1);
            return s != "Just a moment..." && s.startsWith(start);
        });
        return statusText(1);
    }
};

// Plays silently where the machine has no sound output, and the strip says so.
TEST_F(PlayerTest, StripPlaysPausesAndStopsARealMp3AndABrokenOneSaysSo) {
    if (!haveTool("ffmpeg")) GTEST_SKIP() << "ffmpeg is not installed";
    const auto mp3 = library() / "Evening Bells.mp3";
    ASSERT_EQ(runCommand("ffmpeg -loglevel error -y -f lavfi -i sine=frequency=440:duration=3 "
                         "-b:a 128k '" +
                         mp3.string() + "'"),
              0);
    libraryFile("Broken.mp3", std::string(4000, '\x55'));
    window->refreshAll();
    auto* strip = window->findChild<ui::MediaPlayer*>("mmcMain");
    ASSERT_NE(strip, nullptr);
    EXPECT_FALSE(strip->isVisibleTo(window.get()));

    window->listDoubleClicked(list("flbDocs"), "Evening Bells.mp3");
    EXPECT_EQ(statusText(1), "Just a moment...");
    EXPECT_EQ(waitForStatus("Playing"), "Playing Evening Bells.mp3");
    EXPECT_TRUE(strip->isVisibleTo(window.get()));
    EXPECT_EQ(strip->findChild<QLabel*>("lblPlaying")->text(),
              QMediaDevices::audioOutputs().isEmpty() ? "Evening Bells.mp3 (no sound output)"
                                                      : "Evening Bells.mp3");
    auto* time = strip->findChild<QLabel*>("lblPlayTime");
    EXPECT_TRUE(waitUntil([&] { return time->text().endsWith(" / 0:03"); }))
        << time->text().toStdString();

    auto* playPause = strip->findChild<QToolButton*>("btnPlayPause");
    playPause->click();
    EXPECT_TRUE(waitUntil([&] { return strip->paused(); }));
    EXPECT_EQ(playPause->toolTip(), "Play");
    playPause->click();
    EXPECT_TRUE(waitUntil([&] { return strip->playing(); }));
    EXPECT_EQ(playPause->toolTip(), "Pause");

    strip->findChild<QToolButton*>("btnStop")->click();
    EXPECT_FALSE(strip->playing());
    EXPECT_FALSE(strip->isVisibleTo(window.get()));
    EXPECT_EQ(statusText(1), "");
    // Stopped, the file is free to be renamed.
    std::filesystem::rename(mp3, library() / "Renamed.mp3");

    window->listDoubleClicked(list("flbDocs"), "Broken.mp3");
    EXPECT_TRUE(waitForStatus("Cannot").startsWith("Cannot play Broken.mp3"));
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(PlayerTest, MidiTheFrameworkCannotPlayGoesToTheDesktop) {
    libraryFile("Prelude.mid",
                std::string("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\4\0\xff\x2f\0", 22));
    window->refreshAll();
    window->listDoubleClicked(list("flbDocs"), "Prelude.mid");
    const QString s = waitForStatus("");
    if (s == "Playing Prelude.mid") GTEST_SKIP() << "this media framework plays MIDI itself";
    ASSERT_EQ(system->opened.size(), 1u) << s.toStdString();
    EXPECT_EQ(system->opened[0], library() / "Prelude.mid");
}

TEST(PlayerTime, PositionAndLength) {
    EXPECT_EQ(ui::MediaPlayer::timeText(0, 0), "0:00 / -:--");
    EXPECT_EQ(ui::MediaPlayer::timeText(65'400, 200'000), "1:05 / 3:20");
    EXPECT_EQ(ui::MediaPlayer::timeText(3'600'000, 3'661'000), "60:00 / 61:01");
}

}  // namespace
}  // namespace tvk::test
