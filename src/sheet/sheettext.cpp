#include "sheet/sheettext.h"

#include <cstdio>
#include <string_view>
#include <vector>

#include "core/messages.h"
#include "sheet/textdisplay.h"
#include "store/faststrings.h"

namespace tessarin {

namespace {

constexpr std::string_view kCrLf = "\r\n";

std::string_view Flag(bool value) { return value ? "True" : "False"; }

// The number a text begins with; 0 when there is none.
long long NumberOf(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && text[i] == ' ') ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  long long value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9' && value < 1000000000000LL; ++i) {
    value = value * 10 + (text[i] - '0');
  }
  return negative ? -value : value;
}

std::string Replaced(std::string_view text, std::string_view find, std::string_view by) {
  return FastReplace(text, find, by, 1, kAllMatches, 0);
}

void AppendFields(std::string& box, std::string_view item,
                  const std::vector<std::string_view>& labels) {
  std::vector<std::string> fields;
  FastSplit(item, fields, ";");
  if (fields.empty() || fields[0].empty()) return;
  box.append(kCrLf).append(kCrLf).append("Name: ").append(fields[0]);
  for (size_t f = 1; f < fields.size() && f - 1 < labels.size(); ++f) {
    if (fields[f].empty() || fields[f][0] == '#') continue;
    box.append(kCrLf).append(labels[f - 1]).append(fields[f]);
  }
}

void JsonString(std::string& out, std::string_view bytes) {
  const std::string text = DisplayUtf8(bytes);
  out.push_back('"');
  for (const char ch : text) {
    switch (ch) {
      case '"':
        out.append("\\\"");
        break;
      case '\\':
        out.append("\\\\");
        break;
      case '\r':
        out.append("\\r");
        break;
      case '\n':
        out.append("\\n");
        break;
      case '\t':
        out.append("\\t");
        break;
      default:
        if (static_cast<unsigned char>(ch) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(ch));
          out.append(escaped);
        } else {
          out.push_back(ch);
        }
    }
  }
  out.push_back('"');
}

}  // namespace

