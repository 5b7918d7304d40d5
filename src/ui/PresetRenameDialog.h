#pragma once
// frmPresetRename: edits a preset file's own name and its registration names, five bank
// rows of boxes, and commits them into the file.

#include <QDialog>
#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include "app/Context.h"
#include "organfiles/PresetNames.h"

class QBoxLayout;
class QCheckBox;
class QFont;
class QLayout;
class QLineEdit;

namespace tvk::ui {

class PresetRenameDialog : public QDialog {
    Q_OBJECT
  public:
    static constexpr int kBoxes = 55;  // buttons 0 to 10 of banks A to E

    // Form_Load: reads the file. When it cannot be edited its box has been shown and
    // loaded() is false.
    PresetRenameDialog(Context ctx, std::filesystem::path file, QWidget* parent = nullptr);
    bool loaded() const { return names_.has_value(); }
    bool changed() const { return changed_; }
    // The box of a button code ("A0", "E10"); hidden for the SU family's buttons 0.
    QLineEdit* nameBox(const QString& code) const;

    void btnReload_Click();
    void btnClear_Click();
    bool btnCommit_Click();

  public slots:
    // Form_Unload: asks about unsaved changes; the dialog stays open on Cancel.
    void reject() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QLayout* buildFileNameRow(const QFont& fixed);
    QLayout* buildNameGrid(const QFont& fixed);
    std::vector<QWidget*> addButtons(QBoxLayout* layout);
    bool load(std::string_view routineName);
    void showNames();
    void FileChanged(bool changed);
    // The boxes the family uses, in bank order.
    std::vector<QLineEdit*> usedBoxes() const;
    void moveFocus(QLineEdit* from, int step);

    Context ctx_;
    std::filesystem::path file_;
    std::optional<PresetNames> names_;
    QLineEdit* txtPresetFileName_ = nullptr;
    std::array<QLineEdit*, kBoxes> txtPresetName_{};
    QCheckBox* chkAutoSelect_ = nullptr;
    bool changed_ = false;
    bool filling_ = false;
};

}  // namespace tvk::ui
