// frmMain's controls and their layout: the library pane on the left, the command
// column, the thumbdrive pane on the right, the information panels and the status bar.

#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QStorageInfo>
#include <QVBoxLayout>

#include "library/CategoryViews.h"
#include "library/TransferCommands.h"
#include "ui/FolderTree.h"
#include "ui/MainWindow.h"
#include "ui/QtText.h"

namespace tvk::ui {

namespace {

QString arrayName(const char* array, int index) {
    return QString::fromStdString(controlName(array, index));
}

QLabel* heading(const QString& name, const QString& text, QWidget* parent) {
    auto* l = new QLabel(text, parent);
    l->setObjectName(name);
    QFont f = l->font();
    f.setBold(true);
    l->setFont(f);
    return l;
}

QLabel* infoPanel(const QString& name, const QString& text, QWidget* parent) {
    auto* l = new QLabel(text, parent);
    l->setObjectName(name);
    l->setWordWrap(true);
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    l->setFrameShape(QFrame::StyledPanel);
    l->setMargin(6);
    l->setMinimumHeight(96);
    l->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return l;
}

QLineEdit* pathBox(const QString& name, const QString& tip, QWidget* parent) {
    auto* t = new QLineEdit(parent);
    t->setObjectName(name);
    t->setReadOnly(true);
    t->setToolTip(tip);
    return t;
}

}  // namespace

void MainWindow::buildPanes() {
    auto* central = new QWidget(this);
    auto* outer = new QVBoxLayout(central);
    outer->addWidget(buildCategoryBar(central));
    auto* lists = new QHBoxLayout;
    lists->addWidget(buildDocsPane(central), 5);
    lists->addWidget(buildCommandColumn(central));
    lists->addWidget(buildUsbPane(central), 4);
    outer->addLayout(lists, 1);
    outer->addLayout(buildInfoPanels(central));
    setCentralWidget(central);
    buildStatusBar();
}

QWidget* MainWindow::buildCategoryBar(QWidget* parent) {
    auto* picButtonBar = new QWidget(parent);
    picButtonBar->setObjectName("picButtonBar");
    auto* bar = new QHBoxLayout(picButtonBar);
    bar->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < kCategoryCount; ++i) {
        btnButtonBar_[i] = new QPushButton(kCategoryCaptions[i], picButtonBar);
        btnButtonBar_[i]->setObjectName(arrayName("btnButtonBar", i));
        btnButtonBar_[i]->setCheckable(true);
        btnButtonBar_[i]->setMinimumWidth(110);
        bar->addWidget(btnButtonBar_[i]);
        widgets_[btnButtonBar_[i]->objectName()] = btnButtonBar_[i];
    }
    bar->addStretch();
    return picButtonBar;
}

// The library pane: drive, folder tree, path, files.
QWidget* MainWindow::buildDocsPane(QWidget* parent) {
    auto* docsPane = new QGroupBox("Library on this computer", parent);
    auto* docs = new QVBoxLayout(docsPane);
    dlbDocs_ = new QComboBox(docsPane);
    dlbDocs_->setObjectName("dlbDocs");
    dlbDocs_->setToolTip(
        "When \"active\", pressing ESCAPE will return you to the Tavrin File Management folder");
    for (const auto& volume : QStorageInfo::mountedVolumes())
        if (volume.isValid() && volume.isReady()) dlbDocs_->addItem(volume.rootPath());
    dirDocs_ = new FolderTree(docsPane);
    dirDocs_->setToolTip(dlbDocs_->toolTip());
    txtDocPath_ = pathBox("txtDocPath", "This displays the currently selected file path", docsPane);
    flbDocs_ = new FileListWidget("flbDocs", docsPane);
    auto* docsSplit = new QSplitter(Qt::Vertical, docsPane);
    docsSplit->addWidget(dirDocs_);
    docsSplit->addWidget(flbDocs_);
    docsSplit->setStretchFactor(0, 2);
    docsSplit->setStretchFactor(1, 3);
    docs->addWidget(dlbDocs_);
    docs->addWidget(txtDocPath_);
    docs->addWidget(docsSplit, 1);
    return docsPane;
}

