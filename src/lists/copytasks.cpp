#include "lists/copytasks.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <unordered_map>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/work.h"

namespace tessarin {

namespace {

namespace fs = std::filesystem;

std::string Setting(const Settings& s, const char* key, const char* fallback = "") {
  const std::string value = s.InfRead(key);
  return value == "-1" ? std::string(fallback) : value;
}

NameListKind KindOf(const std::string& value) {
  if (value == "1") return NameListKind::Files;
  if (value == "2") return NameListKind::Subfolders;
  return NameListKind::File;
}

// The last part of a path: the file or folder name behind its last separator.
std::string LastPart(std::string path) {
  while (!path.empty() && (path.back() == '/' || path.back() == '\\')) path.pop_back();
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool OriginExists(const NameListOrigin& origin) {
  return origin.kind == NameListKind::File ? FileExists(origin.file) : FolderExists(origin.Path());
}

std::string Now() {
  const std::time_t t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &t);
#else
  localtime_r(&t, &local);
#endif
  char text[32];
  std::strftime(text, sizeof text, "%H:%M:%S", &local);
  return text;
}

// The names of a folder's entries, in name order (the file system's own order differs from one
// system to the next).
std::vector<std::string> FolderEntries(const std::string& folder, bool folders) {
  std::vector<std::string> names;
  std::error_code ec;
  for (const auto& item : fs::directory_iterator(FsPath(folder), ec)) {
    std::error_code ignored;
    if (folders ? item.is_directory(ignored) : item.is_regular_file(ignored)) {
      names.push_back(PathText(item.path().filename()));
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

CopyTaskOptions LoadCopyTaskOptions(AppContext& ctx) {
  const Settings& s = ctx.settings;
  CopyTaskOptions o;
  o.list.kind = KindOf(s.InfRead("CopyTsk_ListOfRom"));
  o.list.file = Setting(s, "CopyTsk_ListFile");
  o.list.folder = Setting(s, "CopyTsk_ListFolder");
  o.list.subfolders = Setting(s, "CopyTsk_ListSub");
  o.list.extension = Setting(s, "CopyTsk_Ext1", "zip");
  o.compare.kind = KindOf(s.InfRead("CopyTsk_CompList"));
  o.compare.file = Setting(s, "CopyTsk_CompFile");
  o.compare.folder = Setting(s, "CopyTsk_CompFolder");
  o.compare.subfolders = Setting(s, "CopyTsk_CompSub");
  o.compare.extension = Setting(s, "CopyTsk_Ext2", "zip");
  o.sourceExtension = Setting(s, "CopyTsk_Ext3");
  o.source = Setting(s, "CopyTsk_Source");
  o.destination = Setting(s, "CopyTsk_Dest");
  const std::string action = s.InfRead("CopyTsk_Action");
  o.action = action == "1"   ? CopyAction::Move
             : action == "2" ? CopyAction::Delete
                             : CopyAction::Copy;
  return o;
}

void SaveCopyTaskOptions(AppContext& ctx, const CopyTaskOptions& o) {
  Settings& s = ctx.settings;
  s.InfWrite("CopyTsk_Ext1", o.list.extension);
  s.InfWrite("CopyTsk_Ext2", o.compare.extension);
  s.InfWrite("CopyTsk_Ext3", o.sourceExtension);
  s.InfWrite("CopyTsk_ListOfRom", static_cast<int>(o.list.kind));
  s.InfWrite("CopyTsk_ListFile", o.list.file);
  s.InfWrite("CopyTsk_ListFolder", o.list.folder);
  s.InfWrite("CopyTsk_ListSub", o.list.subfolders);
  s.InfWrite("CopyTsk_CompList", static_cast<int>(o.compare.kind));
  s.InfWrite("CopyTsk_CompFile", o.compare.file);
  s.InfWrite("CopyTsk_CompFolder", o.compare.folder);
  s.InfWrite("CopyTsk_CompSub", o.compare.subfolders);
  s.InfWrite("CopyTsk_Source", o.source);
  s.InfWrite("CopyTsk_Dest", o.destination);
  s.InfWrite("CopyTsk_Action", static_cast<int>(o.action));
}

std::vector<std::string> ReadNameList(const NameListOrigin& origin, Work* work) {
  std::vector<std::string> names;
  const auto cancelled = [work] { return work && work->CancelRequested; };
  if (origin.kind == NameListKind::File) {
    std::string content;
    if (!ReadWholeFile(origin.file, content)) return names;
    size_t start = 0;
    while (start < content.size() && !cancelled()) {
      size_t end = content.find_first_of("\r\n", start);
      if (end == std::string::npos) end = content.size();
      std::string name(TrimBlanks(std::string_view(content).substr(start, end - start)));
      if (end < content.size() && content[end] == '\r' && end + 1 < content.size() &&
          content[end + 1] == '\n') {
        ++end;
      }
      start = end + 1;
      if (name.empty()) continue;
      // Only the last character goes: "abc.zip" gives "abc.zi", as lists have always read.
      if (name.size() >= 4 && LowerCopy(name.substr(name.size() - 4)) == ".zip") name.pop_back();
      names.push_back(LowerCopy(name));
    }
    return names;
  }
  if (origin.kind == NameListKind::Files) {
    const std::string extension = LowerCopy(TrimBlanks(origin.extension));
    for (const std::string& file : FolderEntries(origin.folder, false)) {
      if (cancelled()) break;
      if (extension != "*" && !extension.empty()) {
        const size_t dot = file.rfind('.');
        if (dot == std::string::npos || LowerCopy(file.substr(dot + 1)) != extension) continue;
      }
      const std::string lowered = LowerCopy(file);
      names.push_back(
          std::string(TrimBlanks(std::string_view(lowered).substr(0, lowered.find('.')))));
    }
    return names;
  }
  for (const std::string& folder : FolderEntries(origin.subfolders, true)) {
    if (cancelled()) break;
    names.push_back(LowerCopy(folder));
  }
  return names;
}

std::string CopyTaskConfirmation(const CopyTaskOptions& o, CopyTaskField& badField) {
  static const char* const kFirst[] = {"If the roms listed in the file ",
                                       "If the files listed in the folder ",
                                       "If the subfolders listed in the folder "};
  static const char* const kSecond[] = {"roms listed in the file", "files listed in the folder",
                                        "subfolders in the folder"};
  static const char* const kAction[] = {"will be copied into destination path.",
                                        "will be moved into destination path.",
                                        "will be deleted from SOURCE path."};
  badField = CopyTaskField::None;
  std::string text = kFirst[static_cast<int>(o.list.kind)];
  text += "\r\n" + LastPart(o.list.Path()) + "\r\n";
  if (!OriginExists(o.list)) badField = CopyTaskField::List;
  text += "match with the ";
  text += kSecond[static_cast<int>(o.compare.kind)];
  text += "\r\n" + LastPart(o.compare.Path()) + "\r\n";
  if (badField == CopyTaskField::None && !OriginExists(o.compare)) {
    badField = CopyTaskField::Compare;
  }
  text += "then the files from source path\r\n";
  text += kAction[static_cast<int>(o.action)];
  if (badField == CopyTaskField::None && !FolderExists(o.source)) {
    badField = CopyTaskField::Source;
  }
  if (badField == CopyTaskField::None && o.action != CopyAction::Delete &&
      !FolderExists(o.destination)) {
    badField = CopyTaskField::Destination;
  }
  return text;
}

std::string CopyTaskLogPath(const std::string& appFolder) {
  return AddSlash(appFolder) + "Tessarin.CopyTasks.LOG.txt";
}

CopyTaskResult RunCopyTask(AppContext& ctx, Work& work, const CopyTaskOptions& options,
                           const std::string& confirmation, const CopyTaskServices& services) {
  const std::string logPath = CopyTaskLogPath(ctx.AppFolder());
  const auto log = [&](const std::string& line) { ctx.log.WriteLogLine(line, false, logPath); };
  ctx.log.WriteLogLine("START - " + Now(), true, logPath);
  log(std::string(79, '-'));
  log(confirmation);
  log("");

  CopyTaskResult result = CopyTaskResult::Done;
  RunGuarded(ctx.log, 6601, [&] {
    work.SetStatus("Searching...");
    const std::vector<std::string> names = ReadNameList(options.list, &work);
    log(std::to_string(names.size()) + " roms found");
    const std::vector<std::string> compare = ReadNameList(options.compare, &work);
    if (!work.CancelRequested) log("compared with " + std::to_string(compare.size()) + " roms.");
    if (names.empty()) {
      result = CopyTaskResult::NoRoms;
      ctx.Ui().ShowMessage(false, "Found no rom.", {}, Icon::Information);
      return;
    }
    if (compare.empty()) {
      result = CopyTaskResult::NoCompareRoms;
      ctx.Ui().ShowMessage(false, "Found no rom to compare with.", {}, Icon::Information);
      return;
    }
    const std::string source = AddSlash(options.source);
    const std::string destination =
        options.destination.empty() ? std::string() : AddSlash(options.destination);
    work.ProgressMax = static_cast<long long>(names.size());
    work.SetStatus(options.action == CopyAction::Copy   ? "Copying..."
                   : options.action == CopyAction::Move ? "Moving..."
                                                        : "Deleting...");
    log("START comparison");

    // The unused compare entries of each name: a name of the first list takes all of them.
    std::unordered_map<std::string, int> unused;
    for (const std::string& name : compare) {
      if (!name.empty()) ++unused[name];
    }
    const auto copyFile =
        services.copyFile ? services.copyFile : [](const std::string& from, const std::string& to) {
          std::error_code ec;
          fs::copy_file(FsPath(from), FsPath(to), fs::copy_options::overwrite_existing, ec);
          return !ec;
        };
    const auto deleteFile = services.deleteFile
                                ? services.deleteFile
                                : [](const std::string& path) { ShellDelete(path, false); };
    for (size_t i = 0; i < names.size(); ++i) {
      if (work.CancelRequested) break;
      work.ProgressValue = static_cast<long long>(i + 1);
      const auto it = unused.find(names[i]);
      if (it == unused.end() || it->second == 0) continue;
      const int matches = it->second;
      it->second = 0;
      const std::string file = names[i] + "." + options.sourceExtension;
      for (int m = 0; m < matches; ++m) {
        const std::string from = source + file;
        if (!FileExists(from)) continue;
        bool copied = false;
        if (options.action != CopyAction::Delete) {
          const std::string to = destination + file;
          copied = copyFile(from, to);
          log(to);
        }
        if ((options.action == CopyAction::Move && copied) ||
            options.action == CopyAction::Delete) {
          deleteFile(from);
          log("   DELETE " + from);
        }
      }
    }
  });
  if (work.CancelRequested) {
    result = CopyTaskResult::Cancelled;
    log("CANCELED BY USER.");
  }
  if (result == CopyTaskResult::Done || result == CopyTaskResult::Cancelled) {
    log(Now() + " END OF OPERATION");
    ctx.Ui().OpenDocument(logPath);
    ctx.Ui().ShowMessage(false, "Done", {}, Icon::Information);
  }
  return result;
}

}  // namespace tessarin
