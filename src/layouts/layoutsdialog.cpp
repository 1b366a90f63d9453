#include "layouts/layoutsdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QTimer>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/settings.h"
#include "core/work.h"
#include "online/download.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

QPushButton* MakeButton(QWidget* parent, const char* name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(QString::fromLatin1(name));
  button->setAutoDefault(false);
  return button;
}

QLabel* MakeLabel(QWidget* parent, const char* name, const QString& text) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(QString::fromLatin1(name));
  return label;
}

// The places an AtomicFE installation keeps its layouts, tried when none is known.
const std::vector<std::string>& CandidateLayoutFolders() {
  static const std::vector<std::string> candidates = {
      "C:\\AtomicFE_v020\\Projects\\Layouts\\opti_HyperSkin_Mame_Set\\",
      "C:\\AtomicFE_v020\\Projects\\Layouts\\"};
  return candidates;
}

// The end of a bulk job, as both dialogs tell it.
void TellEnd(AppContext& ctx, bool errors, bool cancelled) {
  if (errors) ctx.Ui().ShowMessage(false, ctx.messages.Lng(454), {}, Icon::Warning);
  ctx.Ui().ShowMessage(false, ctx.messages.Lng(cancelled ? 377 : 41), {}, Icon::Information);
}

}  // namespace

LayoutsDialog::LayoutsDialog(QWidget* parent, AppContext& ctx) : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form19"));
  setWindowTitle(QStringLiteral("Layouts for Atomic"));
  const Messages& m = ctx.messages;
  auto* label1 = MakeLabel(this, "Label1", MessageText(m.Lng(447)));
  label1->setWordWrap(true);
  m_horizontal = new QRadioButton(ToQt(m.Lng(448)), this);
  m_horizontal->setObjectName(QStringLiteral("Option1"));
  m_horizontal->setChecked(true);
  m_vertical = new QRadioButton(ToQt(m.Lng(449)), this);
  m_vertical->setObjectName(QStringLiteral("Option2"));
  m_install = MakeButton(this, "Command1", ToQt(m.Lng(450)));
  m_download = MakeButton(this, "Command2", ToQt(m.Lng(451)));
  auto* expert = MakeButton(this, "Command3", ToQt(m.Lng(452)));
  auto* close = MakeButton(this, "Command4", ToQt(m.Lng(78)));
  m_cancel = MakeButton(this, "Command5", ToQt(m.Lng(401)));
  m_cancel->setEnabled(false);
  m_report = new QPlainTextEdit(this);
  m_report->setObjectName(QStringLiteral("Text1"));
  m_report->setReadOnly(true);
  m_report->setEnabled(false);
  m_report->setMinimumSize(fontMetrics().averageCharWidth() * 60, fontMetrics().height() * 10);

  auto* options = new QHBoxLayout;
  options->addWidget(m_horizontal);
  options->addWidget(m_vertical);
  options->addStretch();
  auto* actions = new QVBoxLayout;
  actions->addWidget(m_install);
  actions->addWidget(m_download);
  actions->addWidget(expert);
  actions->addStretch();
  actions->addWidget(m_cancel);
  actions->addWidget(close);
  auto* body = new QHBoxLayout;
  body->addWidget(m_report, 1);
  body->addLayout(actions);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label1);
  layout->addLayout(options);
  layout->addLayout(body, 1);

  connect(m_install, &QPushButton::clicked, this, [this] { InstallAllMissing(true); });
  connect(m_download, &QPushButton::clicked, this, [this] { InstallAllMissing(false); });
  connect(expert, &QPushButton::clicked, this, &LayoutsDialog::OpenExpert);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  connect(m_cancel, &QPushButton::clicked, this, [this] {
    if (Work* running = m_running.load()) running->CancelRequested = true;
  });

  m_paths = OpenLayoutPaths(ctx, CandidateLayoutFolders());
  adjustSize();
  const int x = ctx.settings.InfReadNumber("Frm19X");
  const int y = ctx.settings.InfReadNumber("Frm19Y");
  if (x < 0 || y < 0 || !ApplyStoredPosition(this, x, y)) CenterForm(this, parent);
}

LayoutsDialog::~LayoutsDialog() { Unload(); }

QString LayoutsDialog::Report() const { return m_report->toPlainText(); }

