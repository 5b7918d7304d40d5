#pragma once
// Keeps a one-line label readable when it is narrower than its text: the text is drawn
// elided in the middle (both ends stay, as a path's drive and file name do) and the
// whole text becomes its tooltip. label->text() stays the whole text.

#include <QObject>

class QLabel;

namespace tvk::ui {

class ElidedText : public QObject {
    Q_OBJECT
  public:
    // Installs itself on `label` and lives as long as it.
    static void install(QLabel* label);
    // What the label shows at its present width.
    static QString shown(const QLabel* label);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    using QObject::QObject;
};

}  // namespace tvk::ui
