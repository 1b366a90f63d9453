#include <gtest/gtest.h>

#include "builder/listxml.h"
#include "buildertestsupport.h"
#include "core/log.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

using buildertest::BuilderFixture;
using buildertest::LineStartOf;
using buildertest::ReadBytes;
using buildertest::TestHome;
using buildertest::WriteBytes;

constexpr const char* kUnsetTail = ";I#G;J#CA;K#V;L#X;M#BI;";

// A record as the import must make it: written out here field by field, not through the store.
std::string Xml(const std::string& name, size_t offset, const std::string& b, const std::string& c,
                const std::string& d, const std::string& e, const std::string& f,
                const std::string& g, const std::string& h, const std::string& n,
                const std::string& s, const std::string& v) {
  return name + ";A" + std::to_string(offset) + ";0;B" + b + ";C" + c + ";D" + d + ";E" + e + ";F" +
         f + ";G" + g + ";H" + h + kUnsetTail + "N" + n + ";O#N;P#HS;Q#HI;R#CH;S" + s +
         ";T#CM;U#MI;V" + v;
}

std::string EndRecordAt(size_t offset) {
  return std::string("\x1f;A") + std::to_string(offset) +
         ";0;B#Z;C#MA;D#Y;E#O;F#BU;G#CO;H#ST;I#G;J#CA;K#V;L#X;M#BI;N#D;O#N;P#HS;Q#HI;R#CH;S#CL;"
         "T#CM;U#MI;V#SS";
}

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  size_t at = 0;
  while ((at = text.find(from, at)) != std::string::npos) {
    text.replace(at, from.size(), to);
    at += to.size();
  }
  return text;
}

void Import(TestHome& home, const std::string& path, size_t blockSize = 0) {
  Work work;
  ImportListXml(home.ctx.store, home.ctx.log, work, path, blockSize);
}

// The old dump's expected records, with the offsets of the text given.
std::vector<std::string> OldDumpRecords(const std::string& text) {
  auto at = [&](const std::string& name) {
    return LineStartOf(text, "<game name=\"" + name + "\"");
  };
  return {
      "",
      Xml("zorbmain", at("zorbmain"), "Zorb Blaster", "1", "1", "1", "1", "1", "1", "1", "#CL",
          "1"),
      Xml("zorblast", at("zorblast"), "Zorb Blaster (set 2)", "1", "1", "1", "1", "1", "1", "1",
          "zorbmain", "2"),
      Xml("tomcat", at("tomcat"), "TomCat &amp; Jerry &lt;prototype&gt;", "2", "2", "2", "2", "2",
          "2", "2", "#CL", "1"),
      // No description: the placeholder went when the next game began. An empty year: none.
      Xml("nodesc", at("nodesc"), "", "1", "#Y", "#O", "3", "#CO", "3", "3", "#CL", "1"),
      // The last game keeps its description placeholder.
      Xml("lastone", at("lastone"), "#Z", "3", "3", "#O", "#BU", "#CO", "1", "1", "#CL", "2"),
      EndRecordAt(text.size()),
  };
}

TEST(ListXml, OldGameDumpWithCrLf) {
  TestHome home;
  const std::string path = BuilderFixture("dumps/old_game_crlf.xml");
  const std::string text = ReadBytes(path);
  ASSERT_NE(text.find("\r\n"), std::string::npos);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  EXPECT_EQ(home.ctx.log.BugCount(), 0);
  ASSERT_EQ(store.GameCount(), 5);
  EXPECT_EQ(store.GameRecords, OldDumpRecords(text));
  EXPECT_EQ(store.GameNames(),
            (std::vector<std::string>{"", "zorbmain", "zorblast", "tomcat", "nodesc", "lastone"}));
  EXPECT_EQ(store.FindGame("tomcat"), 3);
  EXPECT_EQ(store.DriverTable, (CodeTable{"", "zorb.c", "atari/tomcat.c", "misc.c"}));
  EXPECT_EQ(store.YearTable, (CodeTable{"", "1984", "198?", "1985"}));
  EXPECT_EQ(store.ManufacturerTable, (CodeTable{"", "Acme", "Atari &amp; Co", "Zeta"}));
  // The second screen of tomcat adds its value to the table, though no record uses it.
  EXPECT_EQ(store.OrientationTable, (CodeTable{"", "90", "0", "270"}));
  EXPECT_EQ(store.ButtonsTable, (CodeTable{"", "2", "4", "1"}));
  EXPECT_EQ(store.ControlsTable, (CodeTable{"", "joy8way", "stick"}));
  EXPECT_EQ(store.StatusTable, (CodeTable{"", "good", "preliminary", "imperfect"}));
  EXPECT_EQ(store.SavestateTable, (CodeTable{"", "unsupported", "supported"}));
  EXPECT_EQ(store.GenreTable.size(), 1u);
}

