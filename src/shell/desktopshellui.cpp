#include "shell/desktopshellui.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/context.h"
#include "core/fileservices.h"
#include "lists/skins.h"
#include "shell/languagedialog.h"
#include "shell/mainframe.h"
#include "shell/pathwizarddialog.h"
#include "store/indexfile.h"
#include "widgets/desktopui.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

SiteTablesAccess SiteAccess(AppContext& ctx, UrlTables& tables) {
  SiteTablesAccess access;
  access.Tables = &tables;
  access.Reload = [&ctx, &tables] { LoadUrlList(tables, ctx.AppFolder(), ctx.log); };
  access.Write = [&ctx, &tables] { WriteUrlList(tables, ctx.AppFolder(), ctx.log); };
  return access;
}

void LoadDatabase(AppContext& ctx) {
  const std::string path = IndexFilePath(ctx.AppFolder());
  if (FileExists(path)) LoadIndex(ctx.store, ctx.log, path);
}

std::unique_ptr<MainFrame> StartDesktop(AppContext& ctx, ShellSession& session, QtUserInterface& ui,
                                        UrlTables& sites) {
  StartUpSteps steps;
  steps.ChooseLanguage = [&ctx] {
    LanguageDialog dialog(nullptr, ctx);
    dialog.exec();
  };
  steps.RunPathWizard = [&ctx] {
    PathWizardDialog dialog(nullptr, ctx);
    dialog.exec();
  };
  steps.LoadIndex = [&ctx] { LoadDatabase(ctx); };
  steps.LoadUrlList = [&ctx, &sites] { LoadUrlList(sites, ctx.AppFolder(), ctx.log); };
  steps.SkinResource = DefaultSkinArchive;
  if (StartUp(ctx, session, steps) == StartResult::TempFolderFailed) {
    QMessageBox box(QMessageBox::Critical, QStringLiteral("Tessarin"),
                    ToQt(TempFolderFailureText(ctx)), QMessageBox::Ok);
    box.setObjectName(QStringLiteral("TempFolderFailure"));
    box.exec();
    return nullptr;
  }
  auto frame = std::make_unique<MainFrame>(ctx, session, SiteAccess(ctx, sites));
  frame->LoadIndex = steps.LoadIndex;
  ui.SetOwner(frame.get());
  RegisterSubsystemDialogs(*frame);
  frame->Load();
  return frame;
}

namespace {

// --help and --version are answered before anything starts, so that they write nothing.
// Gives true when one of them was given.
bool AnswerInformationOptions(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view option(argv[i]);
    if (option == "--version" || option == "-v") {
      std::printf("tessarin %s\n", AppVersion().c_str());
      return true;
    }
    if (option == "--help" || option == "-h" || option == "-?") {
      std::printf(
          "Usage: tessarin [--home DIR]\n"
          "A desktop companion for the MAME arcade emulator.\n\n"
          "  --home DIR   the application folder (settings, log, DataFiles...); by default the\n"
          "               program's folder when it can be written to, else\n"
          "               ~/.local/share/tessarin\n"
          "  --help       show this text and end\n"
          "  --version    show the version and end\n\n"
          "tessarin-cli builds and reads the database from a terminal.\n");
      return true;
    }
  }
  return false;
}

}  // namespace

int RunDesktopProgram(int argc, char** argv) {
  if (AnswerInformationOptions(argc, argv)) return 0;
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Tessarin"));
  QApplication::setWindowIcon(AppIcon());
  std::string home;
  const QStringList arguments = QApplication::arguments();
  for (qsizetype i = 1; i + 1 < arguments.size(); ++i) {
    if (arguments[i] == QStringLiteral("--home")) home = FromQt(arguments[i + 1]);
  }
  const std::string exeFolder = FromQt(QApplication::applicationDirPath());
  const std::string appFolder = ResolveAppFolder(home, exeFolder);
  if (!QDir(ToQt(appFolder)).exists()) QDir().mkpath(ToQt(appFolder));
  if (!FolderIsWritable(appFolder)) {
    // Nothing of a run would last there: say so, with the folder, instead of a silent end.
    const std::string text = "The application folder can't be written:\n" + appFolder;
    std::fprintf(stderr, "%s\n", text.c_str());
    QMessageBox box(QMessageBox::Critical, QStringLiteral("Tessarin"), ToQt(text), QMessageBox::Ok);
    box.setObjectName(QStringLiteral("FolderNotWritable"));
    box.exec();
    return 1;
  }
  // A second instance ends here, silently, having written nothing.
  InstanceLock lock(appFolder);
  if (!lock.TryLock()) return 0;

  AppContext ctx(appFolder);
  QtUserInterface ui(ctx);
  ctx.SetUi(&ui);
  ctx.log.SetFatalHandler([&ui](const std::string& logPath) {
    // Ends on the interface thread, never from a job's thread; with no destructors run, since
    // a job may still be running (every file we write is whole on disk already).
    ui.EndAfterFatal(logPath, [](int code) {
      std::fflush(nullptr);
      std::_Exit(code);
    });
  });
  ShellSession session;
  UrlTables sites;
  std::unique_ptr<MainFrame> frame = StartDesktop(ctx, session, ui, sites);
  if (!frame) return 1;
  QObject::connect(&app, &QApplication::lastWindowClosed, &app, &QApplication::quit);
  const int code = QApplication::exec();
  frame.reset();
  ctx.SetUi(nullptr);
  return code;
}

}  // namespace tessarin
