#include "translate/dictionary.h"

#include <algorithm>
#include <array>
#include <functional>
#include <unordered_map>
#include <utility>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "core/fileservices.h"
#include "core/guard.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/version.h"
#include "store/faststrings.h"

namespace tessarin {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

// The [HISTORY] entries every new dictionary starts with. They are written in French already,
// so that a French user only has to complete the list.
constexpr std::array<std::string_view, 44> kHistoryExamples = {
    "Game ID : = ID du jeu :",
    "Main Board Number : = Numéro Carte Principale :",
    "Rom Board Number : = Numéro de la carte Rom :",
    "Prom Stickers : = Stickers de la Prom :",
    "Main CPU : = CPU Principal :",
    "Sound CPU : = CPU Sonore :",
    "Sound Chips : = Chips sonore :",
    "Main Board : = Carte Principale :",
    "Sound Board : = Carte Son :",
    "Video Board : = Carte Vidéo :",
    "Screen orientation : = Orientation écran :",
    "Video resolution : = Résolution vidéo :",
    "Aspect Ratio : = Ratio d'Aspect :",
    "Screen refresh : = Taux de rafraichissement :",
    "Palette Colors : = Palette de Couleurs :",
    "Players : = Joueurs :",
    "Buttons : = Boutons :",
    "8-way joystick = Joystick 8 dir.",
    "4-way joystick = Joystick 4 dir.",
    "2-way joystick = Joystick 2 dir.",
    "Joystick 2-way = Joystick 2 dir.",
    "Director : = Directeur :",
    "Programmer : = Programmeur :",
    "Character designers : = Designers personnages :",
    "Music and sound effects : = Musique et effets sonores :",
    "Producer: = Producteur:",
    "Music & SFX: = Musique & Effets:",
    "Additional music: = Musique additionnelle:",
    "Programming: = Programmation:",
    "Game designers : = Designers du jeu :",
    "Program designers : = Designers du programme :",
    "Scroll designers : = Designers du scrolling :",
    "Object designers : = Designers des objets :",
    "Music composers : = Compositeurs :",
    "Sound designers : = Designers sonores :",
    "depending of the event... = suivant l'épreuve...",
    "100m Dash : = 100m :",
    "Long Jump : = Saut en longueur :",
    "400m Relay : = Relai 400m :",
    "Skeet Shooting : = Ball-trap :",
    "110m Hurdles : = 110m Haies :",
    "Archery : = Tir à l'Arc :",
    "Javelin Throw : = Lancé du Javelot :",
    "High Jump : = Saut en Hauteur :",
};

// Sections whose values are names, years or versions rather than words.
constexpr std::array<std::string_view, 8> kSectionsWithoutWords = {
    "[FILEINFO]", "[VERADDED]", "[DRIVER]", "[RESOLUTION]",
    "[SET]",      "[YEAR]",     "[BIOS]",   "[MANUFACTURER]",
};

void AddLine(std::string& out, std::string_view line) {
  out += line;
  out += kLineEnd;
}

// Sorted, and written without an entry equal to the one before it.
void AddWords(std::string& out, std::vector<std::string>& words) {
  SortStrings(words, 0, static_cast<int>(words.size()) - 1);
  for (size_t i = 0; i < words.size(); ++i) {
    if (i > 0 && words[i] == words[i - 1]) continue;
    AddLine(out, words[i]);
  }
}

// A section line opens a section once trimmed: '[' first, ']' last.
bool IsSectionLine(std::string_view trimmed) {
  return !trimmed.empty() && trimmed.front() == '[' && trimmed.back() == ']';
}

}  // namespace

std::string DictionaryPath(const std::string& appFolder) {
  return FindFileNoCase(AddSlash(appFolder), std::string(kDictionaryFileName));
}

// ---- Word collection ----

void CollectIniValues(const std::string& path, std::vector<std::string>& words) {
  DataLineReader reader;
  if (!reader.Open(path)) return;
  std::string section;
  bool passOver = false;
  std::string_view line;
  while (reader.ReadLine(line)) {
    if (!line.empty() && line.front() == '[') {
      section = UpperCopy(line);
      passOver = std::find(kSectionsWithoutWords.begin(), kSectionsWithoutWords.end(), section) !=
                 kSectionsWithoutWords.end();
      continue;
    }
    if (passOver) continue;
    const size_t equal = line.find('=');
    if (equal == std::string_view::npos) continue;
    std::string word(TrimBlanks(line.substr(equal + 1)));
    word += " = ";
    words.push_back(std::move(word));
  }
}

