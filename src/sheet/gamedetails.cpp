#include "sheet/gamedetails.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <system_error>
#include <utility>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "store/faststrings.h"
#include "store/indexfile.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

// The list templates: the marks an item carries behind its first value until filled.
constexpr std::string_view kRomMarks[] = {"#Z", "#C", "#H", "#R", "#O", "#B", "#M", "#S", "#D"};
constexpr std::string_view kDiskMarks[] = {"#5", "#H", "#M", "#R", "#k", "#S"};
constexpr std::string_view kBiosSetMarks[] = {"#D", "#F"};
constexpr std::string_view kChipMarks[] = {"#N", "#C"};
constexpr std::string_view kDipSwitchMarks[] = {"#V", "#D"};
constexpr std::string_view kRomTemplate = ";#Z;#C;#H;#R;#O;#B;#M;#S;#D";
constexpr std::string_view kDiskTemplate = ";#5;#H;#M;#R;#k;#S";
constexpr std::string_view kBiosSetTemplate = ";#D;#F";
constexpr std::string_view kChipTemplate = ";#N;#C";
constexpr std::string_view kDipSwitchTemplate = ";#V;#D";

// The text a reader sees behind a tag. A record without the tag is read from its second
// character on, as a search position of 0 always gave.
std::string_view BehindTag(std::string_view record, char tag) {
  const size_t position = FieldPosition(record, tag);
  if (position == std::string_view::npos) return record.size() > 1 ? record.substr(1) : "";
  return record.substr(position + 2);
}

std::string_view UpToSemicolon(std::string_view text) { return text.substr(0, text.find(';')); }

// A table's entry; an index outside the table reads as the empty entry 0.
const std::string& TableText(const CodeTable& table, int index) {
  static const std::string empty;
  if (index < 0 || static_cast<size_t>(index) >= table.size()) return empty;
  return table[static_cast<size_t>(index)];
}

// The number a text begins with (blanks, a sign, digits), 0 when there is none; saturates at
// the 32-bit limits.
long long LeadingNumber(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && text[i] == ' ') ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  long long value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    value = value * 10 + (text[i] - '0');
    if (value > std::numeric_limits<std::int32_t>::max()) {
      value = std::numeric_limits<std::int32_t>::max();
      break;
    }
  }
  return negative ? -value : value;
}

std::int32_t LeadingInt(std::string_view text) {
  return static_cast<std::int32_t>(LeadingNumber(text));
}

// "start,second" of a data file field.
struct Range {
  long long start = 0;
  long long second = 0;
};
Range SplitRange(std::string_view field) {
  Range range;
  const size_t comma = field.find(',');
  range.start = LeadingNumber(field.substr(0, comma));
  if (comma != std::string_view::npos) range.second = LeadingNumber(field.substr(comma + 1));
  return range;
}

// The first `needle` in `text` from `from` on; npos when there is none. A byte loop behind
// memchr: the needles here are a few bytes long and the texts are searched thousands of times
// a second, where a library call per candidate costs more than the comparison.
size_t FindText(std::string_view text, std::string_view needle, size_t from = 0) {
  const size_t n = text.size();
  const size_t m = needle.size();
  if (m == 0 || m > n) return std::string_view::npos;
  const char* base = text.data();
  while (from + m <= n) {
    const void* p = std::memchr(base + from, needle[0], n - m + 1 - from);
    if (p == nullptr) return std::string_view::npos;
    const size_t at = static_cast<size_t>(static_cast<const char*>(p) - base);
    size_t k = 1;
    while (k < m && base[at + k] == needle[k]) ++k;
    if (k == m) return at;
    from = at + 1;
  }
  return std::string_view::npos;
}

// StartsWith as a byte loop, for the per-piece tests of the XML pass.
bool HasPrefix(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    if (text[i] != prefix[i]) return false;
  }
  return true;
}

// Every occurrence of `find` in `text` becomes `replacement`, left to right, scanning on behind
// each replaced text. Nothing is copied when `find` isn't there.
void ReplaceAll(std::string& text, std::string_view find, std::string_view replacement) {
  if (find.empty()) return;
  size_t hit = FindText(text, find);
  if (hit == std::string::npos) return;
  if (replacement.size() <= find.size()) {
    // Shrinking or equal: compact in place.
    size_t write = hit;
    size_t read = hit;
    while (hit != std::string::npos) {
      if (write != read) std::memmove(&text[write], &text[read], hit - read);
      write += hit - read;
      std::memcpy(&text[write], replacement.data(), replacement.size());
      write += replacement.size();
      read = hit + find.size();
      hit = FindText(text, find, read);
    }
    const size_t rest = text.size() - read;
    if (write != read) std::memmove(&text[write], &text[read], rest);
    text.resize(write + rest);
    return;
  }
  // Growing: in place, going on behind each replaced text (a fill finds its mark once).
  while (hit != std::string::npos) {
    text.replace(hit, find.size(), replacement);
    hit = FindText(text, find, hit + replacement.size());
  }
}

// The first place from `from` on where byte `a` is directly followed by byte `b`.
size_t FindPair(std::string_view text, char a, char b, size_t from) {
  const char* base = text.data();
  const size_t n = text.size();
  while (from + 1 < n) {
    const void* p = std::memchr(base + from, a, n - 1 - from);
    if (p == nullptr) return std::string_view::npos;
    const size_t at = static_cast<size_t>(static_cast<const char*>(p) - base);
    if (base[at + 1] == b) return at;
    from = at + 1;
  }
  return std::string_view::npos;
}

// A list item is born as its first value followed by the template of marks.
void OpenItem(DetailList& list, std::string_view value, std::string_view marks) {
  std::string item;
  // Room for the values that will take the marks' places (a rom's sha1 is 40 bytes).
  item.reserve(value.size() + marks.size() + 96);
  item.append(value);
  item.append(marks);
  list.push_back(std::move(item));
}

// A fill replaces its mark in the item at the list's upper bound, so the first value wins.
void FillMark(DetailList& list, std::string_view mark, std::string_view value) {
  ReplaceAll(list.back(), mark, value);
}

template <size_t N>
void CleanList(DetailList& list, const std::string_view (&marks)[N]) {
  for (size_t i = 1; i < list.size(); ++i) {
    std::string& item = list[i];
    if (item.find('#') == std::string::npos) continue;
    for (const std::string_view mark : marks) ReplaceAll(item, mark, "");
  }
}

