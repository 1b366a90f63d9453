// Speed of the search on a real database: an empty form, a keyword, one table criterion, all
// sixteen criteria at once, and the union "<" on the newest version (against the per-version
// searches it replaces). The database is the index of the application folder named by
// TESSARIN_BENCH_HOME (default /work/realdata/home).

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "app/context.h"
#include "search/searchengine.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

struct RealDatabase {
  std::unique_ptr<AppContext> ctx;
  SearchLists lists;
  bool loaded = false;

  RealDatabase() {
    const char* home = std::getenv("TESSARIN_BENCH_HOME");
    const std::string folder = home && *home ? home : "/work/realdata/home";
    ctx = std::make_unique<AppContext>(folder);
    ctx->messages.LanguageNumber = Messages::kEnglish;
    ctx->messages.LoadMessages();
    loaded = LoadIndex(ctx->store, ctx->log, IndexFilePath(ctx->AppFolder()));
    if (loaded) lists = FillSearchLists(ctx->store, ctx->messages);
  }
  const GameStore& Store() const { return ctx->store; }

  // The newest version of the list: the greatest number.
  std::string NewestVersion() const {
    std::string newest;
    for (const std::string& item : lists.Items[17]) {
      if (VersionNumber(item) > VersionNumber(newest)) newest = item;
    }
    return newest;
  }

  // Every criterion at once, from one real game so that something is found.
  SearchCriteria AllCriteria() const {
    const GameStore& s = Store();
    const std::string& r = s.GameRecords[static_cast<size_t>(s.FindGame("pacman"))];
    const auto entry = [&](const CodeTable& table, char tag) {
      const std::string_view v = FieldValue(r, tag);
      const int i = v.empty() || v[0] == '#' ? 0 : std::stoi(std::string(v));
      return i > 0 ? table[static_cast<size_t>(i)] : std::string();
    };
    SearchCriteria c;
    c.Keyword = "pac";
    c.Manufacturer = entry(s.ManufacturerTable, 'C');
    c.Year = entry(s.YearTable, 'D');
    c.Genre = entry(s.GenreTable, 'I');
    c.Category = entry(s.CategoryTable, 'J');
    c.Status = entry(s.StatusTable, 'H');
    c.Players = entry(s.NPlayersTable, 'O');
    c.Buttons = entry(s.ButtonsTable, 'F');
    c.Control = entry(s.ControlsTable, 'G');
    c.Available = 2;
    c.Clones = FieldValue(r, 'S').substr(0, 1) == "#" ? 2 : 1;
    c.Mature = 2;
    c.Orientation = entry(s.OrientationTable, 'E');
    c.Driver = entry(s.DriverTable, 'N');
    c.Savestate = FieldValue(r, 'V').substr(0, 1) == "2" ? 2 : 1;
    const std::string_view k = FieldValue(r, 'K');
    c.VersionAdded = k.empty() || k[0] == '#' ? 0 : std::stoi(std::string(k));
    return c;
  }
};

const RealDatabase& Db() {
  static const RealDatabase db;
  return db;
}

void Run(benchmark::State& state, const SearchCriteria& c) {
  if (!Db().loaded) {
    state.SkipWithError("no database: set TESSARIN_BENCH_HOME");
    return;
  }
  size_t found = 0;
  for (auto _ : state) {
    const SearchResult result = SearchGames(Db().Store(), c);
    found = result.size();
    benchmark::DoNotOptimize(result.data());
  }
  state.counters["found"] = static_cast<double>(found);
  state.counters["games"] = Db().Store().GameCount();
}

void BM_EmptyForm(benchmark::State& state) { Run(state, {}); }
BENCHMARK(BM_EmptyForm)->Unit(benchmark::kMillisecond);

void BM_Keyword(benchmark::State& state) {
  SearchCriteria c;
  c.Keyword = "Fighter";
  Run(state, c);
}
BENCHMARK(BM_Keyword)->Unit(benchmark::kMillisecond);

void BM_Manufacturer(benchmark::State& state) {
  SearchCriteria c;
  c.Manufacturer = "Capcom";
  Run(state, c);
}
BENCHMARK(BM_Manufacturer)->Unit(benchmark::kMillisecond);

void BM_AllCriteria(benchmark::State& state) { Run(state, Db().AllCriteria()); }
BENCHMARK(BM_AllCriteria)->Unit(benchmark::kMillisecond);

// The whole of Find for "<" on the newest version: form rules, lists, union.
void BM_UnionBelowNewest(benchmark::State& state) {
  if (!Db().loaded) {
    state.SkipWithError("no database: set TESSARIN_BENCH_HOME");
    return;
  }
  SearchForm form;
  form.Text[17] = Db().NewestVersion();
  form.Text[20] = "<";
  size_t found = 0;
  for (auto _ : state) {
    const SearchRun run = RunSearch(Db().Store(), Db().lists, form, "All");
    found = run.Results.size();
    benchmark::DoNotOptimize(run.Results.data());
  }
  state.counters["found"] = static_cast<double>(found);
  state.SetLabel("version " + form.Text[17]);
}
BENCHMARK(BM_UnionBelowNewest)->Unit(benchmark::kMillisecond);

// What the union replaces: one full search per version below the newest, for comparison.
void BM_UnionBelowNewest_OneSearchPerVersion(benchmark::State& state) {
  if (!Db().loaded) {
    state.SkipWithError("no database: set TESSARIN_BENCH_HOME");
    return;
  }
  const double reference = VersionNumber(Db().NewestVersion());
  size_t found = 0;
  for (auto _ : state) {
    std::vector<char> seen(static_cast<size_t>(Db().Store().GameCount()) + 1, 0);
    SearchResult all;
    for (const std::string& item : Db().lists.Items[17]) {
      const double number = VersionNumber(item);
      if (!(number > 0 && number < reference)) continue;
      SearchCriteria c;
      c.VersionAdded = VersionPosition(item, Db().Store().VerAddedTable, "All");
      for (const int game : SearchGames(Db().Store(), c)) {
        if (!seen[static_cast<size_t>(game)]) {
          seen[static_cast<size_t>(game)] = 1;
          all.push_back(game);
        }
      }
    }
    found = all.size();
    benchmark::DoNotOptimize(all.data());
  }
  state.counters["found"] = static_cast<double>(found);
}
BENCHMARK(BM_UnionBelowNewest_OneSearchPerVersion)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
}  // namespace tessarin