void CollectIniSections(const std::string& path, std::vector<std::string>& words) {
  DataLineReader reader;
  if (!reader.Open(path)) return;
  std::string_view line;
  while (reader.ReadLine(line)) {
    if (line.find('[') == std::string_view::npos) continue;
    if (line == "[ROOT_FOLDER]" || line == "[FOLDER_SETTINGS]") continue;
    // From the second character to the last but one; a line of one character gives nothing.
    const std::string_view inner =
        line.size() >= 2 ? line.substr(1, line.size() - 2) : std::string_view();
    std::string word(TrimBlanks(inner));
    word += " = ";
    words.push_back(std::move(word));
  }
}

// ---- The dictionary file ----

std::string MakeDictionaryText(const std::string& catlistPath, const std::string& genrePath,
                               const std::string& catverPath, const std::string& wizsortPath,
                               const std::string& playersPath) {
  std::string out;
  AddLine(out, ";");
  AddLine(out, "; Tessarin v" + AppVersion());
  AddLine(out, "; Dictionnaire de traduction");
  AddLine(out, ";");
  AddLine(out, "; Tapez le mot à traduire suivi de = et du mot traduit.");
  AddLine(out, "; Exemple :");
  AddLine(out, "; book = livre");
  AddLine(out, ";");
  AddLine(out, "");

  AddLine(out, "[WIZ]");
  AddLine(out, "; Traduction des fichiers Catlist.ini, Genre.ini, Catver.ini et Wizsort.ini");
  std::vector<std::string> words;
  if (FileExists(catlistPath)) CollectIniSections(catlistPath, words);
  if (FileExists(genrePath)) CollectIniSections(genrePath, words);
  if (FileExists(catverPath)) CollectIniValues(catverPath, words);
  if (FileExists(wizsortPath)) CollectIniValues(wizsortPath, words);
  AddWords(out, words);

  AddLine(out, "");
  AddLine(out, "[PLAYERS]");
  AddLine(out, "; Traduction des fichiers Multiplayer.ini et Nplayers.ini");
  words.clear();
  if (FileExists(playersPath)) {
    if (LowerCopy(playersPath).find("nplayers.ini") != std::string::npos) {
      CollectIniValues(playersPath, words);
    } else {
      CollectIniSections(playersPath, words);
    }
  }
  AddWords(out, words);

  AddLine(out, "");
  AddLine(out, "[HISTORY]");
  AddLine(out, "; Traductions pour le fichier History.dat - exemples :");
  for (std::string_view example : kHistoryExamples) AddLine(out, example);

  AddLine(out, "");
  AddLine(out, "[MAMEINFO]");
  AddLine(out, "; Traductions pour le fichier Mameinfo.dat");
  return out;
}

bool CreateDictionary(AppContext& ctx) {
  bool written = false;
  RunGuarded(ctx.log, 9101, [&] {
    // A name typed with another case on a case-sensitive disk is still found.
    const auto path = [&](std::string_view key) {
      return ExistingDataFile(ctx.settings.InfRead(key));
    };
    const std::string text =
        MakeDictionaryText(path("DataFile12"), path("DataFile14"), path("DataFile13"),
                           path("DataFile7"), path("DataFile8"));
    const std::string target = DictionaryPath(ctx.AppFolder());
    if (!WriteFileAtomically(target, text)) {
      throw Failure(75, "Can't write the dictionary " + target);
    }
    written = true;
  });
  return written;
}

Dictionary LoadDictionary(const std::string& dictionaryPath, std::string_view sectionLine) {
  std::vector<std::string> lines;
  DataLineReader reader;
  if (!reader.Open(dictionaryPath)) return Dictionary();
  std::string_view line;
  bool found = false;
  while (reader.ReadLine(line)) {
    if (TrimBlanks(line) == sectionLine) {
      found = true;
      break;
    }
  }
  if (!found) return Dictionary();
  while (reader.ReadLine(line)) {
    const std::string_view trimmed = TrimBlanks(line);
    if (IsSectionLine(trimmed)) break;
    if (trimmed.empty() || trimmed.front() == ';') continue;
    // "word =" has no translation yet.
    if (trimmed.find('=') == std::string_view::npos || trimmed.back() == '=') continue;
    lines.emplace_back(trimmed);
  }
  // Longest whole line first; the first of equal lengths first.
  std::stable_sort(lines.begin(), lines.end(),
                   [](const std::string& a, const std::string& b) { return a.size() > b.size(); });
  std::vector<DictionaryRow> rows;
  rows.reserve(lines.size());
  for (const std::string& entry : lines) {
    const size_t equal = entry.find('=');
    rows.push_back({std::string(TrimBlanks(std::string_view(entry).substr(0, equal))),
                    std::string(TrimBlanks(std::string_view(entry).substr(equal + 1)))});
  }
  return Dictionary(std::move(rows));
}

// ---- The matcher ----

