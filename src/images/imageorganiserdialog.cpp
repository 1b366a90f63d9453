#include "images/imageorganiserdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/work.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

QPushButton* MakeButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  // Enter in a folder box must not start a job that deletes pictures.
  button->setAutoDefault(false);
  return button;
}

// A check box with its caption beside it, as the program's custom checks are: the caption is a
// label of its own (ChkNTxt) that toggles the box when clicked, and the box keeps its Tag.
QCheckBox* MakeCheck(QWidget* parent, QObject* filter, const QString& name, const QString& text,
                     QLabel** caption) {
  auto* box = new QCheckBox(parent);
  box->setObjectName(name);
  *caption = new QLabel(text, parent);
  (*caption)->setObjectName(name + QStringLiteral("Txt"));
  (*caption)->setCursor(Qt::PointingHandCursor);
  (*caption)->setBuddy(box);
  (*caption)->installEventFilter(filter);
  QObject::connect(box, &QCheckBox::toggled, box,
                   [box](bool on) { SetTag(box, on ? QStringLiteral("1") : QString()); });
  return box;
}

QHBoxLayout* CheckRow(QCheckBox* box, QLabel* caption) {
  auto* row = new QHBoxLayout;
  row->addWidget(box);
  row->addWidget(caption);
  row->addStretch();
  return row;
}

}  // namespace

