#include <gtest/gtest.h>

#include "builder/listinfo.h"
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

// A legacy record written out field by field: name;0;à<offset>, then the fields.
std::string Legacy(const std::string& name, size_t offset, const std::string& b,
                   const std::string& c, const std::string& d, const std::string& e,
                   const std::string& f, const std::string& g, const std::string& n,
                   const std::string& s) {
  return name + ";0;\xE0" + std::to_string(offset) + ";B" + b + ";C" + c + ";D" + d + ";E" + e +
         ";F" + f + ";G" + g + ";H#ST;I#G;J#CA;K#V;L#X;M#BI;N" + n + ";O#N;P#HS;Q#HI;R#CH;S" + s +
         ";T#CM;U#MI;V#SS";
}

std::string LegacyEnd(size_t length) {
  return std::string("\x1f;0;\xE0") + std::to_string(length) +
         ";B#Z;C#MA;D#Y;E#O;F#BU;G#CO;H#ST;I#G;J#CA;K#V;L#X;M#BI;N#D;O#N;P#HS;Q#HI;R#CH;S#CL;"
         "T#CM;U#MI;V#SS";
}

void Import(TestHome& home, std::string path) {
  Work work;
  ImportListInfo(home.ctx, work, path);
}

TEST(ListInfo, LegacyDumpWithCrLf) {
  TestHome home;
  const std::string path = BuilderFixture("dumps/legacy_crlf.listinfo");
  const std::string text = ReadBytes(path);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  auto at = [&](const std::string& name) { return LineStartOf(text, "\tname " + name + "\r\n"); };
  ASSERT_EQ(store.GameCount(), 4);
  const std::vector<std::string> expected = {
      "",
      // The status goes into the driver field, and the year keeps its blank.
      Legacy("puckman", at("puckman"), "PuckMan (Japan set 1)", "1", "1", "1", "1", "1", "1",
             "#CL"),
      Legacy("pacman", at("pacman"), "Pac-Man (Midway)", "2", "1", "1", "1", "1", "1", "puckman"),
      // No description: the placeholder goes when the next "game" line comes.
      Legacy("nodesc", at("nodesc"), "", "3", "2", "2", "2", "2", "2", "#CL"),
      // The resource block took the place of the game before it (tomcat), name and record.
      Legacy("neogeo", at("neogeo"), "Neo-Geo", "5", "3", "#O", "#BU", "#CO", "#D", "#CL"),
      LegacyEnd(text.size()),
  };
  EXPECT_EQ(store.GameRecords, expected);
  EXPECT_EQ(store.GameNames(),
            (std::vector<std::string>{"", "puckman", "pacman", "nodesc", "neogeo"}));
  EXPECT_EQ(store.FindGame("tomcat"), 0);
  EXPECT_EQ(store.FindGame("neogeo"), 4);
  EXPECT_EQ(store.YearTable, (CodeTable{"", " 1980", " 1983", " 1990"}));
  EXPECT_EQ(store.ManufacturerTable,
            (CodeTable{"", "Namco", "[Namco] (Midway license)", "Acme", "Atari", "SNK"}));
  EXPECT_EQ(store.OrientationTable, (CodeTable{"", "vertical", "horizontal"}));
  EXPECT_EQ(store.ControlsTable, (CodeTable{"", "joy4way", "joy8way", "stick"}));
  EXPECT_EQ(store.ButtonsTable, (CodeTable{"", "1", "2", "4"}));
  EXPECT_EQ(store.StatusTable, (CodeTable{"", "good", "preliminary"}));
  // The driver table stays empty in a legacy database.
  EXPECT_EQ(store.DriverTable.size(), 1u);
  // The log tells which file was read.
  const std::string log = ReadBytes(home.ctx.log.LogPath());
  EXPECT_NE(log.find(" Analysing " + path), std::string::npos);
}

