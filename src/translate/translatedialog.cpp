#include "translate/translatedialog.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "translate/dictionary.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

QPushButton* MakeButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  // Enter in a path box must not start rewriting the data files.
  button->setAutoDefault(false);
  return button;
}

QString Indexed(const char* name, int index) {
  return QString::fromLatin1(name) + QLatin1Char('_') + QString::number(index);
}

}  // namespace

TranslateDialog::TranslateDialog(QWidget* parent, AppContext& ctx)
    : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form8"));
  setWindowTitle(ToQt(ctx.messages.Lng(269)));
  OpenEditor = [](const std::string& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(ToQt(path)));
  };

  auto* grid = new QGridLayout;
  std::array<QPushButton*, kTranslationFileCount> browse{};
  for (int i = 0; i < kTranslationFileCount; ++i) {
    const auto at = static_cast<size_t>(i);
    const QString label = ToQt(TranslationFileLabel(i));
    m_checks[at] = new QCheckBox(this);
    m_checks[at]->setObjectName(Indexed("Chk1", i));
    m_checks[at]->setAccessibleName(label);
    m_checkTexts[at] = new QLabel(label, this);
    m_checkTexts[at]->setObjectName(Indexed("Chk1Txt", i));
    m_checkTexts[at]->setCursor(Qt::PointingHandCursor);
    m_checkTexts[at]->installEventFilter(this);
    m_paths[at] = new QLineEdit(this);
    m_paths[at]->setObjectName(Indexed("Text1", i));
    m_paths[at]->setAccessibleName(label);
    m_paths[at]->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    browse[at] = MakeButton(this, Indexed("Command1", i), QStringLiteral("..."));
    browse[at]->setAccessibleName(label + QStringLiteral(" ..."));
    browse[at]->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("....")) * 3);
    QCheckBox* check = m_checks[at];
    // Every check box of the program keeps its state in its Tag too.
    connect(check, &QCheckBox::toggled, this,
            [check](bool on) { SetTag(check, on ? QStringLiteral("1") : QString()); });
    connect(browse[at], &QPushButton::clicked, this, [this, i] { Browse(i); });
    grid->addWidget(m_checks[at], i, 0);
    grid->addWidget(m_checkTexts[at], i, 1);
    grid->addWidget(m_paths[at], i, 2);
    grid->addWidget(browse[at], i, 3);
  }
  grid->setColumnStretch(2, 1);

  m_edit = MakeButton(this, QStringLiteral("Command2"), ToQt(ctx.messages.Lng(270)));
  m_translate = MakeButton(this, QStringLiteral("Command3"), ToQt(ctx.messages.Lng(271)));
  auto* close = MakeButton(this, QStringLiteral("Command4"), ToQt(ctx.messages.Lng(78)));
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_edit);
  buttons->addWidget(m_translate);
  buttons->addStretch();
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(grid);
  layout->addLayout(buttons);

  // Reading order: each row's tick, path and button, then the buttons below.
  QWidget* previous = nullptr;
  for (size_t at = 0; at < m_checks.size(); ++at) {
    for (QWidget* widget : {static_cast<QWidget*>(m_checks[at]), static_cast<QWidget*>(m_paths[at]),
                            static_cast<QWidget*>(browse[at])}) {
      if (previous != nullptr) setTabOrder(previous, widget);
      previous = widget;
    }
  }
  setTabOrder(previous, m_edit);
  setTabOrder(m_edit, m_translate);
  setTabOrder(m_translate, close);

  connect(m_edit, &QPushButton::clicked, this, &TranslateDialog::EditDictionaries);
  connect(m_translate, &QPushButton::clicked, this, &TranslateDialog::TranslateTicked);
  connect(close, &QPushButton::clicked, this, &QDialog::close);

  // Load: the ticks and paths of the settings, then the stored position.
  const TranslationChecks checks = LoadTranslationChecks(ctx.settings);
  const TranslationPaths paths = LoadTranslationPaths(ctx.settings);
  for (size_t at = 0; at < m_checks.size(); ++at) {
    m_checks[at]->setChecked(checks[at]);
    SetTag(m_checks[at], checks[at] ? QStringLiteral("1") : QString());
    m_paths[at]->setText(ToQt(paths[at]));
  }
  adjustSize();
  const int top = ctx.settings.InfReadNumber("Frm8Top");
  const int left = ctx.settings.InfReadNumber("Frm8Left");
  if (top < 0 || left < 0 || !ApplyStoredPosition(this, left, top)) CenterForm(this, parent);
}

