#include "images/imageorganiser.h"

#include <QString>
#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <unordered_set>

#include "app/context.h"
#include "archive/unzip.h"
#include "core/fileservices.h"
#include "core/settings.h"
#include "core/work.h"
#include "store/indexfile.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

std::string SettingOrEmpty(const Settings& settings, std::string_view key) {
  std::string value = settings.InfRead(key);
  return value == "-1" ? std::string() : value;
}

bool EndsWithNoCase(std::string_view text, std::string_view ending) {
  if (text.size() < ending.size()) return false;
  const std::string_view tail = text.substr(text.size() - ending.size());
  return QString::fromUtf8(tail.data(), static_cast<qsizetype>(tail.size()))
             .compare(QString::fromUtf8(ending.data(), static_cast<qsizetype>(ending.size())),
                      Qt::CaseInsensitive) == 0;
}

bool StartsWithNoCase(std::string_view text, std::string_view start) {
  if (text.size() < start.size()) return false;
  const std::string_view head = text.substr(0, start.size());
  return QString::fromUtf8(head.data(), static_cast<qsizetype>(head.size()))
             .compare(QString::fromUtf8(start.data(), static_cast<qsizetype>(start.size())),
                      Qt::CaseInsensitive) == 0;
}

std::string Lowered(const std::string& text) {
  return QString::fromStdString(text).toLower().toStdString();
}

// The plain files of a folder by name: one read of the folder answers every later "does
// <name>.png exist?" of a job, where asking the file system per name and extension would cost
// three calls a rom.
std::unordered_set<std::string> FileNamesIn(const std::string& folder) {
  std::unordered_set<std::string> names;
  std::error_code ec;
  for (fs::directory_iterator it(FsPath(folder), ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    if (it->is_directory(typeError)) continue;
    names.insert(PathText(it->path().filename()));
  }
  return names;
}

// Moves or copies each of the name's three images that `present` holds; a moved file leaves
// the set, so a name met twice doesn't move it again.
void CarryImages(const std::string& from, const std::string& to, const std::string& name,
                 int operation, std::unordered_set<std::string>& present) {
  for (std::string_view extension : kOrganiserExtensions) {
    const std::string file = name + std::string(extension);
    const auto found = present.find(file);
    if (found == present.end()) continue;
    ShellCopy(from + file, to, operation, true, false);
    if (operation == 1) present.erase(found);
  }
}

}  // namespace

void LoadImageOrganiserState(const Settings& settings, ImageOrganiserState& state) {
  for (int i = 1; i <= 6; ++i) {
    state.SourceFolders[i] = SettingOrEmpty(settings, kOrganiserKindSettings[i]);
    const std::string source = SettingOrEmpty(settings, "Frm10SourcePath" + std::to_string(i));
    if (!source.empty()) state.SourceFolders[i] = source;
    state.DestFolders[i] = SettingOrEmpty(settings, "Frm10DestPath" + std::to_string(i));
  }
  state.Chk1 = !SettingOrEmpty(settings, "Frm10Chck1").empty();
  state.Chk2 = !SettingOrEmpty(settings, "Frm10Chck2").empty();
}

void SaveImageOrganiserState(Settings& settings, const ImageOrganiserState& state) {
  for (int i = 1; i <= 6; ++i) {
    settings.InfWrite("Frm10SourcePath" + std::to_string(i), state.SourceFolders[i]);
    settings.InfWrite("Frm10DestPath" + std::to_string(i), state.DestFolders[i]);
  }
  // A box is kept as its tag: "1" when on, empty when off.
  settings.InfWrite("Frm10Chck1", state.Chk1 ? "1" : "");
  settings.InfWrite("Frm10Chck2", state.Chk1 ? "1" : "");
}

void RomSetFromDatabase(AppContext& ctx, std::vector<std::string>& romSet) {
  romSet.assign(1, std::string());
  if (ctx.store.GameCount() == 0) {
    const std::string index = IndexFilePath(ctx.AppFolder());
    if (FileExists(index)) LoadIndex(ctx.store, ctx.log, index);
  }
  const int count = ctx.store.GameCount();
  if (count == 0) {
    ctx.Ui().ShowMessage(
        false, ctx.messages.Lng(57) + "\r\n" + "Aucune rom dans la base de données." + ".", {},
        Icon::Warning);
    return;
  }
  const auto& names = ctx.store.GameNames();
  romSet.insert(romSet.end(), names.begin() + 1, names.begin() + 1 + count);
}

