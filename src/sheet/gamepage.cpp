#include "sheet/gamepage.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <initializer_list>

#include "app/context.h"
#include "archive/unzip.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/version.h"
#include "sheet/gamedetails.h"
#include "store/faststrings.h"

namespace tessarin {

namespace {

char LowerAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    if (LowerAscii(text[i]) != LowerAscii(prefix[i])) return false;
  }
  return true;
}

// Every line end (CR LF, LF or a lone CR) as "<br>", so that data files of either kind of line
// end show their lines; a CR LF file comes out as if only CR LF were replaced.
std::string LineEndsAsBreaks(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 16);
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r') {
      out += "<br>";
      if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else if (c == '\n') {
      out += "<br>";
    } else {
      out += c;
    }
  }
  return out;
}

// The number a text begins with, as the old Val() read it: blanks skipped, digits up to the
// first other character; 0 when there are none.
double LeadingNumber(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  double sign = 1;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
    if (text[i] == '-') sign = -1;
    ++i;
  }
  double value = 0;
  bool point = false;
  double scale = 1;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      if (point) {
        scale /= 10;
        value += (c - '0') * scale;
      } else {
        value = value * 10 + (c - '0');
      }
    } else if (c == '.' && !point) {
      point = true;
    } else {
      break;
    }
  }
  return sign * value;
}

// The pieces of a ";"-joined item, at least `count` of them (missing ones empty).
std::vector<std::string_view> Fields(std::string_view item, size_t count) {
  std::vector<std::string_view> fields;
  size_t start = 0;
  while (true) {
    const size_t cut = item.find(';', start);
    if (cut == std::string_view::npos) {
      fields.push_back(item.substr(start));
      break;
    }
    fields.push_back(item.substr(start, cut - start));
    start = cut + 1;
  }
  if (fields.size() < count) fields.resize(count);
  return fields;
}

bool HasItems(const std::vector<std::string>& list) { return list.size() > 1; }

std::string TableStart(std::string_view id) {
  std::string text =
      "<table border=\"1\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse: "
      "collapse\" bordercolor=\"#FFFFFF\" width=\"100%\" id=\"";
  text += id;
  text += "\">";
  return text;
}

struct Column {
  std::string_view title;
  std::string_view width;
};

std::string HeaderRow(const std::vector<Column>& columns, std::string_view size) {
  std::string row = "<tr>";
  for (const Column& column : columns) {
    row += "<td width=\"";
    row += column.width;
    row += "\" align=\"center\"><b><font size=\"";
    row += size;
    row += "\">";
    row += column.title;
    row += "</font></b></td>";
  }
  row += "</tr>";
  return row;
}

// A row of cells holding the fields; `closeFont` closes each cell's font tag.
void AppendCells(std::string& table, const std::vector<Column>& columns,
                 const std::vector<std::string_view>& fields, std::string_view size,
                 bool closeFont) {
  table += "<tr>";
  for (size_t i = 0; i < columns.size(); ++i) {
    table += "<td width=\"";
    table += columns[i].width;
    table += "\"><font size=\"";
    table += size;
    table += "\">";
    table += fields[i];
    table += closeFont ? "</font></td>" : "</td>";
  }
  table += "</tr>";
}

// The tables whose rows are the item split at every ";", and no row for an item whose first
// field is empty (bios sets, disks, roms).
std::string SplitTable(const std::vector<std::string>& list, std::string_view id,
                       const std::vector<Column>& columns, std::string_view size) {
  if (!HasItems(list)) return "N/A";
  std::string table = TableStart(id);
  table += HeaderRow(columns, size);
  for (size_t i = 1; i < list.size(); ++i) {
    const std::vector<std::string_view> fields = Fields(list[i], columns.size());
    if (fields[0].empty()) continue;
    AppendCells(table, columns, fields, size, true);
  }
  table += "</table>";
  return table;
}

