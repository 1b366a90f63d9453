#include "lists/initools.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unordered_map>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/work.h"
#include "search/searchengine.h"
#include "store/faststrings.h"

namespace tessarin {

namespace {

namespace fs = std::filesystem;

bool Flag(const Settings& settings, const char* key) {
  const std::string value = settings.InfRead(key);
  return value == "1" || value == "-1" ? value == "1" : false;
}

std::string SettingText(const Settings& settings, const std::string& key) {
  const std::string value = settings.InfRead(key);
  return value == "-1" ? std::string() : value;
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  size_t at = 0;
  while ((at = text.find(from, at)) != std::string::npos) {
    text.replace(at, from.size(), to);
    at += to.size();
  }
}

// A file written as it goes, so that a cancel keeps what was written; CR LF lines.
class ListWriter final {
 public:
  explicit ListWriter(const std::string& path)
      : m_out(FsPath(path), std::ios::binary | std::ios::trunc) {}
  bool Ok() const { return m_out.good(); }
  void Line(std::string_view text) {
    m_out.write(text.data(), static_cast<std::streamsize>(text.size()));
    m_out.write("\r\n", 2);
  }
  void Raw(std::string_view text) {
    m_out.write(text.data(), static_cast<std::streamsize>(text.size()));
  }

 private:
  std::ofstream m_out;
};

// The record tag and table of the rows that take their values from a table; 0 for the flags.
struct RowKind {
  char tag;
  TableId table;
};
RowKind KindOfRow(int row) {
  switch (row) {
    case 0:
      return {'C', TableId::Manufacturer};
    case 1:
      return {'D', TableId::Year};
    case 2:
      return {'I', TableId::Genre};
    case 3:
      return {'J', TableId::Category};
    case 4:
      return {'H', TableId::Status};
    case 5:
      return {'O', TableId::NPlayers};
    case 6:
      return {'F', TableId::Buttons};
    case 7:
      return {'G', TableId::Controls};
    case 11:
      return {'E', TableId::Orientation};
    case 12:
      return {'N', TableId::Driver};
    case 14:
      return {'K', TableId::VerAdded};
    default:
      return {0, TableId::Manufacturer};
  }
}

// The one criterion of a row's value `value` (1-based in the table, or the flag rows).
SearchCriteria CriterionOf(const GameStore& store, int row, int value) {
  SearchCriteria c;
  const auto entry = [&](TableId id) { return store.Table(id)[static_cast<size_t>(value)]; };
  switch (row) {
    case 0:
      c.Manufacturer = entry(TableId::Manufacturer);
      break;
    case 1:
      c.Year = entry(TableId::Year);
      break;
    case 2:
      c.Genre = entry(TableId::Genre);
      break;
    case 3:
      c.Category = entry(TableId::Category);
      break;
    case 4:
      c.Status = entry(TableId::Status);
      break;
    case 5:
      c.Players = entry(TableId::NPlayers);
      break;
    case 6:
      c.Buttons = entry(TableId::Buttons);
      break;
    case 7:
      c.Control = entry(TableId::Controls);
      break;
    case 8:
      c.Available = 1;
      break;
    case 9:
      c.Clones = 1;
      break;
    case 10:
      c.Mature = 1;
      break;
    case 11:
      c.Orientation = entry(TableId::Orientation);
      break;
    case 12:
      c.Driver = entry(TableId::Driver);
      break;
    case 13: {
      // "Yes" is the table's "supported" entry when it is one of the two the field can name.
      const int supported = FindInTable("supported", store.SavestateTable, true);
      c.Savestate = supported == 2 ? 2 : 1;
      break;
    }
    case 14:
      c.VersionAdded = FindInTable(entry(TableId::VerAdded), store.VerAddedTable, true);
      break;
    default:
      break;
  }
  return c;
}

const char* const kFlagSections[] = {"[Available]", "[Clones]", "[Mature]", "[Savestate]"};

// The number of values of a row, and the section line of value `value`.
int ValueCount(const GameStore& store, int row) {
  const RowKind kind = KindOfRow(row);
  if (kind.tag == 0) return 1;
  return static_cast<int>(store.Table(kind.table).size()) - 1;
}
std::string SectionLine(const GameStore& store, int row, int value) {
  const RowKind kind = KindOfRow(row);
  if (kind.tag != 0) {
    return "[" + store.Table(kind.table)[static_cast<size_t>(value)] + "]";
  }
  const int flag = row == 8 ? 0 : row == 9 ? 1 : row == 10 ? 2 : 3;
  return kFlagSections[flag];
}

// The names of `games` in the chosen order, a CR LF line each.
void AppendNames(const GameStore& store, const std::vector<int>& games, int sort,
                 std::string& text) {
  const auto& names = store.GameNames();
  if (sort == 1) {
    std::vector<std::string> sorted;
    sorted.reserve(games.size());
    for (int g : games) sorted.push_back(names[static_cast<size_t>(g)]);
    std::sort(sorted.begin(), sorted.end());
    for (const std::string& n : sorted) text += n + "\r\n";
  } else if (sort == 2) {
    // Description, then the rom name padded (or cut) to the column: equal descriptions sort by
    // name, and the name comes back from the key's right end.
    const size_t width = static_cast<size_t>(std::max(0, store.LongestNameLength));
    std::vector<std::string> keys;
    keys.reserve(games.size());
    for (int g : games) {
      std::string name = names[static_cast<size_t>(g)];
      name.resize(width, ' ');
      keys.push_back(GameDescription(store, g) + name);
    }
    std::sort(keys.begin(), keys.end());
    for (const std::string& key : keys) {
      text += std::string(TrimBlanks(std::string_view(key).substr(key.size() - width))) + "\r\n";
    }
  } else {
    for (int g : games) text += names[static_cast<size_t>(g)] + "\r\n";
  }
}

// Every table position p for which the record holds ";<tag><p>;" somewhere (the needle of a
// search for that position), each once.
void TagPositionsIn(std::string_view record, char tag, std::vector<int>& positions) {
  positions.clear();
  const char needle[2] = {';', tag};
  size_t from = 0;
  while (from < record.size()) {
    const void* hit = memmem(record.data() + from, record.size() - from, needle, 2);
    if (!hit) return;
    size_t at = static_cast<size_t>(static_cast<const char*>(hit) - record.data()) + 2;
    from = at - 1;
    // Digits without a leading zero, closed by ';': the text of a decimal index.
    if (at >= record.size() || record[at] < '1' || record[at] > '9') continue;
    long long value = 0;
    size_t end = at;
    while (end < record.size() && record[end] >= '0' && record[end] <= '9' && end - at < 9) {
      value = value * 10 + (record[end] - '0');
      ++end;
    }
    if (end >= record.size() || record[end] != ';') continue;
    const int position = static_cast<int>(value);
    if (std::find(positions.begin(), positions.end(), position) == positions.end()) {
      positions.push_back(position);
    }
  }
}

}  // namespace

void BackupAsBak(const std::string& file) {
  if (!FileExists(file)) return;
  KillQuiet(file + ".bak");
  RenameFile(file, file + ".bak");
}

FolderScanOptions LoadFolderScanOptions(AppContext& ctx) {
  const Settings& s = ctx.settings;
  FolderScanOptions o;
  o.folder = ctx.AppFolder();
  if (!o.folder.empty() && (o.folder.back() == '/' || o.folder.back() == '\\')) o.folder.pop_back();
  const std::string folder = SettingText(s, "Frm20ScanDir");
  if (!folder.empty()) o.folder = folder;
  o.subfolders = s.InfRead("Frm20Folder") == "1";
  o.extension = s.InfRead("Frm20Ext") == "-1" ? "zip" : s.InfRead("Frm20Ext");
  o.removeExtension = Flag(s, "Frm20RmvExt");
  // The AFTER option has always been stored under the BEFORE keys, and the other way round.
  o.addAfter = Flag(s, "Frm20ABefore");
  o.after = SettingText(s, "Frm20TBefore");
  o.addBefore = Flag(s, "Frm20AAfter");
  o.before = SettingText(s, "Frm20TAfter");
  return o;
}

void SaveFolderScanOptions(AppContext& ctx, const FolderScanOptions& o) {
  Settings& s = ctx.settings;
  s.InfWrite("Frm20ScanDir", o.folder);
  s.InfWrite("Frm20Folder", o.subfolders ? "1" : "0");
  s.InfWrite("Frm20Ext", o.extension);
  s.InfWrite("Frm20RmvExt", o.removeExtension ? "1" : "0");
  s.InfWrite("Frm20ABefore", o.addAfter ? "1" : "0");
  s.InfWrite("Frm20TBefore", o.after);
  s.InfWrite("Frm20AAfter", o.addBefore ? "1" : "0");
  s.InfWrite("Frm20TAfter", o.before);
}

ToolResult ScanFolderToIni(const FolderScanOptions& options, const std::string& destination,
                           Work& work) {
  std::string folder = options.folder;
  if (!folder.empty() && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  if (folder.empty() || !FolderExists(folder)) return ToolResult::NoSource;
  const std::string extension(TrimBlanks(options.extension));
  const std::string pattern = LowerCopy(extension.empty() ? "*" : extension);

  // The listing, before the destination is touched.
  struct Entry {
    std::string name;
    bool isFolder;
  };
  std::vector<Entry> entries;
  std::error_code ec;
  for (const auto& item : fs::directory_iterator(FsPath(folder), ec)) {
    std::error_code ignored;
    const bool isFolder = item.is_directory(ignored);
    const std::string name = PathText(item.path().filename());
    if (!options.subfolders) {
      if (isFolder || !item.is_regular_file(ignored)) continue;
      if (pattern != "*") {
        const size_t dot = name.rfind('.');
        if (dot == std::string::npos || LowerCopy(name.substr(dot + 1)) != pattern) continue;
      }
    }
    entries.push_back({name, isFolder});
  }
  // The directory's own order is the file system's; names in byte order read the same everywhere.
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.name < b.name; });

