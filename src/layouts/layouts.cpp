#include "layouts/layouts.h"

#include <algorithm>
#include <unordered_set>

#include "app/context.h"
#include "archive/stagedunzip.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/work.h"
#include "online/download.h"

namespace tessarin {

namespace {

// Makes a folder and its parents; logs when it can't.
void MakeFolderLogged(Log& log, const std::string& folder) {
  if (FolderExists(folder)) return;
  std::error_code ec;
  std::filesystem::create_directories(FsPath(folder), ec);
  if (!FolderExists(folder)) log.WriteLogLine("Can't create folder : " + folder);
}

// The lines of a small text file, CR and LF both ending a line.
std::vector<std::string> FileLines(const std::string& path) {
  std::string text;
  std::vector<std::string> lines;
  if (!ReadWholeFile(path, text)) return lines;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find_first_of("\r\n", start);
    if (end == std::string::npos) {
      if (start < text.size()) lines.emplace_back(text, start);
      break;
    }
    lines.emplace_back(text, start, end - start);
    if (text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n') ++end;
    start = end + 1;
  }
  return lines;
}

// A download as every file of the layout tools goes: to name.dl, replacing the file only when
// the whole transfer succeeded.
bool FetchFile(const std::string& url, const std::string& file, Work* work) {
  const size_t slash = file.find_last_of("/\\");
  DeleteUrlFromCache(slash == std::string::npos ? file : file.substr(slash + 1));
  return DownloadFile(url, file, true, work) == kDownloadOk;
}

// The date of a dd/mm/yy field as a yymmdd key, taken by position.
std::string DateKey(const std::string& date) {
  const auto piece = [&](size_t from) {
    return from < date.size() ? date.substr(from, 2) : std::string();
  };
  return piece(6) + piece(3) + piece(0);
}

std::string Count(int n, const std::string& text) { return std::to_string(n) + text; }

}  // namespace

LayoutPaths OpenLayoutPaths(AppContext& ctx,
                            const std::vector<std::string>& candidateLayoutFolders) {
  LayoutPaths paths;
  RunGuarded(ctx.log, 11101, [&] {
    const std::string app = ctx.AppFolder();
    paths.DownloadFolder = app + "Layouts/";
    MakeFolderLogged(ctx.log, paths.DownloadFolder);
    if (!FolderExists(paths.DownloadFolder)) paths.DownloadFolder = app;
    paths.PreviewFolder = paths.DownloadFolder + "Previews/";
    MakeFolderLogged(ctx.log, paths.PreviewFolder);
    if (!FolderExists(paths.PreviewFolder)) paths.PreviewFolder = paths.DownloadFolder;
    paths.ListFolder = paths.DownloadFolder;

    const std::string inf = FindFileNoCase(app, kLayoutsInfName);
    if (FileExists(inf)) {
      const std::vector<std::string> lines = FileLines(inf);
      if (!lines.empty() && !lines[0].empty()) {
        paths.DownloadFolder = AddSlash(lines[0]);
        paths.PreviewFolder = paths.DownloadFolder + "Previews/";
        MakeFolderLogged(ctx.log, paths.PreviewFolder);
        if (!FolderExists(paths.PreviewFolder)) paths.PreviewFolder = paths.DownloadFolder;
      }
      if (lines.size() > 1 && !lines[1].empty()) paths.LayoutFolder = AddSlash(lines[1]);
    }
    if (paths.LayoutFolder.empty()) {
      for (const std::string& candidate : candidateLayoutFolders) {
        if (FolderExists(candidate)) {
          paths.LayoutFolder = AddSlash(candidate);
          break;
        }
      }
    }
    const auto setting = [&](const char* key, std::string& target) {
      const std::string value = ctx.settings.InfRead(key);
      if (!value.empty() && value != "-1") target = value;
    };
    setting("URL_LayoutsTXT", paths.UrlLayoutsTxt);
    setting("URL_LayoutsZIP", paths.UrlLayoutsZip);
    setting("URL_LayoutsJPG", paths.UrlLayoutsJpg);
  });
  return paths;
}

void SaveLayoutPaths(AppContext& ctx, const LayoutPaths& paths) {
  RunGuarded(ctx.log, 11102, [&] {
    const std::string text = paths.DownloadFolder + "\r\n" + paths.LayoutFolder + "\r\n" +
                             "; The first line is the path where to download the layouts' zip "
                             "files.\r\n" +
                             "; The second line is the path for your layouts.\r\n";
    WriteFileAtomically(FindFileNoCase(ctx.AppFolder(), kLayoutsInfName), text);
    ctx.settings.InfWrite("URL_LayoutsTXT", paths.UrlLayoutsTxt);
    ctx.settings.InfWrite("URL_LayoutsZIP", paths.UrlLayoutsZip);
    ctx.settings.InfWrite("URL_LayoutsJPG", paths.UrlLayoutsJpg);
  });
}

std::vector<std::string> LayoutFields(const std::string& line) {
  std::vector<std::string> fields;
  size_t start = 0;
  while (true) {
    const size_t end = line.find(';', start);
    if (end == std::string::npos) {
      fields.emplace_back(line, start);
      return fields;
    }
    fields.emplace_back(line, start, end - start);
    start = end + 1;
  }
}

std::string LayoutField(const std::vector<std::string>& fields, size_t index) {
  return index < fields.size() ? fields[index] : std::string();
}

bool IsVerticalLine(const std::vector<std::string>& fields) {
  return UpperCopy(LayoutField(fields, 1)).find("[VERTICAL]") != std::string::npos;
}

bool IsOtherSystem(const std::vector<std::string>& fields) {
  const std::string system = LayoutField(fields, 9);
  return !system.empty() && system != "mame";
}

std::string NameWithoutVertical(const std::string& name) {
  return std::string_view(name).ends_with("_v") ? name.substr(0, name.size() - 2) : name;
}

std::string LayoutAddress(const std::string& field, const std::string& defaultFolder,
                          const std::string& name, const std::string& extension) {
  std::string address = field.empty() ? defaultFolder : field;
  if (!address.empty() && (address.back() == '/' || address.back() == '\\')) {
    address += name + extension;
  }
  return address;
}

bool DownloadLayoutList(const LayoutPaths& paths, Work* work) {
  const std::string list = paths.ListFolder + kLayoutListName;
  KillQuiet(list + ".dl");
  DeleteUrlFromCache("layouts.txt");
  DeleteUrlFromCache("layouts.txt.dl");
  return DownloadFile(paths.UrlLayoutsTxt, list, true, work) == kDownloadOk;
}

bool LoadLayoutList(Log& log, const LayoutPaths& paths, bool expert,
                    std::vector<std::string>& lines) {
  lines.clear();
  const std::string path = paths.ListFolder + kLayoutListName;
  std::string text;
  if (!FileExists(path) || !ReadWholeFile(path, text)) {
    log.WriteLogLine("ChargeLayoutTXT - Couldn't find " + path);
    return false;
  }
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    start = end + 1;
    if (expert && (line.empty() || IsOtherSystem(LayoutFields(line)))) continue;
    lines.push_back(std::move(line));
  }
  // A file ending in a line end gives no last empty line.
  if (!lines.empty() && lines.back().empty() && !text.empty() && text.back() == '\n') {
    lines.pop_back();
  }
  std::sort(lines.begin(), lines.end());
  log.WriteLogLine("List of layouts loaded - " + std::to_string(lines.size()) + " layouts.");
  return true;
}

