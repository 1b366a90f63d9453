#include "lists/copytasksdialog.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/messages.h"
#include "core/work.h"
#include "lists/listtoolsui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

std::string Numbered(const char* base, int number) { return base + std::to_string(number); }

// The folder choosers' titles, by the box they fill.
std::string FolderTitle(const QString& field) {
  if (field == QLatin1String("Text4") || field == QLatin1String("Text8")) {
    return "Folder of the subfolders";
  }
  if (field == QLatin1String("Text9")) return "Source files";
  if (field == QLatin1String("Text11")) return "Destination folder";
  return "Folder of the files";
}

}  // namespace

CopyTasksDialog::CopyTasksDialog(QWidget* parent, AppContext& ctx)
    : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form22"));
  setWindowTitle(QStringLiteral("Copy tasks"));

  QWidget* listFrame =
      MakeListFrame("Frame1", QStringLiteral("List of roms"), "Option1_", 1, 1, m_list);
  QWidget* compareFrame =
      MakeListFrame("Frame2", QStringLiteral("Compare list"), "Option3_", 5, 4, m_compare);

  auto* sourceFrame =
      NamedControl<QGroupBox>(this, "Frame3", QStringLiteral("Source files folder"));
  m_source = NamedControl<QLineEdit>(sourceFrame, "Text9");
  auto* extensionLabel = NamedControl<QLabel>(sourceFrame, "Label3", QStringLiteral("Extension :"));
  m_sourceExtension = NamedControl<QLineEdit>(sourceFrame, "Text10");
  m_sourceExtension->setMaximumWidth(fontMetrics().averageCharWidth() * 10);
  extensionLabel->setBuddy(m_sourceExtension);
  auto* sourceLayout = new QHBoxLayout(sourceFrame);
  sourceLayout->addWidget(m_source, 1);
  sourceLayout->addWidget(MakeBrowse(sourceFrame, 7, m_source));
  sourceLayout->addWidget(extensionLabel);
  sourceLayout->addWidget(m_sourceExtension);

  auto* destinationFrame =
      NamedControl<QGroupBox>(this, "Frame4", QStringLiteral("Destination folder"));
  m_destination = NamedControl<QLineEdit>(destinationFrame, "Text11");
  auto* destinationLayout = new QHBoxLayout(destinationFrame);
  destinationLayout->addWidget(m_destination, 1);
  destinationLayout->addWidget(MakeBrowse(destinationFrame, 8, m_destination));

  auto* actionFrame = NamedControl<QGroupBox>(this, "Frame5", QStringLiteral("Action"));
  const char* const actionNames[] = {"Copy", "Move", "Delete"};
  auto* actionLayout = new QHBoxLayout(actionFrame);
  for (int i = 0; i < 3; ++i) {
    m_actions[static_cast<size_t>(i)] = NamedControl<QRadioButton>(
        actionFrame, Numbered("Option2_", i).c_str(), QString::fromLatin1(actionNames[i]));
    actionLayout->addWidget(m_actions[static_cast<size_t>(i)]);
  }
  actionLayout->addStretch();

  auto* go = NamedControl<QPushButton>(this, "Command9", QStringLiteral("&Go"));
  go->setDefault(true);
  auto* cancel = NamedControl<QPushButton>(this, "Command10", QStringLiteral("&Cancel"));
  cancel->setAutoDefault(false);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(go);
  buttons->addWidget(cancel);

  auto* lists = new QHBoxLayout;
  lists->addWidget(listFrame, 1);
  lists->addWidget(compareFrame, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(lists);
  layout->addWidget(sourceFrame);
  layout->addWidget(destinationFrame);
  layout->addWidget(actionFrame);
  layout->addLayout(buttons);

  connect(go, &QPushButton::clicked, this, [this] { Go(); });
  connect(cancel, &QPushButton::clicked, this, &QDialog::close);

  const CopyTaskOptions options = LoadCopyTaskOptions(ctx);
  ShowList(m_list, options.list);
  ShowList(m_compare, options.compare);
  m_source->setText(ToQt(options.source));
  m_sourceExtension->setText(ToQt(options.sourceExtension));
  m_destination->setText(ToQt(options.destination));
  m_actions[static_cast<size_t>(options.action)]->setChecked(true);
  SelectAllOnFocus(this);
  adjustSize();
  CenterForm(this, parent);
}

CopyTasksDialog::~CopyTasksDialog() { Unload(); }

QPushButton* CopyTasksDialog::MakeBrowse(QWidget* parent, int number, QLineEdit* field) {
  auto* button = BrowseButton(parent, Numbered("Command", number).c_str());
  connect(button, &QPushButton::clicked, this, [this, field] { BrowsePath(field); });
  return button;
}