  BackupAsBak(destination);
  ListWriter out(destination);
  if (!out.Ok()) return ToolResult::CantWrite;
  out.Raw(kIniListHeader);
  work.ProgressMax = std::max<long long>(1, static_cast<long long>(entries.size()));
  // In subfolder mode the extension counts as empty: the cut then takes one character.
  const size_t cut = (options.subfolders ? 0 : extension.size()) + 1;
  for (size_t i = 0; i < entries.size(); ++i) {
    if (work.CancelRequested) return ToolResult::Cancelled;
    work.ProgressValue = static_cast<long long>(i + 1);
    work.SetStatus(entries[i].name);
    std::string name = entries[i].name;
    if (options.removeExtension) name.resize(name.size() > cut ? name.size() - cut : 0);
    if (options.addAfter) name += options.after;
    if (options.addBefore) name = options.before + name;
    if (!options.subfolders || entries[i].isFolder) out.Line(name);
  }
  return ToolResult::Done;
}

std::string DecodeXmlEntities(std::string_view text) {
  std::string out(text);
  ReplaceAll(out, "&#60", "<");
  ReplaceAll(out, "&lt;", "<");
  ReplaceAll(out, "&#62", ">");
  ReplaceAll(out, "&gt;", ">");
  ReplaceAll(out, "&#38", "&");
  ReplaceAll(out, "&amp;", "&");
  ReplaceAll(out, "&quot;", "\"");
  return out;
}

