#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class Messages;
class Work;

// The mask file of the DAT export, in the application folder.
inline constexpr std::string_view kDatMaskName = "dat_mask.dat";

// The address in the author line of the default mask.
inline constexpr std::string_view kDatMaskAuthorAddress = "http://tessarin.example.invalid/";

// A mask read: the head written once, and the game block written for each game, in which one
// line may stand for every rom and one for every disk.
struct DatMask {
  bool hasStart = false;  // a #START_HEAD line was found
  std::vector<std::string> head;
  std::vector<std::string> gameLines;
  int romLine = -1;   // index in gameLines of the rom line; -1 when there is none
  int diskLine = -1;  // likewise for the disk line
};

// Parses a mask's text (CR LF, LF or CR line ends). Lines before the first line beginning with
// #START_HEAD (trimmed, any case) are comments; the head runs up to the line beginning with
// #END_HEAD; all lines behind it are the game block. The rom line is the last game line that
// contains "rom(" or "rom (", the disk line the last that contains "disk(" or "disk (".
DatMask ParseDatMask(std::string_view text);

// The three values the default mask's head is made of, from the database's version line.
struct DatMaskVersions {
  std::string a;  // the emulator's name and version: the line up to its first "(", trimmed
  std::string b;  // the build date as year, month and day without leading zeros
  std::string c;  // the line from its 11th character, cut behind its first ")"
};
DatMaskVersions DatMaskVersionsOf(std::string_view databaseVersion);

// The text of the default mask, CR LF lines.
std::string DefaultDatMask(std::string_view databaseVersion);
// Writes dat_mask.dat into the application folder, replacing it, with the values of the
// database's version line. False when it can't be written.
bool CreateDefaultDatMask(AppContext& ctx);

// What the game block of the mask is filled with for one game.
struct DatGameValues {
  std::string_view name, description, year, manufacturer, sourcefile, cloneof, romof, sampleof,
      sample, genre;
  // The game's roms and disks as the detail lists hold them: ';'-joined items from index 1.
  const std::vector<std::string>* roms = nullptr;
  const std::vector<std::string>* disks = nullptr;
};

// Appends the game block of `mask` filled for one game, each line with CR LF.
void AppendDatGame(std::string& out, const DatMask& mask, const DatGameValues& game);
// One line of the block other than the rom and disk lines, filled; gives false when the line
// is not to be written (it still holds a '#' and nothing in it could be filled).
bool FillDatGameLine(std::string_view maskLine, const DatGameValues& game, std::string& line);
// The rom line or disk line filled with one item.
std::string FillDatRomLine(std::string_view maskLine, std::string_view item);
std::string FillDatDiskLine(std::string_view maskLine, std::string_view item);

// The file dialog's filter of the export.
std::string DatFileFilter(const Messages& messages);

enum class DatExportResult { NoMask, Done, Cancelled, Failed };

// Creates dat_mask.dat when the application folder has none, and reads it into `mask`. False
// when it has no #START_HEAD line (or can't be read): the export then stops without a word.
bool PrepareDatMask(AppContext& ctx, DatMask& mask);

// The export with a mask read already: the games of the INI file `iniFile` (trimmed; lines
// looked up whole, in file order) or, when that names no existing file, every game; then the
// head and the block of each game into `outputPath`. Progress and cancel go through `work`; a
// cancel keeps what was written. Shows nothing.
DatExportResult ExportDatList(AppContext& ctx, Work& work, const DatMask& mask,
                              const std::string& iniFile, const std::string& outputPath);

// PrepareDatMask and the export in one: NoMask, and no file made, when the mask has no
// #START_HEAD line.
DatExportResult ExportDatList(AppContext& ctx, Work& work, const std::string& iniFile,
                              const std::string& outputPath);

}  // namespace tessarin
