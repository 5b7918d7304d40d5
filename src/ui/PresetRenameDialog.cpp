#include "ui/PresetRenameDialog.h"

#include <QCheckBox>
#include <QFocusEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QValidator>

#include "app/Routine.h"
#include "organfiles/Cp1252.h"
#include "ui/QtText.h"

namespace tvk::ui {

namespace {

constexpr const char* kCaption = "RENAME PRESETS";

// Refuses, as it is typed or pasted, any character the organ cannot store.
class OrganTextValidator : public QValidator {
  public:
    using QValidator::QValidator;
    State validate(QString& text, int&) const override {
        return fitsCp1252(us(text)) ? Acceptable : Invalid;
    }
};

QLineEdit* nameEdit(QWidget* parent, const QString& objectName, const QFont& font) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(objectName);
    box->setFont(font);
    box->setValidator(new OrganTextValidator(box));
    box->setMinimumWidth(QFontMetrics(font).horizontalAdvance(QString(17, 'W')));
    return box;
}

QPushButton* button(QWidget* parent, const char* name, const char* caption, const char* tip) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setToolTip(tip);
    b->setAutoDefault(false);
    return b;
}

QString codeOf(int index) {
    return QString(QChar('A' + index / 11)) + QString::number(index % 11);
}

}  // namespace

PresetRenameDialog::PresetRenameDialog(Context ctx, std::filesystem::path file, QWidget* parent)
    : QDialog(parent), ctx_(ctx), file_(std::move(file)) {
    setObjectName("frmPresetRename");
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buildFileNameRow(fixed));
    layout->addLayout(buildNameGrid(fixed));
    const std::vector<QWidget*> buttons = addButtons(layout);
    txtPresetFileName_->installEventFilter(this);
    for (auto* box : txtPresetName_)
        connect(box, &QLineEdit::textChanged, this, [this] { FileChanged(true); });
    connect(txtPresetFileName_, &QLineEdit::textChanged, this, [this] { FileChanged(true); });

    if (!load("frmPresetRename.Form_Load")) return;
    // Tab follows the bank order, after the file name.
    QWidget* previous = txtPresetFileName_;
    for (auto* box : usedBoxes()) {
        setTabOrder(previous, box);
        previous = box;
    }
    for (QWidget* w : buttons) {
        setTabOrder(previous, w);
        previous = w;
    }
}

QLayout* PresetRenameDialog::buildFileNameRow(const QFont& fixed) {
    auto* nameRow = new QHBoxLayout;
    auto* lblPresetName = new QLabel("Preset File Name:", this);
    lblPresetName->setObjectName("lblPresetName");
    txtPresetFileName_ = nameEdit(this, "txtPresetFileName", fixed);
    txtPresetFileName_->setMaxLength(static_cast<int>(kEditorFileNameWidth));
    nameRow->addWidget(lblPresetName);
    nameRow->addWidget(txtPresetFileName_);
    nameRow->addStretch(1);
    return nameRow;
}

// Each bank is one row of two lines: buttons 0 to 5, then 6 to 10 under 1 to 5.
QLayout* PresetRenameDialog::buildNameGrid(const QFont& fixed) {
    auto* grid = new QGridLayout;
    for (int i = 0; i < kBoxes; ++i) {
        const int bank = i / 11, n = i % 11;
        const bool firstLine = n <= 5;
        const int row = bank * 2 + (firstLine ? 0 : 1);
        const int slot = firstLine ? n : n - 5;
        if (n == 0) {
            auto* lblBank = new QLabel(QString(QChar('A' + bank)), this);
            lblBank->setObjectName(QString("lblBanks_%1").arg(bank));
            QFont bold = lblBank->font();
            bold.setBold(true);
            lblBank->setFont(bold);
            grid->addWidget(lblBank, row, 0, 2, 1);
        }
        auto* number = new QLabel(QString::number(n), this);
        number->setObjectName(
            QString(firstLine ? "lblPresetNumLeft_%1" : "lblPresetNumRight_%1").arg(i));
        number->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        txtPresetName_[i] = nameEdit(this, QString("txtPresetName_%1").arg(i), fixed);
        txtPresetName_[i]->installEventFilter(this);
        grid->addWidget(number, row, 1 + slot * 2);
        grid->addWidget(txtPresetName_[i], row, 2 + slot * 2);
    }
    return grid;
}

// The bottom row, connected; returns its controls in tab order.
std::vector<QWidget*> PresetRenameDialog::addButtons(QBoxLayout* layout) {
    auto* buttons = new QHBoxLayout;
    chkAutoSelect_ = new QCheckBox("Auto Select all text", this);
    chkAutoSelect_->setObjectName("chkAutoSelect");
    chkAutoSelect_->setToolTip("When checked, all text in the selected box will be selected.");
    auto* btnReload = button(this, "btnReload", "Reload Preset Names",
                             "This will reload all presets in their CURRENT form. If changes were "
                             "committed, those changes will remain.");
    auto* btnClear = button(this, "btnClear", "Clear All Preset Names",
                            "This will clear all Text Boxes, it will Not affect the file until you "
                            "Commit the changes.");
    auto* btnCommit = button(this, "btnCommit", "Commit Changes",
                             "This will record all changed data to the file.");
    buttons->addWidget(chkAutoSelect_);
    buttons->addStretch(1);
    for (auto* b : {btnReload, btnClear, btnCommit}) buttons->addWidget(b);
    layout->addLayout(buttons);

    connect(btnReload, &QPushButton::clicked, this, [this] { btnReload_Click(); });
    connect(btnClear, &QPushButton::clicked, this, [this] { btnClear_Click(); });
    connect(btnCommit, &QPushButton::clicked, this, [this] { btnCommit_Click(); });
    return {chkAutoSelect_, btnReload, btnClear, btnCommit};
}

