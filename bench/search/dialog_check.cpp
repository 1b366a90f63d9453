// Times the search dialog on a real database, offscreen, as a user drives it: open (lists
// built), type a keyword and press Find, an empty form (every game listed), the jump boxes'
// first drop-down. Prints the figures and saves screenshots when a folder is given.
//
//   QT_QPA_PLATFORM=offscreen bench_search_dialog [home] [screenshot folder]

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/context.h"
#include "search/searchdialog.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  const std::string home = argc > 1 ? argv[1] : "/work/realdata/home";
  const QString shots = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
  tessarin::AppContext ctx(home);
  ctx.messages.LanguageNumber = tessarin::Messages::kEnglish;
  ctx.messages.LoadMessages();
  // Nothing may be written into the given folder: the dialog's settings go nowhere.
  ctx.SearchMayClose = false;

  QElapsedTimer timer;
  timer.start();
  auto* dialog = new tessarin::SearchDialog(nullptr, ctx, nullptr);
  dialog->show();
  QApplication::processEvents();
  std::printf("open (index read, lists built): %lld ms, %d games\n",
              static_cast<long long>(timer.restart()), ctx.store.GameCount());

  auto* list = dialog->findChild<QListView*>(QStringLiteral("List1"));
  dialog->findChild<QLineEdit*>(QStringLiteral("Text1"))->setText(QStringLiteral("fighter"));
  timer.restart();
  dialog->findChild<QPushButton*>(QStringLiteral("Command1"))->click();
  QApplication::processEvents();
  std::printf("keyword \"fighter\", Find to list painted: %lld ms, %d lines\n",
              static_cast<long long>(timer.restart()), list->model()->rowCount());
  if (!shots.isEmpty()) dialog->grab().save(shots + QStringLiteral("/real_fighter.png"));

  dialog->findChild<QLineEdit*>(QStringLiteral("Text1"))->clear();
  timer.restart();
  dialog->findChild<QPushButton*>(QStringLiteral("Command1"))->click();
  QApplication::processEvents();
  std::printf("empty form, Find to list painted: %lld ms, %d lines\n",
              static_cast<long long>(timer.restart()), list->model()->rowCount());
  list->scrollToBottom();
  QApplication::processEvents();
  std::printf("scroll to the last line: %lld ms\n", static_cast<long long>(timer.restart()));
  if (!shots.isEmpty()) dialog->grab().save(shots + QStringLiteral("/real_all.png"));

  dialog->FillJumpBoxes();
  std::printf("jump boxes filled: %lld ms\n", static_cast<long long>(timer.restart()));
  // Leave without the unload writing settings into the real folder.
  std::fflush(stdout);
  std::_Exit(0);
}
