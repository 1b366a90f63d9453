#include "images/pngloader.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "pngtestfiles.h"

namespace tessarin {
namespace {

using pngtest::Chunk;
using pngtest::Ihdr;
using pngtest::Signature;
using pngtest::Zlib;

class PngLoaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    m_folder = std::filesystem::temp_directory_path() /
               (std::string("tessarin_png_") + info->test_suite_name() + "_" + info->name());
    std::filesystem::remove_all(m_folder);
    std::filesystem::create_directories(m_folder);
  }
  void TearDown() override { std::filesystem::remove_all(m_folder); }

  std::string PathOf(const std::string& name) const { return (m_folder / name).string(); }

  std::string Save(const std::string& name, const std::string& bytes) const {
    std::string path = PathOf(name);
    pngtest::WriteFile(path, bytes);
    return path;
  }

  std::filesystem::path m_folder;
};

// The rule the loader follows, applied to libpng's RGBA: which alpha counts, and the mix with
// the background, per channel (p*a + b*(255-a) + 255) / 256.
using BackgroundAt = std::function<void(std::uint32_t x, std::uint32_t y, std::uint8_t bgr[3])>;

std::vector<std::uint8_t> Expected(const pngtest::LibpngImage& image, bool setTrans, bool setAlpha,
                                   const BackgroundAt& background) {
  std::vector<std::uint8_t> out(static_cast<std::size_t>(image.width) * image.height * 3);
  const bool alphaChannel = image.colorType == 4 || image.colorType == 6;
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
      std::size_t i = static_cast<std::size_t>(y) * image.width + x;
      const std::uint8_t* rgba = &image.rgba[i * 4];
      unsigned a = rgba[3];
      if (alphaChannel ? !setAlpha : !setTrans) a = 255;
      std::uint8_t pixel[3] = {rgba[2], rgba[1], rgba[0]};
      std::uint8_t bg[3];
      background(x, y, bg);
      for (int c = 0; c < 3; ++c) {
        unsigned v = pixel[c];
        if (a == 0) {
          v = bg[c];
        } else if (a != 255) {
          v = (pixel[c] * a + bg[c] * (255 - a) + 255) >> 8;
        }
        out[i * 3 + c] = static_cast<std::uint8_t>(v);
      }
    }
  }
  return out;
}

BackgroundAt Flat(std::uint32_t colour) {
  return [colour](std::uint32_t, std::uint32_t, std::uint8_t bgr[3]) {
    bgr[0] = static_cast<std::uint8_t>(colour >> 16);
    bgr[1] = static_cast<std::uint8_t>(colour >> 8);
    bgr[2] = static_cast<std::uint8_t>(colour);
  };
}

PngPicture MakeBackground(std::uint32_t width, std::uint32_t height) {
  PngPicture picture;
  picture.Width = width;
  picture.Height = height;
  picture.Pixels.resize(static_cast<std::size_t>(width) * height * 3);
  std::mt19937 random(7);
  for (auto& byte : picture.Pixels) byte = static_cast<std::uint8_t>(random());
  return picture;
}

struct Format {
  int colorType;
  int depth;
};

const Format kFormats[] = {{0, 1}, {0, 2}, {0, 4}, {0, 8}, {0, 16}, {2, 8}, {2, 16}, {3, 1},
                           {3, 2}, {3, 4}, {3, 8}, {4, 8}, {4, 16}, {6, 8}, {6, 16}};

