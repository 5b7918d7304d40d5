#pragma once
// Windows colour values (0x00BBGGRR, as the settings keep them) and Qt colours.

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

}  // namespace tvk::ui