TEST(ListXml, OffsetsCountTheLineEndsTheFileHas) {
  const std::string crlf = ReadBytes(BuilderFixture("dumps/old_game_crlf.xml"));
  for (const std::string eol : {"\n", "\r"}) {
    TestHome home;
    const std::string text = Replace(crlf, "\r\n", eol);
    const std::string path = home.Folder() + "dump.xml";
    WriteBytes(path, text);
    Import(home, path);
    EXPECT_EQ(home.ctx.store.GameRecords, OldDumpRecords(text)) << "line end " << int(eol[0]);
  }
}

TEST(ListXml, TodaysMachineDumpWithDevices) {
  TestHome home;
  const std::string path = BuilderFixture("dumps/machine_lf.xml");
  const std::string text = ReadBytes(path);
  ASSERT_EQ(text.find('\r'), std::string::npos);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  auto at = [&](const std::string& name) {
    return LineStartOf(text, "<machine name=\"" + name + "\"");
  };
  ASSERT_EQ(store.GameCount(), 5);
  const std::vector<std::string> expected = {
      "",
      // No buttons anywhere in this game: the field keeps its placeholder.
      Xml("puckman", at("puckman"), "PuckMan (Japan set 1)", "1", "1", "1", "#BU", "1", "1", "1",
          "#CL", "1"),
      Xml("pacman", at("pacman"), "Pac-Man (Midway)", "2", "1", "1", "#BU", "1", "1", "1",
          "puckman", "1"),
      // Buttons from the first control that has them.
      Xml("dkong", at("dkong"), "Donkey Kong (US set 1)", "3", "2", "2", "1", "1", "2", "2", "#CL",
          "2"),
      Xml("sf2", at("sf2"), "Street Fighter II: The World Warrior (World 910522)", "4", "3", "3",
          "2", "1", "1", "3", "#CL", "1"),
      // A bios set is a game.
      Xml("neogeo", at("neogeo"), "Neo-Geo MV-6F", "5", "4", "3", "3", "1", "2", "4", "#CL", "1"),
      // The last game's block ends where the first device behind it begins.
      EndRecordAt(at("z80")),
  };
  EXPECT_EQ(store.GameRecords, expected);
  EXPECT_EQ(store.FindGame("ym2151"), 0);
  EXPECT_EQ(store.FindGame("z80"), 0);
  // Nothing of a device enters a table.
  EXPECT_EQ(store.DriverTable, (CodeTable{"", "pacman/pacman.cpp", "nintendo/dkong.cpp",
                                          "capcom/cps1.cpp", "neogeo/neogeo.cpp"}));
  EXPECT_EQ(store.YearTable, (CodeTable{"", "1980", "1981", "1991", "1990"}));
  EXPECT_EQ(store.ManufacturerTable, (CodeTable{"", "Namco", "Namco (Midway license)",
                                                "Nintendo of America", "Capcom", "SNK"}));
  EXPECT_EQ(store.OrientationTable, (CodeTable{"", "90", "270", "0"}));
  // Only the control that gave the field adds to the table: dkong's second one does not.
  EXPECT_EQ(store.ButtonsTable, (CodeTable{"", "1", "6", "4"}));
  EXPECT_EQ(store.ControlsTable, (CodeTable{"", "joy"}));
  EXPECT_EQ(store.StatusTable, (CodeTable{"", "good", "imperfect"}));
  EXPECT_EQ(store.SavestateTable, (CodeTable{"", "supported", "unsupported"}));
}

