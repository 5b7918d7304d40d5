#pragma once
// frmMakeFiles: writes a set of test presets and songs, as `tvk make-files` does, into a
// "FAKEPRFILES - ..." folder of the chosen folder (the library unless changed).

#include <QDialog>
#include <array>
#include <functional>

#include "app/Context.h"
#include "organfiles/MakeFiles.h"

class QCheckBox;
class QLineEdit;
class QProgressBar;
class QSpinBox;

namespace tvk::ui {

class MakeFilesDialog : public QDialog {
    Q_OBJECT
  public:
    explicit MakeFilesDialog(Context ctx, QWidget* parent = nullptr);

    // The folder chooser; replaceable so tests need no screen.
    std::function<QString(const QString& current)> chooseFolder;
    // What the last OK wrote.
    const MakeFilesResult& result() const { return result_; }

    void btnOK_Click();

  private:
    Context ctx_;
    QSpinBox* presets_ = nullptr;
    QSpinBox* songs_ = nullptr;
    std::array<QCheckBox*, 3> families_{};
    QLineEdit* folder_ = nullptr;
    QProgressBar* progress_ = nullptr;
    MakeFilesResult result_;
};

}  // namespace tvk::ui