// Every colour type, depth and interlacing, with and without tRNS, at sizes that leave Adam7
// passes empty or ragged; each file read under every setting and background, against libpng.
TEST_F(PngLoaderTest, EveryFormatEqualsLibpngAfterMixing) {
  const std::pair<std::uint32_t, std::uint32_t> sizes[] = {{13, 11}, {1, 1}, {2, 9}, {33, 17}};
  PngPicture backPicture = MakeBackground(40, 30);
  int files = 0;
  std::uint32_t seed = 1;
  for (const Format& format : kFormats) {
    for (bool interlaced : {false, true}) {
      for (bool trns : {false, true}) {
        if (trns && (format.colorType == 4 || format.colorType == 6)) continue;
        for (auto [width, height] : sizes) {
          pngtest::PngRecipe recipe;
          recipe.width = width;
          recipe.height = height;
          recipe.colorType = format.colorType;
          recipe.bitDepth = format.depth;
          recipe.interlaced = interlaced;
          recipe.withTrns = trns;
          recipe.withBkgd = (seed % 2) == 0;
          recipe.withTime = (seed % 3) == 0;
          std::string text;
          std::string zText;
          if (seed % 4 == 1) {
            recipe.texts = {{"Title", "Picture " + std::to_string(seed), false},
                            {"Comment", "Packed " + std::string(seed % 50, 'x'), true}};
            text = "Title: Picture " + std::to_string(seed);
            zText = "Comment: Packed " + std::string(seed % 50, 'x');
          }
          recipe.seed = seed++;
          std::string path = PathOf("f" + std::to_string(files++) + ".png");
          SCOPED_TRACE(testing::Message()
                       << "type " << format.colorType << " depth " << format.depth << " interlaced "
                       << interlaced << " trns " << trns << " size " << width << "x" << height
                       << " bkgd " << recipe.withBkgd);
          ASSERT_TRUE(pngtest::WritePng(path, recipe));
          pngtest::LibpngImage reference;
          ASSERT_TRUE(pngtest::ReadWithLibpng(path, reference));

          for (int settings = 0; settings < 4; ++settings) {
            bool setTrans = (settings & 1) != 0;
            bool setAlpha = (settings & 2) != 0;
            for (int backMode = 0; backMode < 3; ++backMode) {
              LoadPNG loader;
              loader.SetTrans(setTrans);
              loader.SetAlpha(setAlpha);
              BackgroundAt background;
              std::uint32_t bkgd = 0;
              if (reference.hasBkgd)
                bkgd = reference.bkgdRgb[0] | (reference.bkgdRgb[1] << 8) |
                       (reference.bkgdRgb[2] << 16);
              if (backMode == 0) {
                background = Flat(bkgd);  // the file's own bKGD, or black
              } else if (backMode == 1) {
                loader.SetOwnBkgndColor(true, 0x00336699);
                background = Flat(0x00336699);
              } else {
                loader.BackgroundPicture(&backPicture);
                loader.SetToBkgrnd(true, 5, 3);
                background = [&backPicture](std::uint32_t x, std::uint32_t y, std::uint8_t bgr[3]) {
                  std::uint32_t bx = x + 5;
                  std::uint32_t by = y + 3;
                  if (bx < backPicture.Width && by < backPicture.Height) {
                    const std::uint8_t* p = backPicture.Row(by) + bx * 3;
                    bgr[0] = p[0];
                    bgr[1] = p[1];
                    bgr[2] = p[2];
                  } else {
                    bgr[0] = bgr[1] = bgr[2] = 0;
                  }
                };
              }
              loader.OpenPNG(path);
              SCOPED_TRACE(testing::Message() << "setTrans " << setTrans << " setAlpha " << setAlpha
                                              << " background " << backMode);
              ASSERT_EQ(loader.ErrorNumber(), 0);
              EXPECT_EQ(loader.Width(), width);
              EXPECT_EQ(loader.Height(), height);
              EXPECT_EQ(loader.Bitdepht(), static_cast<std::uint32_t>(format.depth));
              EXPECT_EQ(loader.ColorType(), static_cast<std::uint32_t>(format.colorType));
              EXPECT_EQ(loader.Interlacing(), interlaced ? 1u : 0u);
              EXPECT_EQ(loader.HaveAlpha(), format.colorType == 4 || format.colorType == 6);
              EXPECT_EQ(loader.HaveTransparence(), trns);
              EXPECT_EQ(loader.HasBKGDChunk(), recipe.withBkgd);
              EXPECT_EQ(loader.BkgdColor(), bkgd);
              EXPECT_EQ(loader.ModiTime(), recipe.withTime ? "09.02.2024 07:05:03" : "");
              EXPECT_EQ(loader.Text(), text);
              EXPECT_EQ(loader.zText(), zText);
              const PngPicture& picture = loader.Picture();
              ASSERT_EQ(picture.Width, width);
              ASSERT_EQ(picture.Height, height);
              ASSERT_EQ(picture.Pixels, Expected(reference, setTrans, setAlpha, background));
            }
          }
        }
      }
    }
  }
  EXPECT_EQ(files, 15 * 2 * 4 + 11 * 2 * 4);
}

