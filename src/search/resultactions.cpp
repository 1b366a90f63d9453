#include "search/resultactions.h"

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <algorithm>
#include <unordered_set>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/work.h"
#include "online/download.h"

namespace tessarin {

namespace {

size_t Column(int longest) { return static_cast<size_t>(std::max(0, longest)); }

// The lines of a file, whatever its line ends (CR LF, LF or a lone CR).
std::vector<std::string_view> FileLines(std::string_view text) {
  std::vector<std::string_view> lines;
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' || text[i] == '\n') {
      lines.push_back(text.substr(start, i - start));
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      start = i + 1;
    }
  }
  if (start < text.size()) lines.push_back(text.substr(start));
  return lines;
}

// The games a file of rom names names, in file order: trimmed lines, without the empty ones,
// those longer than the name column and the section lines, and without names the store lacks.
template <class Body>
void ForEachListedGame(const GameStore& store, std::string_view fileText, Work* work, Body body) {
  if (work) work->ProgressMax = 100;
  int step = 0;
  for (const std::string_view raw : FileLines(fileText)) {
    if (work) {
      if (work->CancelRequested) return;
      step = step >= 99 ? 0 : step + 1;
      work->ProgressValue = step;
    }
    const std::string name(TrimBlanks(raw));
    if (name.empty() || name.size() > Column(store.LongestNameLength) || name[0] == '[') continue;
    const int game = store.FindGame(name);
    if (game == 0) continue;
    std::string padded = name;
    padded.resize(Column(store.LongestNameLength), ' ');
    body(game, padded);
  }
}

}  // namespace

std::string RomNameOfLine(std::string_view line, int longest) {
  return std::string(TrimBlanks(line.substr(0, std::min(line.size(), Column(longest)))));
}

std::string TitleOfLine(std::string_view line, int longest) {
  if (line.size() <= Column(longest)) return {};
  return std::string(TrimBlanks(line.substr(Column(longest))));
}

std::vector<int> PickedRows(int lineCount, std::vector<int> selectedRows) {
  std::vector<int> rows;
  for (const int row : selectedRows) {
    if (row >= 0 && row < lineCount) rows.push_back(row);
  }
  if (!rows.empty()) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
  }
  rows.resize(static_cast<size_t>(std::max(0, lineCount)));
  for (int i = 0; i < lineCount; ++i) rows[static_cast<size_t>(i)] = i;
  return rows;
}