ImageOrganiserDialog::ImageOrganiserDialog(QWidget* parent, AppContext& ctx)
    : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form10"));
  setWindowTitle(ToQt(ctx.messages.Lng(287)));
  const auto lng = [&](int n) { return ToQt(ctx.messages.Lng(n)); };

  // Page 0: what the tool does, where the names come from, and the two jobs.
  m_pages[0] = new QWidget(this);
  m_pages[0]->setObjectName(QStringLiteral("Frame1_0"));
  auto* label1 = new QLabel(MessageText(ctx.messages.Lng(292)), m_pages[0]);
  label1->setObjectName(QStringLiteral("Label1"));
  label1->setWordWrap(true);
  label1->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
  m_chk1 = MakeCheck(m_pages[0], this, QStringLiteral("Chk1"), lng(293), &m_chk1Text);
  auto* copyJob = MakeButton(m_pages[0], QStringLiteral("Command5_0"), lng(294));
  auto* deleteJob = MakeButton(m_pages[0], QStringLiteral("Command5_1"), lng(295));
  auto* close = MakeButton(m_pages[0], QStringLiteral("Command5_2"), lng(78));
  auto* page0 = new QVBoxLayout(m_pages[0]);
  page0->setContentsMargins(0, 0, 0, 0);
  page0->addWidget(label1);
  page0->addLayout(CheckRow(m_chk1, m_chk1Text));
  auto* jobs = new QHBoxLayout;
  jobs->addWidget(copyJob);
  jobs->addWidget(deleteJob);
  jobs->addStretch();
  jobs->addWidget(close);
  page0->addLayout(jobs);

  // Page 1: the kind, its folders and the options of the job.
  m_pages[1] = new QWidget(this);
  m_pages[1]->setObjectName(QStringLiteral("Frame1_1"));
  m_label5 = new QLabel(lng(288), m_pages[1]);
  m_label5->setObjectName(QStringLiteral("Label5"));
  m_label5->setWordWrap(true);
  auto* label2 = new QLabel(lng(289), m_pages[1]);
  label2->setObjectName(QStringLiteral("Label2"));
  m_combo = new QComboBox(m_pages[1]);
  m_combo->setObjectName(QStringLiteral("Combo1"));
  for (int i = 1; i <= 6; ++i) m_combo->addItem(ToQt(kOrganiserKinds[i]));
  m_combo->setCurrentIndex(-1);
  label2->setBuddy(m_combo);
  auto* label3 = new QLabel(lng(276), m_pages[1]);
  label3->setObjectName(QStringLiteral("Label3"));
  m_source = new QLineEdit(m_pages[1]);
  m_source->setObjectName(QStringLiteral("Text1"));
  label3->setBuddy(m_source);
  m_browseSource = MakeButton(m_pages[1], QStringLiteral("Command1"), QStringLiteral("..."));
  m_label4 = new QLabel(lng(277), m_pages[1]);
  m_label4->setObjectName(QStringLiteral("Label4"));
  m_destination = new QLineEdit(m_pages[1]);
  m_destination->setObjectName(QStringLiteral("Text2"));
  m_label4->setBuddy(m_destination);
  m_browseDestination = MakeButton(m_pages[1], QStringLiteral("Command2"), QStringLiteral("..."));
  m_chk2 = MakeCheck(m_pages[1], this, QStringLiteral("Chk2"), lng(290), &m_chk2Text);
  m_chk3 = MakeCheck(m_pages[1], this, QStringLiteral("Chk3"), lng(291), &m_chk3Text);
  m_run = MakeButton(m_pages[1], QStringLiteral("Command3"), lng(257));
  auto* back = MakeButton(m_pages[1], QStringLiteral("Command4"), lng(78));
  // Room for a real path; the choosers are small buttons beside them.
  for (QLineEdit* box : {m_source, m_destination}) {
    box->setMinimumWidth(fontMetrics().averageCharWidth() * 45);
  }
  for (QPushButton* browse : {m_browseSource, m_browseDestination}) {
    browse->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("...")) * 4);
  }
  auto* grid = new QGridLayout;
  grid->addWidget(label2, 0, 0);
  grid->addWidget(m_combo, 0, 1);
  grid->addWidget(label3, 1, 0);
  grid->addWidget(m_source, 1, 1);
  grid->addWidget(m_browseSource, 1, 2);
  grid->addWidget(m_label4, 2, 0);
  grid->addWidget(m_destination, 2, 1);
  grid->addWidget(m_browseDestination, 2, 2);
  grid->setColumnStretch(1, 1);
  auto* page1 = new QVBoxLayout(m_pages[1]);
  page1->setContentsMargins(0, 0, 0, 0);
  page1->addWidget(m_label5);
  page1->addLayout(grid);
  page1->addLayout(CheckRow(m_chk2, m_chk2Text));
  page1->addLayout(CheckRow(m_chk3, m_chk3Text));
  auto* run = new QHBoxLayout;
  run->addWidget(m_run);
  run->addStretch();
  run->addWidget(back);
  page1->addLayout(run);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_pages[0]);
  layout->addWidget(m_pages[1]);

  setTabOrder(m_chk1, copyJob);
  setTabOrder(copyJob, deleteJob);
  setTabOrder(deleteJob, close);
  setTabOrder(m_combo, m_source);
  setTabOrder(m_source, m_browseSource);
  setTabOrder(m_browseSource, m_destination);
  setTabOrder(m_destination, m_browseDestination);
  setTabOrder(m_browseDestination, m_chk2);
  setTabOrder(m_chk2, m_chk3);
  setTabOrder(m_chk3, m_run);
  setTabOrder(m_run, back);

  connect(copyJob, &QPushButton::clicked, this, [this] { StartJob(0); });
  connect(deleteJob, &QPushButton::clicked, this, [this] { StartJob(1); });
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  connect(m_run, &QPushButton::clicked, this, &ImageOrganiserDialog::RunJob);
  connect(back, &QPushButton::clicked, this, &ImageOrganiserDialog::BackToStart);
  connect(m_combo, &QComboBox::activated, this, [this](int index) { ChooseKind(index + 1); });
  connect(m_browseSource, &QPushButton::clicked, this, [this] { BrowseInto(m_source, 296, true); });
  connect(m_browseDestination, &QPushButton::clicked, this,
          [this] { BrowseInto(m_destination, 297, false); });

  browseFolder = [this](const std::string& start, const std::string& title) {
    return BrowseFolderDialog(this, start, title, true);
  };

  // Load: the kinds' folders and the boxes, page 0, the stored position.
  LoadImageOrganiserState(ctx.settings, m_state);
  m_chk1->setChecked(m_state.Chk1);
  m_chk2->setChecked(m_state.Chk2);
  SetTag(m_chk1, m_state.Chk1 ? QStringLiteral("1") : QString());
  SetTag(m_chk2, m_state.Chk2 ? QStringLiteral("1") : QString());
  SetTag(m_chk3, QString());
  ShowPage(0);
  adjustSize();
  const int top = ctx.settings.InfReadNumber("Frm10Top");
  const int left = ctx.settings.InfReadNumber("Frm10Left");
  if (top < 0 || left < 0 || !ApplyStoredPosition(this, left, top)) CenterForm(this, parent);
}

