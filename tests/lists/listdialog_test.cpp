// The list dialog, offscreen: its controls and captions, pages, marks, settings, and real text
// and DAT builds under the working dialog.

#include "lists/listdialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <memory>

#include "builder/databaseops.h"
#include "core/settings.h"
#include "core/work.h"
#include "liststestsupport.h"
#include "support/qtapp.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {
namespace {

using liststest::ListsFixture;
using liststest::ReadFile;
using liststest::TestHome;

template <class T>
T* Child(QWidget& dialog, const char* name) {
  T* widget = dialog.findChild<T*>(QString::fromLatin1(name));
  EXPECT_NE(widget, nullptr) << name;
  return widget;
}

QString Text(QWidget& dialog, const char* name) {
  QWidget* w = Child<QWidget>(dialog, name);
  if (auto* b = qobject_cast<QPushButton*>(w)) return b->text();
  if (auto* l = qobject_cast<QLabel*>(w)) return l->text();
  return {};
}

void Click(QWidget& dialog, const char* name) {
  QWidget* w = Child<QWidget>(dialog, name);
  ASSERT_NE(w, nullptr);
  QTest::mouseClick(w, Qt::LeftButton);
}

TEST(ListDialogUi, ControlsAndEnglishCaptions) {
  TestHome home;
  ListDialog dialog(nullptr, home.ctx);
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form7"));
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Building a list"));
  EXPECT_EQ(Text(dialog, "Command8_0"), QStringLiteral("Create TXT list"));
  EXPECT_EQ(Text(dialog, "Command8_1"), QStringLiteral("Create HTML list"));
  EXPECT_EQ(Text(dialog, "Command8_2"), QStringLiteral("Close"));
  EXPECT_EQ(Text(dialog, "Label2"), QStringLiteral("Select fields to use :"));
  EXPECT_EQ(Text(dialog, "Label1"), QStringLiteral("Separator :"));
  const char* radios[] = {"Tab", "Semicolon", "Comma", "Space", "Other :"};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Text(dialog, QStringLiteral("RadioTxt_%1").arg(i).toLatin1().constData()),
              QString::fromLatin1(radios[i]));
    EXPECT_NE(Child<QLabel>(dialog, QStringLiteral("Radio_%1").arg(i).toLatin1().constData()),
              nullptr);
  }
  EXPECT_EQ(Child<QLineEdit>(dialog, "Text1")->maxLength(), 1);
  EXPECT_EQ(Text(dialog, "ChkTxt1"), QStringLiteral("Use quotation marks"));
  EXPECT_EQ(
      Text(dialog, "Label6"),
      QStringLiteral("If you wish, you can use an .INI file with the roms you want to list :"));
  EXPECT_NE(Child<QLineEdit>(dialog, "Text4"), nullptr);
  EXPECT_EQ(Text(dialog, "Command7"), QStringLiteral("..."));
  EXPECT_EQ(Text(dialog, "Command1"), QStringLiteral("&Build"));
  EXPECT_EQ(Text(dialog, "Command2"), QStringLiteral("&Previous"));
  EXPECT_EQ(Text(dialog, "Command9"), QStringLiteral(".&DAT"));
  EXPECT_EQ(Text(dialog, "Command10"), QStringLiteral("&Scan Dir"));
  EXPECT_EQ(Text(dialog, "Label3"), QStringLiteral("Skin :"));
  EXPECT_NE(Child<QComboBox>(dialog, "Combo1"), nullptr);
  EXPECT_EQ(Text(dialog, "Label4"), QStringLiteral("Destination path :"));
  EXPECT_EQ(Text(dialog, "Command3"), QStringLiteral("..."));
  EXPECT_EQ(Text(dialog, "Chk2Txt"), QStringLiteral("Skip clones"));
  EXPECT_EQ(Text(dialog, "Chk3Txt"), QStringLiteral("Only available roms"));
  EXPECT_EQ(Text(dialog, "Chk4Txt"), QStringLiteral("Copy images"));
  EXPECT_EQ(Text(dialog, "ChkTxt5"), QStringLiteral("Titles (Titles\\)"));
  EXPECT_EQ(Text(dialog, "ChkTxt10"), QStringLiteral("Flyers (Flyers\\)"));
  EXPECT_EQ(Text(dialog, "Label5"), QStringLiteral("Images online"));
  EXPECT_EQ(Text(dialog, "Command4"), QStringLiteral("&Build complete list from the database"));
  EXPECT_EQ(Text(dialog, "Command6"), QStringLiteral("&Use an INI file to build the list"));
  EXPECT_EQ(Text(dialog, "Command5"), QStringLiteral("&Close"));
  QListWidget* list = Child<QListWidget>(dialog, "List1");
  ASSERT_EQ(list->count(), 47);
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("RomName"));
  EXPECT_EQ(list->item(46)->text(), QStringLiteral("BiosSet"));
  EXPECT_EQ(list->selectionMode(), QAbstractItemView::MultiSelection);
  // Without the site builder and the folder scan, their buttons wait disabled.
  EXPECT_FALSE(Child<QPushButton>(dialog, "Command10")->isEnabled());
  EXPECT_FALSE(Child<QPushButton>(dialog, "Command4")->isEnabled());
  EXPECT_FALSE(Child<QPushButton>(dialog, "Command6")->isEnabled());
}