std::string Without(std::string_view text, std::string_view characters) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    if (characters.find(c) == std::string_view::npos) out.push_back(c);
  }
  return out;
}

// Reads `length` bytes of a file from the 1-based position `position`, as far as the file
// goes. Position 0 (or below) reads from the file's start, the bytes before it being absent.
bool ReadBlock(const std::string& path, long long position, long long length, std::string& out) {
  out.clear();
  std::ifstream file(FsPath(path), std::ios::binary);
  if (!file) return false;
  if (length <= 0) return true;
  long long begin = position - 1;
  long long end = begin + length;
  if (begin < 0) begin = 0;
  file.seekg(0, std::ios::end);
  const long long size = static_cast<long long>(file.tellg());
  if (end > size) end = size;
  if (end <= begin) return true;
  out.resize(static_cast<size_t>(end - begin));
  file.seekg(begin);
  file.read(out.data(), static_cast<std::streamsize>(out.size()));
  out.resize(static_cast<size_t>(file.gcount()));
  return true;
}

// Bytes of the line end that stands right in front of `position` in `text`: CR LF 2, LF 1,
// CR 1. Where no line end stands there, the two characters a CR LF file has.
size_t LineEndBefore(std::string_view text, size_t position) {
  if (position >= 1 && text[position - 1] == '\n') {
    return position >= 2 && text[position - 2] == '\r' ? 2 : 1;
  }
  if (position >= 1 && text[position - 1] == '\r') return 1;
  return 2;
}

// Bytes of the line end that begins at `position`: CR LF 2, LF or CR 1, none 0.
size_t LineEndAt(std::string_view text, size_t position) {
  if (position < text.size() && text[position] == '\r') {
    return position + 1 < text.size() && text[position + 1] == '\n' ? 2 : 1;
  }
  if (position < text.size() && text[position] == '\n') return 1;
  return 0;
}

// The History and Mameinfo cut: the text before the line end in front of "$end" at `position`.
std::string CutBeforeEnd(std::string_view text, size_t position) {
  const size_t drop = LineEndBefore(text, position);
  if (position < drop) return {};
  return std::string(text.substr(0, position - drop));
}

// Mameinfo's text from a read block: "MAME v" and what follows "$mame" and its line end; the
// text before the line end in front of the last "$end".
std::string TrimMameinfo(std::string text) {
  const size_t mame = text.find("$mame");
  if (mame != std::string::npos) {
    const size_t lineEnd = LineEndAt(text, mame + 5);
    // Without a line end behind it the seven characters of "$mame" and CR LF are skipped.
    const size_t skip = lineEnd == 0 ? 7 : 5 + lineEnd;
    text = "MAME v" + (mame + skip < text.size() ? text.substr(mame + skip) : std::string());
  }
  const size_t end = text.rfind("$end");
  if (end != std::string::npos) text = CutBeforeEnd(text, end);
  return text;
}

// Command's text: up to and including the last "$end".
std::string TrimCommand(std::string text) {
  const size_t end = text.rfind("$end");
  if (end != std::string::npos) text.resize(end + 4);
  return text;
}

struct FileStamp {
  std::string path;
  std::uintmax_t size = 0;
  fs::file_time_type time{};
  bool operator==(const FileStamp&) const = default;
};

// A time stamp that is some seconds old: a change made after it was read gets a later stamp
// even on file systems that stamp coarsely, so a cache keyed on it can be trusted. A younger
// stamp may be shared by a change still to come, and a cache keyed on it is used once only.
bool Settled(fs::file_time_type time) {
  return time < fs::file_time_type::clock::now() - std::chrono::seconds(2);
}

bool StampOf(const std::string& path, FileStamp& stamp) {
  std::error_code ec;
  const fs::path p = FsPath(path);
  stamp.path = path;
  stamp.size = fs::file_size(p, ec);
  if (ec) return false;
  stamp.time = fs::last_write_time(p, ec);
  return !ec;
}

}  // namespace

// ---- the field table ----

const std::array<DetailField, kGameDetailsFieldCount>& GameDetailsFields() {
  using K = DetailFieldKind;
  using G = GameDetails;
  static const std::array<DetailField, kGameDetailsFieldCount> fields = {{
      {"RomName", K::Text, &G::RomName},
      {"Description", K::Text, &G::Description},
      {"Year", K::Text, &G::Year},
      {"Manufacturer", K::Text, &G::Manufacturer},
      {"CloneOf", K::Text, &G::CloneOf},
      {"SampleOf", K::Text, &G::SampleOf},
      {"RomOf", K::Text, &G::RomOf},
      {"Sample", K::Text, &G::Sample},
      {"Working", K::Flag, nullptr, &G::Working},
      {"CorrectColors", K::Flag, nullptr, &G::CorrectColors},
      {"CorrectSounds", K::Flag, nullptr, &G::CorrectSounds},
      {"SoundChannels", K::Text, &G::SoundChannels},
      {"Genre", K::Text, &G::Genre},
      {"Category", K::Text, &G::Category},
      {"VersionAdded", K::Text, &G::VersionAdded},
      {"History", K::Text, &G::History},
      {"Screen", K::Text, &G::Screen},
      {"Orientation", K::Text, &G::Orientation},
      {"Aspect", K::Text, &G::Aspect},
      {"Resolution", K::Text, &G::Resolution},
      {"Players", K::Text, &G::Players},
      {"Mature", K::Flag, nullptr, &G::Mature},
      {"GotIt", K::Flag, nullptr, &G::GotIt},
      {"CheatSupport", K::Flag, nullptr, &G::CheatSupport},
      {"HiscoreSupport", K::Flag, nullptr, &G::HiscoreSupport},
      {"PersonalNotes", K::Text, &G::PersonalNotes},
      {"Mameinfo", K::Text, &G::Mameinfo},
      {"Driver", K::Text, &G::Driver},
      {"Bios", K::Text, &G::Bios},
      {"Control", K::Text, &G::Control},
      {"Refresh", K::Text, &G::Refresh},
      {"Colors", K::Text, &G::Colors},
      {"InputPlayers", K::Text, &G::InputPlayers},
      {"CoinSlots", K::Text, &G::CoinSlots},
      {"Buttons", K::Text, &G::Buttons},
      {"ServiceButton", K::Text, &G::ServiceButton},
      {"TiltButton", K::Text, &G::TiltButton},
      {"DriverStatus", K::Text, &G::DriverStatus},
      {"DriverEmulation", K::Text, &G::DriverEmulation},
      {"DriverColor", K::Text, &G::DriverColor},
      {"DriverSound", K::Text, &G::DriverSound},
      {"DriverGraphic", K::Text, &G::DriverGraphic},
      {"DriverCocktail", K::Text, &G::DriverCocktail},
      {"DriverProtection", K::Text, &G::DriverProtection},
      {"DriverSavestate", K::Text, &G::DriverSavestate},
      {"DriverPalettesize", K::Text, &G::DriverPalettesize},
      {"Command", K::Text, &G::Command},
      {"CategoryIndex", K::Index, nullptr, nullptr, &G::CategoryIndex},
      {"GenreIndex", K::Index, nullptr, nullptr, &G::GenreIndex},
      {"ManufacturerIndex", K::Index, nullptr, nullptr, &G::ManufacturerIndex},
      {"VerAddedIndex", K::Index, nullptr, nullptr, &G::VerAddedIndex},
      {"YearIndex", K::Index, nullptr, nullptr, &G::YearIndex},
      {"GameIndex", K::Index, nullptr, nullptr, &G::GameIndex},
  }};
  return fields;
}

