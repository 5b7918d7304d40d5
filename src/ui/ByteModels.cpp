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

QVariant header(int section, Qt::Orientation orientation, int role,
                std::initializer_list<const char*> titles) {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= static_cast<int>(titles.size()))
        return {};
    return QString(titles.begin()[section]);
}

}  // namespace

HexRowsModel::HexRowsModel(QByteArray bytes, QObject* parent)
    : QAbstractTableModel(parent), bytes_(std::move(bytes)) {}

int HexRowsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0
                            : static_cast<int>((bytes_.size() + kBytesPerRow - 1) / kBytesPerRow);
}

int HexRowsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 3;
}

QVariant HexRowsModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    const qsizetype start = static_cast<qsizetype>(index.row()) * kBytesPerRow;
    const QByteArray row = bytes_.mid(start, kBytesPerRow);
    switch (index.column()) {
        case 0:
            return QString::number(start + 1);
        case 1: {
            QStringList hex;
            for (char b : row) hex << hexByte(static_cast<unsigned char>(b));
            return hex.join(' ');
        }
        default: {
            QString text;
            for (char b : row) text += byteCharacter(static_cast<unsigned char>(b));
            return text;
        }
    }
}

QVariant HexRowsModel::headerData(int section, Qt::Orientation o, int role) const {
    return header(section, o, role, {"Position", "Hexadecimal", "Text"});
}

BytePositionsModel::BytePositionsModel(QByteArray bytes, QObject* parent)
    : QAbstractTableModel(parent), bytes_(std::move(bytes)) {}

int BytePositionsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(bytes_.size());
}

int BytePositionsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 4;
}

QVariant BytePositionsModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    const auto b = static_cast<unsigned char>(bytes_[index.row()]);
    switch (index.column()) {
        case 0:
            return QString::number(index.row() + 1);
        case 1:
            return hexByte(b);
        case 2:
            return QString::number(b);
        default:
            return QString(byteCharacter(b));
    }
}

QVariant BytePositionsModel::headerData(int section, Qt::Orientation o, int role) const {
    return header(section, o, role, {"Byte Position", "Hex", "Decimal", "Character"});
}

}  // namespace tvk::ui