QWidget* CopyTasksDialog::MakeListFrame(const char* frameName, const QString& caption,
                                        const char* optionBase, int firstText, int firstButton,
                                        ListControls& controls) {
  auto* frame = NamedControl<QGroupBox>(this, frameName, caption);
  const char* const captions[] = {"List in a file :", "Files in a folder",
                                  "Subfolders in a folder"};
  for (int i = 0; i < 3; ++i) {
    controls.kinds[static_cast<size_t>(i)] = NamedControl<QRadioButton>(
        frame, (optionBase + std::to_string(i)).c_str(), QString::fromLatin1(captions[i]));
  }
  const int width = fontMetrics().averageCharWidth() * 42;
  controls.file = NamedControl<QLineEdit>(frame, Numbered("Text", firstText).c_str());
  controls.folder = NamedControl<QLineEdit>(frame, Numbered("Text", firstText + 1).c_str());
  controls.extension = NamedControl<QLineEdit>(frame, Numbered("Text", firstText + 2).c_str());
  controls.subfolders = NamedControl<QLineEdit>(frame, Numbered("Text", firstText + 3).c_str());
  controls.file->setMinimumWidth(width);
  controls.extension->setMaximumWidth(fontMetrics().averageCharWidth() * 10);
  auto* extensionLabel = new QLabel(QStringLiteral("Ext :"), frame);
  extensionLabel->setBuddy(controls.extension);

  auto* grid = new QGridLayout(frame);
  grid->addWidget(controls.kinds[0], 0, 0, 1, 2);
  grid->addWidget(controls.file, 1, 0);
  grid->addWidget(MakeBrowse(frame, firstButton, controls.file), 1, 1);
  grid->addWidget(controls.kinds[1], 2, 0, 1, 2);
  auto* folderRow = new QHBoxLayout;
  folderRow->addWidget(controls.folder, 1);
  folderRow->addWidget(extensionLabel);
  folderRow->addWidget(controls.extension);
  grid->addLayout(folderRow, 3, 0);
  grid->addWidget(MakeBrowse(frame, firstButton + 1, controls.folder), 3, 1);
  grid->addWidget(controls.kinds[2], 4, 0, 1, 2);
  grid->addWidget(controls.subfolders, 5, 0);
  grid->addWidget(MakeBrowse(frame, firstButton + 2, controls.subfolders), 5, 1);
  grid->setColumnStretch(0, 1);
  return frame;
}

void CopyTasksDialog::ShowList(const ListControls& controls, const NameListOrigin& origin) {
  controls.kinds[static_cast<size_t>(origin.kind)]->setChecked(true);
  controls.file->setText(ToQt(origin.file));
  controls.folder->setText(ToQt(origin.folder));
  controls.extension->setText(ToQt(origin.extension));
  controls.subfolders->setText(ToQt(origin.subfolders));
}

NameListOrigin CopyTasksDialog::ReadList(const ListControls& controls) const {
  NameListOrigin origin;
  origin.kind = controls.kinds[1]->isChecked()   ? NameListKind::Files
                : controls.kinds[2]->isChecked() ? NameListKind::Subfolders
                                                 : NameListKind::File;
  origin.file = FromQt(controls.file->text());
  origin.folder = FromQt(controls.folder->text());
  origin.extension = FromQt(controls.extension->text());
  origin.subfolders = FromQt(controls.subfolders->text());
  return origin;
}

CopyTaskOptions CopyTasksDialog::Options() const {
  CopyTaskOptions o;
  o.list = ReadList(m_list);
  o.compare = ReadList(m_compare);
  o.source = FromQt(m_source->text());
  o.sourceExtension = FromQt(m_sourceExtension->text());
  o.destination = FromQt(m_destination->text());
  o.action = m_actions[1]->isChecked()   ? CopyAction::Move
             : m_actions[2]->isChecked() ? CopyAction::Delete
                                         : CopyAction::Copy;
  return o;
}

QLineEdit* CopyTasksDialog::FieldOf(CopyTaskField field) const {
  const auto pathOf = [](const ListControls& controls) {
    return controls.kinds[1]->isChecked()   ? controls.folder
           : controls.kinds[2]->isChecked() ? controls.subfolders
                                            : controls.file;
  };
  switch (field) {
    case CopyTaskField::List:
      return pathOf(m_list);
    case CopyTaskField::Compare:
      return pathOf(m_compare);
    case CopyTaskField::Source:
      return m_source;
    case CopyTaskField::Destination:
      return m_destination;
    case CopyTaskField::None:
      break;
  }
  return nullptr;
}

void CopyTasksDialog::BrowsePath(QLineEdit* field, const std::string& answer) {
  if (!field) return;
  std::string chosen = answer;
  if (chosen.empty()) {
    if (field == m_list.file || field == m_compare.file) {
      chosen = FileDialog(this, FromQt(field->text()), false, IniFileFilter(m_ctx.messages),
                          "List of roms in a file");
    } else {
      chosen =
          BrowseFolderDialog(this, FromQt(field->text()), FolderTitle(field->objectName()), true);
    }
  }
  if (!chosen.empty()) field->setText(ToQt(chosen));
}

void CopyTasksDialog::Go(const CopyTaskServices& services) {
  const CopyTaskOptions options = Options();
  CopyTaskField bad = CopyTaskField::None;
  const std::string confirmation = CopyTaskConfirmation(options, bad);
  if (QLineEdit* field = FieldOf(bad)) {
    // The box whose path doesn't exist takes the focus, its text selected.
    field->setFocus();
    SelectAllText(field);
    return;
  }
  if (!m_ctx.Ui().AskYesNo(confirmation, "Start processing ?", Icon::Question)) return;
  RunWithWorkingDialog(this, m_ctx, "Searching...", [&](Work& work) {
    RunCopyTask(m_ctx, work, options, confirmation, services);
  });
  QCoreApplication::processEvents();
}

void CopyTasksDialog::SaveState() { SaveCopyTaskOptions(m_ctx, Options()); }

}  // namespace tessarin
