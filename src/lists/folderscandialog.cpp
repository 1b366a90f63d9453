#include "lists/folderscandialog.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/work.h"
#include "lists/listtoolsui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

std::string WithoutTrailingSlash(std::string path) {
  if (!path.empty() && (path.back() == '\\' || path.back() == '/')) path.pop_back();
  return path;
}

}  // namespace

FolderScanDialog::FolderScanDialog(QWidget* parent, AppContext& ctx)
    : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form20"));
  setWindowTitle(QStringLiteral("Scan dir to make list"));
  const Messages& m = ctx.messages;
  auto* label2 = NamedControl<QLabel>(this, "Label2", MessageText(m.Lng(455)));
  label2->setWordWrap(true);
  auto* label1 = NamedControl<QLabel>(this, "Label1", ToQt(m.Lng(456)));
  m_folder = NamedControl<QLineEdit>(this, "Text1");
  label1->setBuddy(m_folder);
  auto* browse = BrowseButton(this, "Command1");
  browse->setToolTip(ToQt(m.Lng(463)));

  auto* label3 = NamedControl<QLabel>(this, "Label3", ToQt(m.Lng(457)));
  m_subfolders = NamedControl<QRadioButton>(this, "Option1", ToQt(m.Lng(458)));
  m_files = NamedControl<QRadioButton>(this, "Option2", ToQt(m.Lng(459)));
  auto* label4 = NamedControl<QLabel>(this, "Label4", QStringLiteral("Extension:"));
  m_extension = NamedControl<QLineEdit>(this, "Text2", QStringLiteral("zip"));
  m_extension->setMaximumWidth(fontMetrics().averageCharWidth() * 12);
  label4->setBuddy(m_extension);
  auto* search = new QHBoxLayout;
  search->addWidget(label3);
  search->addWidget(m_subfolders);
  search->addWidget(m_files);
  search->addSpacing(fontMetrics().averageCharWidth() * 2);
  search->addWidget(label4);
  search->addWidget(m_extension);
  search->addStretch();

  m_removeExtension = NamedControl<QCheckBox>(this, "Check1", ToQt(m.Lng(460)));
  m_addAfter = NamedControl<QCheckBox>(this, "Check2", ToQt(m.Lng(461)));
  m_after = NamedControl<QLineEdit>(this, "Text3");
  m_addBefore = NamedControl<QCheckBox>(this, "Check3", ToQt(m.Lng(462)));
  m_before = NamedControl<QLineEdit>(this, "Text4");
  auto* scan = NamedControl<QPushButton>(this, "Command2", QStringLiteral("&Scan"));
  scan->setDefault(true);

  auto* folderRow = new QHBoxLayout;
  folderRow->addWidget(m_folder, 1);
  folderRow->addWidget(browse);
  auto* texts = new QGridLayout;
  texts->addWidget(m_removeExtension, 0, 0, 1, 2);
  texts->addWidget(m_addAfter, 1, 0);
  texts->addWidget(m_after, 1, 1);
  texts->addWidget(m_addBefore, 2, 0);
  texts->addWidget(m_before, 2, 1);
  texts->setColumnStretch(1, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(scan);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label2);
  layout->addWidget(label1);
  layout->addLayout(folderRow);
  layout->addLayout(search);
  layout->addLayout(texts);
  layout->addLayout(buttons);

  connect(browse, &QPushButton::clicked, this, [this] { BrowseFolder(); });
  connect(scan, &QPushButton::clicked, this, [this] { Scan(); });

  // The program folder first; the stored choices come after.
  const FolderScanOptions options = LoadFolderScanOptions(ctx);
  m_folder->setText(ToQt(options.folder));
  m_subfolders->setChecked(options.subfolders);
  m_files->setChecked(!options.subfolders);
  m_extension->setText(ToQt(options.extension));
  m_removeExtension->setChecked(options.removeExtension);
  m_addAfter->setChecked(options.addAfter);
  m_after->setText(ToQt(options.after));
  m_addBefore->setChecked(options.addBefore);
  m_before->setText(ToQt(options.before));
  SelectAllOnFocus(this);
  m_folder->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
  adjustSize();
  CenterForm(this, parent);
}

FolderScanDialog::~FolderScanDialog() { Unload(); }

FolderScanOptions FolderScanDialog::Options() const {
  FolderScanOptions o;
  o.folder = FromQt(m_folder->text());
  o.subfolders = m_subfolders->isChecked();
  o.extension = FromQt(m_extension->text());
  o.removeExtension = m_removeExtension->isChecked();
  o.addAfter = m_addAfter->isChecked();
  o.after = FromQt(m_after->text());
  o.addBefore = m_addBefore->isChecked();
  o.before = FromQt(m_before->text());
  return o;
}

void FolderScanDialog::BrowseFolder(const std::string& folder) {
  std::string chosen = folder;
  if (chosen.empty()) {
    chosen = BrowseFolderDialog(this, FromQt(m_folder->text()), m_ctx.messages.Lng(463), true);
  }
  chosen = WithoutTrailingSlash(chosen);
  if (!chosen.empty() && FolderExists(chosen)) m_folder->setText(ToQt(chosen));
}

void FolderScanDialog::Scan(const std::string& destination) {
  const Messages& m = m_ctx.messages;
  FolderScanOptions options = Options();
  options.folder = WithoutTrailingSlash(options.folder);
  if (options.folder.empty() || !FolderExists(options.folder)) {
    m_ctx.Ui().ShowMessage(false, m.Lng(464), {}, Icon::Information);
    m_folder->setFocus();
    return;
  }
  std::string target = destination;
  if (target.empty()) target = FileDialog(this, "List.ini", true, IniFileFilter(m), m.Lng(138));
  if (target.empty()) return;

  ToolResult result = ToolResult::Done;
  RunWithWorkingDialog(this, m_ctx, "Working...",
                       [&](Work& work) { result = ScanFolderToIni(options, target, work); });
  QCoreApplication::processEvents();
  if (result == ToolResult::CantWrite) {
    m_ctx.Ui().ShowMessage(false, "Can't write " + target, {}, Icon::Stop);
  } else if (result == ToolResult::NoSource) {
    m_ctx.Ui().ShowMessage(false, m.Lng(464), {}, Icon::Information);
  } else {
    m_ctx.Ui().ShowMessage(false, m.Lng(result == ToolResult::Cancelled ? 377 : 41), {},
                           Icon::Information);
  }
}

void FolderScanDialog::SaveState() { SaveFolderScanOptions(m_ctx, Options()); }

void OpenFolderScanDialog(QWidget* parent, AppContext& ctx) {
  auto* dialog = new FolderScanDialog(parent, ctx);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->show();
}

}  // namespace tessarin
