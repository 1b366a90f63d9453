// The translation window, offscreen: its controls and captions, its load and unload, the
// dictionary hand-off to the editor, and a real run under the working dialog.

#include "translate/translatedialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <filesystem>
#include <memory>

#include "app/context.h"
#include "core/userinterface.h"
#include "support/qtapp.h"
#include "support/testfiles.h"

namespace tessarin {
namespace {

using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;
namespace fs = std::filesystem;

class KeepingUi final : public UserInterface {
 public:
  std::vector<std::string> shown;
  void ShowMessage(bool, const std::string& text, const std::string&, Icon) override {
    shown.push_back(text);
  }
  bool AskYesNo(const std::string&, const std::string&, Icon) override { return false; }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string&) override {}
};

std::string Fixture(const std::string& name) {
  return std::string(TESSARIN_TEST_DATA) + "/translate/" + name;
}

class TranslateDialogTest : public ::testing::Test {
 protected:
  TranslateDialogTest() : ctx(tmp.Path() + "app/") {
    fs::create_directories(tmp.Path() + "app");
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
    ctx.SetUi(&ui);
  }
  template <class T>
  static T* Child(TranslateDialog& dialog, const QString& name) {
    T* widget = dialog.findChild<T*>(name);
    EXPECT_NE(widget, nullptr) << name.toStdString();
    return widget;
  }
  static QLineEdit* Box(TranslateDialog& dialog, int i) {
    return Child<QLineEdit>(dialog, QStringLiteral("Text1_") + QString::number(i));
  }
  static QCheckBox* Check(TranslateDialog& dialog, int i) {
    return Child<QCheckBox>(dialog, QStringLiteral("Chk1_") + QString::number(i));
  }
  std::string DictionaryFile() const { return ctx.AppFolder() + "TRANSLATE.DIC.txt"; }

