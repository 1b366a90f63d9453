#pragma once

// Runs the built tessarin-cli as a user would, with standard input closed (no terminal to ask
// on). The test binary defines TESSARIN_CLI_PATH.

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <string>
#include <utility>
#include <vector>

namespace tessarin::testsupport {

struct CliResult {
  int exitCode = -1;  // -2 when the program crashed, -1 when it didn't start or finish
  std::string out, err;
};

inline CliResult RunCli(const std::vector<std::string>& args,
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

}  // namespace tessarin::testsupport
