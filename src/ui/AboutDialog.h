#pragma once
// frmAbout: the program's name, version and purpose.

#include <QDialog>

namespace tvk::ui {

class AboutDialog : public QDialog {
    Q_OBJECT
  public:
    explicit AboutDialog(QWidget* parent = nullptr);
};

}  // namespace tvk::ui
