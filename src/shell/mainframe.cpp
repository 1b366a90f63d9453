#include "shell/mainframe.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QTimer>

#include "app/context.h"
#include "core/work.h"
#include "shell/aboutdialog.h"
#include "shell/mainpanel.h"
#include "shell/notes.h"
#include "shell/optionsdialog.h"
#include "shell/prioritydialog.h"
#include "shell/startup.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/windowrules.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {
// The sites the menu thanks: the emulator, the data file makers and the libraries we stand on.
const char* const kThanks[9][2] = {{"MnuTx3", "www.mamedev.org"},
                                   {"MnuTx1", "docs.mamedev.org"},
                                   {"MnuTx2", "www.arcade-history.com"},
                                   {"MnuTx4", "www.progettosnaps.net"},
                                   {"MnuTx5", "www.mameworld.info"},
                                   {"MnuTx6", "github.com/mamedev/mame"},
                                   {"MnuTx7", "www.qt.io"},
                                   {"MnuTx8", "www.zlib.net"},
                                   {"MnuTxt8", "curl.se"}};

// Menu entries that open a subsystem's dialog, with their fixed captions.
const char* const kDialogMenus[] = {"MnuRecherche", "MnuUpdateData", "MnuAtomicLayouts",
                                    "MnuXML2List", "MnuCopyTasks"};
}  // namespace

MainFrame::MainFrame(AppContext& ctx, ShellSession& session, SiteTablesAccess sites)
    : m_ctx(ctx), m_session(session), m_sites(std::move(sites)) {
  setObjectName(QStringLiteral("MDIForm1"));
  setWindowIcon(AppIcon());
  m_area = new QMdiArea(this);
  m_area->setObjectName(QStringLiteral("MDIClient"));
  // The background colour of the generated pages, so the frame and the site look related.
  m_area->setBackground(QBrush(QColor(0x0F, 0x3F, 0x60)));
  // A small screen still reaches every entry of the panel.
  m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  m_area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setCentralWidget(m_area);
  m_area->viewport()->installEventFilter(this);
  const QRect screen =
      this->screen() ? this->screen()->availableGeometry() : QRect(0, 0, 1280, 800);
  resize(screen.width() * 4 / 5, screen.height() * 4 / 5);
  BuildMenu();
}

MainFrame::~MainFrame() {
  // The child dialogs are destroyed by QWidget's destructor, after this frame's own members
  // are gone: their destroyed signals must no longer reach it (they would bring the panel back
  // into a half-destroyed frame).
  m_closed = true;
  for (QObject* child : children()) disconnect(child, nullptr, this, nullptr);
}

void MainFrame::RegisterPanelDialog(int entry, DialogFactory factory) {
  m_panelFactories[entry] = std::move(factory);
  if (m_panel) {
    // The panel shows availability as it was made; make it again to show the new entry.
    UnloadPanel();
    ShowPanel();
  }
}

void MainFrame::RegisterMenuDialog(const QString& menuName, DialogFactory factory) {
  m_menuFactories[menuName] = std::move(factory);
  RefreshMenuAvailability();
}

bool MainFrame::PanelEntryAvailable(int entry) const {
  if (entry == 3 || entry == 7 || entry == 8) return true;
  return m_panelFactories.count(entry) > 0;
}

