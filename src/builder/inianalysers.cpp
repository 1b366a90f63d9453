#include "builder/inianalysers.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/work.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

void SetCoded(GameStore& store, int index, std::string_view placeholder, int code) {
  SetField(store, index, placeholder, std::to_string(code));
}

// A `[value]` title names the value of the rom names below it. The title loses its first and
// last characters without a check that they are brackets, and is not trimmed inside. Lines
// before the first title go with the empty value. `versions` puts the values through
// VersionIndex instead of FindOrAppend. `emptyLinesAreNames` sends empty lines on to FindGame as
// Catlist.ini's reader always did (they find nothing there). Gives false when cancelled.
bool ReadSectionList(DataLineReader& reader, Work& work, GameStore& store, CodeTable& table,
                     bool versions, std::string_view placeholder, bool emptyLinesAreNames = false) {
  bool cancelled = false;
  std::string value;
  std::string_view line;
  while (NextLine(reader, work, line, cancelled)) {
    const std::string_view text = TrimBlanks(line);
    if (text.empty() && !emptyLinesAreNames) continue;
    if (!text.empty() && text.front() == '[') {
      value.assign(text.size() >= 2 ? text.substr(1, text.size() - 2) : std::string_view());
      continue;
    }
    const int index = store.FindGame(text);
    if (index <= 0) continue;
    const int code = versions ? VersionIndex(value, table) : FindOrAppend(value, table);
    SetCoded(store, index, placeholder, code);
  }
  return !cancelled;
}

// The `rom=value` split at the first '='; false for a line without one.
bool SplitAssignment(std::string_view text, std::string_view& name, std::string_view& value) {
  const size_t equal = text.find('=');
  if (equal == std::string_view::npos) return false;
  name = text.substr(0, equal);
  value = text.substr(equal + 1);
  return true;
}

bool HasVersionFileName(std::string_view fileName) {
  const std::string lower = LowerCopy(fileName);
  return lower.size() >= 11 && StartsWith(lower, "version") &&
         lower.compare(lower.size() - 4, 4, ".ini") == 0;
}

// The games still at the unknown version "?" take the version of the first version*.ini of
// `folder` that names them. Gives false when cancelled.
bool FillUnknownVersions(AppContext& ctx, Work& work, const std::string& folder, int unknown) {
  GameStore& store = ctx.store;
  std::vector<std::string> names;
  std::error_code ec;
  for (fs::directory_iterator it(FsPath(folder), ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = PathText(it->path().filename());
    if (name == "." || name == "..") continue;
    if (HasVersionFileName(name)) names.push_back(name);
  }
  // The system gives no order; a fixed one keeps runs alike.
  std::sort(names.begin(), names.end());

  const std::string unknownField = ";K" + std::to_string(unknown) + ";";
  std::string version;
  std::string newField;
  for (const std::string& name : names) {
    const std::string path = folder + name;
    if (!FileExists(path)) continue;
    ctx.log.WriteLogLine("Analysing for VerAdded : " + folder + name);
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) continue;
    bool cancelled = false;
    version.clear();
    std::string_view line;
    while (NextLine(reader, work, line, cancelled)) {
      const std::string_view text = TrimBlanks(line);
      if (text.size() >= 2 && text.front() == '[' && text.back() == ']') {
        version.assign(TrimBlanks(text.substr(1, text.size() - 2)));
        continue;
      }
      // An unknown name gives record 0, which is empty and so never holds the field.
      const int index = store.FindGame(text);
      std::string& record = store.GameRecords[static_cast<size_t>(index)];
      if (record.find(unknownField) == std::string::npos) continue;
      newField = ";K" + std::to_string(VersionIndex(version, store.VerAddedTable)) + ";";
      FieldSet(record, unknownField, newField);
    }
    if (cancelled) return false;
  }
  return true;
}

}  // namespace

