#include "lists/datexport.h"

#include <array>
#include <cctype>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/messages.h"
#include "core/textutil.h"
#include "core/work.h"
#include "lists/listfile.h"
#include "sheet/gamedetails.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"

namespace tessarin {

namespace {

constexpr int kTrackExportDatList = 6301;
constexpr int kTrackCreateDefaultDatMask = 6302;

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

void ReplaceIn(std::string& text, std::string_view find, std::string_view replacement) {
  if (!Contains(text, find)) return;
  text = FastReplace(text, find, replacement);
}

// ---- the build date of the version line ----

struct SimpleDate {
  int year = 1899;  // the zero date of the system the format comes from
  int month = 12;
  int day = 30;
};

int DaysInMonth(int year, int month) {
  static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month == 2 && ((year % 4 == 0 && year % 100 != 0) || year % 400 == 0)) return 29;
  return kDays[static_cast<size_t>(month - 1)];
}

int MonthFromName(std::string_view word) {
  static constexpr std::array<std::string_view, 12> kMonths = {
      "january", "february", "march",     "april",   "may",      "june",
      "july",    "august",   "september", "october", "november", "december"};
  if (word.size() < 3) return 0;
  const std::string lower = LowerCopy(word);
  for (size_t m = 0; m < kMonths.size(); ++m) {
    // "Feb", "Feb." and "February" all name February; "Febx" doesn't.
    std::string_view name = kMonths[m];
    std::string_view w = lower;
    if (!w.empty() && w.back() == '.') w.remove_suffix(1);
    if (w.size() <= name.size() && name.substr(0, w.size()) == w && w.size() >= 3) {
      return static_cast<int>(m) + 1;
    }
  }
  return 0;
}

bool AllDigits(std::string_view word) {
  if (word.empty() || word.size() > 4) return false;
  for (const char c : word) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

// Two-digit years as the date conversion of that system reads them: 00-29 in this century,
// 30-99 in the last.
int FullYear(std::string_view word, int value) {
  if (word.size() <= 2) return value < 30 ? 2000 + value : 1900 + value;
  return value;
}

bool ValidDate(int year, int month, int day) {
  return year >= 100 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
         day <= DaysInMonth(year, month);
}

// Reads the dates an emulator's version line holds: "Feb  5 2008", "5 Feb 2008",
// "February 5, 2008", "2008-02-05", "2008/2/5" and the month-first "2/5/2008". Anything else
// leaves the zero date.
SimpleDate ReadBuildDate(std::string_view text) {
  std::vector<std::string_view> words;
  size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && (text[i] == ' ' || text[i] == ',' || text[i] == '/' ||
                               text[i] == '-' || text[i] == '\t')) {
      ++i;
    }
    const size_t start = i;
    while (i < text.size() && text[i] != ' ' && text[i] != ',' && text[i] != '/' &&
           text[i] != '-' && text[i] != '\t') {
      ++i;
    }
    if (i > start) words.push_back(text.substr(start, i - start));
  }
  SimpleDate zero;
  if (words.size() != 3) return zero;
  int month = 0;
  int monthAt = -1;
  for (int w = 0; w < 3; ++w) {
    const int m = MonthFromName(words[static_cast<size_t>(w)]);
    if (m != 0) {
      month = m;
      monthAt = w;
    }
  }
  if (monthAt >= 0) {
    std::vector<std::string_view> numbers;
    for (int w = 0; w < 3; ++w) {
      if (w == monthAt) continue;
      if (!AllDigits(words[static_cast<size_t>(w)])) return zero;
      numbers.push_back(words[static_cast<size_t>(w)]);
    }
    const int first = std::stoi(std::string(numbers[0]));
    const int second = std::stoi(std::string(numbers[1]));
    int day = 0;
    int year = 0;
    if (numbers[0].size() >= 3 || first > 31) {
      year = FullYear(numbers[0], first);
      day = second;
    } else {
      day = first;
      year = FullYear(numbers[1], second);
    }
    if (!ValidDate(year, month, day)) return zero;
    return {year, month, day};
  }
  for (const std::string_view w : words) {
    if (!AllDigits(w)) return zero;
  }
  const int n0 = std::stoi(std::string(words[0]));
  const int n1 = std::stoi(std::string(words[1]));
  const int n2 = std::stoi(std::string(words[2]));
  SimpleDate date;
  if (words[0].size() >= 3) {
    date = {n0, n1, n2};
  } else {
    date = {FullYear(words[2], n2), n0, n1};
  }
  if (!ValidDate(date.year, date.month, date.day)) return zero;
  return date;
}