XmlListOptions LoadXmlListOptions(AppContext& ctx) {
  const Settings& s = ctx.settings;
  XmlListOptions o;
  o.source = SettingText(s, "XML2List_File");
  o.romNames = s.InfRead("XML2List_RomName") != "0";
  o.gameNames = Flag(s, "XML2List_GameName");
  o.addZip = Flag(s, "XML2List_AddZip");
  o.noClone = Flag(s, "XML2List_NoClone");
  return o;
}

void SaveXmlListOptions(AppContext& ctx, const XmlListOptions& o) {
  Settings& s = ctx.settings;
  s.InfWrite("XML2List_File", o.source);
  s.InfWrite("XML2List_RomName", o.romNames ? "1" : "0");
  s.InfWrite("XML2List_GameName", o.gameNames ? "1" : "0");
  s.InfWrite("XML2List_AddZip", o.addZip ? "1" : "0");
  s.InfWrite("XML2List_NoClone", o.noClone ? "1" : "0");
}

ToolResult XmlToList(XmlListOptions& options, const std::string& destination, Work& work) {
  if (!options.romNames && !options.gameNames) options.romNames = true;
  if (!FileExists(options.source)) return ToolResult::NoSource;
  std::ifstream in(FsPath(options.source), std::ios::binary);
  if (!in) return ToolResult::NoSource;
  BackupAsBak(destination);
  ListWriter out(destination);
  if (!out.Ok()) return ToolResult::CantWrite;
  work.ProgressMax = 100;
  work.SetStatus("Working");
  std::string line;
  std::string lastName;
  long long step = 0;
  while (std::getline(in, line)) {
    if (work.CancelRequested) return ToolResult::Cancelled;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    // The size of the file isn't known to the loop: the bar runs round, a step a line.
    work.ProgressValue = step++ % 100;
    if (options.romNames) {
      // Today's lists say <machine where older ones said <game.
      size_t at = line.find("<game name");
      size_t skip = 12;
      if (at == std::string::npos) {
        at = line.find("<machine name");
        skip = 15;
      }
      if (at != std::string::npos &&
          (!options.noClone || line.find("cloneof") != std::string::npos)) {
        std::string_view name =
            at + skip <= line.size() ? std::string_view(line).substr(at + skip) : "";
        name = TrimBlanks(name);
        if (!name.empty() && name.front() == '=') name = TrimBlanks(name.substr(1));
        if (!name.empty() && name.front() == '"') name = TrimBlanks(name.substr(1));
        name = TrimBlanks(name.substr(0, name.find('"')));
        lastName = std::string(name);
        if (options.addZip) lastName += ".zip";
        if (!options.gameNames) out.Line(lastName);
      }
    }
    if (options.gameNames) {
      const size_t at = line.find("<description>");
      if (at != std::string::npos) {
        std::string_view text = TrimBlanks(std::string_view(line).substr(at + 13));
        text = TrimBlanks(text.substr(0, text.find('<')));
        const std::string description = DecodeXmlEntities(text);
        out.Line(options.romNames ? lastName + ";" + description : description);
      }
    }
  }
  return ToolResult::Done;
}

