#include "ui/ElidedText.h"

#include <QEvent>
#include <QHelpEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace tvk::ui {

void ElidedText::install(QLabel* label) {
    label->installEventFilter(new ElidedText(label));
}

QString ElidedText::shown(const QLabel* label) {
    const QRect room = label->contentsRect().adjusted(label->margin(), 0, -label->margin(), 0);
    return label->fontMetrics().elidedText(label->text(), Qt::ElideMiddle, room.width());
}

bool ElidedText::eventFilter(QObject* watched, QEvent* event) {
    auto* label = static_cast<QLabel*>(watched);
    if (event->type() == QEvent::Paint) {
        QPainter painter(label);
        const QRect room = label->contentsRect().adjusted(label->margin(), 0, -label->margin(), 0);
        label->style()->drawItemText(
            &painter, room, QStyle::visualAlignment(label->layoutDirection(), label->alignment()),
            label->palette(), label->isEnabled(), shown(label), label->foregroundRole());
        return true;
    }
    if (event->type() == QEvent::ToolTip) {
        const QString text = shown(label) == label->text() ? label->toolTip() : label->text();
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, label);
        return true;
    }
    return false;
}

}  // namespace tvk::ui
