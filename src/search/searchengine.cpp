#include "search/searchengine.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <unordered_map>

#include "core/fileservices.h"
#include "core/messages.h"
#include "core/textutil.h"
#include "core/work.h"

namespace tessarin {

namespace {

// The progress of a search runs to 140, as the dialog has always counted it.
constexpr int kSearchSteps = 140;

// The first position of a needle of at least two bytes that opens with ';' and a tag letter.
// Records hold a ';' every few bytes but few capitals, so the scan runs on the tag letter with
// memchr and looks back for the ';'; the hits come in order, so the first one is the first.
size_t FindTagged(std::string_view haystack, std::string_view needle, size_t from = 0) {
  const size_t n = needle.size();
  if (n > haystack.size() || from > haystack.size() - n) return std::string_view::npos;
  const char* base = haystack.data();
  const char* last = base + haystack.size() - n + 1;  // the tag letter of the last start
  const char* p = base + from + 1;
  while (p < last + 1) {
    p = static_cast<const char*>(memchr(p, needle[1], static_cast<size_t>(last + 1 - p)));
    if (!p) return std::string_view::npos;
    if (p[-1] == needle[0] && std::memcmp(p + 1, needle.data() + 2, n - 2) == 0) {
      return static_cast<size_t>(p - 1 - base);
    }
    ++p;
  }
  return std::string_view::npos;
}

// Letters are lower-cased in ASCII only: the texts are bytes (UTF-8 in today's lists), and a
// byte above 127 is part of a character that a byte-wise rule would break.
constexpr std::array<char, 256> MakeLowerTable() {
  std::array<char, 256> table{};
  for (int c = 0; c < 256; ++c) {
    table[static_cast<size_t>(c)] = static_cast<char>((c >= 'A' && c <= 'Z') ? c - 'A' + 'a' : c);
  }
  return table;
}
constexpr std::array<char, 256> kLower = MakeLowerTable();

void LowerInto(std::string_view text, std::string& out) {
  out.resize(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    out[i] = kLower[static_cast<unsigned char>(text[i])];
  }
}

// True when `text`, lower-cased, holds `lowered` (already lower-cased). Compares in place, with no
// lowered copy of the text.
bool ContainsLowered(std::string_view text, std::string_view lowered) {
  const size_t n = lowered.size();
  if (n > text.size()) return false;
  const char first = lowered[0];
  const size_t last = text.size() - n;
  for (size_t i = 0; i <= last; ++i) {
    if (kLower[static_cast<unsigned char>(text[i])] != first) continue;
    size_t j = 1;
    while (j < n && kLower[static_cast<unsigned char>(text[i + j])] == lowered[j]) ++j;
    if (j == n) return true;
  }
  return false;
}

// The character the flag criteria look at: the first one behind the tag. A record without the
// tag is read from its start, as every reader of a missing field does (position 0, so the
// second character); a tag at the very end gives no character.
int FlagCharacter(std::string_view record, std::string_view tag) {
  const size_t at = FindTagged(record, tag);
  const size_t index = at == std::string_view::npos ? 1 : at + 2;
  return index < record.size() ? static_cast<unsigned char>(record[index]) : -1;
}

// The description slice the keyword looks at: behind the first ";B" up to the first ";C" after
// it (to the end when none follows). A record without ";B" is read from its second character.
std::string_view DescriptionSlice(std::string_view record) {
  const size_t b = FindTagged(record, ";B");
  const size_t start = b == std::string_view::npos ? std::min<size_t>(1, record.size()) : b + 2;
  const size_t c =
      start <= record.size() ? FindTagged(record, ";C", start) : std::string_view::npos;
  return record.substr(start, c == std::string_view::npos ? std::string_view::npos : c - start);
}

std::string_view RomNameOf(std::string_view record) { return record.substr(0, record.find(';')); }

// The criteria made ready for one pass: needles, the lowered keyword, the flag tests.
struct PreparedSearch {
  bool impossible = false;  // an active criterion that no game can meet
  int active = 0;
  std::string keyword;  // lowered; empty: no test
  std::vector<std::string> needles;
  int available = 0, clones = 0, mature = 0, savestate = 0;
};

PreparedSearch Prepare(const GameStore& store, const SearchCriteria& c, bool withVersion) {
  PreparedSearch p;
  if (!c.Keyword.empty()) {
    ++p.active;
    LowerInto(c.Keyword, p.keyword);
  }
  const struct {
    const std::string& text;
    const CodeTable& table;
    char tag;
  } tables[] = {
      {c.Manufacturer, store.ManufacturerTable, 'C'},
      {c.Year, store.YearTable, 'D'},
      {c.Genre, store.GenreTable, 'I'},
      {c.Category, store.CategoryTable, 'J'},
      {c.Status, store.StatusTable, 'H'},
      {c.Players, store.NPlayersTable, 'O'},
      {c.Buttons, store.ButtonsTable, 'F'},
      {c.Control, store.ControlsTable, 'G'},
      {c.Orientation, store.OrientationTable, 'E'},
      {c.Driver, store.DriverTable, 'N'},
  };
  for (const auto& t : tables) {
    if (t.text.empty()) continue;
    ++p.active;
    // The first equal entry only: a text that stands twice in a table finds the games of its
    // first place, and a text that is no entry finds nothing.
    const int position = FindInTable(t.text, t.table, true);
    if (position == 0) {
      p.impossible = true;
      continue;
    }
    p.needles.push_back(";" + std::string(1, t.tag) + std::to_string(position) + ";");
  }
  const auto flag = [&](int value, int& target) {
    if (value == 0) return;
    ++p.active;
    if (value != 1 && value != 2) p.impossible = true;
    target = value;
  };
  flag(c.Available, p.available);
  flag(c.Clones, p.clones);
  flag(c.Mature, p.mature);
  flag(c.Savestate, p.savestate);
  if (withVersion && c.VersionAdded > 0) {
    ++p.active;
    p.needles.push_back(";K" + std::to_string(c.VersionAdded) + ";");
  }
  return p;
}

// True when the record meets every prepared criterion.
bool Meets(const PreparedSearch& p, std::string_view record) {
  if (p.available != 0) {
    const bool present = !record.empty() && record.back() == '*';
    if (present != (p.available == 1)) return false;
  }
  if (p.clones != 0) {
    const bool clone = FlagCharacter(record, ";S") != '#';
    if (clone != (p.clones == 1)) return false;
  }
  if (p.mature != 0) {
    const bool mature = FlagCharacter(record, ";L") != '#';
    if (mature != (p.mature == 1)) return false;
  }
  if (p.savestate != 0) {
    if (FlagCharacter(record, ";V") != (p.savestate == 1 ? '1' : '2')) return false;
  }
  for (const std::string& needle : p.needles) {
    if (FindTagged(record, needle) == std::string_view::npos) return false;
  }
  if (!p.keyword.empty()) {
    if (!ContainsLowered(RomNameOf(record), p.keyword) &&
        !ContainsLowered(DescriptionSlice(record), p.keyword)) {
      return false;
    }
  }
  return true;
}

SearchResult RunPrepared(const GameStore& store, const PreparedSearch& p, Work* work) {
  const int count = store.GameCount();
  SearchResult result;
  if (work) {
    work->ProgressMax = kSearchSteps;
    work->ProgressValue = 0;
  }
  if (p.impossible || count < 1) {
    if (work) work->ProgressValue = kSearchSteps;
    return result;
  }
  if (p.active == 0) {
    result.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) result[static_cast<size_t>(i)] = i + 1;
    if (work) work->ProgressValue = kSearchSteps;
    return result;
  }
  const int stride = std::max(1, count / 13);
  for (int i = 1; i <= count; ++i) {
    if (work && i % stride == 0) work->ProgressValue = 10 * (i / stride);
    if (Meets(p, store.GameRecords[static_cast<size_t>(i)])) result.push_back(i);
  }
  if (work) work->ProgressValue = kSearchSteps;
  return result;
}

// The table positions p for which the record holds ";K<p>;" anywhere (a description may hold
// such a text too): each digit run behind ";K", without a leading zero, closed by ';'.
void VersionNeedlesIn(std::string_view record, std::vector<int>& positions) {
  positions.clear();
  size_t from = 0;
  while (true) {
    const size_t at =
        from < record.size() ? FindTagged(record, ";K", from) : std::string_view::npos;
    if (at == std::string_view::npos) return;
    from = at + 1;
    size_t i = at + 2;
    if (i >= record.size() || record[i] < '1' || record[i] > '9') continue;
    long long value = 0;
    int digits = 0;
    while (i < record.size() && record[i] >= '0' && record[i] <= '9' && digits < 11) {
      value = value * 10 + (record[i] - '0');
      ++i;
      ++digits;
    }
    if (i >= record.size() || record[i] != ';' || value > 2147483647) continue;
    const int p = static_cast<int>(value);
    if (std::find(positions.begin(), positions.end(), p) == positions.end()) {
      positions.push_back(p);
    }
  }
}

}  // namespace

