#include <gtest/gtest.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <chrono>
#include <csignal>
#include <filesystem>

#include "buildertestsupport.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

using buildertest::BuilderFixture;
using buildertest::ReadBytes;
using buildertest::WriteBytes;

struct CliResult {
  int exitCode = -1;
  std::string out, err;
};

// Runs tessarin-cli as a user would, with standard input closed (no terminal to ask on).
CliResult RunCli(const std::vector<std::string>& args,
                 const std::vector<std::pair<QString, QString>>& env = {}) {
  QProcess process;
  QStringList list;
  for (const std::string& a : args) list << QString::fromStdString(a);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const auto& [name, value] : env) environment.insert(name, value);
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  process.start(QStringLiteral(TESSARIN_CLI_PATH), list);
  CliResult result;
  if (!process.waitForStarted(30000) || !process.waitForFinished(120000)) return result;
  result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
  result.out = process.readAllStandardOutput().toStdString();
  result.err = process.readAllStandardError().toStdString();
  return result;
}

class Cli : public ::testing::Test {
 protected:
  std::string Home() const { return m_dir.path().toStdString(); }
  std::vector<std::string> With(std::initializer_list<std::string> args) const {
    std::vector<std::string> all = {"--home", Home()};
    all.insert(all.end(), args);
    return all;
  }
  void Build() {
    const CliResult built =
        RunCli(With({"build", "--emulator", BuilderFixture("cli/fake-mame.sh")}));
    ASSERT_EQ(built.exitCode, 0) << built.out << built.err;
  }
  std::string IndexLineOf(const std::string& name) const {
    const std::string index = ReadBytes(IndexFilePath(Home()));
    const size_t at = index.find("\r\n" + name + ";");
    if (at == std::string::npos) return {};
    const size_t end = index.find("\r\n", at + 2);
    return index.substr(at + 2, end - at - 2);
  }

  QTemporaryDir m_dir;
};

TEST_F(Cli, EveryCommandHasHelp) {
  const CliResult top = RunCli({"--help"});
  EXPECT_EQ(top.exitCode, 0);
  for (const char* command :
       {"build", "update", "scan-roms", "info", "record", "table", "get", "set"}) {
    const CliResult help = RunCli({command, "--help"});
    EXPECT_EQ(help.exitCode, 0) << command;
    EXPECT_NE(help.out.find(command), std::string::npos) << help.out;
    EXPECT_NE(top.out.find(command), std::string::npos) << command;
  }
}

TEST_F(Cli, UsageErrorsGiveExitCodeTwo) {
  EXPECT_EQ(RunCli(With({})).exitCode, 2);
  EXPECT_EQ(RunCli(With({"frobnicate"})).exitCode, 2);
  EXPECT_EQ(RunCli(With({"update", "bogus"})).exitCode, 2);
  EXPECT_EQ(RunCli(With({"record"})).exitCode, 2);
  EXPECT_EQ(RunCli(With({"build", "--dump", Home() + "/missing.xml"})).exitCode, 2);
  const CliResult noEmulator = RunCli(With({"build", "--emulator", Home() + "/no-mame"}));
  EXPECT_EQ(noEmulator.exitCode, 2);
  EXPECT_NE(noEmulator.err.find("No emulator"), std::string::npos);
}

TEST_F(Cli, WithoutDatabaseTheReadersFail) {
  const CliResult info = RunCli(With({"info"}));
  EXPECT_EQ(info.exitCode, 1);
  EXPECT_NE(info.err.find("The database doesn't exist."), std::string::npos);
  EXPECT_EQ(RunCli(With({"record", "pacman"})).exitCode, 1);
  EXPECT_EQ(RunCli(With({"table", "Year"})).exitCode, 1);
  EXPECT_EQ(RunCli(With({"scan-roms"})).exitCode, 1);
}

