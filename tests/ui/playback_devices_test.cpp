// Playback through the media framework and a stick pulled out while its list is shown.

#include <QAudioDevice>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMediaDevices>

#include "drive/Volumes.h"
#include "support/DriveImages.h"
#include "ui/DeviceWatch.h"
#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

using PlaybackTest = WindowFixture;

// Pumps events until panel 1 passes `done` or the time is up; returns the last text.
QString waitForStatus(WindowFixture& f, const std::function<bool(const QString&)>& done) {
    WindowFixture::waitUntil([&] { return done(f.statusText(1)); });
    return f.statusText(1);
}

TEST_F(PlaybackTest, AnMp3PlaysAndABrokenOneSaysSo) {
    if (!haveTool("ffmpeg")) GTEST_SKIP() << "ffmpeg is not installed";
    const auto mp3 = library() / "Evening Bells.mp3";
    ASSERT_EQ(runCommand("ffmpeg -loglevel error -y -f lavfi -i sine=frequency=440:duration=2 "
                         "-b:a 128k '" +
                         mp3.string() + "'"),
              0);
    libraryFile("Broken.mp3", std::string(4000, '\x55'));
    window->refreshAll();

    window->listDoubleClicked(list("flbDocs"), "Evening Bells.mp3");
    EXPECT_EQ(statusText(1), "Just a moment...");
    const QString played =
        waitForStatus(*this, [](const QString& s) { return s != "Just a moment..."; });
    // A machine without a sound device plays silently, and the player strip says so.
    EXPECT_EQ(played, "Playing Evening Bells.mp3");
    const bool silent = QMediaDevices::audioOutputs().isEmpty();
    EXPECT_EQ(window->findChild<QLabel*>("lblPlaying")->text(),
              silent ? "Evening Bells.mp3 (no sound output)" : "Evening Bells.mp3");

    window->listDoubleClicked(list("flbDocs"), "Broken.mp3");
    const QString broken =
        waitForStatus(*this, [](const QString& s) { return s.startsWith("Cannot"); });
    EXPECT_TRUE(broken.startsWith("Cannot play Broken.mp3")) << broken.toStdString();
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(PlaybackTest, MidiTheFrameworkCannotPlayGoesToTheDesktop) {
    libraryFile("Prelude.mid",
                std::string("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\4\0\xff\x2f\0", 22));
    window->refreshAll();
    window->listDoubleClicked(list("flbDocs"), "Prelude.mid");
    const QString s =
        waitForStatus(*this, [](const QString& t) { return t != "Just a moment..."; });
    if (s == "Playing Prelude.mid") GTEST_SKIP() << "this media framework plays MIDI itself";
    ASSERT_EQ(system->opened.size(), 1u) << s.toStdString();
    EXPECT_EQ(system->opened[0], library() / "Prelude.mid");
}

// A real FAT image attached as a drive; pulling it empties the stick list.
TEST_F(PlaybackTest, PulledStickEmptiesTheList) {
    if (!haveTool("mkfs.fat") || !haveTool("fusefat") || !haveTool("mmd"))
        GTEST_SKIP() << "FAT tools are not installed";
    const auto image = makeImage(tree, "stick.img", {"fat16", 64, "ORGANSTICK", ""});
    fillTavrin(tree, image, {"TUNE.MP3"});
    std::shared_ptr<Volumes> volumes;
    try {
        volumes = makePlatformVolumes({{image}, false});
    } catch (const std::exception& e) {
        GTEST_SKIP() << "cannot attach the image here: " << e.what();
    }
    window->session().volumes = volumes;
    window->scanForDrives();
    ASSERT_TRUE(window->session().state.drive.present);
    EXPECT_EQ(names("flbUSB"), QStringList{"TUNE.MP3"});
    const auto root = window->session().state.drive.root;

    // Pull it: unmount behind the program's back, then the removal notice.
    runCommand("fusermount -u '" + root.string() + "' || umount '" + root.string() + "'");
    DeviceNotice removed;
    removed.kind = DeviceNotice::Kind::Removal;
    removed.drive = window->session().state.drive.letter;
    // The notice arrives while another command runs: it waits for that to end.
    window->session().state.busy = true;
    emit window->findChild<ui::DeviceWatch*>("SysInfo1")->notice(removed);
    QApplication::processEvents();
    EXPECT_TRUE(window->session().state.drive.present);
    window->session().state.busy = false;
    QElapsedTimer t;
    t.start();
    while (window->session().state.drive.present && t.elapsed() < 5000)
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_FALSE(window->session().state.drive.present);
    EXPECT_EQ(list("flbUSB")->count(), 0);
    EXPECT_TRUE(find<QLineEdit>("txtUSBPath")->text().isEmpty());
    window->session().volumes.reset();
}

}  // namespace
}  // namespace tvk::test
