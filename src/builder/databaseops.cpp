#include "builder/databaseops.h"

#include <QStandardPaths>
#include <QString>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "builder/inianalysers.h"
#include "builder/pipeline.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

std::string DataFileKey(int n) { return "DataFile" + std::to_string(n); }

// The first existing candidate, else the last one.
std::string FirstExisting(const std::vector<std::string>& candidates) {
  for (const std::string& candidate : candidates) {
    if (FileExists(candidate)) return candidate;
  }
  return candidates.empty() ? std::string() : candidates.back();
}

// The root the default paths start from: the drive of the application folder on a system with
// drives ("C:\"), else the root of the file system.
std::string DefaultRoot(const std::string& appFolder) {
  if (appFolder.size() >= 3 && appFolder[1] == ':' &&
      (appFolder[2] == '\\' || appFolder[2] == '/')) {
    return appFolder.substr(0, 3);
  }
#ifdef _WIN32
  return "c:\\";
#else
  return "/";
#endif
}

std::string FirstLine(const std::string& text) {
  const size_t end = text.find_first_of("\r\n");
  return end == std::string::npos ? text : text.substr(0, end);
}

long long FileLength(const std::string& path) {
  std::error_code error;
  const auto size = fs::file_size(FsPath(path), error);
  return error ? -1 : static_cast<long long>(size);
}

bool HasContent(const std::string& path) { return FileExists(path) && FileLength(path) > 0; }

std::string EmulatorOfSettings(const AppContext& ctx) { return ctx.settings.InfRead("DataFile1"); }

// Runs the emulator with one option into `target`. The output goes to a temporary name and
// replaces `target` once the run has ended, so that a run killed half-way leaves the old file
// (which the old index points into) whole. A run that prints nothing leaves an empty file, so
// that an earlier list can't stand in for its output; a cancel (which ends the emulator at
// once) keeps the old file.
void RunEmulator(const AppContext& ctx, const std::string& option, const std::string& target,
                 Work* work) {
  const std::string temp = TempNameBeside(target);
  RunOptions options;
  options.standardOutputFile = temp;
  if (work) options.cancel = &work->CancelRequested;
  RunAndWait(EmulatorOfSettings(ctx), {option}, options);
  if (work && work->CancelRequested) {
    KillQuiet(temp);
    return;
  }
  SyncFileToDisk(temp);
  if (!RenameFile(temp, target)) {
    KillQuiet(temp);
    KillQuiet(target);
  }
}

// Whether the start of a dump is the XML list rather than the legacy one.
bool LooksLikeXml(const std::string& path) {
  std::ifstream file(FsPath(path), std::ios::binary);
  if (!file) return false;
  std::string head(65536, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<size_t>(file.gcount()));
  return head.find("<?xml") != std::string::npos || head.find("<mame") != std::string::npos ||
         head.find("<game") != std::string::npos || head.find("<machine") != std::string::npos;
}

}  // namespace

std::string DumpFileProblem(const std::string& path) {
  if (FolderExists(path)) return "is a folder, not a game list";
  if (!FileExists(path)) return "doesn't exist";
  std::ifstream file(FsPath(path), std::ios::binary);
  if (!file) return "can't be read";
  std::string head(65536, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<size_t>(file.gcount()));
  if (head.empty()) return "is empty";
  // Text lists hold no NUL byte; a program or an archive does at once.
  if (head.find('\0') != std::string::npos) {
    return "is a binary file (a program or an archive?), not the emulator's game list";
  }
  const bool xml =
      head.find("<?xml") != std::string::npos || head.find("<mame") != std::string::npos ||
      head.find("<game ") != std::string::npos || head.find("<machine ") != std::string::npos;
  const bool legacy = StartsWith(head, "game (") || head.find("\ngame (") != std::string::npos ||
                      head.find("\nmachine (") != std::string::npos ||
                      StartsWith(head, "machine (") ||
                      head.find("\nresource (") != std::string::npos;
  if (!xml && !legacy) {
    return "holds no game list: it isn't the output of the emulator's -listxml or -listinfo";
  }
  return {};
}

