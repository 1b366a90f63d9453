#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "core/log.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/userinterface.h"
#include "core/version.h"
#include "store/gamerecord.h"

namespace tessarin {

// Everything a run of Tessarin holds: the settings, the messages, the log and the game store,
// for one application folder. Routines take the context (or the parts of it they need); there
// are no globals, so tests make as many contexts as they like.
class AppContext final {
 public:
  // `appFolder` gets a final separator. The settings file is not read yet (InfLoad).
  explicit AppContext(const std::string& appFolder);

  const std::string& AppFolder() const { return m_appFolder; }

  Log log;
  Settings settings;
  Messages messages;
  GameStore store;

  // The run's temporary folder, with a final separator; empty until start-up makes it.
  std::string TempFolder;
  bool FirstRun = false;
  bool SearchMayClose = false;

  // The front end; a quiet one that answers "no" until a front end sets its own.
  UserInterface& Ui() const { return *m_ui; }
  void SetUi(UserInterface* ui);

 private:
  std::string m_appFolder;
  UserInterface* m_ui;
};

// How long a temporary file of ours must have lain untouched before a start deletes it: a
// writer still at work (another instance, the command line) touches its file all the time.
inline constexpr std::chrono::seconds kStaleTempAge{600};
// Deletes what a killed run left of its temporary files in the application folder and in
// DataFiles (see RemoveStaleTempFiles). Called once at the start of a run.
void RemoveStaleTempFilesOfRun(const std::string& appFolder);

// True when a file can be made in `folder` (which must exist).
bool FolderIsWritable(const std::string& folder);

// The application folder: `homeArgument` when given, else the executable's folder when it can
// be written to (a portable install), else the user's data folder. With a final separator.
std::string ResolveAppFolder(const std::string& homeArgument, const std::string& executableFolder);

}  // namespace tessarin
