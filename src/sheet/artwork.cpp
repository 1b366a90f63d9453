#include "sheet/artwork.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "archive/zipreader.h"
#include "core/fileservices.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/work.h"
#include "online/download.h"
#include "online/urllist.h"
#include "store/faststrings.h"

namespace tessarin {

namespace {

std::string KindSettingKey(std::string_view kind) { return std::string(kind) + "Path"; }

// Takes `name` out of the open zip into `tempFolder` and gives the path of the file written
// (the entry's own spelling of the name), or the empty text. A copy left there by an earlier
// sheet is removed first, so that a picture of another kind never stands in for a missing one.
std::string ExtractFromZip(ZipExtractionClass& zip, const std::string& name,
                           const std::string& tempFolder) {
  KillQuiet(tempFolder + name);
  const int entry = zip.FindEntry(name);
  if (entry == 0) return {};
  const std::string stored = zip.filename(entry);
  const std::string target = tempFolder + stored.substr(stored.find_last_of('\\') + 1);
  if (target != tempFolder + name) KillQuiet(target);
  zip.ExtractSingleFile(entry, tempFolder, false, true);
  return FileExists(target) ? target : std::string();
}

}  // namespace

struct ArtworkZipCache::Item {
  std::string path;
  std::uintmax_t size = 0;
  std::filesystem::file_time_type time;
  ZipExtractionClass zip;
};

ArtworkZipCache::ArtworkZipCache() = default;
ArtworkZipCache::~ArtworkZipCache() = default;

void ArtworkZipCache::Clear() { m_items.clear(); }

ZipExtractionClass* ArtworkZipCache::Open(const std::string& path) {
  std::error_code ec;
  const std::filesystem::path fsPath = FsPath(path);
  const std::uintmax_t size = std::filesystem::file_size(fsPath, ec);
  if (ec) return nullptr;
  const std::filesystem::file_time_type time = std::filesystem::last_write_time(fsPath, ec);
  if (ec) return nullptr;
  for (auto it = m_items.begin(); it != m_items.end(); ++it) {
    if ((*it)->path != path) continue;
    if ((*it)->size == size && (*it)->time == time && (*it)->zip.ZipIsOpen()) {
      return &(*it)->zip;
    }
    m_items.erase(it);
    break;
  }
  auto item = std::make_unique<Item>();
  item->path = path;
  item->size = size;
  item->time = time;
  if (!item->zip.ZipOpen(path)) return nullptr;
  // Six kinds, six zips at most are worth keeping.
  if (m_items.size() >= 6) m_items.erase(m_items.begin());
  m_items.push_back(std::move(item));
  return &m_items.back()->zip;
}

std::string ArtworkFolderSetting(const Settings& settings, std::string_view kind) {
  std::string value = settings.InfRead(KindSettingKey(kind));
  return value == "-1" ? std::string() : value;
}

ArtworkFile FindArtwork(const Settings& settings, const std::string& appFolder,
                        const std::string& tempFolder, const std::string& rom,
                        const std::string& parent, std::string_view kind,
                        const std::function<void(int percent)>& progress, ArtworkZipCache* zips) {
  ArtworkFile result;
  const std::string setting = ArtworkFolderSetting(settings, kind);
  result.folder = AddSlash(setting.empty() ? appFolder : setting);
  const std::string romFile = rom + ".png";
  const std::string parentFile = parent + ".png";
  if (FileExists(result.folder + romFile)) {
    result.path = result.folder + romFile;
    return result;
  }
  if (FileExists(result.folder + parentFile)) {
    result.path = result.folder + parentFile;
    return result;
  }
  const std::string zipPath = result.folder + std::string(kind) + ".zip";
  if (!FileExists(zipPath) || tempFolder.empty()) return result;
  const std::string temp = AddSlash(tempFolder);
  std::string romExtracted, parentExtracted;
  try {
    ZipExtractionClass own;
    ZipExtractionClass* zip = nullptr;
    if (zips != nullptr) {
      zip = zips->Open(zipPath);
    } else if (own.ZipOpen(zipPath)) {
      zip = &own;
    }
    if (zip != nullptr) {
      romExtracted = ExtractFromZip(*zip, romFile, temp);
      if (progress) progress(20);
      parentExtracted = ExtractFromZip(*zip, parentFile, temp);
      if (progress) progress(30);
    }
  } catch (...) {
    // A zip that can't be read leaves the sheet without a picture, which it shows as such.
  }
  result.path = !romExtracted.empty() ? romExtracted : parentExtracted;
  result.fromZip = !result.path.empty();
  return result;
}

std::string ArtworkMissingText(const Messages& messages, const Settings& settings,
                               std::string_view kind) {
  std::string folder = ArtworkFolderSetting(settings, kind);
  if (folder.empty()) folder = std::string(kind) + " " + messages.Lng(235);
  return messages.Lng(236) + " " + folder + ". " + messages.Lng(237) + " " + std::string(kind) +
         ".zip " + messages.Lng(238);
}

ArtworkDownloadResult DownloadArtwork(const ArtworkDownloadJob& job, Work& work) {
  ArtworkDownloadResult result;
  const auto log = [&](const std::string& line) {
    if (job.log) job.log->WriteLogLine(line);
  };
  const auto fetch = [&](const std::string& url, const std::string& file) {
    if (job.download) return job.download(url, file);
    DownloadOptions options;
    // The working dialog counts kinds, not bytes.
    options.reportProgress = false;
    return DownloadFile(url, file, true, &work, options);
  };
  const std::string rom = job.rom;
  const std::string picture = rom + ".png";

  work.ProgressMax = 6;
  for (int i = 1; i <= 6; ++i) {
    work.ProgressValue = i;
    if (work.CancelRequested) break;
    const std::string kind(kDownloadKinds[i]);
    std::string folder = job.settings ? ArtworkFolderSetting(*job.settings, kind) : std::string();
    if (!folder.empty() && ParseLeadingNumber(folder) == -1) folder.clear();
    if (folder.empty()) {
      log("Can't download " + picture + " - No destination path.");
      result.outcome[i] = "no destination";
      continue;
    }
    const std::string target = AddSlash(folder) + picture;
    if (FileExists(target)) {
      work.SetStatus(kind + "\\" + picture + " already exists.");
      log(kind + "\\" + picture + " already exists : " + target);
      result.outcome[i] = "exists";
      if (i <= 2 && job.show) job.show(i);
      continue;
    }
    DeleteUrlFromCache(picture);
    std::string address = job.urls ? job.urls->OnlineImages[i] : std::string();
    if (address.empty() || ParseLeadingNumber(address) == -1) {
      log("Can't download " + picture + " non valid destination path for " + kind + "\\");
      work.SetStatus("No path for " + kind + "\\");
      result.outcome[i] = "no address";
      continue;
    }
    address = FastReplace(address, "#ROMNAME#", rom);
    address = FastReplace(address, "#GAMENAME#", job.title);
    std::string fallback = std::string(kDefaultMawsBase) + std::string(kDownloadFallbackPaths[i]);
    if (!job.appFolder.empty()) fallback = ApplyMawsBase(fallback, job.appFolder);
    fallback = FastReplace(fallback, "#ROMNAME#", rom);
    int status = fetch(address, target);
    if (status != kDownloadOk && address != fallback && !work.CancelRequested) {
      status = fetch(fallback, target);
    }
    if (status != kDownloadOk) {
      // A transfer cut by the cancel is no failure of the address: the end of the run tells
      // of the cancel.
      if (work.CancelRequested) {
        result.outcome[i] = "cancelled";
        continue;
      }
      work.SetStatus("Can't download " + picture);
      log("Can't download " + kind + "\\" + picture);
      result.outcome[i] = "failed";
      continue;
    }
    if (i <= 2 && job.show) job.show(i);
    work.SetStatus("Download " + kind + "\\" + picture);
    result.outcome[i] = "downloaded";
  }
  if (work.CancelRequested) {
    log("Download procedure aborted by user.");
    result.cancelled = true;
  }
  return result;
}

}  // namespace tessarin