LayoutRunCounts ProcessAllLayouts(AppContext& ctx, Work& work, const LayoutPaths& paths,
                                  const std::vector<std::string>& lines, bool install,
                                  bool vertical, const LayoutReport& report) {
  LayoutRunCounts counts;
  counts.lines = static_cast<int>(lines.size());
  const Messages& m = ctx.messages;
  Log& log = ctx.log;
  RunGuarded(log, 11103, [&] {
    work.ProgressMax = std::max<long long>(1, static_cast<long long>(lines.size()));
    for (size_t i = 0; i < lines.size(); ++i) {
      work.ProgressValue = static_cast<long long>(i + 1);
      if (work.CancelRequested) {
        counts.cancelled = true;
        break;
      }
      const std::vector<std::string> fields = LayoutFields(lines[i]);
      const std::string name = LayoutField(fields, 0);
      if (lines[i].empty() || name.empty()) continue;
      const std::string zipField = LayoutField(fields, 5);
      const bool pack = zipField == paths.PackAddress;
      const bool wanted = IsVerticalLine(fields) == vertical && !IsOtherSystem(fields) && !pack;
      const bool have = install
                            ? !paths.LayoutFolder.empty() && FolderExists(paths.LayoutFolder + name)
                            : FileExists(paths.DownloadFolder + name + ".zip");
      if (wanted && !have) {
        work.SetStatus("Downloading " + name + ".zip");
        const std::string url = LayoutAddress(zipField, paths.UrlLayoutsZip, name, ".zip");
        const std::string zip = paths.DownloadFolder + name + ".zip";
        if (!FetchFile(url, zip, &work)) {
          if (report) report(m.Lng(413) + name + ".zip");
          log.WriteLogLine("Can't download " + url);
          ++counts.downloadErrors;
          continue;
        }
        ++counts.downloaded;
        if (report) report(name + ".zip " + m.Lng(424));
        log.WriteLogLine("");
        log.WriteLogLine("Downloaded " + url);
        if (!install) continue;
        work.SetStatus("Unzip " + name + ".zip");
        std::string unzipError;
        UnzipEnvironment environment{ctx.AppFolder(), &unzipError, &log, nullptr};
        if (UnzipAllStaged(environment, zip, paths.LayoutFolder) && unzipError.empty()) {
          log.WriteLogLine("Unzipped " + name + ".zip in " + paths.LayoutFolder);
          ++counts.unzipped;
          KillQuiet(zip);
          if (report) report(name + ".zip " + m.Lng(426));
        } else {
          ++counts.unzipErrors;
          log.WriteLogLine("ERROR WHILE DEZIPPING " + zip + " to " + paths.LayoutFolder);
          unzipError.clear();
          if (report) report(m.Lng(425) + name + ".zip");
        }
      } else if (!pack) {
        // The lines of the other orientation and of other systems come here too, and count as
        // existing: the summary has always counted them so.
        ++counts.existing;
        log.WriteLogLine(name + " already exists in " + paths.LayoutFolder);
        if (report) report("- " + name + m.Lng(435));
      } else {
        ++counts.inPack;
        log.WriteLogLine("");
        log.WriteLogLine(name + " is part of the pack. Please doawnload : " + zipField);
        if (report) report("- " + name + m.Lng(431));
      }
    }
  });
  if (counts.cancelled) {
    log.WriteLogLine("Operation aborted by user.");
    if (report) report(m.Lng(377));
  }
  log.WriteLogLine("AtomicDownloadPath=" + paths.DownloadFolder);
  log.WriteLogLine("AtomicLayoutPath=" + paths.LayoutFolder);
  const auto summary = [&](int n, int message, bool always) {
    if (!always && n <= 0) return;
    const std::string line = Count(n, m.Lng(message));
    if (report) report(line);
    log.WriteLogLine(line);
  };
  summary(counts.lines, 436, true);
  summary(counts.downloaded, 437, true);
  summary(counts.unzipped, 440, false);
  summary(counts.existing, 444, false);
  summary(counts.inPack, 465, false);
  summary(counts.downloadErrors, 466, false);
  summary(counts.unzipErrors, 467, false);
  return counts;
}