DataFilePaths FindDefaultPaths(AppContext& ctx) {
  DataFilePaths paths;
  const std::string& app = ctx.AppFolder();
  const std::string root = DefaultRoot(app);
  const std::string dataFiles = DataFilesFolder(app);

  {
    std::vector<std::string> emulators = {ResolveNoCase(root, "mame/mame.exe"),
                                          ResolveNoCase(root, "mame32/mame32.exe")};
#ifdef _WIN32
    emulators.push_back("c:\\mame\\mame.exe");
    emulators.push_back("c:\\mame32\\mame32.exe");
#else
    emulators.push_back(ResolveNoCase(root, "mame/mame"));
    emulators.push_back("/usr/games/mame");
#endif
    const QString onPath = QStandardPaths::findExecutable(QStringLiteral("mame"));
    if (!onPath.isEmpty()) emulators.push_back(onPath.toStdString());
    paths[1].clear();
    for (const std::string& candidate : emulators) {
      if (FileExists(candidate)) {
        paths[1] = candidate;
        break;
      }
    }
  }

  const std::pair<int, const char*> dats[] = {{2, "History.dat"},
                                              {3, "Mameinfo.dat"},
                                              {4, "Cheat.dat"},
                                              {5, "Command.dat"},
                                              {6, "Hiscore.dat"}};
  for (const auto& [n, name] : dats) {
    const std::string file(name);
    paths[n] =
        FirstExisting({ResolveNoCase(root, "mame/" + file), ResolveNoCase(root, "mame32/" + file),
                       ResolveNoCase(dataFiles, file)});
  }
  const std::pair<int, const char*> inis[] = {
      {7, "Wizsort.ini"},     {9, "Aspect.ini"},  {10, "Controls.ini"}, {11, "Alltime.ini"},
      {12, "Catlist.ini"},    {13, "Catver.ini"}, {14, "Genre.ini"},    {15, "Mature.ini"},
      {16, "Resolution.ini"}, {17, "Version.ini"}};
  for (const auto& [n, name] : inis) {
    const std::string file(name);
    paths[n] = FirstExisting({ResolveNoCase(root, "mame/" + file),
                              ResolveNoCase(root, "mame32/folders/" + file),
                              ResolveNoCase(dataFiles, file)});
  }
  paths[8] = FirstExisting(
      {ResolveNoCase(root, "mame/Nplayers.ini"), ResolveNoCase(root, "mame/Multiplayer.ini"),
       ResolveNoCase(root, "mame32/folders/Nplayers.ini"),
       ResolveNoCase(root, "mame32/folders/Multiplayer.ini"),
       ResolveNoCase(dataFiles, "Nplayers.ini"), ResolveNoCase(dataFiles, "Multiplayer.ini")});

  if (ctx.settings.InfReadOrEmpty("RomPath").empty()) {
    ctx.settings.InfWrite("RomPath", AddSlash(AddSlash(root + "mame") + "roms"));
  }
  return paths;
}

DataFilePaths LoadDataFilePaths(AppContext& ctx) {
  DataFilePaths paths = FindDefaultPaths(ctx);
  for (int n = 1; n <= kDataFileCount; ++n) {
    const std::string stored = ctx.settings.InfRead("DataFile" + std::to_string(n));
    if (stored != "-1") paths[static_cast<size_t>(n)] = stored;
  }
  return paths;
}

void SavePaths(AppContext& ctx, const DataFilePaths& paths, const std::string& romPath) {
  for (int n = 1; n <= kDataFileCount; ++n) {
    ctx.settings.InfWrite(DataFileKey(n), paths[static_cast<size_t>(n)]);
  }
  if (!romPath.empty()) ctx.settings.InfWrite("RomPath", AddSlash(romPath));
}

double LeadingNumberValue(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  std::string number;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) number.push_back(text[i++]);
  bool point = false;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      number.push_back(c);
    } else if (c == '.' && !point) {
      point = true;
      number.push_back(c);
    } else {
      break;
    }
  }
  if (number.empty()) return 0;
  return std::strtod(number.c_str(), nullptr);
}

double TrouveVersionMAME(AppContext& ctx, Work* work) {
  double version = 0;
  RunGuarded(ctx.log, 3601, [&] {
    const std::string target = AddSlash(ctx.AppFolder()) + "vermame.txt";
    RunEmulator(ctx, "-help", target, work);
    if (!FileExists(target)) return;
    std::string text;
    if (!ReadWholeFile(target, text)) return;
    ctx.store.DatabaseVersion = FirstLine(text);
    if (ctx.store.DatabaseVersion.empty()) return;
    std::string rest =
        ctx.store.DatabaseVersion.size() > 8 ? ctx.store.DatabaseVersion.substr(8) : std::string();
    rest.erase(std::remove(rest.begin(), rest.end(), 'v'), rest.end());
    version = LeadingNumberValue(TrimBlanks(rest));
  });
  return version;
}

bool RunListXml(AppContext& ctx, const std::string& path, Work* work) {
  bool made = false;
  RunGuarded(ctx.log, 3602, [&] {
    const std::string target = path.empty() ? AddSlash(ctx.AppFolder()) + "listxml.txt" : path;
    RunEmulator(ctx, "-listxml", target, work);
    made = HasContent(target) && !(work && work->CancelRequested);
  });
  return made;
}

