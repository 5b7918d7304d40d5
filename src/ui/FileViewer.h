#pragma once
// frmFileViewer: one file as the organ shows it (presets and recordings), as text, as
// hexadecimal and byte by byte (positions from 1), with the record length of the organ
// family it belongs to. Close or Escape closes it.

#include <QDialog>
#include <filesystem>

class QTabWidget;

namespace tvk::ui {

class FileViewer : public QDialog {
    Q_OBJECT
  public:
    FileViewer(const std::filesystem::path& file, int recordLength, QWidget* parent = nullptr);

    // False when the file could not be read; problem() says why.
    bool loaded() const { return loaded_; }
    const QString& problem() const { return problem_; }

    // Shows at most this much; organ files are a few hundred kilobytes at most.
    static constexpr qsizetype kMaxBytes = 16 * 1024 * 1024;

    // A text file as it reads; in any other file the runs of text, one a line after
    // their byte position.
    static QString textView(const QByteArray& bytes);

  private:
    QWidget* organTab(const std::filesystem::path& file, const QByteArray& bytes);
    QTabWidget* tabs_ = nullptr;
    bool loaded_ = false;
    QString problem_;
};

}  // namespace tvk::ui