TranslateDialog::~TranslateDialog() { Unload(); }

TranslationPaths TranslateDialog::Paths() const {
  TranslationPaths paths;
  for (size_t at = 0; at < m_paths.size(); ++at) paths[at] = FromQt(m_paths[at]->text());
  return paths;
}

TranslationChecks TranslateDialog::Checks() const {
  TranslationChecks checks{};
  for (size_t at = 0; at < m_checks.size(); ++at) checks[at] = m_checks[at]->isChecked();
  return checks;
}

void TranslateDialog::SaveState() {
  SaveTranslationChecks(m_ctx.settings, Checks());
  m_ctx.settings.InfWrite("Frm8Top", pos().y());
  m_ctx.settings.InfWrite("Frm8Left", pos().x());
}

bool TranslateDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    for (size_t at = 0; at < m_checkTexts.size(); ++at) {
      if (watched == m_checkTexts[at]) {
        m_checks[at]->toggle();
        return true;
      }
    }
  }
  return QDialog::eventFilter(watched, event);
}

void TranslateDialog::Browse(int file) {
  const auto at = static_cast<size_t>(file);
  const std::string filter = TranslationFileFilter(file, m_ctx.messages.Lng(33));
  const std::string chosen = FileDialog(this, FromQt(m_paths[at]->text()), false, filter,
                                        std::string(TranslationFileLabel(file)));
  if (!chosen.empty()) m_paths[at]->setText(ToQt(chosen));
}

void TranslateDialog::EditDictionaries() {
  std::string path = DictionaryPath(m_ctx.AppFolder());
  if (!FileExists(path)) {
    SaveTranslationPaths(m_ctx.settings, Paths());
    setEnabled(false);
    RunWithWorkingDialog(
        this, m_ctx, m_ctx.messages.Lng(272), [this](Work&) { CreateDictionary(m_ctx); }, false);
    setEnabled(true);
    path = DictionaryPath(m_ctx.AppFolder());
  }
  if (!FileExists(path)) {
    m_ctx.Ui().ShowMessage(false, m_ctx.messages.Lng(273) + "|" + path, {}, Icon::Warning);
    return;
  }
  if (OpenEditor && OpenEditor(path)) return;
  // No program to open it with: say where the file is, so that any editor can.
  const std::string text =
      m_ctx.messages.OwnText(
          "No program is set to open text files. Open the dictionary with your editor:|",
          "Aucun programme n'est associé aux fichiers texte. Ouvrez le dictionnaire avec votre "
          "éditeur :|") +
      path;
  m_ctx.Ui().ShowMessage(false, text, {}, Icon::Warning);
}

void TranslateDialog::TranslateTicked() {
  const TranslationChecks checks = Checks();
  bool any = false;
  for (bool on : checks) any = any || on;
  if (!any) return;
  const TranslationPaths paths = Paths();
  setEnabled(false);
  // The run has no cancel: a file is either translated whole or left as it was.
  RunWithWorkingDialog(
      this, m_ctx, m_ctx.messages.Lng(274),
      [&](Work& work) { m_report = TranslateDataFiles(m_ctx, work, paths, checks); }, false);
  m_edit->setEnabled(true);
  m_translate->setEnabled(true);
  setEnabled(true);
  m_ctx.Ui().ShowMessage(false, {}, {}, Icon::Information);
}

}  // namespace tessarin
