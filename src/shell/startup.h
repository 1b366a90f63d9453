#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

class QLockFile;

namespace tessarin {

class AppContext;

// What a run of the desktop program holds beside the context: things that live for the run
// only and are never stored.
struct ShellSession {
  // 0 idle, 1 normal, 2 high; every run begins at normal.
  int PriorityChoice = 1;
};

// The single-instance guard: a lock file in the application folder. The lock is held until the
// object is destroyed. A second instance fails TryLock and must end without touching anything.
class InstanceLock final {
 public:
  explicit InstanceLock(const std::string& appFolder);
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  // True when this process now holds the lock; false when another instance holds it (or the
  // folder can't hold a lock file).
  bool TryLock();

 private:
  std::unique_ptr<QLockFile> m_lock;
};

// The name of the lock file inside the application folder.
inline constexpr std::string_view kInstanceLockName = "Tessarin.lock";

// The pieces of the start that belong to the windows or to other subsystems. Each may be empty:
// an empty step is skipped.
struct StartUpSteps {
  // First start only, modal: the language chooser (it sets LanguageNumber) and the path wizard.
  std::function<void()> ChooseLanguage;
  std::function<void()> RunPathWizard;
  // Reads the database when it exists.
  std::function<void()> LoadIndex;
  // Reads the site list (or writes it when missing).
  std::function<void()> LoadUrlList;
  // The bytes of a default skin archive by its file name; an empty view when the program
  // carries none.
  std::function<std::string_view(std::string_view name)> SkinResource;
};

enum class StartResult { Ready, TempFolderFailed };

// Set to 1 while the first-start dialogs run, 0 once they have ended.
inline constexpr std::string_view kFirstStartPendingKey = "FirstStartPending";

// The start of a run, after the single-instance test: deletes the old log, resets the priority
// choice, reads the settings, runs the first-start dialogs when there is no settings file, loads
// the messages, makes the folders, the temporary folder and the default skins, and loads the
// database and the site list. Gives TempFolderFailed when no temporary folder could be made:
// the caller shows the message and ends the program.
StartResult StartUp(AppContext& ctx, ShellSession& session, const StartUpSteps& steps);

// The language of a normal start: the key Language, and English when it is missing or -1.
int ReadLanguageKey(const AppContext& ctx);

// Creates Downloads, DataFiles and HTML, and writes HTML/help.htm when it is missing.
void MakeAppFolders(AppContext& ctx);

// Makes a fresh "tessarin" folder under `systemTemp` (the system's temporary folder when
// empty) and sets ctx.TempFolder; falls back to "Temp" in the application folder. Gives false
// when no folder could be made (ctx.TempFolder stays empty).
bool MakeTempFolder(AppContext& ctx, const std::string& systemTemp = {});

// Writes `bytes` to `folder`/`name` unless a file of that name exists (found without regard to
// case) or there are no bytes. Gives true when it wrote the file.
bool ExtractResourceIfMissing(const std::string& folder, std::string_view name,
                              std::string_view bytes);
// The two default skins into HTML/, each only when missing.
void ExtractSkinFR(AppContext& ctx, const StartUpSteps& steps);
void ExtractSkinEN(AppContext& ctx, const StartUpSteps& steps);

// The default help page, as the program carries it.
std::string_view DefaultHelpPage();

// The frame's place and state as the close sequence stores them.
struct FrameState {
  int Left = 0;
  int Top = 0;
  // 0 normal, 1 minimised, 2 maximised.
  int State = 0;
};

// The end of a run, after the search dialog has gone: writes Language, MDILeft, MDITop and
// MDIState, then deletes the temporary folder for good.
void CloseRun(AppContext& ctx, const FrameState& frame);

// The message shown when no temporary folder can be made: the path, then message 310.
std::string TempFolderFailureText(const AppContext& ctx);

}  // namespace tessarin
