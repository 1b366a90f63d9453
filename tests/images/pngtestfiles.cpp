#include "pngtestfiles.h"

#include <png.h>
#include <zlib.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

namespace pngtest {
namespace {

int ChannelsOf(int colorType) {
  switch (colorType) {
    case 0:
    case 3:
      return 1;
    case 2:
      return 3;
    case 4:
      return 2;
    default:
      return 4;
  }
}

// Packs samples of `depth` bits into a line as PNG stores them (big-endian, high bits first).
void PutSample(std::vector<std::uint8_t>& line, std::size_t index, int depth, std::uint32_t v) {
  if (depth == 16) {
    line[index * 2] = static_cast<std::uint8_t>(v >> 8);
    line[index * 2 + 1] = static_cast<std::uint8_t>(v);
  } else if (depth == 8) {
    line[index] = static_cast<std::uint8_t>(v);
  } else {
    std::size_t bit = index * depth;
    int shift = 8 - depth - static_cast<int>(bit % 8);
    line[bit / 8] |= static_cast<std::uint8_t>(v << shift);
  }
}

struct WriteState {
  std::jmp_buf jump;
};

void OnError(png_structp png, png_const_charp) {
  auto* state = static_cast<WriteState*>(png_get_error_ptr(png));
  std::longjmp(state->jump, 1);
}
void OnWarning(png_structp, png_const_charp) {}

struct MemoryReader {
  const std::uint8_t* data;
  std::size_t size;
  std::size_t pos = 0;
};

void ReadFromMemory(png_structp png, png_bytep out, png_size_t length) {
  auto* reader = static_cast<MemoryReader*>(png_get_io_ptr(png));
  if (reader->size - reader->pos < length) png_error(png, "read past end");
  std::memcpy(out, reader->data + reader->pos, length);
  reader->pos += length;
}

struct WriteJob {
  const PngRecipe* recipe = nullptr;
  png_bytep* rows = nullptr;
  png_colorp palette = nullptr;
  int paletteSize = 0;
  png_bytep trns = nullptr;
  int trnsCount = 0;
  png_color_16p trnsColor = nullptr;
  png_color_16p bkgd = nullptr;
  png_timep time = nullptr;
  png_textp texts = nullptr;
  int textCount = 0;
};

bool RunWrite(std::FILE* file, const WriteJob& job) {
  WriteState state;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &state, OnError, OnWarning);
  png_infop info = png_create_info_struct(png);
  if (setjmp(state.jump) != 0) {
    png_destroy_write_struct(&png, &info);
    return false;
  }
  const PngRecipe& recipe = *job.recipe;
  png_init_io(png, file);
  if (recipe.compressionLevel >= 0) png_set_compression_level(png, recipe.compressionLevel);
  if (recipe.strategy != 0) png_set_compression_strategy(png, recipe.strategy);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_ALL_FILTERS);
  png_set_IHDR(png, info, recipe.width, recipe.height, recipe.bitDepth, recipe.colorType,
               recipe.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
  if (job.paletteSize > 0) png_set_PLTE(png, info, job.palette, job.paletteSize);
  if (job.trns != nullptr || job.trnsColor != nullptr)
    png_set_tRNS(png, info, job.trns, job.trnsCount, job.trnsColor);
  if (job.bkgd != nullptr) png_set_bKGD(png, info, job.bkgd);
  if (job.time != nullptr) png_set_tIME(png, info, job.time);
  if (job.textCount > 0) png_set_text(png, info, job.texts, job.textCount);
  png_set_rows(png, info, job.rows);
  png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

}  // namespace

bool WritePng(const std::string& path, const PngRecipe& recipe, WrittenPng* written) {
  WrittenPng local;
  WrittenPng& info = written != nullptr ? *written : local;
  std::mt19937 random(recipe.seed);
  const int channels = ChannelsOf(recipe.colorType);
  const std::uint32_t maxSample = (1u << recipe.bitDepth) - 1;

  // The palette: as many entries as the depth allows, less one for 8 bits, so that some
  // indexes stay unused.
  int paletteSize = 0;
  if (recipe.colorType == 3) {
    paletteSize = recipe.bitDepth == 8 ? 200 : (1 << recipe.bitDepth);
    for (int i = 0; i < paletteSize; ++i) {
      info.palette.push_back(static_cast<std::uint8_t>(random()));
      info.palette.push_back(static_cast<std::uint8_t>(i * 255 / paletteSize));
      info.palette.push_back(static_cast<std::uint8_t>(random()));
    }
  }
  std::uint32_t key[3] = {0, 0, 0};
  if (recipe.withTrns) {
    if (recipe.colorType == 3) {
      // Clear, half-clear and opaque entries; the last entry is left out of tRNS (opaque).
      for (int i = 0; i + 1 < paletteSize; ++i) {
        std::uint8_t a = i % 4 == 0 ? 0 : (i % 4 == 1 ? static_cast<std::uint8_t>(60 + i) : 255);
        if (i % 4 == 3) a = static_cast<std::uint8_t>(random());
        info.trns.push_back(a);
      }
    } else {
      for (int c = 0; c < (recipe.colorType == 2 ? 3 : 1); ++c) {
        key[c] = static_cast<std::uint32_t>(random()) & maxSample;
        info.trns.push_back(static_cast<std::uint8_t>(key[c] >> 8));
        info.trns.push_back(static_cast<std::uint8_t>(key[c]));
      }
    }
  }

  const std::size_t lineBytes =
      (static_cast<std::size_t>(recipe.width) * channels * recipe.bitDepth + 7) / 8;
  std::vector<std::vector<std::uint8_t>> lines(recipe.height,
                                               std::vector<std::uint8_t>(lineBytes, 0));
  for (std::uint32_t y = 0; y < recipe.height; ++y) {
    for (std::uint32_t x = 0; x < recipe.width; ++x) {
      std::size_t base = static_cast<std::size_t>(x) * channels;
      if (recipe.colorType == 3) {
        std::uint32_t index = (x + 3 * y + random() % 3) % paletteSize;
        PutSample(lines[y], base, recipe.bitDepth, index);
        continue;
      }
      // Gradients plus noise, over the whole range of the depth.
      bool keyed = recipe.withTrns && (x + y) % 5 == 0;
      for (int c = 0; c < channels; ++c) {
        bool isAlpha = (recipe.colorType == 4 && c == 1) || (recipe.colorType == 6 && c == 3);
        double ramp = (c % 2 == 0 ? double(x) / std::max(1u, recipe.width)
                                  : double(y) / std::max(1u, recipe.height));
        std::uint32_t v = static_cast<std::uint32_t>(ramp * maxSample * 0.8) +
                          static_cast<std::uint32_t>(random() % (maxSample / 5 + 1));
        if (isAlpha) {
          // Fully clear, fully opaque and everything between.
          std::uint32_t pick = (x * 7 + y * 3) % 6;
          v = pick == 0   ? 0
              : pick == 1 ? maxSample
                          : static_cast<std::uint32_t>(random()) & maxSample;
        }
        v = std::min(v, maxSample) & maxSample;
        if (keyed && c < 3) v = key[c];
        PutSample(lines[y], base + c, recipe.bitDepth, v);
      }
    }
  }

  // Everything libpng needs is made here, so that the function that may jump back holds
  // nothing but plain values.
  WriteJob job;
  job.recipe = &recipe;
  std::vector<png_bytep> rows(recipe.height);
  for (std::uint32_t y = 0; y < recipe.height; ++y) rows[y] = lines[y].data();
  job.rows = rows.data();
  std::vector<png_color> palette(paletteSize);
  for (int i = 0; i < paletteSize; ++i) {
    palette[i].red = info.palette[i * 3];
    palette[i].green = info.palette[i * 3 + 1];
    palette[i].blue = info.palette[i * 3 + 2];
  }
  job.palette = palette.data();
  job.paletteSize = paletteSize;
  png_color_16 trnsColor{};
  if (recipe.withTrns) {
    if (recipe.colorType == 3) {
      job.trns = info.trns.data();
      job.trnsCount = static_cast<int>(info.trns.size());
    } else {
      trnsColor.gray = static_cast<png_uint_16>(key[0]);
      trnsColor.red = static_cast<png_uint_16>(key[0]);
      trnsColor.green = static_cast<png_uint_16>(key[1]);
      trnsColor.blue = static_cast<png_uint_16>(key[2]);
      job.trnsColor = &trnsColor;
    }
  }
  png_color_16 bkgd{};
  if (recipe.withBkgd) {
    if (recipe.colorType == 3) {
      bkgd.index = 1;
      info.bkgd[0] = 1;
    } else {
      for (int c = 0; c < 3; ++c)
        info.bkgd[c] = static_cast<std::uint16_t>((random() | 0x40) & maxSample);
      bkgd.gray = info.bkgd[0];
      bkgd.red = info.bkgd[0];
      bkgd.green = info.bkgd[1];
      bkgd.blue = info.bkgd[2];
    }
    job.bkgd = &bkgd;
  }
  png_time time{};
  if (recipe.withTime) {
    time.year = 2024;
    time.month = 2;
    time.day = 9;
    time.hour = 7;
    time.minute = 5;
    time.second = 3;
    job.time = &time;
    std::uint16_t values[6] = {2024, 2, 9, 7, 5, 3};
    std::memcpy(info.time, values, sizeof values);
  }
  std::vector<png_text> texts(recipe.texts.size());
  for (std::size_t i = 0; i < recipe.texts.size(); ++i) {
    texts[i].compression =
        recipe.texts[i].compressed ? PNG_TEXT_COMPRESSION_zTXt : PNG_TEXT_COMPRESSION_NONE;
    texts[i].key = const_cast<char*>(recipe.texts[i].keyword.c_str());
    texts[i].text = const_cast<char*>(recipe.texts[i].text.c_str());
    texts[i].text_length = recipe.texts[i].text.size();
  }
  job.texts = texts.data();
  job.textCount = static_cast<int>(texts.size());

  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  bool ok = RunWrite(file, job);
  std::fclose(file);
  return ok;
}

namespace {

// Holds no object of its own that a jump back could leave half-made: the image and the row
// pointers belong to the caller.
bool RunRead(MemoryReader& reader, LibpngImage& image, std::vector<png_bytep>& rows) {
  WriteState state;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state, OnError, OnWarning);
  png_infop info = png_create_info_struct(png);
  if (setjmp(state.jump) != 0) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_set_read_fn(png, &reader, ReadFromMemory);
  png_read_info(png, info);
  png_uint_32 width = 0, height = 0;
  int depth = 0, colorType = 0, interlace = 0;
  png_get_IHDR(png, info, &width, &height, &depth, &colorType, &interlace, nullptr, nullptr);
  image.width = width;
  image.height = height;
  image.colorType = colorType;
  png_color_16p background = nullptr;
  if (png_get_bKGD(png, info, &background) != 0 && background != nullptr) {
    image.hasBkgd = true;
    if (colorType == 3) {
      png_colorp palette = nullptr;
      int count = 0;
      png_get_PLTE(png, info, &palette, &count);
      if (background->index < count) {
        image.bkgdRgb[0] = palette[background->index].red;
        image.bkgdRgb[1] = palette[background->index].green;
        image.bkgdRgb[2] = palette[background->index].blue;
      }
    } else {
      auto scale = [depth](unsigned v) -> std::uint8_t {
        if (depth == 16) return static_cast<std::uint8_t>(v >> 8);
        unsigned max = (1u << depth) - 1;
        return static_cast<std::uint8_t>((v & max) * 255 / max);
      };
      if (colorType == 0 || colorType == 4) {
        image.bkgdRgb[0] = image.bkgdRgb[1] = image.bkgdRgb[2] = scale(background->gray);
      } else {
        image.bkgdRgb[0] = scale(background->red);
        image.bkgdRgb[1] = scale(background->green);
        image.bkgdRgb[2] = scale(background->blue);
      }
    }
  }
  png_set_expand(png);
  png_set_strip_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  if (png_get_rowbytes(png, info) != static_cast<std::size_t>(width) * 4) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  image.rgba.assign(static_cast<std::size_t>(width) * height * 4, 0);
  rows.resize(height);
  for (png_uint_32 y = 0; y < height; ++y) rows[y] = image.rgba.data() + y * width * 4;
  png_read_image(png, rows.data());
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return true;
}

}  // namespace