TEST(ListDialogUi, PagesShowOneAndDisableTheOthers) {
  TestHome home;
  ListDialog dialog(nullptr, home.ctx);
  dialog.show();
  EXPECT_EQ(dialog.CurrentPage(), 0);
  Click(dialog, "Command8_0");
  EXPECT_EQ(dialog.CurrentPage(), 1);
  EXPECT_TRUE(Child<QFrame>(dialog, "Frame1_1")->isEnabled());
  EXPECT_FALSE(Child<QFrame>(dialog, "Frame1_0")->isEnabled());
  EXPECT_FALSE(Child<QFrame>(dialog, "Frame1_2")->isEnabled());
  Click(dialog, "Command2");
  EXPECT_EQ(dialog.CurrentPage(), 0);
  Click(dialog, "Command8_1");
  EXPECT_EQ(dialog.CurrentPage(), 2);
  EXPECT_TRUE(Child<QFrame>(dialog, "Frame1_2")->isEnabled());
  EXPECT_FALSE(Child<QFrame>(dialog, "Frame1_1")->isEnabled());
  Click(dialog, "Command5");
  EXPECT_EQ(dialog.CurrentPage(), 0);
  Click(dialog, "Command8_2");
  EXPECT_FALSE(dialog.isVisible());
}

TEST(ListDialogUi, RadiosByMarkOrLabelAndChecksWithPictures) {
  TestHome home;
  ListDialog dialog(nullptr, home.ctx);
  dialog.show();
  dialog.ShowPage(1);
  EXPECT_EQ(dialog.SelectedRadio(), -1);
  Click(dialog, "RadioTxt_2");
  EXPECT_EQ(dialog.SelectedRadio(), 2);
  Click(dialog, "Radio_0");
  EXPECT_EQ(dialog.SelectedRadio(), 0);
  EXPECT_EQ(Tag(Child<QLabel>(dialog, "Radio_0")), QStringLiteral("1"));
  EXPECT_EQ(Tag(Child<QLabel>(dialog, "Radio_2")), QString());
  QLabel* chk1 = Child<QLabel>(dialog, "Chk1");
  const QImage off = chk1->pixmap().toImage();
  Click(dialog, "ChkTxt1");
  EXPECT_TRUE(dialog.CheckOn(1));
  EXPECT_EQ(Tag(chk1), QStringLiteral("1"));
  // The picture follows the state.
  EXPECT_NE(chk1->pixmap().toImage(), off);
  Click(dialog, "Chk1");
  EXPECT_FALSE(dialog.CheckOn(1));
  EXPECT_EQ(chk1->pixmap().toImage(), off);
  // Space on a focused label works its mark.
  QLabel* comma = Child<QLabel>(dialog, "RadioTxt_1");
  comma->setFocus();
  QTest::keyClick(comma, Qt::Key_Space);
  EXPECT_EQ(dialog.SelectedRadio(), 1);
}

