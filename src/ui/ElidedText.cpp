#include "ui/ElidedText.h"

#include <QEvent>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QToolTip>

namespace tvk::ui {

namespace {

QRect labelRoom(const QLabel* label) {
    return label->contentsRect().adjusted(label->margin(), 0, -label->margin(), 0);
}

QStyleOptionFrame boxFrame(const QLineEdit* box) {
    QStyleOptionFrame frame;
    frame.initFrom(box);
    frame.rect = box->rect();
    frame.lineWidth =
        box->hasFrame() ? box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &frame, box) : 0;
    frame.midLineWidth = 0;
    frame.state |= QStyle::State_Sunken;
    if (box->isReadOnly()) frame.state |= QStyle::State_ReadOnly;
    return frame;
}

QRect boxRoom(const QLineEdit* box) {
    const QStyleOptionFrame frame = boxFrame(box);
    // The same inner margin QLineEdit leaves around its text.
    return box->style()
        ->subElementRect(QStyle::SE_LineEditContents, &frame, box)
        .adjusted(2, 0, -2, 0);
}

void paintElided(QLineEdit* box) {
    QPainter painter(box);
    const QStyleOptionFrame frame = boxFrame(box);
    box->style()->drawPrimitive(QStyle::PE_PanelLineEdit, &frame, &painter, box);
    painter.setPen(box->palette().color(box->isEnabled() ? QPalette::Active : QPalette::Disabled,
                                        QPalette::Text));
    painter.drawText(boxRoom(box), Qt::AlignVCenter | Qt::AlignLeft, ElidedText::shown(box));
}

bool showWholeText(QWidget* widget, const QString& shown, const QString& whole, QEvent* event) {
    const QString text = shown == whole ? widget->toolTip() : whole;
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, widget);
    return true;
}

}  // namespace

void ElidedText::install(QLabel* label) {
    label->installEventFilter(new ElidedText(label));
}

void ElidedText::install(QLineEdit* box) {
    box->installEventFilter(new ElidedText(box));
}

QString ElidedText::shown(const QLabel* label) {
    return label->fontMetrics().elidedText(label->text(), Qt::ElideMiddle,
                                           labelRoom(label).width());
}

QString ElidedText::shown(const QLineEdit* box) {
    if (box->hasFocus()) return box->text();
    return box->fontMetrics().elidedText(box->text(), Qt::ElideMiddle, boxRoom(box).width());
}

bool ElidedText::eventFilter(QObject* watched, QEvent* event) {
    if (auto* box = qobject_cast<QLineEdit*>(watched)) {
        const QString shownText = shown(box);
        if (event->type() == QEvent::Paint && shownText != box->text()) {
            paintElided(box);
            return true;
        }
        if (event->type() == QEvent::ToolTip)
            return showWholeText(box, shownText, box->text(), event);
        return false;
    }
    auto* label = static_cast<QLabel*>(watched);
    if (event->type() == QEvent::Paint) {
        QPainter painter(label);
        label->style()->drawItemText(
            &painter, labelRoom(label),
            QStyle::visualAlignment(label->layoutDirection(), label->alignment()), label->palette(),
            label->isEnabled(), shown(label), label->foregroundRole());
        return true;
    }
    if (event->type() == QEvent::ToolTip)
        return showWholeText(label, shown(label), label->text(), event);
    return false;
}

}  // namespace tvk::ui