bool ReadWithLibpng(std::string_view bytes, LibpngImage& image) {
  image = LibpngImage{};
  MemoryReader reader{reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
  std::vector<png_bytep> rows;
  return RunRead(reader, image, rows);
}

bool ReadWithLibpng(const std::string& path, LibpngImage& image) {
  return ReadWithLibpng(std::string_view(ReadFile(path)), image);
}

std::string Chunk(const std::string& type, const std::string& data) {
  std::string out;
  auto put32 = [&out](std::uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((v >> shift) & 0xff);
  };
  put32(static_cast<std::uint32_t>(data.size()));
  out += type;
  out += data;
  std::string crcInput = type + data;
  put32(static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(crcInput.data()), crcInput.size())));
  return out;
}

std::string Signature() { return std::string("\x89PNG\r\n\x1a\n", 8); }

std::string Ihdr(std::uint32_t width, std::uint32_t height, int depth, int colorType,
                 int interlace) {
  std::string data;
  for (std::uint32_t v : {width, height})
    for (int shift = 24; shift >= 0; shift -= 8) data += static_cast<char>((v >> shift) & 0xff);
  data += static_cast<char>(depth);
  data += static_cast<char>(colorType);
  data += '\0';
  data += '\0';
  data += static_cast<char>(interlace);
  return Chunk("IHDR", data);
}

std::string Zlib(const std::string& raw, int level) {
  uLongf size = compressBound(raw.size());
  std::string out(size, '\0');
  compress2(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(raw.data()),
            raw.size(), level);
  out.resize(size);
  return out;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace pngtest
