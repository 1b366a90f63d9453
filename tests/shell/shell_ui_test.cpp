// The windows, driven offscreen by their object names: start-up with its first-start dialogs,
// the frame and the panel, the working dialog, the priority and options dialogs, and the
// single-instance rule of the real program.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>

#include "core/fileservices.h"
#include "core/guard.h"
#include "core/work.h"
#include "shell/aboutdialog.h"
#include "shell/desktopshellui.h"
#include "shell/mainframe.h"
#include "shell/mainpanel.h"
#include "shell/optionsdialog.h"
#include "shell/pathwizarddialog.h"
#include "shell/prioritydialog.h"
#include "shell/startup.h"
#include "shell_test_support.h"
#include "store/indexfile.h"
#include "support/routeserver.h"
#include "support/zipmaker.h"
#include "widgets/desktopui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {
namespace {

using shelltest::ReadFile;
using shelltest::TempFolder;
using shelltest::WriteFile;

// Answers modal windows as they come up: `handler` gets each new active modal window and acts
// on it (clicks a button...). Stops when destroyed.
class ModalDriver final {
 public:
  explicit ModalDriver(std::function<void(QWidget*)> handler) : m_handler(std::move(handler)) {
    m_timer.setInterval(20);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
      QWidget* modal = QApplication::activeModalWidget();
      if (!modal || modal == m_last) return;
      m_last = modal;
      // Acts outside the timer's slot: a window that the handler opens in turn (a message from
      // a button) then gets its own turn, since a timer never fires inside its own slot.
      QPointer<QWidget> target = modal;
      QTimer::singleShot(0, &m_timer, [this, target] {
        if (target) m_handler(target);
        // A question the test doesn't answer gets the careful answer, as the quiet front end
        // gives it (the first start's data update check asks one).
        if (auto* box = qobject_cast<QMessageBox*>(target.data());
            box && box->isVisible() && box->objectName() == QStringLiteral("YesNoBox")) {
          box->button(QMessageBox::No)->click();
        }
        m_last = nullptr;
      });
    });
    m_timer.start();
  }

 private:
  std::function<void(QWidget*)> m_handler;
  QTimer m_timer;
  QPointer<QWidget> m_last;
};

template <class T>
T* Child(QWidget* parent, const char* name) {
  T* child = parent->findChild<T*>(QString::fromLatin1(name));
  EXPECT_NE(child, nullptr) << name;
  return child;
}

void Click(QWidget* parent, const char* name) {
  if (auto* button = Child<QPushButton>(parent, name)) button->click();
}

bool WaitFor(const std::function<bool()>& done, int ms = 5000) {
  QElapsedTimer timer;
  timer.start();
  while (!done() && timer.elapsed() < ms) QTest::qWait(10);
  return done();
}

// Saves a picture of a window when TESSARIN_SHOTS names a folder (for looking at the layout).
void Shot(QWidget* widget, const QString& name) {
  const QString folder = qEnvironmentVariable("TESSARIN_SHOTS");
  if (folder.isEmpty() || !widget) return;
  QDir().mkpath(folder);
  widget->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

// One desktop run in a temporary application folder.
struct DesktopRun {
  TempFolder folder;
  AppContext ctx{folder.Path()};
  std::vector<std::string> opened;
  // Documents are noted instead of opened in a viewer.
  QtUserInterface ui{ctx, [this](const std::string& path) {
                       opened.push_back(path);
                       return true;
                     }};
  ShellSession session;
  UrlTables sites;
  std::unique_ptr<MainFrame> frame;

  DesktopRun() { ctx.SetUi(&ui); }
  ~DesktopRun() {
    if (frame) frame->close();
    frame.reset();
    ctx.SetUi(nullptr);
  }
  std::string Path(std::string_view name) const { return folder / name; }
  void Start() {
    frame = StartDesktop(ctx, session, ui, sites);
    ASSERT_NE(frame, nullptr);
    QTest::qWait(50);
  }
  std::string StoredKey(const char* key) {
    Settings reread(ctx.settings.FilePath(), ctx.log);
    reread.InfLoad();
    return reread.InfRead(key);
  }
};

TEST(DesktopStart, FirstStartAsksTheLanguageThenThePaths) {
  DesktopRun run;
  std::vector<QString> seen;
  ModalDriver driver([&](QWidget* modal) {
    seen.push_back(modal->objectName());
    if (modal->objectName() == QStringLiteral("Form2")) {
      auto* combo = Child<QComboBox>(modal, "Combo1");
      ASSERT_GE(combo->findText(QStringLiteral("Other...")), 0);
      combo->setCurrentText(QStringLiteral("Fran\u00e7ais"));
      Click(modal, "Command1");
    } else if (modal->objectName() == QStringLiteral("Form4")) {
      auto* label = Child<QLabel>(modal, "Label1");
      // The wizard speaks the language just chosen.
      EXPECT_EQ(label->text(), MessageText(Messages::FrenchTable()[67]));
      Click(modal, "Command1");
      auto* text = Child<QLineEdit>(modal, "Text1");
      text->setText(QStringLiteral("/opt/arcade/mame"));
      Click(modal, "Command1");
      EXPECT_EQ(text->text(), QStringLiteral("/opt/arcade/roms/"));
      Click(modal, "Command2");
    } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      // The first start offers the data update check, in the language just chosen.
      EXPECT_EQ(box->text(), MessageText(Messages::FrenchTable()[386]));
      box->button(QMessageBox::No)->click();
    }
  });
  run.Start();
  ASSERT_EQ(seen.size(), 3u);
  EXPECT_EQ(seen[0], QStringLiteral("Form2"));
  EXPECT_EQ(seen[1], QStringLiteral("Form4"));
  EXPECT_EQ(seen[2], QStringLiteral("YesNoBox"));
  EXPECT_TRUE(run.ctx.FirstRun);
  EXPECT_EQ(run.ctx.messages.LanguageNumber, Messages::kFrench);
  EXPECT_EQ(run.StoredKey("MDIState"), "2");
  EXPECT_EQ(run.StoredKey("DataFile1"), "/opt/arcade/mame");
  EXPECT_EQ(run.StoredKey("RomPath"), "-1");
  EXPECT_TRUE(run.frame->isMaximized());
  EXPECT_EQ(run.frame->windowTitle(), QStringLiteral("Tessarin ") + ToQt(AppVersion()));
  const std::string temp = run.ctx.TempFolder;
  EXPECT_TRUE(QFileInfo::exists(ToQt(temp)));
  run.frame->close();
  EXPECT_EQ(run.StoredKey("Language"), "0");
  EXPECT_EQ(run.StoredKey("MDIState"), "2");
  EXPECT_FALSE(QFileInfo::exists(ToQt(temp)));
}

