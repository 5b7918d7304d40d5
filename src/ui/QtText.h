#pragma once
// Conversions between the core's UTF-8 strings and paths and Qt's strings.

#include <QString>
#include <filesystem>
#include <string>

#include "app/Text.h"

namespace tvk::ui {

inline QString qs(const std::string& utf8) {
    return QString::fromUtf8(utf8.data(), utf8.size());
}
inline std::string us(const QString& text) {
    return text.toUtf8().toStdString();
}
inline QString qpath(const std::filesystem::path& p) {
    return qs(pathToUtf8(p));
}
inline std::filesystem::path upath(const QString& text) {
    return pathFromUtf8(us(text));
}

}  // namespace tvk::ui
