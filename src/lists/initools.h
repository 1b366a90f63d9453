#pragma once

// The .ini list tools: a folder's content as a list, the names of an emulator XML file as a
// list, and the set of fifteen classification files made from the database.

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class GameStore;
class Log;
class Work;

// The five lines the folder scan (and the layout list) put in front of the names.
inline constexpr std::string_view kIniListHeader =
    "[FOLDER_SETTINGS]\r\nRootFolderIcon = cust1.ico\r\nSubFolderIcon = cust2.ico\r\n\r\n"
    "[ROOT_FOLDER]\r\n";

// Keeps an existing `file` as file.bak (an older backup is deleted first).
void BackupAsBak(const std::string& file);

// The folder scan's choices (keys Frm20...).
struct FolderScanOptions {
  std::string folder;            // Text1
  bool subfolders = false;       // Option1 (else Option2: files)
  std::string extension;         // Text2
  bool removeExtension = false;  // Check1
  bool addAfter = false;         // Check2
  std::string after;             // Text3
  bool addBefore = false;        // Check3
  std::string before;            // Text4
};
FolderScanOptions LoadFolderScanOptions(AppContext& ctx);
void SaveFolderScanOptions(AppContext& ctx, const FolderScanOptions& options);

enum class ToolResult { NoSource, Cancelled, Done, CantWrite };

// Writes the list of what `options.folder` holds to `destination` (kept as .bak when it
// exists): the five header lines, then one name a line, in name order. NoSource when the folder
// doesn't exist (nothing is written).
ToolResult ScanFolderToIni(const FolderScanOptions& options, const std::string& destination,
                           Work& work);

// Replaces, in this order, "&#60" and "&lt;" by "<", "&#62" and "&gt;" by ">", "&#38" and
// "&amp;" by "&", and "&quot;" by '"'.
std::string DecodeXmlEntities(std::string_view text);

// The XML tool's choices (keys XML2List_...).
struct XmlListOptions {
  std::string source;      // Text1
  bool romNames = true;    // Check1
  bool gameNames = false;  // Check2
  bool addZip = false;     // Check3
  bool noClone = false;    // Check4: keeps the lines that hold "cloneof", as it always has
};
XmlListOptions LoadXmlListOptions(AppContext& ctx);
void SaveXmlListOptions(AppContext& ctx, const XmlListOptions& options);

// Writes the names (and/or descriptions) of the XML file to `destination`, a line each, no
// header. NoSource when the source file doesn't exist. A cancel keeps what was written.
ToolResult XmlToList(XmlListOptions& options, const std::string& destination, Work& work);

// The INI set's fifteen files, by row.
inline constexpr int kIniSetFiles = 15;
inline constexpr std::array<std::string_view, kIniSetFiles> kIniSetNames = {
    "manufacturer.ini", "year.ini",        "genre.ini",   "category.ini",  "status.ini",
    "players.ini",      "buttons.ini",     "control.ini", "available.ini", "clones.ini",
    "mature.ini",       "orientation.ini", "driver.ini",  "savestate.ini", "mamever.ini"};

// The INI set dialog's choices (keys Frm15...).
struct IniSetOptions {
  std::array<bool, kIniSetFiles> selected{};  // Chck(i)
  // Text1(0..14), and Text1(15) the unique destination.
  std::array<std::string, kIniSetFiles + 1> paths;
  bool uniqueFolder = true;  // Radio(0); else Radio(1), a path per file
  int sort = 0;              // Radio2: 0 no sort, 1 by rom, 2 by name
};
IniSetOptions LoadIniSetOptions(AppContext& ctx);
void SaveIniSetOptions(AppContext& ctx, const IniSetOptions& options);

enum class IniSetResult { NothingSelected, BadDestination, Cancelled, Done };

// The file of row `row`, as the run names it (and shows it back in paths[row]).
std::string IniSetFilePath(const IniSetOptions& options, int row, const std::string& appFolder);

// Writes every selected file: for each value of its table (or its one flag) the section line
// and the games that one search with that value alone finds, in the chosen order. An older file
// whose name has a three-letter extension is kept with "bak" in place of it. The games of every
// value of a table come from one pass over the records, the same games as one search per value.
IniSetResult GenerateIniSet(AppContext& ctx, Work& work, IniSetOptions& options);

// The text of one file, as GenerateIniSet writes it; exposed for tests.
std::string IniSetFileText(const GameStore& store, int row, int sort, Work* work);
// The same text made the plain way, one search per value.
std::string IniSetFileTextPlain(const GameStore& store, int row, int sort);

}  // namespace tessarin
