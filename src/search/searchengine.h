#pragma once

// The search: sixteen criteria over every record of the store, answered from the record texts
// alone. No window here; the search dialog and tessarin-cli both call these routines.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "store/gamerecord.h"

namespace tessarin {

class Messages;
class Work;

// The sixteen inputs of SearchGames, in the order of the dialog. The table texts are exact table
// entries (a text that is no entry finds nothing); an empty text, or 0 for the numbers, means no
// test. VersionAdded is an index into VerAddedTable; 0 or below means no test.
struct SearchCriteria {
  std::string Keyword;
  std::string Manufacturer;
  std::string Year;
  std::string Genre;
  std::string Category;
  std::string Status;
  std::string Players;
  std::string Buttons;
  std::string Control;
  int Available = 0;  // 1 present in the rom folder, 2 absent
  int Clones = 0;     // 1 clones only, 2 without clones
  int Mature = 0;     // 1 mature only, 2 without mature games
  std::string Orientation;
  std::string Driver;
  int Savestate = 0;  // 1 or 2: the first or second SavestateTable entry; other values find none
  int VersionAdded = 0;
};

// Game indexes, in the order the search gives them; empty when nothing was found.
using SearchResult = std::vector<int>;

// Every game whose record meets all the active criteria, in ascending game index; with no
// active criterion, every game 1 to GameCount. `work`, when given, gets the steps 0 to 140.
// One pass over the records with ready-made needles (";C12;"): the same games as a scoring pass
// that walks all records once per criterion.
SearchResult SearchGames(const GameStore& store, const SearchCriteria& criteria,
                         Work* work = nullptr);

// 0 for an empty text or `allText` (message 260), else the 1-based position of the text in
// `verAddedTable`, or -1 when it isn't there.
int VersionPosition(std::string_view text, const CodeTable& verAddedTable,
                    std::string_view allText);

// Appends `text` to `list` unless an entry equals it already; true when it was appended.
bool AddUnique(const std::string& text, std::vector<std::string>& list);

// The number of a version text for "<" and ">": a text holding "." first loses its first two
// characters ("0.135u1" counts 135, "37b16" 37), then the number reads as far as a number can go
// (blanks are passed over, a sign, digits, a decimal point, an exponent); 0 when none stands in
// front.
double VersionNumber(std::string_view text);

// The union of the searches "version added < reference" (`below`) or "> reference": for each
// entry of `versionItems` (the version list as the dialog shows it) whose number is above 0 and
// strictly below (above) `reference`, the games of `criteria` with VersionAdded set to that
// entry's VersionPosition, each game once, grouped by entry in list order. Computed with one
// pass over the records instead of one search per version.
SearchResult SearchVersionUnion(const GameStore& store, const SearchCriteria& criteria,
                                const std::vector<std::string>& versionItems, bool below,
                                double reference, std::string_view allText, Work* work = nullptr);

// The dialog's lists, by control number: Items[n] are the entries of ComboN (1 to 20; 14, 15,
// 18 and 19 are filled elsewhere).
struct SearchLists {
  std::array<std::vector<std::string>, 21> Items;
};

// "All" (message 260) at 0 and then each table sorted by byte value (Combo1..8, 12, 13, 17), the
// Savestate table in its stored order (Combo16), the three fixed lists (Combo9, 10, 11, from the
// messages) and the operators of Combo20. With no game in the store, the lists stay empty. The
// tables themselves keep their order: records point into them.
SearchLists FillSearchLists(const GameStore& store, const Messages& messages);

// The table behind each table box, by control number; nullptr for the other boxes.
const CodeTable* TableOfCombo(const GameStore& store, int combo);

// The first position of `text` in `items`, by an exact comparison; -1 when it isn't there (the
// user typed a text of his own).
int ListPosition(const std::vector<std::string>& items, std::string_view text);

// What the search dialog's boxes hold when Find is pressed: the keyword box, and for each ComboN
// (1 to 20) its text and list position (-1 for a typed text).
struct SearchForm {
  std::string Keyword;
  std::array<std::string, 21> Text;
  std::array<int, 21> Position{};
  SearchForm() { Position.fill(-1); }
};

// The outcome of Find.
struct SearchRun {
  SearchResult Results;
  // True when the operator box must go back to "=" (a "<" or ">" on a version numbered 0).
  bool OperatorReset = false;
  // True when the union ran.
  bool UsedUnion = false;
};

// The search criteria a form gives: trimmed texts, typed texts discarded where the dialog
// discards them (but kept in Combo12 and Combo13, where they find nothing), the fixed lists'
// positions, Savestate and VersionAdded.
SearchCriteria CriteriaFromForm(const GameStore& store, const SearchForm& form,
                                std::string_view allText);

// Find: the criteria of the form, then one search, or the union for "<" and ">".
SearchRun RunSearch(const GameStore& store, const SearchLists& lists, const SearchForm& form,
                    std::string_view allText, Work* work = nullptr);

// A line of the result list: the rom name padded with blanks to LongestNameLength + 1, then the
// game's description.
std::string ResultLine(const GameStore& store, int index);
std::vector<std::string> ResultLines(const GameStore& store, const SearchResult& results);

}  // namespace tessarin