// ---- small routines ----

void ParseTagAttributes(std::string_view tag, bool continuation, TagAttributes& attributes) {
  std::string_view mark = continuation ? "" : "*";
  const size_t blank = tag.find(' ');
  if (blank == std::string_view::npos) return;
  const std::string_view element = tag.substr(0, blank);
  std::string_view rest = tag.substr(blank + 1);
  while (!rest.empty()) {
    const size_t equal = rest.find('=');
    if (equal == std::string_view::npos) break;
    const std::string_view key = TrimBlanks(rest.substr(0, equal));
    const std::string_view behind = rest.substr(equal + 1);
    std::string_view value = TrimBlanks(behind);
    if (!value.empty()) {
      if (value.front() == '"') value.remove_prefix(1);
      value = value.substr(0, value.find('"'));
    }
    const size_t slot = static_cast<size_t>(++attributes.AttrCount);
    if (attributes.AttrKeys.size() <= slot) {
      attributes.AttrKeys.resize(slot + 1);
      attributes.AttrValues.resize(slot + 1);
    }
    std::string& storedKey = attributes.AttrKeys[slot];
    storedKey.assign(mark);
    storedKey.append(element);
    storedKey.push_back('_');
    storedKey.append(key);
    attributes.AttrValues[slot].assign(value);
    mark = "";
    const size_t next = behind.find("\" ");
    if (next == std::string_view::npos) break;
    rest = behind.substr(next + 2);
  }
}

void ReduceRatio(std::int32_t& width, std::int32_t& height) {
  if (width == 0 && height == 0) return;
  for (std::int32_t d = 2; d <= 111; ++d) {
    while (width % d == 0 && height % d == 0) {
      width /= d;
      height /= d;
    }
  }
}

namespace {

// The notes file of the default places: "notes.txt" in the application folder, else in
// "DataFiles", either found without regard to case; empty when there is none.
std::string DefaultNotesPath(const std::string& appFolder) {
  std::string file = FindFileNoCase(appFolder, "notes.txt");
  if (FileExists(file)) return file;
  file = ResolveNoCase(appFolder, "DataFiles/notes.txt");
  return FileExists(file) ? file : std::string();
}

// A game's block in the text of a notes file: the lines behind the first line that holds the
// tag, up to the first line whose blank-trimmed text starts with "[". Every line end of the
// file (CR LF, LF, CR) ends a line; the lines are joined with CR LF.
std::string NotesBlock(std::string_view content, std::string_view name) {
  std::string tag = "[";
  tag.append(name);
  tag.push_back(']');
  // A tag with a line end in it can't stand on one line.
  if (tag.find_first_of("\r\n") != std::string::npos) return {};
  const size_t at = FindText(content, tag);
  if (at == std::string_view::npos) return {};
  auto lineEnd = [&](size_t from) {
    const size_t end = content.find_first_of("\r\n", from);
    return end == std::string_view::npos ? content.size() : end;
  };
  size_t position = lineEnd(at);
  position += LineEndAt(content, position);
  std::string notes;
  while (position < content.size()) {
    const size_t end = lineEnd(position);
    const std::string_view line = content.substr(position, end - position);
    if (StartsWith(TrimBlanks(line), "[")) break;
    notes.append(line);
    notes.append("\r\n");
    position = end + LineEndAt(content, end);
  }
  if (notes.size() >= 2) notes.resize(notes.size() - 2);
  return notes;
}

}  // namespace

std::string ReadPersonalNotes(const std::string& appFolder, std::string_view name,
                              const std::string& path) {
  const std::string file = path.empty() ? DefaultNotesPath(appFolder) : path;
  std::string content;
  if (file.empty() || !FileExists(file) || !ReadWholeFile(file, content)) return {};
  return NotesBlock(content, name);
}

std::string BuildClonesListPlain(const GameStore& store, std::string_view name, bool asLinks) {
  std::string list;
  const int count = store.GameCount();
  for (int i = 1; i <= count && static_cast<size_t>(i) < store.GameRecords.size(); ++i) {
    const std::string& record = store.GameRecords[static_cast<size_t>(i)];
    const std::string_view parent = BehindTag(record, 'S');
    if (parent.substr(0, name.size()) != name) continue;
    const std::string_view rom = UpToSemicolon(record);
    if (!list.empty()) list.append(", ");
    if (asLinks) {
      list.append("<a href=\"").append(rom).append(".htm\">").append(rom).append("</a>");
    } else {
      list.append(rom);
    }
  }
  return list;
}

// ---- the loader ----

struct GameDetailsLoader::Caches {
  // Clone index: every game's parent field (up to its ';') with the game's index, sorted by the
  // field, so the games whose field begins with a name are one range.
  unsigned long long generation = ~0ULL;
  const GameStore* store = nullptr;
  std::vector<std::pair<std::string, int>> parents;

  // The places of "$bio" in the History file, for the file of that stamp.
  FileStamp historyStamp;
  bool historyScanned = false;
  std::vector<long long> bioPositions;

