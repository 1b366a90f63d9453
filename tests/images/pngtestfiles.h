#pragma once

// PNG files for the loader's tests, written and read back with libpng, and hand-made chunk
// streams for the broken cases.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pngtest {

struct TextEntry {
  std::string keyword;
  std::string text;
  bool compressed = false;
};

struct PngRecipe {
  std::uint32_t width = 13;
  std::uint32_t height = 11;
  int colorType = 2;  // 0, 2, 3, 4, 6
  int bitDepth = 8;
  bool interlaced = false;
  bool withTrns = false;
  bool withBkgd = false;
  bool withTime = false;
  std::vector<TextEntry> texts;
  // zlib settings of the writer: -1 default; 0 gives stored blocks.
  int compressionLevel = -1;
  // 0 default; 4 (Z_FIXED) gives fixed-code blocks only.
  int strategy = 0;
  std::uint32_t seed = 1;
};

// The samples the writer used, kept to check what the file says (bKGD, tRNS).
struct WrittenPng {
  std::vector<std::uint8_t> palette;           // RGB triples, for colour type 3
  std::vector<std::uint8_t> trns;              // palette alphas, or the key as 16-bit samples
  std::uint16_t bkgd[3] = {0, 0, 0};           // grey or RGB sample, or palette index in [0]
  std::uint16_t time[6] = {0, 0, 0, 0, 0, 0};  // year, month, day, hour, minute, second
};

// Writes a picture of gradients and noise; gives false when libpng refused.
bool WritePng(const std::string& path, const PngRecipe& recipe, WrittenPng* written = nullptr);

// What libpng reads: 8-bit RGBA of the whole picture, with palettes, low depths and tRNS
// expanded, and 16-bit samples cut to their high byte. Gives false on a libpng error.
struct LibpngImage {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  int colorType = 0;  // of the file
  std::vector<std::uint8_t> rgba;
  bool hasBkgd = false;
  std::uint8_t bkgdRgb[3] = {0, 0, 0};  // the bKGD colour, scaled like the pixels
};
bool ReadWithLibpng(const std::string& path, LibpngImage& image);
// The same from bytes in memory.
bool ReadWithLibpng(std::string_view bytes, LibpngImage& image);

// Hand-made files.
std::string Chunk(const std::string& type, const std::string& data);
std::string Signature();
std::string Ihdr(std::uint32_t width, std::uint32_t height, int depth, int colorType,
                 int interlace = 0);
// zlib's compress2 of `raw`, at `level`.
std::string Zlib(const std::string& raw, int level = 6);

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);

}  // namespace pngtest