// The value of piece `k` of a ';'-joined item; empty when the item has fewer pieces.
std::string_view Piece(const std::vector<std::string_view>& pieces, size_t k) {
  return k < pieces.size() ? pieces[k] : std::string_view();
}

struct ItemFlag {
  std::string_view flag;     // "#rom_name"
  std::string_view keyword;  // "name "
  size_t piece;
};

constexpr std::array<ItemFlag, 6> kRomFlags = {{
    {"#rom_name", "name ", 0},
    {"#rom_merge", "merge ", 7},
    {"#rom_size", "size ", 1},
    {"#rom_crc", "crc ", 2},
    {"#rom_sha1", "sha1 ", 3},
    {"#rom_flags", "flags ", 8},
}};

constexpr std::array<ItemFlag, 4> kDiskFlags = {{
    {"#disk_name", "name ", 0},
    {"#disk_merge", "merge ", 3},
    {"#disk_sha1", "sha1 ", 2},
    {"#disk_flags", "flags ", 6},
}};

template <size_t N>
std::string FillItemLine(std::string_view maskLine, std::string_view item,
                         const std::array<ItemFlag, N>& flags) {
  std::vector<std::string_view> pieces;
  FastSplitViews(item, pieces, ';');
  std::string line(maskLine);
  for (const ItemFlag& f : flags) {
    if (!Contains(line, f.flag)) continue;
    const std::string_view value = Piece(pieces, f.piece);
    if (value.empty()) {
      // The flag goes with the blank behind it; at the very end of the line it stays.
      ReplaceIn(line, std::string(f.flag) + " ", "");
    } else {
      ReplaceIn(line, f.flag, std::string(f.keyword) + std::string(value));
    }
  }
  return line;
}

}  // namespace

DatMask ParseDatMask(std::string_view text) {
  DatMask mask;
  enum class Where { Comments, Head, Block } where = Where::Comments;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = start;
    while (end < text.size() && text[end] != '\r' && text[end] != '\n') ++end;
    const std::string_view line = text.substr(start, end - start);
    if (end < text.size() && text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n') {
      ++end;
    }
    start = end + 1;
    switch (where) {
      case Where::Comments:
        if (UpperCopy(TrimBlanks(line)).starts_with("#START_HEAD")) {
          mask.hasStart = true;
          where = Where::Head;
        }
        break;
      case Where::Head:
        if (UpperCopy(TrimBlanks(line)).starts_with("#END_HEAD")) {
          where = Where::Block;
        } else {
          mask.head.emplace_back(line);
        }
        break;
      case Where::Block: {
        const int index = static_cast<int>(mask.gameLines.size());
        if (Contains(line, "rom(") || Contains(line, "rom (")) mask.romLine = index;
        if (Contains(line, "disk(") || Contains(line, "disk (")) mask.diskLine = index;
        mask.gameLines.emplace_back(line);
        break;
      }
    }
  }
  return mask;
}

DatMaskVersions DatMaskVersionsOf(std::string_view v) {
  DatMaskVersions out;
  const size_t open = v.find('(');
  out.a =
      open == std::string_view::npos ? std::string(v) : std::string(TrimBlanks(v.substr(0, open)));

  const size_t anyClose = v.find(')');
  if (open == std::string_view::npos || anyClose == std::string_view::npos) {
    out.b = "20080205";
  } else {
    const size_t close = v.find(')', open + 1);
    const std::string_view inside =
        close == std::string_view::npos ? v.substr(open + 1) : v.substr(open + 1, close - open - 1);
    const SimpleDate date = ReadBuildDate(TrimBlanks(inside));
    out.b = std::to_string(date.year) + std::to_string(date.month) + std::to_string(date.day);
  }

  if (v.size() >= 11) {
    std::string_view rest = v.substr(10);
    const size_t close = rest.find(')');
    if (close != std::string_view::npos) rest = rest.substr(0, close + 1);
    out.c = std::string(rest);
  }
  return out;
}

