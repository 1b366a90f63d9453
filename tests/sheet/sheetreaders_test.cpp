// The parts of the details that read by a plain rule (History texts, clone lists, notes), each
// checked against a plain reading of that rule, and the display helpers.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "app/context.h"
#include "sheet/gamedetails.h"
#include "sheet/textdisplay.h"
#include "sheettestsupport.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

using sheettest::ReadBytes;
using sheettest::SheetFixture;
using sheettest::WriteBytes;

// ---- History: the text's own reading, done the long way ----

// The block from the 1-based `start` for `length` bytes as far as the file goes; from its first
// "$bio" on (6 characters behind it); cut before the line end in front of the first "$end".
std::string PlainHistory(const std::string& file, long long start, long long length) {
  long long begin = start - 1;
  long long end = begin + length;
  if (begin < 0) begin = 0;
  end = std::min<long long>(end, static_cast<long long>(file.size()));
  if (end <= begin) return {};
  std::string text = file.substr(static_cast<size_t>(begin), static_cast<size_t>(end - begin));
  const size_t bio = text.find("$bio");
  if (bio != std::string::npos) text = bio + 6 < text.size() ? text.substr(bio + 6) : "";
  const size_t stop = text.find("$end");
  if (stop != std::string::npos) {
    size_t drop = 2;
    if (stop >= 1 && text[stop - 1] == '\n') {
      drop = stop >= 2 && text[stop - 2] == '\r' ? 2 : 1;
    } else if (stop >= 1 && text[stop - 1] == '\r') {
      drop = 1;
    }
    text = stop >= drop ? text.substr(0, stop - drop) : "";
  }
  return text;
}

// A home with hand-made records: each game gets the History range given, a dump is there (its
// blocks are empty), and the History file is `history`.
class HistoryHome {
 public:
  HistoryHome(const std::string& history, const std::vector<std::pair<long long, long long>>& q)
      : ctx(dir.path().toStdString()) {
    ctx.log.SetFatalHandler([](const std::string&) {});
    WriteBytes(DefaultListXmlPath(ctx.AppFolder()), "<mame>\r\n</mame>\r\n");
    historyPath = ctx.AppFolder() + "history.dat";
    WriteBytes(historyPath, history);
    ctx.settings.InfWrite("DataFile2", historyPath);
    for (size_t i = 0; i < q.size(); ++i) {
      const std::string name = "g" + std::to_string(i + 1);
      std::string record = NewXmlRecord(name, 0);
      FieldSet(record, "#HI", std::to_string(q[i].first) + "," + std::to_string(q[i].second));
      ctx.store.AppendGame(name, record);
    }
    ctx.store.SetEndRecord(NewXmlRecord(EndRecordName, 0));
  }
  QTemporaryDir dir;
  AppContext ctx;
  std::string historyPath;
};

// A History file of many entries, some with "$bio", some without, long enough that a text
// crosses the loader's reading steps; with CR LF or LF line ends.
std::string MakeHistory(std::mt19937& random, bool crlf, int entries) {
  const std::string eol = crlf ? "\r\n" : "\n";
  std::string text = "## generated" + eol + eol;
  std::uniform_int_distribution<int> lines(0, 400);
  std::uniform_int_distribution<int> coin(0, 3);
  for (int e = 0; e < entries; ++e) {
    text += "$info=g" + std::to_string(e + 1) + "," + eol;
    if (coin(random) != 0) text += "$bio" + eol + eol;
    const int n = lines(random);
    for (int l = 0; l < n; ++l) {
      text += "Line " + std::to_string(l) + " of entry " + std::to_string(e) +
              std::string(static_cast<size_t>(coin(random) * 20), '.') + eol;
    }
    if (coin(random) != 0) text += "A $endless remark" + eol;
    text += "$end" + eol + eol;
  }
  return text;
}

