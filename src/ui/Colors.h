#pragma once
// Windows colour values (0x00BBGGRR, as the settings keep them) and Qt colours.

#include <QAbstractItemView>
#include <QColor>
#include <QWidget>
#include <cstdint>

namespace tvk::ui {

inline QColor fromColorRef(std::uint32_t c) {
    return QColor(static_cast<int>(c & 0xFF), static_cast<int>((c >> 8) & 0xFF),
                  static_cast<int>((c >> 16) & 0xFF));
}
inline std::uint32_t toColorRef(const QColor& c) {
    return static_cast<std::uint32_t>(c.red()) | (static_cast<std::uint32_t>(c.green()) << 8) |
           (static_cast<std::uint32_t>(c.blue()) << 16);
}

// Text and background of a list or label.
inline void applyColors(QWidget* w, std::uint32_t fore, std::uint32_t back) {
    QPalette p = w->palette();
    for (auto role : {QPalette::Base, QPalette::Window}) p.setColor(role, fromColorRef(back));
    for (auto role : {QPalette::Text, QPalette::WindowText}) p.setColor(role, fromColorRef(fore));
    w->setAutoFillBackground(true);
    w->setPalette(p);
}

// A focused list shows a border in the highlight colour.
inline const QString kListFocusRule =
    QStringLiteral("QAbstractItemView:focus { border: 2px solid palette(highlight); }");

// A list's text and background. The list carries a style sheet (its focus border), and a
// style sheet paints the background itself, so the colours go into the sheet too.
inline void paintList(QAbstractItemView* view, std::uint32_t fore, std::uint32_t back) {
    applyColors(view, fore, back);
    view->setStyleSheet(QStringLiteral("QAbstractItemView { color: %1; background-color: %2; } ")
                            .arg(fromColorRef(fore).name(), fromColorRef(back).name()) +
                        kListFocusRule);
}

}  // namespace tvk::ui