TEST_F(Cli, BuildThenReadTheDatabase) {
  Build();
  const CliResult info = RunCli(With({"info"}));
  ASSERT_EQ(info.exitCode, 0) << info.err;
  EXPECT_NE(info.out.find("Database version: MAME v0.999 (fake for tests)\n"), std::string::npos);
  EXPECT_NE(info.out.find("GameCount: 5\n"), std::string::npos);
  EXPECT_NE(info.out.find("LongestNameLength: 7\n"), std::string::npos);
  EXPECT_NE(info.out.find("SourceIsXml: true\n"), std::string::npos);
  EXPECT_NE(info.out.find("[Driver]: 4\n"), std::string::npos);
  EXPECT_NE(info.out.find("[Genre]: 0\n"), std::string::npos);

  const CliResult record = RunCli(With({"record", "pacman"}));
  ASSERT_EQ(record.exitCode, 0);
  const std::string line = IndexLineOf("pacman");
  ASSERT_FALSE(line.empty());
  EXPECT_EQ(record.out, line + "\n");
  EXPECT_NE(line.find(";Spuckman;"), std::string::npos);

  // The year code of the record leads through the table to the year.
  const CliResult years = RunCli(With({"table", "Year"}));
  ASSERT_EQ(years.exitCode, 0);
  EXPECT_EQ(years.out, "1\t1980\n2\t1981\n3\t1991\n4\t1990\n");
  EXPECT_NE(line.find(";D1;"), std::string::npos);
  const CliResult orientations = RunCli(With({"table", "Orientation"}));
  EXPECT_EQ(orientations.out, "1\t90\n2\t270\n3\t0\n");
  EXPECT_NE(line.find(";E1;"), std::string::npos);

  const CliResult unknown = RunCli(With({"record", "nosuchgame"}));
  EXPECT_EQ(unknown.exitCode, 1);
  EXPECT_NE(unknown.err.find("nosuchgame"), std::string::npos);
  const CliResult badTable = RunCli(With({"table", "Years"}));
  EXPECT_EQ(badTable.exitCode, 2);
  EXPECT_NE(badTable.err.find("Manufacturer"), std::string::npos);
}

TEST_F(Cli, RebuildAsksFirst) {
  Build();
  const std::string before = ReadBytes(IndexFilePath(Home()));
  const CliResult refused = RunCli(With({"build"}));
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_NE(refused.err.find("--yes"), std::string::npos);
  EXPECT_EQ(ReadBytes(IndexFilePath(Home())), before);
  const CliResult accepted = RunCli(With({"--yes", "build"}));
  EXPECT_EQ(accepted.exitCode, 0) << accepted.err;
}

TEST_F(Cli, BuildFromAGivenDump) {
  const CliResult built =
      RunCli(With({"build", "--dump", BuilderFixture("dumps/legacy_crlf.listinfo")}));
  ASSERT_EQ(built.exitCode, 0) << built.out << built.err;
  const CliResult info = RunCli(With({"info"}));
  EXPECT_NE(info.out.find("GameCount: 4\n"), std::string::npos);
  EXPECT_NE(info.out.find("SourceIsXml: false\n"), std::string::npos);
  EXPECT_EQ(RunCli(With({"record", "pacman"})).out, IndexLineOf("pacman") + "\n");
}

TEST_F(Cli, GivenDumpIsCopiedOrLinked) {
  const std::string given = Home() + "/given list.xml";
  WriteBytes(given, ReadBytes(BuilderFixture("dumps/machine_lf.xml")));
  const std::string dump = Home() + "/DataFiles/listxml";
  ASSERT_EQ(RunCli(With({"build", "--dump", given})).exitCode, 0);
  EXPECT_EQ(ReadBytes(dump), ReadBytes(given));
  EXPECT_FALSE(std::filesystem::equivalent(dump, given));
  // Here both lie on one file system: with --link the dump is the same file, a second name.
  ASSERT_EQ(RunCli(With({"--yes", "build", "--dump", given, "--link"})).exitCode, 0);
  EXPECT_TRUE(std::filesystem::equivalent(dump, given));
  // Deleting the given file leaves the database whole.
  std::filesystem::remove(given);
  EXPECT_EQ(ReadBytes(dump), ReadBytes(BuilderFixture("dumps/machine_lf.xml")));
  // The dump itself may be given: it stays where it is.
  ASSERT_EQ(RunCli(With({"--yes", "build", "--dump", dump})).exitCode, 0);
  EXPECT_EQ(ReadBytes(dump), ReadBytes(BuilderFixture("dumps/machine_lf.xml")));
}

TEST_F(Cli, BuildWithASilentEmulatorFails) {
  const CliResult built = RunCli(With({"build", "--emulator", BuilderFixture("cli/fake-mame.sh")}),
                                 {{QStringLiteral("TESSARIN_FAKE_SILENT"), QStringLiteral("1")}});
  EXPECT_EQ(built.exitCode, 1);
  EXPECT_NE(built.out.find("MAME commands -listxml and -listinfo gave nothing."),
            std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(IndexFilePath(Home())));
}