IniSetOptions LoadIniSetOptions(AppContext& ctx) {
  const Settings& s = ctx.settings;
  IniSetOptions o;
  o.uniqueFolder = s.InfRead("Frm15Radio") != "1";
  for (int i = 0; i < kIniSetFiles; ++i) {
    o.selected[static_cast<size_t>(i)] = s.InfRead("Frm15Chk" + std::to_string(i)) == "1";
  }
  for (int i = 0; i <= kIniSetFiles; ++i) {
    o.paths[static_cast<size_t>(i)] = SettingText(s, "Frm15Path" + std::to_string(i));
  }
  return o;
}

void SaveIniSetOptions(AppContext& ctx, const IniSetOptions& o) {
  Settings& s = ctx.settings;
  s.InfWrite("Frm15Radio", o.uniqueFolder ? "0" : "1");
  for (int i = 0; i < kIniSetFiles; ++i) {
    s.InfWrite("Frm15Chk" + std::to_string(i), o.selected[static_cast<size_t>(i)] ? "1" : "0");
  }
  for (int i = 0; i <= kIniSetFiles; ++i) {
    s.InfWrite("Frm15Path" + std::to_string(i), o.paths[static_cast<size_t>(i)]);
  }
}

std::string IniSetFilePath(const IniSetOptions& options, int row, const std::string& appFolder) {
  const std::string label(kIniSetNames[static_cast<size_t>(row)]);
  if (options.uniqueFolder) return AddSlash(options.paths[kIniSetFiles]) + label;
  std::string path = options.paths[static_cast<size_t>(row)];
  if (path.empty() || path == "-1") return AddSlash(appFolder) + label;
  if (path.back() == '/' || path.back() == '\\') path += label;
  return path;
}

