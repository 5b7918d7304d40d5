#pragma once
// One of the main window's file lists (flbDocs, flbUSB): the plain files of a folder that
// match a pattern, multi-select, with drag and drop between and within the lists.

#include <QListWidget>
#include <filesystem>
#include <string>
#include <vector>

namespace tvk::ui {

// What a drag carries between the window's lists.
struct DraggedFiles {
    QString sourceList;
    QString sourceFolder;
    QStringList names;
};
inline constexpr const char* kDragMime = "application/x-tavrin-files";
QMimeData* makeDragData(const DraggedFiles& files);
bool readDragData(const QMimeData* data, DraggedFiles& files);

class FileListWidget : public QListWidget {
    Q_OBJECT
  public:
    FileListWidget(const QString& controlName, QWidget* parent = nullptr);

    // Lists the folder's plain files matching the pattern. False (and an empty list)
    // when the folder cannot be read; the reason is in lastProblem().
    bool showFolder(const std::filesystem::path& folder, const std::string& pattern);
    void clearFolder();
    // Whether the list still holds exactly the folder's files matching `pattern`.
    bool showsFolderAsItIs(const std::string& pattern) const;
    const std::filesystem::path& folder() const { return folder_; }
    const QString& lastProblem() const { return problem_; }

    std::vector<std::string> selectedNames() const;  // in list order
    bool selectName(const QString& name);

  signals:
    // Return on an entry: the same as a double-click.
    void openRequested(QListWidgetItem* item);
    void filesDropped(const DraggedFiles& files, const QString& destinationFolder);

  protected:
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QList<QListWidgetItem*>& items) const override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction; }

  private:
    std::filesystem::path folder_;
    QString problem_;
};

}  // namespace tvk::ui
