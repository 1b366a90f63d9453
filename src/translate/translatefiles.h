#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class AppContext;
class Dictionary;
class Log;
class Settings;
class Work;

// The eight data files the translation serves, in the order of the dialog's boxes.
inline constexpr int kTranslationFileCount = 8;
enum TranslationFile : int {
  kTranslateCatlist = 0,
  kTranslateGenre = 1,
  kTranslateCatver = 2,
  kTranslateWizsort = 3,
  kTranslateMultiplayer = 4,
  kTranslateNplayers = 5,
  kTranslateHistory = 6,
  kTranslateMameinfo = 7,
};
using TranslationPaths = std::array<std::string, kTranslationFileCount>;
using TranslationChecks = std::array<bool, kTranslationFileCount>;

// "catlist", "genre", "catver", "wizsort", "multiplayer", "nplayers", "history", "mameinfo".
std::string_view TranslationFileName(int file);
// The file kind's name as the dialog shows it ("Catlist.ini"...).
std::string_view TranslationFileLabel(int file);
// The file chooser's filter for a file: its kind's name with *.dat (History, Mameinfo) or *.ini,
// then `allFilesText` with *.*; "name|pattern|name|pattern".
std::string TranslationFileFilter(int file, std::string_view allFilesText);
// The dictionary section that serves a file ("[WIZ]", "[PLAYERS]", "[HISTORY]", "[MAMEINFO]").
std::string_view TranslationSection(int file);

// The paths the dialog shows, from the settings: DataFile12, 14, 13 and 7 for the first four;
// DataFile8 in the Multiplayer box when its text names multiplayer.ini, else in the Nplayers
// box; DataFile2 and DataFile3. A missing setting gives an empty path.
TranslationPaths LoadTranslationPaths(const Settings& settings);
// Writes the boxes back to those keys (DataFile8 from the Multiplayer box when it has a path,
// else from the Nplayers box). An empty box over a key that was never set writes nothing.
void SaveTranslationPaths(Settings& settings, const TranslationPaths& paths);
// The ticks, Frm8DataFile0 to Frm8DataFile7: a stored tag that isn't empty is a tick.
TranslationChecks LoadTranslationChecks(const Settings& settings);
void SaveTranslationChecks(Settings& settings, const TranslationChecks& checks);

// The backup of `<base>.<ext>`: `<base>.ORIGINAL.<ext>`, cut at the last point of the whole
// path (so a name without a point takes one of its folder's). Empty when the path has no point.
std::string BackupName(std::string_view path);

enum class TranslateResult {
  Missing,     // no file at the path: nothing done
  Translated,  // the file holds the translation, the file before it is the backup
  Failed,      // logged; the file holds either what it held or the translation, in full
};

// Translates a data file in place, line by line, with `dictionary`; every line is written back
// with CR LF. The backup chain moves first: an existing backup becomes `<backup>.bak` (an older
// .bak is deleted). The translation is written to a temporary file beside the file, and only
// once it is complete does the file become the backup and the temporary file the file. So a
// second run translates the first one's output and keeps it as the backup, and at the third
// run the untranslated file is gone. Progress moves by the bytes read; no cancel.
TranslateResult TranslateFile(Log& log, const Dictionary& dictionary, const std::string& path,
                              Work& work);

struct TranslationReport {
  // Per file: true when ticked and its section had entries, so TranslateFile ran on it.
  TranslationChecks attempted{};
  std::array<TranslateResult, kTranslationFileCount> results{};
  // Per file: the count of the dictionary rows its section gave.
  std::array<int, kTranslationFileCount> rows{};
};

// The translation run: for each section in turn ([WIZ] for the first four files, [PLAYERS],
// [HISTORY], [MAMEINFO]), when one of its files is ticked, load the section from the dictionary
// in the application folder and, when it has entries, translate each ticked file of it. Files
// whose section has no entry are left alone.
TranslationReport TranslateDataFiles(AppContext& ctx, Work& work, const TranslationPaths& paths,
                                     const TranslationChecks& checks);

}  // namespace tessarin
