#include "ui/PreferencesDialog.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/IniFile.h"
#include "app/MainState.h"
#include "app/Routine.h"
#include "library/CategoryViews.h"
#include "ui/Colors.h"

namespace tvk::ui {

namespace {

const char* const kLabelCaptions[3] = {"THUMBDRIVE FILE LIST", "COMPUTER FILE LIST", "FOLDER LIST"};

QCheckBox* checkBox(QWidget* parent, const char* name, const char* caption, const char* tip) {
    auto* c = new QCheckBox(caption, parent);
    c->setObjectName(name);
    c->setToolTip(tip);
    return c;
}

}  // namespace

PreferencesDialog::PreferencesDialog(Context ctx, std::function<void()> applyListColors,
                                     QWidget* parent)
    : QDialog(parent), ctx_(ctx), applyListColors_(std::move(applyListColors)) {
    setObjectName("frmPreferences");
    setWindowTitle("PREFERENCES");
    chooseColor = [this](const QColor& initial, const QString& title) -> std::optional<QColor> {
        const QColor c = QColorDialog::getColor(initial, this, title);
        if (!c.isValid()) return std::nullopt;
        return c;
    };

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buildSeriesRow());
    layout->addWidget(buildColorLabels());
    layout->addWidget(buildNumberSequence());
    chkAutoBackup_ =
        checkBox(this, "chkAutoBackup", "Automatically Backup Thumbdrive", "Auto Backup");
    chkAutoSelect_ =
        checkBox(this, "chkAutoSelect", "Automatically Select All Text", "All Text Select");
    chkWindowPosit_ =
        checkBox(this, "chkWindowPosit", "Remember Window Positions", "Rem Win Posit");
    for (auto* c : {chkAutoBackup_, chkAutoSelect_, chkWindowPosit_}) layout->addWidget(c);
    layout->addLayout(buildButtons());

    Form_Load();
}

QLayout* PreferencesDialog::buildSeriesRow() {
    auto* seriesRow = new QHBoxLayout;
    auto* label1 = new QLabel("Organ Series", this);
    label1->setObjectName("Label1");
    cbxSeries_ = new QComboBox(this);
    cbxSeries_->setObjectName("cbxSeries");
    cbxSeries_->setPlaceholderText("Select Your Organ Series");
    cbxSeries_->setToolTip("Select Your Organ Series");
    for (const char* code : {"SU", "A", "E"})
        cbxSeries_->addItem(QString("\"%1\" Series").arg(code));
    seriesRow->addWidget(label1);
    seriesRow->addWidget(cbxSeries_, 1);
    return seriesRow;
}

// The three sample labels; a click picks the background colour, SHIFT + click the font's.
QWidget* PreferencesDialog::buildColorLabels() {
    auto* colors = new QGroupBox("COLORS", this);
    colors->setToolTip(
        "The purpose for using colors on the Folder and File lists is to help distinguish one "
        "from another. Hold SHIFT to select the FONT color.");
    auto* colorRow = new QHBoxLayout(colors);
    for (int i = 0; i < 3; ++i) {
        labels_[i] = new QLabel(kLabelCaptions[i], colors);
        labels_[i]->setObjectName(QString::fromStdString(controlName("lblFldrFileList", i)));
        labels_[i]->setToolTip("SHIFT + CLICK to select the FONT color");
        labels_[i]->setAlignment(Qt::AlignCenter);
        labels_[i]->setFrameShape(QFrame::Box);
        labels_[i]->setMinimumSize(150, 48);
        labels_[i]->setCursor(Qt::PointingHandCursor);
        labels_[i]->installEventFilter(this);
        colorRow->addWidget(labels_[i]);
    }
    return colors;
}

QWidget* PreferencesDialog::buildNumberSequence() {
    auto* copy = new QGroupBox("FILE COPY", this);
    auto* copyCol = new QVBoxLayout(copy);
    const char* optCaptions[2] = {"Continue Number Sequence", "Restart Number Sequence"};
    const char* optTips[2] = {
        "This will start looking at the next number to find an unused number.",
        "This will start looking at #001 to find an unused number."};
    for (int i = 0; i < 2; ++i) {
        optNumSeq_[i] = new QRadioButton(optCaptions[i], copy);
        optNumSeq_[i]->setObjectName(QString::fromStdString(controlName("optNumSeq", i)));
        optNumSeq_[i]->setToolTip(optTips[i]);
        copyCol->addWidget(optNumSeq_[i]);
    }
    return copy;
}

QLayout* PreferencesDialog::buildButtons() {
    auto* buttons = new QHBoxLayout;
    auto* ok = new QPushButton("OK", this);
    ok->setObjectName("btnOK");
    ok->setDefault(true);
    auto* cancel = new QPushButton("&Cancel", this);
    cancel->setObjectName("btnCancel");
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    connect(ok, &QPushButton::clicked, this, [this] { btnOK_Click(); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    return buttons;
}

void PreferencesDialog::Form_Load() {
    routine(ctx_, "frmPreferences.Form_Load", [&](Routine&) {
        const auto& s = ctx_.settings;
        cbxSeries_->setCurrentIndex(s.organSeries >= 1 && s.organSeries <= 3 ? s.organSeries - 1
                                                                             : -1);
        fore_ = {s.usbFilesFC, s.compFilesFC, s.compFolderFC};
        back_ = {s.usbFilesBC, s.compFilesBC, s.compFolderBC};
        for (int i = 0; i < 3; ++i) showLabelColors(i);
        optNumSeq_[s.numberSeq == 1 ? 0 : 1]->setChecked(true);
        chkAutoBackup_->setChecked(s.autoBackup);
        chkAutoSelect_->setChecked(s.allTextSelect);
        chkWindowPosit_->setChecked(s.remWinPosit);
    });
}

void PreferencesDialog::showLabelColors(int index) {
    applyColors(labels_[index], fore_[index], back_[index]);
}

void PreferencesDialog::pickColor(int index, bool fontColor) {
    auto& slot = fontColor ? fore_[index] : back_[index];
    const QString title =
        QString(kLabelCaptions[index]) + (fontColor ? " - FONT" : " - BACKGROUND");
    if (const auto chosen = chooseColor(fromColorRef(slot), title)) {
        slot = toColorRef(*chosen);
        showLabelColors(index);
    }
}

bool PreferencesDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) {
        for (int i = 0; i < 3; ++i) {
            if (watched != labels_[i]) continue;
            // Shift alone picks the text colour; any other press the background.
            const auto mods = static_cast<QMouseEvent*>(event)->modifiers();
            pickColor(i, mods == Qt::ShiftModifier);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void PreferencesDialog::btnOK_Click() {
    routine(ctx_, "frmPreferences.btnOK_Click", [&](Routine&) {
        auto& s = ctx_.settings;
        const int index = cbxSeries_->currentIndex();
        s.organSeries = index >= 0 ? index + 1 : 0;
        s.remWinPosit = chkWindowPosit_->isChecked();
        s.allTextSelect = chkAutoSelect_->isChecked();
        s.autoBackup = chkAutoBackup_->isChecked();
        s.numberSeq = optNumSeq_[0]->isChecked() ? 1 : 0;
        s.usbFilesFC = fore_[0];
        s.usbFilesBC = back_[0];
        s.compFilesFC = fore_[1];
        s.compFilesBC = back_[1];
        s.compFolderFC = fore_[2];
        s.compFolderBC = back_[2];
        if (applyListColors_) applyListColors_();
        switchToSeries(ctx_, seriesFromNumber(s.organSeries));
        WriteIniFile(ctx_, false);
    });
    accept();
}

}  // namespace tvk::ui