// An Aho-Corasick automaton over the distinct words of the rows: one pass over a line tells
// which words occur in it. Edges are kept sorted per node in flat arrays (a few per node on
// average), the root's in a full table since every byte of a line starts there.
struct Dictionary::Matcher {
  std::array<int32_t, 256> rootNext{};
  std::vector<uint32_t> edgeStart;  // per node, into edgeByte/edgeTarget; one more at the end
  std::vector<uint8_t> edgeByte;
  std::vector<int32_t> edgeTarget;
  std::vector<int32_t> fail;
  std::vector<int32_t> wordAt;   // the word ending at the node, or -1
  std::vector<int32_t> outLink;  // the nearest node on the fail chain (itself too) ending a word
  std::vector<std::vector<int32_t>> wordRows;  // per word, its rows in ascending order
  size_t longestWord = 0;

  int32_t Child(int32_t node, uint8_t byte) const {
    if (node == 0) return rootNext[byte] > 0 ? rootNext[byte] : -1;
    for (uint32_t e = edgeStart[static_cast<size_t>(node)];
         e < edgeStart[static_cast<size_t>(node) + 1]; ++e) {
      if (edgeByte[e] == byte) return edgeTarget[e];
    }
    return -1;
  }

  explicit Matcher(const std::vector<DictionaryRow>& rows) {
    std::unordered_map<std::string_view, int32_t> wordIds;
    // While building: the children of each node as (byte, node) pairs.
    std::vector<std::vector<std::pair<uint8_t, int32_t>>> children(1);
    wordAt.assign(1, -1);
    const auto buildChild = [&](int32_t node, uint8_t byte) {
      for (const auto& [b, target] : children[static_cast<size_t>(node)]) {
        if (b == byte) return target;
      }
      const auto created = static_cast<int32_t>(children.size());
      children[static_cast<size_t>(node)].emplace_back(byte, created);
      children.emplace_back();
      wordAt.push_back(-1);
      return created;
    };
    for (size_t r = 0; r < rows.size(); ++r) {
      const std::string& word = rows[r].word;
      // An empty word changes nothing, whatever its translation.
      if (word.empty()) continue;
      auto [it, isNew] = wordIds.try_emplace(word, static_cast<int32_t>(wordRows.size()));
      if (isNew) {
        longestWord = std::max(longestWord, word.size());
        wordRows.emplace_back();
        int32_t node = 0;
        for (char c : word) node = buildChild(node, static_cast<uint8_t>(c));
        wordAt[static_cast<size_t>(node)] = it->second;
      }
      wordRows[static_cast<size_t>(it->second)].push_back(static_cast<int32_t>(r));
    }

    // Flatten the edges, sorted per node.
    const size_t nodeCount = children.size();
    edgeStart.assign(nodeCount + 1, 0);
    for (size_t n = 0; n < nodeCount; ++n) {
      auto& list = children[n];
      std::sort(list.begin(), list.end());
      edgeStart[n + 1] = edgeStart[n] + static_cast<uint32_t>(list.size());
      for (const auto& [b, target] : list) {
        edgeByte.push_back(b);
        edgeTarget.push_back(target);
      }
    }
    rootNext.fill(0);
    for (const auto& [b, target] : children[0]) rootNext[b] = target;

    // Failure and output links, breadth first.
    fail.assign(nodeCount, 0);
    outLink.assign(nodeCount, -1);
    std::vector<int32_t> queue;
    queue.reserve(nodeCount);
    for (const auto& [b, target] : children[0]) {
      queue.push_back(target);
      outLink[static_cast<size_t>(target)] = wordAt[static_cast<size_t>(target)] >= 0 ? target : -1;
    }
    for (size_t head = 0; head < queue.size(); ++head) {
      const int32_t node = queue[head];
      for (const auto& [b, target] : children[static_cast<size_t>(node)]) {
        int32_t f = fail[static_cast<size_t>(node)];
        int32_t next = Child(f, b);
        while (next < 0 && f != 0) {
          f = fail[static_cast<size_t>(f)];
          next = Child(f, b);
        }
        const int32_t failTarget = next < 0 ? 0 : next;
        fail[static_cast<size_t>(target)] = failTarget;
        outLink[static_cast<size_t>(target)] = wordAt[static_cast<size_t>(target)] >= 0
                                                   ? target
                                                   : outLink[static_cast<size_t>(failTarget)];
        queue.push_back(target);
      }
    }
  }

  // Calls `found(word)` once for each distinct word occurring in `text`; `seen` and `stamp`
  // keep the words already told during this scan.
  template <class Found>
  void Scan(std::string_view text, std::vector<uint32_t>& seen, uint32_t stamp,
            Found&& found) const {
    int32_t state = 0;
    for (char ch : text) {
      const auto byte = static_cast<uint8_t>(ch);
      int32_t next = -1;
      while (state != 0) {
        next = Child(state, byte);
        if (next >= 0) break;
        state = fail[static_cast<size_t>(state)];
      }
      state = next >= 0 ? next : rootNext[byte];
      for (int32_t o = outLink[static_cast<size_t>(state)]; o >= 0;
           o = outLink[static_cast<size_t>(fail[static_cast<size_t>(o)])]) {
        const int32_t word = wordAt[static_cast<size_t>(o)];
        if (seen[static_cast<size_t>(word)] == stamp) continue;
        seen[static_cast<size_t>(word)] = stamp;
        found(word);
      }
    }
  }
};