SearchResult SearchGames(const GameStore& store, const SearchCriteria& criteria, Work* work) {
  return RunPrepared(store, Prepare(store, criteria, true), work);
}

int VersionPosition(std::string_view text, const CodeTable& verAddedTable,
                    std::string_view allText) {
  if (text.empty() || text == allText) return 0;
  const int position = FindInTable(text, verAddedTable, true);
  return position == 0 ? -1 : position;
}

bool AddUnique(const std::string& text, std::vector<std::string>& list) {
  for (const std::string& entry : list) {
    if (entry == text) return false;
  }
  list.push_back(text);
  return true;
}

double VersionNumber(std::string_view text) {
  if (text.find('.') != std::string_view::npos) {
    text.remove_prefix(std::min<size_t>(2, text.size()));
  }
  // Blanks, tabs and line ends are passed over anywhere inside the number.
  std::string number;
  size_t i = 0;
  const auto skipBlanks = [&] {
    while (i < text.size() &&
           (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r')) {
      ++i;
    }
  };
  const auto digits = [&] {
    bool any = false;
    for (skipBlanks(); i < text.size() && text[i] >= '0' && text[i] <= '9'; skipBlanks()) {
      number += text[i++];
      any = true;
    }
    return any;
  };
  skipBlanks();
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) number += text[i++];
  const bool whole = digits();
  bool fraction = false;
  if (i < text.size() && text[i] == '.') {
    ++i;
    number += '.';
    fraction = digits();
  }
  if (!whole && !fraction) return 0.0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
    const std::string mantissa = number;
    ++i;
    number += 'e';
    skipBlanks();
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) number += text[i++];
    if (!digits()) number = mantissa;  // an "e" with no digits behind is no exponent
  }
  // from_chars reads the same whatever the desktop's locale says a decimal point is.
  const char* first = number.data();
  if (*first == '+') ++first;
  double value = 0.0;
  const auto [end, error] = std::from_chars(first, number.data() + number.size(), value);
  (void)end;
  return error == std::errc() ? value : 0.0;
}