void LayoutsDialog::AddReport(const std::string& line) {
  // Lines come from the job's thread: the report is only touched on the interface thread.
  QMetaObject::invokeMethod(
      m_report, [this, text = ToQt(line)] { m_report->appendPlainText(text); },
      Qt::QueuedConnection);
}

void LayoutsDialog::InstallAllMissing(bool install, const std::string& folder) {
  const Messages& m = m_ctx.messages;
  std::string chosen = folder;
  if (chosen.empty()) {
    chosen = BrowseFolderDialog(this, install ? m_paths.LayoutFolder : m_paths.DownloadFolder,
                                m.Lng(install ? 403 : 468), true);
  }
  if (chosen.empty()) return;
  chosen = AddSlash(chosen);
  (install ? m_paths.LayoutFolder : m_paths.DownloadFolder) = chosen;
  m_report->setPlainText(ToQt((install ? "Layouts path: " : "Zipped layouts path: ") + chosen));
  m_report->setEnabled(true);
  m_cancel->setEnabled(true);

  bool listMissing = false;
  LayoutRunCounts counts;
  const bool vertical = m_vertical->isChecked();
  RunWithWorkingDialog(this, m_ctx, "Downloading list of layouts...", [&](Work& work) {
    m_running = &work;
    if (DownloadLayoutList(m_paths, &work)) {
      AddReport(m.Lng(411));
      m_ctx.log.WriteLogLine("The list has been downloaded & is updated.");
    } else {
      AddReport(m.Lng(410));
      m_ctx.log.WriteLogLine("Can't download list of layouts : list not updated !!");
    }
    const std::string list = m_paths.ListFolder + kLayoutListName;
    if (!FileExists(list)) {
      AddReport(m.Lng(412) + " " + list);
      m_ctx.log.WriteLogLine("File does not exist : " + list);
      listMissing = true;
      return;
    }
    work.SetStatus("Loading list of layouts...");
    std::vector<std::string> lines;
    LoadLayoutList(m_ctx.log, m_paths, false, lines);
    work.SetStatus("Downloading layouts...");
    counts = ProcessAllLayouts(m_ctx, work, m_paths, lines, install, vertical,
                               [this](const std::string& line) { AddReport(line); });
  });
  m_running = nullptr;
  QCoreApplication::processEvents();
  if (listMissing) {
    m_ctx.Ui().ShowMessage(false, m.Lng(453), {}, Icon::Stop);
    m_report->setEnabled(false);
    m_cancel->setEnabled(false);
    return;
  }
  m_cancel->setEnabled(false);
  TellEnd(m_ctx, counts.downloadErrors + counts.unzipErrors > 0, counts.cancelled);
}

void LayoutsDialog::OpenExpert() {
  SaveLayoutPaths(m_ctx, m_paths);
  auto* expert = new LayoutsExpertDialog(this, m_ctx);
  expert->setAttribute(Qt::WA_DeleteOnClose);
  connect(expert, &QObject::destroyed, this,
          [this] { m_paths = OpenLayoutPaths(m_ctx, CandidateLayoutFolders()); });
  expert->open();
}

void LayoutsDialog::SaveState() {
  m_ctx.settings.InfWrite("Frm19X", pos().x());
  m_ctx.settings.InfWrite("Frm19Y", pos().y());
  SaveLayoutPaths(m_ctx, m_paths);
}

