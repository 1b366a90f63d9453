#include "builder/datanalysers.h"

#include <QTime>
#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/work.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

constexpr size_t kInitialBuffer = 1 << 20;

// "start,second" without a stream: the offsets of every entry of a big file go through here.
void MakeRange(std::string& out, std::int64_t start, std::int64_t second) {
  char digits[48];
  auto r = std::to_chars(digits, digits + 24, start);
  *r.ptr++ = ',';
  r = std::to_chars(r.ptr, digits + sizeof digits, second);
  out.assign(digits, r.ptr);
}

}  // namespace

void SetField(GameStore& store, int index, std::string_view placeholder, std::string_view value) {
  if (index <= 0) return;
  FieldSet(store.GameRecords[static_cast<size_t>(index)], placeholder, value);
}

bool NextLine(DataLineReader& reader, Work& work, std::string_view& line, bool& cancelled) {
  if (!reader.ReadLine(line)) return false;
  if (work.CancelRequested) {
    cancelled = true;
    return false;
  }
  work.ProgressValue += static_cast<long long>(line.size());
  return true;
}

bool OpenWithProgress(DataLineReader& reader, const std::string& path, Work& work) {
  if (!reader.Open(path)) return false;
  work.ProgressMax = reader.FileLength();
  work.ProgressValue = 0;
  return true;
}

void ProgressToEnd(Work& work) { work.ProgressValue = work.ProgressMax.load(); }

// ---- helpers shared with the ini analysers ----

// ---- file look-up and log ----

std::string ResolveNoCase(const std::string& folder, std::string_view relativePath) {
  fs::path current = FsPath(folder);
  size_t pos = 0;
  while (pos <= relativePath.size()) {
    size_t next = relativePath.find_first_of("\\/", pos);
    if (next == std::string_view::npos) next = relativePath.size();
    const std::string part(relativePath.substr(pos, next - pos));
    pos = next + 1;
    if (part.empty()) continue;
    std::error_code ec;
    fs::path candidate = current / FsPath(part);
    if (!fs::exists(candidate, ec)) {
      for (fs::directory_iterator it(current, ec), end; !ec && it != end; it.increment(ec)) {
        if (EqualsNoCase(PathText(it->path().filename()), part)) {
          candidate = it->path();
          break;
        }
      }
    }
    current = candidate;
  }
  return PathText(current);
}

std::string ExistingDataFile(const std::string& path) {
  if (path.empty() || path == "-1") return {};
  if (FileExists(path)) return path;
  // Names the user typed or a settings file from another system may differ in case only.
  const size_t slash = path.find_last_of("\\/");
  if (slash == std::string::npos || slash + 1 == path.size()) return {};
  std::string other = FindFileNoCase(path.substr(0, slash + 1), path.substr(slash + 1));
  return FileExists(other) ? other : std::string();
}

std::string FindDataFile(const AppContext& ctx, std::string_view settingsKey,
                         std::string_view defaultPath) {
  std::string stored = ExistingDataFile(ctx.settings.InfRead(settingsKey));
  if (!stored.empty()) return stored;
  std::string fallback = ResolveNoCase(ctx.AppFolder(), defaultPath);
  if (FileExists(fallback)) return fallback;
  return {};
}

std::string AnalysingLine(std::string_view path, std::string_view what) {
  std::string line = " ";
  line += QTime::currentTime().toString(QStringLiteral("HH:mm:ss")).toStdString();
  line += " Analysing ";
  line += path;
  if (!what.empty()) {
    line += "\r\n";
    line += what;
  }
  return line;
}

// ---- DataLineReader ----

bool DataLineReader::Open(const std::string& path) {
  Close();
  const fs::path p = FsPath(path);
  std::error_code ec;
  const auto size = fs::file_size(p, ec);
  if (ec) return false;
  m_file.open(p, std::ios::binary);
  if (!m_file.is_open()) return false;
  m_fileLength = static_cast<std::int64_t>(size);
  if (m_buffer.size() < kInitialBuffer) m_buffer.resize(kInitialBuffer);
  return true;
}

void DataLineReader::Close() {
  if (m_file.is_open()) m_file.close();
  m_file.clear();
  m_fileLength = 0;
  m_begin = m_end = 0;
  m_eof = false;
  m_consumed = 0;
  m_lineOffset = m_lineLength = 0;
  m_lineEndLength = 0;
}