  // The notes file: where it is, as long as the two folders it may be in are unchanged, and
  // its text, as long as the file is unchanged.
  fs::file_time_type appFolderTime{}, dataFolderTime{};
  bool notesResolved = false;
  std::string notesPath;
  FileStamp notesStamp;
  bool notesRead = false;
  std::string notesText;

  // Scratch room reused from game to game.
  std::string block;
  std::vector<std::string_view> pieces;
  std::string joined;
};

GameDetailsLoader::GameDetailsLoader(AppContext& ctx)
    : m_ctx(ctx), m_caches(std::make_unique<Caches>()) {}

GameDetailsLoader::~GameDetailsLoader() = default;

void GameDetailsLoader::InvalidateCaches() {
  m_caches->generation = ~0ULL;
  m_caches->parents.clear();
  m_caches->historyScanned = false;
  m_caches->bioPositions.clear();
  m_caches->notesResolved = false;
  m_caches->notesRead = false;
}

std::string GameDetailsLoader::BuildClonesList(std::string_view name, bool asLinks) {
  std::string list;
  RunGuarded(m_ctx.log, 4103, [&] {
    const GameStore& store = m_ctx.store;
    // A name with ';' reaches past the parent field into the rest of the record: the plain walk
    // answers that rare question.
    if (name.find(';') != std::string_view::npos) {
      list = BuildClonesListPlain(store, name, asLinks);
      return;
    }
    Caches& c = *m_caches;
    if (c.generation != store.Generation() || c.store != &store) {
      c.parents.clear();
      const int count = store.GameCount();
      c.parents.reserve(static_cast<size_t>(std::max(count, 0)));
      for (int i = 1; i <= count && static_cast<size_t>(i) < store.GameRecords.size(); ++i) {
        // Copies: records may be changed in place (a rom scan adds its mark) and move.
        c.parents.emplace_back(
            std::string(UpToSemicolon(BehindTag(store.GameRecords[static_cast<size_t>(i)], 'S'))),
            i);
      }
      std::sort(c.parents.begin(), c.parents.end());
      c.generation = store.Generation();
      c.store = &store;
    }
    auto first =
        std::lower_bound(c.parents.begin(), c.parents.end(), name,
                         [](const std::pair<std::string, int>& entry, std::string_view key) {
                           return std::string_view(entry.first) < key;
                         });
    std::vector<int> games;
    for (auto it = first; it != c.parents.end() && StartsWith(it->first, name); ++it) {
      games.push_back(it->second);
    }
    std::sort(games.begin(), games.end());
    for (const int i : games) {
      const std::string_view rom = UpToSemicolon(store.GameRecords[static_cast<size_t>(i)]);
      if (!list.empty()) list.append(", ");
      if (asLinks) {
        list.append("<a href=\"").append(rom).append(".htm\">").append(rom).append("</a>");
      } else {
        list.append(rom);
      }
    }
  });
  return list;
}

std::string GameDetailsLoader::ReadMameinfoEntry(std::string_view name) {
  std::string text;
  RunGuarded(m_ctx.log, 4104, [&] {
    const GameStore& store = m_ctx.store;
    const int index = store.FindGame(name);
    if (index == 0) return;
    const std::string_view field =
        UpToSemicolon(BehindTag(store.GameRecords[static_cast<size_t>(index)], 'U'));
    if (StartsWith(field, "#") || field.find(',') == std::string_view::npos) return;
    const Range range = SplitRange(field);
    if (range.second == 0) return;
    std::string path = m_ctx.settings.InfRead("DataFile3");
    if (path.empty() || path == "-1") {
      path = ResolveNoCase(m_ctx.AppFolder(), "DataFiles/mameinfo.dat");
    } else {
      path = ExistingDataFile(path);
    }
    if (path.empty() || !FileExists(path)) return;
    std::string block;
    if (!ReadBlock(path, range.start, range.second, block)) return;
    text = TrimMameinfo(std::move(block));
  });
  return text;
}

namespace {

// The places of every "$bio" of a History file, in order.
std::vector<long long> ScanBioMarks(const std::string& path);

// Reads a file forward from `from` up to `end` in growing steps, keeping what it read.
class ForwardReader final {
 public:
  ForwardReader(std::ifstream& file, long long from, long long end)
      : m_file(file), m_from(from), m_end(end) {
    m_file.clear();
    m_file.seekg(from);
  }
  // Reads one more step; false at the end.
  bool More() {
    const long long readTo = m_from + static_cast<long long>(text.size());
    if (readTo >= m_end) return false;
    const long long want = std::min<long long>(static_cast<long long>(m_step), m_end - readTo);
    const size_t old = text.size();
    text.resize(old + static_cast<size_t>(want));
    m_file.read(text.data() + old, static_cast<std::streamsize>(want));
    const size_t got = static_cast<size_t>(m_file.gcount());
    text.resize(old + got);
    m_step *= 2;
    return got > 0;
  }
  std::string text;  // the bytes from `from` on

 private:
  std::ifstream& m_file;
  long long m_from;
  long long m_end;
  size_t m_step = 16 * 1024;
};

// The text from `from` to `end`, cut before the line end in front of its first "$end"; only the
// bytes up to that "$end" are read.
std::string ReadUpToEnd(std::ifstream& file, long long from, long long end) {
  if (from >= end) return {};
  ForwardReader reader(file, from, end);
  size_t searchFrom = 0;
  while (reader.More()) {
    const size_t hit = FindText(reader.text, "$end", searchFrom);
    if (hit != std::string::npos) return CutBeforeEnd(reader.text, hit);
    // "$end" may straddle two reads.
    searchFrom = reader.text.size() >= 3 ? reader.text.size() - 3 : 0;
  }
  return std::move(reader.text);
}

}  // namespace