LayoutRunCounts DownloadSelected(AppContext& ctx, Work& work, const LayoutPaths& paths,
                                 const std::vector<std::string>& chosenLines, int listCount,
                                 bool unzip, bool deleteZip, const LayoutReport& report) {
  LayoutRunCounts counts;
  counts.lines = listCount;
  counts.selected = static_cast<int>(chosenLines.size());
  if (chosenLines.empty()) return counts;
  const Messages& m = ctx.messages;
  Log& log = ctx.log;
  RunGuarded(log, 11104, [&] {
    work.SetStatus("Downloading...");
    work.ProgressMax = std::max<long long>(1, static_cast<long long>(chosenLines.size()));
    for (size_t i = 0; i < chosenLines.size(); ++i) {
      work.ProgressValue = static_cast<long long>(i + 1);
      if (work.CancelRequested) {
        counts.cancelled = true;
        break;
      }
      const std::vector<std::string> fields = LayoutFields(chosenLines[i]);
      const std::string name = LayoutField(fields, 0);
      const std::string zipField = LayoutField(fields, 5);
      if (zipField == paths.PackAddress) {
        ++counts.inPack;
        if (report) report(name + m.Lng(404));
        continue;
      }
      const std::string url = LayoutAddress(zipField, paths.UrlLayoutsZip, name, ".zip");
      const std::string zip = paths.DownloadFolder + name + ".zip";
      work.SetStatus("Downloading " + name + ".zip");
      if (!FetchFile(url, zip, &work)) {
        ++counts.downloadErrors;
        if (report) report(name + " " + m.Lng(434));
        continue;
      }
      ++counts.downloaded;
      if (report) report(name + " " + m.Lng(433));
      if (!unzip) continue;
      work.SetStatus("Unzipping " + zip);
      std::string unzipError;
      UnzipEnvironment environment{ctx.AppFolder(), &unzipError, &log, nullptr};
      if (UnzipAllStaged(environment, zip, paths.LayoutFolder) && unzipError.empty()) {
        ++counts.unzipped;
        if (deleteZip) KillQuiet(zip);
        if (report) report(name + m.Lng(439));
      } else {
        ++counts.unzipErrors;
        log.WriteLogLine("ERROR WHILE DEZIPPING " + zip + " to " + paths.LayoutFolder);
        if (report) report(m.Lng(438) + " " + name);
        unzipError.clear();
      }
    }

    if (counts.inPack > 0 && !counts.cancelled &&
        ctx.Ui().AskYesNo(std::to_string(counts.inPack) + m.Lng(405), {}, Icon::Question)) {
      work.SetStatus(m.Lng(406));
      const std::string pack = paths.DownloadFolder + kPackFileName;
      if (!FetchFile(paths.PackAddress, pack, &work)) {
        log.WriteLogLine("Can't download pack : " + paths.PackAddress);
        if (report) report("Can't download pack.");
      } else {
        if (report) report(m.Lng(407));
        if (unzip) {
          work.SetStatus("Unzipping pack...");
          std::string unzipError;
          UnzipEnvironment environment{ctx.AppFolder(), &unzipError, &log, nullptr};
          if (UnzipAllStaged(environment, pack, paths.LayoutFolder) && unzipError.empty()) {
            if (report) report("Pack unzipped.");
            if (deleteZip) KillQuiet(pack);
          } else {
            log.WriteLogLine("ERROR WHILE DEZIPPING " + pack + " to " + paths.LayoutFolder);
            if (report) report("Can't unzip pack - Error.");
          }
        }
      }
    }
  });
  if (counts.cancelled) log.WriteLogLine("Operation aborted by user.");
  log.WriteLogLine("AtomicDownloadPath=" + paths.DownloadFolder);
  log.WriteLogLine("AtomicLayoutPath=" + paths.LayoutFolder);
  log.WriteLogLine(Count(counts.lines, " layouts."));
  log.WriteLogLine(Count(counts.selected, " layouts selected to download."));
  log.WriteLogLine(Count(counts.downloaded, " layouts were downloaded."));
  log.WriteLogLine(
      Count(counts.inPack, " layouts were not downloaded because they are in the pack."));
  log.WriteLogLine(Count(counts.downloadErrors, " errors occured while downloading."));
  log.WriteLogLine(Count(counts.unzipped, " layouts were unzipped."));
  log.WriteLogLine(Count(counts.unzipErrors, " errors occured while unzipping."));
  return counts;
}

