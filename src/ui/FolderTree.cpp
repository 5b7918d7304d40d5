#include "ui/FolderTree.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QStyle>
#include <algorithm>

#include "app/PlainFiles.h"
#include "ui/QtText.h"

namespace tvk::ui {

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kFilledRole = Qt::UserRole + 1;

std::vector<std::filesystem::path> subfolders(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> found;
    std::error_code ec;
    std::filesystem::directory_iterator it(folder, ec), end;
    for (; !ec && it != end; it.increment(ec)) {
        std::error_code typeEc;
        if (it->is_directory(typeEc) && !isHiddenOrSystem(it->path())) found.push_back(it->path());
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return lessNoCase(fileNameUtf8(a), fileNameUtf8(b));
    });
    return found;
}

}  // namespace

FolderTree::FolderTree(QWidget* parent) : QTreeWidget(parent) {
    setObjectName("dirDocs");
    setHeaderHidden(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    connect(this, &QTreeWidget::itemExpanded, this,
            [this](QTreeWidgetItem* item) { fillChildren(item); });
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item) emit folderChosen(item->data(0, kPathRole).toString());
    });
}

QTreeWidgetItem* FolderTree::makeItem(const std::filesystem::path& folder, const QString& text) {
    auto* item = new QTreeWidgetItem(QStringList{text});
    item->setData(0, kPathRole, qpath(folder));
    item->setIcon(0, QApplication::style()->standardIcon(QStyle::SP_DirIcon));
    item->setChildIndicatorPolicy(subfolders(folder).empty() ? QTreeWidgetItem::DontShowIndicator
                                                             : QTreeWidgetItem::ShowIndicator);
    return item;
}

void FolderTree::fillChildren(QTreeWidgetItem* item) {
    if (item->data(0, kFilledRole).toBool()) return;
    item->setData(0, kFilledRole, true);
    for (const auto& sub : subfolders(upath(item->data(0, kPathRole).toString())))
        item->addChild(makeItem(sub, qs(fileNameUtf8(sub))));
}

void FolderTree::setRoot(const std::filesystem::path& root, const std::filesystem::path& current) {
    root_ = root;
    const QSignalBlocker quiet(this);
    clear();
    auto* top = makeItem(root, qpath(root));
    addTopLevelItem(top);
    fillChildren(top);
    top->setExpanded(true);
    setCurrentItem(top);
    if (!current.empty()) selectFolder(current);
}

void FolderTree::refresh() {
    const auto keep = currentFolder();
    setRoot(root_, keep);
}

bool FolderTree::showsFoldersAsTheyAre() const {
    std::vector<const QTreeWidgetItem*> open;
    for (int i = 0; i < topLevelItemCount(); ++i) open.push_back(topLevelItem(i));
    while (!open.empty()) {
        const QTreeWidgetItem* item = open.back();
        open.pop_back();
        if (!item->data(0, kFilledRole).toBool()) continue;
        const auto onDisk = subfolders(upath(item->data(0, kPathRole).toString()));
        if (onDisk.size() != static_cast<std::size_t>(item->childCount())) return false;
        for (int i = 0; i < item->childCount(); ++i) {
            if (upath(item->child(i)->data(0, kPathRole).toString()) != onDisk[i]) return false;
            open.push_back(item->child(i));
        }
    }
    return true;
}

std::filesystem::path FolderTree::currentFolder() const {
    const auto* item = currentItem();
    return item ? upath(item->data(0, kPathRole).toString()) : root_;
}

bool FolderTree::selectFolder(const std::filesystem::path& folder) {
    auto relative = folder.lexically_relative(root_);
    if (relative.empty() || *relative.begin() == "..") return false;
    QTreeWidgetItem* item = topLevelItem(0);
    for (const auto& part : relative) {
        if (part == ".") continue;
        fillChildren(item);
        QTreeWidgetItem* next = nullptr;
        for (int i = 0; i < item->childCount() && !next; ++i)
            if (upath(item->child(i)->data(0, kPathRole).toString()).filename() == part)
                next = item->child(i);
        if (!next) return false;
        item->setExpanded(true);
        item = next;
    }
    setCurrentItem(item);
    return true;
}

void FolderTree::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        emit escapePressed();
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

void FolderTree::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(kDragMime))
        event->acceptProposedAction();
    else
        event->ignore();
}

void FolderTree::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasFormat(kDragMime) && itemAt(event->position().toPoint()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void FolderTree::dropEvent(QDropEvent* event) {
    DraggedFiles files;
    auto* target = itemAt(event->position().toPoint());
    if (!target || !readDragData(event->mimeData(), files)) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    emit filesDropped(files, target->data(0, kPathRole).toString());
}

}  // namespace tvk::ui
