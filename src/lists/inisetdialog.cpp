#include "lists/inisetdialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/work.h"
#include "layouts/layoutsdialog.h"
#include "lists/listtoolsui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

std::string IndexedName(const char* base, int index) {
  return std::string(base) + "_" + std::to_string(index);
}

template <class T, class... Args>
T* IndexedControl(QWidget* parent, const char* base, int index, Args&&... args) {
  return NamedControl<T>(parent, IndexedName(base, index).c_str(), std::forward<Args>(args)...);
}

}  // namespace

IniSetDialog::IniSetDialog(QWidget* parent, AppContext& ctx) : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form15"));
  const Messages& m = ctx.messages;
  setWindowTitle(ToQt(m.Lng(371)));

  auto* rows = new QGridLayout;
  const int pathWidth = fontMetrics().averageCharWidth() * 45;
  for (int i = 0; i < kIniSetFiles; ++i) {
    const auto at = static_cast<size_t>(i);
    m_checks[at] = IndexedControl<QCheckBox>(this, "Chck", i, QString());
    auto* label = IndexedControl<QLabel>(this, "Label1", i, ToQt(kIniSetNames[at]));
    ClickThrough(label, m_checks[at]);
    m_checks[at]->setAccessibleName(label->text());
    m_paths[at] = IndexedControl<QLineEdit>(this, "Text1", i);
    m_paths[at]->setMinimumWidth(pathWidth);
    m_browse[at] = BrowseButton(this, IndexedName("Command1", i).c_str());
    rows->addWidget(m_checks[at], i, 0);
    rows->addWidget(label, i, 1);
    rows->addWidget(m_paths[at], i, 2);
    rows->addWidget(m_browse[at], i, 3);
    connect(m_browse[at], &QPushButton::clicked, this, [this, i] { BrowsePath(i); });
  }
  rows->setColumnStretch(2, 1);

  // The destination: Radio(0..1) with their labels, and the unique folder.
  auto* destinations = new QButtonGroup(this);
  auto* destinationRows = new QGridLayout;
  for (int i = 0; i < 2; ++i) {
    const auto at = static_cast<size_t>(i);
    m_destination[at] = IndexedControl<QRadioButton>(this, "Radio", i, QString());
    auto* label = IndexedControl<QLabel>(this, "Label2", i, ToQt(m.Lng(381 + i)));
    ClickThrough(label, m_destination[at]);
    m_destination[at]->setAccessibleName(label->text());
    destinations->addButton(m_destination[at], i);
    destinationRows->addWidget(m_destination[at], i * 2, 0);
    destinationRows->addWidget(label, i * 2, 1);
  }
  m_paths[kIniSetFiles] = IndexedControl<QLineEdit>(this, "Text1", kIniSetFiles);
  m_browse[kIniSetFiles] = BrowseButton(this, IndexedName("Command1", kIniSetFiles).c_str());
  // The unique folder sits under its radio, as wide as the rows' paths.
  auto* uniqueRow = new QHBoxLayout;
  uniqueRow->addWidget(m_paths[kIniSetFiles], 1);
  uniqueRow->addWidget(m_browse[kIniSetFiles]);
  destinationRows->addLayout(uniqueRow, 1, 1);
  destinationRows->setColumnStretch(1, 1);
  connect(m_browse[kIniSetFiles], &QPushButton::clicked, this,
          [this] { BrowsePath(kIniSetFiles); });

  // The order: Radio2(0..2) with their labels.
  auto* sorts = new QButtonGroup(this);
  auto* sortRow = new QHBoxLayout;
  for (int i = 0; i < 3; ++i) {
    const auto at = static_cast<size_t>(i);
    m_sort[at] = IndexedControl<QRadioButton>(this, "Radio2", i, QString());
    auto* label = IndexedControl<QLabel>(this, "Label3", i, ToQt(m.Lng(378 + i)));
    ClickThrough(label, m_sort[at]);
    m_sort[at]->setAccessibleName(label->text());
    sorts->addButton(m_sort[at], i);
    sortRow->addWidget(m_sort[at]);
    sortRow->addWidget(label);
    sortRow->addSpacing(fontMetrics().averageCharWidth() * 2);
  }
  sortRow->addStretch();

  auto* generate = NamedControl<QPushButton>(this, "Command2", ToQt(m.Lng(383)));
  generate->setDefault(true);
  auto* layouts = NamedControl<QPushButton>(this, "Command3", QStringLiteral("&Layouts"));
  layouts->setAutoDefault(false);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(layouts);
  buttons->addStretch();
  buttons->addWidget(generate);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(rows);
  layout->addSpacing(fontMetrics().height() / 2);
  layout->addLayout(destinationRows);
  layout->addSpacing(fontMetrics().height() / 2);
  layout->addLayout(sortRow);
  layout->addLayout(buttons);

  connect(destinations, &QButtonGroup::idToggled, this, [this](int, bool on) {
    if (on) EnablePaths();
  });
  connect(generate, &QPushButton::clicked, this, &IniSetDialog::Generate);
  connect(layouts, &QPushButton::clicked, this, &IniSetDialog::OpenLayouts);

  const IniSetOptions options = LoadIniSetOptions(ctx);
  for (int i = 0; i < kIniSetFiles; ++i) {
    m_checks[static_cast<size_t>(i)]->setChecked(options.selected[static_cast<size_t>(i)]);
  }
  for (int i = 0; i <= kIniSetFiles; ++i) {
    m_paths[static_cast<size_t>(i)]->setText(ToQt(options.paths[static_cast<size_t>(i)]));
  }
  m_destination[options.uniqueFolder ? 0 : 1]->setChecked(true);
  m_sort[0]->setChecked(true);
  EnablePaths();
  SelectAllOnFocus(this);
  adjustSize();
  CenterForm(this, parent);
}

