#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class Work;

// The data file paths, element n kept under the settings key "DataFile" n; element 0 unused.
// 1 emulator, 2 History.dat, 3 Mameinfo.dat, 4 Cheat.dat, 5 Command.dat, 6 Hiscore.dat,
// 7 Wizsort.ini, 8 Nplayers.ini or Multiplayer.ini, 9 Aspect.ini, 10 Controls.ini (both no
// longer used), 11 Alltime.ini, 12 Catlist.ini, 13 Catver.ini, 14 Genre.ini, 15 Mature.ini,
// 16 Resolution.ini, 17 Version.ini.
inline constexpr int kDataFileCount = 17;
using DataFilePaths = std::array<std::string, kDataFileCount + 1>;

// The paths of what lies on the disk: for each file the first candidate that exists, the last
// one when none does (the emulator: the empty text when none exists). The emulator is also
// looked for as /usr/games/mame and as "mame" on the search path. Writes the rom folder setting
// when it is empty.
DataFilePaths FindDefaultPaths(AppContext& ctx);
// FindDefaultPaths, with every path that the settings hold in its place.
DataFilePaths LoadDataFilePaths(AppContext& ctx);
// Writes elements 1 to 17, and the rom folder when `romPath` is not empty.
void SavePaths(AppContext& ctx, const DataFilePaths& paths, const std::string& romPath);

// Runs the emulator of the settings with -help and keeps the first line it prints as the
// store's DatabaseVersion (unchanged when nothing could be run). Gives the number in that line
// from its 9th character on, without the letters "v"; 0 when there is none.
// With `work`, a cancel ends the emulator at once.
double TrouveVersionMAME(AppContext& ctx, Work* work = nullptr);
// The number value at the start of a text, as the version line is read: blanks skipped, an
// optional sign, digits with one decimal point; 0 when no number stands there.
double LeadingNumberValue(std::string_view text);

// Runs the emulator with -listxml (-listinfo) into `path` (empty: listxml.txt, listinfo.txt in
// the application folder). True when the file then exists and is not empty. With `work`, a
// cancel ends the emulator at once (and the result is false).
bool RunListXml(AppContext& ctx, const std::string& path, Work* work = nullptr);
bool RunListInfo(AppContext& ctx, Work& work, const std::string& path);

// The complete creation: asks before replacing an existing database, runs the emulator for its
// version and its list (XML, else legacy), builds, scans the roms and saves the index twice.
// With `dumpFile` given the emulator is not run for the list: that file (an -listxml or
// -listinfo output) is copied to the dump's place instead, or, with `linkDump`, given a second
// name there where the file system allows (a list of a few hundred megabytes is then not
// written again; the original must then not be rewritten in place). Gives true when a new
// database was written; every failure is told through the user interface.
bool CreateDatabase(AppContext& ctx, Work& work, const std::string& dumpFile = {},
                    bool linkDump = false);

// Why `path` can't be a game list of the emulator ("is a binary file...", "is empty"...), told
// after its path; the empty text when it may be one.
std::string DumpFileProblem(const std::string& path);

// Runs the analysers over the records in memory (loading the index first when needed), with
// their fields reset. Gives true after a full run; the caller saves the index.
bool UpdateFromFiles(AppContext& ctx, Work& work);

// The entries of the selective update, in their fixed order.
enum class UpdateEntry : int {
  Catlist,
  Catver,
  Cheat,
  Command,
  Hiscore,
  History,
  Mameinfo,
  Mature,
  Multiplayer,
  NPlayers,
  Version,
  Wizsort,
  Roms,
};
inline constexpr int kUpdateEntryCount = 13;
// The file name an entry stands for ("Catlist.ini"...; "Roms disponibles" for the roms).
std::string_view UpdateEntryFile(UpdateEntry entry);

struct UpdateReport {
  bool loaded = false;             // a database was in memory or could be loaded
  bool fullRun = false;            // the list was gone through without cancel
  bool saved = false;              // the index was written (something was done)
  std::vector<std::string> lines;  // "Catlist.ini = Ok"... for each analyser that gave true
};
// The selective update: each checked entry, in list order, with its field reset (Catver only
// fills what is still at its placeholder); then the index is saved when something was done.
UpdateReport UpdateSelected(AppContext& ctx, Work& work,
                            const std::array<bool, kUpdateEntryCount>& checked);

// Marks the games of the rom folder (setting RomPath): one '*' is taken from each record, then
// one appended per match, for zip files and then for every entry of the folder (so a zip
// counts twice, and a folder only when its name is 4 characters longer than the rom's). Gives
// false in all cases, as it always did; `matches`, when given, receives the number of marks
// made, or -1 when the scan couldn't run (no database, no rom folder: told to the user).
bool ScanRoms(AppContext& ctx, Work& work, bool silent, int* matches = nullptr);

}  // namespace tessarin
