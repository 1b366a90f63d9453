// The zip tools window, offscreen: its controls, its load and unload, and a real zip-all and
// unzip-all run under the working dialog.

#include "archive/ziptoolsdialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <memory>

#include "app/context.h"
#include "archive/zipworkerinstall.h"
#include "core/userinterface.h"
#include "support/qtapp.h"
#include "ziptestutil.h"

namespace tessarin {
namespace {

using testing::ListTree;
using testing::Quote;
using testing::Shell;
using testing::TempFolder;
using testing::WriteAll;
namespace fs = std::filesystem;

class CountingUi final : public UserInterface {
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

class ZipToolsDialogTest : public ::testing::Test {
 protected:
  ZipToolsDialogTest() : tmp("ziptools-ui"), ctx(tmp.Text() + "app/") {
    fs::create_directories(tmp.Path() / "app");
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
    ctx.SetUi(&ui);
  }
  template <class T>
  T* Child(ZipToolsDialog& dialog, const char* name) {
    T* widget = dialog.findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }

  TempFolder tmp;
  AppContext ctx;
  CountingUi ui;
};

TEST_F(ZipToolsDialogTest, ControlsCaptionsAndLoad) {
  ctx.settings.InfWrite("Frm9Source", tmp.Text() + "roms/");
  ctx.settings.InfWrite("Frm9Effacer", std::string_view("1"));
  ZipToolsDialog owned(nullptr, ctx);
  ZipToolsDialog* dialog = &owned;
  EXPECT_EQ(dialog->objectName(), QStringLiteral("Form9"));
  EXPECT_EQ(Child<QLabel>(*dialog, "Label2")->text(), QStringLiteral("Source path :"));
  EXPECT_EQ(Child<QLabel>(*dialog, "Label3")->text(), QStringLiteral("Destination path :"));
  EXPECT_EQ(Child<QLabel>(*dialog, "Chk1Txt")->text(), QStringLiteral("Delete when done"));
  EXPECT_EQ(Child<QPushButton>(*dialog, "Command1")->text(), QStringLiteral("&Zip all"));
  EXPECT_EQ(Child<QPushButton>(*dialog, "Command2")->text(), QStringLiteral("&Unzip all"));
  EXPECT_EQ(Child<QPushButton>(*dialog, "Command3")->text(), QStringLiteral("&Close"));
  EXPECT_NE(Child<QPushButton>(*dialog, "Command4"), nullptr);
  EXPECT_NE(Child<QPushButton>(*dialog, "Command5"), nullptr);
  EXPECT_EQ(Child<QLineEdit>(*dialog, "Text1")->text(),
            QString::fromStdString(tmp.Text() + "roms/"));
  EXPECT_EQ(Child<QLineEdit>(*dialog, "Text2")->text(), QString());
  EXPECT_TRUE(Child<QCheckBox>(*dialog, "Chk1")->isChecked());
  // The load put the worker into the application folder, so zipping is possible.
  EXPECT_FALSE(FindZipWorker(ctx.AppFolder()).empty());
  EXPECT_TRUE(Child<QPushButton>(*dialog, "Command1")->isEnabled());

  // Closing writes the keys.
  Child<QLineEdit>(*dialog, "Text2")->setText(QStringLiteral("/somewhere/"));
  Child<QCheckBox>(*dialog, "Chk1")->setChecked(false);
  dialog->show();
  dialog->close();
  EXPECT_EQ(ctx.settings.InfRead("Frm9Destination"), "/somewhere/");
  EXPECT_EQ(ctx.settings.InfRead("Frm9Effacer"), "-1");
  EXPECT_NE(ctx.settings.InfRead("Frm9Top"), "-1");
  EXPECT_NE(ctx.settings.InfRead("Frm9Left"), "-1");
}

// Escape ends the window too, and its settings are written once, as a close writes them.
TEST_F(ZipToolsDialogTest, EscapeWritesTheSettingsOnce) {
  ZipToolsDialog dialog(nullptr, ctx);
  dialog.show();
  Child<QLineEdit>(dialog, "Text2")->setText(QStringLiteral("/by/escape/"));
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(&dialog, &escape);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(ctx.settings.InfRead("Frm9Destination"), "/by/escape/");
  // A later change and close don't write again: the window has gone already.
  ctx.settings.InfWrite("Frm9Destination", std::string_view("kept"));
  dialog.close();
  EXPECT_EQ(ctx.settings.InfRead("Frm9Destination"), "kept");
}

TEST_F(ZipToolsDialogTest, PathBoxesTakeTheWindowsWidth) {
  ctx.settings.InfWrite("Frm9Source", "/home/someone/mame/roms/with/a/rather/long/path/");
  ZipToolsDialog dialog(nullptr, ctx);
  dialog.show();
  QApplication::processEvents();
  auto* source = Child<QLineEdit>(dialog, "Text1");
  auto* destination = Child<QLineEdit>(dialog, "Text2");
  auto* browse = Child<QPushButton>(dialog, "Command4");
  // The box and its small browse button fill the width of the window's contents.
  const int contents = dialog.contentsRect().width() - dialog.layout()->contentsMargins().left() -
                       dialog.layout()->contentsMargins().right();
  EXPECT_GE(source->width() + browse->width() + dialog.layout()->spacing() * 2, contents - 2);
  EXPECT_GE(source->width(), source->fontMetrics().averageCharWidth() * 50);
  EXPECT_EQ(destination->width(), source->width());
  EXPECT_LT(browse->width(), source->width() / 4);
  // And they grow with it.
  const int before = source->width();
  dialog.resize(dialog.width() + 200, dialog.height());
  QApplication::processEvents();
  EXPECT_GE(source->width(), before + 190);
  const QString shots = qEnvironmentVariable("TESSARIN_SHOTS");
  if (!shots.isEmpty()) {
    QDir().mkpath(shots);
    dialog.grab().save(shots + QStringLiteral("/ziptools.png"));
  }
}

TEST_F(ZipToolsDialogTest, ZipAllThenUnzipAll) {
  WriteAll(tmp.Path() / "roms/pacman/pacman.6e", std::string(3000, 'p'));
  WriteAll(tmp.Path() / "roms/galaga/gg1.bin", "galaga");
  fs::create_directories(tmp.Path() / "zips");
  fs::create_directories(tmp.Path() / "back");
  ZipToolsDialog dialog(nullptr, ctx);
  Child<QCheckBox>(dialog, "Chk1")->setChecked(false);
  Child<QLineEdit>(dialog, "Text1")->setText(QString::fromStdString(tmp.Text() + "roms"));
  Child<QLineEdit>(dialog, "Text2")->setText(QString::fromStdString(tmp.Text() + "zips"));
  dialog.ZipAll();
  EXPECT_EQ(ListTree(tmp.Path() / "zips"), (std::vector<std::string>{"galaga.zip", "pacman.zip"}));
  EXPECT_EQ(Shell("unzip -tqq " + Quote(tmp.Text() + "zips/pacman.zip") + " > /dev/null"), 0);
  EXPECT_EQ(Child<QLineEdit>(dialog, "Text1")->text(),
            QString::fromStdString(tmp.Text() + "roms/"));
  EXPECT_EQ(ui.shown, (std::vector<std::string>{""}));

  Child<QLineEdit>(dialog, "Text1")->setText(QString::fromStdString(tmp.Text() + "zips"));
  Child<QLineEdit>(dialog, "Text2")->setText(QString::fromStdString(tmp.Text() + "back"));
  dialog.UnzipAll();
  EXPECT_EQ(ListTree(tmp.Path() / "back"),
            (std::vector<std::string>{"galaga/gg1.bin", "pacman/pacman.6e"}));
  EXPECT_EQ(dialog.UnzipError(), "");
  EXPECT_TRUE(dialog.isEnabled());
}

}  // namespace
}  // namespace tessarin