// Stored, fixed-code and dynamic blocks, and the zlib levels around them, on larger pictures.
TEST_F(PngLoaderTest, EveryBlockKindEqualsLibpng) {
  struct Variant {
    int level;
    int strategy;
  };
  const Variant variants[] = {
      {0, 0},         {1, 0}, {6, 0}, {9, 0}, {6, Z_FIXED}, {6, Z_RLE}, {6, Z_HUFFMAN_ONLY},
      {9, Z_FILTERED}};
  LoadPNG loader;  // one object: the fixed trees are built once and kept
  loader.SetTrans(true);
  loader.SetAlpha(true);
  int n = 0;
  for (const Variant& variant : variants) {
    for (const Format& format : {Format{2, 8}, Format{6, 16}, Format{3, 8}, Format{0, 4}}) {
      for (bool interlaced : {false, true}) {
        pngtest::PngRecipe recipe;
        recipe.width = 97;
        recipe.height = 61;
        recipe.colorType = format.colorType;
        recipe.bitDepth = format.depth;
        recipe.interlaced = interlaced;
        recipe.compressionLevel = variant.level;
        recipe.strategy = variant.strategy;
        recipe.seed = 100 + n;
        std::string path = PathOf("b" + std::to_string(n++) + ".png");
        SCOPED_TRACE(testing::Message() << "level " << variant.level << " strategy "
                                        << variant.strategy << " type " << format.colorType);
        ASSERT_TRUE(pngtest::WritePng(path, recipe));
        pngtest::LibpngImage reference;
        ASSERT_TRUE(pngtest::ReadWithLibpng(path, reference));
        loader.OpenPNG(path);
        ASSERT_EQ(loader.ErrorNumber(), 0);
        ASSERT_EQ(loader.Picture().Height, recipe.height);
        EXPECT_EQ(loader.Picture().Pixels, Expected(reference, true, true, Flat(0)));
      }
    }
  }
}

TEST_F(PngLoaderTest, TextsTimeAndGammaFromLibpngFile) {
  pngtest::PngRecipe recipe;
  recipe.withTime = true;
  recipe.texts = {{"Title", "Pac-Man flyer", false},
                  {"Comment", std::string(3000, 'z') + " end", true},
                  {"Author", "Someone", false},
                  {"Description", "Second compressed text", true}};
  std::string path = PathOf("texts.png");
  ASSERT_TRUE(pngtest::WritePng(path, recipe));
  LoadPNG loader;
  loader.OpenPNG(path);
  ASSERT_EQ(loader.ErrorNumber(), 0);
  EXPECT_EQ(loader.Text(), "Title: Pac-Man flyer\r\nAuthor: Someone");
  EXPECT_EQ(loader.zText(),
            "Comment: " + std::string(3000, 'z') + " end\r\nDescription: Second compressed text");
  EXPECT_EQ(loader.ModiTime(), "09.02.2024 07:05:03");
  EXPECT_EQ(loader.Picture().Height, recipe.height);
}

// Hand-made files ---------------------------------------------------------------------------

// A 2 x 2 true colour picture, lines filtered with type 0.
std::string RawRgb2x2() {
  return std::string("\0\x0a\x14\x1e\x28\x32\x3c\0\x46\x50\x5a\x64\x6e\x78", 14);
}

std::string SmallRgbFile(const std::string& extraBeforeIdat = {}) {
  return Signature() + Ihdr(2, 2, 8, 2) + extraBeforeIdat + Chunk("IDAT", Zlib(RawRgb2x2())) +
         Chunk("IEND", "");
}

TEST_F(PngLoaderTest, DecodesAHandMadePictureInBlueGreenRedOrder) {
  LoadPNG loader;
  loader.OpenPNG(Save("small.png", SmallRgbFile()));
  ASSERT_EQ(loader.ErrorNumber(), 0);
  const std::vector<std::uint8_t> expected = {0x1e, 0x14, 0x0a, 0x3c, 0x32, 0x28,
                                              0x5a, 0x50, 0x46, 0x78, 0x6e, 0x64};
  EXPECT_EQ(loader.Picture().Pixels, expected);
}

