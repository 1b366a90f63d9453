#include "store/gamerecord.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <limits>

#include "core/log.h"

namespace tessarin {

namespace {

struct TableInfo {
  std::string_view title;
  char tag;
};

// In index file order, which is also the order of TableId.
constexpr std::array<TableInfo, kTableCount> kTables = {{
    {"Manufacturer", 'C'},
    {"Year", 'D'},
    {"Orientation", 'E'},
    {"Buttons", 'F'},
    {"Controls", 'G'},
    {"Status", 'H'},
    {"Genre", 'I'},
    {"Category", 'J'},
    {"VerAdded", 'K'},
    {"Bios", 'M'},
    {"Driver", 'N'},
    {"nPlayers", 'O'},
    {"Savestate", 'V'},
}};

const TableInfo& Info(TableId id) {
  const int i = static_cast<int>(id);
  if (i < 0 || i >= kTableCount) throw Failure(9, "Subscript out of range");
  return kTables[static_cast<size_t>(i)];
}

std::string NewRecord(std::string_view name, std::string_view head, long long dumpOffset) {
  char digits[24];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, dumpOffset);
  (void)error;  // 24 bytes hold any 64-bit number
  std::string record;
  record.reserve(name.size() + head.size() + static_cast<size_t>(end - digits) + 2 +
                 RecordTemplate.size());
  record.append(name);
  record.append(head);
  record.append(digits, end);
  return record;
}

// Generations are unique in the run, so that a store assigned from another never looks
// unchanged to a reader that remembers the old one's.
unsigned long long NextGeneration() {
  static std::atomic<unsigned long long> last{0};
  return ++last;
}

}  // namespace

std::string_view TableTitle(TableId id) { return Info(id).title; }

char TableTag(TableId id) { return Info(id).tag; }

GameStore::GameStore() { Clear(); }

CodeTable& GameStore::Table(TableId id) {
  switch (id) {
    case TableId::Manufacturer:
      return ManufacturerTable;
    case TableId::Year:
      return YearTable;
    case TableId::Orientation:
      return OrientationTable;
    case TableId::Buttons:
      return ButtonsTable;
    case TableId::Controls:
      return ControlsTable;
    case TableId::Status:
      return StatusTable;
    case TableId::Genre:
      return GenreTable;
    case TableId::Category:
      return CategoryTable;
    case TableId::VerAdded:
      return VerAddedTable;
    case TableId::Bios:
      return BiosTable;
    case TableId::Driver:
      return DriverTable;
    case TableId::NPlayers:
      return NPlayersTable;
    case TableId::Savestate:
      return SavestateTable;
  }
  throw Failure(9, "Subscript out of range");
}

const CodeTable& GameStore::Table(TableId id) const {
  return const_cast<GameStore*>(this)->Table(id);
}

int GameStore::AppendGame(std::string name, std::string record) {
  m_generation = NextGeneration();
  const int index = static_cast<int>(m_names.size());
  if (HasEndRecord()) {
    GameRecords.insert(GameRecords.end() - 1, std::move(record));
  } else {
    // Keep records and names at the same indexes even if someone pushed records directly.
    GameRecords.resize(m_names.size());
    GameRecords.push_back(std::move(record));
  }
  // The first game of a name is the one FindGame gives, as a walk from the start would.
  m_index.try_emplace(name, index);
  m_names.push_back(std::move(name));
  return index;
}

void GameStore::SetEndRecord(std::string record) {
  m_generation = NextGeneration();
  if (HasEndRecord()) {
    GameRecords.back() = std::move(record);
    return;
  }
  GameRecords.resize(m_names.size());
  GameRecords.push_back(std::move(record));
}

void GameStore::Clear() {
  m_generation = NextGeneration();
  GameRecords.assign(1, std::string());
  m_names.assign(1, std::string());
  m_index.clear();
  for (int i = 0; i < kTableCount; ++i) Table(static_cast<TableId>(i)).assign(1, std::string());
}

void GameStore::Reserve(int games) {
  if (games <= 0) return;
  size_t n = static_cast<size_t>(games);
  if (n + 1 <= m_names.capacity()) return;
  // The imports ask for room in fixed steps; growing at least twofold keeps a long list from
  // being copied and rehashed once a step.
  n = std::max(n, 2 * m_names.capacity());
  GameRecords.reserve(n + 2);
  m_names.reserve(n + 1);
  m_index.reserve(n);
}

int GameStore::FindGame(std::string_view name) const {
  const auto it = m_index.find(name);
  return it == m_index.end() ? 0 : it->second;
}

std::string NewXmlRecord(std::string_view name, long long dumpOffset) {
  std::string record = NewRecord(name, ";A", dumpOffset);
  record.append(";0");
  record.append(RecordTemplate);
  return record;
}

std::string NewLegacyRecord(std::string_view name, long long dumpOffset) {
  std::string record = NewRecord(name, ";0;\xE0", dumpOffset);
  record.append(RecordTemplate);
  return record;
}

