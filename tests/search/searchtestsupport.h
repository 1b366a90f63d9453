#pragma once

// Shared pieces of the search tests: a context on a fresh folder, the fixture database, and
// random databases whose records hold the traps of the record format.

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

#include "app/context.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"
#include "support/testfiles.h"

namespace tessarin::searchtest {

inline std::string SearchFixture(const std::string& relative) {
  return std::string(TESSARIN_TEST_DATA) + "/search/" + relative;
}

// A context on its own temporary folder, in English.
class ContextHolder {
 public:
  ContextHolder() : m_ctx(std::make_unique<AppContext>(m_folder.Path())) {
    m_ctx->messages.LanguageNumber = Messages::kEnglish;
    m_ctx->messages.LoadMessages();
  }
  AppContext& ctx() const { return *m_ctx; }
  std::string Folder() const { return m_folder.Path(); }

 private:
  testsupport::TempFolder m_folder;
  std::unique_ptr<AppContext> m_ctx;
};

// Loads tests/data/search/index into the holder's store.
inline bool FixtureStore(ContextHolder& holder) {
  return LoadIndex(holder.ctx().store, holder.ctx().log, SearchFixture("index"));
}

// A database of `games` random games over small tables with repeated entries, whose titles
// sometimes hold tag texts (";C2;", ";K3;", ";K03;"), whose flags vary, and some of whose
// records lost their tail to a Mameinfo reset.
inline void RandomStore(GameStore& store, unsigned seed, int games) {
  std::mt19937 rng(seed);
  const auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); };
  store.Clear();
  const auto fill = [&](CodeTable& table, int size, const char* stem) {
    for (int i = 0; i < size; ++i) {
      // Every fifth entry repeats an earlier one, so the first-entry rule matters.
      if (i > 0 && i % 5 == 0) {
        table.push_back(table[static_cast<size_t>(1 + below(i))]);
      } else {
        table.push_back(std::string(stem) + std::to_string(i + 1));
      }
    }
  };
  fill(store.ManufacturerTable, 12, "Maker ");
  fill(store.YearTable, 8, "19");
  fill(store.OrientationTable, 3, "rot");
  fill(store.ButtonsTable, 5, "b");
  fill(store.ControlsTable, 4, "ctl");
  fill(store.StatusTable, 3, "st");
  fill(store.GenreTable, 6, "Genre ");
  fill(store.CategoryTable, 9, "Cat ");
  fill(store.DriverTable, 7, "drv");
  fill(store.NPlayersTable, 4, "P");
  fill(store.SavestateTable, 3, "ss");
  static const char* versions[] = {"0.037b16", "0.135", "0.135u1", "0.100", "0.140",
                                   "?",        "0.036", "0.251",   "00000", "0.100"};
  for (const char* v : versions) store.VerAddedTable.push_back(v);
  static const char* words[] = {"Pac", "Street", "Fighter", "II",    "game",
                                "1",   "Zz",     "éclair",  "WORLD", "a"};
  const auto field = [&](const CodeTable& table) -> std::string {
    // One in eight fields keeps its placeholder.
    if (below(8) == 0) return "#";
    return std::to_string(1 + below(static_cast<int>(table.size()) - 1));
  };
  for (int g = 1; g <= games; ++g) {
    const std::string name = (below(3) == 0 ? "PAC" : "g") + std::to_string(g);
    std::string title;
    const int count = 1 + below(4);
    for (int w = 0; w < count; ++w) title += std::string(w ? " " : "") + words[below(10)];
    switch (below(12)) {
      case 0:
        title += " ;C" + std::to_string(1 + below(12)) + "; trap";
        break;
      case 1:
        title += " ;K" + std::to_string(1 + below(10)) + "; trap";
        break;
      case 2:
        title += " ;K0" + std::to_string(1 + below(9)) + ";";
        break;
      case 3:
        title.clear();
        break;
      default:
        break;
    }
    std::string record = name + ";A" + std::to_string(g * 100) + ";0;B" + title;
    record += ";C" + field(store.ManufacturerTable) + ";D" + field(store.YearTable);
    record += ";E" + field(store.OrientationTable) + ";F" + field(store.ButtonsTable);
    record += ";G" + field(store.ControlsTable) + ";H" + field(store.StatusTable);
    record += ";I" + field(store.GenreTable) + ";J" + field(store.CategoryTable);
    record += ";K" + field(store.VerAddedTable);
    record += below(5) == 0 ? ";L*Mature*" : ";L#X";
    record += ";M#BI;N" + field(store.DriverTable) + ";O" + field(store.NPlayersTable);
    record += ";P#HS;Q#HI;R#CH;S" + std::string(below(3) == 0 ? "parent" : "#CL");
    record += ";T#CM;U#MI";
    if (below(10) != 0) {
      record += ";V" + (below(6) == 0 ? std::string("#SS") : field(store.SavestateTable));
      if (below(2) == 0) record += std::string(static_cast<size_t>(1 + below(2)), '*');
    }
    store.AppendGame(name, record);
    if (static_cast<int>(name.size()) > store.LongestNameLength) {
      store.LongestNameLength = static_cast<int>(name.size());
    }
  }
  store.SetEndRecord(NewXmlRecord(EndRecordName, games * 100 + 100));
}

}  // namespace tessarin::searchtest