std::string GameDetailsLoader::ReadHistoryText(const std::string& path, long long start,
                                               long long length) {
  // The block is `length` bytes from the 1-based `start` (as far as the file goes); the text
  // begins 6 bytes behind the block's first "$bio" when there is one, and is cut before the line
  // end in front of the first "$end" behind that.
  std::ifstream file(FsPath(path), std::ios::binary);
  if (!file || length <= 0) return {};
  file.seekg(0, std::ios::end);
  const long long size = static_cast<long long>(file.tellg());
  long long begin = start - 1;
  long long end = begin + length;
  if (begin < 0) begin = 0;
  if (end > size) end = size;
  if (end <= begin) return {};

  // Read on until the first "$bio" or "$end". An entry's own "$bio" comes before its "$end".
  ForwardReader reader(file, begin, end);
  size_t searchFrom = 0;
  size_t firstEnd = std::string::npos;
  while (reader.More()) {
    const size_t bio = FindText(reader.text, "$bio", searchFrom);
    const size_t stop = FindText(reader.text, "$end", searchFrom);
    if (bio != std::string::npos && (stop == std::string::npos || bio < stop)) {
      return ReadUpToEnd(file, begin + static_cast<long long>(bio) + 6, end);
    }
    if (stop != std::string::npos) {
      firstEnd = stop;
      break;
    }
    searchFrom = reader.text.size() >= 3 ? reader.text.size() - 3 : 0;
  }
  if (firstEnd == std::string::npos) {
    // The whole block is read and holds neither mark.
    return std::move(reader.text);
  }
  // An entry without "$bio": the first "$bio" further on in the block decides, as far as the
  // block goes. Where the marks are is found once per file.
  Caches& c = *m_caches;
  FileStamp stamp;
  StampOf(path, stamp);
  if (!c.historyScanned || !(stamp == c.historyStamp)) {
    c.bioPositions = ScanBioMarks(path);
    c.historyStamp = stamp;
    c.historyScanned = Settled(stamp.time);
  }
  const auto bio = std::lower_bound(c.bioPositions.begin(), c.bioPositions.end(), begin);
  if (bio != c.bioPositions.end() && *bio + 4 <= end) return ReadUpToEnd(file, *bio + 6, end);
  return CutBeforeEnd(reader.text, firstEnd);
}

namespace {

std::vector<long long> ScanBioMarks(const std::string& path) {
  std::vector<long long> positions;
  std::ifstream file(FsPath(path), std::ios::binary);
  if (!file) return positions;
  constexpr size_t kChunk = 1 << 20;
  std::string buffer;
  long long bufferStart = 0;  // file offset of buffer[0]
  std::vector<char> chunk(kChunk);
  for (;;) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    const size_t got = static_cast<size_t>(file.gcount());
    if (got == 0) break;
    // Keep the last three bytes of the former chunk, for a mark across the border.
    const size_t keep = buffer.size() >= 3 ? 3 : buffer.size();
    bufferStart += static_cast<long long>(buffer.size() - keep);
    buffer.erase(0, buffer.size() - keep);
    buffer.append(chunk.data(), got);
    for (size_t hit = buffer.find("$bio"); hit != std::string::npos;
         hit = buffer.find("$bio", hit + 1)) {
      // A mark in the kept bytes was complete before only if it ended there; it can't, as the
      // kept part is three bytes.
      positions.push_back(bufferStart + static_cast<long long>(hit));
    }
  }
  return positions;
}

}  // namespace

GameDetails GameDetailsLoader::LoadGameDetails(std::string& name, std::int32_t index,
                                               bool presenceOnly) {
  GameDetails details;
  RunGuarded(m_ctx.log, 4101, [&] {
    GameStore& store = m_ctx.store;
    Caches& c = *m_caches;

    // 1. The game.
    int game = 0;
    if (name.empty()) {
      if (index < 1 || index > store.GameCount()) return;
      game = index;
      name = store.GameNames()[static_cast<size_t>(game)];
    } else {
      game = store.FindGame(name);
    }
    if (game < 1 || static_cast<size_t>(game) >= store.GameRecords.size()) return;
    details.RomName = name;
    details.GameIndex = game;
    const std::string& record = store.GameRecords[static_cast<size_t>(game)];

    // 2. The record's own fields.
    details.Bios = TableText(store.BiosTable, FieldToIndex(BehindTag(record, 'M')));
    details.CategoryIndex = FieldToIndex(BehindTag(record, 'J'));
    details.Category = TableText(store.CategoryTable, details.CategoryIndex);
    details.CheatSupport = StartsWith(BehindTag(record, 'R'), "1");
    {
      const std::string_view parent = UpToSemicolon(BehindTag(record, 'S'));
      if (!StartsWith(parent, "#")) details.CloneOf = std::string(parent);
    }
    details.Control = TableText(store.ControlsTable, FieldToIndex(BehindTag(record, 'G')));
    details.Description = std::string(UpToSemicolon(BehindTag(record, 'B')));
    details.Driver = TableText(store.DriverTable, FieldToIndex(BehindTag(record, 'N')));
    details.DriverStatus = TableText(store.StatusTable, FieldToIndex(BehindTag(record, 'H')));
    details.GenreIndex = FieldToIndex(BehindTag(record, 'I'));
    details.Genre = TableText(store.GenreTable, details.GenreIndex);
    details.HiscoreSupport = !StartsWith(BehindTag(record, 'P'), "#");
    details.Buttons = TableText(store.ButtonsTable, FieldToIndex(BehindTag(record, 'F')));
    details.ManufacturerIndex = FieldToIndex(BehindTag(record, 'C'));
    details.Manufacturer = TableText(store.ManufacturerTable, details.ManufacturerIndex);
    details.Mature = !StartsWith(BehindTag(record, 'L'), "#");
    details.Players = TableText(store.NPlayersTable, FieldToIndex(BehindTag(record, 'O')));
    details.Orientation = TableText(store.OrientationTable, FieldToIndex(BehindTag(record, 'E')));
    details.YearIndex = FieldToIndex(BehindTag(record, 'D'));
    details.Year = TableText(store.YearTable, details.YearIndex);
    details.VerAddedIndex = FieldToIndex(BehindTag(record, 'K'));
    details.VersionAdded = TableText(store.VerAddedTable, details.VerAddedIndex);

    // 3. Where the game stands in the dump: its offset and the next record's.
    const std::string* next = static_cast<size_t>(game) + 1 < store.GameRecords.size()
                                  ? &store.GameRecords[static_cast<size_t>(game) + 1]
                                  : nullptr;
    char offsetTag = 0;
    if (FieldPosition(record, 'A') != std::string::npos) {
      store.SourceIsXml = true;
      offsetTag = 'A';
    } else {
      store.SourceIsXml = false;
      if (FieldPosition(record, '\xE0') != std::string::npos) offsetTag = '\xE0';
    }
    long long start = 0;
    long long length = 0;
    if (offsetTag != 0) {
      start = FieldToIndex(BehindTag(record, offsetTag));
      if (next && FieldPosition(*next, offsetTag) != std::string::npos) {
        const long long end = FieldToIndex(BehindTag(*next, offsetTag));
        if (end > start) length = end - start;
      }
    }
    const bool xml = store.SourceIsXml;

    // 4. The lists now describe this game.
    for (DetailList* list : {&RomList, &DiskList, &BiosSetList, &ChipList, &DipSwitchList}) {
      list->assign(1, std::string());
    }
    Attributes.Clear();

    // 5. The dump file; without it the record's fields are all there is.
    const std::string& folder = m_ctx.AppFolder();
    std::string dumpPath = xml ? DefaultListXmlPath(folder) : DefaultListInfoPath(folder);
    if (!FileExists(dumpPath)) {
      dumpPath = ResolveNoCase(folder, xml ? "DataFiles/listxml" : "DataFiles/listinfo");
      if (!FileExists(dumpPath)) {
        dumpPath = FindFileNoCase(folder, xml ? "listxml.txt" : "listinfo.txt");
        if (!FileExists(dumpPath)) return;
      }
    }

    // 6. The game's block, read from one byte before its line.
    ReadBlock(dumpPath, start, length, c.block);
    if (xml) {
      XmlPass(details);
    } else {
      ListInfoPass(details, name);
    }

    // Clean-up of the marks nobody claimed.
    CleanList(RomList, kRomMarks);
    CleanList(DiskList, kDiskMarks);
    CleanList(BiosSetList, kBiosSetMarks);
    CleanList(ChipList, kChipMarks);
    CleanList(DipSwitchList, kDipSwitchMarks);

    // 7. The data files' texts.
    {
      const std::string_view field = UpToSemicolon(BehindTag(record, 'Q'));
      const bool placed = !StartsWith(field, "#") && field.find(',') != std::string_view::npos &&
                          SplitRange(field).start != 0;
      if (placed) {
        if (presenceOnly) {
          details.History = "True";
        } else {
          const std::string path = FindDataFile(m_ctx, "DataFile2", "DataFiles/history.dat");
          if (!path.empty()) {
            const Range range = SplitRange(field);
            details.History = ReadHistoryText(path, range.start, range.second);
          }
        }
      }
    }
    {
      const std::string_view field = UpToSemicolon(BehindTag(record, 'T'));
      if (field.find(',') != std::string_view::npos) {
        if (presenceOnly) {
          details.Command = "True";
        } else {
          const std::string path = FindDataFile(m_ctx, "DataFile5", "DataFiles/command.dat");
          if (!path.empty()) {
            const Range range = SplitRange(field);
            std::string text;
            if (ReadBlock(path, range.start, range.second, text)) {
              details.Command = TrimCommand(std::move(text));
            }
          }
        }
      }
    }
    {
      std::string_view field = BehindTag(record, 'U');
      if (!record.empty() && record.back() == '*') {
        if (!field.empty()) field.remove_suffix(1);
        details.GotIt = true;
      }
      field = UpToSemicolon(field);
      if (field.find(',') != std::string_view::npos) {
        if (presenceOnly) {
          details.Mameinfo = "True";
        } else {
          const std::string path = FindDataFile(m_ctx, "DataFile3", "DataFiles/mameinfo.dat");
          if (!path.empty()) {
            const Range range = SplitRange(field);
            std::string text;
            if (ReadBlock(path, range.start, range.second, text)) {
              details.Mameinfo = TrimMameinfo(std::move(text));
            }
          }
        }
      }
    }

    // 8. The user's own notes.
    details.PersonalNotes = NotesOf(details.RomName);
  });
  return details;
}