void SortLayouts(std::vector<std::string>& lines, int choice) {
  const auto key = [choice](const std::string& line) -> std::string {
    const std::vector<std::string> fields = LayoutFields(line);
    switch (choice) {
      case 1:
        return LayoutField(fields, 1);
      case 2:
        return DateKey(LayoutField(fields, 3));
      case 3: {
        const std::string modified = LayoutField(fields, 8);
        return DateKey(modified.empty() ? LayoutField(fields, 3) : modified);
      }
      case 4:
        return LayoutField(fields, 2);
      default:
        return {};
    }
  };
  if (choice <= 0 || choice > 4) {
    std::sort(lines.begin(), lines.end());
    return;
  }
  // The key stands in front of the line with a ';' behind it while the array is sorted by bytes,
  // so lines of the same key keep the order of their own text.
  std::vector<std::pair<std::string, size_t>> keyed;
  keyed.reserve(lines.size());
  for (const std::string& line : lines) {
    std::string k = key(line);
    keyed.emplace_back(k + ";" + line, k.size() + 1);
  }
  std::sort(keyed.begin(), keyed.end());
  for (size_t i = 0; i < lines.size(); ++i) lines[i] = keyed[i].first.substr(keyed[i].second);
  if (choice == 2 || choice == 3) std::reverse(lines.begin(), lines.end());
}

