#pragma once

#include <string>
#include <string_view>

#include "sheet/gamedetails.h"

namespace tessarin {

class AppContext;
class Messages;

// The five detail lists a sheet lays out, as the loader leaves them.
struct SheetDetailLists {
  const DetailList& RomList;
  const DetailList& DiskList;
  const DetailList& BiosSetList;
  const DetailList& ChipList;
  const DetailList& DipSwitchList;
};
SheetDetailLists ListsOf(const GameDetailsLoader& loader);

// What the game sheet shows, box by box, lines joined by CR LF.
struct SheetTexts {
  std::string Label1;  // the description, as a title
  std::string Text1;   // rom, supports, driver, screen, clones
  std::string Text2;   // manufacturer, year, genre, sound, video, controls
  std::string Text3;   // history, Mameinfo, notes
  std::string Text4;   // bios sets
  std::string Text5;   // chips
  std::string Text6;   // dip switches
  std::string Text7;   // disks
  std::string Text8;   // roms
  // The sheet's own state, from the structure.
  std::string CurrentTitle;
  std::string CurrentRom;
  std::string CurrentClone;
  std::string CurrentParent;
};

// How a value is written: as the files' bytes, or ready to show (each value and message made
// UTF-8 on its own, Windows-1252 when it isn't valid UTF-8, and the XML entities of the
// description and the manufacturer decoded).
enum class SheetTextMode { Bytes, Display };

// Lays the game out as the sheet shows it. `clonesList` is BuildClonesList(RomName, false);
// `parentMameinfo` is the Mameinfo entry of the game's parent (CloneOf), shown under
// "- MAMEINFO -" when the game has none of its own. Flags read "True" or "False"; values are
// written as they are, empty ones included.
SheetTexts LayOutSheetTexts(const GameDetails& details, const SheetDetailLists& lists,
                            const Messages& messages, std::string_view clonesList,
                            std::string_view parentMameinfo,
                            SheetTextMode mode = SheetTextMode::Bytes);

// ShowGame's work: loads `rom` in the full mode and lays it out. With an empty database nothing
// is loaded and every text is empty (CurrentRom keeps `rom`).
SheetTexts ShowGameTexts(AppContext& ctx, GameDetailsLoader& loader, const std::string& rom,
                         SheetTextMode mode = SheetTextMode::Bytes);

}  // namespace tessarin