TEST(DesktopStart, WizardClosedAtOnceLeavesNoPathsYetTheProgramRuns) {
  DesktopRun run;
  ModalDriver driver([&](QWidget* modal) {
    if (modal->objectName() == QStringLiteral("Form2")) Click(modal, "Command1");
    if (modal->objectName() == QStringLiteral("Form4")) Click(modal, "Command2");
    if (auto* box = qobject_cast<QMessageBox*>(modal)) box->button(QMessageBox::No)->click();
  });
  run.Start();
  for (const char* key : {"DataFile1", "RomPath", "TitlesPath", "FlyersPath"}) {
    EXPECT_EQ(run.StoredKey(key), "-1") << key;
  }
  ASSERT_NE(run.frame->Panel(), nullptr);
  EXPECT_TRUE(run.frame->isVisible());
  // On a first start the panel is centred whatever was stored.
  EXPECT_GT(run.frame->PanelWindow()->pos().x(), 0);
}

TEST(DesktopStart, DataUpdateCheckOnFirstStartOrWhenAsked) {
  struct Case {
    const char* settings;
    bool firstRun;
    int calls;
    bool automatic;
  };
  const Case cases[] = {{"ChckDataUpdate=1\r\n", false, 1, true},
                        {"ChckDataUpdate=0\r\n", true, 1, false},
                        {"ChckDataUpdate=0\r\n", false, 0, false},
                        {"MDIState=0\r\n", false, 0, false}};
  for (const Case& c : cases) {
    TempFolder folder;
    AppContext ctx(folder.Path());
    WriteFile(folder / "Tessarin.inf", c.settings);
    ctx.settings.InfLoad();
    ctx.messages.LoadMessages();
    ctx.FirstRun = c.firstRun;
    ShellSession session;
    UrlTables tables;
    MainFrame frame(ctx, session, SiteAccess(ctx, tables));
    int calls = 0;
    bool automatic = false;
    frame.DataUpdateCheck = [&](bool isAutomatic) {
      ++calls;
      automatic = isAutomatic;
    };
    frame.Load();
    EXPECT_EQ(calls, c.calls) << c.settings << c.firstRun;
    EXPECT_EQ(automatic, c.automatic) << c.settings << c.firstRun;
    frame.close();
  }
}

TEST(DesktopStart, OtherLanguageWritesTheTemplateAndTheRunGoesOnInEnglish) {
  DesktopRun run;
  WriteFile(run.Path("Deutsch.lng"), "=Spieldatenbank\r\n");
  std::vector<QString> seen;
  ModalDriver driver([&](QWidget* modal) {
    seen.push_back(modal->objectName());
    if (modal->objectName() == QStringLiteral("Form2")) {
      auto* combo = Child<QComboBox>(modal, "Combo1");
      ASSERT_EQ(combo->count(), 4);
      EXPECT_EQ(combo->itemText(2), QStringLiteral("Deutsch"));
      Shot(modal, QStringLiteral("chooser"));
      combo->setCurrentText(QStringLiteral("Other..."));
      Click(modal, "Command1");
    } else if (modal->objectName() == QStringLiteral("Form11")) {
      EXPECT_NE(Child<QLabel>(modal, "Label1")->text().indexOf(QLatin1Char('\n')), -1);
      Click(modal, "Command1");
    } else if (modal->objectName() == QStringLiteral("Form4")) {
      EXPECT_EQ(Child<QPushButton>(modal, "Command1")->text(), QStringLiteral("&Continue"));
      Click(modal, "Command2");
    }
  });
  run.Start();
  ASSERT_EQ(seen.size(), 4u);
  EXPECT_EQ(seen[1], QStringLiteral("Form11"));
  EXPECT_EQ(seen[3], QStringLiteral("YesNoBox"));  // the first start's data update check
  EXPECT_EQ(run.ctx.messages.LanguageNumber, Messages::kEnglish);
  EXPECT_TRUE(QFileInfo::exists(ToQt(FindFileNoCase(run.ctx.AppFolder(), "language.lng"))));
}

TEST(DesktopStart, NormalStartShowsFramePanelAndMenuCaptions) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\nMDILeft=0\r\nMDITop=0\r\n");
  run.ctx.store.DatabaseVersion = "0.251 (mame0251)";
  int modals = 0;
  ModalDriver driver([&](QWidget*) { ++modals; });
  run.Start();
  EXPECT_EQ(modals, 0);
  EXPECT_FALSE(run.ctx.FirstRun);
  EXPECT_FALSE(run.frame->isMaximized());
  // A stored 0 is a place for the frame.
  EXPECT_EQ(run.frame->pos(), QPoint(0, 0));
  MainPanel* panel = run.frame->Panel();
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(Child<QLabel>(panel, "Title_0")->text(), QStringLiteral("Search database"));
  EXPECT_EQ(Child<QLabel>(panel, "Subtitle_1")->text(),
            QStringLiteral("Create or update the database"));
  EXPECT_EQ(Child<QLabel>(panel, "Title_5")->text(), QStringLiteral("Zip & Unzip"));
  EXPECT_EQ(Child<QLabel>(panel, "Label1")->text(),
            QStringLiteral("Source database : 0.251 (mame0251)"));
  // Every entry has its dialog.
  for (int i : {0, 1, 2, 3, 4, 5, 6, 7, 8}) {
    EXPECT_TRUE(Child<QWidget>(panel, QStringLiteral("Entry_%1").arg(i).toLatin1())->isEnabled())
        << i;
  }
  auto* quit = run.frame->findChild<QAction*>(QStringLiteral("MnuQuitter"));
  ASSERT_NE(quit, nullptr);
  EXPECT_EQ(quit->text(), QStringLiteral("&Quit"));
  auto* find = run.frame->findChild<QAction*>(QStringLiteral("MnuRecherche"));
  ASSERT_NE(find, nullptr);
  EXPECT_TRUE(find->isEnabled());
  Shot(run.frame.get(), QStringLiteral("panel_en"));
}

TEST(DesktopStart, ExistingDatabaseIsLoadedAndNamedOnThePanel) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  {
    GameStore store;
    store.DatabaseVersion = "0.261 (mame0261)";
    std::string record = NewXmlRecord("pacman", 0);
    FieldSet(record, "#Z", "Pac-Man");
    store.AppendGame("pacman", record);
    store.SetEndRecord(NewXmlRecord(std::string(EndRecordName), 100));
    std::filesystem::create_directories(run.Path("DataFiles"));
    ASSERT_TRUE(SaveIndex(store, run.ctx.log, nullptr, IndexFilePath(run.ctx.AppFolder())));
  }
  run.Start();
  EXPECT_EQ(run.ctx.store.GameCount(), 1);
  EXPECT_EQ(Child<QLabel>(run.frame->Panel(), "Label1")->text(),
            QStringLiteral("Source database : 0.261 (mame0261)"));
  // The site list was read at start (and written, since there was none).
  EXPECT_TRUE(QFileInfo::exists(ToQt(run.Path("Tessarin.url.inf"))));
  EXPECT_GE(run.sites.SearchEngineCount(), 2);
}

