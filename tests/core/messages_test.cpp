#include "core/messages.h"

#include <gtest/gtest.h>

#include <regex>

#include "core/log.h"
#include "core/settings.h"
#include "core/version.h"
#include "core_test_support.h"

namespace tessarin {
namespace {

using testing::CrLfLines;
using testing::FolderEntries;
using testing::ReadFile;
using testing::RecordingUi;
using testing::TempFolder;
using testing::WriteFile;

const std::string kSourceRoot = std::string(TESSARIN_TEST_DATA) + "/../../";

// Numbers that have no text in either language.
bool IsUnused(int number) {
  return number == 125 || number == 128 || number == 188 || number == 213;
}

// Access letters: a single '&' before a character; "&&" is a plain ampersand.
int AccessLetters(std::string_view text) {
  int count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '&') continue;
    if (i + 1 < text.size() && text[i + 1] == '&') {
      ++i;
      continue;
    }
    if (i + 1 < text.size()) ++count;
  }
  return count;
}

bool IsValidUtf8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const auto c = static_cast<unsigned char>(text[i]);
    int extra = 0;
    if (c < 0x80) {
      extra = 0;
    } else if ((c & 0xE0) == 0xC0 && c >= 0xC2) {
      extra = 1;
    } else if ((c & 0xF0) == 0xE0) {
      extra = 2;
    } else if ((c & 0xF8) == 0xF0 && c <= 0xF4) {
      extra = 3;
    } else {
      return false;
    }
    if (i + extra >= text.size()) return false;
    for (int k = 1; k <= extra; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
    }
    i += extra + 1;
  }
  return true;
}

std::size_t Count(std::string_view text, std::string_view what) {
  std::size_t count = 0;
  for (std::size_t at = text.find(what); at != std::string_view::npos;
       at = text.find(what, at + what.size())) {
    ++count;
  }
  return count;
}

TEST(MessageTableTest, TheEnglishResourceHasOneMessageALine) {
  const std::string file = ReadFile(kSourceRoot + "resources/messages/english.txt");
  EXPECT_EQ(Count(file, "\n"), 473u);
  EXPECT_EQ(Count(file, "\r"), 0u);
  EXPECT_TRUE(file.ends_with("roms ?\n"));
  EXPECT_TRUE(IsValidUtf8(file));
}

TEST(MessageTableTest, TheFrenchResourceHasOneMessageALine) {
  const std::string file = ReadFile(kSourceRoot + "resources/messages/french.txt");
  EXPECT_EQ(Count(file, "\n"), 473u);
  EXPECT_EQ(Count(file, "\r"), 0u);
  EXPECT_TRUE(IsValidUtf8(file));
}

TEST(MessageTableTest, EnglishHas473MessagesAndOnlyTheFourUnusedAreEmpty) {
  const auto& english = Messages::EnglishTable();
  ASSERT_EQ(english.size(), 474u);
  EXPECT_EQ(english[0], "");
  for (int n = 1; n <= Messages::kCount; ++n) {
    EXPECT_EQ(english[n].empty(), IsUnused(n)) << "message " << n;
  }
}

TEST(MessageTableTest, EnglishTextsAreExact) {
  const auto& en = Messages::EnglishTable();
  EXPECT_EQ(en[1], "Game database");
  EXPECT_EQ(en[2], "Create or update the database");
  EXPECT_EQ(en[11], "Zip && Unzip");
  EXPECT_EQ(en[19], "About ");
  EXPECT_EQ(en[22], "&Menu");
  EXPECT_EQ(en[41], "Done");
  EXPECT_EQ(en[48],
            "The database will be updated with the files|that you previously defined.|Do you "
            "want to confirm the update ?");
  EXPECT_TRUE(en[58].starts_with("Building database. This may take several minutes"));
  EXPECT_TRUE(en[58].ends_with("from your new MAME build. "));
  EXPECT_EQ(en[124], "Destination path :");
  EXPECT_EQ(en[130], "Titles (Titles\\)");
  EXPECT_EQ(en[184], "Name of Rom : ");
  EXPECT_EQ(en[189], "Savestate support: ");
  EXPECT_EQ(en[317], "First, you must enter a \"folder\" name");
  EXPECT_EQ(en[335], " roms were found with these criterias :");
  EXPECT_EQ(en[399],
            "You can't download more than 10 images at the same time|in order to preserve "
            "bandwith from host sites||Thank you.");
  EXPECT_EQ(en[405],
            " layouts were not downloaded|because they are in the pack.|Do you want to download "
            "the pack now (27 Mo) ?");
  EXPECT_EQ(en[409], "Please check Tessarin.LOG.txt.");
  EXPECT_EQ(en[413], "ERROR - Can't download ");
  EXPECT_EQ(en[461], "Add this string &AFTER the names:");
  EXPECT_EQ(en[472], "Save &List");
  EXPECT_EQ(en[473], "Do you want to add the '.zip' extension to the roms ?");
}