// The tables of three cells: before the first ";", between the first and the last, after the
// last (chips, dip switches). The cells leave their font tag open, and marks no value claimed
// are deleted; an item without two ";" is shown as it stands in the first cell.
std::string ThreeCellTable(const std::vector<std::string>& list, std::string_view id,
                           const std::vector<Column>& columns, std::string_view markA,
                           std::string_view markB) {
  if (!HasItems(list)) return "N/A";
  std::string table = TableStart(id);
  table += HeaderRow(columns, "2");
  for (size_t i = 1; i < list.size(); ++i) {
    const std::string item = FastReplace(FastReplace(list[i], markA, ""), markB, "");
    const size_t first = item.find(';');
    const size_t last = item.rfind(';');
    std::vector<std::string_view> fields(3);
    const std::string_view view(item);
    if (first != std::string::npos && last != first) {
      fields[0] = view.substr(0, first);
      fields[1] = view.substr(first + 1, last - first - 1);
      fields[2] = view.substr(last + 1);
    } else {
      fields[0] = view;
    }
    AppendCells(table, columns, fields, "2", false);
  }
  table += "</table>";
  return table;
}

}  // namespace

std::string MakeFileUrl(std::string_view path) {
  std::string url;
  if (StartsWithNoCase(path, "http:")) {
    url = path;
  } else if ((path.size() > 1 && path[1] == ':') || path.substr(0, 2) == "\\\\") {
    url = "file:///" + std::string(path);
  } else {
    url = "file://" + std::string(path);
  }
  for (char& c : url) {
    if (c == '\\') c = '/';
  }
  return url;
}

std::string MakeFileSafeName(std::string_view name) {
  std::string safe(name);
  for (char& c : safe) {
    switch (c) {
      case '\\':
      case '/':
      case '|':
        c = '!';
        break;
      case ':':
        c = '_';
        break;
      case '*':
        c = '#';
        break;
      case '?':
        c = '&';
        break;
      case '"':
        c = '\'';
        break;
      case '<':
        c = '(';
        break;
      case '>':
        c = ')';
        break;
      default:
        break;
    }
  }
  return safe;
}

std::string TrimRefresh(std::string_view refresh) {
  std::string text(refresh);
  while (!text.empty() && text.back() == '0') text.pop_back();
  if (!text.empty() && text.back() == '.') text.pop_back();
  return text;
}

std::string HistoryHtml(std::string_view history) {
  std::string text = "<b>HISTORY.DAT</b><br>" + LineEndsAsBreaks(history);
  static constexpr std::array<std::string_view, 9> kMarks = {
      "- TECHNICAL -", "- TRIVIA -", "- SERIES -",  "- SOURCES -", "- TIPS AND TRICKS -",
      "- STAFF -",     "- PORTS -",  "- SCORING -", "- UPDATES -"};
  for (std::string_view mark : kMarks) {
    text = FastReplace(text, mark, "<b>" + std::string(mark) + "</b>");
  }
  return text;
}

std::string BiosSetTable(const std::vector<std::string>& list) {
  return SplitTable(list, "AutoNumber4",
                    {{"Name", "33%"}, {"Description", "33%"}, {"Default", "34%"}}, "2");
}

std::string ChipTable(const std::vector<std::string>& list) {
  return ThreeCellTable(list, "AutoNumber1", {{"Type", "33%"}, {"Name", "33%"}, {"Clock", "34%"}},
                        "#N", "#C");
}

std::string DipSwitchTable(const std::vector<std::string>& list) {
  return ThreeCellTable(list, "AutoNumber1",
                        {{"Name", "33%"}, {"Value", "33%"}, {"Default", "34%"}}, "#V", "#D");
}

std::string DiskTable(const std::vector<std::string>& list) {
  return SplitTable(list, "AutoNumber2",
                    {{"Name", "14%"},
                     {"Md5", "14%"},
                     {"Sha1", "14%"},
                     {"Merge", "14%"},
                     {"Region", "14%"},
                     {"Index", "15%"},
                     {"Status", "15%"}},
                    "2");
}

std::string RomTable(const std::vector<std::string>& list) {
  return SplitTable(list, "AutoNumber3",
                    {{"Name", "10%"},
                     {"Size", "10%"},
                     {"Crc", "10%"},
                     {"Sha1", "10%"},
                     {"Region", "10%"},
                     {"Offset", "10%"},
                     {"Bios", "10%"},
                     {"Merge", "10%"},
                     {"Status", "10%"},
                     {"Dispose", "10%"}},
                    "1");
}

std::string_view NoImageBlock() {
  return "<table border=\"1\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse: "
         "collapse\" bordercolor=\"#111111\" width=\"100\" id=\"AutoNumber5\" "
         "bgcolor=\"#111111\"><tr><td width=\"100%\">&nbsp;</td></tr><tr><td width=\"100%\">"
         "<p align=\"center\"><b><font color=\"#FFFFFF\" size=\"1\">NO IMAGE</font></b></p>"
         "</td></tr><tr><td width=\"100%\">&nbsp;</td></tr></table>";
}

