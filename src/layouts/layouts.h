#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tessarin {

class AppContext;
class Log;
class Work;

// The built-in addresses: placeholders under the reserved example.invalid domain, to be set in
// the settings (URL_LayoutsTXT, URL_LayoutsZIP, URL_LayoutsJPG) by whoever hosts the layouts.
inline constexpr const char* kDefaultLayoutsTxt =
    "http://tessarin.example.invalid/atomic/layouts.txt";
inline constexpr const char* kDefaultLayoutsZip =
    "http://atomicfe.example.invalid/Downloads/Layouts_in_progress/";
inline constexpr const char* kDefaultLayoutsJpg =
    "http://atomicfe.example.invalid/Downloads/Layouts_in_progress/";
// The big pack: the layouts whose zip field is this address come only inside it.
inline constexpr const char* kPackAddress =
    "http://atomicfe.example.invalid/Downloads/Layouts3/hyperSkinMameSet001_640x480(15khz).zip";
inline constexpr const char* kPackFileName = "hyperSkinMameSet001_640x480(15khz).zip";
inline constexpr const char* kLayoutListName = "layouts.txt";
inline constexpr const char* kLayoutsInfName = "AtomicLayouts.inf";
// The page behind the expert dialog's link.
inline constexpr const char* kLayoutsPage = "http://tessarin.example.invalid/atomic/";

// The folders and addresses both layout dialogs hold; folders with a final separator.
struct LayoutPaths {
  std::string DownloadFolder;
  std::string PreviewFolder;
  std::string ListFolder;  // where layouts.txt goes; never changes after opening
  std::string LayoutFolder;
  std::string UrlLayoutsTxt = kDefaultLayoutsTxt;
  std::string UrlLayoutsZip = kDefaultLayoutsZip;
  std::string UrlLayoutsJpg = kDefaultLayoutsJpg;
  std::string PackAddress = kPackAddress;
};

// The opening of either dialog: the default folders (made when missing, with their fallbacks),
// AtomicLayouts.inf over them, the address settings over the defaults. `candidateLayoutFolders`
// are tried in order when no layout folder is known (the front-end's usual places).
LayoutPaths OpenLayoutPaths(AppContext& ctx,
                            const std::vector<std::string>& candidateLayoutFolders = {});
// The closing: AtomicLayouts.inf and the address settings.
void SaveLayoutPaths(AppContext& ctx, const LayoutPaths& paths);

// The fields of a list line, split at ';'.
std::vector<std::string> LayoutFields(const std::string& line);
// Field `index`, or the empty text when the line has fewer.
std::string LayoutField(const std::vector<std::string>& fields, size_t index);
// True when the line's title holds [VERTICAL] (any case).
bool IsVerticalLine(const std::vector<std::string>& fields);
// True when field 9 is there and is neither empty nor "mame".
bool IsOtherSystem(const std::vector<std::string>& fields);
// The name without a final "_v".
std::string NameWithoutVertical(const std::string& name);

// Where a layout's zip (or preview) comes from: the field as a whole address, or the field (or
// the default folder when empty) with the name and `extension` added when it ends in '/' or '\'.
std::string LayoutAddress(const std::string& field, const std::string& defaultFolder,
                          const std::string& name, const std::string& extension);

// Fetches the list into ListFolder: the old list stays unless the new one came whole.
bool DownloadLayoutList(const LayoutPaths& paths, Work* work);

// Reads layouts.txt: CRs removed, split at LF, sorted by bytes. The expert dialog's reading
// (`expert`) also skips empty lines and the lines of other systems. Logs what it loaded, or that
// the file is missing (and gives false).
bool LoadLayoutList(Log& log, const LayoutPaths& paths, bool expert,
                    std::vector<std::string>& lines);

// The counts of a bulk run.
struct LayoutRunCounts {
  int lines = 0;
  int selected = 0;
  int downloaded = 0;
  int unzipped = 0;
  int existing = 0;
  int inPack = 0;
  int downloadErrors = 0;
  int unzipErrors = 0;
  bool cancelled = false;
};

// A line of the running report.
using LayoutReport = std::function<void(const std::string& line)>;

// The simple dialog's bulk run over every line: download (and with `install`, unpack into the
// layout folder) each wanted layout of the chosen orientation that the user lacks. Logs and
// reports each line and the summary; gives the counts.
LayoutRunCounts ProcessAllLayouts(AppContext& ctx, Work& work, const LayoutPaths& paths,
                                  const std::vector<std::string>& lines, bool install,
                                  bool vertical, const LayoutReport& report);

// The expert dialog's download of the chosen lines; with `unzip` each is unpacked into the
// layout folder (and with `deleteZip` the zip removed). Layouts of the pack are counted and the
// pack offered afterwards through a question. `listCount` is the number of list entries, for
// the log. Logs the summary; gives the counts.
LayoutRunCounts DownloadSelected(AppContext& ctx, Work& work, const LayoutPaths& paths,
                                 const std::vector<std::string>& chosenLines, int listCount,
                                 bool unzip, bool deleteZip, const LayoutReport& report);

// The expert dialog's sort: 0 rom, 1 title, 2 date (newest first), 3 modification date (newest
// first), 4 author.
void SortLayouts(std::vector<std::string>& lines, int choice);
// Empties the lines of the other orientation by the name's "_v" (1 vertical, 2 horizontal);
// 0 keeps all.
void FilterLayouts(std::vector<std::string>& lines, int choice);
// Empties the lines whose name, less "_v", is a folder in the layout folder.
void KeepOnlyMissing(std::vector<std::string>& lines, const LayoutPaths& paths);
// The details text of a line, CR LF between lines.
std::string LayoutDetailsText(AppContext& ctx, const LayoutPaths& paths, const std::string& line);
// Where a line's preview goes, and the address it comes from.
std::string PreviewFile(const LayoutPaths& paths, const std::string& line);
std::string PreviewAddress(const LayoutPaths& paths, const std::string& line);

// Writes the names of the lines to `file`: an .ini list (with the folder scan's header) when the
// name ends in .ini (any case), else names with ".zip"; one line per game. An older file is kept
// as file.bak. False when it can't be written.
bool SaveLayoutList(const std::string& file, const std::vector<std::string>& lines);

}  // namespace tessarin
