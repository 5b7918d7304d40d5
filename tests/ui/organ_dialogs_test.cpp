// The name editor, search and Make Files dialogs on the offscreen platform: what they
// show, what typing and the buttons do to the file, and how the menus open them.

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTimer>

#include "organfiles/OrganFile.h"
#include "support/SessionTest.h"
#include "ui/MakeFilesDialog.h"
#include "ui/PresetRenameDialog.h"
#include "ui/QtText.h"
#include "ui/SearchDialog.h"
#include "ui/WindowFixture.h"

namespace tvk {
namespace {

using ui::PresetRenameDialog;

void press(QWidget* w, int key) {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(w, &down);
}
void type(QWidget* w, const QString& text) {
    for (const QChar c : text) {
        QKeyEvent down(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(w, &down);
    }
}

struct OrganDialogs : test::SessionTest {
    std::filesystem::path preset(const char* name, Series family) {
        return tree.write(name, test::organFile(family, FileKind::Preset, "Bright Strings"));
    }
};

TEST_F(OrganDialogs, NameEditorShowsTheFamilysBoxesAndCommitsWhatIsTyped) {
    struct Case {
        const char* file;
        Series family;
        int width;
    };
    for (const Case c :
         {Case{"SUPSET01.LPG", Series::SU, 15}, Case{"APSET001.APG", Series::A, 16}}) {
        SCOPED_TRACE(c.file);
        const auto file = preset(c.file, c.family);
        const std::string original = test::readFile(file);
        PresetRenameDialog dialog(ctx, file);
        ASSERT_TRUE(dialog.loaded());
        EXPECT_EQ(dialog.windowTitle(), QString("RENAME PRESETS - ") + c.file);
        EXPECT_EQ(dialog.nameBox("A0")->isHidden(), c.family == Series::SU);
        EXPECT_EQ(dialog.nameBox("E10")->maxLength(), c.width);
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtPresetFileName")->text(), "Bright Strings");
        const auto e10 = calcAddress(c.family, FileKind::Preset, "E10");
        EXPECT_EQ(ui::us(dialog.nameBox("E10")->text()), trim(fieldAt(original, e10)));

        QLineEdit* b3 = dialog.nameBox("B3");
        b3->selectAll();
        type(b3, QString::fromUtf8("Tuba \u2192\u00E9"));  // the arrow is refused
        EXPECT_EQ(b3->text(), QString::fromUtf8("Tuba \u00E9"));
        EXPECT_TRUE(dialog.windowTitle().endsWith("  *"));
        QLineEdit* e10box = dialog.nameBox("E10");
        e10box->selectAll();
        type(e10box, "ABCDEFGHIJKLMNOPQRST");
        EXPECT_EQ(e10box->text().size(), c.width);

        dialog.findChild<QPushButton*>("btnCommit")->click();
        EXPECT_EQ(dialog.windowTitle(), QString("RENAME PRESETS - ") + c.file);
        std::string expected = original;
        const auto b3at = calcAddress(c.family, FileKind::Preset, "B3");
        expected.replace(b3at - 1, c.width, fieldBytes("Tuba \u00E9", c.width));
        expected.replace(e10 - 1, c.width, std::string("ABCDEFGHIJKLMNOP").substr(0, c.width));
        EXPECT_TRUE(test::readFile(file) == expected);
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(OrganDialogs, ReloadClearAndTheThreeAnswersOnClosing) {
    const auto file = preset("EPSET001.EPG", Series::E);
    const std::string original = test::readFile(file);
    auto edited = [&](PresetRenameDialog& d) {
        d.show();
        d.nameBox("C7")->setText("Changed");
        EXPECT_TRUE(d.changed());
    };
    {
        PresetRenameDialog dialog(ctx, file);
        dialog.findChild<QPushButton*>("btnClear")->click();
        EXPECT_TRUE(dialog.nameBox("A0")->text().isEmpty());
        EXPECT_TRUE(dialog.findChild<QLineEdit*>("txtPresetFileName")->text().isEmpty());
        EXPECT_TRUE(dialog.windowTitle().endsWith("  *"));
        dialog.findChild<QPushButton*>("btnReload")->click();
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtPresetFileName")->text(), "Bright Strings");
        EXPECT_FALSE(dialog.changed());

        edited(dialog);
        ui.expect("CHANGES NOT SAVED", Answer::Cancel);
        dialog.reject();
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.nameBox("C7")->text(), "Changed");
        ASSERT_EQ(ui.shown.size(), 1u);
        EXPECT_EQ(ui.shown[0].text,
                  "There are changes that have not been saved.\rDo you want to Save Changes?");
        EXPECT_EQ(ui.shown[0].buttons, Buttons::YesNoCancel);
        EXPECT_EQ(ui.shown[0].icon, Icon::Question);

        ui.expect("CHANGES NOT SAVED", Answer::No);
        dialog.reject();
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_TRUE(test::readFile(file) == original);
    }
    PresetRenameDialog dialog(ctx, file);
    edited(dialog);
    ui.expect("CHANGES NOT SAVED", Answer::Yes);
    dialog.reject();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(readPresetName(file), "Bright Strings");
    EXPECT_EQ(trim(fieldAt(test::readFile(file), calcAddress("E", "PRESET", "C7"))), "Changed");
    EXPECT_TRUE(ui.done());
}

TEST_F(OrganDialogs, KeysMoveBetweenBoxesInBankOrder) {
    PresetRenameDialog dialog(ctx, preset("SUPSET02.LPG", Series::SU));
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    auto* fileName = dialog.findChild<QLineEdit*>("txtPresetFileName");
    struct Step {
        const char* from;
        int key;
        const char* to;  // "" for the file name box
    };
    const Step steps[] = {
        {"A1", Qt::Key_Down, "A2"},   {"A2", Qt::Key_Up, "A1"},   {"A1", Qt::Key_Up, ""},
        {"A10", Qt::Key_Down, "B1"},  {"A10", Qt::Key_Tab, "B1"}, {"B1", Qt::Key_Left, "A10"},
        {"E9", Qt::Key_Right, "E10"},
    };
    for (const auto& s : steps) {
        SCOPED_TRACE(std::string(s.from) + " " + std::to_string(s.key));
        QLineEdit* from = dialog.nameBox(s.from);
        from->setFocus();
        from->setCursorPosition(s.key == Qt::Key_Left ? 0 : static_cast<int>(from->text().size()));
        press(from, s.key);
        EXPECT_EQ(dialog.focusWidget(), *s.to ? dialog.nameBox(s.to) : fileName);
    }
    dialog.findChild<QCheckBox*>("chkAutoSelect")->setChecked(true);
    dialog.nameBox("C3")->setFocus();
    QApplication::processEvents();
    EXPECT_EQ(dialog.nameBox("C3")->selectedText(), dialog.nameBox("C3")->text());
}

TEST_F(OrganDialogs, SearchFollowsTheActiveListAndStartsOnEnter) {
    ctx.state.docsFolder = tree.mkdir("docs");
    ctx.state.drive.present = true;
    ctx.state.drive.root = tree.mkdir("stick");
    tree.write("stick/TAVRIN/SUPSET01.LPG", test::organFile(Series::SU, FileKind::Preset, "X"));
    for (const ListControl active : {ListControl::flbUSB, ListControl::flbDocs}) {
        ctx.state.activeList = active;
        ui::SearchDialog dialog(ctx);
        const bool stick = active == ListControl::flbUSB;
        EXPECT_EQ(dialog.findChild<QRadioButton*>("optLookIn_0")->isChecked(), stick);
        EXPECT_EQ(dialog.findChild<QRadioButton*>("optLookIn_1")->isChecked(), !stick);
        // Match Case has always carried the Whole Word tooltip.
        EXPECT_EQ(dialog.findChild<QCheckBox*>("chkMatchCase")->toolTip(),
                  dialog.findChild<QCheckBox*>("chkWhole")->toolTip());
        // Only the stick holds a file to find the text in.
        auto* text = dialog.findChild<QLineEdit*>("txtSearch");
        text->setText("e");
        dialog.findChild<QCheckBox*>("chkCountOnly")->setChecked(true);
        dialog.show();
        // Enter searches once wherever the focus is.
        for (const char* focus : {"txtSearch", "optLookIn_1", "chkFileType_0", "chkWhole",
                                  "chkMatchCase", "chkCountOnly"}) {
            ui.expect(stick ? "MATCHES FOUND" : "NO MATCHES");
            press(dialog.findChild<QWidget*>(focus), Qt::Key_Return);
            EXPECT_TRUE(ui.done()) << focus;
            EXPECT_EQ(ui.shown.size(), 1u) << focus;
            ui.shown.clear();
        }
    }
}

TEST_F(OrganDialogs, MakeFilesDialogWritesTheChosenSet) {
    ui::MakeFilesDialog dialog(ctx);
    dialog.findChild<QLineEdit*>("txtFolder")->setText(ui::qpath(tree.mkdir("out")));
    dialog.findChild<QSpinBox*>("txtPresets")->setValue(2);
    dialog.findChild<QSpinBox*>("txtSongs")->setValue(1);
    dialog.findChild<QCheckBox*>("chkFamily_1")->setChecked(false);  // no A files
    dialog.findChild<QPushButton*>("btnOK")->click();
    EXPECT_EQ(dialog.result().written,
              (std::vector<std::string>{"SUPSET01.LPG", "SUPSET02.LPG", "EPSET001.EPG",
                                        "EPSET002.EPG", "SUSONG01.LMR", "ESONG001.EMR"}));
    EXPECT_EQ(dialog.result().folder.parent_path(), tree.path("out"));
    auto* bar = dialog.findChild<QProgressBar*>("pbarMakeFiles");
    EXPECT_EQ(bar->value(), 6);
    EXPECT_EQ(bar->maximum(), 6);
}

struct OrganMenus : test::WindowFixture {};

// Each menu item opens its dialog over the window.
TEST_F(OrganMenus, MenuItemsOpenTheDialogs) {
    libraryFile("SUPSET01.LPG", test::organFile(Series::SU, FileKind::Preset, "Mine"));
    window->refreshAll();
    list("flbDocs")->item(0)->setSelected(true);
    const std::pair<const char*, const char*> items[] = {{"mnuEditRename", "frmPresetRename"},
                                                         {"mnuEditFind", "frmSearch"},
                                                         {"mnuMakeFiles", "frmMakeFiles"}};
    for (const auto& [item, dialog] : items) {
        SCOPED_TRACE(item);
        QString opened;
        QTimer::singleShot(0, [&] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                opened = modal->objectName();
                static_cast<QDialog*>(modal)->reject();
            }
        });
        action(item)->trigger();
        EXPECT_EQ(opened, dialog);
    }
    EXPECT_TRUE(ui.shown.empty());
}

}  // namespace
}  // namespace tvk