std::string ImageFor(AppContext& ctx, const std::string& rom, const std::string& parent,
                     std::string_view kind, const std::string& siteRoot) {
  std::string result;
  RunGuarded(ctx.log, 4302, [&] {
    if (!siteRoot.empty()) {
      // The site's image sets were copied already, into folders named in lower case.
      std::string lowerKind(kind);
      for (char& c : lowerKind) c = LowerAscii(c);
      const std::string images = AddSlash(siteRoot) + "tessarin/images/" + lowerKind + "/";
      for (const std::string* name : {&rom, &parent}) {
        if (FileExists(images + *name + ".png")) {
          result = "../images/" + lowerKind + "/" + *name + ".png";
          return;
        }
      }
      return;
    }
    std::string folder = ctx.settings.InfRead(std::string(kind) + "path");
    if (folder.empty() || folder == "-1") folder = ctx.AppFolder();
    folder = AddSlash(folder);
    // An image folder may be an address: nothing to test there.
    if (StartsWithNoCase(folder, "http:")) {
      result = folder + rom + ".png";
      return;
    }
    for (const std::string* name : {&rom, &parent}) {
      const std::string path = folder + *name + ".png";
      if (FileExists(path)) {
        result = path;
        return;
      }
    }
    const std::string zip = FindFileNoCase(folder, std::string(kind) + ".zip");
    if (!FileExists(zip) || ctx.TempFolder.empty()) return;
    UnzipEnvironment environment;
    environment.appFolder = ctx.AppFolder();
    environment.log = &ctx.log;
    UnzipOne(environment, zip, rom + ".png", ctx.TempFolder, true);
    UnzipOne(environment, zip, parent + ".png", ctx.TempFolder, true);
    for (const std::string* name : {&rom, &parent}) {
      const std::string path = ctx.TempFolder + *name + ".png";
      if (FileExists(path)) {
        result = path;
        return;
      }
    }
  });
  return result;
}

namespace {

const char* Flag(bool value) { return value ? "True" : "False"; }

std::string Link(std::string_view address, std::string_view text) {
  std::string link = "<a href=\"";
  link += address;
  link += "\">";
  link += text;
  link += "</a>";
  return link;
}

// One group value: bare, or in a site a link to the group's page.
std::string GroupValue(const std::string& value, std::string_view folder, bool siteLinks) {
  if (!siteLinks) return value;
  return Link(std::string(folder) + MakeFileSafeName(value) + ".htm", value);
}

std::string JoinKey(std::initializer_list<std::string> pieces) {
  std::string key;
  bool first = true;
  for (const std::string& piece : pieces) {
    if (!first) key += kGroupKeySeparator;
    key += (first && piece.empty()) ? std::string("0") : piece;
    first = false;
  }
  return key;
}

GroupKeys MakeGroupKeys(const GameDetails& d) {
  const auto n = [](std::int32_t v) { return std::to_string(v); };
  GroupKeys keys;
  keys.Category = JoinKey({d.Category, d.Description, n(d.GameIndex), n(d.GenreIndex),
                           n(d.ManufacturerIndex), n(d.YearIndex)});
  keys.Genre = JoinKey({d.Genre, d.Description, n(d.GameIndex), n(d.CategoryIndex),
                        n(d.ManufacturerIndex), n(d.YearIndex)});
  keys.Manufacturer = JoinKey({d.Manufacturer, d.Description, n(d.GameIndex), n(d.GenreIndex),
                               n(d.CategoryIndex), n(d.YearIndex)});
  keys.Year = JoinKey({d.Year, d.Description, n(d.GameIndex), n(d.GenreIndex), n(d.CategoryIndex),
                       n(d.ManufacturerIndex)});
  keys.Version = JoinKey({d.VersionAdded, d.Description, n(d.GameIndex), n(d.GenreIndex),
                          n(d.CategoryIndex), n(d.ManufacturerIndex), n(d.YearIndex)});
  return keys;
}

// The value of an image tag.
std::string ImageValue(AppContext& ctx, const GameDetails& d, std::string_view kind, int onlineKind,
                       const GamePageOptions& options) {
  std::string location = ImageFor(ctx, d.RomName, d.CloneOf, kind, options.siteRoot);
  if (!location.empty()) {
    if (options.siteRoot.empty()) location = MakeFileUrl(location);
    return "<img border=\"0\" src=\"" + location + "\">";
  }
  const std::string& pattern = options.onlinePatterns[static_cast<size_t>(onlineKind)];
  if (options.onlineImages && !pattern.empty()) {
    std::string value =
        "<img border=\"0\" src=\"" + FastReplace(pattern, "#ROMNAME#", d.RomName) + "\">";
    const int third = FindNthOccurrence(pattern, "/", 3);
    if (third > 0) {
      const std::string root = pattern.substr(0, static_cast<size_t>(third - 1));
      value += "<br><font size=\"1\">" + Link(root, "from " + FastReplace(root, "http://", "")) +
               "</font>";
    }
    return FastReplace(value, "#GAMENAME#", d.Description);
  }
  return std::string(NoImageBlock());
}

}  // namespace