std::string GameDetailsLoader::NotesOf(std::string_view name) {
  Caches& c = *m_caches;
  const std::string& folder = m_ctx.AppFolder();
  // Finding the file without regard to case reads the folders: done again only when one of
  // them changed (a file added, removed or renamed changes its folder's time).
  std::error_code appError, dataError;
  const fs::file_time_type appTime = fs::last_write_time(FsPath(folder), appError);
  const fs::file_time_type dataTime =
      fs::last_write_time(FsPath(DataFilesFolder(folder)), dataError);
  if (!c.notesResolved || appTime != c.appFolderTime || dataTime != c.dataFolderTime) {
    c.notesPath = DefaultNotesPath(folder);
    c.appFolderTime = appTime;
    c.dataFolderTime = dataTime;
    c.notesResolved = Settled(appTime) && Settled(dataTime);
    c.notesRead = false;
  }
  if (c.notesPath.empty()) return {};
  FileStamp stamp;
  if (!StampOf(c.notesPath, stamp)) {
    c.notesResolved = false;  // gone since: look again next time
    return {};
  }
  if (!c.notesRead || !(stamp == c.notesStamp)) {
    c.notesText.clear();
    if (!ReadWholeFile(c.notesPath, c.notesText)) return {};
    c.notesStamp = stamp;
    c.notesRead = Settled(stamp.time);
  }
  return NotesBlock(c.notesText, name);
}