TEST(ListXml, ControlButtonsAreTakenFromTheAttributeNotFromAValue) {
  TestHome home;
  const std::string text =
      "<mame>\n\t<machine name=\"b\" sourcefile=\"b.cpp\">\n"
      "\t\t<input players=\"1\" coins=\"1\">\n"
      "\t\t\t<control type=\"only_buttons\" player=\"1\" buttons=\"7\"/>\n"
      "\t\t</input>\n\t</machine>\n"
      "\t<machine name=\"c\" sourcefile=\"b.cpp\">\n"
      "\t\t<input players=\"1\" buttons=\"3\">\n"
      "\t\t\t<control type=\"only_buttons\" player=\"1\" buttons=\"7\"/>\n"
      "\t\t</input>\n\t</machine>\n</mame>\n";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  ASSERT_EQ(store.GameCount(), 2);
  EXPECT_NE(store.GameRecords[1].find(";F1;G1;"), std::string::npos) << store.GameRecords[1];
  // An <input line with buttons comes first and wins; the control then adds nothing.
  EXPECT_NE(store.GameRecords[2].find(";F2;G1;"), std::string::npos) << store.GameRecords[2];
  EXPECT_EQ(store.ButtonsTable, (CodeTable{"", "7", "3"}));
  EXPECT_EQ(store.ControlsTable, (CodeTable{"", "only_buttons"}));
}

TEST(ListXml, LastMachineIsAGameThenTheEndRecordHoldsTheFileLength) {
  TestHome home;
  const std::string text =
      "<mame>\n\t<machine name=\"dev\" sourcefile=\"d.cpp\" isdevice=\"yes\">\n"
      "\t\t<description>Device</description>\n\t</machine>\n"
      "\t<machine name=\"g\" sourcefile=\"g.cpp\">\n\t\t<description>Game</description>\n"
      "\t</machine>\n</mame>\n";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  ASSERT_EQ(store.GameCount(), 1);
  EXPECT_EQ(FieldValue(store.GameRecords[1], 'A'),
            std::to_string(LineStartOf(text, "<machine name=\"g\"")));
  EXPECT_EQ(store.GameRecords[2], EndRecordAt(text.size()));
  EXPECT_EQ(store.DriverTable, (CodeTable{"", "g.cpp"}));
}

TEST(ListXml, EveryBlockSizeGivesTheSameStore) {
  for (const char* fixture : {"dumps/old_game_crlf.xml", "dumps/machine_lf.xml"}) {
    TestHome reference;
    Import(reference, BuilderFixture(fixture));
    for (size_t blockSize : {1u, 2u, 3u, 5u, 7u, 16u, 61u, 64u, 1000u}) {
      TestHome home;
      Import(home, BuilderFixture(fixture), blockSize);
      EXPECT_EQ(home.ctx.store.GameRecords, reference.ctx.store.GameRecords)
          << fixture << " block " << blockSize;
      for (int t = 0; t < kTableCount; ++t) {
        EXPECT_EQ(home.ctx.store.Table(static_cast<TableId>(t)),
                  reference.ctx.store.Table(static_cast<TableId>(t)));
      }
    }
  }
}

TEST(ListXml, ValueHoldingAnAttributeNameIsTakenForIt) {
  TestHome home;
  const std::string text =
      "\t<game name=\"odd\" sourcefile=\"cloneofthis.c\">\r\n"
      "\t\t<description>Odd</description>\r\n\t</game>\r\n";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  ASSERT_EQ(store.GameCount(), 1);
  // The driver's value holds "cloneof", so the piece behind it (the line's end) is the parent.
  EXPECT_EQ(store.DriverTable, (CodeTable{"", "cloneofthis.c"}));
  EXPECT_NE(store.GameRecords[1].find(";N1;"), std::string::npos);
  EXPECT_NE(store.GameRecords[1].find(";S>;"), std::string::npos);
  EXPECT_NE(store.GameRecords[1].find(";BOdd;"), std::string::npos);
}

