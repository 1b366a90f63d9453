// The desktop program's entry. Until the windows exist it reports, on the terminal, what a
// start finds: the application folder, the language of the messages and the database.
#include <QCoreApplication>
#include <cstdio>
#include <string>

#include "core/context.h"

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  std::string home;
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::string(argv[i]) == "--home") home = argv[i + 1];
  }
  const std::string exeFolder = QCoreApplication::applicationDirPath().toStdString();
  tessarin::AppContext ctx(tessarin::ResolveAppFolder(home, exeFolder));
  ctx.settings.InfLoad();
  const int language = ctx.settings.InfReadNumber("Language");
  ctx.messages.LanguageNumber = language == -1 ? tessarin::Messages::kEnglish : language;
  ctx.messages.LoadMessages();
  std::printf("Tessarin %s\nApplication folder: %s\nLanguage: %d (%s)\nGames: %d\n",
              tessarin::AppVersion().c_str(), ctx.AppFolder().c_str(), ctx.messages.LanguageNumber,
              ctx.messages.Lng(1).c_str(), ctx.store.GameCount());
  return 0;
}
