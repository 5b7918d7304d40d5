#include "ui/FileViewer.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>

#include "organfiles/Cp1252.h"
#include "organfiles/OrganFile.h"
#include "organfiles/Registrations.h"
#include "ui/ByteModels.h"
#include "ui/QtText.h"

namespace tvk::ui {

namespace {

constexpr qsizetype kShortestRun = 3;
constexpr qsizetype kMaxTextView = 2 * 1024 * 1024;

bool isPrintable(unsigned char b) {
    return b >= 0x20 && b != 0x7F;
}

bool looksLikeText(const QByteArray& bytes) {
    return !bytes.contains('\0') && !bytes.contains("TAVRN");
}

QTableView* byteTable(QAbstractTableModel* model, QWidget* parent) {
    auto* view = new QTableView(parent);
    view->setModel(model);
    view->verticalHeader()->hide();
    // Fixed row heights and no word wrap keep a million rows as cheap as a hundred.
    view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 4);
    view->setWordWrap(false);
    view->horizontalHeader()->setStretchLastSection(true);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return view;
}

QString familyText(const OrganFileSummary& s) {
    if (!s.family) return "unknown";
    return QString(seriesCode(*s.family)) + " (" +
           (s.kind == FileKind::Recording ? "recording" : "preset") + ")";
}

}  // namespace

QString FileViewer::textView(const QByteArray& bytes) {
    if (looksLikeText(bytes))
        return qs(cp1252ToUtf8(std::string_view(bytes.constData(), bytes.size())));
    QString out;
    const qsizetype size = bytes.size();
    qsizetype i = 0;
    auto at = [&](qsizetype k) { return static_cast<unsigned char>(bytes[k]); };
    while (i < size && out.size() < kMaxTextView) {
        while (i < size && (!isPrintable(at(i)) || at(i) == ' ')) ++i;
        qsizetype end = i;
        while (end < size && isPrintable(at(end))) ++end;
        const QByteArray run = bytes.mid(i, end - i).trimmed();
        if (run.size() >= kShortestRun)
            out += QString("%1  %2\n")
                       .arg(i + 1, 8)
                       .arg(qs(cp1252ToUtf8(std::string_view(run.constData(), run.size()))));
        i = end;
    }
    return out;
}

QWidget* FileViewer::organTab(const std::filesystem::path& file, const QByteArray& bytes) {
    const OrganFileSummary s =
        summarizeOrganFile(fileNameUtf8(file), std::string_view(bytes.constData(), bytes.size()));
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* form = new QFormLayout;
    auto field = [&](const char* name, const QString& label, const QString& value) {
        auto* l = new QLabel(value, page);
        l->setObjectName(name);
        l->setTextInteractionFlags(Qt::TextSelectableByMouse);
        form->addRow(label, l);
    };
    field("lblBrandMark",
          "Brand mark:", s.hasMark ? QString(kBrandMark.data()) : "none - not written by an organ");
    field("lblVersion", "Format version:", s.version.empty() ? "unknown" : qs(s.version));
    field("lblFamily", "Organ series:", familyText(s));
    field("lblOrganName", "Name:", qs(s.name));
    layout->addLayout(form);

    if (!s.family) return page;
    // The panel as the organ has it: banks A to E down, the buttons across.
    const int across = buttonsPerBank(*s.family), first = *s.family == Series::SU ? 1 : 0;
    auto* grid = new QTableWidget(5, across, page);
    grid->setObjectName("tblRegistrations");
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (int n = 0; n < across; ++n)
        grid->setHorizontalHeaderItem(n, new QTableWidgetItem(QString::number(first + n)));
    for (int b = 0; b < 5; ++b)
        grid->setVerticalHeaderItem(b,
                                    new QTableWidgetItem(QString("Bank %1").arg(QChar('A' + b))));
    for (std::size_t i = 0; i < s.registrations.size(); ++i) {
        const Registration& r = s.registrations[i];
        auto* item = new QTableWidgetItem(qs(r.name));
        item->setToolTip(
            r.inFile
                ? QString("%1 at byte %2").arg(qs(r.button)).arg(r.position)
                : QString("%1: the file ends before byte %2").arg(qs(r.button)).arg(r.position));
        grid->setItem(static_cast<int>(i) / across, static_cast<int>(i) % across, item);
    }
    grid->resizeColumnsToContents();
    layout->addWidget(new QLabel("Registrations by bank and button:", page));
    layout->addWidget(grid, 1);
    return page;
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
                                  " bytes" + (in.size() > kMaxBytes ? " (first 16 MB shown)" : "")
                            : problem_);
    header->setWordWrap(true);
    layout->addWidget(header);

    tabs_ = new QTabWidget(this);
    const FileKind kind = fileKind(us(name));
    if (kind == FileKind::Preset || kind == FileKind::Recording)
        tabs_->addTab(organTab(file, bytes), "Organ file");
    auto* text = new QPlainTextEdit(textView(bytes), tabs_);
    text->setObjectName("txtText");
    text->setReadOnly(true);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    tabs_->addTab(text, "Text");
    auto* hex = byteTable(new ByteTableModel(bytes, ByteTableModel::Layout::HexRows, this), tabs_);
    hex->setObjectName("tblHex");
    hex->setColumnWidth(1, hex->fontMetrics().horizontalAdvance(QString(3 * 16, 'F')) + 12);
    tabs_->addTab(hex, "Hexadecimal");
    auto* positions =
        byteTable(new ByteTableModel(bytes, ByteTableModel::Layout::BytePositions, this), tabs_);
    positions->setObjectName("tblBytePositions");
    tabs_->addTab(positions, "Byte Position");
    layout->addWidget(tabs_, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setObjectName("btnClose");
    buttons->button(QDialogButtonBox::Close)->setToolTip("Closes the viewer (Escape)");
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(760, 540);
}

}  // namespace tvk::ui
