#include "ui/MakeFilesDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>

#include "ui/QtText.h"

namespace tvk::ui {

namespace {

// The generator's progress goes to the dialog's own bar; everything else it shows goes
// where the window's commands show it.
class DialogProgress : public Interaction {
  public:
    DialogProgress(Interaction& outer, QProgressBar* bar) : outer_(outer), bar_(bar) {}
    Answer message(const Message& box) override { return outer_.message(box); }
    std::optional<std::string> prompt(const std::string& title, const std::string& text,
                                      const std::string& initial) override {
        return outer_.prompt(title, text, initial);
    }
    void setStatus(StatusPanel panel, const std::string& text) override {
        outer_.setStatus(panel, text);
    }
    void showProgress(int maximum) override {
        bar_->setRange(0, std::max(1, maximum));
        bar_->setValue(0);
    }
    void setProgress(int value) override { bar_->setValue(std::min(value, bar_->maximum())); }
    void hideProgress() override {}
    void processEvents() override { outer_.processEvents(); }

  private:
    Interaction& outer_;
    QProgressBar* bar_;
};

QSpinBox* spinBox(QWidget* parent, const char* name, int maximum, int value) {
    auto* s = new QSpinBox(parent);
    s->setObjectName(name);
    s->setRange(0, maximum);
    s->setValue(value);
    return s;
}

}  // namespace

MakeFilesDialog::MakeFilesDialog(Context ctx, QWidget* parent) : QDialog(parent), ctx_(ctx) {
    setObjectName("frmMakeFiles");
    setWindowTitle("MAKE FILES");
    chooseFolder = [this](const QString& current) {
        return QFileDialog::getExistingDirectory(this, "Make the test files in", current);
    };
    const MakeFilesRequest defaults;
    auto* form = new QFormLayout(this);
    presets_ = spinBox(this, "txtPresets", kMaxPresetNumber, defaults.presetsPerFamily);
    songs_ = spinBox(this, "txtSongs", kMaxRecordingNumber, defaults.songsPerFamily);
    form->addRow("Presets of each family:", presets_);
    form->addRow("Songs of each family:", songs_);
    auto* familyRow = new QHBoxLayout;
    const Series series[3] = {Series::SU, Series::A, Series::E};
    for (int i = 0; i < 3; ++i) {
        families_[i] = new QCheckBox(QString("\"%1\" Series").arg(seriesCode(series[i])), this);
        families_[i]->setObjectName(QString("chkFamily_%1").arg(i));
        families_[i]->setChecked(true);
        familyRow->addWidget(families_[i]);
    }
    form->addRow("Families:", familyRow);
    auto* folderRow = new QHBoxLayout;
    folder_ = new QLineEdit(qpath(ctx_.paths.libraryRoot), this);
    folder_->setObjectName("txtFolder");
    auto* browse = new QPushButton("Browse...", this);
    browse->setObjectName("btnBrowse");
    folderRow->addWidget(folder_, 1);
    folderRow->addWidget(browse);
    form->addRow("Folder:", folderRow);
    progress_ = new QProgressBar(this);
    progress_->setObjectName("pbarMakeFiles");
    progress_->setValue(0);
    form->addRow(progress_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName("btnOK");
    form->addRow(buttons);

    connect(browse, &QPushButton::clicked, this, [this] {
        const QString chosen = chooseFolder(folder_->text());
        if (!chosen.isEmpty()) folder_->setText(chosen);
    });
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { btnOK_Click(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void MakeFilesDialog::btnOK_Click() {
    MakeFilesRequest request;
    request.parent = upath(folder_->text());
    request.presetsPerFamily = presets_->value();
    request.songsPerFamily = songs_->value();
    request.families.clear();
    const Series series[3] = {Series::SU, Series::A, Series::E};
    for (int i = 0; i < 3; ++i)
        if (families_[i]->isChecked()) request.families.push_back(series[i]);
    if (request.parent.empty() || request.families.empty() ||
        (request.presetsPerFamily == 0 && request.songsPerFamily == 0))
        return;
    DialogProgress progress(ctx_.ui, progress_);
    Context ctx{ctx_.trace, ctx_.settings, progress,    ctx_.system,
                ctx_.paths, ctx_.state,    ctx_.volumes};
    RandomSource random;
    setEnabled(false);
    result_ = MakeFiles(ctx, request, random);
    setEnabled(true);
    accept();
}

}  // namespace tvk::ui
