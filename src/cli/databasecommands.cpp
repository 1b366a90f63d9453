// The database commands: build, update, scan-roms, info, record, table.
#include <array>
#include <cstdio>
#include <memory>

#include "builder/databaseops.h"
#include "cli/session.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

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

void AddBuild(CliRegistry& registry) {
  struct Options {
    std::string emulator, dump;
    bool link = false;
  };
  auto o = std::make_shared<Options>();
  CLI::App* build = registry.Add(
      "build",
      "Complete creation of the database: run the emulator (or read --dump), build, "
      "scan the roms, save the index",
      [o](CliSession& session) {
        AppContext& ctx = session.Ctx();
        if (!o->emulator.empty()) {
          if (!FileExists(o->emulator)) {
            session.Error("No emulator at " + o->emulator);
            return kExitUsage;
          }
          ctx.settings.InfWrite("DataFile1", o->emulator);
        }
        // The default paths also fill in the emulator when none was ever chosen.
        const DataFilePaths paths = LoadDataFilePaths(ctx);
        if (ctx.settings.InfRead("DataFile1") == "-1" && !paths[1].empty()) {
          ctx.settings.InfWrite("DataFile1", paths[1]);
        }
        Work& work = session.CurrentWork();
        const bool ok =
            session.RunWithProgress([&] { return CreateDatabase(ctx, work, o->dump, o->link); });
        if (ok) {
          session.Print(std::to_string(ctx.store.GameCount()) + " games written to " +
                        IndexFilePath(ctx.AppFolder()));
        }
        return ok ? kExitOk : kExitFailed;
      });
  build->add_option("--emulator", o->emulator, "The emulator to run (kept as DataFile1)");
  build
      ->add_option("--dump", o->dump,
                   "An existing -listxml or -listinfo output to use instead of running the "
                   "emulator for its list; it is copied to the dump's place")
      ->check(CLI::ExistingFile);
  build->add_flag("--link", o->link,
                  "Give the --dump file a second name in the data folder instead of copying it "
                  "(same file system only; don't rewrite the original in place afterwards)");
}

void AddUpdate(CliRegistry& registry) {
  auto kinds = std::make_shared<std::vector<std::string>>();
  CLI::App* update = registry.Add(
      "update",
      "Update the database from the data files; with KINDs, only those (in the fixed order "
      "catlist catver cheat command hiscore history mameinfo mature multiplayer nplayers "
      "version wizsort roms)",
      [kinds](CliSession& session) {
        AppContext& ctx = session.Ctx();
        Work& work = session.CurrentWork();
        if (kinds->empty()) {
          const bool ok = session.RunWithProgress([&] {
            if (!UpdateFromFiles(ctx, work)) return false;
            return SaveIndex(ctx.store, ctx.log, &work, IndexFilePath(ctx.AppFolder()));
          });
          return ok ? kExitOk : kExitFailed;
        }
        std::array<bool, kUpdateEntryCount> checked{};
        for (const std::string& kind : *kinds) {
          for (const auto& [name, entry] : kKinds) {
            if (kind == name) checked[static_cast<size_t>(entry)] = true;
          }
        }
        UpdateReport report;
        session.RunWithProgress([&] {
          report = UpdateSelected(ctx, work, checked);
          return report.fullRun;
        });
        for (const std::string& line : report.lines) session.Print(line);
        return (report.loaded && report.fullRun && report.saved) ? kExitOk : kExitFailed;
      });
  std::vector<std::string> kindNames;
  for (const auto& [name, entry] : kKinds) kindNames.emplace_back(name);
  update->add_option("KIND", *kinds, "Data files to use")->check(CLI::IsMember(kindNames));
}