TEST_F(PngLoaderTest, WrongSignatureGivesError1) {
  std::string bytes = SmallRgbFile();
  bytes[1] = 'Q';
  LoadPNG loader;
  loader.OpenPNG(Save("sig.png", bytes));
  EXPECT_EQ(loader.ErrorNumber(), 1);
  EXPECT_TRUE(loader.Picture().Empty());
  loader.OpenPNG(Save("short.png", "\x89PNG"));
  EXPECT_EQ(loader.ErrorNumber(), 1);
  loader.OpenPNG(PathOf("missing.png"));
  EXPECT_EQ(loader.ErrorNumber(), 1);
}

TEST_F(PngLoaderTest, NoIdatGivesError4) {
  LoadPNG loader;
  loader.OpenPNG(Save("noidat.png", Signature() + Ihdr(2, 2, 8, 2) + Chunk("IEND", "")));
  EXPECT_EQ(loader.ErrorNumber(), 4);
  EXPECT_TRUE(loader.Picture().Empty());
  EXPECT_EQ(loader.Width(), 2u);
}

TEST_F(PngLoaderTest, LengthPastTheEndGivesError3) {
  std::string bytes = SmallRgbFile();
  // The IDAT's length field: behind the signature (8) and the IHDR chunk (25).
  bytes[33] = '\x7f';
  LoadPNG loader;
  loader.OpenPNG(Save("len.png", bytes));
  EXPECT_EQ(loader.ErrorNumber(), 3);
  EXPECT_TRUE(loader.Picture().Empty());

  // A length of 0xffffffff must not wrap around either.
  bytes = SmallRgbFile();
  bytes[33] = bytes[34] = bytes[35] = bytes[36] = '\xff';
  loader.OpenPNG(Save("len2.png", bytes));
  EXPECT_EQ(loader.ErrorNumber(), 3);
}

TEST_F(PngLoaderTest, TruncatedFileGivesError3) {
  std::string full = SmallRgbFile();
  LoadPNG loader;
  for (std::size_t cut = 9; cut < full.size() - 12; ++cut) {
    SCOPED_TRACE(cut);
    loader.OpenPNGData(std::string_view(full).substr(0, cut));
    EXPECT_EQ(loader.ErrorNumber(), 3);
    EXPECT_TRUE(loader.Picture().Empty());
  }
  // Cut inside the last CRC: IEND was read, the picture stands.
  loader.OpenPNGData(std::string_view(full).substr(0, full.size() - 2));
  EXPECT_EQ(loader.ErrorNumber(), 0);
  EXPECT_EQ(loader.Picture().Height, 2u);
}

TEST_F(PngLoaderTest, WrongCrcChangesNothing) {
  std::string good = SmallRgbFile();
  std::string bad = good;
  // The last byte of every CRC: IHDR ends at 33, IDAT's CRC ends 12 bytes before the end.
  bad[32] ^= 0x5a;
  bad[bad.size() - 13] ^= 0x11;
  bad[bad.size() - 1] ^= 0x77;
  LoadPNG a;
  LoadPNG b;
  a.OpenPNG(Save("good.png", good));
  b.OpenPNG(Save("bad.png", bad));
  EXPECT_EQ(b.ErrorNumber(), 0);
  EXPECT_EQ(a.Picture().Pixels, b.Picture().Pixels);
  EXPECT_EQ(b.Picture().Height, 2u);
}

TEST_F(PngLoaderTest, TwoZtxtChunksJoinInFileOrder) {
  auto ztxt = [](const std::string& keyword, const std::string& text) {
    return Chunk("zTXt", keyword + std::string(1, '\0') + std::string(1, '\0') + Zlib(text));
  };
  std::string bytes = Signature() + Ihdr(2, 2, 8, 2) + ztxt("First", "one text") +
                      Chunk("IDAT", Zlib(RawRgb2x2())) + ztxt("Second", "another text") +
                      Chunk("IEND", "");
  LoadPNG loader;
  loader.OpenPNG(Save("z.png", bytes));
  EXPECT_EQ(loader.ErrorNumber(), 0);
  EXPECT_EQ(loader.zText(), "First: one text\r\nSecond: another text");
  EXPECT_EQ(loader.Text(), "");
}

