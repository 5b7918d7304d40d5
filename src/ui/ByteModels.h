#pragma once
// The file viewer's hexadecimal and byte-position views as one model over the file's
// bytes, so a view draws only the rows on screen and a large file opens at once.

#include <QAbstractTableModel>
#include <QByteArray>

namespace tvk::ui {

// The character a byte stands for in Windows-1252; a dot for control bytes.
QChar byteCharacter(unsigned char byte);

class ByteTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum class Layout {
        HexRows,        // sixteen bytes a row: position (from 1), hexadecimal, text
        BytePositions,  // one byte a row: position (from 1), hexadecimal, decimal, character
    };
    static constexpr int kBytesPerHexRow = 16;

    ByteTableModel(QByteArray bytes, Layout layout, QObject* parent = nullptr);
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QString hexRowCell(int row, int column) const;
    QString byteCell(int row, int column) const;
    QByteArray bytes_;
    Layout layout_;
    QStringList headers_;
};

}  // namespace tvk::ui