LayoutsExpertDialog::LayoutsExpertDialog(QWidget* parent, AppContext& ctx)
    : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form17"));
  setWindowTitle(QStringLiteral("AToMic Layouts"));
  const Messages& m = ctx.messages;
  auto* label1 = MakeLabel(this, "Label1", ToQt(m.Lng(403)) + QStringLiteral(":"));
  m_layoutFolder = new QLineEdit(this);
  m_layoutFolder->setObjectName(QStringLiteral("Text1"));
  label1->setBuddy(m_layoutFolder);
  auto* browseLayouts = MakeButton(this, "Command1", QStringLiteral("..."));
  auto* label5 = MakeLabel(this, "Label5", ToQt(m.Lng(443)));
  m_downloadFolder = new QLineEdit(this);
  m_downloadFolder->setObjectName(QStringLiteral("Text3"));
  label5->setBuddy(m_downloadFolder);
  auto* browseDownloads = MakeButton(this, "Command5", QStringLiteral("..."));
  auto* label4 = MakeLabel(this, "Label4", ToQt(m.Lng(419)));
  m_sort = new QComboBox(this);
  m_sort->setObjectName(QStringLiteral("Combo1"));
  m_sort->addItems({QStringLiteral("Rom"), ToQt(m.Lng(420)), ToQt(m.Lng(421)), ToQt(m.Lng(422)),
                    ToQt(m.Lng(423))});
  label4->setBuddy(m_sort);
  m_filter = new QComboBox(this);
  m_filter->setObjectName(QStringLiteral("Combo2"));
  m_filter->addItems({ToQt(m.Lng(469)), ToQt(m.Lng(470)), ToQt(m.Lng(471))});
  auto* label8 = MakeLabel(this, "Label8", QStringLiteral("Layouts:"));
  m_list = new QListWidget(this);
  m_list->setObjectName(QStringLiteral("List1"));
  m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  m_list->setUniformItemSizes(true);
  label8->setBuddy(m_list);
  m_details = new QPlainTextEdit(this);
  m_details->setObjectName(QStringLiteral("Text2"));
  m_details->setReadOnly(true);
  m_preview = new QCheckBox(QStringLiteral("Preview"), this);
  m_preview->setObjectName(QStringLiteral("Chk1"));
  m_picture = MakeLabel(this, "Picture2", {});
  m_picture->setFixedSize(320, 240);
  m_picture->setFrameShape(QFrame::StyledPanel);
  m_picture->setAlignment(Qt::AlignCenter);
  m_gauge = new QProgressBar(this);
  m_gauge->setObjectName(QStringLiteral("Image2"));
  m_gauge->setRange(0, 100);
  m_gauge->setMaximumHeight(fontMetrics().height() / 2 + 2);
  m_gauge->setTextVisible(false);
  m_gauge->hide();
  m_deleteZip = new QCheckBox(ToQt(m.Lng(446)), this);
  m_deleteZip->setObjectName(QStringLiteral("Chk2"));
  auto* download = MakeButton(this, "Command2", QStringLiteral("&Download"));
  auto* downloadUnzip = MakeButton(this, "Command3", QStringLiteral("Download && &Unzip"));
  auto* save = MakeButton(this, "Command4", ToQt(m.Lng(472)));
  m_missing = MakeButton(this, "Command6", ToQt(m.Lng(429)));
  auto* close = MakeButton(this, "Command7", ToQt(m.Lng(78)));
  auto* link =
      MakeLabel(this, "Label6", QStringLiteral("<a href=\"%1\">%1</a>").arg(ToQt(kLayoutsPage)));
  link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  connect(link, &QLabel::linkActivated, this,
          [this](const QString& address) { m_ctx.Ui().OpenDocument(FromQt(address)); });

  auto* folders = new QGridLayout;
  folders->addWidget(label1, 0, 0);
  folders->addWidget(m_layoutFolder, 0, 1);
  folders->addWidget(browseLayouts, 0, 2);
  folders->addWidget(label5, 1, 0);
  folders->addWidget(m_downloadFolder, 1, 1);
  folders->addWidget(browseDownloads, 1, 2);
  folders->setColumnStretch(1, 1);
  auto* sorting = new QHBoxLayout;
  sorting->addWidget(label4);
  sorting->addWidget(m_sort);
  sorting->addWidget(m_filter);
  sorting->addStretch();
  sorting->addWidget(m_missing);
  auto* left = new QVBoxLayout;
  left->addWidget(label8);
  left->addWidget(m_list, 1);
  auto* right = new QVBoxLayout;
  right->addWidget(m_details, 1);
  right->addWidget(m_preview);
  right->addWidget(m_picture, 0, Qt::AlignHCenter);
  right->addWidget(m_gauge);
  auto* lists = new QHBoxLayout;
  lists->addLayout(left, 1);
  lists->addLayout(right, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_deleteZip);
  buttons->addStretch();
  buttons->addWidget(download);
  buttons->addWidget(downloadUnzip);
  buttons->addWidget(save);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(folders);
  layout->addLayout(sorting);
  layout->addLayout(lists, 1);
  layout->addLayout(buttons);
  layout->addWidget(link);

  connect(browseLayouts, &QPushButton::clicked, this, [this] {
    const std::string chosen =
        BrowseFolderDialog(this, FromQt(m_layoutFolder->text()), m_ctx.messages.Lng(403), true);
    if (!chosen.empty()) m_layoutFolder->setText(ToQt(chosen));
  });
  connect(browseDownloads, &QPushButton::clicked, this, [this] {
    const std::string chosen =
        BrowseFolderDialog(this, FromQt(m_downloadFolder->text()), m_ctx.messages.Lng(443), true);
    if (!chosen.empty()) m_downloadFolder->setText(ToQt(chosen));
  });
  connect(m_sort, &QComboBox::activated, this, &LayoutsExpertDialog::Sort);
  connect(m_filter, &QComboBox::activated, this, &LayoutsExpertDialog::Filter);
  connect(m_list, &QListWidget::currentRowChanged, this, &LayoutsExpertDialog::ShowDetails);
  connect(m_missing, &QPushButton::clicked, this, &LayoutsExpertDialog::ToggleMissing);
  connect(download, &QPushButton::clicked, this, [this] { DownloadChosen(false); });
  connect(downloadUnzip, &QPushButton::clicked, this, [this] { DownloadChosen(true); });
  connect(save, &QPushButton::clicked, this, [this] { SaveList(); });
  connect(close, &QPushButton::clicked, this, &QDialog::close);

  m_paths = OpenLayoutPaths(ctx, CandidateLayoutFolders());
  m_layoutFolder->setText(ToQt(m_paths.LayoutFolder));
  m_downloadFolder->setText(ToQt(m_paths.DownloadFolder));
  m_preview->setChecked(ctx.settings.InfRead("LayoutPreview") == "1");
  m_deleteZip->setChecked(ctx.settings.InfRead("DeleteZipAfter") == "1");
  adjustSize();
  const int width = ctx.settings.InfReadNumber("Frm17Width");
  const int height = ctx.settings.InfReadNumber("Frm17Height");
  if (width > 0 && height > 0) resize(width, height);
  CenterForm(this, parent);
}

