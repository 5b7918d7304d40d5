// What a new user meets: tooltips, shortcuts, Tab order, visible focus, the minimum size
// and the drive panel at any width.

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QHelpEvent>
#include <QLineEdit>
#include <QTest>
#include <QToolTip>
#include <functional>
#include <vector>

#include "ui/ElidedText.h"
#include "ui/MainWindowGuide.h"
#include "ui/WindowFixture.h"

namespace tvk::test {
namespace {

struct GuideTest : WindowFixture {
    void SetUp() override {
        WindowFixture::SetUp();
        window->session().settings.formatChange = true;  // the one-time notice is not the subject
        window->show();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    QRect inWindow(QWidget* w) const {
        return QRect(w->mapTo(window.get(), QPoint(0, 0)), w->size());
    }
};

TEST_F(GuideTest, TooltipsOfTheButtonsAndBoxesReadAsTheyAlwaysHave) {
    const std::pair<const char*, const char*> tips[] = {
        {"dlbDocs",
         "When \"active\", pressing ESCAPE will return you to the Tavrin File Management folder"},
        {"txtDocPath", "This displays the currently selected file path"},
        {"txtUSBPath", "This displays the Thumbdrive Tavrin Folder"},
        {"btnUSB_Docs_0",
         "This will copy the THUMBDRIVE's contents to the COMPUTER's corresponding folder, "
         "removing any files not on the thumbdrive"},
        {"btnUSB_Docs_1",
         "This will Copy the COMPUTER's files on to the THUMBDRIVE from the corresponding folder, "
         "removing any files not on the computer"},
        {"btnUSB_Docs_2",
         "This will create a new folder in the TVK Documents and copy ALL of the thumbdrive's "
         "contents"},
        {"btnUSB_Docs_3", "This will copy all PRESET files to the Computer's Preset Pool"},
        {"btnUSB_Docs_4", "This will copy all RECORDING files to the Computer's MUSIC RECORDINGS"},
        {"btnSort", "This will SORT all Presets and Recordings in Alphabetical order"},
    };
    for (const auto& [control, tip] : tips) EXPECT_EQ(find(control)->toolTip(), tip) << control;
    // Every other button and box says what it does too.
    for (auto* w : window->findChildren<QWidget*>()) {
        const bool control = qobject_cast<QAbstractButton*>(w) || qobject_cast<QLineEdit*>(w) ||
                             qobject_cast<QAbstractItemView*>(w) || qobject_cast<QComboBox*>(w);
        const QString name = w->objectName();
        if (control && w->isVisibleTo(window.get()) && !name.isEmpty() && !name.startsWith("qt_")) {
            EXPECT_FALSE(w->toolTip().isEmpty()) << name.toStdString();
        }
    }
}

TEST_F(GuideTest, ShortcutsTriggerTheirMenuCommands) {
    // The captions are checked with the others in the main window's test.
    const std::pair<const char*, const char*> cases[] = {
        {"mnuEditDelete", "Del"},  {"mnuFileRename", "F2"},    {"mnuEditRefresh", "F5"},
        {"mnuEditCopy", "Ctrl+C"}, {"mnuEditPaste", "Ctrl+V"}, {"mnuEditFind", "Ctrl+F"},
        {"mnuFileQuit", "Ctrl+Q"}};
    list("flbDocs")->setFocus();
    for (const auto& [name, keys] : cases) {
        QAction* a = action(name);
        ASSERT_NE(a, nullptr) << name;
        EXPECT_EQ(a->shortcut().toString(), keys);
        // Only whether the key reaches the command: what the command does is tested with it.
        QObject::disconnect(a, &QAction::triggered, nullptr, nullptr);
        a->setEnabled(true);
        int triggered = 0;
        QObject::connect(a, &QAction::triggered, [&] { ++triggered; });
        QTest::keySequence(window.get(), a->shortcut());
        EXPECT_EQ(triggered, 1) << name;
    }
}

TEST_F(GuideTest, TabGoesLeftToRightTopToBottomAndAFocusedListShowsIt) {
    acceptStick();
    for (const char* name : ui::tabOrder()) find(name)->setEnabled(true);
    find(ui::tabOrder().front())->setFocus();
    QStringList visited{QApplication::focusWidget()->objectName()};
    for (std::size_t i = 1; i < ui::tabOrder().size(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        visited << QApplication::focusWidget()->objectName();
    }
    QStringList expected;
    for (const char* name : ui::tabOrder()) expected << name;
    EXPECT_EQ(visited, expected);

    for (const char* name : {"flbDocs", "flbUSB", "dirDocs"}) {
        find("btnButtonBar_0")->setFocus();
        const QImage before = find(name)->grab().toImage();
        find(name)->setFocus();
        EXPECT_NE(find(name)->grab().toImage(), before) << name;
    }
}

TEST_F(GuideTest, AtTheMinimumSizeNothingOverlapsAndTheDrivePanelElides) {
    const QSize smallest = window->minimumSize();
    EXPECT_LE(smallest.width(), 1024);
    EXPECT_LE(smallest.height(), 720);
    window->resize(smallest);
    QApplication::processEvents();
    EXPECT_EQ(window->size(), smallest);
    QList<QWidget*> shown;
    for (auto* b : window->findChildren<QPushButton*>())
        if (b->isVisibleTo(window.get())) shown << b;
    for (const char* name : {"flbDocs", "flbUSB", "dirDocs", "txtDocPath", "txtUSBPath"})
        shown << find(name);
    for (int i = 0; i < shown.size(); ++i) {
        EXPECT_GE(shown[i]->width(), shown[i]->minimumSizeHint().width())
            << shown[i]->objectName().toStdString();
        for (int j = i + 1; j < shown.size(); ++j)
            EXPECT_FALSE(inWindow(shown[i]).intersects(inWindow(shown[j])))
                << shown[i]->objectName().toStdString() << " "
                << shown[j]->objectName().toStdString();
    }
    for (const char* name : {"flbDocs", "flbUSB", "dirDocs"})
        EXPECT_GE(find(name)->height(), find(name)->fontMetrics().height() * 5) << name;

    // Every status panel and path box keeps both ends of a long text and shows it whole
    // in its tooltip.
    const QString longText =
        "Volume Name: DEMO STICK  Serial Number:2021ABCD  DevID:/home/organist/"
        "Documents/a rather long folder name/and another one/demo-stick.img";
    struct Row {
        const char* name;
        std::function<void(const QString&)> set;
        std::function<QString()> shown;
    };
    auto label = [this](const char* name) { return find<QLabel>(name); };
    auto box = [this](const char* name) { return find<QLineEdit>(name); };
    std::vector<Row> rows;
    for (const char* name : {"sbarMain_1", "sbarMain_2", "sbarMain_3"})
        rows.push_back({name, [=](const QString& t) { label(name)->setText(t); },
                        [=] { return ui::ElidedText::shown(label(name)); }});
    for (const char* name : {"txtDocPath", "txtUSBPath"})
        rows.push_back({name, [=](const QString& t) { box(name)->setText(t); },
                        [=] { return ui::ElidedText::shown(box(name)); }});
    for (const auto& row : rows) {
        row.set(longText);
        const QString shownText = row.shown();
        EXPECT_TRUE(shownText.startsWith("Volume")) << row.name << shownText.toStdString();
        EXPECT_TRUE(shownText.endsWith("stick.img")) << row.name << shownText.toStdString();
        EXPECT_TRUE(shownText.contains(QChar(0x2026))) << row.name << shownText.toStdString();
        QWidget* w = find(row.name);
        QHelpEvent help(QEvent::ToolTip, QPoint(2, 2), w->mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(w, &help);
        EXPECT_EQ(QToolTip::text(), longText) << row.name;
    }
    EXPECT_EQ(box("txtUSBPath")->text(), longText);

    window->resize(3200, 900);
    QApplication::processEvents();
    EXPECT_EQ(ui::ElidedText::shown(label("sbarMain_3")), longText);
}

}  // namespace
}  // namespace tvk::test
