#include "ui/ByteModels.h"

#include "organfiles/Cp1252.h"
#include "ui/QtText.h"

namespace tvk::ui {

QChar byteCharacter(unsigned char byte) {
    if (byte < 0x20 || byte == 0x7F) return QChar('.');
    const char c = static_cast<char>(byte);
    const QString text = qs(cp1252ToUtf8(std::string_view(&c, 1)));
    return text.isEmpty() ? QChar('.') : text.front();
}

namespace {

QString hexByte(unsigned char b) {
    return QString("%1").arg(b, 2, 16, QChar('0')).toUpper();
}

}  // namespace

ByteTableModel::ByteTableModel(QByteArray bytes, Layout layout, QObject* parent)
    : QAbstractTableModel(parent),
      bytes_(std::move(bytes)),
      layout_(layout),
      headers_(layout == Layout::HexRows
                   ? QStringList{"Position", "Hexadecimal", "Text"}
                   : QStringList{"Byte Position", "Hex", "Decimal", "Character"}) {}

int ByteTableModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid()) return 0;
    return static_cast<int>(layout_ == Layout::HexRows
                                ? (bytes_.size() + kBytesPerHexRow - 1) / kBytesPerHexRow
                                : bytes_.size());
}

int ByteTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

QVariant ByteTableModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    return layout_ == Layout::HexRows ? hexRowCell(index.row(), index.column())
                                      : byteCell(index.row(), index.column());
}

QVariant ByteTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= headers_.size())
        return {};
    return headers_[section];
}

QString ByteTableModel::hexRowCell(int row, int column) const {
    const qsizetype start = static_cast<qsizetype>(row) * kBytesPerHexRow;
    const QByteArray bytes = bytes_.mid(start, kBytesPerHexRow);
    if (column == 0) return QString::number(start + 1);
    QStringList cells;
    QString text;
    for (char b : bytes) {
        cells << hexByte(static_cast<unsigned char>(b));
        text += byteCharacter(static_cast<unsigned char>(b));
    }
    return column == 1 ? cells.join(' ') : text;
}

QString ByteTableModel::byteCell(int row, int column) const {
    const auto b = static_cast<unsigned char>(bytes_[row]);
    switch (column) {
        case 0:
            return QString::number(row + 1);
        case 1:
            return hexByte(b);
        case 2:
            return QString::number(b);
        default:
            return QString(byteCharacter(b));
    }
}

}  // namespace tvk::ui
