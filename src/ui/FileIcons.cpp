#include "ui/FileIcons.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <map>

#include "organfiles/OrganNames.h"

namespace tvk::ui {

namespace {

// A page with a folded corner, a coloured band and a one- or two-letter mark.
QIcon drawPage(QColor band, const QString& mark) {
    QIcon icon;
    for (int size : {16, 32}) {
        QPixmap pm(size, size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        const qreal s = size / 16.0;
        QPolygonF page({QPointF(2.5 * s, 0.5 * s), QPointF(10.5 * s, 0.5 * s),
                        QPointF(13.5 * s, 3.5 * s), QPointF(13.5 * s, 15.5 * s),
                        QPointF(2.5 * s, 15.5 * s)});
        p.setPen(QPen(QColor(90, 90, 90), s));
        p.setBrush(Qt::white);
        p.drawPolygon(page);
        p.setPen(Qt::NoPen);
        p.setBrush(band);
        p.drawRect(QRectF(3 * s, 7 * s, 10 * s, 8 * s));
        p.setPen(Qt::white);
        QFont f = QApplication::font();
        f.setBold(true);
        f.setPixelSize(static_cast<int>((mark.size() > 1 ? 5.5 : 7.5) * s));
        p.setFont(f);
        p.drawText(QRectF(3 * s, 7 * s, 10 * s, 8 * s), Qt::AlignCenter, mark);
        icon.addPixmap(pm);
    }
    return icon;
}

}  // namespace

FileKindIcon iconKindFor(const QString& fileName) {
    switch (kindByEnding(fileName.toStdString())) {
        case FileKind::Preset:
            return FileKindIcon::Preset;
        case FileKind::Recording:
            return FileKindIcon::Recording;
        case FileKind::Mp3:
            return FileKindIcon::Mp3;
        case FileKind::Midi:
            return FileKindIcon::Midi;
        case FileKind::Other:
            break;
    }
    return fileName.right(3).toUpper() == "PDF" ? FileKindIcon::Pdf : FileKindIcon::Other;
}

QIcon fileIcon(FileKindIcon kind) {
    static std::map<FileKindIcon, QIcon> cache;
    auto it = cache.find(kind);
    if (it != cache.end()) return it->second;
    QIcon icon;
    switch (kind) {
        case FileKindIcon::Preset:
            icon = drawPage(QColor(40, 90, 170), "P");
            break;
        case FileKindIcon::Recording:
            icon = drawPage(QColor(180, 50, 50), QString(QChar(0x266A)));
            break;
        case FileKindIcon::Mp3:
            icon = drawPage(QColor(30, 130, 70), "3");
            break;
        case FileKindIcon::Midi:
            icon = drawPage(QColor(120, 60, 150), "MI");
            break;
        case FileKindIcon::Pdf:
            icon = drawPage(QColor(200, 40, 40), "PDF");
            break;
        case FileKindIcon::Other:
            icon = QApplication::style()->standardIcon(QStyle::SP_FileIcon);
            break;
    }
    cache.emplace(kind, icon);
    return icon;
}

QIcon appIcon() {
    QIcon icon;
    for (int size : {16, 32, 64}) {
        QPixmap pm(size, size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        const qreal s = size / 32.0;
        // The stick's body and plug.
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(150, 150, 160));
        p.drawRect(QRectF(11 * s, 1 * s, 10 * s, 7 * s));
        p.setBrush(QColor(30, 70, 140));
        p.drawRoundedRect(QRectF(5 * s, 7 * s, 22 * s, 24 * s), 3 * s, 3 * s);
        // Five white keys with three black ones over them.
        p.setBrush(Qt::white);
        for (int k = 0; k < 5; ++k) p.drawRect(QRectF((8 + k * 3.3) * s, 15 * s, 3 * s, 12 * s));
        p.setBrush(Qt::black);
        for (int k : {0, 1, 3}) p.drawRect(QRectF((10.2 + k * 3.3) * s, 15 * s, 2 * s, 7 * s));
        icon.addPixmap(pm);
    }
    return icon;
}

}  // namespace tvk::ui