bool ReadRomFolderNames(const std::string& folder, Work& work, std::vector<std::string>& romSet) {
  romSet.assign(1, std::string());
  std::vector<fs::directory_entry> entries;
  std::error_code ec;
  fs::directory_iterator it(FsPath(folder), ec);
  if (ec) return false;
  for (fs::directory_iterator end; !ec && it != end; it.increment(ec)) entries.push_back(*it);
  // A listing in name order, as the desktop's own listing gives it.
  std::sort(entries.begin(), entries.end(),
            [](const fs::directory_entry& a, const fs::directory_entry& b) {
              return a.path().filename() < b.path().filename();
            });
  romSet.reserve(entries.size() * 2 + 1);
  work.ProgressMax = static_cast<long long>(entries.size()) * 2;
  long long step = 0;
  for (const fs::directory_entry& entry : entries) {
    if (work.CancelRequested) return false;
    work.ProgressValue = ++step;
    std::error_code typeError;
    const std::string name = PathText(entry.path().filename());
    if (!entry.is_directory(typeError) && EndsWithNoCase(name, ".zip")) {
      romSet.push_back(Lowered(name.substr(0, name.size() - 4)));
    }
  }
  for (const fs::directory_entry& entry : entries) {
    if (work.CancelRequested) return false;
    work.ProgressValue = ++step;
    romSet.push_back(PathText(entry.path().filename()));
  }
  return true;
}

bool CopyRomImages(CopyImagesJob& job, const std::vector<std::string>& romSet, Work& work) {
  if (job.source.empty() || job.destination.empty()) return false;
  if (!FolderExists(job.source) || !FolderExists(job.destination)) return false;
  job.source = AddSlash(job.source);
  job.destination = AddSlash(job.destination);
  const int operation = job.move ? 1 : 0;
  const int count = static_cast<int>(romSet.size()) - 1;

  std::unordered_set<std::string> present = FileNamesIn(job.source);
  work.ProgressMax = count;
  for (int i = 1; i <= count; ++i) {
    work.ProgressValue = i;
    work.SetStatus(romSet[i]);
    if (work.CancelRequested) return true;
    CarryImages(job.source, job.destination, romSet[i], operation, present);
  }

  if (!job.fromZips) return true;
  std::vector<std::string> zips;
  for (const std::string& name : present) {
    if (StartsWithNoCase(name, job.kind) && EndsWithNoCase(name, ".zip")) zips.push_back(name);
  }
  if (zips.empty()) return true;
  std::sort(zips.begin(), zips.end());
  const std::string temp = AddSlash(job.tempFolder.empty() ? GetTempFolderPath() : job.tempFolder);
  std::string unzipError;
  UnzipEnvironment environment{temp, &unzipError, job.log, &work};
  work.ProgressMax = static_cast<long long>(zips.size());
  for (std::size_t z = 0; z < zips.size(); ++z) {
    if (work.CancelRequested) return true;
    work.ProgressValue = static_cast<long long>(z + 1);
    work.SetStatus("Unzipping " + zips[z]);
    UnzipAll(environment, job.source + zips[z], temp, true);
  }
  std::unordered_set<std::string> unpacked = FileNamesIn(temp);
  work.ProgressMax = count;
  for (int i = 1; i <= count; ++i) {
    if (work.CancelRequested) return true;
    work.ProgressValue = i;
    work.SetStatus(job.searchText + " " + romSet[i] + ".png");
    CarryImages(temp, job.destination, romSet[i], 1, unpacked);
  }
  return true;
}

bool PruneImages(PruneImagesJob& job, const std::vector<std::string>& romSet, Work& work,
                 std::vector<std::string>& deleted) {
  deleted.clear();
  if (job.folder.empty() || !FolderExists(job.folder)) return false;
  job.folder = AddSlash(job.folder);
  // The names as a hash set: each picture costs one look-up instead of a walk over the set.
  std::unordered_set<std::string_view> names;
  names.reserve(romSet.size());
  for (std::size_t i = 1; i < romSet.size(); ++i) names.insert(romSet[i]);

  std::vector<std::string> pictures;
  std::error_code ec;
  for (fs::directory_iterator it(FsPath(job.folder), ec), end; !ec && it != end; it.increment(ec)) {
    std::string name = PathText(it->path().filename());
    if (name.size() < 4 || !EndsWithNoCase(name, ".png")) continue;
    std::error_code typeError;
    if (it->is_directory(typeError)) continue;
    pictures.push_back(std::move(name));
  }
  std::sort(pictures.begin(), pictures.end());
  work.ProgressMax = static_cast<long long>(pictures.size());
  long long step = 0;
  for (const std::string& picture : pictures) {
    if (work.CancelRequested) break;
    work.ProgressValue = ++step;
    const std::string_view rom = std::string_view(picture).substr(0, picture.size() - 4);
    if (names.count(rom) != 0) continue;
    if (!job.dryRun) {
      const std::string path = job.folder + picture;
      if (job.deleteFile) {
        job.deleteFile(path);
      } else {
        ShellDelete(path, false);
      }
      work.SetStatus(job.deleteText + picture);
    }
    deleted.push_back(picture);
  }
  return true;
}

}  // namespace tessarin