bool DataLineReader::Fill() {
  if (m_eof || !m_file.is_open()) return false;
  if (m_begin > 0) {
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
  }
  // A line longer than the buffer: the buffer doubles, so a huge line costs few reads.
  if (m_end == m_buffer.size()) m_buffer.resize(m_buffer.size() * 2);
  m_file.read(m_buffer.data() + m_end, static_cast<std::streamsize>(m_buffer.size() - m_end));
  const auto got = static_cast<size_t>(m_file.gcount());
  if (got == 0) {
    m_eof = true;
    return false;
  }
  m_end += got;
  return true;
}

bool DataLineReader::AtEnd() {
  if (m_begin < m_end) return false;
  return !Fill();
}

bool DataLineReader::ReadLine(std::string_view& line) {
  size_t scanned = 0;  // bytes behind m_begin known to hold no line end
  for (;;) {
    const char* base = m_buffer.data();
    size_t p = m_begin + scanned;
    while (p < m_end && base[p] != '\n' && base[p] != '\r') ++p;
    if (p < m_end) {
      if (base[p] == '\r' && p + 1 == m_end && !m_eof) {
        // The CR is the last byte read so far: an LF may follow in the next read.
        scanned = p - m_begin;
        if (Fill()) continue;
        base = m_buffer.data();
        p = m_begin + scanned;
      }
      const int endLength = (base[p] == '\r' && p + 1 < m_end && base[p + 1] == '\n') ? 2 : 1;
      const size_t length = p - m_begin;
      line = std::string_view(base + m_begin, length);
      m_lineOffset = m_consumed;
      m_lineLength = static_cast<std::int64_t>(length);
      m_lineEndLength = endLength;
      m_begin = p + static_cast<size_t>(endLength);
      m_consumed += m_lineLength + endLength;
      return true;
    }
    scanned = m_end - m_begin;
    if (!m_eof && Fill()) continue;
    if (m_begin == m_end) return false;
    // The last line, without a line end.
    const size_t length = m_end - m_begin;
    line = std::string_view(m_buffer.data() + m_begin, length);
    m_lineOffset = m_consumed;
    m_lineLength = static_cast<std::int64_t>(length);
    m_lineEndLength = 0;
    m_begin = m_end;
    m_consumed += m_lineLength;
    return true;
  }
}

// ---- the analysers ----

bool AnalyseMameinfo(AppContext& ctx, bool reset, Work& work) {
  (void)work;  // runs to its end: the build tests cancel only between the analysers
  bool result = false;
  RunGuarded(ctx.log, 3401, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile3", "datafiles/mameinfo.dat");
    if (path.empty()) return;
    if (reset) ResetMameinfoField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for MameInfo data."));
    DataLineReader reader;
    if (!reader.Open(path) || reader.FileLength() == 0) return;

    std::string_view line;
    std::string name;
    std::string value;
    bool atInfo = false;
    while (reader.ReadLine(line)) {
      if (StartsWith(line, "$info")) {
        atInfo = true;
        break;
      }
    }
    // An $info line that ends the file starts no entry.
    while (atInfo && !reader.AtEnd()) {
      const std::int64_t start = reader.LineOffset();
      name.assign(line.size() > 6 ? line.substr(6) : std::string_view());
      for (;;) {
        if (!reader.ReadLine(line)) throw Failure(62, "Input past end of file");
        if (StartsWith(line, "$end")) break;
      }
      const std::int64_t length = reader.NextOffset() - start;
      const int index = store.FindGame(name);
      if (index > 0) {
        MakeRange(value, start, length);
        SetField(store, index, "#MI", value);
      }
      atInfo = false;
      while (reader.ReadLine(line)) {
        if (StartsWith(line, "$info")) {
          atInfo = true;
          break;
        }
      }
    }
    result = true;
  });
  return result;
}

bool AnalyseHistory(AppContext& ctx, bool reset, Work& work) {
  (void)work;
  bool result = false;
  RunGuarded(ctx.log, 3402, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile2", "datafiles/history.dat");
    if (path.empty()) return;
    if (reset) ResetHistoryField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for History data."));
    DataLineReader reader;
    if (!reader.Open(path) || reader.FileLength() == 0) return;
    const std::int64_t fileLength = reader.FileLength();

    std::string pendingNames;
    std::string pendingValue;
    std::vector<std::string> parts;
    // Every rom of an $info list gets the same range: several games share one text.
    auto distribute = [&] {
      FastSplit(pendingNames, parts, ",");
      for (const std::string& piece : parts) {
        if (piece.empty()) continue;
        SetField(store, store.FindGame(piece), "#HI", pendingValue);
      }
    };
    char digits[24];
    std::string_view line;
    while (reader.ReadLine(line)) {
      if (!StartsWith(line, "$info")) continue;
      const std::int64_t offset = reader.LineOffset();
      if (!pendingNames.empty()) {
        const auto r = std::to_chars(digits, digits + sizeof digits, offset - 3);
        pendingValue.append(digits, r.ptr);
        distribute();
      }
      const size_t equal = line.find('=');
      if (equal != std::string_view::npos) {
        pendingNames.assign(TrimBlanks(line.substr(equal + 1)));
        const auto r = std::to_chars(digits, digits + sizeof digits, offset);
        pendingValue.assign(digits, r.ptr);
        pendingValue += ',';
      }
    }
    // The last entry runs to the end of the file.
    if (!pendingValue.empty() && pendingValue.back() == ',') {
      pendingValue += std::to_string(fileLength);
      distribute();
    }
    result = true;
  });
  return result;
}

