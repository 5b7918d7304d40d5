#pragma once
// dirDocs: the library's folder tree. Folders load one level at a time as they are
// opened; Escape returns to the library root; files dropped on a folder are copied there.

#include <QTreeWidget>
#include <filesystem>

#include "ui/FileListWidget.h"

namespace tvk::ui {

class FolderTree : public QTreeWidget {
    Q_OBJECT
  public:
    explicit FolderTree(QWidget* parent = nullptr);

    // Shows the tree under `root` and selects `current` (or the root).
    void setRoot(const std::filesystem::path& root, const std::filesystem::path& current = {});
    // Rebuilds after folders changed, keeping the selected folder when it still exists.
    void refresh();
    // Whether every opened branch still lists exactly the subfolders on disk.
    bool showsFoldersAsTheyAre() const;
    std::filesystem::path currentFolder() const;
    bool selectFolder(const std::filesystem::path& folder);
    const std::filesystem::path& root() const { return root_; }

  signals:
    void folderChosen(const QString& folder);
    void escapePressed();
    void filesDropped(const DraggedFiles& files, const QString& destinationFolder);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    QTreeWidgetItem* makeItem(const std::filesystem::path& folder, const QString& text);
    void fillChildren(QTreeWidgetItem* item);
    std::filesystem::path root_;
};

}  // namespace tvk::ui
