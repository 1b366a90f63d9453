#include "lists/textlists.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "lists/listfile.h"

namespace tessarin {

namespace {

constexpr int kTrackBuildTextList = 6101;

using K = ListFieldKind;

constexpr std::array<ListFieldInfo, kListFieldCount> kFields = {{
    {"RomName", K::Text},
    {"GameName", K::Text},
    {"Year", K::Text},
    {"CloneOf", K::Text},
    {"RomOf", K::Text},
    {"SampleOf", K::Text},
    {"Manufacturer", K::Text},
    {"nPlayers", K::Text},
    {"Genre", K::Text},
    {"Category", K::Text},
    {"VerAdded", K::Text},
    {"Mature", K::YesNo},
    {"Bios", K::Text},
    {"Rom", K::Multi},
    {"Chip", K::Multi},
    {"DipSwitch", K::Multi},
    {"Display Type", K::Text},
    {"Display Rotate", K::Text},
    {"Resolution", K::Text},
    {"DisplayRefresh", K::Text},
    {"SoundChannels", K::Text},
    {"InputPlayers", K::Text},
    {"InputButtons", K::Text},
    {"InputCoins", K::Text},
    {"InputService", K::Text},
    {"InputControlType", K::Text},
    {"InputTilt", K::Text},
    {"DriverStatus", K::Text},
    {"DriverColor", K::Text},
    {"DriverSound", K::Text},
    {"DriverPaletteSize", K::Text},
    {"GotIt", K::YesNo},
    {"Cheat", K::YesNo},
    {"Command", K::Present},
    {"Hiscore", K::YesNo},
    {"History", K::Present},
    {"MameInfo", K::Present},
    {"Display Aspect", K::Text},
    {"DriverEmulation", K::Text},
    {"DriverGraphic", K::Text},
    {"DriverCocktail", K::Text},
    {"DriverProtection", K::Text},
    {"DriverSaveState", K::Text},
    {"Runnable", K::YesNo},
    {"SampleName", K::Text},
    {"Disk", K::Multi},
    {"BiosSet", K::Multi},
}};

// Windows-1252's characters at 0x80 to 0x9F; the rest of the byte range is Latin-1. The five
// holes of the code page keep their C1 code points, as the window's decoder does.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsValidUtf8(std::string_view s) {
  size_t i = 0;
  const size_t n = s.size();
  while (i < n) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    int extra = 0;
    unsigned min = 0;
    unsigned cp = 0;
    if (c >= 0xC2 && c <= 0xDF) {
      extra = 1;
      cp = c & 0x1Fu;
      min = 0x80;
    } else if (c >= 0xE0 && c <= 0xEF) {
      extra = 2;
      cp = c & 0x0Fu;
      min = 0x800;
    } else if (c >= 0xF0 && c <= 0xF4) {
      extra = 3;
      cp = c & 0x07u;
      min = 0x10000;
    } else {
      return false;
    }
    if (i + static_cast<size_t>(extra) >= n) return false;
    for (int k = 1; k <= extra; ++k) {
      const auto cc = static_cast<unsigned char>(s[i + static_cast<size_t>(k)]);
      if ((cc & 0xC0u) != 0x80u) return false;
      cp = (cp << 6) | (cc & 0x3Fu);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += static_cast<size_t>(extra) + 1;
  }
  return true;
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

bool EndsWithNoCase(std::string_view name, std::string_view suffix) {
  if (name.size() < suffix.size()) return false;
  const std::string_view tail = name.substr(name.size() - suffix.size());
  return LowerCopy(tail) == suffix;
}

}  // namespace

const std::array<ListFieldInfo, kListFieldCount>& ListFields() { return kFields; }

int FindListField(std::string_view name) {
  for (int i = 0; i < kListFieldCount; ++i) {
    if (kFields[static_cast<size_t>(i)].name == name) return i;
  }
  return -1;
}

std::string ListSeparator(SeparatorRadio radio, std::string_view otherText) {
  std::string separator(otherText);
  if (separator.empty()) separator = " ";
  switch (radio) {
    case SeparatorRadio::Tab:
      return "\t";
    case SeparatorRadio::Semicolon:
      return ";";
    case SeparatorRadio::Comma:
      return ",";
    case SeparatorRadio::Space:
      return " ";
    case SeparatorRadio::Other:
    case SeparatorRadio::None:
      break;
  }
  return separator;
}

std::string SeparatorSettingText(std::string_view separator) {
  std::string text;
  for (const char c : separator) {
    if (c == '\t') {
      text += "TAB";
    } else {
      text += c;
    }
  }
  return text;
}

SeparatorRadio RadioFromSeparatorSetting(std::string_view stored, std::string_view otherText) {
  if (stored == ";") return SeparatorRadio::Semicolon;
  if (stored == ",") return SeparatorRadio::Comma;
  if (stored.empty() || stored == " ") return SeparatorRadio::Space;
  if (stored == "TAB") return SeparatorRadio::Tab;
  if (stored == otherText) return SeparatorRadio::Other;
  return SeparatorRadio::None;
}

std::string OtherTextFromSetting(std::string_view stored) {
  if (stored.empty() || stored == "-1") return {};
  return std::string(stored.substr(0, 1));
}

std::string SelectionSettingText(const std::vector<bool>& selected) {
  std::string text;
  text.reserve(selected.size());
  for (const bool on : selected) text += on ? '1' : '0';
  return text;
}

void ApplySelectionSetting(std::string_view stored, std::vector<bool>& selected) {
  if (stored.empty() || stored == "-1") return;
  for (size_t i = 1; i <= stored.size(); ++i) {
    if (i > selected.size()) break;
    selected[i - 1] = stored[i - 1] == '1';
  }
}

std::vector<std::string> ListSkinNames(const std::string& appFolder) {
  std::vector<std::string> skins;
  std::vector<std::string> zips;
  const std::string html = ResolveNoCase(AddSlash(appFolder), "HTML");
  std::error_code ec;
  if (!std::filesystem::is_directory(FsPath(html), ec)) return skins;
  for (const auto& entry : std::filesystem::directory_iterator(FsPath(html), ec)) {
    const std::string name = PathText(entry.path().filename());
    if (EndsWithNoCase(name, ".skin")) {
      skins.push_back(name);
    } else if (EndsWithNoCase(name, ".skin.zip")) {
      zips.push_back(name);
    }
  }
  const auto byName = [](const std::string& a, const std::string& b) {
    const std::string la = LowerCopy(a);
    const std::string lb = LowerCopy(b);
    return la != lb ? la < lb : a < b;
  };
  std::sort(skins.begin(), skins.end(), byName);
  std::sort(zips.begin(), zips.end(), byName);
  skins.insert(skins.end(), zips.begin(), zips.end());
  return skins;
}

std::string TextListFileFilter(const Messages& messages) {
  return messages.Lng(139) + " (txt)|*.txt|" + messages.Lng(33) + "|*.*|";
}

std::string IniFileFilter(const Messages& messages) {
  return messages.Lng(35) + " (*.ini)|*.ini|" + messages.Lng(33) + " |*.*|";
}

std::optional<TextListRequest> PrepareTextList(AppContext& ctx, const TextListControls& controls) {
  TextListRequest request;
  request.format.separator = ListSeparator(controls.radio, controls.otherText);
  ctx.settings.InfWrite("Frm7Separateur", SeparatorSettingText(request.format.separator));
  request.format.quote = controls.quotes ? "\"" : "";
  request.selected = controls.selected;
  if (std::none_of(request.selected.begin(), request.selected.end(), [](bool b) { return b; })) {
    return std::nullopt;
  }
  request.outputPath = ctx.Ui().ChooseFile(ctx.messages.Lng(138), "List.txt",
                                           TextListFileFilter(ctx.messages), true);
  if (request.outputPath.empty()) return std::nullopt;
  request.iniFile = controls.iniFile;
  return request;
}

std::string TextListHeader(const ListSelection& selected, const TextListFormat& format) {
  std::string header;
  if (format.csv) {
    bool first = true;
    for (int i = 0; i < kListFieldCount; ++i) {
      if (!selected[static_cast<size_t>(i)]) continue;
      if (!first) header += format.separator;
      first = false;
      AppendCsvCell(header, kFields[static_cast<size_t>(i)].name, format.separator,
                    !format.quote.empty());
    }
    return header;
  }
  // The header keeps the separator behind its last title; the data lines don't.
  for (int i = 0; i < kListFieldCount; ++i) {
    if (!selected[static_cast<size_t>(i)]) continue;
    header += format.quote;
    header += kFields[static_cast<size_t>(i)].name;
    header += format.quote;
    header += format.separator;
  }
  return header;
}

void FormatListLine(const std::vector<std::string_view>& cells, const TextListFormat& format,
                    std::string& line) {
  line.clear();
  if (format.csv) {
    for (size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) line += format.separator;
      AppendCsvCell(line, cells[i], format.separator, !format.quote.empty());
    }
    return;
  }
  for (const std::string_view cell : cells) {
    line += format.quote;
    line += cell;
    line += format.quote;
    line += format.separator;
  }
  // One character off the end when it is the separator: that drops the separator behind the
  // last cell, and nothing else, even when the last cell itself ends in the separator.
  if (!line.empty() && std::string_view(line).substr(line.size() - 1) == format.separator) {
    line.pop_back();
  }
}

void AppendCsvCell(std::string& out, std::string_view cell, std::string_view separator,
                   bool quoteAll) {
  const std::string text = DisplayUtf8(cell);
  bool quote = quoteAll || text.find_first_of("\"\r\n") != std::string::npos ||
               (!separator.empty() && text.find(separator) != std::string::npos);
  // A leading or trailing blank would be lost by some readers without quotes.
  if (!quote && !text.empty() && (text.front() == ' ' || text.back() == ' ')) quote = true;
  if (!quote) {
    out += text;
    return;
  }
  out += '"';
  for (const char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

std::string DisplayUtf8(std::string_view bytes) {
  if (IsValidUtf8(bytes)) return std::string(bytes);
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 2);
  for (const char ch : bytes) {
    const auto byte = static_cast<unsigned char>(ch);
    if (byte >= 0x80 && byte < 0xA0) {
      AppendUtf8(out, kCp1252High[byte - 0x80]);
    } else {
      AppendUtf8(out, byte);
    }
  }
  return out;
}

}  // namespace tessarin
