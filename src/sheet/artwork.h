#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class Log;
class Messages;
class ZipExtractionClass;
class Settings;
class Work;
struct UrlTables;

// The six artwork kinds, in the order of the sheet's buttons Command5(0) to Command5(5). Each
// names its folder through the setting <kind>Path and its zip file <kind>.zip.
inline constexpr std::array<std::string_view, 6> kArtworkKinds = {"Titles",   "Snap",     "Flyers",
                                                                  "Cabinets", "Marquees", "Cpanel"};

// The kind's folder setting as stored, with "-1" read as empty.
std::string ArtworkFolderSetting(const Settings& settings, std::string_view kind);

// The directories of the picture zips a run has read, kept open so that the next sheet finds its
// entry at once instead of reading a directory of tens of thousands of names again. A zip that
// changed on disk (size or time) is read again.
class ArtworkZipCache final {
 public:
  ArtworkZipCache();
  ~ArtworkZipCache();
  ArtworkZipCache(const ArtworkZipCache&) = delete;
  ArtworkZipCache& operator=(const ArtworkZipCache&) = delete;

  // The open zip at `path`; null when it can't be opened.
  ZipExtractionClass* Open(const std::string& path);
  // Closes every zip (so that the files can be replaced).
  void Clear();

 private:
  struct Item;
  std::vector<std::unique_ptr<Item>> m_items;
};

// Where a sheet's picture was found.
struct ArtworkFile {
  std::string folder;  // the kind's folder (the program folder when unset), final separator
  std::string path;    // the picture; empty when there is none
  bool fromZip = false;
};

// Finds the picture of `rom` for `kind`: <folder><rom>.png, else <folder><parent>.png, else,
// when <folder><kind>.zip exists, the same two names taken from the zip (a hash look-up of the
// entry, without regard to case) and written into `tempFolder`. A zip is opened only when
// neither loose file exists. `progress` (may be null) hears 20 after the rom's entry and 30
// after the parent's. With `zips` the zip's directory is read once and kept for later calls. An
// empty `parent` looks for ".png", as a game without a parent name does. Never throws; a broken zip
// gives no picture.
ArtworkFile FindArtwork(const Settings& settings, const std::string& appFolder,
                        const std::string& tempFolder, const std::string& rom,
                        const std::string& parent, std::string_view kind,
                        const std::function<void(int percent)>& progress = {},
                        ArtworkZipCache* zips = nullptr);

// Label2's text when there is no picture: message 236, the folder, message 237, the kind's zip
// and message 238. An unset folder reads as the kind and message 235.
std::string ArtworkMissingText(const Messages& messages, const Settings& settings,
                               std::string_view kind);

// The order of the sheet's download, its kinds' indexes in the site list's OnlineImages (1 to 6),
// and the address of each kind at the MAWS site, which stands in when the configured one fails.
inline constexpr std::array<std::string_view, 7> kDownloadKinds = {
    "", "Titles", "Snap", "Marquees", "Cabinets", "Cpanel", "Flyers"};
inline constexpr std::array<std::string_view, 7> kDownloadFallbackPaths = {
    "",
    "/maws/img/shots/titles/#ROMNAME#.png",
    "/maws/img/shots/mwsnap/#ROMNAME#.png",
    "/maws/img/marquees/#ROMNAME#.png",
    "/maws/img/cabinets/#ROMNAME#.png",
    "/maws/img/cpanel/#ROMNAME#.png",
    "/maws/img/flyers/#ROMNAME#.png"};

struct ArtworkDownloadJob {
  std::string rom;
  std::string title;  // the game's description, for #GAMENAME#
  const Settings* settings = nullptr;
  const UrlTables* urls = nullptr;
  Log* log = nullptr;
  std::string appFolder;  // maws.inf, which may move the MAWS host
  // Fetches one file; default: DownloadFile with the folder made and the work polled.
  std::function<int(const std::string& url, const std::string& file)> download;
  // Called for the Titles and Snap kinds (1 and 2) once their picture is there.
  std::function<void(int kind)> show;
};

// What a download run did, kind by kind (1 to 6).
struct ArtworkDownloadResult {
  std::array<std::string, 7> outcome;  // "downloaded", "exists", "no destination", "no address",
                                       // "failed", or empty when the run stopped before the kind
  bool cancelled = false;
};

// Fetches the six pictures of job.rom in the order of kDownloadKinds into the kinds' folders.
// Progress is the kind's number out of 6; status texts and log lines tell each kind's fate, and
// nothing goes to a message box. A raised cancel flag ends the loop before the next kind.
ArtworkDownloadResult DownloadArtwork(const ArtworkDownloadJob& job, Work& work);

}  // namespace tessarin