TEST_F(Cli, SettingsGetAndSet) {
  EXPECT_EQ(RunCli(With({"get", "Frm7Skin"})).out, "-1\n");
  EXPECT_EQ(RunCli(With({"set", "Frm7Skin", "Blue sky"})).exitCode, 0);
  const CliResult got = RunCli(With({"get", "Frm7Skin"}));
  EXPECT_EQ(got.exitCode, 0);
  EXPECT_EQ(got.out, "Blue sky\n");
}

TEST_F(Cli, VersionIsShownAndWritesNothing) {
  const CliResult version = RunCli(With({"--version"}));
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.out.rfind("tessarin-cli ", 0), 0u) << version.out;
  EXPECT_NE(version.out.find_first_of("0123456789"), std::string::npos) << version.out;
  EXPECT_TRUE(std::filesystem::is_empty(Home()));
}

TEST_F(Cli, SetOfAnUnknownKeyWarnsAndStillWrites) {
  const CliResult unknown = RunCli(With({"set", "MyOwnKey", "42"}));
  EXPECT_EQ(unknown.exitCode, 0);
  EXPECT_NE(unknown.err.find("MyOwnKey"), std::string::npos) << unknown.err;
  EXPECT_NE(unknown.err.find("Warning"), std::string::npos) << unknown.err;
  EXPECT_EQ(RunCli(With({"get", "MyOwnKey"})).out, "42\n");
  // A known key, in any case, is written without a word.
  const CliResult known = RunCli(With({"set", "datafile2", "/data/history.dat"}));
  EXPECT_EQ(known.exitCode, 0);
  EXPECT_EQ(known.err, "");
}

TEST_F(Cli, SetHelpListsEveryKnownKeyWithItsMeaning) {
  const CliResult help = RunCli({"set", "--help"});
  EXPECT_EQ(help.exitCode, 0);
  for (int n = 1; n <= 17; ++n) {
    EXPECT_NE(help.out.find("DataFile" + std::to_string(n) + ": "), std::string::npos) << n;
  }
  for (const char* text : {"DataFile1: the emulator", "DataFile17: Version.ini",
                           "RomPath: ", "SnapPath: ", "TitlesPath: ", "FlyersPath: "}) {
    EXPECT_NE(help.out.find(text), std::string::npos) << text << help.out;
  }
}

TEST_F(Cli, InterruptWhileTheEmulatorRunsEndsItAtOnce) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("TESSARIN_FAKE_HANG"), QStringLiteral("stubborn"));
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  QStringList args;
  for (const std::string& a : With({"build", "--emulator", BuilderFixture("cli/fake-mame.sh")})) {
    args << QString::fromStdString(a);
  }
  process.start(QStringLiteral(TESSARIN_CLI_PATH), args);
  ASSERT_TRUE(process.waitForStarted(30000));
  // The list has begun (and hangs) once its temporary file exists.
  const std::string data = Home() + "/DataFiles";
  const auto started = [&] {
    std::error_code ec;
    return std::filesystem::exists(data, ec) && !std::filesystem::is_empty(data, ec);
  };
  for (int i = 0; i < 200 && !started(); ++i) QThread::msleep(50);
  ASSERT_TRUE(started());
  QThread::msleep(200);
  const auto start = std::chrono::steady_clock::now();
  ::kill(static_cast<pid_t>(process.processId()), SIGINT);
  ASSERT_TRUE(process.waitForFinished(20000));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(process.exitCode(), 1);
  EXPECT_FALSE(std::filesystem::exists(IndexFilePath(Home())));
  // Nothing half-written is left: no dump, no temporary file.
  EXPECT_TRUE(std::filesystem::is_empty(data));
}