Dictionary::Dictionary() = default;
Dictionary::Dictionary(std::vector<DictionaryRow> rows)
    : m_rows(std::move(rows)), m_matcher(std::make_unique<Matcher>(m_rows)) {}
Dictionary::~Dictionary() = default;
Dictionary::Dictionary(Dictionary&&) noexcept = default;
Dictionary& Dictionary::operator=(Dictionary&&) noexcept = default;

std::string Dictionary::Translate(std::string_view text) const {
  if (!m_matcher || m_matcher->wordRows.empty()) return std::string(text);
  const Matcher& matcher = *m_matcher;
  // Scratch kept per thread: a stamp per word instead of clearing a set for every line.
  thread_local std::vector<uint32_t> seen;
  thread_local uint32_t stamp = 0;
  thread_local std::vector<int32_t> pending;  // a min-heap of row numbers
  thread_local std::vector<std::pair<size_t, size_t>> inserted;
  thread_local std::string next;
  if (seen.size() < matcher.wordRows.size()) seen.resize(matcher.wordRows.size(), 0);
  if (++stamp == 0) {
    std::fill(seen.begin(), seen.end(), 0);
    stamp = 1;
  }
  pending.clear();
  const auto byRow = std::greater<int32_t>();
  // A word met for the first time on this line puts its rows behind `after` in the heap. A
  // word met again needs nothing: its rows behind the current one went in the first time.
  int32_t after = -1;
  const auto found = [&](int32_t word) {
    for (int32_t row : matcher.wordRows[static_cast<size_t>(word)]) {
      if (row <= after) continue;
      pending.push_back(row);
      std::push_heap(pending.begin(), pending.end(), byRow);
    }
  };

  std::string current(text);
  matcher.Scan(current, seen, stamp, found);
  // The heap holds every row behind the last one handled whose word occurs in the current
  // text (and maybe rows whose word a change has removed since, which find nothing). A change
  // can only bring a word in where it overlaps a translation just put in, so only the text
  // around those is scanned again. Thus the rows apply in order, each to the result of the
  // ones before it, as testing every row in turn would.
  const size_t reach = matcher.longestWord - 1;
  while (!pending.empty()) {
    std::pop_heap(pending.begin(), pending.end(), byRow);
    const int32_t row = pending.back();
    pending.pop_back();
    const DictionaryRow& entry = m_rows[static_cast<size_t>(row)];
    // Replacing a word by itself changes nothing.
    if (entry.translation == entry.word) continue;

    // Every occurrence, left to right, the scan going on behind each one replaced.
    size_t hit = current.find(entry.word);
    if (hit == std::string::npos) continue;
    next.clear();
    inserted.clear();
    size_t from = 0;
    while (hit != std::string::npos) {
      next.append(current, from, hit - from);
      inserted.emplace_back(next.size(), next.size() + entry.translation.size());
      next += entry.translation;
      from = hit + entry.word.size();
      hit = current.find(entry.word, from);
    }
    next.append(current, from, std::string::npos);
    current.swap(next);

    after = row;
    // The windows around the translations, joined where they meet.
    size_t windowStart = 0;
    size_t windowEnd = 0;
    bool open = false;
    for (const auto& [start, end] : inserted) {
      const size_t low = start > reach ? start - reach : 0;
      const size_t high = std::min(current.size(), end + reach);
      if (open && low <= windowEnd) {
        windowEnd = std::max(windowEnd, high);
        continue;
      }
      if (open) {
        matcher.Scan(std::string_view(current).substr(windowStart, windowEnd - windowStart), seen,
                     stamp, found);
      }
      windowStart = low;
      windowEnd = high;
      open = true;
    }
    if (open) {
      matcher.Scan(std::string_view(current).substr(windowStart, windowEnd - windowStart), seen,
                   stamp, found);
    }
  }
  return current;
}

std::string TranslateLine(const Dictionary& dictionary, std::string_view text) {
  return dictionary.Translate(text);
}

std::string TranslateLineByRows(const std::vector<DictionaryRow>& rows, std::string_view text) {
  std::string current(text);
  for (const DictionaryRow& row : rows) {
    if (current.find(row.word) != std::string::npos) {
      current = FastReplace(current, row.word, row.translation, 1, kAllMatches, 0);
    }
  }
  return current;
}

}  // namespace tessarin