std::string DefaultDatMask(std::string_view databaseVersion) {
  const DatMaskVersions v = DatMaskVersionsOf(databaseVersion);
  const std::string lines[] = {
      "; This is the file used by Tessarin to create .dat files.",
      "; Put between the flags #START_HEAD and #END_HEAD the lines you want to be placed",
      "; at the beginning of the file.",
      "; Then, the following lines are used for the games' information.",
      "; You can use the following flags :",
      ";   #name",
      ";   #description",
      ";   #year",
      ";   #manufacturer",
      ";   #sourcefile",
      ";   #rom_name",
      ";   #rom_size",
      ";   #rom_crc",
      ";   #rom_sha1",
      ";   #rom_merge",
      ";   #rom_flags",
      ";   #disk_name",
      ";   #disk_merge",
      ";   #disk_sha1",
      ";   #disk_flags",
      ";   #cloneof",
      ";   #romof",
      ";   #sample",
      ";",
      "#START_HEAD",
      "clrmamepro (",
      "\tname MAME",
      "\tDescription \"" + v.a + "\"",
      "\tCategory \"Multi Game Arcade Emulator\"",
      "\tversion " + v.b,
      "\tauthor \"Tessarin, " + std::string(kDatMaskAuthorAddress) + "\"",
      ")",
      "",
      "emulator (",
      "\tname \"mame\"",
      "\tversion \"" + v.c + "\"",
      "\tdebug \"no\"",
      ")",
      "",
      "#END_HEAD",
      "game (",
      "\t#name",
      "\t#description",
      "\t#year",
      "\t#manufacturer",
      "\t#sourcefile",
      "\t#cloneof",
      "\t#romof",
      "\trom ( #rom_name #rom_merge #rom_size #rom_crc #rom_sha1 #rom_flags )",
      "\tdisk ( #disk_name #disk_merge #disk_sha1 #disk_flags )",
      "\t#sampleof",
      "\t#sample",
      ")",
  };
  std::string text;
  for (const std::string& line : lines) {
    text += line;
    text += "\r\n";
  }
  return text;
}

bool CreateDefaultDatMask(AppContext& ctx) {
  bool written = false;
  RunGuarded(ctx.log, kTrackCreateDefaultDatMask, [&] {
    const std::string path = AddSlash(ctx.AppFolder()) + std::string(kDatMaskName);
    written = WriteFileAtomically(path, DefaultDatMask(ctx.store.DatabaseVersion));
    if (!written) throw Failure(75, "Path/File access error: can't write " + path);
  });
  return written;
}

bool FillDatGameLine(std::string_view maskLine, const DatGameValues& game, std::string& line) {
  line.assign(maskLine);
  if (Contains(line, "#name")) ReplaceIn(line, "#name", "name " + std::string(game.name));
  if (UpperCopy(game.genre) == "BIOS") {
    ReplaceIn(line, "game (", "resource (");
    ReplaceIn(line, "game(", "resource(");
  }
  if (Contains(line, "#description")) {
    ReplaceIn(line, "#description", "description \"" + std::string(game.description) + "\"");
  }
  // A flag with an empty value stays as it is.
  const auto fill = [&line](std::string_view flag, std::string_view value, std::string_view before,
                            std::string_view after) {
    if (value.empty() || !Contains(line, flag)) return;
    ReplaceIn(line, flag, std::string(before) + std::string(value) + std::string(after));
  };
  fill("#year", game.year, "year ", "");
  fill("#manufacturer", game.manufacturer, "manufacturer \"", "\"");
  fill("#sourcefile", game.sourcefile, "sourcefile ", "");
  fill("#cloneof", game.cloneof, "cloneof ", "");
  fill("#romof", game.romof, "romof ", "");
  // The sample of-flag goes first, so that an empty one is met by the sample flag and keeps
  // "of" behind the sample's name.
  fill("#sampleof", game.sampleof, "", "");
  fill("#sample", game.sample, "", "");
  if (!Contains(line, "#")) return true;
  // Something was filled: the line is written with what it has.
  return line != maskLine;
}

std::string FillDatRomLine(std::string_view maskLine, std::string_view item) {
  return FillItemLine(maskLine, item, kRomFlags);
}

std::string FillDatDiskLine(std::string_view maskLine, std::string_view item) {
  return FillItemLine(maskLine, item, kDiskFlags);
}