std::string ApplyPagePassesPlain(std::string_view pageTemplate,
                                 const std::vector<PagePass>& passes) {
  std::string text(pageTemplate);
  for (const PagePass& pass : passes) {
    if (text.find(pass.find) == std::string::npos) continue;
    text = FastReplace(text, pass.find, pass.value());
  }
  return text;
}

namespace {

// The page between passes: a row of pieces, each a range of the template or of a value, and for
// each text the sorted places of its '#' marks. A tag holds a '#', so a search looks only at
// marks; a replacement cuts pieces and inserts the value's piece instead of copying the page.
class PieceText final {
 public:
  explicit PieceText(std::string_view text) {
    const Source* source = AddSource(std::string(text));
    if (!text.empty()) {
      m_pieces.push_back({source, 0, Size32(text.size()), 0, Size32(source->marks.size())});
    }
    m_size = text.size();
  }

  // Replaces every occurrence of `find` (which holds a '#') left to right, as FastReplace does;
  // `value` is asked for only when there is one.
  void Replace(std::string_view find, const std::function<std::string()>& value) {
    const size_t anchor = find.find('#');
    const size_t length = find.size();
    // The character behind the '#', when the search text has one.
    const bool hasNext = anchor + 1 < length;
    const char next = hasNext ? find[anchor + 1] : '#';
    m_matches.clear();
    size_t pieceStart = 0;  // the place of the current piece in the whole text
    size_t nextAllowed = 0;
    bool done = false;
    for (size_t i = 0; i < m_pieces.size() && !done; ++i) {
      const Piece& piece = m_pieces[i];
      const std::vector<std::uint32_t>& marks = piece.source->marks;
      const char* data = piece.source->text.data();
      for (std::uint32_t m = piece.markBegin; m < piece.markEnd; ++m) {
        // Most marks are colours or other tags: the letter behind the '#' tells them apart.
        if (hasNext && marks[m] + 1 < piece.end && data[marks[m] + 1] != next) continue;
        const size_t place = pieceStart + (marks[m] - piece.begin);
        if (place < anchor) continue;
        const size_t start = place - anchor;
        if (start < nextAllowed) continue;
        if (start + length > m_size) {
          done = true;  // later marks lie further on still
          break;
        }
        if (MatchesAt(i, marks[m], find, anchor)) {
          m_matches.push_back(start);
          nextAllowed = start + length;
        }
      }
      pieceStart += piece.end - piece.begin;
    }
    if (m_matches.empty()) return;

    const Source* inserted = nullptr;
    std::string text = value();
    const size_t valueLength = text.size();
    if (!text.empty()) inserted = AddSource(std::move(text));
    m_starts.resize(m_pieces.size());
    size_t offset = 0;
    for (size_t i = 0; i < m_pieces.size(); ++i) {
      m_starts[i] = offset;
      offset += m_pieces[i].end - m_pieces[i].begin;
    }
    m_next.clear();
    size_t from = 0;
    for (const size_t start : m_matches) {
      Emit(from, start);
      if (inserted) {
        m_next.push_back({inserted, 0, Size32(valueLength), 0, Size32(inserted->marks.size())});
      }
      from = start + length;
    }
    Emit(from, m_size);
    m_pieces.swap(m_next);
    m_size = m_size - m_matches.size() * length + m_matches.size() * valueLength;
  }

  std::string Text() const {
    std::string text;
    text.reserve(m_size);
    for (const Piece& piece : m_pieces) {
      text.append(piece.source->text, piece.begin, piece.end - piece.begin);
    }
    return text;
  }

