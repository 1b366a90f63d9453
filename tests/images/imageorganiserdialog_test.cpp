// The image organiser window, offscreen: its controls and captions, both jobs from its buttons
// under the working dialog, and what it keeps at closing.

#include "images/imageorganiserdialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <filesystem>
#include <memory>

#include "shell/shell_test_support.h"
#include "support/qtapp.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using shelltest::Exists;
using shelltest::TestContext;
using testsupport::TempFolder;
using testsupport::WriteFile;

template <class T>
T* Child(QWidget& dialog, const char* name) {
  T* widget = dialog.findChild<T*>(QString::fromLatin1(name));
  EXPECT_NE(widget, nullptr) << name;
  return widget;
}

TEST(ImageOrganiserDialog, ControlsAndCaptions) {
  TestContext t;
  ImageOrganiserDialog dialog(nullptr, t.ctx);
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form10"));
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Images"));
  EXPECT_EQ(Child<QPushButton>(dialog, "Command5_0")->text(), QStringLiteral("&Copy/Move images"));
  EXPECT_EQ(Child<QPushButton>(dialog, "Command5_1")->text(),
            QStringLiteral("&Delete unuseful images"));
  EXPECT_EQ(Child<QPushButton>(dialog, "Command5_2")->text(), QStringLiteral("&Close"));
  EXPECT_EQ(Child<QLabel>(dialog, "Chk1Txt")->text(),
            QStringLiteral("Use a folder instead of the database"));
  EXPECT_EQ(Child<QLabel>(dialog, "Label5")->text(),
            QStringLiteral("Only images of the available roms whill be copied."));
  auto* combo = Child<QComboBox>(dialog, "Combo1");
  ASSERT_EQ(combo->count(), 6);
  EXPECT_EQ(combo->itemText(0), QStringLiteral("titles"));
  EXPECT_EQ(combo->itemText(5), QStringLiteral("flyers"));
  EXPECT_EQ(combo->currentIndex(), -1);
  EXPECT_EQ(dialog.CurrentPage(), 0);
  for (const char* name :
       {"Label2", "Label3", "Label4", "Text1", "Text2", "Command1", "Command2", "Chk2", "Chk2Txt",
        "Chk3", "Chk3Txt", "Command3", "Command4", "Frame1_0", "Frame1_1", "Label1"}) {
    EXPECT_NE(dialog.findChild<QWidget*>(QString::fromLatin1(name)), nullptr) << name;
  }
}

TEST(ImageOrganiserDialog, DeleteJobWithTheDatabase) {
  TestContext t;
  TempFolder images;
  WriteFile(images / "pacman.png", "p");
  WriteFile(images / "unknown.png", "u");
  WriteFile(images / "unknown.jpg", "u");
  t.ctx.store.AppendGame("pacman", "pacman;A1;0;B#Z");
  t.ctx.settings.InfWrite("TitlesPath", images.Path());
  ImageOrganiserDialog dialog(nullptr, t.ctx);
  dialog.StartJob(1);
  ASSERT_EQ(dialog.CurrentPage(), 1);
  EXPECT_EQ(dialog.State().Mode, 2);
  EXPECT_EQ(dialog.State().RomCount(), 1);
  EXPECT_EQ(Child<QLabel>(dialog, "Label5")->text(),
            QStringLiteral("Only images of the unavailable roms will be deleted."));
  EXPECT_EQ(Child<QPushButton>(dialog, "Command3")->text(), QStringLiteral("&Delete"));
  EXPECT_FALSE(Child<QLineEdit>(dialog, "Text2")->isVisibleTo(&dialog));
  EXPECT_FALSE(Child<QCheckBox>(dialog, "Chk3")->isVisibleTo(&dialog));

  dialog.RunJob();  // no kind chosen: nothing
  EXPECT_TRUE(Exists(images / "unknown.png"));
  EXPECT_TRUE(t.ui.shown.empty());

  dialog.ChooseKind(1);
  EXPECT_EQ(Child<QLineEdit>(dialog, "Text1")->text().toStdString(), images.Path());
  dialog.RunJob();
  EXPECT_TRUE(Exists(images / "pacman.png"));
  EXPECT_FALSE(Exists(images / "unknown.png"));
  EXPECT_TRUE(Exists(images / "unknown.jpg"));
  ASSERT_EQ(t.ui.shown.size(), 1u);
  EXPECT_EQ(t.ui.shown[0].text, "");  // "Done."

  dialog.BackToStart();
  EXPECT_EQ(dialog.CurrentPage(), 0);
}

