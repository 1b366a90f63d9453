#include "sheet/textdisplay.h"

#include <cstdint>
#include <utility>

namespace tessarin {

namespace {

// Windows-1252's 0x80 to 0x9F; its five undefined bytes keep their own code.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, std::uint32_t code) {
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
  } else if (code < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (code >> 6)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  } else if (code < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (code >> 12)));
    out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (code >> 18)));
    out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  }
}

}  // namespace

bool IsValidUtf8(std::string_view bytes) {
  size_t i = 0;
  const size_t n = bytes.size();
  while (i < n) {
    const auto b = static_cast<unsigned char>(bytes[i]);
    if (b < 0x80) {
      ++i;
      continue;
    }
    size_t extra = 0;
    std::uint32_t code = 0;
    std::uint32_t minimum = 0;
    if (b >= 0xC2 && b <= 0xDF) {
      extra = 1;
      code = b & 0x1F;
      minimum = 0x80;
    } else if (b >= 0xE0 && b <= 0xEF) {
      extra = 2;
      code = b & 0x0F;
      minimum = 0x800;
    } else if (b >= 0xF0 && b <= 0xF4) {
      extra = 3;
      code = b & 0x07;
      minimum = 0x10000;
    } else {
      return false;
    }
    for (size_t k = 1; k <= extra; ++k) {
      if (i + k >= n) return false;
      const auto c = static_cast<unsigned char>(bytes[i + k]);
      if ((c & 0xC0) != 0x80) return false;
      code = (code << 6) | (c & 0x3F);
    }
    if (code < minimum || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
    i += extra + 1;
  }
  return true;
}

std::string DisplayUtf8(std::string_view bytes) {
  if (IsValidUtf8(bytes)) return std::string(bytes);
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 2);
  for (const char ch : bytes) {
    const auto b = static_cast<unsigned char>(ch);
    if (b < 0x80) {
      out.push_back(ch);
    } else if (b < 0xA0) {
      AppendUtf8(out, kCp1252High[b - 0x80]);
    } else {
      AppendUtf8(out, b);
    }
  }
  return out;
}

std::string DecodeEntitiesForDisplay(std::string_view text) {
  if (text.find('&') == std::string_view::npos) return std::string(text);
  static constexpr std::pair<std::string_view, char> kNamed[] = {
      {"quot", '"'}, {"apos", '\''}, {"amp", '&'}, {"lt", '<'}, {"gt", '>'}};
  std::string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '&') {
      out.push_back(text[i++]);
      continue;
    }
    const size_t semicolon = text.find(';', i + 1);
    // Entities are short; a far ';' belongs to something else.
    if (semicolon == std::string_view::npos || semicolon - i > 10 || semicolon == i + 1) {
      out.push_back(text[i++]);
      continue;
    }
    const std::string_view body = text.substr(i + 1, semicolon - i - 1);
    bool decoded = false;
    if (body[0] == '#') {
      std::uint32_t code = 0;
      bool hex = body.size() > 1 && (body[1] == 'x' || body[1] == 'X');
      size_t k = hex ? 2 : 1;
      bool ok = k < body.size();
      for (; ok && k < body.size(); ++k) {
        const char c = body[k];
        std::uint32_t digit = 0;
        if (c >= '0' && c <= '9') {
          digit = static_cast<std::uint32_t>(c - '0');
        } else if (hex && c >= 'a' && c <= 'f') {
          digit = static_cast<std::uint32_t>(c - 'a' + 10);
        } else if (hex && c >= 'A' && c <= 'F') {
          digit = static_cast<std::uint32_t>(c - 'A' + 10);
        } else {
          ok = false;
          break;
        }
        code = code * (hex ? 16 : 10) + digit;
        if (code > 0x10FFFF) ok = false;
      }
      if (ok && code != 0 && !(code >= 0xD800 && code <= 0xDFFF)) {
        AppendUtf8(out, code);
        decoded = true;
      }
    } else {
      for (const auto& [name, character] : kNamed) {
        if (body == name) {
          out.push_back(character);
          decoded = true;
          break;
        }
      }
    }
    if (decoded) {
      i = semicolon + 1;
    } else {
      out.push_back(text[i++]);
    }
  }
  return out;
}

}  // namespace tessarin