void AddScanRoms(CliRegistry& registry) {
  auto romPath = std::make_shared<std::string>();
  CLI::App* scan =
      registry.Add("scan-roms", "Mark the games whose roms are in the rom folder",
                   [romPath](CliSession& session) {
                     AppContext& ctx = session.Ctx();
                     if (!romPath->empty()) ctx.settings.InfWrite("RomPath", AddSlash(*romPath));
                     if (!session.EnsureLoaded()) return kExitFailed;
                     Work& work = session.CurrentWork();
                     int matches = -1;
                     const bool saved = session.RunWithProgress([&] {
                       ScanRoms(ctx, work, false, &matches);
                       if (matches < 0 || work.CancelRequested) return false;
                       return SaveIndex(ctx.store, ctx.log, &work, IndexFilePath(ctx.AppFolder()));
                     });
                     if (matches < 0 || !saved) return kExitFailed;
                     int present = 0;
                     for (int i = 1; i <= ctx.store.GameCount(); ++i) {
                       if (IsPresent(ctx.store.GameRecords[static_cast<size_t>(i)])) ++present;
                     }
                     session.Print(std::to_string(present) + " games present (" +
                                   std::to_string(matches) + " marks)");
                     return kExitOk;
                   });
  scan->add_option("--rom-path", *romPath, "The rom folder (kept as RomPath)")
      ->check(CLI::ExistingDirectory);
}

void AddInfo(CliRegistry& registry) {
  registry.Add("info", "Show the database's version, counts and tables", [](CliSession& session) {
    if (!session.EnsureLoaded()) return kExitFailed;
    const GameStore& store = session.Ctx().store;
    session.Print("Database version: " + store.DatabaseVersion);
    session.Print("GameCount: " + std::to_string(store.GameCount()));
    session.Print("LongestNameLength: " + std::to_string(store.LongestNameLength));
    session.Print(std::string("SourceIsXml: ") + (store.SourceIsXml ? "true" : "false"));
    for (int t = 0; t < kTableCount; ++t) {
      const auto id = static_cast<TableId>(t);
      session.Print(SectionTitleLine(id) + ": " + std::to_string(store.Table(id).size() - 1));
    }
    return kExitOk;
  });
}

void AddRecord(CliRegistry& registry) {
  auto name = std::make_shared<std::string>();
  CLI::App* record = registry.Add("record", "Print a game's record as the index holds it",
                                  [name](CliSession& session) {
                                    if (!session.EnsureLoaded()) return kExitFailed;
                                    const GameStore& store = session.Ctx().store;
                                    const int index = store.FindGame(*name);
                                    if (index == 0) {
                                      session.Error("No game named " + *name + " in the database");
                                      return kExitFailed;
                                    }
                                    session.Print(store.GameRecords[static_cast<size_t>(index)]);
                                    return kExitOk;
                                  });
  record->add_option("NAME", *name, "Rom name")->required();
}

void AddTable(CliRegistry& registry) {
  auto tableName = std::make_shared<std::string>();
  CLI::App* table = registry.Add(
      "table",
      "Print a code table, one entry a line with its index (Manufacturer, Year, Orientation, "
      "Buttons, Controls, Status, Genre, Category, VerAdded, Bios, Driver, nPlayers, Savestate)",
      [tableName](CliSession& session) {
        int found = -1;
        for (int t = 0; t < kTableCount; ++t) {
          if (TableTitle(static_cast<TableId>(t)) == *tableName) found = t;
        }
        if (found < 0) {
          std::string names;
          for (int t = 0; t < kTableCount; ++t) {
            names += " " + std::string(TableTitle(static_cast<TableId>(t)));
          }
          session.Error("No table named " + *tableName + "; the tables are:" + names);
          return kExitUsage;
        }
        if (!session.EnsureLoaded()) return kExitFailed;
        const CodeTable& entries = session.Ctx().store.Table(static_cast<TableId>(found));
        for (size_t i = 1; i < entries.size(); ++i) {
          session.Print(std::to_string(i) + "\t" + entries[i]);
        }
        return kExitOk;
      });
  table->add_option("NAME", *tableName, "Section title without brackets")->required();
}

}  // namespace

void RegisterDatabaseCommands(CliRegistry& registry) {
  AddBuild(registry);
  AddUpdate(registry);
  AddScanRoms(registry);
  AddInfo(registry);
  AddRecord(registry);
  AddTable(registry);
}

}  // namespace tessarin
