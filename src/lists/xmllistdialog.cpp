#include "lists/xmllistdialog.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/work.h"
#include "lists/listtoolsui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

XmlListDialog::XmlListDialog(QWidget* parent, AppContext& ctx) : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form21"));
  setWindowTitle(QStringLiteral("XML to List"));
  auto* label1 = NamedControl<QLabel>(
      this, "Label1",
      QStringLiteral("This simple option allows to extract a list from a XML file."));
  label1->setWordWrap(true);
  auto* label2 = NamedControl<QLabel>(this, "Label2", QStringLiteral("Source file :"));
  m_source = NamedControl<QLineEdit>(this, "Text1");
  m_source->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
  label2->setBuddy(m_source);
  auto* browse = BrowseButton(this, "Command1");
  browse->setToolTip(QStringLiteral("XML Source file"));
  m_romNames = NamedControl<QCheckBox>(this, "Check1", QStringLiteral("Rom names"));
  m_gameNames = NamedControl<QCheckBox>(this, "Check2", QStringLiteral("Game names"));
  m_addZip = NamedControl<QCheckBox>(this, "Check3", QStringLiteral("Add .zip to the names"));
  m_noClone = NamedControl<QCheckBox>(this, "Check4", QStringLiteral("No clone"));
  auto* make = NamedControl<QPushButton>(this, "Command2", QStringLiteral("Make List"));
  make->setDefault(true);

  auto* sourceRow = new QHBoxLayout;
  sourceRow->addWidget(label2);
  sourceRow->addWidget(m_source, 1);
  sourceRow->addWidget(browse);
  auto* checks = new QHBoxLayout;
  auto* names = new QVBoxLayout;
  names->addWidget(m_romNames);
  names->addWidget(m_gameNames);
  auto* extras = new QVBoxLayout;
  extras->addWidget(m_addZip);
  extras->addWidget(m_noClone);
  checks->addLayout(names);
  checks->addLayout(extras);
  checks->addStretch();
  checks->addWidget(make, 0, Qt::AlignBottom);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label1);
  layout->addLayout(sourceRow);
  layout->addLayout(checks);

  connect(browse, &QPushButton::clicked, this, [this] { BrowseSource(); });
  connect(make, &QPushButton::clicked, this, [this] { MakeList(); });

  const XmlListOptions options = LoadXmlListOptions(ctx);
  m_source->setText(ToQt(options.source));
  m_romNames->setChecked(options.romNames);
  m_gameNames->setChecked(options.gameNames);
  m_addZip->setChecked(options.addZip);
  m_noClone->setChecked(options.noClone);
  SelectAllOnFocus(this);
  adjustSize();
  CenterForm(this, parent);
}

XmlListDialog::~XmlListDialog() { Unload(); }

XmlListOptions XmlListDialog::Options() const {
  XmlListOptions o;
  o.source = FromQt(m_source->text());
  o.romNames = m_romNames->isChecked();
  o.gameNames = m_gameNames->isChecked();
  o.addZip = m_addZip->isChecked();
  o.noClone = m_noClone->isChecked();
  return o;
}

void XmlListDialog::BrowseSource(const std::string& file) {
  const Messages& m = m_ctx.messages;
  std::string chosen = file;
  if (chosen.empty()) {
    const std::string current = FromQt(m_source->text());
    chosen = FileDialog(this, current.empty() ? "XMLFile.dat" : current, false,
                        m.Lng(34) + " (*.dat)|*.dat|" + m.Lng(33) + " |*.*|", "XML Source file");
  }
  if (!chosen.empty()) m_source->setText(ToQt(chosen));
}

void XmlListDialog::MakeList(const std::string& destination) {
  if (!m_romNames->isChecked() && !m_gameNames->isChecked()) m_romNames->setChecked(true);
  std::string target = destination;
  if (target.empty()) {
    target = FileDialog(this, "List.ini", true, IniFileFilter(m_ctx.messages), "Destination file");
  }
  if (target.empty()) return;
  XmlListOptions options = Options();
  if (!FileExists(options.source)) {
    m_ctx.Ui().ShowMessage(false, "Source file not found !", {}, Icon::Warning);
    m_source->setFocus();
    return;
  }
  ToolResult result = ToolResult::Done;
  RunWithWorkingDialog(this, m_ctx, "Working",
                       [&](Work& work) { result = XmlToList(options, target, work); });
  QCoreApplication::processEvents();
  if (result == ToolResult::CantWrite) {
    m_ctx.Ui().ShowMessage(false, "Can't write " + target, {}, Icon::Stop);
  } else if (result == ToolResult::NoSource) {
    m_ctx.Ui().ShowMessage(false, "Source file not found !", {}, Icon::Warning);
  } else {
    // A cancel keeps what was written and ends the same way.
    m_ctx.Ui().ShowMessage(false, "Done", {}, Icon::Information);
  }
}

void XmlListDialog::SaveState() { SaveXmlListOptions(m_ctx, Options()); }

}  // namespace tessarin
