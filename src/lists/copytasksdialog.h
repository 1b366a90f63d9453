#pragma once

#include <array>
#include <string>

#include "lists/copytasks.h"
#include "widgets/formdialog.h"

class QLineEdit;
class QPushButton;
class QRadioButton;

namespace tessarin {

class AppContext;

// The copy tasks window (Form22): two lists of rom names, and the source files of the names
// they share copied, moved or deleted. Controls: the "List of roms" frame Frame1 with
// Option1(0..2) and the paths Text1 (file), Text2 (folder), Text3 (its extension), Text4
// (subfolders) and their buttons Command1 to Command3; the "Compare list" frame Frame2 with
// Option3(0..2), Text5 to Text8 and Command4 to Command6; "Source files folder" Frame3 with
// Text9, Command7 and the extension Text10; "Destination folder" Frame4 with Text11 and
// Command8; "Action" Frame5 with Option2(0..2); Command9 "&Go", Command10 "&Cancel".
class CopyTasksDialog final : public FormDialog {
  Q_OBJECT
 public:
  CopyTasksDialog(QWidget* parent, AppContext& ctx);
  ~CopyTasksDialog() override;

  // Command9. `services` replaces the file copy and delete (tests); the defaults otherwise.
  void Go(const CopyTaskServices& services = {});
  // A "..." button: `field` is the path box it fills (Text1, Text2, Text4, Text5, Text6, Text8,
  // Text9 or Text11); `answer` stands for the chooser's answer when not empty.
  void BrowsePath(QLineEdit* field, const std::string& answer = {});
  CopyTaskOptions Options() const;

 private:
  struct ListControls {
    std::array<QRadioButton*, 3> kinds{};
    QLineEdit* file = nullptr;
    QLineEdit* folder = nullptr;
    QLineEdit* extension = nullptr;
    QLineEdit* subfolders = nullptr;
  };
  QWidget* MakeListFrame(const char* frameName, const QString& caption, const char* optionBase,
                         int firstText, int firstButton, ListControls& controls);
  QPushButton* MakeBrowse(QWidget* parent, int number, QLineEdit* field);
  void ShowList(const ListControls& controls, const NameListOrigin& origin);
  NameListOrigin ReadList(const ListControls& controls) const;
  QLineEdit* FieldOf(CopyTaskField field) const;
  void SaveState() override;

  AppContext& m_ctx;
  ListControls m_list;
  ListControls m_compare;
  QLineEdit* m_source;
  QLineEdit* m_sourceExtension;
  QLineEdit* m_destination;
  std::array<QRadioButton*, 3> m_actions{};
};

}  // namespace tessarin
