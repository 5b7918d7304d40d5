#include "ui/AboutDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "app/Version.h"
#include "ui/QtText.h"

namespace tvk::ui {

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
    setObjectName("frmAbout");
    setWindowTitle("About Tavrin File Manager");
    auto* layout = new QVBoxLayout(this);
    auto* name = new QLabel(kProductName, this);
    name->setObjectName("lblTitle");
    QFont big = name->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    name->setFont(big);
    auto* version = new QLabel(qs("Version: " + programVersionText()), this);
    version->setObjectName("lblVersion");
    auto* about = new QLabel(
        "Manages the USB thumbdrives of Tavrin home organs: backs up and restores the "
        "organ's presets and music recordings, collects them in a library on this "
        "computer with readable names, sorts and renames them within the organ's limits, "
        "and plays MP3 and MIDI files.",
        this);
    about->setObjectName("lblDescription");
    about->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    for (auto* w : std::initializer_list<QWidget*>{name, version, about}) layout->addWidget(w);
    layout->addWidget(buttons);
    setMinimumWidth(420);
}

}  // namespace tvk::ui