TEST(MessageTableTest, FrenchHasTheShapeOfEnglish) {
  const auto& en = Messages::EnglishTable();
  const auto& fr = Messages::FrenchTable();
  ASSERT_EQ(fr.size(), en.size());
  EXPECT_EQ(fr[0], "");
  int differing = 0;
  for (int n = 1; n <= Messages::kCount; ++n) {
    SCOPED_TRACE("message " + std::to_string(n) + ": " + en[n] + " / " + fr[n]);
    EXPECT_EQ(fr[n].empty(), en[n].empty());
    EXPECT_EQ(Count(fr[n], "|"), Count(en[n], "|"));
    EXPECT_EQ(AccessLetters(fr[n]), AccessLetters(en[n]));
    EXPECT_EQ(Count(fr[n], "&&"), Count(en[n], "&&"));
    EXPECT_EQ(fr[n].starts_with(' '), en[n].starts_with(' '));
    EXPECT_EQ(fr[n].ends_with(' '), en[n].ends_with(' '));
    EXPECT_TRUE(IsValidUtf8(fr[n]));
    if (fr[n] != en[n]) ++differing;
  }
  // Words like "Options" or "Genres" are the same in both; nearly everything else is not.
  EXPECT_GT(differing, 420);
}

TEST(MessageTableTest, FrenchRowsThatAreFixed) {
  const auto& fr = Messages::FrenchTable();
  EXPECT_EQ(fr[2], "Créer ou mettre à jour la base de données");
  EXPECT_EQ(fr[26], "Travail en cours...");
  EXPECT_EQ(fr[27], "Annule");
  EXPECT_EQ(fr[28], "La base de données n'existe pas.");
  EXPECT_EQ(fr[41], "Opération terminée");
  EXPECT_EQ(fr[118], "Point virgule");
  EXPECT_EQ(fr[326], "La base de données est vide.");
}

TEST(MessageTableTest, FrenchAccessLettersStandInsideTheirWords) {
  const auto& fr = Messages::FrenchTable();
  const std::regex access("&[^&\\s]");
  for (int n = 1; n <= Messages::kCount; ++n) {
    if (AccessLetters(fr[n]) == 0) continue;
    EXPECT_TRUE(std::regex_search(fr[n], access)) << n << ": " << fr[n];
  }
}

TEST(WithLineBreaksTest, TurnsEachBarIntoALineBreak) {
  EXPECT_EQ(WithLineBreaks("a|b||c|"), "a\nb\n\nc\n");
  EXPECT_EQ(WithLineBreaks("no break"), "no break");
  EXPECT_EQ(WithLineBreaks(""), "");
  const auto& en = Messages::EnglishTable();
  EXPECT_EQ(WithLineBreaks(en[454]),
            "There was at least one error.\nPlease check Tessarin.log.txt.");
}

class MessagesTest : public ::testing::Test {
 protected:
  TempFolder folder;
  Log log{folder.Path()};
  Settings settings{folder / "Tessarin.inf", log};
  Messages messages{folder.Path(), settings, log};

  // What the language chooser does when the user picks a file of the application folder.
  void PickLanguageFile(const std::string& name) {
    messages.LanguageNumber = Messages::kLanguageFile;
    messages.LngFileName = name;
    settings.InfWrite("LngFile", name);
  }

  void InstallFixture(const std::string& fixture, const std::string& as) {
    std::filesystem::copy_file(std::string(TESSARIN_TEST_DATA) + "/core/" + fixture, folder / as);
  }