TEST(ListDialogUi, CopiedAndOnlineImagesExcludeEachOther) {
  TestHome home;
  ListDialog dialog(nullptr, home.ctx);
  dialog.show();
  dialog.ShowPage(2);
  for (int n = 5; n <= 10; ++n) {
    EXPECT_FALSE(
        Child<QLabel>(dialog, QStringLiteral("Chk%1").arg(n).toLatin1().constData())->isEnabled());
  }
  // A disabled set ignores clicks.
  Click(dialog, "ChkTxt5");
  EXPECT_FALSE(dialog.CheckOn(5));
  Click(dialog, "Label5");
  EXPECT_TRUE(dialog.CheckOn(11));
  Click(dialog, "Chk4Txt");
  EXPECT_TRUE(dialog.CheckOn(4));
  EXPECT_FALSE(dialog.CheckOn(11));
  for (int n = 5; n <= 10; ++n) {
    EXPECT_TRUE(Child<QLabel>(dialog, QStringLiteral("ChkTxt%1").arg(n).toLatin1().constData())
                    ->isEnabled());
  }
  Click(dialog, "ChkTxt5");
  EXPECT_TRUE(dialog.CheckOn(5));
  Click(dialog, "Chk11");
  EXPECT_TRUE(dialog.CheckOn(11));
  EXPECT_FALSE(dialog.CheckOn(4));
  EXPECT_FALSE(Child<QLabel>(dialog, "Chk5")->isEnabled());
  const HtmlPageState state = dialog.HtmlState();
  EXPECT_TRUE(state.imagesOnline);
  EXPECT_FALSE(state.copyImages);
  EXPECT_TRUE(state.imageSets[0]);
}

TEST(ListDialogUi, SettingsReadAtOpeningAndWrittenAtClosingInOrder) {
  TestHome home;
  std::filesystem::create_directories(home.Path("HTML/Default_EN.skin"));
  liststest::WriteFile(home.Path("HTML/Default_FR.skin.zip"), "x");
  Settings& s = home.ctx.settings;
  s.InfWrite("Frm7CarSep", "|x");
  s.InfWrite("Frm7Check1", "1");
  s.InfWrite("Frm7Separateur", "|");
  s.InfWrite("Frm7List1", "101");
  s.InfWrite("Frm7Skin", "Mine.skin");
  s.InfWrite("Frm7Path", "/out/site/");
  {
    ListDialog dialog(nullptr, home.ctx);
    EXPECT_EQ(Child<QLineEdit>(dialog, "Text1")->text(), QStringLiteral("|"));
    EXPECT_TRUE(dialog.CheckOn(1));
    EXPECT_EQ(dialog.SelectedRadio(), 4);
    QListWidget* list = Child<QListWidget>(dialog, "List1");
    EXPECT_TRUE(list->item(0)->isSelected());
    EXPECT_FALSE(list->item(1)->isSelected());
    EXPECT_TRUE(list->item(2)->isSelected());
    EXPECT_FALSE(list->item(3)->isSelected());
    QComboBox* combo = Child<QComboBox>(dialog, "Combo1");
    ASSERT_EQ(combo->count(), 2);
    EXPECT_EQ(combo->itemText(0), QStringLiteral("Default_EN.skin"));
    EXPECT_EQ(combo->itemText(1), QStringLiteral("Default_FR.skin.zip"));
    EXPECT_EQ(combo->currentText(), QStringLiteral("Mine.skin"));
    EXPECT_EQ(Child<QLineEdit>(dialog, "Text2")->text(), QStringLiteral("/out/site/"));
    EXPECT_EQ(dialog.CurrentPage(), 0);
    list->item(46)->setSelected(true);
    Child<QLineEdit>(dialog, "Text1")->setText(QStringLiteral("#"));
    dialog.ToggleCheckBox(1);
    dialog.close();
  }
  EXPECT_EQ(s.InfRead("Frm7CarSep"), "#");
  EXPECT_EQ(s.InfRead("Frm7Check1"), "");
  EXPECT_EQ(s.InfRead("Frm7Skin"), "Mine.skin");
  EXPECT_EQ(s.InfRead("Frm7Path"), "/out/site/");
  EXPECT_EQ(s.InfRead("Frm7List1"), "101" + std::string(43, '0') + "1");
  EXPECT_NE(s.InfRead("Form7Top"), "-1");
  // A fresh settings file shows the order of the writes.
  TestHome fresh;
  { ListDialog dialog(nullptr, fresh.ctx); }
  const std::string inf = ReadFile(fresh.Path("Tessarin.inf"));
  const char* order[] = {"Form7Top=", "Form7Left=", "Frm7CarSep=", "Frm7Check1=",
                         "Frm7Skin=", "Frm7Path=",  "Frm7List1="};
  size_t last = 0;
  for (const char* key : order) {
    const size_t at = inf.find(key);
    ASSERT_NE(at, std::string::npos) << key;
    EXPECT_GE(at, last) << key;
    last = at;
  }
  // Nothing stored: no radio, nothing selected, the checks off.
  TestHome empty;
  ListDialog dialog(nullptr, empty.ctx);
  EXPECT_EQ(dialog.SelectedRadio(), -1);
  EXPECT_TRUE(Child<QListWidget>(dialog, "List1")->selectedItems().isEmpty());
  EXPECT_TRUE(Child<QLineEdit>(dialog, "Text1")->text().isEmpty());
  for (int n = 1; n <= 11; ++n) EXPECT_FALSE(dialog.CheckOn(n)) << n;
}