QLineEdit* PresetRenameDialog::nameBox(const QString& code) const {
    for (int i = 0; i < kBoxes; ++i)
        if (codeOf(i) == code) return txtPresetName_[i];
    return nullptr;
}

std::vector<QLineEdit*> PresetRenameDialog::usedBoxes() const {
    std::vector<QLineEdit*> boxes;
    if (!names_) return boxes;
    for (int i = 0; i < kBoxes; ++i)
        if (names_->family != Series::SU || i % 11 != 0) boxes.push_back(txtPresetName_[i]);
    return boxes;
}

bool PresetRenameDialog::load(std::string_view routineName) {
    auto names = loadPresetNames(ctx_, file_, routineName);
    if (!names) return false;
    names_ = std::move(names);
    const bool su = names_->family == Series::SU;
    for (int i = 0; i < kBoxes; ++i) {
        const bool used = !su || i % 11 != 0;
        txtPresetName_[i]->setVisible(used);
        if (auto* number = findChild<QLabel*>(QString("lblPresetNumLeft_%1").arg(i)))
            number->setVisible(used);
        txtPresetName_[i]->setMaxLength(static_cast<int>(presetNameWidth(names_->family)));
    }
    showNames();
    return true;
}

void PresetRenameDialog::showNames() {
    filling_ = true;
    txtPresetFileName_->setText(qs(names_->fileName));
    const auto boxes = usedBoxes();
    for (std::size_t i = 0; i < boxes.size(); ++i) boxes[i]->setText(qs(names_->boxes[i].name));
    filling_ = false;
    FileChanged(false);
}

void PresetRenameDialog::FileChanged(bool changed) {
    if (filling_) return;
    changed_ = changed;
    setWindowTitle(QString(kCaption) + " - " + qs(fileNameUtf8(file_)) + (changed ? "  *" : ""));
}

void PresetRenameDialog::btnReload_Click() {
    load("frmPresetRename.btnReload_Click");
}

void PresetRenameDialog::btnClear_Click() {
    txtPresetFileName_->clear();
    for (auto* box : usedBoxes()) box->clear();
}

bool PresetRenameDialog::btnCommit_Click() {
    if (!names_) return false;
    PresetNamesEdit edit{us(txtPresetFileName_->text()), {}};
    for (auto* box : usedBoxes()) edit.names.push_back(us(box->text()));
    if (!commitPresetNames(ctx_, *names_, edit)) return false;
    // What the file now holds, sixteenth bytes and all.
    load("frmPresetRename.btnReload_Click");
    return true;
}

void PresetRenameDialog::reject() {
    if (changed_) {
        const Answer answer =
            ctx_.ui.message(Message{"CHANGES NOT SAVED",
                                    "There are changes that have not been saved." +
                                        std::string(kLineBreak) + "Do you want to Save Changes?",
                                    Buttons::YesNoCancel, Icon::Question, 1});
        if (answer == Answer::Cancel) return;
        if (answer == Answer::Yes && !btnCommit_Click()) return;
    }
    QDialog::reject();
}

void PresetRenameDialog::moveFocus(QLineEdit* from, int step) {
    std::vector<QLineEdit*> order = usedBoxes();
    order.insert(order.begin(), txtPresetFileName_);
    const auto it = std::find(order.begin(), order.end(), from);
    if (it == order.end()) return;
    const auto at = (it - order.begin()) + step;
    if (at >= 0 && at < static_cast<long>(order.size()))
        order[static_cast<std::size_t>(at)]->setFocus(Qt::TabFocusReason);
}

bool PresetRenameDialog::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (!box) return QDialog::eventFilter(watched, event);
    if (event->type() == QEvent::FocusIn && chkAutoSelect_->isChecked()) {
        // After the click that gave the focus has placed the cursor.
        QTimer::singleShot(0, box, [box] { box->selectAll(); });
    } else if (event->type() == QEvent::KeyPress) {
        // txtPresetName_KeyDown: the arrows move between boxes in bank order; left and
        // right only once the cursor is at the text's edge.
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool atStart = box->cursorPosition() == 0 && !box->hasSelectedText();
        const bool atEnd = box->cursorPosition() == box->text().size() && !box->hasSelectedText();
        int step = 0;
        if (key->key() == Qt::Key_Down || (key->key() == Qt::Key_Right && atEnd)) step = 1;
        if (key->key() == Qt::Key_Up || (key->key() == Qt::Key_Left && atStart)) step = -1;
        if (step != 0 && key->modifiers() == Qt::NoModifier) {
            moveFocus(box, step);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace tvk::ui
