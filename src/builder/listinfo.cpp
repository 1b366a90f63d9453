#include "builder/listinfo.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "builder/listxml.h"
#include "builder/tablelookup.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

constexpr int kFirstCapacity = 6000;
constexpr int kCapacityStep = 100;

bool Contains(std::string_view text, std::string_view what) {
  return text.find(what) != std::string_view::npos;
}

// Mid$(line, from) with a 1-based `from`: empty when the line is shorter.
std::string_view From(std::string_view line, size_t from) {
  return from - 1 >= line.size() ? std::string_view() : line.substr(from - 1);
}

// The text without its last character; cutting an empty text is the fault it always was.
std::string_view WithoutLast(std::string_view text) {
  if (text.empty()) throw Failure(5, "Invalid procedure call or argument");
  return text.substr(0, text.size() - 1);
}

// The games gathered in the import's own arrays, since a "resource (" block may rename the
// game before it; they go to the store at the end.
struct LegacyGames {
  std::vector<std::string> names{std::string()};
  std::vector<std::string> records{std::string()};
  int count = 0;
  int capacity = kFirstCapacity;
};

class LegacyImporter final {
 public:
  LegacyImporter(GameStore& store, Work& work, LegacyGames& games)
      : m_work(work),
        m_games(games),
        m_years(store.YearTable),
        m_manufacturers(store.ManufacturerTable),
        m_orientations(store.OrientationTable),
        m_buttons(store.ButtonsTable),
        m_controls(store.ControlsTable),
        m_statuses(store.StatusTable) {}

  // False when cancelled.
  bool Run(DataLineReader& reader) {
    m_work.ProgressMax = reader.FileLength();
    m_work.ProgressValue = 0;
    std::string_view line;
    while (reader.ReadLine(line)) {
      if (m_work.CancelRequested) return false;
      m_work.ProgressValue = reader.NextOffset();
      ImportLine(line, reader.LineOffset());
    }
    return true;
  }

 private:
  std::string& Current() { return m_games.records[static_cast<size_t>(m_games.count)]; }

  void SetCoded(TableLookup& table, std::string_view value, std::string_view placeholder) {
    const int index = table.FindOrAppend(value);
    char digits[16];
    const auto result = std::to_chars(digits, digits + sizeof digits, index);
    FieldSet(Current(), placeholder,
             std::string_view(digits, static_cast<size_t>(result.ptr - digits)));
  }

  void ImportLine(std::string_view line, long long offset) {
    if (line.substr(0, 4) == "game") {
      FieldSet(Current(), "#Z", "");
      ++m_games.count;
      if (m_games.count == m_games.capacity) {
        m_games.capacity += kCapacityStep;
        // At least twofold, so that a long list isn't copied once every step.
        const size_t room =
            std::max(static_cast<size_t>(m_games.capacity) + 1, 2 * m_games.names.capacity());
        m_games.names.reserve(room);
        m_games.records.reserve(room);
      }
      m_games.names.emplace_back();
      m_games.records.emplace_back();
      return;
    }
    if (Contains(line, "\tname")) {
      // Also a block that isn't a game (a "resource (") lands here and takes the place of the
      // game before it, since no "game" line moved the count.
      const std::string_view name = From(line, 7);
      Current() = NewLegacyRecord(name, offset);
      m_games.names[static_cast<size_t>(m_games.count)].assign(name);
      return;
    }
    if (Contains(line, "\tdescription")) {
      FieldSet(Current(), "#Z", WithoutLast(From(line, 15)));
    } else if (Contains(line, "\tyear")) {
      SetCoded(m_years, From(line, 6), "#Y");
    } else if (Contains(line, "\tcloneof")) {
      FieldSet(Current(), "#CL", From(line, 10));
    } else if (Contains(line, "\tmanufacturer")) {
      SetCoded(m_manufacturers, WithoutLast(From(line, 16)), "#MA");
    } else if (Contains(line, "video (")) {
      FastSplitViews(line, m_pieces, ' ');
      for (size_t j = 0; j + 1 < m_pieces.size(); ++j) {
        if (m_pieces[j] == "orientation") {
          SetCoded(m_orientations, m_pieces[j + 1], "#O");
          break;
        }
      }
    } else if (Contains(line, "input (")) {
      FastSplitViews(line, m_pieces, ' ');
      for (size_t j = 0; j + 1 < m_pieces.size(); ++j) {
        if (m_pieces[j] == "control") SetCoded(m_controls, m_pieces[j + 1], "#CO");
        if (m_pieces[j] == "buttons") SetCoded(m_buttons, m_pieces[j + 1], "#BU");
      }
    } else if (Contains(line, "driver (")) {
      FastSplitViews(line, m_pieces, ' ');
      for (size_t j = 0; j + 1 < m_pieces.size(); ++j) {
        if (m_pieces[j] == "status") {
          // The status index goes into the driver field: legacy databases have it there.
          SetCoded(m_statuses, m_pieces[j + 1], "#D");
          break;
        }
      }
    }
  }

  Work& m_work;
  LegacyGames& m_games;
  TableLookup m_years, m_manufacturers, m_orientations, m_buttons, m_controls, m_statuses;
  std::vector<std::string_view> m_pieces;
};

}  // namespace

void ImportListInfo(AppContext& ctx, Work& work, std::string& path) {
  if (path.empty()) path = DefaultListInfoPath(ctx.AppFolder());
  GameStore& store = ctx.store;

  std::array<CodeTable, kTableCount> tables;
  for (int t = 0; t < kTableCount; ++t) {
    tables[static_cast<size_t>(t)] = std::move(store.Table(static_cast<TableId>(t)));
  }
  store.Clear();
  for (int t = 0; t < kTableCount; ++t) {
    CodeTable& table = tables[static_cast<size_t>(t)];
    if (!table.empty()) store.Table(static_cast<TableId>(t)) = std::move(table);
  }

  LegacyGames games;
  bool read = false;
  long long length = 0;
  const bool finished = RunGuarded(ctx.log, 3301, [&] {
    if (!FileExists(path)) return;
    ctx.log.WriteLogLine(AnalysingLine(path, {}));
    DataLineReader reader;
    if (!reader.Open(path)) throw Failure(75, "Path/File access error");
    length = reader.FileLength();
    if (length == 0) return;
    read = true;
    LegacyImporter importer(store, work, games);
    importer.Run(reader);
  });

  // The games read so far stay, also after a fault; the EndRecord comes only with a whole run.
  store.Reserve(games.count);
  store.GameRecords[0] = std::move(games.records[0]);
  for (size_t i = 1; i < games.records.size(); ++i) {
    store.AppendGame(std::move(games.names[i]), std::move(games.records[i]));
  }
  if (finished && read) store.SetEndRecord(NewLegacyRecord(EndRecordName, length));
}

}  // namespace tessarin
