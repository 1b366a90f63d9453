#pragma once

#include <array>
#include <string>

#include "lists/initools.h"
#include "widgets/formdialog.h"

class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace tessarin {

class AppContext;

// The INI set window (Form15): up to fifteen classification files out of the database, in one
// folder or each where the user puts it.
class IniSetDialog final : public FormDialog {
  Q_OBJECT
 public:
  IniSetDialog(QWidget* parent, AppContext& ctx);
  ~IniSetDialog() override;

  // Command2: writes every checked file.
  void Generate();
  // Command1(row); `answer` stands for the chooser's answer when not empty (a file for rows 0 to
  // 14, the unique folder for row 15).
  void BrowsePath(int row, const std::string& answer = {});
  void OpenLayouts();  // Command3
  IniSetOptions Options() const;

 private:
  void EnablePaths();
  void SaveState() override;

  AppContext& m_ctx;
  std::array<QCheckBox*, kIniSetFiles> m_checks{};
  std::array<QLineEdit*, kIniSetFiles + 1> m_paths{};
  std::array<QPushButton*, kIniSetFiles + 1> m_browse{};
  std::array<QRadioButton*, 2> m_destination{};
  std::array<QRadioButton*, 3> m_sort{};
};

// Opens the INI set window over `parent` (the search window's AtomicFE options).
void OpenIniSetDialog(QWidget* parent, AppContext& ctx);

}  // namespace tessarin