ImageOrganiserDialog::~ImageOrganiserDialog() { Unload(); }

int ImageOrganiserDialog::CurrentPage() const { return m_pages[1]->isVisibleTo(this) ? 1 : 0; }

int ImageOrganiserDialog::Kind() const { return m_combo->currentIndex() + 1; }

void ImageOrganiserDialog::ShowPage(int page) {
  m_pages[0]->setVisible(page == 0);
  m_pages[1]->setVisible(page == 1);
}

void ImageOrganiserDialog::SaveState() {
  m_ctx.settings.InfWrite("Frm10Top", pos().y());
  m_ctx.settings.InfWrite("Frm10Left", pos().x());
  m_state.Chk1 = m_chk1->isChecked();
  m_state.Chk2 = m_chk2->isChecked();
  SaveImageOrganiserState(m_ctx.settings, m_state);
}

void ImageOrganiserDialog::done(int result) {
  // Escape on page 1 goes back to page 0, as its Close button does; on page 0 it closes.
  if (CurrentPage() == 1 && result == QDialog::Rejected && !IsUnloaded()) {
    BackToStart();
    return;
  }
  FormDialog::done(result);
}

bool ImageOrganiserDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    if (watched == m_chk1Text) m_chk1->toggle();
    if (watched == m_chk2Text) m_chk2->toggle();
    if (watched == m_chk3Text) m_chk3->toggle();
    if (watched == m_chk1Text || watched == m_chk2Text || watched == m_chk3Text) return true;
  }
  return QDialog::eventFilter(watched, event);
}

void ImageOrganiserDialog::ChooseKind(int position) {
  if (position < 1 || position > 6) return;
  if (m_combo->currentIndex() != position - 1) m_combo->setCurrentIndex(position - 1);
  m_source->setText(ToQt(m_state.SourceFolders[position]));
  m_destination->setText(ToQt(m_state.DestFolders[position]));
}

void ImageOrganiserDialog::BrowseInto(QLineEdit* box, int message, bool source) {
  const int kind = Kind();
  if (kind < 1) return;
  const std::string title = FromQt(m_combo->currentText()) + " " + m_ctx.messages.Lng(message);
  const std::string chosen = browseFolder(FromQt(box->text()), title);
  if (chosen.empty() || chosen == "\\") return;
  box->setText(ToQt(chosen));
  (source ? m_state.SourceFolders : m_state.DestFolders)[kind] = chosen;
}

void ImageOrganiserDialog::TakeFolderTexts() {
  const int kind = Kind();
  if (kind < 1) return;
  m_state.SourceFolders[kind] = FromQt(m_source->text());
  m_state.DestFolders[kind] = FromQt(m_destination->text());
}

bool ImageOrganiserDialog::ReadRomFolder() {
  std::string start = m_ctx.settings.InfRead("Frm10Folder");
  if (start.empty() || start == "-1") start = m_ctx.settings.InfRead("RomPath");
  if (start == "-1") start.clear();
  const std::string chosen = browseFolder(start, m_ctx.messages.Lng(36));
  if (chosen.empty() || chosen == "-1") return false;
  m_ctx.settings.InfWrite("Frm10Folder", chosen);
  bool complete = false;
  RunWithWorkingDialog(this, m_ctx, m_ctx.messages.Lng(306), [&](Work& work) {
    complete = ReadRomFolderNames(chosen, work, m_state.RomSet);
  });
  return complete;
}