void MainFrame::BuildMenu() {
  const Messages& m = m_ctx.messages;
  auto action = [](QMenu* menu, const char* name, const QString& caption) {
    QAction* a = menu->addAction(caption);
    a->setObjectName(QString::fromLatin1(name));
    return a;
  };
  auto separator = [](QMenu* menu, const char* name) {
    menu->addSeparator()->setObjectName(QString::fromLatin1(name));
  };
  QMenu* main = menuBar()->addMenu(ToQt(m.Lng(22)));
  main->setObjectName(QStringLiteral("MnuMenu"));
  connect(action(main, "MnuAfficherMenu", ToQt(m.Lng(23))), &QAction::triggered, this,
          &MainFrame::ShowPanel);
  QAction* find = action(main, "MnuRecherche", ToQt(m.Lng(372)));
  separator(main, "MnuT1");
  QAction* update = action(main, "MnuUpdateData", QStringLiteral("&Update data"));
  separator(main, "Mnut2");
  connect(action(main, "MnuPriority", ToQt(m.Lng(354))), &QAction::triggered, this, [this] {
    PriorityDialog dialog(this, m_ctx, m_session);
    dialog.exec();
  });
  separator(main, "MnuTrait");
  QAction* layouts = action(main, "MnuAtomicLayouts", QStringLiteral("AToMic &Layouts"));
  QAction* xml = action(main, "MnuXML2List", QStringLiteral("XML to List"));
  QAction* copy = action(main, "MnuCopyTasks", QStringLiteral("Copy tasks"));
  separator(main, "MnuT3");
  connect(action(main, "MnuQuitter", ToQt(m.Lng(24))), &QAction::triggered, this, &QWidget::close);
  for (QAction* a : {find, update, layouts, xml, copy}) {
    const QString name = a->objectName();
    connect(a, &QAction::triggered, this, [this, name] {
      const auto it = m_menuFactories.constFind(name);
      if (it == m_menuFactories.constEnd()) return;
      // The menu's search is the panel's search: one dialog for both.
      const bool search = name == QStringLiteral("MnuRecherche");
      const int entry = search ? 0 : -1;
      const QString key = search ? QStringLiteral("Entry0") : name;
      if (QWidget* open = m_openDialogs.value(key)) {
        open->show();
        open->raise();
        open->activateWindow();
        return;
      }
      OpenDialog(entry, key, (*it)(*this));
    });
  }

  QMenu* about = menuBar()->addMenu(QStringLiteral("&?"));
  about->setObjectName(QStringLiteral("MnuAbout"));
  connect(action(about, "MnuAPropos", ToQt(m.Lng(25))), &QAction::triggered, this, [this] {
    AboutDialog dialog(this, m_ctx);
    dialog.exec();
  });
  connect(action(about, "MnuHelp", QStringLiteral("Help")), &QAction::triggered, this,
          [this] { m_ctx.Ui().OpenDocument(m_ctx.AppFolder() + "HTML/help.htm"); });
  separator(about, "MnuTrait2");
  QAction* thanks = action(about, "MnuThx", QStringLiteral("Thank you to :"));
  thanks->setEnabled(false);
  for (const auto& site : kThanks) {
    const QString caption = QString::fromLatin1(site[1]);
    connect(action(about, site[0], caption), &QAction::triggered, this,
            [this, caption] { OpenSite(caption); });
  }
  RefreshMenuAvailability();
}

void MainFrame::RefreshMenuAvailability() {
  for (const char* name : kDialogMenus) {
    if (QAction* a = findChild<QAction*>(QString::fromLatin1(name))) {
      a->setEnabled(m_menuFactories.contains(QString::fromLatin1(name)));
    }
  }
}

void MainFrame::Load() {
  const Settings& settings = m_ctx.settings;
  const int left = settings.InfReadNumber("MDILeft");
  const int top = settings.InfReadNumber("MDITop");
  const int state = settings.InfReadNumber("MDIState");
  QPoint place = pos();
  if (FramePositionApplies(left)) place.setX(left);
  if (FramePositionApplies(top)) place.setY(top);
  if (FramePositionApplies(left) || FramePositionApplies(top)) {
    ApplyStoredPosition(this, place.x(), place.y());
  } else {
    CenterForm(this);
  }
  setWindowTitle(QStringLiteral("Tessarin ") + ToQt(AppVersion()));
  switch (state) {
    case 1:
      showMinimized();
      break;
    case 2:
      showMaximized();
      break;
    default:
      show();
      break;
  }
  ShowPanel();
  QApplication::processEvents();
  if (settings.InfReadNumber("ChckDataUpdate") == 1) {
    if (DataUpdateCheck) DataUpdateCheck(true);
  } else if (m_ctx.FirstRun) {
    if (DataUpdateCheck) DataUpdateCheck(false);
  }
}

void MainFrame::ShowPanel() {
  if (m_panel) {
    m_panelWindow->show();
    m_panel->setFocus();
    return;
  }
  m_panel = new MainPanel(nullptr, m_ctx, [this](int i) { return PanelEntryAvailable(i); });
  connect(m_panel, &MainPanel::EntryActivated, this, &MainFrame::RunEntry, Qt::QueuedConnection);
  m_panelWindow =
      m_area->addSubWindow(m_panel, Qt::SubWindow | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
  m_panelWindow->setObjectName(QStringLiteral("Form1Window"));
  m_panelWindow->setWindowIcon(AppIcon());
  m_panelWindow->setWindowTitle(QStringLiteral("Tessarin"));
  m_panelWindow->adjustSize();
  m_panelWindow->show();
  PlacePanel();
  m_panel->setFocus();
  // The panel's own size settles once its window is polished and laid out.
  QTimer::singleShot(0, this, &MainFrame::KeepPanelCentred);
}

void MainFrame::PlacePanel() {
  const int top = m_ctx.settings.InfReadNumber("Form1Top");
  const int left = m_ctx.settings.InfReadNumber("Form1Left");
  CenterForm(m_panelWindow, m_area->viewport());
  m_panelCentred = true;
  m_panelCentredAt = m_panelWindow->pos();
  if (m_ctx.FirstRun) return;
  QPoint place = m_panelWindow->pos();
  if (PanelPositionApplies(left)) place.setX(left);
  if (PanelPositionApplies(top)) place.setY(top);
  // A place beyond the frame's area is no place to put it.
  const QRect area = m_area->viewport()->rect();
  if (area.isEmpty() || area.contains(place + QPoint(24, 12))) m_panelWindow->move(place);
  m_panelCentred = m_panelWindow->pos() == m_panelCentredAt;
}

void MainFrame::KeepPanelCentred() {
  if (!m_panelWindow || !m_panelCentred || m_panelWindow->pos() != m_panelCentredAt) return;
  CenterForm(m_panelWindow, m_area->viewport());
  m_panelCentredAt = m_panelWindow->pos();
}

bool MainFrame::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_area->viewport() && event->type() == QEvent::Resize) KeepPanelCentred();
  return QMainWindow::eventFilter(watched, event);
}

