// The layout and update dialogs offscreen, driven by their controls' names, against a local
// server. Screenshots go to $TESSARIN_SHOTS when it is set.
#include "layouts/layoutsdialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <algorithm>
#include <filesystem>

#include "app/context.h"
#include "core/settings.h"
#include "online/dataupdate.h"
#include "online/updatedialog.h"
#include "support/qtapp.h"
#include "support/routeserver.h"
#include "support/scriptedui.h"
#include "support/testfiles.h"
#include "support/zipmaker.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::MakeZip;
using testsupport::ReadFile;
using testsupport::RouteServer;
using testsupport::ScriptedUi;
using testsupport::TempFolder;
using testsupport::WriteFile;

template <class T>
T* Child(QWidget* parent, const char* name) {
  T* child = parent->findChild<T*>(QString::fromLatin1(name));
  EXPECT_NE(child, nullptr) << name;
  return child;
}

void Shot(QWidget* window, const QString& name) {
  const QString folder = qEnvironmentVariable("TESSARIN_SHOTS");
  if (folder.isEmpty()) return;
  window->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

class LayoutsDialogTest : public ::testing::TestWithParam<int> {
 protected:
  LayoutsDialogTest() {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.messages.LanguageNumber = GetParam();
    ctx.messages.LoadMessages();
    ctx.settings.InfWrite("URL_LayoutsTXT", server.Url("/layouts.txt"));
    ctx.settings.InfWrite("URL_LayoutsZIP", server.Url("/zips/"));
    ctx.settings.InfWrite("URL_LayoutsJPG", server.Url("/jpg/"));
    fs::create_directories(layouts);
    server.Set("/layouts.txt",
               "pacman;Pac-Man;Ann;01/02/05;A note\n"
               "galaga_v;Galaga [VERTICAL];Bob;03/04/06\n"
               "dkong;Donkey Kong;Cid;05/06/07\n"
               "snes1;Other;Dan;01/01/01;;;;;;snes\n");
    std::string xml;
    for (int i = 0; i < 40; ++i) xml += "<layout/>\n";
    MakeZip(folder.Path() + "p.zip", {{"pacman/layout.xml", xml}});
    server.Set("/zips/pacman.zip", ReadFile(folder.Path() + "p.zip"));
  }
  const char* Language() const { return GetParam() == 0 ? "fr" : "en"; }

  TempFolder folder;
  RouteServer server;
  ScriptedUi ui;
  AppContext ctx{folder.Path()};
  std::string layouts = folder.Path() + "MyLayouts/";
};

TEST_P(LayoutsDialogTest, SimpleDialogInstallsTheMissingHorizontalLayouts) {
  LayoutsDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form19"));
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Option1")->isChecked());
  EXPECT_EQ(Child<QPushButton>(&dialog, "Command1")->text(),
            QString::fromStdString(ctx.messages.Lng(450)));
  dialog.InstallAllMissing(true, layouts);
  EXPECT_TRUE(fs::exists(layouts + "pacman/layout.xml"));
  const QString report = dialog.Report();
  EXPECT_TRUE(
      report.startsWith(QStringLiteral("Layouts path: ") + QString::fromStdString(layouts)));
  EXPECT_TRUE(report.contains(QString::fromStdString(ctx.messages.Lng(411))));
  EXPECT_TRUE(report.contains(QString::fromStdString("pacman.zip " + ctx.messages.Lng(426))));
  // dkong fails to download: the end tells of an error, then "Done".
  ASSERT_GE(ui.messages.size(), 2u);
  EXPECT_EQ(ui.messages[ui.messages.size() - 2].text, ctx.messages.Lng(454));
  EXPECT_EQ(ui.messages.back().text, ctx.messages.Lng(41));
  Shot(&dialog, QStringLiteral("form19-") + QLatin1String(Language()));
  dialog.close();
  EXPECT_EQ(ctx.settings.InfReadOrEmpty("Frm19X").empty(), false);
  EXPECT_NE(ReadFile(ctx.AppFolder() + "AtomicLayouts.inf").find(layouts), std::string::npos);
}

TEST_P(LayoutsDialogTest, SimpleDialogWithoutAnyListStopsWithTheMessage) {
  server.Remove("/layouts.txt");
  LayoutsDialog dialog(nullptr, ctx);
  dialog.InstallAllMissing(false, folder.Path() + "zips");
  ASSERT_FALSE(ui.messages.empty());
  EXPECT_EQ(ui.messages.back().text, ctx.messages.Lng(453));
  EXPECT_TRUE(dialog.Report().contains(QString::fromStdString(ctx.messages.Lng(410))));
  EXPECT_FALSE(Child<QPlainTextEdit>(&dialog, "Text1")->isEnabled());
}

TEST_P(LayoutsDialogTest, ExpertDialogListsSortsFiltersAndDownloads) {
  WriteFile(ctx.AppFolder() + "AtomicLayouts.inf", "\r\n" + layouts + "\r\n");
  LayoutsExpertDialog dialog(nullptr, ctx);
  dialog.show();
  dialog.LoadList();
  auto* list = Child<QListWidget>(&dialog, "List1");
  ASSERT_EQ(list->count(), 3);  // the other system's line is left out
  // Loaded by hand as the window opened: the window's own load, once it has run, fetches nothing.
  QCoreApplication::processEvents();
  const std::vector<std::string> asked = server.Requests();
  EXPECT_EQ(std::count(asked.begin(), asked.end(), "/layouts.txt"), 1);
  EXPECT_EQ(list->count(), 3);
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("Donkey Kong"));
  EXPECT_TRUE(Child<QPlainTextEdit>(&dialog, "Text2")
                  ->toPlainText()
                  .contains(QStringLiteral("3 layouts listed.")));
  dialog.Sort(2);  // newest first
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("Donkey Kong"));
  EXPECT_EQ(list->item(2)->text(), QStringLiteral("Pac-Man"));
  dialog.Filter(1);  // vertical names only
  ASSERT_EQ(list->count(), 1);
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("Galaga [VERTICAL]"));
  dialog.Filter(0);
  dialog.Sort(0);
  list->setCurrentRow(2);
  EXPECT_TRUE(Child<QPlainTextEdit>(&dialog, "Text2")
                  ->toPlainText()
                  .startsWith(QStringLiteral("Rom: pacman")));
  list->item(2)->setSelected(true);
  dialog.DownloadChosen(true);
  EXPECT_TRUE(fs::exists(layouts + "pacman/layout.xml"));
  EXPECT_EQ(ui.messages.back().text, ctx.messages.Lng(41));
  // Only the missing ones: pacman is there now.
  dialog.ToggleMissing();
  EXPECT_EQ(list->count(), 2);
  EXPECT_EQ(Child<QPushButton>(&dialog, "Command6")->text(),
            QString::fromStdString(ctx.messages.Lng(430)));
  dialog.ToggleMissing();
  EXPECT_EQ(list->count(), 3);
  dialog.SaveList(folder.Path() + "List.ini");
  EXPECT_NE(ReadFile(folder.Path() + "List.ini").find("[ROOT_FOLDER]\r\ndkong\r\n"),
            std::string::npos);
  Shot(&dialog, QStringLiteral("form17-") + QLatin1String(Language()));
  Child<QCheckBox>(&dialog, "Chk2")->setChecked(true);
  dialog.close();
  EXPECT_EQ(ctx.settings.InfRead("DeleteZipAfter"), "1");
  // A box left off is kept as its tag is: the empty text.
  EXPECT_EQ(ctx.settings.InfRead("LayoutPreview"), "");
}

TEST_P(LayoutsDialogTest, UpdateDialogKeepsItsBoxAndChecksNow) {
  ctx.settings.InfWrite(kUpdateServerKey, server.Root());
  server.Set("/update.txt", "x\n");  // one line: nothing offered
  bool reloaded = false;
  UpdateDialog dialog(nullptr, ctx, [&] { reloaded = true; });
  dialog.show();
  auto* check = Child<QCheckBox>(&dialog, "Chk");
  EXPECT_FALSE(check->isChecked());
  check->setChecked(true);
  ui.answers = {true};
  dialog.CheckNow();
  EXPECT_EQ(ui.questions.size(), 1u);
  EXPECT_FALSE(reloaded);
  Shot(&dialog, QStringLiteral("form16-") + QLatin1String(Language()));
  dialog.close();
  EXPECT_EQ(ctx.settings.InfRead("ChckDataUpdate"), "1");
}

INSTANTIATE_TEST_SUITE_P(Languages, LayoutsDialogTest, ::testing::Values(1, 0));

}  // namespace
}  // namespace tessarin
