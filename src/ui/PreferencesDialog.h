#pragma once
// frmPreferences: the settings the user edits; OK applies them and writes "TVK.ini".

#include <QDialog>
#include <array>
#include <functional>
#include <optional>

#include "app/Context.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QRadioButton;

namespace tvk::ui {

class PreferencesDialog : public QDialog {
    Q_OBJECT
  public:
    // `applyListColors` repaints the main window's three lists from ctx.settings.
    PreferencesDialog(Context ctx, std::function<void()> applyListColors,
                      QWidget* parent = nullptr);

    // The colour chooser (cdbPrefs); replaceable so tests need no screen.
    std::function<std::optional<QColor>(const QColor& initial, const QString& title)> chooseColor;

    // Label 0 thumbdrive list, 1 computer file list, 2 folder list.
    QLabel* colorLabel(int index) const { return labels_[index]; }
    void pickColor(int index, bool fontColor);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QLayout* buildSeriesRow();
    QWidget* buildColorLabels();
    QWidget* buildNumberSequence();
    QLayout* buildButtons();
    void Form_Load();
    void btnOK_Click();
    void showLabelColors(int index);

    Context ctx_;
    std::function<void()> applyListColors_;
    QComboBox* cbxSeries_ = nullptr;
    std::array<QLabel*, 3> labels_{};
    std::array<std::uint32_t, 3> fore_{}, back_{};
    std::array<QRadioButton*, 2> optNumSeq_{};
    QCheckBox* chkAutoBackup_ = nullptr;
    QCheckBox* chkAutoSelect_ = nullptr;
    QCheckBox* chkWindowPosit_ = nullptr;
};

}  // namespace tvk::ui
