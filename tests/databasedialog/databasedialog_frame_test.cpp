// The database window in the frame: the panel's "Game database" entry opens it, and after a
// build the panel names the new database. Also the look of every page, in English and French.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "builder/buildertestsupport.h"
#include "builder/databasedialog.h"
#include "core/fileservices.h"
#include "shell/desktopshellui.h"
#include "shell/mainframe.h"
#include "shell/mainpanel.h"
#include "shell/startup.h"
#include "store/indexfile.h"
#include "widgets/desktopui.h"

namespace tessarin {
namespace {

using buildertest::BuilderFixture;
using buildertest::ScriptedUi;
using buildertest::WriteBytes;

bool WaitFor(const std::function<bool()>& done, int ms = 5000) {
  QElapsedTimer timer;
  timer.start();
  while (!done() && timer.elapsed() < ms) QTest::qWait(10);
  return done();
}

struct FrameRun {
  QTemporaryDir dir;
  AppContext ctx{dir.path().toStdString()};
  QtUserInterface qtUi{ctx};
  ScriptedUi ui;
  ShellSession session;
  UrlTables sites;
  std::unique_ptr<MainFrame> frame;

  FrameRun() {
    ctx.log.SetFatalHandler([](const std::string&) {});
    WriteBytes(ctx.AppFolder() + "Tessarin.inf", "Language=1\r\nMDIState=0\r\n");
  }
  ~FrameRun() {
    if (frame) frame->close();
    frame.reset();
    ctx.SetUi(nullptr);
  }
  void Start() {
    frame = StartDesktop(ctx, session, qtUi, sites);
    ASSERT_NE(frame, nullptr);
    // The boxes of the jobs come from the script rather than on the screen.
    ctx.SetUi(&ui);
    QTest::qWait(50);
  }
};

TEST(DatabaseDialogFrame, PanelEntryOpensTheWindowAndThePanelNamesTheNewDatabase) {
  FrameRun run;
  run.Start();
  run.ctx.settings.InfWrite("Datafile1", BuilderFixture("cli/fake-mame.sh"));
  run.ctx.settings.InfWrite("RomPath", run.ctx.AppFolder() + "roms/");
  MainPanel* panel = run.frame->Panel();
  ASSERT_NE(panel, nullptr);
  EXPECT_TRUE(panel->findChild<QWidget*>(QStringLiteral("Entry_1"))->isEnabled());
  EXPECT_TRUE(panel->findChild<QLabel*>(QStringLiteral("Label1"))->text().isEmpty());
  QTest::mouseClick(panel->findChild<QLabel*>(QStringLiteral("Title_1")), Qt::LeftButton);
  ASSERT_TRUE(WaitFor([&] { return run.frame->findChild<DatabaseDialog*>() != nullptr; }));
  auto* dialog = run.frame->findChild<DatabaseDialog*>();
  EXPECT_EQ(dialog->objectName(), QStringLiteral("Form3"));
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() == nullptr; }));
  dialog->findChild<QPushButton*>(QStringLiteral("Label6_0"))->click();
  dialog->findChild<QPushButton*>(QStringLiteral("Command11_0"))->click();
  EXPECT_TRUE(FileExists(IndexFilePath(run.ctx.AppFolder())));
  dialog->close();
  ASSERT_TRUE(WaitFor([&] { return run.frame->Panel() != nullptr; }));
  EXPECT_EQ(run.frame->Panel()->findChild<QLabel*>(QStringLiteral("Label1"))->text(),
            QStringLiteral("Source database : MAME v0.999 (fake for tests)"));
}

TEST(DatabaseDialogFrame, PanelOpensCentredInTheFrameAtTheFirstStart) {
  FrameRun run;
  run.ctx.FirstRun = true;
  run.Start();
  QMdiSubWindow* window = run.frame->PanelWindow();
  ASSERT_NE(window, nullptr);
  const QRect area = run.frame->findChild<QMdiArea*>()->viewport()->rect();
  const int left = window->pos().x();
  const int right = area.width() - (left + window->width());
  // Centred across, within a pixel of rounding; on a screen too small for it, at the left edge.
  if (window->width() > area.width()) {
    EXPECT_EQ(left, 0);
    return;
  }
  EXPECT_LE(std::abs(left - right), 2) << left << " " << right << " " << area.width();
}