  TempFolder tmp;
  AppContext ctx;
  KeepingUi ui;
};

TEST_F(TranslateDialogTest, ControlsCaptionsAndLoad) {
  ctx.settings.InfWrite("DataFile12", "/d/catlist.ini");
  ctx.settings.InfWrite("DataFile8", "/d/multiplayer.ini");
  ctx.settings.InfWrite("DataFile2", "/d/history.dat");
  ctx.settings.InfWrite("Frm8DataFile6", "1");
  ctx.settings.InfWrite("Frm8DataFile2", "");
  TranslateDialog dialog(nullptr, ctx);
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form8"));
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Translation"));
  EXPECT_EQ(Child<QPushButton>(dialog, QStringLiteral("Command2"))->text(),
            QStringLiteral("&Edit dictionaries"));
  EXPECT_EQ(Child<QPushButton>(dialog, QStringLiteral("Command3"))->text(),
            QStringLiteral("&Translation"));
  EXPECT_EQ(Child<QPushButton>(dialog, QStringLiteral("Command4"))->text(),
            QStringLiteral("&Close"));
  for (int i = 0; i < kTranslationFileCount; ++i) {
    EXPECT_EQ(Child<QPushButton>(dialog, QStringLiteral("Command1_") + QString::number(i))->text(),
              QStringLiteral("..."));
    EXPECT_EQ(Child<QLabel>(dialog, QStringLiteral("Chk1Txt_") + QString::number(i))->text(),
              QString::fromStdString(std::string(TranslationFileLabel(i))));
  }
  EXPECT_EQ(Box(dialog, 0)->text(), QStringLiteral("/d/catlist.ini"));
  EXPECT_EQ(Box(dialog, 4)->text(), QStringLiteral("/d/multiplayer.ini"));
  EXPECT_EQ(Box(dialog, 5)->text(), QString());
  EXPECT_EQ(Box(dialog, 6)->text(), QStringLiteral("/d/history.dat"));
  EXPECT_EQ(Box(dialog, 7)->text(), QString());
  EXPECT_TRUE(Check(dialog, 6)->isChecked());
  EXPECT_FALSE(Check(dialog, 2)->isChecked());
  EXPECT_FALSE(Check(dialog, 0)->isChecked());

  // A click on a label ticks its box, and the tag follows.
  QLabel* label = Child<QLabel>(dialog, QStringLiteral("Chk1Txt_1"));
  QMouseEvent release(QEvent::MouseButtonRelease, QPointF(2, 2), label->mapToGlobal(QPointF(2, 2)),
                      Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(label, &release);
  EXPECT_TRUE(Check(dialog, 1)->isChecked());
  EXPECT_EQ(Check(dialog, 1)->property("Tag").toString(), QStringLiteral("1"));

  dialog.show();
  dialog.close();
  EXPECT_EQ(ctx.settings.InfRead("Frm8DataFile1"), "1");
  EXPECT_EQ(ctx.settings.InfRead("Frm8DataFile6"), "1");
  EXPECT_EQ(ctx.settings.InfRead("Frm8DataFile0"), "");
  EXPECT_NE(ctx.settings.InfRead("Frm8Top"), "-1");
  EXPECT_NE(ctx.settings.InfRead("Frm8Left"), "-1");
  // The paths are the settings' own: closing doesn't write them.
  EXPECT_EQ(ctx.settings.InfRead("DataFile3"), "-1");
}

TEST_F(TranslateDialogTest, FrenchCaptions) {
  ctx.messages.LanguageNumber = Messages::kFrench;
  ctx.messages.LoadMessages();
  TranslateDialog dialog(nullptr, ctx);
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Traduction"));
  EXPECT_EQ(Child<QPushButton>(dialog, QStringLiteral("Command2"))->text(),
            QStringLiteral("&Modifier les dictionnaires"));
  EXPECT_EQ(Child<QPushButton>(dialog, QStringLiteral("Command4"))->text(),
            QStringLiteral("&Fermer"));
}

TEST_F(TranslateDialogTest, EditDictionariesMakesTheFileOnceThenHandsItToTheEditor) {
  std::vector<std::string> opened;
  TranslateDialog dialog(nullptr, ctx);
  dialog.OpenEditor = [&](const std::string& path) {
    opened.push_back(path);
    return true;
  };
  Box(dialog, 0)->setText(QString::fromStdString(Fixture("catlist.ini")));
  Box(dialog, 5)->setText(QString::fromStdString(Fixture("nplayers.ini")));
  dialog.EditDictionaries();
  // The boxes went to the settings first, and the dictionary holds their words.
  EXPECT_EQ(ctx.settings.InfRead("DataFile12"), Fixture("catlist.ini"));
  EXPECT_EQ(ctx.settings.InfRead("DataFile8"), Fixture("nplayers.ini"));
  const std::string made = ReadFile(DictionaryFile());
  EXPECT_NE(made.find("[WIZ]\r\n; Traduction des fichiers Catlist.ini, Genre.ini, Catver.ini et "
                      "Wizsort.ini\r\nFighter = \r\nPuzzle = \r\nShooter / Flying = \r\n\r\n"),
            std::string::npos)
      << made;
  EXPECT_EQ(opened, (std::vector<std::string>{DictionaryFile()}));
  EXPECT_TRUE(ui.shown.empty());
  EXPECT_TRUE(dialog.isEnabled());

  // Once there, it is only opened: the user's work is never replaced.
  WriteFile(DictionaryFile(), "[HISTORY]\r\nmine = moi\r\n");
  dialog.EditDictionaries();
  EXPECT_EQ(ReadFile(DictionaryFile()), "[HISTORY]\r\nmine = moi\r\n");
  EXPECT_EQ(opened.size(), 2u);
}

TEST_F(TranslateDialogTest, WithoutAnEditorTheMessageNamesTheFile) {
  WriteFile(DictionaryFile(), "[HISTORY]\r\n");
  TranslateDialog dialog(nullptr, ctx);
  dialog.OpenEditor = [](const std::string&) { return false; };
  dialog.EditDictionaries();
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_NE(ui.shown[0].find(DictionaryFile()), std::string::npos) << ui.shown[0];
}

TEST_F(TranslateDialogTest, TranslationRunsOverTheTickedFilesAndSaysDone) {
  const std::string history = tmp / "History.dat";
  const std::string mameinfo = tmp / "Mameinfo.dat";
  fs::copy_file(Fixture("history.dat"), history);
  fs::copy_file(Fixture("mameinfo.dat"), mameinfo);
  WriteFile(DictionaryFile(),
            "[HISTORY]\r\nSound Board : = Carte Son :\r\nBoard = Carte\r\n"
            "[MAMEINFO]\r\nSound Board : = Carte Son :\r\n");
  TranslateDialog dialog(nullptr, ctx);
  // Nothing ticked: nothing happens, not even a message.
  dialog.TranslateTicked();
  EXPECT_TRUE(ui.shown.empty());

  Box(dialog, 6)->setText(QString::fromStdString(history));
  Box(dialog, 7)->setText(QString::fromStdString(mameinfo));
  Check(dialog, 6)->setChecked(true);
  dialog.TranslateTicked();
  const std::string translated = ReadFile(history);
  EXPECT_NE(translated.find("Main Carte : Z80, Carte Son : YM2151.\r\n"), std::string::npos)
      << translated;
  EXPECT_EQ(ReadFile(tmp / "History.ORIGINAL.dat"), ReadFile(Fixture("history.dat")));
  // Mameinfo wasn't ticked.
  EXPECT_EQ(ReadFile(mameinfo), ReadFile(Fixture("mameinfo.dat")));
  EXPECT_EQ(dialog.LastReport().results[kTranslateHistory], TranslateResult::Translated);
  EXPECT_EQ(ui.shown, (std::vector<std::string>{""}));
  EXPECT_TRUE(dialog.isEnabled());
  EXPECT_TRUE(Child<QPushButton>(dialog, QStringLiteral("Command3"))->isEnabled());
}

// Pictures of the window for a person to look at: written only when TESSARIN_SHOTS names a
// folder.
TEST_F(TranslateDialogTest, Screenshots) {
  const QString folder = qEnvironmentVariable("TESSARIN_SHOTS");
  if (folder.isEmpty()) GTEST_SKIP() << "TESSARIN_SHOTS not set";
  QDir().mkpath(folder);
  ctx.settings.InfWrite("DataFile12", "/home/user/mame/catlist.ini");
  ctx.settings.InfWrite("DataFile14", "/home/user/mame/genre.ini");
  ctx.settings.InfWrite("DataFile13", "/home/user/mame/catver.ini");
  ctx.settings.InfWrite("DataFile8", "/home/user/mame/nplayers.ini");
  ctx.settings.InfWrite("DataFile2", "/home/user/mame/history.dat");
  ctx.settings.InfWrite("Frm8DataFile6", "1");
  for (const int language : {Messages::kEnglish, Messages::kFrench}) {
    ctx.messages.LanguageNumber = language;
    ctx.messages.LoadMessages();
    TranslateDialog dialog(nullptr, ctx);
    dialog.show();
    QApplication::processEvents();
    const QString name = language == Messages::kEnglish ? QStringLiteral("/translate-en.png")
                                                        : QStringLiteral("/translate-fr.png");
    EXPECT_TRUE(dialog.grab().save(folder + name));
    dialog.close();
  }
}

}  // namespace
}  // namespace tessarin