TEST(DesktopStart, HelpAndThanksMenusOpenTheirPages) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  run.frame->findChild<QAction*>(QStringLiteral("MnuHelp"))->trigger();
  run.frame->findChild<QAction*>(QStringLiteral("MnuTx3"))->trigger();
  ASSERT_EQ(run.opened.size(), 2u);
  EXPECT_EQ(run.opened[0], run.Path("HTML/help.htm"));
  EXPECT_EQ(run.opened[1], "http://www.mamedev.org");
  EXPECT_FALSE(run.frame->findChild<QAction*>(QStringLiteral("MnuThx"))->isEnabled());
  // The panel's quit entry closes the frame, which stores its place.
  run.frame->RunEntry(8);
  EXPECT_FALSE(run.frame->isVisible());
  EXPECT_EQ(run.StoredKey("MDIState"), "0");
  EXPECT_NE(run.StoredKey("MDILeft"), "-1");
}

TEST(DesktopStart, AFrameDestroyedWithADialogOpenDoesntBringThePanelBack) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  run.frame->RegisterPanelDialog(1, [](MainFrame& frame) {
    auto* dialog = new QDialog(&frame);
    dialog->setObjectName(QStringLiteral("Form3"));
    return dialog;
  });
  QTest::mouseClick(Child<QLabel>(run.frame->Panel(), "Title_1"), Qt::LeftButton);
  QPointer<QDialog> dialog;
  ASSERT_TRUE(WaitFor([&] {
    dialog = run.frame->findChild<QDialog*>(QStringLiteral("Form3"));
    return dialog != nullptr;
  }));
  ASSERT_EQ(run.frame->Panel(), nullptr);
  // The frame goes without a close (as at the end of a run that is being torn down): its
  // dialog goes with it, and its "destroyed" signal reaches no part of the gone frame: no
  // panel is made again for it.
  run.frame.reset();
  EXPECT_TRUE(dialog.isNull());
  for (QWidget* top : QApplication::allWidgets()) {
    EXPECT_EQ(qobject_cast<MainPanel*>(top), nullptr);
  }
}

TEST(DesktopStart, RegisteredDialogEnablesItsEntryAndBringsThePanelBack) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  run.frame->RegisterPanelDialog(1, [](MainFrame& frame) {
    auto* dialog = new QDialog(&frame);
    dialog->setObjectName(QStringLiteral("Form3"));
    return dialog;
  });
  MainPanel* panel = run.frame->Panel();
  ASSERT_NE(panel, nullptr);
  EXPECT_TRUE(Child<QWidget>(panel, "Entry_1")->isEnabled());
  QTest::mouseClick(Child<QLabel>(panel, "Title_1"), Qt::LeftButton);
  ASSERT_TRUE(WaitFor([&] { return run.frame->findChild<QDialog*>(QStringLiteral("Form3")); }));
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() == nullptr; }));
  run.frame->findChild<QDialog*>(QStringLiteral("Form3"))->close();
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() != nullptr; }));
}

TEST(DesktopStart, ZipEntryOpensTheZipToolsAndItsCloseBringsThePanelBack) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  run.frame->RunEntry(5);
  ASSERT_TRUE(WaitFor([&] { return run.frame->findChild<QDialog*>(QStringLiteral("Form9")); }));
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() == nullptr; }));
  run.frame->findChild<QDialog*>(QStringLiteral("Form9"))->close();
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() != nullptr; }));
}

TEST(DesktopStart, TranslationEntryOpensItsWindowAndItsCloseBringsThePanelBack) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  run.frame->RunEntry(4);
  ASSERT_TRUE(WaitFor([&] { return run.frame->findChild<QDialog*>(QStringLiteral("Form8")); }));
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() == nullptr; }));
  run.frame->findChild<QDialog*>(QStringLiteral("Form8"))->close();
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() != nullptr; }));
}

TEST(DesktopStart, MenuAndPanelShareOneSearchDialogThatTheCloseLetsGo) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  int made = 0;
  const DialogFactory search = [&made](MainFrame& frame) {
    ++made;
    auto* dialog = new QDialog(&frame);
    dialog->setObjectName(QStringLiteral("Form6"));
    return dialog;
  };
  run.frame->RegisterPanelDialog(0, search);
  run.frame->RegisterMenuDialog(QStringLiteral("MnuRecherche"), search);
  auto* find = run.frame->findChild<QAction*>(QStringLiteral("MnuRecherche"));
  ASSERT_NE(find, nullptr);
  EXPECT_TRUE(find->isEnabled());
  find->trigger();
  EXPECT_EQ(made, 1);
  find->trigger();
  run.frame->RunEntry(0);
  EXPECT_EQ(made, 1);
  QPointer<QDialog> dialog = run.frame->findChild<QDialog*>(QStringLiteral("Form6"));
  ASSERT_NE(dialog, nullptr);
  EXPECT_FALSE(run.ctx.SearchMayClose);
  run.frame->CloseSearchDialog();
  EXPECT_TRUE(run.ctx.SearchMayClose);
  EXPECT_TRUE(WaitFor([&] { return dialog.isNull(); }));
}

TEST(DesktopStart, PanelPositionZeroIsCentredButAPositiveOneIsKept) {
  {
    DesktopRun run;
    WriteFile(run.Path("Tessarin.inf"),
              "Language=1\r\nMDIState=0\r\nForm1Top=0\r\nForm1Left=0\r\n");
    run.Start();
    const QPoint place = run.frame->PanelWindow()->pos();
    EXPECT_NE(place, QPoint(0, 0));
    EXPECT_GT(place.x(), 0);
  }
  {
    DesktopRun run;
    WriteFile(run.Path("Tessarin.inf"),
              "Language=1\r\nMDIState=0\r\nForm1Top=12\r\nForm1Left=15\r\n");
    run.Start();
    EXPECT_EQ(run.frame->PanelWindow()->pos(), QPoint(15, 12));
    run.frame->PanelWindow()->move(20, 25);
    run.frame->close();
    EXPECT_EQ(run.StoredKey("Form1Top"), "25");
    EXPECT_EQ(run.StoredKey("Form1Left"), "20");
  }
}

TEST(DesktopStart, FramePositionOffEveryScreenIsIgnored) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"),
            "Language=1\r\nMDIState=0\r\nMDILeft=9000\r\nMDITop=9000\r\n");
  run.Start();
  EXPECT_LT(run.frame->pos().x(), 9000);
  EXPECT_LT(run.frame->pos().y(), 9000);
}

