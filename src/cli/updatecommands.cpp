// The on-line commands: the data update check and the front-end layouts.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "cli/session.h"
#include "core/fileservices.h"
#include "core/settings.h"
#include "layouts/layouts.h"
#include "online/dataupdate.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

void AddCheckUpdate(CliRegistry& registry) {
  registry.Add(
      "check-update",
      "Ask the update server (setting UpdateServer) for a newer program and a newer ready-made "
      "database; on your word (--yes) fetch the data package, unpack it into DataFiles and load "
      "it. Nothing is replaced unless the package arrives whole and unpacks cleanly.",
      [](CliSession& session) {
        AppContext& ctx = session.Ctx();
        // The version to compare with is the database's, when there is one.
        const std::string index = IndexFilePath(ctx.AppFolder());
        if (ctx.store.GameCount() == 0 && FileExists(index)) LoadIndex(ctx.store, ctx.log, index);
        DataUpdateHooks hooks;
        hooks.showNewVersion = [&](const std::string& version) {
          session.Print("A new version of Tessarin is available: " + version + " (this is " +
                        AppVersion() + "). See " + HomePageAddress(ctx.settings));
        };
        hooks.databaseReloaded = [&](const std::string& label) { session.Print(label); };
        DataUpdateOutcome outcome = DataUpdateOutcome::Declined;
        session.RunWithProgress([&] {
          outcome = CheckDataUpdate(ctx, session.CurrentWork(), false, true, hooks);
          return true;
        });
        switch (outcome) {
          case DataUpdateOutcome::Declined:
          case DataUpdateOutcome::UpToDate:
          case DataUpdateOutcome::NothingOffered:
          case DataUpdateOutcome::Updated:
            return kExitOk;
          default:
            return kExitFailed;
        }
      });
}

// What the user has of a layout, for the list.
std::string LayoutState(const LayoutPaths& paths, const std::string& line) {
  const std::vector<std::string> fields = LayoutFields(line);
  const std::string name = LayoutField(fields, 0);
  if (!paths.LayoutFolder.empty() && FolderExists(paths.LayoutFolder + name)) return "installed";
  if (FileExists(paths.DownloadFolder + name + ".zip")) return "downloaded";
  if (LayoutField(fields, 5) == paths.PackAddress) return "in the pack";
  return "missing";
}