void GameDetailsLoader::ListInfoPass(GameDetails& d, std::string& name) {
  Caches& c = *m_caches;
  std::vector<std::string> tokens;
  // The rest of a bracketed line: "(" and ")" deleted, trimmed, split at blanks.
  auto tokensOf = [&](std::string_view rest) {
    const std::string bare = Without(rest, "()");
    FastSplit(TrimBlanks(bare), tokens, " ");
  };

  std::string_view block = c.block;
  size_t position = 0;
  std::string line;
  while (position <= block.size()) {
    // Every line end the file has ends a line.
    size_t end = block.find_first_of("\r\n", position);
    if (end == std::string_view::npos) end = block.size();
    line = Without(block.substr(position, end - position), "\t");
    position = end + LineEndAt(block, end);
    if (end == block.size()) position = block.size() + 1;
    const std::string_view text = TrimBlanks(line);
    if (text.empty()) continue;

    if (StartsWith(text, "name")) {
      name = std::string(TrimBlanks(text.substr(4)));
      d.RomName = name;
    }
    if (StartsWith(text, "description")) {
      d.Description = Without(TrimBlanks(text.substr(11)), "\"");
    }
    if (StartsWith(text, "year")) d.Year = std::string(TrimBlanks(text.substr(4)));
    if (StartsWith(text, "manufacturer")) {
      d.Manufacturer = std::string(TrimBlanks(text.substr(12)));
    }
    if (StartsWith(text, "romof")) d.RomOf = std::string(TrimBlanks(text.substr(5)));
    if (StartsWith(text, "cloneof")) d.CloneOf = std::string(TrimBlanks(text.substr(7)));
    if (StartsWith(text, "sampleof")) d.SampleOf = std::string(TrimBlanks(text.substr(8)));
    if (StartsWith(text, "sound")) {
      tokensOf(text.substr(5));
      if (tokens.size() > 1) d.SoundChannels = tokens[1];
    }
    if (StartsWith(text, "dipswitch")) {
      tokensOf(text.substr(9));
      for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& value = tokens[i + 1];
        if (tokens[i] == "name") {
          OpenItem(DipSwitchList, Without(value, "\""), kDipSwitchTemplate);
        } else if (tokens[i] == "entry") {
          std::string& current = DipSwitchList.back();
          if (current.find("#V") != std::string::npos) {
            ReplaceAll(current, "#V", value);
          } else {
            const size_t semicolon = current.find(';');
            std::string item =
                semicolon == std::string::npos ? std::string() : current.substr(0, semicolon + 1);
            item.append(value);
            item.append(";#D");
            DipSwitchList.push_back(std::move(item));
          }
        } else if (tokens[i] == " default") {
          // A token split at blanks never holds one: the default is never stored.
          FillMark(DipSwitchList, "#D", value);
        }
      }
    }
    if (StartsWith(text, "driver")) {
      tokensOf(text.substr(6));
      for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& key = tokens[i];
        const std::string& value = tokens[i + 1];
        if (key == "status") {
          d.DriverStatus = value;
        } else if (key == "color") {
          d.DriverColor = value;
        } else if (key == "sound") {
          d.DriverSound = value;
        } else if (key == "palettesize") {
          d.Colors = value;
        }
      }
    }
    if (StartsWith(text, "input")) {
      tokensOf(text.substr(5));
      for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& key = tokens[i];
        const std::string& value = tokens[i + 1];
        if (key == "buttons") {
          d.Buttons = value;
        } else if (key == "coins") {
          d.CoinSlots = value;
        } else if (key == "control") {
          d.Control = value;
        } else if (key == "service") {
          d.ServiceButton = value;
        } else if (key == "tilt") {
          d.TiltButton = value;
        }
      }
    }
    if (StartsWith(text, "video")) {
      tokensOf(text.substr(5));
      for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& key = tokens[i];
        const std::string& value = tokens[i + 1];
        if (key == "screen") {
          d.Screen = value;
        } else if (key == "orientation") {
          d.Orientation = value;
        } else if (key == "x") {
          d.Resolution = value;
        } else if (key == "y") {
          d.Resolution += "x" + value;
        } else if (key == "aspectx") {
          d.Aspect = value;
        } else if (key == "aspecty") {
          d.Aspect += ":" + value;
        } else if (key == "freq") {
          d.Refresh = value;
        }
      }
    }
    if (StartsWith(text, "rom")) {
      tokensOf(text.substr(3));
      for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& key = tokens[i];
        const std::string& value = tokens[i + 1];
        if (key == "name") {
          OpenItem(RomList, value, kRomTemplate);
        } else if (key == "bios") {
          FillMark(RomList, "#B", value);
        } else if (key == "size") {
          FillMark(RomList, "#Z", value);
        } else if (key == "crc") {
          FillMark(RomList, "#C", value);
        } else if (key == "region") {
          FillMark(RomList, "#R", value);
        } else if (key == "offs") {
          FillMark(RomList, "#O", value);
        } else if (key == "flags") {
          FillMark(RomList, "#D", value);
        }
      }
    }
    if (StartsWith(text, "chip")) {
      tokensOf(text.substr(4));
      for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& key = tokens[i];
        const std::string& value = tokens[i + 1];
        if (key == "type") {
          OpenItem(ChipList, value, kChipTemplate);
        } else if (key == "name") {
          FillMark(ChipList, "#N", value);
        } else if (key == "clock") {
          FillMark(ChipList, "#C", value);
        }
      }
    }
  }
}