TEST_F(PngLoaderTest, AncillaryChunksAndUnknownTypesAreSkippedOrRead) {
  std::string time("\x07\xd0\x0c\x1f\x17\x3b\x3a", 7);  // 2000-12-31 23:59:58
  std::string extra = Chunk("gAMA", std::string("\x00\x00\xb1\x8f", 4)) + Chunk("tIME", time) +
                      Chunk("pHYs", std::string(9, '\1')) + Chunk("cHRM", std::string(32, '\2')) +
                      Chunk("sBIT", "\x08\x08\x08") + Chunk("oFFs", std::string(9, '\0')) +
                      Chunk("zzZz", "anything at all") + Chunk("iTXt", "k\0\0\0\0text") +
                      Chunk("tEXt", std::string("Key\0Value", 9));
  LoadPNG loader;
  loader.OpenPNG(Save("anc.png", SmallRgbFile(extra)));
  ASSERT_EQ(loader.ErrorNumber(), 0);
  EXPECT_EQ(loader.gama(), 45455u);
  EXPECT_EQ(loader.ModiTime(), "31.12.2000 23:59:58");
  EXPECT_EQ(loader.Text(), "Key: Value");
  LoadPNG plain;
  plain.OpenPNG(Save("plain.png", SmallRgbFile()));
  EXPECT_EQ(loader.Picture().Pixels, plain.Picture().Pixels);
  EXPECT_EQ(plain.ModiTime(), "");
}

TEST_F(PngLoaderTest, IdatChunksAreJoined) {
  std::string stream = Zlib(RawRgb2x2());
  std::string bytes = Signature() + Ihdr(2, 2, 8, 2);
  for (char c : stream) bytes += Chunk("IDAT", std::string(1, c));
  bytes += Chunk("IEND", "");
  LoadPNG split;
  split.OpenPNG(Save("split.png", bytes));
  LoadPNG whole;
  whole.OpenPNG(Save("whole.png", SmallRgbFile()));
  EXPECT_EQ(split.ErrorNumber(), 0);
  EXPECT_EQ(split.Picture().Pixels, whole.Picture().Pixels);
}

TEST_F(PngLoaderTest, LowGreyDepthsAreScaled) {
  // 2-bit grey: samples 0, 1, 2, 3 in one byte give 0, 85, 170, 255.
  std::string bytes = Signature() + Ihdr(4, 1, 2, 0) +
                      Chunk("IDAT", Zlib(std::string("\0\x1b", 2))) + Chunk("IEND", "");
  LoadPNG loader;
  loader.OpenPNGData(bytes);
  ASSERT_EQ(loader.ErrorNumber(), 0);
  const std::vector<std::uint8_t> expected = {0, 0, 0, 85, 85, 85, 170, 170, 170, 255, 255, 255};
  EXPECT_EQ(loader.Picture().Pixels, expected);
}

TEST_F(PngLoaderTest, AlphaMixRoundsAsTold) {
  // One RGBA pixel (200, 100, 0) with alpha 128 over the own colour R 10, G 20, B 30.
  std::string bytes = Signature() + Ihdr(1, 1, 8, 6) +
                      Chunk("IDAT", Zlib(std::string("\0\xc8\x64\x00\x80", 5))) + Chunk("IEND", "");
  LoadPNG loader;
  loader.SetAlpha(true);
  loader.SetOwnBkgndColor(true, 0x001e140a);
  loader.OpenPNGData(bytes);
  // (200*128 + 10*127 + 255) / 256 = 105, (100*128 + 20*127 + 255) / 256 = 60,
  // (0*128 + 30*127 + 255) / 256 = 15.
  const std::vector<std::uint8_t> expected = {15, 60, 105};
  EXPECT_EQ(loader.Picture().Pixels, expected);
  // Without SetAlpha the pixel stands as it is.
  loader.SetAlpha(false);
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.Picture().Pixels, (std::vector<std::uint8_t>{0, 100, 200}));
}