TEST(ImageOrganiserDialog, CopyJobFromAFolderOfRoms) {
  TestContext t;
  TempFolder roms, source, destination;
  WriteFile(roms / "Pacman.zip", "z");
  WriteFile(roms / "galaga.zip", "z");
  WriteFile(source / "pacman.png", "p");
  WriteFile(source / "galaga.png", "g");
  WriteFile(source / "dkong.png", "d");
  t.ctx.settings.InfWrite("RomPath", "/start/here/");
  ImageOrganiserDialog dialog(nullptr, t.ctx);
  std::string askedStart, askedTitle;
  dialog.browseFolder = [&](const std::string& start, const std::string& title) {
    askedStart = start;
    askedTitle = title;
    return roms.Path();
  };
  Child<QCheckBox>(dialog, "Chk1")->setChecked(true);
  dialog.StartJob(0);
  EXPECT_EQ(askedStart, "/start/here/");
  EXPECT_EQ(askedTitle, "Roms folder");
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10Folder"), roms.Path());
  ASSERT_EQ(dialog.CurrentPage(), 1);
  // pacman, galaga, and both files by their full names.
  EXPECT_EQ(Child<QLabel>(dialog, "Label5")->text(),
            QStringLiteral("Only images of the 4 listed roms will be copied."));
  EXPECT_EQ(Child<QPushButton>(dialog, "Command3")->text(), QStringLiteral("&Copy"));
  EXPECT_TRUE(Child<QLineEdit>(dialog, "Text2")->isVisibleTo(&dialog));

  dialog.ChooseKind(2);
  Child<QLineEdit>(dialog, "Text1")->setText(QString::fromStdString(source.Path()));
  dialog.RunJob();  // an empty destination: nothing happens and nothing is said
  EXPECT_TRUE(t.ui.shown.empty());

  dialog.browseFolder = [&](const std::string&, const std::string& title) {
    askedTitle = title;
    return destination.Path();
  };
  Child<QPushButton>(dialog, "Command2")->click();
  EXPECT_EQ(askedTitle, "snap Images destination folder");
  EXPECT_EQ(Child<QLineEdit>(dialog, "Text2")->text().toStdString(), destination.Path());
  Child<QCheckBox>(dialog, "Chk3")->setChecked(true);
  dialog.RunJob();
  EXPECT_TRUE(Exists(destination / "pacman.png"));
  EXPECT_TRUE(Exists(destination / "galaga.png"));
  EXPECT_FALSE(Exists(destination / "dkong.png"));
  EXPECT_FALSE(Exists(source / "pacman.png"));  // moved
  EXPECT_TRUE(Exists(source / "dkong.png"));
  ASSERT_EQ(t.ui.shown.size(), 1u);

  dialog.close();
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10SourcePath2"), source.Path());
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10DestPath2"), destination.Path());
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10Chck1"), "1");
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10Chck2"), "1");  // from Chk1, whatever Chk2 says
}

TEST(ImageOrganiserDialog, CancelledRomFolderStaysOnTheFirstPage) {
  TestContext t;
  ImageOrganiserDialog dialog(nullptr, t.ctx);
  dialog.browseFolder = [](const std::string&, const std::string&) { return std::string(); };
  Child<QCheckBox>(dialog, "Chk1")->setChecked(true);
  dialog.StartJob(0);
  EXPECT_EQ(dialog.CurrentPage(), 0);
  EXPECT_TRUE(t.ui.shown.empty());
}

TEST(ImageOrganiserDialog, EmptyDatabaseSaysNoRom) {
  TestContext t;
  ImageOrganiserDialog dialog(nullptr, t.ctx);
  dialog.StartJob(0);
  EXPECT_EQ(dialog.CurrentPage(), 0);
  ASSERT_EQ(t.ui.shown.size(), 2u);
  EXPECT_EQ(t.ui.shown[0].text, "Can't continue.\r\nAucune rom dans la base de données..");
  EXPECT_EQ(t.ui.shown[1].text, "No rom available.");
  EXPECT_EQ(t.ui.shown[1].icon, Icon::Warning);
}

TEST(ImageOrganiserDialog, SecondBoxComesBackFromTheFirst) {
  TestContext t;
  t.ctx.settings.InfWrite("Frm10Chck2", "1");
  {
    ImageOrganiserDialog dialog(nullptr, t.ctx);
    EXPECT_TRUE(Child<QCheckBox>(dialog, "Chk2")->isChecked());
    EXPECT_FALSE(Child<QCheckBox>(dialog, "Chk1")->isChecked());
    dialog.move(40, 30);
    dialog.close();
  }
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10Chck2"), "");
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10Top"), "30");
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10Left"), "40");
  ImageOrganiserDialog again(nullptr, t.ctx);
  EXPECT_FALSE(Child<QCheckBox>(again, "Chk2")->isChecked());
}

}  // namespace
}  // namespace tessarin

namespace tessarin {
namespace {

// Screenshots of both pages, when TESSARIN_SHOTS names a folder.
TEST(ImageOrganiserDialogShots, BothPages) {
  const QByteArray shots = qgetenv("TESSARIN_SHOTS");
  if (shots.isEmpty()) GTEST_SKIP() << "set TESSARIN_SHOTS to a folder";
  for (int language : {Messages::kEnglish, Messages::kFrench}) {
    TestContext t;
    t.ctx.messages.LanguageNumber = language;
    t.ctx.messages.LoadMessages();
    t.ctx.store.AppendGame("pacman", "pacman;A1;0;B#Z");
    t.ctx.settings.InfWrite("TitlesPath", "/data/images/titles/");
    t.ctx.settings.InfWrite("Frm10DestPath1", "/data/frontend/titles/");
    ImageOrganiserDialog dialog(nullptr, t.ctx);
    dialog.show();
    const QString suffix =
        QStringLiteral("%1-%2x")
            .arg(language == Messages::kFrench ? QStringLiteral("fr") : QStringLiteral("en"))
            .arg(qRound(dialog.devicePixelRatioF()));
    const QString folder = QString::fromLocal8Bit(shots);
    EXPECT_TRUE(dialog.grab().save(folder + QStringLiteral("/organiser-page0-") + suffix +
                                   QStringLiteral(".png")));
    dialog.StartJob(0);
    dialog.ChooseKind(1);
    dialog.adjustSize();
    EXPECT_TRUE(dialog.grab().save(folder + QStringLiteral("/organiser-page1-") + suffix +
                                   QStringLiteral(".png")));
  }
}

}  // namespace
}  // namespace tessarin
