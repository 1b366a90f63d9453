#include "store/faststrings.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "core/textutil.h"

namespace tessarin {

namespace {

// The scratch block of FastReplace. It lives as long as its thread and only ever grows, so a
// build that replaces placeholders in every record allocates only for the results. Its bytes
// beyond the last write are left over from earlier calls and never read.
struct ReplaceState {
  std::string buffer;
};

ReplaceState& State() {
  thread_local ReplaceState state;
  return state;
}

// The engine of FastReplace: `searched` is the text searched in (the source itself, or its
// lower-case copy), `source` the text copied from; `find` is as it is searched for.
void ReplaceCore(std::string& result, std::string_view source, std::string_view searched,
                 std::string_view find, std::string_view replacement, long start, long count) {
  const size_t sourceLength = source.size();
  const size_t findLength = find.size();
  const size_t replacementLength = replacement.size();

  // The first search comes before anything else: no match, no copy into the buffer.
  const size_t from = start < 2 ? 0 : static_cast<size_t>(start) - 1;
  size_t match = from <= searched.size() ? searched.find(find, from) : std::string_view::npos;
  if (match == std::string_view::npos || count < 1) {
    result.assign(source);
    return;
  }

  long done = 0;
  if (replacementLength == findLength) {
    // Same length: one copy of the source, then every match overwritten in place.
    result.assign(source);
    while (match != std::string_view::npos && done < count) {
      std::memcpy(result.data() + match, replacement.data(), replacementLength);
      ++done;
      match = searched.find(find, match + findLength);
    }
    return;
  }

  std::string& buffer = State().buffer;
  size_t read = 0;   // next byte of the source to copy
  size_t write = 0;  // next free byte of the buffer

  if (replacementLength < findLength) {
    // The result can't outgrow the source, so a buffer as long as the source is always enough.
    if (buffer.size() < sourceLength) buffer.resize(sourceLength);
    char* out = buffer.data();
    while (match != std::string_view::npos && done < count) {
      const size_t chunk = match - read;
      if (chunk > 0) std::memcpy(out + write, source.data() + read, chunk);
      write += chunk;
      if (replacementLength > 0) std::memcpy(out + write, replacement.data(), replacementLength);
      write += replacementLength;
      read = match + findLength;
      ++done;
      if (done < count) match = searched.find(find, read);
    }
    const size_t rest = sourceLength - read;
    if (rest > 0) std::memcpy(out + write, source.data() + read, rest);
    result.assign(out, write + rest);
    return;
  }

  // A longer replacement: the result may outgrow the source, and then the buffer grows by at
  // least its own length at a time, so that the growth stays rare.
  const size_t firstNeed = sourceLength + replacementLength;
  if (buffer.size() < firstNeed) {
    buffer.clear();  // its old contents needn't be kept
    buffer.resize(firstNeed, ' ');
  }
  while (match != std::string_view::npos && done < count) {
    const size_t chunk = match - read;
    const size_t need = write + chunk + replacementLength;
    if (need > buffer.size()) buffer.resize(buffer.size() + need, ' ');
    char* out = buffer.data();
    if (chunk > 0) std::memcpy(out + write, source.data() + read, chunk);
    write += chunk;
    std::memcpy(out + write, replacement.data(), replacementLength);
    write += replacementLength;
    read = match + findLength;
    ++done;
    if (done < count) match = searched.find(find, read);
  }
  if (read >= sourceLength) {
    result.assign(buffer.data(), write);
    return;
  }
  const size_t rest = sourceLength - read;
  const size_t finalLength = write + rest;
  if (finalLength <= buffer.size()) {
    std::memcpy(buffer.data() + write, source.data() + read, rest);
    result.assign(buffer.data(), finalLength);
  } else {
    result.reserve(finalLength);
    result.assign(buffer.data(), write);
    result.append(source.substr(read));
  }
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The number value of a text's leading digits, as a real number (0 when it has none).
double LeadingNumber(std::string_view text) {
  double value = 0;
  for (char c : text) {
    if (!IsDigit(c)) break;
    value = value * 10 + (c - '0');
  }
  return value;
}

// A real number as the shortest decimal text that gives it back at 15 significant digits, with
// a point whatever the locale, the way a classic Basic turns a number into text: 0.037 gives
// "0.037", 1 gives "1", 0 gives "0", 1e15 gives "1E+15".
std::string NumberText(double value) {
  char text[64];
  const auto [end, error] =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, 15);
  if (error != std::errc()) return "0";
  std::string result(text, end);
  for (char& c : result) {
    if (c == 'e') c = 'E';
  }
  return result;
}

}  // namespace

std::string FastReplace(std::string_view source, std::string_view find,
                        std::string_view replacement, long start, long count, int compareMode) {
  std::string result;
  if (find.empty()) {
    result.assign(source);
    return result;
  }
  if (compareMode != 0) {
    const std::string searched = LowerCopy(source);
    const std::string lowerFind = LowerCopy(find);
    ReplaceCore(result, source, searched, lowerFind, replacement, start, count);
  } else {
    ReplaceCore(result, source, source, find, replacement, start, count);
  }
  return result;
}

size_t FastReplaceBufferLength() { return State().buffer.size(); }

void FastSplit(std::string_view source, std::vector<std::string>& parts,
               std::string_view delimiter) {
  const size_t sourceLength = source.size();
  const size_t delimiterLength = delimiter.size();
  if (sourceLength == 0 || delimiterLength == 0) {
    parts.resize(1);
    parts[0].assign(source);
    return;
  }

  // One scan for all delimiters: offsets[i] is where piece i begins.
  thread_local std::vector<size_t> offsets;
  offsets.clear();
  offsets.push_back(0);
  size_t match = source.find(delimiter);
  while (match != std::string_view::npos) {
    offsets.push_back(match + delimiterLength);
    match = source.find(delimiter, match + delimiterLength);
  }

  // Each piece is assigned once, straight from the source, into the strings `parts` already
  // holds, whose room is reused.
  const size_t pieces = offsets.size();
  parts.resize(pieces);
  for (size_t i = 0; i + 1 < pieces; ++i) {
    parts[i].assign(source.data() + offsets[i], offsets[i + 1] - delimiterLength - offsets[i]);
  }
  parts[pieces - 1].assign(source.data() + offsets[pieces - 1], sourceLength - offsets[pieces - 1]);
}

std::string ExtractBetween(std::string& text, std::string_view openMark,
                           std::string_view closeMark) {
  const size_t open = text.find(openMark);
  const size_t close = text.rfind(closeMark);
  if (open == std::string::npos || close == std::string::npos || close < open + openMark.size()) {
    text.clear();
    return {};
  }
  const size_t begin = open + openMark.size();
  return text.substr(begin, close - begin);
}

int FindInTable(std::string_view text, const CodeTable& table, bool exact) {
  const int upper = static_cast<int>(table.size()) - 1;
  if (exact) {
    for (int i = 1; i <= upper; ++i) {
      if (table[i] == text) return i;
    }
  } else {
    for (int i = 1; i <= upper; ++i) {
      if (text.find(table[i]) != std::string_view::npos) return i;
    }
  }
  return 0;
}

int FindOrAppend(std::string_view text, CodeTable& table, bool exact) {
  // Whatever the caller asked for, tables are matched exactly: a loose match would give a new
  // value the index of an older one that it merely contains.
  exact = true;
  const int found = FindInTable(text, table, exact);
  if (found > 0) return found;
  if (table.empty()) table.emplace_back();  // element 0 is never used
  table.emplace_back(text);
  return static_cast<int>(table.size()) - 1;
}

int FindVersion(std::string_view text, const CodeTable& verAddedTable) {
  return FindInTable(text, verAddedTable, true);
}

std::string NormaliseVersion(std::string_view text) {
  if (text == "?") return std::string(text);
  if (text.starts_with("0.")) text.remove_prefix(2);
  if (text.starts_with(".")) text.remove_prefix(1);

  size_t firstOther = 0;
  while (firstOther < text.size() && IsDigit(text[firstOther])) ++firstOther;

  std::string normalised = NumberText(LeadingNumber(text) / 1000);
  for (char& c : normalised) {
    if (c == ',') c = '.';
  }
  normalised += "00000";
  normalised.resize(5);
  if (firstOther < text.size()) normalised += text.substr(firstOther);
  return normalised;
}

int VersionIndex(std::string_view text, CodeTable& table, bool /*exact*/) {
  // Like FindOrAppend, only an exact match makes sense, whatever the caller asked for.
  const std::string normalised = NormaliseVersion(text);
  const int found = FindVersion(normalised, table);
  if (found > 0) return found;
  if (table.empty()) table.emplace_back();
  table.push_back(normalised);
  return static_cast<int>(table.size()) - 1;
}

void FastSplitViews(std::string_view source, std::vector<std::string_view>& parts, char delimiter) {
  SplitInto(source, delimiter, parts);
}

}  // namespace tessarin