 private:
  struct Source {
    std::string text;
    std::vector<std::uint32_t> marks;
  };
  struct Piece {
    const Source* source;
    std::uint32_t begin, end;          // the range in source->text, never empty
    std::uint32_t markBegin, markEnd;  // the marks of source->marks inside the range
  };

  static std::uint32_t Size32(size_t n) { return static_cast<std::uint32_t>(n); }

  const Source* AddSource(std::string text) {
    Source& source = m_sources.emplace_back();
    source.text = std::move(text);
    const char* data = source.text.data();
    const size_t size = source.text.size();
    for (const void* hit = std::memchr(data, '#', size); hit != nullptr;) {
      const size_t at = static_cast<size_t>(static_cast<const char*>(hit) - data);
      source.marks.push_back(Size32(at));
      hit = at + 1 < size ? std::memchr(data + at + 1, '#', size - at - 1) : nullptr;
    }
    return &source;
  }

  // Whether `find`, whose '#' is at `anchor`, stands with that '#' at `place` of piece `index`.
  // The text may run on into the following pieces, and for a blank in front of the '#' back
  // into the one before.
  bool MatchesAt(size_t index, std::uint32_t place, std::string_view find, size_t anchor) const {
    const Piece& piece = m_pieces[index];
    const std::string& text = piece.source->text;
    if (anchor > 0) {
      // Only one character can stand before the '#' of the tags.
      if (anchor != 1) return SlowMatch(index, place, find, anchor);
      const char before = place > piece.begin
                              ? text[place - 1]
                              : m_pieces[index - 1].source->text[m_pieces[index - 1].end - 1];
      if (before != find[0]) return false;
    }
    const std::string_view rest = find.substr(anchor);
    if (place + rest.size() <= piece.end) {
      // Most marks are colours or other tags: the letter behind the '#' tells them apart.
      if (rest.size() > 1 && text[place + 1] != rest[1]) return false;
      return std::memcmp(text.data() + place, rest.data(), rest.size()) == 0;
    }
    // Across the end of the piece.
    size_t i = index;
    std::uint32_t at = place;
    for (const char c : rest) {
      while (at == m_pieces[i].end) {
        ++i;
        at = m_pieces[i].begin;
      }
      if (m_pieces[i].source->text[at] != c) return false;
      ++at;
    }
    return true;
  }

  // For a search text with more than one character before its '#': read the text back from
  // the mark.
  bool SlowMatch(size_t index, std::uint32_t place, std::string_view find, size_t anchor) const {
    size_t i = index;
    std::uint32_t at = place;
    for (size_t back = 0; back < anchor; ++back) {
      while (at == m_pieces[i].begin) {
        --i;
        at = m_pieces[i].end;
      }
      --at;
    }
    for (const char c : find) {
      while (at == m_pieces[i].end) {
        ++i;
        at = m_pieces[i].begin;
      }
      if (m_pieces[i].source->text[at] != c) return false;
      ++at;
    }
    return true;
  }

  // Appends the pieces that cover [from, to) of the whole text to m_next: whole pieces as they
  // are, in one go, and the cut ends of the first and the last.
  void Emit(size_t from, size_t to) {
    if (from >= to) return;
    const auto length = [this](size_t i) -> size_t { return m_pieces[i].end - m_pieces[i].begin; };
    size_t k = static_cast<size_t>(std::upper_bound(m_starts.begin(), m_starts.end(), from) -
                                   m_starts.begin()) -
               1;
    while (from < to) {
      const size_t pieceStart = m_starts[k];
      const size_t pieceEnd = pieceStart + length(k);
      if (from == pieceStart && pieceEnd <= to) {
        size_t j = k + 1;
        while (j < m_pieces.size() && m_starts[j] + length(j) <= to) ++j;
        m_next.insert(m_next.end(), m_pieces.begin() + static_cast<std::ptrdiff_t>(k),
                      m_pieces.begin() + static_cast<std::ptrdiff_t>(j));
        from = m_starts[j - 1] + length(j - 1);
        k = j;
        continue;
      }
      const Piece& piece = m_pieces[k];
      const std::uint32_t begin = Size32(piece.begin + (from - pieceStart));
      const std::uint32_t end = Size32(piece.begin + (std::min(to, pieceEnd) - pieceStart));
      const std::vector<std::uint32_t>& marks = piece.source->marks;
      const auto first = marks.begin() + piece.markBegin;
      const auto last = marks.begin() + piece.markEnd;
      const auto markBegin = begin == piece.begin ? first : std::lower_bound(first, last, begin);
      const auto markEnd = end == piece.end ? last : std::lower_bound(markBegin, last, end);
      m_next.push_back({piece.source, begin, end, Size32(markBegin - marks.begin()),
                        Size32(markEnd - marks.begin())});
      from = pieceStart + (end - piece.begin);
      ++k;
    }
  }

