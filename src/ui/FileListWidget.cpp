#include "ui/FileListWidget.h"

#include <QDataStream>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>

#include "app/PlainFiles.h"
#include "ui/FileIcons.h"
#include "ui/QtText.h"

namespace tvk::ui {

QMimeData* makeDragData(const DraggedFiles& files) {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << files.sourceList << files.sourceFolder << files.names;
    auto* data = new QMimeData;
    data->setData(kDragMime, bytes);
    return data;
}

bool readDragData(const QMimeData* data, DraggedFiles& files) {
    if (!data || !data->hasFormat(kDragMime)) return false;
    QDataStream in(data->data(kDragMime));
    in >> files.sourceList >> files.sourceFolder >> files.names;
    return in.status() == QDataStream::Ok && !files.names.isEmpty();
}

FileListWidget::FileListWidget(const QString& controlName, QWidget* parent) : QListWidget(parent) {
    setObjectName(controlName);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::CopyAction);
    setUniformItemSizes(true);  // keeps folders of thousands of files quick to draw
}

bool FileListWidget::showFolder(const std::filesystem::path& folder, const std::string& pattern) {
    folder_ = folder;
    problem_.clear();
    std::vector<std::string> names;
    try {
        names = listPlainFiles(folder, pattern);
    } catch (const std::exception& e) {
        problem_ = qs(e.what());
    }
    // A redraw is not the user's selection; the window resets the table itself.
    const QSignalBlocker quiet(this);
    setUpdatesEnabled(false);
    clear();
    for (const auto& name : names) {
        const QString text = qs(name);
        new QListWidgetItem(fileIcon(iconKindFor(text)), text, this);
    }
    setUpdatesEnabled(true);
    return problem_.isEmpty();
}

bool FileListWidget::showsFolderAsItIs(const std::string& pattern) const {
    std::vector<std::string> names;
    try {
        names = listPlainFiles(folder_, pattern);
    } catch (const std::exception&) {
        return !problem_.isEmpty();  // it says already that the folder cannot be read
    }
    if (!problem_.isEmpty() || names.size() != static_cast<std::size_t>(count())) return false;
    for (int row = 0; row < count(); ++row)
        if (us(item(row)->text()) != names[static_cast<std::size_t>(row)]) return false;
    return true;
}

void FileListWidget::clearFolder() {
    const QSignalBlocker quiet(this);
    folder_.clear();
    problem_.clear();
    clear();
}

std::vector<std::string> FileListWidget::selectedNames() const {
    std::vector<std::string> names;
    for (int row = 0; row < count(); ++row)
        if (item(row)->isSelected()) names.push_back(us(item(row)->text()));
    return names;
}

bool FileListWidget::selectName(const QString& name) {
    const auto found = findItems(name, Qt::MatchExactly);
    if (found.isEmpty()) return false;
    setCurrentItem(found.front());
    return true;
}

QStringList FileListWidget::mimeTypes() const {
    return {kDragMime};
}

QMimeData* FileListWidget::mimeData(const QList<QListWidgetItem*>&) const {
    DraggedFiles files{objectName(), qpath(folder_), {}};
    for (const auto& name : selectedNames()) files.names << qs(name);
    return makeDragData(files);
}

void FileListWidget::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(kDragMime) && !folder_.empty())
        event->acceptProposedAction();
    else
        event->ignore();
}

void FileListWidget::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasFormat(kDragMime) && !folder_.empty())
        event->acceptProposedAction();
    else
        event->ignore();
}

void FileListWidget::dropEvent(QDropEvent* event) {
    DraggedFiles files;
    if (folder_.empty() || !readDragData(event->mimeData(), files)) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    emit filesDropped(files, qpath(folder_));
}

void FileListWidget::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem()) {
        emit openRequested(currentItem());
        return;
    }
    QListWidget::keyPressEvent(event);
}

}  // namespace tvk::ui
