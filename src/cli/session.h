#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "app/context.h"
#include "core/work.h"

namespace tessarin {

// Exit codes of tessarin-cli.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;  // the operation ran and did not succeed
inline constexpr int kExitUsage = 2;   // wrong arguments

class TerminalInterface;

// What every command shares: the application folder opened once, the terminal as the user
// interface, the long-job runner with its progress bar, and the error reports.
class CliSession final {
 public:
  CliSession(std::string home, bool yes, std::string executableFolder);
  ~CliSession();

  // The context of the application folder, opened on first use: settings read, messages
  // loaded in the stored language.
  AppContext& Ctx();
  bool Yes() const { return m_yes; }
  // The terminal's interface (the context's Ui() once opened).
  UserInterface& Ui();

  // Loads the index file when the store is empty. Prints why and gives false when there is no
  // database to load.
  bool EnsureLoaded();

  // Runs a long job on a worker thread while a progress bar (on a terminal) or the status texts
  // (otherwise) show its progress. The first Ctrl-C asks the job to stop through the Work, as the
  // working dialog's cancel button does. The cancel flag is cleared here, before the job starts.
  // An exception out of the job comes out of this call again (the command's boundary logs it).
  bool RunWithProgress(const std::function<bool()>& job);
  Work& CurrentWork() { return m_work; }

  // A line on standard error, with the progress bar out of the way.
  void Error(const std::string& text);
  // Text on standard output as it is (bytes), with a line end behind it.
  void Print(const std::string& text);

 private:
  std::string m_home;
  bool m_yes;
  std::string m_executableFolder;
  std::mutex m_screen;
  std::unique_ptr<TerminalInterface> m_ui;
  std::unique_ptr<AppContext> m_ctx;
  Work m_work;
};

// The table of commands. Each command file registers its subcommands with Add; the handler
// runs after parsing, inside the command line's failure boundary, with the session opened.
class CliRegistry final {
 public:
  explicit CliRegistry(CLI::App& app) : m_app(app) {}

  using Handler = std::function<int(CliSession&)>;
  // Adds a subcommand; bind its options to storage the handler captures (a shared_ptr).
  CLI::App* Add(const std::string& name, const std::string& description, Handler handler);

  CLI::App& App() { return m_app; }
  // The handler of the subcommand the user chose, or null.
  const Handler* Chosen() const;

 private:
  CLI::App& m_app;
  std::vector<std::pair<CLI::App*, Handler>> m_commands;
};

// The command groups, one file of src/cli each.
void RegisterDatabaseCommands(CliRegistry& registry);
void RegisterSettingsCommands(CliRegistry& registry);
void RegisterUpdateCommands(CliRegistry& registry);
void RegisterPageCommands(CliRegistry& registry);
void RegisterSheetCommands(CliRegistry& registry);
void RegisterTranslateCommands(CliRegistry& registry);
void RegisterListCommands(CliRegistry& registry);
void RegisterSearchCommands(CliRegistry& registry);
void RegisterImageCommands(CliRegistry& registry);
void RegisterToolCommands(CliRegistry& registry);
void RegisterSiteCommands(CliRegistry& registry);

}  // namespace tessarin
