#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <future>
#include <iostream>
#include <mutex>
#include <thread>

#include "builder/databaseops.h"
#include "cli/terminal.h"
#include "core/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

// The command line's way of speaking to the user: messages on the terminal, questions answered
// on the terminal, or by --yes, or "no" when no one can answer.
class TerminalInterface final : public UserInterface {
 public:
  TerminalInterface(bool yes, std::mutex& screen) : m_yes(yes), m_screen(screen) {}

  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    std::lock_guard lock(m_screen);
    ClearBarLine();
    std::FILE* out = (icon == Icon::Stop || icon == Icon::Warning) ? stderr : stdout;
    std::string shown = WithLineBreaks(text.empty() ? std::string("Done.") : text);
    if (!title.empty() && icon != Icon::Information) shown = WithLineBreaks(title) + ": " + shown;
    std::fprintf(out, "%s\n", shown.c_str());
    std::fflush(out);
  }

  bool AskYesNo(const std::string& text, const std::string& title, Icon) override {
    std::lock_guard lock(m_screen);
    ClearBarLine();
    const std::string question = WithLineBreaks(text);
    if (m_yes) {
      std::fprintf(stderr, "%s\n-> yes (--yes)\n", question.c_str());
      return true;
    }
    if (!IsTerminal(stdin)) {
      std::fprintf(stderr, "%s\n-> no (no terminal to ask on; give --yes to answer yes)\n",
                   question.c_str());
      return false;
    }
    std::fprintf(stderr, "%s%s%s [y/N] ", title.empty() ? "" : WithLineBreaks(title).c_str(),
                 title.empty() ? "" : "\n", question.c_str());
    std::fflush(stderr);
    std::string answer;
    std::getline(std::cin, answer);
    return !answer.empty() && (answer[0] == 'y' || answer[0] == 'Y');
  }

  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }

  void OpenDocument(const std::string& pathOrAddress) override {
    std::lock_guard lock(m_screen);
    ClearBarLine();
    std::printf("%s\n", pathOrAddress.c_str());
  }

  // Set while a progress bar holds the current terminal line.
  bool barShown = false;

 private:
  void ClearBarLine() {
    if (barShown) {
      std::fprintf(stderr, "\r\033[K");
      barShown = false;
    }
  }

  bool m_yes;
  std::mutex& m_screen;
};

struct CliState {
  std::string home;
  bool yes = false;
};

// Runs a long job on a worker thread and shows its progress meanwhile: a bar redrawn in place
// on a terminal, the status texts as plain lines otherwise.
template <class Job>
bool RunWithProgress(Work& work, TerminalInterface& ui, std::mutex& screen, Job job) {
  CatchInterrupt();
  auto result = std::async(std::launch::async, job);
  const bool bar = IsTerminal(stderr);
  std::string lastStatus;
  while (result.wait_for(std::chrono::milliseconds(bar ? 150 : 250)) != std::future_status::ready) {
    // Ctrl-C asks the job to stop at its next check, as the working dialog's cancel button does.
    if (InterruptRequested()) work.CancelRequested = true;
    std::lock_guard lock(screen);
    const std::string status = work.Status();
    if (bar) {
      const int percent = work.Percent();
      constexpr int kWidth = 30;
      const int filled = percent * kWidth / 100;
      std::string line = "\r[" + std::string(static_cast<size_t>(filled), '#') +
                         std::string(static_cast<size_t>(kWidth - filled), '.') + "] " +
                         std::to_string(percent) + "% " + status.substr(0, 60);
      std::fprintf(stderr, "%s\033[K", line.c_str());
      std::fflush(stderr);
      ui.barShown = true;
    } else if (status != lastStatus && !status.empty()) {
      std::fprintf(stderr, "%s\n", status.c_str());
      lastStatus = status;
    }
  }
  {
    std::lock_guard lock(screen);
    if (ui.barShown) {
      std::fprintf(stderr, "\r\033[K");
      ui.barShown = false;
    }
  }
  return result.get();
}

bool EnsureLoaded(AppContext& ctx) {
  if (ctx.store.GameCount() > 0) return true;
  const std::string path = IndexFilePath(ctx.AppFolder());
  if (!FileExists(path)) {
    std::fprintf(stderr, "%s\n%s\n", ctx.messages.Lng(28).c_str(), path.c_str());
    return false;
  }
  if (!LoadIndex(ctx.store, ctx.log, path)) {
    std::fprintf(stderr, "%s\n", ctx.messages.Lng(331).c_str());
    return false;
  }
  return true;
}