// The command column between the lists: the five transfers, Sort, Compare, Rename.
QWidget* MainWindow::buildCommandColumn(QWidget* parent) {
    auto* commands = new QWidget(parent);
    auto* column = new QVBoxLayout(commands);
    column->setContentsMargins(0, 8, 0, 0);
    for (int i = 0; i < 5; ++i) {
        btnUSB_Docs_[i] = new QPushButton(kTransferCaptions[i], commands);
        btnUSB_Docs_[i]->setToolTip(kTransferTooltips[i]);
        btnUSB_Docs_[i]->setObjectName(arrayName("btnUSB_Docs", i));
        column->addWidget(btnUSB_Docs_[i]);
        widgets_[btnUSB_Docs_[i]->objectName()] = btnUSB_Docs_[i];
    }
    column->addSpacing(16);
    btnSort_ = new QPushButton("&Sort", commands);
    btnSort_->setObjectName("btnSort");
    btnCompare_ = new QPushButton("&Compare", commands);
    btnCompare_->setObjectName("btnCompare");
    btnRenameVol_ = new QPushButton("&Rename USB\nDrive", commands);
    btnRenameVol_->setObjectName("btnRenameVol");
    btnRenameVol_->setMinimumHeight(48);
    for (auto* b : {btnSort_, btnCompare_, btnRenameVol_}) {
        column->addWidget(b);
        widgets_[b->objectName()] = b;
    }
    column->addStretch();
    commands->setFixedWidth(200);
    return commands;
}

QWidget* MainWindow::buildUsbPane(QWidget* parent) {
    auto* usbPane = new QGroupBox("Thumbdrive TAVRIN folder", parent);
    auto* usb = new QVBoxLayout(usbPane);
    txtUSBPath_ = pathBox("txtUSBPath", "This displays the Thumbdrive Tavrin Folder", usbPane);
    flbUSB_ = new FileListWidget("flbUSB", usbPane);
    usb->addWidget(txtUSBPath_);
    usb->addWidget(flbUSB_, 1);
    return usbPane;
}

// The drive and file information panels under the lists.
QLayout* MainWindow::buildInfoPanels(QWidget* parent) {
    auto* info = new QHBoxLayout;
    auto* driveCol = new QVBoxLayout;
    driveCol->addWidget(heading("lblDriveInfo", "DRIVE INFO:", parent));
    lblDriveInfoDisplay_ = infoPanel("lblDriveInfoDisplay", "DRIVE INFORMATION DISPLAY", parent);
    driveCol->addWidget(lblDriveInfoDisplay_);
    auto* fileCol = new QVBoxLayout;
    fileCol->addWidget(heading("lblFileInfo", "FILE INFO:", parent));
    lblFileInfoDisplay_ = infoPanel("lblFileInfoDisplay", "FILE INFORMATION DISPLAY", parent);
    fileCol->addWidget(lblFileInfoDisplay_);
    info->addLayout(driveCol, 1);
    info->addLayout(fileCol, 1);
    return info;
}

// Three status panels and the progress bar.
void MainWindow::buildStatusBar() {
    statusBar()->setObjectName("sbarMain");
    const int stretch[3] = {3, 2, 4};
    for (int i = 0; i < 3; ++i) {
        statusPanels_[i] = new QLabel(statusBar());
        statusPanels_[i]->setObjectName(arrayName("sbarMain", i + 1));
        statusPanels_[i]->setMinimumWidth(120);
        statusBar()->addWidget(statusPanels_[i], stretch[i]);
    }
    pbarMain_ = new QProgressBar(statusBar());
    pbarMain_->setObjectName("pbarMain");
    pbarMain_->setMaximumWidth(220);
    pbarMain_->hide();
    statusBar()->addPermanentWidget(pbarMain_);
}

}  // namespace tvk::ui