SearchResult SearchVersionUnion(const GameStore& store, const SearchCriteria& criteria,
                                const std::vector<std::string>& versionItems, bool below,
                                double reference, std::string_view allText, Work* work) {
  SearchResult result;
  // Which entries take part, and with which version position, in list order.
  std::vector<int> chosen;
  for (const std::string& item : versionItems) {
    const double number = VersionNumber(item);
    if (!(number > 0)) continue;
    if (below ? !(number < reference) : !(number > reference)) continue;
    chosen.push_back(VersionPosition(item, store.VerAddedTable, allText));
  }
  if (chosen.empty()) return result;
  // The games that meet every other criterion, in one pass.
  const SearchResult base = RunPrepared(store, Prepare(store, criteria, false), work);
  if (base.empty()) return result;
  // Each base game under every version position its record holds as a needle, games ascending.
  std::unordered_map<int, std::vector<int>> gamesByPosition;
  std::vector<int> positions;
  for (const int game : base) {
    VersionNeedlesIn(store.GameRecords[static_cast<size_t>(game)], positions);
    for (const int p : positions) gamesByPosition[p].push_back(game);
  }
  std::vector<char> taken(static_cast<size_t>(store.GameCount()) + 1, 0);
  const auto take = [&](const std::vector<int>& games) {
    for (const int game : games) {
      if (taken[static_cast<size_t>(game)]) continue;
      taken[static_cast<size_t>(game)] = 1;
      result.push_back(game);
    }
  };
  for (const int p : chosen) {
    // A position of 0 or -1 makes a search without the version test: all the base games.
    if (p <= 0) {
      take(base);
      continue;
    }
    const auto it = gamesByPosition.find(p);
    if (it != gamesByPosition.end()) take(it->second);
  }
  return result;
}

const CodeTable* TableOfCombo(const GameStore& store, int combo) {
  switch (combo) {
    case 1:
      return &store.ManufacturerTable;
    case 2:
      return &store.YearTable;
    case 3:
      return &store.GenreTable;
    case 4:
      return &store.CategoryTable;
    case 5:
      return &store.StatusTable;
    case 6:
      return &store.NPlayersTable;
    case 7:
      return &store.ButtonsTable;
    case 8:
      return &store.ControlsTable;
    case 12:
      return &store.OrientationTable;
    case 13:
      return &store.DriverTable;
    case 16:
      return &store.SavestateTable;
    case 17:
      return &store.VerAddedTable;
    default:
      return nullptr;
  }
}