void AddLayouts(CliRegistry& registry) {
  struct Options {
    std::string layoutFolder, downloadFolder, name;
    bool vertical = false, downloadOnly = false, deleteZip = false;
    CLI::App* command = nullptr;
  };
  auto o = std::make_shared<Options>();
  CLI::App* layouts = registry.Add(
      "layouts",
      "AtomicFE layouts: list them, get one, or get every one you lack. The folders are kept in "
      "AtomicLayouts.inf; the addresses in the settings URL_LayoutsTXT, URL_LayoutsZIP, "
      "URL_LayoutsJPG.",
      [o](CliSession& session) {
        AppContext& ctx = session.Ctx();
        LayoutPaths paths = OpenLayoutPaths(ctx);
        if (!o->layoutFolder.empty()) paths.LayoutFolder = AddSlash(o->layoutFolder);
        if (!o->downloadFolder.empty()) {
          paths.DownloadFolder = AddSlash(o->downloadFolder);
          MakeFolder(paths.DownloadFolder);
        }
        const auto report = [&](const std::string& line) { session.Print(line); };
        Work& work = session.CurrentWork();
        int status = kExitOk;

        const auto fetchList = [&](bool expert, std::vector<std::string>& lines) {
          bool fetched = false;
          session.RunWithProgress([&] {
            work.SetStatus("Downloading list of layouts...");
            fetched = DownloadLayoutList(paths, &work);
            return true;
          });
          if (fetched) {
            ctx.log.WriteLogLine("The list has been downloaded & is updated.");
          } else {
            session.Error(ctx.messages.Lng(410));
            ctx.log.WriteLogLine("Can't download list of layouts : list not updated !!");
          }
          if (!LoadLayoutList(ctx.log, paths, expert, lines)) {
            session.Error(ctx.messages.Lng(412) + " " + paths.ListFolder + kLayoutListName);
            session.Error(ctx.messages.Lng(453));
            return false;
          }
          return true;
        };

        std::vector<std::string> lines;
        const CLI::App* list = o->command->get_subcommand("list");
        const CLI::App* get = o->command->get_subcommand("get");
        if (list->parsed()) {
          if (!fetchList(true, lines)) return kExitFailed;
          for (const std::string& line : lines) {
            const std::vector<std::string> f = LayoutFields(line);
            session.Print(LayoutField(f, 0) + "\t" + LayoutField(f, 1) + "\t" + LayoutField(f, 2) +
                          "\t" + LayoutField(f, 3) + "\t" + LayoutState(paths, line));
          }
          session.Print(std::to_string(lines.size()) + " layouts listed.");
        } else if (get->parsed()) {
          if (!fetchList(true, lines)) return kExitFailed;
          std::vector<std::string> chosen;
          std::copy_if(lines.begin(), lines.end(), std::back_inserter(chosen),
                       [&](const std::string& line) {
                         return LayoutField(LayoutFields(line), 0) == o->name;
                       });
          if (chosen.empty()) {
            session.Error("No layout named " + o->name + " in the list");
            return kExitFailed;
          }
          LayoutRunCounts counts;
          session.RunWithProgress([&] {
            counts = DownloadSelected(ctx, work, paths, chosen, static_cast<int>(lines.size()),
                                      !o->downloadOnly, o->deleteZip, report);
            return true;
          });
          if (counts.cancelled || counts.downloadErrors > 0 || counts.unzipErrors > 0) {
            status = kExitFailed;
          }
        } else {
          if (!fetchList(false, lines)) return kExitFailed;
          LayoutRunCounts counts;
          session.RunWithProgress([&] {
            work.SetStatus("Downloading layouts...");
            counts =
                ProcessAllLayouts(ctx, work, paths, lines, !o->downloadOnly, o->vertical, report);
            return true;
          });
          if (counts.downloadErrors > 0 || counts.unzipErrors > 0) {
            session.Error(ctx.messages.Lng(454));
            status = kExitFailed;
          }
          if (counts.cancelled) status = kExitFailed;
        }
        SaveLayoutPaths(ctx, paths);
        return status;
      });
  o->command = layouts;
  layouts->require_subcommand(1, 1);
  layouts->add_option("--layout-folder", o->layoutFolder,
                      "The folder of your AtomicFE layouts (kept in AtomicLayouts.inf)");
  layouts->add_option("--download-folder", o->downloadFolder,
                      "Where the layouts' zip files go (kept in AtomicLayouts.inf)");
  layouts->add_subcommand("list",
                          "Fetch the list and print each layout: name, title, author, date and "
                          "whether you have it (installed, downloaded, in the pack, missing)");
  CLI::App* get = layouts->add_subcommand(
      "get",
      "Download one layout and unpack it into the layout folder (a layout of the pack "
      "offers the pack)");
  get->add_option("NAME", o->name, "The layout's name (the rom name, with _v when vertical)")
      ->required();
  get->add_flag("--download-only", o->downloadOnly, "Keep the zip, don't unpack it");
  get->add_flag("--delete-zip", o->deleteZip, "Delete the zip once it is unpacked");
  CLI::App* missing = layouts->add_subcommand(
      "get-missing",
      "Download and install every layout of one orientation that isn't in the layout folder "
      "(with --download-only: every one whose zip isn't in the download folder)");
  missing->add_flag("--vertical", o->vertical, "The vertical layouts (default: horizontal)");
  missing->add_flag("--download-only", o->downloadOnly,
                    "Only download the zips, don't unpack them");
}

}  // namespace

void RegisterUpdateCommands(CliRegistry& registry) {
  AddCheckUpdate(registry);
  AddLayouts(registry);
}

}  // namespace tessarin