bool RunListInfo(AppContext& ctx, Work& work, const std::string& path) {
  bool made = false;
  RunGuarded(ctx.log, 3603, [&] {
    const std::string target = path.empty() ? AddSlash(ctx.AppFolder()) + "listinfo.txt" : path;
    work.ProgressValue = 0;
    work.ProgressMax = 10;
    RunEmulator(ctx, "-listinfo", target, &work);
    work.ProgressValue = 5;
    made = HasContent(target) && !work.CancelRequested;
  });
  return made;
}

bool CreateDatabase(AppContext& ctx, Work& work, const std::string& dumpFile, bool linkDump) {
  const Messages& msg = ctx.messages;
  UserInterface& ui = ctx.Ui();
  const std::string& app = ctx.AppFolder();
  const std::string indexPath = IndexFilePath(app);
  if (FileExists(indexPath) && !ui.AskYesNo(msg.Lng(53), msg.Lng(54), Icon::Question)) {
    return false;
  }

  const std::string emulator = EmulatorOfSettings(ctx);
  const bool haveEmulator = FileExists(emulator);
  if (!haveEmulator && dumpFile.empty()) {
    ui.ShowMessage(false, msg.Lng(56), msg.Lng(57), Icon::Warning);
    return false;
  }

  // The cancel flag is the caller's: a cancel given before this point must not be lost.
  if (work.CancelRequested) return false;
  work.ProgressValue = 0;
  work.ProgressMax = 0;
  MakeFolder(AddSlash(app) + "DataFiles");
  const std::string xmlDump = DefaultListXmlPath(app);
  const std::string legacyDump = DefaultListInfoPath(app);

  std::string dump;
  if (haveEmulator) TrouveVersionMAME(ctx, &work);
  if (work.CancelRequested) return false;
  if (!dumpFile.empty()) {
    // A list printed earlier stands in for the emulator's run; it goes to the dump's place,
    // and the other dump goes, so that the build reads this list only.
    // Checked before anything is copied or deleted: a wrong file costs nothing.
    const std::string problem = DumpFileProblem(dumpFile);
    if (!problem.empty()) {
      ui.ShowMessage(false, dumpFile + "|" + problem, msg.Lng(29), Icon::Stop);
      return false;
    }
    const bool xml = LooksLikeXml(dumpFile);
    dump = xml ? xmlDump : legacyDump;
    std::error_code error;
    const fs::path from = FsPath(dumpFile), to = FsPath(dump);
    // Only the dump's own path given is left as it is.
    if (fs::weakly_canonical(from, error) != fs::weakly_canonical(to, error)) {
      // A copy, so that the database keeps its list whatever becomes of the original; or,
      // when asked, a second name for the same file, which costs no writing. Either goes to a
      // temporary name first and is renamed into place once whole: until then the old dump,
      // which the old index points into, stays.
      const std::string temp = TempNameBeside(dump);
      const fs::path tempPath = FsPath(temp);
      error.clear();
      bool linked = false;
      if (linkDump) {
        fs::create_hard_link(from, tempPath, error);
        linked = !error;
      }
      if (!linked) {
        error.clear();
        fs::copy_file(from, tempPath, fs::copy_options::overwrite_existing, error);
        if (!error && !SyncFileToDisk(temp)) error = std::make_error_code(std::errc::io_error);
      }
      if (!error) fs::rename(tempPath, to, error);
      if (error) {
        KillQuiet(temp);
        ui.ShowMessage(false, dump + "|" + error.message(), msg.Lng(29), Icon::Stop);
        return false;
      }
    }
    KillQuiet(xml ? legacyDump : xmlDump);
    work.SetStatus(msg.Lng(xml ? 60 : 61));
  } else {
    work.SetStatus(msg.Lng(59));
    if (RunListXml(ctx, xmlDump, &work)) {
      dump = xmlDump;
      work.SetStatus(msg.Lng(60));
    } else if (work.CancelRequested) {
      return false;
    } else if (RunListInfo(ctx, work, legacyDump)) {
      dump = legacyDump;
      work.SetStatus(msg.Lng(61));
    } else {
      if (work.CancelRequested) return false;
      ui.ShowMessage(false, msg.Lng(332), {}, Icon::Information);
      return false;
    }
  }
  if (!HasContent(dump)) {
    ui.ShowMessage(false, msg.Lng(332), {}, Icon::Information);
    return false;
  }

  // From here the store changes: an open search dialog's lists are stale.
  ctx.SearchMayClose = true;
  const bool built = BuildDatabase(ctx, work);
  if (work.CancelRequested) return false;
  if (!built) {
    // No game in the list: the build logged it and left the old index alone.
    ui.ShowMessage(false, msg.Lng(332), {}, Icon::Information);
    return false;
  }
  ScanRoms(ctx, work, true);
  // Written a second time, now with the presence of the roms.
  const bool saved = SaveIndex(ctx.store, ctx.log, &work, indexPath);
  if (work.CancelRequested || !saved) return false;
  ui.ShowMessage(false, msg.Lng(41) + ".", {}, Icon::Information);
  return true;
}