IniSetDialog::~IniSetDialog() { Unload(); }

void IniSetDialog::EnablePaths() {
  const bool unique = m_destination[0]->isChecked();
  for (int i = 0; i < kIniSetFiles; ++i) {
    m_paths[static_cast<size_t>(i)]->setEnabled(!unique);
    m_browse[static_cast<size_t>(i)]->setEnabled(!unique);
  }
  m_paths[kIniSetFiles]->setEnabled(unique);
  m_browse[kIniSetFiles]->setEnabled(unique);
}

IniSetOptions IniSetDialog::Options() const {
  IniSetOptions o;
  for (int i = 0; i < kIniSetFiles; ++i) {
    o.selected[static_cast<size_t>(i)] = m_checks[static_cast<size_t>(i)]->isChecked();
  }
  for (int i = 0; i <= kIniSetFiles; ++i) {
    o.paths[static_cast<size_t>(i)] = FromQt(m_paths[static_cast<size_t>(i)]->text());
  }
  o.uniqueFolder = m_destination[0]->isChecked();
  o.sort = m_sort[1]->isChecked() ? 1 : m_sort[2]->isChecked() ? 2 : 0;
  return o;
}

void IniSetDialog::BrowsePath(int row, const std::string& answer) {
  if (row < 0 || row > kIniSetFiles) return;
  QLineEdit* path = m_paths[static_cast<size_t>(row)];
  std::string chosen = answer;
  if (row == kIniSetFiles) {
    if (chosen.empty())
      chosen = BrowseFolderDialog(this, FromQt(path->text()), "Destination", true);
  } else if (chosen.empty()) {
    const std::string label(kIniSetNames[static_cast<size_t>(row)]);
    std::string proposed = FromQt(path->text());
    if (proposed.empty()) proposed = label;
    if (proposed.back() == '\\' || proposed.back() == '/') proposed += label;
    const Messages& m = m_ctx.messages;
    chosen = FileDialog(this, proposed, true, m.Lng(35) + " (*.ini)|*.ini|" + m.Lng(33) + "|*.*|",
                        proposed);
  }
  if (!chosen.empty()) path->setText(ToQt(chosen));
}

void IniSetDialog::Generate() {
  const Messages& m = m_ctx.messages;
  IniSetOptions options = Options();
  if (std::none_of(options.selected.begin(), options.selected.end(), [](bool b) { return b; })) {
    m_ctx.Ui().ShowMessage(false, m.Lng(375), {}, Icon::Warning);
    return;
  }
  if (options.uniqueFolder && !FolderExists(options.paths[kIniSetFiles])) {
    m_ctx.Ui().ShowMessage(false, m.Lng(376), {}, Icon::Warning);
    m_paths[kIniSetFiles]->setFocus();
    return;
  }
  IniSetResult result = IniSetResult::Done;
  RunWithWorkingDialog(this, m_ctx, m.Lng(333),
                       [&](Work& work) { result = GenerateIniSet(m_ctx, work, options); });
  QCoreApplication::processEvents();
  // Each file as it was named, shown back in its row.
  for (int i = 0; i < kIniSetFiles; ++i) {
    if (options.selected[static_cast<size_t>(i)] &&
        !options.paths[static_cast<size_t>(i)].empty()) {
      m_paths[static_cast<size_t>(i)]->setText(ToQt(options.paths[static_cast<size_t>(i)]));
    }
  }
  m_paths[kIniSetFiles]->setText(ToQt(options.paths[kIniSetFiles]));
  m_ctx.Ui().ShowMessage(false, m.Lng(result == IniSetResult::Cancelled ? 377 : 41), {},
                         Icon::Information);
}

void IniSetDialog::OpenLayouts() {
  auto* layouts = new LayoutsDialog(this, m_ctx);
  layouts->setAttribute(Qt::WA_DeleteOnClose);
  layouts->open();
}

void IniSetDialog::SaveState() { SaveIniSetOptions(m_ctx, Options()); }

void OpenIniSetDialog(QWidget* parent, AppContext& ctx) {
  auto* dialog = new IniSetDialog(parent, ctx);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->show();
}

}  // namespace tessarin
