#include "sheet/sheettext.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/context.h"
#include "core/messages.h"
#include "core/textutil.h"
#include "sheet/textdisplay.h"
#include "store/faststrings.h"

namespace tessarin {

namespace {

constexpr std::string_view kCrLf = "\r\n";

constexpr std::string_view kDiskLabels[] = {
    "Md5: ", "Sha1: ", "Merge: ", "Region: ", "Index: ", "Status: "};
constexpr std::string_view kRomLabels[] = {"Size: ", "CRC: ",   "Sha1: ",   "Region: ", "Offset: ",
                                           "Bios: ", "Merge: ", "Status: ", "Dispose: "};

// Writes values and messages into the boxes, as bytes or ready to show.
class Writer {
 public:
  Writer(const Messages& messages, SheetTextMode mode) : m_messages(messages), m_mode(mode) {}

  std::string Value(std::string_view bytes) const {
    return m_mode == SheetTextMode::Display ? DisplayUtf8(bytes) : std::string(bytes);
  }
  // A description or a manufacturer, whose XML entities a display decodes.
  std::string Named(std::string_view bytes) const {
    return m_mode == SheetTextMode::Display ? DisplayUtf8(DecodeEntitiesForDisplay(bytes))
                                            : std::string(bytes);
  }
  std::string Lng(int number) const { return Value(m_messages.Lng(number)); }
  static std::string Flag(bool flag) { return flag ? "True" : "False"; }

