#pragma once
// frmFileViewer: one file as text, as hexadecimal and byte by byte (positions from 1),
// with the record length of the organ family it belongs to.

#include <QDialog>
#include <filesystem>

class QTabWidget;
class QPlainTextEdit;
class QTableWidget;

namespace tvk::ui {

class FileViewer : public QDialog {
    Q_OBJECT
  public:
    FileViewer(const std::filesystem::path& file, int recordLength, QWidget* parent = nullptr);

    // False when the file could not be read; problem() says why.
    bool loaded() const { return loaded_; }
    const QString& problem() const { return problem_; }

    // Shows at most this much; organ files are a few hundred bytes.
    static constexpr qsizetype kMaxBytes = 256 * 1024;

    static QString textView(const QByteArray& bytes);
    static QString hexView(const QByteArray& bytes);

  private:
    void fillPositions(const QByteArray& bytes);
    QTabWidget* tabs_ = nullptr;
    QPlainTextEdit* text_ = nullptr;
    QPlainTextEdit* hex_ = nullptr;
    QTableWidget* positions_ = nullptr;
    bool loaded_ = false;
    QString problem_;
};

}  // namespace tvk::ui