std::vector<std::string> PickedRomNames(const std::vector<std::string>& lines,
                                        const std::vector<int>& selectedRows, int longest,
                                        std::string_view noRomText) {
  std::vector<std::string> names;
  for (const int row : PickedRows(static_cast<int>(lines.size()), selectedRows)) {
    const std::string& line = lines[static_cast<size_t>(row)];
    if (line == noRomText) continue;
    std::string name = RomNameOfLine(line, longest);
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

std::string RomFolderOf(const AppContext& ctx) {
  std::string folder = ctx.settings.InfRead("RomPath");
  if (folder.empty() || folder == "-1") folder = ctx.AppFolder();
  return AddSlash(folder);
}

void DeleteListed(AppContext& ctx, Work& work, const std::vector<std::string>& romNames) {
  const std::string folder = RomFolderOf(ctx);
  work.ProgressMax = static_cast<long long>(romNames.size());
  work.ProgressValue = 0;
  work.SetStatus(ctx.messages.Lng(315));
  for (const std::string& name : romNames) {
    if (work.CancelRequested) break;
    ++work.ProgressValue;
    ShellDelete(folder + name + ".zip", false);
  }
}

int CopyListed(AppContext& ctx, Work& work, const std::vector<std::string>& romNames,
               const std::string& destination) {
  const std::string folder = RomFolderOf(ctx);
  const std::string target = AddSlash(destination);
  work.ProgressMax = static_cast<long long>(romNames.size());
  work.ProgressValue = 0;
  work.SetStatus(ctx.messages.Lng(316));
  int copied = 0;
  for (const std::string& name : romNames) {
    if (work.CancelRequested) break;
    ++work.ProgressValue;
    const std::string source = folder + name + ".zip";
    if (!FileExists(source)) continue;  // a rom the folder lacks is passed over silently
    ShellCopy(source, target + name + ".zip", 0, true, false);
    if (FileExists(target + name + ".zip")) ++copied;
  }
  return copied;
}

std::string MakeIniText(const std::string& folderName, const std::vector<std::string>& entries,
                        bool addZip) {
  std::string text =
      "[FOLDER_SETTINGS]\r\nRootFolderIcon cust1\r\nSubFolderIcon cust2\r\n\r\n\r\n[" + folderName +
      "]\r\n";
  for (const std::string& entry : entries) {
    text += entry.substr(0, entry.find(' '));
    if (addZip) text += kZipSuffix;
    text += "\r\n";
  }
  return text;
}

std::string ClipboardText(const std::string& caption, const std::vector<std::string>& lines) {
  std::string text = caption + "\r\n";
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

std::string TextFileText(const std::string& caption, const std::vector<std::string>& lines,
                         bool addZip, int longest) {
  std::string text = caption + "\r\n";
  // Every line is rebuilt, the line of a search that found nothing too.
  for (const std::string& line : lines) {
    if (!addZip) {
      text += line + "\r\n";
      continue;
    }
    // The width of 14 is fixed: a name of more than 10 characters loses part of its ".zip".
    std::string head = RomNameOfLine(line, longest) + ".zip";
    head.resize(14, ' ');
    text += head;
    if (line.size() > Column(longest)) text += line.substr(Column(longest));
    text += "\r\n";
  }
  return text;
}

std::string CountCaption(size_t count, const Messages& messages) {
  return std::to_string(count) + messages.Lng(335);
}

int AddListFromFile(const GameStore& store, std::vector<std::string>& lines,
                    std::string_view fileText, std::string_view noRomText, Work* work) {
  if (lines.size() == 1 && lines[0] == noRomText) lines.clear();
  const size_t column = Column(store.LongestNameLength);
  // The name columns already in the list, so that a rom never stands twice.
  std::unordered_set<std::string> present;
  for (const std::string& line : lines) {
    if (line.size() >= column) present.insert(line.substr(0, column));
  }
  int added = 0;
  ForEachListedGame(store, fileText, work, [&](int game, const std::string& padded) {
    if (!present.insert(padded).second) return;
    lines.push_back(padded + "  " + GameDescription(store, game));
    ++added;
  });
  return added;
}

int WithdrawListFromFile(const GameStore& store, std::vector<std::string>& lines,
                         std::string_view fileText, Work* work) {
  const size_t column = Column(store.LongestNameLength);
  std::unordered_set<std::string> withdrawn;
  ForEachListedGame(store, fileText, work,
                    [&](int, const std::string& padded) { withdrawn.insert(padded); });
  if (withdrawn.empty()) return 0;
  const size_t before = lines.size();
  std::erase_if(lines, [&](const std::string& line) {
    return line.size() >= column && withdrawn.count(line.substr(0, column)) > 0;
  });
  return static_cast<int>(before - lines.size());
}

DownloadGate CheckDownloadSelection(int selectedCount) {
  if (selectedCount < 1) return DownloadGate::NothingSelected;
  if (selectedCount > kDownloadLineLimit) return DownloadGate::TooMany;
  return DownloadGate::Go;
}

int DownloadImageFile(const std::string& url, const std::string& file, Work* work) {
  DownloadOptions options;
  options.reportProgress = false;
  return DownloadFile(url, file, false, work, options);
}

int DownloadMissingImages(AppContext& ctx, Work& work, const std::vector<std::string>& onlineImages,
                          const std::vector<ImageLine>& lines, int listLineCount,
                          const ImageDownloader& download) {
  static const char* const kKinds[] = {"Titles",   "Snap",   "Marquees",
                                       "Cabinets", "Cpanel", "Flyers"};
  static const char* const kFolderKeys[] = {"TitlesPath",   "SnapPath",   "MarqueesPath",
                                            "CabinetsPath", "CpanelPath", "FlyersPath"};
  work.ProgressMax = std::max(0, listLineCount - 1);
  work.SetStatus("Downloading");
  int fetched = 0;
  for (const ImageLine& line : lines) {
    if (work.CancelRequested) break;
    work.ProgressValue = line.row;
    const std::string png = line.romName + ".png";
    for (int i = 0; i < 6; ++i) {
      if (work.CancelRequested) break;
      const std::string kind = kKinds[i];
      std::string folder = ctx.settings.InfRead(kFolderKeys[i]);
      if (ParseLeadingNumber(folder) == -1) folder.clear();
      if (folder.empty()) {
        ctx.log.WriteLogLine("Can't download " + png + " - No destination path.");
        continue;
      }
      const std::string target = AddSlash(folder) + png;
      if (FileExists(target)) {
        work.SetStatus(kind + "\\" + png + " already exists.");
        ctx.log.WriteLogLine(kind + "\\" + png + " already exists : " + target);
        continue;
      }
      DeleteUrlFromCache(png);
      const size_t slot = static_cast<size_t>(i) + 1;
      std::string address = slot < onlineImages.size() ? onlineImages[slot] : std::string();
      if (address.empty() || ParseLeadingNumber(address) == -1) {
        ctx.log.WriteLogLine("Can't download " + png + " non valid destination path for " + kind +
                             "\\");
        work.SetStatus("No path for " + kind + "\\");
        continue;
      }
      address = FastReplace(address, "#ROMNAME#", line.romName);
      address = FastReplace(address, "#GAMENAME#", line.title);
      if (download(address, target, &work) != 0) {
        work.SetStatus("Can't download " + png);
        ctx.log.WriteLogLine("Can't download " + kind + "\\" + png);
        continue;
      }
      ++fetched;
      work.SetStatus("Download " + kind + "\\" + png);
    }
  }
  if (work.CancelRequested) ctx.log.WriteLogLine("Download procedure aborted by user.");
  return fetched;
}

std::vector<std::string> PrepareSearchEngines(std::vector<std::string>& engines,
                                              const std::string& mawsBase) {
  if (engines.empty()) engines.emplace_back();
  if (engines.size() == 1) {
    // The first row has no name of its own: its name part is the address's scheme.
    engines.push_back(mawsBase + "/maws/romset/#ROMNAME#");
    engines.push_back("datObase:" + mawsBase + "/datObase/rom.php?zip=#ROMNAME#&s4=VIEW");
  }
  std::vector<std::string> names;
  for (size_t i = 1; i < engines.size(); ++i) {
    names.push_back(engines[i].substr(0, engines[i].find(':')));
  }
  return names;
}

std::string SearchOnlineAddress(const std::vector<std::string>& engines, int comboPosition,
                                const std::string& romName, const std::string& title) {
  const int rows = static_cast<int>(engines.size()) - 1;
  if (rows < 1) return {};
  int row = comboPosition + 1;
  if (row > rows || row < 1) row = 1;
  const std::string& text = engines[static_cast<size_t>(row)];
  const size_t colon = text.find(':');
  std::string address = colon == std::string::npos ? std::string() : text.substr(colon + 1);
  address = TrimBlanks(address);
  address = FastReplace(address, "#ROMNAME#", romName);
  address = FastReplace(address, "#GAMENAME#", title);
  return address;
}

void SortResultLines(std::vector<std::string>& lines, bool byTitle, int longest) {
  if (lines.size() < 2) return;
  if (!byTitle) {
    std::sort(lines.begin(), lines.end());
    return;
  }
  const size_t column = Column(longest);
  std::vector<std::pair<std::string, size_t>> keys;
  keys.reserve(lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    const size_t cut = std::min(column, line.size());
    keys.emplace_back(line.substr(cut) + line.substr(0, cut), i);
  }
  std::sort(keys.begin(), keys.end());
  std::vector<std::string> sorted;
  sorted.reserve(lines.size());
  for (auto& key : keys) sorted.push_back(std::move(lines[key.second]));
  lines = std::move(sorted);
}

std::pair<std::vector<std::string>, std::vector<std::string>> JumpEntries(const GameStore& store) {
  std::pair<std::vector<std::string>, std::vector<std::string>> entries;
  const int count = store.GameCount();
  entries.first.reserve(static_cast<size_t>(std::max(0, count)));
  entries.second.reserve(static_cast<size_t>(std::max(0, count)));
  for (int i = 1; i <= count; ++i) {
    const std::string& name = store.GameNames()[static_cast<size_t>(i)];
    const std::string title = GameDescription(store, i);
    entries.first.push_back(name + " - " + title);
    entries.second.push_back(title + " - " + name);
  }
  return entries;
}

std::string RomFromRomFirstEntry(std::string_view text) {
  if (text.empty()) return {};
  const size_t dash = text.find('-');
  if (dash == std::string_view::npos) return std::string(text);
  return std::string(text.substr(0, dash >= 1 ? dash - 1 : 0));
}

std::string RomFromTitleFirstEntry(std::string_view text) {
  if (text.empty()) return {};
  const size_t dash = text.rfind('-');
  if (dash == std::string_view::npos) return std::string(text);
  return dash + 2 <= text.size() ? std::string(text.substr(dash + 2)) : std::string();
}

std::string SwapJumpEntry(std::string_view text) {
  const size_t dash = text.rfind('-');
  if (dash == std::string_view::npos) return std::string(text);
  const std::string left(TrimBlanks(text.substr(0, dash)));
  const std::string right(TrimBlanks(text.substr(dash + 1)));
  return right + " - " + left;
}

std::string TinyViewerPath(const std::string& appFolder) {
  const QDir folder(QString::fromStdString(appFolder));
  for (const QString& entry : folder.entryList(QDir::Files)) {
    const QString lower = entry.toLower();
    if (lower == QStringLiteral("zubrix") || lower == QStringLiteral("zubrix.exe")) {
      return PathText(FsPath(appFolder) / entry.toStdString());
    }
  }
  return {};
}

std::string TinyViewerSettings(const AppContext& ctx, int screenWidth, int screenHeight) {
  std::string text;
  for (const char* key :
       {"TitlesPath", "SnapPath", "MarqueesPath", "CabinetsPath", "CpanelPath", "FlyersPath"}) {
    text += std::string(key) + "=" + ctx.settings.InfRead(key) + "\r\n";
  }
  text += "Width=" + std::to_string(screenWidth * 2 / 3) + "\r\n";
  text += "Height=" + std::to_string(screenHeight * 2 / 3) + "\r\n";
  text += "Color=White\r\nBackColor=Black\r\nCenter\r\n";
  return text;
}

bool RunTinyViewer(AppContext& ctx, const std::string& romName, int screenWidth, int screenHeight,
                   const std::function<bool(const std::string&, const std::string&)>& start,
                   const std::function<void()>& pump) {
  const std::string program = TinyViewerPath(ctx.AppFolder());
  if (program.empty() || romName.empty()) return false;
  const std::string settings = FindFileNoCase(ctx.AppFolder(), "Zubrix.inf");
  const std::string backup = settings + ".bak";
  bool backedUp = false;
  if (FileExists(settings)) {
    KillQuiet(backup);
    backedUp = RenameFile(settings, backup);
  }
  WriteFileAtomically(settings, TinyViewerSettings(ctx, screenWidth, screenHeight));
  const bool started = start(program, romName);
  // The viewer reads its settings as it starts; give it that moment before the old file
  // comes back.
  for (int i = 0; i < 12; ++i) {
    if (pump) pump();
  }
  if (backedUp) {
    KillQuiet(settings);
    RenameFile(backup, settings);
  }
  return started;
}

}  // namespace tessarin
