#pragma once

#include <string>
#include <string_view>

#include "sheet/gamedetails.h"

namespace tessarin {

class AppContext;
class Messages;

// The texts of the game sheet's boxes for one game, laid out as the sheet shows them: the title,
// the two text boxes of the first page, the roms box, the history page, and the four list boxes
// of the last page. Line breaks are CR LF.
struct SheetText {
  std::string Label1;  // the title: Description
  std::string Text1;   // rom name, support flags, driver, screen, clones
  std::string Text2;   // manufacturer, year, classification, sound, video, controls
  std::string Text3;   // History, Mameinfo (a clone without its own shows its parent's), notes
  std::string Text4;   // BIOS SET
  std::string Text5;   // CHIPS
  std::string Text6;   // DIPSWITCHS
  std::string Text7;   // DISKS
  std::string Text8;   // ROMS
  // The sheet's own state, from the structure, as bytes.
  std::string CurrentTitle;   // Description, for the #GAMENAME# of downloads
  std::string CurrentRom;     // RomName
  std::string CurrentClone;   // CloneOf
  std::string CurrentParent;  // RomOf, the second name tried for pictures
};

// How values are written: as the files' bytes, or ready to show (each value and message made
// UTF-8 on its own, read as Windows-1252 when it isn't valid UTF-8, and the XML entities of the
// description and the manufacturer decoded).
enum class SheetTextMode { Bytes, Display };

// The five detail lists a sheet lays out, as the loader leaves them.
struct SheetDetailLists {
  const DetailList& RomList;
  const DetailList& DiskList;
  const DetailList& BiosSetList;
  const DetailList& ChipList;
  const DetailList& DipSwitchList;
};
SheetDetailLists ListsOf(const GameDetailsLoader& loader);

// Lays out `details` and the detail lists of that game. `clonesList` is
// BuildClonesList(RomName, false); `parentMameinfo` is the Mameinfo entry of the game's parent
// (CloneOf), shown under "- MAMEINFO -" when the game has none of its own. Flags read "True" or
// "False"; values are written as they are, empty ones included. Never fails.
SheetText LayOutSheetText(const GameDetails& details, const SheetDetailLists& lists,
                          const Messages& messages, std::string_view clonesList,
                          std::string_view parentMameinfo,
                          SheetTextMode mode = SheetTextMode::Bytes);

// The same with the clone list and the parent's Mameinfo taken from the loader, whose lists
// must still be those of that game (a game that wasn't found gives empty values behind the
// labels).
SheetText LayOutSheetText(const GameDetails& details, GameDetailsLoader& loader,
                          const Messages& messages, SheetTextMode mode = SheetTextMode::Bytes);

// The sheet's ShowGame: loads `rom` in the full mode and lays it out. With an empty database
// nothing is loaded and every text is empty (CurrentRom keeps `rom`).
SheetText ShowGameText(AppContext& ctx, GameDetailsLoader& loader, const std::string& rom,
                       SheetTextMode mode = SheetTextMode::Bytes);

// The game as one JSON object: the 53 fields by name in order (flags as true/false, indexes as
// numbers, texts as strings), then RomList, DiskList, BiosSetList, ChipList and DipSwitchList
// as arrays of their items from slot 1 on. Texts are the bytes as UTF-8 when valid, else read
// as Windows-1252; line breaks stay as the files have them.
std::string GameDetailsJson(const GameDetails& details, const GameDetailsLoader& loader);

}  // namespace tessarin
