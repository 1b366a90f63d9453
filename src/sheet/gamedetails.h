#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/gamerecord.h"

namespace tessarin {

class AppContext;

// All that is known of one game, expanded from its record, its block of the emulator's dump
// and the data files. Built on demand for one game and dropped. Texts are the files' bytes
// (never decoded); flags start false, indexes 0, texts empty.
struct GameDetails {
  std::string RomName;
  std::string Description;
  std::string Year;
  std::string Manufacturer;
  std::string CloneOf;
  std::string SampleOf;
  std::string RomOf;
  std::string Sample;
  bool Working = false;
  bool CorrectColors = false;  // never set
  bool CorrectSounds = false;  // never set
  std::string SoundChannels;
  std::string Genre;
  std::string Category;
  std::string VersionAdded;
  std::string History;  // "True" in presence-only mode when the record places a text
  std::string Screen;
  std::string Orientation;
  std::string Aspect;
  std::string Resolution;
  std::string Players;
  bool Mature = false;
  bool GotIt = false;
  bool CheatSupport = false;
  bool HiscoreSupport = false;
  std::string PersonalNotes;
  std::string Mameinfo;  // "True" in presence-only mode when the record places a text
  std::string Driver;
  std::string Bios;
  std::string Control;
  std::string Refresh;
  std::string Colors;
  std::string InputPlayers;
  std::string CoinSlots;
  std::string Buttons;
  std::string ServiceButton;
  std::string TiltButton;
  std::string DriverStatus;
  std::string DriverEmulation;
  std::string DriverColor;
  std::string DriverSound;
  std::string DriverGraphic;
  std::string DriverCocktail;
  std::string DriverProtection;
  std::string DriverSavestate;
  std::string DriverPalettesize;
  std::string Command;  // "True" in presence-only mode when the record places a text
  std::int32_t CategoryIndex = 0;
  std::int32_t GenreIndex = 0;
  std::int32_t ManufacturerIndex = 0;
  std::int32_t VerAddedIndex = 0;
  std::int32_t YearIndex = 0;
  std::int32_t GameIndex = 0;
};

// The 53 fields of GameDetails by name, in order, for writers that walk them all (JSON, pages).
enum class DetailFieldKind { Text, Flag, Index };
struct DetailField {
  std::string_view name;
  DetailFieldKind kind;
  std::string GameDetails::*text = nullptr;    // for Text
  bool GameDetails::*flag = nullptr;           // for Flag
  std::int32_t GameDetails::*index = nullptr;  // for Index
};
inline constexpr int kGameDetailsFieldCount = 53;
const std::array<DetailField, kGameDetailsFieldCount>& GameDetailsFields();

// A detail list: slot 0 stays empty, items from slot 1 on; an empty list has size 1. An item is
// its fields joined by ';' (see the loader's lists).
using DetailList = std::vector<std::string>;

// The key and value pairs of one game's XML block. Slot 0 of both arrays is unused; pairs are
// at 1..AttrCount. The arrays never shrink, so that a loader reuses their room game after game.
struct TagAttributes {
  std::vector<std::string> AttrKeys{std::string()};
  std::vector<std::string> AttrValues{std::string()};
  int AttrCount = 0;
  // Forgets the pairs (AttrCount 0), keeping the room.
  void Clear() { AttrCount = 0; }
};

// Appends the attributes of one XML tag, `element attr="value" ...`, as keys
// "element_attr" with their values. The first key gets a leading '*' unless `continuation`.
// A tag without '=' adds nothing; it never fails.
void ParseTagAttributes(std::string_view tag, bool continuation, TagAttributes& attributes);

// Divides both numbers by each d from 2 to 111 while d divides both. Larger common divisors are
// left. Both 0 is left as it is (there is nothing to reduce).
void ReduceRatio(std::int32_t& width, std::int32_t& height);

// FieldToIndex(text) is the store's (store/gamerecord.h, included here): the index in the text
// that begins right behind a record tag, 0 for a placeholder ('#'); it throws (caught by the
// caller's failure boundary) when no ';' follows.

// A game's personal notes: the lines after the first line of the notes file that holds
// "[" + name + "]", up to the first line whose blank-trimmed text starts with "[", joined with
// CR LF (no line end behind the last). `path` empty means "notes.txt" in `appFolder`, else
// "DataFiles/notes.txt" there. Gives the empty text when the file or the tag is missing.
std::string ReadPersonalNotes(const std::string& appFolder, std::string_view name,
                              const std::string& path);

// Expands games for one caller. The five detail lists describe the game of the last successful
// LoadGameDetails and are overwritten by the next; a name that isn't found leaves them as they
// were. Holds an index from parents to clones, built once per loaded database, and remembers
// where the History file's "$bio" marks are, so that a text is read only as far as it needs.
// Not for use from two threads at once.
class GameDetailsLoader final {
 public:
  explicit GameDetailsLoader(AppContext& ctx);
  ~GameDetailsLoader();
  GameDetailsLoader(const GameDetailsLoader&) = delete;
  GameDetailsLoader& operator=(const GameDetailsLoader&) = delete;

  // The game `name`, or, with `name` empty, the game at `index` (and `name` is set to its rom
  // name). With presenceOnly the History, Command and Mameinfo files aren't opened: their fields
  // read "True" when the record places a text. Gives an all-empty structure (lists untouched)
  // when the game isn't in the database; with the dump file missing, only the record's own
  // fields. A failure inside is logged through the error tracker and gives what was filled.
  GameDetails LoadGameDetails(std::string& name, std::int32_t index, bool presenceOnly);

  // The games whose parent field begins with `name` (so "abc" also lists the clones of "abcd"),
  // in record order, joined by ", "; with asLinks each is <a href="NAME.htm">NAME</a>. Empty
  // when there are none or no database is loaded.
  std::string BuildClonesList(std::string_view name, bool asLinks);

  // The Mameinfo text of a game by its own record (used for a clone's parent); empty when the
  // game, its entry or the file is missing.
  std::string ReadMameinfoEntry(std::string_view name);

  // Forgets the clone index and the History marks (they are rebuilt on demand); call it after
  // changing records in place.
  void InvalidateCaches();

  // Roms: name;size;crc;sha1;region;offset;bios;merge;status;dispose
  DetailList RomList{std::string()};
  // Disks: name;md5;sha1;merge;region;index;status
  DetailList DiskList{std::string()};
  // Bios sets: name;description;default
  DetailList BiosSetList{std::string()};
  // Chips: type;name;clock
  DetailList ChipList{std::string()};
  // Dip switches: name;value;default
  DetailList DipSwitchList{std::string()};
  // The scratch pairs of the last XML block read.
  TagAttributes Attributes;

 private:
  struct Caches;
  // The two readings of a game's dump block (held in the caches' scratch room).
  void XmlPass(GameDetails& details);
  void ListInfoPass(GameDetails& details, std::string& name);
  // The History text of a "start,end" range, read only as far as it needs.
  std::string ReadHistoryText(const std::string& path, long long start, long long length);
  // ReadPersonalNotes in the default places, without finding the file anew for every game.
  std::string NotesOf(std::string_view name);

  AppContext& m_ctx;
  std::unique_ptr<Caches> m_caches;
};

// The same list as GameDetailsLoader::BuildClonesList by a plain walk over all records, for
// one-off callers and as the reference the indexed version is tested against.
std::string BuildClonesListPlain(const GameStore& store, std::string_view name, bool asLinks);

}  // namespace tessarin
