#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class UserInterface;

// A decoded picture as the painting layer takes it: rows from top to bottom, each of `Width`
// pixels of three bytes in the order blue, green, red, with no padding between rows.
struct PngPicture {
  std::uint32_t Width = 0;
  std::uint32_t Height = 0;
  std::vector<std::uint8_t> Pixels;

  bool Empty() const { return Width == 0 || Height == 0; }
  const std::uint8_t* Row(std::uint32_t y) const {
    return Pixels.data() + static_cast<std::size_t>(y) * Width * 3;
  }
};

// Where a loaded picture is painted. The UI layer implements it over its picture controls; the
// core never paints by itself.
class PngPaintTarget {
 public:
  virtual ~PngPaintTarget() = default;
  // `x`, `y`: where the picture goes in the target (the SetToBkgrnd offsets, else 0).
  virtual void PaintPng(const PngPicture& picture, int x, int y) = 0;
};

namespace pngdetail {

// A canonical Huffman code as the inflate reads it: a direct table for codes of up to
// kFastBits bits, and the canonical counts for the rare longer codes.
struct HuffmanTable {
  static constexpr int kFastBits = 10;
  // symbol << 4 | code length; 0 where the code is longer than kFastBits (or unused).
  std::array<std::uint16_t, 1u << kFastBits> fast{};
  std::array<std::uint16_t, 16> count{};
  std::array<std::uint16_t, 320> symbol{};

  // Gives false when the lengths over-subscribe the code space.
  bool Build(const std::uint8_t* lengths, int n);
};

}  // namespace pngdetail

// Reads a PNG file with its own chunk reader, inflate and line filters, and turns it into a
// PngPicture, mixed with a background where the file has transparency or alpha. The settings
// (SetTrans, SetAlpha, BackgroundPicture, SetOwnBkgndColor, PicBox, SetToBkgrnd) are kept from
// one load to the next; everything read from a file is reset when the next one is opened.
class LoadPNG final {
 public:
  // Pictures of more pixels than this are refused (an empty picture, PixelLimitExceeded true),
  // so that a header cannot make us reserve gigabytes: 8192 x 4096.
  static constexpr std::uint64_t kMaxPixels = 8192ull * 4096ull;
  // The most text one zTXt chunk may inflate to.
  static constexpr std::size_t kMaxTextBytes = 1u << 20;

  // `ui` receives the message of a failed fixed-tree build; it may be null.
  explicit LoadPNG(UserInterface* ui = nullptr);

  // Loads the file, decodes it and paints it into the PicBox target when one is set and the
  // picture is not empty. Never
  // throws for a bad file: ErrorNumber tells (1 also when the file can't be read), and a broken
  // deflate stream gives a picture of only the rows that were decoded whole (or an empty one).
  void OpenPNG(const std::string& path);
  // The same on the bytes of a file already in memory.
  void OpenPNGData(std::string_view bytes);

  void SetTrans(bool flag) { m_setTrans = flag; }
  void SetAlpha(bool flag) { m_setAlpha = flag; }
  // What shines through transparent pixels; null for a flat colour. Not owned: it must live
  // while pictures are loaded.
  void BackgroundPicture(const PngPicture* picture) { m_backgroundPicture = picture; }
  // `colour` is a display colour, 0x00BBGGRR; it is the flat background when it is not 0.
  void SetOwnBkgndColor(bool flag, std::uint32_t colour) {
    m_ownBkgndFlag = flag;
    m_ownBkgndColor = colour;
  }
  // Not owned; null paints nowhere.
  void PicBox(PngPaintTarget* target) { m_picBox = target; }
  // With the flag, the picture lies at x, y of the target and of the background picture.
  void SetToBkgrnd(bool flag, int x, int y) {
    m_toBkgrnd = flag;
    m_toBkgrndX = x;
    m_toBkgrndY = y;
  }

  // What the last file held.
  std::uint32_t Width() const { return m_width; }
  std::uint32_t Height() const { return m_height; }
  std::uint32_t Bitdepht() const { return m_bitDepth; }
  std::uint32_t ColorType() const { return m_colorType; }
  std::uint32_t Compression() const { return m_compression; }
  std::uint32_t Filter() const { return m_filter; }
  std::uint32_t Interlacing() const { return m_interlacing; }
  // 0 none, 1 wrong signature, 3 a chunk runs past the end of the file, 4 no IDAT data.
  int ErrorNumber() const { return m_errorNumber; }
  bool HaveAlpha() const { return m_haveAlpha; }
  bool HaveTransparence() const { return m_haveTransparence; }
  bool HasBKGDChunk() const { return m_hasBkgdChunk; }
  // 0x00BBGGRR; 0 when the file has no bKGD chunk.
  std::uint32_t BkgdColor() const { return m_bkgdColor; }
  // Each tEXt chunk as "keyword: text", chunks joined by CR LF.
  const std::string& Text() const { return m_text; }
  // Each zTXt chunk, inflated, in the same form.
  const std::string& zText() const { return m_zText; }
  // "dd.mm.yyyy hh:mm:ss" from tIME; empty without one.
  const std::string& ModiTime() const { return m_modiTime; }
  std::uint32_t gama() const { return m_gama; }
  const std::vector<std::uint8_t>& Palette() const { return m_palette; }
  const std::vector<std::uint8_t>& TransparencyData() const { return m_transparency; }
  bool PixelLimitExceeded() const { return m_pixelLimitExceeded; }
  // The decoded picture (empty when nothing could be decoded).
  const PngPicture& Picture() const { return m_picture; }

 private:
  void Reset();
  void ReadChunks(std::string_view bytes);
  void HandleChunk(const char* type, const std::uint8_t* data, std::size_t length);
  void ComputeBkgdColor(const std::uint8_t* data, std::size_t length);
  void AppendText(std::string& target, std::string_view keyword, std::string_view text);
  void Decode();
  void MixBackground(const std::vector<std::uint8_t>& alpha);
  // Inflates a zlib stream (its two header bytes skipped) into `out`, at most `limit` bytes.
  // `data` must have 16 readable zero bytes behind `size`.
  std::size_t Inflate(const std::uint8_t* data, std::size_t size, std::size_t limit,
                      std::vector<std::uint8_t>& out);
  bool EnsureFixedTrees();

  UserInterface* m_ui;

  // Settings, kept over a load.
  bool m_setTrans = false;
  bool m_setAlpha = false;
  const PngPicture* m_backgroundPicture = nullptr;
  bool m_ownBkgndFlag = false;
  std::uint32_t m_ownBkgndColor = 0;
  PngPaintTarget* m_picBox = nullptr;
  bool m_toBkgrnd = false;
  int m_toBkgrndX = 0;
  int m_toBkgrndY = 0;

  // The fixed trees, built on first need and kept; the dynamic ones are rebuilt per block.
  bool m_fixedTreesBuilt = false;
  pngdetail::HuffmanTable m_fixedLiteral;
  pngdetail::HuffmanTable m_fixedDistance;
  pngdetail::HuffmanTable m_literal;
  pngdetail::HuffmanTable m_distance;
  pngdetail::HuffmanTable m_codeLength;

  // What the file held.
  std::vector<std::uint8_t> m_compressed;
  std::vector<std::uint8_t> m_palette;
  std::vector<std::uint8_t> m_transparency;
  std::uint32_t m_width = 0;
  std::uint32_t m_height = 0;
  std::uint32_t m_bitDepth = 0;
  std::uint32_t m_colorType = 0;
  std::uint32_t m_compression = 0;
  std::uint32_t m_filter = 0;
  std::uint32_t m_interlacing = 0;
  int m_errorNumber = 0;
  bool m_haveAlpha = false;
  bool m_haveTransparence = false;
  bool m_hasBkgdChunk = false;
  std::uint32_t m_bkgdColor = 0;
  std::string m_text;
  std::string m_zText;
  std::string m_modiTime;
  std::uint32_t m_gama = 0;
  bool m_pixelLimitExceeded = false;
  PngPicture m_picture;
};

}  // namespace tessarin