TEST_F(PngLoaderTest, OwnColourGoesBeforeBkgdAndZeroFallsBackToIt) {
  // A palette picture whose only pixel is fully transparent, with bKGD pointing at entry 1.
  std::string bytes = Signature() + Ihdr(1, 1, 8, 3) +
                      Chunk("PLTE", std::string("\x01\x02\x03\x40\x50\x60", 6)) +
                      Chunk("tRNS", std::string("\0", 1)) + Chunk("bKGD", std::string("\1", 1)) +
                      Chunk("IDAT", Zlib(std::string("\0\0", 2))) + Chunk("IEND", "");
  LoadPNG loader;
  loader.SetTrans(true);
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.BkgdColor(), 0x00605040u);
  EXPECT_EQ(loader.Picture().Pixels, (std::vector<std::uint8_t>{0x60, 0x50, 0x40}));
  loader.SetOwnBkgndColor(false, 0x00aabbcc);  // the flag is not tested, the colour is
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.Picture().Pixels, (std::vector<std::uint8_t>{0xaa, 0xbb, 0xcc}));
  loader.SetOwnBkgndColor(true, 0);
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.Picture().Pixels, (std::vector<std::uint8_t>{0x60, 0x50, 0x40}));
  loader.SetTrans(false);
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.Picture().Pixels, (std::vector<std::uint8_t>{3, 2, 1}));
}

class RecordingTarget final : public PngPaintTarget {
 public:
  void PaintPng(const PngPicture& picture, int x, int y) override {
    ++calls;
    last = picture;
    lastX = x;
    lastY = y;
  }
  int calls = 0;
  PngPicture last;
  int lastX = -1;
  int lastY = -1;
};