LayoutsExpertDialog::~LayoutsExpertDialog() { Unload(); }

void LayoutsExpertDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  // The list is fetched once the window is on screen, so the working dialog has a parent to
  // stand over; a list loaded by hand in the meantime (or still loading, since the working
  // dialog runs events) is not fetched a second time.
  if (!m_loaded) {
    QTimer::singleShot(0, this, [this] {
      if (!m_loaded) LoadList();
    });
  }
}

void LayoutsExpertDialog::ReadFolders() {
  m_paths.LayoutFolder = m_layoutFolder->text().trimmed().isEmpty()
                             ? std::string()
                             : AddSlash(FromQt(m_layoutFolder->text().trimmed()));
  m_paths.DownloadFolder = AddSlash(FromQt(m_downloadFolder->text().trimmed()));
}

void LayoutsExpertDialog::LoadList() {
  m_loaded = true;
  const Messages& m = m_ctx.messages;
  bool fetched = false;
  bool loaded = false;
  RunWithWorkingDialog(this, m_ctx, "Downloading list of layouts...", [&](Work& work) {
    fetched = DownloadLayoutList(m_paths, &work);
    work.SetStatus("Loading list of layouts...");
    loaded = LoadLayoutList(m_ctx.log, m_paths, true, m_lines);
  });
  m_details->setPlainText(ToQt(m.Lng(fetched ? 411 : 410)));
  if (!loaded) {
    m_ctx.Ui().ShowMessage(false, m.Lng(408) + "|" + m.Lng(409), {}, Icon::Warning);
    return;
  }
  FillList();
  m_details->appendPlainText(QString::number(m_rows.size()) + QStringLiteral(" layouts listed."));
}

void LayoutsExpertDialog::FillList() {
  m_list->clear();
  m_rows.clear();
  for (size_t i = 0; i < m_lines.size(); ++i) {
    if (m_lines[i].empty()) continue;
    m_rows.push_back(i);
    m_list->addItem(ToQt(LayoutField(LayoutFields(m_lines[i]), 1)));
  }
}

void LayoutsExpertDialog::Sort(int choice) {
  RunWithWorkingDialog(this, m_ctx, "Sorting...", [&](Work&) { SortLayouts(m_lines, choice); });
  FillList();
}

void LayoutsExpertDialog::Filter(int choice) {
  LoadLayoutList(m_ctx.log, m_paths, true, m_lines);
  FilterLayouts(m_lines, choice);
  Sort(m_sort->currentIndex());
}