void MainFrame::UnloadPanel() {
  if (!m_panel) return;
  const QPoint place = m_panelWindow->pos();
  m_ctx.settings.InfWrite("Form1Top", place.y());
  m_ctx.settings.InfWrite("Form1Left", place.x());
  QMdiSubWindow* window = m_panelWindow;
  m_area->removeSubWindow(window);
  window->deleteLater();
  m_panel->deleteLater();
  m_panel = nullptr;
  m_panelWindow = nullptr;
}

void MainFrame::RunEntry(int entry) {
  switch (entry) {
    case 3:
      RunNotes();
      return;
    case 7:
      OpenOptions();
      return;
    case 8:
      close();
      return;
    default:
      break;
  }
  const auto it = m_panelFactories.find(entry);
  if (it == m_panelFactories.end()) return;
  const QString key = QStringLiteral("Entry%1").arg(entry);
  if (m_openDialogs.value(key)) {
    m_openDialogs.value(key)->show();
    m_openDialogs.value(key)->raise();
    return;
  }
  OpenDialog(entry, key, it->second(*this));
}

void MainFrame::OpenDialog(int entry, const QString& key, QWidget* dialog) {
  if (!dialog) return;
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  m_openDialogs[key] = dialog;
  if (entry >= 0 && entry != 3 && entry != 8) {
    UnloadPanel();
    connect(dialog, &QObject::destroyed, this, [this] {
      if (!m_closed) ShowPanel();
    });
  }
  dialog->show();
  dialog->raise();
  dialog->activateWindow();
}

void MainFrame::CloseSearchDialog() {
  m_ctx.SearchMayClose = true;
  if (QWidget* search = m_openDialogs.value(QStringLiteral("Entry0"))) search->close();
}

bool MainFrame::RunJob(const std::string& label, const std::function<void(Work&)>& job,
                       bool showCancel) {
  return RunWithWorkingDialog(this, m_ctx, label, job, showCancel);
}

void MainFrame::OpenSite(const QString& hostAndPath) {
  m_ctx.Ui().OpenDocument("http://" + FromQt(hostAndPath));
}

void MainFrame::RunNotes() {
  RunNotesEntry(m_ctx, LoadIndex,
                [this](const std::string& label, const std::function<void(Work&)>& job) {
                  if (m_panelWindow) m_panelWindow->hide();
                  const bool done = RunJob(label, job);
                  ShowPanel();
                  return done;
                });
}

void MainFrame::OpenOptions() {
  const QString key = QStringLiteral("Entry7");
  if (m_openDialogs.value(key)) {
    m_openDialogs.value(key)->raise();
    return;
  }
  auto* dialog = new OptionsDialog(this, m_ctx, m_sites);
  dialog->LanguageChanged = [this] { CloseSearchDialog(); };
  OpenDialog(7, key, dialog);
}

void MainFrame::closeEvent(QCloseEvent* event) {
  if (m_closed) {
    event->accept();
    return;
  }
  m_closed = true;
  CloseSearchDialog();
  for (const QPointer<QWidget>& dialog : m_openDialogs) {
    if (dialog) dialog->close();
  }
  UnloadPanel();
  FrameState state;
  state.State = isMinimized() ? 1 : isMaximized() ? 2 : 0;
  const QPoint place = state.State == 0 ? pos() : normalGeometry().topLeft();
  state.Left = place.x();
  state.Top = place.y();
  CloseRun(m_ctx, state);
  event->accept();
}

}  // namespace tessarin
