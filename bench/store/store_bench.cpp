// Speed of the two things every build and every reader leans on: replacing a placeholder in a
// record, and finding a game by its rom name in a full-size database.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "store/faststrings.h"
#include "store/gamerecord.h"

namespace tessarin {
namespace {

// A record as it stands in the middle of a build: about 250 bytes, some fields set, the rest
// still placeholders.
std::string RealisticRecord() {
  std::string record = NewXmlRecord("zorblastj", 184123456);
  FieldSet(record, "#Z", "Zorb Blaster Deluxe Special Edition (Japan, set 2, bootleg of Acme Co)");
  FieldSet(record, "#MA", "312");
  FieldSet(record, "#Y", "17");
  FieldSet(record, "#O", "2");
  FieldSet(record, "#BU", "4");
  FieldSet(record, "#CO", "12");
  FieldSet(record, "#ST", "1");
  FieldSet(record, "#D", "1042");
  FieldSet(record, "#CL", "zorblast");
  FieldSet(record, "#SS", "2");
  record += ";extra text of a long build-time record, padding it out to the typical size";
  return record;
}

void BM_FastReplace_PlaceholderShorter(benchmark::State& state) {
  const std::string record = RealisticRecord();
  for (auto _ : state) {
    std::string result = FastReplace(record, "#CA", "7");
    benchmark::DoNotOptimize(result);
  }
  state.counters["bytes"] = static_cast<double>(record.size());
}
BENCHMARK(BM_FastReplace_PlaceholderShorter);

void BM_FastReplace_PlaceholderLonger(benchmark::State& state) {
  const std::string record = RealisticRecord();
  for (auto _ : state) {
    std::string result = FastReplace(record, "#HI", "90210,90987");
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_FastReplace_PlaceholderLonger);

void BM_FastReplace_PlaceholderSameLength(benchmark::State& state) {
  const std::string record = RealisticRecord();
  for (auto _ : state) {
    std::string result = FastReplace(record, "#CH", "123");
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_FastReplace_PlaceholderSameLength);

void BM_FastReplace_NoMatch(benchmark::State& state) {
  const std::string record = RealisticRecord();
  for (auto _ : state) {
    std::string result = FastReplace(record, "#QQ", "1");
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_FastReplace_NoMatch);

// FieldSet checks first, so a field already set costs one search and no copy.
void BM_FieldSet_AlreadySet(benchmark::State& state) {
  std::string record = RealisticRecord();
  for (auto _ : state) {
    FieldSet(record, "#MA", "99");
    benchmark::DoNotOptimize(record);
  }
}
BENCHMARK(BM_FieldSet_AlreadySet);

// Every ';' grows into three bytes: the result outgrows the source and the buffer.
void BM_FastReplace_Growing(benchmark::State& state) {
  const std::string record = RealisticRecord();
  for (auto _ : state) {
    std::string result = FastReplace(record, ";", "\r\n;");
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_FastReplace_Growing);

void BM_FastReplace_CompareMode(benchmark::State& state) {
  const std::string record = RealisticRecord();
  for (auto _ : state) {
    std::string result = FastReplace(record, "#hi", "90210,90987", 1, kAllMatches, 1);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_FastReplace_CompareMode);

// Rom names of the usual shape: 3 to 12 lower-case letters and digits, all different.
std::vector<std::string> MakeNames(int count, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> lengthOf(3, 12);
  std::uniform_int_distribution<int> charOf(0, 35);
  std::vector<std::string> names;
  names.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    std::string name(static_cast<size_t>(lengthOf(random)), ' ');
    for (char& c : name) c = "abcdefghijklmnopqrstuvwxyz0123456789"[charOf(random)];
    name += std::to_string(i);  // unique
    names.push_back(std::move(name));
  }
  return names;
}

constexpr int kGames = 45000;

const GameStore& FullStore() {
  static const GameStore store = [] {
    GameStore s;
    s.Reserve(kGames);
    for (const std::string& name : MakeNames(kGames, 1)) {
      s.AppendGame(name, NewXmlRecord(name, 0));
    }
    return s;
  }();
  return store;
}

void BM_FindGame_Hit(benchmark::State& state) {
  const GameStore& store = FullStore();
  // Ask in a shuffled order so that the look-ups don't walk memory in sequence.
  std::vector<std::string> queries(store.GameNames().begin() + 1, store.GameNames().end());
  std::shuffle(queries.begin(), queries.end(), std::mt19937(2));
  size_t i = 0;
  for (auto _ : state) {
    const int index = store.FindGame(queries[i]);
    benchmark::DoNotOptimize(index);
    if (++i == queries.size()) i = 0;
  }
}
BENCHMARK(BM_FindGame_Hit);

void BM_FindGame_Miss(benchmark::State& state) {
  const GameStore& store = FullStore();
  std::vector<std::string> queries = MakeNames(kGames, 3);
  for (std::string& q : queries) q += "x";  // never a stored name
  size_t i = 0;
  for (auto _ : state) {
    const int index = store.FindGame(queries[i]);
    benchmark::DoNotOptimize(index);
    if (++i == queries.size()) i = 0;
  }
}
BENCHMARK(BM_FindGame_Miss);

}  // namespace
}  // namespace tessarin
