#pragma once
// Small drawn icons for the file lists, one per kind of organ file.

#include <QIcon>
#include <QString>

namespace tvk::ui {

enum class FileKindIcon { Preset, Recording, Mp3, Midi, Pdf, Other };

FileKindIcon iconKindFor(const QString& fileName);
QIcon fileIcon(FileKindIcon kind);
// The program's own icon: a thumbdrive with the organ's keys.
QIcon appIcon();

}  // namespace tvk::ui
