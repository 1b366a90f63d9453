// Speed of expanding games from a real database: the full details of 1,000 games picked at
// random (fixed seed), the presence-only details of the same games, and the presence-only
// details of every game, as the list writers take them.
//
// The database is an application folder with a built index and its dump, named by the
// environment variable TESSARIN_BENCH_HOME; its settings say where the data files are. Nothing
// is written into it.
//
//   TESSARIN_BENCH_HOME=/path/to/home build/bench/sheet/bench_sheet

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "app/context.h"
#include "sheet/gamedetails.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

struct Database {
  std::unique_ptr<AppContext> ctx;
  std::vector<int> randomGames;
  std::string error;
};

Database& Loaded() {
  static Database db = [] {
    Database d;
    const char* home = std::getenv("TESSARIN_BENCH_HOME");
    if (!home || !*home) {
      d.error = "set TESSARIN_BENCH_HOME to an application folder with a built database";
      return d;
    }
    d.ctx = std::make_unique<AppContext>(home);
    d.ctx->log.SetFatalHandler([](const std::string&) {});
    d.ctx->settings.InfLoad();
    if (!LoadIndex(d.ctx->store, d.ctx->log, IndexFilePath(d.ctx->AppFolder())) ||
        d.ctx->store.GameCount() == 0) {
      d.error = "no database in " + std::string(home);
      return d;
    }
    std::mt19937 random(20261123);
    std::uniform_int_distribution<int> pick(1, d.ctx->store.GameCount());
    for (int i = 0; i < 1000; ++i) d.randomGames.push_back(pick(random));
    return d;
  }();
  return db;
}

void RunGames(benchmark::State& state, bool presenceOnly, bool allGames) {
  Database& db = Loaded();
  if (!db.error.empty()) {
    state.SkipWithError(db.error.c_str());
    return;
  }
  std::vector<int> games = db.randomGames;
  if (allGames) {
    games.resize(static_cast<size_t>(db.ctx->store.GameCount()));
    std::iota(games.begin(), games.end(), 1);
  }
  GameDetailsLoader loader(*db.ctx);
  size_t textBytes = 0;
  for (auto _ : state) {
    for (const int index : games) {
      std::string name;
      const GameDetails d = loader.LoadGameDetails(name, index, presenceOnly);
      textBytes += d.History.size() + d.Command.size() + d.Mameinfo.size() + loader.RomList.size();
      benchmark::DoNotOptimize(d);
    }
  }
  benchmark::DoNotOptimize(textBytes);
  state.counters["games"] = static_cast<double>(games.size());
  state.counters["per_game"] = benchmark::Counter(
      static_cast<double>(games.size()) * static_cast<double>(state.iterations()),
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_Full_Random1000(benchmark::State& state) { RunGames(state, false, false); }
BENCHMARK(BM_Full_Random1000)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_PresenceOnly_Random1000(benchmark::State& state) { RunGames(state, true, false); }
BENCHMARK(BM_PresenceOnly_Random1000)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_PresenceOnly_AllGames(benchmark::State& state) { RunGames(state, true, true); }
BENCHMARK(BM_PresenceOnly_AllGames)->Unit(benchmark::kMillisecond)->Iterations(3);

// Every game in full mode once, counting the failures the error tracker logged: a sweep that
// the whole real list expands without a fault.
void BM_Full_AllGames(benchmark::State& state) {
  RunGames(state, false, true);
  Database& db = Loaded();
  if (!db.ctx) return;
  state.counters["failures"] = db.ctx->log.BugCount();
  // Outside the timing: how many games have dip switches, and how many switches lack a value
  // (today's switch places must not end the run of values).
  GameDetailsLoader loader(*db.ctx);
  double gamesWithSwitches = 0, switches = 0, switchesWithoutValue = 0;
  for (int index = 1; index <= db.ctx->store.GameCount(); ++index) {
    std::string name;
    loader.LoadGameDetails(name, index, true);
    gamesWithSwitches += loader.DipSwitchList.size() > 1;
    for (size_t i = 1; i < loader.DipSwitchList.size(); ++i) {
      const std::string& item = loader.DipSwitchList[i];
      const size_t first = item.find(';');
      switches += 1;
      switchesWithoutValue +=
          first != std::string::npos && item.size() > first + 1 && item[first + 1] == ';';
    }
  }
  state.counters["games_with_switches"] = gamesWithSwitches;
  state.counters["switches"] = switches;
  state.counters["switches_without_value"] = switchesWithoutValue;
}
BENCHMARK(BM_Full_AllGames)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_BuildClonesList_Random1000(benchmark::State& state) {
  Database& db = Loaded();
  if (!db.error.empty()) {
    state.SkipWithError(db.error.c_str());
    return;
  }
  GameDetailsLoader loader(*db.ctx);
  for (auto _ : state) {
    for (const int index : db.randomGames) {
      benchmark::DoNotOptimize(
          loader.BuildClonesList(db.ctx->store.GameNames()[static_cast<size_t>(index)], false));
    }
  }
}
BENCHMARK(BM_BuildClonesList_Random1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessarin
