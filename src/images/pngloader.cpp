#include "images/pngloader.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>

#include "core/userinterface.h"

namespace tessarin {
namespace {

constexpr std::uint8_t kSignature[8] = {137, 80, 78, 71, 13, 10, 26, 10};

// Room behind the inflate output, so that match copies may write eight bytes at a time.
constexpr std::size_t kOutputSlack = 300;
// Zero bytes behind the compressed data, so that the bit reader may load eight bytes at once.
constexpr std::size_t kInputPadding = 16;
// Deflate never expands more than about 1032 to 1: a bound on what a stream can give.
constexpr std::uint64_t kMaxInflateRatio = 1032;

constexpr std::array<std::uint64_t, 33> kBitMask = [] {
  std::array<std::uint64_t, 33> mask{};
  for (int i = 0; i <= 32; ++i) mask[i] = (std::uint64_t{1} << i) - 1;
  return mask;
}();

constexpr std::uint16_t kLengthBase[29] = {3,  4,  5,  6,   7,   8,   9,   10,  11, 13,
                                           15, 17, 19, 23,  27,  31,  35,  43,  51, 59,
                                           67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::uint8_t kLengthExtra[29] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                           2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::uint16_t kDistanceBase[30] = {
    1,   2,   3,   4,   5,   7,    9,    13,   17,   25,   33,   49,   65,    97,    129,
    193, 257, 385, 513, 769, 1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr std::uint8_t kDistanceExtra[30] = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                             6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};
constexpr std::uint8_t kCodeLengthOrder[19] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                               11, 4,  12, 3, 13, 2, 14, 1, 15};

std::uint32_t ReadBigEndian32(const std::uint8_t* p) {
  return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) |
         std::uint32_t{p[3]};
}

std::uint64_t LoadLittleEndian64(const std::uint8_t* p) {
  if constexpr (std::endian::native == std::endian::little) {
    std::uint64_t value;
    std::memcpy(&value, p, 8);
    return value;
  } else {
    std::uint64_t value = 0;
    for (int i = 7; i >= 0; --i) value = (value << 8) | p[i];
    return value;
  }
}

std::uint32_t ReverseBits(std::uint32_t code, int length) {
  std::uint32_t reversed = 0;
  for (int i = 0; i < length; ++i) {
    reversed = (reversed << 1) | (code & 1);
    code >>= 1;
  }
  return reversed;
}

// The deflate decoder over one stream. The bit buffer is refilled eight bytes at a time; the
// input carries zero padding behind its end, and running more than eight bytes into that
// padding counts as a broken stream.
class Inflater final {
 public:
  Inflater(const std::uint8_t* data, std::size_t size, std::vector<std::uint8_t>& out,
           std::size_t limit)
      : m_p(data), m_end(data + size), m_out(out), m_limit(limit) {}

  // Decodes blocks until the last one, a fault, or `limit` bytes; gives the bytes produced.
  // `fixedTrees` is called for a fixed block and gives false when they can't be had.
  template <class FixedTrees>
  std::size_t Run(FixedTrees&& fixedTrees, pngdetail::HuffmanTable& literal,
                  pngdetail::HuffmanTable& distance, pngdetail::HuffmanTable& codeLength) {
    std::uint64_t initial = std::min<std::uint64_t>(
        m_limit, static_cast<std::uint64_t>(m_end - m_p) * kMaxInflateRatio + 1024);
    m_out.assign(static_cast<std::size_t>(initial) + kOutputSlack, 0);
    m_capacity = static_cast<std::size_t>(initial);
    bool last = false;
    while (!last && !m_done && !m_failed) {
      if (!Refill()) break;
      last = Take(1) != 0;
      unsigned type = static_cast<unsigned>(Take(2));
      if (type == 0) {
        Stored();
      } else if (type == 1) {
        const pngdetail::HuffmanTable* lit = nullptr;
        const pngdetail::HuffmanTable* dist = nullptr;
        if (!fixedTrees(lit, dist)) break;
        Codes(*lit, *dist);
      } else if (type == 2) {
        if (!Dynamic(literal, distance, codeLength)) break;
        Codes(literal, distance);
      } else {
        break;  // block type 3 does not exist: the stream ends here
      }
    }
    return m_pos;
  }

 private:
  bool Refill() {
    if (m_bitCount < 48) {
      m_bits |= LoadLittleEndian64(m_p) << m_bitCount;
      m_p += (63 - m_bitCount) >> 3;
      m_bitCount |= 56;
    }
    if (m_p > m_end + 8) {
      m_failed = true;
      return false;
    }
    return true;
  }
  std::uint64_t Take(int count) {
    std::uint64_t value = m_bits & kBitMask[count];
    m_bits >>= count;
    m_bitCount -= count;
    return value;
  }

  // A symbol of `table`; -1 when the bits form no code of it. Needs 15 bits in the buffer.
  int Decode(const pngdetail::HuffmanTable& table) {
    std::uint32_t entry = table.fast[m_bits & kBitMask[pngdetail::HuffmanTable::kFastBits]];
    if (entry != 0) {
      Take(static_cast<int>(entry & 15));
      return static_cast<int>(entry >> 4);
    }
    // Canonical decoding, one bit at a time, for the codes longer than the direct table.
    std::uint64_t bits = m_bits;
    int code = 0;
    int first = 0;
    int index = 0;
    for (int length = 1; length <= 15; ++length) {
      code |= static_cast<int>(bits & 1);
      bits >>= 1;
      int count = table.count[length];
      if (code - count < first) {
        Take(length);
        return table.symbol[index + (code - first)];
      }
      index += count;
      first += count;
      first <<= 1;
      code <<= 1;
    }
    return -1;
  }

  bool Grow(std::size_t needed) {
    if (needed <= m_capacity) return true;
    std::size_t target = std::max(needed, m_capacity * 2);
    target = std::min(target, m_limit);
    if (target < needed) target = needed;
    m_out.resize(target + kOutputSlack);
    m_capacity = target;
    return true;
  }

  void Stored() {
    // Back to the byte boundary, then to the byte that the buffer would give next.
    Take(static_cast<int>(m_bitCount & 7));
    m_p -= m_bitCount >> 3;
    m_bits = 0;
    m_bitCount = 0;
    if (m_p > m_end || m_end - m_p < 4) {
      m_failed = true;
      return;
    }
    std::size_t length = m_p[0] | (std::size_t{m_p[1]} << 8);
    std::size_t complement = m_p[2] | (std::size_t{m_p[3]} << 8);
    m_p += 4;
    if (length != (~complement & 0xffff)) {
      m_failed = true;
      return;
    }
    std::size_t available = static_cast<std::size_t>(m_end - m_p);
    std::size_t take = std::min(length, available);
    std::size_t keep = std::min(take, m_limit - m_pos);
    Grow(m_pos + keep);
    std::memcpy(m_out.data() + m_pos, m_p, keep);
    m_pos += keep;
    m_p += take;
    if (take < length) m_failed = true;
    if (m_pos >= m_limit) m_done = true;
  }

  bool Dynamic(pngdetail::HuffmanTable& literal, pngdetail::HuffmanTable& distance,
               pngdetail::HuffmanTable& codeLength) {
    if (!Refill()) return false;
    int literalCount = static_cast<int>(Take(5)) + 257;
    int distanceCount = static_cast<int>(Take(5)) + 1;
    int lengthCodeCount = static_cast<int>(Take(4)) + 4;
    if (literalCount > 286 || distanceCount > 30) return Fail();
    std::uint8_t lengths[320] = {};
    for (int i = 0; i < lengthCodeCount; ++i) {
      if (!Refill()) return false;
      lengths[kCodeLengthOrder[i]] = Take(3) & 7;
    }
    if (!codeLength.Build(lengths, 19)) return Fail();
    std::fill(std::begin(lengths), std::end(lengths), std::uint8_t{0});
    int total = literalCount + distanceCount;
    int n = 0;
    while (n < total) {
      if (!Refill()) return false;
      int symbol = Decode(codeLength);
      if (symbol < 0) return Fail();
      if (symbol < 16) {
        lengths[n++] = static_cast<std::uint8_t>(symbol);
        continue;
      }
      std::uint8_t value = 0;
      int repeat = 0;
      if (symbol == 16) {
        if (n == 0) return Fail();
        value = lengths[n - 1];
        repeat = 3 + static_cast<int>(Take(2));
      } else if (symbol == 17) {
        repeat = 3 + static_cast<int>(Take(3));
      } else {
        repeat = 11 + static_cast<int>(Take(7));
      }
      if (n + repeat > total) return Fail();
      std::fill(lengths + n, lengths + n + repeat, value);
      n += repeat;
    }
    if (lengths[256] == 0) return Fail();  // a block that can't end
    if (!literal.Build(lengths, literalCount)) return Fail();
    if (!distance.Build(lengths + literalCount, distanceCount)) return Fail();
    return true;
  }

  bool Fail() {
    m_failed = true;
    return false;
  }

  void Codes(const pngdetail::HuffmanTable& literal, const pngdetail::HuffmanTable& distance) {
    std::uint8_t* out = m_out.data();
    for (;;) {
      // One refill covers a whole length/distance pair: at most 15 + 5 + 15 + 13 bits.
      if (!Refill()) return;
      int symbol = Decode(literal);
      if (symbol < 256) {
        if (symbol < 0) {
          m_failed = true;
          return;
        }
        if (m_pos >= m_capacity) {
          Grow(m_pos + 1);
          out = m_out.data();
        }
        out[m_pos++] = static_cast<std::uint8_t>(symbol);
        if (m_pos >= m_limit) {
          m_done = true;
          return;
        }
        continue;
      }
      if (symbol == 256) return;
      symbol -= 257;
      if (symbol >= 29) {
        m_failed = true;
        return;
      }
      std::size_t length = kLengthBase[symbol] + Take(kLengthExtra[symbol]);
      int distanceSymbol = Decode(distance);
      if (distanceSymbol < 0 || distanceSymbol >= 30) {
        m_failed = true;
        return;
      }
      std::size_t dist = kDistanceBase[distanceSymbol] + Take(kDistanceExtra[distanceSymbol]);
      if (dist > m_pos) {
        m_failed = true;
        return;
      }
      length = std::min(length, m_limit - m_pos);
      if (m_pos + length > m_capacity) {
        Grow(m_pos + length);
        out = m_out.data();
      }
      std::uint8_t* dst = out + m_pos;
      const std::uint8_t* src = dst - dist;
      if (dist >= 8) {
        // Each eight-byte step reads only bytes written before it; the slack takes the overrun.
        for (std::size_t i = 0; i < length; i += 8) std::memcpy(dst + i, src + i, 8);
      } else if (dist == 1) {
        std::memset(dst, *src, length);
      } else {
        for (std::size_t i = 0; i < length; ++i) dst[i] = src[i];
      }
      m_pos += length;
      if (m_pos >= m_limit) {
        m_done = true;
        return;
      }
    }
  }

  const std::uint8_t* m_p;
  const std::uint8_t* m_end;
  std::uint64_t m_bits = 0;
  int m_bitCount = 0;
  std::vector<std::uint8_t>& m_out;
  std::size_t m_limit;
  std::size_t m_capacity = 0;
  std::size_t m_pos = 0;
  bool m_done = false;
  bool m_failed = false;
};

// Undoes one line filter in place. `previous` is null for the first line of an image or pass.
void Unfilter(std::uint8_t type, std::uint8_t* line, const std::uint8_t* previous,
              std::size_t length, std::size_t bpp) {
  switch (type) {
    case 1:
      for (std::size_t i = bpp; i < length; ++i) line[i] += line[i - bpp];
      break;
    case 2:
      if (previous != nullptr)
        for (std::size_t i = 0; i < length; ++i) line[i] += previous[i];
      break;
    case 3:
      if (previous != nullptr) {
        for (std::size_t i = 0; i < bpp && i < length; ++i) line[i] += previous[i] >> 1;
        for (std::size_t i = bpp; i < length; ++i)
          line[i] += static_cast<std::uint8_t>((line[i - bpp] + previous[i]) >> 1);
      } else {
        for (std::size_t i = bpp; i < length; ++i) line[i] += line[i - bpp] >> 1;
      }
      break;
    case 4:
      if (previous != nullptr) {
        for (std::size_t i = 0; i < bpp && i < length; ++i) line[i] += previous[i];
        for (std::size_t i = bpp; i < length; ++i) {
          int a = line[i - bpp];
          int b = previous[i];
          int c = previous[i - bpp];
          int pa = std::abs(b - c);
          int pb = std::abs(a - c);
          int pc = std::abs(a + b - 2 * c);
          int predictor = (pa <= pb && pa <= pc) ? a : (pb <= pc ? b : c);
          line[i] += static_cast<std::uint8_t>(predictor);
        }
      } else {
        // Without a line above, Paeth predicts from the left only.
        for (std::size_t i = bpp; i < length; ++i) line[i] += line[i - bpp];
      }
      break;
    default:
      break;  // 0, and unknown types, are taken as they stand
  }
}

struct Pass {
  std::uint32_t x0 = 0, y0 = 0, dx = 1, dy = 1;
  std::uint32_t width = 0, height = 0;
  std::size_t lineBytes = 0;  // without the filter byte
  std::size_t offset = 0;     // of the pass in the inflated data
};

// Columns that each Adam7 pass holds in each block of 8, counted from 1; the rows of pass n
// are the columns of pass n - 1 (pass 1 takes the first row of each block).
constexpr const char* kPassColumns[7] = {"1", "5", "15", "37", "1357", "2468", "12345678"};

std::uint32_t CountInBlocks(std::uint32_t size, const char* list) {
  std::uint32_t perBlock = static_cast<std::uint32_t>(std::strlen(list));
  std::uint32_t count = (size / 8) * perBlock;
  std::uint32_t rest = size % 8;
  for (const char* c = list; *c != 0; ++c)
    if (static_cast<std::uint32_t>(*c - '0') <= rest) ++count;
  return count;
}

// Everything the pixel conversion needs to know about the file and the settings.
struct Converter {
  std::uint32_t colorType = 0;
  std::uint32_t bitDepth = 8;
  bool useTrns = false;   // tRNS gives alpha
  bool useAlpha = false;  // the alpha channel gives alpha
  std::uint32_t trnsGrey = 0;
  std::uint32_t trnsRed = 0, trnsGreen = 0, trnsBlue = 0;
  std::array<std::uint8_t, 256 * 3> paletteBgr{};
  std::array<std::uint8_t, 256> paletteAlpha{};

  // Converts `count` pixels of an unfiltered line. `bgr` steps by `step` pixels; `alpha`, when
  // not null, gets one byte per pixel at the same step.
  void Line(const std::uint8_t* src, std::uint32_t count, std::uint8_t* bgr, std::size_t step,
            std::uint8_t* alpha) const {
    const std::size_t bgrStep = step * 3;
    switch (colorType) {
      case 0:
        Grey(src, count, bgr, bgrStep, alpha, step);
        break;
      case 2:
        if (bitDepth == 8) {
          for (std::uint32_t i = 0; i < count; ++i, src += 3, bgr += bgrStep) {
            bgr[0] = src[2];
            bgr[1] = src[1];
            bgr[2] = src[0];
            if (alpha != nullptr) {
              *alpha = (src[0] == trnsRed && src[1] == trnsGreen && src[2] == trnsBlue) ? 0 : 255;
              alpha += step;
            }
          }
        } else {
          for (std::uint32_t i = 0; i < count; ++i, src += 6, bgr += bgrStep) {
            bgr[0] = src[4];
            bgr[1] = src[2];
            bgr[2] = src[0];
            if (alpha != nullptr) {
              std::uint32_t r = (std::uint32_t{src[0]} << 8) | src[1];
              std::uint32_t g = (std::uint32_t{src[2]} << 8) | src[3];
              std::uint32_t b = (std::uint32_t{src[4]} << 8) | src[5];
              *alpha = (r == trnsRed && g == trnsGreen && b == trnsBlue) ? 0 : 255;
              alpha += step;
            }
          }
        }
        break;
      case 3: {
        const int shift0 = 8 - static_cast<int>(bitDepth);
        const unsigned mask = (1u << bitDepth) - 1;
        for (std::uint32_t i = 0; i < count; ++i, bgr += bgrStep) {
          unsigned index;
          if (bitDepth == 8) {
            index = src[i];
          } else {
            std::size_t bit = static_cast<std::size_t>(i) * bitDepth;
            index = (src[bit >> 3] >> (shift0 - static_cast<int>(bit & 7))) & mask;
          }
          const std::uint8_t* entry = &paletteBgr[index * 3];
          bgr[0] = entry[0];
          bgr[1] = entry[1];
          bgr[2] = entry[2];
          if (alpha != nullptr) {
            *alpha = paletteAlpha[index];
            alpha += step;
          }
        }
        break;
      }
      case 4: {
        const std::size_t size = bitDepth == 8 ? 2 : 4;
        for (std::uint32_t i = 0; i < count; ++i, src += size, bgr += bgrStep) {
          bgr[0] = bgr[1] = bgr[2] = src[0];
          if (alpha != nullptr) {
            *alpha = useAlpha ? src[size / 2] : 255;
            alpha += step;
          }
        }
        break;
      }
      case 6: {
        const std::size_t sample = bitDepth == 8 ? 1 : 2;
        for (std::uint32_t i = 0; i < count; ++i, src += 4 * sample, bgr += bgrStep) {
          bgr[0] = src[2 * sample];
          bgr[1] = src[sample];
          bgr[2] = src[0];
          if (alpha != nullptr) {
            *alpha = useAlpha ? src[3 * sample] : 255;
            alpha += step;
          }
        }
        break;
      }
      default:
        break;
    }
  }

  void Grey(const std::uint8_t* src, std::uint32_t count, std::uint8_t* bgr, std::size_t bgrStep,
            std::uint8_t* alpha, std::size_t step) const {
    if (bitDepth == 16) {
      for (std::uint32_t i = 0; i < count; ++i, src += 2, bgr += bgrStep) {
        bgr[0] = bgr[1] = bgr[2] = src[0];
        if (alpha != nullptr) {
          *alpha = (((std::uint32_t{src[0]} << 8) | src[1]) == trnsGrey) ? 0 : 255;
          alpha += step;
        }
      }
      return;
    }
    if (bitDepth == 8) {
      for (std::uint32_t i = 0; i < count; ++i, bgr += bgrStep) {
        bgr[0] = bgr[1] = bgr[2] = src[i];
        if (alpha != nullptr) {
          *alpha = src[i] == trnsGrey ? 0 : 255;
          alpha += step;
        }
      }
      return;
    }
    // 1, 2 or 4 bits: unpacked and scaled by 255 / (2^depth - 1).
    const unsigned mask = (1u << bitDepth) - 1;
    const unsigned scale = 255 / mask;
    const int shift0 = 8 - static_cast<int>(bitDepth);
    for (std::uint32_t i = 0; i < count; ++i, bgr += bgrStep) {
      std::size_t bit = static_cast<std::size_t>(i) * bitDepth;
      unsigned sample = (src[bit >> 3] >> (shift0 - static_cast<int>(bit & 7))) & mask;
      bgr[0] = bgr[1] = bgr[2] = static_cast<std::uint8_t>(sample * scale);
      if (alpha != nullptr) {
        *alpha = sample == trnsGrey ? 0 : 255;
        alpha += step;
      }
    }
  }
};

std::uint32_t ChannelsOf(std::uint32_t colorType) {
  switch (colorType) {
    case 0:
    case 3:
      return 1;
    case 2:
      return 3;
    case 4:
      return 2;
    case 6:
      return 4;
    default:
      return 0;
  }
}

bool DepthAllowed(std::uint32_t colorType, std::uint32_t depth) {
  switch (colorType) {
    case 0:
      return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16;
    case 3:
      return depth == 1 || depth == 2 || depth == 4 || depth == 8;
    case 2:
    case 4:
    case 6:
      return depth == 8 || depth == 16;
    default:
      return false;
  }
}

// A sample of `depth` bits scaled to a byte, as the pixels are.
std::uint8_t SampleToByte(std::uint32_t value, std::uint32_t depth) {
  if (depth == 16) return static_cast<std::uint8_t>(value >> 8);
  // 8, and any depth a broken header may give, take the low byte.
  if (depth != 1 && depth != 2 && depth != 4) return static_cast<std::uint8_t>(value);
  std::uint32_t mask = (1u << depth) - 1;
  return static_cast<std::uint8_t>((value & mask) * (255 / mask));
}

std::uint32_t DisplayColour(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  return std::uint32_t{red} | (std::uint32_t{green} << 8) | (std::uint32_t{blue} << 16);
}

}  // namespace

namespace pngdetail {

bool HuffmanTable::Build(const std::uint8_t* lengths, int n) {
  count.fill(0);
  for (int i = 0; i < n; ++i) ++count[lengths[i] & 15];
  count[0] = 0;
  int left = 1;
  for (int length = 1; length <= 15; ++length) {
    left <<= 1;
    left -= count[length];
    if (left < 0) return false;
  }
  std::array<std::uint16_t, 16> offsets{};
  for (int length = 1; length < 15; ++length)
    offsets[length + 1] = static_cast<std::uint16_t>(offsets[length] + count[length]);
  for (int i = 0; i < n; ++i) {
    int length = lengths[i] & 15;
    if (length != 0) symbol[offsets[length]++] = static_cast<std::uint16_t>(i);
  }
  fast.fill(0);
  std::uint32_t code = 0;
  int index = 0;
  for (int length = 1; length <= 15; ++length) {
    for (int k = 0; k < count[length]; ++k, ++index, ++code) {
      if (length > kFastBits) continue;
      std::uint16_t entry = static_cast<std::uint16_t>((symbol[index] << 4) | length);
      for (std::uint32_t j = ReverseBits(code, length); j < fast.size(); j += 1u << length)
        fast[j] = entry;
    }
    code <<= 1;
  }
  return true;
}

}  // namespace pngdetail

LoadPNG::LoadPNG(UserInterface* ui) : m_ui(ui) {}

void LoadPNG::Reset() {
  m_compressed.clear();
  m_palette.clear();
  m_transparency.clear();
  m_width = m_height = m_bitDepth = m_colorType = 0;
  m_compression = m_filter = m_interlacing = 0;
  m_errorNumber = 0;
  m_haveAlpha = m_haveTransparence = m_hasBkgdChunk = false;
  m_bkgdColor = 0;
  m_text.clear();
  m_zText.clear();
  m_modiTime.clear();
  m_gama = 0;
  m_pixelLimitExceeded = false;
  m_picture = PngPicture{};
}

void LoadPNG::OpenPNG(const std::string& path) {
  std::string bytes;
  std::ifstream file(path, std::ios::binary);
  if (file) {
    bytes.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  // A file that can't be read has no signature either.
  OpenPNGData(bytes);
}

void LoadPNG::OpenPNGData(std::string_view bytes) {
  Reset();
  try {
    ReadChunks(bytes);
    if (m_errorNumber != 0) return;
    if (m_compressed.empty()) {
      m_errorNumber = 4;
      return;
    }
    Decode();
  } catch (const std::bad_alloc&) {
    // Only a picture near the pixel limit on a machine short of memory gets here.
    m_picture = PngPicture{};
  }
  // Nothing decoded, nothing painted: the target keeps what it showed.
  if (m_picBox != nullptr && !m_picture.Empty()) {
    m_picBox->PaintPng(m_picture, m_toBkgrnd ? m_toBkgrndX : 0, m_toBkgrnd ? m_toBkgrndY : 0);
  }
}

void LoadPNG::ReadChunks(std::string_view bytes) {
  const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const std::size_t size = bytes.size();
  if (size < 8 || std::memcmp(data, kSignature, 8) != 0) {
    m_errorNumber = 1;
    return;
  }
  std::size_t pos = 8;
  for (;;) {
    // A file that ends where a chunk header should be has a chunk running past its end too.
    if (size - pos < 8) {
      m_errorNumber = 3;
      return;
    }
    std::uint32_t length = ReadBigEndian32(data + pos);
    char type[4];
    std::memcpy(type, data + pos + 4, 4);
    pos += 8;
    if (static_cast<std::uint64_t>(pos) + length > size) {
      m_errorNumber = 3;
      return;
    }
    const std::uint8_t* chunk = data + pos;
    // The CRC follows; it is not checked, and a file cut inside it is taken as it is.
    pos = static_cast<std::size_t>(std::min<std::uint64_t>(size, std::uint64_t{pos} + length + 4));
    if (std::memcmp(type, "IEND", 4) == 0) return;
    HandleChunk(type, chunk, length);
  }
}

void LoadPNG::HandleChunk(const char* type, const std::uint8_t* data, std::size_t length) {
  auto is = [type](const char* name) { return std::memcmp(type, name, 4) == 0; };
  if (is("IHDR")) {
    if (length < 13) return;
    m_width = ReadBigEndian32(data);
    m_height = ReadBigEndian32(data + 4);
    m_bitDepth = data[8];
    m_colorType = data[9];
    m_compression = data[10];
    m_filter = data[11];
    m_interlacing = data[12];
  } else if (is("PLTE")) {
    m_palette.assign(data, data + std::min<std::size_t>(length, 256 * 3));
  } else if (is("IDAT")) {
    m_compressed.insert(m_compressed.end(), data, data + length);
  } else if (is("bKGD")) {
    ComputeBkgdColor(data, length);
  } else if (is("gAMA")) {
    if (length >= 4) m_gama = ReadBigEndian32(data);
  } else if (is("tEXt")) {
    std::string_view all(reinterpret_cast<const char*>(data), length);
    std::size_t nul = all.find('\0');
    if (nul == std::string_view::npos) {
      AppendText(m_text, all, {});
    } else {
      AppendText(m_text, all.substr(0, nul), all.substr(nul + 1));
    }
  } else if (is("zTXt")) {
    std::string_view all(reinterpret_cast<const char*>(data), length);
    std::size_t nul = all.find('\0');
    if (nul == std::string_view::npos) return;
    // Behind the keyword: the method byte, then a zlib stream whose 2-byte header is skipped.
    std::size_t start = nul + 2 + 2;
    std::vector<std::uint8_t> stream;
    if (start < length) stream.assign(data + start, data + length);
    std::size_t streamSize = stream.size();
    stream.resize(streamSize + kInputPadding, 0);
    std::vector<std::uint8_t> out;
    std::size_t produced = Inflate(stream.data(), streamSize, kMaxTextBytes, out);
    AppendText(m_zText, all.substr(0, nul),
               std::string_view(reinterpret_cast<const char*>(out.data()), produced));
  } else if (is("tIME")) {
    if (length < 7) return;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%02u.%02u.%u %02u:%02u:%02u", unsigned{data[3]},
                  unsigned{data[2]}, (unsigned{data[0]} << 8) | data[1], unsigned{data[4]},
                  unsigned{data[5]}, unsigned{data[6]});
    m_modiTime = buffer;
  } else if (is("tRNS")) {
    m_transparency.assign(data, data + std::min<std::size_t>(length, 256));
    m_haveTransparence = true;
  }
  // cHRM, oFFs, pCAL, sCAL, hIST, pHYs, sBIT, gIFg, gIFx, cTXt and every other type: skipped.
}

void LoadPNG::ComputeBkgdColor(const std::uint8_t* data, std::size_t length) {
  m_hasBkgdChunk = true;
  auto sample = [data](std::size_t i) {
    return (std::uint32_t{data[2 * i]} << 8) | data[2 * i + 1];
  };
  if (m_colorType == 3) {
    if (length >= 1 && std::size_t{data[0]} * 3 + 2 < m_palette.size()) {
      const std::uint8_t* entry = &m_palette[std::size_t{data[0]} * 3];
      m_bkgdColor = DisplayColour(entry[0], entry[1], entry[2]);
    }
  } else if (m_colorType == 2 || m_colorType == 6) {
    if (length >= 6) {
      m_bkgdColor =
          DisplayColour(SampleToByte(sample(0), m_bitDepth), SampleToByte(sample(1), m_bitDepth),
                        SampleToByte(sample(2), m_bitDepth));
    }
  } else if (length >= 2) {
    std::uint8_t grey = SampleToByte(sample(0), m_bitDepth);
    m_bkgdColor = DisplayColour(grey, grey, grey);
  }
}

void LoadPNG::AppendText(std::string& target, std::string_view keyword, std::string_view text) {
  if (!target.empty()) target += "\r\n";
  target += keyword;
  target += ": ";
  target += text;
}

bool LoadPNG::EnsureFixedTrees() {
  if (m_fixedTreesBuilt) return true;
  std::uint8_t lengths[288];
  std::fill(lengths, lengths + 144, std::uint8_t{8});
  std::fill(lengths + 144, lengths + 256, std::uint8_t{9});
  std::fill(lengths + 256, lengths + 280, std::uint8_t{7});
  std::fill(lengths + 280, lengths + 288, std::uint8_t{8});
  std::uint8_t distances[32];
  std::fill(distances, distances + 32, std::uint8_t{5});
  if (!m_fixedLiteral.Build(lengths, 288) || !m_fixedDistance.Build(distances, 32)) {
    if (m_ui != nullptr)
      m_ui->ShowMessage(false, "Error in tree creation (Static)", "", Icon::Stop);
    return false;
  }
  m_fixedTreesBuilt = true;
  return true;
}

std::size_t LoadPNG::Inflate(const std::uint8_t* data, std::size_t size, std::size_t limit,
                             std::vector<std::uint8_t>& out) {
  Inflater inflater(data, size, out, limit);
  auto fixedTrees = [this](const pngdetail::HuffmanTable*& literal,
                           const pngdetail::HuffmanTable*& distance) {
    if (!EnsureFixedTrees()) return false;
    literal = &m_fixedLiteral;
    distance = &m_fixedDistance;
    return true;
  };
  return inflater.Run(fixedTrees, m_literal, m_distance, m_codeLength);
}

void LoadPNG::Decode() {
  m_haveAlpha = m_colorType == 4 || m_colorType == 6;
  const std::uint32_t channels = ChannelsOf(m_colorType);
  if (channels == 0 || !DepthAllowed(m_colorType, m_bitDepth) || m_interlacing > 1) return;
  if (m_width == 0 || m_height == 0) return;
  if (std::uint64_t{m_width} * m_height > kMaxPixels) {
    m_pixelLimitExceeded = true;
    return;
  }
  const std::uint32_t bitsPerPixel = channels * m_bitDepth;
  const std::size_t bpp = std::max<std::uint32_t>(1, bitsPerPixel / 8);
  auto lineBytes = [bitsPerPixel](std::uint32_t width) {
    return static_cast<std::size_t>((std::uint64_t{width} * bitsPerPixel + 7) / 8);
  };

  // The passes: one for a plain picture, the seven of Adam7 for an interlaced one.
  std::vector<Pass> passes;
  std::size_t expected = 0;
  if (m_interlacing == 0) {
    Pass pass;
    pass.width = m_width;
    pass.height = m_height;
    pass.lineBytes = lineBytes(m_width);
    passes.push_back(pass);
  } else {
    static constexpr std::uint32_t kX0[7] = {0, 4, 0, 2, 0, 1, 0};
    static constexpr std::uint32_t kY0[7] = {0, 0, 4, 0, 2, 0, 1};
    static constexpr std::uint32_t kDx[7] = {8, 8, 4, 4, 2, 2, 1};
    static constexpr std::uint32_t kDy[7] = {8, 8, 8, 4, 4, 2, 2};
    for (int p = 0; p < 7; ++p) {
      Pass pass;
      pass.x0 = kX0[p];
      pass.y0 = kY0[p];
      pass.dx = kDx[p];
      pass.dy = kDy[p];
      pass.width = CountInBlocks(m_width, kPassColumns[p]);
      pass.height = CountInBlocks(m_height, p == 0 ? "1" : kPassColumns[p - 1]);
      pass.lineBytes = lineBytes(pass.width);
      passes.push_back(pass);
    }
  }
  for (Pass& pass : passes) {
    pass.offset = expected;
    if (pass.width != 0 && pass.height != 0) expected += pass.height * (pass.lineBytes + 1);
  }

  // Inflate behind the two bytes of the zlib header; the adler checksum is not verified.
  std::vector<std::uint8_t> raw;
  std::size_t produced = 0;
  if (m_compressed.size() > 2) {
    std::size_t size = m_compressed.size();
    m_compressed.resize(size + kInputPadding, 0);
    produced = Inflate(m_compressed.data() + 2, size - 2, expected, raw);
    m_compressed.resize(size);
  }

  // How many lines of each pass arrived whole, and from that how many rows of the picture are
  // complete: a broken stream keeps the rows above the break.
  std::vector<std::uint32_t> linesIn(passes.size(), 0);
  bool allComplete = true;
  for (std::size_t p = 0; p < passes.size(); ++p) {
    const Pass& pass = passes[p];
    if (pass.width == 0 || pass.height == 0) continue;
    std::size_t have = produced > pass.offset ? produced - pass.offset : 0;
    linesIn[p] =
        static_cast<std::uint32_t>(std::min<std::size_t>(pass.height, have / (pass.lineBytes + 1)));
    if (linesIn[p] < pass.height) allComplete = false;
  }
  std::uint32_t rows = 0;
  if (m_interlacing == 0 || allComplete) {
    rows = m_interlacing == 0 ? linesIn[0] : m_height;
  } else {
    // Passes 1 to 6 make the even rows whole; pass 7 then fills the odd rows one by one.
    bool evenRowsDone = true;
    for (int p = 0; p < 6; ++p)
      if (passes[p].width != 0 && passes[p].height != 0 && linesIn[p] < passes[p].height)
        evenRowsDone = false;
    if (evenRowsDone) rows = std::min<std::uint32_t>(m_height, 2 * linesIn[6] + 1);
  }
  if (rows == 0) return;

  Converter converter;
  converter.colorType = m_colorType;
  converter.bitDepth = m_bitDepth;
  converter.useAlpha = m_setAlpha && m_haveAlpha;
  converter.useTrns = m_setTrans && m_haveTransparence && !m_haveAlpha;
  const std::uint32_t sampleMask = m_bitDepth >= 16 ? 0xffffu : (1u << m_bitDepth) - 1;
  if (converter.useTrns) {
    auto key = [this](std::size_t i) -> std::uint32_t {
      if (m_transparency.size() < 2 * i + 2) return 0x10000;  // matches no sample
      return (std::uint32_t{m_transparency[2 * i]} << 8) | m_transparency[2 * i + 1];
    };
    if (m_colorType == 0) {
      converter.trnsGrey = key(0) == 0x10000 ? 0x10000 : key(0) & sampleMask;
    } else if (m_colorType == 2) {
      if (m_transparency.size() >= 6) {
        converter.trnsRed = key(0) & sampleMask;
        converter.trnsGreen = key(1) & sampleMask;
        converter.trnsBlue = key(2) & sampleMask;
      } else {
        converter.trnsRed = 0x10000;
      }
    }
  }
  converter.paletteAlpha.fill(255);
  if (m_colorType == 3) {
    for (std::size_t i = 0; i * 3 + 2 < m_palette.size(); ++i) {
      converter.paletteBgr[i * 3] = m_palette[i * 3 + 2];
      converter.paletteBgr[i * 3 + 1] = m_palette[i * 3 + 1];
      converter.paletteBgr[i * 3 + 2] = m_palette[i * 3];
    }
    if (converter.useTrns)
      for (std::size_t i = 0; i < m_transparency.size(); ++i)
        converter.paletteAlpha[i] = m_transparency[i];
  }
  const bool mixing = converter.useTrns || converter.useAlpha;

  m_picture.Width = m_width;
  m_picture.Height = rows;
  const std::size_t rowBytes = static_cast<std::size_t>(m_width) * 3;
  m_picture.Pixels.assign(rowBytes * rows, 0);
  std::vector<std::uint8_t> alpha;
  if (mixing) alpha.assign(static_cast<std::size_t>(m_width) * rows, 255);

  for (std::size_t p = 0; p < passes.size(); ++p) {
    const Pass& pass = passes[p];
    const std::uint8_t* previous = nullptr;
    for (std::uint32_t line = 0; line < linesIn[p]; ++line) {
      std::uint32_t y = pass.y0 + line * pass.dy;
      if (y >= rows) break;
      std::uint8_t* start = raw.data() + pass.offset + line * (pass.lineBytes + 1);
      Unfilter(start[0], start + 1, previous, pass.lineBytes, bpp);
      previous = start + 1;
      std::size_t pixel = static_cast<std::size_t>(y) * m_width + pass.x0;
      converter.Line(start + 1, pass.width, m_picture.Pixels.data() + pixel * 3, pass.dx,
                     mixing ? alpha.data() + pixel : nullptr);
    }
  }
  if (mixing) MixBackground(alpha);
}

void LoadPNG::MixBackground(const std::vector<std::uint8_t>& alpha) {
  // The flat colour serves when no background picture was given.
  const PngPicture* back = m_backgroundPicture;
  if (back != nullptr && back->Empty()) back = nullptr;
  std::uint32_t flat = m_ownBkgndColor != 0 ? m_ownBkgndColor : m_bkgdColor;
  const std::uint8_t flatBgr[3] = {static_cast<std::uint8_t>(flat >> 16),
                                   static_cast<std::uint8_t>(flat >> 8),
                                   static_cast<std::uint8_t>(flat)};
  const std::uint8_t black[3] = {0, 0, 0};
  const std::int64_t offsetX = m_toBkgrnd ? m_toBkgrndX : 0;
  const std::int64_t offsetY = m_toBkgrnd ? m_toBkgrndY : 0;
  const std::uint32_t width = m_picture.Width;
  for (std::uint32_t y = 0; y < m_picture.Height; ++y) {
    std::uint8_t* row = m_picture.Pixels.data() + static_cast<std::size_t>(y) * width * 3;
    const std::uint8_t* rowAlpha = alpha.data() + static_cast<std::size_t>(y) * width;
    for (std::uint32_t x = 0; x < width; ++x) {
      const unsigned a = rowAlpha[x];
      if (a == 255) continue;
      const std::uint8_t* bg = flatBgr;
      if (back != nullptr) {
        // Outside the background picture there is nothing to see through: black.
        std::int64_t bx = offsetX + x;
        std::int64_t by = offsetY + y;
        bg = (bx >= 0 && by >= 0 && bx < back->Width && by < back->Height)
                 ? back->Row(static_cast<std::uint32_t>(by)) + bx * 3
                 : black;
      }
      std::uint8_t* px = row + static_cast<std::size_t>(x) * 3;
      for (int c = 0; c < 3; ++c) {
        if (a == 0) {
          px[c] = bg[c];
        } else {
          px[c] = static_cast<std::uint8_t>((px[c] * a + bg[c] * (255 - a) + 255) >> 8);
        }
      }
    }
  }
}

}  // namespace tessarin
