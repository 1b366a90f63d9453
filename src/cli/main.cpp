#include <QCoreApplication>

#include "cli/commands.h"

int main(int argc, char** argv) {
  // The emulator is run through QProcess, which wants an application object.
  QCoreApplication app(argc, argv);
  return tessarin::RunCli(argc, argv, QCoreApplication::applicationDirPath().toStdString());
}