bool AnalyseCommand(AppContext& ctx, bool reset, Work& work) {
  (void)work;
  RunGuarded(ctx.log, 3403, [&] {
    GameStore& store = ctx.store;
    const std::string path = FindDataFile(ctx, "DataFile5", "datafiles/command.dat");
    if (path.empty()) return;
    if (reset) ResetCommandField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for Command data."));
    DataLineReader reader;
    if (!reader.Open(path) || reader.FileLength() == 0) return;
    const std::int64_t total = reader.FileLength();

    std::string_view line;
    bool found = false;
    while (reader.ReadLine(line)) {
      if (StartsWith(line, "$info")) {
        found = true;
        break;
      }
    }
    if (!found) return;
    // The whole text behind the first '=', untrimmed and unsplit; without '=' the whole line,
    // which names no game.
    auto nameOf = [](std::string_view infoLine) {
      const size_t equal = infoLine.find('=');
      return equal == std::string_view::npos ? infoLine : infoLine.substr(equal + 1);
    };
    int current = store.FindGame(nameOf(line));
    std::int64_t start = reader.LineOffset();
    std::string value;
    while (reader.ReadLine(line)) {
      if (!StartsWith(line, "$info")) continue;
      const std::int64_t offset = reader.LineOffset();
      if (current != 0) {
        MakeRange(value, start, offset - start);
        SetField(store, current, "#CM", value);
      }
      if (line.find('=') != std::string_view::npos) {
        current = store.FindGame(nameOf(line));
        start = offset;
      }
    }
    if (current != 0) {
      MakeRange(value, start, total - start);
      SetField(store, current, "#CM", value);
    }
  });
  // Never true, even after a complete analysis: the database dialog shows no line for it.
  return false;
}

bool AnalyseHiscore(AppContext& ctx, bool reset, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3404, [&] {
    GameStore& store = ctx.store;
    ProgressToEnd(work);
    const std::string path = FindDataFile(ctx, "DataFile6", "datafiles/hiscore.dat");
    if (path.empty()) return;
    if (reset) ResetHiscoreField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for Hiscore data."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;

    bool cancelled = false;
    std::string_view line;
    while (NextLine(reader, work, line, cancelled)) {
      // A leading 0 marks the old format's data lines, even for a rom whose name starts so.
      if (line.empty() || line.front() == '0') continue;
      const size_t colon = line.find(':');
      if (colon == std::string_view::npos) continue;
      SetField(store, store.FindGame(line.substr(0, colon)), "#HS", "1");
    }
    reader.Close();
    result = !cancelled;
    ProgressToEnd(work);
  });
  return result;
}

bool AnalyseCheat(AppContext& ctx, bool reset, Work& work) {
  bool result = false;
  RunGuarded(ctx.log, 3405, [&] {
    GameStore& store = ctx.store;
    ProgressToEnd(work);
    const std::string path = FindDataFile(ctx, "DataFile4", "datafiles/cheat.dat");
    if (path.empty()) return;
    if (reset) ResetCheatField(store);
    ctx.log.WriteLogLine(AnalysingLine(path, "  for Cheat data."));
    DataLineReader reader;
    if (!OpenWithProgress(reader, path, work)) return;

    bool cancelled = false;
    std::string remembered;
    std::string_view line;
    while (NextLine(reader, work, line, cancelled)) {
      const std::string_view rest = line.empty() ? line : line.substr(1);
      const size_t colon = rest.find(':');
      if (colon == std::string_view::npos) continue;
      const std::string_view name = rest.substr(0, colon);
      // A game's cheats stand on consecutive lines: one look-up per game is enough.
      if (name == remembered) continue;
      remembered.assign(name);
      SetField(store, store.FindGame(name), "#CH", "1");
    }
    reader.Close();
    result = !cancelled;
    ProgressToEnd(work);
  });
  return result;
}

}  // namespace tessarin
