#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/faststrings.h"

namespace tessarin {

// Every field's placeholder, in record order, as a new record holds them.
inline constexpr std::string_view RecordTemplate =
    ";B#Z;C#MA;D#Y;E#O;F#BU;G#CO;H#ST;I#G;J#CA;K#V;L#X;M#BI;N#D;O#N;P#HS;Q#HI;R#CH;S#CL;T#CM;"
    "U#MI;V#SS";

// The name of the EndRecord: the single character of code 31.
inline constexpr std::string_view EndRecordName = "\x1f";

// The thirteen code tables, in index file order.
enum class TableId : int {
  Manufacturer,
  Year,
  Orientation,
  Buttons,
  Controls,
  Status,
  Genre,
  Category,
  VerAdded,
  Bios,
  Driver,
  NPlayers,
  Savestate,
};
inline constexpr int kTableCount = 13;

// The index file's section title of a table, without brackets ("Manufacturer", "nPlayers"...).
std::string_view TableTitle(TableId id);
// The record tag of a table's field ('C' for Manufacturer...).
char TableTag(TableId id);

// The game database in memory: one text record per game, the rom names, and the code tables.
//
// GameRecords[0] is unused, [1..GameCount()] are the games in dump order, and once the list is
// complete [GameCount() + 1] is the EndRecord. GameNames() has the same indexes (no entry for
// the EndRecord). Names are added only through AppendGame, which keeps the name index that
// makes FindGame a hash look-up in step.
class GameStore final {
 public:
  GameStore();

  std::vector<std::string> GameRecords;
  bool SourceIsXml = true;
  int LongestNameLength = 0;
  std::string DatabaseVersion;

  CodeTable ManufacturerTable, YearTable, OrientationTable, ButtonsTable, ControlsTable,
      StatusTable, GenreTable, CategoryTable, VerAddedTable, BiosTable, DriverTable, NPlayersTable,
      SavestateTable;

  CodeTable& Table(TableId id);
  const CodeTable& Table(TableId id) const;

  const std::vector<std::string>& GameNames() const { return m_names; }
  int GameCount() const { return static_cast<int>(m_names.size()) - 1; }
  bool HasEndRecord() const { return GameRecords.size() == m_names.size() + 1; }

  // Adds a game behind the last one (before the EndRecord if there is one); gives its index.
  int AppendGame(std::string name, std::string record);
  // Sets or replaces the record behind the last game.
  void SetEndRecord(std::string record);
  // Empties records, names and tables (each table back to its one unused element).
  void Clear();
  // Room for this many games, so a big import doesn't reallocate.
  void Reserve(int games);

  // The first game of that exact, case-sensitive name; 0 when there is none.
  int FindGame(std::string_view name) const;

  // Changes whenever games are added or the store is emptied (a new build or load), to a value
  // no store of the run had before, so that a reader can tell that an index it built over the
  // records is out of date.
  unsigned long long Generation() const { return m_generation; }

 private:
  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const noexcept {
      return std::hash<std::string_view>{}(s);
    }
  };
  std::vector<std::string> m_names;
  unsigned long long m_generation = 0;
  std::unordered_map<std::string, int, NameHash, std::equal_to<>> m_index;
};

// A new XML record: name;A<offset>;0 and the template.
std::string NewXmlRecord(std::string_view name, long long dumpOffset);
// A new legacy record: name;0;à<offset> and the template (à is the single byte 224).
std::string NewLegacyRecord(std::string_view name, long long dumpOffset);

// Sets a field: every occurrence of `placeholder` in the whole record becomes `value`. A field
// that was set already has no placeholder left, so the first value wins.
void FieldSet(std::string& record, std::string_view placeholder, std::string_view value);

// Byte position (0-based) of ";" + tag in the record; npos when absent.
size_t FieldPosition(std::string_view record, char tag);
// The value of a field: from behind ";X" to the next ';' or the end; empty when absent.
std::string_view FieldValue(std::string_view record, char tag);
// The index in the text that begins right behind a tag: 0 for a placeholder. Throws when no ';'
// follows (so it is not used for field V).
int FieldToIndex(std::string_view textBehindTag);
// Field B of a game, cut at the first ';' behind ";B"; empty for index 0 or any index that is
// no game.
std::string GameDescription(const GameStore& store, int index);
// True when the record ends in the presence mark '*'.
bool IsPresent(std::string_view record);
// Replaces each rom name of list[1..] by its description padded or cut to 100 characters and
// followed by the game's index, so that a sort orders by description.
void MakeSortKeys(const GameStore& store, std::vector<std::string>& list);

// Put a field back to its placeholder in every record, so that a selective update can set it
// again.
void ResetHistoryField(GameStore& store);
void ResetCommandField(GameStore& store);
void ResetHiscoreField(GameStore& store);
void ResetCheatField(GameStore& store);
void ResetNPlayersField(GameStore& store);
void ResetVerAddedField(GameStore& store);
void ResetMatureField(GameStore& store);
void ResetGenreField(GameStore& store);
void ResetCategoryField(GameStore& store);
void ResetCatverFields(GameStore& store);
void ResetWizsortFields(GameStore& store);
// Keeps each record up to ";U", appends "#MI" and drops the rest (field V and the presence mark
// go with it).
void ResetMameinfoField(GameStore& store);
// The reset of one field of one record: the text behind the tag up to the next ';' becomes the
// placeholder (with no ';' behind, the old value stays behind it). A record without the tag is
// left as it is.
void ResetField(std::string& record, char tag, std::string_view placeholder);

}  // namespace tessarin