const std::array<std::pair<const char*, UpdateEntry>, kUpdateEntryCount> kKinds = {{
    {"catlist", UpdateEntry::Catlist},
    {"catver", UpdateEntry::Catver},
    {"cheat", UpdateEntry::Cheat},
    {"command", UpdateEntry::Command},
    {"hiscore", UpdateEntry::Hiscore},
    {"history", UpdateEntry::History},
    {"mameinfo", UpdateEntry::Mameinfo},
    {"mature", UpdateEntry::Mature},
    {"multiplayer", UpdateEntry::Multiplayer},
    {"nplayers", UpdateEntry::NPlayers},
    {"version", UpdateEntry::Version},
    {"wizsort", UpdateEntry::Wizsort},
    {"roms", UpdateEntry::Roms},
}};

}  // namespace

int RunCli(int argc, char** argv, const std::string& executableFolder) {
  CLI::App app{"tessarin-cli: builds and inspects Tessarin's game database."};
  app.name("tessarin-cli");
  CliState state;
  app.add_option("--home", state.home,
                 "Application folder (settings, DataFiles...); default: the program's folder "
                 "when writable, else ~/.local/share/tessarin");
  app.add_flag("-y,--yes", state.yes, "Answer yes to every question");
  app.require_subcommand(1, 1);

  std::string emulator, dump;
  CLI::App* build = app.add_subcommand(
      "build",
      "Complete creation of the database: run the emulator (or read --dump), build, "
      "scan the roms, save the index");
  build->add_option("--emulator", emulator, "The emulator to run (kept as DataFile1)");
  build
      ->add_option("--dump", dump,
                   "An existing -listxml or -listinfo output to use instead of running the "
                   "emulator for its list; it is copied to the dump's place")
      ->check(CLI::ExistingFile);
  bool linkDump = false;
  build->add_flag("--link", linkDump,
                  "Give the --dump file a second name in the data folder instead of copying it "
                  "(same file system only; don't rewrite the original in place afterwards)");

  std::vector<std::string> kinds;
  CLI::App* update =
      app.add_subcommand("update",
                         "Update the database from the data files; with KINDs, only those (in the "
                         "fixed order catlist catver cheat command hiscore history mameinfo mature "
                         "multiplayer nplayers version wizsort roms)");
  std::vector<std::string> kindNames;
  for (const auto& [name, entry] : kKinds) kindNames.emplace_back(name);
  update->add_option("KIND", kinds, "Data files to use")->check(CLI::IsMember(kindNames));

  std::string romPath;
  CLI::App* scan =
      app.add_subcommand("scan-roms", "Mark the games whose roms are in the rom folder");
  scan->add_option("--rom-path", romPath, "The rom folder (kept as RomPath)")
      ->check(CLI::ExistingDirectory);

  CLI::App* info = app.add_subcommand("info", "Show the database's version, counts and tables");

  std::string recordName;
  CLI::App* record = app.add_subcommand("record", "Print a game's record as the index holds it");
  record->add_option("NAME", recordName, "Rom name")->required();

  std::string tableName;
  CLI::App* table = app.add_subcommand(
      "table",
      "Print a code table, one entry a line with its index (Manufacturer, Year, "
      "Orientation, Buttons, Controls, Status, Genre, Category, VerAdded, Bios, Driver, "
      "nPlayers, Savestate)");
  table->add_option("NAME", tableName, "Section title without brackets")->required();

  std::string key, value;
  CLI::App* get = app.add_subcommand("get", "Print a setting (-1 when it isn't set)");
  get->add_option("KEY", key, "Settings key")->required();
  CLI::App* set = app.add_subcommand("set", "Write a setting");
  set->add_option("KEY", key, "Settings key")->required();
  set->add_option("VALUE", value, "Value")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? kExitOk : kExitUsage;
  }

  AppContext ctx(ResolveAppFolder(state.home, executableFolder));
  std::mutex screen;
  TerminalInterface ui(state.yes, screen);
  ctx.SetUi(&ui);
  ctx.settings.InfLoad();
  const int language = ctx.settings.InfReadNumber("Language");
  ctx.messages.LanguageNumber = language == -1 ? Messages::kEnglish : language;
  ctx.messages.LoadMessages();
  Work work;

  if (*build) {
    if (!emulator.empty()) {
      if (!FileExists(emulator)) {
        std::fprintf(stderr, "No emulator at %s\n", emulator.c_str());
        return kExitUsage;
      }
      ctx.settings.InfWrite("Datafile1", emulator);
    }
    // The default paths also fill in the emulator when none was ever chosen.
    const DataFilePaths paths = LoadDataFilePaths(ctx);
    if (ctx.settings.InfRead("DataFile1") == "-1" && !paths[1].empty()) {
      ctx.settings.InfWrite("Datafile1", paths[1]);
    }
    const bool ok = RunWithProgress(work, ui, screen,
                                    [&] { return CreateDatabase(ctx, work, dump, linkDump); });
    if (ok) {
      std::printf("%d games written to %s\n", ctx.store.GameCount(),
                  IndexFilePath(ctx.AppFolder()).c_str());
    }
    return ok ? kExitOk : kExitFailed;
  }

  if (*update) {
    if (kinds.empty()) {
      const bool ok = RunWithProgress(work, ui, screen, [&] {
        if (!UpdateFromFiles(ctx, work)) return false;
        return SaveIndex(ctx.store, ctx.log, &work, IndexFilePath(ctx.AppFolder()));
      });
      return ok ? kExitOk : kExitFailed;
    }
    std::array<bool, kUpdateEntryCount> checked{};
    for (const std::string& kind : kinds) {
      for (const auto& [name, entry] : kKinds) {
        if (kind == name) checked[static_cast<size_t>(entry)] = true;
      }
    }
    UpdateReport report;
    RunWithProgress(work, ui, screen, [&] {
      report = UpdateSelected(ctx, work, checked);
      return report.fullRun;
    });
    for (const std::string& line : report.lines) std::printf("%s\n", line.c_str());
    return (report.loaded && report.fullRun && report.saved) ? kExitOk : kExitFailed;
  }

  if (*scan) {
    if (!romPath.empty()) ctx.settings.InfWrite("RomPath", AddSlash(romPath));
    if (!EnsureLoaded(ctx)) return kExitFailed;
    int matches = -1;
    const bool saved = RunWithProgress(work, ui, screen, [&] {
      ScanRoms(ctx, work, false, &matches);
      if (matches < 0 || work.CancelRequested) return false;
      return SaveIndex(ctx.store, ctx.log, &work, IndexFilePath(ctx.AppFolder()));
    });
    if (matches < 0 || !saved) return kExitFailed;
    int present = 0;
    for (int i = 1; i <= ctx.store.GameCount(); ++i) {
      if (IsPresent(ctx.store.GameRecords[static_cast<size_t>(i)])) ++present;
    }
    std::printf("%d games present (%d marks)\n", present, matches);
    return kExitOk;
  }

  if (*info) {
    if (!EnsureLoaded(ctx)) return kExitFailed;
    const GameStore& store = ctx.store;
    std::printf("Database version: %s\n", store.DatabaseVersion.c_str());
    std::printf("GameCount: %d\n", store.GameCount());
    std::printf("LongestNameLength: %d\n", store.LongestNameLength);
    std::printf("SourceIsXml: %s\n", store.SourceIsXml ? "true" : "false");
    for (int t = 0; t < kTableCount; ++t) {
      const auto id = static_cast<TableId>(t);
      std::printf("%s: %zu\n", SectionTitleLine(id).c_str(), store.Table(id).size() - 1);
    }
    return kExitOk;
  }

  if (*record) {
    if (!EnsureLoaded(ctx)) return kExitFailed;
    const int index = ctx.store.FindGame(recordName);
    if (index == 0) {
      std::fprintf(stderr, "No game named %s in the database\n", recordName.c_str());
      return kExitFailed;
    }
    const std::string& text = ctx.store.GameRecords[static_cast<size_t>(index)];
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
    return kExitOk;
  }

  if (*table) {
    int found = -1;
    for (int t = 0; t < kTableCount; ++t) {
      if (TableTitle(static_cast<TableId>(t)) == tableName) found = t;
    }
    if (found < 0) {
      std::fprintf(stderr, "No table named %s; the tables are:", tableName.c_str());
      for (int t = 0; t < kTableCount; ++t) {
        std::fprintf(stderr, " %s", std::string(TableTitle(static_cast<TableId>(t))).c_str());
      }
      std::fprintf(stderr, "\n");
      return kExitUsage;
    }
    if (!EnsureLoaded(ctx)) return kExitFailed;
    const CodeTable& entries = ctx.store.Table(static_cast<TableId>(found));
    for (size_t i = 1; i < entries.size(); ++i) {
      std::printf("%zu\t", i);
      std::fwrite(entries[i].data(), 1, entries[i].size(), stdout);
      std::fputc('\n', stdout);
    }
    return kExitOk;
  }

  if (*get) {
    std::printf("%s\n", ctx.settings.InfRead(key).c_str());
    return kExitOk;
  }

  if (*set) {
    ctx.settings.InfWrite(key, value);
    if (ctx.settings.InfRead(key) != value) {
      std::fprintf(stderr, "Could not write %s to %s\n", key.c_str(),
                   ctx.settings.FilePath().c_str());
      return kExitFailed;
    }
    return kExitOk;
  }
  return kExitUsage;
}

}  // namespace tessarin