TEST(DesktopStart, FrameMinusOneIsCentred) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\nMDILeft=-1\r\nMDITop=-1\r\n");
  run.Start();
  EXPECT_NE(run.frame->pos(), QPoint(0, 0));
}

TEST(Panel, KeyboardRules) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  MainPanel* panel = run.frame->Panel();
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(panel->CurrentEntry(), -1);
  QTest::keyClick(panel, Qt::Key_Return);
  EXPECT_EQ(panel->CurrentEntry(), 0);
  QTest::qWait(20);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  const QColor windowColour = panel->palette().color(QPalette::Window);
  const QColor buttonText = panel->palette().color(QPalette::ButtonText);
  EXPECT_EQ(
      Child<QLabel>(panel, "Title_0")->palette().color(QPalette::Active, QPalette::WindowText),
      windowColour);
  QTest::keyClick(panel, Qt::Key_Up);
  EXPECT_EQ(panel->CurrentEntry(), 8);
  EXPECT_EQ(
      Child<QLabel>(panel, "Title_0")->palette().color(QPalette::Active, QPalette::WindowText),
      buttonText);
  EXPECT_EQ(
      Child<QLabel>(panel, "Title_8")->palette().color(QPalette::Active, QPalette::WindowText),
      windowColour);
  QTest::keyClick(panel, Qt::Key_Down);
  EXPECT_EQ(panel->CurrentEntry(), 0);
  for (int i = 0; i < 7; ++i) QTest::keyClick(panel, Qt::Key_Down);
  EXPECT_EQ(panel->CurrentEntry(), 7);
  Shot(run.frame.get(), QStringLiteral("panel_current_en"));
  QTest::keyClick(panel, Qt::Key_Return);
  ASSERT_TRUE(WaitFor([&] { return run.frame->findChild<OptionsDialog*>() != nullptr; }));
  // The panel goes while the options are open and comes back after.
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() == nullptr; }));
  Click(run.frame->findChild<OptionsDialog*>(), "Command6");
  EXPECT_TRUE(WaitFor([&] { return run.frame->Panel() != nullptr; }));
}

TEST(Panel, DownPictureWhilePressed) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  MainPanel* panel = run.frame->Panel();
  ASSERT_NE(panel, nullptr);
  auto* icon = Child<QLabel>(panel, "Image_7");
  const QImage up = icon->pixmap().toImage();
  QTest::mousePress(icon, Qt::LeftButton);
  EXPECT_TRUE(panel->ShowsDownPicture(7));
  EXPECT_NE(icon->pixmap().toImage(), up);
  QTest::mouseRelease(icon, Qt::LeftButton);
  EXPECT_FALSE(panel->ShowsDownPicture(7));
  EXPECT_EQ(icon->pixmap().toImage(), up);
  EXPECT_TRUE(WaitFor([&] { return run.frame->findChild<OptionsDialog*>() != nullptr; }));
}

TEST(Panel, NotesEntryCreatesTheFileUnderTheWorkingDialogAndOpensIt) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  std::string record = NewXmlRecord("pacman", 0);
  FieldSet(record, "#Z", "Pac-Man");
  run.ctx.store.AppendGame("pacman", record);
  run.frame->RunEntry(3);
  ASSERT_EQ(run.opened.size(), 1u);
  EXPECT_EQ(run.opened[0], run.Path("NOTES.TXT"));
  EXPECT_NE(ReadFile(run.Path("NOTES.TXT")).find("[pacman] Pac-Man\r\n\r\n"), std::string::npos);
  // A second time the file is only opened.
  run.frame->RunEntry(3);
  EXPECT_EQ(run.opened.size(), 2u);
  EXPECT_NE(run.frame->Panel(), nullptr);
}

// --- Working dialog ---

struct WorkingFixture {
  TempFolder folder;
  AppContext ctx{folder.Path()};
  shelltest::ScriptedUi ui;
  WorkingFixture() {
    ctx.SetUi(&ui);
    ctx.messages.LoadMessages();
  }
  ~WorkingFixture() { ctx.SetUi(nullptr); }
};

TEST(WorkingDialog, PercentFramesTitleAndCancelQuestion) {
  WorkingFixture f;
  std::atomic<bool> release{false};
  bool checked = false;
  QTimer::singleShot(100, [&] {
    auto* dialog = qobject_cast<WorkingDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(Child<QLabel>(dialog, "Label1")->text(), QStringLiteral("Create Notes.txt file"));
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Working..."));
    EXPECT_EQ(dialog->ProgressFrame(), 0);
    dialog->Tick();  // 0 of 10: 1 percent, frame 0
    EXPECT_EQ(dialog->ProgressFrame(), 0);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Working... -"));
    Shot(dialog, QStringLiteral("working_en"));
    f.ui.answer = false;
    Click(dialog, "Command1");
    ASSERT_EQ(f.ui.questions.size(), 1u);
    EXPECT_EQ(f.ui.questions[0], f.ctx.messages.Lng(311));
    release = true;  // the job moves on to 15 of 10
    QTest::qWait(100);
    dialog->Tick();
    EXPECT_EQ(dialog->ProgressFrame(), 20);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Working... \\"));
    dialog->Tick();
    dialog->Tick();
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Working... /"));
    EXPECT_EQ(dialog->TickCount(), 0);
    f.ui.answer = true;
    Click(dialog, "Command1");
    checked = true;
  });
  bool sawCancel = false;
  const bool completed = RunWithWorkingDialog(nullptr, f.ctx, f.ctx.messages.Lng(31), [&](Work& w) {
    w.ProgressMax = 10;
    w.ProgressValue = 0;
    while (!release) QThread::msleep(5);
    w.ProgressValue = 15;
    // A no lets the job go on; it ends only on a yes.
    while (!w.CancelRequested) QThread::msleep(5);
    sawCancel = true;
  });
  EXPECT_TRUE(checked);
  EXPECT_TRUE(sawCancel);
  EXPECT_FALSE(completed);
  EXPECT_EQ(f.ui.questions.size(), 2u);
  EXPECT_NE(f.ctx.settings.InfRead("FrmWorkTop"), "-1");
  EXPECT_NE(f.ctx.settings.InfRead("FrmWorkLeft"), "-1");
}

TEST(WorkingDialog, EscapeAsksLikeTheCancelButton) {
  WorkingFixture f;
  f.ui.answer = true;
  QTimer::singleShot(50, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    ASSERT_NE(dialog, nullptr);
    QTest::keyClick(dialog, Qt::Key_Escape);
  });
  const bool completed = RunWithWorkingDialog(nullptr, f.ctx, "x", [&](Work& w) {
    while (!w.CancelRequested) QThread::msleep(5);
  });
  EXPECT_FALSE(completed);
  EXPECT_EQ(f.ui.questions.size(), 1u);
}