void LayoutsExpertDialog::ShowDetails(int row) {
  if (row < 0 || static_cast<size_t>(row) >= m_rows.size()) return;
  ReadFolders();
  const std::string& line = m_lines[m_rows[static_cast<size_t>(row)]];
  m_details->setPlainText(ToQt(LayoutDetailsText(m_ctx, m_paths, line)));
  if (m_preview->isChecked()) ShowPreview(line);
}

void LayoutsExpertDialog::ShowPreview(const std::string& line) {
  const std::string file = PreviewFile(m_paths, line);
  QPixmap picture;
  if (!FileExists(file) || !picture.load(ToQt(file))) {
    m_gauge->show();
    m_gauge->setValue(20);
    QCoreApplication::processEvents();
    DeleteUrlFromCache(file);
    m_gauge->setValue(30);
    DownloadOptions options;
    options.connectTimeoutSeconds = 10;
    options.stallTimeoutSeconds = 10;
    const bool ok =
        DownloadFile(PreviewAddress(m_paths, line), file, true, nullptr, options) == kDownloadOk;
    m_gauge->setValue(80);
    if (!ok || !picture.load(ToQt(file))) picture = QPixmap();
    m_gauge->hide();
  }
  m_picture->setPixmap(picture.isNull() ? QPixmap()
                                        : picture.scaled(m_picture->size(), Qt::IgnoreAspectRatio,
                                                         Qt::SmoothTransformation));
}

void LayoutsExpertDialog::ToggleMissing() {
  ReadFolders();
  if (m_showingMissing) {
    LoadLayoutList(m_ctx.log, m_paths, true, m_lines);
    m_missing->setText(ToQt(m_ctx.messages.Lng(429)));
  } else {
    KeepOnlyMissing(m_lines, m_paths);
    m_missing->setText(ToQt(m_ctx.messages.Lng(430)));
  }
  m_showingMissing = !m_showingMissing;
  FillList();
}

void LayoutsExpertDialog::DownloadChosen(bool unzip) {
  std::vector<std::string> chosen;
  for (int row = 0; row < m_list->count(); ++row) {
    if (m_list->item(row)->isSelected())
      chosen.push_back(m_lines[m_rows[static_cast<size_t>(row)]]);
  }
  if (chosen.empty()) return;
  ReadFolders();
  LayoutRunCounts counts;
  const bool deleteZip = m_deleteZip->isChecked();
  m_details->clear();
  RunWithWorkingDialog(this, m_ctx, "Downloading...", [&](Work& work) {
    counts =
        DownloadSelected(m_ctx, work, m_paths, chosen, static_cast<int>(m_rows.size()), unzip,
                         deleteZip, [this](const std::string& text) {
                           QMetaObject::invokeMethod(
                               m_details, [this, t = ToQt(text)] { m_details->appendPlainText(t); },
                               Qt::QueuedConnection);
                         });
  });
  QCoreApplication::processEvents();
  m_ctx.Ui().ShowMessage(false, m_ctx.messages.Lng(counts.cancelled ? 377 : 41), {},
                         Icon::Information);
}

void LayoutsExpertDialog::SaveList(const std::string& file) {
  const Messages& m = m_ctx.messages;
  std::string target = file;
  if (target.empty()) {
    target =
        FileDialog(this, "List.ini", true, m.Lng(35) + " (*.ini)|*.ini|" + m.Lng(33) + " |*.*|");
  }
  if (target.empty()) return;
  bool saved = false;
  RunWithWorkingDialog(this, m_ctx, "Working...",
                       [&](Work&) { saved = SaveLayoutList(target, m_lines); });
  m_ctx.Ui().ShowMessage(false, saved ? m.Lng(41) : "Can't write " + target, {},
                         saved ? Icon::Information : Icon::Stop);
}

void LayoutsExpertDialog::SaveState() {
  ReadFolders();
  m_ctx.settings.InfWrite("Frm17Width", width());
  m_ctx.settings.InfWrite("Frm17Height", height());
  m_ctx.settings.InfWrite("LayoutPreview", m_preview->isChecked() ? "1" : "");
  m_ctx.settings.InfWrite("DeleteZipAfter", m_deleteZip->isChecked() ? "1" : "");
  SaveLayoutPaths(m_ctx, m_paths);
}

}  // namespace tessarin