TEST(ListDialogUi, DestinationBoxIsTrimmedAndSelectedOnFocus) {
  TestHome home;
  ListDialog dialog(nullptr, home.ctx);
  dialog.show();
  dialog.ShowPage(2);
  QLineEdit* text2 = Child<QLineEdit>(dialog, "Text2");
  text2->setText(QStringLiteral("  /some/where  "));
  dialog.activateWindow();
  text2->setFocus(Qt::TabFocusReason);
  QApplication::sendEvent(text2, new QFocusEvent(QEvent::FocusIn, Qt::TabFocusReason));
  QTest::qWait(20);
  EXPECT_EQ(text2->text(), QStringLiteral("/some/where"));
  EXPECT_EQ(text2->selectedText(), QStringLiteral("/some/where"));
}

class ListDialogBuilds : public ::testing::Test {
 protected:
  void SetUp() override {
    home.ctx.settings.InfWrite("DataFile1", home.Path("no-emulator"));
    Work work;
    ASSERT_TRUE(CreateDatabase(home.ctx, work, ListsFixture("games.xml")));
  }
  TestHome home;
};

TEST_F(ListDialogBuilds, BuildWritesTheListAndSaysDone) {
  ListDialog dialog(nullptr, home.ctx);
  dialog.show();
  dialog.ShowPage(1);
  QListWidget* list = Child<QListWidget>(dialog, "List1");
  list->item(0)->setSelected(true);
  list->item(2)->setSelected(true);
  dialog.ClickRadio(1);
  dialog.ToggleCheckBox(1);
  // The HTML page's clone and availability switches don't touch a text list.
  dialog.ToggleCheckBox(2);
  dialog.ToggleCheckBox(3);
  home.ui.files.push_back(home.Path("dialog.txt"));
  home.ui.messages.clear();
  Click(dialog, "Command1");
  EXPECT_EQ(ReadFile(home.Path("dialog.txt")),
            "\"RomName\";\"Year\";\r\n\"mygame\";\"1980\"\r\n\"myclone\";\"1981\"\r\n"
            "\"mybios\";\"1990\"\r\n\"diskgame\";\"1995\"\r\n\"longname\";\"1982\"\r\n"
            "\"longname9\";\"1983\"\r\n");
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "");
  EXPECT_EQ(home.ui.messages[0].icon, Icon::Information);
  EXPECT_EQ(home.ctx.settings.InfRead("Frm7Separateur"), ";");
  EXPECT_TRUE(dialog.isVisible());
}

TEST_F(ListDialogBuilds, NoFieldSelectedAsksNothing) {
  ListDialog dialog(nullptr, home.ctx);
  dialog.show();
  dialog.ShowPage(1);
  dialog.ClickRadio(0);
  Click(dialog, "Command1");
  EXPECT_TRUE(home.ui.choices.empty());
  EXPECT_EQ(home.ctx.settings.InfRead("Frm7Separateur"), "TAB");
}

TEST_F(ListDialogBuilds, DatButtonExportsWithoutAWord) {
  ListDialog dialog(nullptr, home.ctx);
  dialog.show();
  dialog.ShowPage(1);
  Child<QLineEdit>(dialog, "Text4")->setText(QString::fromStdString(ListsFixture("names.ini")));
  home.ui.files.push_back(home.Path("dialog.dat"));
  home.ui.messages.clear();
  Click(dialog, "Command9");
  ASSERT_EQ(home.ui.choices.size(), 1u);
  EXPECT_EQ(home.ui.choices[0].title, "Dat files");
  EXPECT_EQ(home.ui.choices[0].startPath, "List.dat");
  EXPECT_EQ(home.ui.choices[0].filter, "Text file (dat)|*.dat|All files|*.*|");
  const std::string dat = ReadFile(home.Path("dialog.dat"));
  EXPECT_NE(dat.find("\tname longname9\r\n"), std::string::npos) << dat;
  EXPECT_TRUE(home.ui.messages.empty());
  EXPECT_TRUE(std::filesystem::exists(home.Path("dat_mask.dat")));
  EXPECT_TRUE(dialog.isVisible());
}

