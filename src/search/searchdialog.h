#pragma once

#include <QAbstractListModel>
#include <QComboBox>
#include <QDialog>
#include <functional>
#include <string>
#include <vector>

#include "search/searchengine.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QRadioButton;
class QToolButton;

namespace tessarin {

class AppContext;
struct UrlTables;

// The result list's lines as a model: bytes kept as they are, decoded only for the rows on
// screen, so 40,000 lines fill and scroll at once.
class ResultListModel final : public QAbstractListModel {
 public:
  explicit ResultListModel(QObject* parent) : QAbstractListModel(parent) {}
  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  const std::vector<std::string>& Lines() const { return m_lines; }
  void SetLines(std::vector<std::string> lines);

 private:
  std::vector<std::string> m_lines;
};

// A jump box that fills itself the first time its list drops down.
class JumpComboBox final : public QComboBox {
 public:
  explicit JumpComboBox(QWidget* parent) : QComboBox(parent) {}
  std::function<void()> BeforePopup;
  void showPopup() override;
};

// What other parts of the program lend the search dialog: the game sheet and the AtomicFE
// options. The frame sets them; an action whose piece is missing stays disabled.
struct SearchDialogHooks {
  // Opens a new game sheet for the rom (an empty name gives an empty sheet), without blocking.
  std::function<void(QWidget* parent, AppContext& ctx, const std::string& romName)> OpenGameSheet;
  std::function<void(QWidget* parent, AppContext& ctx)> OpenAtomicFeOptions;
};
SearchDialogHooks& SearchDialogHookTable();

// The search dialog (Form6): the sixteen criteria, Find, and every action on the result list.
// The work is done by searchengine.h, resultactions.h and foundpage.h; this window gathers the
// choices and shows the results. While SearchMayClose is false a close only hides it, so that
// its lists and results stay for the next opening.
class SearchDialog final : public QDialog {
  Q_OBJECT
 public:
  // `sites` may be null (no site list: the two built-in search sites are used).
  SearchDialog(QWidget* parent, AppContext& ctx, UrlTables* sites);
  ~SearchDialog() override;
  // The dialog as the frame opens it, with the frame's panel to show while it is hidden.
  static SearchDialog* Create(QWidget* parent, AppContext& ctx, UrlTables* sites,
                              std::function<void()> showPanel, std::function<void()> hidePanel);

  // The frame's panel: shown when the dialog hides, taken away when it shows again.
  std::function<void()> ShowPanel;
  std::function<void()> HidePanel;
  // The folder chooser and the text box of Make INI; tests put their own answers here.
  std::function<std::string(const std::string& title)> ChooseFolder;
  std::function<std::string(const std::string& prompt, const std::string& title,
                            const std::string& defaultText)>
      AskText;

  // The actions, callable without a click.
  void RunSearch();  // Command1
  void Show();       // Command2, double click
  // The game sheet of a rom, or its HTML page while Chk1 is on.
  void ShowGameFromList(const std::string& romName);
  void DeleteRoms();         // Command3
  void MoveRoms();           // Command4
  void CopyRoms();           // Command5
  void MakeIni();            // Command6
  void JumpByRom();          // Command8
  void JumpByTitle();        // Command9
  void SwapJumpBoxes();      // Command10
  void SearchOnline();       // Command11
  void DownloadImages();     // Command12
  void AddList();            // Command13
  void WithdrawList();       // Command14
  void RunTiny();            // Command15
  void ClearList();          // Command16
  void CopyToClipboard();    // Image1
  void SaveTextFile();       // Image2
  void SortList(int radio);  // Radio(0) roms, Radio(1) titles
  void FillJumpBoxes();

  const std::vector<std::string>& Lines() const { return m_model->Lines(); }
  const SearchLists& Lists() const { return m_lists; }
  // The rows selected in List1, ascending.
  std::vector<int> SelectedRows() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void reject() override;
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Unload();
  void LoadLists();
  void SetCheck(QCheckBox* box, bool on);
  void FollowHtmlCheck();
  void SetResultButtons(bool enabled);
  SearchForm ReadForm() const;
  std::vector<std::string> PickedLines() const;
  // The focused line's rom and title; empty when there is none or it is message 334.
  bool FocusedGame(std::string& rom, std::string& title) const;
  bool CopyListedRoms(const std::vector<std::string>& names);
  void ChangeList(bool add);
  void SetLines(std::vector<std::string> lines);
  void UpdateCount();

  AppContext& m_ctx;
  UrlTables* m_sites;
  std::vector<std::string> m_engines;
  SearchLists m_lists;
  bool m_jumpFilled = false;
  bool m_unloaded = false;

  QLineEdit* m_keyword;
  QComboBox* m_combo[21] = {};
  ResultListModel* m_model;
  QListView* m_list;
  QLabel* m_count;
  QPushButton* m_command[17] = {};
  QToolButton* m_image[4] = {};
  QCheckBox* m_html;
  QLabel* m_htmlLabel;
  QCheckBox* m_online;
  QLabel* m_onlineLabel;
  QRadioButton* m_radio[2] = {};
  QLabel* m_radioLabel[2] = {};
  QLabel* m_romLabel;
  QLabel* m_titleLabel;
};

}  // namespace tessarin
