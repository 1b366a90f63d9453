// Import, save and load of a generated game list of today's shape (20,000 machines, LF line
// ends, devices at the end), so that a change in the hot loops shows without the real list.
// The whole-program timings on the real list are bench/build-timings.sh.

#include <benchmark/benchmark.h>

#include <QTemporaryDir>
#include <fstream>
#include <string>

#include "builder/listxml.h"
#include "core/log.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace {

using namespace tessarin;

std::string MakeList(int machines, int devices) {
  std::string text = "<?xml version=\"1.0\"?>\n<mame build=\"0.251 (bench)\">\n";
  for (int i = 0; i < machines + devices; ++i) {
    const bool device = i >= machines;
    const std::string name = (device ? "dev" : "game") + std::to_string(i);
    text += "\t<machine name=\"" + name + "\" sourcefile=\"drv/d" + std::to_string(i % 900) +
            ".cpp\"" + (device ? " isdevice=\"yes\" runnable=\"no\"" : "") +
            (i % 3 == 1 ? " cloneof=\"game" + std::to_string(i - 1) + "\"" : std::string()) +
            ">\n\t\t<description>Game number " + std::to_string(i) +
            " &amp; friends</description>\n"
            "\t\t<year>19" +
            std::to_string(70 + i % 30) + "</year>\n\t\t<manufacturer>Maker " +
            std::to_string(i % 700) + "</manufacturer>\n";
    for (int r = 0; r < 25; ++r) {
      text +=
          "\t\t<rom name=\"r" + std::to_string(r) +
          ".bin\" size=\"4096\" crc=\"12345678\" sha1=\"0123456789abcdef0123456789abcdef01234567\" "
          "region=\"maincpu\" offset=\"0\"/>\n";
    }
    text += "\t\t<display tag=\"screen\" type=\"raster\" rotate=\"" + std::to_string(i % 4 * 90) +
            "\" width=\"288\" height=\"224\" refresh=\"60.606061\" />\n"
            "\t\t<input players=\"2\" coins=\"2\">\n\t\t\t<control type=\"joy\" player=\"1\" "
            "buttons=\"" +
            std::to_string(i % 6) +
            "\" ways=\"8\"/>\n\t\t</input>\n"
            "\t\t<driver status=\"good\" emulation=\"good\" savestate=\"supported\"/>\n"
            "\t</machine>\n";
  }
  return text + "</mame>\n";
}

struct ListFile {
  ListFile() {
    path = dir.path().toStdString() + "/listxml";
    std::ofstream(path, std::ios::binary) << MakeList(20000, 3000);
  }
  QTemporaryDir dir;
  std::string path;
};

ListFile& TheList() {
  static ListFile list;
  return list;
}

void BM_ImportListXml(benchmark::State& state) {
  ListFile& list = TheList();
  Log log(list.dir.path().toStdString() + "/");
  Work work;
  for (auto _ : state) {
    GameStore store;
    ImportListXml(store, log, work, list.path);
    benchmark::DoNotOptimize(store.GameCount());
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(std::ifstream(list.path, std::ios::ate).tellg()));
}
BENCHMARK(BM_ImportListXml)->Unit(benchmark::kMillisecond);

void BM_SaveAndLoadIndex(benchmark::State& state) {
  ListFile& list = TheList();
  Log log(list.dir.path().toStdString() + "/");
  Work work;
  GameStore store;
  ImportListXml(store, log, work, list.path);
  const std::string index = list.dir.path().toStdString() + "/index";
  for (auto _ : state) {
    SaveIndex(store, log, nullptr, index);
    GameStore loaded;
    LoadIndex(loaded, log, index);
    benchmark::DoNotOptimize(loaded.GameCount());
  }
}
BENCHMARK(BM_SaveAndLoadIndex)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