TEST(HistoryText, MatchesThePlainReadingOnGeneratedFiles) {
  for (const bool crlf : {true, false}) {
    std::mt19937 random(crlf ? 7 : 11);
    const std::string file = MakeHistory(random, crlf, 60);
    ASSERT_GT(file.size(), 200000u);
    // The ranges as the analyser gives them (start of $info, next $info - 3 or the length), and
    // random ones anywhere in the file.
    std::vector<std::pair<long long, long long>> q;
    std::vector<size_t> infos;
    for (size_t at = file.find("$info"); at != std::string::npos; at = file.find("$info", at + 1)) {
      infos.push_back(at);
    }
    for (size_t i = 0; i < infos.size(); ++i) {
      const long long end = i + 1 < infos.size() ? static_cast<long long>(infos[i + 1]) - 3
                                                 : static_cast<long long>(file.size());
      q.emplace_back(static_cast<long long>(infos[i]), end);
    }
    std::uniform_int_distribution<long long> anywhere(1, static_cast<long long>(file.size()));
    for (int i = 0; i < 200; ++i) q.emplace_back(anywhere(random), anywhere(random) / 7);
    q.emplace_back(static_cast<long long>(file.size()) - 2, 100);  // behind the end

    HistoryHome home(file, q);
    // An old file: the loader keeps the places of its marks from the first game on.
    std::filesystem::last_write_time(
        home.historyPath, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    GameDetailsLoader loader(home.ctx);
    for (size_t i = 0; i < q.size(); ++i) {
      std::string name;
      const GameDetails d = loader.LoadGameDetails(name, static_cast<int>(i + 1), false);
      ASSERT_EQ(d.History, PlainHistory(file, q[i].first, q[i].second))
          << (crlf ? "CR LF" : "LF") << " range " << q[i].first << "," << q[i].second;
    }
  }
}

TEST(HistoryText, EntryWithoutBioRunsIntoTheNextBio) {
  const std::string file = ReadBytes(SheetFixture("history_crlf.dat"));
  const size_t nobio = file.find("$info=nobio");
  const size_t later = file.find("$info=laterbio");
  HistoryHome home(file, {{static_cast<long long>(nobio), static_cast<long long>(later) - 3}});
  GameDetailsLoader loader(home.ctx);
  std::string name = "g1";
  // The search for "$bio" goes on into the next entry, whose text is then shown.
  EXPECT_EQ(loader.LoadGameDetails(name, 0, false).History, "\r\nLater entry text.");
}

TEST(HistoryText, AFileChangedOnDiskIsReadAnew) {
  const std::string first = "head\r\n$info=g1\r\n$bio\r\nOld text.\r\n$end\r\n";
  HistoryHome home(first, {{6, 40}});
  std::filesystem::last_write_time(
      home.historyPath, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  GameDetailsLoader loader(home.ctx);
  std::string name = "g1";
  EXPECT_EQ(loader.LoadGameDetails(name, 0, false).History, "Old text.");
  // Same range, a "$bio" moved: the marks found before must not be used again, even when both
  // files carry old stamps.
  WriteBytes(home.historyPath, "head\r\n$info=g1\r\nxx\r\n$bio\r\nNew text, longer.\r\n$end\r\n");
  std::filesystem::last_write_time(
      home.historyPath, std::filesystem::file_time_type::clock::now() - std::chrono::minutes(30));
  // The range ends just before the "$end" now: no cut, the line end stays.
  EXPECT_EQ(loader.LoadGameDetails(name, 0, false).History, "New text, longer.\r\n");
  EXPECT_EQ(PlainHistory(ReadBytes(home.historyPath), 6, 40), "New text, longer.\r\n");
}

TEST(HistoryText, NotReadForAZeroStartOrWithoutComma) {
  const std::string file = "$info=g1\r\n$bio\r\nAt the very start.\r\n$end\r\n";
  HistoryHome home(file, {{0, 40}, {1, 40}});
  std::string& second = home.ctx.store.GameRecords[2];
  GameDetailsLoader loader(home.ctx);
  std::string name = "g1";
  EXPECT_EQ(loader.LoadGameDetails(name, 0, false).History, "");
  name = "g2";
  EXPECT_EQ(loader.LoadGameDetails(name, 0, false).History, "At the very start.");
  ResetField(second, 'Q', "1");
  name = "g2";
  EXPECT_EQ(loader.LoadGameDetails(name, 0, false).History, "");
  EXPECT_EQ(loader.LoadGameDetails(name, 0, true).History, "");
}

// ---- clone lists ----

GameStore CloneStore(const std::vector<std::pair<std::string, std::string>>& games) {
  GameStore store;
  for (const auto& [name, parent] : games) {
    std::string record = NewXmlRecord(name, 0);
    if (!parent.empty()) FieldSet(record, "#CL", parent);
    store.AppendGame(name, record);
  }
  store.SetEndRecord(NewXmlRecord(EndRecordName, 0));
  return store;
}

TEST(BuildClonesList, PrefixRuleInRecordOrder) {
  QTemporaryDir dir;
  AppContext ctx(dir.path().toStdString());
  ctx.store = CloneStore({{"abcdx", "abcd"},
                          {"abc", ""},
                          {"abcx", "abc"},
                          {"abcd", ""},
                          {"abcy", "abc"},
                          {"ab2", "ab"}});
  GameDetailsLoader loader(ctx);
  EXPECT_EQ(loader.BuildClonesList("abc", false), "abcdx, abcx, abcy");
  EXPECT_EQ(loader.BuildClonesList("abcd", false), "abcdx");
  EXPECT_EQ(loader.BuildClonesList("abcx", false), "");
  EXPECT_EQ(loader.BuildClonesList("abc", true),
            "<a href=\"abcdx.htm\">abcdx</a>, <a href=\"abcx.htm\">abcx</a>, "
            "<a href=\"abcy.htm\">abcy</a>");
  EXPECT_EQ(loader.BuildClonesList("abc", false), BuildClonesListPlain(ctx.store, "abc", false));
  // The index follows a new database.
  ctx.store = CloneStore({{"abc", ""}, {"abcz", "abc"}});
  EXPECT_EQ(loader.BuildClonesList("abc", false), "abcz");
}

TEST(BuildClonesList, IndexedEqualsThePlainWalk) {
  std::mt19937 random(3);
  std::uniform_int_distribution<int> letter(0, 3);
  std::uniform_int_distribution<int> length(1, 4);
  auto word = [&] {
    std::string w;
    for (int i = length(random); i > 0; --i) w.push_back(static_cast<char>('a' + letter(random)));
    return w;
  };
  std::vector<std::pair<std::string, std::string>> games;
  for (int i = 0; i < 400; ++i) games.emplace_back(word() + std::to_string(i), word());
  for (int i = 0; i < 50; ++i) games.emplace_back("p" + std::to_string(i), "");
  QTemporaryDir dir;
  AppContext ctx(dir.path().toStdString());
  ctx.store = CloneStore(games);
  GameDetailsLoader loader(ctx);
  std::vector<std::string> queries = {"", "#", "#C", "#CL", "#CL;", "a;", "abc;T"};
  for (int i = 0; i < 300; ++i) queries.push_back(word());
  for (const std::string& q : queries) {
    for (const bool links : {false, true}) {
      ASSERT_EQ(loader.BuildClonesList(q, links), BuildClonesListPlain(ctx.store, q, links)) << q;
    }
  }
  // Everything matches the empty name; the placeholder's text matches a game that is no clone.
  EXPECT_FALSE(loader.BuildClonesList("", false).empty());
  EXPECT_NE(loader.BuildClonesList("#CL", false).find("p0"), std::string::npos);
}

// ---- personal notes ----

TEST(ReadPersonalNotes, Blocks) {
  QTemporaryDir dir;
  const std::string folder = dir.path().toStdString() + "/";
  const std::string notes = SheetFixture("notes.txt");
  EXPECT_EQ(ReadPersonalNotes(folder, "zorbmain", notes), "My favourite.\r\nSecond line.");
  EXPECT_EQ(ReadPersonalNotes(folder, "zorblast", notes),
            "Clone note.\r\nmention [zorbios] here\r\nBios note line.");
  EXPECT_EQ(ReadPersonalNotes(folder, "zorbios", notes), "Bios note line.");
  EXPECT_EQ(ReadPersonalNotes(folder, "other", notes), "");
  EXPECT_EQ(ReadPersonalNotes(folder, "puckman", notes), "Puck notes.");
  EXPECT_EQ(ReadPersonalNotes(folder, "ZORBMAIN", notes), "");
  EXPECT_EQ(ReadPersonalNotes(folder, "absent", notes), "");
  EXPECT_EQ(ReadPersonalNotes(folder, "zorbmain", folder + "nothere.txt"), "");
}

TEST(ReadPersonalNotes, DefaultPlacesAndLineEnds) {
  QTemporaryDir dir;
  const std::string folder = dir.path().toStdString() + "/";
  EXPECT_EQ(ReadPersonalNotes(folder, "a", ""), "");
  WriteBytes(folder + "DataFiles/notes.txt", "[a]\nfrom the data folder\n");
  EXPECT_EQ(ReadPersonalNotes(folder, "a", ""), "from the data folder");
  // The one in the application folder comes first, whatever the case of its name.
  WriteBytes(folder + "NOTES.TXT", "[a]\rone\r\rtwo\r\n\t[b]\r\n");
  EXPECT_EQ(ReadPersonalNotes(folder, "a", ""), "one\r\n\r\ntwo\r\n\t[b]");
}

// ---- display helpers ----

TEST(DecodeEntitiesForDisplay, NamedAndNumeric) {
  EXPECT_EQ(DecodeEntitiesForDisplay("Zorb &quot;Deluxe&quot; &amp; &lt;co&gt; &apos;84"),
            "Zorb \"Deluxe\" & <co> '84");
  EXPECT_EQ(DecodeEntitiesForDisplay("A&#38;B &#x41;&#233;"), "A&B A\xC3\xA9");
  // What is no entity stays.
  EXPECT_EQ(DecodeEntitiesForDisplay("R&D &; &unknown; &#xZZ; &#0; a & b"),
            "R&D &; &unknown; &#xZZ; &#0; a & b");
  EXPECT_EQ(DecodeEntitiesForDisplay("plain"), "plain");
}

TEST(DisplayUtf8, Utf8KeptWindows1252Converted) {
  EXPECT_EQ(DisplayUtf8("Caf\xC3\xA9"), "Caf\xC3\xA9");
  EXPECT_EQ(DisplayUtf8("Caf\xE9"), "Caf\xC3\xA9");
  EXPECT_EQ(DisplayUtf8("\x80\x81\x8D\x8F\x90\x9D\x9F"),
            "\xE2\x82\xAC\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D\xC5\xB8");
  EXPECT_FALSE(IsValidUtf8("\xC0\xAF"));      // overlong
  EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));  // surrogate
  EXPECT_FALSE(IsValidUtf8("\xE2\x82"));      // cut short
  EXPECT_TRUE(IsValidUtf8("\xF0\x9F\x98\x80"));
}

}  // namespace
}  // namespace tessarin
