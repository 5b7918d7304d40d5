#include "ui/SearchDialog.h"

#include <QCheckBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include "organfiles/ContentSearch.h"
#include "ui/QtText.h"

namespace tvk::ui {

namespace {

// Both "Whole Word" and "Match Case" have always shown this text.
constexpr const char* kWholeWordTip =
    "If checked, the search will look for a WHOLE WORD matching the entered text. Otherwise it "
    "will return ANY segment matching the search Text";

QCheckBox* checkBox(QWidget* parent, const QString& name, const char* caption,
                    const char* tip = nullptr) {
    auto* c = new QCheckBox(caption, parent);
    c->setObjectName(name);
    if (tip) c->setToolTip(tip);
    return c;
}

}  // namespace

SearchDialog::SearchDialog(Context ctx, QWidget* parent) : QDialog(parent), ctx_(ctx) {
    setObjectName("frmSearch");
    setWindowTitle("SEARCH");
    auto* grid = new QGridLayout(this);
    auto* label1 = new QLabel("Search for Text:", this);
    label1->setObjectName("Label1_0");
    txtSearch_ = new QLineEdit(this);
    txtSearch_->setObjectName("txtSearch");
    txtSearch_->installEventFilter(this);
    auto* label2 = new QLabel("Search Location:", this);
    label2->setObjectName("Label1_1");
    const char* places[2] = {"Thumbdrive", "Documents"};
    const char* kinds[2] = {"Preset Files", "Recording Files"};
    for (int i = 0; i < 2; ++i) {
        optLookIn_[i] = new QRadioButton(places[i], this);
        optLookIn_[i]->setObjectName(QString("optLookIn_%1").arg(i));
        chkFileType_[i] = checkBox(this, QString("chkFileType_%1").arg(i), kinds[i]);
        chkFileType_[i]->setChecked(true);
    }
    chkWhole_ = checkBox(this, "chkWhole", "Whole Word", kWholeWordTip);
    chkMatchCase_ = checkBox(this, "chkMatchCase", "Match Case", kWholeWordTip);
    chkCountOnly_ = checkBox(this, "chkCountOnly", "Count Only");
    auto* btnSearch = new QPushButton("Search", this);
    btnSearch->setObjectName("btnSearch");
    // Enter starts the search wherever the focus is in the dialog.
    btnSearch->setDefault(true);

    grid->addWidget(label1, 0, 0);
    grid->addWidget(txtSearch_, 0, 1, 1, 3);
    grid->addWidget(label2, 1, 0);
    grid->addWidget(optLookIn_[0], 1, 1);
    grid->addWidget(optLookIn_[1], 1, 2);
    grid->addWidget(chkFileType_[0], 2, 1);
    grid->addWidget(chkFileType_[1], 2, 2);
    grid->addWidget(chkWhole_, 3, 1);
    grid->addWidget(chkMatchCase_, 3, 2);
    grid->addWidget(chkCountOnly_, 3, 3);
    grid->addWidget(btnSearch, 4, 3);

    const bool stick = ctx_.state.drive.present;
    optLookIn_[0]->setEnabled(stick);
    optLookIn_[stick && ctx_.state.activeList == ListControl::flbUSB ? 0 : 1]->setChecked(true);
    connect(btnSearch, &QPushButton::clicked, this, [this] { btnSearch_Click(); });
    txtSearch_->setFocus();
}

void SearchDialog::btnSearch_Click() {
    SearchRequest request;
    request.folder =
        optLookIn_[0]->isChecked() ? ctx_.state.drive.tavrinFolder() : ctx_.state.docsFolder;
    request.text = us(txtSearch_->text());
    request.presets = chkFileType_[0]->isChecked();
    request.recordings = chkFileType_[1]->isChecked();
    request.wholeWord = chkWhole_->isChecked();
    request.matchCase = chkMatchCase_->isChecked();
    request.countOnly = chkCountOnly_->isChecked();
    tvk::btnSearch_Click(ctx_, request);
}

bool SearchDialog::eventFilter(QObject* watched, QEvent* event) {
    // txtSearch_GotFocus: the last text is selected, ready to be typed over.
    if (watched == txtSearch_ && event->type() == QEvent::FocusIn)
        QTimer::singleShot(0, txtSearch_, [this] { txtSearch_->selectAll(); });
    return QDialog::eventFilter(watched, event);
}

}  // namespace tvk::ui