TEST_F(Cli, ACutListIsToldAndAsksBeforeReplacingALargerDatabase) {
  Build();
  const std::string index = ReadBytes(IndexFilePath(Home()));
  const std::string whole = ReadBytes(BuilderFixture("dumps/machine_lf.xml"));
  const std::string cut = Home() + "/cut.xml";
  size_t at = 0;
  for (int i = 0; i < 3; ++i) at = whole.find("<machine", at + 1);
  WriteBytes(cut, whole.substr(0, at + 40));
  // The rebuild's own question is answered on the terminal, so none can be: no --yes, no.
  const CliResult refused = RunCli(With({"build", "--dump", cut}));
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(ReadBytes(IndexFilePath(Home())), index);
  const CliResult asked = RunCli(With({"--yes", "build", "--dump", cut}));
  EXPECT_NE((asked.out + asked.err).find("cut short"), std::string::npos) << asked.out << asked.err;
  EXPECT_NE(asked.err.find("games; the cut list gives"), std::string::npos) << asked.err;
  EXPECT_EQ(asked.exitCode, 0) << asked.err;
}

TEST_F(Cli, BuildFromAFileThatIsNoListSaysWhyAndLeavesNothing) {
  Build();
  const std::string index = ReadBytes(IndexFilePath(Home()));
  const std::string dump = ReadBytes(Home() + "/DataFiles/listxml");
  const std::string text = Home() + "/notes.txt";
  WriteBytes(text, "Some notes of mine\nand nothing else\n");
  const std::string binary = Home() + "/program";
  WriteBytes(binary, std::string("\x7f"
                                 "ELF\0\0\0<mame build>",
                                 16) +
                         std::string(4096, 'x'));
  for (const std::string& file : {text, binary}) {
    const CliResult built = RunCli(With({"--yes", "build", "--dump", file}));
    EXPECT_EQ(built.exitCode, 1) << file;
    const std::string said = built.out + built.err;
    EXPECT_NE(said.find(file), std::string::npos) << said;
    EXPECT_NE(said.find(file == binary ? "binary file" : "holds no game list"), std::string::npos)
        << said;
    EXPECT_EQ(said.find("gave nothing"), std::string::npos) << said;
    // The database and its dump are as they were, and nothing was added beside them.
    EXPECT_EQ(ReadBytes(IndexFilePath(Home())), index);
    EXPECT_EQ(ReadBytes(Home() + "/DataFiles/listxml"), dump);
    EXPECT_FALSE(std::filesystem::exists(Home() + "/DataFiles/listinfo"));
  }
  // A folder is refused before anything starts.
  EXPECT_EQ(RunCli(With({"--yes", "build", "--dump", Home()})).exitCode, 2);
}

TEST_F(Cli, ScanRomsMarksTheGamesFound) {
  Build();
  const std::string roms = Home() + "/my roms";
  std::filesystem::create_directories(roms);
  WriteBytes(roms + "/pacman.zip", "zip");
  WriteBytes(roms + "/dkong.zip", "zip");
  const CliResult scanned = RunCli(With({"scan-roms", "--rom-path", roms}));
  ASSERT_EQ(scanned.exitCode, 0) << scanned.err;
  EXPECT_NE(scanned.out.find("2 games present"), std::string::npos) << scanned.out;
  const std::string record = RunCli(With({"record", "dkong"})).out;
  EXPECT_EQ(record.substr(record.size() - 3), "**\n");
  EXPECT_EQ(RunCli(With({"get", "RomPath"})).out, roms + "/\n");
  EXPECT_EQ(RunCli(With({"scan-roms", "--rom-path", roms + "/none"})).exitCode, 2);
}

TEST_F(Cli, UpdateWithKindsAndFromFiles) {
  Build();
  WriteBytes(Home() + "/DataFiles/cheat.dat", ":dkong:0:1:2:Infinite lives\r\n");
  const CliResult selected = RunCli(With({"update", "cheat", "command"}));
  ASSERT_EQ(selected.exitCode, 0) << selected.err;
  EXPECT_NE(selected.out.find("Cheat.dat = Ok"), std::string::npos);
  EXPECT_EQ(selected.out.find("Command.dat = Ok"), std::string::npos);
  EXPECT_NE(IndexLineOf("dkong").find(";R1;"), std::string::npos);

  WriteBytes(Home() + "/DataFiles/hiscore.dat", "sf2:0:1:1:0\r\n");
  const CliResult refused = RunCli(With({"update"}));
  EXPECT_EQ(refused.exitCode, 1);
  const CliResult all = RunCli(With({"--yes", "update"}));
  ASSERT_EQ(all.exitCode, 0) << all.err;
  EXPECT_NE(IndexLineOf("sf2").find(";P1;"), std::string::npos);
  EXPECT_NE(IndexLineOf("dkong").find(";R1;"), std::string::npos);
}

}  // namespace
}  // namespace tessarin