bool AnalyseVerAddedMameinfo(AppContext& ctx, const std::string& path, bool reset, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3508, [&] {
    GameStore& store = ctx.store;
    if (reset) ResetVerAddedField(store);
    std::string file = path;
    if (file.empty()) {
      file = ctx.settings.InfRead("DataFile3");
      if (file.empty() || file == "-1")
        file = ResolveNoCase(ctx.AppFolder(), "datafiles/mameinfo.dat");
    }
    file = ExistingDataFile(file);
    if (file.empty()) {
      ProgressToEnd(work);
      return;
    }
    ctx.log.WriteLogLine(AnalysingLine(file, "  for Mame version added."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, file, work)) return;

    bool cancelled = false;
    std::string current;
    std::string version;
    std::string_view line;
    while (NextLine(reader, work, line, cancelled)) {
      if (StartsWith(line, "$info")) {
        current.assign(TrimBlanks(line.size() > 6 ? line.substr(6) : std::string_view()));
        continue;
      }
      if (!StartsWith(line, "$mame")) continue;
      const int index = store.FindGame(current);
      if (index <= 0) continue;
      // The first line that begins with a digit holds the version; "BIOS:" stands for none.
      bool found = false;
      while (NextLine(reader, work, line, cancelled)) {
        if (line == "BIOS:") {
          version = "?";
          found = true;
          break;
        }
        if (!line.empty() && line.front() >= '0' && line.front() <= '9') {
          version.assign(line);
          found = true;
          break;
        }
      }
      // The file ended inside the entry: a read past the end, which fails the routine so that
      // the build turns to the version files and Wizsort as its order intends.
      if (!found) {
        if (cancelled) break;
        throw Failure(62, "Input past end of file");
      }
      const size_t bracket = version.find('[');
      if (bracket != std::string::npos)
        version.assign(TrimBlanks(std::string_view(version).substr(0, bracket)));
      if (version.empty()) version = "?";
      SetCoded(store, index, "#V", VersionIndex(version, store.VerAddedTable));
    }
    reader.Close();
    if (cancelled) return;

    const int unknown = FindVersion("?", store.VerAddedTable);
    if (unknown > 0) {
      std::string folder;
      const std::string stored = ctx.settings.InfRead("DataFile17");
      if (!stored.empty() && stored != "-1") {
        const size_t slash = stored.find_last_of("\\/");
        if (slash != std::string::npos) folder = stored.substr(0, slash + 1);
      }
      if (folder.empty()) folder = AddSlash(ResolveNoCase(ctx.AppFolder(), "DataFiles"));
      if (!FillUnknownVersions(ctx, work, folder, unknown)) return;
    }
    result = true;
    ProgressToEnd(work);
  });
  return result;
}

bool AnalyseVerAddedFile(AppContext& ctx, bool reset, Work& work) {
  bool result = false;
  // Mameinfo.dat knows the versions better; the version file is the fallback.
  const std::string mameinfo = FindDataFile(ctx, "DataFile3", "datafiles/mameinfo.dat");
  if (!mameinfo.empty()) return AnalyseVerAddedMameinfo(ctx, mameinfo, reset, work);
  RunGuarded(ctx.log, 3509, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile17", "datafiles/version.inf");
    if (path.empty()) {
      ProgressToEnd(work);
      return;
    }
    if (reset) ResetVerAddedField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for Mame version added."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;
    result = ReadSectionList(reader, work, store, store.VerAddedTable, true, "#V");
    reader.Close();
  });
  return result;
}

bool AnalyseCatlist(AppContext& ctx, bool reset, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3502, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile12", "DataFiles/Catlist.ini");
    // Without the file this still reports success: the build then takes no categories from
    // Catver.ini either.
    if (path.empty()) {
      ProgressToEnd(work);
      result = true;
      return;
    }
    if (reset) ResetCategoryField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for categories."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;
    result = ReadSectionList(reader, work, store, store.CategoryTable, false, "#CA", true);
    reader.Close();
  });
  return result;
}

bool AnalyseGenre(AppContext& ctx, bool reset, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3504, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile14", "Datafiles/genre.inf");
    if (path.empty()) {
      ProgressToEnd(work);
      return;
    }
    if (reset) ResetGenreField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for genres."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;
    result = ReadSectionList(reader, work, store, store.GenreTable, false, "#G");
    reader.Close();
  });
  return result;
}

