#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "widgets/formdialog.h"

class QCheckBox;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;

namespace tessarin {

class AppContext;
class ListDialog;

// What the HTML page hands to the site builder.
struct HtmlPageState {
  std::string skin;                 // Combo1
  std::string destination;          // Text2
  bool skipClones = false;          // Chk2
  bool onlyAvailable = false;       // Chk3
  bool copyImages = false;          // Chk4
  std::array<bool, 6> imageSets{};  // Chk5 to Chk10: titles, snaps, marquees, cabinets, panels,
                                    // flyers
  bool imagesOnline = false;        // Chk11
  bool searchIndex = false;         // ChkSearchIndex: the site's search page as well
};

// The work other dialogs do for this one. A button whose hook is empty is disabled.
struct ListDialogHooks {
  // The HTML page's builds: Command4 (all games, `useIniFile` false) and Command6 (`useIniFile`
  // true: asks for an INI file and loads its names into HtmlGameNames first).
  std::function<void(ListDialog& dialog, bool useIniFile)> buildHtml;
  // The text page's Scan Dir button: opens the folder scan dialog.
  std::function<void(ListDialog& dialog)> openFolderScan;
};

// The list dialog (Form7): a start page, the text-list page (fields, separator, quotation
// marks, an INI file of names, the DAT export) and the HTML page. Its logic is in textlists.h
// and datexport.h; the window keeps its settings and runs the jobs under the working dialog.
class ListDialog final : public FormDialog {
  Q_OBJECT
 public:
  ListDialog(QWidget* parent, AppContext& ctx, ListDialogHooks hooks = {});
  ~ListDialog() override;

  // Shows page 0 (start), 1 (text list) or 2 (HTML); the two others are hidden and disabled.
  void ShowPage(int page);
  int CurrentPage() const;

  // The buttons' actions, callable without a click.
  void BuildText();          // Command1
  void ExportDat();          // Command9
  void ChooseIniFile();      // Command7
  void ChooseDestination();  // Command3

  // The marks: clicking a mark or its label does the same.
  void ClickRadio(int index);
  void ToggleCheckBox(int number);  // 1 to 11
  bool CheckOn(int number) const;
  int SelectedRadio() const;  // -1 when none is on

  HtmlPageState HtmlState() const;
  // The rom names of an HTML build, from index 1; element 0 is empty.
  std::vector<std::string>& HtmlGameNames() { return m_htmlGameNames; }
  AppContext& Context() { return m_ctx; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildStartPage();
  void BuildTextPage();
  void BuildHtmlPage();
  void LoadSettings();
  void SaveState() override;
  void RedrawMarks();
  void SetCheck(int number, bool on);
  QLabel* MakeMark(QWidget* parent, const QString& name, bool radio);
  QLabel* MakeMarkText(QWidget* parent, const QString& name, const QString& text);

  AppContext& m_ctx;
  ListDialogHooks m_hooks;
  std::vector<std::string> m_htmlGameNames{std::string()};

  QStackedWidget* m_pages = nullptr;
  std::array<QFrame*, 3> m_frames{};
  // Text page.
  QListWidget* m_list1 = nullptr;
  std::array<QLabel*, 5> m_radio{};
  std::array<QLabel*, 5> m_radioText{};
  QLineEdit* m_text1 = nullptr;
  QLineEdit* m_text4 = nullptr;
  // Check marks 1 to 11 and their labels (index 0 unused).
  std::array<QLabel*, 12> m_check{};
  std::array<QLabel*, 12> m_checkText{};
  // HTML page.
  QComboBox* m_combo1 = nullptr;
  QLineEdit* m_text2 = nullptr;
  QPushButton* m_scanDir = nullptr;
  QPushButton* m_buildAll = nullptr;
  QPushButton* m_buildIni = nullptr;
  QCheckBox* m_searchIndex = nullptr;
};

}  // namespace tessarin