TEST(DatabaseDialogFrame, CentredPanelFollowsTheFrameUntilTheUserMovesIt) {
  FrameRun run;
  run.ctx.FirstRun = true;
  run.Start();
  QMdiSubWindow* window = run.frame->PanelWindow();
  ASSERT_NE(window, nullptr);
  QWidget* viewport = run.frame->findChild<QMdiArea*>()->viewport();
  auto centredAcross = [&] {
    const int left = window->pos().x();
    const int right = viewport->width() - (left + window->width());
    return std::abs(left - right) <= 2;
  };
  // The window system gives the frame another size after the panel was placed.
  run.frame->resize(run.frame->width() + 300, run.frame->height() + 100);
  ASSERT_TRUE(WaitFor([&] { return centredAcross(); }));
  EXPECT_GT(window->pos().x(), 150);
  // Once the user has put it somewhere, it stays there.
  window->move(10, 10);
  run.frame->resize(run.frame->width() - 200, run.frame->height());
  QTest::qWait(50);
  EXPECT_EQ(window->pos(), QPoint(10, 10));
}

// Saves a picture of a window when TESSARIN_SHOTS names a folder (for looking at the layout).
void Shot(QWidget* widget, const QString& name) {
  const QString folder = qEnvironmentVariable("TESSARIN_SHOTS");
  if (folder.isEmpty() || !widget) return;
  QDir().mkpath(folder);
  widget->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

// Every text of a page fits its control: no caption is cut, no wrapped text loses a line, and
// a path box is wide enough to read a path.
void ExpectNothingClipped(QWidget* page, const QString& where) {
  for (QLabel* label : page->findChildren<QLabel*>()) {
    if (!label->isVisible() || label->text().isEmpty()) continue;
    if (label->wordWrap()) {
      EXPECT_GE(label->height(), label->heightForWidth(label->width()))
          << where.toStdString() << " " << label->objectName().toStdString();
    } else {
      EXPECT_GE(label->width(), label->sizeHint().width())
          << where.toStdString() << " " << label->objectName().toStdString();
    }
  }
  for (QAbstractButton* button : page->findChildren<QAbstractButton*>()) {
    if (!button->isVisible()) continue;
    EXPECT_GE(button->width(), button->sizeHint().width())
        << where.toStdString() << " " << button->objectName().toStdString();
  }
  const int em = page->fontMetrics().averageCharWidth();
  for (QLineEdit* box : page->findChildren<QLineEdit*>()) {
    if (!box->isVisible()) continue;
    EXPECT_GE(box->width(), em * 50)
        << where.toStdString() << " " << box->objectName().toStdString();
  }
}

TEST(DatabaseDialogLook, EveryPageFitsInEnglishAndFrench) {
  for (int language : {Messages::kEnglish, Messages::kFrench}) {
    buildertest::TestHome home;
    home.ctx.messages.LanguageNumber = language;
    home.ctx.messages.LoadMessages();
    home.ctx.settings.InfWrite("Datafile1", "/usr/games/mame");
    home.ctx.settings.InfWrite("DataFile2", "/home/someone/mame/dats/History.dat");
    home.ctx.settings.InfWrite("RomPath", "/home/someone/mame/roms/");
    std::vector<DownloadLine> lines(11);
    for (size_t i = 0; i < lines.size(); ++i) {
      lines[i].name = "File" + std::to_string(i);
      lines[i].site = "http://site.invalid/";
    }
    lines[0].address = "http://data.example.invalid/history/history.zip";
    DownloadListAccess access;
    access.Load = [lines] { return lines; };
    DatabaseDialog dialog(nullptr, home.ctx, access);
    dialog.show();
    QTest::qWait(20);
    const QString tag =
        language == Messages::kEnglish ? QStringLiteral("en") : QStringLiteral("fr");
    for (int page = 0; page < DatabaseDialog::kPageCount; ++page) {
      dialog.ShowPage(page);
      QTest::qWait(20);
      QWidget* frame = dialog.findChild<QWidget*>(QStringLiteral("Frame1_%1").arg(page));
      ASSERT_NE(frame, nullptr);
      ExpectNothingClipped(frame, tag + QStringLiteral(" page %1").arg(page));
      Shot(&dialog, QStringLiteral("page%1_%2").arg(page).arg(tag));
    }
    // The disabled update buttons look disabled (no index file here).
    EXPECT_FALSE(dialog.findChild<QPushButton*>(QStringLiteral("Command11_1"))->isEnabled());
  }
}

}  // namespace
}  // namespace tessarin
