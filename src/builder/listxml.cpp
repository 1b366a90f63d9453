#include "builder/listxml.h"

#include <array>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "app/context.h"
#include "builder/tablelookup.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/textutil.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

// The dump is read in blocks of this size; only the lines the import uses are looked at.
constexpr size_t kBlockSize = size_t{4} << 20;
constexpr int kFirstCapacity = 6000;
constexpr int kCapacityStep = 1000;

bool Contains(std::string_view text, std::string_view what) {
  return text.find(what) != std::string_view::npos;
}

// Whether the '<' at `p` opens one of the elements the import reacts to. A line is of use
// exactly when one of its '<' does, since every text the import looks for begins with '<'.
bool Interesting(const char* p, const char* end) {
  auto is = [&](std::string_view word) {
    return static_cast<size_t>(end - p) >= word.size() &&
           std::memcmp(p, word.data(), word.size()) == 0;
  };
  if (end - p < 2) return false;
  switch (p[1]) {
    case 'g':
      return is("<game");
    case 'm':
      return is("<machine") || is("<manufacturer>");
    case 'd':
      return is("<description>") || is("<display") || is("<driver");
    case 'y':
      return is("<year>");
    case 'i':
      return is("<input");
    case 'c':
      return is("<control");
    default:
      return false;
  }
}

// The text between the first '>' and the last '<'; empty when there is no such pair.
std::string_view Between(std::string_view line) {
  const size_t open = line.find('>');
  if (open == std::string_view::npos) return {};
  const size_t close = line.rfind('<');
  if (close == std::string_view::npos || close <= open) return {};
  return line.substr(open + 1, close - open - 1);
}

class XmlImporter final {
 public:
  XmlImporter(GameStore& store, Work& work, size_t blockSize)
      : m_blockSize(blockSize == 0 ? kBlockSize : blockSize),
        m_store(store),
        m_work(work),
        m_years(store.YearTable),
        m_manufacturers(store.ManufacturerTable),
        m_orientations(store.OrientationTable),
        m_buttons(store.ButtonsTable),
        m_controls(store.ControlsTable),
        m_statuses(store.StatusTable),
        m_drivers(store.DriverTable),
        m_savestates(store.SavestateTable) {}

  void Run(const std::string& path) {
    if (!FileExists(path)) return;
    std::ifstream file(FsPath(path), std::ios::binary);
    if (!file) throw Failure(75, "Path/File access error");
    std::error_code error;
    const auto length = static_cast<long long>(std::filesystem::file_size(FsPath(path), error));
    if (error) throw Failure(75, "Path/File access error");
    if (length == 0) return;

    m_work.ProgressMax = length;
    m_work.ProgressValue = 0;
    std::vector<char> block(m_blockSize);
    size_t have = 0;
    long long base = 0;  // file offset of block[0]
    bool atEnd = false;
    bool cancelled = false;
    while (true) {
      if (have == block.size()) block.resize(block.size() * 2);  // a line longer than a block
      const size_t wanted = block.size() - have;
      file.read(block.data() + have, static_cast<std::streamsize>(wanted));
      const auto got = static_cast<size_t>(file.gcount());
      have += got;
      if (got < wanted) atEnd = true;

      // Only whole lines are scanned; the unfinished one waits for the next read.
      size_t usable = have;
      if (!atEnd) {
        while (usable > 0 && block[usable - 1] != '\n' && block[usable - 1] != '\r') --usable;
        if (usable == 0) continue;
      }
      if (!ScanLines(block.data(), usable, base)) {
        cancelled = true;
        break;
      }
      if (atEnd) break;
      std::memmove(block.data(), block.data() + usable, have - usable);
      have -= usable;
      base += static_cast<long long>(usable);
      m_work.ProgressValue = base;
    }
    m_work.ProgressValue = length;

    // A game's block in the dump ends where the next machine begins: behind the last game,
    // that is the first device, if any.
    const long long endOffset =
        (!cancelled && m_firstMachineBehindGames >= 0) ? m_firstMachineBehindGames : length;
    m_store.SetEndRecord(NewXmlRecord(EndRecordName, endOffset));
  }