bool AnalyseMultiplayer(AppContext& ctx, bool reset, Work& work) {
  // DataFile8 serves both player files; its name says which one is meant.
  if (LowerCopy(ctx.settings.InfRead("DataFile8")).find("multiplayer.ini") == std::string::npos) {
    return false;
  }
  bool result = false;
  RunGuarded(ctx.log, 3506, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile8", "datafiles/multiplayer.ini");
    if (path.empty()) {
      ProgressToEnd(work);
      return;
    }
    if (reset) ResetNPlayersField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for number of players."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;
    result = ReadSectionList(reader, work, store, store.NPlayersTable, false, "#N");
    reader.Close();
  });
  return result;
}

bool AnalyseNPlayers(AppContext& ctx, bool reset, Work& work) {
  if (LowerCopy(ctx.settings.InfRead("DataFile8")).find("nplayers.ini") == std::string::npos) {
    return false;
  }
  bool result = false;
  RunGuarded(ctx.log, 3507, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile8", "datafiles/nplayers.ini");
    if (path.empty()) {
      ProgressToEnd(work);
      result = true;
      return;
    }
    if (reset) ResetNPlayersField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for number of players."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;
    bool cancelled = false;
    std::string_view line;
    // Everything before the first title is preamble. Later titles have no '=' and fall out, so
    // all sections count alike.
    while (NextLine(reader, work, line, cancelled)) {
      if (StartsWith(line, "[")) break;
    }
    while (!cancelled && NextLine(reader, work, line, cancelled)) {
      const std::string_view text = TrimBlanks(line);
      std::string_view name;
      std::string_view value;
      if (text.empty() || !SplitAssignment(text, name, value)) continue;
      const int index = store.FindGame(TrimBlanks(name));
      if (index <= 0) continue;
      SetCoded(store, index, "#N", FindOrAppend(TrimBlanks(value), store.NPlayersTable));
    }
    reader.Close();
    result = !cancelled;
  });
  return result;
}

bool AnalyseMature(AppContext& ctx, bool reset, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3505, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile15", "Datafiles/mature.inf");
    if (path.empty()) {
      ProgressToEnd(work);
      return;
    }
    if (reset) ResetMatureField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for mature games."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;
    bool cancelled = false;
    std::string_view line;
    while (NextLine(reader, work, line, cancelled)) {
      if (StartsWith(TrimBlanks(line), "[")) break;
    }
    if (cancelled) return;
    // The names under the title: this loop doesn't stop on a cancel, and the progress stays
    // where it ends.
    while (reader.ReadLine(line)) {
      work.ProgressValue += static_cast<long long>(line.size());
      SetField(store, store.FindGame(TrimBlanks(line)), "#X", "*Mature*");
    }
    reader.Close();
    result = true;
  });
  return result;
}

bool AnalyseCatver(AppContext& ctx, bool skipCategories, bool reset, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3503, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile13", "DataFiles/CatVer.ini");
    if (path.empty()) {
      ProgressToEnd(work);
      return;
    }
    ctx.log.WriteLogLine(AnalysingLine(path, {}));
    if (reset) {
      skipCategories = false;
      ResetCatverFields(store);
    }
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;
    bool cancelled = false;
    std::string_view line;
    std::string_view name;
    std::string_view value;
    if (skipCategories) {
      while (NextLine(reader, work, line, cancelled)) {
        if (line.find("[VerAdded]") != std::string_view::npos) break;
      }
    } else {
      ctx.log.WriteLogLine("  for categories.");
      // The title is looked for in lower case only: a file that writes it otherwise gives no
      // categories and is read to its end here.
      while (NextLine(reader, work, line, cancelled)) {
        if (line.find("[category]") != std::string_view::npos) break;
      }
      while (!cancelled && NextLine(reader, work, line, cancelled)) {
        if (line.find("[VerAdded]") != std::string_view::npos) break;
        const std::string_view text = TrimBlanks(line);
        if (text.empty() || !SplitAssignment(text, name, value)) continue;
        const int index = store.FindGame(name);
        if (index <= 0) continue;
        SetCoded(store, index, "#CA", FindOrAppend(value, store.CategoryTable));
      }
    }
    if (cancelled) return;
    ctx.log.WriteLogLine("  for Mame version added.");
    while (NextLine(reader, work, line, cancelled)) {
      const std::string_view text = TrimBlanks(line);
      if (text.empty() || !SplitAssignment(text, name, value)) continue;
      const int index = store.FindGame(name);
      if (index <= 0) continue;
      SetCoded(store, index, "#V", VersionIndex(value, store.VerAddedTable));
    }
    reader.Close();
    result = !cancelled;
  });
  return result;
}

