// Times TranslateLine over every line of a data file, the one-scan matcher beside the plain
// row-by-row method, and checks that both give the same bytes.
//
//   bench_translate TRANSLATE.DIC.txt "[HISTORY]" history.dat
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "builder/datanalysers.h"
#include "translate/dictionary.h"

using namespace tessarin;

namespace {

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Processor time, which a machine shared with other jobs doesn't inflate as it does the clock.
double CpuSeconds(std::clock_t since) {
  return static_cast<double>(std::clock() - since) / CLOCKS_PER_SEC;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s DICTIONARY SECTION DATAFILE\n", argv[0]);
    return 2;
  }
  auto start = std::chrono::steady_clock::now();
  const Dictionary dictionary = LoadDictionary(argv[1], argv[2]);
  std::printf("%d rows of %s loaded in %.3f s\n", dictionary.Count(), argv[2], Seconds(start));

  std::vector<std::string> lines;
  DataLineReader reader;
  if (!reader.Open(argv[3])) {
    std::fprintf(stderr, "can't read %s\n", argv[3]);
    return 1;
  }
  size_t bytes = 0;
  std::string_view line;
  while (reader.ReadLine(line)) {
    lines.emplace_back(line);
    bytes += line.size();
  }
  std::printf("%zu lines, %zu bytes\n", lines.size(), bytes);

  start = std::chrono::steady_clock::now();
  std::clock_t cpu = std::clock();
  std::vector<std::string> fast;
  fast.reserve(lines.size());
  for (const std::string& l : lines) fast.push_back(TranslateLine(dictionary, l));
  const double fastSeconds = Seconds(start);
  std::printf("one scan per line:  %.3f s (processor %.3f s)\n", fastSeconds, CpuSeconds(cpu));

  start = std::chrono::steady_clock::now();
  cpu = std::clock();
  size_t differing = 0;
  size_t changed = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string plain = TranslateLineByRows(dictionary.Rows(), lines[i]);
    if (plain != fast[i]) ++differing;
    if (plain != lines[i]) ++changed;
  }
  const double plainSeconds = Seconds(start);
  std::printf("row by row:         %.3f s (processor %.3f s)\n", plainSeconds, CpuSeconds(cpu));
  std::printf("%zu lines changed by the translation, %zu differ between the two methods\n", changed,
              differing);
  return differing == 0 ? 0 : 1;
}