TEST_F(ListDialogBuilds, IniChooserAndHooks) {
  int html = 0;
  int scans = 0;
  bool lastUsedIni = false;
  ListDialogHooks hooks;
  hooks.buildHtml = [&](ListDialog&, bool useIni) {
    ++html;
    lastUsedIni = useIni;
  };
  hooks.openFolderScan = [&](ListDialog&) { ++scans; };
  ListDialog dialog(nullptr, home.ctx, hooks);
  dialog.show();
  dialog.ShowPage(1);
  home.ui.files.push_back(home.Path("missing.ini"));
  Click(dialog, "Command7");
  EXPECT_TRUE(Child<QLineEdit>(dialog, "Text4")->text().isEmpty());
  ASSERT_EQ(home.ui.choices.size(), 1u);
  EXPECT_EQ(home.ui.choices[0].title, "INI file to use");
  EXPECT_EQ(home.ui.choices[0].startPath, "Folder.ini");
  EXPECT_FALSE(home.ui.choices[0].save);
  home.ui.files.push_back(ListsFixture("names.ini"));
  Click(dialog, "Command7");
  EXPECT_EQ(Child<QLineEdit>(dialog, "Text4")->text().toStdString(), ListsFixture("names.ini"));
  Click(dialog, "Command10");
  EXPECT_EQ(scans, 1);
  dialog.ShowPage(2);
  Click(dialog, "Command4");
  EXPECT_EQ(html, 1);
  EXPECT_FALSE(lastUsedIni);
  Click(dialog, "Command6");
  EXPECT_EQ(html, 2);
  EXPECT_TRUE(lastUsedIni);
  EXPECT_EQ(dialog.HtmlGameNames().size(), 1u);
}

// Each page in both built-in languages; the pictures go to TESSARIN_SHOTS when it is set.
TEST(ListDialogUi, PagesInEnglishAndFrench) {
  const QString shots = qEnvironmentVariable("TESSARIN_SHOTS");
  for (const int language : {Messages::kEnglish, Messages::kFrench}) {
    TestHome home;
    home.ctx.messages.LanguageNumber = language;
    home.ctx.messages.LoadMessages();
    std::filesystem::create_directories(home.Path("HTML/Default_EN.skin"));
    home.ctx.settings.InfWrite("Frm7List1", "11100000000001");
    home.ctx.settings.InfWrite("Frm7Separateur", ";");
    ListDialog dialog(nullptr, home.ctx);
    dialog.show();
    const bool french = language == Messages::kFrench;
    EXPECT_EQ(Text(dialog, "Command8_0"), french ? QStringLiteral("Cr\u00e9er une liste TXT")
                                                 : QStringLiteral("Create TXT list"));
    EXPECT_EQ(Text(dialog, "RadioTxt_1"),
              french ? QStringLiteral("Point virgule") : QStringLiteral("Semicolon"));
    for (int page = 0; page < 3; ++page) {
      dialog.ShowPage(page);
      if (page == 2) {
        // The six image sets as they open: disabled, their marks drawn so.
        QApplication::processEvents();
        if (!shots.isEmpty()) {
          QDir().mkpath(shots);
          dialog.grab().save(shots +
                             QStringLiteral("/form7_page2_%1_sets_disabled.png")
                                 .arg(french ? QStringLiteral("fr") : QStringLiteral("en")));
        }
        dialog.ToggleCheckBox(4);
      }
      QApplication::processEvents();
      const QPixmap picture = dialog.grab();
      EXPECT_FALSE(picture.isNull());
      // Everything fits: no control is cut by the window's edge.
      for (QWidget* child : dialog.findChildren<QWidget*>()) {
        if (!child->isVisibleTo(&dialog) || child->width() == 0) continue;
        const QRect r(child->mapTo(&dialog, QPoint(0, 0)), child->size());
        EXPECT_TRUE(dialog.rect().contains(r)) << child->objectName().toStdString();
      }
      if (!shots.isEmpty()) {
        QDir().mkpath(shots);
        picture.save(shots + QStringLiteral("/form7_page%1_%2.png")
                                 .arg(page)
                                 .arg(french ? QStringLiteral("fr") : QStringLiteral("en")));
      }
    }
  }
}

}  // namespace
}  // namespace tessarin
