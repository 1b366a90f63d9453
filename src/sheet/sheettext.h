#pragma once

#include <string>

#include "sheet/gamedetails.h"

namespace tessarin {

class Messages;

// The texts of the game sheet's boxes for one game, laid out as the sheet shows them: the title,
// the two text boxes of the first page, the roms box, the history page, and the four list boxes
// of the last page. Line breaks are CR LF. Texts are the files' bytes, undecoded.
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
};

// Lays out `details` and the loader's detail lists, which must still be those of that game.
// Uses the loader for the clone list and for a clone's parent Mameinfo; never fails (a game
// that wasn't found gives empty values behind the labels).
SheetText LayOutSheetText(const GameDetails& details, GameDetailsLoader& loader,
                          const Messages& messages);

// The game as one JSON object: the 53 fields by name in order (flags as true/false, indexes as
// numbers, texts as strings), then RomList, DiskList, BiosSetList, ChipList and DipSwitchList
// as arrays of their items from slot 1 on. Texts are the bytes as UTF-8 when valid, else read
// as Windows-1252; line breaks stay as the files have them.
std::string GameDetailsJson(const GameDetails& details, const GameDetailsLoader& loader);

}  // namespace tessarin