std::string IniSetFileText(const GameStore& store, int row, int sort, Work* work) {
  std::string text;
  const int count = ValueCount(store, row);
  const RowKind kind = KindOfRow(row);
  // Each value's section line is written before the cancel is looked at, and its names after:
  // a cancelled file ends with a bare section line.
  if (kind.tag == 0) {
    text += SectionLine(store, row, 1) + "\r\n";
    if (work) work->ProgressValue = work->ProgressMax.load();
    if (work && work->CancelRequested) return text;
    AppendNames(store, SearchGames(store, CriterionOf(store, row, 1)), sort, text);
    return text;
  }
  // One pass: each game under every position its record names for the row's tag.
  const CodeTable& table = store.Table(kind.table);
  std::vector<std::vector<int>> byPosition(table.size());
  std::vector<int> positions;
  for (int g = 1; g <= store.GameCount(); ++g) {
    TagPositionsIn(store.GameRecords[static_cast<size_t>(g)], kind.tag, positions);
    for (int p : positions) {
      if (p > 0 && static_cast<size_t>(p) < byPosition.size()) {
        byPosition[static_cast<size_t>(p)].push_back(g);
      }
    }
  }
  if (work) work->ProgressMax = std::max(1, count);
  const std::vector<int> none;
  for (int value = 1; value <= count; ++value) {
    text += SectionLine(store, row, value) + "\r\n";
    if (work) work->ProgressValue = value;
    if (work && work->CancelRequested) break;
    // A search by a table text finds the games of its first equal entry.
    const int position = FindInTable(table[static_cast<size_t>(value)], table, true);
    AppendNames(store, position > 0 ? byPosition[static_cast<size_t>(position)] : none, sort, text);
  }
  return text;
}

std::string IniSetFileTextPlain(const GameStore& store, int row, int sort) {
  std::string text;
  const int count = ValueCount(store, row);
  for (int value = 1; value <= count; ++value) {
    text += SectionLine(store, row, value) + "\r\n";
    AppendNames(store, SearchGames(store, CriterionOf(store, row, value)), sort, text);
  }
  return text;
}

IniSetResult GenerateIniSet(AppContext& ctx, Work& work, IniSetOptions& options) {
  if (std::none_of(options.selected.begin(), options.selected.end(), [](bool b) { return b; })) {
    return IniSetResult::NothingSelected;
  }
  if (options.uniqueFolder && !FolderExists(options.paths[kIniSetFiles])) {
    return IniSetResult::BadDestination;
  }
  IniSetResult result = IniSetResult::Done;
  RunGuarded(ctx.log, 6401, [&] {
    work.SetStatus(ctx.messages.Lng(333));
    if (options.uniqueFolder) options.paths[kIniSetFiles] = AddSlash(options.paths[kIniSetFiles]);
    for (int row = 0; row < kIniSetFiles; ++row) {
      if (work.CancelRequested) break;
      if (!options.selected[static_cast<size_t>(row)]) continue;
      const std::string file = IniSetFilePath(options, row, ctx.AppFolder());
      options.paths[static_cast<size_t>(row)] = file;
      // Only a name with a three-letter extension keeps a backup, with "bak" in its place.
      if (file.size() >= 4 && file[file.size() - 4] == '.' && FileExists(file)) {
        const std::string backup = file.substr(0, file.size() - 3) + "bak";
        KillQuiet(backup);
        RenameFile(file, backup);
      }
      const std::string text = IniSetFileText(ctx.store, row, options.sort, &work);
      if (!WriteFileAtomically(file, text)) {
        throw Failure(75, "Path/File access error: can't write " + file);
      }
    }
  });
  if (work.CancelRequested) result = IniSetResult::Cancelled;
  return result;
}

}  // namespace tessarin
