// Fills the built-in game page for every game of a real database, as the site builder does
// (site links, navigation kept, the name in front, the group keys), and once as the search
// dialog does.
//
//   bench_gamepage [--home DIR] [benchmark options]
//
// DIR (default /work/realdata/home) holds Tessarin.inf and DataFiles/index and listxml. It is
// only read: the run works in a temporary copy of the settings and the index, with the dump
// linked.

#include <benchmark/benchmark.h>

#include <QTemporaryDir>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

#include "app/context.h"
#include "core/fileservices.h"
#include "lists/skins.h"
#include "sheet/gamedetails.h"
#include "sheet/gamepage.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

std::string g_home = "/work/realdata/home";

// A working copy of the real home: settings and index copied, the dump linked.
struct RealHome {
  QTemporaryDir dir;
  std::unique_ptr<AppContext> ctx;

  bool Open() {
    namespace fs = std::filesystem;
    const fs::path source(g_home);
    const fs::path target(dir.path().toStdString());
    std::error_code ec;
    fs::create_directories(target / "DataFiles", ec);
    fs::create_directories(target / "Temp", ec);
    fs::copy_file(source / "Tessarin.inf", target / "Tessarin.inf", ec);
    fs::copy_file(source / "DataFiles" / "index", target / "DataFiles" / "index", ec);
    if (ec) return false;
    fs::create_symlink(source / "DataFiles" / "listxml", target / "DataFiles" / "listxml", ec);
    if (ec) return false;
    ctx = std::make_unique<AppContext>(target.string());
    ctx->log.SetFatalHandler([](const std::string& log) { std::cerr << "fatal: " << log << "\n"; });
    ctx->settings.InfLoad();
    ctx->messages.LoadMessages();
    ctx->TempFolder = AddSlash((target / "Temp").string());
    return LoadIndex(ctx->store, ctx->log, IndexFilePath(ctx->AppFolder()));
  }
};

RealHome& Home() {
  static RealHome* home = [] {
    auto* h = new RealHome;
    if (!h->Open()) {
      std::cerr << "Can't open the database of " << g_home << "\n";
      std::exit(1);
    }
    return h;
  }();
  return *home;
}

void BM_FillAllGamePages_Site(benchmark::State& state) {
  RealHome& home = Home();
  AppContext& ctx = *home.ctx;
  const std::string pageTemplate(BuiltInGamePage(1));
  GamePageOptions options;
  options.keepNavigation = true;
  options.prefixName = true;
  options.siteLinks = true;
  options.siteRoot = ctx.AppFolder() + "site/";
  size_t bytes = 0;
  for (auto _ : state) {
    GameDetailsLoader loader(ctx);
    GroupKeys keys;
    bytes = 0;
    for (int i = 1; i <= ctx.store.GameCount(); ++i) {
      const std::string page = FillGamePage(ctx, loader, {}, pageTemplate, i, options, &keys);
      bytes += page.size();
      benchmark::DoNotOptimize(keys);
    }
  }
  state.counters["games"] = ctx.store.GameCount();
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["errors"] = ctx.log.BugCount();
}
BENCHMARK(BM_FillAllGamePages_Site)->Unit(benchmark::kSecond)->Iterations(1);

void BM_FillAllGamePages_Search(benchmark::State& state) {
  RealHome& home = Home();
  AppContext& ctx = *home.ctx;
  const std::string pageTemplate(BuiltInGamePage(1));
  for (auto _ : state) {
    GameDetailsLoader loader(ctx);
    for (int i = 1; i <= ctx.store.GameCount(); ++i) {
      benchmark::DoNotOptimize(FillGamePage(ctx, loader, {}, pageTemplate, i, {}));
    }
  }
  state.counters["games"] = ctx.store.GameCount();
}
BENCHMARK(BM_FillAllGamePages_Search)->Unit(benchmark::kSecond)->Iterations(1);

// The part of the work that is the game details alone, to tell it from the filling.
void BM_LoadAllGameDetails(benchmark::State& state) {
  RealHome& home = Home();
  AppContext& ctx = *home.ctx;
  for (auto _ : state) {
    GameDetailsLoader loader(ctx);
    for (int i = 1; i <= ctx.store.GameCount(); ++i) {
      std::string name;
      benchmark::DoNotOptimize(loader.LoadGameDetails(name, i, false));
      benchmark::DoNotOptimize(loader.BuildClonesList(name, true));
    }
  }
}
BENCHMARK(BM_LoadAllGameDetails)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
}  // namespace tessarin

int main(int argc, char** argv) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--home") == 0) {
      tessarin::g_home = argv[i + 1];
      for (int j = i; j + 2 <= argc; ++j) argv[j] = argv[j + 2];
      argc -= 2;
      break;
    }
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