void FieldSet(std::string& record, std::string_view placeholder, std::string_view value) {
  // Most sets in a build find nothing (the field is set already, or the data names no such
  // field): checking first spares the copy FastReplace would make of an unchanged record.
  if (placeholder.empty() || record.find(placeholder) == std::string::npos) return;
  record = FastReplace(record, placeholder, value, 1, kAllMatches, 0);
}

size_t FieldPosition(std::string_view record, char tag) {
  const char mark[2] = {';', tag};
  return record.find(std::string_view(mark, 2));
}

std::string_view FieldValue(std::string_view record, char tag) {
  const size_t position = FieldPosition(record, tag);
  if (position == std::string_view::npos) return {};
  const std::string_view behind = record.substr(position + 2);
  return behind.substr(0, behind.find(';'));
}

int FieldToIndex(std::string_view textBehindTag) {
  if (!textBehindTag.empty() && textBehindTag.front() == '#') return 0;
  const size_t end = textBehindTag.find(';');
  if (end == std::string_view::npos) throw Failure(5, "Invalid procedure call or argument");
  const std::string_view digits = textBehindTag.substr(0, end);
  // The value is read as far as it is a number, as the record texts were written by us.
  size_t i = 0;
  while (i < digits.size() && digits[i] == ' ') ++i;
  bool negative = false;
  if (i < digits.size() && (digits[i] == '-' || digits[i] == '+')) negative = digits[i++] == '-';
  long long value = 0;
  for (; i < digits.size() && digits[i] >= '0' && digits[i] <= '9'; ++i) {
    value = value * 10 + (digits[i] - '0');
    if (value > std::numeric_limits<int>::max()) throw Failure(6, "Overflow");
  }
  return static_cast<int>(negative ? -value : value);
}

std::string GameDescription(const GameStore& store, int index) {
  if (index < 1 || index > store.GameCount()) return {};
  return std::string(FieldValue(store.GameRecords[static_cast<size_t>(index)], 'B'));
}

bool IsPresent(std::string_view record) { return !record.empty() && record.back() == '*'; }

void MakeSortKeys(const GameStore& store, std::vector<std::string>& list) {
  constexpr size_t kKeyWidth = 100;
  for (size_t i = 1; i < list.size(); ++i) {
    const int index = store.FindGame(list[i]);
    std::string key = GameDescription(store, index);
    key.resize(kKeyWidth, ' ');
    key += std::to_string(index);
    list[i] = std::move(key);
  }
}

void ResetField(std::string& record, char tag, std::string_view placeholder) {
  const size_t position = FieldPosition(record, tag);
  // A record without the tag is left alone: there is no field to put back.
  if (position == std::string::npos) return;
  const size_t valueStart = position + 2;
  const size_t next = record.find(';', valueStart);
  // With no ';' behind, nothing is dropped and the old value stays behind the placeholder.
  const size_t dropEnd = next == std::string::npos ? valueStart : next;
  record.replace(valueStart, dropEnd - valueStart, placeholder);
}

namespace {

void ResetAll(GameStore& store, char tag, std::string_view placeholder) {
  const size_t games = static_cast<size_t>(store.GameCount());
  for (size_t i = 1; i <= games && i < store.GameRecords.size(); ++i) {
    ResetField(store.GameRecords[i], tag, placeholder);
  }
}

}  // namespace

void ResetHistoryField(GameStore& store) { ResetAll(store, 'Q', "#HI"); }
void ResetCommandField(GameStore& store) { ResetAll(store, 'T', "#CM"); }
void ResetHiscoreField(GameStore& store) { ResetAll(store, 'P', "#HS"); }
void ResetCheatField(GameStore& store) { ResetAll(store, 'R', "#CH"); }
void ResetNPlayersField(GameStore& store) { ResetAll(store, 'O', "#N"); }
void ResetVerAddedField(GameStore& store) { ResetAll(store, 'K', "#V"); }
void ResetMatureField(GameStore& store) { ResetAll(store, 'L', "#X"); }
void ResetGenreField(GameStore& store) { ResetAll(store, 'I', "#G"); }
void ResetCategoryField(GameStore& store) { ResetAll(store, 'J', "#CA"); }

void ResetCatverFields(GameStore& store) {
  ResetAll(store, 'K', "#V");
  ResetAll(store, 'J', "#CA");
}

void ResetWizsortFields(GameStore& store) {
  ResetAll(store, 'J', "#CA");
  ResetAll(store, 'I', "#G");
  ResetAll(store, 'N', "#D");
  ResetAll(store, 'C', "#MA");
  ResetAll(store, 'K', "#V");
  ResetAll(store, 'D', "#Y");
  ResetAll(store, 'L', "#X");
  ResetAll(store, 'M', "#BI");
}

void ResetMameinfoField(GameStore& store) {
  // Deliberately blunt: everything behind ";U" goes, field V and the presence mark with it.
  const size_t games = static_cast<size_t>(store.GameCount());
  for (size_t i = 1; i <= games && i < store.GameRecords.size(); ++i) {
    std::string& record = store.GameRecords[i];
    const size_t position = FieldPosition(record, 'U');
    if (position == std::string::npos) continue;
    record.resize(position + 2);
    record.append("#MI");
  }
}

}  // namespace tessarin
