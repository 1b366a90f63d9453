#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class Log;
class Settings;
class Work;

// The image organiser: copies or moves the images of a set of rom names to another folder, and
// deletes the PNG images of a folder that belong to no name of the set. It looks only at file
// names; no picture is opened.

// The kinds, as Combo1 lists them (positions 1 to 6), and the setting of each kind's folder.
inline constexpr std::array<std::string_view, 7> kOrganiserKinds = {
    "", "titles", "snap", "marquees", "cabinets", "cpanel", "flyers"};
inline constexpr std::array<std::string_view, 7> kOrganiserKindSettings = {
    "", "TitlesPath", "SnapPath", "MarqueesPath", "CabinetsPath", "CpanelPath", "FlyersPath"};
// The extensions the copy job carries, in this order.
inline constexpr std::array<std::string_view, 3> kOrganiserExtensions = {".png", ".jpg", ".gif"};

// The organiser's instance state.
struct ImageOrganiserState {
  int Mode = 0;  // 1 copy or move, 2 delete
  // Names from 1; element 0 is unused.
  std::vector<std::string> RomSet{std::string()};
  std::array<std::string, 7> SourceFolders;  // 1 to 6
  std::array<std::string, 7> DestFolders;    // 1 to 6
  bool Chk1 = false;                         // a folder of roms instead of the database
  bool Chk2 = false;                         // extract images from the kind's zips
  bool Chk3 = false;                         // move rather than copy

  int RomCount() const { return static_cast<int>(RomSet.size()) - 1; }
};

// Load step: each kind's folders from the settings (the kind's own folder setting, replaced by
// Frm10SourcePath<i> when set; Frm10DestPath<i>), and the two boxes from Frm10Chck1 and
// Frm10Chck2. "-1" counts as empty everywhere.
void LoadImageOrganiserState(const Settings& settings, ImageOrganiserState& state);
// Unload step: the twelve folder settings and Frm10Chck1 from Chk1. Frm10Chck2 is written from
// Chk1 too, so Chk2 never comes back at the next load: the two settings always end up equal.
// The position keys are the window's.
void SaveImageOrganiserState(Settings& settings, const ImageOrganiserState& state);

// The name set from the database: every rom name, whether or not the rom is on the disk. Loads
// the index when the store is empty; when it stays empty, tells the user (message 57 and "Aucune
// rom dans la base de données.") and leaves the set empty.
void RomSetFromDatabase(AppContext& ctx, std::vector<std::string>& romSet);

// The name set from a folder of roms: each "*.zip" file's name less its extension, in lower
// case, then every entry of the folder (files and folders) by its name as it stands. Gives false
// when the cancel flag went up (the set is then incomplete) or the folder can't be read.
bool ReadRomFolderNames(const std::string& folder, Work& work, std::vector<std::string>& romSet);

// The copy or move job.
struct CopyImagesJob {
  std::string kind;    // Combo1's text: the zips of the source that start with it are read
  std::string source;  // with or without a final separator
  std::string destination;
  bool move = false;       // Chk3
  bool fromZips = false;   // Chk2
  std::string tempFolder;  // where the zips are unpacked
  Log* log = nullptr;      // receives unzip failures; may be null
  // The message table's texts the job shows: 299 "Search".
  std::string searchText = "Search";
};
// Gives false, doing nothing, when a folder text is empty or a folder is missing. Otherwise
// copies (or moves) <name>.png, .jpg and .gif of every name of `romSet` from the source to the
// destination, then with fromZips unpacks each <kind>*.zip of the source into the temporary
// folder and moves the named roms' images from there to the destination (always a move; the
// zips stay). Status, progress and cancel go through `work`; a cancel ends the job between two
// files and leaves what is done. Both folders of `job` get a final separator.
bool CopyRomImages(CopyImagesJob& job, const std::vector<std::string>& romSet, Work& work);

// The delete job.
struct PruneImagesJob {
  std::string folder;
  bool dryRun = false;  // only tell what would go
  // Deletes one file; default: to the desktop's trash (ShellDelete).
  std::function<void(const std::string& path)> deleteFile;
  // 284 "Delete ", put in front of each deleted file's name in the status text.
  std::string deleteText = "Delete ";
};
// Gives false, doing nothing, when the folder text is empty or the folder is missing. Otherwise
// every "*.png" file of the folder whose name less its extension is not in `romSet` (an exact,
// case-sensitive comparison) is deleted, and its file name goes into `deleted` (sorted). Other
// files, JPEG, GIF and zips included, stay. A cancel ends the job between two files.
bool PruneImages(PruneImagesJob& job, const std::vector<std::string>& romSet, Work& work,
                 std::vector<std::string>& deleted);

}  // namespace tessarin
