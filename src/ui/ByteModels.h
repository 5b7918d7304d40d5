#pragma once
// The file viewer's hexadecimal and byte-position views as models over the file's bytes,
// so a view draws only the rows on screen and a large file opens at once.

#include <QAbstractTableModel>
#include <QByteArray>

namespace tvk::ui {

// The character a byte stands for in Windows-1252; a dot for control bytes.
QChar byteCharacter(unsigned char byte);

// Sixteen bytes a row: position (from 1), the bytes in hexadecimal, the same as text.
class HexRowsModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    static constexpr int kBytesPerRow = 16;
    explicit HexRowsModel(QByteArray bytes, QObject* parent = nullptr);
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QByteArray bytes_;
};

// One row a byte: position (from 1), hexadecimal, decimal, character.
class BytePositionsModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    explicit BytePositionsModel(QByteArray bytes, QObject* parent = nullptr);
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QByteArray bytes_;
};

}  // namespace tvk::ui