  std::deque<Source> m_sources;
  std::vector<Piece> m_pieces;
  std::vector<Piece> m_next;
  std::vector<size_t> m_matches;
  // The place of each piece in the whole text, during a replacement.
  std::vector<size_t> m_starts;
  size_t m_size = 0;
};

}  // namespace

std::string ApplyPagePasses(std::string_view pageTemplate, const std::vector<PagePass>& passes) {
  PieceText text(pageTemplate);
  for (const PagePass& pass : passes) {
    if (pass.find.find('#') == std::string_view::npos) {
      // Not a tag: no mark to look at, so the plain way over the whole text.
      std::string whole = text.Text();
      if (whole.find(pass.find) != std::string::npos) {
        whole = FastReplace(whole, pass.find, pass.value());
      }
      text = PieceText(whole);
      continue;
    }
    text.Replace(pass.find, pass.value);
  }
  return text.Text();
}

std::string FillGamePage(AppContext& ctx, GameDetailsLoader& loader, const std::string& romName,
                         std::string_view pageTemplate, int index, const GamePageOptions& options,
                         GroupKeys* keys) {
  std::string page;
  RunGuarded(ctx.log, 4301, [&] {
    std::string name = index != 0 ? std::string() : romName;
    GameDetails d = loader.LoadGameDetails(name, index, false);
    // A page is always made, also for a game that isn't there.
    if (d.RomName.empty() && d.Description.empty()) {
      d.RomName = "Dummy";
      d.Description = "Dummy";
    }
    if (keys) *keys = MakeGroupKeys(d);
    const Messages& lng = ctx.messages;
    const bool site = options.siteLinks;

    std::vector<PagePass> passes;
    passes.reserve(80);
    const auto text = [&passes](std::string_view find, const std::string& value) {
      passes.push_back({find, [&value] { return value; }});
    };
    const auto computed = [&passes](std::string_view find, std::function<std::string()> value) {
      passes.push_back({find, std::move(value)});
    };
    const auto flag = [&passes](std::string_view find, bool value) {
      passes.push_back({find, [value] { return std::string(Flag(value)); }});
    };

    flag("#GOTIT", d.GotIt);
    flag("#MATURE", d.Mature);
    text("#TITLE", d.Description);
    text("#ROMNAME", d.RomName);
    flag("#HIGHSCORE", d.HiscoreSupport);
    flag("#CHEAT", d.CheatSupport);
    flag("#COMMAND", !d.Command.empty());
    text("#DRIVERSTATUS", d.DriverStatus);
    text("#SAMPLE", d.Sample);
    text("#DRIVER", d.Driver);
    text("#SAVESTATE", d.DriverSavestate);
    text("#STATUS", d.DriverEmulation);
    text("#COLORSTATUS", d.DriverColor);
    text("#SOUNDSTATUS", d.DriverSound);
    text("#GFXSTATUS", d.DriverGraphic);
    text("#FLIPSCREEN", d.DriverCocktail);
    text("#SCREEN", d.Screen);
    text("#ORIENTATION", d.Orientation);

    computed("#CLONES", [&] {
      const std::string clones = loader.BuildClonesList(d.RomName, site);
      std::string value = clones.empty() ? std::string() : lng.Lng(200) + clones;
      if (!d.CloneOf.empty()) {
        value += "<br>" + lng.Lng(201) + (site ? Link(d.CloneOf + ".htm", d.CloneOf) : d.CloneOf);
      } else {
        value += "<br><b>" + lng.Lng(202) + "</b>";
      }
      return value;
    });

    computed("#MANUFACTURER",
             [&] { return GroupValue(d.Manufacturer, "../manufacturers/", site); });
    computed("#YEAR", [&] { return GroupValue(d.Year, "../years/", site); });
    computed("#VERADDED", [&] { return GroupValue(d.VersionAdded, "../veradded/", site); });
    computed("#GENRE", [&] { return GroupValue(d.Genre, "../genres/", site); });
    computed("#CATEGORY", [&] { return GroupValue(d.Category, "../categories/", site); });

    computed("#LISTCATEGORY", [&] { return Link("../categories/category.htm", lng.Lng(360)); });
    computed("#LISTGENRE", [&] { return Link("../genres/genre.htm", lng.Lng(361)); });
    computed("#LISTMANUFACTURER",
             [&] { return Link("../manufacturers/manufacturer.htm", lng.Lng(362)); });
    computed("#LISTVERADDED", [&] { return Link("../veradded/veradded.htm", lng.Lng(363)); });
    computed("#LISTYEAR", [&] { return Link("../years/year.htm", lng.Lng(364)); });
    computed("#HELP", [&] {
      return Link(MakeFileUrl(AddSlash(ctx.AppFolder() + "HTML") + "help.htm"), "Help");
    });

    text("#SOUNDCHANNELS", d.SoundChannels);
    computed("#NCOLORS",
             [&] { return LeadingNumber(d.Colors) == 0 ? d.DriverPalettesize : d.Colors; });
    text("#RESOLUTION", d.Resolution);
    text("#ASPECT", d.Aspect);
    computed("#REFRESH", [&] { return TrimRefresh(d.Refresh) + "Hz"; });
    text("#CONTROLS", d.Control);
    text("#BUTTONS", d.Buttons);
    text("#PLAYERSBUTTONS", d.InputPlayers);
    text("#COINS", d.CoinSlots);
    text("#SERVICE", d.ServiceButton);
    text("#TILT", d.TiltButton);
    text("#NPLAYERS", d.Players);

    computed("#MYNOTES", [&] { return LineEndsAsBreaks(d.PersonalNotes); });
    computed("#HISTORY", [&] { return HistoryHtml(d.History); });
    computed("#MAMEINFO", [&] {
      const std::string mameinfo =
          d.Mameinfo.empty() ? loader.ReadMameinfoEntry(d.CloneOf) : d.Mameinfo;
      return "<b>MAMEINFO.DAT</b><br>" + LineEndsAsBreaks(mameinfo);
    });

    computed("#BIOSSET", [&] { return BiosSetTable(loader.BiosSetList); });
    computed("#CHIPS", [&] { return ChipTable(loader.ChipList); });
    // The blank in front is part of the tag: a template must have it, and it is consumed.
    computed(" #DIPSWITCH", [&] { return DipSwitchTable(loader.DipSwitchList); });
    computed("#DISKS", [&] { return DiskTable(loader.DiskList); });
    computed("#ROMFILES", [&] { return RomTable(loader.RomList); });

    computed("#SCRTITLE", [&] { return ImageValue(ctx, d, "Titles", 1, options); });
    computed("#SNAP", [&] { return ImageValue(ctx, d, "Snap", 2, options); });
    computed("#FLYER", [&] { return ImageValue(ctx, d, "Flyers", 6, options); });
    computed("#CABINET", [&] { return ImageValue(ctx, d, "Cabinets", 4, options); });
    computed("#MARQUEE", [&] { return ImageValue(ctx, d, "Marquees", 3, options); });
    computed("#CPO", [&] { return ImageValue(ctx, d, "Cpanel", 5, options); });

    text("#VERMAME", ctx.store.DatabaseVersion);
    computed("#VERMDATA", [] { return "Tessarin v" + AppVersion(); });

    if (!options.keepNavigation) {
      static const std::string kEmpty;
      for (std::string_view navigation :
           {"#PREVIOUS - #HOME - #NEXT", "#PREVIOUS - #NEXT", "#PREVIOUS", "#NEXT", "#HOME"}) {
        text(navigation, kEmpty);
      }
    }

    page = ApplyPagePasses(pageTemplate, passes);
    if (options.prefixName) {
      std::string prefix = d.RomName.substr(0, 12);
      prefix.resize(12, ' ');
      page.insert(0, prefix);
    }
  });
  return page;
}

std::string FillGamePage(AppContext& ctx, const std::string& romName, std::string_view pageTemplate,
                         int index, const GamePageOptions& options, GroupKeys* keys) {
  GameDetailsLoader loader(ctx);
  return FillGamePage(ctx, loader, romName, pageTemplate, index, options, keys);
}

}  // namespace tessarin