TEST(ListInfo, NameLineBeforeAnyGameGoesToElementZero) {
  TestHome home;
  const std::string text = "\tname stray\r\n\tyear 1999\r\ngame (\r\n\tname a\r\n)\r\n";
  const std::string path = home.Folder() + "list";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  EXPECT_EQ(store.GameRecords[0].substr(0, 10), std::string("stray;0;\xE0") + "0");
  EXPECT_NE(store.GameRecords[0].find(";D1;"), std::string::npos);
  ASSERT_EQ(store.GameCount(), 1);
  EXPECT_EQ(store.FindGame("stray"), 0);
  EXPECT_EQ(store.GameRecords[1], Legacy("a", LineStartOf(text, "\tname a"), "#Z", "#MA", "#Y",
                                         "#O", "#BU", "#CO", "#D", "#CL"));
}

TEST(ListInfo, DescriptionRuleComesBeforeYear) {
  TestHome home;
  const std::string text = "game (\n\tname a\n\tdescription \"Tab\tyear inside\"\n)\n";
  const std::string path = home.Folder() + "list";
  WriteBytes(path, text);
  Import(home, path);
  EXPECT_NE(home.ctx.store.GameRecords[1].find(";BTab\tyear inside;C#MA;D#Y;"), std::string::npos);
  EXPECT_EQ(home.ctx.store.YearTable.size(), 1u);
}

TEST(ListInfo, OffsetsFollowLfAndLoneCr) {
  const std::string crlf = ReadBytes(BuilderFixture("dumps/legacy_crlf.listinfo"));
  for (const char* eol : {"\n", "\r"}) {
    std::string text;
    for (size_t i = 0; i < crlf.size(); ++i) {
      if (crlf.compare(i, 2, "\r\n") == 0) {
        text += eol;
        ++i;
      } else {
        text += crlf[i];
      }
    }
    TestHome home;
    const std::string path = home.Folder() + "list";
    WriteBytes(path, text);
    Import(home, path);
    const GameStore& store = home.ctx.store;
    ASSERT_EQ(store.GameCount(), 4);
    EXPECT_EQ(store.GameRecords[2].substr(0, 10), "pacman;0;\xE0");
    EXPECT_EQ(store.GameRecords[2].substr(10, store.GameRecords[2].find(";B") - 10),
              std::to_string(LineStartOf(text, std::string("\tname pacman") + eol)));
    EXPECT_EQ(store.GameRecords[5], LegacyEnd(text.size()));
  }
}

TEST(ListInfo, CapacityStepsKeepEveryGame) {
  TestHome home;
  std::string text;
  for (int i = 1; i <= 6150; ++i) {
    text += "game (\r\n\tname n" + std::to_string(i) + "\r\n\tyear " +
            std::to_string(1970 + i % 30) + "\r\n)\r\n\r\n";
  }
  const std::string path = home.Folder() + "list";
  WriteBytes(path, text);
  Import(home, path);
  const GameStore& store = home.ctx.store;
  ASSERT_EQ(store.GameCount(), 6150);
  for (int i = 1; i <= 6150; ++i) {
    ASSERT_EQ(store.GameNames()[static_cast<size_t>(i)], "n" + std::to_string(i));
  }
  EXPECT_EQ(store.FindGame("n6100"), 6100);
  EXPECT_EQ(store.YearTable.size(), 31u);
}

TEST(ListInfo, MissingFileGivesNoGameAndNoLogLine) {
  TestHome home;
  Import(home, home.Folder() + "none");
  EXPECT_EQ(home.ctx.store.GameCount(), 0);
  EXPECT_EQ(ReadBytes(home.ctx.log.LogPath()).find("Analysing"), std::string::npos);
}

TEST(ListInfo, EmptyPathMeansTheDefaultDump) {
  TestHome home;
  WriteBytes(DefaultListInfoPath(home.Folder()),
             ReadBytes(BuilderFixture("dumps/legacy_crlf.listinfo")));
  std::string path;
  Work work;
  ImportListInfo(home.ctx, work, path);
  EXPECT_EQ(path, DefaultListInfoPath(home.Folder()));
  EXPECT_EQ(home.ctx.store.GameCount(), 4);
}

}  // namespace
}  // namespace tessarin