void ImageOrganiserDialog::StartJob(int index) {
  if (index < 0 || index > 1) return;
  m_state.Mode = index + 1;
  m_state.RomSet.assign(1, std::string());
  m_state.Chk1 = m_chk1->isChecked();
  m_pages[0]->setEnabled(false);
  if (!m_state.Chk1) {
    RomSetFromDatabase(m_ctx, m_state.RomSet);
  } else if (!ReadRomFolder()) {
    m_state.RomSet.assign(1, std::string());
    m_pages[0]->setEnabled(true);
    return;
  }
  m_pages[0]->setEnabled(true);
  if (m_state.RomCount() == 0) {
    m_ctx.Ui().ShowMessage(false, m_ctx.messages.Lng(301), {}, Icon::Warning);
    return;
  }
  ShowPage(1);
  const bool copy = m_state.Mode == 1;
  if (copy) {
    m_label5->setText(ToQt(m_ctx.messages.Lng(302) + " " + std::to_string(m_state.RomCount()) +
                           " " + m_ctx.messages.Lng(m_state.Chk1 ? 304 : 303)));
    m_run->setText(ToQt(m_ctx.messages.Lng(257)));
  } else {
    m_label5->setText(ToQt(m_ctx.messages.Lng(305)));
    m_run->setText(ToQt(m_ctx.messages.Lng(255)));
  }
  for (QWidget* w : std::initializer_list<QWidget*>{m_label4, m_destination, m_browseDestination,
                                                    m_chk2, m_chk2Text, m_chk3, m_chk3Text}) {
    w->setVisible(copy);
  }
  m_combo->setFocus();
  adjustSize();
}

void ImageOrganiserDialog::BackToStart() { ShowPage(0); }

void ImageOrganiserDialog::RunJob() {
  const int kind = Kind();
  if (kind < 1) return;
  TakeFolderTexts();
  if (m_state.Mode == 1) {
    CopyImagesJob job;
    job.kind = FromQt(m_combo->currentText());
    job.source = m_state.SourceFolders[kind];
    job.destination = m_state.DestFolders[kind];
    if (job.source.empty() || job.destination.empty() || !FolderExists(job.source) ||
        !FolderExists(job.destination)) {
      return;
    }
    job.source = AddSlash(job.source);
    job.destination = AddSlash(job.destination);
    m_state.SourceFolders[kind] = job.source;
    m_state.DestFolders[kind] = job.destination;
    m_source->setText(ToQt(job.source));
    m_destination->setText(ToQt(job.destination));
    job.move = m_chk3->isChecked();
    job.fromZips = m_chk2->isChecked();
    job.tempFolder = m_ctx.TempFolder;
    job.log = &m_ctx.log;
    job.searchText = m_ctx.messages.Lng(299);
    m_pages[1]->setEnabled(false);
    RunWithWorkingDialog(this, m_ctx, m_ctx.messages.Lng(298),
                         [&](Work& work) { CopyRomImages(job, m_state.RomSet, work); });
    m_pages[1]->setEnabled(true);
    m_ctx.Ui().ShowMessage(false, {}, {}, Icon::Information);
  } else if (m_state.Mode == 2) {
    PruneImagesJob job;
    job.folder = m_state.SourceFolders[kind];
    if (job.folder.empty() || !FolderExists(job.folder)) return;
    job.deleteText = m_ctx.messages.Lng(284);
    m_pages[1]->setEnabled(false);
    std::vector<std::string> deleted;
    RunWithWorkingDialog(this, m_ctx, m_ctx.messages.Lng(300),
                         [&](Work& work) { PruneImages(job, m_state.RomSet, work, deleted); });
    m_pages[1]->setEnabled(true);
    m_ctx.Ui().ShowMessage(false, {}, {}, Icon::Information);
  }
}

}  // namespace tessarin
