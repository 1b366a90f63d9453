// Opening an image pack of 50,000 small entries and taking one picture out of it by name, as the
// game sheet does with snap.zip.

#include <benchmark/benchmark.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "archive/zipreader.h"

namespace {

namespace fs = std::filesystem;

constexpr int kEntries = 50000;

void Put16(std::string& s, std::uint32_t v) {
  s += static_cast<char>(v & 0xff);
  s += static_cast<char>((v >> 8) & 0xff);
}
void Put32(std::string& s, std::uint32_t v) {
  Put16(s, v & 0xffff);
  Put16(s, v >> 16);
}

std::string RawDeflate(const std::string& data) {
  z_stream z{};
  deflateInit2(&z, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&z, data.size()) + 16, '\0');
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
  z.avail_in = static_cast<uInt>(data.size());
  z.next_out = reinterpret_cast<Bytef*>(out.data());
  z.avail_out = static_cast<uInt>(out.size());
  deflate(&z, Z_FINISH);
  out.resize(out.size() - z.avail_out);
  deflateEnd(&z);
  return out;
}

// snap.zip: 50,000 deflated "pictures" of about 2 KB each, named snap/<rom>.png.
struct Pack {
  fs::path folder;
  fs::path zip;
  Pack() {
    folder = fs::temp_directory_path() / ("tessarin-zipbench-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    zip = folder / "snap.zip";
    std::string file, directory;
    for (int i = 0; i < kEntries; ++i) {
      const std::string name = "snap/rom" + std::to_string(i) + ".png";
      std::string picture = "\x89PNG picture of rom " + std::to_string(i);
      while (picture.size() < 2048)
        picture += static_cast<char>('a' + (picture.size() * 7 + i) % 26);
      const std::string packed = RawDeflate(picture);
      const std::uint32_t crc = static_cast<std::uint32_t>(crc32(
          0L, reinterpret_cast<const Bytef*>(picture.data()), static_cast<uInt>(picture.size())));
      const std::uint32_t offset = static_cast<std::uint32_t>(file.size());
      Put32(file, 0x04034b50);
      Put16(file, 20);
      Put16(file, 0);
      Put16(file, 8);
      Put16(file, 0);
      Put16(file, 0x21);
      Put32(file, crc);
      Put32(file, static_cast<std::uint32_t>(packed.size()));
      Put32(file, static_cast<std::uint32_t>(picture.size()));
      Put16(file, static_cast<std::uint32_t>(name.size()));
      Put16(file, 0);
      file += name;
      file += packed;
      Put32(directory, 0x02014b50);
      Put16(directory, 20);
      Put16(directory, 20);
      Put16(directory, 0);
      Put16(directory, 8);
      Put16(directory, 0);
      Put16(directory, 0x21);
      Put32(directory, crc);
      Put32(directory, static_cast<std::uint32_t>(packed.size()));
      Put32(directory, static_cast<std::uint32_t>(picture.size()));
      Put16(directory, static_cast<std::uint32_t>(name.size()));
      Put16(directory, 0);
      Put16(directory, 0);
      Put16(directory, 0);
      Put16(directory, 0);
      Put32(directory, 0);
      Put32(directory, offset);
      directory += name;
    }
    const std::uint32_t cdOffset = static_cast<std::uint32_t>(file.size());
    file += directory;
    Put32(file, 0x06054b50);
    Put16(file, 0);
    Put16(file, 0);
    Put16(file, kEntries);
    Put16(file, kEntries);
    Put32(file, static_cast<std::uint32_t>(directory.size()));
    Put32(file, cdOffset);
    Put16(file, 0);
    std::ofstream(zip, std::ios::binary) << file;
  }
  ~Pack() {
    std::error_code ec;
    fs::remove_all(folder, ec);
  }
};

const Pack& ThePack() {
  static const Pack pack;
  return pack;
}

// What the game sheet does for one game: open the pack, find the picture, inflate it.
void BM_OpenFindAndExtractOne(benchmark::State& state) {
  const Pack& pack = ThePack();
  for (auto _ : state) {
    tessarin::ZipExtractionClass zip;
    zip.ZipOpen(pack.zip.string());
    std::string picture;
    zip.ExtractToMemory(zip.FindEntry("snap/rom43210.png"), picture);
    benchmark::DoNotOptimize(picture);
    if (picture.size() != 2048) state.SkipWithError("wrong picture");
  }
}
BENCHMARK(BM_OpenFindAndExtractOne)->Unit(benchmark::kMillisecond);

void BM_Open(benchmark::State& state) {
  const Pack& pack = ThePack();
  for (auto _ : state) {
    tessarin::ZipExtractionClass zip;
    zip.ZipOpen(pack.zip.string());
    if (zip.FileCount() != kEntries) state.SkipWithError("wrong count");
  }
}
BENCHMARK(BM_Open)->Unit(benchmark::kMillisecond);

// With the pack open already: one look-up and one inflate.
void BM_FindAndExtractInOpenPack(benchmark::State& state) {
  const Pack& pack = ThePack();
  tessarin::ZipExtractionClass zip;
  zip.ZipOpen(pack.zip.string());
  int i = 0;
  for (auto _ : state) {
    std::string picture;
    zip.ExtractToMemory(zip.FindEntry("SNAP/ROM" + std::to_string(i) + ".PNG"), picture);
    benchmark::DoNotOptimize(picture);
    i = (i + 7919) % kEntries;
  }
}
BENCHMARK(BM_FindAndExtractInOpenPack)->Unit(benchmark::kMicrosecond);

// Extracting one entry to disk by name, as UnzipOne does (a walk over the table remains for the
// progress events).
void BM_ExtractSingleFileToDisk(benchmark::State& state) {
  const Pack& pack = ThePack();
  tessarin::ZipExtractionClass zip;
  zip.ZipOpen(pack.zip.string());
  const std::string out = (pack.folder / "out").string();
  for (auto _ : state) {
    zip.ExtractSingleFile(zip.FindEntry("snap/rom49999.png"), out, false, true);
  }
}
BENCHMARK(BM_ExtractSingleFileToDisk)->Unit(benchmark::kMicrosecond);

}  // namespace