bool UpdateFromFiles(AppContext& ctx, Work& work) {
  const Messages& msg = ctx.messages;
  UserInterface& ui = ctx.Ui();
  if (!ui.AskYesNo(msg.Lng(48), msg.Lng(49), Icon::Question)) return false;
  GameStore& store = ctx.store;
  if (store.GameCount() == 0) {
    const std::string indexPath = IndexFilePath(ctx.AppFolder());
    if (!FileExists(indexPath)) {
      ui.ShowMessage(false, msg.Lng(28) + "|" + indexPath, msg.Lng(29), Icon::Stop);
      return false;
    }
    if (!LoadIndex(store, ctx.log, indexPath)) {
      ui.ShowMessage(false, msg.Lng(331), msg.Lng(29), Icon::Stop);
      return false;
    }
  }
  auto cancelled = [&] { return work.CancelRequested.load(); };
  if (cancelled()) return false;
  ctx.SearchMayClose = true;
  work.SetStatus(msg.Lng(50));

  // Here the "version from Mameinfo.dat" flag is this update's own.
  const bool verAddedFromMameinfo = AnalyseVerAddedMameinfo(ctx, std::string(), false, work);
  if (cancelled()) return false;
  if (!AnalyseWizsort(ctx, true, verAddedFromMameinfo, work)) {
    if (cancelled()) return false;
    const bool catlist = AnalyseCatlist(ctx, true, work);
    if (cancelled()) return false;
    // With reset, Catver clears its skip flag and wipes the categories just set: kept so.
    const bool catver = AnalyseCatver(ctx, catlist, true, work);
    if (cancelled()) return false;
    if (!catver && !verAddedFromMameinfo) AnalyseVerAddedFile(ctx, true, work);
    if (cancelled()) return false;
    AnalyseMature(ctx, true, work);
    if (cancelled()) return false;
    AnalyseGenre(ctx, false, work);
  }
  if (cancelled()) return false;
  if (!AnalyseMultiplayer(ctx, true, work)) {
    if (cancelled()) return false;
    AnalyseNPlayers(ctx, true, work);
  }
  if (cancelled()) return false;
  AnalyseCheat(ctx, true, work);
  if (cancelled()) return false;
  AnalyseHiscore(ctx, true, work);
  if (cancelled()) return false;
  AnalyseCommand(ctx, true, work);
  if (cancelled()) return false;
  AnalyseHistory(ctx, true, work);
  if (cancelled()) return false;
  // With a Mameinfo.dat this reset drops field V and the presence marks: a rom scan is due.
  AnalyseMameinfo(ctx, true, work);
  if (cancelled()) return false;
  ui.ShowMessage(false, msg.Lng(41) + ".", {}, Icon::Information);
  return true;
}

std::string_view UpdateEntryFile(UpdateEntry entry) {
  static constexpr std::string_view kFiles[kUpdateEntryCount] = {
      "Catlist.ini", "Catver.ini",   "Cheat.dat",       "Command.dat",     "Hiscore.dat",
      "History.dat", "Mameinfo.dat", "Mature.ini",      "Multiplayer.ini", "Nplayers.ini",
      "Version.ini", "Wizsort.ini",  "Roms disponibles"};
  return kFiles[static_cast<int>(entry)];
}

