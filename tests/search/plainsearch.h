#pragma once

// The search as the program first did it, step by step, kept beside the tests as the measure of
// the fast engine: a score per game, one walk over all records per criterion, a table walk per
// table criterion, and for "<" and ">" one full search per version joined by AddUnique on index
// texts. Slow on purpose; only the results count.

#include <string>
#include <string_view>
#include <vector>

#include "search/searchengine.h"
#include "store/gamerecord.h"

namespace tessarin::plain {

inline std::string LCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

// 1-based position of `needle` in `text`, 0 when absent (InStr).
inline size_t InStr(size_t start, std::string_view text, std::string_view needle) {
  const size_t at = text.find(needle, start - 1);
  return at == std::string_view::npos ? 0 : at + 1;
}

// Mid(text, start, 1) with a 1-based start; empty past the end.
inline std::string MidOne(std::string_view text, size_t start) {
  return start >= 1 && start <= text.size() ? std::string(1, text[start - 1]) : std::string();
}

inline SearchResult SearchGames(const GameStore& store, const SearchCriteria& c) {
  const int count = store.GameCount();
  std::vector<int> score(static_cast<size_t>(count) + 1, 0);
  int n = 0;
  const auto record = [&](int i) -> const std::string& {
    return store.GameRecords[static_cast<size_t>(i)];
  };
  if (!c.Keyword.empty()) {
    ++n;
    const std::string keyword = LCase(c.Keyword);
    for (int i = 1; i <= count; ++i) {
      const std::string& r = record(i);
      const size_t semicolon = InStr(1, r, ";");
      const std::string name = semicolon ? r.substr(0, semicolon - 1) : r;
      if (LCase(name).find(keyword) != std::string::npos) {
        ++score[static_cast<size_t>(i)];
        continue;
      }
      const size_t b = InStr(1, r, ";B");
      const size_t start = b ? b + 2 : 2;  // a missing tag reads from position 0 + 2
      const size_t cAt = start <= r.size() ? InStr(start, r, ";C") : 0;
      std::string slice;
      if (start <= r.size()) slice = cAt ? r.substr(start - 1, cAt - start) : r.substr(start - 1);
      if (LCase(slice).find(keyword) != std::string::npos) ++score[static_cast<size_t>(i)];
    }
  }
  const auto tableCriterion = [&](const std::string& text, const CodeTable& table, char tag) {
    if (text.empty()) return;
    ++n;
    for (size_t p = 1; p < table.size(); ++p) {
      if (table[p] == text) {
        const std::string needle = ";" + std::string(1, tag) + std::to_string(p) + ";";
        for (int i = 1; i <= count; ++i) {
          if (InStr(1, record(i), needle)) ++score[static_cast<size_t>(i)];
        }
        return;
      }
    }
  };
  tableCriterion(c.Manufacturer, store.ManufacturerTable, 'C');
  tableCriterion(c.Year, store.YearTable, 'D');
  tableCriterion(c.Genre, store.GenreTable, 'I');
  tableCriterion(c.Category, store.CategoryTable, 'J');
  tableCriterion(c.Status, store.StatusTable, 'H');
  tableCriterion(c.Players, store.NPlayersTable, 'O');
  tableCriterion(c.Buttons, store.ButtonsTable, 'F');
  tableCriterion(c.Control, store.ControlsTable, 'G');
  tableCriterion(c.Orientation, store.OrientationTable, 'E');
  tableCriterion(c.Driver, store.DriverTable, 'N');
  if (c.Available != 0) {
    ++n;
    for (int i = 1; i <= count; ++i) {
      const std::string& r = record(i);
      const std::string last = r.empty() ? std::string() : r.substr(r.size() - 1);
      if ((c.Available == 1 && last == "*") || (c.Available == 2 && last != "*")) {
        ++score[static_cast<size_t>(i)];
      }
    }
  }
  const auto firstBehind = [&](const std::string& r, const char* tag) {
    return MidOne(r, InStr(1, r, tag) + 2);
  };
  if (c.Clones != 0) {
    ++n;
    for (int i = 1; i <= count; ++i) {
      const std::string ch = firstBehind(record(i), ";S");
      if ((c.Clones == 1 && ch != "#") || (c.Clones == 2 && ch == "#")) {
        ++score[static_cast<size_t>(i)];
      }
    }
  }
  if (c.Mature != 0) {
    ++n;
    for (int i = 1; i <= count; ++i) {
      const std::string ch = firstBehind(record(i), ";L");
      if ((c.Mature == 1 && ch != "#") || (c.Mature == 2 && ch == "#")) {
        ++score[static_cast<size_t>(i)];
      }
    }
  }
  if (c.Savestate != 0) {
    ++n;
    for (int i = 1; i <= count; ++i) {
      const std::string ch = firstBehind(record(i), ";V");
      if ((c.Savestate == 1 && ch == "1") || (c.Savestate == 2 && ch == "2")) {
        ++score[static_cast<size_t>(i)];
      }
    }
  }
  if (c.VersionAdded > 0) {
    ++n;
    const std::string needle = ";K" + std::to_string(c.VersionAdded) + ";";
    for (int i = 1; i <= count; ++i) {
      if (InStr(1, record(i), needle)) ++score[static_cast<size_t>(i)];
    }
  }
  SearchResult result;
  for (int i = 1; i <= count; ++i) {
    if (n == 0 || score[static_cast<size_t>(i)] == n) result.push_back(i);
  }
  return result;
}

// The union as it was: one full search per qualifying version of the list, in list order.
inline SearchResult VersionUnion(const GameStore& store, SearchCriteria c,
                                 const std::vector<std::string>& versionItems, bool below,
                                 double reference, std::string_view allText) {
  std::vector<std::string> found;
  for (const std::string& item : versionItems) {
    const double number = VersionNumber(item);
    if (number > 0 && (below ? number < reference : number > reference)) {
      c.VersionAdded = VersionPosition(item, store.VerAddedTable, allText);
      for (const int game : plain::SearchGames(store, c)) AddUnique(std::to_string(game), found);
    }
  }
  SearchResult result;
  for (const std::string& text : found) result.push_back(std::stoi(text));
  return result;
}

}  // namespace tessarin::plain
