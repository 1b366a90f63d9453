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
#include "core/textutil.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "lists/listfile.h"
#include "sheet/gamedetails.h"
#include "sheet/textdisplay.h"

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

// The text of a field of kind Text; null for the other kinds.
const std::string* TextField(const GameDetails& d, int position) {
  switch (position) {
    case 0:
      return &d.RomName;
    case 1:
      return &d.Description;
    case 2:
      return &d.Year;
    case 3:
      return &d.CloneOf;
    case 4:
      return &d.RomOf;
    case 5:
      return &d.SampleOf;
    case 6:
      return &d.Manufacturer;
    case 7:
      return &d.Players;
    case 8:
      return &d.Genre;
    case 9:
      return &d.Category;
    case 10:
      return &d.VersionAdded;
    case 12:
      return &d.Bios;
    case 16:
      return &d.Screen;
    case 17:
      return &d.Orientation;
    case 18:
      return &d.Resolution;
    case 19:
      return &d.Refresh;
    case 20:
      return &d.SoundChannels;
    case 21:
      return &d.InputPlayers;
    case 22:
      return &d.Buttons;
    case 23:
      return &d.CoinSlots;
    case 24:
      return &d.ServiceButton;
    case 25:
      return &d.Control;
    case 26:
      return &d.TiltButton;
    case 27:
      return &d.DriverStatus;
    case 28:
      return &d.DriverColor;
    case 29:
      return &d.DriverSound;
    case 30:
      return &d.DriverPalettesize;
    case 37:
      return &d.Aspect;
    case 38:
      return &d.DriverEmulation;
    case 39:
      return &d.DriverGraphic;
    case 40:
      return &d.DriverCocktail;
    case 41:
      return &d.DriverProtection;
    case 42:
      return &d.DriverSavestate;
    case 44:
      return &d.Sample;
    default:
      return nullptr;
  }
}

bool FlagField(const GameDetails& d, int position) {
  switch (position) {
    case 11:
      return d.Mature;
    case 31:
      return d.GotIt;
    case 32:
      return d.CheatSupport;
    case 34:
      return d.HiscoreSupport;
    case 43:
      return d.Working;
    // Long texts count by their presence: with presence-only details they hold a marker.
    case 33:
      return !d.Command.empty();
    case 35:
      return !d.History.empty();
    case 36:
      return !d.Mameinfo.empty();
    default:
      return false;
  }
}

const DetailList* MultiField(const GameDetailsLoader& lists, int position) {
  switch (position) {
    case 13:
      return &lists.RomList;
    case 14:
      return &lists.ChipList;
    case 15:
      return &lists.DipSwitchList;
    case 45:
      return &lists.DiskList;
    case 46:
      return &lists.BiosSetList;
    default:
      return nullptr;
  }
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
  return std::string(FirstCharacter(stored));
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

void CollectListCells(const GameDetails& details, const GameDetailsLoader& lists,
                      const ListSelection& selected, std::vector<std::string_view>& cells) {
  cells.clear();
  for (int i = 0; i < kListFieldCount; ++i) {
    if (!selected[static_cast<size_t>(i)]) continue;
    switch (kFields[static_cast<size_t>(i)].kind) {
      case ListFieldKind::Text:
        cells.emplace_back(*TextField(details, i));
        break;
      case ListFieldKind::YesNo:
      case ListFieldKind::Present:
        cells.emplace_back(FlagField(details, i) ? "True" : "False");
        break;
      case ListFieldKind::Multi: {
        const DetailList& items = *MultiField(lists, i);
        for (size_t k = 1; k < items.size(); ++k) {
          const std::string_view item = items[k];
          size_t start = 0;
          for (;;) {
            const size_t semi = item.find(';', start);
            if (semi == std::string_view::npos) {
              cells.push_back(item.substr(start));
              break;
            }
            cells.push_back(item.substr(start, semi - start));
            start = semi + 1;
          }
        }
        break;
      }
    }
  }
}

ListRunResult BuildTextList(AppContext& ctx, Work& work, const TextListRequest& request) {
  ListRunResult result = ListRunResult::Failed;
  RunGuarded(ctx.log, kTrackBuildTextList, [&] {
    ListFile out;
    if (!out.Create(request.outputPath)) {
      throw Failure(75, "Path/File access error: can't create " + request.outputPath);
    }
    // Spreadsheets take a CSV file for UTF-8 only with the mark in front.
    if (request.format.csv) out.Write("\xEF\xBB\xBF");
    out.WriteLine(TextListHeader(request.selected, request.format));
    work.SetStatus(ctx.messages.Lng(140));
    work.ProgressValue = 0;

    GameDetailsLoader loader(ctx);
    std::vector<std::string_view> cells;
    std::string line;
    std::string name;
    bool cancelled = false;
    const auto writeGame = [&](const GameDetails& details) {
      CollectListCells(details, loader, request.selected, cells);
      FormatListLine(cells, request.format, line);
      out.WriteLine(line);
    };

    const std::string iniFile(TrimBlanks(request.iniFile));
    DataLineReader reader;
    const bool useIni = !iniFile.empty() && FileExists(iniFile);
    if (useIni && !reader.Open(iniFile)) {
      throw Failure(75, "Path/File access error: can't read " + iniFile);
    }
    if (!useIni) {
      const int count = ctx.store.GameCount();
      work.ProgressMax = count;
      for (int i = 1; i <= count; ++i) {
        work.ProgressValue = i;
        if (work.CancelRequested) {
          cancelled = true;
          break;
        }
        name.clear();
        writeGame(loader.LoadGameDetails(name, i, true));
      }
    } else {
      work.ProgressMax = reader.FileLength();
      std::string_view raw;
      while (reader.ReadLine(raw)) {
        work.ProgressValue += static_cast<long long>(raw.size());
        if (work.CancelRequested) {
          cancelled = true;
          break;
        }
        const std::string_view text = TrimBlanks(raw);
        if (text.empty() || text.front() == '[') continue;
        // The list dialog has always taken a name line's first eight characters.
        name.assign(TrimBlanks(text.substr(0, 8)));
        const GameDetails details = loader.LoadGameDetails(name, 0, true);
        if (TrimBlanks(details.Description).empty() || TrimBlanks(details.RomName).empty()) {
          continue;
        }
        writeGame(details);
      }
    }
    if (!out.Close()) {
      throw Failure(75, "Path/File access error: can't write " + request.outputPath);
    }
    result = cancelled ? ListRunResult::Cancelled : ListRunResult::Done;
  });
  return result;
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
  // last cell, and nothing else, even when the last cell itself ends in the separator. A
  // separator typed outside ASCII is one character of several bytes.
  if (!format.separator.empty() && line.size() >= format.separator.size() &&
      std::string_view(line).substr(line.size() - format.separator.size()) == format.separator) {
    line.resize(line.size() - format.separator.size());
  }
}

void AppendCsvCell(std::string& out, std::string_view cell, std::string_view separator,
                   bool quoteAll) {
  // As the windows show it: the bytes as UTF-8, then the entities the database keeps resolved.
  const std::string text = DecodeEntitiesForDisplay(DisplayUtf8(cell));
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

}  // namespace tessarin
