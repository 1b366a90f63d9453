// The translation of data files: the dictionary maker, the section loader, the order of the
// rows, the one-scan matcher against a plain reference, the file replacement and its backups.

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "core/log.h"
#include "core/settings.h"
#include "core/version.h"
#include "core/work.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"
#include "support/testfiles.h"
#include "translate/dictionary.h"
#include "translate/translatefiles.h"

namespace tessarin {
namespace {

using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;
namespace fs = std::filesystem;

std::string Fixture(const std::string& name) {
  return std::string(TESSARIN_TEST_DATA) + "/translate/" + name;
}

class TranslateTest : public ::testing::Test {
 protected:
  TranslateTest() : ctx(tmp.Path() + "app/") {
    fs::create_directories(tmp.Path() + "app");
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.settings.InfLoad();
  }
  // Copies a fixture into the test's folder and gives the copy's path.
  std::string Copy(const std::string& name) {
    const std::string target = tmp / name;
    fs::copy_file(Fixture(name), target, fs::copy_options::overwrite_existing);
    return target;
  }
  std::string DictionaryFile() const { return ctx.AppFolder() + "TRANSLATE.DIC.txt"; }
  void WriteDictionary(const std::string& text) { WriteFile(DictionaryFile(), text); }

  TempFolder tmp;
  AppContext ctx;
  Work work;
};

Dictionary Make(std::vector<DictionaryRow> rows) { return Dictionary(std::move(rows)); }

// ---- The dictionary maker ----

TEST_F(TranslateTest, DictionaryHeadAndSectionsAreTheseBytes) {
  ctx.settings.InfWrite("DataFile12", Fixture("catlist.ini"));
  ctx.settings.InfWrite("DataFile14", Fixture("genre.ini"));
  ctx.settings.InfWrite("DataFile13", Fixture("catver.ini"));
  ctx.settings.InfWrite("DataFile7", Fixture("wizsort.ini"));
  ctx.settings.InfWrite("DataFile8", Fixture("nplayers.ini"));
  ASSERT_TRUE(CreateDictionary(ctx));
  std::string expected = ReadFile(Fixture("TRANSLATE.DIC.expected.txt"));
  expected = FastReplace(expected, "#VERSION#", AppVersion());
  EXPECT_EQ(ReadFile(DictionaryFile()), expected);
  EXPECT_EQ(ctx.log.BugCount(), 0);
}

TEST_F(TranslateTest, MultiplayerFileGivesItsSectionHeaders) {
  ctx.settings.InfWrite("DataFile8", Fixture("multiplayer.ini"));
  ASSERT_TRUE(CreateDictionary(ctx));
  const std::string text = ReadFile(DictionaryFile());
  EXPECT_NE(text.find("[PLAYERS]\r\n; Traduction des fichiers Multiplayer.ini et Nplayers.ini\r\n"
                      "1 Player = \r\n2 Players = \r\n\r\n[HISTORY]\r\n"),
            std::string::npos)
      << text;
}

TEST_F(TranslateTest, MissingDataFilesLeaveTheirSectionsEmptyAndTheFileIsReplacedWhole) {
  WriteDictionary("my own translations\r\n");
  ctx.settings.InfWrite("DataFile12", tmp / "nowhere.ini");
  ASSERT_TRUE(CreateDictionary(ctx));
  const std::string text = ReadFile(DictionaryFile());
  EXPECT_EQ(text.find("my own"), std::string::npos);
  EXPECT_NE(text.find("[WIZ]\r\n; Traduction des fichiers Catlist.ini, Genre.ini, Catver.ini et "
                      "Wizsort.ini\r\n\r\n[PLAYERS]\r\n; Traduction des fichiers Multiplayer.ini "
                      "et Nplayers.ini\r\n\r\n[HISTORY]\r\n"),
            std::string::npos)
      << text;
  EXPECT_TRUE(text.ends_with("[MAMEINFO]\r\n; Traductions pour le fichier Mameinfo.dat\r\n"));
}

TEST_F(TranslateTest, DataFileNamesAreFoundWithoutRegardToCase) {
  const std::string copy = Copy("nplayers.ini");
  ctx.settings.InfWrite("DataFile8", tmp / "NPlayers.INI");
  ASSERT_TRUE(CreateDictionary(ctx));
  EXPECT_NE(ReadFile(DictionaryFile()).find("1P = \r\n2P alt = \r\n2P sim = \r\n"),
            std::string::npos);
}

TEST_F(TranslateTest, CollectIniValuesPassesOverTheSectionsWithoutWords) {
  std::vector<std::string> words;
  CollectIniValues(Fixture("catver.ini"), words);
  EXPECT_EQ(words, (std::vector<std::string>{"mame = ", "Shooter / Flying Vertical = ",
                                             "Fighter = ", "Maze = ", "Puzzle = Drop = ", " = "}));
  words.clear();
  CollectIniValues(Fixture("wizsort.ini"), words);
  EXPECT_EQ(words, (std::vector<std::string>{"Shooter = ", "zzz = "}));
  words.clear();
  // Lines in front of any section count; a section line itself adds nothing.
  WriteFile(tmp / "loose.ini", "a=one\n[MANUFACTURER]\nb=Namco\n[bios]\nc=x\n[Other=x]\nd= two \n");
  CollectIniValues(tmp / "loose.ini", words);
  EXPECT_EQ(words, (std::vector<std::string>{"one = ", "two = "}));
  words.clear();
  CollectIniValues(tmp / "missing.ini", words);
  EXPECT_TRUE(words.empty());
}

TEST_F(TranslateTest, CollectIniSectionsTakesEveryLineWithABracket) {
  std::vector<std::string> words;
  CollectIniSections(Fixture("genre.ini"), words);
  EXPECT_EQ(words, (std::vector<std::string>{"Shooter = ", "root_folder = ", "Maze = ", " = ",
                                             "ote a[b] = "}));
  words.clear();
  WriteFile(tmp / "short.ini", "[\n[]\n");
  CollectIniSections(tmp / "short.ini", words);
  EXPECT_EQ(words, (std::vector<std::string>{" = ", " = "}));
}

// ---- The section loader ----

TEST_F(TranslateTest, LoadDictionaryOrdersByTheWholeLinesLength) {
  WriteDictionary(
      "; head\r\n[WIZ]\r\nx = y\r\n[HISTORY]\r\n; a comment = here\r\n\r\n"
      "Board = Carte\r\n"
      "Sound Board : = Carte Son :\r\n"
      "   Main = Principal   \r\n"
      "Untranslated =\r\n"
      "Also untranslated = \r\n"
      "no equal sign\r\n"
      "a = x = y\r\n"
      "Main =Principale\r\n"
      "ab = a very long translation\r\n"
      "abcdef = x\r\n"
      "[MAMEINFO]\r\nlater = plus tard\r\n");
  const Dictionary dictionary = LoadDictionary(DictionaryFile(), "[HISTORY]");
  std::vector<std::pair<std::string, std::string>> rows;
  for (const DictionaryRow& row : dictionary.Rows()) rows.emplace_back(row.word, row.translation);
  // The whole line's length counts, not the word's: "ab" comes before "abcdef". Lines of
  // equal length keep the file's order.
  EXPECT_EQ(rows, (std::vector<std::pair<std::string, std::string>>{
                      {"ab", "a very long translation"},
                      {"Sound Board :", "Carte Son :"},
                      {"Main", "Principal"},
                      {"Main", "Principale"},
                      {"Board", "Carte"},
                      {"abcdef", "x"},
                      {"a", "x = y"},
                  }));
  EXPECT_EQ(dictionary.Count(), 7);
}

TEST_F(TranslateTest, LoadDictionaryMatchesTheSectionLineInItsCase) {
  WriteDictionary("[wiz]\r\nword = mot\r\n");
  EXPECT_EQ(LoadDictionary(DictionaryFile(), "[WIZ]").Count(), 0);
  EXPECT_EQ(LoadDictionary(DictionaryFile(), "[wiz]").Count(), 1);
  EXPECT_EQ(LoadDictionary(tmp / "none.txt", "[WIZ]").Count(), 0);
  WriteDictionary("[WIZ]\r\nword =\r\nother=\r\n[PLAYERS]\r\n");
  EXPECT_EQ(LoadDictionary(DictionaryFile(), "[WIZ]").Count(), 0);
  EXPECT_EQ(LoadDictionary(DictionaryFile(), "[MAMEINFO]").Count(), 0);
}

// ---- Lines ----

TEST_F(TranslateTest, TranslateLineAppliesTheRowsInOrderEachOnTheResultBefore) {
  WriteDictionary(
      "[HISTORY]\r\nBoard = Carte\r\nSound Board : = Carte Son :\r\nCarte = Card\r\n"
      "word = x = y\r\n");
  const Dictionary dictionary = LoadDictionary(DictionaryFile(), "[HISTORY]");
  // The longer phrase goes first; "Carte" then translates the translations again.
  EXPECT_EQ(TranslateLine(dictionary, "Sound Board : Board, board"), "Card Son : Card, board");
  EXPECT_EQ(TranslateLine(dictionary, "a word"), "a x = y");
  EXPECT_EQ(TranslateLine(dictionary, ""), "");
  EXPECT_EQ(TranslateLine(Dictionary(), "Board"), "Board");
}

TEST_F(TranslateTest, CaseCounts) {
  const Dictionary dictionary = Make({{"Board", "Carte"}});
  EXPECT_EQ(TranslateLine(dictionary, "board BOARD Board"), "board BOARD Carte");
}

// The plain method, written here on its own: every row tested against the whole line in turn.
std::string ReplaceEvery(const std::string& text, const std::string& word,
                         const std::string& translation) {
  std::string out;
  size_t i = 0;
  while (i < text.size()) {
    if (text.compare(i, word.size(), word) == 0) {
      out += translation;
      i += word.size();
    } else {
      out += text[i++];
    }
  }
  return out;
}
std::string ReferenceTranslate(const std::vector<DictionaryRow>& rows, std::string text) {
  for (const DictionaryRow& row : rows) {
    if (!row.word.empty() && text.find(row.word) != std::string::npos) {
      text = ReplaceEvery(text, row.word, row.translation);
    }
  }
  return text;
}

TEST_F(TranslateTest, MatcherGivesWhatTestingEveryRowGivesOnRandomLinesAndDictionaries) {
  std::mt19937 random(20261122);
  // Few letters, so that words overlap, repeat, contain each other and are made again by the
  // translations of earlier rows.
  const auto randomText = [&](const char* alphabet, int maxLength) {
    std::string text;
    const int length = std::uniform_int_distribution<int>(0, maxLength)(random);
    const size_t letters = std::char_traits<char>::length(alphabet);
    for (int i = 0; i < length; ++i) {
      text += alphabet[std::uniform_int_distribution<size_t>(0, letters - 1)(random)];
    }
    return text;
  };
  int changedLines = 0;
  int chainedLines = 0;
  for (int round = 0; round < 3000; ++round) {
    std::vector<DictionaryRow> rows;
    const int rowCount = std::uniform_int_distribution<int>(0, 25)(random);
    for (int r = 0; r < rowCount; ++r) {
      rows.push_back({randomText("abc ", 4), randomText("abcd", 5)});
    }
    const Dictionary dictionary(rows);
    for (int line = 0; line < 20; ++line) {
      const std::string text = randomText("abcd ", 40);
      const std::string expected = ReferenceTranslate(rows, text);
      ASSERT_EQ(TranslateLine(dictionary, text), expected) << "round " << round << ": " << text;
      ASSERT_EQ(TranslateLineByRows(rows, text), expected);
      if (expected != text) ++changedLines;
      // A line that a later row changes after an earlier one did.
      int applied = 0;
      std::string current = text;
      for (const DictionaryRow& row : rows) {
        if (!row.word.empty() && current.find(row.word) != std::string::npos) {
          const std::string next = ReplaceEvery(current, row.word, row.translation);
          if (next != current) ++applied;
          current = next;
        }
      }
      if (applied > 1) ++chainedLines;
    }
  }
  // The random cases did reach the interesting paths.
  EXPECT_GT(changedLines, 10000);
  EXPECT_GT(chainedLines, 5000);
}

TEST_F(TranslateTest, MatcherOnLongLinesWithManyChanges) {
  std::mt19937 random(7);
  const auto randomText = [&](std::string_view alphabet, int minLength, int maxLength) {
    std::string text;
    const int length = std::uniform_int_distribution<int>(minLength, maxLength)(random);
    for (int i = 0; i < length; ++i) {
      text += alphabet[std::uniform_int_distribution<size_t>(0, alphabet.size() - 1)(random)];
    }
    return text;
  };
  for (int round = 0; round < 20; ++round) {
    std::vector<DictionaryRow> rows;
    // Translations no longer than their words, or the line would grow without end.
    for (int r = 0; r < 200; ++r) {
      std::string word = randomText("abcde ", 1, 6);
      std::string translation = randomText("abcdef", 0, static_cast<int>(word.size()));
      rows.push_back({std::move(word), std::move(translation)});
    }
    const Dictionary dictionary(rows);
    const std::string text = randomText("abcdef ", 20000, 20000);
    ASSERT_EQ(TranslateLine(dictionary, text), ReferenceTranslate(rows, text)) << round;
  }
}

TEST_F(TranslateTest, MatcherOnLongWordsAndBytesAboveAscii) {
  const std::vector<DictionaryRow> rows = {
      {"Numéro Carte", "N°"}, {"\xff\xfe", "x"}, {"aaaa", "b"}, {"ab", "aaaa"}, {"é", "e"}};
  const Dictionary dictionary(rows);
  for (const std::string& text : std::vector<std::string>{
           "Numéro Carte Numéro", "\xff\xfe\xff", "aaaaaaaaab", "abab", std::string(3000, 'a')}) {
    EXPECT_EQ(TranslateLine(dictionary, text), ReferenceTranslate(rows, text)) << text;
  }
}

// ---- Files ----

TEST(BackupNameTest, PointsAndNames) {
  EXPECT_EQ(BackupName("/data/History.dat"), "/data/History.ORIGINAL.dat");
  EXPECT_EQ(BackupName("C:\\mame\\catver.ini"), "C:\\mame\\catver.ORIGINAL.ini");
  EXPECT_EQ(BackupName("/data/a.b.c"), "/data/a.b.ORIGINAL.c");
  // No point in the name: the last point of the whole path, a folder's.
  EXPECT_EQ(BackupName("/my.data/history"), "/my.ORIGINAL.data/history");
  EXPECT_EQ(BackupName("/data/history"), "");
}

TEST_F(TranslateTest, TranslateFileWritesCrLfAndKeepsTheFileBefore) {
  const std::string path = tmp / "text.dat";
  WriteFile(path, "Board one\nboard two\rlast Board");
  const Dictionary dictionary = Make({{"Board", "Carte"}});
  EXPECT_EQ(TranslateFile(ctx.log, dictionary, path, work), TranslateResult::Translated);
  EXPECT_EQ(ReadFile(path), "Carte one\r\nboard two\r\nlast Carte\r\n");
  EXPECT_EQ(ReadFile(tmp / "text.ORIGINAL.dat"), "Board one\nboard two\rlast Board");
  EXPECT_FALSE(fs::exists(tmp / "text.ORIGINAL.dat.bak"));
  EXPECT_FALSE(fs::exists(tmp / "text.dat.translating.tmp"));
  EXPECT_EQ(work.ProgressValue.load(), 30);
}

TEST_F(TranslateTest, ThreeRunsLoseTheFileAsItWasFirst) {
  const std::string path = tmp / "History.dat";
  WriteFile(path, "one\r\n");
  const Dictionary dictionary = Make({{"one", "two"}, {"two", "three"}, {"three", "four"}});
  // Each run moves every word one step on: one -> four in a single run (rows chain), then
  // four stays; so use a dictionary per run to tell the versions apart.
  const Dictionary first = Make({{"one", "two"}});
  const Dictionary second = Make({{"two", "three"}});
  const Dictionary third = Make({{"three", "four"}});
  ASSERT_EQ(TranslateFile(ctx.log, first, path, work), TranslateResult::Translated);
  EXPECT_EQ(ReadFile(path), "two\r\n");
  EXPECT_EQ(ReadFile(tmp / "History.ORIGINAL.dat"), "one\r\n");
  EXPECT_FALSE(fs::exists(tmp / "History.ORIGINAL.dat.bak"));

  ASSERT_EQ(TranslateFile(ctx.log, second, path, work), TranslateResult::Translated);
  EXPECT_EQ(ReadFile(path), "three\r\n");
  EXPECT_EQ(ReadFile(tmp / "History.ORIGINAL.dat"), "two\r\n");
  EXPECT_EQ(ReadFile(tmp / "History.ORIGINAL.dat.bak"), "one\r\n");

  ASSERT_EQ(TranslateFile(ctx.log, third, path, work), TranslateResult::Translated);
  EXPECT_EQ(ReadFile(path), "four\r\n");
  EXPECT_EQ(ReadFile(tmp / "History.ORIGINAL.dat"), "three\r\n");
  EXPECT_EQ(ReadFile(tmp / "History.ORIGINAL.dat.bak"), "two\r\n");
  // "one" is nowhere any more.
  for (const auto& entry : fs::directory_iterator(tmp.Path())) {
    if (entry.is_regular_file()) {
      EXPECT_NE(ReadFile(entry.path().string()), "one\r\n");
    }
  }
  // One run with the chained rows goes all the way.
  WriteFile(path, "one\r\n");
  ASSERT_EQ(TranslateFile(ctx.log, dictionary, path, work), TranslateResult::Translated);
  EXPECT_EQ(ReadFile(path), "four\r\n");
  EXPECT_EQ(ctx.log.BugCount(), 0);
}

TEST_F(TranslateTest, MissingFileIsNoFailure) {
  const Dictionary dictionary = Make({{"one", "two"}});
  WriteFile(tmp / "gone.ORIGINAL.dat", "older");
  EXPECT_EQ(TranslateFile(ctx.log, dictionary, tmp / "gone.dat", work), TranslateResult::Missing);
  EXPECT_EQ(ReadFile(tmp / "gone.ORIGINAL.dat"), "older");
  EXPECT_EQ(ctx.log.BugCount(), 0);
}

TEST_F(TranslateTest, AFailedRenameLeavesTheFileWholeAndNoTemporaryFile) {
  // No point in the name: the backup would go to a folder "my.ORIGINAL.data" that isn't there.
  fs::create_directories(tmp / "my.data");
  const std::string path = tmp / "my.data/history";
  WriteFile(path, "one\n");
  const Dictionary dictionary = Make({{"one", "two"}});
  EXPECT_EQ(TranslateFile(ctx.log, dictionary, path, work), TranslateResult::Failed);
  EXPECT_EQ(ReadFile(path), "one\n");
  EXPECT_FALSE(fs::exists(path + ".translating.tmp"));
  EXPECT_EQ(ctx.log.BugCount(), 1);
}

TEST_F(TranslateTest, APathWithoutAnyPointIsAFailureThatTouchesNothing) {
  const std::string path = tmp / "history";
  // The temporary folder's own name may hold a point; this test needs a path without one.
  if (path.find('.') != std::string::npos) GTEST_SKIP() << "the test folder has a point";
  WriteFile(path, "one\n");
  EXPECT_EQ(TranslateFile(ctx.log, Make({{"one", "two"}}), path, work), TranslateResult::Failed);
  EXPECT_EQ(ReadFile(path), "one\n");
  EXPECT_EQ(ctx.log.BugCount(), 1);
}

TEST_F(TranslateTest, ATemporaryFileThatCantBeWrittenLeavesTheFileWhole) {
  const std::string path = tmp / "History.dat";
  WriteFile(path, "one\n");
  WriteFile(tmp / "History.ORIGINAL.dat", "older\n");
  // A folder where the translation would be written.
  fs::create_directories(path + ".translating.tmp");
  EXPECT_EQ(TranslateFile(ctx.log, Make({{"one", "two"}}), path, work), TranslateResult::Failed);
  EXPECT_EQ(ReadFile(path), "one\n");
  // The chain had moved before the failure, as it always does first.
  EXPECT_EQ(ReadFile(tmp / "History.ORIGINAL.dat.bak"), "older\n");
  EXPECT_EQ(ctx.log.BugCount(), 1);
}

// ---- Settings and the whole run ----

TEST_F(TranslateTest, PathsComeFromTheSettingsAndGoBack) {
  ctx.settings.InfWrite("DataFile12", "/d/catlist.ini");
  ctx.settings.InfWrite("DataFile14", "/d/genre.ini");
  ctx.settings.InfWrite("DataFile13", "/d/catver.ini");
  ctx.settings.InfWrite("DataFile8", "/d/Multiplayer.ini");
  ctx.settings.InfWrite("DataFile2", "/d/history.dat");
  TranslationPaths paths = LoadTranslationPaths(ctx.settings);
  EXPECT_EQ(paths, (TranslationPaths{"/d/catlist.ini", "/d/genre.ini", "/d/catver.ini", "",
                                     "/d/Multiplayer.ini", "", "/d/history.dat", ""}));
  ctx.settings.InfWrite("DataFile8", "/d/nplayers.ini");
  paths = LoadTranslationPaths(ctx.settings);
  EXPECT_EQ(paths[kTranslateMultiplayer], "");
  EXPECT_EQ(paths[kTranslateNplayers], "/d/nplayers.ini");

  paths[kTranslateNplayers] = "/e/nplayers.ini";
  paths[kTranslateHistory] = "/e/History.dat";
  SaveTranslationPaths(ctx.settings, paths);
  EXPECT_EQ(ctx.settings.InfRead("DataFile8"), "/e/nplayers.ini");
  EXPECT_EQ(ctx.settings.InfRead("DataFile2"), "/e/History.dat");
  // Empty boxes over keys never set leave them unset.
  EXPECT_EQ(ctx.settings.InfRead("DataFile7"), "-1");
  EXPECT_EQ(ctx.settings.InfRead("DataFile3"), "-1");

  TranslationChecks checks{};
  EXPECT_EQ(LoadTranslationChecks(ctx.settings), checks);
  checks[kTranslateHistory] = true;
  checks[kTranslateGenre] = true;
  SaveTranslationChecks(ctx.settings, checks);
  EXPECT_EQ(ctx.settings.InfRead("Frm8DataFile6"), "1");
  EXPECT_EQ(ctx.settings.InfRead("Frm8DataFile0"), "");
  EXPECT_EQ(LoadTranslationChecks(ctx.settings), checks);
}

TEST(TranslationFilesTest, FiltersAndSections) {
  EXPECT_EQ(TranslationFileFilter(kTranslateHistory, "All files"),
            "History.dat|*.dat|All files|*.*");
  EXPECT_EQ(TranslationFileFilter(kTranslateMameinfo, "Tous les fichiers"),
            "Mameinfo.dat|*.dat|Tous les fichiers|*.*");
  EXPECT_EQ(TranslationFileFilter(kTranslateCatver, "All files"), "Catver.ini|*.ini|All files|*.*");
  EXPECT_EQ(TranslationFileFilter(kTranslateMultiplayer, "All files"),
            "Multiplayer.ini|*.ini|All files|*.*");
  const char* sections[] = {"[WIZ]",     "[WIZ]",     "[WIZ]",     "[WIZ]",
                            "[PLAYERS]", "[PLAYERS]", "[HISTORY]", "[MAMEINFO]"};
  for (int i = 0; i < kTranslationFileCount; ++i) EXPECT_EQ(TranslationSection(i), sections[i]);
}

TEST_F(TranslateTest, EachSectionServesItsFilesAndAFileWithoutEntriesIsNotTouched) {
  TranslationPaths paths;
  const char* names[] = {"catlist.ini", "genre.ini", "catver.ini",  "wizsort.ini",
                         "multi.ini",   "np.ini",    "history.dat", "mameinfo.dat"};
  for (int i = 0; i < kTranslationFileCount; ++i) {
    paths[static_cast<size_t>(i)] = tmp / names[i];
    WriteFile(paths[static_cast<size_t>(i)], "Fighter 2P Board Sound\n");
  }
  WriteDictionary(
      "[WIZ]\r\nFighter = Combat\r\n[PLAYERS]\r\n2P = 2J\r\n[HISTORY]\r\nBoard =\r\n"
      "[MAMEINFO]\r\nSound = Son\r\n");
  TranslationChecks checks{};
  checks.fill(true);
  checks[kTranslateCatver] = false;
  const TranslationReport report = TranslateDataFiles(ctx, work, paths, checks);
  const auto text = [&](int i) { return ReadFile(paths[static_cast<size_t>(i)]); };
  EXPECT_EQ(text(kTranslateCatlist), "Combat 2P Board Sound\r\n");
  EXPECT_EQ(text(kTranslateGenre), "Combat 2P Board Sound\r\n");
  EXPECT_EQ(text(kTranslateWizsort), "Combat 2P Board Sound\r\n");
  EXPECT_EQ(text(kTranslateMultiplayer), "Fighter 2J Board Sound\r\n");
  EXPECT_EQ(text(kTranslateNplayers), "Fighter 2J Board Sound\r\n");
  EXPECT_EQ(text(kTranslateMameinfo), "Fighter 2P Board Son\r\n");
  // Not ticked, and a section of untranslated entries only: left alone, no backup.
  EXPECT_EQ(text(kTranslateCatver), "Fighter 2P Board Sound\n");
  EXPECT_EQ(text(kTranslateHistory), "Fighter 2P Board Sound\n");
  EXPECT_FALSE(fs::exists(tmp / "history.ORIGINAL.dat"));
  EXPECT_FALSE(fs::exists(tmp / "catver.ORIGINAL.ini"));
  EXPECT_TRUE(fs::exists(tmp / "catlist.ORIGINAL.ini"));
  EXPECT_FALSE(report.attempted[kTranslateHistory]);
  EXPECT_FALSE(report.attempted[kTranslateCatver]);
  EXPECT_TRUE(report.attempted[kTranslateMameinfo]);
  EXPECT_EQ(report.results[kTranslateMameinfo], TranslateResult::Translated);
  EXPECT_EQ(report.rows[kTranslateCatlist], 1);
  EXPECT_EQ(work.ProgressMax.load(), 7 * 23);
  EXPECT_EQ(work.ProgressValue.load(), 6 * 23);
}

TEST_F(TranslateTest, ATickedFileWithoutItsSectionIsNotTouched) {
  const std::string catlist = Copy("catlist.ini");
  const std::string history = Copy("history.dat");
  WriteDictionary("[HISTORY]\r\nBoard = Carte\r\n[wiz]\r\nFighter = Combat\r\n");
  TranslationPaths paths;
  paths[kTranslateCatlist] = catlist;
  paths[kTranslateHistory] = history;
  TranslationChecks checks{};
  checks[kTranslateCatlist] = true;
  const TranslationReport report = TranslateDataFiles(ctx, work, paths, checks);
  EXPECT_FALSE(report.attempted[kTranslateCatlist]);
  EXPECT_EQ(ReadFile(catlist), ReadFile(Fixture("catlist.ini")));
  EXPECT_FALSE(fs::exists(tmp / "catlist.ORIGINAL.ini"));
  // Not ticked: left alone although its section has an entry.
  EXPECT_EQ(ReadFile(history), ReadFile(Fixture("history.dat")));
}

TEST_F(TranslateTest, NoDictionaryTouchesNothing) {
  const std::string path = Copy("history.dat");
  TranslationPaths paths;
  paths[kTranslateHistory] = path;
  TranslationChecks checks{};
  checks[kTranslateHistory] = true;
  const TranslationReport report = TranslateDataFiles(ctx, work, paths, checks);
  EXPECT_FALSE(report.attempted[kTranslateHistory]);
  EXPECT_EQ(ReadFile(path), ReadFile(Fixture("history.dat")));
}

// A translated History and Mameinfo still give every game its texts: the same names get the
// same fields, and the ranges now hold the translated words.
TEST_F(TranslateTest, TranslatedDatFilesStillBuildTheSameRecords) {
  const auto makeStore = [](AppContext& context) {
    for (const char* name : {"alpha", "beta", "gamma", "delta", "nobody"}) {
      context.store.AppendGame(name, NewXmlRecord(name, 100 * context.store.GameCount()));
    }
  };
  const std::string history = Copy("history.dat");
  const std::string mameinfo = Copy("mameinfo.dat");
  ctx.settings.InfWrite("DataFile2", history);
  ctx.settings.InfWrite("DataFile3", mameinfo);
  makeStore(ctx);
  ASSERT_TRUE(AnalyseHistory(ctx, false, work));
  ASSERT_TRUE(AnalyseMameinfo(ctx, false, work));
  const std::vector<std::string> before = ctx.store.GameRecords;

  WriteDictionary(
      "[HISTORY]\r\nMain Board : = Carte Principale :\r\nSound Board : = Carte Son :\r\n"
      "Board = Carte\r\nPlayers : = Joueurs :\r\n[MAMEINFO]\r\nSound Board : = Carte Son :\r\n"
      "Main Board : = Carte Principale :\r\n");
  TranslationPaths paths;
  paths[kTranslateHistory] = history;
  paths[kTranslateMameinfo] = mameinfo;
  TranslationChecks checks{};
  checks[kTranslateHistory] = checks[kTranslateMameinfo] = true;
  TranslateDataFiles(ctx, work, paths, checks);

  AppContext again(ctx.AppFolder());
  again.settings.InfLoad();
  makeStore(again);
  ASSERT_TRUE(AnalyseHistory(again, false, work));
  ASSERT_TRUE(AnalyseMameinfo(again, false, work));
  ASSERT_EQ(again.store.GameNames(), ctx.store.GameNames());
  const std::string translatedHistory = ReadFile(history);
  const std::string translatedMameinfo = ReadFile(mameinfo);
  for (int i = 1; i <= again.store.GameCount(); ++i) {
    const std::string& was = before[static_cast<size_t>(i)];
    const std::string& now = again.store.GameRecords[static_cast<size_t>(i)];
    EXPECT_EQ(IsPresent(now), IsPresent(was));
    for (char tag : {'Q', 'U'}) {
      const bool hadText = FieldValue(was, tag).find('#') == std::string_view::npos;
      EXPECT_EQ(FieldValue(now, tag).find('#') == std::string_view::npos, hadText)
          << again.store.GameNames()[static_cast<size_t>(i)] << " " << tag;
    }
  }
  // alpha's History range holds the translation.
  const std::string alphaRange(FieldValue(again.store.GameRecords[1], 'Q'));
  const size_t comma = alphaRange.find(',');
  const size_t start = std::stoul(alphaRange.substr(0, comma));
  const size_t end = std::stoul(alphaRange.substr(comma + 1));
  const std::string alphaText = translatedHistory.substr(start, end - start);
  EXPECT_NE(alphaText.find("Carte Principale : Z80, Carte Son : YM2151."), std::string::npos)
      << alphaText;
  EXPECT_NE(alphaText.find("The board is on the Main Carte."), std::string::npos);
  EXPECT_NE(translatedMameinfo.find("Carte Son : new\r\n"), std::string::npos);
  EXPECT_EQ(ctx.log.BugCount(), 0);
}

}  // namespace
}  // namespace tessarin
