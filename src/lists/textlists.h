#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class GameDetailsLoader;
class Messages;
class Settings;
class Work;
struct GameDetails;

// ---- the field table ----

inline constexpr int kListFieldCount = 47;

// How a field is written: its text as it stands, a flag as True/False, a long text by its
// presence (True/False), or a detail list with one column per piece of every item.
enum class ListFieldKind { Text, YesNo, Present, Multi };

struct ListFieldInfo {
  std::string_view name;  // the entry of List1: the column title and the field's name
  ListFieldKind kind;
};

// The 47 entries of List1, in their order.
const std::array<ListFieldInfo, kListFieldCount>& ListFields();
// The position of the field of that exact name; -1 when there is none.
int FindListField(std::string_view name);

// Which entries of List1 are selected, by position.
using ListSelection = std::array<bool, kListFieldCount>;

// ---- separators and the dialog's settings ----

// The separator radios of the text page, by their index; None when no radio is on.
enum class SeparatorRadio : int {
  None = -1,
  Tab = 0,
  Semicolon = 1,
  Comma = 2,
  Space = 3,
  Other = 4
};

// The separator of a text list: the Other text (a blank when it is empty), replaced by the
// radio's own character for Tab, Semicolon, Comma and Space.
std::string ListSeparator(SeparatorRadio radio, std::string_view otherText);
// The separator as Frm7Separateur keeps it: a TAB character is the word "TAB".
std::string SeparatorSettingText(std::string_view separator);
// The radio that a stored Frm7Separateur selects, given the Other text already read back.
SeparatorRadio RadioFromSeparatorSetting(std::string_view stored, std::string_view otherText);
// The Other text read back from a stored Frm7CarSep: its first character; empty for "-1" or an
// empty value.
std::string OtherTextFromSetting(std::string_view stored);
// Frm7List1 as written: one character per entry, "1" selected, "0" not.
std::string SelectionSettingText(const std::vector<bool>& selected);
// Frm7List1 read back onto `selected` (which keeps its size): entry i-1 is selected when the
// i-th character is "1", for i up to the length of the value and the number of entries. "-1" or
// an empty value leaves `selected` as it is.
void ApplySelectionSetting(std::string_view stored, std::vector<bool>& selected);
// The skins of Combo1: the names in the application's HTML folder ending in ".skin" (folders
// and files), then those ending in ".skin.zip", each in name order, with their extensions.
std::vector<std::string> ListSkinNames(const std::string& appFolder);

// The file dialogs' filters, "name|pattern|..." as the choosers take them.
std::string TextListFileFilter(const Messages& messages);
std::string IniFileFilter(const Messages& messages);

// ---- building a text list ----

struct TextListFormat {
  std::string separator = " ";
  std::string quote;  // `"` with quotation marks, else empty
  // RFC 4180 comma-separated values instead of the classic list: no separator behind the
  // header, cells quoted only when they must be, texts as shown (UTF-8, XML entities resolved).
  bool csv = false;
};

struct TextListRequest {
  TextListFormat format;
  ListSelection selected{};
  // The INI file of rom names (Text4, trimmed here); the whole database when it names no
  // existing file.
  std::string iniFile;
  std::string outputPath;
};

// The state of the text page's controls that a build reads.
struct TextListControls {
  SeparatorRadio radio = SeparatorRadio::None;
  std::string otherText;  // Text1
  bool quotes = false;    // Chk1
  ListSelection selected{};
  std::string iniFile;  // Text4
};

// The Build button up to the choice of the file: works out the separator and writes
// Frm7Separateur, stops without a word when no field is selected, then asks for the list's
// file through the context's user interface. Gives nothing when the build stops there.
std::optional<TextListRequest> PrepareTextList(AppContext& ctx, const TextListControls& controls);

enum class ListRunResult { Done, Cancelled, Failed };

// Writes the list: the header line, then one line per game of the database or of the INI file
// (the first 8 characters of each name line, in file order; names not in the database give no
// line). Progress and cancel go through `work`; a cancel keeps the lines written so far. Shows
// nothing: the caller tells the end.
ListRunResult BuildTextList(AppContext& ctx, Work& work, const TextListRequest& request);

// ---- the pieces of a line, for tests and other writers ----

// The cells of one game's line in column order: a text as it stands, a flag or a presence as
// True/False, and for a detail list every piece of every item. The views point into `details`
// and the loader's lists.
void CollectListCells(const GameDetails& details, const GameDetailsLoader& lists,
                      const ListSelection& selected, std::vector<std::string_view>& cells);
// The header line's text, without its line end.
std::string TextListHeader(const ListSelection& selected, const TextListFormat& format);
// A data line from its cells in column order, without its line end.
void FormatListLine(const std::vector<std::string_view>& cells, const TextListFormat& format,
                    std::string& line);
// A cell for CSV: quoted when it holds a comma, a quote, a CR or LF (or with `quoteAll`), its
// quotes doubled; bytes that are not UTF-8 read as Windows-1252, XML entities (&amp; &quot;...)
// resolved.
void AppendCsvCell(std::string& out, std::string_view cell, std::string_view separator,
                   bool quoteAll);

}  // namespace tessarin
