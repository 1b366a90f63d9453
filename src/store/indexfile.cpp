#include "store/indexfile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/textutil.h"
#include "core/work.h"

namespace tessarin {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

// The next line of `text` from `pos`, without its line end; CR LF, LF and a lone CR each end a
// line. `pos` moves behind the line end. False when nothing is left.
bool NextLine(std::string_view text, size_t& pos, std::string_view& line) {
  if (pos >= text.size()) return false;
  const char* start = text.data() + pos;
  const size_t rest = text.size() - pos;
  const void* lf = std::memchr(start, '\n', rest);
  const size_t lfAt = lf ? static_cast<size_t>(static_cast<const char*>(lf) - start) : rest;
  const void* cr = std::memchr(start, '\r', lfAt);
  if (cr) {
    const size_t crAt = static_cast<size_t>(static_cast<const char*>(cr) - start);
    line = std::string_view(start, crAt);
    pos += crAt + ((crAt + 1 < rest && start[crAt + 1] == '\n') ? 2 : 1);
    return true;
  }
  line = std::string_view(start, lfAt);
  pos += lfAt + (lfAt < rest ? 1 : 0);
  return true;
}

// The two clean-ups of a record before it is written; changes the record in the store.
void CleanRecord(std::string& record) {
  if (!record.empty() && record.front() == ' ') {
    record = std::string(TrimBlanks(record));
  }
  if (record.find(" ;B") != std::string::npos) {
    record = FastReplace(record, " ;B", ";B", 1, kAllMatches, 0);
  }
}

}  // namespace

std::string DataFilesFolder(const std::string& appFolder) {
  return AddSlash(AddSlash(appFolder) + "DataFiles");
}

std::string IndexFilePath(const std::string& appFolder) {
  return DataFilesFolder(appFolder) + "index";
}

std::string DefaultListXmlPath(const std::string& appFolder) {
  return DataFilesFolder(appFolder) + "listxml";
}

std::string DefaultListInfoPath(const std::string& appFolder) {
  return DataFilesFolder(appFolder) + "listinfo";
}

std::string SectionTitleLine(TableId id) {
  std::string line = "[";
  line.append(TableTitle(id));
  line.push_back(']');
  return line;
}

bool LoadIndex(GameStore& store, Log& log, const std::string& path) {
  bool loaded = false;
  RunGuarded(log, 2201, [&] {
    const int longest = store.LongestNameLength;
    store.Clear();
    store.LongestNameLength = longest;
    if (!FileExists(path)) return;

    std::string text;
    if (!ReadWholeFile(path, text)) throw Failure(75, "Path/File access error");

    // One pass to count the lines spares the arrays any regrowth.
    const auto lineCount = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
    store.Reserve(std::max(lineCount, 6500));

    std::array<std::string, kTableCount> titles;
    for (int t = 0; t < kTableCount; ++t) titles[t] = SectionTitleLine(static_cast<TableId>(t));

    size_t pos = 0;
    std::string_view line;
    if (!text.empty() && NextLine(text, pos, line)) store.DatabaseVersion.assign(line);

    CodeTable* section = nullptr;
    // The last record line before the first title is the EndRecord, so a record is appended
    // as a game only when the next record line shows that it wasn't the last one.
    bool havePending = false;
    std::string_view pending;
    int recordLines = 0;
    auto nameOf = [](std::string_view record) -> std::string_view {
      const size_t semicolon = record.find(';');
      return semicolon == std::string_view::npos ? std::string_view() : record.substr(0, semicolon);
    };

    while (NextLine(text, pos, line)) {
      int title = -1;
      if (!line.empty() && line.front() == '[') {
        for (int t = 0; t < kTableCount; ++t) {
          if (line == titles[t]) {
            title = t;
            break;
          }
        }
      }
      if (title >= 0) {
        section = &store.Table(static_cast<TableId>(title));
        continue;
      }
      if (section) {
        section->emplace_back(line);
        continue;
      }
      ++recordLines;
      const std::string_view name = nameOf(line);
      if (static_cast<int>(name.size()) > store.LongestNameLength) {
        store.LongestNameLength = static_cast<int>(name.size());
      }
      if (havePending) store.AppendGame(std::string(nameOf(pending)), std::string(pending));
      pending = line;
      havePending = true;
    }

    if (recordLines == 0) {
      // Without even an EndRecord the game count would go below zero: a broken file.
      store.Clear();
      store.LongestNameLength = std::max(store.LongestNameLength, longest);
      throw Failure(9, "Subscript out of range");
    }
    store.SetEndRecord(std::string(pending));
    store.SourceIsXml =
        store.GameRecords.size() > 1 && store.GameRecords[1].find(";A") != std::string::npos;
    loaded = true;
  });
  return loaded;
}

std::string IndexFileText(GameStore& store, Work* work) {
  const int count = store.GameCount();
  // Records 1 to GameCount + 1, or to GameCount when no EndRecord stands behind the games.
  const size_t last = std::min(static_cast<size_t>(count) + 1, store.GameRecords.size() - 1);

  size_t size = store.DatabaseVersion.size() + 2;
  for (size_t i = 1; i <= last; ++i) size += store.GameRecords[i].size() + 2;
  for (int t = 0; t < kTableCount; ++t) {
    for (const std::string& entry : store.Table(static_cast<TableId>(t))) size += entry.size() + 2;
    size += 16;
  }

  std::string out;
  out.reserve(size);
  out.append(store.DatabaseVersion).append(kLineEnd);
  if (work) {
    work->ProgressValue = 0;
    work->ProgressMax = std::llround(count * 1.1);
  }
  for (size_t i = 1; i <= last; ++i) {
    std::string& record = store.GameRecords[i];
    CleanRecord(record);
    out.append(record).append(kLineEnd);
    if (work) work->ProgressValue = static_cast<long long>(i);
  }
  for (int t = 0; t < kTableCount; ++t) {
    const auto id = static_cast<TableId>(t);
    out.append(SectionTitleLine(id)).append(kLineEnd);
    const CodeTable& table = store.Table(id);
    for (size_t e = 1; e < table.size(); ++e) out.append(table[e]).append(kLineEnd);
  }
  return out;
}

bool SaveIndex(GameStore& store, Log& log, Work* work, const std::string& path) {
  bool saved = false;
  RunGuarded(log, 2202, [&] {
    const std::string text = IndexFileText(store, work);
    if (!WriteFileAtomically(path, text)) throw Failure(75, "Path/File access error");
    saved = true;
  });
  return saved;
}

}  // namespace tessarin