  // A language file whose line n holds "=" followed by `prefix` and n.
  void WriteNumberedFile(const std::string& name, int lines, const std::string& prefix) {
    std::string content;
    for (int n = 1; n <= lines; ++n) content += "=" + prefix + std::to_string(n) + "\r\n";
    WriteFile(folder / name, content);
  }

  void ExpectEnglishFrom(int first) {
    const auto& en = Messages::EnglishTable();
    for (int n = first; n <= Messages::kCount; ++n) {
      ASSERT_EQ(messages.Lng(n), en[n]) << "message " << n;
    }
  }
};

TEST_F(MessagesTest, TheTableIsEnglishBeforeLoading) {
  EXPECT_EQ(messages.LanguageNumber, Messages::kEnglish);
  EXPECT_EQ(messages.Lng(1), "Game database");
}

TEST_F(MessagesTest, NumbersOutsideTheTableGiveTheEmptyText) {
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(0), "");
  EXPECT_EQ(messages.Lng(-3), "");
  EXPECT_EQ(messages.Lng(474), "");
  EXPECT_EQ(messages.Lng(125), "");
}

TEST_F(MessagesTest, FrenchAndEnglishTables) {
  messages.LanguageNumber = Messages::kFrench;
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(2), "Créer ou mettre à jour la base de données");
  EXPECT_EQ(messages.Lng(41), "Opération terminée");
  for (int n = 1; n <= Messages::kCount; ++n) {
    ASSERT_EQ(messages.Lng(n), Messages::FrenchTable()[n]);
  }
  messages.LanguageNumber = Messages::kEnglish;
  messages.LoadMessages();
  ExpectEnglishFrom(1);
}

TEST_F(MessagesTest, FrenchIgnoresALanguageFile) {
  InstallFixture("German.lng", "German.lng");
  PickLanguageFile("German.lng");
  messages.LanguageNumber = Messages::kFrench;
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), Messages::FrenchTable()[1]);
}