 private:
  // Looks at every line of block[0, end) that holds an element of use. False on cancel.
  bool ScanLines(const char* data, size_t end, long long base) {
    size_t pos = 0;
    while (pos < end) {
      const void* found = std::memchr(data + pos, '<', end - pos);
      if (!found) break;
      const size_t at = static_cast<size_t>(static_cast<const char*>(found) - data);
      if (!Interesting(data + at, data + end)) {
        pos = at + 1;
        continue;
      }
      size_t lineStart = at;
      while (lineStart > 0 && data[lineStart - 1] != '\n' && data[lineStart - 1] != '\r') {
        --lineStart;
      }
      size_t lineEnd = at;
      while (lineEnd < end && data[lineEnd] != '\n' && data[lineEnd] != '\r') ++lineEnd;
      if (m_work.CancelRequested) return false;
      ImportLine(std::string_view(data + lineStart, lineEnd - lineStart),
                 base + static_cast<long long>(lineStart));
      pos = lineEnd + 1;
    }
    return true;
  }

  std::string& Current() { return m_store.GameRecords[static_cast<size_t>(m_store.GameCount())]; }

  std::string_view PieceAfter(size_t i) const {
    // An attribute name with no value behind it (an unclosed quote at the line's end).
    if (i + 1 >= m_pieces.size()) throw Failure(9, "Subscript out of range");
    return m_pieces[i + 1];
  }

  void SetCoded(TableLookup& table, std::string_view value, std::string_view placeholder) {
    const int index = table.FindOrAppend(value);
    char digits[16];
    const auto result = std::to_chars(digits, digits + sizeof digits, index);
    FieldSet(Current(), placeholder,
             std::string_view(digits, static_cast<size_t>(result.ptr - digits)));
  }

  void StartGame(std::string_view name, long long offset) {
    // A game without a description loses its placeholder when the next one begins.
    FieldSet(Current(), "#Z", "");
    if (m_store.GameCount() + 1 == m_capacity) {
      m_capacity += kCapacityStep;
      m_store.Reserve(m_capacity);
    }
    m_store.AppendGame(std::string(name), NewXmlRecord(name, offset));
    m_firstMachineBehindGames = -1;
  }

  // The value behind the first piece holding `attribute`, searched from the first piece to the
  // last but one; false when there is none.
  bool FirstValue(std::string_view attribute, std::string_view& value) const {
    for (size_t j = 0; j + 1 < m_pieces.size(); ++j) {
      if (Contains(m_pieces[j], attribute)) {
        value = m_pieces[j + 1];
        return true;
      }
    }
    return false;
  }

  // The value of the attribute `name`, tested on attribute names only (the even pieces), so
  // that a value such as type="only_buttons" is not taken for a buttons attribute.
  bool AttributeValue(std::string_view name, std::string_view& value) const {
    for (size_t j = 0; j + 1 < m_pieces.size(); j += 2) {
      const std::string_view piece = m_pieces[j];
      if (piece.size() < name.size() + 2 || piece.back() != '=') continue;
      const std::string_view word = piece.substr(piece.size() - 1 - name.size(), name.size());
      const char before = piece[piece.size() - 2 - name.size()];
      if (word == name && (before == ' ' || before == '\t')) {
        value = m_pieces[j + 1];
        return true;
      }
    }
    return false;
  }