SearchLists FillSearchLists(const GameStore& store, const Messages& messages) {
  SearchLists lists;
  if (store.GameCount() < 1) return lists;
  const std::string& all = messages.Lng(260);
  for (const int combo : {17, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13}) {
    const CodeTable& table = *TableOfCombo(store, combo);
    std::vector<std::string>& items = lists.Items[static_cast<size_t>(combo)];
    items.reserve(table.size());
    items.push_back(all);
    // A sorted copy: the table's own order is what the record indexes point into.
    std::vector<std::string> sorted(table.begin() + (table.empty() ? 0 : 1), table.end());
    std::sort(sorted.begin(), sorted.end());
    items.insert(items.end(), sorted.begin(), sorted.end());
  }
  std::vector<std::string>& savestates = lists.Items[16];
  savestates.push_back(all);
  if (store.SavestateTable.size() > 1) {
    savestates.insert(savestates.end(), store.SavestateTable.begin() + 1,
                      store.SavestateTable.end());
  }
  lists.Items[9] = {all, messages.Lng(263), messages.Lng(264)};
  lists.Items[10] = {all, messages.Lng(265), messages.Lng(266)};
  lists.Items[11] = {all, messages.Lng(267), messages.Lng(268)};
  lists.Items[20] = {"=", "<", ">"};
  return lists;
}

int ListPosition(const std::vector<std::string>& items, std::string_view text) {
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i] == text) return static_cast<int>(i);
  }
  return -1;
}

SearchCriteria CriteriaFromForm(const GameStore& store, const SearchForm& form,
                                std::string_view allText) {
  SearchCriteria c;
  const auto text = [&](int combo) {
    std::string value = std::string(TrimBlanks(form.Text[static_cast<size_t>(combo)]));
    const int position = form.Position[static_cast<size_t>(combo)];
    // "All" is no test, and a text typed in a box of table entries is discarded; only the
    // orientation and driver boxes keep it, and there it finds nothing.
    const bool keepsTyped = combo == 12 || combo == 13;
    if (position == 0 || (position < 0 && !keepsTyped)) value.clear();
    return value;
  };
  c.Keyword = std::string(TrimBlanks(form.Keyword));
  c.Manufacturer = text(1);
  c.Year = text(2);
  c.Genre = text(3);
  c.Category = text(4);
  c.Status = text(5);
  c.Players = text(6);
  c.Buttons = text(7);
  c.Control = text(8);
  c.Orientation = text(12);
  c.Driver = text(13);
  const auto position = [&](int combo) { return std::max(0, form.Position[size_t(combo)]); };
  c.Available = position(9);
  c.Clones = position(10);
  c.Mature = position(11);
  const std::string savestate = std::string(TrimBlanks(form.Text[16]));
  if (!savestate.empty() && store.SavestateTable.size() > 1) {
    c.Savestate = FindInTable(savestate, store.SavestateTable, true);
  }
  c.VersionAdded = VersionPosition(form.Text[17], store.VerAddedTable, allText);
  return c;
}

SearchRun RunSearch(const GameStore& store, const SearchLists& lists, const SearchForm& form,
                    std::string_view allText, Work* work) {
  SearchRun run;
  const SearchCriteria criteria = CriteriaFromForm(store, form, allText);
  const std::string& op = form.Text[20];
  if (criteria.VersionAdded == 0 || (op != "<" && op != ">")) {
    run.Results = SearchGames(store, criteria, work);
    return run;
  }
  const double reference = VersionNumber(form.Text[17]);
  if (reference == 0) {
    run.OperatorReset = true;
    run.Results = SearchGames(store, criteria, work);
    return run;
  }
  run.UsedUnion = true;
  run.Results =
      SearchVersionUnion(store, criteria, lists.Items[17], op == "<", reference, allText, work);
  return run;
}

std::string ResultLine(const GameStore& store, int index) {
  if (index < 1 || index > store.GameCount()) return {};
  const std::string& name = store.GameNames()[static_cast<size_t>(index)];
  std::string line = name;
  const size_t width = static_cast<size_t>(std::max(0, store.LongestNameLength)) + 1;
  if (line.size() < width) line.resize(width, ' ');
  line += FieldValue(store.GameRecords[static_cast<size_t>(index)], 'B');
  return line;
}

std::vector<std::string> ResultLines(const GameStore& store, const SearchResult& results) {
  std::vector<std::string> lines;
  lines.reserve(results.size());
  for (const int index : results) lines.push_back(ResultLine(store, index));
  return lines;
}

}  // namespace tessarin