TEST(ListXml, LinesBeforeTheFirstGameOnlyFillTables) {
  TestHome home;
  const std::string text =
      "<mame>\r\n<year>1970</year>\r\n<manufacturer>Nobody</manufacturer>\r\n"
      "\t<game name=\"a\">\r\n\t\t<year>1980</year>\r\n\t</game>\r\n";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  EXPECT_EQ(store.GameRecords[0], "");
  EXPECT_EQ(store.YearTable, (CodeTable{"", "1970", "1980"}));
  EXPECT_EQ(store.ManufacturerTable, (CodeTable{"", "Nobody"}));
  EXPECT_NE(store.GameRecords[1].find(";D2;"), std::string::npos);
}

TEST(ListXml, ElementOverSeveralLinesGivesNothing) {
  TestHome home;
  const std::string text =
      "\t<game name=\"a\">\r\n\t\t<description>A long\r\n title</description>\r\n\t</game>\r\n"
      "\t<game name=\"b\">\r\n\t\t<description>B</description>\r\n\t</game>\r\n";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path);
  EXPECT_NE(home.ctx.store.GameRecords[1].find(";0;B;C#MA"), std::string::npos);
}

TEST(ListXml, TextHoldingAPlaceholderTakesTheLaterValueToo) {
  TestHome home;
  const std::string text =
      "\t<game name=\"a\">\r\n\t\t<description>Year #Y edition</description>\r\n"
      "\t\t<year>1999</year>\r\n\t</game>\r\n";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path);
  EXPECT_NE(home.ctx.store.GameRecords[1].find(";BYear 1 edition;C#MA;D1;"), std::string::npos);
}

TEST(ListXml, NameWithoutValueIsAFaultAndEndsTheImport) {
  TestHome home;
  const std::string text =
      "\t<game name=\"a\">\r\n\t\t<description>A</description>\r\n\t</game>\r\n"
      "\t<game name\r\n\t<game name=\"c\">\r\n";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  EXPECT_EQ(home.ctx.log.BugCount(), 1);
  EXPECT_EQ(store.GameCount(), 1);
  EXPECT_FALSE(store.HasEndRecord());
}

TEST(ListXml, CapacityGrowsWithNothingLost) {
  TestHome home;
  std::string text = "<?xml version=\"1.0\"?>\r\n<mame build=\"t\">\r\n";
  std::vector<size_t> offsets;
  for (int i = 1; i <= 7001; ++i) {
    offsets.push_back(text.size());
    const std::string name = "g" + std::to_string(i);
    text += "\t<machine name=\"" + name + "\" sourcefile=\"s" + std::to_string(i % 13) +
            ".cpp\">\r\n\t\t<description>Game " + std::to_string(i) + "</description>\r\n" +
            "\t\t<rom name=\"x\" size=\"" + std::string(static_cast<size_t>(i % 500), '9') +
            "\"/>\r\n\t</machine>\r\n";
  }
  text += "</mame>\r\n";
  const std::string path = home.Folder() + "big.xml";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  ASSERT_EQ(store.GameCount(), 7001);
  for (int i = 1; i <= 7001; i += 1) {
    const std::string name = "g" + std::to_string(i);
    ASSERT_EQ(store.GameNames()[static_cast<size_t>(i)], name);
    ASSERT_EQ(store.GameRecords[static_cast<size_t>(i)].substr(0, name.size() + 2), name + ";A");
    ASSERT_EQ(FieldValue(store.GameRecords[static_cast<size_t>(i)], 'A'),
              std::to_string(offsets[static_cast<size_t>(i - 1)]));
    ASSERT_EQ(FieldValue(store.GameRecords[static_cast<size_t>(i)], 'B'),
              "Game " + std::to_string(i));
  }
  EXPECT_EQ(store.FindGame("g6000"), 6000);
  EXPECT_EQ(store.FindGame("g7001"), 7001);
  EXPECT_EQ(store.DriverTable.size(), 14u);
  EXPECT_EQ(store.GameRecords.back(), EndRecordAt(text.size()));
}

