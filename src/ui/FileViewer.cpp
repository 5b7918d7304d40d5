#include "ui/FileViewer.h"

#include <QFile>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

#include "organfiles/Cp1252.h"
#include "ui/QtText.h"

namespace tvk::ui {

namespace {

// Organ files hold Windows-1252 text among binary fields; controls show as a dot.
QString printable(const QByteArray& bytes) {
    QByteArray clean = bytes;
    for (auto& b : clean)
        if (static_cast<unsigned char>(b) < 0x20 || b == 0x7F) b = '.';
    return qs(cp1252ToUtf8(std::string_view(clean.constData(), clean.size())));
}

}  // namespace

QString FileViewer::textView(const QByteArray& bytes) {
    QString out;
    for (qsizetype i = 0; i < bytes.size(); i += 64) out += printable(bytes.mid(i, 64)) + "\n";
    return out;
}

QString FileViewer::hexView(const QByteArray& bytes) {
    QString out;
    for (qsizetype i = 0; i < bytes.size(); i += 16) {
        const QByteArray row = bytes.mid(i, 16);
        QString hex;
        for (qsizetype j = 0; j < 16; ++j)
            hex += j < row.size() ? QString("%1 ")
                                        .arg(static_cast<unsigned char>(row[j]), 2, 16, QChar('0'))
                                        .toUpper()
                                  : QString("   ");
        // Positions count from 1, as the organ file layout does.
        out += QString("%1  %2 %3\n").arg(i + 1, 6, 10, QChar('0')).arg(hex, printable(row));
    }
    return out;
}

void FileViewer::fillPositions(const QByteArray& bytes) {
    positions_->setRowCount(static_cast<int>(bytes.size()));
    for (int i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        const QString values[4] = {QString::number(i + 1),
                                   QString("%1").arg(b, 2, 16, QChar('0')).toUpper(),
                                   QString::number(b), printable(bytes.mid(i, 1))};
        for (int c = 0; c < 4; ++c) positions_->setItem(i, c, new QTableWidgetItem(values[c]));
    }
}

FileViewer::FileViewer(const std::filesystem::path& file, int recordLength, QWidget* parent)
    : QDialog(parent) {
    setObjectName("frmFileViewer");
    setAttribute(Qt::WA_DeleteOnClose);
    const QString name = qs(fileNameUtf8(file));
    const QString lengthText =
        recordLength > 0 ? " - Record Length=" + QString::number(recordLength) : QString();
    setWindowTitle("FILE VIEWER - " + name + lengthText);

    QFile in(qpath(file));
    QByteArray bytes;
    if (in.open(QIODevice::ReadOnly)) {
        bytes = in.read(kMaxBytes);
        loaded_ = true;
    } else {
        problem_ = "The file \"" + name + "\" could not be read: " + in.errorString();
    }

    auto* layout = new QVBoxLayout(this);
    auto* header = new QLabel(this);
    header->setObjectName("lblHeader");
    header->setText(loaded_ ? qpath(file) + lengthText + " - " + QString::number(in.size()) +
                                  " bytes" + (in.size() > kMaxBytes ? " (first 256 KB shown)" : "")
                            : problem_);
    header->setWordWrap(true);
    layout->addWidget(header);

    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    tabs_ = new QTabWidget(this);
    text_ = new QPlainTextEdit(textView(bytes), tabs_);
    hex_ = new QPlainTextEdit(hexView(bytes), tabs_);
    for (auto* view : {text_, hex_}) {
        view->setReadOnly(true);
        view->setFont(fixed);
        view->setLineWrapMode(QPlainTextEdit::NoWrap);
    }
    positions_ = new QTableWidget(0, 4, tabs_);
    positions_->setHorizontalHeaderLabels({"Byte Position", "Hex", "Decimal", "Character"});
    positions_->verticalHeader()->hide();
    positions_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    positions_->setFont(fixed);
    fillPositions(bytes);
    tabs_->addTab(text_, "Text");
    tabs_->addTab(hex_, "Hexadecimal");
    tabs_->addTab(positions_, "Byte Position");
    layout->addWidget(tabs_, 1);
    resize(720, 520);
}

}  // namespace tvk::ui
