// The image organiser from a terminal: images copy, images move, images prune.
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "cli/session.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "images/imageorganiser.h"

namespace tessarin {

namespace {

struct ImageOptions {
  std::string kind = "titles";
  std::string source;
  std::string destination;
  std::string romFolder;
  bool fromZips = false;
  bool dryRun = false;
};

int KindPosition(const std::string& kind) {
  for (int i = 1; i <= 6; ++i) {
    if (kOrganiserKinds[i] == kind) return i;
  }
  return 0;
}

// The names the job works for: the database's, or those of a folder of roms.
bool BuildRomSet(CliSession& session, const ImageOptions& o, std::vector<std::string>& romSet) {
  AppContext& ctx = session.Ctx();
  if (o.romFolder.empty()) {
    if (!session.EnsureLoaded()) return false;
    RomSetFromDatabase(ctx, romSet);
  } else {
    if (!FolderExists(o.romFolder)) {
      session.Error("No such rom folder: " + o.romFolder);
      return false;
    }
    bool complete = false;
    session.RunWithProgress([&] {
      complete = ReadRomFolderNames(o.romFolder, session.CurrentWork(), romSet);
      return complete;
    });
    if (!complete) {
      session.Error("Reading the rom folder was cancelled: " + o.romFolder);
      return false;
    }
  }
  if (romSet.size() <= 1) {
    session.Error(ctx.messages.Lng(301));
    return false;
  }
  return true;
}

int RunCopy(CliSession& session, ImageOptions& o, bool move) {
  AppContext& ctx = session.Ctx();
  const int kind = KindPosition(o.kind);
  ImageOrganiserState state;
  LoadImageOrganiserState(ctx.settings, state);
  CopyImagesJob job;
  job.kind = o.kind;
  job.source = o.source.empty() ? state.SourceFolders[kind] : o.source;
  job.destination = o.destination.empty() ? state.DestFolders[kind] : o.destination;
  for (const auto& [text, what] :
       {std::pair{job.source, "source"}, std::pair{job.destination, "destination"}}) {
    if (text.empty()) {
      session.Error(std::string("No ") + what + " folder for " + o.kind + " (see --help)");
      return kExitUsage;
    }
    if (!FolderExists(text)) {
      session.Error(std::string("No such ") + what + " folder: " + text);
      return kExitFailed;
    }
  }
  std::vector<std::string> romSet;
  if (!BuildRomSet(session, o, romSet)) return kExitFailed;
  job.move = move;
  job.fromZips = o.fromZips;
  job.tempFolder = AddSlash(GetTempFolderPath() + "tessarin-images");
  MakeFolder(job.tempFolder);
  job.log = &ctx.log;
  job.searchText = ctx.messages.Lng(299);
  const bool finished = session.RunWithProgress([&] {
    CopyRomImages(job, romSet, session.CurrentWork());
    return !session.CurrentWork().CancelRequested;
  });
  ShellDelete(job.tempFolder, true);
  if (!finished) {
    session.Error("Cancelled; what was done stays done.");
    return kExitFailed;
  }
  session.Print(std::string(move ? "Moved" : "Copied") + " the images of " +
                std::to_string(romSet.size() - 1) + " roms from " + job.source + " to " +
                job.destination);
  return kExitOk;
}

int RunPrune(CliSession& session, ImageOptions& o) {
  AppContext& ctx = session.Ctx();
  const int kind = KindPosition(o.kind);
  ImageOrganiserState state;
  LoadImageOrganiserState(ctx.settings, state);
  PruneImagesJob job;
  job.folder = o.source.empty() ? state.SourceFolders[kind] : o.source;
  if (job.folder.empty()) {
    session.Error("No image folder for " + o.kind + " (see --help)");
    return kExitUsage;
  }
  if (!FolderExists(job.folder)) {
    session.Error("No such image folder: " + job.folder);
    return kExitFailed;
  }
  std::vector<std::string> romSet;
  if (!BuildRomSet(session, o, romSet)) return kExitFailed;
  job.dryRun = o.dryRun;
  job.deleteText = ctx.messages.Lng(284);
  std::vector<std::string> deleted;
  const bool finished = session.RunWithProgress([&] {
    PruneImages(job, romSet, session.CurrentWork(), deleted);
    return !session.CurrentWork().CancelRequested;
  });
  for (const std::string& name : deleted) session.Print(name);
  session.Error(
      std::to_string(deleted.size()) +
      (o.dryRun ? " images would go to the trash from " : " images went to the trash from ") +
      job.folder);
  return finished ? kExitOk : kExitFailed;
}

}  // namespace

void RegisterImageCommands(CliRegistry& registry) {
  auto o = std::make_shared<ImageOptions>();
  // The subcommands are made after the group, so the handler finds them through this.
  auto subs = std::make_shared<std::array<CLI::App*, 3>>();
  CLI::App* images = registry.Add(
      "images", "The image organiser: copy or move the images of the roms, prune the others",
      [o, subs](CliSession& session) {
        if ((*subs)[0]->parsed()) return RunCopy(session, *o, false);
        if ((*subs)[1]->parsed()) return RunCopy(session, *o, true);
        if ((*subs)[2]->parsed()) return RunPrune(session, *o);
        return kExitUsage;
      });
  images->require_subcommand(1, 1);
  const auto addCommon = [&](CLI::App* sub) {
    sub->add_option("--kind", o->kind,
                    "Image kind: titles, snap, marquees, cabinets, cpanel or flyers; its folders "
                    "default to the image organiser's")
        ->check(CLI::IsMember({"titles", "snap", "marquees", "cabinets", "cpanel", "flyers"}))
        ->capture_default_str();
    sub->add_option("--rom-folder", o->romFolder,
                    "Take the rom names from this folder (zips by their lower-cased names, other "
                    "entries as they stand) instead of the database");
  };
  CLI::App* copy = images->add_subcommand(
      "copy",
      "Copy <rom>.png, .jpg and .gif of every rom of the database (or of --rom-folder) from the "
      "source folder to the destination folder");
  CLI::App* move = images->add_subcommand(
      "move",
      "As copy, but the images leave the source folder (zips of the source stay where they are)");
  for (CLI::App* sub : {copy, move}) {
    addCommon(sub);
    sub->add_option("--source", o->source, "Source folder (default: the organiser's for the kind)");
    sub->add_option("--dest", o->destination,
                    "Destination folder (default: the organiser's for the kind)");
    sub->add_flag("--from-zips", o->fromZips,
                  "Also unpack the source's <kind>*.zip files into a temporary folder and move "
                  "the named roms' images from there (the zips stay)");
  }
  CLI::App* prune = images->add_subcommand(
      "prune",
      "Send to the trash every .png of the folder whose name is no rom of the database (or of "
      "--rom-folder); .jpg, .gif and zips stay. Prints the names of the images it deletes");
  addCommon(prune);
  prune->add_option("--folder", o->source,
                    "Image folder (default: the organiser's source folder for the kind)");
  prune->add_flag("--dry-run", o->dryRun, "Only print what would be deleted; delete nothing");
  *subs = {copy, move, prune};
}

}  // namespace tessarin