TEST(WorkingDialog, UnknownMaximumShowsFrameZero) {
  WorkingFixture f;
  int frame = -1;
  QTimer::singleShot(50, [&] {
    auto* dialog = qobject_cast<WorkingDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    dialog->Tick();
    frame = dialog->ProgressFrame();
  });
  std::atomic<bool> stop{false};
  QTimer::singleShot(150, [&] { stop = true; });
  EXPECT_TRUE(RunWithWorkingDialog(nullptr, f.ctx, "x", [&](Work& w) {
    w.ProgressMax = 0;
    w.ProgressValue = 50;
    while (!stop) QThread::msleep(5);
  }));
  EXPECT_EQ(frame, 0);
}

TEST(WorkingDialog, JobAsksTheUserOnTheInterfaceThread) {
  TempFolder folder;
  AppContext ctx(folder.Path());
  ctx.messages.LoadMessages();
  QtUserInterface ui(ctx);
  ctx.SetUi(&ui);
  ModalDriver driver([](QWidget* modal) {
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      EXPECT_EQ(box->text(), QStringLiteral("first line\nsecond line"));
      box->button(QMessageBox::Yes)->click();
    }
  });
  bool answer = false;
  EXPECT_TRUE(RunWithWorkingDialog(nullptr, ctx, "asking", [&](Work&) {
    answer = ctx.Ui().AskYesNo("first line|second line", "Question", Icon::Question);
  }));
  EXPECT_TRUE(answer);
  ctx.SetUi(nullptr);
}

TEST(WorkingDialog, JobMessageComesAfterTheWorkingDialogHasGone) {
  TempFolder folder;
  AppContext ctx(folder.Path());
  ctx.messages.LoadMessages();
  QtUserInterface ui(ctx);
  ctx.SetUi(&ui);
  bool workingDialogVisible = true;
  QString shown;
  ModalDriver driver([&](QWidget* modal) {
    if (modal->objectName() != QStringLiteral("Form11")) return;
    workingDialogVisible = false;
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (qobject_cast<WorkingDialog*>(top) && top->isVisible()) workingDialogVisible = true;
    }
    shown = Child<QLabel>(modal, "Label1")->text();
    Click(modal, "Command1");
  });
  bool jobWentOn = false;
  EXPECT_TRUE(RunWithWorkingDialog(nullptr, ctx, "zipping", [&](Work&) {
    ctx.Ui().ShowMessage(false, "All zipped.|3 folders", {}, Icon::Information);
    jobWentOn = true;  // the message doesn't wait for the user while the job runs
  }));
  EXPECT_TRUE(jobWentOn);
  EXPECT_EQ(shown, QStringLiteral("All zipped.\n3 folders"));
  EXPECT_FALSE(workingDialogVisible);
  ctx.SetUi(nullptr);
}

TEST(WorkingDialog, AnyInterfaceHoldsTheJobsMessages) {
  // The dialog speaks to the interface it is given, whatever its class.
  WorkingFixture f;
  EXPECT_TRUE(RunWithWorkingDialog(nullptr, f.ctx, "x", [&](Work&) {
    EXPECT_EQ(f.ui.holds, 1);
    EXPECT_EQ(f.ui.releases, 0);
  }));
  EXPECT_EQ(f.ui.holds, 1);
  EXPECT_EQ(f.ui.releases, 1);
}

TEST(WorkingDialog, AFailingJobIsLoggedUnderTheDialogsOwnNumber) {
  WorkingFixture f;
  f.ctx.log.SetFatalHandler([](const std::string&) {});
  f.ctx.log.SetTrackPoint(4242);  // whatever ran before
  EXPECT_TRUE(RunWithWorkingDialog(nullptr, f.ctx, "x",
                                   [&](Work&) { throw std::runtime_error("broken job"); }));
  EXPECT_EQ(f.ctx.log.BugCount(), 1);
  const std::string log = ReadFile(f.ctx.log.LogPath());
  EXPECT_NE(log.find("TRACKING BUG NUMBER = " + std::to_string(kWorkingJobTrackPoint) + "\r\n"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("broken job"), std::string::npos) << log;
}

TEST(WorkingDialog, StoredPositionIsUsed) {
  WorkingFixture f;
  f.ctx.settings.InfWrite("FrmWorkTop", 40);
  f.ctx.settings.InfWrite("FrmWorkLeft", 30);
  QPoint place;
  QTimer::singleShot(50, [&] { place = QApplication::activeModalWidget()->pos(); });
  std::atomic<bool> stop{false};
  QTimer::singleShot(120, [&] { stop = true; });
  RunWithWorkingDialog(nullptr, f.ctx, "x", [&](Work&) {
    while (!stop) QThread::msleep(5);
  });
  EXPECT_EQ(place, QPoint(30, 40));
}

// --- The desktop's interface ---

TEST(DesktopInterface, TheSixthFailureEndsTheRunOnTheInterfaceThread) {
  TempFolder folder;
  AppContext ctx(folder.Path());
  ctx.messages.LoadMessages();
  std::vector<std::string> opened;
  QtUserInterface ui(ctx, [&](const std::string& path) {
    opened.push_back(path);
    return true;
  });
  std::atomic<int> endCode{-1};
  std::thread::id endThread;
  ctx.log.SetFatalHandler([&](const std::string& logPath) {
    ui.EndAfterFatal(logPath, [&](int code) {
      endThread = std::this_thread::get_id();
      endCode = code;
    });
  });
  bool workerWentOn = false;
  std::thread worker([&] {
    for (int i = 0; i < 6; ++i) {
      RunGuarded(ctx.log, 100 + i, [] { throw std::runtime_error("fault"); });
    }
    workerWentOn = true;  // the handler came back: the worker wasn't ended
  });
  worker.join();
  EXPECT_TRUE(workerWentOn);
  EXPECT_EQ(endCode.load(), -1);  // not yet: the interface thread ends the run
  ASSERT_TRUE(WaitFor([&] { return endCode.load() != -1; }));
  EXPECT_EQ(endCode.load(), 1);
  EXPECT_EQ(endThread, std::this_thread::get_id());
  ASSERT_EQ(opened.size(), 1u);
  EXPECT_EQ(opened[0], ctx.log.LogPath());
}

TEST(DesktopInterface, ADocumentNothingOpensIsNamedInAMessage) {
  TempFolder folder;
  AppContext ctx(folder.Path());
  ctx.messages.LoadMessages();
  QtUserInterface ui(ctx, [](const std::string&) { return false; });
  ctx.SetUi(&ui);
  QString shown;
  ModalDriver driver([&](QWidget* modal) {
    if (auto* label = modal->findChild<QLabel*>(QStringLiteral("Label1"))) shown = label->text();
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      shown = box->text();
      box->accept();
      return;
    }
    Click(modal, "Command1");
  });
  const std::string notes = folder / "NOTES.TXT";
  ui.OpenDocument(notes);
  EXPECT_NE(shown.indexOf(ToQt(notes)), -1) << shown.toStdString();
  ctx.SetUi(nullptr);
}