TEST_F(MessagesTest, LanguageFileFillsMessagesByTheirPlace) {
  InstallFixture("German.lng", "German.lng");
  PickLanguageFile("German.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "Spieldatenbank");
  EXPECT_EQ(messages.Lng(2), "Datenbank erstellen oder aktualisieren");
  EXPECT_EQ(messages.Lng(3), "Datenbank durchsuchen");
  EXPECT_EQ(messages.Lng(4), "c");  // a==b=c: the message starts behind the single '='
  EXPECT_EQ(messages.Lng(5), "x=y");
  EXPECT_EQ(messages.Lng(6), "  Leerzeichen  ");
  EXPECT_EQ(messages.Lng(7), "");
  EXPECT_EQ(messages.Lng(8),
            "Gr\xc3\xb6\xc3\x9f"
            "e|Zeile");
  EXPECT_EQ(messages.Lng(9), "Wert");  // what stands in front of the '=' is ignored
  ExpectEnglishFrom(10);
  EXPECT_EQ(log.BugCount(), 0);
}

TEST_F(MessagesTest, DoubledEqualsSigns) {
  WriteFile(folder / "Test.lng", "=a==b\r\n=====\r\n= ==x\r\n=1==2==3=4\r\nk===v\r\n");
  PickLanguageFile("Test.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "a=b");
  EXPECT_EQ(messages.Lng(2), "");  // "==" "==" "=": the last single one starts it
  EXPECT_EQ(messages.Lng(3), " =x");
  EXPECT_EQ(messages.Lng(4), "1=2=3=4");
  EXPECT_EQ(messages.Lng(5), "v");
  ExpectEnglishFrom(6);
}

TEST_F(MessagesTest, ALineOfOnlyDoubledEqualsIsNoMessage) {
  WriteFile(folder / "Test.lng", "==\r\na==b\r\n=one\r\n");
  PickLanguageFile("Test.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "one");
  ExpectEnglishFrom(2);
}

TEST_F(MessagesTest, CommentsAndBlankLinesShiftNoNumbersButAStrayLineDoes) {
  WriteFile(folder / "Test.lng",
            "=one\r\n; comment\r\n  ;  indented = comment\r\n\r\n   \r\n=two\r\nstray=line\r\n"
            "=three\r\n");
  PickLanguageFile("Test.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "one");
  EXPECT_EQ(messages.Lng(2), "two");
  EXPECT_EQ(messages.Lng(3), "line");
  EXPECT_EQ(messages.Lng(4), "three");
  ExpectEnglishFrom(5);
}

TEST_F(MessagesTest, ASemicolonBehindTheEqualsIsAMessage) {
  WriteFile(folder / "Test.lng", "=; not a comment\r\n");
  PickLanguageFile("Test.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "; not a comment");
}

TEST_F(MessagesTest, DeletingALineMovesTheLaterMessagesDown) {
  WriteFile(folder / "Test.lng", "=one\r\n=three\r\n=four\r\n");
  PickLanguageFile("Test.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "one");
  EXPECT_EQ(messages.Lng(2), "three");
  EXPECT_EQ(messages.Lng(3), "four");
  EXPECT_EQ(messages.Lng(4), Messages::EnglishTable()[4]);
}

TEST_F(MessagesTest, MessagesBeyond473AreIgnored) {
  WriteNumberedFile("Long.lng", 480, "L");
  PickLanguageFile("Long.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "L1");
  EXPECT_EQ(messages.Lng(125), "L125");
  EXPECT_EQ(messages.Lng(473), "L473");
  EXPECT_EQ(messages.Lng(474), "");
  EXPECT_EQ(log.BugCount(), 0);
}

TEST_F(MessagesTest, AShortFileLeavesTheRestEnglish) {
  WriteNumberedFile("Short.lng", 3, "S");
  PickLanguageFile("Short.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(3), "S3");
  ExpectEnglishFrom(4);
}

TEST_F(MessagesTest, EveryLineEndIsALineEnd) {
  WriteFile(folder / "Ends.lng", "=lf\n=cr\r=crlf\r\n=last");
  PickLanguageFile("Ends.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "lf");
  EXPECT_EQ(messages.Lng(2), "cr");
  EXPECT_EQ(messages.Lng(3), "crlf");
  EXPECT_EQ(messages.Lng(4), "last");
  ExpectEnglishFrom(5);
}

TEST_F(MessagesTest, BytesOfAnyCodePageAndLongLinesAreKept) {
  const std::string longText(1 << 20, 'x');
  WriteFile(folder / "Bytes.lng", "=\xe9t\xe9 \x80\r\n=" + longText + "\r\n=\xc3\xa9\r\n");
  PickLanguageFile("Bytes.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "\xe9t\xe9 \x80");
  EXPECT_EQ(messages.Lng(2), longText);
  EXPECT_EQ(messages.Lng(3), "\xc3\xa9");
  ExpectEnglishFrom(4);
}

TEST_F(MessagesTest, AnyOtherLanguageNumberMeansEnglish) {
  InstallFixture("German.lng", "German.lng");
  PickLanguageFile("German.lng");
  messages.LanguageNumber = 3;
  messages.LoadMessages();
  ExpectEnglishFrom(1);
  messages.LanguageNumber = -1;
  messages.LoadMessages();
  ExpectEnglishFrom(1);
}

TEST_F(MessagesTest, TheFileNameIsFoundWithoutRegardToCase) {
  InstallFixture("German.lng", "GERMAN.LNG");
  PickLanguageFile("German.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "Spieldatenbank");
}

TEST_F(MessagesTest, AMissingLanguageFileLeavesEnglishAndIsNoError) {
  PickLanguageFile("Klingon.lng");
  messages.LoadMessages();
  ExpectEnglishFrom(1);
  EXPECT_EQ(log.BugCount(), 0);
  EXPECT_FALSE(std::filesystem::exists(log.LogPath()));
}

TEST_F(MessagesTest, TheNameIsTakenAgainFromTheKey) {
  InstallFixture("German.lng", "German.lng");
  WriteNumberedFile("Other.lng", 2, "O");
  messages.LanguageNumber = Messages::kLanguageFile;
  messages.LngFileName = "Other.lng";
  settings.InfWrite("LngFile", "German.lng");
  messages.LoadMessages();
  EXPECT_EQ(messages.Lng(1), "Spieldatenbank");
  EXPECT_EQ(messages.LngFileName, "German.lng");
}

TEST_F(MessagesTest, WithoutTheKeyTheTableStaysEnglish) {
  InstallFixture("German.lng", "German.lng");
  messages.LanguageNumber = Messages::kLanguageFile;
  messages.LngFileName = "German.lng";
  messages.LoadMessages();  // no LngFile key: "-1"
  ExpectEnglishFrom(1);

  settings.InfWrite("LngFile", "");
  messages.LngFileName = "German.lng";
  messages.LoadMessages();
  ExpectEnglishFrom(1);
}

TEST_F(MessagesTest, AtTheNextStartTheLanguageFileIsNotApplied) {
  // Language is 2 and the key names the file, but the name picked in the earlier run is gone:
  // the texts are English. This is how language files have always behaved.
  InstallFixture("German.lng", "German.lng");
  settings.InfWrite("LngFile", "German.lng");
  settings.InfWrite("Language", 2);
  Settings nextRun(folder / "Tessarin.inf", log);
  nextRun.InfLoad();
  Messages nextMessages(folder.Path(), nextRun, log);
  nextMessages.LanguageNumber = nextRun.InfReadNumber("Language");
  ASSERT_EQ(nextMessages.LngFileName, "");
  nextMessages.LoadMessages();
  EXPECT_EQ(nextMessages.Lng(1), "Game database");
  EXPECT_EQ(nextMessages.LngFileName, "");
}

TEST_F(MessagesTest, ReloadingDropsTheTextsOfALanguageFile) {
  InstallFixture("German.lng", "German.lng");
  PickLanguageFile("German.lng");
  messages.LoadMessages();
  ASSERT_EQ(messages.Lng(1), "Spieldatenbank");
  messages.LanguageNumber = Messages::kEnglish;
  messages.LoadMessages();
  ExpectEnglishFrom(1);
}

TEST_F(MessagesTest, AFolderNamedLikeTheFileIsNoLanguageFile) {
  std::filesystem::create_directory(folder / "Folder.lng");
  PickLanguageFile("Folder.lng");
  messages.LoadMessages();
  ExpectEnglishFrom(1);
}

TEST_F(MessagesTest, TemplateHoldsTheHeaderAndMessagesUpToTheFirstEmptyOne) {
  messages.LanguageNumber = Messages::kEnglish;
  messages.LoadMessages();
  RecordingUi ui;
  ASSERT_TRUE(messages.WriteLanguageTemplate(&ui));
  const std::string content = ReadFile(folder / "language.lng");
  ASSERT_TRUE(content.ends_with("\r\n"));
  EXPECT_EQ(Count(content, "\n"), Count(content, "\r\n"));
  const auto lines = CrLfLines(content);
  ASSERT_EQ(lines.size(), 10u + 124u);
  const std::string version = AppVersion();
  EXPECT_TRUE(std::regex_match(version, std::regex("[0-9]+\\.[0-9]+\\.[0-9]+"))) << version;
  EXPECT_EQ(lines[0], "; Language file for TESSARIN " + version);
  EXPECT_EQ(lines[1], "; You have to write the translation of each string into your language");
  EXPECT_EQ(lines[2], "; and then to rename the file with the name of your language.");
  EXPECT_EQ(lines[3], "; Example : German.lng");
  EXPECT_EQ(lines[4], ";");
  EXPECT_EQ(lines[5], "; Fichier langue pour TESSARIN " + version);
  EXPECT_EQ(lines[6], "; Vous devez traduire chaque chaîne de texte dans votre langue");
  EXPECT_EQ(lines[7], "; et ensuite renommer le fichier du nom de votre langue.");
  EXPECT_EQ(lines[8], "; Exemple : Allemand.lng");
  EXPECT_EQ(lines[9], ";");
  for (int n = 1; n <= 124; ++n) {
    ASSERT_EQ(lines[9 + n], "=" + Messages::EnglishTable()[n]) << "message " << n;
  }
  EXPECT_EQ(lines[10], "=Game database");
  EXPECT_EQ(lines[20], "=Zip && Unzip");
  EXPECT_EQ(lines[28], "=About ");
  EXPECT_EQ(lines.back(), "=Destination path :");
}

TEST_F(MessagesTest, TemplateTellsTheUserWhereItIs) {
  messages.LoadMessages();
  RecordingUi ui;
  ASSERT_TRUE(messages.WriteLanguageTemplate(&ui));
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].icon, Icon::Information);
  EXPECT_EQ(ui.shown[0].text,
            "A Language.lng file was saved into your Tessarin folder.|"
            "Edit this file into your notepad if you want to translate TESSARIN into your "
            "language.|Finally run again TESSARIN and set your language.");
  EXPECT_EQ(ui.shown[0].title, "");
}

TEST_F(MessagesTest, TemplateWithoutAUserInterface) {
  messages.LoadMessages();
  EXPECT_TRUE(messages.WriteLanguageTemplate(nullptr));
  EXPECT_TRUE(std::filesystem::exists(folder / "language.lng"));
}

TEST_F(MessagesTest, TemplateReplacesAnEarlierOneWhateverItsCase) {
  WriteFile(folder / "Language.lng", "old content\r\n");
  messages.LoadMessages();
  ASSERT_TRUE(messages.WriteLanguageTemplate(nullptr));
  const auto entries = FolderEntries(folder.Path());
  ASSERT_EQ(entries, std::vector<std::string>{"Language.lng"});
  EXPECT_TRUE(ReadFile(folder / "Language.lng").starts_with("; Language file for TESSARIN "));
}

TEST_F(MessagesTest, TemplateDoublesEqualsSignsAndReadsBackTheSame) {
  WriteFile(folder / "Test.lng", "=a==b\r\n=c====d\r\n");
  PickLanguageFile("Test.lng");
  messages.LoadMessages();
  ASSERT_EQ(messages.Lng(1), "a=b");
  ASSERT_EQ(messages.Lng(2), "c==d");
  ASSERT_TRUE(messages.WriteLanguageTemplate(nullptr));
  const auto lines = CrLfLines(ReadFile(folder / "language.lng"));
  ASSERT_GE(lines.size(), 12u);
  EXPECT_EQ(lines[10], "=a==b");
  EXPECT_EQ(lines[11], "=c====d");

  // The template is itself a language file that gives back the same 124 messages.
  std::array<std::string, 125> before;
  for (int n = 1; n <= 124; ++n) before[n] = messages.Lng(n);
  PickLanguageFile("language.lng");
  messages.LoadMessages();
  for (int n = 1; n <= 124; ++n) ASSERT_EQ(messages.Lng(n), before[n]) << n;
  ExpectEnglishFrom(125);
}

TEST_F(MessagesTest, TemplateStopsAtAMessageOfBlanks) {
  WriteFile(folder / "Test.lng", "=one\r\n=two\r\n=   \r\n=four\r\n");
  PickLanguageFile("Test.lng");
  messages.LoadMessages();
  ASSERT_TRUE(messages.WriteLanguageTemplate(nullptr));
  const auto lines = CrLfLines(ReadFile(folder / "language.lng"));
  ASSERT_EQ(lines.size(), 12u);
  EXPECT_EQ(lines[11], "=two");
}

TEST_F(MessagesTest, AfterOtherTheTemplateExistsAndTheRunGoesOnInEnglish) {
  // The chooser's "Other..." sets English, loads it and writes the template.
  messages.LanguageNumber = Messages::kEnglish;
  messages.LoadMessages();
  RecordingUi ui;
  ASSERT_TRUE(messages.WriteLanguageTemplate(&ui));
  EXPECT_TRUE(std::filesystem::exists(folder / "language.lng"));
  ExpectEnglishFrom(1);
  EXPECT_EQ(log.BugCount(), 0);
}

TEST_F(MessagesTest, TemplateIntoAMissingFolderGivesFalseAndLogs) {
  Log otherLog(folder.Path());
  otherLog.SetFatalHandler([](const std::string&) {});
  Messages elsewhere(folder / "missing/", settings, otherLog);
  elsewhere.LoadMessages();
  RecordingUi ui;
  EXPECT_FALSE(elsewhere.WriteLanguageTemplate(&ui));
  EXPECT_TRUE(ui.shown.empty());
  EXPECT_EQ(otherLog.BugCount(), 1);
}

}  // namespace
}  // namespace tessarin
