#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/session.h"
#include "core/guard.h"
#include "core/log.h"

namespace tessarin {
namespace {

std::string ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

struct Outcome {
  int code = -1;
  std::string err;
};

class CliSessionTest : public ::testing::Test {
 protected:
  std::string Home() const { return m_dir.path().toStdString(); }

  // Runs tessarin-cli in process with the test's extra commands; standard error is kept.
  Outcome Run(const std::vector<std::string>& args,
              const std::function<void(CliRegistry&)>& commands = {}) {
    Outcome outcome;
    ::testing::internal::CaptureStderr();
    outcome.code = RunUncaptured(args, commands);
    outcome.err = ::testing::internal::GetCapturedStderr();
    return outcome;
  }
  int RunUncaptured(std::vector<std::string> args,
                    const std::function<void(CliRegistry&)>& commands) {
    args.insert(args.begin(), "tessarin-cli");
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    return RunCli(static_cast<int>(args.size()), argv.data(), Home(), commands);
  }

  QTemporaryDir m_dir;
};

void AddThrowing(CliRegistry& registry) {
  registry.Add("boom", "Throws",
               [](CliSession&) -> int { throw std::runtime_error("a fault in the command"); });
}

TEST_F(CliSessionTest, AnExceptionOutOfACommandIsLoggedToldAndGivesOne) {
  const Outcome outcome = Run({"--home", Home(), "boom"}, AddThrowing);
  EXPECT_EQ(outcome.code, kExitFailed);
  EXPECT_NE(outcome.err.find("a fault in the command"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("Tessarin.log.txt"), std::string::npos) << outcome.err;
  const std::string log = ReadAll(Home() + "/Tessarin.log.txt");
  EXPECT_NE(log.find("<START DEBUGGING>"), std::string::npos) << log;
  EXPECT_NE(log.find("a fault in the command"), std::string::npos) << log;
}

TEST_F(CliSessionTest, AnExceptionOutOfALongJobComesBackToTheBoundary) {
  const Outcome outcome = Run({"--home", Home(), "job"}, [](CliRegistry& registry) {
    registry.Add("job", "A failing job", [](CliSession& session) {
      session.RunWithProgress([]() -> bool { throw std::length_error("a fault in the job"); });
      return kExitOk;
    });
  });
  EXPECT_EQ(outcome.code, kExitFailed);
  EXPECT_NE(outcome.err.find("a fault in the job"), std::string::npos) << outcome.err;
  EXPECT_NE(ReadAll(Home() + "/Tessarin.log.txt").find("a fault in the job"), std::string::npos);
}

TEST_F(CliSessionTest, AFolderThatCantBeWrittenIsNamedAndGivesOne) {
  // Below a plain file no folder can be made, whoever runs the test.
  const std::string file = Home() + "/a file";
  std::ofstream(file) << "x";
  const std::string home = file + "/home";
  for (const char* command : {"set", "build"}) {
    const std::vector<std::string> args =
        std::string(command) == "set"
            ? std::vector<std::string>{"--home", home, "set", "RomPath", "/r"}
            : std::vector<std::string>{"--home", home, "build"};
    const Outcome outcome = Run(args);
    EXPECT_EQ(outcome.code, kExitFailed) << command;
    EXPECT_NE(outcome.err.find("can't be written"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find(home), std::string::npos) << outcome.err;
  }
}

using CliSessionDeathTest = CliSessionTest;

// The sixth failure of a run, met on the job's thread, stops the job and ends the program on the
// main thread once the job has come back.
TEST_F(CliSessionDeathTest, TheSixthFailureEndsTheRunOnTheMainThread) {
  const std::string marker = Home() + "/job went on";
  auto commands = [&](CliRegistry& registry) {
    registry.Add("six", "Six failures", [&](CliSession& session) {
      Log& log = session.Ctx().log;
      session.RunWithProgress([&] {
        for (int i = 0; i < 6; ++i) {
          RunGuarded(log, 900 + i, [] { throw std::runtime_error("fault"); });
        }
        // Still here: the handler didn't end the program from this thread.
        std::ofstream(marker) << session.CurrentWork().CancelRequested.load();
        return true;
      });
      return kExitOk;
    });
  };
  EXPECT_EXIT(RunUncaptured({"--home", Home(), "six"}, commands),
              ::testing::ExitedWithCode(kExitFailed), "stopped after too many errors");
  // The job was asked to stop through its cancel flag, and ran on to its end.
  EXPECT_EQ(ReadAll(marker), "1");
  EXPECT_NE(ReadAll(Home() + "/Tessarin.log.txt").find("5 BUG ERRORS => Sorry, Tessarin Stopped."),
            std::string::npos);
}

}  // namespace
}  // namespace tessarin
