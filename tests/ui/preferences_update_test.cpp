// Preferences and the update check against a local HTTP server.

#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QMouseEvent>
#include <QRadioButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include "ui/PreferencesDialog.h"
#include "ui/UpdateCheck.h"
#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

using PreferencesTest = WindowFixture;

void pressOn(QWidget* w, Qt::KeyboardModifiers mods) {
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(5, 5), w->mapToGlobal(QPointF(5, 5)),
                      Qt::LeftButton, Qt::LeftButton, mods);
    QApplication::sendEvent(w, &press);
}

TEST_F(PreferencesTest, OkAppliesEverythingAndWritesTheSettingsFile) {
    window->session().settings.numberSeq = 0;
    ui::PreferencesDialog dialog(
        window->context(), [this] { window->applyListColors(); }, window.get());
    EXPECT_EQ(dialog.windowTitle(), "PREFERENCES");
    auto* series = dialog.findChild<QComboBox*>("cbxSeries");
    ASSERT_EQ(series->count(), 3);
    EXPECT_EQ(series->itemText(0), "\"SU\" Series");
    EXPECT_EQ(series->itemText(2), "\"E\" Series");
    EXPECT_EQ(series->currentIndex(), -1);  // ALL: none of the three
    EXPECT_TRUE(dialog.findChild<QRadioButton*>("optNumSeq_1")->isChecked());

    // Plain click: back colour; Shift+click: text colour; Ctrl+Shift counts as plain.
    std::vector<QString> asked;
    dialog.chooseColor = [&](const QColor&, const QString& title) -> std::optional<QColor> {
        asked.push_back(title);
        return QColor(0x12, 0x34, 0x56);
    };
    pressOn(dialog.colorLabel(1), Qt::ShiftModifier);
    pressOn(dialog.colorLabel(0), Qt::NoModifier);
    pressOn(dialog.colorLabel(2), Qt::ShiftModifier | Qt::ControlModifier);
    ASSERT_EQ(asked.size(), 3u);
    EXPECT_TRUE(asked[0].endsWith("FONT"));
    EXPECT_TRUE(asked[1].endsWith("BACKGROUND"));
    EXPECT_TRUE(asked[2].endsWith("BACKGROUND"));

    series->setCurrentIndex(1);
    dialog.findChild<QCheckBox*>("chkWindowPosit")->setChecked(true);
    dialog.findChild<QCheckBox*>("chkAutoSelect")->setChecked(true);
    dialog.findChild<QRadioButton*>("optNumSeq_0")->setChecked(true);
    dialog.findChild<QPushButton*>("btnOK")->click();

    const auto& s = window->session().settings;
    EXPECT_EQ(s.organSeries, 2);
    EXPECT_EQ(s.compFilesFC, 0x563412u);  // Windows order: blue, green, red
    EXPECT_EQ(s.usbFilesBC, 0x563412u);
    EXPECT_EQ(s.compFolderBC, 0x563412u);
    EXPECT_EQ(s.compFolderFC, 0u);
    EXPECT_EQ(window->session().state.series, Series::A);
    EXPECT_TRUE(action("mnuA")->isVisible());
    EXPECT_FALSE(action("mnuALL")->isVisible());
    EXPECT_EQ(list("flbDocs")->palette().color(QPalette::Text), QColor(0x12, 0x34, 0x56));

    const auto ini = readFile(library() / "TVK.ini");
    // How each setting is written is the settings file's test; here that OK writes.
    for (const char* line : {"Organ Series=2\r\n", "Comp Files FC=&H563412\r\n"})
        EXPECT_NE(ini.find(line), std::string::npos) << line;
}

TEST_F(PreferencesTest, CancelChangesNothing) {
    const auto before = readFile(library() / "TVK.ini");
    const auto settings = window->session().settings;
    ui::PreferencesDialog dialog(window->context(), nullptr, window.get());
    dialog.findChild<QComboBox*>("cbxSeries")->setCurrentIndex(2);
    dialog.findChild<QCheckBox*>("chkAutoBackup")->setChecked(true);
    dialog.findChild<QPushButton*>("btnCancel")->click();
    EXPECT_EQ(window->session().settings, settings);
    EXPECT_EQ(readFile(library() / "TVK.ini"), before);
    EXPECT_EQ(window->session().state.series, Series::All);
}

// Serves one page to every request, with the given status line.
class VersionServer {
  public:
    VersionServer(QByteArray status, QByteArray body) {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, [this, status, body] {
            QTcpSocket* s = server_.nextPendingConnection();
            QObject::connect(s, &QTcpSocket::readyRead, [s, status, body] {
                if (!s->readAll().contains("\r\n\r\n")) return;
                s->write("HTTP/1.1 " + status + "\r\nContent-Type: text/html\r\nContent-Length: " +
                         QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
                s->disconnectFromHost();
            });
        });
    }
    QUrl url() const {
        return QUrl(QString("http://127.0.0.1:%1/TVK/TVK.ver").arg(server_.serverPort()));
    }

  private:
    QTcpServer server_;
};

using UpdateCheckTest = WindowFixture;

bool runCheck(ui::MainWindow& window, const QUrl& url) {
    QEventLoop wait;
    bool finished = false;
    QObject::connect(window.updateCheck(), &ui::UpdateCheck::finished, &wait, [&] {
        finished = true;
        wait.quit();
    });
    QTimer::singleShot(10000, &wait, &QEventLoop::quit);
    window.updateCheck()->start(url);
    wait.exec();
    return finished;
}

TEST_F(UpdateCheckTest, OnlyANewerVersionIsOffered) {
    struct Case {
        QByteArray status, body;
        bool offered;
    };
    // Which versions count as newer is the core's test; here the page and its title.
    const Case cases[] = {
        {"200 OK", "<html><head><TITLE> 2099.0101.0000 </TITLE></head></html>", true},
        {"200 OK", "<html><title>Welcome to the server!</title></html>", false},
        {"404 Not Found", "<html><title>2099.0101.0000</title></html>", false},
    };
    for (const auto& c : cases) {
        VersionServer server(c.status, c.body);
        ui.shown.clear();
        if (c.offered) ui.expect("VERSION 2099.0101.0000 AVAILABLE", Answer::Yes);
        ASSERT_TRUE(runCheck(*window, server.url())) << c.body.toStdString();
        EXPECT_EQ(ui.shown.size(), c.offered ? 1u : 0u) << c.body.toStdString();
    }
    ASSERT_EQ(system->started.size(), 1u);
    EXPECT_EQ(system->started[0], tree.path("prog") / "TVK_Downloader.exe");
}

TEST_F(UpdateCheckTest, NoServerNoMessage) {
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    const QUrl url(QString("http://127.0.0.1:%1/TVK/TVK.ver").arg(closed.serverPort()));
    closed.close();
    ASSERT_TRUE(runCheck(*window, url));
    EXPECT_TRUE(ui.shown.empty());
}

TEST(UpdateCheckUrl, ComesFromTheEnvironment) {
    {
        ScopedEnv env("TVK_UPDATE_URL", "http://127.0.0.1:8080/TVK/TVK.ver");
        EXPECT_EQ(ui::UpdateCheck::configuredUrl().toString(), "http://127.0.0.1:8080/TVK/TVK.ver");
    }
    ScopedEnv env("TVK_UPDATE_URL", "");
    EXPECT_EQ(ui::UpdateCheck::configuredUrl().path(), "/TVK/TVK.ver");
}

}  // namespace
}  // namespace tvk::test