bool AnalyseWizsort(AppContext& ctx, bool reset, bool skipVerAdded, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3501, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile7", "datafiles/wizsort.ini");
    if (path.empty()) {
      ProgressToEnd(work);
      return;
    }
    if (reset) ResetWizsortFields(store);
    ctx.log.WriteLogLine(AnalysingLine(path, {}));
    ctx.log.WriteLogLine(
        "  for Genres, Categories, Drivers, Manufacturers, VerAdded, Years, Mature, Bios.");
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;

    enum State {
      kNone = 0,
      kGenre,
      kCategory,
      kDriver,
      kManufacturer,
      kVerAdded = 6,
      kYear,
      kMature,
      kBios
    };
    int state = kNone;
    bool cancelled = false;
    std::string lowered;
    std::string version;
    std::string_view line;
    std::string_view name;
    std::string_view value;
    while (NextLine(reader, work, line, cancelled)) {
      lowered.assign(TrimBlanks(line));
      for (char& c : lowered) c = LowerAscii(c);
      auto has = [&](std::string_view title) { return lowered.find(title) != std::string::npos; };
      // Unknown titles leave the state alone: their lines go with the current section.
      if (has("[genre]")) {
        state = kGenre;
      } else if (has("[category]")) {
        state = kCategory;
      } else if (has("[driver]")) {
        state = store.SourceIsXml ? kNone : kDriver;
      } else if (has("[manufacturer]")) {
        state = kManufacturer;
      } else if (has("[resolution]") || has("[set]")) {
        state = kNone;
      } else if (has("[veradded]")) {
        state = skipVerAdded ? kNone : kVerAdded;
      } else if (has("[year]")) {
        state = kYear;
      } else if (has("[mature]")) {
        state = kMature;
      } else if (has("[bios]")) {
        state = kBios;
      }
      if (state == kNone) continue;
      if (!SplitAssignment(line, name, value)) continue;
      const int index = store.FindGame(TrimBlanks(name));
      if (index <= 0) continue;
      value = TrimBlanks(value);
      switch (state) {
        case kGenre:
          SetCoded(store, index, "#G", FindOrAppend(value, store.GenreTable));
          break;
        case kCategory:
          SetCoded(store, index, "#CA", FindOrAppend(value, store.CategoryTable));
          break;
        case kDriver:
          SetCoded(store, index, "#D", FindOrAppend(value, store.DriverTable));
          break;
        case kManufacturer:
          SetCoded(store, index, "#MA", FindOrAppend(value, store.ManufacturerTable));
          break;
        case kVerAdded:
          version.assign(value);
          if (StartsWith(version, ".")) version.insert(0, "0");
          SetCoded(store, index, "#V", VersionIndex(version, store.VerAddedTable));
          break;
        case kYear:
          SetCoded(store, index, "#Y", FindOrAppend(value, store.YearTable));
          break;
        case kMature:
          SetField(store, index, "#X", value);
          break;
        case kBios:
          SetCoded(store, index, "#BI", FindOrAppend(value, store.BiosTable));
          break;
        default:
          break;
      }
    }
    reader.Close();
    result = !cancelled;
  });
  return result;
}

}  // namespace tessarin