TEST(ListXml, MissingOrEmptyFileGivesNoGame) {
  TestHome home;
  home.ctx.store.AppendGame("old", "old;A0");
  Import(home, home.Folder() + "nothing.xml");
  EXPECT_EQ(home.ctx.store.GameCount(), 0);
  EXPECT_EQ(home.ctx.store.GameRecords.size(), 1u);
  const std::string empty = home.Folder() + "empty.xml";
  WriteBytes(empty, "");
  Import(home, empty);
  EXPECT_EQ(home.ctx.store.GameCount(), 0);
  EXPECT_EQ(home.ctx.store.GameRecords.size(), 1u);
}

TEST(ListXml, HugeLinesGarbageAndATruncatedEndDoNoHarm) {
  TestHome home;
  std::string text = "<mame>\n\t<machine name=\"big\">\n\t\t<description>";
  text += std::string(10 << 20, 'x');
  text += "</description>\n";
  for (int i = 0; i < 4096; ++i) text.push_back(static_cast<char>((i * 7919) % 256));
  text += "\n\t<machine name=\"cut\" sourcefile=\"c.cpp";
  const std::string path = home.Folder() + "dump.xml";
  WriteBytes(path, text);
  Import(home, path, 1 << 16);
  const GameStore& store = home.ctx.store;
  EXPECT_EQ(home.ctx.log.BugCount(), 0);
  ASSERT_GE(store.GameCount(), 2);
  EXPECT_EQ(FieldValue(store.GameRecords[1], 'B').size(), size_t{10 << 20});
  EXPECT_EQ(store.GameNames().back(), "cut");
  EXPECT_EQ(store.GameRecords.back(), EndRecordAt(text.size()));
}

TEST(ListXml, LegacyListGivesNoGame) {
  TestHome home;
  Import(home, BuilderFixture("dumps/legacy_crlf.listinfo"));
  EXPECT_EQ(home.ctx.store.GameCount(), 0);
}

TEST(ListXml, CancelLeavesWhatWasReadWithTheFileLength) {
  TestHome home;
  const std::string path = BuilderFixture("dumps/machine_lf.xml");
  Work work;
  work.CancelRequested = true;
  ImportListXml(home.ctx.store, home.ctx.log, work, path);
  EXPECT_EQ(home.ctx.store.GameCount(), 0);
  ASSERT_EQ(home.ctx.store.GameRecords.size(), 2u);
  EXPECT_EQ(home.ctx.store.GameRecords[1], EndRecordAt(ReadBytes(path).size()));
}

TEST(ListXml, TablesAreAddedToNotEmptied) {
  TestHome home;
  home.ctx.store.YearTable = {"", "1984", "2000"};
  Import(home, BuilderFixture("dumps/old_game_crlf.xml"));
  EXPECT_EQ(home.ctx.store.YearTable, (CodeTable{"", "1984", "2000", "198?", "1985"}));
  EXPECT_NE(home.ctx.store.GameRecords[3].find(";D3;"), std::string::npos);
}

TEST(ListXml, EmptyPathMeansTheDefaultDump) {
  TestHome home;
  WriteBytes(DefaultListXmlPath(home.Folder()), ReadBytes(BuilderFixture("dumps/machine_lf.xml")));
  std::string path;
  Work work;
  ImportListXml(home.ctx, work, path);
  EXPECT_EQ(path, DefaultListXmlPath(home.Folder()));
  EXPECT_EQ(home.ctx.store.GameCount(), 5);
}

}  // namespace
}  // namespace tessarin