// --- Message box ---

TEST(MessageBox, BarsBecomeLinesAndEmptyTextIsDone) {
  WorkingFixture f;
  QWidget frame;
  ShowMessage(&frame, f.ctx, true, "one|two", "", 0);
  auto* box = frame.findChild<QDialog*>(QStringLiteral("Form11"));
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(box->isVisible());
  EXPECT_EQ(box->windowTitle(), QStringLiteral("Tessarin"));
  EXPECT_EQ(Child<QLabel>(box, "Label1")->text(), QStringLiteral("one\ntwo"));
  Click(box, "Command1");
  QTest::qWait(20);
  ModalDriver driver([](QWidget* modal) {
    EXPECT_EQ(modal->objectName(), QStringLiteral("Form11"));
    EXPECT_EQ(Child<QLabel>(modal, "Label1")->text(), QStringLiteral("Done."));
    Click(modal, "Command1");
  });
  ShowMessage(&frame, f.ctx, false, "", "Title", 48);
}

TEST(WindowHelpers, CheckPicturesFollowTheTag) {
  QLabel box;
  SetCheckPicture(&box, false);
  const QImage off = box.pixmap().toImage();
  EXPECT_EQ(Tag(&box), QString());
  ToggleCheck(&box, false);
  EXPECT_EQ(Tag(&box), QStringLiteral("1"));
  EXPECT_NE(box.pixmap().toImage(), off);
  ToggleCheck(&box, false);
  EXPECT_EQ(Tag(&box), QString());
  EXPECT_EQ(box.pixmap().toImage(), off);
  // A radio's toggle flips the tag but leaves the picture to its group.
  QLabel radio;
  SetCheckPicture(&radio, true);
  const QImage radioOff = radio.pixmap().toImage();
  ToggleCheck(&radio, true);
  EXPECT_EQ(Tag(&radio), QStringLiteral("1"));
  EXPECT_EQ(radio.pixmap().toImage(), radioOff);
}

TEST(WindowHelpers, ProgressPictureFrames) {
  QLabel picture;
  picture.resize(200, 16);
  SetProgressPicture(&picture, 100);
  EXPECT_EQ(picture.property("ProgressFrame").toInt(), 20);
  const QImage full = picture.pixmap().toImage();
  SetProgressPicture(&picture, 104);
  EXPECT_EQ(picture.property("ProgressFrame").toInt(), 20);
  EXPECT_EQ(picture.pixmap().toImage(), full);
  SetProgressPicture(&picture, -5);
  EXPECT_EQ(picture.property("ProgressFrame").toInt(), 0);
  EXPECT_NE(picture.pixmap().toImage(), full);
}

TEST(WindowHelpers, SelectAllTrimsAndSelects) {
  QLineEdit box;
  box.setText(QStringLiteral("  /roms/  "));
  SelectAllText(&box);
  EXPECT_EQ(box.text(), QStringLiteral("/roms/"));
  EXPECT_EQ(box.selectedText(), QStringLiteral("/roms/"));
}

TEST(WindowHelpers, FlatControlsByName) {
  QWidget form;
  auto* text = new QLineEdit(&form);
  text->setObjectName(QStringLiteral("Text1"));
  auto* other = new QLineEdit(&form);
  other->setObjectName(QStringLiteral("Combo1Edit"));
  auto* button = new QPushButton(&form);
  button->setObjectName(QStringLiteral("Command2"));
  FlatControls(&form);
  EXPECT_FALSE(text->hasFrame());
  EXPECT_TRUE(other->hasFrame());
  EXPECT_TRUE(button->isFlat());
}

TEST(WindowHelpers, CenterFormInAParent) {
  QWidget parent;
  parent.resize(1000, 800);
  QWidget child(&parent);
  child.resize(200, 100);
  CenterForm(&child, &parent);
  EXPECT_EQ(child.pos(), QPoint(400, 310));
}

TEST(WindowHelpers, TextDecoding) {
  EXPECT_EQ(ToQt("Fran\xC3\xA7"
                 "ais"),
            QStringLiteral("Fran\u00e7ais"));
  // Not UTF-8: Windows-1252, with its euro sign.
  EXPECT_EQ(ToQt("caf\xE9 \x80"), QStringLiteral("caf\u00e9 \u20ac"));
  EXPECT_EQ(MessageText("a|b"), QStringLiteral("a\nb"));
}

TEST(AboutDialog, ShowsVersionAndSystemFacts) {
  WorkingFixture f;
  f.ctx.store.DatabaseVersion = "0.261 (mame0261)";
  AboutDialog dialog(nullptr, f.ctx);
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("About Tessarin"));
  EXPECT_NE(Child<QLabel>(&dialog, "lblVersion")->text().indexOf(ToQt(AppVersion())), -1);
  EXPECT_NE(Child<QLabel>(&dialog, "lblDatabase")->text().indexOf(QStringLiteral("0.261")), -1);
  EXPECT_TRUE(Child<QLabel>(&dialog, "lblFreeware")
                  ->text()
                  .startsWith(QStringLiteral("This is a freeware. Visit")));
  const QString facts = AboutDialog::SystemFacts(f.ctx);
  EXPECT_NE(facts.indexOf(QStringLiteral("Qt ")), -1);
  dialog.show();
  QTest::qWait(20);
  Shot(&dialog, QStringLiteral("about_en"));
}

// --- Priority ---

TEST(PriorityDialog, RowsApplyAtOnceAndMarkTheChoice) {
  WorkingFixture f;
  ShellSession session;
  PriorityDialog dialog(nullptr, f.ctx, session);
  EXPECT_EQ(Tag(Child<QLabel>(&dialog, "Radio_1")), QStringLiteral("1"));
  EXPECT_EQ(Tag(Child<QLabel>(&dialog, "Radio_0")), QString());
  EXPECT_EQ(Child<QLabel>(&dialog, "RadioTxt_2")->text(), QStringLiteral("High"));
  QTest::mouseClick(Child<QLabel>(&dialog, "Radio_2"), Qt::LeftButton);
  EXPECT_EQ(session.PriorityChoice, 2);
  EXPECT_EQ(Tag(Child<QLabel>(&dialog, "Radio_2")), QStringLiteral("1"));
  EXPECT_EQ(Tag(Child<QLabel>(&dialog, "Radio_1")), QString());
  QTest::mouseClick(Child<QLabel>(&dialog, "RadioTxt_1"), Qt::LeftButton);
  EXPECT_EQ(session.PriorityChoice, 1);
  const std::string log = ReadFile(f.ctx.log.LogPath());
  EXPECT_NE(log.find("PRIORITY= 2"), std::string::npos);
  EXPECT_NE(log.find("PRIORITY= 1"), std::string::npos);
}

