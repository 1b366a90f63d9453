// tessarin-cli show, run as a user runs it, on homes built from the sheet's fixtures.

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

#include "sheet/gamedetails.h"
#include "sheettestsupport.h"

namespace tessarin {
namespace {

using sheettest::DataFiles;
using sheettest::SheetHome;

#ifdef TESSARIN_CLI_PATH

struct CliResult {
  int exitCode = -1;
  std::string out, err;
};

CliResult RunShow(const SheetHome& home, const std::vector<std::string>& args) {
  QProcess process;
  QStringList list = {QStringLiteral("--home"), QString::fromStdString(home.Folder()),
                      QStringLiteral("show")};
  for (const std::string& a : args) list << QString::fromStdString(a);
  process.setStandardInputFile(QProcess::nullDevice());
  process.start(QStringLiteral(TESSARIN_CLI_PATH), list);
  CliResult result;
  if (!process.waitForStarted(30000) || !process.waitForFinished(120000)) return result;
  result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
  result.out = process.readAllStandardOutput().toStdString();
  result.err = process.readAllStandardError().toStdString();
  return result;
}

QJsonObject ParseObject(const std::string& text) {
  QJsonParseError error;
  const QJsonDocument document =
      QJsonDocument::fromJson(QByteArray(text.data(), static_cast<qsizetype>(text.size())), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString() << text;
  EXPECT_TRUE(document.isObject());
  return document.object();
}

QJsonValue Value(const QJsonObject& o, const char* key) { return o.value(QLatin1String(key)); }
std::string Text(const QJsonObject& o, const char* key) {
  return Value(o, key).toString().toStdString();
}
std::vector<std::string> Strings(const QJsonObject& o, const char* key) {
  std::vector<std::string> list;
  for (const QJsonValue& item : Value(o, key).toArray())
    list.push_back(item.toString().toStdString());
  return list;
}
using Items = std::vector<std::string>;

const DataFiles kCrlfFiles{"history_crlf.dat", "mameinfo_crlf.dat", "command_crlf.dat", true};

TEST(ShowCommand, JsonHasEveryFieldInOrderThenTheLists) {
  SheetHome home("machine_lf.xml", true,
                 {"history_lf.dat", "mameinfo_lf.dat", "command_crlf.dat", true});
  ASSERT_TRUE(home.built);
  const CliResult r = RunShow(home, {"puckman", "--json"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  const QJsonObject o = ParseObject(r.out);
  ASSERT_EQ(o.size(), 53 + 5);

  // The keys stand in the structure's order, then the five lists.
  std::vector<std::string> keys;
  for (const DetailField& f : GameDetailsFields()) keys.emplace_back(f.name);
  for (const char* list : {"RomList", "DiskList", "BiosSetList", "ChipList", "DipSwitchList"}) {
    keys.emplace_back(list);
  }
  size_t last = 0;
  for (const std::string& key : keys) {
    const size_t at = r.out.find("\"" + key + "\":");
    ASSERT_NE(at, std::string::npos) << key;
    EXPECT_GT(at, last) << key;
    last = at;
    EXPECT_TRUE(o.contains(QString::fromStdString(key))) << key;
  }

  for (const DetailField& f : GameDetailsFields()) {
    const QJsonValue v = o.value(QString::fromStdString(std::string(f.name)));
    switch (f.kind) {
      case DetailFieldKind::Text:
        EXPECT_TRUE(v.isString()) << f.name;
        break;
      case DetailFieldKind::Flag:
        EXPECT_TRUE(v.isBool()) << f.name;
        break;
      case DetailFieldKind::Index:
        EXPECT_TRUE(v.isDouble()) << f.name;
        break;
    }
  }
  EXPECT_EQ(Text(o, "RomName"), "puckman");
  EXPECT_EQ(Text(o, "Resolution"), "288x224");
  EXPECT_EQ(Text(o, "Aspect"), "9:7");
  EXPECT_EQ(Value(o, "Working").toBool(), true);
  EXPECT_EQ(Value(o, "CorrectColors").toBool(), false);
  EXPECT_EQ(Value(o, "GameIndex").toInt(), 1);
  EXPECT_EQ(Value(o, "YearIndex").toInt(), 1);
  EXPECT_EQ(Text(o, "History"), "Pac-Man (c) 1980 Namco.");
  // Line breaks as the file has them.
  EXPECT_EQ(Text(o, "Command"), "\n$info=puckman\r\n$cmd\r\nEat dots.\r\n$end");
  EXPECT_NE(r.out.find("\\r\\n$cmd\\r\\n"), std::string::npos);
  EXPECT_EQ(Strings(o, "RomList"),
            Items({"pm1_prg1.6e;2048;f36e88ab;813cecf44bf5464b1aed64b36f5047e4c79ba176;"
                   "maincpu;0;;;;",
                   "pm1-1.7f;32;2fc650bd;8d0268dee78e47c712202b0ec4f1f51109b1f2a5;proms;0;;;;"}));
  EXPECT_EQ(Strings(o, "ChipList"), Items({"cpu;Zilog Z80;3072000", "audio;Speaker;"}));
  EXPECT_EQ(Strings(o, "DipSwitchList"), Items({"Coinage;2 Coins/1 Credit;yes", "Lives;1;yes"}));
  EXPECT_TRUE(Value(o, "DiskList").toArray().isEmpty());
  EXPECT_TRUE(Value(o, "BiosSetList").toArray().isEmpty());
}

TEST(ShowCommand, JsonTextsAreUtf8OrWindows1252) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  // A description in Windows-1252 (é and the undefined 0x81), another in UTF-8.
  std::string& first = home.ctx.store.GameRecords[1];
  ResetField(first, 'B', "Caf\xE9 \x81 \x80");
  std::string& second = home.ctx.store.GameRecords[2];
  ResetField(second, 'B', "Caf\xC3\xA9 \xE2\x82\xAC");
  ASSERT_TRUE(SaveIndex(home.ctx.store, home.ctx.log, nullptr, IndexFilePath(home.Folder())));
  const QJsonObject a = ParseObject(RunShow(home, {"zorbmain", "--json"}).out);
  EXPECT_EQ(Text(a, "Description"), "Caf\xC3\xA9 \xC2\x81 \xE2\x82\xAC");
  const QJsonObject b = ParseObject(RunShow(home, {"zorblast", "--json"}).out);
  EXPECT_EQ(Text(b, "Description"), "Caf\xC3\xA9 \xE2\x82\xAC");
}

TEST(ShowCommand, PresenceOnlyJson) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  const CliResult r = RunShow(home, {"zorbmain", "--presence-only", "--json"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  const QJsonObject o = ParseObject(r.out);
  EXPECT_EQ(Text(o, "History"), "True");
  EXPECT_EQ(Text(o, "Mameinfo"), "True");
  EXPECT_EQ(Text(o, "Command"), "True");
  EXPECT_EQ(Value(o, "RomList").toArray().size(), 3);
}

TEST(ShowCommand, SheetTextForTheTerminal) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  const CliResult r = RunShow(home, {"zorbmain"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  const std::string& out = r.out;
  EXPECT_EQ(out.find('\r'), std::string::npos);
  EXPECT_EQ(out.substr(0, out.find('\n')), "Zorb Blaster & &quot");
  EXPECT_NE(out.find("Name of Rom : zorbmain\n\nHiscore.dat support : False\n"
                     "Cheat.dat support : False\nCommand.dat support : True\n"
                     "Savestate support: supported\n\nSample : \nDriver : zorb.c\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("Clones list : zorblast, zorbzero\nThis is the original Rom.\n"),
            std::string::npos);
  // Entities the build left in the manufacturer are decoded for the eye.
  EXPECT_NE(out.find("Manufacturer : Acme & Sons\nYear : 1984\n"), std::string::npos);
  EXPECT_NE(out.find("Number of colors : 16\nResolution : 320x240\nAspect : 4:3\n"
                     "Refresh : 60.606060Hz\n\nControl : joy8way\n"),
            std::string::npos);
  EXPECT_NE(out.find("ROMS\n\nName: zb1.bin\nSize: 4096\nCRC: 0a1b2c3d\n"
                     "Sha1: 1111111111111111111111111111111111111111\nRegion: cpu1\nOffset: 0\n"
                     "\nName: zb2.bin\n"),
            std::string::npos);
  EXPECT_NE(out.find("Status: nodump\nDispose: yes\n"), std::string::npos);
  EXPECT_NE(out.find("- HISTORY -\n\nZorb Blaster (c) 1984 Acme.\n\n- TRIVIA -\nA fine game.\n\n"
                     "- MAMEINFO -\nMAME v0.37b5 [Someone]\nZ80 @ 3 MHz\n\n\n- NOTES -\n"
                     "My favourite.\nSecond line.\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("BIOS SET\n\nCHIPS\nZ80 (cpu) - 3072000\nNamco (audio) - \n\n"
                     "DIPSWITCHS\nLives - 1 - yes\nCabinet - Upright - yes\n\nDISKS\n"),
            std::string::npos)
      << out;
}

TEST(ShowCommand, CloneShowsItsParentsMameinfo) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  const CliResult r = RunShow(home, {"zorblast"});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_NE(r.out.find("This is a clone of : zorbmain\n"), std::string::npos);
  EXPECT_NE(r.out.find("- MAMEINFO -\nMAME v0.37b5 [Someone]\n"), std::string::npos);
  EXPECT_NE(r.out.find("DISKS\n\nName: zorbdisk\nMd5: 0123456789abcdef0123456789abcdef\n"
                       "Sha1: 3333333333333333333333333333333333333333\nRegion: disks\n"
                       "Index: 0\n\nName: zorbdisk2\n"),
            std::string::npos)
      << r.out;
}

TEST(ShowCommand, UnknownGameFails) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  const CliResult r = RunShow(home, {"nosuchgame", "--json"});
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_NE(r.err.find("nosuchgame"), std::string::npos);
}

TEST(ShowCommand, NoDatabaseFails) {
  QTemporaryDir empty;
  QProcess process;
  process.setStandardInputFile(QProcess::nullDevice());
  process.start(
      QStringLiteral(TESSARIN_CLI_PATH),
      {QStringLiteral("--home"), empty.path(), QStringLiteral("show"), QStringLiteral("pacman")});
  ASSERT_TRUE(process.waitForFinished(60000));
  EXPECT_EQ(process.exitCode(), 1);
}

#endif

}  // namespace
}  // namespace tessarin