void GameDetailsLoader::XmlPass(GameDetails& d) {
  Caches& c = *m_caches;
  std::string& text = c.block;

  // One pass over the block: tabs and every line end (CR LF, LF, CR) go, so that the elements
  // meet as "><"; "<game " becomes "game "; and the block ends behind the game's closing element
  // ("</machine>" or "</game>"), as what follows (a device, the list's end) is no part of it.
  {
    char* out = text.data();
    const char* in = text.data();
    const size_t n = text.size();
    size_t w = 0;
    for (size_t r = 0; r < n; ++r) {
      const char ch = in[r];
      if (ch == '\t' || ch == '\r' || ch == '\n') continue;
      out[w++] = ch;
      if (ch == ' ') {
        if (w >= 6 && out[w - 2] == 'e' && std::memcmp(out + w - 6, "<game ", 6) == 0) {
          std::memmove(out + w - 6, out + w - 5, 5);
          --w;
        }
      } else if (ch == '>' && w >= 7 && out[w - 2] == 'e') {
        if ((w >= 10 && std::memcmp(out + w - 10, "</machine>", 10) == 0) ||
            std::memcmp(out + w - 7, "</game>", 7) == 0) {
          break;
        }
      }
    }
    text.resize(w);
  }
  if (text.find('&') != std::string::npos) {
    ReplaceAll(text, "&#60", "<");
    ReplaceAll(text, "&lt;", "<");
    ReplaceAll(text, "&#62", ">");
    ReplaceAll(text, "&gt;", ">");
    ReplaceAll(text, "&#38", "&");
    ReplaceAll(text, "&amp;", "&");
    ReplaceAll(text, "&#10;", "");
    ReplaceAll(text, "&quot;", "\"");
  }

  std::vector<std::string_view>& pieces = c.pieces;
  pieces.clear();
  {
    const std::string_view all = text;
    size_t from = 0;
    for (size_t hit = FindPair(all, '>', '<', 0); hit != std::string_view::npos;
         hit = FindPair(all, '>', '<', from)) {
      pieces.push_back(all.substr(from, hit - from));
      from = hit + 2;
    }
    pieces.push_back(all.substr(from));
  }
  Attributes.Clear();

  // First walk: the elements whose attributes matter, up to the last piece but one.
  static constexpr std::string_view kPlain[] = {"biosset ", "rom ",   "disk ",  "sample ", "chip ",
                                                "display ", "video ", "sound ", "driver "};
  std::string& joined = c.joined;
  for (size_t i = 0; i + 1 < pieces.size(); ++i) {
    const std::string_view piece = pieces[i];
    bool plain = false;
    // Most pieces start with none of the letters of the elements looked for.
    switch (piece.empty() ? '\0' : piece.front()) {
      case 'b':
      case 'r':
      case 'd':
      case 's':
      case 'c':
      case 'v':
        for (const std::string_view start : kPlain) {
          if (HasPrefix(piece, start)) {
            plain = true;
            break;
          }
        }
        break;
      case 'i':
        break;
      default:
        continue;
    }
    if (plain) {
      ParseTagAttributes(piece, false, Attributes);
    } else if (HasPrefix(piece, "input ")) {
      ParseTagAttributes(piece, false, Attributes);
      for (size_t j = i + 1; j < pieces.size() && HasPrefix(pieces[j], "control "); ++j) {
        joined.assign("input ");
        joined.append(pieces[j]);
        ReplaceAll(joined, "control type", "control_type");
        ParseTagAttributes(joined, true, Attributes);
      }
    } else if (HasPrefix(piece, "dipswitch ")) {
      ParseTagAttributes(piece, false, Attributes);
      for (size_t j = i + 1; j < pieces.size(); ++j) {
        // Today's switches give the places of their switches first: passed over.
        if (HasPrefix(pieces[j], "diplocation ")) continue;
        if (!HasPrefix(pieces[j], "dipvalue ")) break;
        joined.assign("dipswitch ");
        joined.append(pieces[j]);
        ReplaceAll(joined, "dipvalue ", "dipvalue_");
        ParseTagAttributes(joined, true, Attributes);
      }
    }
  }

  // Second walk: the pairs into the fields and the lists.
  std::int32_t width = 0;
  for (int k = 1; k <= Attributes.AttrCount; ++k) {
    std::string_view key = Attributes.AttrKeys[static_cast<size_t>(k)];
    const std::string& value = Attributes.AttrValues[static_cast<size_t>(k)];
    if (HasPrefix(key, "*")) key.remove_prefix(1);
    d.Working = true;
    const size_t underscore = key.find('_');
    const std::string_view element = key.substr(0, underscore);
    const std::string_view attribute =
        underscore == std::string_view::npos ? std::string_view() : key.substr(underscore + 1);
    if (element == "rom") {
      static constexpr std::pair<std::string_view, std::string_view> kRom[] = {
          {"size", "#Z"}, {"crc", "#C"},   {"sha1", "#H"},   {"region", "#R"}, {"offset", "#O"},
          {"bios", "#B"}, {"merge", "#M"}, {"status", "#S"}, {"dispose", "#D"}};
      if (attribute == "name") {
        OpenItem(RomList, value, kRomTemplate);
      } else {
        for (const auto& [a, mark] : kRom) {
          if (attribute == a) {
            FillMark(RomList, mark, value);
            break;
          }
        }
      }
    } else if (element == "disk") {
      static constexpr std::pair<std::string_view, std::string_view> kDisk[] = {
          {"md5", "#5"},    {"sha1", "#H"},  {"merge", "#M"},
          {"region", "#R"}, {"index", "#k"}, {"status", "#S"}};
      if (attribute == "name") {
        OpenItem(DiskList, value, kDiskTemplate);
      } else {
        for (const auto& [a, mark] : kDisk) {
          if (attribute == a) {
            FillMark(DiskList, mark, value);
            break;
          }
        }
      }
    } else if (element == "biosset") {
      if (attribute == "name") {
        OpenItem(BiosSetList, value, kBiosSetTemplate);
      } else if (attribute == "description") {
        FillMark(BiosSetList, "#D", value);
      } else if (attribute == "default") {
        FillMark(BiosSetList, "#F", value);
      }
    } else if (element == "chip") {
      if (attribute == "type") {
        OpenItem(ChipList, value, kChipTemplate);
      } else if (attribute == "name") {
        FillMark(ChipList, "#N", value);
      } else if (attribute == "clock") {
        FillMark(ChipList, "#C", value);
      }
    } else if (element == "dipswitch") {
      if (attribute == "name") {
        OpenItem(DipSwitchList, value, kDipSwitchTemplate);
      } else if (attribute == "dipvalue_name") {
        FillMark(DipSwitchList, "#V", value);
      } else if (attribute == "default") {
        FillMark(DipSwitchList, "#D", value);
      }
    } else if (element == "display") {
      if (attribute == "type") {
        d.Screen = value;
      } else if (attribute == "width") {
        d.Resolution = value;
        width = LeadingInt(value);
      } else if (attribute == "height") {
        d.Resolution += "x" + value;
        std::int32_t height = LeadingInt(value);
        ReduceRatio(width, height);
        d.Aspect = std::to_string(width) + ":" + std::to_string(height);
      } else if (attribute == "refresh") {
        d.Refresh = value;
      }
    } else if (element == "sound") {
      if (attribute == "channels") d.SoundChannels = value;
    } else if (element == "input") {
      if (attribute == "players") {
        d.InputPlayers = value;
      } else if (attribute == "coins") {
        d.CoinSlots = value;
      } else if (attribute == "service") {
        d.ServiceButton = value;
      } else if (attribute == "tilt") {
        d.TiltButton = value;
      }
    } else if (element == "driver") {
      if (attribute == "emulation") {
        d.DriverEmulation = value;
      } else if (attribute == "color") {
        d.DriverColor = value;
      } else if (attribute == "sound") {
        d.DriverSound = value;
      } else if (attribute == "graphic") {
        d.DriverGraphic = value;
      } else if (attribute == "cocktail") {
        d.DriverCocktail = value;
      } else if (attribute == "protection") {
        d.DriverProtection = value;
      } else if (attribute == "savestate") {
        d.DriverSavestate = value;
      } else if (attribute == "palettesize") {
        d.DriverPalettesize = value;
      }
    } else if (element == "game") {
      if (attribute == "romof") {
        d.RomOf = value;
      } else if (attribute == "sampleof") {
        d.SampleOf = value;
      } else if (attribute == "runnable" && value == "no") {
        d.Working = false;
      }
    } else if (element == "sample") {
      if (attribute == "name") d.Sample = value;
    }
  }
}

}  // namespace tessarin