// --- Options ---

TEST(OptionsDialog, CancelKeepsPathsAndSaveWritesThem) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\nRomPath=/old/\r\n");
  WriteFile(run.Path("Tessarin.url.inf"), "SEARCH_ENGINE=MAWS:http://maws.example/#ROMNAME#\r\n");
  run.Start();
  {
    OptionsDialog dialog(run.frame.get(), run.ctx, SiteAccess(run.ctx, run.sites));
    EXPECT_EQ(Child<QLineEdit>(&dialog, "Text2")->text(), QStringLiteral("/old/"));
    EXPECT_EQ(Child<QLineEdit>(&dialog, "Text1")->text(), QString());
    Child<QLineEdit>(&dialog, "Text2")->setText(QStringLiteral("/new/"));
    auto* address = Child<QLineEdit>(&dialog, "Text6");
    EXPECT_EQ(address->text(), QStringLiteral("http://maws.example/#ROMNAME#"));
    address->setText(QStringLiteral("http://other.example/#ROMNAME#"));
    Q_EMIT address->textEdited(address->text());
    Click(&dialog, "Command6");
  }
  EXPECT_EQ(run.StoredKey("RomPath"), "/old/");
  // The site table changed at once and stays changed.
  EXPECT_EQ(run.sites.SearchEngines[1], "MAWS:http://other.example/#ROMNAME#");
  // And went to the site list file when the dialog closed.
  EXPECT_NE(ReadFile(run.Path("Tessarin.url.inf")).find("MAWS:http://other.example/#ROMNAME#"),
            std::string::npos);
  {
    OptionsDialog dialog(run.frame.get(), run.ctx, SiteAccess(run.ctx, run.sites));
    Shot(&dialog, QStringLiteral("options_en"));
    auto* files = Child<QComboBox>(&dialog, "Combo2");
    auto* path = Child<QLineEdit>(&dialog, "Text3");
    files->setCurrentIndex(1);
    path->setText(QStringLiteral("/data/mameinfo.dat"));
    Q_EMIT path->textEdited(path->text());
    files->setCurrentIndex(0);
    EXPECT_EQ(path->text(), QString());
    files->setCurrentIndex(1);
    EXPECT_EQ(path->text(), QStringLiteral("/data/mameinfo.dat"));
    Child<QLineEdit>(&dialog, "Text2")->setText(QStringLiteral("/new/"));
    Child<QComboBox>(&dialog, "Combo1")->setCurrentText(QStringLiteral("Fran\u00e7ais"));
    Click(&dialog, "Command5");
  }
  EXPECT_EQ(run.StoredKey("RomPath"), "/new/");
  EXPECT_EQ(run.StoredKey("DataFile3"), "/data/mameinfo.dat");
  EXPECT_EQ(run.StoredKey("Language"), "0");
  EXPECT_TRUE(run.ctx.SearchMayClose);
  // The open frame keeps its captions until the next start.
  EXPECT_EQ(run.frame->findChild<QAction*>(QStringLiteral("MnuQuitter"))->text(),
            QStringLiteral("&Quit"));
}

TEST(OptionsDialog, HandEditedSiteListIsRereadAndANewSiteSurvivesACancel) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=1\r\nMDIState=0\r\n");
  run.Start();
  WriteFile(run.Path("Tessarin.url.inf"),
            "SEARCH_ENGINE=Edited:http://edited.example/#ROMNAME#\r\n");
  OptionsDialog dialog(run.frame.get(), run.ctx, SiteAccess(run.ctx, run.sites));
  auto* sites = Child<QComboBox>(&dialog, "Combo5");
  ASSERT_EQ(sites->count(), 1);
  EXPECT_EQ(sites->itemText(0), QStringLiteral("Edited"));
  int asked = 0;
  ModalDriver driver([&](QWidget* modal) {
    auto* input = qobject_cast<QInputDialog*>(modal);
    ASSERT_NE(input, nullptr);
    input->setTextValue(asked == 0 ? QStringLiteral("Mine")
                                   : QStringLiteral("http://mine.example/#ROMNAME#"));
    ++asked;
    input->accept();
  });
  Click(&dialog, "Command7");
  EXPECT_EQ(asked, 2);
  ASSERT_EQ(sites->count(), 2);
  EXPECT_EQ(sites->itemText(1), QStringLiteral("Mine"));
  Click(&dialog, "Command6");
  EXPECT_NE(ReadFile(run.Path("Tessarin.url.inf")).find("Mine:http://mine.example/#ROMNAME#"),
            std::string::npos);
}

// --- Screens in French ---

TEST(Look, FrenchWindows) {
  DesktopRun run;
  WriteFile(run.Path("Tessarin.inf"), "Language=0\r\nMDIState=0\r\n");
  run.Start();
  EXPECT_EQ(Child<QLabel>(run.frame->Panel(), "Title_7")->text(),
            ToQt(Messages::FrenchTable()[15]));
  Shot(run.frame.get(), QStringLiteral("panel_fr"));
  OptionsDialog options(run.frame.get(), run.ctx, SiteAccess(run.ctx, run.sites));
  options.show();
  QTest::qWait(20);
  Shot(&options, QStringLiteral("options_fr"));
  options.close();
  for (int language : {Messages::kEnglish, Messages::kFrench}) {
    run.ctx.messages.LanguageNumber = language;
    run.ctx.messages.LoadMessages();
    const QString suffix =
        language == Messages::kFrench ? QStringLiteral("_fr") : QStringLiteral("_en");
    PathWizardDialog wizard(nullptr, run.ctx);
    wizard.show();
    QTest::qWait(20);
    Shot(&wizard, QStringLiteral("wizard0") + suffix);
    Click(&wizard, "Command1");
    QTest::qWait(20);
    Shot(&wizard, QStringLiteral("wizard1") + suffix);
    EXPECT_TRUE(Child<QLineEdit>(&wizard, "Text1")->isVisible());
    wizard.close();
    std::atomic<bool> stop{false};
    QTimer::singleShot(60, [&] {
      auto* dialog = qobject_cast<WorkingDialog*>(QApplication::activeModalWidget());
      if (dialog) {
        dialog->Tick();
        Shot(dialog, QStringLiteral("working") + suffix);
      }
      stop = true;
    });
    RunWithWorkingDialog(run.frame.get(), run.ctx, run.ctx.messages.Lng(31), [&](Work& w) {
      w.ProgressMax = 100;
      w.ProgressValue = 45;
      while (!stop) QThread::msleep(5);
    });
  }
}

