#pragma once
// frmSearch: looks for a text among the names inside the preset and recording files of
// the thumbdrive folder or of the folder the computer list shows.

#include <QDialog>
#include <array>

#include "app/Context.h"

class QCheckBox;
class QLineEdit;
class QRadioButton;

namespace tvk::ui {

class SearchDialog : public QDialog {
    Q_OBJECT
  public:
    // Form_Load: the location follows the list last worked in.
    explicit SearchDialog(Context ctx, QWidget* parent = nullptr);

    void btnSearch_Click();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    Context ctx_;
    QLineEdit* txtSearch_ = nullptr;
    std::array<QRadioButton*, 2> optLookIn_{};
    std::array<QCheckBox*, 2> chkFileType_{};
    QCheckBox* chkWhole_ = nullptr;
    QCheckBox* chkMatchCase_ = nullptr;
    QCheckBox* chkCountOnly_ = nullptr;
};

}  // namespace tvk::ui
