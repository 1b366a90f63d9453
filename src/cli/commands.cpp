#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "app/context.h"
#include "core/log.h"

namespace tessarin {

int RunCli(int argc, char** argv, const std::string& executableFolder,
           const std::function<void(CliRegistry&)>& moreCommands) {
  CLI::App app{"tessarin-cli: builds, inspects and exports Tessarin's game database."};
  app.name("tessarin-cli");
  std::string home;
  bool yes = false;
  app.add_option("--home", home,
                 "Application folder (settings, DataFiles...); default: the program's folder "
                 "when writable, else ~/.local/share/tessarin");
  app.add_flag("-y,--yes", yes, "Answer yes to every question");
  app.set_version_flag("--version", "tessarin-cli " + AppVersion());
  app.require_subcommand(1, 1);
  // --home and --yes may also stand behind the command's name.
  app.fallthrough();

  CliRegistry registry(app);
  RegisterDatabaseCommands(registry);
  RegisterSettingsCommands(registry);
  RegisterUpdateCommands(registry);
  RegisterPageCommands(registry);
  RegisterSheetCommands(registry);
  RegisterTranslateCommands(registry);
  RegisterListCommands(registry);
  RegisterSearchCommands(registry);
  RegisterImageCommands(registry);
  RegisterToolCommands(registry);
  RegisterSiteCommands(registry);
  if (moreCommands) moreCommands(registry);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? kExitOk : kExitUsage;
  }
  const CliRegistry::Handler* handler = registry.Chosen();
  if (!handler) return kExitUsage;

  // The command line's failure boundary, as the desktop program's: whatever escapes a command
  // is logged through the tracker, told on standard error, and ends the run with status 1.
  CliSession session(home, yes, executableFolder);
  try {
    return (*handler)(session);
  } catch (...) {
    const FailureInfo failure = DescribeCurrentException();
    std::string logPath;
    try {
      AppContext& ctx = session.Ctx();
      ctx.log.LogError({});
      logPath = ctx.log.LogPath();
    } catch (...) {
      // No log to write to (the folder can't be opened): the terminal is all there is.
    }
    session.Error("Error " + std::to_string(failure.number) + ": " + failure.description +
                  (logPath.empty() ? std::string() : "\nSee " + logPath));
    return kExitFailed;
  }
}

}  // namespace tessarin
