#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "store/faststrings.h"

namespace tessarin {

// FindOrAppend on one code table, with a hash index beside it: the same index as the linear
// scan (the first equal entry, or a new one at the end), without walking a table of thousands
// of drivers or manufacturers for every game of a big list. The table must not be changed
// behind its back while the lookup lives.
class TableLookup final {
 public:
  explicit TableLookup(CodeTable& table) : m_table(table) {
    if (m_table.empty()) m_table.emplace_back();
    m_index.reserve(m_table.size() * 2 + 64);
    for (size_t i = 1; i < m_table.size(); ++i) {
      m_index.try_emplace(m_table[i], static_cast<int>(i));
    }
  }

  int FindOrAppend(std::string_view text) {
    const auto it = m_index.find(text);
    if (it != m_index.end()) return it->second;
    m_table.emplace_back(text);
    const int index = static_cast<int>(m_table.size()) - 1;
    m_index.emplace(std::string(text), index);
    return index;
  }

 private:
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const noexcept {
      return std::hash<std::string_view>{}(s);
    }
  };
  CodeTable& m_table;
  std::unordered_map<std::string, int, Hash, std::equal_to<>> m_index;
};

}  // namespace tessarin