TEST_F(PngLoaderTest, SettingsAreKeptOverLoadsAndThePictureIsPainted) {
  PngPicture back = MakeBackground(8, 8);
  RecordingTarget target;
  LoadPNG loader;
  loader.PicBox(&target);
  loader.SetToBkgrnd(true, 6, 7);
  loader.BackgroundPicture(&back);
  loader.SetAlpha(true);
  loader.SetTrans(true);
  // 2 x 2 RGBA, every pixel clear: the background shows through at 6,7 of it; what lies
  // outside the background picture is black.
  std::string raw("\0\1\1\1\0\2\2\2\0\0\3\3\3\0\4\4\4\0", 18);
  std::string bytes = Signature() + Ihdr(2, 2, 8, 6) + Chunk("IDAT", Zlib(raw)) + Chunk("IEND", "");
  for (int load = 0; load < 2; ++load) {
    loader.OpenPNGData(bytes);
    ASSERT_EQ(target.calls, load + 1);
    EXPECT_EQ(target.lastX, 6);
    EXPECT_EQ(target.lastY, 7);
    const std::uint8_t* b = back.Row(7) + 6 * 3;
    std::vector<std::uint8_t> expected = {b[0], b[1], b[2], b[3], b[4], b[5], 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(target.last.Pixels, expected);
    EXPECT_EQ(loader.Picture().Pixels, expected);
  }
  // A file that gives no picture paints nothing.
  loader.OpenPNGData(Signature() + Ihdr(2, 2, 8, 6) + Chunk("IEND", ""));
  EXPECT_EQ(loader.ErrorNumber(), 4);
  EXPECT_EQ(target.calls, 2);
  loader.OpenPNGData(Signature() + Ihdr(2, 2, 8, 6) +
                     Chunk("IDAT", std::string("\x78\x9c\x07", 3)) + Chunk("IEND", ""));
  EXPECT_EQ(loader.ErrorNumber(), 0);
  EXPECT_EQ(target.calls, 2);
}

TEST_F(PngLoaderTest, AbsurdSizesAreRefusedWithoutAllocating) {
  LoadPNG loader;
  for (auto [w, h] : {std::pair<std::uint32_t, std::uint32_t>{0xffffffffu, 0xffffffffu},
                      {100000, 100000},
                      {8193, 4096},
                      {0x7fffffff, 1}}) {
    std::string bytes = Signature() + Ihdr(w, h, 16, 6) +
                        Chunk("IDAT", Zlib(std::string(1000, '\0'))) + Chunk("IEND", "");
    loader.OpenPNGData(bytes);
    EXPECT_EQ(loader.ErrorNumber(), 0);
    EXPECT_TRUE(loader.PixelLimitExceeded());
    EXPECT_TRUE(loader.Picture().Empty());
  }
  // At the limit itself the picture is decoded, as far as the stream reaches.
  std::string bytes = Signature() + Ihdr(8192, 4096, 8, 0) +
                      Chunk("IDAT", Zlib(std::string(8193 * 3, '\0'))) + Chunk("IEND", "");
  loader.OpenPNGData(bytes);
  EXPECT_FALSE(loader.PixelLimitExceeded());
  EXPECT_EQ(loader.Picture().Height, 3u);
  EXPECT_EQ(loader.Picture().Width, 8192u);
}

TEST_F(PngLoaderTest, InvalidHeaderValuesGiveAnEmptyPicture) {
  LoadPNG loader;
  for (auto [depth, type] : {std::pair<int, int>{3, 0}, {4, 2}, {16, 3}, {8, 5}, {1, 6}}) {
    std::string bytes = Signature() + Ihdr(2, 2, depth, type) +
                        Chunk("IDAT", Zlib(std::string(100, '\0'))) + Chunk("IEND", "");
    loader.OpenPNGData(bytes);
    EXPECT_EQ(loader.ErrorNumber(), 0);
    EXPECT_TRUE(loader.Picture().Empty());
  }
  // A bKGD read under a depth that does not exist.
  for (int type : {0, 2, 4, 6}) {
    loader.OpenPNGData(Signature() + Ihdr(2, 2, 39, type) +
                       Chunk("bKGD", "\x12\x34\x56\x78\x9a\xbc") +
                       Chunk("IDAT", Zlib(RawRgb2x2())) + Chunk("IEND", ""));
    EXPECT_TRUE(loader.HasBKGDChunk());
    EXPECT_TRUE(loader.Picture().Empty());
  }
  // Interlacing other than 0 or 1, and an IDAT without any IHDR.
  loader.OpenPNGData(Signature() + Ihdr(2, 2, 8, 2, 2) + Chunk("IDAT", Zlib(RawRgb2x2())) +
                     Chunk("IEND", ""));
  EXPECT_TRUE(loader.Picture().Empty());
  loader.OpenPNGData(Signature() + Chunk("IDAT", Zlib(RawRgb2x2())) + Chunk("IEND", ""));
  EXPECT_EQ(loader.ErrorNumber(), 0);
  EXPECT_TRUE(loader.Picture().Empty());
}

// A real picture, cut short inside its deflate stream: the rows above the cut are libpng's,
// and nothing past them is invented.
TEST_F(PngLoaderTest, BrokenStreamGivesTheWholeRowsBeforeTheBreak) {
  for (bool interlaced : {false, true}) {
    pngtest::PngRecipe recipe;
    recipe.width = 64;
    recipe.height = 48;
    recipe.colorType = 2;
    recipe.interlaced = interlaced;
    recipe.compressionLevel = 0;  // stored blocks: the cut point maps straight to rows
    std::string path = PathOf(interlaced ? "i.png" : "n.png");
    ASSERT_TRUE(pngtest::WritePng(path, recipe));
    pngtest::LibpngImage reference;
    ASSERT_TRUE(pngtest::ReadWithLibpng(path, reference));
    std::vector<std::uint8_t> full = Expected(reference, false, false, Flat(0));

    // Rebuild the file with its stream (over all IDAT chunks) cut to a fraction.
    std::string bytes = pngtest::ReadFile(path);
    std::string head;
    std::string stream;
    for (std::size_t pos = 8; pos + 12 <= bytes.size();) {
      std::uint32_t length = (std::uint32_t(std::uint8_t(bytes[pos])) << 24) |
                             (std::uint8_t(bytes[pos + 1]) << 16) |
                             (std::uint8_t(bytes[pos + 2]) << 8) | std::uint8_t(bytes[pos + 3]);
      std::string type = bytes.substr(pos + 4, 4);
      if (type == "IDAT") stream += bytes.substr(pos + 8, length);
      if (stream.empty()) head = bytes.substr(0, pos + 12 + length);
      pos += 12 + length;
    }
    int lastRows = -1;
    for (double fraction : {0.01, 0.05, 0.3, 0.6, 0.85, 0.95}) {
      std::string cut = stream.substr(0, static_cast<std::size_t>(stream.size() * fraction));
      std::string file = head + Chunk("IDAT", cut) + Chunk("IEND", "");
      LoadPNG loader;
      loader.OpenPNGData(file);
      SCOPED_TRACE(testing::Message() << "interlaced " << interlaced << " fraction " << fraction);
      EXPECT_EQ(loader.ErrorNumber(), 0);
      const PngPicture& picture = loader.Picture();
      EXPECT_LT(picture.Height, recipe.height);
      EXPECT_GE(static_cast<int>(picture.Height), lastRows);
      lastRows = static_cast<int>(picture.Height);
      if (picture.Height > 0) {
        ASSERT_EQ(picture.Width, recipe.width);
        std::vector<std::uint8_t> top(full.begin(), full.begin() + picture.Pixels.size());
        EXPECT_EQ(picture.Pixels, top);
      }
    }
    // The plain picture keeps rows as soon as they arrive; Adam7 needs six passes first.
    EXPECT_GT(lastRows, 0);
  }
}

TEST_F(PngLoaderTest, BlockType3AndGarbageStopTheInflate) {
  // Header byte 0x07: final block of type 3.
  std::string bytes = Signature() + Ihdr(2, 2, 8, 2) +
                      Chunk("IDAT", std::string("\x78\x9c\x07\x00\x00", 5)) + Chunk("IEND", "");
  LoadPNG loader;
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.ErrorNumber(), 0);
  EXPECT_TRUE(loader.Picture().Empty());

  // A stored block whose complement does not match.
  bytes = Signature() + Ihdr(2, 2, 8, 2) +
          Chunk("IDAT", std::string("\x78\x01\x01\x0e\x00\x00\x00", 7) + RawRgb2x2()) +
          Chunk("IEND", "");
  loader.OpenPNGData(bytes);
  EXPECT_TRUE(loader.Picture().Empty());

  // The same with the right complement is read.
  bytes = Signature() + Ihdr(2, 2, 8, 2) +
          Chunk("IDAT", std::string("\x78\x01\x01\x0e\x00\xf1\xff", 7) + RawRgb2x2()) +
          Chunk("IEND", "");
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.Picture().Height, 2u);

  // Random streams, and real streams with flipped bits: never a crash, never more rows.
  std::mt19937 random(42);
  std::string good = Zlib(std::string(60 * 20 * 3 + 20, '\x55') + "tail", 9);
  for (int i = 0; i < 2000; ++i) {
    std::string stream;
    if (i % 2 == 0) {
      stream.resize(random() % 300);
      for (char& c : stream) c = static_cast<char>(random());
    } else {
      stream = good;
      for (int k = 0; k < 3; ++k) stream[random() % stream.size()] ^= 1 << (random() % 8);
    }
    for (int interlace : {0, 1}) {
      loader.OpenPNGData(Signature() + Ihdr(60, 20, 8, 2, interlace) + Chunk("IDAT", stream) +
                         Chunk("IEND", ""));
      ASSERT_LE(loader.Picture().Height, 20u);
      ASSERT_EQ(loader.Picture().Pixels.size(),
                static_cast<std::size_t>(loader.Picture().Height) * 60 * 3);
    }
  }
}

TEST_F(PngLoaderTest, GreyAndSixteenBitKeysFollowTheStandard) {
  // 16-bit grey key 0x1234: the pixel 0x1234 is clear, 0x1299 (same high byte) is not.
  std::string raw("\0\x12\x34\x12\x99", 5);
  std::string bytes = Signature() + Ihdr(2, 1, 16, 0) + Chunk("tRNS", "\x12\x34") +
                      Chunk("IDAT", Zlib(raw)) + Chunk("IEND", "");
  LoadPNG loader;
  loader.SetTrans(true);
  loader.SetOwnBkgndColor(true, 0x00010203);
  loader.OpenPNGData(bytes);
  EXPECT_EQ(loader.Picture().Pixels, (std::vector<std::uint8_t>{1, 2, 3, 0x12, 0x12, 0x12}));
}

}  // namespace
}  // namespace tessarin