  void ImportLine(std::string_view line, long long offset) {
    const bool machineLine = Contains(line, "<game") || Contains(line, "<machine");
    if (m_inDevice && !machineLine) return;
    if (machineLine) {
      if (Contains(line, "isdevice=\"yes\"")) {
        // A device is no game: no record, and nothing of its lines enters a table.
        if (m_firstMachineBehindGames < 0) m_firstMachineBehindGames = offset;
        m_inDevice = true;
        return;
      }
      m_inDevice = false;
      FastSplitViews(line, m_pieces, '"');
      for (size_t i = 0; i < m_pieces.size(); ++i) {
        const std::string_view piece = m_pieces[i];
        if (Contains(piece, "<game name") || Contains(piece, "<machine name")) {
          StartGame(PieceAfter(i), offset);
        }
        if (Contains(piece, "sourcefile")) SetCoded(m_drivers, PieceAfter(i), "#D");
        if (Contains(piece, "cloneof")) {
          FieldSet(Current(), "#CL", PieceAfter(i));
          return;
        }
      }
    }

    std::string_view value;
    if (Contains(line, "<description>")) {
      value = Between(line);
      if (!value.empty()) FieldSet(Current(), "#Z", value);
    } else if (Contains(line, "<year>")) {
      value = Between(line);
      if (!value.empty()) SetCoded(m_years, value, "#Y");
    } else if (Contains(line, "<manufacturer>")) {
      value = Between(line);
      if (!value.empty()) SetCoded(m_manufacturers, value, "#MA");
    } else if (Contains(line, "<display")) {
      FastSplitViews(line, m_pieces, '"');
      if (FirstValue("rotate", value)) SetCoded(m_orientations, value, "#O");
    } else if (Contains(line, "<input")) {
      FastSplitViews(line, m_pieces, '"');
      if (FirstValue("buttons", value)) SetCoded(m_buttons, value, "#BU");
    } else if (Contains(line, "<control")) {
      FastSplitViews(line, m_pieces, '"');
      if (FirstValue("type", value)) SetCoded(m_controls, value, "#CO");
      // Today's lists give the buttons per control, no longer on <input>: the first control
      // that has them counts when no <input line gave a value.
      if (Contains(Current(), "#BU") && AttributeValue("buttons", value)) {
        SetCoded(m_buttons, value, "#BU");
      }
    } else if (Contains(line, "<driver")) {
      FastSplitViews(line, m_pieces, '"');
      for (size_t j = 0; j + 1 < m_pieces.size(); ++j) {
        if (Contains(m_pieces[j], "status")) {
          SetCoded(m_statuses, m_pieces[j + 1], "#ST");
        } else if (Contains(m_pieces[j], "savestate")) {
          SetCoded(m_savestates, m_pieces[j + 1], "#SS");
          break;
        }
      }
    }
  }

  size_t m_blockSize;
  GameStore& m_store;
  Work& m_work;
  TableLookup m_years, m_manufacturers, m_orientations, m_buttons, m_controls, m_statuses,
      m_drivers, m_savestates;
  std::vector<std::string_view> m_pieces;
  int m_capacity = kFirstCapacity;
  bool m_inDevice = false;
  long long m_firstMachineBehindGames = -1;
};

}  // namespace

void ImportListXml(GameStore& store, Log& log, Work& work, const std::string& path,
                   size_t blockSize) {
  // Records and names start afresh; the tables are the caller's to empty.
  std::array<CodeTable, kTableCount> tables;
  for (int t = 0; t < kTableCount; ++t) {
    tables[static_cast<size_t>(t)] = std::move(store.Table(static_cast<TableId>(t)));
  }
  store.Clear();
  for (int t = 0; t < kTableCount; ++t) {
    CodeTable& table = tables[static_cast<size_t>(t)];
    if (!table.empty()) store.Table(static_cast<TableId>(t)) = std::move(table);
  }
  store.Reserve(kFirstCapacity);

  RunGuarded(log, 3201, [&] {
    XmlImporter importer(store, work, blockSize);
    importer.Run(path);
  });
}

void ImportListXml(AppContext& ctx, Work& work, std::string& path) {
  if (path.empty()) path = DefaultListXmlPath(ctx.AppFolder());
  ImportListXml(ctx.store, ctx.log, work, path);
}

bool ListXmlIsWhole(const std::string& path) {
  std::ifstream file(FsPath(path), std::ios::binary | std::ios::ate);
  if (!file) return false;
  const std::streamoff size = file.tellg();
  const std::streamoff tail = std::min<std::streamoff>(size, 4096);
  std::string end(static_cast<size_t>(tail), '\0');
  file.seekg(size - tail);
  file.read(end.data(), tail);
  const std::string_view text = TrimWhite(end);
  return text.ends_with("</mame>") || text.ends_with("</datafile>");
}

}  // namespace tessarin