void AppendDatGame(std::string& out, const DatMask& mask, const DatGameValues& game) {
  std::string line;
  for (int i = 0; i < static_cast<int>(mask.gameLines.size()); ++i) {
    const std::string& maskLine = mask.gameLines[static_cast<size_t>(i)];
    if (i == mask.romLine) {
      if (!game.roms) continue;
      for (size_t r = 1; r < game.roms->size(); ++r) {
        out += FillDatRomLine(maskLine, (*game.roms)[r]);
        out += "\r\n";
      }
    } else if (i == mask.diskLine) {
      if (!game.disks) continue;
      for (size_t d = 1; d < game.disks->size(); ++d) {
        out += FillDatDiskLine(maskLine, (*game.disks)[d]);
        out += "\r\n";
      }
    } else if (FillDatGameLine(maskLine, game, line)) {
      out += line;
      out += "\r\n";
    }
  }
}

bool PrepareDatMask(AppContext& ctx, DatMask& mask) {
  mask = DatMask();
  const std::string path = AddSlash(ctx.AppFolder()) + std::string(kDatMaskName);
  if (!FileExists(path)) CreateDefaultDatMask(ctx);
  std::string text;
  if (!FileExists(path) || !ReadWholeFile(path, text)) return false;
  mask = ParseDatMask(text);
  return mask.hasStart;
}

DatExportResult ExportDatList(AppContext& ctx, Work& work, const std::string& iniFile,
                              const std::string& outputPath) {
  DatMask mask;
  if (!PrepareDatMask(ctx, mask)) return DatExportResult::NoMask;
  return ExportDatList(ctx, work, mask, iniFile, outputPath);
}

DatExportResult ExportDatList(AppContext& ctx, Work& work, const DatMask& mask,
                              const std::string& iniFile, const std::string& outputPath) {
  DatExportResult result = DatExportResult::Failed;
  RunGuarded(ctx.log, kTrackExportDatList, [&] {
    work.SetStatus(ctx.messages.Lng(140));
    work.ProgressValue = 0;

    // The games: those of the INI file, looked up whole, in its order; else all of them.
    std::vector<int> games;
    const std::string ini(TrimBlanks(iniFile));
    if (!ini.empty() && FileExists(ini)) {
      DataLineReader reader;
      if (!reader.Open(ini)) throw Failure(75, "Path/File access error: can't read " + ini);
      std::string_view raw;
      while (reader.ReadLine(raw)) {
        const std::string_view name = TrimBlanks(raw);
        if (name.empty() || name.front() == '[') continue;
        const int index = ctx.store.FindGame(name);
        if (index > 0) games.push_back(index);
      }
    } else {
      const int count = ctx.store.GameCount();
      games.reserve(static_cast<size_t>(count > 0 ? count : 0));
      for (int i = 1; i <= count; ++i) games.push_back(i);
    }
    if (work.CancelRequested) {
      result = DatExportResult::Cancelled;
      return;
    }

    work.ProgressMax = static_cast<long long>(games.size());
    ListFile out;
    if (!out.Create(outputPath)) {
      throw Failure(75, "Path/File access error: can't create " + outputPath);
    }
    std::string head;
    for (const std::string& line : mask.head) {
      head += line;
      head += "\r\n";
    }
    // The head ends in a line end and gets another, so an empty line follows it.
    out.WriteLine(head);

    GameDetailsLoader loader(ctx);
    std::string name;
    std::string block;
    bool cancelled = false;
    for (size_t k = 0; k < games.size(); ++k) {
      work.ProgressValue = static_cast<long long>(k + 1);
      if (work.CancelRequested) {
        cancelled = true;
        break;
      }
      name.clear();
      const GameDetails d = loader.LoadGameDetails(name, games[k], true);
      DatGameValues values;
      values.name = d.RomName;
      values.description = d.Description;
      values.year = d.Year;
      values.manufacturer = d.Manufacturer;
      values.sourcefile = d.Driver;
      values.cloneof = d.CloneOf;
      values.romof = d.RomOf;
      values.sampleof = d.SampleOf;
      values.sample = d.Sample;
      values.genre = d.Genre;
      values.roms = &loader.RomList;
      values.disks = &loader.DiskList;
      block.clear();
      AppendDatGame(block, mask, values);
      out.Write(block);
    }
    if (!out.Close()) throw Failure(75, "Path/File access error: can't write " + outputPath);
    result = cancelled ? DatExportResult::Cancelled : DatExportResult::Done;
  });
  return result;
}

std::string DatFileFilter(const Messages& messages) {
  return messages.Lng(139) + " (dat)|*.dat|" + messages.Lng(33) + "|*.*|";
}

}  // namespace tessarin