SheetText LayOutSheetText(const GameDetails& d, GameDetailsLoader& loader,
                          const Messages& messages) {
  auto lng = [&](int n) -> const std::string& { return messages.Lng(n); };
  SheetText s;
  s.Label1 = d.Description;

  std::string& t1 = s.Text1;
  t1.append(lng(184)).append(d.RomName).append(kCrLf).append(kCrLf);
  t1.append(lng(185)).append(Flag(d.HiscoreSupport)).append(kCrLf);
  t1.append(lng(186)).append(Flag(d.CheatSupport)).append(kCrLf);
  t1.append(lng(187)).append(Flag(!d.Command.empty()));
  t1.append(kCrLf).append(lng(189)).append(d.DriverSavestate).append(kCrLf);
  t1.append(kCrLf).append(lng(190)).append(d.Sample);
  t1.append(kCrLf).append(lng(191)).append(d.Driver);
  t1.append(kCrLf).append(lng(192)).append(d.DriverStatus);
  t1.append(kCrLf).append(lng(193)).append(d.DriverEmulation);
  t1.append(kCrLf).append(lng(194)).append(d.DriverColor);
  t1.append(kCrLf).append(lng(195)).append(d.DriverSound);
  t1.append(kCrLf).append(lng(196)).append(d.DriverGraphic);
  t1.append(kCrLf).append(lng(197)).append(d.DriverCocktail).append(kCrLf);
  t1.append(kCrLf).append(lng(198)).append(d.Screen);
  t1.append(kCrLf).append(lng(199)).append(d.Orientation);
  const std::string clones = loader.BuildClonesList(d.RomName, false);
  if (!clones.empty()) t1.append(kCrLf).append(lng(200)).append(clones);
  if (d.CloneOf.empty()) {
    t1.append(kCrLf).append(lng(202));
  } else {
    t1.append(kCrLf).append(lng(201)).append(d.CloneOf);
  }

  std::string& t2 = s.Text2;
  t2.append(lng(203)).append(d.Manufacturer);
  t2.append(kCrLf).append(lng(204)).append(d.Year);
  t2.append(kCrLf).append(lng(205)).append(d.VersionAdded).append(kCrLf);
  t2.append(kCrLf).append(lng(206)).append(d.Genre);
  t2.append(kCrLf).append(lng(207)).append(d.Category).append(kCrLf);
  t2.append(kCrLf).append(lng(208)).append(Flag(d.Working));
  t2.append(kCrLf).append(lng(209)).append(Flag(d.CorrectColors));
  t2.append(kCrLf).append(lng(210)).append(Flag(d.CorrectSounds)).append(kCrLf);
  t2.append(kCrLf).append(lng(211)).append(d.SoundChannels);
  t2.append(kCrLf).append(lng(212)).append(NumberOf(d.Colors) == 0 ? d.DriverPalettesize
                                                                   : d.Colors);
  t2.append(kCrLf).append(lng(214)).append(d.Resolution);
  t2.append(kCrLf).append(lng(215)).append(d.Aspect);
  t2.append(kCrLf).append(lng(216)).append(d.Refresh).append("Hz").append(kCrLf);
  t2.append(kCrLf).append(lng(217)).append(d.Control);
  t2.append(kCrLf).append(lng(218)).append(d.Buttons);
  t2.append(kCrLf).append(lng(219)).append(d.InputPlayers);
  t2.append(kCrLf).append(lng(220)).append(d.CoinSlots);
  t2.append(kCrLf).append(lng(221)).append(d.ServiceButton);
  t2.append(kCrLf).append(lng(222)).append(d.TiltButton);

  // The sheet first writes the notes under message 223 and then replaces the box by the
  // History; the notes come back at the end. Only the end state is kept here.
  std::string& t3 = s.Text3;
  t3.append("- HISTORY -").append(kCrLf).append(d.History);
  t3.append(kCrLf).append("- MAMEINFO -");
  if (!d.Mameinfo.empty()) {
    t3.append(kCrLf).append(d.Mameinfo);
  } else {
    const std::string parent = loader.ReadMameinfoEntry(d.CloneOf);
    if (!parent.empty()) t3.append(kCrLf).append(parent);
  }
  if (!d.PersonalNotes.empty()) {
    t3.append(kCrLf).append(kCrLf).append("- NOTES -").append(kCrLf).append(d.PersonalNotes);
  }

  s.Text4 = "BIOS SET";
  for (size_t i = 1; i < loader.BiosSetList.size(); ++i) {
    const std::string& item = loader.BiosSetList[i];
    std::string line;
    const size_t semicolon = item.find(';');
    if (semicolon != std::string::npos) {
      line = item.substr(0, semicolon) + ": " + Replaced(item.substr(semicolon + 1), ";", " - ");
    } else {
      line = item;
    }
    line = Replaced(Replaced(line, "#D", ""), "#F", "");
    s.Text4.append(kCrLf).append(line);
  }

  s.Text5 = "CHIPS";
  for (size_t i = 1; i < loader.ChipList.size(); ++i) {
    const std::string& item = loader.ChipList[i];
    std::vector<std::string> fields;
    FastSplit(item, fields, ";");
    std::string line;
    if (fields.size() >= 3) {
      line = fields[1] + " (" + fields[0] + ") - " + fields[2];
    } else {
      line = item;
    }
    line = Replaced(Replaced(line, "#N", ""), "#C", "");
    s.Text5.append(kCrLf).append(line);
  }

  s.Text6 = "DIPSWITCHS";
  for (size_t i = 1; i < loader.DipSwitchList.size(); ++i) {
    s.Text6.append(kCrLf).append(
        Replaced(Replaced(Replaced(loader.DipSwitchList[i], "#V;", ""), "#D", ""), ";", " - "));
  }

  s.Text7 = "DISKS";
  static const std::vector<std::string_view> kDiskLabels = {
      "Md5: ", "Sha1: ", "Merge: ", "Region: ", "Index: ", "Status: "};
  for (size_t i = 1; i < loader.DiskList.size(); ++i) {
    AppendFields(s.Text7, loader.DiskList[i], kDiskLabels);
  }
  s.Text8 = "ROMS";
  static const std::vector<std::string_view> kRomLabels = {
      "Size: ", "CRC: ",   "Sha1: ",   "Region: ", "Offset: ",
      "Bios: ", "Merge: ", "Status: ", "Dispose: "};
  for (size_t i = 1; i < loader.RomList.size(); ++i) {
    AppendFields(s.Text8, loader.RomList[i], kRomLabels);
  }
  return s;
}

std::string GameDetailsJson(const GameDetails& details, const GameDetailsLoader& loader) {
  std::string out = "{";
  bool first = true;
  auto key = [&](std::string_view name) {
    if (!first) out.push_back(',');
    first = false;
    out.append("\n  \"").append(name).append("\": ");
  };
  for (const DetailField& field : GameDetailsFields()) {
    key(field.name);
    switch (field.kind) {
      case DetailFieldKind::Text:
        JsonString(out, details.*field.text);
        break;
      case DetailFieldKind::Flag:
        out.append(details.*field.flag ? "true" : "false");
        break;
      case DetailFieldKind::Index:
        out.append(std::to_string(details.*field.index));
        break;
    }
  }
  const std::pair<std::string_view, const DetailList*> lists[] = {
      {"RomList", &loader.RomList},
      {"DiskList", &loader.DiskList},
      {"BiosSetList", &loader.BiosSetList},
      {"ChipList", &loader.ChipList},
      {"DipSwitchList", &loader.DipSwitchList}};
  for (const auto& [name, list] : lists) {
    key(name);
    out.push_back('[');
    for (size_t i = 1; i < list->size(); ++i) {
      if (i > 1) out.push_back(',');
      out.append("\n    ");
      JsonString(out, (*list)[i]);
    }
    out.append(list->size() > 1 ? "\n  ]" : "]");
  }
  out.append("\n}");
  return out;
}

}  // namespace tessarin