// --- The real program ---

TEST(Program, HelpAndVersionWriteNothing) {
  const QString program = QStringLiteral(TESSARIN_BINARY_DIR "/src/tessarin");
  if (!QFileInfo::exists(program)) GTEST_SKIP() << "the program is not built";
  // Without --home the program's own folder would be the application folder.
  const QDir programFolder = QFileInfo(program).dir();
  const QStringList before = programFolder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
  for (const QString& option : {QStringLiteral("--help"), QStringLiteral("--version")}) {
    QProcess run;
    run.start(program, {option});
    ASSERT_TRUE(run.waitForFinished(15000)) << option.toStdString();
    EXPECT_EQ(run.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(run.exitCode(), 0);
    const QString out = QString::fromUtf8(run.readAllStandardOutput());
    EXPECT_TRUE(out.contains(option == QStringLiteral("--help") ? QStringLiteral("--home")
                                                                : QStringLiteral("tessarin ")))
        << out.toStdString();
  }
  EXPECT_EQ(programFolder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
}

TEST(Program, AFolderThatCantBeWrittenIsNamedAndGivesOne) {
  const QString program = QStringLiteral(TESSARIN_BINARY_DIR "/src/tessarin");
  if (!QFileInfo::exists(program)) GTEST_SKIP() << "the program is not built";
  TempFolder folder;
  WriteFile(folder / "a file", "x");
  const std::string home = folder / "a file/home";
  QProcess run;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
  run.setProcessEnvironment(env);
  run.setReadChannel(QProcess::StandardError);
  run.start(program, {QStringLiteral("--home"), ToQt(home)});
  ASSERT_TRUE(run.waitForStarted());
  // The message box waits for the user; its text is on standard error already.
  ASSERT_TRUE(
      WaitFor([&] { return run.bytesAvailable() > 0 || run.state() != QProcess::Running; }, 15000));
  QTest::qWait(200);
  const QString err = QString::fromUtf8(run.readAllStandardError());
  EXPECT_TRUE(err.contains(QStringLiteral("can't be written"))) << err.toStdString();
  EXPECT_TRUE(err.contains(ToQt(home))) << err.toStdString();
  run.kill();
  run.waitForFinished(5000);
}

TEST(Program, SecondInstanceEndsSilentlyAndTouchesNothing) {
  const QString program = QStringLiteral(TESSARIN_BINARY_DIR "/src/tessarin");
  if (!QFileInfo::exists(program)) GTEST_SKIP() << "the program is not built";
  TempFolder home;
  WriteFile(home / "Tessarin.inf", "Language=1\r\nMDIState=0\r\n");
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
  QProcess first;
  first.setProcessEnvironment(env);
  first.start(program, {QStringLiteral("--home"), ToQt(home.Path())});
  ASSERT_TRUE(first.waitForStarted());
  // The first run is up once its folders and its site list exist; give it a moment more to
  // show its frame, so that it writes nothing while the second one runs.
  ASSERT_TRUE(WaitFor(
      [&] {
        return QFileInfo::exists(ToQt(home / "HTML/help.htm")) &&
               QFileInfo::exists(ToQt(home / "Tessarin.url.inf"));
      },
      15000));
  QTest::qWait(700);
  ASSERT_TRUE(QFileInfo::exists(ToQt(home / "Tessarin.lock")));
  WriteFile(home / "Tessarin.log.txt", "first run's log\r\n");
  const QStringList before =
      QDir(ToQt(home.Path())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
  const std::string settingsBefore = ReadFile(home / "Tessarin.inf");

  QProcess second;
  second.setProcessEnvironment(env);
  second.start(program, {QStringLiteral("--home"), ToQt(home.Path())});
  ASSERT_TRUE(second.waitForFinished(15000));
  EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(second.exitCode(), 0);
  EXPECT_TRUE(second.readAllStandardOutput().isEmpty());
  EXPECT_EQ(ReadFile(home / "Tessarin.log.txt"), "first run's log\r\n");
  EXPECT_EQ(ReadFile(home / "Tessarin.inf"), settingsBefore);
  EXPECT_EQ(QDir(ToQt(home.Path())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
  EXPECT_EQ(first.state(), QProcess::Running);
  first.kill();
  first.waitForFinished(5000);
}

TEST(DesktopStart, FirstStartOffersTheDataUpdateAndInstallsIt) {
  testsupport::RouteServer server;
  DesktopRun run;
  const std::string zip = run.Path("package.zip");
  GameStore store;
  store.DatabaseVersion = "MAME v9.99 (from the server)";
  store.AppendGame("pacman", "pacman;A0;0;BPac-Man");
  store.SetEndRecord(";A0");
  testsupport::MakeZip(zip, {{"index", IndexFileText(store, nullptr)}});
  server.Set("/update.txt", store.DatabaseVersion + "\n" + server.Url("/pack/data.zip") + "\n");
  server.Set("/pack/data.zip", testsupport::ReadFile(zip));
  std::vector<QString> questions;
  ModalDriver driver([&](QWidget* modal) {
    if (modal->objectName() == QStringLiteral("Form2")) {
      // The user points the program at the update server while it starts.
      run.ctx.settings.InfWrite("UpdateServer", server.Root());
      Click(modal, "Command1");
    } else if (modal->objectName() == QStringLiteral("Form4")) {
      Click(modal, "Command2");
    } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      questions.push_back(box->text());
      box->button(QMessageBox::Yes)->click();
    } else if (modal->objectName() == QStringLiteral("Form11")) {
      Click(modal, "Command1");
    }
  });
  run.Start();
  ASSERT_TRUE(WaitFor([&] { return run.ctx.store.DatabaseVersion == store.DatabaseVersion; }));
  ASSERT_EQ(questions.size(), 2u);
  EXPECT_EQ(questions[0], MessageText(run.ctx.messages.Lng(386)));
  EXPECT_TRUE(questions[1].contains(QStringLiteral("MAME v9.99 (from the server)")));
  ASSERT_TRUE(WaitFor([&] {
    auto* label = run.frame->Panel()
                      ? run.frame->Panel()->findChild<QLabel*>(QStringLiteral("Label1"))
                      : nullptr;
    return label && label->text().contains(QStringLiteral("MAME v9.99 (from the server)"));
  }));
  EXPECT_TRUE(std::filesystem::exists(run.Path("DataFiles/index")));
}

}  // namespace
}  // namespace tessarin