 private:
  const Messages& m_messages;
  SheetTextMode m_mode;
};

// The number a text begins with, as a display of "the number in" a field reads it.
double LeadingValue(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

std::string BiosSets(const DetailList& list, const Writer& w) {
  std::string text = "BIOS SET";
  for (size_t i = 1; i < list.size(); ++i) {
    const std::string& item = list[i];
    text += kCrLf;
    const size_t semicolon = item.find(';');
    if (semicolon == std::string::npos) {
      text += w.Value(item);
    } else {
      text += w.Value(item.substr(0, semicolon)) + ": " +
              w.Value(FastReplace(item.substr(semicolon + 1), ";", " - "));
    }
  }
  text = FastReplace(text, "#D", "");
  return FastReplace(text, "#F", "");
}

std::string Chips(const DetailList& list, const Writer& w) {
  std::string text = "CHIPS";
  std::vector<std::string> fields;
  for (size_t i = 1; i < list.size(); ++i) {
    text += kCrLf;
    FastSplit(list[i], fields, ";");
    // An item of fewer than three fields is shown as it stands.
    if (fields.size() < 3) {
      text += w.Value(list[i]);
    } else {
      text += w.Value(fields[1]) + " (" + w.Value(fields[0]) + ") - " + w.Value(fields[2]);
    }
  }
  text = FastReplace(text, "#N", "");
  return FastReplace(text, "#C", "");
}

std::string DipSwitches(const DetailList& list, const Writer& w) {
  std::string text = "DIPSWITCHS";
  for (size_t i = 1; i < list.size(); ++i) {
    std::string line = FastReplace(list[i], "#V;", "");
    line = FastReplace(line, "#D", "");
    text += kCrLf;
    text += w.Value(FastReplace(line, ";", " - "));
  }
  return text;
}

template <size_t N>
std::string NamedItems(std::string_view title, const DetailList& list,
                       const std::string_view (&labels)[N], const Writer& w) {
  std::string text(title);
  std::vector<std::string> fields;
  for (size_t i = 1; i < list.size(); ++i) {
    FastSplit(list[i], fields, ";");
    if (fields.empty() || fields[0].empty()) continue;
    text += kCrLf;
    text += kCrLf;
    text += "Name: " + w.Value(fields[0]);
    for (size_t f = 1; f < fields.size() && f <= N; ++f) {
      if (fields[f].empty() || fields[f][0] == '#') continue;
      text += kCrLf;
      text += std::string(labels[f - 1]) + w.Value(fields[f]);
    }
  }
  return text;
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

SheetDetailLists ListsOf(const GameDetailsLoader& loader) {
  return {loader.RomList, loader.DiskList, loader.BiosSetList, loader.ChipList,
          loader.DipSwitchList};
}

SheetText LayOutSheetText(const GameDetails& d, const SheetDetailLists& lists,
                          const Messages& messages, std::string_view clonesList,
                          std::string_view parentMameinfo, SheetTextMode mode) {
  const Writer w(messages, mode);
  const auto flag = &Writer::Flag;
  const std::string crlf(kCrLf);
  SheetText t;
  t.Label1 = w.Named(d.Description);
  t.CurrentTitle = d.Description;
  t.CurrentRom = d.RomName;
  t.CurrentClone = d.CloneOf;
  t.CurrentParent = d.RomOf;

  std::string& t1 = t.Text1;
  t1 = w.Lng(184) + w.Value(d.RomName) + crlf + crlf;
  t1 += w.Lng(185) + flag(d.HiscoreSupport) + crlf;
  t1 += w.Lng(186) + flag(d.CheatSupport) + crlf;
  t1 += w.Lng(187) + flag(!d.Command.empty());
  t1 += crlf + w.Lng(189) + w.Value(d.DriverSavestate) + crlf;
  t1 += crlf + w.Lng(190) + w.Value(d.Sample);
  t1 += crlf + w.Lng(191) + w.Value(d.Driver);
  t1 += crlf + w.Lng(192) + w.Value(d.DriverStatus);
  t1 += crlf + w.Lng(193) + w.Value(d.DriverEmulation);
  t1 += crlf + w.Lng(194) + w.Value(d.DriverColor);
  t1 += crlf + w.Lng(195) + w.Value(d.DriverSound);
  t1 += crlf + w.Lng(196) + w.Value(d.DriverGraphic);
  t1 += crlf + w.Lng(197) + w.Value(d.DriverCocktail) + crlf;
  t1 += crlf + w.Lng(198) + w.Value(d.Screen);
  t1 += crlf + w.Lng(199) + w.Value(d.Orientation);
  if (!clonesList.empty()) t1 += crlf + w.Lng(200) + w.Value(clonesList);
  if (d.CloneOf.empty()) {
    t1 += crlf + w.Lng(202);
  } else {
    t1 += crlf + w.Lng(201) + w.Value(d.CloneOf);
  }

  std::string& t2 = t.Text2;
  t2 = w.Lng(203) + w.Named(d.Manufacturer);
  t2 += crlf + w.Lng(204) + w.Value(d.Year);
  t2 += crlf + w.Lng(205) + w.Value(d.VersionAdded) + crlf;
  t2 += crlf + w.Lng(206) + w.Value(d.Genre);
  t2 += crlf + w.Lng(207) + w.Value(d.Category) + crlf;
  t2 += crlf + w.Lng(208) + flag(d.Working);
  t2 += crlf + w.Lng(209) + flag(d.CorrectColors);
  t2 += crlf + w.Lng(210) + flag(d.CorrectSounds) + crlf;
  t2 += crlf + w.Lng(211) + w.Value(d.SoundChannels);
  t2 += crlf + w.Lng(212) + w.Value(LeadingValue(d.Colors) == 0 ? d.DriverPalettesize : d.Colors);
  t2 += crlf + w.Lng(214) + w.Value(d.Resolution);
  t2 += crlf + w.Lng(215) + w.Value(d.Aspect);
  t2 += crlf + w.Lng(216) + w.Value(d.Refresh) + "Hz" + crlf;
  t2 += crlf + w.Lng(217) + w.Value(d.Control);
  t2 += crlf + w.Lng(218) + w.Value(d.Buttons);
  t2 += crlf + w.Lng(219) + w.Value(d.InputPlayers);
  t2 += crlf + w.Lng(220) + w.Value(d.CoinSlots);
  t2 += crlf + w.Lng(221) + w.Value(d.ServiceButton);
  t2 += crlf + w.Lng(222) + w.Value(d.TiltButton);

  // The notes written first are replaced by the history and come back at the end, under their
  // own title: the stages stay in this order.
  std::string& t3 = t.Text3;
  t3 = w.Lng(223);
  t3 += crlf + w.Value(TrimBlanks(d.PersonalNotes)) + crlf;
  t3 = "- HISTORY -" + crlf + w.Value(d.History);
  t3 += crlf + "- MAMEINFO -";
  if (!d.Mameinfo.empty()) {
    t3 += crlf + w.Value(d.Mameinfo);
  } else if (!parentMameinfo.empty()) {
    t3 += crlf + w.Value(parentMameinfo);
  }
  if (!d.PersonalNotes.empty()) {
    t3 += crlf + crlf + "- NOTES -" + crlf + w.Value(d.PersonalNotes);
  }

  t.Text4 = BiosSets(lists.BiosSetList, w);
  t.Text5 = Chips(lists.ChipList, w);
  t.Text6 = DipSwitches(lists.DipSwitchList, w);
  t.Text7 = NamedItems("DISKS", lists.DiskList, kDiskLabels, w);
  t.Text8 = NamedItems("ROMS", lists.RomList, kRomLabels, w);
  return t;
}

SheetText LayOutSheetText(const GameDetails& details, GameDetailsLoader& loader,
                          const Messages& messages, SheetTextMode mode) {
  // A game that isn't in the database has empty values only: the empty name would otherwise
  // begin every parent field and list the whole database as its clones.
  const std::string clones =
      details.RomName.empty() ? std::string() : loader.BuildClonesList(details.RomName, false);
  // Only a game without a Mameinfo entry of its own looks at its parent's.
  const std::string parentMameinfo =
      details.Mameinfo.empty() ? loader.ReadMameinfoEntry(details.CloneOf) : std::string();
  return LayOutSheetText(details, ListsOf(loader), messages, clones, parentMameinfo, mode);
}

SheetText ShowGameText(AppContext& ctx, GameDetailsLoader& loader, const std::string& rom,
                       SheetTextMode mode) {
  if (ctx.store.GameCount() == 0) {
    SheetText empty;
    empty.CurrentRom = rom;
    return empty;
  }
  std::string name = rom;
  const GameDetails details = loader.LoadGameDetails(name, 0, false);
  return LayOutSheetText(details, loader, ctx.messages, mode);
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
