// The list dialog's HTML buttons with the site builder behind them, offscreen.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <filesystem>
#include <memory>

#include "builder/databaseops.h"
#include "core/messages.h"
#include "core/work.h"
#include "lists/htmlsiteui.h"
#include "lists/listdialog.h"
#include "liststestsupport.h"
#include "online/urllist.h"
#include "support/qtapp.h"

namespace tessarin {
namespace {

using liststest::ListsFixture;
using liststest::TestHome;

template <class T>
T* Child(QWidget& dialog, const char* name) {
  T* widget = dialog.findChild<T*>(QString::fromLatin1(name));
  EXPECT_NE(widget, nullptr) << name;
  return widget;
}

// The list window's HTML buttons with the site builder behind them; `sites` as the program's
// site list, or none.
ListDialogHooks SiteHooks(const UrlTables* sites = nullptr) {
  ListDialogHooks hooks;
  hooks.buildHtml = [sites](ListDialog& dialog, bool useIniFile) {
    BuildHtmlSiteFromDialog(dialog, useIniFile, sites);
  };
  return hooks;
}

class SiteDialog : public ::testing::Test {
 protected:
  void SetUp() override {
    home.ctx.settings.InfWrite("DataFile1", home.Path("no-emulator"));
    Work work;
    ASSERT_TRUE(CreateDatabase(home.ctx, work, ListsFixture("games.xml")));
    home.ui.messages.clear();
  }
  TestHome home;
};

TEST_F(SiteDialog, BuildAllWritesTheSiteAndBringsTheDialogBack) {
  ListDialog dialog(nullptr, home.ctx, SiteHooks());
  dialog.show();
  dialog.ShowPage(2);
  const std::string out = home.Path("www");
  Child<QLineEdit>(dialog, "Text2")->setText(QString::fromStdString(out));
  dialog.ToggleCheckBox(2);  // skip clones
  Child<QCheckBox>(dialog, "ChkSearchIndex")->setChecked(true);
  QTest::mouseClick(Child<QPushButton>(dialog, "Command4"), Qt::LeftButton);
  EXPECT_TRUE(std::filesystem::exists(out + "/tessarin/index.htm"));
  EXPECT_TRUE(std::filesystem::exists(out + "/tessarin/roms/mygame.htm"));
  EXPECT_FALSE(std::filesystem::exists(out + "/tessarin/roms/myclone.htm"));
  EXPECT_TRUE(std::filesystem::exists(out + "/tessarin/search.htm"));
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, home.ctx.messages.Lng(41));
  EXPECT_TRUE(dialog.isVisible());
}

TEST_F(SiteDialog, TheSearchPageBoxSpeaksTheUsersLanguage) {
  for (const int language : {Messages::kEnglish, Messages::kFrench}) {
    home.ctx.messages.LanguageNumber = language;
    home.ctx.messages.LoadMessages();
    ListDialog dialog(nullptr, home.ctx, SiteHooks());
    EXPECT_EQ(Child<QCheckBox>(dialog, "ChkSearchIndex")->text(),
              language == Messages::kFrench ? QStringLiteral("Page de recherche (search.htm)")
                                            : QStringLiteral("Search page (search.htm)"));
    // Its neighbours come from the table in the same language.
    EXPECT_EQ(Child<QPushButton>(dialog, "Command4")->text().toStdString(),
              home.ctx.messages.Lng(137));
  }
}

TEST_F(SiteDialog, IniButtonLoadsTheNamesAndIgnoresSkipClones) {
  ListDialog dialog(nullptr, home.ctx, SiteHooks());
  dialog.show();
  dialog.ShowPage(2);
  const std::string out = home.Path("www");
  Child<QLineEdit>(dialog, "Text2")->setText(QString::fromStdString(out));
  dialog.ToggleCheckBox(2);
  const std::string ini = home.Path("pick.ini");
  liststest::WriteFile(ini, "[ROOT_FOLDER]\r\nmyclone\r\nnot a game\r\n");
  home.ui.files.push_back(ini);
  QTest::mouseClick(Child<QPushButton>(dialog, "Command6"), Qt::LeftButton);
  ASSERT_EQ(home.ui.choices.size(), 1u);
  EXPECT_EQ(home.ui.choices[0].title, home.ctx.messages.Lng(175));
  EXPECT_EQ(home.ui.choices[0].startPath, "folder.ini");
  EXPECT_EQ(home.ui.choices[0].filter, "Fichiers ini (*.ini)|*.ini|Tous les fichies|*.*|");
  EXPECT_TRUE(std::filesystem::exists(out + "/tessarin/roms/myclone.htm"));
  EXPECT_FALSE(std::filesystem::exists(out + "/tessarin/roms/mygame.htm"));
  // HtmlGameNames keeps the sort keys of the last build.
  ASSERT_EQ(dialog.HtmlGameNames().size(), 2u);
  EXPECT_EQ(dialog.HtmlGameNames()[1].substr(100),
            std::to_string(home.ctx.store.FindGame("myclone")));
  EXPECT_TRUE(dialog.isVisible());

  // An empty file: nothing happens.
  const std::string empty = home.Path("empty.ini");
  liststest::WriteFile(empty, "");
  home.ui.files.push_back(empty);
  home.ui.messages.clear();
  QTest::mouseClick(Child<QPushButton>(dialog, "Command6"), Qt::LeftButton);
  EXPECT_TRUE(home.ui.messages.empty());
  EXPECT_EQ(dialog.HtmlGameNames().size(), 2u);
}

// On-line pictures take their addresses from the program's site list, not from a second read
// of its file.
TEST_F(SiteDialog, OnlinePicturesComeFromTheProgramsSiteList) {
  UrlTables sites;
  sites.SetDefaults();
  for (size_t i = 1; i < sites.OnlineImages.size(); ++i) {
    sites.OnlineImages[i] = "http://pictures.example/" + std::to_string(i) + "/#ROMNAME#.png";
  }
  ListDialog dialog(nullptr, home.ctx, SiteHooks(&sites));
  dialog.show();
  dialog.ShowPage(2);
  const std::string out = home.Path("www");
  Child<QLineEdit>(dialog, "Text2")->setText(QString::fromStdString(out));
  dialog.ToggleCheckBox(11);  // images online
  QTest::mouseClick(Child<QPushButton>(dialog, "Command4"), Qt::LeftButton);
  const std::string page = liststest::ReadFile(out + "/tessarin/roms/mygame.htm");
  EXPECT_NE(page.find("http://pictures.example/1/mygame.png"), std::string::npos) << page;
  EXPECT_FALSE(std::filesystem::exists(home.Path("Tessarin.url.inf")));
}

}  // namespace
}  // namespace tessarin
