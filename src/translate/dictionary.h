#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;

// The translation dictionary, TRANSLATE.DIC.txt in the application folder: sections [WIZ],
// [PLAYERS], [HISTORY] and [MAMEINFO] of "word = translation" lines that the user completes in
// an editor. CreateDictionary prepares it from the data files themselves.

inline constexpr std::string_view kDictionaryFileName = "TRANSLATE.DIC.txt";

// The dictionary's path in `appFolder` (found without regard to case; the plain name when there
// is none yet).
std::string DictionaryPath(const std::string& appFolder);

// Writes TRANSLATE.DIC.txt anew: its head, [WIZ] with the words of Catlist and Genre (section
// headers) and of Catver and Wizsort (values), [PLAYERS] with those of the players file,
// [HISTORY] with the fixed French examples and an empty [MAMEINFO]. The paths come from the
// settings (DataFile12, 14, 13, 7 and 8); a missing file adds no words. Gives false when the
// file can't be written (the failure is logged).
bool CreateDictionary(AppContext& ctx);
// The whole text CreateDictionary writes, for the given data file paths.
std::string MakeDictionaryText(const std::string& catlistPath, const std::string& genrePath,
                               const std::string& catverPath, const std::string& wizsortPath,
                               const std::string& playersPath);

// Appends "value = " for each "key=value" line of an ini file (the value trimmed), passing over
// the sections that hold no words ([FILEINFO], [VERADDED], [DRIVER], [RESOLUTION], [SET],
// [YEAR], [BIOS], [MANUFACTURER], in any case). A missing file adds nothing.
void CollectIniValues(const std::string& path, std::vector<std::string>& words);
// Appends "header = " for each line holding a '[' (the line without its first and last
// character, trimmed), except [ROOT_FOLDER] and [FOLDER_SETTINGS]. A missing file adds nothing.
void CollectIniSections(const std::string& path, std::vector<std::string>& words);

struct DictionaryRow {
  std::string word;
  std::string translation;
};

// One section of the dictionary, its rows in the order they are applied: longest line first.
// Built once, it also holds an automaton over the words so that a line is scanned once for all
// of them instead of once per row.
class Dictionary final {
 public:
  Dictionary();
  explicit Dictionary(std::vector<DictionaryRow> rows);
  ~Dictionary();
  Dictionary(Dictionary&&) noexcept;
  Dictionary& operator=(Dictionary&&) noexcept;

  const std::vector<DictionaryRow>& Rows() const { return m_rows; }
  // The count of rows, as the translation run tests it.
  int Count() const { return static_cast<int>(m_rows.size()); }

  // TranslateLine's work; see there.
  std::string Translate(std::string_view text) const;

 private:
  struct Matcher;
  std::vector<DictionaryRow> m_rows;
  std::unique_ptr<Matcher> m_matcher;
};

// The rows of section `sectionLine` ("[HISTORY]"...; matched exactly, case included) of the
// dictionary file at `dictionaryPath`: its "word = translation" lines with a translation, in
// the order of their whole line's length, longest first (equal lengths keep the file's order),
// so that "Sound Board :" comes before "Board". Comments, blank lines and lines ending in '='
// are passed over. Empty when the file or the section is missing.
Dictionary LoadDictionary(const std::string& dictionaryPath, std::string_view sectionLine);

// `text` with every row applied in order: when the row's word occurs (exact case), all of its
// occurrences are replaced by the translation. A row sees the result of the rows before it, so
// a translation can be translated again by a later row.
std::string TranslateLine(const Dictionary& dictionary, std::string_view text);

// The same result reached the plain way, testing every row against the line; kept as the
// reference the fast path is checked and timed against.
std::string TranslateLineByRows(const std::vector<DictionaryRow>& rows, std::string_view text);

}  // namespace tessarin
