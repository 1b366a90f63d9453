#pragma once

// The rules of the database window (Form3) that need no window: what its path pages show and
// store, which buttons are live, the lists it shows, and a go-between for the user that holds
// a job's messages until the job is over.

#include <array>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "builder/databaseops.h"
#include "core/userinterface.h"

namespace tessarin {

class AppContext;
class Messages;

// The path boxes Text1(0) to Text1(11): 0 to 9 stand for the data file elements 1 to 10, 10 is
// the box that Combo1's choices share, 11 the rom folder.
inline constexpr int kPathBoxCount = 12;
inline constexpr int kComboPathBox = 10;
inline constexpr int kRomPathBox = 11;
// Combo1's choices, which stand for the elements 11 to 17.
inline constexpr int kComboFirstElement = 11;
inline constexpr std::array<std::string_view, 7> kComboFiles = {
    "Alltime.ini", "Catlist.ini",    "Catver.ini", "Genre.ini",
    "Mature.ini",  "Resolution.ini", "Version.ini"};

// The paths shown on the two path pages while the window is open.
class DatabasePaths final {
 public:
  // The opening: the defaults of what lies on the disk, every stored "DataFile" n in its place,
  // and the rom folder from RomPath when that is set.
  void Load(AppContext& ctx);

  // What Text1(box) shows; box 10 shows the element of Combo1's choice.
  std::string BoxText(int box) const;
  // Text1(box) left with `text`: it goes to its element (box 10: the element of the choice).
  void LeaveBox(int box, const std::string& text);
  // A choice in Combo1 (0 to 6); the shared box then shows BoxText(kComboPathBox).
  void ChooseCombo(int choice);
  int ComboChoice() const { return m_combo; }

  // The rom folder picked with the folder chooser: kept with a final separator and written to
  // RomPath at once.
  void ChooseRomFolder(AppContext& ctx, const std::string& folder);

  // The closing buttons: elements 1 to 17 and the rom folder go to the settings.
  void Save(AppContext& ctx) const;

  const DataFilePaths& Elements() const { return m_elements; }
  const std::string& RomPath() const { return m_romPath; }

 private:
  DataFilePaths m_elements;
  std::string m_romPath;
  int m_combo = 0;
};

// The caption in front of Text1(box).
std::string PathBoxLabel(int box, const Messages& messages);
// The file chooser's filter of Text1(box) ("name|pattern|..."): the executable for box 0, dat
// files for 1 to 5, ini files for 6 to 10, each with all files.
std::string PathBoxFilter(int box, const Messages& messages);

// Buttons 1 to 3 of the update page (update from files, rom scan, selected updates) work on an
// existing database: live only while the index file exists.
bool UpdateButtonsEnabled(const std::string& appFolder);

// List1 of the selection page, in its fixed order: the twelve data files and message 45.
std::vector<std::string> SelectionEntries(const Messages& messages);
// Label5 after a selected update: one line per analyser that gave true.
std::string SelectedUpdateLabel(const UpdateReport& report);

// The update from files as its button does it: the update, then the index is written when
// there is a database in memory to write (a refused question or a missing database leaves the
// file alone). Gives UpdateFromFiles' result.
bool UpdateFromFilesAndSave(AppContext& ctx, Work& work);
// The rom scan as its button does it: the scan shown, then the index written, unless the scan
// couldn't run at all. Gives the number of marks made, or -1 when the scan didn't run.
int ScanRomsAndSave(AppContext& ctx, Work& work);

// Stands between a job and the user while the window runs the job on a worker thread:
// questions go through at once, messages wait until Release (so that none sits beside the
// working dialog), and the window can see afterwards which messages the job gave.
class HeldMessagesUi final : public UserInterface {
 public:
  struct Held {
    bool modeless;
    std::string text;
    std::string title;
    Icon icon;
  };
  explicit HeldMessagesUi(UserInterface& target) : m_target(target) {}

  void ShowMessage(bool modeless, const std::string& text, const std::string& title,
                   Icon icon) override;
  bool AskYesNo(const std::string& text, const std::string& title, Icon icon) override;
  std::string ChooseFile(const std::string& title, const std::string& startPath,
                         const std::string& filter, bool save) override;
  void OpenDocument(const std::string& pathOrAddress) override;

  // Shows the held messages through the target, in order, and forgets them.
  void Release();
  // Whether a message with this text was shown (held or released) since the start.
  bool Gave(const std::string& text) const;
  std::vector<Held> Given() const;

 private:
  UserInterface& m_target;
  mutable std::mutex m_mutex;
  std::vector<Held> m_held;
  std::vector<Held> m_given;
};

// Puts a user interface on the context for a scope and gives the old one back at its end.
class ScopedUi final {
 public:
  ScopedUi(AppContext& ctx, UserInterface& ui);
  ~ScopedUi();
  ScopedUi(const ScopedUi&) = delete;
  ScopedUi& operator=(const ScopedUi&) = delete;

 private:
  AppContext& m_ctx;
  UserInterface* m_previous;
};

}  // namespace tessarin