UpdateReport UpdateSelected(AppContext& ctx, Work& work,
                            const std::array<bool, kUpdateEntryCount>& checked) {
  UpdateReport report;
  const Messages& msg = ctx.messages;
  UserInterface& ui = ctx.Ui();
  GameStore& store = ctx.store;
  if (store.GameCount() == 0) LoadIndex(store, ctx.log, IndexFilePath(ctx.AppFolder()));
  if (store.GameCount() == 0) {
    ui.ShowMessage(false, msg.Lng(327), {}, Icon::Stop);
    return report;
  }
  report.loaded = true;
  if (work.CancelRequested) return report;
  ctx.SearchMayClose = true;
  work.SetStatus(msg.Lng(42));
  work.ProgressValue = 0;

  bool somethingDone = false;
  bool ranThrough = true;
  for (int e = 0; e < kUpdateEntryCount; ++e) {
    if (!checked[static_cast<size_t>(e)]) continue;
    somethingDone = true;
    const auto entry = static_cast<UpdateEntry>(e);
    bool ok = false;
    switch (entry) {
      case UpdateEntry::Catlist:
        ok = AnalyseCatlist(ctx, true, work);
        break;
      case UpdateEntry::Catver:
        // Only versions still at their placeholder are filled; categories stay as they are.
        ok = AnalyseCatver(ctx, true, false, work);
        break;
      case UpdateEntry::Cheat:
        ok = AnalyseCheat(ctx, true, work);
        break;
      case UpdateEntry::Command:
        ok = AnalyseCommand(ctx, true, work);
        break;
      case UpdateEntry::Hiscore:
        ok = AnalyseHiscore(ctx, true, work);
        break;
      case UpdateEntry::History:
        ok = AnalyseHistory(ctx, true, work);
        break;
      case UpdateEntry::Mameinfo:
        ok = AnalyseMameinfo(ctx, true, work);
        break;
      case UpdateEntry::Mature:
        ok = AnalyseMature(ctx, true, work);
        break;
      case UpdateEntry::Multiplayer:
        ok = AnalyseMultiplayer(ctx, true, work);
        break;
      case UpdateEntry::NPlayers:
        ok = AnalyseNPlayers(ctx, true, work);
        break;
      case UpdateEntry::Version:
        ok = AnalyseVerAddedFile(ctx, true, work);
        break;
      case UpdateEntry::Wizsort:
        ok = AnalyseWizsort(ctx, true, false, work);
        break;
      case UpdateEntry::Roms:
        ok = ScanRoms(ctx, work, false);
        break;
    }
    if (ok) report.lines.push_back(std::string(UpdateEntryFile(entry)) + " = Ok");
    if (work.CancelRequested) {
      ranThrough = false;
      break;
    }
  }
  report.fullRun = ranThrough;
  if (ranThrough && somethingDone) {
    report.saved = SaveIndex(store, ctx.log, &work, IndexFilePath(ctx.AppFolder()));
  }
  if (ranThrough) ui.ShowMessage(false, msg.Lng(43), msg.Lng(41), Icon::Information);
  return report;
}

bool ScanRoms(AppContext& ctx, Work& work, bool silent, int* matches) {
  (void)silent;  // the page and its label are the dialog's business
  if (matches) *matches = -1;
  const Messages& msg = ctx.messages;
  GameStore& store = ctx.store;
  if (store.GameCount() == 0) {
    ctx.Ui().ShowMessage(false, msg.Lng(329), {}, Icon::Information);
    return false;
  }
  std::string romPath = ctx.settings.InfReadOrEmpty("RomPath");
  if (romPath.empty()) {
    ctx.Ui().ShowMessage(false, msg.Lng(330), {}, Icon::Information);
    return false;
  }
  romPath = AddSlash(romPath);
  ctx.SearchMayClose = true;
  RunGuarded(ctx.log, 3604, [&] {
    work.SetStatus(msg.Lng(47));
    work.SetStatus(msg.Lng(64));
    work.ProgressValue = 0;
    work.ProgressMax = 1000;

    const int count = store.GameCount();
    for (int i = 1; i <= count; ++i) {
      std::string& record = store.GameRecords[static_cast<size_t>(i)];
      if (IsPresent(record)) record.pop_back();
    }

    int marks = 0;
    std::vector<std::string> zips, entries;
    std::error_code error;
    for (fs::directory_iterator it(FsPath(romPath), error), end; !error && it != end;
         it.increment(error)) {
      std::string name = PathText(it->path().filename());
      std::error_code typeError;
      if (EndsWithNoCase(name, ".zip") && !it->is_directory(typeError)) zips.push_back(name);
      entries.push_back(std::move(name));
    }
    // Zip files first, then every entry (zips again, and folders): each match adds a mark.
    auto scan = [&](const std::vector<std::string>& names) {
      for (const std::string& name : names) {
        if (work.CancelRequested) return false;
        if (name.size() > 3) {
          const int game = store.FindGame(std::string_view(name).substr(0, name.size() - 4));
          if (game > 0) {
            store.GameRecords[static_cast<size_t>(game)].push_back('*');
            ++marks;
          }
        }
        work.ProgressValue = work.ProgressValue + 1;
        if (work.ProgressValue >= 1000) work.ProgressValue = 0;
      }
      return true;
    };
    if (scan(zips)) scan(entries);
    if (matches) *matches = marks;
  });
  return false;
}

}  // namespace tessarin
