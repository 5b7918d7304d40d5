#pragma once
// Keeps a one-line label or path box readable when it is narrower than its text: the text
// is drawn elided in the middle (both ends stay, as a path's drive and file name do) and
// the whole text becomes its tooltip. text() stays the whole text. A path box that has
// the focus shows its whole text, to be scrolled and selected as usual.

#include <QObject>

class QLabel;
class QLineEdit;

namespace tvk::ui {

class ElidedText : public QObject {
    Q_OBJECT
  public:
    // Installs itself on the widget and lives as long as it.
    static void install(QLabel* label);
    static void install(QLineEdit* box);
    // What the widget shows at its present width.
    static QString shown(const QLabel* label);
    static QString shown(const QLineEdit* box);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    using QObject::QObject;
};

}  // namespace tvk::ui
