// Decoding speed of the loader against libpng, on a 640 x 480 true colour picture and a
// 320 x 240 palette picture of gradients and noise, both made with libpng when the program
// starts. Both decoders read from memory and give blue, green, red rows.

#include <benchmark/benchmark.h>
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "images/pngloader.h"

namespace {

struct Jump {
  std::jmp_buf buffer;
};

void OnError(png_structp png, png_const_charp) {
  std::longjmp(static_cast<Jump*>(png_get_error_ptr(png))->buffer, 1);
}
void OnWarning(png_structp, png_const_charp) {}

void Append(png_structp png, png_bytep data, png_size_t length) {
  auto* out = static_cast<std::string*>(png_get_io_ptr(png));
  out->append(reinterpret_cast<const char*>(data), length);
}
void Flush(png_structp) {}

struct Reader {
  const std::string* bytes;
  std::size_t pos;
};

void ReadFrom(png_structp png, png_bytep out, png_size_t length) {
  auto* reader = static_cast<Reader*>(png_get_io_ptr(png));
  if (reader->bytes->size() - reader->pos < length) png_error(png, "past end");
  std::memcpy(out, reader->bytes->data() + reader->pos, length);
  reader->pos += length;
}

bool Encode(std::string& out, std::uint32_t width, std::uint32_t height, int colorType,
            png_bytep* rows, png_colorp palette, int paletteSize) {
  Jump jump;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &jump, OnError, OnWarning);
  png_infop info = png_create_info_struct(png);
  if (setjmp(jump.buffer) != 0) {
    png_destroy_write_struct(&png, &info);
    return false;
  }
  png_set_write_fn(png, &out, Append, Flush);
  png_set_IHDR(png, info, width, height, 8, colorType, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
  if (paletteSize > 0) png_set_PLTE(png, info, palette, paletteSize);
  png_set_rows(png, info, rows);
  png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

// Gradients with noise on top, like a photographed flyer or a screenshot with dithering.
std::string MakeTrueColour() {
  const std::uint32_t width = 640, height = 480;
  std::mt19937 random(1);
  std::vector<std::uint8_t> pixels(width * height * 3);
  for (std::uint32_t y = 0; y < height; ++y)
    for (std::uint32_t x = 0; x < width; ++x) {
      std::uint8_t* p = &pixels[(y * width + x) * 3];
      int noise = static_cast<int>(random() % 17) - 8;
      p[0] = static_cast<std::uint8_t>(std::clamp<int>(x * 255 / width + noise, 0, 255));
      p[1] = static_cast<std::uint8_t>(std::clamp<int>(y * 255 / height - noise, 0, 255));
      p[2] = static_cast<std::uint8_t>(std::clamp<int>(
          (x + y) * 255 / (width + height) + static_cast<int>(random() % 9), 0, 255));
    }
  std::vector<png_bytep> rows(height);
  for (std::uint32_t y = 0; y < height; ++y) rows[y] = &pixels[y * width * 3];
  std::string out;
  Encode(out, width, height, PNG_COLOR_TYPE_RGB, rows.data(), nullptr, 0);
  return out;
}

std::string MakePalette() {
  const std::uint32_t width = 320, height = 240;
  std::mt19937 random(2);
  std::vector<png_color> palette(256);
  for (int i = 0; i < 256; ++i) {
    palette[i].red = static_cast<png_byte>(i);
    palette[i].green = static_cast<png_byte>(255 - i);
    palette[i].blue = static_cast<png_byte>((i * 7) & 255);
  }
  std::vector<std::uint8_t> pixels(width * height);
  for (std::uint32_t y = 0; y < height; ++y)
    for (std::uint32_t x = 0; x < width; ++x)
      pixels[y * width + x] =
          static_cast<std::uint8_t>(((x + y) * 255 / (width + height) + random() % 12) & 255);
  std::vector<png_bytep> rows(height);
  for (std::uint32_t y = 0; y < height; ++y) rows[y] = &pixels[y * width];
  std::string out;
  Encode(out, width, height, PNG_COLOR_TYPE_PALETTE, rows.data(), palette.data(), 256);
  return out;
}

const std::string& TrueColourFile() {
  static const std::string bytes = MakeTrueColour();
  return bytes;
}
const std::string& PaletteFile() {
  static const std::string bytes = MakePalette();
  return bytes;
}

// libpng's decode to blue, green, red rows, the loader's output form.
bool LibpngDecode(const std::string& bytes, std::vector<std::uint8_t>& out,
                  std::vector<png_bytep>& rows) {
  Reader reader{&bytes, 0};
  Jump jump;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &jump, OnError, OnWarning);
  png_infop info = png_create_info_struct(png);
  if (setjmp(jump.buffer) != 0) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_set_read_fn(png, &reader, ReadFrom);
  png_read_info(png, info);
  png_set_expand(png);
  png_set_strip_16(png);
  png_set_bgr(png);
  png_read_update_info(png, info);
  const png_uint_32 height = png_get_image_height(png, info);
  const std::size_t rowBytes = png_get_rowbytes(png, info);
  out.resize(rowBytes * height);
  rows.resize(height);
  for (png_uint_32 y = 0; y < height; ++y) rows[y] = out.data() + y * rowBytes;
  png_read_image(png, rows.data());
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return true;
}

void Tessarin(benchmark::State& state, const std::string& bytes) {
  tessarin::LoadPNG loader;
  loader.SetAlpha(true);
  loader.SetTrans(true);
  for (auto _ : state) {
    loader.OpenPNGData(bytes);
    benchmark::DoNotOptimize(loader.Picture().Pixels.data());
  }
  if (loader.ErrorNumber() != 0 || loader.Picture().Empty()) state.SkipWithError("not decoded");
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(loader.Picture().Pixels.size()));
}

void Libpng(benchmark::State& state, const std::string& bytes) {
  std::vector<std::uint8_t> out;
  std::vector<png_bytep> rows;
  for (auto _ : state) {
    if (!LibpngDecode(bytes, out, rows)) state.SkipWithError("libpng failed");
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(out.size()));
}

void BM_Tessarin_TrueColour640x480(benchmark::State& state) { Tessarin(state, TrueColourFile()); }
void BM_Libpng_TrueColour640x480(benchmark::State& state) { Libpng(state, TrueColourFile()); }
void BM_Tessarin_Palette320x240(benchmark::State& state) { Tessarin(state, PaletteFile()); }
void BM_Libpng_Palette320x240(benchmark::State& state) { Libpng(state, PaletteFile()); }

BENCHMARK(BM_Tessarin_TrueColour640x480)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Libpng_TrueColour640x480)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Tessarin_Palette320x240)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Libpng_Palette320x240)->Unit(benchmark::kMillisecond);

}  // namespace