void FilterLayouts(std::vector<std::string>& lines, int choice) {
  if (choice != 1 && choice != 2) return;
  for (std::string& line : lines) {
    const bool verticalName = std::string_view(LayoutField(LayoutFields(line), 0)).ends_with("_v");
    if ((choice == 1 && !verticalName) || (choice == 2 && verticalName)) line.clear();
  }
}

void KeepOnlyMissing(std::vector<std::string>& lines, const LayoutPaths& paths) {
  if (paths.LayoutFolder.empty()) return;
  for (std::string& line : lines) {
    const std::string name = NameWithoutVertical(LayoutField(LayoutFields(line), 0));
    if (!name.empty() && FolderExists(paths.LayoutFolder + name)) line.clear();
  }
}

std::string LayoutDetailsText(AppContext& ctx, const LayoutPaths& paths, const std::string& line) {
  const Messages& m = ctx.messages;
  const std::vector<std::string> f = LayoutFields(line);
  const std::string name = LayoutField(f, 0);
  std::string text = "Rom: " + NameWithoutVertical(name) + "\r\n";
  text += m.Lng(414) + " " + LayoutField(f, 1) + "\r\n\r\n";
  text += m.Lng(415) + " " + LayoutField(f, 2) + "\r\n";
  text += m.Lng(416) + " " + LayoutField(f, 3) + "\r\n";
  if (!LayoutField(f, 4).empty()) text += m.Lng(417) + " " + LayoutField(f, 4) + "\r\n";
  if (!LayoutField(f, 7).empty()) {
    text += m.Lng(418) + " " + LayoutField(f, 7) + "\r\n";
    text += m.Lng(416) + " " + LayoutField(f, 8) + "\r\n";
  }
  if (!name.empty() && !paths.LayoutFolder.empty() && FolderExists(paths.LayoutFolder + name)) {
    text += "\r\n" + m.Lng(427) + "\r\n";
  }
  if (!name.empty() && FileExists(paths.DownloadFolder + name + ".zip")) {
    text += name + ".zip " + m.Lng(428) + "\r\n";
  }
  return text;
}

std::string PreviewFile(const LayoutPaths& paths, const std::string& line) {
  return paths.PreviewFolder + LayoutField(LayoutFields(line), 0) + ".jpg";
}

std::string PreviewAddress(const LayoutPaths& paths, const std::string& line) {
  const std::vector<std::string> fields = LayoutFields(line);
  return LayoutAddress(LayoutField(fields, 6), paths.UrlLayoutsJpg, LayoutField(fields, 0), ".jpg");
}

bool SaveLayoutList(const std::string& file, const std::vector<std::string>& lines) {
  const bool ini = std::string_view(UpperCopy(file)).ends_with(".INI");
  std::string text;
  if (ini) {
    text +=
        "[FOLDER_SETTINGS]\r\nRootFolderIcon = cust1.ico\r\nSubFolderIcon = cust2.ico\r\n\r\n"
        "[ROOT_FOLDER]\r\n";
  }
  std::unordered_set<std::string> written;
  for (const std::string& line : lines) {
    std::string name = LayoutField(LayoutFields(line), 0);
    if (std::string_view(UpperCopy(name)).ends_with("_V")) name.resize(name.size() - 2);
    if (name.empty()) continue;
    if (!ini) name += ".zip";
    if (!written.insert(name).second) continue;
    text += name + "\r\n";
  }
  if (FileExists(file)) {
    KillQuiet(file + ".bak");
    RenameFile(file, file + ".bak");
  }
  return WriteFileAtomically(file, text);
}

}  // namespace tessarin
